// SPDX-License-Identifier: MIT
#include "linux/ProcessLauncher.h"

#include "children/ReadyPipe.h"
#include "children/SystemLimits.h"
#include "linux/LauncherFixture.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorla {

namespace {

class ProcessLauncherTest : public LauncherFixture {};

} // namespace

TEST_F(ProcessLauncherTest, givesTheChildExactlyOneArgument) {
    EXPECT_EQ(outputOf("printsArguments"), child("printsArguments") + "\n--json\n");
}

TEST_F(ProcessLauncherTest, givesTheChildExactlyTheEnvironment) {
    EXPECT_EQ(outputOf("printsEnvironment", {"A=1", "B="}), "A=1\nB=\n" + goVariable() + "\n");
}

TEST_F(ProcessLauncherTest, givesTheChildTheNullDeviceAndTwoPipesAndNothingElse) {
    // Without O_CLOEXEC, unlike all that the program opens itself.
    const FileDescriptor stray(open("/dev/zero", O_RDONLY));
    const FileDescriptor high(fcntl(stray.number(), F_DUPFD, 100));
    ASSERT_TRUE(high.isOpen());
    EXPECT_EQ(outputOf("printsDescriptors"), "0 /dev/null\n1 pipe\n2 pipe\n");
}

TEST_F(ProcessLauncherTest, givesTheChildNoneOfOurSignalSettings) {
    sigset_t blocked;
    sigset_t maskBefore;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    sigaddset(&blocked, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &blocked, &maskBefore);
    const auto pipeBefore = std::signal(SIGPIPE, SIG_IGN);
    const auto interruptBefore = std::signal(SIGINT, SIG_IGN);
    EXPECT_EQ(outputOf("printsSignals"), "blocked:\nignored:\n");
    std::signal(SIGINT, interruptBefore);
    std::signal(SIGPIPE, pipeBefore);
    pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
}

TEST_F(ProcessLauncherTest, makesTheChildTheLeaderOfItsOwnProcessGroup) {
    EXPECT_EQ(outputOf("printsGroup"), "leader");
}

TEST_F(ProcessLauncherTest, startsChildrenAlsoWhenOurOwnStandardStreamsAreClosed) {
    const FileDescriptor input(fcntl(0, F_DUPFD_CLOEXEC, 3));
    const FileDescriptor output(fcntl(1, F_DUPFD_CLOEXEC, 3));
    const FileDescriptor errors(fcntl(2, F_DUPFD_CLOEXEC, 3));
    // From here to the end of the block nothing may be printed: it would land in the pipes.
    {
        close(0);
        close(1);
        close(2);
        const auto running = start(child("printsIllFormedText"));
        loop().runUntil([&] { return recorder.isComplete(); });
    }
    dup2(input.number(), 0);
    dup2(output.number(), 1);
    dup2(errors.number(), 2);
    EXPECT_EQ(recorder.output.front(), 'a');
    EXPECT_EQ(recorder.errors.front(), 'c');
    EXPECT_EQ(recorder.statuses, std::vector<int>{0});
}

TEST_F(ProcessLauncherTest, reportsEachExitStatus) {
    for (int status = 0; status <= 255; ++status) {
        recorder = {};
        outputOf("exitsWithStatus", {"STATUS=" + std::to_string(status)});
        ASSERT_EQ(recorder.statuses, std::vector<int>{status});
    }
}

TEST_F(ProcessLauncherTest, reportsTheBareNumberOfTheSignalThatEndedTheChild) {
    // The child must leave no core file, wherever the system would put it.
    const SystemLimit noCore(RLIMIT_CORE, 0);
    for (const int signal : {SIGHUP, SIGINT, SIGKILL, SIGTERM, SIGSEGV, SIGABRT}) {
        recorder = {};
        outputOf("diesOfSignal", {"SIGNAL=" + std::to_string(signal)});
        EXPECT_EQ(recorder.statuses, std::vector<int>{signal});
    }
}

TEST_F(ProcessLauncherTest, tellsEverythingOnce) {
    outputOf("printsIllFormedText");
    loop().runPending();
    EXPECT_EQ(
        recorder.output, "a\xFF"
                         "b");
    EXPECT_EQ(
        recorder.errors, "c\xFF"
                         "d");
    EXPECT_EQ(recorder.outputEnds, 1);
    EXPECT_EQ(recorder.errorsEnds, 1);
    EXPECT_EQ(recorder.statuses, std::vector<int>{0});
}

