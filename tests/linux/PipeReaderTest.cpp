// SPDX-License-Identifier: MIT
#include "linux/PipeReader.h"

#include "children/ComesTrue.h"
#include "fakes/ManualLoop.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <mutex>
#include <new>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace vorla {

namespace {

/// A main thread that is busy: what is posted waits until the test takes it, one by one.
class BusyLoop final : public MainLoop {
public:
    void post(std::function<void()> work) override {
        const std::lock_guard lock(mutex_);
        if (refusals_ > 0) {
            --refusals_;
            changed_.notify_all();
            throw std::bad_alloc();
        }
        waiting_.push_back(std::move(work));
        mostWaiting_ = std::max(mostWaiting_, waiting_.size());
        changed_.notify_all();
    }

    std::chrono::milliseconds now() const override { return {}; }

    std::unique_ptr<Source> after(std::chrono::milliseconds, std::function<void()>) override {
        return nullptr;
    }

    std::unique_ptr<Source> every(std::chrono::seconds, std::function<void()>) override {
        return nullptr;
    }

    std::unique_ptr<Source> whenReadable(int, std::function<void()>) override { return nullptr; }

    bool waitFor(std::size_t count) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(
            lock, std::chrono::seconds{30}, [&] { return waiting_.size() >= count; });
    }

    /// From now on there is no memory for so many posts.
    void refuse(int posts) {
        const std::lock_guard lock(mutex_);
        refusals_ = posts;
    }

    /// Waits until no more than so many posts are still to be refused.
    bool waitForRefusals(int left) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds{30}, [&] { return refusals_ <= left; });
    }

    void runOne() {
        std::function<void()> work;
        {
            const std::lock_guard lock(mutex_);
            work = std::move(waiting_.front());
            waiting_.pop_front();
        }
        work();
    }

    std::size_t mostWaiting() const { return mostWaiting_; }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::function<void()>> waiting_;
    std::size_t mostWaiting_ = 0;
    int refusals_ = 0;
};

/// What poll(2) calls where the system still has it, and where it has not.
#ifdef SYS_poll
constexpr long pollCall = SYS_poll;
#else
constexpr long pollCall = SYS_ppoll;
#endif

std::set<pid_t> threads() {
    std::set<pid_t> numbers;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) {
        numbers.insert(std::stoi(entry.path().filename()));
    }
    return numbers;
}

/// Whether the thread sleeps in this system call.
bool waitsIn(pid_t thread, long systemCall) {
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/syscall");
    long number = -1;
    return file >> number && number == systemCall;
}

/// A signal that interrupts system calls, for as long as it lives, and does nothing else.
class Interruption final {
public:
    Interruption() {
        struct sigaction action = {};
        action.sa_handler = [](int) { ++count; };
        sigaction(SIGUSR1, &action, &before_);
        count = 0;
    }
    ~Interruption() { sigaction(SIGUSR1, &before_, nullptr); }
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// Interrupts `thread` in `systemCall`; returns when it waits there again.
    static void interrupt(pid_t thread, long systemCall) {
        ASSERT_TRUE(comesTrue([=] { return waitsIn(thread, systemCall); }));
        const int before = count;
        ASSERT_EQ(syscall(SYS_tgkill, getpid(), thread, SIGUSR1), 0);
        ASSERT_TRUE(comesTrue([=] { return count > before && waitsIn(thread, systemCall); }));
    }

private:
    static inline std::atomic<int> count = 0;

    struct sigaction before_ = {};
};

/// Ends the reader first if a test gives up while a thread still writes, which would wait for ever.
class WithoutReader final {
public:
    explicit WithoutReader(std::optional<PipeReader>& reader) : reader_(reader) {}
    ~WithoutReader() {
        if (reader_) {
            std::signal(SIGPIPE, SIG_IGN);
            reader_.reset();
        }
    }
    WithoutReader(const WithoutReader&) = delete;
    WithoutReader& operator=(const WithoutReader&) = delete;

private:
    std::optional<PipeReader>& reader_;
};

