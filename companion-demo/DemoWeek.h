// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <string_view>

namespace vorla {

/// One quota window of the played week, as it stands at one moment.
struct DemoWindow {
    std::string_view name;
    std::int64_t minutes = 0;
    /// Seconds since the Unix epoch.
    std::int64_t startsAt = 0;
    /// Percentage points, 0 to 100, with their fraction.
    double used = 0;

    std::int64_t resetsAt() const { return startsAt + minutes * 60; }

    std::int64_t usedPercent() const { return static_cast<std::int64_t>(used); }

    std::int64_t remainingPercent() const { return 100 - usedPercent(); }
};

/// How a window is used up over its length.
struct DemoHabit {
    std::string_view name;
    std::int64_t minutes = 0;
    /// The points spent in one length at an even pace; past 100 the window runs dry early.
    double pointsPerLength = 0;
    /// How much quieter the night is than the day: 0 for no difference, 1 for nothing at night.
    double rhythm = 0;
};

// At its quietest still two points in nine minutes, so that a pace shows soon after the start; at
// its busiest just short of the whole window.
inline constexpr DemoHabit fiveHourHabit = {"5h", 300, 83, 0.2};
inline constexpr DemoHabit weeklyHabit = {"weekly", 10080, 93, 0.9};
// Runs dry some minutes before each full hour: the way to see a block.
inline constexpr DemoHabit largeTasksHourlyHabit = {"large-tasks-hourly", 60, 115, 0};
inline constexpr DemoHabit largeTasksWeeklyHabit = {"large-tasks-weekly", 10080, 55, 0.9};

/// A window with less than this left is worth a notification.
inline constexpr std::int64_t lowPercent = 20;

/// The work done from the epoch to `time`, in seconds of average work: least at three in the night
/// (UTC, since the demonstration knows no home), most at three in the afternoon.
inline double workUntil(std::int64_t time, double rhythm) {
    constexpr double day = 86400;
    constexpr double quietestHour = 3;
    const double angle =
        2 * std::numbers::pi * (static_cast<double>(time) / day - quietestHour / 24);
    return static_cast<double>(time) - rhythm * day / (2 * std::numbers::pi) * std::sin(angle);
}

/// The window that `now` lies in. Windows of one habit follow each other without a gap, counted
/// from a Monday at midnight (UTC), so that every run of the program sees the same ones.
inline DemoWindow windowAt(const DemoHabit& habit, std::int64_t now) {
    constexpr std::int64_t firstMonday = std::int64_t{4} * 86400;
    const std::int64_t length = habit.minutes * 60;
    const std::int64_t sinceMonday = now - firstMonday;
    const std::int64_t intoWindow = ((sinceMonday % length) + length) % length;
    const std::int64_t startsAt = now - intoWindow;
    const double work = workUntil(now, habit.rhythm) - workUntil(startsAt, habit.rhythm);
    const double used = habit.pointsPerLength * work / static_cast<double>(length);
    return {
        .name = habit.name,
        .minutes = habit.minutes,
        .startsAt = startsAt,
        .used = std::clamp(used, 0.0, 100.0)};
}

/// How far the use is ahead of an even spread over the window, in points; negative behind it.
inline double pointsAheadOfEvenPace(const DemoWindow& window, std::int64_t now) {
    const auto elapsed = static_cast<double>(now - window.startsAt);
    return window.used - 100 * elapsed / static_cast<double>(window.minutes * 60);
}

/// Everything that the demonstration tells about one moment: a function of the clock alone, so that
/// nothing has to be stored and two runs in the same second agree.
struct DemoWeek {
    std::int64_t now = 0;
    DemoWindow fiveHour;
    DemoWindow weekly;
    DemoWindow largeTasksHourly;
    DemoWindow largeTasksWeekly;

    /// `now` is in seconds since the Unix epoch.
    static DemoWeek at(std::int64_t now) {
        return {
            .now = now,
            .fiveHour = windowAt(fiveHourHabit, now),
            .weekly = windowAt(weeklyHabit, now),
            .largeTasksHourly = windowAt(largeTasksHourlyHabit, now),
            .largeTasksWeekly = windowAt(largeTasksWeeklyHabit, now)};
    }
};

} // namespace vorla
