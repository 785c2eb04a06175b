// SPDX-License-Identifier: MIT
#include "linux/EventLoop.h"

#include "children/SystemLimits.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/eventfd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace vorla {

namespace {

using namespace std::chrono_literals;

class EventLoopTest : public testing::Test {
protected:
    bool runUntil(const std::function<bool()>& condition) {
        const auto end = std::chrono::steady_clock::now() + 30s;
        while (!condition()) {
            if (std::chrono::steady_clock::now() > end) {
                return false;
            }
            loop->runOnce(100ms);
        }
        return true;
    }

    void runPending() {
        while (loop->runOnce(0ms)) {}
    }

    std::optional<EventLoop> loop{std::in_place};
};

/// By which clocks the timers of this process go: the system tells it of each of its descriptors.
std::set<clockid_t> clocksOfTimers() {
    std::set<clockid_t> clocks;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fdinfo")) {
        std::ifstream file(entry.path());
        std::string word;
        while (file >> word) {
            if (word == "clockid:" && file >> word) {
                clocks.insert(std::stoi(word));
            }
        }
    }
    return clocks;
}

FileDescriptor readableDescriptor() {
    return FileDescriptor(eventfd(1, EFD_CLOEXEC | EFD_NONBLOCK));
}

/// Restores which signals are blocked.
class SignalMask final {
public:
    SignalMask() { pthread_sigmask(SIG_SETMASK, nullptr, &before_); }

    ~SignalMask() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

    SignalMask(const SignalMask&) = delete;
    SignalMask& operator=(const SignalMask&) = delete;

private:
    sigset_t before_ = {};
};

} // namespace

TEST_F(EventLoopTest, runsWhatOtherThreadsPostOnItsOwnThreadAndInOrder) {
    std::vector<int> order;
    bool onLoopThread = true;
    const auto loopThread = std::this_thread::get_id();
    const std::jthread poster([&] {
        for (int number = 0; number < 1000; ++number) {
            loop->post([&, number] {
                order.push_back(number);
                onLoopThread = onLoopThread && std::this_thread::get_id() == loopThread;
            });
        }
    });
    ASSERT_TRUE(runUntil([&] { return order.size() == 1000; }));
    for (int number = 0; number < 1000; ++number) {
        EXPECT_EQ(order.at(static_cast<std::size_t>(number)), number);
    }
    EXPECT_TRUE(onLoopThread);
}

TEST_F(EventLoopTest, runsWorkThatIsPostedByWorkLater) {
    std::vector<int> order;
    loop->post([&] {
        loop->post([&] { order.push_back(3); });
        order.push_back(1);
    });
    loop->post([&] { order.push_back(2); });
    EXPECT_TRUE(order.empty());
    runPending();
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST_F(EventLoopTest, releasesPostedWorkBeforeItRunsTheNext) {
    const auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    long holders = 0;
    loop->post([copy = std::make_shared<int>(2), held] {});
    loop->post([&] { holders = watched.use_count(); });
    runPending();
    EXPECT_EQ(holders, 1);
}

TEST_F(EventLoopTest, releasesPostedWorkThatNeverRanTogetherWithWhatThatPosts) {
    class PostsOnce final {
    public:
        PostsOnce(EventLoop& loop, std::shared_ptr<int> held)
            : loop_(loop), held_(std::move(held)) {}

        ~PostsOnce() {
            loop_.post([held = held_] {});
        }

        PostsOnce(const PostsOnce&) = delete;
        PostsOnce& operator=(const PostsOnce&) = delete;

    private:
        EventLoop& loop_;
        std::shared_ptr<int> held_;
    };

    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    loop->post([poster = std::make_shared<PostsOnce>(*loop, std::move(held))] {});
    loop.reset();
    EXPECT_TRUE(watched.expired());
}

TEST_F(EventLoopTest, firesATimerOnceAndNotBeforeItIsDue) {
    int calls = 0;
    const auto start = std::chrono::steady_clock::now();
    const auto timer = loop->after(20ms, [&] { ++calls; });
    ASSERT_TRUE(runUntil([&] { return calls > 0; }));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 20ms);
    bool laterFired = false;
    const auto later = loop->after(20ms, [&] { laterFired = true; });
    ASSERT_TRUE(runUntil([&] { return laterFired; }));
    EXPECT_EQ(calls, 1);
}

TEST_F(EventLoopTest, tellsTheTimeByTheClockOfItsTimers) {
    const auto realStart = std::chrono::steady_clock::now();
    const auto start = loop->now();
    bool fired = false;
    const auto timer = loop->after(20ms, [&] { fired = true; });
    ASSERT_TRUE(runUntil([&] { return fired; }));
    const auto passed = loop->now() - start;
    EXPECT_GE(passed, 20ms);
    EXPECT_LE(passed, std::chrono::steady_clock::now() - realStart + 1ms);
}

TEST_F(EventLoopTest, firesATimerWithoutDelayFromTheLoopAndNotAtOnce) {
    bool fired = false;
    const auto timer = loop->after(0ms, [&] { fired = true; });
    EXPECT_FALSE(fired);
    EXPECT_TRUE(runUntil([&] { return fired; }));
}