class PipeReaderTest : public testing::Test {
protected:
    void SetUp() override {
        std::array<int, 2> numbers = {-1, -1};
        ASSERT_EQ(pipe2(numbers.data(), O_CLOEXEC), 0);
        readEnd = FileDescriptor(numbers[0]);
        writeEnd = FileDescriptor(numbers[1]);
    }

    void startReading(MainLoop& loop) {
        reader.emplace(
            loop, std::move(readEnd),
            PipeReader::Callbacks{
                .received =
                    [this](std::string_view bytes) {
                        received += bytes;
                        longestChunk = std::max(longestChunk, bytes.size());
                    },
                .ended = [this] { ++ends; }});
    }

    /// As startReading(); returns the thread that reads.
    pid_t startedThread(MainLoop& loop) {
        const auto before = threads();
        startReading(loop);
        const auto after = threads();
        std::vector<pid_t> started;
        std::ranges::set_difference(after, before, std::back_inserter(started));
        EXPECT_EQ(started.size(), 1U);
        return started.empty() ? 0 : started.front();
    }

    FileDescriptor readEnd;
    FileDescriptor writeEnd;
    std::optional<PipeReader> reader;
    std::string received;
    std::size_t longestChunk = 0;
    int ends = 0;
};

} // namespace

TEST_F(PipeReaderTest, handsOverAllBytesAndThenTheEnd) {
    ManualLoop loop;
    startReading(loop);
    std::string sent;
    for (int number = 0; number < 100'000; ++number) {
        sent += std::to_string(number);
    }
    const std::jthread writer([&] {
        EXPECT_EQ(
            write(writeEnd.number(), sent.data(), sent.size()), static_cast<ssize_t>(sent.size()));
        writeEnd.close();
    });
    const WithoutReader atTheEnd(reader);
    ASSERT_TRUE(loop.runUntil([&] { return ends > 0; }));
    EXPECT_EQ(received, sent);
    EXPECT_LE(longestChunk, PipeReader::chunkBytes);
    loop.runPending();
    EXPECT_EQ(ends, 1);
    reader.reset();
}

TEST_F(PipeReaderTest, holdsAWriterBackWhileTheMainThreadIsBusy) {
    BusyLoop loop;
    startReading(loop);
    constexpr std::size_t megabyte = std::size_t{1} << 20U;
    std::jthread writer([&] {
        const std::string block(megabyte, 'x');
        for (int count = 0; count < 8; ++count) {
            EXPECT_EQ(
                write(writeEnd.number(), block.data(), block.size()),
                static_cast<ssize_t>(block.size()));
        }
        writeEnd.close();
    });
    const WithoutReader atTheEnd(reader);
    // Each is taken only when as many wait as ever may, so a reader that knew no bound would have
    // all the time to go past it.
    while (received.size() < 4 * megabyte) {
        ASSERT_TRUE(loop.waitFor(PipeReader::maximumWaitingChunks));
        loop.runOne();
    }
    while (ends == 0) {
        ASSERT_TRUE(loop.waitFor(1));
        loop.runOne();
    }
    EXPECT_EQ(received.size(), 8 * megabyte);
    // The end itself needs no room.
    EXPECT_LE(loop.mostWaiting(), PipeReader::maximumWaitingChunks + 1);
    reader.reset();
}

TEST_F(PipeReaderTest, goesOnWhenItIsInterruptedWhileItWaitsForBytes) {
    ManualLoop loop;
    const Interruption interruption;
    const pid_t thread = startedThread(loop);
    ASSERT_NO_FATAL_FAILURE(Interruption::interrupt(thread, pollCall));
    ASSERT_EQ(write(writeEnd.number(), "first", 5), 5);
    ASSERT_TRUE(loop.runUntil([&] { return received == "first"; }));
    ASSERT_NO_FATAL_FAILURE(Interruption::interrupt(thread, pollCall));
    loop.runPending();
    EXPECT_EQ(ends, 0);
    ASSERT_EQ(write(writeEnd.number(), "second", 6), 6);
    writeEnd.close();
    ASSERT_TRUE(loop.runUntil([&] { return ends > 0; }));
    EXPECT_EQ(received, "firstsecond");
    reader.reset();
}

