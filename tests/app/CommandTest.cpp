// SPDX-License-Identifier: MIT
#include "app/Command.h"

#include "app/CommandFixture.h"
#include "fakes/RefusingLoop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <functional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace vorla {

namespace {

using namespace std::chrono_literals;
using Stream = ChildProcess::Stream;

class CommandTest : public CommandFixture {};

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

TEST_F(CommandTest, startsNothingThatItCouldNotEndInTime) {
    RefusingLoop full(loop, RefusingLoop::Refuses::timers);
    command = Command::create(full, launcher, Environment());
    weak = command;
    EXPECT_THROW(start("--json"), std::system_error);
    EXPECT_TRUE(launcher.children.empty());
    EXPECT_TRUE(results.empty());
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
    EXPECT_EQ(results[0].errors, "x\xFFy");
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

TEST_F(CommandTest, completesOnceAStreamIsTooLongThoughItOutlivesTheChild) {
    const std::string part(Command::maximumStreamBytes, 'x');
    for (const auto print : {&FakeChild::print, &FakeChild::printError}) {
        results.clear();
        command = Command::create(loop, launcher, Environment());
        weak = command;
        start("--json");
        child().exit(3);
        (child().*print)(part);
        EXPECT_TRUE(results.empty());
        (child().*print)("y");
        ASSERT_EQ(results.size(), 1U);
        EXPECT_EQ(results[0].output.size() + results[0].errors.size(), part.size());
        EXPECT_EQ(results[0].status, 3);
        EXPECT_FALSE(results[0].timedOut);
        EXPECT_TRUE(child().isForgotten());
        EXPECT_TRUE(child().signals.empty());
        EXPECT_EQ(loop.timerCount(), 0U);
        child().print("z");
        child().close(Stream::output);
        child().close(Stream::errors);
        EXPECT_EQ(results.size(), 1U);
    }
}

TEST_F(CommandTest, waitsOnlyForTheChildOnceAStreamIsTooLong) {
    start("--diagnostics-json");
    child().print(std::string(Command::maximumStreamBytes + 1, 'x'));
    EXPECT_EQ(child().signals, std::vector<int>{SIGTERM});
    EXPECT_TRUE(results.empty());
    child().print("more");
    child().exit(SIGTERM);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results[0].status, SIGTERM);
    EXPECT_FALSE(results[0].timedOut);
    EXPECT_TRUE(child().isForgotten());
    EXPECT_EQ(loop.timerCount(), 0U);
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

TEST_F(CommandTest, showsTheObserverAllThatIsKeptOfAnOutputThatIsTooLong) {
    std::vector<std::size_t> seen;
    command->onOutput = [&](std::string_view text) { seen.push_back(text.size()); };
    start("--json");
    child().print("first");
    child().print(std::string(Command::maximumStreamBytes, 'x'));
    child().print("more");
    EXPECT_EQ(child().signals, std::vector<int>{SIGTERM});
    child().finish(SIGTERM);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results[0].output.size(), Command::maximumStreamBytes);
    EXPECT_EQ(seen, (std::vector<std::size_t>{5, Command::maximumStreamBytes}));
}

TEST_F(CommandTest, letsAnObserverAbandonARunThatPrintsTooMuch) {
    command->onOutput = [&](std::string_view) { command->abandon(); };
    start("--json");
    child().print(std::string(Command::maximumStreamBytes + 1, 'x'));
    EXPECT_TRUE(child().isForgotten());
    EXPECT_TRUE(child().signals.empty());
    EXPECT_TRUE(results.empty());
    EXPECT_EQ(loop.timerCount(), 0U);
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

TEST_F(CommandTest, mayBeAbandonedByItsObserverWhoseTextStaysValid) {
    const std::string printed(100, 'x');
    std::string seen;
    command->onOutput = [&](std::string_view text) {
        command->abandon();
        command.reset();
        EXPECT_FALSE(weak.expired());
        seen = text;
    };
    start("--web");
    child().print(printed);
    EXPECT_EQ(seen, printed);
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

} // namespace vorla
