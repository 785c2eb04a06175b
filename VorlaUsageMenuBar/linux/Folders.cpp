// SPDX-License-Identifier: MIT
#include "linux/Folders.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <vector>

namespace vorla {

namespace {

constexpr auto linkToThisExecutable = "/proc/self/exe";

/// The path that a variable names, or nothing unless that is an absolute one.
std::string absolutePath(const char* variable) {
    const char* path = std::getenv(variable);
    return path != nullptr && path[0] == '/' ? path : "";
}

// A program that another AppImage starts inherits that one's variables, so its own executable has
// to lie within the folder that they name.
bool runsFromTheImage(const std::string& executable) {
    const auto folder = absolutePath("APPDIR");
    std::error_code error;
    const auto resolved = std::filesystem::weakly_canonical(folder, error).string();
    return folder.empty() || executable.starts_with(resolved + "/");
}

/// What holds the folder of the running executable, as far as that is still there.
std::optional<std::filesystem::path> installationPrefix() {
    const auto executable = executablePath();
    if (!executable) {
        return std::nullopt;
    }
    return std::filesystem::path(*executable).parent_path().parent_path();
}

} // namespace

std::string homeDirectory() {
    const char* home = std::getenv("HOME");
    if (home != nullptr && home[0] == '/') {
        return home;
    }
    std::vector<char> buffer(16384);
    passwd entry = {};
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0 &&
        found != nullptr) {
        return found->pw_dir;
    }
    return {};
}

std::string configurationDirectory() {
    auto folder = absolutePath("XDG_CONFIG_HOME");
    if (folder.empty()) {
        folder = homeDirectory();
        folder += folder.empty() ? "" : "/.config";
    }
    return folder;
}

std::optional<std::string> executablePath() {
    std::array<char, PATH_MAX> buffer = {};
    const auto length = readlink(linkToThisExecutable, buffer.data(), buffer.size());
    if (length <= 0) {
        return std::nullopt;
    }
    std::string path(buffer.data(), static_cast<std::size_t>(length));
    if (access(path.c_str(), F_OK) != 0) {
        return std::nullopt;
    }
    return path;
}

std::string lastingProgramPath() {
    auto executable = executableBehind(linkToThisExecutable);
    auto image = absolutePath("APPIMAGE");
    return !image.empty() && runsFromTheImage(executable) ? image : executable;
}

std::string executableBehind(const std::string& link) {
    constexpr std::string_view deletedMark = " (deleted)";
    std::error_code error;
    auto path = std::filesystem::read_symlink(link, error).string();
    if (path.ends_with(deletedMark) && access(path.c_str(), F_OK) != 0) {
        path.resize(path.size() - deletedMark.size());
    }
    return path;
}

std::optional<std::string> resourcesDirectory() {
    const auto prefix = installationPrefix();
    if (!prefix) {
        return std::nullopt;
    }
    return *prefix / "libexec" / "VorlaUsageMenuBar";
}

std::string installedIcon() {
    const auto prefix = installationPrefix();
    if (!prefix) {
        return "";
    }
    const auto file = *prefix / "share/icons/hicolor/scalable/apps/com.vorla.UsageMenuBar.svg";
    std::error_code error;
    return std::filesystem::is_regular_file(file, error) ? file.string() : "";
}

} // namespace vorla
