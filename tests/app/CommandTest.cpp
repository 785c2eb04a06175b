// SPDX-License-Identifier: MIT
#include "app/Command.h"

#include "fakes/FakeLauncher.h"
#include "fakes/ManualLoop.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <vector>

namespace vorla {

namespace {

using namespace std::chrono_literals;
using Stream = ChildProcess::Stream;
using Signals = std::vector<int>;

/// One run whose child the test plays.
class CommandTest : public testing::Test {
protected:
    ~CommandTest() override {
        if (const auto left = weak.lock()) {
            left->abandon();
        }
    }

    void start(const std::string& argument) {
        command->start("/tool", argument, [this](CommandResult result) {
            results.push_back(std::move(result));
        });
    }

    FakeChild& child() const { return launcher.last(); }

    ManualLoop loop;
    FakeLauncher launcher;
    std::shared_ptr<Command> command = Command::create(loop, launcher, Environment({"A=1"}));
    std::weak_ptr<Command> weak = command;
    std::vector<CommandResult> results;
};

} // namespace

TEST_F(CommandTest, startsTheToolWithItsArgumentAndTheCompanionVariable) {
    start("--json");
    EXPECT_EQ(child().request.path, "/tool");
    EXPECT_EQ(child().request.argument, "--json");
    EXPECT_EQ(
        child().request.environment, (std::vector<std::string>{"A=1", "VORLA_USAGE_COMPANION=1"}));
}

TEST_F(CommandTest, overwritesTheCompanionVariable) {
    command = Command::create(loop, launcher, Environment({"VORLA_USAGE_COMPANION=0"}));
    weak = command;
    start("--json");
    EXPECT_EQ(child().request.environment, std::vector<std::string>{"VORLA_USAGE_COMPANION=1"});
}

TEST_F(CommandTest, completesOnceWithEverythingThatWasPrinted) {
    start("--json");
    child().print("ab");
    child().printError("x");
    child().print("c\xFF");
    child().printError("\xFFy");
    child().finish(3);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results[0].output, "abc\xFF");
    EXPECT_EQ(results[0].errors, "x\uFFFDy");
    EXPECT_EQ(results[0].status, 3);
    EXPECT_FALSE(results[0].timedOut);
    EXPECT_EQ(loop.timerCount(), 0U);
}

TEST_F(CommandTest, completesOnlyWhenChildAndStreamsHaveEndedInAnyOrder) {
    using Step = std::function<void(FakeChild&)>;
    std::vector<std::pair<int, Step>> steps = {
        {0, [](FakeChild& child) { child.exit(7); }},
        {1, [](FakeChild& child) { child.close(Stream::output); }},
        {2, [](FakeChild& child) { child.close(Stream::errors); }}};
    const auto less = [](const auto& left, const auto& right) { return left.first < right.first; };
    do {
        results.clear();
        command = Command::create(loop, launcher, Environment());
        start("--web");
        steps[0].second(child());
        steps[1].second(child());
        EXPECT_TRUE(results.empty());
        steps[2].second(child());
        ASSERT_EQ(results.size(), 1U);
        EXPECT_EQ(results[0].status, 7);
    } while (std::next_permutation(steps.begin(), steps.end(), less));
}

TEST_F(CommandTest, passesANegativeStatusThrough) {
    start("--json");
    child().finish(-2);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results[0].status, -2);
}

TEST_F(CommandTest, showsTheObserverAllTextSoFarAtEachDelivery) {
    std::vector<std::string> seen;
    command->onOutput = [&](std::string_view text) { seen.emplace_back(text); };
    start("--web");
    child().print("ab");
    child().printError("not this");
    child().print("c\xC3");
    child().print("\xA9");
    child().finish(0);
    EXPECT_EQ(seen, (std::vector<std::string>{"ab", "abc\uFFFD", "abc\u00E9"}));
}

TEST_F(CommandTest, neverCallsTheObserverOfAChildThatPrintsNothing) {
    int calls = 0;
    command->onOutput = [&](std::string_view) { ++calls; };
    start("--json");
    child().finish(0);
    EXPECT_EQ(calls, 0);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results[0].output, "");
}

