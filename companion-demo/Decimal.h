// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <charconv>
#include <string>

namespace vorla {

/// With two decimal places, whatever the locale.
inline std::string decimal(double value) {
    std::array<char, 64> digits{};
    const auto end = std::to_chars(
        digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed, 2);
    return {digits.data(), end.ptr};
}

} // namespace vorla
