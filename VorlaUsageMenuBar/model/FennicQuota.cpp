// SPDX-License-Identifier: MIT
#include "model/FennicQuota.h"

#include "model/JsonObjectReader.h"

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

FennicQuota FennicQuota::decode(const JsonValue& value, std::string_view path) {
    const JsonObjectReader reader(value, path);
    return {
        .fiveHourRemainingPercent = reader.optional("fiveHourRemainingPercent", json::integer),
        .fiveHourSecondsToReset = reader.optional("fiveHourSecondsToReset", json::decimal),
        .weeklyRemainingPercent = reader.optional("weeklyRemainingPercent", json::integer),
        .weeklySecondsToReset = reader.optional("weeklySecondsToReset", json::decimal),
        .pressureSummary = reader.optional("pressureSummary", json::string),
        .fiveHourObservedPercentPerHour =
            reader.optional("fiveHourObservedPercentPerHour", json::decimal),
        .weeklyObservedPercentPerHour =
            reader.optional("weeklyObservedPercentPerHour", json::decimal),
    };
}

} // namespace vorla
