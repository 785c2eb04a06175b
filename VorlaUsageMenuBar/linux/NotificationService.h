// SPDX-License-Identifier: MIT
#pragma once

#include "linux/PendingCalls.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace vorla {

/// Whose settings decide about the notifications of one application.
enum class NotificationDesktop { gnome, plasma, xfce, other };

/// What a notification service can do, as far as it matters here.
struct NotificationAbilities {
    bool actions = false;
    bool bodyMarkup = false;
    bool sound = false;
};

/// A notification in the service's words.
struct NotifyArguments {
    /// The bubble to be replaced, or 0.
    std::uint32_t replacedBubble = 0;
    std::string title;
    std::string body;
    NotificationAbilities abilities;
};

/// The notification service of the session, whichever it is and whether it runs or not. Main
/// thread.
///
/// Answers come exactly once, and not once this has been destroyed. Failures are sentences. What is
/// known of a service is kept for as long as it runs.
class NotificationService final {
public:
    enum class Presence { running, startable, missing, busIsGone };

    /// What the service said, or a sentence that says why it did not.
    template <typename Value>
    struct Answer {
        std::optional<Value> value;
        std::string failure;
    };

    struct Listener {
        /// The bubbles of the service that ran before are gone; another one may run now.
        std::function<void(bool runs)> ownerChanged;
        std::function<void(std::uint32_t bubble)> bubbleClosed;
    };

    /// Throws std::system_error if there is no connection to the bus.
    NotificationService(
        bus::Bus& bus, MainLoop& loop, std::chrono::milliseconds limit, Listener listener);
    ~NotificationService() = default;
    NotificationService(const NotificationService&) = delete;
    NotificationService& operator=(const NotificationService&) = delete;

    /// Whether a service has run while this program did.
    bool wasSeen() const { return wasSeen_; }
    /// What the running service has said before, if it has been asked.
    const std::optional<NotificationDesktop>& desktop() const { return desktop_; }
    const std::optional<NotificationAbilities>& abilities() const { return abilities_; }

    /// Starts nothing. A service whose start has failed in this run does not count as startable.
    void findPresence(std::function<void(Presence)> answer);
    /// Starts the service unless it runs. The answer is why it could not be started; nothing if it
    /// is not one that can be.
    void start(std::function<void(std::optional<std::string>)> answer);
    /// Asks the service itself each time.
    void identify(std::function<void(Answer<NotificationDesktop>)> answer);
    /// A service that cannot say what it can do can do nothing.
    void askAbilities(std::function<void(Answer<NotificationAbilities>)> answer);
    /// Answers with the bubble, or 0 if the service shows it but gives no number.
    void
    notify(const NotifyArguments& arguments, std::function<void(Answer<std::uint32_t>)> answer);

    /// The service tells of the bubbles of all applications, which would wake us for nothing.
    void listenForClosedBubbles();
    void stopListeningForClosedBubbles() { closedBubbles_.reset(); }

private:
    void ownerChanged(bus::Message& message);
    void found();
    void lookForStartable(std::function<void(Presence)> answer);

    bus::Bus& bus_;
    Listener listener_;
    PendingCalls calls_;
    bool wasSeen_ = false;
    bool startFailed_ = false;
    /// How often the owner has changed: what an earlier one answers late says nothing about the
    /// next.
    unsigned int ownerChangeCount_ = 0;
    std::optional<NotificationDesktop> desktop_;
    std::optional<NotificationAbilities> abilities_;
    bus::Slot ownerChanges_;
    bus::Slot closedBubbles_;
};

} // namespace vorla
