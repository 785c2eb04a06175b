// SPDX-License-Identifier: MIT
#include "linux/NotificationService.h"

#include "linux/NotificationErrors.h"

#include <string_view>
#include <system_error>
#include <utility>

namespace vorla {

namespace {

constexpr const char* serviceName = "org.freedesktop.Notifications";
constexpr const char* servicePath = "/org/freedesktop/Notifications";
constexpr const char* busName = "org.freedesktop.DBus";
constexpr const char* busPath = "/org/freedesktop/DBus";

constexpr const char* displayName = "VorlaUsageMenuBar";
/// Of the icon and of the desktop entry.
constexpr const char* applicationId = "com.vorla.UsageMenuBar";
constexpr const char* soundName = "message-new-instant";
constexpr std::uint8_t normalUrgency = 1;
/// The service decides how long a bubble stays.
constexpr std::int32_t usualExpiry = -1;

/// Whether the list of names that came in holds that of the service.
struct ListsService {
    bool found = false;
};

/// The number of a bubble. A service that answered anything else has shown the notification all the
/// same; posting it again and again would be worse than having no number.
struct BubbleNumber {
    std::uint32_t number = 0;
};

NotificationDesktop desktopOf(std::string_view serverName) {
    if (serverName == "gnome-shell") {
        return NotificationDesktop::gnome;
    }
    if (serverName == "Plasma") {
        return NotificationDesktop::plasma;
    }
    if (serverName == "Xfce Notify Daemon") {
        return NotificationDesktop::xfce;
    }
    return NotificationDesktop::other;
}

bus::MethodName ofService(std::string member) {
    return {serviceName, servicePath, serviceName, std::move(member)};
}

bus::MethodName ofBus(std::string member) {
    return {busName, busPath, busName, std::move(member)};
}

} // namespace

namespace bus {

namespace {

/// Reads a list of texts of any length without keeping it.
template <typename Work>
void readTexts(Message& message, const Work& work) {
    message.enterContainer('a', "s");
    while (!message.atEnd()) {
        work(message.read<std::string>());
    }
    message.exitContainer();
}

} // namespace

template <>
struct Codec<ListsService> {
    static ListsService read(Message& message) {
        ListsService names;
        readTexts(message, [&](const std::string& name) {
            names.found = names.found || name == serviceName;
        });
        return names;
    }
};

template <>
struct Codec<NotificationAbilities> {
    static NotificationAbilities read(Message& message) {
        NotificationAbilities abilities;
        readTexts(message, [&](const std::string& name) {
            abilities.actions = abilities.actions || name == "actions";
            abilities.bodyMarkup = abilities.bodyMarkup || name == "body-markup";
            abilities.sound = abilities.sound || name == "sound";
        });
        return abilities;
    }
};

template <>
struct Codec<BubbleNumber> {
    static BubbleNumber read(Message& message) {
        try {
            return {message.read<std::uint32_t>()};
        } catch (const std::system_error&) {
            return {};
        }
    }
};

} // namespace bus

NotificationService::NotificationService(
    bus::Bus& bus, MainLoop& loop, std::chrono::milliseconds limit, Listener listener)
    : bus_(bus), listener_(std::move(listener)), calls_(bus, loop, limit) {
    const bus::SignalRule rule = {
        .sender = busName,
        .path = busPath,
        .interface = busName,
        .member = "NameOwnerChanged",
        .firstArgument = serviceName};
    ownerChanges_ = bus.subscribe(rule, [this](bus::Message& message) { ownerChanged(message); });
}

void NotificationService::ownerChanged(bus::Message& message) {
    message.read<std::string>();
    message.read<std::string>();
    const bool runs = !message.read<std::string>().empty();
    ++ownerChangeCount_;
    desktop_.reset();
    abilities_.reset();
    if (runs) {
        found();
    }
    listener_.ownerChanged(runs);
}

void NotificationService::found() {
    wasSeen_ = true;
    startFailed_ = false;
}

void NotificationService::findPresence(std::function<void(Presence)> answer) {
    calls_.call(
        ofBus("NameHasOwner"),
        [this, answer = std::move(answer)](const bus::Reply<bool>& reply) {
            if (reply.results && std::get<0>(*reply.results)) {
                found();
                answer(Presence::running);
            } else if (saysThatTheBusIsGone(reply.error)) {
                answer(Presence::busIsGone);
            } else {
                lookForStartable(answer);
            }
        },
        std::string(serviceName));
}

void NotificationService::lookForStartable(std::function<void(Presence)> answer) {
    calls_.call(
        ofBus("ListActivatableNames"),
        [this, answer = std::move(answer)](const bus::Reply<ListsService>& reply) {
            if (saysThatTheBusIsGone(reply.error)) {
                answer(Presence::busIsGone);
                return;
            }
            const bool isListed = reply.results && std::get<0>(*reply.results).found;
            answer(isListed && !startFailed_ ? Presence::startable : Presence::missing);
        });
}

void NotificationService::start(std::function<void(std::optional<std::string>)> answer) {
    constexpr std::uint32_t noFlags = 0;
    calls_.call(
        ofBus("StartServiceByName"),
        [this, answer = std::move(answer)](const bus::Reply<std::uint32_t>& reply) {
            if (reply.results) {
                found();
            } else if (!saysThatNothingCanBeStarted(reply.error)) {
                startFailed_ = true;
                answer(notificationErrorText(reply.error));
                return;
            }
            // What cannot be started may run all the same; the next call will tell.
            answer(std::nullopt);
        },
        std::string(serviceName), noFlags);
}

void NotificationService::identify(std::function<void(Answer<NotificationDesktop>)> answer) {
    calls_.call(
        ofService("GetServerInformation"),
        // Vendor and versions follow; nobody needs them, and older services give fewer of them.
        [this, asked = ownerChangeCount_,
         answer = std::move(answer)](const bus::Reply<std::string>& reply) {
            if (!reply.results) {
                answer({std::nullopt, notificationErrorText(reply.error)});
                return;
            }
            const auto desktop = desktopOf(std::get<0>(*reply.results));
            if (asked == ownerChangeCount_) {
                desktop_ = desktop;
            }
            answer({desktop, ""});
        });
}

void NotificationService::askAbilities(std::function<void(Answer<NotificationAbilities>)> answer) {
    calls_.call(
        ofService("GetCapabilities"), [this, asked = ownerChangeCount_, answer = std::move(answer)](
                                          const bus::Reply<NotificationAbilities>& reply) {
            if (!reply.results && !isFromTheService(reply.error)) {
                answer({std::nullopt, notificationErrorText(reply.error)});
                return;
            }
            const auto abilities =
                reply.results ? std::get<0>(*reply.results) : NotificationAbilities{};
            if (asked == ownerChangeCount_) {
                abilities_ = abilities;
            }
            answer({abilities, ""});
        });
}

void NotificationService::notify(
    const NotifyArguments& arguments, std::function<void(Answer<std::uint32_t>)> answer) {
    const auto& [replacedBubble, title, body, abilities] = arguments;
    // Without an action of ours some desktops start the application when the bubble is clicked.
    const auto actions =
        abilities.actions ? std::vector<std::string>{"default", ""} : std::vector<std::string>{};
    bus::Dictionary hints = {
        {"desktop-entry", std::string(applicationId)}, {"urgency", normalUrgency}};
    if (abilities.sound) {
        hints.emplace("sound-name", std::string(soundName));
    }
    calls_.call(
        ofService("Notify"),
        [this, asked = ownerChangeCount_,
         answer = std::move(answer)](const bus::Reply<BubbleNumber>& reply) {
            if (reply.results) {
                const auto bubble = std::get<0>(*reply.results).number;
                answer({asked == ownerChangeCount_ ? bubble : 0, ""});
            } else if (saysThatItIsShownAlready(reply.error)) {
                answer({0, ""});
            } else {
                answer({std::nullopt, notificationErrorText(reply.error)});
            }
        },
        std::string(displayName), replacedBubble, std::string(applicationId), title, body, actions,
        hints, usualExpiry);
}

void NotificationService::listenForClosedBubbles() {
    if (closedBubbles_) {
        return;
    }
    const bus::SignalRule rule = {
        .sender = serviceName,
        .path = servicePath,
        .interface = serviceName,
        .member = "NotificationClosed"};
    try {
        closedBubbles_ = bus_.subscribe(rule, [this](bus::Message& message) {
            listener_.bubbleClosed(message.read<std::uint32_t>());
        });
    } catch (const std::system_error&) {
        // The bus is gone, and with it the bubbles.
        closedBubbles_.reset();
    }
}

} // namespace vorla