TEST_F(ProcessLauncherTest, knowsThatAChildHasEndedBeforeItTells) {
    const auto running = start(child("exitsWithStatus"), {"STATUS=0"});
    // Until it has ended, and without the loop.
    ASSERT_EQ(waitid(P_ALL, 0, nullptr, WEXITED | WNOWAIT), 0);
    EXPECT_FALSE(running->isRunning());
    EXPECT_TRUE(recorder.statuses.empty());
    EXPECT_FALSE(hasNoChild());
    running->terminate();
    running->kill();
    ASSERT_TRUE(loop().runUntil([&] { return recorder.isComplete(); }));
    EXPECT_EQ(recorder.statuses, std::vector<int>{0});
}

TEST_F(ProcessLauncherTest, asksWhatAnEndedChildHasLeftBehindToEnd) {
    const auto running = start(child("leavesGrandchild"));
    ASSERT_TRUE(loop().runUntil([&] { return !recorder.statuses.empty(); }));
    EXPECT_EQ(recorder.outputEnds, 0);
    running->terminateRest();
    ASSERT_TRUE(loop().runUntil([&] { return recorder.isComplete(); }));
    EXPECT_EQ(recorder.output, "");
    EXPECT_EQ(recorder.statuses, std::vector<int>{5});
}

TEST_F(ProcessLauncherTest, asksNobodyToEndForAChildThatStillRuns) {
    const auto running = start(child("printsInTwoParts"));
    ASSERT_TRUE(loop().runUntil([&] { return recorder.output == "ab"; }));
    running->terminateRest();
    go();
    ASSERT_TRUE(loop().runUntil([&] { return recorder.isComplete(); }));
    EXPECT_EQ(recorder.output, "abcd");
    EXPECT_EQ(recorder.statuses, std::vector<int>{0});
}

TEST_F(ProcessLauncherTest, collectsAnEndedChildWithItsObjectAndNotBefore) {
    auto running = start(child("exitsWithStatus"), {"STATUS=0"});
    ASSERT_TRUE(loop().runUntil([&] { return recorder.isComplete(); }));
    EXPECT_FALSE(hasNoChild());
    running.reset();
    EXPECT_TRUE(hasNoChild());
}

TEST_F(ProcessLauncherTest, collectsAChildThatOutlivesItsObjectWhenItEnds) {
    auto running = start(child("printsInTwoParts"));
    ASSERT_TRUE(loop().runUntil([&] { return recorder.output == "ab"; }));
    running.reset();
    loop().runPending();
    EXPECT_FALSE(hasNoChild());
    go();
    EXPECT_TRUE(loop().runUntil(hasNoChild));
    EXPECT_TRUE(recorder.statuses.empty());
    EXPECT_EQ(recorder.outputEnds, 0);
}

TEST_F(ProcessLauncherTest, collectsSeveralSuchChildrenInAnyOrder) {
    std::vector<std::unique_ptr<ChildProcess>> several;
    for (int count = 0; count < 3; ++count) {
        recorder.output.clear();
        several.push_back(start(child("printsInTwoParts")));
        ASSERT_TRUE(loop().runUntil([&] { return recorder.output == "ab"; }));
    }
    several.clear();
    for (int count = 0; count < 3; ++count) {
        go();
    }
    EXPECT_TRUE(loop().runUntil(hasNoChild));
}

TEST_F(ProcessLauncherTest, tellsOfAnEndThatSomebodyElseHasCollected) {
    const auto running = start(child("exitsWithStatus"), {"STATUS=0"});
    ASSERT_GT(waitpid(-1, nullptr, 0), 0);
    EXPECT_FALSE(running->isRunning());
    ASSERT_TRUE(loop().runUntil([&] { return recorder.isComplete(); }));
    EXPECT_EQ(recorder.statuses, std::vector<int>{-1});
}

TEST_F(ProcessLauncherTest, asksNobodyToEndOnceSomebodyElseHasCollectedTheChild) {
    const auto running = start(child("leavesGrandchild"));
    ASSERT_GT(waitpid(-1, nullptr, 0), 0);
    running->terminateRest();
    go();
    ASSERT_TRUE(loop().runUntil([&] { return recorder.isComplete(); }));
    EXPECT_EQ(recorder.output, "late");
}

TEST_F(ProcessLauncherTest, collectsChildrenAlsoWhenItsStarterHadSwitchedThatOff) {
    std::signal(SIGCHLD, SIG_IGN);
    const LinuxProcessLauncher fresh(loop());
    outputOf("exitsWithStatus", {"STATUS=3"});
    EXPECT_EQ(recorder.statuses, std::vector<int>{3});
}

