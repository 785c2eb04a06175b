// SPDX-License-Identifier: MIT
#include "model/UsageLines.h"

#include "model/LocalDate.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <span>
#include <string_view>
#include <utility>

namespace vorla {

namespace {

using Lines = std::vector<MenuLine>;
using KeyedText = std::pair<std::string_view, std::string_view>;

constexpr std::string_view unknownPlan = "Vorla account";

constexpr std::array<KeyedText, 8> planLabels = {{
    {"free", "Parlo Free"},
    {"go", "Parlo Go"},
    {"plus", "Parlo Plus"},
    {"pro", "Parlo Pro"},
    {"business", "Business"},
    {"team", "Team"},
    {"enterprise", "Enterprise"},
    {"edu", "Education"},
}};

constexpr std::array<KeyedText, 5> rateLimitTexts = {{
    {"rate_limit_reached", "Usage limit reached"},
    {"workspace_owner_credits_depleted", "Workspace credits depleted"},
    {"workspace_member_credits_depleted", "Workspace member credits depleted"},
    {"workspace_owner_usage_limit_reached", "Workspace usage limit reached"},
    {"workspace_member_usage_limit_reached", "Workspace member usage limit reached"},
}};

/// A window of the account that has lines of its own.
struct MainWindow {
    std::int64_t durationMins;
    std::string_view label;
    LineRole remaining;
    LineRole reset;
    LineRole pace;
};

constexpr std::array<MainWindow, 2> mainWindows = {{
    {fiveHourMinutes, "5-hour", LineRole::fiveHourRemaining, LineRole::fiveHourReset,
     LineRole::fiveHourPace},
    {weeklyMinutes, "Weekly", LineRole::weeklyRemaining, LineRole::weeklyReset,
     LineRole::weeklyPace},
}};

void addInformation(Lines& lines, LineIdentity identity, std::string title) {
    lines.push_back({.identity = identity, .title = std::move(title)});
}

std::optional<std::string_view> lookUp(std::span<const KeyedText> table, std::string_view key) {
    const auto found = std::ranges::find(table, key, &KeyedText::first);
    return found == table.end() ? std::nullopt : std::optional(found->second);
}

/// One decimal below ten, none from there on. Which of the two is decided before rounding, so that
/// 9.96 reads "10.0".
std::string shortDecimal(double value) {
    // The largest double has 309 digits.
    std::array<char, 320> digits = {};
    const auto [end, error] = std::to_chars(
        digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed,
        value < 10 ? 1 : 0);
    static_cast<void>(error);
    return {digits.data(), end};
}

std::string fiveHourReset(double resetsAt, double now) {
    const auto minutes = static_cast<std::int64_t>((resetsAt - now) / 60);
    if (minutes < 1) {
        return "Reset due now";
    }
    return "Resets in " + std::to_string(minutes / 60) + "h " + std::to_string(minutes % 60) + "m";
}

/// Adds the pace lines of one main window, and says whether they hold an estimate.
bool addPace(Lines& lines, const MainWindow& mainWindow, const PaceEstimates& estimates) {
    std::string title(mainWindow.label);
    const auto found = estimates.find(mainWindow.durationMins);
    if (found == estimates.end() || !found->second.percentPerHour ||
        !found->second.secondsToExhaustion) {
        addInformation(lines, {mainWindow.pace}, title.append(" runway: collecting session data"));
        return false;
    }
    const PaceEstimate& estimate = found->second;
    title.append(" pace: ")
        .append(shortDecimal(*estimate.percentPerHour))
        .append("%/hr · ~")
        .append(runwayDuration(*estimate.secondsToExhaustion));
    addInformation(lines, {mainWindow.pace}, std::move(title));
    if (mainWindow.durationMins == weeklyMinutes && estimate.survivesUntilReset) {
        addInformation(
            lines, {LineRole::weeklySurvival},
            *estimate.survivesUntilReset ? "Weekly pace: on pace for reset"
                                         : "Weekly pace: likely exhausted before reset");
    }
    return true;
}

void addMainWindows(Lines& lines, const Usage& usage, const PaceEstimates& pace, double now) {
    bool hasEstimate = false;
    for (const MainWindow& mainWindow : mainWindows) {
        const Usage::Window* window = usage.window(mainWindow.durationMins);
        if (window == nullptr) {
            continue;
        }
        addInformation(
            lines, {mainWindow.remaining},
            std::string(mainWindow.label) + ": " + std::to_string(window->remainingPercent) +
                "% remaining");
        addInformation(
            lines, {mainWindow.reset},
            mainWindow.durationMins == fiveHourMinutes ? fiveHourReset(window->resetsAt, now)
                                                       : "Resets " + dayAndTime(window->resetsAt));
        hasEstimate = addPace(lines, mainWindow, pace) || hasEstimate;
    }
    if (hasEstimate) {
        addInformation(lines, {LineRole::paceNote}, "Session-rate estimate; not a prediction");
    }
}

std::string budgetAmount(double percent) {
    return percent < 0.1 ? "<0.1" : shortDecimal(percent);
}

std::string budgetText(const Usage::Budget& budget) {
    constexpr double secondsPerHour = 3600;
    constexpr double secondsPerDay = 86400;
    std::string text = "Budget to reset: ";
    if (budget.secondsToReset < secondsPerHour) {
        return text + std::to_string(budget.remainingPercent) + "% over remaining hour";
    }
    if (budget.secondsToReset < secondsPerDay) {
        return text + "~" + budgetAmount(budget.percentPerHour) + "% / hour";
    }
    return text + "~" + budgetAmount(budget.percentPerDay) + "% / day";
}

std::string bucketWindowText(const Usage::Window& window, double now) {
    const auto* const main =
        std::ranges::find(mainWindows, window.windowDurationMins, &MainWindow::durationMins);
    std::string text = main != mainWindows.end()
                           ? std::string(main->label)
                           : std::to_string(window.windowDurationMins) + "-minute";
    text.append(": ").append(std::to_string(window.remainingPercent)).append("% · ");
    const double secondsToReset = std::max(window.resetsAt - now, 0.0);
    if (secondsToReset == 0) {
        return text.append("resetting now");
    }
    return text.append("resets in ").append(runwayDuration(secondsToReset));
}

void addBucketWindows(
    Lines& lines, std::size_t bucketPlace, const std::vector<Usage::Window>& windows, double now) {
    std::vector<const Usage::Window*> sorted;
    sorted.reserve(windows.size());
    for (const Usage::Window& window : windows) {
        sorted.push_back(&window);
    }
    // The places of windows in one vector break the ties, so that equal durations keep their order.
    std::ranges::sort(sorted, {}, [](const Usage::Window* window) {
        return std::pair(window->windowDurationMins, window);
    });
    for (std::size_t place = 0; place < sorted.size(); ++place) {
        addInformation(
            lines, {LineRole::bucketWindow, bucketPlace, place},
            bucketWindowText(*sorted[place], now));
    }
}

void addLimitBuckets(Lines& lines, const std::vector<Usage::LimitBucket>& buckets, double now) {
    std::size_t place = 0;
    for (const Usage::LimitBucket& bucket : buckets) {
        if (bucket.isDefault) {
            continue;
        }
        if (place == 0) {
            addInformation(lines, {LineRole::additionalLimits}, "Additional Vorla limits");
        }
        addInformation(lines, {LineRole::bucket, place}, bucket.label);
        addBucketWindows(lines, place, bucket.windows, now);
        ++place;
    }
}

/// When the first of the available credits expires, as far as that can be shown.
std::optional<double> firstExpiry(const std::vector<Usage::Credits::Credit>& credits) {
    std::optional<double> first;
    for (const Usage::Credits::Credit& credit : credits) {
        const bool isShown = credit.status == "available" && credit.expiresAt &&
                             std::abs(*credit.expiresAt) < yearTenThousand;
        if (isShown && (!first || *credit.expiresAt < *first)) {
            first = credit.expiresAt;
        }
    }
    return first;
}

void addBankedResets(Lines& lines, const Usage::Credits& credits) {
    addInformation(
        lines, {LineRole::bankedResets},
        "Banked resets: " + std::to_string(credits.availableCount));
    if (credits.availableCount < 1 || !credits.credits) {
        return;
    }
    if (const auto expiry = firstExpiry(*credits.credits)) {
        addInformation(lines, {LineRole::bankedResetsExpiry}, "Expires " + day(*expiry));
    }
}

} // namespace

void addUsageLines(
    std::vector<MenuLine>& lines, const Usage& usage, const PaceEstimates& pace, double now) {
    if (usage.planType) {
        const auto label = lookUp(planLabels, *usage.planType);
        addInformation(lines, {LineRole::plan}, std::string(label.value_or(unknownPlan)));
    }
    addMainWindows(lines, usage, pace, now);
    if (usage.weeklyBudget) {
        addInformation(lines, {LineRole::weeklyBudget}, budgetText(*usage.weeklyBudget));
    }
    if (usage.pressureCheck) {
        addInformation(
            lines, {LineRole::pressure}, "Pressure Check · " + usage.pressureCheck->summary());
    }
    if (usage.limitBuckets) {
        addLimitBuckets(lines, *usage.limitBuckets, now);
    }
    if (usage.resetCredits) {
        addBankedResets(lines, *usage.resetCredits);
    }
    if (usage.rateLimitReachedType) {
        if (const auto text = lookUp(rateLimitTexts, *usage.rateLimitReachedType)) {
            addInformation(lines, {LineRole::rateLimitReached}, std::string(*text));
        }
    }
    if (usage.spendControlReached == true) {
        addInformation(lines, {LineRole::spendControlReached}, "Spend-control limit reached");
    }
}

} // namespace vorla
