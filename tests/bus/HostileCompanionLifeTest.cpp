// SPDX-License-Identifier: MIT
// Companions that do not end as they should, and what else may happen to one while it runs.
#include "bus/HostileCompanion.h"
#include "children/SystemLimits.h"

#include <csignal>
#include <fstream>
#include <set>
#include <string>

namespace vorla {

namespace {

using namespace std::chrono_literals;

class HostileLife : public HostileCompanion {
protected:
    /// The run is still in flight when everything that happened has been handled.
    void expectStillRunning() {
        loop().runPending();
        EXPECT_TRUE(isRefreshing());
        EXPECT_EQ(item.last().title, "5h 87% · W 62%");
    }

    /// How many of our descriptors are ends of pipes on which a read without data does not return.
    static int pipesOnWhichAReadWaits() {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
            const int number = std::stoi(entry.path().filename());
            std::error_code error;
            const auto target = std::filesystem::read_symlink(entry, error).string();
            const int flags = fcntl(number, F_GETFL);
            const bool isReadEnd = target.starts_with("pipe:") && (flags & O_ACCMODE) == O_RDONLY;
            count += isReadEnd && (flags & O_NONBLOCK) == 0 ? 1 : 0;
        }
        return count;
    }

    /// Whether a process of ours that is ended by a fault leaves a file, as far as we can tell.
    static bool writesCoreFiles() {
        rlimit limits = {};
        getrlimit(RLIMIT_CORE, &limits);
        std::string pattern;
        std::getline(std::ifstream("/proc/sys/kernel/core_pattern"), pattern);
        return limits.rlim_cur > 0 && !pattern.empty() && pattern.front() != '|';
    }

    /// Starts a companion that does not end by itself.
    void startStalling(const std::string& program, std::vector<std::string> variables = {}) {
        startWithFigures(std::move(variables));
        refreshWith(program);
        waitUntilReady();
        loop().advance(44s);
        expectStillRunning();
        loop().advance(1s);
    }