TEST_F(CommandTest, skipsAnObserverThatHasBeenTakenAway) {
    std::vector<std::string> seen;
    command->onOutput = [&](std::string_view text) { seen.emplace_back(text); };
    start("--web");
    child().print("ab");
    command->onOutput = nullptr;
    child().print("cd");
    child().finish(0);
    EXPECT_EQ(seen, std::vector<std::string>{"ab"});
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results[0].output, "abcd");
}

TEST_F(CommandTest, showsALateObserverTheTextFromTheStart) {
    std::vector<std::string> seen;
    start("--web");
    child().print("ab");
    command->onOutput = [&](std::string_view text) { seen.emplace_back(text); };
    child().print("cd");
    EXPECT_EQ(seen, std::vector<std::string>{"abcd"});
}

TEST_F(CommandTest, letsAnObserverReplaceItself) {
    std::vector<std::string> seen;
    command->onOutput = [&, marker = std::string("first ")](std::string_view text) {
        command->onOutput = [&](std::string_view later) { seen.emplace_back(later); };
        seen.push_back(marker + std::string(text));
    };
    start("--web");
    child().print("ab");
    child().print("cd");
    EXPECT_EQ(seen, (std::vector<std::string>{"first ab", "abcd"}));
}

TEST_F(CommandTest, throwsTheLaunchErrorAndNeverCompletes) {
    launcher.launchError = std::errc::no_such_file_or_directory;
    try {
        start("--json");
        FAIL() << "nothing was thrown";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code().message(), "No such file or directory");
    }
    EXPECT_EQ(loop.timerCount(), 0U);
    command->stop();
    command->kill();
    int exits = 0;
    command->whenExited([&] { ++exits; });
    EXPECT_EQ(exits, 1);
    command.reset();
    EXPECT_TRUE(weak.expired());
    EXPECT_TRUE(results.empty());
}

TEST_F(CommandTest, limitsExactlyTheTwoShortRuns) {
    const std::vector<std::pair<std::string, std::size_t>> cases = {
        {"--json", 1}, {"--diagnostics-json", 1}, {"--web", 0}, {"--json ", 0}, {"--JSON", 0}};
    for (const auto& [argument, timers] : cases) {
        command = Command::create(loop, launcher, Environment());
        start(argument);
        EXPECT_EQ(loop.timerCount(), timers) << argument;
        child().finish(0);
        EXPECT_EQ(loop.timerCount(), 0U) << argument;
    }
}

