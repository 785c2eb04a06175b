// SPDX-License-Identifier: MIT
#include "app/Command.h"

#include "children/NothingLeftBehind.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <vector>

namespace vorla {

namespace {

using namespace std::chrono_literals;

/// Runs of real children.
class CommandRun : public NothingLeftBehind {
protected:
    void TearDown() override {
        if (command_ != nullptr) {
            command_->abandon();
            command_.reset();
        }
        NothingLeftBehind::TearDown();
    }

    void start(
        const std::string& program, const std::string& argument = "--json",
        std::vector<std::string> variables = {}) {
        variables.push_back(goVariable());
        command_ = Command::create(loop(), launcher(), Environment(std::move(variables)));
        command_->onOutput = [this](std::string_view text) { texts.emplace_back(text); };
        command_->start(child(program), argument, [this](CommandResult result) {
            // The real owner drops it here as well.
            command_.reset();
            results.push_back(std::move(result));
        });
    }

    void startUnobserved(
        const std::string& program, const std::string& argument,
        std::vector<std::string> variables) {
        start(program, argument, std::move(variables));
        command_->onOutput = nullptr;
    }

    /// Waits until the child has printed this many bytes to its standard output.
    void waitForOutput(std::size_t bytes) {
        ASSERT_TRUE(
            loop().runUntil([&] { return !texts.empty() && texts.back().size() >= bytes; }));
    }

    CommandResult waitForResult() {
        EXPECT_TRUE(loop().runUntil([&] { return !results.empty(); }));
        return results.empty() ? CommandResult{} : results.back();
    }

    Command& command() { return *command_; }

