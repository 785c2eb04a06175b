// SPDX-License-Identifier: MIT
// Prints "early" and closes its standard output; when told to go on, prints "late" as an error.
#include "Go.h"

#include <cstdio>

int main() {
    std::fputs("early", stdout);
    std::fclose(stdout);
    waitForGo();
    std::fputs("late", stderr);
    return 4;
}
