// SPDX-License-Identifier: MIT
#include "model/SessionPaceTracker.h"

#include <gtest/gtest.h>

namespace vorla {
namespace {

constexpr double resetsAt = 100000;

Usage::Window
window(std::int64_t durationMins, std::int64_t remainingPercent, double windowResetsAt = resetsAt) {
    return {
        .name = durationMins == weeklyMinutes ? "weekly" : "fiveHour",
        .usedPercent = 100 - remainingPercent,
        .remainingPercent = remainingPercent,
        .windowDurationMins = durationMins,
        .resetsAt = windowResetsAt};
}

Usage snapshot(double fetchedAt, std::vector<Usage::Window> windows) {
    Usage usage;
    usage.fetchedAt = fetchedAt;
    usage.windows = std::move(windows);
    return usage;
}

/// A tracker that has seen the weekly window at 1000, 1100 and 1200, at 80, 79 and 78 percent.
SessionPaceTracker trackerWithThreeSamples() {
    SessionPaceTracker tracker;
    tracker.observe(snapshot(1000, {window(weeklyMinutes, 80)}));
    tracker.observe(snapshot(1100, {window(weeklyMinutes, 79)}));
    tracker.observe(snapshot(1200, {window(weeklyMinutes, 78)}));
    return tracker;
}

TEST(SessionPaceTracker, knowsNothingAtTheFirstSnapshot) {
    SessionPaceTracker tracker;
    EXPECT_TRUE(tracker.observations().empty());
    const PaceEstimates estimates = tracker.observe(snapshot(1000, {window(fiveHourMinutes, 80)}));
    EXPECT_EQ(estimates, (PaceEstimates{{fiveHourMinutes, PaceEstimate{}}}));
    EXPECT_EQ(
        tracker.observations().at("fiveHour"), (SessionPaceTracker::Observation{
                                                   .remainingPercent = 80,
                                                   .resetsAt = resetsAt,
                                                   .startedAt = 1000,
                                                   .lastFetchedAt = 1000,
                                                   .sampleCount = 1}));
}

TEST(SessionPaceTracker, estimatesAtTheFourthSnapshotOfAPeriod) {
    SessionPaceTracker tracker;
    const PaceEstimates none = {{weeklyMinutes, PaceEstimate{}}};
    EXPECT_EQ(tracker.observe(snapshot(1000, {window(weeklyMinutes, 80)})), none);
    EXPECT_EQ(tracker.observe(snapshot(1100, {window(weeklyMinutes, 79)})), none);
    EXPECT_EQ(tracker.observe(snapshot(1200, {window(weeklyMinutes, 78)})), none);
    EXPECT_EQ(
        tracker.observe(snapshot(1300, {window(weeklyMinutes, 77)})),
        (PaceEstimates{
            {weeklyMinutes,
             {.percentPerHour = 36, .secondsToExhaustion = 7700, .survivesUntilReset = false}}}));
}

TEST(SessionPaceTracker, countsTheSameSnapshotOnce) {
    SessionPaceTracker tracker = trackerWithThreeSamples();
    const PaceEstimates again = tracker.observe(snapshot(1200, {window(weeklyMinutes, 78)}));
    EXPECT_EQ(again.at(weeklyMinutes), PaceEstimate{});
    EXPECT_EQ(tracker.observations().at("weekly").sampleCount, 3);
}

TEST(SessionPaceTracker, snapshotsAMinuteApartGiveTheFirstEstimateAtTheFourth) {
    SessionPaceTracker tracker;
    for (int sample = 1; sample <= 4; ++sample) {
        const PaceEstimates estimates = tracker.observe(
            snapshot(1000 + 60.0 * (sample - 1), {window(fiveHourMinutes, 80 - (sample - 1))}));
        EXPECT_EQ(estimates.at(fiveHourMinutes).percentPerHour.has_value(), sample == 4) << sample;
    }
}

TEST(SessionPaceTracker, snapshotsHalfAMinuteApartGiveTheFirstEstimateAtTheSeventh) {
    SessionPaceTracker tracker;
    for (int sample = 1; sample <= 7; ++sample) {
        const PaceEstimates estimates = tracker.observe(
            snapshot(1000 + 30.0 * (sample - 1), {window(fiveHourMinutes, 80 - (sample - 1))}));
        EXPECT_EQ(estimates.at(fiveHourMinutes).percentPerHour.has_value(), sample == 7) << sample;
    }
}

TEST(SessionPaceTracker, needsTwoPointsOfUse) {
    SessionPaceTracker tracker;
    tracker.observe(snapshot(0, {window(fiveHourMinutes, 80)}));
    for (int hour = 1; hour <= 20; ++hour) {
        const PaceEstimates estimates =
            tracker.observe(snapshot(3600.0 * hour, {window(fiveHourMinutes, 79)}));
        EXPECT_EQ(estimates.at(fiveHourMinutes), PaceEstimate{}) << hour;
    }
    const PaceEstimates estimates =
        tracker.observe(snapshot(3600.0 * 21, {window(fiveHourMinutes, 78)}));
    EXPECT_TRUE(estimates.at(fiveHourMinutes).percentPerHour.has_value());
}

TEST(SessionPaceTracker, measuresFromTheStartOfThePeriodNotFromTheLastSnapshot) {
    SessionPaceTracker tracker;
    tracker.observe(snapshot(0, {window(fiveHourMinutes, 90)}));
    tracker.observe(snapshot(1800, {window(fiveHourMinutes, 90)}));
    tracker.observe(snapshot(3600, {window(fiveHourMinutes, 90)}));
    const PaceEstimates estimates = tracker.observe(snapshot(7200, {window(fiveHourMinutes, 80)}));
    EXPECT_EQ(estimates.at(fiveHourMinutes).percentPerHour, 5);
    EXPECT_EQ(estimates.at(fiveHourMinutes).secondsToExhaustion, 57600);
}

TEST(SessionPaceTracker, startsAnewWhenTheRemainingShareRisesAboveTheBaseline) {
    SessionPaceTracker tracker;
    tracker.observe(snapshot(1000, {window(fiveHourMinutes, 40)}));
    tracker.observe(snapshot(1100, {window(fiveHourMinutes, 41)}));
    EXPECT_EQ(
        tracker.observations().at("fiveHour"), (SessionPaceTracker::Observation{
                                                   .remainingPercent = 41,
                                                   .resetsAt = resetsAt,
                                                   .startedAt = 1100,
                                                   .lastFetchedAt = 1100,
                                                   .sampleCount = 1}));
}

TEST(SessionPaceTracker, goesOnWhenTheRemainingShareRisesOnlyUpToTheBaseline) {
    SessionPaceTracker tracker;
    tracker.observe(snapshot(1000, {window(fiveHourMinutes, 40)}));
    tracker.observe(snapshot(1100, {window(fiveHourMinutes, 38)}));
    tracker.observe(snapshot(1200, {window(fiveHourMinutes, 40)}));
    EXPECT_EQ(tracker.observations().at("fiveHour").sampleCount, 3);
    EXPECT_EQ(tracker.observations().at("fiveHour").startedAt, 1000);
}

TEST(SessionPaceTracker, startsAnewOnlyWhenTheResetMovesByMoreThanAMinute) {
    struct Row {
        double move;
        std::int64_t sampleCount;
    };

    for (const Row row : {Row{60, 2}, Row{-60, 2}, Row{60.5, 1}, Row{61, 1}, Row{-61, 1}}) {
        SessionPaceTracker tracker;
        tracker.observe(snapshot(1000, {window(fiveHourMinutes, 40)}));
        tracker.observe(snapshot(1100, {window(fiveHourMinutes, 39, resetsAt + row.move)}));
        EXPECT_EQ(tracker.observations().at("fiveHour").sampleCount, row.sampleCount) << row.move;
    }
}

TEST(SessionPaceTracker, aResetThatDriftsSlowlyStartsAnewOnceItIsAMinuteAway) {
    SessionPaceTracker tracker;
    for (int sample = 0; sample <= 3; ++sample) {
        tracker.observe(snapshot(
            1000 + 60.0 * sample, {window(fiveHourMinutes, 40, resetsAt + 25.0 * sample)}));
    }
    EXPECT_EQ(tracker.observations().at("fiveHour").sampleCount, 1);
    EXPECT_EQ(tracker.observations().at("fiveHour").resetsAt, resetsAt + 75);
}

TEST(SessionPaceTracker, startsEveryWindowAnewWhenTimeGoesBackwards) {
    SessionPaceTracker tracker;
    const std::vector<Usage::Window> windows = {
        window(fiveHourMinutes, 40), window(weeklyMinutes, 80)};
    tracker.observe(snapshot(1000, windows));
    tracker.observe(snapshot(1100, windows));
    tracker.observe(snapshot(1099, windows));
    for (const char* name : {"fiveHour", "weekly"}) {
        EXPECT_EQ(tracker.observations().at(name).sampleCount, 1) << name;
        EXPECT_EQ(tracker.observations().at(name).startedAt, 1099) << name;
    }
}

TEST(SessionPaceTracker, anEmptyWindowIsExhaustedNow) {
    SessionPaceTracker tracker = trackerWithThreeSamples();
    const PaceEstimates estimates = tracker.observe(snapshot(1300, {window(weeklyMinutes, 0)}));
    EXPECT_EQ(estimates.at(weeklyMinutes).percentPerHour, 960);
    EXPECT_EQ(estimates.at(weeklyMinutes).secondsToExhaustion, 0);
    EXPECT_EQ(estimates.at(weeklyMinutes).survivesUntilReset, false);
}

TEST(SessionPaceTracker, anEmptyWindowSurvivesAResetThatHasPassed) {
    SessionPaceTracker tracker;
    for (int sample = 0; sample <= 2; ++sample) {
        tracker.observe(snapshot(1000 + 100.0 * sample, {window(weeklyMinutes, 80, 1250)}));
    }
    const PaceEstimates estimates =
        tracker.observe(snapshot(1300, {window(weeklyMinutes, 0, 1250)}));
    EXPECT_EQ(estimates.at(weeklyMinutes).secondsToExhaustion, 0);
    EXPECT_EQ(estimates.at(weeklyMinutes).survivesUntilReset, true);
}

TEST(SessionPaceTracker, aWeeklyWindowSurvivesWhenItsResetIsNotLaterThanItsEnd) {
    struct Row {
        double secondsToReset;
        bool survives;
    };

    for (const Row row : {Row{7699, true}, Row{7700, true}, Row{7701, false}}) {
        const double reset = 1300 + row.secondsToReset;
        SessionPaceTracker tracker;
        for (int sample = 0; sample <= 2; ++sample) {
            tracker.observe(
                snapshot(1000 + 100.0 * sample, {window(weeklyMinutes, 80 - sample, reset)}));
        }
        const PaceEstimates estimates =
            tracker.observe(snapshot(1300, {window(weeklyMinutes, 77, reset)}));
        EXPECT_EQ(estimates.at(weeklyMinutes).survivesUntilReset, row.survives)
            << row.secondsToReset;
    }
}

TEST(SessionPaceTracker, saysOfNoOtherWindowThatItSurvives) {
    for (const std::int64_t duration : {fiveHourMinutes, std::int64_t{1440}}) {
        SessionPaceTracker tracker;
        PaceEstimates estimates;
        for (int sample = 0; sample <= 3; ++sample) {
            estimates =
                tracker.observe(snapshot(1000 + 100.0 * sample, {window(duration, 80 - sample)}));
        }
        EXPECT_EQ(estimates.at(duration).percentPerHour, 36) << duration;
        EXPECT_EQ(estimates.at(duration).survivesUntilReset, std::nullopt) << duration;
    }
}

TEST(SessionPaceTracker, ofTwoWindowsOfOneLengthTheLaterOneCounts) {
    SessionPaceTracker tracker;
    PaceEstimates estimates;
    for (int sample = 0; sample <= 3; ++sample) {
        Usage::Window first = window(fiveHourMinutes, 80 - sample);
        Usage::Window second = window(fiveHourMinutes, 60 - 2 * sample);
        first.name = "first";
        second.name = "second";
        estimates = tracker.observe(snapshot(1000 + 100.0 * sample, {first, second}));
    }
    EXPECT_EQ(estimates.size(), 1U);
    EXPECT_EQ(estimates.at(fiveHourMinutes).percentPerHour, 72);
    EXPECT_EQ(tracker.observations().size(), 2U);
}

TEST(SessionPaceTracker, twoWindowsOfOneNameShareOneObservation) {
    SessionPaceTracker tracker;
    Usage::Window later = window(weeklyMinutes, 35);
    later.name = "fiveHour";
    tracker.observe(snapshot(1000, {window(fiveHourMinutes, 40), later}));
    ASSERT_EQ(tracker.observations().size(), 1U);
    EXPECT_EQ(tracker.observations().at("fiveHour").remainingPercent, 40);
    EXPECT_EQ(tracker.observations().at("fiveHour").sampleCount, 1);
}

TEST(SessionPaceTracker, aWindowThatWasMissingStartsOver) {
    SessionPaceTracker tracker = trackerWithThreeSamples();
    tracker.observe(snapshot(1250, {window(fiveHourMinutes, 50)}));
    EXPECT_FALSE(tracker.observations().contains("weekly"));
    const PaceEstimates estimates = tracker.observe(snapshot(1300, {window(weeklyMinutes, 77)}));
    EXPECT_EQ(estimates.at(weeklyMinutes), PaceEstimate{});
    EXPECT_EQ(tracker.observations().at("weekly").sampleCount, 1);
}

TEST(SessionPaceTracker, doesNotLookIntoLimitBuckets) {
    SessionPaceTracker tracker;
    Usage usage = snapshot(1000, {window(fiveHourMinutes, 50)});
    Usage::LimitBucket bucket;
    bucket.windows = {window(weeklyMinutes, 9)};
    usage.limitBuckets = {bucket};
    EXPECT_FALSE(tracker.observe(usage).contains(weeklyMinutes));
    EXPECT_FALSE(tracker.observations().contains("weekly"));
}

} // namespace
} // namespace vorla
