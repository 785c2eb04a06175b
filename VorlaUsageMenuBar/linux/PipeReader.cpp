// SPDX-License-Identifier: MIT
#include "linux/PipeReader.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <new>
#include <string>
#include <system_error>
#include <utility>

namespace vorla {

namespace {

FileDescriptor makeCounter(unsigned int start, int flags) {
    FileDescriptor counter(eventfd(start, flags | EFD_CLOEXEC));
    if (!counter.isOpen()) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    return counter;
}

void addOne(const FileDescriptor& counter) {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = write(counter.number(), &one, sizeof one);
}

void waitAndTakeOne(const FileDescriptor& counter) {
    std::uint64_t value = 0;
    while (read(counter.number(), &value, sizeof value) < 0 && errno == EINTR) {}
}

/// The writers may read as well: a process finds its own output in /proc, and can take back what
/// poll() has just promised us. A read that waited then could not be told to stop.
FileDescriptor thatNeverWaits(FileDescriptor pipe) {
    fcntl(pipe.number(), F_SETFL, fcntl(pipe.number(), F_GETFL) | O_NONBLOCK);
    return pipe;
}

/// How long to wait for memory before asking for it again.
constexpr int memoryPauseMilliseconds = 20;

/// False if `stop` has been raised meanwhile.
bool waitForMemory(const FileDescriptor& stop) {
    pollfd watched = {stop.number(), POLLIN, 0};
    return poll(&watched, 1, memoryPauseMilliseconds) <= 0;
}

/// Waits for something to read; false if there will be nothing because `stop` has been raised.
bool waitForBytes(const FileDescriptor& pipe, const FileDescriptor& stop) {
    std::array<pollfd, 2> watched = {
        pollfd{pipe.number(), POLLIN, 0}, pollfd{stop.number(), POLLIN, 0}};
    // It fails when interrupted, or when the system is short of memory for a moment.
    while (poll(watched.data(), watched.size(), -1) < 0) {}
    return watched[1].revents == 0;
}

} // namespace

struct PipeReader::Shared {
    explicit Shared(Callbacks newCallbacks) : callbacks(std::move(newCallbacks)) {}

    Callbacks callbacks;
    FileDescriptor stop = makeCounter(0, 0);
    /// How many more chunks may be on their way to the main thread.
    FileDescriptor room = makeCounter(maximumWaitingChunks, EFD_SEMAPHORE);
    /// Main thread only: whether the reader is gone, and with it whoever wants the deliveries.
    bool closed = false;
};

PipeReader::PipeReader(MainLoop& loop, FileDescriptor pipe, Callbacks callbacks)
    : shared_(std::make_shared<Shared>(std::move(callbacks))),
      thread_([&loop, pipe = thatNeverWaits(std::move(pipe)), shared = shared_] {
          read(loop, pipe, shared);
      }) {}

PipeReader::~PipeReader() {
    shared_->closed = true;
    addOne(shared_->stop);
    // The thread may be waiting for room and not for the pipe; it looks at `stop` next.
    addOne(shared_->room);
}

void PipeReader::read(
    MainLoop& loop, const FileDescriptor& pipe, const std::shared_ptr<Shared>& shared) {
    // On the stack, whose pages the system gets back when the thread ends.
    std::array<char, chunkBytes> buffer;
    ssize_t length = 0;
    do {
        waitAndTakeOne(shared->room);
        do {
            if (!waitForBytes(pipe, shared->stop)) {
                return;
            }
            length = ::read(pipe.number(), buffer.data(), buffer.size());
        } while (length < 0 && (errno == EAGAIN || errno == EINTR));
        const std::size_t count = length > 0 ? static_cast<std::size_t>(length) : 0;
        while (!tryToPost(loop, shared, {buffer.data(), count})) {
            if (!waitForMemory(shared->stop)) {
                return;
            }
        }
    } while (length > 0);
}

/// Hands `bytes` over, or if there are none, their end; false if there is no memory for that.
bool PipeReader::tryToPost(
    MainLoop& loop, const std::shared_ptr<Shared>& shared, std::string_view bytes) {
    try {
        loop.post([shared, chunk = std::string(bytes)] {
            if (shared->closed) {
                return;
            }
            if (chunk.empty()) {
                shared->callbacks.ended();
            } else {
                addOne(shared->room);
                shared->callbacks.received(chunk);
            }
        });
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace vorla
