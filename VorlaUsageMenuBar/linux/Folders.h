// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace vorla {

/// HOME if it is an absolute path, else what the user database says; empty if neither is known.
std::string homeDirectory();

/// The user's folder for configurations: XDG_CONFIG_HOME if it is an absolute path, else ".config"
/// in the home directory; empty if neither is known.
std::string configurationDirectory();

/// The path of the running executable, or nothing if it has been deleted or replaced meanwhile.
std::optional<std::string> executablePath();

/// The path by which this application can be started again, also after an upgrade has replaced its
/// executable: the image's if it runs from an AppImage. Nobody has looked whether there is a
/// program at that path now; empty if it is unknown.
std::string lastingProgramPath();

/// What the kernel's link to a program's executable leads to, or led to before the file was
/// deleted.
std::string executableBehind(const std::string& link);

/// The folder of the application's own resources beside the installed executable's folder; nothing
/// if that executable has been deleted or replaced. Nobody has looked whether it is there: what
/// belongs there may be installed later.
std::optional<std::string> resourcesDirectory();

/// The picture of the application that is installed with the running executable, or empty if it is
/// not installed.
std::string installedIcon();

} // namespace vorla
