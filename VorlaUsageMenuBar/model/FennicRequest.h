// SPDX-License-Identifier: MIT
#pragma once

#include "model/FennicQuota.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace vorla {

/// The longest description that is sent, in characters as a user perceives them.
inline constexpr std::size_t maximumFennicTaskCharacters = 8000;

inline constexpr std::string_view fennicTaskIsMissing = "Describe the task first.";
inline constexpr std::string_view fennicTaskIsTooLong =
    "That description is longer than 8,000 characters.";
inline constexpr std::string_view fennicCannotBePrepared = "Could not prepare the check.";

/// Why a check is not sent: a sentence for the user.
struct FennicRefusal {
    std::string_view message;

    bool operator==(const FennicRefusal&) const = default;
};

/// All that one task-fit check tells the service.
struct FennicRequest {
    /// Without white space and line ends at both ends; never empty.
    std::string task;
    FennicQuota quota = {};

    static std::variant<FennicRequest, FennicRefusal>
    prepare(std::string_view text, const FennicQuota& quota);

    /// The body of the HTTP request, or nothing if the summary holds a number that JSON cannot
    /// express.
    std::optional<std::string> encode() const;

    bool operator==(const FennicRequest&) const = default;
};

} // namespace vorla
