// SPDX-License-Identifier: MIT
#include <cstdlib>
#include <fstream>
#include <iostream>

/// Prints the file named by the environment variable SNAPSHOT; ends with status 1 without one.
int main() {
    const char* path = std::getenv("SNAPSHOT");
    std::ifstream file(path == nullptr ? "" : path);
    if (!file) {
        return 1;
    }
    std::cout << file.rdbuf();
    return std::cout.flush() ? 0 : 1;
}
