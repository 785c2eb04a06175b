// SPDX-License-Identifier: MIT
#include "model/StatusMenu.h"

#include <gtest/gtest.h>

#include <csignal>
#include <limits>
#include <vector>

namespace vorla {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

/// The minutes of this many seconds are the first that do not fit 64 bits.
constexpr double tooManySeconds = 0x1p63 * 60;
const double almostTooManySeconds = 0x1.fffffffffffffp62 * 60;

TEST(RunwayDuration, isShortAndRoundedToMinutes) {
    struct Row {
        double seconds;
        const char* text;
    };

    const std::vector<Row> rows = {
        {-infinity, "exhausted"},
        {-1, "exhausted"},
        {0, "exhausted"},
        {-0.0, "exhausted"},
        {1e-300, "1m"},
        {29, "1m"},
        {30, "1m"},
        {89, "1m"},
        {90, "2m"},
        {2700, "45m"},
        {3569, "59m"},
        {3570, "1h 0m"},
        {11100, "3h 5m"},
        {86369, "23h 59m"},
        {86370, "1d 0h"},
        {90000, "1d 1h"},
        {183600, "2d 3h"},
        {187199, "2d 4h"},
        {8640000, "100d 0h"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(runwayDuration(row.seconds), row.text) << row.seconds;
    }
}

TEST(RunwayDuration, holdsTheLargestMinutesThatFit) {
    EXPECT_EQ(runwayDuration(almostTooManySeconds), "6405119470038038d 1h");
}

TEST(RunwayDurationDeathTest, endsTheProgramOnMinutesThatDoNotFit) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (const double seconds :
         {tooManySeconds, infinity, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EXIT(
            static_cast<void>(runwayDuration(seconds)), testing::KilledBySignal(SIGABRT), "")
            << seconds;
    }
}

Usage::Window window(std::int64_t durationMins, double resetsAt) {
    return {
        .name = "window",
        .usedPercent = 50,
        .remainingPercent = 50,
        .windowDurationMins = durationMins,
        .resetsAt = resetsAt};
}

Usage usageWithWindows(std::vector<Usage::Window> windows) {
    Usage usage;
    usage.windows = std::move(windows);
    return usage;
}

Usage usageWithBucketReset(double resetsAt, bool isDefault) {
    Usage usage = usageWithWindows({window(weeklyMinutes, 1700000000)});
    Usage::LimitBucket bucket;
    bucket.isDefault = isDefault;
    bucket.windows = {window(60, 1700000000), window(60, resetsAt)};
    usage.limitBuckets = {Usage::LimitBucket(), bucket};
    return usage;
}

PaceEstimate estimate(std::optional<double> secondsToExhaustion) {
    return {
        .percentPerHour = 5,
        .secondsToExhaustion = secondsToExhaustion,
        .survivesUntilReset = std::nullopt};
}

TEST(TextsCanHold, anEverydaySnapshot) {
    EXPECT_TRUE(textsCanHold(usageWithWindows({window(weeklyMinutes, 1700000000)}), {}));
    EXPECT_TRUE(textsCanHold(usageWithBucketReset(1700000000, false), {}));
}

TEST(TextsCanHold, everyResetOfAShownBucketWhoseMinutesFit) {
    EXPECT_TRUE(textsCanHold(usageWithBucketReset(almostTooManySeconds, false), {}));
    EXPECT_FALSE(textsCanHold(usageWithBucketReset(tooManySeconds, false), {}));
    EXPECT_FALSE(textsCanHold(usageWithBucketReset(1e300, false), {}));
    EXPECT_FALSE(textsCanHold(usageWithBucketReset(infinity, false), {}));
    EXPECT_FALSE(
        textsCanHold(usageWithBucketReset(std::numeric_limits<double>::quiet_NaN(), false), {}));
}

TEST(TextsCanHold, bucketResetsThatAreNeverPrinted) {
    EXPECT_TRUE(textsCanHold(usageWithBucketReset(-1e300, false), {}));
    EXPECT_TRUE(textsCanHold(usageWithBucketReset(1e300, true), {}));
}

TEST(TextsCanHold, everyRunwayOfAShownWindowWhoseMinutesFit) {
    for (const std::int64_t duration : {fiveHourMinutes, weeklyMinutes}) {
        const Usage usage = usageWithWindows({window(duration, 1700000000)});
        EXPECT_TRUE(textsCanHold(usage, {{duration, estimate(0)}})) << duration;
        EXPECT_TRUE(textsCanHold(usage, {{duration, estimate(almostTooManySeconds)}})) << duration;
        EXPECT_FALSE(textsCanHold(usage, {{duration, estimate(tooManySeconds)}})) << duration;
        EXPECT_FALSE(textsCanHold(usage, {{duration, estimate(infinity)}})) << duration;
    }
}

TEST(TextsCanHold, runwaysThatAreNeverPrinted) {
    const Usage usage = usageWithWindows({window(weeklyMinutes, 0), window(60, 0)});
    PaceEstimate withoutRate = estimate(infinity);
    withoutRate.percentPerHour = std::nullopt;
    EXPECT_TRUE(textsCanHold(usage, {{weeklyMinutes, withoutRate}}));
    EXPECT_TRUE(textsCanHold(usage, {{weeklyMinutes, estimate(std::nullopt)}}));
    EXPECT_TRUE(textsCanHold(usage, {{fiveHourMinutes, estimate(infinity)}}));
    EXPECT_TRUE(textsCanHold(usage, {{60, estimate(infinity)}}));
}

TEST(TextsCanHold, everyPressureDistanceThatIsPrintable) {
    Usage usage = usageWithWindows({window(weeklyMinutes, 0)});
    usage.pressureCheck = Usage::PressureCheck();
    usage.pressureCheck->bucketLabel = "Main";
    usage.pressureCheck->windowLabel = "weekly";
    usage.pressureCheck->classification = "ahead";
    usage.pressureCheck->deltaPoints = -1e18;
    EXPECT_TRUE(textsCanHold(usage, {}));
    usage.pressureCheck->deltaPoints = 1e19;
    EXPECT_FALSE(textsCanHold(usage, {}));
    // Without a label the summary prints no distance at all.
    usage.pressureCheck->windowLabel = std::nullopt;
    EXPECT_TRUE(textsCanHold(usage, {}));
}

TEST(TextsCanHold, whatTheyHoldIsComposedWhateverTheClockSays) {
    Usage usage = usageWithBucketReset(almostTooManySeconds, false);
    usage.windows = {window(fiveHourMinutes, 253402300799.5), window(weeklyMinutes, -253402300799)};
    usage.limitBuckets->back().windows.push_back(window(60, -1e300));
    MenuState state;
    state.pace = {
        {fiveHourMinutes, estimate(almostTooManySeconds)}, {weeklyMinutes, estimate(1e-300)}};
    ASSERT_TRUE(textsCanHold(usage, state.pace));
    state.usage = usage;
    for (const double now : {0.0, 1.7e9, 9e15}) {
        EXPECT_FALSE(composeMenu(state, now).lines.empty()) << now;
    }
}

} // namespace
} // namespace vorla
