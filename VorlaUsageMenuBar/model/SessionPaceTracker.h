// SPDX-License-Identifier: MIT
#pragma once

#include "model/Usage.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace vorla {

/// What the observed use of one window says about its future; all absent until there is enough
/// history.
struct PaceEstimate {
    /// Percentage points per hour.
    std::optional<double> percentPerHour;
    std::optional<double> secondsToExhaustion;
    /// Only ever present for the weekly window.
    std::optional<bool> survivesUntilReset;

    bool operator==(const PaceEstimate&) const = default;
};

/// Estimates by window length in minutes.
using PaceEstimates = std::map<std::int64_t, PaceEstimate>;

/// Remembers, across snapshots, where each main window stood when its current period was first
/// seen, and derives burn rates from that. Lives in memory only; a plain value that may be copied.
/// Not synchronised.
class SessionPaceTracker final {
public:
    /// Counts one snapshot and returns an estimate for each of its main windows. Of two windows of
    /// the same length, the later one's estimate counts.
    PaceEstimates observe(const Usage& usage);

    /// One period of a window: it lasts while the reset time stays and the remaining share does not
    /// rise above where it began.
    struct Observation {
        std::int64_t remainingPercent = 0;
        double resetsAt = 0;
        double startedAt = 0;
        double lastFetchedAt = 0;
        std::int64_t sampleCount = 1;

        bool operator==(const Observation&) const = default;
    };

    /// By window name.
    const std::map<std::string, Observation>& observations() const { return observations_; }

private:
    std::map<std::string, Observation> observations_;
};

} // namespace vorla
