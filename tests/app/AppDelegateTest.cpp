// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"
#include "app/Application.h"
#include "app/LaunchMode.h"
#include "fakes/RefusingLoop.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <optional>

using namespace std::chrono_literals;

namespace vorla {

namespace {

constexpr auto loading = "Loading Vorla usage…";
constexpr auto missing = "vorla-usage missing. Install in ~/.local/bin or PATH, then Refresh.";
constexpr auto timedOut = "vorla-usage timed out. Try Refresh.";
constexpr auto collecting = "Weekly runway: collecting session data";
constexpr auto invalid = "Invalid JSON from vorla-usage. Install v0.5 or newer, then Refresh.";

/// A snapshot with one weekly window, fetched at `fetchedAt`, and whatever else is given.
std::string weeklySnapshot(double fetchedAt, int remaining, const std::string& more = "") {
    return R"({"schemaVersion":1,"fetchedAt":)" + std::to_string(fetchedAt) +
           R"(,"windows":[{"name":"w","usedPercent":)" + std::to_string(100 - remaining) +
           R"(,"remainingPercent":)" + std::to_string(remaining) +
           R"(,"windowDurationMins":10080,"resetsAt":1763500000}])" + more + "}";
}

class AppDelegateTest : public Application, public testing::Test {
protected:
    /// The refresh in flight, or else the next one, brings this snapshot.
    void refreshWith(const std::string& snapshot) {
        choose(LineRole::refresh);
        finishRun(snapshot);
    }

