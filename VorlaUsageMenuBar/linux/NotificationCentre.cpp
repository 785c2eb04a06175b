// SPDX-License-Identifier: MIT
#include "linux/NotificationCentre.h"

#include "linux/NotificationText.h"

#include <algorithm>
#include <utility>

namespace vorla {

namespace {

AuthorizationStatus statusOf(NotificationDelivery delivery) {
    switch (delivery) {
    case NotificationDelivery::shown:
        return AuthorizationStatus::authorized;
    case NotificationDelivery::quiet:
        return AuthorizationStatus::provisional;
    case NotificationDelivery::off:
        return AuthorizationStatus::denied;
    }
    return AuthorizationStatus::authorized;
}

} // namespace

DesktopNotificationCentre::DesktopNotificationCentre(
    bus::Bus& bus, MainLoop& loop, const NotificationSettingsPlaces& places,
    std::chrono::milliseconds callLimit)
    : loop_(loop), startedAt_(loop.now()),
      service_(
          bus, loop, callLimit,
          {.ownerChanged = [this](bool runs) { ownerChanged(runs); },
           .bubbleClosed =
               [this](std::uint32_t bubble) {
                   shown_.forget(bubble);
                   bubblesChanged();
               }}),
      switches_(bus, loop, callLimit, places) {}

void DesktopNotificationCentre::getSettings(std::function<void(AuthorizationStatus)> answer) {
    waiting_.push_back(std::move(answer));
    if (waiting_.size() == 1) {
        look();
    }
}

void DesktopNotificationCentre::look() {
    service_.findPresence([this](NotificationService::Presence presence) {
        switch (presence) {
        case NotificationService::Presence::running:
            if (const auto& desktop = service_.desktop()) {
                lookAtSwitches(*desktop);
                return;
            }
            // A service that does not say whose it is has no switches that we could know.
            service_.identify([this](const NotificationService::Answer<NotificationDesktop>& who) {
                lookAtSwitches(who.value.value_or(NotificationDesktop::other));
            });
            return;
        case NotificationService::Presence::startable:
            settle(AuthorizationStatus::authorized);
            return;
        case NotificationService::Presence::missing:
            waitForService();
            return;
        case NotificationService::Presence::busIsGone:
            settle(
                service_.wasSeen() ? AuthorizationStatus::authorized
                                   : AuthorizationStatus::notDetermined);
            return;
        }
    });
}

void DesktopNotificationCentre::lookAtSwitches(NotificationDesktop desktop) {
    switches_.look(desktop, [this](NotificationDelivery delivery) { settle(statusOf(delivery)); });
}

void DesktopNotificationCentre::waitForService() {
    // It is most likely being restarted; a notification that comes too early fails by itself.
    if (service_.wasSeen()) {
        settle(AuthorizationStatus::authorized);
        return;
    }
    const auto left = startedAt_ + graceAfterStart - loop_.now();
    grace_ = loop_.after(std::max<std::chrono::milliseconds>(left, usualGrace), [this] {
        settle(AuthorizationStatus::notDetermined);
    });
}

void DesktopNotificationCentre::settle(AuthorizationStatus status) {
    grace_.reset();
    const std::weak_ptr<bool> alive = alive_;
    for (const auto& answer : std::exchange(waiting_, {})) {
        answer(status);
        if (alive.expired()) {
            return;
        }
    }
}

void DesktopNotificationCentre::requestAuthorization(
    std::function<void(AuthorizationAnswer)> answer) {
    service_.start([this, answer = std::move(answer)](const Failure& failure) {
        if (failure) {
            answer({.granted = false, .error = failure});
            return;
        }
        service_.identify([answer](const NotificationService::Answer<NotificationDesktop>& who) {
            if (who.value) {
                answer({.granted = true});
            } else {
                answer({.granted = false, .error = who.failure});
            }
        });
    });
}

void DesktopNotificationCentre::add(
    const Notification& notification, std::function<void(std::optional<std::string>)> answer) {
    if (const auto& abilities = service_.abilities()) {
        post(notification, *abilities, std::move(answer));
        return;
    }
    service_.start([this, notification, answer = std::move(answer)](const Failure& failure) {
        if (failure) {
            answer(failure);
            return;
        }
        using Abilities = NotificationService::Answer<NotificationAbilities>;
        service_.askAbilities([this, notification, answer](const Abilities& abilities) {
            if (abilities.value) {
                post(notification, *abilities.value, answer);
            } else {
                answer(abilities.failure);
            }
        });
    });
}

void DesktopNotificationCentre::post(
    const Notification& notification, NotificationAbilities abilities,
    std::function<void(Failure)> answer) {
    // Before the notification is posted: it may be closed at once.
    service_.listenForClosedBubbles();
    ++postsUnderWay_;
    const auto format = abilities.bodyMarkup ? BodyFormat::markup : BodyFormat::plain;
    service_.notify(
        {.replacedBubble = shown_.bubbleOf(notification.identifier),
         .title = notificationTitle(notification.title),
         .body = notificationBody(notification.body, format),
         .abilities = abilities},
        [this, identifier = notification.identifier,
         answer = std::move(answer)](const NotificationService::Answer<std::uint32_t>& bubble) {
            --postsUnderWay_;
            if (bubble.value) {
                shown_.remember(identifier, *bubble.value);
            }
            bubblesChanged();
            answer(bubble.value ? std::nullopt : Failure(bubble.failure));
        });
}

void DesktopNotificationCentre::ownerChanged(bool runs) {
    shown_.clear();
    bubblesChanged();
    if (runs && grace_) {
        grace_.reset();
        look();
    }
}

void DesktopNotificationCentre::bubblesChanged() {
    if (shown_.isEmpty() && postsUnderWay_ == 0) {
        service_.stopListeningForClosedBubbles();
    }
}

} // namespace vorla
