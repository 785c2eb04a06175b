// SPDX-License-Identifier: MIT
#include "model/Usage.h"

#include "model/Text.h"

#include <cmath>
#include <cstdlib>

namespace vorla {

namespace {

struct TitleWindow {
    std::int64_t durationMins;
    std::string_view label;
};

constexpr TitleWindow titleWindows[] = {{fiveHourMinutes, "5h"}, {weeklyMinutes, "W"}};
constexpr std::string_view titleSeparator = " \u00B7 ";

constexpr std::string_view pressureUnavailable = "Pressure data unavailable.";

/// 2^63, the first whole number that a signed 64-bit integer cannot hold.
constexpr double integerRange = 0x1p63;

/// The whole points away from even pace, halves away from zero.
double wholePoints(double deltaPoints) {
    return std::round(std::abs(deltaPoints));
}

/// "points" is never made singular, and zero points are said like any other number.
///
/// Precondition, whatever the classification: the distance fits a 64-bit integer.
std::string paceStatement(std::string_view classification, double deltaPoints) {
    const double points = wholePoints(deltaPoints);
    if (!(points < integerRange)) {
        std::abort();
    }
    const std::string number = std::to_string(static_cast<std::int64_t>(points));
    if (classification == "behind") {
        return number + " points behind even pace";
    }
    if (classification == "ahead") {
        return number + " points ahead of even pace";
    }
    return "on track with even pace";
}

std::string secondarySubject(const Usage::PressureCheck::Secondary& secondary) {
    if (secondary.bucketIsDefault) {
        return text::withFirstCharacterUppercased(secondary.windowLabel);
    }
    return secondary.bucketLabel + " " + secondary.windowLabel;
}

std::string blockedSummary(const Usage::PressureCheck& check) {
    std::string subject = check.windowLabel.value_or("usage");
    if (!check.bucketIsDefault.value_or(true)) {
        subject = check.bucketLabel.value_or("") + " " + subject;
    }
    std::string summary = "Blocked now: " + subject + " limit.";
    if (check.secondary) {
        const std::string pace =
            paceStatement(check.secondary->classification, check.secondary->deltaPoints);
        summary += " " + secondarySubject(*check.secondary) + " is " + pace + ".";
    }
    return summary;
}

/// The distance that summary() makes a text of, if it uses any.
std::optional<double> usedDistance(const Usage::PressureCheck& check) {
    if (check.blocked) {
        return check.secondary ? std::optional(check.secondary->deltaPoints) : std::nullopt;
    }
    const bool isComplete = check.bucketLabel && check.windowLabel && check.classification;
    return isComplete ? check.deltaPoints : std::nullopt;
}

} // namespace

std::vector<Usage::TitlePart> Usage::titleParts() const {
    std::vector<TitlePart> parts;
    for (const TitleWindow& titleWindow : titleWindows) {
        if (const Window* const shown = window(titleWindow.durationMins)) {
            parts.push_back({titleWindow.label, shown->remainingPercent});
        }
    }
    return parts;
}

std::string Usage::title() const {
    std::string title;
    for (const TitlePart& part : titleParts()) {
        if (!title.empty()) {
            title += titleSeparator;
        }
        title.append(part.label).append(" ").append(std::to_string(part.remainingPercent));
        title += '%';
    }
    return title.empty() ? std::string(titleWithoutFigures) : title;
}

std::string Usage::PressureCheck::summary() const {
    if (blocked) {
        return blockedSummary(*this);
    }
    if (!bucketLabel || !windowLabel || !deltaPoints || !classification) {
        return std::string(pressureUnavailable);
    }
    // Here the bucket is named even if it is the default one, unlike in a block.
    return "Most pressured: " + *bucketLabel + " " + *windowLabel + ", " +
           paceStatement(*classification, *deltaPoints) + ".";
}

bool Usage::PressureCheck::hasPrintableDistance() const {
    const std::optional<double> distance = usedDistance(*this);
    return !distance || wholePoints(*distance) < integerRange;
}

} // namespace vorla
