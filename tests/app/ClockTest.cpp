// SPDX-License-Identifier: MIT
// The application when the clock is set, and when the machine sleeps meanwhile.
#include "app/Application.h"

#include <gtest/gtest.h>

#include <string>

using namespace std::chrono_literals;

namespace vorla {

namespace {

constexpr auto figures = "5h 87% · W 62%";
constexpr double dayInSeconds = 86'400;

class ClockTest : public Application, public testing::Test {
protected:
    ClockTest() {
        launch();
        finishRun(snapshotNamed("full.json"));
    }

    /// The menu as it reads when it opens now.
    const StatusMenu& opened() {
        item.listener->menuWillOpen();
        return item.last();
    }

    /// A snapshot that was fetched at this time.
    static std::string snapshotOf(double time) {
        return R"({"schemaVersion":1,"fetchedAt":)" + std::to_string(time) +
               R"(,"windows":[{"name":"5h","usedPercent":13,"remainingPercent":87,)"
               R"("windowDurationMins":300,"resetsAt":1763001000},)"
               R"({"name":"W","usedPercent":38,"remainingPercent":62,)"
               R"("windowDurationMins":10080,"resetsAt":1763301000}]})";
    }
};

} // namespace

TEST_F(ClockTest, mayBeSetToAnyTimeAndBack) {
    const double before = clock.time;
    const StatusMenu menu = opened();
    for (const double time :
         {0.0, before - 400 * dayInSeconds, before + 400 * dayInSeconds, 1e11}) {
        clock.time = time;
        EXPECT_EQ(opened().title, figures) << time;
        // The timer goes by another clock.
        const auto runs = launcher.children.size();
        loop.advance(59s);
        EXPECT_EQ(launcher.children.size(), runs) << time;
        loop.advance(1s);
        ASSERT_EQ(launcher.children.size(), runs + 1) << time;
        finishRun(snapshotNamed("full.json"));
        EXPECT_EQ(errorLine(), "") << time;
    }
    clock.time = before;
    EXPECT_EQ(opened(), menu);
}

TEST_F(ClockTest, takesSnapshotsOfAnyTimeOneAfterTheOther) {
    const double before = clock.time;
    for (const double time : {before, before + 400 * dayInSeconds, 0.0, before - 60, before}) {
        clock.time = time;
        loop.advance(60s);
        finishRun(snapshotOf(time));
        EXPECT_EQ(opened().title, figures) << time;
        EXPECT_EQ(errorLine(), "") << time;
        // No pace is made of a time that went backwards, or of one sample.
        EXPECT_EQ(item.text(LineRole::fiveHourPace).find("%/hr"), std::string::npos) << time;
    }
}

TEST_F(ClockTest, showsFreshFiguresOnWakingAfterASleepDuringARun) {
    loop.advance(60s);
    const auto runs = launcher.children.size();
    // The machine sleeps for a day: the limit of the run stands still, the clock does not.
    clock.time += dayInSeconds;
    EXPECT_EQ(opened().title, figures);
    loop.advance(44s);
    finishRun(snapshotOf(clock.time));
    EXPECT_EQ(errorLine(), "");
    EXPECT_EQ(item.last().title, figures);
    // What was missed is made up for by one refresh.
    loop.advance(60s);
    EXPECT_EQ(launcher.children.size(), runs + 1);
    finishRun(snapshotOf(clock.time + 60));
    EXPECT_EQ(errorLine(), "");
}

TEST_F(ClockTest, quitsInTimeThoughTheClockIsSetMeanwhile) {
    loop.advance(60s);
    delegate->applicationShouldTerminate();
    clock.time -= 400 * dayInSeconds;
    loop.advance(AppDelegate::terminationLimit - 1ms);
    EXPECT_EQ(replies, 0);
    loop.advance(1ms);
    EXPECT_EQ(replies, 1);
}

} // namespace vorla
