// SPDX-License-Identifier: MIT
// Prints each of its arguments, the program's own path included, on a line of its own.
#include <cstdio>

int main(int count, char** arguments) {
    for (int index = 0; index < count; ++index) {
        std::puts(arguments[index]);
    }
    return 0;
}