    /// What the observer was shown at each delivery.
    std::vector<std::string> texts;
    std::vector<CommandResult> results;

private:
    std::shared_ptr<Command> command_;
};

std::string lines(int first, int last) {
    std::string text;
    for (int number = first; number <= last; ++number) {
        auto line = std::to_string(number);
        line.resize(63, '.');
        text += line + '\n';
    }
    return text;
}

} // namespace

TEST_F(CommandRun, aChildThatPrintsNothingLeavesNothing) {
    start("exitsWithStatus", "--json", {"STATUS=0"});
    const auto result = waitForResult();
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(texts.empty());
}

TEST_F(CommandRun, theChildGetsTheCompanionVariable) {
    start("printsEnvironment", "--json", {"B=2", "VORLA_USAGE_COMPANION=0"});
    EXPECT_EQ(waitForResult().output, "B=2\nVORLA_USAGE_COMPANION=1\n" + goVariable() + "\n");
}

TEST_F(CommandRun, eachDeliveryCarriesAllTextSoFar) {
    start("printsInTwoParts");
    waitForOutput(2);
    go();
    EXPECT_EQ(waitForResult().output, "abcd");
    EXPECT_EQ(texts, (std::vector<std::string>{"ab", "abcd"}));
}

TEST_F(CommandRun, takingTheObserverAwaySkipsLaterDeliveries) {
    start("printsInTwoParts");
    waitForOutput(2);
    command().onOutput = nullptr;
    go();
    EXPECT_EQ(waitForResult().output, "abcd");
    EXPECT_EQ(texts, std::vector<std::string>{"ab"});
}

TEST_F(CommandRun, illFormedTextStaysInTheResultAndIsRepairedForTheObserver) {
    start("printsIllFormedText");
    const auto result = waitForResult();
    EXPECT_EQ(
        result.output, "a\xFF"
                       "b");
    EXPECT_EQ(
        result.errors, "c\xFF"
                       "d");
    EXPECT_EQ(texts.back(), "a\uFFFDb");
}

TEST_F(CommandRun, aChildThatIgnoresTheRequestIsKilledWithItsOwnChildren) {
    start("ignoresTermination");
    waitForOutput(10);
    loop().advance(45s);
    loop().advance(2'999ms);
    loop().runPending();
    EXPECT_TRUE(results.empty());
    loop().advance(1ms);
    // The grandchild holds the streams, so the run could not end if it were still alive.
    const auto result = waitForResult();
    EXPECT_TRUE(result.timedOut);
    EXPECT_EQ(result.status, SIGKILL);
    EXPECT_EQ(result.output, "readyready");
}

TEST_F(CommandRun, aChildThatObeysTheRequestAt45SecondsIsTimedOut) {
    start("waitsForEver");
    waitForOutput(5);
    loop().advance(45s);
    const auto result = waitForResult();
    EXPECT_TRUE(result.timedOut);
    EXPECT_EQ(result.status, SIGTERM);
    EXPECT_EQ(loop().timerCount(), 0U);
}

TEST_F(CommandRun, aChildThatEndsAfter44SecondsIsNotTimedOut) {
    start("printsInTwoParts");
    waitForOutput(2);
    loop().advance(44s);
    go();
    const auto result = waitForResult();
    loop().advance(10s);
    EXPECT_FALSE(result.timedOut);
    EXPECT_EQ(result.status, 0);
}

TEST_F(CommandRun, aDashboardRunsUntilItIsStopped) {
    start("waitsForEver", "--web");
    waitForOutput(5);
    loop().advance(24h);
    loop().runPending();
    EXPECT_TRUE(results.empty());
    command().stop();
    const auto result = waitForResult();
    EXPECT_EQ(result.status, SIGTERM);
    EXPECT_FALSE(result.timedOut);
}

TEST_F(CommandRun, eachStopIsARequestOfItsOwn) {
    start("countsTerminations");
    waitForOutput(5);
    command().stop();
    waitForOutput(6);
    command().stop();
    const auto result = waitForResult();
    EXPECT_EQ(result.output, "readyTT");
    EXPECT_EQ(result.status, 0);
}

TEST_F(CommandRun, killEndsTheChildAtOnce) {
    start("ignoresTermination", "--web");
    waitForOutput(10);
    command().kill();
    EXPECT_EQ(waitForResult().status, SIGKILL);
}

TEST_F(CommandRun, aStreamHeldByAGrandchildDelaysTheCompletionButNotTheExit) {
    bool exited = false;
    start("leavesGrandchild");
    command().whenExited([&] { exited = true; });
    ASSERT_TRUE(loop().runUntil([&] { return exited; }));
    loop().advance(60s);
    loop().runPending();
    EXPECT_TRUE(results.empty());
    go();
    const auto result = waitForResult();
    EXPECT_EQ(result.output, "late");
    EXPECT_EQ(result.status, 5);
    EXPECT_FALSE(result.timedOut);
}

TEST_F(CommandRun, aChildThatClosesItsOutputGoesOn) {
    start("closesOutputEarly");
    waitForOutput(5);
    loop().runPending();
    EXPECT_TRUE(results.empty());
    go();
    const auto result = waitForResult();
    EXPECT_EQ(result.output, "early");
    EXPECT_EQ(result.errors, "late");
    EXPECT_EQ(result.status, 4);
}

TEST_F(CommandRun, aFloodOfErrorsBlocksNothing) {
    startUnobserved("floodsErrors", "--json", {"LINES=1000000"});
    const auto result = waitForResult();
    EXPECT_EQ(result.output, "done");
    EXPECT_EQ(result.errors.size(), 64'000'000U);
    EXPECT_TRUE(result.errors.ends_with(lines(999'999, 999'999)));
    EXPECT_EQ(result.status, 0);
}

TEST_F(CommandRun, aShortRunThatPrintsTooMuchIsStopped) {
    for (const auto* program : {"floodsOutput", "floodsErrors"}) {
        results.clear();
        startUnobserved(program, "--json", {"LINES=100000000"});
        const auto result = waitForResult();
        const auto& text = result.output.empty() ? result.errors : result.output;
        EXPECT_EQ(text.size(), Command::maximumStreamBytes);
        EXPECT_TRUE(text.starts_with(lines(0, 2)));
        EXPECT_EQ(result.status, SIGTERM);
        EXPECT_FALSE(result.timedOut);
    }
}

TEST_F(CommandRun, aGrandchildThatPrintsForEverDoesNotKeepTheRunFromEnding) {
    for (const auto* stream : {"output", "errors"}) {
        results.clear();
        bool exited = false;
        startUnobserved("leavesFlood", "--json", {"STREAM=" + std::string(stream)});
        command().whenExited([&] { exited = true; });
        ASSERT_TRUE(loop().runUntil([&] { return exited; }));
        EXPECT_TRUE(results.empty());
        go();
        const auto result = waitForResult();
        EXPECT_EQ(result.output.size() + result.errors.size(), Command::maximumStreamBytes);
        EXPECT_EQ(result.status, 5);
        EXPECT_FALSE(result.timedOut);
        EXPECT_EQ(loop().timerCount(), 0U);
    }
}

TEST_F(CommandRun, aDashboardThatPrintsTooMuchKeepsItsNewestText) {
    constexpr int last = 1'199'999;
    startUnobserved("floodsOutput", "--web", {"LINES=1200000"});
    const auto result = waitForResult();
    EXPECT_GE(result.output.size(), Command::maximumRecentBytes / 2);
    EXPECT_LE(result.output.size(), Command::maximumRecentBytes);
    EXPECT_TRUE(result.output.ends_with(lines(last - 1000, last)));
    EXPECT_EQ(result.status, 0);
}

TEST_F(CommandRun, aDashboardThatPrintsTooManyErrorsKeepsTheFirst) {
    startUnobserved("floodsErrors", "--web", {"LINES=1200000"});
    const auto result = waitForResult();
    EXPECT_EQ(result.errors.size(), Command::maximumFirstErrorBytes);
    EXPECT_TRUE(result.errors == lines(0, 1023));
    EXPECT_EQ(result.status, 0);
}

TEST_F(CommandRun, theObserverOfALongOutputSeesAllOfIt) {
    std::size_t deliveries = 0;
    std::size_t longest = 0;
    std::string whole;
    start("floodsOutput", "--json", {"LINES=1000000"});
    command().onOutput = [&](std::string_view text) {
        EXPECT_GT(text.size(), longest);
        longest = text.size();
        ++deliveries;
        if (longest == 64'000'000U) {
            whole = text;
        }
    };
    const auto result = waitForResult();
    EXPECT_EQ(whole, result.output);
    EXPECT_TRUE(whole.ends_with(lines(999'999, 999'999)));
    EXPECT_GT(deliveries, 64'000'000U / 65'536U);
}

TEST_F(CommandRun, aRunWhoseOwnerHasDroppedItCompletes) {
    std::weak_ptr<Command> weak;
    {
        const auto owned = Command::create(loop(), launcher(), Environment({goVariable()}));
        weak = owned;
        owned->start(child("printsInTwoParts"), "--json", [this](CommandResult result) {
            results.push_back(std::move(result));
        });
    }
    go();
    EXPECT_EQ(waitForResult().output, "abcd");
    EXPECT_TRUE(weak.expired());
}

TEST_F(CommandRun, anAbandonedRunEndsInSilence) {
    start("printsInTwoParts");
    waitForOutput(2);
    command().abandon();
    go();
    ASSERT_TRUE(loop().runUntil(hasNoChild));
    EXPECT_TRUE(results.empty());
    EXPECT_EQ(texts, std::vector<std::string>{"ab"});
}

TEST_F(CommandRun, aPathThatDoesNotExistThrowsAndNeverCompletes) {
    EXPECT_THROW(start("none"), std::system_error);
    loop().runPending();
    EXPECT_TRUE(results.empty());
    EXPECT_EQ(loop().timerCount(), 0U);
}

} // namespace vorla
