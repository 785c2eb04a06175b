// SPDX-License-Identifier: MIT
#include "linux/SettingsTool.h"

#include "children/NothingLeftBehind.h"
#include "children/ReadyPipe.h"
#include "fakes/RefusingLoop.h"
#include "model/ScopedVariable.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace vorla {
namespace {

constexpr std::chrono::seconds limit{2};

pid_t onlyChild() {
    pid_t number = 0;
    std::ifstream("/proc/thread-self/children") >> number;
    return number;
}

bool isAsleep(pid_t number) {
    std::ifstream status("/proc/" + std::to_string(number) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("State:")) {
            return line.find('S', line.find(':')) != std::string::npos;
        }
    }
    return false;
}

class SettingsToolTest : public NothingLeftBehind {
protected:
    void TearDown() override {
        tool.reset();
        NothingLeftBehind::TearDown();
    }

    void start(const std::vector<std::string>& command) {
        tool.emplace(loop(), command, limit, [this](const SettingsTool::Result& newResult) {
            ++answers;
            result = newResult;
        });
        EXPECT_EQ(answers, 0);
    }

    void startAndFinish(const std::vector<std::string>& command) {
        start(command);
        ASSERT_TRUE(loop().runUntil([&] { return answers > 0; }));
        EXPECT_EQ(answers, 1);
        EXPECT_EQ(loop().timerCount(), 0U);
    }

    std::optional<SettingsTool> tool;
    SettingsTool::Result result;
    int answers = 0;
};

TEST_F(SettingsToolTest, passesOnWhatTheToolPrints) {
    startAndFinish({child("printsArguments"), "get", "some key"});
    EXPECT_EQ(result.output, child("printsArguments") + "\nget\nsome key\n");
    EXPECT_TRUE(result.inTime);
    EXPECT_TRUE(tool->hasEnded());
}

TEST_F(SettingsToolTest, givesNoOutputOfAToolThatFails) {
    const ScopedVariable status("STATUS", "3");
    startAndFinish({child("exitsWithStatus")});
    EXPECT_EQ(result.output, std::nullopt);
    EXPECT_TRUE(result.inTime);
}

TEST_F(SettingsToolTest, givesNoOutputOfAToolThatDiesOfASignal) {
    const ScopedVariable signal("SIGNAL", "9");
    startAndFinish({child("diesOfSignal")});
    EXPECT_EQ(result.output, std::nullopt);
}

TEST_F(SettingsToolTest, endsAToolThatTakesTooLong) {
    start({child("waitsForEver")});
    loop().advance(limit - std::chrono::milliseconds{1});
    EXPECT_EQ(answers, 0);
    loop().advance(std::chrono::milliseconds{1});
    EXPECT_EQ(answers, 1);
    EXPECT_EQ(result.output, std::nullopt);
    EXPECT_FALSE(result.inTime);
    ASSERT_TRUE(loop().runUntil([&] { return tool->hasEnded(); }));
    EXPECT_EQ(answers, 1);
    EXPECT_EQ(loop().timerCount(), 0U);
}

TEST_F(SettingsToolTest, endsAToolThatPrintsMoreThanAPipeHolds) {
    const ScopedVariable lines("LINES", "100000");
    start({child("floodsOutput")});
    // Nothing but a full pipe holds it up.
    ASSERT_TRUE(comesTrue([] { return isAsleep(onlyChild()); }));
    loop().runPending();
    EXPECT_EQ(answers, 0);
    loop().advance(limit);
    EXPECT_EQ(answers, 1);
    EXPECT_FALSE(result.inTime);
    EXPECT_TRUE(loop().runUntil([&] { return tool->hasEnded(); }));
}

TEST_F(SettingsToolTest, readsNoMoreThanTheBoundOfALongAnswer) {
    startAndFinish({child("printsArguments"), std::string(SettingsTool::maximumAnswerBytes, 'x')});
    ASSERT_TRUE(result.output);
    EXPECT_EQ(result.output->size(), SettingsTool::maximumAnswerBytes);
}

TEST_F(SettingsToolTest, isNotHeldUpByAGrandchildThatKeepsThePipeOpen) {
    std::ofstream(folder() / "answer") << "the answer";
    std::filesystem::create_symlink(child("playsSettingsTool"), folder() / "tool");
    const ScopedVariable variable("GO", goPath());
    startAndFinish({folder() / "tool"});
    EXPECT_EQ(result.output, "the answer");
    go();
}

TEST_F(SettingsToolTest, isNotHeldUpByAToolWhoseEndSomebodyElseHoldsBack) {
    const ReadyPipe ready(folder() / "ready");
    const ScopedVariable goPlace("GO", goPath());
    const ScopedVariable readyPlace("READY", folder() / "ready");
    start({child("endsWhileTraced")});
    ready.next();
    // Whoever waited here for the tool would never return.
    loop().runPending();
    EXPECT_EQ(answers, 0);
    go();
    waitUntilCollectable();
    loop().advance(std::chrono::seconds{1});
    ASSERT_TRUE(loop().runUntil([&] { return answers > 0; }));
    EXPECT_EQ(result.output, std::nullopt);
    EXPECT_TRUE(result.inTime);
}

TEST_F(SettingsToolTest, killsWithAToolWhatItHasStarted) {
    const ReadyPipe ready(folder() / "ready");
    const ScopedVariable place("READY", folder() / "ready");
    const ScopedVariable withChild("WITH_CHILD", "1");
    for (const bool isDestroyed : {false, true}) {
        start({child("ignoresRequests")});
        const FileDescriptor one = processHandle(ready.next());
        const FileDescriptor other = processHandle(ready.next());
        if (isDestroyed) {
            tool.reset();
        } else {
            loop().advance(limit);
            ASSERT_TRUE(loop().runUntil([&] { return tool->hasEnded(); }));
        }
        EXPECT_TRUE(runUntilEnded(one));
        EXPECT_TRUE(runUntilEnded(other));
        answers = 0;
    }
}

TEST_F(SettingsToolTest, leavesNothingOfAToolWhoseEndOrLimitCannotBeWatched) {
    const auto descriptors = entries("/proc/self/fd");
    for (const auto refused : {RefusingLoop::Refuses::timers, RefusingLoop::Refuses::watches}) {
        RefusingLoop full(loop(), refused);
        EXPECT_THROW(
            tool.emplace(
                full, std::vector<std::string>{child("waitsForEver")}, limit,
                [this](const SettingsTool::Result&) { ++answers; }),
            std::system_error);
        EXPECT_TRUE(hasNoChild());
        EXPECT_EQ(entries("/proc/self/fd"), descriptors);
        EXPECT_EQ(loop().timerCount(), 0U);
    }
    EXPECT_EQ(answers, 0);
}

TEST_F(SettingsToolTest, saysThatAToolCannotBeStarted) {
    EXPECT_THROW(start({"/nonexistent/tool"}), std::system_error);
    EXPECT_EQ(loop().timerCount(), 0U);
}

TEST_F(SettingsToolTest, tellsNothingOnceItHasBeenDestroyed) {
    start({child("printsArguments")});
    tool.reset();
    loop().advance(limit);
    loop().runPending();
    EXPECT_EQ(answers, 0);
}

TEST_F(SettingsToolTest, mayBeDestroyedByTheOneWhoIsTold) {
    tool.emplace(
        loop(), std::vector<std::string>{child("printsArguments")}, limit,
        [this](const SettingsTool::Result&) {
            ++answers;
            tool.reset();
        });
    ASSERT_TRUE(loop().runUntil([&] { return answers > 0; }));
    EXPECT_EQ(answers, 1);
}

} // namespace
} // namespace vorla
