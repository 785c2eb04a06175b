// SPDX-License-Identifier: MIT
#pragma once

#include "model/FennicQuota.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// What the menu-bar program and the task-fit window say to each other.
///
/// On the window's standard input, one JSON object a line:
///
///     {"quota":{"fiveHourRemainingPercent":87,…},"activationToken":"…"}   first, exactly once
///     {"activationToken":"…"}                                             come to the front
///     {}                                                                  the same, no token
///
/// The end of the input closes the window. On its standard output the window says `closing` once,
/// as soon as it can no longer be brought to the front, and then its program ends.
namespace vorla {

/// The longest line, its line end included. No summary of an ordinary snapshot has a tenth of that.
inline constexpr std::size_t maximumFennicSeamLine = 65536;

inline constexpr std::string_view fennicClosingLine = "closing\n";

/// What a window is opened with.
struct FennicOpening {
    FennicQuota quota = {};
    /// The desktop's permission to take the focus; never empty.
    std::optional<std::string> activationToken = std::nullopt;

    /// The line with its line end. A pressure summary that would make it too long is left out.
    /// Nothing if it is too long all the same, or holds a number that JSON cannot express.
    std::optional<std::string> encode() const;

    /// Throws DecodeError. The line end may be missing.
    static FennicOpening decode(std::string_view line);

    bool operator==(const FennicOpening&) const = default;
};

/// Asks an open window to come to the front.
struct FennicRaise {
    /// The desktop's permission to take the focus; never empty.
    std::optional<std::string> activationToken = std::nullopt;

    /// The line with its line end. A token that would make it too long is left out.
    std::string encode() const;

    /// Throws DecodeError. The line end may be missing.
    static FennicRaise decode(std::string_view line);

    bool operator==(const FennicRaise&) const = default;
};

} // namespace vorla
