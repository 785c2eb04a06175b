// SPDX-License-Identifier: MIT
#include "app/CompanionLookup.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <utility>

namespace vorla {

namespace {

constexpr std::string_view overrideName = "VORLA_USAGE_EXECUTABLE";
constexpr std::string_view toolName = "vorla-usage";

bool isUsable(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           faccessat(AT_FDCWD, path.c_str(), X_OK, AT_EACCESS) == 0;
}

/// The parts between the colons, without the empty ones.
std::vector<std::string_view> folders(std::string_view searchPath) {
    std::vector<std::string_view> parts;
    while (!searchPath.empty()) {
        const auto part = searchPath.substr(0, searchPath.find(':'));
        if (!part.empty()) {
            parts.push_back(part);
        }
        searchPath.remove_prefix(std::min(part.size() + 1, searchPath.size()));
    }
    return parts;
}

} // namespace

std::vector<std::string> companionCandidates(const CompanionPlaces& places) {
    if (auto only = places.environment.value(overrideName)) {
        return {std::move(*only)};
    }
    std::vector<std::string> candidates;
    if (places.resourcesDirectory) {
        candidates.push_back(std::filesystem::path(*places.resourcesDirectory) / toolName);
    }
    candidates.push_back(places.homeDirectory + "/.local/bin/" + std::string(toolName));
    const auto searchPath = places.environment.value("PATH").value_or("");
    for (const auto folder : folders(searchPath)) {
        candidates.push_back(std::string(folder).append("/").append(toolName));
    }
    return candidates;
}

std::optional<std::string> findCompanion(const CompanionPlaces& places) {
    for (auto& candidate : companionCandidates(places)) {
        if (isUsable(candidate)) {
            return std::move(candidate);
        }
    }
    return std::nullopt;
}

} // namespace vorla
