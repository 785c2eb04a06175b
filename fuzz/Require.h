// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace vorla::fuzz {

/// Says which promise is broken and ends the process; the fuzzer then keeps the input.
[[noreturn]] void reportBroken(std::string_view promise);

/// Checked in every build, unlike an assertion.
inline void require(bool holds, std::string_view promise) {
    if (!holds) {
        reportBroken(promise);
    }
}

} // namespace vorla::fuzz
