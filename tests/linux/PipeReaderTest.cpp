// SPDX-License-Identifier: MIT
#include "linux/PipeReader.h"

#include "fakes/ManualLoop.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace vorla {

namespace {

/// A main thread that is busy: what is posted waits until the test takes it, one by one.
class BusyLoop final : public MainLoop {
public:
    void post(std::function<void()> work) override {
        const std::lock_guard lock(mutex_);
        waiting_.push_back(std::move(work));
        mostWaiting_ = std::max(mostWaiting_, waiting_.size());
        changed_.notify_all();
    }

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
