// SPDX-License-Identifier: MIT
// Writes to its output and to its errors in turn until it is ended.
#include <unistd.h>

#include <array>

int main() {
    std::array<char, 65'536> bytes = {};
    bytes.fill('x');
    while (write(STDOUT_FILENO, bytes.data(), bytes.size()) > 0 &&
           write(STDERR_FILENO, bytes.data(), bytes.size()) > 0) {}
    return 1;
}
