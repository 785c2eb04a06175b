// SPDX-License-Identifier: MIT
#include "model/Usage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <csignal>
#include <limits>

namespace vorla {

namespace {

using PressureCheck = Usage::PressureCheck;

constexpr double twoToThe63 = 9223372036854775808.0;

Usage::Window windowOf(std::int64_t minutes, std::int64_t remainingPercent) {
    return {
        .name = "window",
        .usedPercent = 1,
        .remainingPercent = remainingPercent,
        .windowDurationMins = minutes,
        .resetsAt = 1700000000,
    };
}

PressureCheck openCheck(double deltaPoints, std::string classification) {
    return {
        .blocked = false,
        .bucketLabel = "Main",
        .bucketIsDefault = true,
        .windowLabel = "weekly",
        .deltaPoints = deltaPoints,
        .classification = std::move(classification),
        .secondary = std::nullopt,
    };
}

PressureCheck blockedCheck(PressureCheck::Secondary secondary) {
    return {
        .blocked = true,
        .bucketLabel = "Main",
        .bucketIsDefault = true,
        .windowLabel = "5h",
        .deltaPoints = std::nullopt,
        .classification = std::nullopt,
        .secondary = std::move(secondary),
    };
}

PressureCheck::Secondary secondaryOf(double deltaPoints, std::string classification) {
    return {
        .bucketLabel = "Main",
        .bucketIsDefault = true,
        .windowLabel = "weekly",
        .deltaPoints = deltaPoints,
        .classification = std::move(classification),
    };
}

} // namespace

TEST(UsageTitle, showsTheRemainingSharesOfTheTwoMainWindows) {
    struct Row {
        std::vector<Usage::Window> windows;
        const char* title;
    };

    const std::vector<Row> rows = {
        {{windowOf(300, 87), windowOf(10080, 62)}, "5h 87% · W 62%"},
        {{windowOf(10080, 90), windowOf(300, 40)}, "5h 40% · W 90%"},
        {{windowOf(10080, 62)}, "W 62%"},
        {{windowOf(300, 0)}, "5h 0%"},
        {{windowOf(300, 100), windowOf(10080, 100)}, "5h 100% · W 100%"},
        {{windowOf(60, 50)}, "Vorla ?"},
        {{windowOf(299, 50), windowOf(10081, 50)}, "Vorla ?"},
        {{}, "Vorla ?"},
        {{windowOf(300, 11), windowOf(300, 22)}, "5h 11%"},
        {{windowOf(60, 1), windowOf(10080, 2), windowOf(10080, 3), windowOf(300, 4)},
         "5h 4% · W 2%"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ((Usage{.windows = row.windows}.title()), row.title);
    }
}

TEST(UsageTitle, separatesWithTheMiddleDot) {
    const Usage usage{.windows = {windowOf(300, 1), windowOf(10080, 2)}};
    EXPECT_EQ(usage.title(), "5h 1% \xC2\xB7 W 2%");
}

TEST(UsageTitle, leavesOutTheWindowsOfLimitBuckets) {
    const Usage usage{
        .windows = {windowOf(60, 50)},
        .limitBuckets = {{{.id = "b", .label = "B", .windows = {windowOf(300, 5)}}}},
    };
    EXPECT_EQ(usage.title(), "Vorla ?");
}

TEST(PressureSummary, saysWhatBlocksNow) {
    struct Row {
        std::optional<std::string> bucketLabel;
        std::optional<bool> bucketIsDefault;
        std::optional<std::string> windowLabel;
        const char* summary;
    };

    const std::vector<Row> rows = {
        {{}, {}, {}, "Blocked now: usage limit."},
        {{}, {}, "5h", "Blocked now: 5h limit."},
        {"Main", true, "5h", "Blocked now: 5h limit."},
        {"Main", {}, "5h", "Blocked now: 5h limit."},
        {"Review", false, "5h", "Blocked now: Review 5h limit."},
        {"Review", false, {}, "Blocked now: Review usage limit."},
        {{}, false, "5h", "Blocked now:  5h limit."},
        {{}, false, {}, "Blocked now:  usage limit."},
        {"", false, "", "Blocked now:   limit."},
        {"Main", true, "", "Blocked now:  limit."},
    };
    for (const Row& row : rows) {
        const PressureCheck check{
            .blocked = true,
            .bucketLabel = row.bucketLabel,
            .bucketIsDefault = row.bucketIsDefault,
            .windowLabel = row.windowLabel,
            // Without a second window these say nothing about a block.
            .deltaPoints = 30,
            .classification = "ahead",
            .secondary = std::nullopt,
        };
        EXPECT_EQ(check.summary(), row.summary);
    }
}

TEST(PressureSummary, addsTheSecondWindowToABlock) {
    struct Row {
        PressureCheck::Secondary secondary;
        const char* summary;
    };

    const std::vector<Row> rows = {
        {{"Main", true, "weekly", 4.2, "behind"},
         "Blocked now: 5h limit. Weekly is 4 points behind even pace."},
        {{"Main", true, "weekly Limit", -11.6, "ahead"},
         "Blocked now: 5h limit. Weekly Limit is 12 points ahead of even pace."},
        {{"Main", true, "éclair", 1, "ahead"},
         "Blocked now: 5h limit. Éclair is 1 points ahead of even pace."},
        {{"Main", true, "", 1, "behind"}, "Blocked now: 5h limit.  is 1 points behind even pace."},
        {{"review", false, "weekly", 0, "ahead"},
         "Blocked now: 5h limit. review weekly is 0 points ahead of even pace."},
        {{"", false, "weekly", 3, "steady"},
         "Blocked now: 5h limit.  weekly is on track with even pace."},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(blockedCheck(row.secondary).summary(), row.summary);
    }
}

TEST(PressureSummary, statesThePaceOfTheMostPressuredWindow) {
    struct Row {
        double deltaPoints;
        const char* classification;
        const char* summary;
    };

    const std::vector<Row> rows = {
        {11.6, "ahead", "Most pressured: Main weekly, 12 points ahead of even pace."},
        {2.5, "behind", "Most pressured: Main weekly, 3 points behind even pace."},
        {-2.5, "behind", "Most pressured: Main weekly, 3 points behind even pace."},
        {-2.5, "ahead", "Most pressured: Main weekly, 3 points ahead of even pace."},
        {3.5, "ahead", "Most pressured: Main weekly, 4 points ahead of even pace."},
        {0.5, "ahead", "Most pressured: Main weekly, 1 points ahead of even pace."},
        {0.49999999999999994, "ahead", "Most pressured: Main weekly, 0 points ahead of even pace."},
        {0.4, "behind", "Most pressured: Main weekly, 0 points behind even pace."},
        {-0.0, "ahead", "Most pressured: Main weekly, 0 points ahead of even pace."},
        {1, "behind", "Most pressured: Main weekly, 1 points behind even pace."},
        {9007199254740992.0, "behind",
         "Most pressured: Main weekly, 9007199254740992 points behind even pace."},
        {-9223372036854774784.0, "ahead",
         "Most pressured: Main weekly, 9223372036854774784 points ahead of even pace."},
        {-7, "on_track", "Most pressured: Main weekly, on track with even pace."},
        {7, "", "Most pressured: Main weekly, on track with even pace."},
        {7, "Behind", "Most pressured: Main weekly, on track with even pace."},
        {7, "AHEAD", "Most pressured: Main weekly, on track with even pace."},
        {7, "behind ", "Most pressured: Main weekly, on track with even pace."},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(openCheck(row.deltaPoints, row.classification).summary(), row.summary);
    }
}

TEST(PressureSummary, namesTheBucketWhetherOrNotItIsTheDefault) {
    for (const std::optional<bool> isDefault : {std::optional<bool>(), {true}, {false}}) {
        PressureCheck check = openCheck(5, "ahead");
        check.bucketIsDefault = isDefault;
        EXPECT_EQ(check.summary(), "Most pressured: Main weekly, 5 points ahead of even pace.");
    }
}

TEST(PressureSummary, isUnavailableWhenOneOfTheFourFieldsIsAbsent) {
    const PressureCheck complete = openCheck(5, "ahead");
    PressureCheck withoutBucket = complete;
    withoutBucket.bucketLabel.reset();
    PressureCheck withoutWindow = complete;
    withoutWindow.windowLabel.reset();
    PressureCheck withoutDistance = complete;
    withoutDistance.deltaPoints.reset();
    PressureCheck withoutClassification = complete;
    withoutClassification.classification.reset();
    for (PressureCheck check :
         {withoutBucket, withoutWindow, withoutDistance, withoutClassification, PressureCheck{}}) {
        EXPECT_EQ(check.summary(), "Pressure data unavailable.");
        check.secondary = secondaryOf(4, "behind");
        EXPECT_EQ(check.summary(), "Pressure data unavailable.");
    }
}

TEST(PressureSummary, ignoresTheSecondWindowWithoutABlock) {
    PressureCheck check = openCheck(5, "ahead");
    check.secondary = secondaryOf(twoToThe63, "behind");
    EXPECT_EQ(check.summary(), "Most pressured: Main weekly, 5 points ahead of even pace.");
}

TEST(PressureDistance, isPrintableBelowTwoToThe63) {
    const double greatest = std::nextafter(twoToThe63, 0);
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double sign : {1.0, -1.0}) {
        for (const char* classification : {"ahead", "behind", "on_track"}) {
            EXPECT_TRUE(openCheck(sign * greatest, classification).hasPrintableDistance());
            EXPECT_FALSE(openCheck(sign * twoToThe63, classification).hasPrintableDistance());
            EXPECT_FALSE(openCheck(sign * 1e300, classification).hasPrintableDistance());
            EXPECT_FALSE(openCheck(sign * infinity, classification).hasPrintableDistance());

            const auto blockedBy = [&](double distance) {
                return blockedCheck(secondaryOf(sign * distance, classification));
            };
            EXPECT_TRUE(blockedBy(greatest).hasPrintableDistance());
            EXPECT_FALSE(blockedBy(twoToThe63).hasPrintableDistance());
            EXPECT_FALSE(blockedBy(1e300).hasPrintableDistance());
        }
    }
    EXPECT_FALSE(openCheck(std::nan(""), "ahead").hasPrintableDistance());
}

TEST(PressureDistance, doesNotMatterWhereNoTextIsMadeOfIt) {
    PressureCheck blocked = blockedCheck(secondaryOf(1, "ahead"));
    blocked.deltaPoints = 1e300;
    blocked.classification = "ahead";
    EXPECT_TRUE(blocked.hasPrintableDistance());
    blocked.secondary.reset();
    EXPECT_TRUE(blocked.hasPrintableDistance());
    EXPECT_EQ(blocked.summary(), "Blocked now: 5h limit.");

    PressureCheck incomplete = openCheck(1e300, "ahead");
    incomplete.classification.reset();
    EXPECT_TRUE(incomplete.hasPrintableDistance());
    EXPECT_EQ(incomplete.summary(), "Pressure data unavailable.");

    PressureCheck open = openCheck(1, "ahead");
    open.secondary = secondaryOf(1e300, "ahead");
    EXPECT_TRUE(open.hasPrintableDistance());
    EXPECT_TRUE(PressureCheck{}.hasPrintableDistance());
}

TEST(PressureDistanceDeathTest, endsTheProgramWhenItCannotBePrinted) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(openCheck(twoToThe63, "ahead").summary(), testing::KilledBySignal(SIGABRT), "");
    EXPECT_EXIT(openCheck(-twoToThe63, "behind").summary(), testing::KilledBySignal(SIGABRT), "");
    EXPECT_EXIT(
        blockedCheck(secondaryOf(1e300, "ahead")).summary(), testing::KilledBySignal(SIGABRT), "");
}

TEST(PressureDistanceDeathTest, endsTheProgramEvenForAWindowOnTrack) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(openCheck(twoToThe63, "on_track").summary(), testing::KilledBySignal(SIGABRT), "");
    EXPECT_EXIT(
        blockedCheck(secondaryOf(twoToThe63, "")).summary(), testing::KilledBySignal(SIGABRT), "");
}

} // namespace vorla