TEST_F(EventLoopTest, neverFiresATimerThatWasDestroyed) {
    bool fired = false;
    bool laterFired = false;
    auto timer = loop->after(0ms, [&] { fired = true; });
    const auto later = loop->after(10ms, [&] { laterFired = true; });
    timer.reset();
    ASSERT_TRUE(runUntil([&] { return laterFired; }));
    EXPECT_FALSE(fired);
}

TEST_F(EventLoopTest, firesARepeatedTimerAgainAndAgain) {
    int calls = 0;
    const auto start = std::chrono::steady_clock::now();
    const auto timer = loop->every(1s, [&] { ++calls; });
    ASSERT_TRUE(runUntil([&] { return calls == 2; }));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 2s);
}

TEST_F(EventLoopTest, countsTheTimeOfASuspendForRepeatedTimersOnly) {
    const auto tick = loop->every(60s, [] {});
    EXPECT_EQ(clocksOfTimers(), std::set<clockid_t>{CLOCK_BOOTTIME});
    const auto limit = loop->after(45s, [] {});
    EXPECT_EQ(clocksOfTimers(), (std::set<clockid_t>{CLOCK_BOOTTIME, CLOCK_MONOTONIC}));
}

TEST_F(EventLoopTest, makesUpForMissedTicksWithOneCallAndStaysOnItsGrid) {
    using Clock = std::chrono::steady_clock;
    int calls = 0;
    Clock::time_point caughtUp;
    const auto timer = loop->every(1s, [&] {
        ++calls;
        caughtUp = Clock::now();
    });
    // Not before: what passed between would count as waiting.
    const auto start = Clock::now();
    loop->post([&] {
        while (Clock::now() < start + 2500ms) {}
    });
    runPending();
    EXPECT_EQ(calls, 1);

    // Whatever wakes the loop makes a timer fire that is due, however long it may still wait.
    const auto nextTick = std::chrono::ceil<std::chrono::seconds>(caughtUp - start);
    bool awake = false;
    const auto afterTick = loop->after(
        std::chrono::ceil<std::chrono::milliseconds>(start + nextTick + 10ms - caughtUp),
        [&] { awake = true; });
    ASSERT_TRUE(runUntil([&] { return awake; }));
    runPending();
    EXPECT_EQ(calls, 2);
}

TEST_F(EventLoopTest, throwsWhereverDescriptorsRunOut) {
    const auto errorOf = [](const auto& work) {
        try {
            work();
            return 0;
        } catch (const std::system_error& thrown) {
            return thrown.code().value();
        }
    };
    const auto makeLoop = [] {
        EventLoop narrow;
        const auto tick = narrow.every(60s, [] {});
        const auto delay = narrow.after(45s, [] {});
    };
    // A sanitizer needs descriptors to look at a type for the first time, so it sees them all here.
    EXPECT_EQ(errorOf([&] { static_cast<void>(loop->whenReadable(-1, [] {})); }), EBADF);
    EXPECT_EQ(errorOf(makeLoop), 0);
    const auto descriptors = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    const auto before = descriptors();
    int failures = 0;
    for (bool isEnough = false; !isEnough && failures < 200; failures += isEnough ? 0 : 1) {
        int error = 0;
        {
            const SystemLimit limit(RLIMIT_NOFILE, 3 + static_cast<rlim_t>(failures));
            error = errorOf(makeLoop);
        }
        isEnough = error == 0;
        EXPECT_EQ(error, isEnough ? 0 : EMFILE);
        EXPECT_EQ(descriptors(), before);
    }
    // What wakes it, what it waits with, and one for each clock.
    EXPECT_GE(failures, 4);
}

TEST_F(EventLoopTest, callsAgainAndAgainWhileSomethingIsReadable) {
    const auto descriptor = readableDescriptor();
    int calls = 0;
    const auto watch = loop->whenReadable(descriptor.number(), [&] {
        if (++calls == 3) {
            std::uint64_t value = 0;
            EXPECT_EQ(read(descriptor.number(), &value, sizeof value), 8);
        }
    });
    runPending();
    EXPECT_EQ(calls, 3);
}

TEST_F(EventLoopTest, callsWhenTheOtherEndHasHungUp) {
    std::array<int, 2> ends = {-1, -1};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    const FileDescriptor readEnd(ends[0]);
    FileDescriptor writeEnd(ends[1]);
    std::unique_ptr<MainLoop::Source> watch;
    bool called = false;
    watch = loop->whenReadable(readEnd.number(), [&] {
        called = true;
        watch.reset();
    });
    runPending();
    EXPECT_FALSE(called);
    writeEnd.close();
    EXPECT_TRUE(runUntil([&] { return called; }));
}

TEST_F(EventLoopTest, refusesADescriptorThatIsNotOpen) {
    EXPECT_THROW(static_cast<void>(loop->whenReadable(-1, [] {})), std::system_error);
    EXPECT_THROW(static_cast<void>(loop->whenReadable(1'000'000, [] {})), std::system_error);
}

