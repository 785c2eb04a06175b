// SPDX-License-Identifier: MIT
#include "Require.h"

#include <cstdlib>
#include <iostream>

namespace vorla::fuzz {

void reportBroken(std::string_view promise) {
    std::cerr << "Broken promise: " << promise << "\n";
    std::abort();
}

} // namespace vorla::fuzz
