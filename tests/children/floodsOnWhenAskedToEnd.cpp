// SPDX-License-Identifier: MIT
// Writes to its output and to its errors in turn for ever. When it is asked to end, it says that it
// is ready and goes on.
#include "Ready.h"

#include <array>
#include <csignal>

int main() {
    std::signal(SIGTERM, [](int) { sayReady(); });
    std::array<char, 65'536> bytes = {};
    bytes.fill('x');
    while (write(STDOUT_FILENO, bytes.data(), bytes.size()) > 0 &&
           write(STDERR_FILENO, bytes.data(), bytes.size()) > 0) {}
    return 99;
}
