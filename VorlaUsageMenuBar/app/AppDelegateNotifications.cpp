// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <ranges>
#include <utility>
#include <vector>

namespace vorla {

namespace {

constexpr auto deniedText = "Notifications denied. Enable them in System Settings.";
constexpr auto unavailableText = "Notifications unavailable.";
constexpr auto unavailablePrefix = "Notifications unavailable: ";
constexpr auto unavailableOnThisVersionText = "Notifications unavailable on this macOS version.";
constexpr auto failedPrefix = "Notification failed: ";
constexpr std::size_t rememberedKeys = 64;
/// Each costs calls on the bus and a list to be stored; nobody has so much to tell. Further ones
/// have their turn at the next refresh.
constexpr std::size_t eventsAtOnce = 256;
/// So the preferences can hold all remembered keys, even if each byte of them is written as six.
constexpr std::size_t longestKeyBytes = 1024;

bool mayPost(AuthorizationStatus status) {
    return status == AuthorizationStatus::authorized || status == AuthorizationStatus::provisional;
}

} // namespace

void AppDelegate::toggleQuotaNotifications() {
    if (platform_.preferences.boolean(notificationsEnabledKey)) {
        disableNotifications(std::nullopt);
        return;
    }
    platform_.notificationCentre.getSettings(
        whileAlive([this](AuthorizationStatus status) { decideOnNotifications(status); }));
}

void AppDelegate::decideOnNotifications(AuthorizationStatus status) {
    if (mayPost(status)) {
        enableNotifications();
    } else if (status == AuthorizationStatus::notDetermined) {
        platform_.notificationCentre.requestAuthorization(
            whileAlive([this](const AuthorizationAnswer& answer) {
                if (answer.granted) {
                    enableNotifications();
                } else {
                    disableNotifications(
                        answer.error ? unavailablePrefix + *answer.error : deniedText);
                }
            }));
    } else {
        disableNotifications(
            status == AuthorizationStatus::denied ? deniedText : unavailableOnThisVersionText);
    }
}

void AppDelegate::enableNotifications() {
    platform_.preferences.setBoolean(notificationsEnabledKey, true);
    state_.notificationError.reset();
    if (state_.usage) {
        evaluateNotifications(*state_.usage);
    }
    rebuildMenu();
}

void AppDelegate::disableNotifications(std::optional<std::string> error) {
    platform_.preferences.setBoolean(notificationsEnabledKey, false);
    state_.notificationError = std::move(error);
    rebuildMenu();
}

std::vector<Usage::NotificationEvent> AppDelegate::newEvents(const Usage& usage) const {
    std::vector<Usage::NotificationEvent> events;
    if (usage.notificationEvents) {
        const auto posted = platform_.preferences.strings(notifiedEventsKey);
        const auto isNew = [&](const auto& event) {
            return event.key.size() <= longestKeyBytes &&
                   std::ranges::find(posted, event.key) == posted.end();
        };
        std::ranges::copy(
            *usage.notificationEvents | std::views::filter(isNew) | std::views::take(eventsAtOnce),
            std::back_inserter(events));
    }
    return events;
}

void AppDelegate::evaluateNotifications(const Usage& usage) {
    if (!platform_.preferences.boolean(notificationsEnabledKey)) {
        return;
    }
    platform_.notificationCentre.getSettings(
        whileAlive([this, events = newEvents(usage)](AuthorizationStatus status) {
            // A desktop that is going away, as at logout, would turn the switch off for good.
            if (quitting_) {
                return;
            }
            if (mayPost(status)) {
                postNotifications(events);
            } else {
                disableNotifications(
                    status == AuthorizationStatus::denied ? deniedText : unavailableText);
            }
        }));
}

void AppDelegate::postNotifications(const std::vector<Usage::NotificationEvent>& events) {
    // The user may have switched them off while the desktop was thinking.
    if (!platform_.preferences.boolean(notificationsEnabledKey)) {
        return;
    }
    const auto posted = platform_.preferences.strings(notifiedEventsKey);
    for (const auto& event : events) {
        if (std::ranges::find(posted, event.key) != posted.end() ||
            !pendingNotificationKeys_.insert(event.key).second) {
            continue;
        }
        try {
            platform_.notificationCentre.add(
                {.identifier = event.key, .title = event.title, .body = event.body},
                whileAlive([this, key = event.key](const std::optional<std::string>& error) {
                    notificationAnswered(key, error);
                }));
        } catch (...) {
            // Nobody will answer for it; the next refresh offers it again.
            pendingNotificationKeys_.erase(event.key);
            throw;
        }
    }
}

void AppDelegate::notificationAnswered(
    const std::string& key, const std::optional<std::string>& error) {
    pendingNotificationKeys_.erase(key);
    if (error) {
        state_.notificationError = failedPrefix + *error;
    } else {
        auto keys = platform_.preferences.strings(notifiedEventsKey);
        if (std::ranges::find(keys, key) == keys.end()) {
            keys.push_back(key);
        }
        if (keys.size() > rememberedKeys) {
            keys.erase(keys.begin(), keys.end() - rememberedKeys);
        }
        platform_.preferences.setStrings(notifiedEventsKey, keys);
        state_.notificationError.reset();
    }
    rebuildMenu();
}

} // namespace vorla
