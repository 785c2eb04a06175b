// SPDX-License-Identifier: MIT
#include "linux/FennicProgram.h"

#include "linux/FennicProgramFixture.h"

#include <climits>
#include <utility>

namespace vorla {

namespace {

class FennicProgramTest : public FennicProgramFixture {};

} // namespace

TEST_F(FennicProgramTest, startsInASessionOfItsOwnWithNothingOfOursButTwoPipes) {
    // Without O_CLOEXEC, unlike all that the program opens itself.
    const FileDescriptor stray(::open("/dev/zero", O_RDONLY));
    sigset_t blocked;
    sigset_t maskBefore;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &blocked, &maskBefore);
    openWith("recordsItsStart");
    pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
    EXPECT_EQ(record("descriptors"), "0 pipe\n1 pipe\n2 /dev/null\n");
    EXPECT_EQ(record("session"), "own");
    EXPECT_EQ(record("signals"), "");
    EXPECT_EQ(record("arguments"), "");
}

TEST_F(FennicProgramTest, handsOnTheEnvironmentButNoTokenThatWasMeantForUs) {
    openWith("recordsItsStart", {"XDG_ACTIVATION_TOKEN=old", "A=1", "DESKTOP_STARTUP_ID=old"});
    std::string expected = "A=1\n";
    for (const auto& entry : environment()) {
        expected += entry + "\n";
    }
    EXPECT_EQ(record("environment"), expected);
}

TEST_F(FennicProgramTest, saysTheOpeningAndThenWhatBringsTheWindowToTheFront) {
    openWith("recordsItsStart");
    window->bringToFront("token-2");
    window->bringToFront(std::nullopt);
    EXPECT_EQ(
        record("input"), *usualOpening().encode() + "{\"activationToken\":\"token-2\"}\n{}\n");
    EXPECT_EQ(closings, 0);
}

TEST_F(FennicProgramTest, saysTheLongestOpeningThatThereIs) {
    use({child("recordsItsStart")});
    const auto longest = openingOfBytes(maximumFennicSeamLine);
    open(longest);
    EXPECT_EQ(record("input"), longest.encode());
}

TEST_F(FennicProgramTest, leavesOutATokenThatAPipeWouldNotTakeInOnePiece) {
    openWith("recordsItsStart");
    const std::string longest(PIPE_BUF - FennicRaise{.activationToken = ""}.encode().size(), 't');
    window->bringToFront(longest);
    window->bringToFront(longest + "t");
    EXPECT_EQ(
        record("input"),
        *usualOpening().encode() + FennicRaise{.activationToken = longest}.encode() + "{}\n");
}

TEST_F(FennicProgramTest, tellsOnceThatTheProgramHasEndedHoweverItEnds) {
    for (const std::string status : {"0", "3"}) {
        openWith("exitsWithStatus", {"STATUS=" + status});
        EXPECT_TRUE(closesOnce()) << status;
        EXPECT_EQ(std::exchange(closings, 0), 1);
    }
    openWith("diesOfSignal", {"SIGNAL=9"});
    EXPECT_TRUE(closesOnce());
}

TEST_F(FennicProgramTest, keepsNothingOfAProgramThatHasEnded) {
    openWith("exitsWithStatus", {"STATUS=0"});
    EXPECT_TRUE(closesOnce());
    EXPECT_EQ(entries("/proc/self/fd"), descriptors);
    EXPECT_TRUE(comesToRest());
    EXPECT_EQ(loop().timerCount(), 0U);
    window->bringToFront("token-2");
    window.reset();
    EXPECT_EQ(closings, 1);
}

TEST_F(FennicProgramTest, tellsOnceThatTheWindowClosesWhileItsProgramStillRuns) {
    openWith("saysClosing");
    waitUntilReady();
    EXPECT_TRUE(comesToRest());
    EXPECT_EQ(closings, 0);
    go();
    EXPECT_TRUE(loop().runUntil([this] { return closings > 0; }));
    EXPECT_FALSE(hasNoChild());
    EXPECT_TRUE(comesToRest());
    go();
    EXPECT_TRUE(closesOnce());
}

TEST_F(FennicProgramTest, takesOnlyOneWholeLineForClosing) {
    struct Case {
        std::string output;
        int closings = 0;
    };

    const std::vector<Case> cases = {
        {"", 0},
        {"closing", 0},
        {"Closing\n", 0},
        {"closing \n", 0},
        {" closing\n", 0},
        {"enclosing\n", 0},
        {std::string("closing\0\n", 9), 0},
        {"closing\n", 1},
        {"\nclosing\n", 1},
        {"open\nclosing\nclosing\n", 1},
        {"closing\nclosing\n", 1}};
    for (const auto& [output, expected] : cases) {
        closings = 0;
        openWith("printsThenHangs", {"OUTPUT=" + makeFile("output", output, 0600)});
        const pid_t number = waitUntilReady();
        EXPECT_TRUE(comesToRest());
        EXPECT_EQ(closings, expected) << output;
        end(number);
        EXPECT_TRUE(closesOnce()) << output;
    }
}

TEST_F(FennicProgramTest, doesNotListenToAProgramThatFloodsItsOutput) {
    openWith("floodsUntilRefused");
    EXPECT_TRUE(closesOnce());
}

