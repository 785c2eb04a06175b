// SPDX-License-Identifier: MIT
#pragma once

#include "linux/GnomeNotificationSwitch.h"
#include "linux/NotificationService.h"

namespace vorla {

/// What Plasma's plasmanotifyrc says of this application.
NotificationDelivery plasmaDelivery(std::string_view settings);

/// The switch that some desktops keep for each application, read from their own settings. Main
/// thread.
///
/// Settings that are missing or cannot be read leave the notifications shown.
class NotificationSwitches final {
public:
    using Answer = std::function<void(NotificationDelivery)>;

    NotificationSwitches(
        bus::Bus& bus, MainLoop& loop, std::chrono::milliseconds callLimit,
        const NotificationSettingsPlaces& places);
    ~NotificationSwitches() = default;
    NotificationSwitches(const NotificationSwitches&) = delete;
    NotificationSwitches& operator=(const NotificationSwitches&) = delete;

    /// The answer comes once, perhaps from inside this call, and not once this has been destroyed.
    /// One question at a time.
    void look(NotificationDesktop desktop, Answer answer);

private:
    void lookAtXfce(Answer answer);

    std::string plasmaFile_;
    PendingCalls calls_;
    GnomeNotificationSwitch gnome_;
};

} // namespace vorla
