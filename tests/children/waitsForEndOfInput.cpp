// SPDX-License-Identifier: MIT
#include <unistd.h>

/// Ends when its standard input does.
int main() {
    char byte = 0;
    while (read(STDIN_FILENO, &byte, 1) > 0) {}
}
