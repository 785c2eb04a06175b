// SPDX-License-Identifier: MIT
#pragma once

#include "model/FennicLine.h"
#include "model/FennicQuota.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorla {

/// The service's assessment of one task. Field names are the keys of its answer.
struct FennicResult {
    std::string taskSize;
    /// The confidences are checked but never shown. They and the probability lie within 0 to 1.
    double taskSizeConfidence = 0;
    double fitProbability = 0;
    std::string recommendedAction;
    double actionConfidence = 0;

    /// Decodes the body of an answer. Throws DecodeError; a value out of range is refused, not
    /// clamped.
    static FennicResult decode(std::string_view bytes);

    /// The headline for the recommended action, or its code if that is not a known one.
    std::string verdict() const;

    /// The word for the size, or its code if that is not a known one.
    std::string sizeLabel() const;

    /// One sentence on the task and the scarcer of the two remaining shares, in percent.
    std::string
    summaryLine(std::optional<std::int64_t> fiveHour, std::optional<std::int64_t> weekly) const;

    /// What is shown, from top to bottom; `quota` is the summary that was sent.
    std::vector<FennicLine> lines(const FennicQuota& quota) const;

    bool operator==(const FennicResult&) const = default;
};

} // namespace vorla
