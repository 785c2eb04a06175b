// SPDX-License-Identifier: MIT
#pragma once

#include "ports/LoginItem.h"

#include <functional>
#include <optional>
#include <string>

namespace vorla {

/// What the login item depends on, as the session's variables say it.
struct LoginItemEnvironment {
    /// Absolute, or empty if unknown.
    std::string homeDirectory;
    /// Absolute, or empty if unknown.
    std::string configurationDirectory;
    /// $XDG_CONFIG_DIRS, $XDG_CURRENT_DESKTOP and $PATH: lists parted by colons.
    std::string configurationDirectories;
    std::string currentDesktop;
    std::string searchPath;
    /// What is to be started at login.
    std::string programPath;

    static LoginItemEnvironment ofThisProcess();
};

/// The login item as an entry in the user's autostart folder, which desktops follow at login.
///
/// A system-wide entry counts where the user has none. Needs neither a display nor a bus.
class AutostartLoginItem final : public LoginItem {
public:
    /// Gives the file at the path this content; returns 0 or an errno.
    using WriteFile = std::function<int(const std::string& path, const std::string& content)>;

    explicit AutostartLoginItem(LoginItemEnvironment environment);
    AutostartLoginItem(LoginItemEnvironment environment, WriteFile writeFile);

    /// "Requires approval" is an entry that the desktop's settings have turned off.
    LoginItemStatus status() override;
    /// Writes the entry anew. That also lifts an "off" from the desktop's settings, since the user
    /// has asked for the start, in the one place where this application offers it.
    [[nodiscard]] std::optional<std::string> registerItem() override;
    /// Where a system-wide entry exists, it is hidden from this user.
    [[nodiscard]] std::optional<std::string> unregisterItem() override;

private:
    std::optional<std::string> write(const std::string& content) const;
    std::optional<std::string> systemWideFile() const;
    std::string shown(const std::string& path) const;

    LoginItemEnvironment environment_;
    WriteFile writeFile_;
    /// Empty if the home directory is unknown.
    std::string userFile_;
};

} // namespace vorla
