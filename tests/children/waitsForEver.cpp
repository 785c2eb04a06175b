// SPDX-License-Identifier: MIT
// Prints "ready" and waits to be ended by a signal.
#include <unistd.h>

#include <cstdio>

int main() {
    std::fputs("ready", stdout);
    std::fflush(stdout);
    for (;;) {
        pause();
    }
}
