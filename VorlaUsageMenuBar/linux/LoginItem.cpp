// SPDX-License-Identifier: MIT
#include "linux/LoginItem.h"

#include "linux/AtomicFile.h"
#include "linux/DesktopEntry.h"
#include "linux/Folders.h"
#include "linux/SearchPath.h"
#include "model/Text.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace vorla {

namespace {

constexpr auto entryPath = "/autostart/com.vorla.UsageMenuBar.desktop";
constexpr auto applicationName = "VorlaUsageMenuBar";
constexpr auto hiddenKey = "Hidden";
/// Says that it was this application that hid a system-wide entry, not the desktop's settings.
constexpr auto unregisteredKey = "X-VorlaUsage-Unregistered";
/// Far more than any entry needs. The file is read at each opening of the menu.
constexpr std::size_t maximumEntryBytes = 65536;

constexpr auto homeUnknown = "The home directory is unknown.";
constexpr auto notKept = "The login entry was not kept by the system.";

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

bool canBeStarted(const std::string& program, const std::string& searchPath) {
    if (program.find('/') != std::string::npos) {
        return program.starts_with('/') && isProgram(program);
    }
    const auto folders = colonList(searchPath);
    return std::ranges::any_of(folders, [&program](std::string_view folder) {
        return isProgram(std::string(folder).append("/").append(program));
    });
}

bool startsAProgram(const DesktopEntry& entry, const std::string& searchPath) {
    const auto program = programOfExec(entry.string("Exec").value_or(""));
    const auto tried = entry.string("TryExec");
    return entry.string("Type") == "Application" && program && canBeStarted(*program, searchPath) &&
           (!tried || canBeStarted(*tried, searchPath));
}

bool isMeantFor(const DesktopEntry& entry, const std::string& currentDesktop) {
    const auto only = entry.strings("OnlyShowIn");
    const auto never = entry.strings("NotShowIn");
    const auto contains = [](const std::vector<std::string>& list, std::string_view name) {
        return std::ranges::find(list, name) != list.end();
    };
    // The desktop's own name comes before the names of those that it is like.
    for (const auto name : colonList(currentDesktop)) {
        if (contains(only, name)) {
            return true;
        }
        if (contains(never, name)) {
            return false;
        }
    }
    return only.empty();
}

bool isAbsent(int error) {
    return error == ENOENT || error == ENOTDIR;
}

std::string loginEntry(const std::string& programPath) {
    return desktopEntryText(std::array<DesktopEntryLine, 9>{
        {{"Type", "Application"},
         {"Name", applicationName},
         {"Comment", "Keeps the remaining Vorla usage quota in view"},
         {"Icon", "com.vorla.UsageMenuBar"},
         {"Exec", quotedExecArgument(programPath)},
         {"Terminal", "false"},
         {"StartupNotify", "false"},
         {"X-GNOME-Autostart-enabled", "true"},
         {"X-LXQt-Need-Tray", "true"}}});
}

std::string hidingEntry() {
    return desktopEntryText(std::array<DesktopEntryLine, 4>{
        {{"Type", "Application"},
         {"Name", applicationName},
         {hiddenKey, "true"},
         {unregisteredKey, "true"}}});
}

/// ": No such file or directory."
std::string reason(int error) {
    return ": " + std::generic_category().message(error) + ".";
}

} // namespace

LoginItemEnvironment LoginItemEnvironment::ofThisProcess() {
    return {
        .homeDirectory = vorla::homeDirectory(),
        .configurationDirectory = vorla::configurationDirectory(),
        .configurationDirectories = variable("XDG_CONFIG_DIRS"),
        .currentDesktop = variable("XDG_CURRENT_DESKTOP"),
        .searchPath = variable("PATH"),
        .programPath = lastingProgramPath(),
    };
}

AutostartLoginItem::AutostartLoginItem(LoginItemEnvironment environment)
    : AutostartLoginItem(
          std::move(environment), [](const std::string& path, const std::string& content) {
              return writeFileAtomically(path, content, 0644);
          }) {}

