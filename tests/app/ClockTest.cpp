// SPDX-License-Identifier: MIT
// The application when the clock is set, and when the machine sleeps meanwhile.
#include "app/Application.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

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

    std::string pace() const { return item.text(LineRole::fiveHourPace); }

    /// A snapshot that was fetched at this time, with so much left for five hours.
    static std::string snapshotOf(double time, int left = 87) {
        return R"({"schemaVersion":1,"fetchedAt":)" + std::to_string(time) +
               R"(,"windows":[{"name":"5h","usedPercent":)" + std::to_string(100 - left) +
               R"(,"remainingPercent":)" + std::to_string(left) +
               R"(,"windowDurationMins":300,"resetsAt":1763001000},)"
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
    const double start = clock.time;
    const double later = start + 400 * dayInSeconds;
    const double earlier = start - 400 * dayInSeconds;
    // Enough for a pace, if each jump back did not begin anew.
    const std::vector<double> times = {start,       later, later + 300, earlier, start,
                                       start + 300, 0,     300,         600};
    int left = 90;
    for (const double time : times) {
        clock.time = time;
        loop.advance(60s);
        finishRun(snapshotOf(time, --left));
        EXPECT_EQ(opened().title, "5h " + std::to_string(left) + "% · W 62%") << time;
        EXPECT_EQ(errorLine(), "") << time;
        EXPECT_EQ(pace().find("%/hr"), std::string::npos) << time;
    }
    // The fourth in a row without one.
    clock.time = 900;
    loop.advance(60s);
    finishRun(snapshotOf(900, --left));
    EXPECT_NE(pace().find("%/hr"), std::string::npos) << pace();
}

TEST_F(ClockTest, showsFreshFiguresOnWakingAfterASleepDuringARun) {
    loop.advance(60s);
    const auto runs = launcher.children.size();
    // The machine sleeps for a day: the limit of the run stands still, the clock does not.
    clock.time += dayInSeconds;
    loop.sleep(24h);
    EXPECT_EQ(opened().title, figures);
    // What fell due meanwhile is the business of the run that is still going on.
    EXPECT_EQ(launcher.children.size(), runs);
    loop.advance(44s);
    EXPECT_TRUE(launcher.last().signals.empty());
    finishRun(snapshotOf(clock.time));
    EXPECT_EQ(errorLine(), "");
    EXPECT_EQ(item.last().title, figures);
    loop.advance(16s);
    EXPECT_EQ(launcher.children.size(), runs + 1);
}

TEST_F(ClockTest, makesUpWithOneRefreshForAllThatASleepHasMissed) {
    loop.advance(30s);
    const auto runs = launcher.children.size();
    clock.time += dayInSeconds;
    loop.sleep(24h);
    ASSERT_EQ(launcher.children.size(), runs + 1);
    finishRun(snapshotOf(clock.time));
    EXPECT_EQ(errorLine(), "");
    loop.advance(29s);
    EXPECT_EQ(launcher.children.size(), runs + 1);
    loop.advance(1s);
    EXPECT_EQ(launcher.children.size(), runs + 2);
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
