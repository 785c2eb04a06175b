// SPDX-License-Identifier: MIT
#include "model/FennicQuota.h"

#include <cmath>

namespace vorla {

namespace {

std::optional<double> finiteAndNotNegative(double value) {
    if (std::isfinite(value) && value >= 0) {
        return value;
    }
    return std::nullopt;
}

std::optional<double> observedRate(const PaceEstimates& pace, std::int64_t windowDurationMins) {
    const auto entry = pace.find(windowDurationMins);
    if (entry == pace.end() || !entry->second.percentPerHour) {
        return std::nullopt;
    }
    return finiteAndNotNegative(*entry->second.percentPerHour);
}

} // namespace

FennicQuota FennicQuota::of(const std::optional<Usage>& usage, const PaceEstimates& pace) {
    FennicQuota quota;
    if (usage) {
        if (const Usage::Window* fiveHour = usage->window(fiveHourMinutes)) {
            quota.fiveHourRemainingPercent = fiveHour->remainingPercent;
            quota.fiveHourSecondsToReset =
                finiteAndNotNegative(fiveHour->resetsAt - usage->fetchedAt);
        }
        if (const Usage::Window* weekly = usage->window(weeklyMinutes)) {
            quota.weeklyRemainingPercent = weekly->remainingPercent;
            quota.weeklySecondsToReset = finiteAndNotNegative(weekly->resetsAt - usage->fetchedAt);
        }
        if (usage->pressureCheck) {
            quota.pressureSummary = usage->pressureCheck->summary();
        }
    }
    quota.fiveHourObservedPercentPerHour = observedRate(pace, fiveHourMinutes);
    quota.weeklyObservedPercentPerHour = observedRate(pace, weeklyMinutes);
    return quota;
}

JsonObjectWriter FennicQuota::encode() const {
    JsonObjectWriter object;
    object.add("fiveHourRemainingPercent", fiveHourRemainingPercent);
    object.add("fiveHourSecondsToReset", fiveHourSecondsToReset);
    object.add("weeklyRemainingPercent", weeklyRemainingPercent);
    object.add("weeklySecondsToReset", weeklySecondsToReset);
    object.add("pressureSummary", pressureSummary);
    object.add("fiveHourObservedPercentPerHour", fiveHourObservedPercentPerHour);
    object.add("weeklyObservedPercentPerHour", weeklyObservedPercentPerHour);
    return object;
}

FennicQuota FennicQuota::decode(const JsonValue& value) {
    const JsonObjectReader object(value);
    return {
        .fiveHourRemainingPercent = object.optionalInteger("fiveHourRemainingPercent"),
        .fiveHourSecondsToReset = object.optionalDecimal("fiveHourSecondsToReset"),
        .weeklyRemainingPercent = object.optionalInteger("weeklyRemainingPercent"),
        .weeklySecondsToReset = object.optionalDecimal("weeklySecondsToReset"),
        .pressureSummary = object.optionalString("pressureSummary"),
        .fiveHourObservedPercentPerHour = object.optionalDecimal("fiveHourObservedPercentPerHour"),
        .weeklyObservedPercentPerHour = object.optionalDecimal("weeklyObservedPercentPerHour"),
    };
}

} // namespace vorla
