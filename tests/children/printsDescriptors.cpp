// SPDX-License-Identifier: MIT
// Prints the number of each open descriptor and what it leads to. A pipe is not told by its number.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

int main() {
    std::vector<std::string> lines;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        const std::string target = std::filesystem::read_symlink(entry, error).string();
        // The descriptor by which this very folder is read.
        if (target.ends_with("/fd")) {
            continue;
        }
        lines.push_back(
            entry.path().filename().string() + " " + target.substr(0, target.find(':')));
    }
    std::ranges::sort(lines);
    for (const auto& line : lines) {
        std::puts(line.c_str());
    }
    return 0;
}
