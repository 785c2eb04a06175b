// SPDX-License-Identifier: MIT
// Leaves its process group for that of the program that started it, ignores requests to end, says
// that it is ready and waits.
#include "Ready.h"

#include <csignal>

int main() {
    std::signal(SIGTERM, SIG_IGN);
    if (setpgid(0, getpgid(getppid())) != 0) {
        return 99;
    }
    sayReady();
    for (;;) {
        pause();
    }
}
