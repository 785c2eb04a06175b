// SPDX-License-Identifier: MIT
// Quitting, whatever the companion does; and a system that cannot give what a run needs.
#include "bus/HostileCompanion.h"
#include "children/SystemLimits.h"
#include "fakes/RefusingLoop.h"

#include <malloc.h>

#include <csignal>
#include <string>
#include <utility>

namespace vorla {

namespace {

using namespace std::chrono_literals;

class HostileQuit : public HostileCompanion {
protected:
    void startRun(const std::string& program, std::vector<std::string> variables = {}) {
        startWithFigures(std::move(variables));
        refreshWith(program);
    }

    void startReadyRun(const std::string& program, std::vector<std::string> variables = {}) {
        startRun(program, std::move(variables));
        waitUntilReady();
        loop().runPending();
    }

    /// Asks the application to end and lets `delay` pass; it answers only then.
    void quitAfter(std::chrono::milliseconds delay) {
        item.listener->chosen(MenuAction::quit);
        shownBefore_ = item.shown.size();
        if (delay > 0ms) {
            loop().advance(delay - 1ms);
            loop().runPending();
            EXPECT_EQ(replies, 0);
            loop().advance(1ms);
        }
        ASSERT_TRUE(loop().runUntil([this] { return replies > 0; }));
    }

    /// As main() does it; nothing that comes too late changes anything.
    void expectNothingLeft() {
        loop().runPending();
        EXPECT_EQ(item.shown.size(), shownBefore_);
        EXPECT_EQ(replies, 1);
        destroyApplication();
        loop().runPending();
        EXPECT_TRUE(hasNoChild());
        EXPECT_TRUE(noThreadIsLeft());
    }

private:
    std::size_t shownBefore_ = 0;
};

class HostileSystem : public HostileCompanion {
protected:
    /// Refreshes under a limit that grows from `first` until the run succeeds. With each lower one
    /// the launch fails for `reason`, wherever it is that the limit is met. Returns how many did.
    int failuresUntilEnough(__rlimit_resource resource, rlim_t first, const std::string& reason) {
        for (int failures = 0; failures < 10'000; ++failures) {
            {
                const SystemLimit limit(resource, first + static_cast<rlim_t>(failures));
                refresh();
            }
            if (isRefreshing()) {
                expectFigures();
                return failures;
            }
            expectLine(cannotRun(reason));
            if (HasFailure()) {
                return failures;
            }
        }
        ADD_FAILURE() << "no limit was high enough";
        return 0;
    }
};

/// A user who may not pass limits, for as long as it lives: root may.
class OrdinaryUser final {
public:
    OrdinaryUser() {
        if (geteuid() == 0) {
            // A number that nobody else uses: limits count all that a user has running.
            isRoot_ = setresuid(unusedNumber, unusedNumber, 0) == 0;
        }
    }
    ~OrdinaryUser() {
        if (isRoot_) {
            EXPECT_EQ(setresuid(0, 0, 0), 0);
        }
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    static constexpr uid_t unusedNumber = 54'321;

    bool isRoot_ = false;
};

/// Starts real children that no signal of ours reaches, like those that became another user.
class UnreachableLauncher final : public ProcessLauncher {
public:
    explicit UnreachableLauncher(ProcessLauncher& real) : real_(real) {}

    std::unique_ptr<ChildProcess>
    launch(const LaunchRequest& request, ChildProcess::Listener& listener) override {
        return std::make_unique<Unreachable>(real_.launch(request, listener));
    }

private:
    class Unreachable final : public ChildProcess {
    public:
        explicit Unreachable(std::unique_ptr<ChildProcess> real) : real_(std::move(real)) {}

        bool isRunning() const override { return real_->isRunning(); }
        void terminate() override {}
        void kill() override {}
        void terminateRest() override {}

    private:
        std::unique_ptr<ChildProcess> real_;
    };

