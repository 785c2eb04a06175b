// SPDX-License-Identifier: MIT
// Ends when its standard input does. If READY is set, it says that it is ready first.
#include "Ready.h"

int main() {
    if (std::getenv("READY") != nullptr) {
        sayReady();
    }
    char byte = 0;
    while (read(STDIN_FILENO, &byte, 1) > 0) {}
}
