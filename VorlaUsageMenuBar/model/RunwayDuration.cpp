// SPDX-License-Identifier: MIT
#include "model/StatusMenu.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace vorla {

namespace {

constexpr std::int64_t minutesPerHour = 60;
constexpr std::int64_t minutesPerDay = 1440;

/// Seconds as minutes, halves rounded away from zero; nothing if they do not fit.
std::optional<std::int64_t> wholeMinutes(double seconds) {
    constexpr double limit = 0x1p63;
    const double minutes = std::round(seconds / 60);
    // Written so that NaN fails, too.
    if (!(minutes >= -limit && minutes < limit)) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(minutes);
}

bool hasPrintableRunway(double seconds) {
    return seconds <= 0 || wholeMinutes(seconds).has_value();
}

bool holdsResets(const Usage& usage) {
    return !usage.limitBuckets ||
           std::ranges::all_of(*usage.limitBuckets, [](const Usage::LimitBucket& bucket) {
               // No clock shows a time before the epoch, so at most the whole reset time is left.
               return bucket.isDefault ||
                      std::ranges::all_of(
                          bucket.windows, hasPrintableRunway, &Usage::Window::resetsAt);
           });
}

bool holdsPaceOf(std::int64_t durationMins, const Usage& usage, const PaceEstimates& pace) {
    const auto found = pace.find(durationMins);
    if (found == pace.end() || usage.window(durationMins) == nullptr) {
        return true;
    }
    const PaceEstimate& estimate = found->second;
    return !estimate.percentPerHour || !estimate.secondsToExhaustion ||
           hasPrintableRunway(*estimate.secondsToExhaustion);
}

} // namespace

std::string runwayDuration(double seconds) {
    if (seconds <= 0) {
        return "exhausted";
    }
    const std::optional<std::int64_t> rounded = wholeMinutes(seconds);
    if (!rounded) {
        // A breach of the precondition: any text would be a lie.
        std::abort();
    }
    const std::int64_t minutes = std::max<std::int64_t>(*rounded, 1);
    if (minutes >= minutesPerDay) {
        return std::to_string(minutes / minutesPerDay) + "d " +
               std::to_string(minutes % minutesPerDay / minutesPerHour) + "h";
    }
    if (minutes >= minutesPerHour) {
        return std::to_string(minutes / minutesPerHour) + "h " +
               std::to_string(minutes % minutesPerHour) + "m";
    }
    return std::to_string(minutes) + "m";
}

bool textsCanHold(const Usage& usage, const PaceEstimates& pace) {
    if (usage.pressureCheck && !usage.pressureCheck->hasPrintableDistance()) {
        return false;
    }
    return holdsResets(usage) && holdsPaceOf(fiveHourMinutes, usage, pace) &&
           holdsPaceOf(weeklyMinutes, usage, pace);
}

} // namespace vorla
