// SPDX-License-Identifier: MIT
// The program itself with a task-fit window that does everything wrong.
#include "bus/ProgramOnBus.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace vorla {

namespace {

class ProgramWindowTest : public ProgramOnBus {
protected:
    void SetUp() override {
        ProgramOnBus::SetUp();
        // A window that outlives the program becomes a child of this process.
        ASSERT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
        // The program looks for the window's beside itself.
        std::filesystem::create_directory(folder() / "bin");
        executable = folder() / "bin/VorlaUsageMenuBar";
        std::filesystem::copy_file(VORLA_PROGRAM, executable);
    }

    void TearDown() override {
        endBus();
        EXPECT_TRUE(loop().runUntil([] {
            while (waitpid(-1, nullptr, WNOHANG) > 0) {}
            return hasNoChild();
        }));
        ProgramOnBus::TearDown();
        prctl(PR_SET_CHILD_SUBREAPER, 0);
    }

    std::string window() const { return folder() / "bin/VorlaUsageFennic"; }

    /// From now on the window's program is this test child.
    void windowIs(const std::string& name) const {
        std::filesystem::remove_all(window());
        std::filesystem::create_symlink(child(name), window());
    }

    Program& startWithWindow(const std::string& name, Texts variables = {}) {
        windowIs(name);
        variables.push_back(goVariable());
        return startWithFigures(std::move(variables));
    }

    /// The program is as well as ever, and has nothing to say of its window.
    void expectUnharmed(Program& program) {
        choose(LineRole::refresh);
        EXPECT_TRUE(runUntilFigures());
        EXPECT_FALSE(program.hasEnded());
        EXPECT_EQ(text(LineRole::fennicError), "");
    }
};

/// Left out where there are sanitizers, like all tests whose names begin with "Hostile": those need
/// descriptors, too.
class HostileWindowLimit : public ProgramWindowTest {};

} // namespace

TEST_F(ProgramWindowTest, saysWhyTheWindowCannotBeOpenedUntilItCan) {
    auto& program = startWithFigures({goVariable()});
    std::ofstream(window()) << "no program";
    choose(LineRole::openFennic);
    EXPECT_TRUE(
        runUntilText(LineRole::fennicError, "Cannot open Fennic: No such file or directory"));
    ASSERT_EQ(chmod(window().c_str(), 0755), 0);
    choose(LineRole::openFennic);
    EXPECT_TRUE(runUntilText(LineRole::fennicError, "Cannot open Fennic: Exec format error"));
    windowIs("waitsForEndOfInput");
    choose(LineRole::openFennic);
    EXPECT_TRUE(runUntilText(LineRole::fennicError, ""));
    endsAtRequest(program);
}

TEST_F(ProgramWindowTest, findsCompanionAndWindowThatAreInstalledWhileItRuns) {
    auto& program = start({}, {"DBUS_SESSION_BUS_ADDRESS=" + bus().address(), goVariable()});
    ASSERT_TRUE(runUntilText(
        LineRole::error, "vorla-usage missing. Install in ~/.local/bin or PATH, then Refresh."));
    choose(LineRole::openFennic);
    EXPECT_TRUE(
        runUntilText(LineRole::fennicError, "Cannot open Fennic: No such file or directory"));

    const auto resources = folder() / "libexec/VorlaUsageMenuBar";
    std::filesystem::create_directories(resources);
    std::filesystem::create_symlink(child("printsSnapshot"), resources / "vorla-usage");
    std::filesystem::create_symlink(child("waitsForEndOfInput"), resources / "VorlaUsageFennic");
    choose(LineRole::refresh);
    EXPECT_TRUE(runUntilFigures());
    choose(LineRole::openFennic);
    EXPECT_TRUE(runUntilText(LineRole::fennicError, ""));
    endsAtRequest(program);
}

TEST_F(HostileWindowLimit, saysThatDescriptorsHaveRunOut) {
    auto& program = startWithWindow("waitsForEndOfInput");
    const auto descriptors = descriptorsOf(program);
    limit(program, RLIMIT_NOFILE, lowestFreeDescriptor(program));
    choose(LineRole::openFennic);
    EXPECT_TRUE(runUntilText(LineRole::fennicError, "Cannot open Fennic: Too many open files"));
    EXPECT_TRUE(runUntilDescriptors(program, descriptors));
    limit(program, RLIMIT_NOFILE, RLIM_INFINITY);
    choose(LineRole::openFennic);
    EXPECT_TRUE(runUntilText(LineRole::fennicError, ""));
    expectUnharmed(program);
    endsAtRequest(program);
}

TEST_F(ProgramWindowTest, opensAnotherWindowForEachThatEndsAtOnce) {
    for (const Texts& variables : {Texts{"STATUS=0"}, Texts{"STATUS=99"}}) {
        auto& program = startWithWindow("endsWhenReady", variables);
        const auto descriptors = descriptorsOf(program);
        for (int count = 0; count < 20; ++count) {
            choose(LineRole::openFennic);
            nextReady();
            ASSERT_TRUE(runUntilDescriptors(program, descriptors));
        }
        expectUnharmed(program);
        endsAtRequest(program);
    }
}

TEST_F(ProgramWindowTest, opensAnotherWindowOnceOneWasKilled) {
    auto& program = startWithWindow("printsThenHangs");
    const auto descriptors = descriptorsOf(program);
    for (int count = 0; count < 3; ++count) {
        choose(LineRole::openFennic);
        kill(nextReady(), SIGKILL);
        EXPECT_TRUE(runUntilDescriptors(program, descriptors));
    }
    expectUnharmed(program);
    endsAtRequest(program);
}

TEST_F(ProgramWindowTest, doesNotListenToAWindowThatFloodsItsOutput) {
    auto& program = startWithWindow("floodsUntilRefused");
    const auto descriptors = descriptorsOf(program);
    choose(LineRole::openFennic);
    EXPECT_TRUE(runUntilDescriptors(program, descriptors));
    expectUnharmed(program);
    endsAtRequest(program);
}

TEST_F(ProgramWindowTest, goesOnWithAWindowThatClosesItsStreams) {
    auto& program = startWithWindow("closesInputAndOutput");
    choose(LineRole::openFennic);
    nextReady();
    // It cannot be told to come to the front.
    for (int count = 0; count < 10; ++count) {
        choose(LineRole::openFennic);
    }
    expectUnharmed(program);
    endsAtRequest(program);
    go();
}

TEST_F(ProgramWindowTest, endsThoughTheWindowHangs) {
    auto& program = startWithWindow("ignoresRequests");
    choose(LineRole::openFennic);
    const pid_t number = nextReady();
    expectUnharmed(program);
    endsAtRequest(program);
    kill(number, SIGKILL);
}

TEST_F(ProgramWindowTest, closesItsWindowWhenItEnds) {
    auto& program = startWithWindow("waitsForEndOfInput");
    choose(LineRole::openFennic);
    const FileDescriptor window = processHandle(nextReady());
    endsAtRequest(program);
    EXPECT_TRUE(runUntilEnded(window));
}

} // namespace vorla
