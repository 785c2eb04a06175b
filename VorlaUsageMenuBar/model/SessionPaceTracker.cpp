// SPDX-License-Identifier: MIT
#include "model/SessionPaceTracker.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string_view>

namespace vorla {

namespace {

constexpr double secondsPerHour = 3600;

/// How far a reset time may stray from the one seen first before it counts as another period's.
constexpr double resetToleranceSeconds = 60;

constexpr std::int64_t minimumSamples = 4;
constexpr double minimumElapsedSeconds = 180;
constexpr std::int64_t minimumDropPoints = 2;

bool continuesPeriod(
    const SessionPaceTracker::Observation& observation, const Usage::Window& window, double now) {
    return std::abs(observation.resetsAt - window.resetsAt) <= resetToleranceSeconds &&
           observation.remainingPercent >= window.remainingPercent &&
           now >= observation.lastFetchedAt;
}

PaceEstimate estimate(
    const SessionPaceTracker::Observation& observation, const Usage::Window& window, double now) {
    const double elapsed = std::max(now - observation.startedAt, 0.0);
    const std::int64_t drop = observation.remainingPercent - window.remainingPercent;
    if (observation.sampleCount < minimumSamples || elapsed < minimumElapsedSeconds ||
        drop < minimumDropPoints) {
        return {};
    }
    const double percentPerHour = static_cast<double>(drop) * secondsPerHour / elapsed;
    double secondsToExhaustion = 0;
    if (window.remainingPercent >= 1) {
        secondsToExhaustion =
            static_cast<double>(window.remainingPercent) * secondsPerHour / percentPerHour;
    }
    PaceEstimate result = {
        .percentPerHour = percentPerHour,
        .secondsToExhaustion = secondsToExhaustion,
        .survivesUntilReset = std::nullopt};
    if (window.windowDurationMins == weeklyMinutes) {
        const double secondsToReset = std::max(window.resetsAt - now, 0.0);
        result.survivesUntilReset = secondsToReset <= secondsToExhaustion;
    }
    return result;
}

} // namespace

PaceEstimates SessionPaceTracker::observe(const Usage& usage) {
    const double now = usage.fetchedAt;
    PaceEstimates estimates;
    std::set<std::string_view> seen;
    for (const Usage::Window& window : usage.windows) {
        seen.insert(window.name);
        const auto [place, isNew] = observations_.try_emplace(window.name);
        Observation& observation = place->second;
        if (isNew || !continuesPeriod(observation, window, now)) {
            observation = {
                .remainingPercent = window.remainingPercent,
                .resetsAt = window.resetsAt,
                .startedAt = now,
                .lastFetchedAt = now,
                .sampleCount = 1};
        } else if (now > observation.lastFetchedAt) {
            ++observation.sampleCount;
            observation.lastFetchedAt = now;
        }
        estimates[window.windowDurationMins] = estimate(observation, window, now);
    }
    std::erase_if(observations_, [&](const auto& entry) { return !seen.contains(entry.first); });
    return estimates;
}

} // namespace vorla
