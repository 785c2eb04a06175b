// SPDX-License-Identifier: MIT
#pragma once

#include <QWindow>

#include <optional>
#include <string>

namespace vorla {

/// Under X11, asks the window manager to bring a window that is already shown to its user: to the
/// desktop they look at, and with the focus if the token tells the time of their click. The
/// toolkit's own request bears the time of the last input to this program, which a window manager
/// that guards the focus takes for too old.
///
/// False if the focus has not been asked for: no X11, or no time in the token.
bool bringToUserOfX11(QWindow& window, const std::optional<std::string>& activationToken);

} // namespace vorla
