// SPDX-License-Identifier: MIT
// Stops as if by job control; once continued it prints "gone on" as an error and exits with status
// 4.
#include <csignal>
#include <cstdio>

int main() {
    std::raise(SIGSTOP);
    std::fputs("gone on", stderr);
    return 4;
}
