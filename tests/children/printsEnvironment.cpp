// SPDX-License-Identifier: MIT
// Prints each variable of its environment on a line of its own.
#include <unistd.h>

#include <cstdio>

int main() {
    for (char** entry = environ; *entry != nullptr; ++entry) {
        std::puts(*entry);
    }
    return 0;
}
