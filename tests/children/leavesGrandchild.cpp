// SPDX-License-Identifier: MIT
// Exits at once with status 5; a child of its own holds the streams open until told to go on. If
// READY is set, that child says so first.
#include "Go.h"
#include "Ready.h"

#include <cstdio>

int main() {
    const auto child = fork();
    if (child < 0) {
        return 99;
    }
    if (child > 0) {
        return 5;
    }
    if (std::getenv("READY") != nullptr) {
        sayReady();
    }
    waitForGo();
    std::fputs("late", stdout);
    return 0;
}
