// SPDX-License-Identifier: MIT
// Plays a window that says in two parts that it closes, the second when told to go on, and whose
// program ends when told so once more.
#include "Go.h"
#include "Ready.h"

#include <cstdio>

int main() {
    std::fputs("open\nclo", stdout);
    std::fflush(stdout);
    sayReady();
    waitForGo();
    std::fputs("sing\n", stdout);
    std::fflush(stdout);
    waitForGo();
}
