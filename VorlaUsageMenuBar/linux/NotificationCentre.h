// SPDX-License-Identifier: MIT
#pragma once

#include "linux/NotificationService.h"
#include "linux/NotificationSwitches.h"
#include "linux/ShownNotifications.h"
#include "ports/NotificationCentre.h"

#include <cstddef>

namespace vorla {

/// The desktop's notification service as the notification centre.
///
/// No desktop asks the user whether an application may notify. "Authorized" is a service that runs
/// or can be started, unless the user has turned this application's notifications off in the
/// settings of a desktop that has such a switch ("denied"), or has left only the list of past ones
/// ("provisional"). "Not determined" is no service, "ephemeral" never occurs.
class DesktopNotificationCentre final : public NotificationCentre {
public:
    static constexpr std::chrono::seconds usualCallLimit{10};
    /// After a login the service may come later than this application, and a wrong "not determined"
    /// would cost the user the switch for good. So that answer waits for the service: until this
    /// long after the start of this application...
    static constexpr std::chrono::seconds graceAfterStart{60};
    /// ...and at least this long.
    static constexpr std::chrono::seconds usualGrace{5};

    /// To be made when the application starts. Throws std::system_error if there is no connection
    /// to the bus.
    DesktopNotificationCentre(
        bus::Bus& bus, MainLoop& loop, const NotificationSettingsPlaces& places,
        std::chrono::milliseconds callLimit = usualCallLimit);

    void getSettings(std::function<void(AuthorizationStatus)> answer) override;
    /// Starts the service if need be, and grants what it can do.
    void requestAuthorization(std::function<void(AuthorizationAnswer)> answer) override;
    /// Starts the service if need be.
    void
    add(const Notification& notification,
        std::function<void(std::optional<std::string>)> answer) override;

private:
    using Failure = std::optional<std::string>;

    void look();
    void lookAtSwitches(NotificationDesktop desktop);
    void waitForService();
    void settle(AuthorizationStatus status);

    void post(
        const Notification& notification, NotificationAbilities abilities,
        std::function<void(Failure)> answer);
    void ownerChanged(bool runs);
    void bubblesChanged();

    MainLoop& loop_;
    std::chrono::milliseconds startedAt_{0};
    NotificationService service_;
    NotificationSwitches switches_;
    /// Who waits for the status; they all get the same answer.
    std::vector<std::function<void(AuthorizationStatus)>> waiting_;
    std::unique_ptr<MainLoop::Source> grace_;
    ShownNotifications shown_;
    std::size_t postsUnderWay_ = 0;
    /// Lets a list of answers find out whether one of them has destroyed the centre.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

} // namespace vorla