TEST_F(FennicProgramTest, keepsTheWindowOfAProgramThatClosesItsInputAndOutput) {
    openWith("closesInputAndOutput");
    waitUntilReady();
    EXPECT_TRUE(comesToRest());
    window->bringToFront("token-2");
    EXPECT_TRUE(comesToRest());
    EXPECT_EQ(closings, 0);
    go();
    EXPECT_TRUE(closesOnce());
}

TEST_F(FennicProgramTest, isNotHeldUpByAProgramThatDoesNotRead) {
    openWith("waitsForGo");
    const std::string token(1000, 't');
    for (int count = 0; count < 1000; ++count) {
        window->bringToFront(token);
    }
    EXPECT_TRUE(comesToRest());
    EXPECT_EQ(closings, 0);
    go();
    EXPECT_TRUE(closesOnce());
}

TEST_F(FennicProgramTest, closesTheWindowByTheEndOfItsInputAndTellsNobody) {
    openWith("waitsForEndOfInput");
    window.reset();
    EXPECT_TRUE(loop().runUntil(hasNoChild));
    EXPECT_EQ(entries("/proc/self/fd"), descriptors);
    EXPECT_EQ(closings, 0);
}

TEST_F(FennicProgramTest, opensAnotherWindowWhileTheLastProgramWillNotEnd) {
    openWith("printsThenHangs", {"OUTPUT=" + makeFile("output", "", 0600)});
    const pid_t first = waitUntilReady();
    window.reset();
    EXPECT_TRUE(comesToRest());
    open();
    const pid_t second = waitUntilReady();
    EXPECT_TRUE(comesToRest());
    end(first);
    siginfo_t state = {};
    EXPECT_TRUE(loop().runUntil([&] {
        return waitid(P_PID, static_cast<id_t>(first), &state, WEXITED | WNOHANG | WNOWAIT) != 0;
    }));
    EXPECT_EQ(closings, 0);
    end(second);
    EXPECT_TRUE(closesOnce());
}

TEST_F(FennicProgramTest, letsWhoeverIsToldDestroyTheWindow) {
    for (const std::string output : {"", "closing\n"}) {
        use({child("printsThenHangs")}, {"OUTPUT=" + makeFile("output", output, 0600)});
        closings = 0;
        window = windows->open(usualOpening(), [this] {
            ++closings;
            window.reset();
        });
        const pid_t number = waitUntilReady();
        EXPECT_TRUE(comesToRest());
        end(number);
        EXPECT_TRUE(closesOnce()) << output;
        EXPECT_EQ(window, nullptr);
        EXPECT_EQ(entries("/proc/self/fd"), descriptors);
    }
}

TEST_F(FennicProgramTest, tellsThatAProgramHasEndedWhoseStreamsAreHeldOpen) {
    openWith("leavesGrandchild");
    EXPECT_TRUE(closesOnce());
    EXPECT_EQ(entries("/proc/self/fd"), descriptors);
    EXPECT_TRUE(comesToRest());
    go();
}

TEST_F(FennicProgramTest, looksEverySecondWhetherADebuggerHasLetGo) {
    openWith("endsWhileTraced");
    waitUntilReady();
    EXPECT_TRUE(loop().runUntil([this] { return closings > 0; }));
    EXPECT_TRUE(comesToRest());
    EXPECT_FALSE(hasNoChild());
    EXPECT_EQ(loop().timerCount(), 1U);
    loop().advance(std::chrono::seconds{1});
    EXPECT_FALSE(hasNoChild());
    go();
    EXPECT_TRUE(loop().runUntil([this] {
        loop().advance(std::chrono::seconds{1});
        return hasNoChild();
    }));
    EXPECT_EQ(loop().timerCount(), 0U);
    EXPECT_EQ(closings, 1);
}

TEST_F(FennicProgramTest, leavesAProgramToItselfWhenTheLauncherGoesFirst) {
    openWith("saysClosing");
    waitUntilReady();
    windows.reset();
    go();
    EXPECT_TRUE(loop().runUntil([this] { return closings > 0; }));
    go();
    EXPECT_TRUE(closesOnce());
    window.reset();
    EXPECT_EQ(entries("/proc/self/fd"), descriptors);
}

TEST_F(FennicProgramTest, leavesARunningProgramBehindWhenItGoesAwayItself) {
    openWith("waitsForGo");
    window.reset();
    windows.reset();
    EXPECT_EQ(entries("/proc/self/fd"), descriptors);
    go();
    siginfo_t end = {};
    ASSERT_EQ(waitid(P_ALL, 0, &end, WEXITED), 0);
    EXPECT_EQ(end.si_code, CLD_EXITED);
    EXPECT_EQ(end.si_status, 0);
}

TEST_F(FennicProgramTest, collectsAProgramThatHasEndedWhenItGoesAwayItself) {
    openWith("exitsWithStatus", {"STATUS=0"});
    siginfo_t end = {};
    ASSERT_EQ(waitid(P_ALL, 0, &end, WEXITED | WNOWAIT), 0);
    window.reset();
    windows.reset();
    EXPECT_TRUE(hasNoChild());
    EXPECT_EQ(closings, 0);
}

} // namespace vorla