TEST_F(CommandTest, asksAChildToEndAfter45SecondsAndKillsItAfter48) {
    start("--json");
    loop.advance(44'999ms);
    EXPECT_EQ(child().signals, Signals{});
    loop.advance(1ms);
    EXPECT_EQ(child().signals, Signals{SIGTERM});
    loop.advance(2'999ms);
    EXPECT_EQ(child().signals, Signals{SIGTERM});
    loop.advance(1ms);
    EXPECT_EQ(child().signals, (Signals{SIGTERM, SIGKILL}));
    child().finish(SIGKILL);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_TRUE(results[0].timedOut);
    EXPECT_EQ(results[0].status, SIGKILL);
}

TEST_F(CommandTest, doesNotCallARunOf44SecondsTimedOut) {
    start("--diagnostics-json");
    loop.advance(44s);
    child().finish(0);
    EXPECT_EQ(loop.timerCount(), 0U);
    loop.advance(10s);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_FALSE(results[0].timedOut);
    EXPECT_EQ(child().signals, Signals{});
}

TEST_F(CommandTest, doesNothingAtTheLimitOnceTheChildHasEnded) {
    start("--json");
    child().exit(0);
    loop.advance(60s);
    EXPECT_EQ(child().signals, Signals{});
    child().close(Stream::output);
    child().close(Stream::errors);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_FALSE(results[0].timedOut);
}

TEST_F(CommandTest, looksAfreshWhetherTheChildRunsAtTheLimit) {
    start("--json");
    child().running = false;
    loop.advance(45s);
    child().finish(0);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_FALSE(results[0].timedOut);
}

TEST_F(CommandTest, letsADashboardRunForADay) {
    start("--web");
    loop.advance(24h);
    EXPECT_EQ(child().signals, Signals{});
    command->stop();
    EXPECT_EQ(child().signals, Signals{SIGTERM});
    child().finish(SIGTERM);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results[0].status, SIGTERM);
}

TEST_F(CommandTest, aStopIsNoTimeout) {
    start("--json");
    command->stop();
    loop.advance(2s);
    child().finish(SIGTERM);
    loop.advance(60s);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_FALSE(results[0].timedOut);
    EXPECT_EQ(child().signals, Signals{SIGTERM});
}

TEST_F(CommandTest, aStopCancelsTheLimitAlsoOfAChildThatOutlivesIt) {
    start("--json");
    loop.advance(44s);
    command->stop();
    loop.advance(2s);
    EXPECT_EQ(child().signals, Signals{SIGTERM});
    child().finish(0);
    EXPECT_FALSE(results.at(0).timedOut);
}

TEST_F(CommandTest, aStopOfAnEndedChildOnlyCancelsTheLimit) {
    start("--json");
    child().exit(0);
    command->stop();
    EXPECT_EQ(loop.timerCount(), 0U);
    EXPECT_EQ(child().signals, Signals{});
    EXPECT_TRUE(results.empty());
}

TEST_F(CommandTest, eachStopSendsItsOwnRequestAndChecksOnItsOwn) {
    start("--web");
    command->stop();
    loop.advance(1s);
    command->stop();
    EXPECT_EQ(child().signals, (Signals{SIGTERM, SIGTERM}));
    loop.advance(2s);
    EXPECT_EQ(child().signals, (Signals{SIGTERM, SIGTERM, SIGKILL}));
    loop.advance(1s);
    EXPECT_EQ(child().signals, (Signals{SIGTERM, SIGTERM, SIGKILL, SIGKILL}));
}

TEST_F(CommandTest, stopBeforeStartAndAfterTheEndDoesNothing) {
    command->stop();
    start("--web");
    child().finish(0);
    command->stop();
    command->kill();
    loop.advance(10s);
    EXPECT_EQ(child().signals, Signals{});
    EXPECT_EQ(results.size(), 1U);
}

TEST_F(CommandTest, killKillsAtOnce) {
    start("--web");
    command->kill();
    EXPECT_EQ(child().signals, Signals{SIGKILL});
}

TEST_F(CommandTest, tellsOfTheExitWhileAStreamIsStillOpen) {
    int exits = 0;
    start("--json");
    command->whenExited([&] { ++exits; });
    command->whenExited([&] { ++exits; });
    child().close(Stream::errors);
    EXPECT_EQ(exits, 0);
    child().exit(0);
    EXPECT_EQ(exits, 2);
    EXPECT_TRUE(results.empty());
    command->whenExited([&] { ++exits; });
    EXPECT_EQ(exits, 3);
}

TEST_F(CommandTest, completesAfterItsOwnerHasDroppedIt) {
    start("--json");
    command.reset();
    child().print("late");
    child().finish(0);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results[0].output, "late");
    EXPECT_TRUE(weak.expired());
}

TEST_F(CommandTest, keepsToItsLimitAfterItsOwnerHasDroppedIt) {
    start("--json");
    command.reset();
    loop.advance(48s);
    EXPECT_EQ(child().signals, (Signals{SIGTERM, SIGKILL}));
    child().finish(SIGKILL);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_TRUE(results[0].timedOut);
    EXPECT_TRUE(weak.expired());
}

TEST_F(CommandTest, hasLetGoOfTheChildWhenItCompletes) {
    bool forgotten = false;
    command->start(
        "/tool", "--web", [&](const CommandResult&) { forgotten = child().isForgotten(); });
    child().finish(0);
    EXPECT_TRUE(forgotten);
}

TEST_F(CommandTest, mayBeDroppedFromItsOwnCompletion) {
    bool called = false;
    command->start("/tool", "--web", [&](const CommandResult& result) {
        command.reset();
        called = result.output == "ab";
    });
    child().print("ab");
    child().finish(0);
    EXPECT_TRUE(called);
    EXPECT_TRUE(weak.expired());
}

