// SPDX-License-Identifier: MIT
// Prints the numbers of the signals that it blocks and of those that it ignores.
#include <csignal>
#include <cstdio>

int main() {
    sigset_t mask;
    sigprocmask(SIG_SETMASK, nullptr, &mask);
    std::fputs("blocked:", stdout);
    for (int signal = 1; signal <= SIGRTMAX; ++signal) {
        if (sigismember(&mask, signal) == 1) {
            std::printf(" %d", signal);
        }
    }
    std::fputs("\nignored:", stdout);
    for (int signal = 1; signal <= SIGRTMAX; ++signal) {
        struct sigaction action = {};
        // The two signals that the C library keeps to itself cannot be asked about.
        if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) {
            std::printf(" %d", signal);
        }
    }
    std::fputs("\n", stdout);
    return 0;
}
