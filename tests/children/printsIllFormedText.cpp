// SPDX-License-Identifier: MIT
// Prints a byte that is not UTF-8 between two letters, on both streams.
#include <cstdio>

int main() {
    std::fputs(
        "a\xFF"
        "b",
        stdout);
    std::fputs(
        "c\xFF"
        "d",
        stderr);
    return 0;
}
