// SPDX-License-Identifier: MIT
#pragma once

#include "model/StatusMenu.h"

#include <optional>
#include <string>

namespace vorla {

/// The registration by which the desktop starts the application at login; a port, because tests set
/// its states. Main thread.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    /// Read afresh at each call.
    virtual LoginItemStatus status() = 0;
    /// A sentence that says what failed, or nothing on success; likewise for unregisterItem().
    [[nodiscard]] virtual std::optional<std::string> registerItem() = 0;
    [[nodiscard]] virtual std::optional<std::string> unregisterItem() = 0;
};

} // namespace vorla
