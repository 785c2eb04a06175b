// SPDX-License-Identifier: MIT
#include "linux/SettingsTool.h"

#include "children/ReadyPipe.h"
#include "fakes/ManualLoop.h"
#include "linux/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>

#include <cerrno>
#include <system_error>

namespace vorla {
namespace {

constexpr std::chrono::seconds limit{2};

std::string child(const std::string& name) {
    return VORLA_TEST_CHILDREN "/" + name;
}

class SettingsToolTest : public testing::Test {
protected:
    void TearDown() override {
        tool.reset();
        EXPECT_EQ(waitid(P_ALL, 0, nullptr, WEXITED | WNOHANG | WNOWAIT), -1);
        EXPECT_EQ(errno, ECHILD);
    }

    void start(const std::vector<std::string>& command) {
        tool.emplace(loop, command, limit, [this](const SettingsTool::Result& newResult) {
            ++answers;
            result = newResult;
        });
        EXPECT_EQ(answers, 0);
    }

    void startAndFinish(const std::vector<std::string>& command) {
        start(command);
        ASSERT_TRUE(loop.runUntil([&] { return answers > 0; }));
        EXPECT_EQ(answers, 1);
        EXPECT_EQ(loop.timerCount(), 0U);
    }

    ManualLoop loop;
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
    setenv("STATUS", "3", 1);
    startAndFinish({child("exitsWithStatus")});
    unsetenv("STATUS");
    EXPECT_EQ(result.output, std::nullopt);
    EXPECT_TRUE(result.inTime);
}

TEST_F(SettingsToolTest, givesNoOutputOfAToolThatDiesOfASignal) {
    setenv("SIGNAL", "9", 1);
    startAndFinish({child("diesOfSignal")});
    unsetenv("SIGNAL");
    EXPECT_EQ(result.output, std::nullopt);
}

TEST_F(SettingsToolTest, endsAToolThatTakesTooLong) {
    start({child("waitsForEver")});
    loop.advance(limit - std::chrono::milliseconds{1});
    EXPECT_EQ(answers, 0);
    loop.advance(std::chrono::milliseconds{1});
    EXPECT_EQ(answers, 1);
    EXPECT_EQ(result.output, std::nullopt);
    EXPECT_FALSE(result.inTime);
    ASSERT_TRUE(loop.runUntil([&] { return tool->hasEnded(); }));
    EXPECT_EQ(answers, 1);
    EXPECT_EQ(loop.timerCount(), 0U);
}

TEST_F(SettingsToolTest, endsAToolThatPrintsMoreThanAPipeHolds) {
    start({child("floodsOutput")});
    loop.advance(limit);
    EXPECT_FALSE(result.inTime);
    EXPECT_TRUE(loop.runUntil([&] { return tool->hasEnded(); }));
}

TEST_F(SettingsToolTest, readsNoMoreThanTheBoundOfALongAnswer) {
    startAndFinish({child("printsArguments"), std::string(SettingsTool::maximumAnswerBytes, 'x')});
    ASSERT_TRUE(result.output);
    EXPECT_EQ(result.output->size(), SettingsTool::maximumAnswerBytes);
}

TEST_F(SettingsToolTest, isNotHeldUpByAGrandchildThatKeepsThePipeOpen) {
    const TemporaryFolder folder;
    folder.write("answer", "the answer");
    std::filesystem::create_symlink(child("playsSettingsTool"), folder.at("tool"));
    const auto go = folder.at("go");
    ASSERT_EQ(mkfifo(go.c_str(), 0600), 0);
    setenv("GO", go.c_str(), 1);
    startAndFinish({folder.at("tool")});
    unsetenv("GO");
    EXPECT_EQ(result.output, "the answer");
    std::ofstream(go) << '1';
}

TEST_F(SettingsToolTest, isNotHeldUpByAToolWhoseEndSomebodyElseHoldsBack) {
    const TemporaryFolder folder;
    const ReadyPipe ready(folder.at("ready"));
    const auto go = folder.at("go");
    ASSERT_EQ(mkfifo(go.c_str(), 0600), 0);
    setenv("GO", go.c_str(), 1);
    setenv("READY", folder.at("ready").c_str(), 1);
    start({child("endsWhileTraced")});
    ready.next();
    unsetenv("GO");
    unsetenv("READY");
    // Whoever waited here for the tool would never return.
    loop.runPending();
    EXPECT_EQ(answers, 0);
    std::ofstream(go) << '1';
    ASSERT_EQ(waitid(P_ALL, 0, nullptr, WEXITED | WNOWAIT), 0);
    loop.advance(std::chrono::seconds{1});
    ASSERT_TRUE(loop.runUntil([&] { return answers > 0; }));
    EXPECT_EQ(result.output, std::nullopt);
    EXPECT_TRUE(result.inTime);
}

TEST_F(SettingsToolTest, saysThatAToolCannotBeStarted) {
    EXPECT_THROW(start({"/nonexistent/tool"}), std::system_error);
    EXPECT_EQ(loop.timerCount(), 0U);
}

TEST_F(SettingsToolTest, tellsNothingOnceItHasBeenDestroyed) {
    start({child("printsArguments")});
    tool.reset();
    loop.advance(limit);
    loop.runPending();
    EXPECT_EQ(answers, 0);
}

TEST_F(SettingsToolTest, mayBeDestroyedByTheOneWhoIsTold) {
    tool.emplace(
        loop, std::vector<std::string>{child("printsArguments")}, limit,
        [this](const SettingsTool::Result&) {
            ++answers;
            tool.reset();
        });
    ASSERT_TRUE(loop.runUntil([&] { return answers > 0; }));
    EXPECT_EQ(answers, 1);
}

} // namespace
} // namespace vorla
