// SPDX-License-Identifier: MIT
#include "model/FennicQuota.h"

#include <gtest/gtest.h>

#include <limits>

namespace vorla {

namespace {

constexpr double fetchedAt = 1'750'000'000;

Usage::Window window(std::int64_t minutes, std::int64_t remainingPercent, double secondsToReset) {
    return {
        .name = "any",
        .usedPercent = 0,
        .remainingPercent = remainingPercent,
        .windowDurationMins = minutes,
        .resetsAt = fetchedAt + secondsToReset};
}

Usage usageWith(std::vector<Usage::Window> windows) {
    Usage usage;
    usage.fetchedAt = fetchedAt;
    usage.windows = std::move(windows);
    return usage;
}

PaceEstimates paceOf(std::int64_t minutes, std::optional<double> percentPerHour) {
    PaceEstimate estimate;
    estimate.percentPerHour = percentPerHour;
    estimate.secondsToExhaustion = 1.0;
    return {{minutes, estimate}};
}

std::string encoded(const FennicQuota& quota) {
    return quota.encode().text().value_or("not expressible");
}

} // namespace

TEST(FennicQuota, isEmptyWithoutSnapshotAndEstimates) {
    EXPECT_EQ(FennicQuota::of(std::nullopt, {}), FennicQuota());
}

TEST(FennicQuota, keepsEstimatesEvenWithoutASnapshot) {
    const FennicQuota quota = FennicQuota::of(std::nullopt, paceOf(weeklyMinutes, 0.5));
    EXPECT_EQ(quota, FennicQuota{.weeklyObservedPercentPerHour = 0.5});
}

TEST(FennicQuota, takesBothWindowsTheSummaryAndBothRates) {
    Usage usage = usageWith({window(10080, 62, 400000.5), window(300, 87, 9000)});
    usage.pressureCheck = Usage::PressureCheck{};
    PaceEstimates pace = paceOf(300, 4.25);
    pace[10080].percentPerHour = 0.0;
    const FennicQuota expected = {
        .fiveHourRemainingPercent = 87,
        .fiveHourSecondsToReset = 9000,
        .weeklyRemainingPercent = 62,
        .weeklySecondsToReset = 400000.5,
        .pressureSummary = usage.pressureCheck->summary(),
        .fiveHourObservedPercentPerHour = 4.25,
        .weeklyObservedPercentPerHour = 0.0};
    EXPECT_EQ(FennicQuota::of(usage, pace), expected);
    EXPECT_FALSE(expected.pressureSummary->empty());
}

TEST(FennicQuota, doesNotLookIntoLimitBuckets) {
    Usage usage = usageWith({window(10080, 62, 60)});
    usage.limitBuckets = {{.id = "a", .label = "A", .windows = {window(300, 10, 60)}}};
    const FennicQuota quota = FennicQuota::of(usage, {});
    EXPECT_EQ(quota.fiveHourRemainingPercent, std::nullopt);
    EXPECT_EQ(quota.fiveHourSecondsToReset, std::nullopt);
    EXPECT_EQ(quota.weeklyRemainingPercent, 62);
}

TEST(FennicQuota, takesTheFirstOfTwoWindowsOfTheSameLength) {
    const Usage usage = usageWith(
        {window(60, 1, 1), window(300, 40, 50), window(300, 41, 51), window(10080, 2, 20),
         window(10080, 3, 30)});
    const FennicQuota quota = FennicQuota::of(usage, {});
    EXPECT_EQ(quota.fiveHourRemainingPercent, 40);
    EXPECT_EQ(quota.fiveHourSecondsToReset, 50);
    EXPECT_EQ(quota.weeklyRemainingPercent, 2);
    EXPECT_EQ(quota.weeklySecondsToReset, 20);
}

TEST(FennicQuota, sendsAResetAtTheMomentOfTheSnapshotAsZeroSeconds) {
    const FennicQuota quota = FennicQuota::of(usageWith({window(300, 5, 0)}), {});
    EXPECT_EQ(encoded(quota), R"({"fiveHourRemainingPercent":5,"fiveHourSecondsToReset":0})");
}

TEST(FennicQuota, leavesOutAResetThatIsPastOrNoNumber) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    for (const double seconds : {-1.0, -infinity, infinity, notANumber}) {
        const Usage usage = usageWith({window(300, 5, seconds), window(10080, 6, seconds)});
        EXPECT_EQ(
            encoded(FennicQuota::of(usage, {})),
            R"({"fiveHourRemainingPercent":5,"weeklyRemainingPercent":6})")
            << seconds;
    }
}