AutostartLoginItem::AutostartLoginItem(LoginItemEnvironment environment, WriteFile writeFile)
    : environment_(std::move(environment)), writeFile_(std::move(writeFile)) {
    if (environment_.configurationDirectory.starts_with('/')) {
        userFile_ = environment_.configurationDirectory + entryPath;
    }
}

LoginItemStatus AutostartLoginItem::status() {
    auto file =
        userFile_.empty() ? FileContent{.error = ENOENT} : readFile(userFile_, maximumEntryBytes);
    const bool isTheUsers = !isAbsent(file.error);
    if (!isTheUsers) {
        const auto systemWide = systemWideFile();
        if (!systemWide) {
            return LoginItemStatus::notRegistered;
        }
        file = readFile(*systemWide, maximumEntryBytes);
    }
    const auto entry = file.error == 0 ? DesktopEntry::parse(file.bytes) : std::nullopt;
    if (isTheUsers && entry && entry->boolean(unregisteredKey) == true) {
        return LoginItemStatus::notRegistered;
    }
    if (!entry || !startsAProgram(*entry, environment_.searchPath)) {
        return LoginItemStatus::notFound;
    }
    if (entry->boolean(hiddenKey) == true || entry->boolean("X-GNOME-Autostart-enabled") == false ||
        !isMeantFor(*entry, environment_.currentDesktop)) {
        return LoginItemStatus::requiresApproval;
    }
    return LoginItemStatus::enabled;
}

std::optional<std::string> AutostartLoginItem::registerItem() {
    const auto& program = environment_.programPath;
    if (userFile_.empty()) {
        return homeUnknown;
    }
    if (!program.starts_with('/') || !canStandInExec(program) || !isProgram(program)) {
        return "The application's own path cannot be used for login (" + shown(program) + ").";
    }
    auto error = write(loginEntry(program));
    if (!error && status() != LoginItemStatus::enabled) {
        error = notKept;
    }
    return error;
}

std::optional<std::string> AutostartLoginItem::unregisterItem() {
    if (userFile_.empty()) {
        return homeUnknown;
    }
    // The entry that hides a system-wide one takes the place of ours in one step: with none in
    // between, no failure can leave the system-wide one in force.
    if (systemWideFile()) {
        return write(hidingEntry());
    }
    const int error = unlink(userFile_.c_str()) == 0 ? 0 : errno;
    if (error != 0 && !isAbsent(error)) {
        return "Cannot remove " + shown(userFile_) + reason(error);
    }
    return std::nullopt;
}

std::optional<std::string> AutostartLoginItem::write(const std::string& content) const {
    int error = createFolders(userFile_.substr(0, userFile_.rfind('/')));
    if (error == 0) {
        error = writeFile_(userFile_, content);
    }
    if (error != 0) {
        return "Cannot write " + shown(userFile_) + reason(error);
    }
    return std::nullopt;
}

/// The most important one.
std::optional<std::string> AutostartLoginItem::systemWideFile() const {
    const std::string_view folders = environment_.configurationDirectories;
    for (const auto folder : colonList(folders.empty() ? "/etc/xdg" : folders)) {
        auto path = std::string(folder).append(entryPath);
        if (folder.starts_with('/') && access(path.c_str(), F_OK) == 0) {
            return path;
        }
    }
    return std::nullopt;
}

/// As a sentence can show it: with "~" for the home directory, and in well-formed text on one line.
std::string AutostartLoginItem::shown(const std::string& path) const {
    std::string text = path;
    const auto& home = environment_.homeDirectory;
    if (!home.empty() && path.starts_with(home) && path.substr(home.size()).starts_with('/')) {
        text.replace(0, home.size(), "~");
    }
    std::ranges::replace_if(text, [](char byte) { return byte >= 0 && byte < ' '; }, '?');
    return text::repaired(text);
}

} // namespace vorla