TEST_F(ProcessLauncherTest, terminateAsksTheChildAlone) {
    const ReadyPipe ready(folder() / "ready");
    const auto running = start(child("obeysBesideItsChild"), {ready.variable()});
    const FileDescriptor grandchild = processHandle(ready.next());
    EXPECT_TRUE(running->isRunning());
    running->terminate();
    ASSERT_TRUE(loop().runUntil([&] { return !recorder.statuses.empty(); }));
    EXPECT_EQ(recorder.statuses, std::vector<int>{SIGTERM});
    // Whom a request to end has reached does not get as far as that.
    go();
    ASSERT_TRUE(runUntilEnded(grandchild));
    EXPECT_TRUE(wentOn());
}

TEST_F(ProcessLauncherTest, killReachesTheChildAndItsOwnChildren) {
    const auto running = start(child("ignoresTermination"));
    ASSERT_TRUE(loop().runUntil([&] { return recorder.output == "readyready"; }));
    running->terminate();
    loop().runPending();
    EXPECT_TRUE(running->isRunning());
    running->kill();
    // The grandchild holds both streams until it is dead as well.
    ASSERT_TRUE(loop().runUntil([&] { return recorder.isComplete(); }));
    EXPECT_EQ(recorder.statuses, std::vector<int>{SIGKILL});
}

TEST_F(ProcessLauncherTest, tellsOfTheExitWhileAGrandchildHoldsTheStreams) {
    const auto running = start(child("leavesGrandchild"));
    ASSERT_TRUE(loop().runUntil([&] { return !recorder.statuses.empty(); }));
    EXPECT_EQ(recorder.statuses, std::vector<int>{5});
    EXPECT_EQ(recorder.outputEnds + recorder.errorsEnds, 0);
    go();
    ASSERT_TRUE(loop().runUntil([&] { return recorder.isComplete(); }));
    EXPECT_EQ(recorder.output, "late");
}

TEST_F(ProcessLauncherTest, isNotHeldUpByAGrandchildWhenTheChildIsDestroyed) {
    auto running = start(child("leavesGrandchild"));
    ASSERT_TRUE(loop().runUntil([&] { return !recorder.statuses.empty(); }));
    running.reset();
    EXPECT_TRUE(hasNoChild());
    go();
}

TEST_F(ProcessLauncherTest, tellsOfAnOutputThatIsClosedEarly) {
    const auto running = start(child("closesOutputEarly"));
    ASSERT_TRUE(loop().runUntil([&] { return recorder.outputEnds == 1; }));
    EXPECT_EQ(recorder.output, "early");
    EXPECT_TRUE(running->isRunning());
    go();
    ASSERT_TRUE(loop().runUntil([&] { return recorder.isComplete(); }));
    EXPECT_EQ(recorder.errors, "late");
    EXPECT_EQ(recorder.statuses, std::vector<int>{4});
}

TEST_F(ProcessLauncherTest, drainsAFloodOfErrorsBesideTheOutput) {
    EXPECT_EQ(outputOf("floodsErrors", {"LINES=1100000"}), "done");
    EXPECT_EQ(recorder.errors.size(), 70'400'000U);
}

TEST_F(ProcessLauncherTest, letsAChildBeDestroyedFromItsListener) {
    auto running = start(child("printsInTwoParts"));
    recorder.onReceived = [&] { running.reset(); };
    ASSERT_TRUE(loop().runUntil([&] { return running == nullptr; }));
    go();
    EXPECT_TRUE(loop().runUntil(hasNoChild));
    EXPECT_EQ(recorder.output, "ab");
    EXPECT_TRUE(recorder.statuses.empty());

    recorder = {};
    running = start(child("leavesGrandchild"));
    recorder.onExited = [&] { running.reset(); };
    ASSERT_TRUE(loop().runUntil([&] { return running == nullptr; }));
    EXPECT_TRUE(hasNoChild());
    go();
    EXPECT_EQ(recorder.statuses, std::vector<int>{5});
}

TEST_F(ProcessLauncherTest, letsAChildOutliveTheLauncher) {
    std::optional<LinuxProcessLauncher> shortLived(std::in_place, loop());
    auto running = shortLived->launch(
        {.path = child("printsInTwoParts"), .argument = "", .environment = {goVariable()}},
        recorder);
    shortLived.reset();
    go();
    ASSERT_TRUE(loop().runUntil([&] { return recorder.isComplete(); }));
    EXPECT_EQ(recorder.output, "abcd");
}

TEST_F(ProcessLauncherTest, leavesNothingAfterManyRuns) {
    const auto descriptors = entries("/proc/self/fd");
    for (int count = 0; count < 300; ++count) {
        recorder = {};
        outputOf("exitsWithStatus", {"STATUS=0"});
        ASSERT_EQ(recorder.statuses, std::vector<int>{0});
    }
    EXPECT_EQ(entries("/proc/self/fd"), descriptors);
    EXPECT_TRUE(noThreadIsLeft());
    EXPECT_TRUE(hasNoChild());
}

} // namespace vorla
