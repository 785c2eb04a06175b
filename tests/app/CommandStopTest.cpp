// SPDX-License-Identifier: MIT
#include "app/Command.h"

#include "app/CommandFixture.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <string>
#include <utility>
#include <vector>

namespace vorla {

namespace {

using namespace std::chrono_literals;
using Stream = ChildProcess::Stream;
using Signals = std::vector<int>;

/// How a run ends before its child would end by itself.
class CommandStop : public CommandFixture {};

} // namespace

TEST_F(CommandStop, limitsExactlyTheTwoShortRuns) {
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

TEST_F(CommandStop, asksAChildToEndAfter45SecondsAndKillsItAfter48) {
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

TEST_F(CommandStop, doesNotCallARunOf44SecondsTimedOut) {
    start("--diagnostics-json");
    loop.advance(44s);
    child().finish(0);
    EXPECT_EQ(loop.timerCount(), 0U);
    loop.advance(10s);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_FALSE(results[0].timedOut);
    EXPECT_EQ(child().signals, Signals{});
}

TEST_F(CommandStop, doesNothingAtTheLimitOnceTheChildHasEnded) {
    start("--json");
    child().exit(0);
    loop.advance(60s);
    EXPECT_EQ(child().signals, Signals{});
    child().close(Stream::output);
    child().close(Stream::errors);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_FALSE(results[0].timedOut);
}

TEST_F(CommandStop, looksAfreshWhetherTheChildRunsAtTheLimit) {
    start("--json");
    child().running = false;
    loop.advance(45s);
    child().finish(0);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_FALSE(results[0].timedOut);
}

TEST_F(CommandStop, letsADashboardRunForADay) {
    start("--web");
    loop.advance(24h);
    EXPECT_EQ(child().signals, Signals{});
    command->stop();
    EXPECT_EQ(child().signals, Signals{SIGTERM});
    child().finish(SIGTERM);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results[0].status, SIGTERM);
}

TEST_F(CommandStop, aStopIsNoTimeout) {
    start("--json");
    command->stop();
    loop.advance(2s);
    child().finish(SIGTERM);
    loop.advance(60s);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_FALSE(results[0].timedOut);
    EXPECT_EQ(child().signals, Signals{SIGTERM});
}

TEST_F(CommandStop, aStopCancelsTheLimitAlsoOfAChildThatOutlivesIt) {
    start("--json");
    loop.advance(44s);
    command->stop();
    loop.advance(2s);
    EXPECT_EQ(child().signals, Signals{SIGTERM});
    child().finish(0);
    EXPECT_FALSE(results.at(0).timedOut);
}

TEST_F(CommandStop, aStopOfAnEndedChildOnlyCancelsTheLimit) {
    start("--json");
    child().exit(0);
    command->stop();
    EXPECT_EQ(loop.timerCount(), 0U);
    EXPECT_EQ(child().signals, Signals{});
    EXPECT_TRUE(results.empty());
}

TEST_F(CommandStop, eachStopSendsItsOwnRequestAndChecksOnItsOwn) {
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

TEST_F(CommandStop, stopBeforeStartAndAfterTheEndDoesNothing) {
    command->stop();
    start("--web");
    child().finish(0);
    command->stop();
    command->kill();
    loop.advance(10s);
    EXPECT_EQ(child().signals, Signals{});
    EXPECT_EQ(results.size(), 1U);
}

TEST_F(CommandStop, killKillsAtOnce) {
    start("--web");
    command->kill();
    EXPECT_EQ(child().signals, Signals{SIGKILL});
}

TEST_F(CommandStop, keepsToItsLimitAfterItsOwnerHasDroppedIt) {
    start("--json");
    command.reset();
    loop.advance(48s);
    EXPECT_EQ(child().signals, (Signals{SIGTERM, SIGKILL}));
    child().finish(SIGKILL);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_TRUE(results[0].timedOut);
    EXPECT_TRUE(weak.expired());
}

TEST_F(CommandStop, stopsAShortRunOnceEitherStreamIsTooLong) {
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

TEST_F(CommandStop, letsADashboardLoseItsOldestTextInstead) {
    const std::string part(Command::maximumRecentBytes / 2, 'x');
    std::string seen;
    command->onOutput = [&](std::string_view text) { seen = text; };
    start("--web");
    child().print("first");
    child().print(part);
    child().print(part);
    child().print("last");
    EXPECT_EQ(child().signals, Signals{});
    EXPECT_GE(seen.size(), Command::maximumRecentBytes / 2);
    EXPECT_LE(seen.size(), Command::maximumRecentBytes);
    EXPECT_TRUE(seen.starts_with("xx"));
    EXPECT_TRUE(seen.ends_with("xxlast"));
    child().finish(0);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results[0].output, seen);
}

TEST_F(CommandStop, letsADashboardLoseItsNewestErrors) {
    start("--web");
    child().printError("first");
    child().printError(std::string(Command::maximumFirstErrorBytes, 'x'));
    child().printError("last");
    EXPECT_EQ(child().signals, Signals{});
    child().finish(1);
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results[0].errors, "first" + std::string(Command::maximumFirstErrorBytes - 5, 'x'));
}

} // namespace vorla
