// SPDX-License-Identifier: MIT
#pragma once

#include "model/StatusMenu.h"

#include <optional>
#include <string>

namespace vorla {

/// The item in the panel; a port, because tests read what is shown without a panel. Main thread.
class StatusItem {
public:
    /// Who is told what the user does.
    class Listener {
    public:
        virtual ~Listener() = default;

        /// The menu is about to open: the last moment to show() a fresh one.
        virtual void menuWillOpen() = 0;
        virtual void chosen(MenuAction action) = 0;
    };

    virtual ~StatusItem() = default;

    /// `listener` must outlive the item, or be replaced by nullptr.
    virtual void setListener(Listener* listener) = 0;

    /// Replaces title and menu. Only what differs from the last call is sent anywhere.
    virtual void show(const StatusMenu& menu) = 0;

    /// The token by which a panel lets the window opened by the last choice come to the front
    /// (xdg-activation); good once, and for ten seconds.
    virtual std::optional<std::string> takeActivationToken() = 0;
};

} // namespace vorla
