// SPDX-License-Identifier: MIT
// Prints "ready" from itself and from a child of its own; both ignore the request to end and hold
// the streams open.
#include <unistd.h>

#include <csignal>

int main() {
    std::signal(SIGTERM, SIG_IGN);
    if (fork() < 0) {
        return 99;
    }
    if (write(STDOUT_FILENO, "ready", 5) != 5) {
        return 99;
    }
    for (;;) {
        pause();
    }
}
