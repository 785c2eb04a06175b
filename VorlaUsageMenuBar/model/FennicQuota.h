// SPDX-License-Identifier: MIT
#pragma once

#include "model/Json.h"
#include "model/JsonObjectWriter.h"
#include "model/SessionPaceTracker.h"
#include "model/Usage.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorla {

/// The coarse state of the quota that goes along with a task-fit check. Field names are the keys of
/// the request. Absent is not zero: an absent field is not sent. Never changed once it is made.
struct FennicQuota {
    std::optional<std::int64_t> fiveHourRemainingPercent = std::nullopt;
    /// Counted from the moment of the snapshot, however old that is by the time it is sent.
    std::optional<double> fiveHourSecondsToReset = std::nullopt;
    std::optional<std::int64_t> weeklyRemainingPercent = std::nullopt;
    std::optional<double> weeklySecondsToReset = std::nullopt;
    std::optional<std::string> pressureSummary = std::nullopt;
    std::optional<double> fiveHourObservedPercentPerHour = std::nullopt;
    std::optional<double> weeklyObservedPercentPerHour = std::nullopt;

    /// The summary of what is known now; without a snapshot there may still be estimates.
    ///
    /// Precondition: the snapshot's pressure check, if any, has a printable distance.
    static FennicQuota of(const std::optional<Usage>& usage, const PaceEstimates& pace);

    JsonObjectWriter encode() const;

    /// Throws DecodeError. `path` is the quota's place in the document.
    static FennicQuota decode(const JsonValue& value, std::string_view path = {});

    bool operator==(const FennicQuota&) const = default;
};

} // namespace vorla
