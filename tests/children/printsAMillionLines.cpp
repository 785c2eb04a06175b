// SPDX-License-Identifier: MIT
// A dashboard that says where it can be seen, prints a million lines, says a new address, and goes
// on until it is asked to end.
#include <unistd.h>

#include <cstdio>

int main() {
    std::puts("Serving on http://127.0.0.1:1000/ (Ctrl-C to stop)");
    std::fflush(stdout);
    for (int line = 1; line <= 1'000'000; ++line) {
        std::printf("GET /figures?visit=%d 200\n", line);
    }
    std::puts("Moved to http://127.0.0.1:2000/");
    std::fflush(stdout);
    for (;;) {
        pause();
    }
}
