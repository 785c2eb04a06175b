// SPDX-License-Identifier: MIT
#pragma once

#include "linux/SettingsTool.h"

#include <sys/types.h>

#include <cstdint>
#include <string_view>
#include <utility>

namespace vorla {

/// What a desktop does with this application's notifications, by the user's settings. Whether it
/// leaves the user alone for a while, with notifications of all kinds, does not matter here.
enum class NotificationDelivery { shown, quiet, off };

/// Where the settings are looked for, as the session's variables say it.
struct NotificationSettingsPlaces {
    /// Absolute, or empty if unknown.
    std::string configurationDirectory;
    /// $PATH.
    std::string searchPath;

    static NotificationSettingsPlaces ofThisProcess();
};

/// What GNOME's tool prints of this application's settings.
NotificationDelivery gnomeDelivery(std::string_view settings);

/// Which state a file is in; another one after each change.
struct FileState {
    ino_t number = 0;
    off_t bytes = 0;
    std::int64_t changedAtNanoseconds = 0;

    /// Of a file that is missing: all zero.
    static FileState of(const std::string& path);

    bool operator==(const FileState&) const = default;
};

/// GNOME's switch for this application. Main thread.
///
/// GNOME's own tool reads it, so that its library need not be in this process; where a file keeps
/// the settings, only when that has changed. Without the tool, or if it fails, notifications are
/// shown.
class GnomeNotificationSwitch final {
public:
    using Answer = std::function<void(NotificationDelivery)>;

    static constexpr std::chrono::seconds toolLimit{2};

    GnomeNotificationSwitch(MainLoop& loop, NotificationSettingsPlaces places)
        : loop_(loop), places_(std::move(places)) {}
    ~GnomeNotificationSwitch() = default;
    GnomeNotificationSwitch(const GnomeNotificationSwitch&) = delete;
    GnomeNotificationSwitch& operator=(const GnomeNotificationSwitch&) = delete;

    /// The answer comes once, perhaps from inside this call, and not once this has been destroyed.
    /// One question at a time.
    void look(const Answer& answer);

private:
    void
    finished(const FileState& settings, const SettingsTool::Result& result, const Answer& answer);

    MainLoop& loop_;
    NotificationSettingsPlaces places_;
    /// What the settings said when their file was in this state.
    std::optional<std::pair<FileState, NotificationDelivery>> last_;
    std::unique_ptr<SettingsTool> tool_;
};

} // namespace vorla
