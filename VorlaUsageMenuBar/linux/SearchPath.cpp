// SPDX-License-Identifier: MIT
#include "linux/SearchPath.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace vorla {

bool isProgram(const std::string& path) {
    struct stat status = {};
    return path.find('\0') == std::string::npos && stat(path.c_str(), &status) == 0 &&
           S_ISREG(status.st_mode) && faccessat(AT_FDCWD, path.c_str(), X_OK, AT_EACCESS) == 0;
}

std::vector<std::string_view> colonList(std::string_view list) {
    std::vector<std::string_view> parts;
    while (!list.empty()) {
        const auto part = list.substr(0, list.find(':'));
        list.remove_prefix(std::min(part.size() + 1, list.size()));
        if (!part.empty()) {
            parts.push_back(part);
        }
    }
    return parts;
}

std::string programIn(std::string_view searchPath, std::string_view name) {
    for (const auto folder : colonList(searchPath)) {
        auto path = std::string(folder).append("/").append(name);
        if (folder.starts_with('/') && isProgram(path)) {
            return path;
        }
    }
    return {};
}

} // namespace vorla
