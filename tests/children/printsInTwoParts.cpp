// SPDX-License-Identifier: MIT
// Prints "ab" at once and "cd" when told to go on.
#include "Go.h"

#include <cstdio>

int main() {
    std::fputs("ab", stdout);
    std::fflush(stdout);
    waitForGo();
    std::fputs("cd", stdout);
    return 0;
}
