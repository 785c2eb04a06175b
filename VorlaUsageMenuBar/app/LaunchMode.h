// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string_view>

namespace vorla {

/// What the program was started for.
enum class LaunchMode { menuBar, registerLoginItem, unregisterLoginItem };

/// `arguments` starts with the program's own path. A switch counts only if nothing else is given.
inline LaunchMode launchMode(std::span<char* const> arguments) {
    if (arguments.size() == 2) {
        const std::string_view only = arguments[1];
        if (only == "--register-login-item") {
            return LaunchMode::registerLoginItem;
        }
        if (only == "--unregister-login-item") {
            return LaunchMode::unregisterLoginItem;
        }
    }
    return LaunchMode::menuBar;
}

} // namespace vorla
