// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorla {

inline constexpr std::int64_t fiveHourMinutes = 300;
inline constexpr std::int64_t weeklyMinutes = 10080;

/// The status title while there is no figure to show.
inline constexpr std::string_view titleWithoutFigures = "Vorla ?";

/// 10000-01-01T00:00:00Z; times of the document must lie closer to the epoch than this.
inline constexpr double yearTenThousand = 253402300800.0;

/// The validated snapshot that the companion prints for "--json". Times are seconds since the Unix
/// epoch, percentages whole points. Field names are the document's keys. Made only by decode(), and
/// never changed afterwards.
struct Usage {
    /// One quota window; in `Usage::windows` both percentages lie within 0 to 100, the duration is
    /// at least 1 and the reset lies before the year 10000. In a limit bucket nothing is promised.
    struct Window {
        std::string name;
        std::int64_t usedPercent = 0;
        std::int64_t remainingPercent = 0;
        std::int64_t windowDurationMins = 0;
        double resetsAt = 0;

        bool operator==(const Window&) const = default;
    };

    struct LimitBucket {
        std::string id;
        std::string label;
        bool isDefault = false;
        std::vector<Window> windows;
        std::optional<std::string> rateLimitReachedType = std::nullopt;
        std::optional<bool> spendControlReached = std::nullopt;

        bool operator==(const LimitBucket&) const = default;
    };

    /// The window under the most pressure relative to even pace.
    struct PressureCheck {
        struct Secondary {
            std::string bucketLabel;
            bool bucketIsDefault = false;
            std::string windowLabel;
            double deltaPoints = 0;
            std::string classification;

            bool operator==(const Secondary&) const = default;
        };

        bool blocked = false;
        std::optional<std::string> bucketLabel = std::nullopt;
        std::optional<bool> bucketIsDefault = std::nullopt;
        std::optional<std::string> windowLabel = std::nullopt;
        /// The sign means nothing: the direction is in `classification`.
        std::optional<double> deltaPoints = std::nullopt;
        std::optional<std::string> classification = std::nullopt;
        std::optional<Secondary> secondary = std::nullopt;

        /// One or two sentences. Precondition: hasPrintableDistance().
        std::string summary() const;

        /// Whether the distance that summary() would print, if any, fits a 64-bit integer.
        bool hasPrintableDistance() const;

        bool operator==(const PressureCheck&) const = default;
    };

    struct Credits {
        struct Credit {
            std::optional<std::string> status = std::nullopt;
            std::optional<double> expiresAt = std::nullopt;

            bool operator==(const Credit&) const = default;
        };

        std::int64_t availableCount = 0;
        std::optional<std::vector<Credit>> credits = std::nullopt;

        bool operator==(const Credits&) const = default;
    };

    struct Budget {
        double percentPerDay = 0;
        double percentPerHour = 0;
        double secondsToReset = 0;
        std::int64_t remainingPercent = 0;

        bool operator==(const Budget&) const = default;
    };

    struct NotificationEvent {
        std::string key;
        std::string title;
        std::string body;

        bool operator==(const NotificationEvent&) const = default;
    };

    std::int64_t schemaVersion = 1;
    double fetchedAt = 0;
    std::vector<Window> windows;
    std::optional<std::vector<LimitBucket>> limitBuckets = std::nullopt;
    std::optional<PressureCheck> pressureCheck = std::nullopt;
    std::optional<std::string> planType = std::nullopt;
    std::optional<std::string> rateLimitReachedType = std::nullopt;
    std::optional<bool> spendControlReached = std::nullopt;
    std::optional<Credits> resetCredits = std::nullopt;
    std::optional<Budget> weeklyBudget = std::nullopt;
    std::optional<std::vector<NotificationEvent>> notificationEvents = std::nullopt;

    /// Decodes the whole standard output of one "--json" run. Throws DecodeError; one wrong field
    /// rejects the whole document. Any thread.
    static Usage decode(std::string_view bytes);

    /// The first main window of that length, or nothing.
    const Window* window(std::int64_t durationMins) const;

    /// What the status title shows of one window.
    struct TitlePart {
        std::string_view label;
        std::int64_t remainingPercent = 0;
    };

    /// The two main windows in the order of the title, as far as they are there.
    std::vector<TitlePart> titleParts() const;

    /// The status title: what is left of those windows, or titleWithoutFigures.
    std::string title() const;

    bool operator==(const Usage&) const = default;
};

} // namespace vorla