    /// It has not ended when it was asked to, and is killed three seconds later.
    void expectKillAndRecovery() {
        loop().advance(2'999ms);
        expectStillRunning();
        loop().advance(1ms);
        expectLineAndRecovery(timedOut);
    }
};

} // namespace

TEST_F(HostileLife, silence) {
    startStalling("printsThenHangs");
    expectLineAndRecovery(timedOut);
}

TEST_F(HostileLife, aWholeDocumentAndThenNoEnd) {
    makeFile("output", goodDocument());
    startStalling("printsThenHangs");
    expectLineAndRecovery(timedOut);
}

TEST_F(HostileLife, requestsToEndAreIgnored) {
    startStalling("ignoresRequests");
    expectKillAndRecovery();
}

TEST_F(HostileLife, requestsToEndAreIgnoredByItsChildAsWell) {
    startWithFigures({"WITH_CHILD=1"});
    refreshWith("ignoresRequests");
    waitUntilReady();
    waitUntilReady();
    loop().advance(45s);
    expectKillAndRecovery();
}

TEST_F(HostileLife, requestsToEndAreIgnoredByItsChildAlone) {
    startStalling("obeysWithoutItsChild");
    loop().advance(10s);
    // The child has ended in time, so nobody is killed: its own child ends the run.
    expectStillRunning();
    go();
    expectLineAndRecovery(timedOut);
}

TEST_F(HostileLife, requestsToEndAreHeardInVfork) {
    startStalling("waitsInVfork");
    expectLineAndRecovery(timedOut);
    go();
}

TEST_F(HostileLife, itsGroupIsThatOfItsStarter) {
    startStalling("joinsItsStartersGroup");
    expectKillAndRecovery();
}

TEST_F(HostileLife, itFloodsOnWhenAskedToEnd) {
    startWithFigures();
    refreshWith("floodsOnWhenAskedToEnd");
    // It is asked when it has printed more than is kept.
    ASSERT_TRUE(loop().runUntil([this] { return isReady(); }));
    waitUntilReady();
    loop().advance(2'999ms);
    EXPECT_TRUE(isRefreshing());
    loop().advance(1ms);
    expectLineAndRecovery(std::string(300, 'x'));
}

TEST_F(HostileLife, itIsStopped) {
    startWithFigures();
    refreshWith("stopsItself");
    waitUntilStopped();
    loop().advance(45s);
    expectKillAndRecovery();
}

TEST_F(HostileLife, itIsStoppedAndContinued) {
    startWithFigures();
    refreshWith("stopsItself");
    const auto number = waitUntilStopped();
    loop().advance(44s);
    expectStillRunning();
    kill(number, SIGCONT);
    expectLineAndRecovery("gone on");
}

TEST_F(HostileLife, itIsStoppedAndContinuedTooLate) {
    startWithFigures();
    refreshWith("stopsItself");
    const auto number = waitUntilStopped();
    loop().advance(45s);
    kill(number, SIGCONT);
    expectLineAndRecovery(timedOut);
}

TEST_F(HostileLife, itsFirstThreadEndsAlone) {
    startStalling("endsItsFirstThread");
    expectLineAndRecovery(timedOut);
    refreshWith("endsItsFirstThread");
    waitUntilReady();
    expectStillRunning();
    go();
    expectLineAndRecovery(failed(4));
}

TEST_F(HostileLife, somebodyElseHoldsBackItsEnd) {
    startWithFigures();
    refreshWith("endsWhileTraced");
    waitUntilReady();
    expectStillRunning();
    go();
    waitUntilCollectable();
    loop().advance(1s);
    expectLineAndRecovery(failed(4));
}

TEST_F(HostileLife, itsOutputGoesBackToItself) {
    startWithFigures();
    const auto before = pipesOnWhichAReadWaits();
    refreshWith("takesItsOutputBack");
    // It takes luck to be faster than our read, but whoever has it would hold us for good.
    EXPECT_EQ(pipesOnWhichAReadWaits(), before);
    waitUntilReady();
    expectStillRunning();
    go();
    expectLineAndRecovery(invalid);
}

TEST_F(HostileLife, bothStreamsAreClosedEarly) {
    startWithFigures();
    refreshWith("closesBothStreams");
    waitUntilReady();
    expectStillRunning();
    go();
    ASSERT_NO_FATAL_FAILURE(expectLineAndRecovery(failed(4)));
    refreshWith("closesBothStreams");
    waitUntilReady();
    loop().advance(45s);
    expectLineAndRecovery(timedOut);
}

TEST_F(HostileLife, bothStreamsAreMoved) {
    startWithFigures();
    refreshWith("movesItsStreams");
    waitUntilReady();
    expectStillRunning();
    go();
    expectLineAndRecovery("moved");
}

TEST_F(HostileLife, itLeavesADaemonThatHoldsTheStreams) {
    startWithFigures({"HOLDS=1"});
    refreshWith("leavesDaemon");
    waitUntilReady();
    waitUntilCollectable();
    loop().advance(10min);
    expectStillRunning();
    go();
    expectLineAndRecovery(invalid);
}

TEST_F(HostileLife, itLeavesADaemonThatDoesNot) {
    startWithFigures();
    refreshWith("leavesDaemon");
    expectLineAndRecovery(invalid);
    waitUntilReady();
    go();
}

TEST_F(HostileLife, itExhaustsItsDescriptors) {
    startWithFigures();
    refreshWith("exhaustsDescriptors");
    expectLineAndRecovery("Too many open files");
}

TEST_F(HostileLife, itExhaustsProcesses) {
    // It becomes another user if we are root, and shall reach the test nevertheless.
    ASSERT_EQ(chmod(folder().c_str(), 0755), 0);
    ASSERT_EQ(chmod(readyPath().c_str(), 0666), 0);
    startStalling("exhaustsProcesses");
    // All of them hold the streams, so the run could not end if one were still alive.
    expectKillAndRecovery();
}

TEST_F(HostileLife, anyExitStatus) {
    for (int status = 1; status <= 255; ++status) {
        startWithFigures({"STATUS=" + std::to_string(status)});
        refreshWith("exitsWithStatus");
        ASSERT_NO_FATAL_FAILURE(expectLineAndRecovery(failed(status)));
    }
}

TEST_F(HostileLife, aWholeDocumentAndAnyOtherStatus) {
    makeFile("output", goodDocument());
    startWithFigures({"STATUS=1"});
    refreshWith("printsFiles");
    expectLineAndRecovery(failed(1));
}

TEST_F(HostileLife, anyFatalSignal) {
    const SystemLimit none(RLIMIT_CORE, 0);
    const std::set<int> harmless = {SIGCHLD, SIGCONT, SIGSTOP, SIGTSTP,
                                    SIGTTIN, SIGTTOU, SIGURG,  SIGWINCH};
    for (int signal = 1; signal <= SIGRTMAX; ++signal) {
        // Those between are the C library's own.
        if (harmless.contains(signal) || (signal > SIGSYS && signal < SIGRTMIN)) {
            continue;
        }
        startWithFigures({"SIGNAL=" + std::to_string(signal)});
        refreshWith("diesOfSignal");
        ASSERT_NO_FATAL_FAILURE(expectLineAndRecovery(failed(signal)));
    }
}

TEST_F(HostileLife, aCoreFile) {
    const CurrentFolder current(folder());
    const SystemLimit small(RLIMIT_CORE, 1'000'000);
    startWithFigures({"SIGNAL=" + std::to_string(SIGABRT)});
    refreshWith("diesOfSignal");
    siginfo_t end = {};
    ASSERT_EQ(waitid(P_ALL, 0, &end, WEXITED | WNOWAIT), 0);
    // Without one the line is the same. A test cannot have the system write any.
    if (writesCoreFiles()) {
        EXPECT_EQ(end.si_code, CLD_DUMPED);
    }
    expectLineAndRecovery(failed(SIGABRT));
}

TEST_F(HostileLife, itIsKilledFromOutside) {
    startWithFigures();
    refreshWith("ignoresRequests");
    kill(waitUntilReady(), SIGKILL);
    expectLineAndRecovery(failed(SIGKILL));
}

TEST_F(HostileLife, itsEndIsCollectedBySomebodyElse) {
    startWithFigures();
    refreshWith("closesBothStreams");
    waitUntilReady();
    go();
    ASSERT_GT(waitpid(-1, nullptr, 0), 0);
    expectLineAndRecovery(failed(-1));
}

TEST_F(HostileLife, itIsReplacedWhileItRuns) {
    startWithFigures();
    refreshWith("closesBothStreams");
    waitUntilReady();
    companionIs("printsSnapshot");
    go();
    ASSERT_NO_FATAL_FAILURE(expectLine(failed(4)));
    refresh();
    expectFigures();
}

TEST_F(HostileLife, itIsDeletedWhileItRuns) {
    startWithFigures();
    refreshWith("closesBothStreams");
    waitUntilReady();
    std::filesystem::remove(companion());
    go();
    ASSERT_NO_FATAL_FAILURE(expectLine(failed(4)));
    refresh();
    expectLineAndRecovery(missing);
}

} // namespace vorla
