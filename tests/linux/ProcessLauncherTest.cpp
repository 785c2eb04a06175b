// SPDX-License-Identifier: MIT
#include "linux/ProcessLauncher.h"

#include "children/NothingLeftBehind.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>

#include <array>
#include <csignal>
#include <fstream>
#include <functional>
#include <string>
#include <system_error>
#include <vector>

namespace vorla {

namespace {

using Stream = ChildProcess::Stream;

/// Remembers what it is told about one child.
class Recorder final : public ChildProcess::Listener {
public:
    void received(Stream stream, std::string_view bytes) override {
        (stream == Stream::output ? output : errors) += bytes;
        if (onReceived) {
            onReceived();
        }
    }

    void ended(Stream stream) override { ++(stream == Stream::output ? outputEnds : errorsEnds); }

    void exited(int status) override {
        statuses.push_back(status);
        if (onExited) {
            onExited();
        }
    }

    bool isComplete() const { return outputEnds > 0 && errorsEnds > 0 && !statuses.empty(); }

    std::string output;
    std::string errors;
    int outputEnds = 0;
    int errorsEnds = 0;
    std::vector<int> statuses;
    std::function<void()> onReceived;
    std::function<void()> onExited;
};

class ProcessLauncherTest : public NothingLeftBehind {
protected:
    std::unique_ptr<ChildProcess>
    start(const std::string& path, std::vector<std::string> variables = {}) {
        variables.push_back(goVariable());
        return launcher().launch(
            {.path = path, .argument = "--json", .environment = std::move(variables)}, recorder);
    }

    /// Runs a child to its end and returns what it printed.
    std::string outputOf(const std::string& program, std::vector<std::string> variables = {}) {
        const auto running = start(child(program), std::move(variables));
        EXPECT_TRUE(loop().runUntil([&] { return recorder.isComplete(); }));
        return recorder.output;
    }

    /// The error with which a launch fails, after which nothing is left of it.
    std::error_code launchError(const std::string& path) {
        const auto descriptors = entries("/proc/self/fd");
        try {
            const auto running = start(path);
        } catch (const std::system_error& error) {
            EXPECT_EQ(entries("/proc/self/fd"), descriptors);
            EXPECT_TRUE(hasNoChild());
            return error.code();
        }
        return {};
    }

    std::string makeFile(const std::string& content, mode_t mode) {
        const std::string path = folder() / "file";
        std::ofstream(path) << content;
        chmod(path.c_str(), mode);
        return path;
    }

    Recorder recorder;
};

/// Lowers a limit of this process for as long as it lives.
class LoweredLimit final {
public:
    LoweredLimit(__rlimit_resource resource, rlim_t value) : resource_(resource) {
        getrlimit(resource_, &before_);
        rlimit lowered = before_;
        lowered.rlim_cur = value;
        setrlimit(resource_, &lowered);
    }

    ~LoweredLimit() { setrlimit(resource_, &before_); }

    LoweredLimit(const LoweredLimit&) = delete;
    LoweredLimit& operator=(const LoweredLimit&) = delete;

private:
    __rlimit_resource resource_;
    rlimit before_ = {};
};

/// Sets the stack size of new threads for as long as it lives.
class ThreadStackSize final {
public:
    explicit ThreadStackSize(std::size_t bytes) {
        pthread_getattr_default_np(&before_);
        pthread_attr_t changed = before_;
        pthread_attr_setstacksize(&changed, bytes);
        pthread_setattr_default_np(&changed);
    }

    ~ThreadStackSize() {
        pthread_setattr_default_np(&before_);
        pthread_attr_destroy(&before_);
    }

    ThreadStackSize(const ThreadStackSize&) = delete;
    ThreadStackSize& operator=(const ThreadStackSize&) = delete;

private:
    pthread_attr_t before_ = {};
};

/// A main loop without room for another watch.
class FullLoop final : public MainLoop {
public:
    void post(std::function<void()>) override {}

    std::unique_ptr<Source> after(std::chrono::milliseconds, std::function<void()>) override {
        return nullptr;
    }

    std::unique_ptr<Source> every(std::chrono::seconds, std::function<void()>) override {
        return nullptr;
    }