TEST_F(PipeReaderTest, goesOnWhenItIsInterruptedWhileItWaitsForTheMainThread) {
    BusyLoop loop;
    const Interruption interruption;
    const pid_t thread = startedThread(loop);
    for (std::size_t count = 1; count <= PipeReader::maximumWaitingChunks; ++count) {
        ASSERT_EQ(write(writeEnd.number(), "x", 1), 1);
        ASSERT_TRUE(loop.waitFor(count));
    }
    ASSERT_NO_FATAL_FAILURE(Interruption::interrupt(thread, SYS_read));
    ASSERT_EQ(write(writeEnd.number(), "y", 1), 1);
    writeEnd.close();
    while (ends == 0) {
        ASSERT_TRUE(loop.waitFor(1));
        loop.runOne();
    }
    EXPECT_EQ(received, std::string(PipeReader::maximumWaitingChunks, 'x') + "y");
    EXPECT_EQ(loop.mostWaiting(), PipeReader::maximumWaitingChunks);
    reader.reset();
}

TEST_F(PipeReaderTest, endsAtOnceWhileItWaitsForBytes) {
    ManualLoop loop;
    startReading(loop);
    reader.reset();
    loop.runPending();
    EXPECT_EQ(ends, 0);
}

TEST_F(PipeReaderTest, endsAtOnceWhileItWaitsForTheMainThread) {
    BusyLoop loop;
    startReading(loop);
    for (std::size_t count = 1; count <= PipeReader::maximumWaitingChunks; ++count) {
        ASSERT_EQ(write(writeEnd.number(), "x", 1), 1);
        ASSERT_TRUE(loop.waitFor(count));
    }
    ASSERT_EQ(write(writeEnd.number(), "x", 1), 1);
    reader.reset();
    for (std::size_t count = 1; count <= PipeReader::maximumWaitingChunks; ++count) {
        loop.runOne();
    }
    EXPECT_EQ(received, "");
}

TEST_F(PipeReaderTest, losesNothingWhileThereIsNoMemory) {
    BusyLoop loop;
    startReading(loop);
    loop.refuse(3);
    ASSERT_EQ(write(writeEnd.number(), "x", 1), 1);
    ASSERT_TRUE(loop.waitFor(1));
    loop.runOne();
    EXPECT_EQ(received, "x");
    loop.refuse(3);
    writeEnd.close();
    ASSERT_TRUE(loop.waitFor(1));
    loop.runOne();
    EXPECT_EQ(ends, 1);
    reader.reset();
}

TEST_F(PipeReaderTest, endsAtOnceWhileItWaitsForMemory) {
    constexpr int many = std::numeric_limits<int>::max();
    BusyLoop loop;
    startReading(loop);
    loop.refuse(many);
    ASSERT_EQ(write(writeEnd.number(), "x", 1), 1);
    ASSERT_TRUE(loop.waitForRefusals(many - 2));
    reader.reset();
    EXPECT_EQ(received, "");
}

TEST_F(PipeReaderTest, mayBeDestroyedFromItsOwnCallback) {
    ManualLoop loop;
    int calls = 0;
    reader.emplace(
        loop, std::move(readEnd),
        PipeReader::Callbacks{
            .received =
                [&, held = std::make_shared<int>(1)](std::string_view) {
                    reader.reset();
                    calls += *held;
                },
            .ended = [&] { ++ends; }});
    ASSERT_EQ(write(writeEnd.number(), "x", 1), 1);
    ASSERT_TRUE(loop.runUntil([&] { return calls == 1; }));
    writeEnd.close();
    loop.runPending();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(ends, 0);
}

TEST_F(PipeReaderTest, mayBeDestroyedWhenThePipeHasEnded) {
    ManualLoop loop;
    reader.emplace(
        loop, std::move(readEnd),
        PipeReader::Callbacks{
            .received = [](std::string_view) {},
            .ended =
                [&] {
                    reader.reset();
                    ++ends;
                }});
    writeEnd.close();
    ASSERT_TRUE(loop.runUntil([&] { return ends == 1; }));
}

} // namespace vorla
