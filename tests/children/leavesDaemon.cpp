// SPDX-License-Identifier: MIT
// Exits at once. What it leaves is in a session of its own and waits until told to go on; it keeps
// the streams open if HOLDS is set.
#include "Go.h"
#include "Ready.h"

int main() {
    const auto child = fork();
    if (child < 0) {
        return 99;
    }
    if (child > 0) {
        return 0;
    }
    if (setsid() < 0) {
        return 99;
    }
    if (std::getenv("HOLDS") == nullptr) {
        close(STDOUT_FILENO);
        close(STDERR_FILENO);
    }
    sayReady();
    waitForGo();
    return 0;
}
