// SPDX-License-Identifier: MIT
// From the companion's output to what panels see: whatever the companion prints, nothing breaks.
#include "MenuChecks.h"
#include "Require.h"
#include "Utf8.h"

#include "model/Json.h"
#include "model/SessionPaceTracker.h"
#include "model/StatusMenu.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>

namespace {

using namespace vorla;
using fuzz::require;

std::optional<Usage> decoded(std::string_view bytes) {
    try {
        return Usage::decode(bytes);
    } catch (const DecodeError&) {
        return std::nullopt;
    }
}

void checkText(std::string_view text) {
    require(fuzz::isWellFormed(text), "a decoded text is well-formed");
}

void checkOptionalText(const std::optional<std::string>& text) {
    checkText(text.value_or(""));
}

bool isPercentage(std::int64_t points) {
    return points >= 0 && points <= 100;
}

void checkWindows(const Usage& usage) {
    require(usage.schemaVersion == 1, "there is one schema");
    require(std::isfinite(usage.fetchedAt), "a time is finite");
    require(!usage.windows.empty(), "there is a window");
    for (const Usage::Window& window : usage.windows) {
        checkText(window.name);
        require(isPercentage(window.usedPercent), "a used share is a percentage");
        require(isPercentage(window.remainingPercent), "a remaining share is a percentage");
        require(window.windowDurationMins >= 1, "a window has a length");
        require(std::abs(window.resetsAt) < yearTenThousand, "a reset has a date");
        require(usage.window(window.windowDurationMins) != nullptr, "a window is found");
    }
}

void checkTexts(const Usage& usage) {
    checkOptionalText(usage.planType);
    checkOptionalText(usage.rateLimitReachedType);
    if (usage.limitBuckets) {
        for (const Usage::LimitBucket& bucket : *usage.limitBuckets) {
            checkText(bucket.id);
            checkText(bucket.label);
        }
    }
    if (usage.notificationEvents) {
        for (const Usage::NotificationEvent& event : *usage.notificationEvents) {
            checkText(event.key);
            checkText(event.title);
            checkText(event.body);
        }
    }
    if (usage.pressureCheck && usage.pressureCheck->hasPrintableDistance()) {
        const std::string summary = usage.pressureCheck->summary();
        checkText(summary);
        require(summary.ends_with('.'), "a summary is made of sentences");
    }
}

void checkEstimates(const PaceEstimates& pace, const Usage& usage) {
    for (const auto& [durationMins, estimate] : pace) {
        require(usage.window(durationMins) != nullptr, "an estimate belongs to a window");
        require(
            estimate.percentPerHour.has_value() == estimate.secondsToExhaustion.has_value(),
            "an estimate is whole");
        // Both would fail for what is not a number.
        require(estimate.percentPerHour.value_or(0) >= 0, "a rate is not negative");
        require(estimate.secondsToExhaustion.value_or(0) >= 0, "a runway is not negative");
        require(
            !estimate.survivesUntilReset ||
                (durationMins == weeklyMinutes && estimate.percentPerHour),
            "only the weekly window survives");
    }
}

void checkObservations(const SessionPaceTracker& tracker, const Usage& usage) {
    for (const Usage::Window& window : usage.windows) {
        require(tracker.observations().contains(window.name), "every window is observed");
    }
    for (const auto& [name, observation] : tracker.observations()) {
        require(
            std::ranges::find(usage.windows, name, &Usage::Window::name) != usage.windows.end(),
            "only windows are observed");
        require(isPercentage(observation.remainingPercent), "a period begins with a percentage");
        require(observation.sampleCount >= 1, "samples are counted");
        require(observation.startedAt <= observation.lastFetchedAt, "a period has a direction");
    }
}

bool hasUniqueNames(const Usage& usage) {
    std::set<std::string_view> names;
    return std::ranges::all_of(usage.windows, [&](const Usage::Window& window) {
        return names.insert(window.name).second;
    });
}

PaceEstimates observe(SessionPaceTracker& tracker, const Usage& usage) {
    PaceEstimates pace = tracker.observe(usage);
    checkEstimates(pace, usage);
    checkObservations(tracker, usage);
    return pace;
}

/// The same account a while later.
Usage later(const Usage& usage, int minutes) {
    Usage shifted = usage;
    shifted.fetchedAt += minutes * 60.0;
    for (Usage::Window& window : shifted.windows) {
        window.remainingPercent =
            std::clamp<std::int64_t>(window.remainingPercent - minutes, 0, 100);
    }
    return shifted;
}

/// Estimates after four samples, the last of which is seen twice.
PaceEstimates observedPace(const Usage& usage) {
    SessionPaceTracker tracker;
    for (const int minutes : {0, 1, 2}) {
        observe(tracker, later(usage, minutes));
    }
    const Usage last = later(usage, 4);
    const PaceEstimates pace = observe(tracker, last);
    if (hasUniqueNames(usage)) {
        const auto before = tracker.observations();
        require(observe(tracker, last) == pace, "a snapshot says the same when seen again");
        require(tracker.observations() == before, "a snapshot counts once");
    }
    // Back in time: every period begins again.
    for (const auto& [durationMins, estimate] : observe(tracker, later(usage, -1))) {
        require(
            usage.fetchedAt - 60 == usage.fetchedAt || !estimate.percentPerHour ||
                !hasUniqueNames(usage),
            "a clock that was set back begins a new period");
    }
    return pace;
}

StatusMenu composed(const MenuState& state, double now) {
    StatusMenu menu = composeMenu(state, now);
    fuzz::checkMenu(menu);
    return menu;
}

void checkMenus(const Usage& usage, const PaceEstimates& pace) {
    MenuState state;
    state.usage = usage;
    state.pace = pace;
    const StatusMenu atEpoch = composed(state, 0);
    require(atEpoch.title == usage.title(), "the menu bears the snapshot's title");
    require(composeMenu(state, 0) == atEpoch, "a menu depends on its state and the time alone");
    fuzz::Panel panel;
    panel.showInNewLayout(atEpoch);
    const double now = std::clamp(usage.fetchedAt, 0.0, yearTenThousand);
    state.pace.clear();
    state.dashboardError = usage.planType;
    panel.show(composed(state, now));
    state.usage.reset();
    state.error = usage.windows.front().name;
    state.loginItemStatus = LoginItemStatus::requiresApproval;
    panel.showInNewLayout(composed(state, now));
    state.usage = usage;
    panel.show(composed(state, yearTenThousand));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // A zone with daylight saving time, in a form that asks for no file.
    return setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto usage = decoded(bytes);
    if (!usage) {
        return 0;
    }
    require(decoded(bytes) == usage, "a document is decoded the same way twice");
    checkWindows(*usage);
    checkTexts(*usage);
    checkText(usage->title());
    const PaceEstimates pace = observedPace(*usage);
    if (textsCanHold(*usage, pace)) {
        checkMenus(*usage, pace);
    }
    return 0;
}
