// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace vorla {

/// One text of the task-fit window and how it looks, so that all of it can be tested without one.
struct FennicLine {
    enum class Weight { regular, semibold, bold };

    /// Roles of the desktop's theme: its text colour, and a fainter one for what matters less.
    enum class Colour { primary, secondary };

    std::string text;
    /// The size of the letters where the desktop's own text has 13; grows along with that.
    int points = 13;
    Weight weight = Weight::regular;
    Colour colour = Colour::primary;

    bool operator==(const FennicLine&) const = default;
};

inline constexpr std::string_view fennicWindowTitle = "Fennic";
inline constexpr std::string_view fennicCheckTitle = "Check task";
inline constexpr std::string_view fennicCheckingTitle = "Checking\u2026";

FennicLine fennicHeading();
FennicLine fennicPrompt();
FennicLine fennicHint();
FennicLine fennicPrivacyNote();
/// The line beside the button; empty while all is well.
FennicLine fennicStatus(std::string_view message);

} // namespace vorla