TEST_F(EventLoopTest, letsEachSourceBeDestroyedFromItsOwnCallback) {
    const SignalMask mask;
    const auto descriptor = readableDescriptor();
    std::unique_ptr<MainLoop::Source> source;
    int calls = 0;
    // It holds something, so that a callback that is used after its end is noticed.
    const auto work = [&, held = std::make_shared<int>(1)] {
        source.reset();
        calls += *held;
    };
    const std::vector<std::function<void()>> makers = {
        [&] { source = loop->after(0ms, work); }, [&] { source = loop->every(1s, work); },
        [&] { source = loop->whenReadable(descriptor.number(), work); },
        [&] {
            source = std::move(loop->onSignals({SIGUSR1}, work).front());
            kill(getpid(), SIGUSR1);
        }};
    int expected = 0;
    for (const auto& make : makers) {
        make();
        ++expected;
        ASSERT_TRUE(runUntil([&] { return calls == expected; }));
        runPending();
        EXPECT_EQ(calls, expected);
    }
}

TEST_F(EventLoopTest, goesOnAfterWorkOfEveryKindThatFails) {
    const SignalMask mask;
    const auto descriptor = readableDescriptor();
    int failures = 0;
    const auto fail = [&] {
        ++failures;
        throw std::bad_alloc();
    };
    std::unique_ptr<MainLoop::Source> source;
    const std::vector<std::function<void()>> makers = {
        [&] { loop->post(fail); }, [&] { source = loop->after(0ms, fail); },
        [&] { source = loop->every(1s, fail); },
        [&] { source = loop->whenReadable(descriptor.number(), fail); },
        [&] {
            source = std::move(loop->onSignals({SIGUSR1}, fail).front());
            kill(getpid(), SIGUSR1);
        }};
    int expected = 0;
    for (const auto& make : makers) {
        make();
        ++expected;
        ASSERT_TRUE(runUntil([&] { return failures >= expected; }));
        source.reset();
        bool later = false;
        loop->post([&] { later = true; });
        ASSERT_TRUE(runUntil([&] { return later; }));
        expected = failures;
    }
    loop->post([&] { loop->exit(7); });
    EXPECT_EQ(loop->run(), 7);
}

TEST_F(EventLoopTest, doesWorkThatWasPostedAfterOneThatFails) {
    std::vector<int> order;
    loop->post([&] {
        order.push_back(1);
        throw std::runtime_error("failure");
    });
    loop->post([&] { order.push_back(2); });
    runPending();
    EXPECT_EQ(order, (std::vector<int>{1, 2}));
}

TEST_F(EventLoopTest, callsADescriptorsWorkAgainAfterItFailed) {
    const auto descriptor = readableDescriptor();
    int calls = 0;
    std::unique_ptr<MainLoop::Source> watch;
    watch = loop->whenReadable(descriptor.number(), [&] {
        if (++calls < 3) {
            throw std::bad_alloc();
        }
        watch.reset();
    });
    runPending();
    EXPECT_EQ(calls, 3);
}

TEST_F(EventLoopTest, needsNoMemoryToCallWork) {
    /// Work that can be kept, but no longer be copied.
    struct Uncopiable {
        explicit Uncopiable(int& callCount, const bool& fails)
            : calls(callCount), copyFails(fails) {}
        Uncopiable(const Uncopiable& other) : calls(other.calls), copyFails(other.copyFails) {
            if (copyFails) {
                throw std::bad_alloc();
            }
        }
        Uncopiable& operator=(const Uncopiable&) = delete;
        ~Uncopiable() = default;
        void operator()() const { ++calls; }

        int& calls;
        const bool& copyFails;
    };
    int calls = 0;
    bool copyFails = false;
    const auto timer = loop->after(0ms, Uncopiable(calls, copyFails));
    copyFails = true;
    ASSERT_TRUE(runUntil([&] { return calls == 1; }));
}

TEST_F(EventLoopTest, callsForEachOfItsSignals) {
    const SignalMask mask;
    int calls = 0;
    const auto sources = loop->onSignals({SIGUSR1, SIGUSR2}, [&] { ++calls; });
    EXPECT_EQ(sources.size(), 2U);
    kill(getpid(), SIGUSR1);
    ASSERT_TRUE(runUntil([&] { return calls == 1; }));
    kill(getpid(), SIGUSR2);
    ASSERT_TRUE(runUntil([&] { return calls == 2; }));
}

TEST_F(EventLoopTest, refusesANumberThatIsNoSignal) {
    const SignalMask mask;
    EXPECT_THROW(static_cast<void>(loop->onSignals({100'000}, [] {})), std::system_error);
}

TEST_F(EventLoopTest, runsUntilItIsToldToExitAndReturnsTheStatus) {
    std::vector<int> order;
    loop->post([&] {
        order.push_back(1);
        loop->exit(7);
    });
    EXPECT_EQ(loop->run(), 7);
    EXPECT_EQ(order, std::vector<int>{1});
}

TEST_F(EventLoopTest, saysThatNothingHappened) {
    EXPECT_FALSE(loop->runOnce(0ms));
    loop->post([] {});
    EXPECT_TRUE(loop->runOnce(0ms));
    EXPECT_FALSE(loop->runOnce(0ms));
}

} // namespace vorla
