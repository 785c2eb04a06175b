// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>

/// Writes LINES lines of 64 bytes, each beginning with its own number.
inline void flood(std::FILE* stream) {
    const char* wanted = std::getenv("LINES");
    if (wanted == nullptr) {
        _exit(99);
    }
    const int lines = std::atoi(wanted);
    // Standard error would be written line by line.
    std::setvbuf(stream, nullptr, _IOFBF, std::size_t{64} << 10U);
    std::string line(63, '.');
    line.push_back('\n');
    for (int number = 0; number < lines; ++number) {
        // Numbers grow, so the next one overwrites the last.
        std::to_chars(line.data(), line.data() + line.size(), number);
        std::fwrite(line.data(), 1, line.size(), stream);
    }
    std::fflush(stream);
}
