// SPDX-License-Identifier: MIT
// Exits at once with status 5. A child of its own, told to go on, writes to its output, or to its
// errors if STREAM says so, for as long as anybody reads.
#include "Go.h"

#include <array>
#include <string_view>

int main() {
    const auto child = fork();
    if (child < 0) {
        return 99;
    }
    if (child > 0) {
        return 5;
    }
    const char* stream = std::getenv("STREAM");
    const bool isErrors = stream != nullptr && stream == std::string_view("errors");
    std::array<char, 65'536> bytes = {};
    bytes.fill('x');
    waitForGo();
    while (write(isErrors ? STDERR_FILENO : STDOUT_FILENO, bytes.data(), bytes.size()) > 0) {}
    return 1;
}
