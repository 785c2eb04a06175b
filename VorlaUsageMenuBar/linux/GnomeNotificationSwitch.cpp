// SPDX-License-Identifier: MIT
#include "linux/GnomeNotificationSwitch.h"

#include "linux/Folders.h"
#include "linux/SearchPath.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <exception>

namespace vorla {

namespace {

/// The last folder is the application's identifier as GNOME spells it: in lower case, with a hyphen
/// for each dot.
constexpr auto settingsPath = "org.gnome.desktop.notifications.application:"
                              "/org/gnome/desktop/notifications/application/"
                              "com-vorla-usagemenubar/";
/// Replaced at each change of any setting.
constexpr auto settingsFile = "/dconf/user";
constexpr auto toolName = "gsettings";

} // namespace

NotificationSettingsPlaces NotificationSettingsPlaces::ofThisProcess() {
    const char* const path = std::getenv("PATH");
    return {
        .configurationDirectory = vorla::configurationDirectory(),
        .searchPath = path == nullptr ? "" : path};
}

NotificationDelivery gnomeDelivery(std::string_view settings) {
    auto delivery = NotificationDelivery::shown;
    while (!settings.empty()) {
        const auto line = settings.substr(0, settings.find('\n'));
        settings.remove_prefix(std::min(line.size() + 1, settings.size()));
        if (line.ends_with(" enable false")) {
            return NotificationDelivery::off;
        }
        if (line.ends_with(" show-banners false")) {
            delivery = NotificationDelivery::quiet;
        }
    }
    return delivery;
}

FileState FileState::of(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) {
        return {};
    }
    constexpr std::int64_t nanoseconds = 1'000'000'000;
    return {
        .number = status.st_ino,
        .bytes = status.st_size,
        .changedAtNanoseconds = status.st_mtim.tv_sec * nanoseconds + status.st_mtim.tv_nsec};
}

void GnomeNotificationSwitch::look(const Answer& answer) {
    const auto settings = FileState::of(places_.configurationDirectory + settingsFile);
    if (last_ && last_->first == settings) {
        answer(last_->second);
        return;
    }
    const auto path = programIn(places_.searchPath, toolName);
    // One that was killed may take its time to die; a second one would fare no better.
    if (path.empty() || (tool_ && !tool_->hasEnded())) {
        answer(NotificationDelivery::shown);
        return;
    }
    try {
        tool_ = std::make_unique<SettingsTool>(
            loop_, std::vector<std::string>{path, "list-recursively", settingsPath}, toolLimit,
            [this, settings, answer](const SettingsTool::Result& result) {
                finished(settings, result, answer);
            });
        return;
    } catch (const std::exception&) {
        tool_.reset();
    }
    answer(NotificationDelivery::shown);
}

void GnomeNotificationSwitch::finished(
    const FileState& settings, const SettingsTool::Result& result, const Answer& answer) {
    const auto delivery = gnomeDelivery(result.output.value_or(""));
    // A tool that fails does so again until something changes; one that was slow need not. Settings
    // that are kept elsewhere change without a sign.
    if (result.inTime && settings != FileState()) {
        last_.emplace(settings, delivery);
    }
    if (tool_->hasEnded()) {
        tool_.reset();
    }
    answer(delivery);
}

} // namespace vorla