TEST(FennicQuota, copiesRemainingSharesAsTheyAre) {
    for (const std::int64_t percent : {0, -3, 104}) {
        const Usage usage = usageWith({window(300, percent, 1), window(10080, percent, 1)});
        const FennicQuota quota = FennicQuota::of(usage, {});
        EXPECT_EQ(quota.fiveHourRemainingPercent, percent);
        EXPECT_EQ(quota.weeklyRemainingPercent, percent);
    }
    EXPECT_EQ(
        encoded({.fiveHourRemainingPercent = 0, .weeklyRemainingPercent = -3}),
        R"({"fiveHourRemainingPercent":0,"weeklyRemainingPercent":-3})");
}

TEST(FennicQuota, leavesOutARateThatIsNegativeOrNoNumberAndKeepsTheRest) {
    const Usage usage = usageWith({window(300, 5, 7)});
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    for (const std::optional<double> rate :
         {std::optional(-0.5), std::optional(infinity), std::optional(notANumber),
          std::optional<double>()}) {
        EXPECT_EQ(
            encoded(FennicQuota::of(usage, paceOf(300, rate))),
            R"({"fiveHourRemainingPercent":5,"fiveHourSecondsToReset":7})");
    }
}

TEST(FennicQuota, looksForRatesUnderTheTwoWindowLengthsOnly) {
    EXPECT_EQ(FennicQuota::of(std::nullopt, paceOf(301, 1.0)), FennicQuota());
}

TEST(FennicQuota, encodesEveryFieldUnderItsOwnName) {
    const FennicQuota quota = {
        .fiveHourRemainingPercent = 87,
        .fiveHourSecondsToReset = 9000.25,
        .weeklyRemainingPercent = 62,
        .weeklySecondsToReset = 1e21,
        .pressureSummary = "On track.",
        .fiveHourObservedPercentPerHour = 0.1,
        .weeklyObservedPercentPerHour = 0};
    EXPECT_EQ(
        encoded(quota), R"({"fiveHourRemainingPercent":87,"fiveHourSecondsToReset":9000.25,)"
                        R"("weeklyRemainingPercent":62,"weeklySecondsToReset":1e+21,)"
                        R"("pressureSummary":"On track.","fiveHourObservedPercentPerHour":0.1,)"
                        R"("weeklyObservedPercentPerHour":0})");
    EXPECT_EQ(FennicQuota::decode(parseJson(encoded(quota))), quota);
}

TEST(FennicQuota, encodesNothingAsAnObjectWithoutMembers) {
    EXPECT_EQ(encoded({}), "{}");
    EXPECT_EQ(FennicQuota::decode(parseJson("{}")), FennicQuota());
}

TEST(FennicQuota, treatsNullAsAbsentAndIgnoresUnknownKeysWhenDecoding) {
    const FennicQuota quota =
        FennicQuota::decode(parseJson(R"({"fiveHourRemainingPercent":null,"more":[1]})"));
    EXPECT_EQ(quota, FennicQuota());
}

TEST(FennicQuota, refusesFieldsOfAnotherType) {
    for (const char* document :
         {"[]", "1", R"({"fiveHourRemainingPercent":"87"})", R"({"fiveHourRemainingPercent":87.5})",
          R"({"weeklyRemainingPercent":true})", R"({"fiveHourSecondsToReset":"1"})",
          R"({"weeklySecondsToReset":[]})", R"({"pressureSummary":1})",
          R"({"weeklyObservedPercentPerHour":{}})"}) {
        EXPECT_THROW(FennicQuota::decode(parseJson(document)), DecodeError) << document;
    }
}

} // namespace vorla