TEST_F(CommandTest, abandonEndsARunInEveryStateWithoutCompletion) {
    const std::vector<std::function<void()>> states = {
        [] {},
        [this] { start("--json"); },
        [this] {
            start("--json");
            command->stop();
        },
        [this] {
            start("--json");
            child().exit(0);
        },
        [this] {
            start("--json");
            child().close(Stream::output);
            child().close(Stream::errors);
        },
        [this] {
            launcher.launchError = std::errc::permission_denied;
            EXPECT_THROW(start("--json"), std::system_error);
        }};
    for (const auto& reach : states) {
        launcher.launchError = {};
        command = Command::create(loop, launcher, Environment());
        weak = command;
        reach();
        int exits = 0;
        if (!launcher.children.empty() && launcher.last().running) {
            command->whenExited([&] { ++exits; });
        }
        const int exitsBefore = exits;
        command->abandon();
        command->abandon();
        command.reset();
        EXPECT_TRUE(weak.expired());
        EXPECT_EQ(loop.timerCount(), 0U);
        for (const auto& left : launcher.children) {
            EXPECT_TRUE(left->isForgotten());
            left->finish(0);
        }
        loop.advance(60s);
        EXPECT_EQ(exits, exitsBefore);
        launcher.children.clear();
    }
    EXPECT_TRUE(results.empty());
}

TEST_F(CommandTest, mayBeAbandonedByItsObserver) {
    command->onOutput = [this](std::string_view) {
        command->abandon();
        command.reset();
    };
    start("--web");
    child().print("ab");
    EXPECT_TRUE(weak.expired());
    child().finish(0);
    EXPECT_TRUE(results.empty());
}

TEST_F(CommandTest, mayBeAbandonedAtTheChildsExit) {
    start("--web");
    command->whenExited([this] {
        command->abandon();
        command.reset();
    });
    child().close(Stream::output);
    child().close(Stream::errors);
    child().exit(0);
    EXPECT_TRUE(weak.expired());
    EXPECT_TRUE(results.empty());
}

TEST_F(CommandTest, stopsAShortRunOnceEitherStreamIsTooLong) {
    const std::string part(Command::maximumStreamBytes / 2, 'x');
    for (const auto stream : {Stream::output, Stream::errors}) {
        results.clear();
        command = Command::create(loop, launcher, Environment());
        start("--diagnostics-json");
        const auto print = [&](std::string_view text) {
            stream == Stream::output ? child().print(text) : child().printError(text);
        };
        print("first");
        print(part);
        print(std::string_view(part).substr(5));
        EXPECT_EQ(child().signals, Signals{});
        print("y");
        print("z");
        EXPECT_EQ(child().signals, Signals{SIGTERM});
        loop.advance(3s);
        EXPECT_EQ(child().signals, (Signals{SIGTERM, SIGKILL}));
        child().finish(SIGKILL);
        ASSERT_EQ(results.size(), 1U);
        const auto& text = stream == Stream::output ? results[0].output : results[0].errors;
        EXPECT_EQ(text.size(), Command::maximumStreamBytes);
        EXPECT_TRUE(text.starts_with("firstxx"));
        EXPECT_FALSE(text.ends_with("y"));
        EXPECT_FALSE(results[0].timedOut);
    }
}

TEST_F(CommandTest, letsADashboardLoseItsOldestTextInstead) {
    const std::string part(Command::maximumStreamBytes / 2, 'x');
    std::string seen;
    command->onOutput = [&](std::string_view text) { seen = text; };
    start("--web");
    for (const auto print : {&FakeChild::print, &FakeChild::printError}) {
        (child().*print)("first");
        (child().*print)(part);
        (child().*print)(part);
        (child().*print)("last");
    }
    EXPECT_EQ(child().signals, Signals{});
    EXPECT_LE(seen.size(), Command::maximumStreamBytes);
    EXPECT_TRUE(seen.ends_with("xxlast"));
    child().finish(0);
    ASSERT_EQ(results.size(), 1U);
    for (const auto& text : {results[0].output, results[0].errors}) {
        EXPECT_GE(text.size(), Command::maximumStreamBytes / 2);
        EXPECT_LE(text.size(), Command::maximumStreamBytes);
        EXPECT_TRUE(text.starts_with("xx"));
        EXPECT_TRUE(text.ends_with("xxlast"));
    }
}

} // namespace vorla