    std::unique_ptr<Source> whenReadable(int, std::function<void()>) override {
        throw std::system_error(std::make_error_code(std::errc::no_space_on_device));
    }
};

rlim_t addressSpaceInUse() {
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

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
        const auto running = start(child("printsDescriptors"));
        loop().runUntil([&] { return recorder.isComplete(); });
    }
    dup2(input.number(), 0);
    dup2(output.number(), 1);
    dup2(errors.number(), 2);
    EXPECT_EQ(recorder.output, "0 /dev/null\n1 pipe\n2 pipe\n");
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
    // The child must leave no core file, however this machine is set up.
    const LoweredLimit noCore(RLIMIT_CORE, 0);
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

TEST_F(ProcessLauncherTest, collectsChildrenAlsoWhenItsStarterHadSwitchedThatOff) {
    std::signal(SIGCHLD, SIG_IGN);
    const LinuxProcessLauncher fresh(loop());
    outputOf("exitsWithStatus", {"STATUS=3"});
    EXPECT_EQ(recorder.statuses, std::vector<int>{3});
}

TEST_F(ProcessLauncherTest, terminateAsksTheChildAlone) {
    const auto running = start(child("waitsForEver"));
    ASSERT_TRUE(loop().runUntil([&] { return recorder.output == "ready"; }));
    EXPECT_TRUE(running->isRunning());
    running->terminate();
    ASSERT_TRUE(loop().runUntil([&] { return recorder.isComplete(); }));
    EXPECT_EQ(recorder.statuses, std::vector<int>{SIGTERM});
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

TEST_F(ProcessLauncherTest, throwsTheReasonOfALaunchThatFails) {
    struct Case {
        std::string path;
        int number = 0;
        std::string message;
    };

    const std::vector<Case> cases = {
        {folder() / "none", 2, "No such file or directory"},
        {"", 2, "No such file or directory"},
        {folder(), 13, "Permission denied"},
        {makeFile("#!/bin/true\n", 0644), 13, "Permission denied"},
        {goPath() + "/below", 20, "Not a directory"}};
    for (const auto& [path, number, message] : cases) {
        const auto error = launchError(path);
        EXPECT_EQ(error.value(), number) << path;
        EXPECT_EQ(error.message(), message) << path;
    }
}

TEST_F(ProcessLauncherTest, throwsForAFileThatIsNoProgram) {
    const auto error = launchError(makeFile("echo\n", 0755));
    EXPECT_EQ(error.value(), 8);
    EXPECT_EQ(error.message(), "Exec format error");
}

TEST_F(ProcessLauncherTest, throwsForAMissingInterpreter) {
    EXPECT_EQ(launchError(makeFile("#!/nowhere/interpreter\n", 0755)).value(), 2);
}

TEST_F(ProcessLauncherTest, throwsWhereverDescriptorsRunOut) {
    // A sanitizer needs descriptors to look at a type for the first time, so it sees them all here.
    outputOf("exitsWithStatus", {"STATUS=0"});
    EXPECT_EQ(launchError(folder() / "none").value(), ENOENT);
    recorder = {};
    const auto descriptors = entries("/proc/self/fd");
    std::size_t failures = 0;
    for (rlim_t limit = 3; limit < 200; ++limit) {
        std::error_code error;
        std::unique_ptr<ChildProcess> running;
        {
            const LoweredLimit lowered(RLIMIT_NOFILE, limit);
            try {
                running = start(child("exitsWithStatus"), {"STATUS=0"});
            } catch (const std::system_error& thrown) {
                error = thrown.code();
            }
        }
        if (running != nullptr) {
            ASSERT_TRUE(loop().runUntil([&] { return recorder.isComplete(); }));
            break;
        }
        ++failures;
        EXPECT_EQ(error.value(), EMFILE);
        EXPECT_EQ(entries("/proc/self/fd"), descriptors);
        EXPECT_TRUE(hasNoChild());
    }
    EXPECT_EQ(recorder.statuses, std::vector<int>{0});
    // There are at least that many descriptors of which each can be the one too many.
    EXPECT_GE(failures, 10U);
}

TEST_F(ProcessLauncherTest, throwsWhereverThreadsCannotBeStarted) {
    constexpr std::size_t stackBytes = std::size_t{256} << 20U;
    const ThreadStackSize large(stackBytes);
    const auto descriptors = entries("/proc/self/fd");
    // Room for no further thread, and room for one of two.
    for (const rlim_t room : {stackBytes / 2, stackBytes + stackBytes / 2}) {
        std::error_code error;
        {
            const LoweredLimit lowered(RLIMIT_AS, addressSpaceInUse() + room);
            error = launchError(child("exitsWithStatus"));
        }
        EXPECT_EQ(error.value(), EAGAIN);
        EXPECT_EQ(entries("/proc/self/fd"), descriptors);
        EXPECT_TRUE(noThreadIsLeft());
        EXPECT_TRUE(hasNoChild());
    }
}

TEST_F(ProcessLauncherTest, killsAndCollectsAChildThatCannotBeWatched) {
    FullLoop full;
    LinuxProcessLauncher helpless(full);
    const auto descriptors = entries("/proc/self/fd");
    try {
        helpless.launch(
            {.path = child("ignoresTermination"), .argument = "", .environment = {}}, recorder);
        FAIL() << "nothing was thrown";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_space_on_device);
    }
    EXPECT_TRUE(hasNoChild());
    EXPECT_EQ(entries("/proc/self/fd"), descriptors);
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
