// SPDX-License-Identifier: MIT
// Waits and obeys a request to end. A child of its own ignores it, and holds the streams open until
// told to go on.
#include "Go.h"
#include "Ready.h"

#include <csignal>

int main() {
    const auto child = fork();
    if (child < 0) {
        return 99;
    }
    if (child == 0) {
        std::signal(SIGTERM, SIG_IGN);
        sayReady();
        waitForGo();
        return 0;
    }
    for (;;) {
        pause();
    }
}
