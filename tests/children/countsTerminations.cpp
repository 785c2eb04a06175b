// SPDX-License-Identifier: MIT
// Prints "ready", then one "T" for each request to end, and exits at the second.
#include <csignal>
#include <cstdio>

int main() {
    sigset_t requests;
    sigemptyset(&requests);
    sigaddset(&requests, SIGTERM);
    sigprocmask(SIG_BLOCK, &requests, nullptr);
    std::fputs("ready", stdout);
    std::fflush(stdout);
    for (int count = 0; count < 2; ++count) {
        int signal = 0;
        sigwait(&requests, &signal);
        std::fputs("T", stdout);
        std::fflush(stdout);
    }
    return 0;
}