    /// Four snapshots, a hundred seconds and one point apart, make an estimate.
    void expectPaceFrom(double fetchedAt) {
        for (int number = 0; number < 4; ++number) {
            refreshWith(weeklySnapshot(fetchedAt + 100 * number, 60 - number));
        }
        EXPECT_TRUE(item.text(LineRole::weeklyPace).starts_with("Weekly pace: "))
            << item.text(LineRole::weeklyPace);
    }
};

LaunchMode modeOf(std::vector<std::string> arguments) {
    std::vector<char*> pointers;
    for (auto& argument : arguments) {
        pointers.push_back(argument.data());
    }
    return launchMode(pointers);
}

} // namespace

TEST_F(AppDelegateTest, showsTheLoadingTextUntilTheFirstRunHasEnded) {
    launch();
    ASSERT_EQ(item.shown.size(), 2U);
    EXPECT_EQ(item.shown.front().title, "Vorla ?");
    EXPECT_EQ(item.shown.front().lines.front().title, loading);
    EXPECT_EQ(errorLine(), loading);
    EXPECT_EQ(item.text(LineRole::refresh), "Refreshing…");
    EXPECT_FALSE(item.line(LineRole::refresh)->enabled);
}

TEST_F(AppDelegateTest, refreshesAtOnceWithTheOneArgument) {
    launch();
    ASSERT_EQ(launcher.children.size(), 1U);
    EXPECT_EQ(launcher.last().request.path, "/bin/true");
    EXPECT_EQ(launcher.last().request.argument, "--json");
}

TEST_F(AppDelegateTest, showsTheSnapshotOfASuccessfulRun) {
    launch();
    finishRun(snapshotNamed("full.json"));
    EXPECT_EQ(item.last().title, "5h 87% · W 62%");
    EXPECT_EQ(item.text(LineRole::fiveHourRemaining), "5-hour: 87% remaining");
    EXPECT_EQ(item.line(LineRole::error), std::nullopt);
    EXPECT_EQ(item.text(LineRole::refresh), "Refresh");
    EXPECT_TRUE(item.line(LineRole::refresh)->enabled);
}

TEST_F(AppDelegateTest, refreshesEverySixtySeconds) {
    launch();
    finishRun(snapshotNamed("full.json"));
    loop.advance(59s);
    EXPECT_EQ(launcher.children.size(), 1U);
    loop.advance(1s);
    EXPECT_EQ(launcher.children.size(), 2U);
    finishRun(snapshotNamed("full.json"));
    loop.advance(60s);
    EXPECT_EQ(launcher.children.size(), 3U);
}

TEST_F(AppDelegateTest, ignoresTheTimerWhileARefreshIsInFlight) {
    launch();
    // The limit of the first run falls between the ticks; its child ignores that for now.
    loop.advance(120s);
    EXPECT_EQ(launcher.children.size(), 1U);
    finishRun(snapshotNamed("full.json"));
    EXPECT_EQ(errorLine(), timedOut);
}

TEST_F(AppDelegateTest, ignoresTheRefreshItemWhileARefreshIsInFlight) {
    launch();
    EXPECT_FALSE(choose(LineRole::refresh));
    item.listener->chosen(MenuAction::refresh);
    EXPECT_EQ(launcher.children.size(), 1U);
}

TEST_F(AppDelegateTest, refreshesWhenTheItemIsChosen) {
    launch();
    finishRun(snapshotNamed("full.json"));
    EXPECT_TRUE(choose(LineRole::refresh));
    EXPECT_EQ(launcher.children.size(), 2U);
}

TEST_F(AppDelegateTest, keepsTheOldFiguresInViewDuringARefresh) {
    launch();
    finishRun(snapshotNamed("full.json"));
    choose(LineRole::refresh);
    EXPECT_EQ(item.last().title, "5h 87% · W 62%");
    EXPECT_EQ(item.text(LineRole::refresh), "Refreshing…");
}

TEST_F(AppDelegateTest, saysThatTheCompanionIsMissing) {
    make("/nonexistent/vorla-usage");
    launch();
    EXPECT_EQ(errorLine(), missing);
    EXPECT_EQ(item.last().title, "Vorla ?");
    EXPECT_TRUE(launcher.children.empty());
    EXPECT_TRUE(item.line(LineRole::refresh)->enabled);
}

TEST_F(AppDelegateTest, saysWhyTheCompanionCannotBeStarted) {
    launcher.launchError = std::errc::permission_denied;
    launch();
    EXPECT_EQ(errorLine(), "Cannot run vorla-usage: Permission denied");
    EXPECT_TRUE(item.line(LineRole::refresh)->enabled);
}

TEST_F(AppDelegateTest, takesNoRunForStartedThatThereWasNoMemoryFor) {
    launch();
    finishRun(snapshotNamed("full.json"));
    item.refusals = 1;
    choose(LineRole::refresh);
    EXPECT_EQ(errorLine(), "Cannot run vorla-usage: Cannot allocate memory");
    ASSERT_TRUE(item.line(LineRole::refresh)->enabled);
    launcher.isShortOfMemory = true;
    choose(LineRole::refresh);
    EXPECT_EQ(errorLine(), "Cannot run vorla-usage: Cannot allocate memory");
    ASSERT_TRUE(item.line(LineRole::refresh)->enabled);
    launcher.isShortOfMemory = false;
    choose(LineRole::refresh);
    EXPECT_EQ(launcher.children.size(), 2U);
}

TEST_F(AppDelegateTest, saysThatARunTimedOut) {
    launch();
    loop.advance(45s);
    EXPECT_EQ(launcher.last().signals, std::vector<int>{SIGTERM});
    finishRun("", SIGTERM);
    EXPECT_EQ(errorLine(), timedOut);
}

TEST_F(AppDelegateTest, aTimedOutRunStaysTimedOutWhateverItPrintedAndReturned) {
    launch();
    loop.advance(45s);
    finishRun(snapshotNamed("full.json"), 0);
    EXPECT_EQ(errorLine(), timedOut);
    EXPECT_EQ(item.last().title, "Vorla ?");
}

TEST_F(AppDelegateTest, showsWhatAFailedRunSaid) {
    launch();
    finishRun(snapshotNamed("full.json"), 3, " \n not logged in \r\n");
    EXPECT_EQ(errorLine(), "not logged in");
}

TEST_F(AppDelegateTest, showsTheStatusOfAFailedRunThatSaidOnlyBlanks) {
    launch();
    finishRun("", 3, "  \n");
    EXPECT_EQ(errorLine(), "vorla-usage failed (3). Try it in Terminal.");
}

TEST_F(AppDelegateTest, showsANegativeStatusWithItsSign) {
    launch();
    finishRun("", -7);
    EXPECT_EQ(errorLine(), "vorla-usage failed (-7). Try it in Terminal.");
}

TEST_F(AppDelegateTest, cutsAnErrorTextAfterThreeHundredCharacters) {
    launch();
    std::string errors = "\n ";
    std::string expected;
    for (int i = 0; i < 500; ++i) {
        // A letter and a combining accent: one character, three bytes.
        errors += "e\xCC\x81";
        expected += i < 300 ? "e\xCC\x81" : "";
    }
    finishRun("", 1, errors);
    EXPECT_EQ(errorLine(), expected);
}

TEST_F(AppDelegateTest, repairsAnErrorTextThatIsNotUtf8) {
    launch();
    finishRun("", 1, "bad \xFF byte");
    EXPECT_EQ(errorLine(), "bad \xEF\xBF\xBD byte");
}

TEST_F(AppDelegateTest, refusesEmptyAndMalformedOutput) {
    launch();
    finishRun("");
    EXPECT_EQ(errorLine(), invalid);
    choose(LineRole::refresh);
    finishRun("{");
    EXPECT_EQ(errorLine(), invalid);
    choose(LineRole::refresh);
    finishRun(R"({"schemaVersion":2,"fetchedAt":1,"windows":[]})");
    EXPECT_EQ(errorLine(), invalid);
}

TEST_F(AppDelegateTest, aSuccessAfterAFailureClearsTheError) {
    launch();
    finishRun("", 1);
    choose(LineRole::refresh);
    finishRun(snapshotNamed("full.json"));
    EXPECT_EQ(item.line(LineRole::error), std::nullopt);
    EXPECT_EQ(item.last().title, "5h 87% · W 62%");
}

TEST_F(AppDelegateTest, aFailureAfterASuccessClearsTheFigures) {
    launch();
    finishRun(snapshotNamed("full.json"));
    choose(LineRole::refresh);
    finishRun("", 1);
    EXPECT_EQ(item.last().title, "Vorla ?");
    EXPECT_EQ(item.line(LineRole::fiveHourRemaining), std::nullopt);
}

TEST_F(AppDelegateTest, aFailureToStartClearsTheFigures) {
    launch();
    finishRun(snapshotNamed("full.json"));
    launcher.launchError = std::errc::not_enough_memory;
    choose(LineRole::refresh);
    EXPECT_EQ(item.last().title, "Vorla ?");
    EXPECT_EQ(errorLine(), "Cannot run vorla-usage: Cannot allocate memory");
}

TEST_F(AppDelegateTest, showsThePaceOnceThereIsEnoughHistory) {
    launch();
    finishRun(weeklySnapshot(1000, 80));
    EXPECT_EQ(item.text(LineRole::weeklyPace), collecting);
    for (int minute = 1; minute <= 3; ++minute) {
        choose(LineRole::refresh);
        finishRun(weeklySnapshot(1000 + 100 * minute, 80 - minute));
    }
    EXPECT_EQ(item.text(LineRole::weeklyPace), "Weekly pace: 36%/hr · ~2h 8m");
}

TEST_F(AppDelegateTest, aFailedRunKeepsThePaceHistory) {
    launch();
    finishRun(weeklySnapshot(1000, 80));
    for (int minute = 1; minute <= 3; ++minute) {
        choose(LineRole::refresh);
        finishRun("", 1);
        choose(LineRole::refresh);
        finishRun(weeklySnapshot(1000 + 100 * minute, 80 - minute));
    }
    EXPECT_EQ(item.text(LineRole::weeklyPace), "Weekly pace: 36%/hr · ~2h 8m");
}

TEST_F(AppDelegateTest, treatsANumberThatNoTextCanHoldAsInvalid) {
    launch();
    finishRun(weeklySnapshot(
        1000, 80,
        R"(,"pressureCheck":{"blocked":false,"bucketLabel":"a","windowLabel":"b",)"
        R"("deltaPoints":9223372036854775808,"classification":"on_track"})"));
    EXPECT_EQ(errorLine(), invalid);
    EXPECT_EQ(item.last().title, "Vorla ?");
    choose(LineRole::refresh);
    finishRun(weeklySnapshot(
        1000, 80,
        R"(,"limitBuckets":[{"id":"x","label":"X","isDefault":false,"windows":[{"name":"n",)"
        R"("usedPercent":0,"remainingPercent":1,"windowDurationMins":5,"resetsAt":1e300}]}])"));
    EXPECT_EQ(errorLine(), invalid);
}

TEST_F(AppDelegateTest, acceptsSuchANumberWhereNoTextIsMadeOfIt) {
    launch();
    finishRun(weeklySnapshot(
        1000, 80,
        R"(,"pressureCheck":{"blocked":true,"deltaPoints":1e300},)"
        R"("limitBuckets":[{"id":"x","label":"X","isDefault":true,"windows":[{"name":"n",)"
        R"("usedPercent":0,"remainingPercent":1,"windowDurationMins":5,"resetsAt":1e300}]}])"));
    EXPECT_EQ(item.last().title, "W 80%");
}

TEST_F(AppDelegateTest, aRunwayThatNoTextCanHoldIsInvalidAndCostsOnlyTheHistory) {
    launch();
    // Time goes by so fast that the observed rate is next to nothing.
    refreshWith(weeklySnapshot(1000, 80));
    refreshWith(weeklySnapshot(2000, 80));
    refreshWith(weeklySnapshot(3000, 80));
    refreshWith(weeklySnapshot(1e300, 78));
    EXPECT_EQ(errorLine(), invalid);
    EXPECT_EQ(item.last().title, "Vorla ?");
    refreshWith(weeklySnapshot(4000, 77));
    EXPECT_EQ(item.line(LineRole::error), std::nullopt);
    EXPECT_EQ(item.last().title, "W 77%");
    EXPECT_EQ(item.text(LineRole::weeklyPace), collecting);
    expectPaceFrom(5000);
}

TEST_F(AppDelegateTest, anAbsurdTimeAtTheStartOfAPeriodCostsOnlyTheHistory) {
    launch();
    refreshWith(weeklySnapshot(-1e300, 90));
    for (const double fetchedAt : {1000.0, 2000.0}) {
        refreshWith(weeklySnapshot(fetchedAt, 90));
        EXPECT_EQ(item.text(LineRole::weeklyPace), collecting);
    }
    refreshWith(weeklySnapshot(3000, 80));
    EXPECT_EQ(errorLine(), invalid);
    refreshWith(weeklySnapshot(4000, 80));
    EXPECT_EQ(item.line(LineRole::error), std::nullopt);
    EXPECT_EQ(item.last().title, "W 80%");
    expectPaceFrom(5000);
}

TEST_F(AppDelegateTest, aSnapshotThatIsInvalidForAnotherNumberLeavesTheHistoryAlone) {
    launch();
    refreshWith(weeklySnapshot(1000, 80));
    refreshWith(weeklySnapshot(1100, 79));
    refreshWith(weeklySnapshot(1200, 78));
    // As a sample it would be the last one needed, and would begin another period besides.
    refreshWith(weeklySnapshot(
        1250, 99,
        R"(,"pressureCheck":{"blocked":false,"bucketLabel":"a","windowLabel":"b",)"
        R"("deltaPoints":1e300,"classification":"on_track"})"));
    EXPECT_EQ(errorLine(), invalid);
    refreshWith(weeklySnapshot(1300, 77));
    EXPECT_EQ(item.text(LineRole::weeklyPace), "Weekly pace: 36%/hr · ~2h 8m");
}

TEST_F(AppDelegateTest, aRefreshLeavesTheProblemsOfOtherFeaturesInView) {
    launch();
    loginItem.failure = "broken.";
    choose(LineRole::launchAtLogin);
    choose(LineRole::quotaNotifications);
    notificationCentre.answerSettings(AuthorizationStatus::denied);
    const auto expectBoth = [&] {
        EXPECT_EQ(item.text(LineRole::loginItemError), "Launch at Login: broken.");
        EXPECT_EQ(
            item.text(LineRole::notificationError),
            "Notifications denied. Enable them in System Settings.");
    };
    expectBoth();
    refreshWith(snapshotNamed("full.json"));
    expectBoth();
    refreshWith("{");
    EXPECT_EQ(errorLine(), invalid);
    expectBoth();
    launcher.launchError = std::errc::permission_denied;
    choose(LineRole::refresh);
    EXPECT_EQ(errorLine(), "Cannot run vorla-usage: Permission denied");
    expectBoth();
}

TEST_F(AppDelegateTest, makesAFreshMenuWhenItIsAboutToOpen) {
    launch();
    finishRun(snapshotNamed("full.json"));
    const auto before = item.shown.size();
    item.listener->menuWillOpen();
    EXPECT_EQ(item.shown.size(), before + 1);
}

TEST_F(AppDelegateTest, answersATerminationAtOnceWhenNothingRuns) {
    make("/nonexistent/vorla-usage");
    launch();
    choose(LineRole::quit);
    EXPECT_EQ(replies, 0) << "the answer comes later, never from inside the request";
    loop.runPending();
    EXPECT_EQ(replies, 1);
}

TEST_F(AppDelegateTest, waitsForTheChildToEndBeforeItTerminates) {
    launch();
    choose(LineRole::quit);
    EXPECT_EQ(launcher.last().signals, std::vector<int>{SIGTERM});
    loop.runPending();
    EXPECT_EQ(replies, 0);
    launcher.last().exit(SIGTERM);
    EXPECT_EQ(replies, 1) << "its streams need not have ended";
}

TEST_F(AppDelegateTest, killsAChildThatDoesNotEnd) {
    launch();
    choose(LineRole::quit);
    loop.runPending();
    loop.advance(3s);
    EXPECT_EQ(launcher.last().signals, (std::vector<int>{SIGTERM, SIGKILL}));
    launcher.last().exit(SIGKILL);
    EXPECT_EQ(replies, 1);
}

TEST_F(AppDelegateTest, leavesWithinFiveSecondsWhateverTheChildDoes) {
    launch();
    choose(LineRole::quit);
    loop.runPending();
    loop.advance(4400ms);
    EXPECT_EQ(replies, 0);
    loop.advance(200ms);
    EXPECT_EQ(replies, 1);
    launcher.last().exit(0);
    EXPECT_EQ(replies, 1) << "answered once";
}

TEST_F(AppDelegateTest, goesOnAndCanBeAskedAgainIfItCannotWaitForItsEnd) {
    // The refresh timer and the limit of the run.
    RefusingLoop full(loop, RefusingLoop::Refuses::timers, 2);
    make("/bin/true", full);
    launch();
    EXPECT_THROW(delegate->applicationShouldTerminate(), std::system_error);
    EXPECT_FALSE(delegate->isQuitting());
    finishRun(snapshotNamed("full.json"));
    EXPECT_EQ(item.shown.back().title, "5h 87% · W 62%");
}

TEST_F(AppDelegateTest, killsAtOnceWhenAskedASecondTime) {
    launch();
    choose(LineRole::quit);
    delegate->terminateAtOnce();
    EXPECT_EQ(launcher.last().signals, (std::vector<int>{SIGTERM, SIGKILL}));
    EXPECT_EQ(replies, 1);
    loop.runPending();
    loop.advance(10s);
    EXPECT_EQ(replies, 1);
}

TEST_F(AppDelegateTest, aSecondQuitFromTheMenuChangesNothing) {
    launch();
    choose(LineRole::quit);
    choose(LineRole::quit);
    EXPECT_EQ(launcher.last().signals, std::vector<int>{SIGTERM});
}

TEST_F(AppDelegateTest, aLateCompletionChangesNothingOnceQuitting) {
    launch();
    choose(LineRole::quit);
    const auto before = item.shown.size();
    finishRun(snapshotNamed("full.json"));
    EXPECT_EQ(item.shown.size(), before);
}

TEST_F(AppDelegateTest, doesNothingForALineWithoutAction) {
    launch();
    finishRun(snapshotNamed("full.json"));
    const auto before = item.shown.size();
    item.listener->chosen(MenuAction::none);
    loop.runPending();
    EXPECT_EQ(item.shown.size(), before);
    EXPECT_EQ(launcher.children.size(), 1U);
    EXPECT_EQ(replies, 0);
}

TEST_F(AppDelegateTest, refreshesNoMoreOnceQuitting) {
    launch();
    finishRun(snapshotNamed("full.json"));
    choose(LineRole::quit);
    item.listener->chosen(MenuAction::refresh);
    loop.advance(120s);
    EXPECT_EQ(launcher.children.size(), 1U);
}

TEST_F(AppDelegateTest, aRunThatOutlivesTheDelegateEndsInSilence) {
    launch();
    const auto before = item.shown.size();
    delegate.reset();
    launcher.last().finish(0);
    loop.runPending();
    loop.advance(120s);
    EXPECT_EQ(item.shown.size(), before);
    EXPECT_EQ(item.listener, nullptr);
    EXPECT_EQ(loop.timerCount(), 0U);
}

TEST(LaunchMode, actsOnASwitchOnlyWhenItStandsAlone) {
    EXPECT_EQ(modeOf({"p", "--register-login-item"}), LaunchMode::registerLoginItem);
    EXPECT_EQ(modeOf({"p", "--unregister-login-item"}), LaunchMode::unregisterLoginItem);
    EXPECT_EQ(modeOf({"p", "--register-login-item", "x"}), LaunchMode::menuBar);
    EXPECT_EQ(modeOf({"p", "x", "--unregister-login-item"}), LaunchMode::menuBar);
    EXPECT_EQ(modeOf({"p", "--REGISTER-login-item"}), LaunchMode::menuBar);
    EXPECT_EQ(modeOf({"p", ""}), LaunchMode::menuBar);
    EXPECT_EQ(modeOf({"p"}), LaunchMode::menuBar);
    EXPECT_EQ(modeOf({}), LaunchMode::menuBar);
}

} // namespace vorla
