// SPDX-License-Identifier: MIT
#pragma once

#include "ports/LoginItem.h"

#include <optional>
#include <string>

namespace vorla {

/// What the two switches do; a text for standard error if it failed. They differ from the menu's
/// toggle: each leaves alone what is already as asked, and the second also removes a registration
/// that the desktop holds back.
[[nodiscard]] std::optional<std::string> addLoginItem(LoginItem& loginItem);
[[nodiscard]] std::optional<std::string> removeLoginItem(LoginItem& loginItem);

} // namespace vorla
