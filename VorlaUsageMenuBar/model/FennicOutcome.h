// SPDX-License-Identifier: MIT
#pragma once

#include "model/FennicResult.h"

#include <optional>
#include <string>
#include <string_view>

namespace vorla {

/// What came back in full from the service.
struct FennicAnswer {
    /// Absent when what came back was not HTTP.
    std::optional<int> status = std::nullopt;
    std::string body;

    bool operator==(const FennicAnswer&) const = default;
};

/// What the window shows after a check: a result, or else a message.
struct FennicOutcome {
    std::optional<FennicResult> result = std::nullopt;
    std::string message;

    /// No answer at all means that the transfer failed. The user sees neither the body nor what is
    /// wrong with it. `serviceDomain` is the service's public name.
    static FennicOutcome
    of(const std::optional<FennicAnswer>& answer, std::string_view serviceDomain);

    bool operator==(const FennicOutcome&) const = default;
};

} // namespace vorla
