// SPDX-License-Identifier: MIT
#pragma once

#include "model/SessionPaceTracker.h"
#include "model/Usage.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace vorla {

enum class LoginItemStatus { notRegistered = 0, enabled = 1, requiresApproval = 2, notFound = 3 };

enum class MenuAction {
    none,
    refresh,
    openDashboard,
    openFennic,
    toggleLaunchAtLogin,
    toggleQuotaNotifications,
    copyDiagnosticSnapshot,
    quit,
};

/// What a line is about, in the order in which lines stand in the menu.
enum class LineRole {
    error,
    plan,
    fiveHourRemaining,
    fiveHourReset,
    fiveHourPace,
    weeklyRemaining,
    weeklyReset,
    weeklyPace,
    weeklySurvival,
    paceNote,
    weeklyBudget,
    pressure,
    additionalLimits,
    /// A bucket's label, followed by its windows; the only roles that repeat.
    bucket,
    bucketWindow,
    bankedResets,
    bankedResetsExpiry,
    rateLimitReached,
    spendControlReached,
    dashboardError,
    diagnosticStatus,
    notificationError,
    loginItemApproval,
    loginItemError,
    fennicError,
    separator,
    refresh,
    openDashboard,
    openFennic,
    launchAtLogin,
    quotaNotifications,
    copyDiagnosticSnapshot,
    quit,
};

/// Which line this is, whatever it says at the moment. Identities of one menu are unique, and
/// ordered as the lines are.
struct LineIdentity {
    LineRole role = LineRole::error;
    /// The place of the bucket among those shown, from 0; only for `bucket` and `bucketWindow`.
    std::size_t bucket = 0;
    /// The place of the window in its bucket, from 0; only for `bucketWindow`.
    std::size_t window = 0;

    bool operator==(const LineIdentity&) const = default;
};

/// Whether `left` stands above `right` in a menu.
bool standsAbove(const LineIdentity& left, const LineIdentity& right);

struct MenuLine {
    LineIdentity identity;
    std::string title;
    bool enabled = false;
    /// Absent for a line that has no check mark at all.
    std::optional<bool> checked = std::nullopt;
    /// The key that chooses the line, together with the platform's command modifier; or empty.
    std::string keyEquivalent = {};
    MenuAction action = MenuAction::none;

    bool operator==(const MenuLine&) const = default;
};

/// Everything that the status item shows, as a value.
struct StatusMenu {
    std::string title;
    /// The remaining percentages in the title, in its order, for an icon that holds only figures.
    std::vector<std::int64_t> figures;
    std::vector<MenuLine> lines;

    bool operator==(const StatusMenu&) const = default;
};

/// What the menu is made of: the owner's state, as a plain value.
struct MenuState {
    std::optional<Usage> usage;
    std::optional<std::string> error;
    PaceEstimates pace;
    bool refreshing = false;
    bool copyingDiagnostic = false;
    std::optional<std::string> dashboardError;
    std::optional<std::string> diagnosticStatus;
    std::optional<std::string> notificationError;
    std::optional<std::string> loginItemError;
    std::optional<std::string> fennicError;
    LoginItemStatus loginItemStatus = LoginItemStatus::notRegistered;
    bool quotaNotificationsEnabled = false;
};

/// Computes title and menu. `now` is in seconds since the Unix epoch; dates are in the local time
/// zone. Precondition: state.usage comes from Usage::decode(), textsCanHold(state.usage,
/// state.pace), and `now` is not before the epoch.
StatusMenu composeMenu(const MenuState& state, double now);

/// Whether every number that the menu would make a text of fits that text, whatever the clock will
/// say. The companion may print any number; one that does not fit makes its snapshot invalid.
bool textsCanHold(const Usage& usage, const PaceEstimates& pace);

/// Seconds as "exhausted", "2d 3h", "3h 5m" or "45m". Precondition: the minutes fit 64 bits.
std::string runwayDuration(double seconds);

} // namespace vorla
