// SPDX-License-Identifier: MIT
#include "linux/NotificationErrors.h"

#include "model/Text.h"

#include <cstddef>
#include <optional>

namespace vorla {

namespace {

constexpr auto notRunning = "No notification service is running.";
constexpr auto notStarted = "The notification service could not be started.";
constexpr auto noAnswer = "The notification service did not answer.";
constexpr auto noBus = "There is no session bus.";
constexpr auto invalidAnswer = "The notification service gave no valid answer.";
constexpr auto noReason = "The notification service gave no reason.";

constexpr std::string_view busErrors = "org.freedesktop.DBus.Error.";
constexpr std::string_view startErrors = "Spawn.";
/// With the service's start left to systemd, the bus passes on why that failed.
constexpr std::string_view systemdErrors = "org.freedesktop.systemd1.";
/// What one well-known library puts before the text of an error that it passes on.
constexpr std::string_view passedOn = "GDBus.Error:";
constexpr std::size_t maximumCharacters = 200;

/// For errors whose reason is not the service's own.
std::optional<std::string> ownText(std::string_view name) {
    if (name.starts_with(systemdErrors)) {
        return notStarted;
    }
    if (!name.starts_with(busErrors)) {
        return std::nullopt;
    }
    name.remove_prefix(busErrors.size());
    if (name == "ServiceUnknown" || name == "NameHasNoOwner") {
        return notRunning;
    }
    if (name.starts_with(startErrors) || name == "TimedOut") {
        return notStarted;
    }
    if (name == "NoReply" || name == "Timeout") {
        return noAnswer;
    }
    if (name == "Disconnected" || name == "NoServer") {
        return noBus;
    }
    return std::nullopt;
}

std::string_view withoutPassedOnName(std::string_view text) {
    constexpr std::string_view separator = ": ";
    const auto end = text.find(separator, passedOn.size());
    if (!text.starts_with(passedOn) || end == std::string_view::npos) {
        return text;
    }
    return text.substr(end + separator.size());
}

bool isUnreadable(std::string_view name) {
    return name == "org.freedesktop.DBus.Error.InvalidSignature";
}

} // namespace

std::string notificationErrorText(const bus::BusError& error) {
    if (auto text = ownText(error.name)) {
        return *std::move(text);
    }
    // Its text speaks of the types on the wire.
    if (isUnreadable(error.name)) {
        return invalidAnswer;
    }
    const auto text = text::trimmed(withoutPassedOnName(error.text));
    const auto line = text::trimmed(text.substr(0, text.find('\n')));
    return line.empty() ? noReason : text::excerpt(line, maximumCharacters);
}

bool isFromTheService(const bus::BusError& error) {
    return !ownText(error.name).has_value();
}

bool saysThatTheBusIsGone(const bus::BusError& error) {
    return ownText(error.name) == noBus;
}

bool saysThatNothingCanBeStarted(const bus::BusError& error) {
    return ownText(error.name) == notRunning;
}

bool saysThatItIsShownAlready(const bus::BusError& error) {
    return error.name.ends_with(".Error.ExcessNotificationGeneration");
}

} // namespace vorla
