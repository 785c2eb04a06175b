// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

/// The file that the environment variable `name` leads to; nothing without it.
inline std::string fileNamedBy(const char* name) {
    const char* path = std::getenv(name);
    std::ifstream file(path == nullptr ? "" : path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void print(const std::string& text, std::FILE* stream) {
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}