    ProcessLauncher& real_;
};

} // namespace

TEST_F(HostileQuit, whileNothingRuns) {
    startWithFigures();
    quitAfter(0ms);
    expectNothingLeft();
}

TEST_F(HostileQuit, afterAFailure) {
    startRun("exitsWithStatus", {"STATUS=3"});
    ASSERT_NO_FATAL_FAILURE(expectLine(failed(3)));
    quitAfter(0ms);
    expectNothingLeft();
}

TEST_F(HostileQuit, beforeTheFirstRunHasEnded) {
    companionIs("ignoresRequests");
    makeApplication(companion());
    delegate().applicationDidFinishLaunching();
    waitUntilReady();
    quitAfter(3s);
    expectNothingLeft();
}

TEST_F(HostileQuit, whileARunGoesWell) {
    startRun("printsSnapshot");
    quitAfter(0ms);
    expectNothingLeft();
}

TEST_F(HostileQuit, whileItHangsAfterItsDocument) {
    makeFile("output", goodDocument());
    startReadyRun("printsThenHangs");
    quitAfter(0ms);
    expectNothingLeft();
}

TEST_F(HostileQuit, whileItFloods) {
    startRun("floodsBoth");
    quitAfter(0ms);
    expectNothingLeft();
}

TEST_F(HostileQuit, whileRequestsAreIgnored) {
    startReadyRun("ignoresRequests");
    quitAfter(3s);
    expectNothingLeft();
}

TEST_F(HostileQuit, whileRequestsAreIgnoredAndTimeIsUpAnyway) {
    startReadyRun("ignoresRequests");
    loop().advance(45s);
    quitAfter(3s);
    expectNothingLeft();
}

TEST_F(HostileQuit, whileTheDashboardIgnoresRequests) {
    startWithFigures();
    companionIs("ignoresRequests");
    item.listener->chosen(MenuAction::openDashboard);
    waitUntilReady();
    quitAfter(3s);
    expectNothingLeft();
}

TEST_F(HostileQuit, whileThreeRunsIgnoreRequests) {
    startWithFigures();
    companionIs("ignoresRequests");
    for (const auto action :
         {MenuAction::refresh, MenuAction::openDashboard, MenuAction::copyDiagnosticSnapshot}) {
        item.listener->chosen(action);
        waitUntilReady();
    }
    quitAfter(3s);
    expectNothingLeft();
}

TEST_F(HostileQuit, whileItIsStopped) {
    startRun("stopsItself");
    waitUntilStopped();
    quitAfter(3s);
    expectNothingLeft();
}

TEST_F(HostileQuit, whileItStandsInVfork) {
    startReadyRun("waitsInVfork");
    quitAfter(0ms);
    expectNothingLeft();
    go();
}

TEST_F(HostileQuit, whileItsGroupIsThatOfItsStarter) {
    startReadyRun("joinsItsStartersGroup");
    quitAfter(3s);
    expectNothingLeft();
}

TEST_F(HostileQuit, whileItsOutputGoesBackToItself) {
    for (int count = 0; count < 10; ++count) {
        replies = 0;
        startReadyRun("takesItsOutputBack");
        waitUntilCollectable();
        loop().runPending();
        quitAfter(0ms);
        ASSERT_NO_FATAL_FAILURE(expectNothingLeft());
        go();
    }
}

TEST_F(HostileQuit, whileADaemonHoldsTheStreams) {
    startReadyRun("leavesDaemon", {"HOLDS=1"});
    waitUntilCollectable();
    loop().runPending();
    quitAfter(0ms);
    expectNothingLeft();
    go();
}

TEST_F(HostileQuit, betweenItsEndAndThatOfItsStreams) {
    startRun("exitsWithStatus", {"STATUS=3"});
    waitUntilCollectable();
    quitAfter(0ms);
    expectNothingLeft();
}

TEST_F(HostileQuit, whileSomebodyElseHoldsBackItsEnd) {
    startReadyRun("endsWhileTraced");
    quitAfter(AppDelegate::terminationLimit);
    go();
    waitUntilCollectable();
    expectNothingLeft();
}

TEST_F(HostileQuit, whileNoSignalReachesIt) {
    UnreachableLauncher unreachable(launcher());
    startApplication({}, nullptr, &unreachable);
    ASSERT_NO_FATAL_FAILURE(expectFigures());
    refreshWith("ignoresRequests");
    const auto number = waitUntilReady();
    quitAfter(AppDelegate::terminationLimit);
    destroyApplication();
    EXPECT_TRUE(noThreadIsLeft());
    kill(number, SIGKILL);
    EXPECT_TRUE(loop().runUntil(hasNoChild));
}

TEST_F(HostileQuit, askedTwice) {
    startReadyRun("ignoresRequests");
    item.listener->chosen(MenuAction::quit);
    delegate().terminateAtOnce();
    EXPECT_EQ(replies, 1);
    waitUntilCollectable();
    destroyApplication();
    EXPECT_TRUE(hasNoChild());
}

TEST_F(HostileSystem, descriptorsRunOut) {
    startWithFigures();
    // Each of the run's descriptors is once the one too many.
    EXPECT_GE(failuresUntilEnough(RLIMIT_NOFILE, 3, "Too many open files"), 10);
}

TEST_F(HostileSystem, processesRunOut) {
    // The other user may not look into every folder, so all that is needed is in this one.
    makeFile("output", goodDocument());
    // A sanitizer's look for leaks would take a process more.
    startWithFigures({"SNAPSHOT=" + (folder() / "output").string(), "ASAN_OPTIONS=detect_leaks=0"});
    std::filesystem::remove(companion());
    std::filesystem::copy_file(child("printsSnapshot"), companion());
    ASSERT_EQ(chmod(folder().c_str(), 0755), 0);
    const OrdinaryUser ordinary;
    // Two threads and the child.
    EXPECT_GE(failuresUntilEnough(RLIMIT_NPROC, 0, "Resource temporarily unavailable"), 3);
}

TEST_F(HostileSystem, memoryForThreadsRunsOut) {
    constexpr std::size_t stackBytes = std::size_t{256} << 20U;
    startWithFigures();
    {
        const ThreadStackSize large(stackBytes);
        // Room for no further thread, and room for one of two.
        for (const rlim_t room : {stackBytes / 2, stackBytes + stackBytes / 2}) {
            const SystemLimit limit(RLIMIT_AS, addressSpaceInUse() + room);
            refresh();
            ASSERT_NO_FATAL_FAILURE(expectLine(cannotRun("Resource temporarily unavailable")));
        }
    }
    refresh();
    expectFigures();
}

TEST_F(HostileSystem, memoryForTheDocumentRunsOut) {
    constexpr std::size_t roomBytes = std::size_t{16} << 20U;
    startWithFigures();
    // A good document for both. Not too many values, but each takes far more memory than text.
    auto document = goodDocument();
    document.resize(document.rfind('}'));
    document += R"(,"diagnosticSchemaVersion":1,"zeros":[0)";
    for (int count = 0; count < 900'000; ++count) {
        document += ",0";
    }
    makeFile("output", document + "]}");
    companionIs("printsFiles");
    refresh();
    {
        const SystemLimit limit(RLIMIT_AS, addressSpaceInUse() + roomBytes);
        expectLine(invalid);
    }
    item.listener->chosen(MenuAction::copyDiagnosticSnapshot);
    // What the last run gave back would be room for this one.
    malloc_trim(0);
    {
        const SystemLimit limit(RLIMIT_AS, addressSpaceInUse() + roomBytes);
        EXPECT_TRUE(
            loop().runUntil([this] { return item.line(LineRole::diagnosticStatus).has_value(); }));
    }
    EXPECT_EQ(item.text(LineRole::diagnosticStatus), "Invalid diagnostic output from vorla-usage.");

    refresh();
    expectFigures();
    item.listener->chosen(MenuAction::copyDiagnosticSnapshot);
    ASSERT_TRUE(loop().runUntil([this] { return clipboard().copies > 0; }));
    EXPECT_NE(clipboard().text.find("zeros"), std::string::npos);
}

TEST_F(HostileSystem, memoryForTheOutputRunsOut) {
    constexpr std::size_t roomBytes = std::size_t{40} << 20U;
    startWithFigures({"LINES=100000000"});
    refreshWith("floodsOutput");
    {
        const SystemLimit limit(RLIMIT_AS, addressSpaceInUse() + roomBytes);
        // The next double of what is kept is more than there is room for.
        ASSERT_NO_FATAL_FAILURE(expectLine(failed(SIGTERM)));
    }
    refreshWith("printsSnapshot");
    expectFigures();
}

TEST_F(HostileSystem, memoryForTheErrorsRunsOut) {
    // Enough to keep them, too little to make three bytes of each.
    constexpr std::size_t errorBytes = 40'000'000;
    constexpr std::size_t roomBytes = std::size_t{128} << 20U;
    startWithFigures({"STATUS=3"});
    makeFile("errors", std::string(errorBytes, '\xFF'));
    refreshWith("printsFiles");
    std::string line;
    for (int count = 0; count < 300; ++count) {
        line += "\uFFFD";
    }
    {
        const SystemLimit limit(RLIMIT_AS, addressSpaceInUse() + roomBytes);
        ASSERT_NO_FATAL_FAILURE(expectLine(line));
    }
    refreshWith("printsSnapshot");
    expectFigures();
}

TEST_F(HostileSystem, watchesRunOut) {
    RefusingLoop full(loop(), RefusingLoop::Refuses::watches);
    LinuxProcessLauncher helpless(full);
    startApplication({}, nullptr, &helpless);
    ASSERT_NO_FATAL_FAILURE(expectLine(cannotRun("No space left on device")));
    startWithFigures();
}

} // namespace vorla
