// SPDX-License-Identifier: MIT
#pragma once

#include "linux/FileDescriptor.h"
#include "ports/MainLoop.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <thread>

namespace vorla {

/// Reads one pipe on a thread of its own, and hands what comes to the main thread.
///
/// Made and destroyed on the main thread; destroying it ends the reading at once, also from inside
/// one of its callbacks, and no callback comes after that. A writer that is faster than the main
/// thread is held back, so that what has been read and not yet handed over stays small.
class PipeReader final {
public:
    struct Callbacks {
        /// At least one byte. On the main thread, like ended().
        std::function<void(std::string_view)> received;
        /// Once, after the last byte: the pipe has been closed by all who could write to it.
        std::function<void()> ended;
    };

    static constexpr std::size_t chunkBytes = std::size_t{64} << 10U;
    /// How many chunks may wait for the main thread.
    static constexpr std::uint64_t maximumWaitingChunks = 16;

    /// Throws std::system_error if the system lacks descriptors or threads.
    PipeReader(MainLoop& loop, FileDescriptor pipe, Callbacks callbacks);
    ~PipeReader();
    PipeReader(const PipeReader&) = delete;
    PipeReader& operator=(const PipeReader&) = delete;

private:
    struct Shared;

    static void
    read(MainLoop& loop, const FileDescriptor& pipe, const std::shared_ptr<Shared>& shared);
    static bool
    tryToPost(MainLoop& loop, const std::shared_ptr<Shared>& shared, std::string_view bytes);

    /// What the thread and the posted deliveries need, which can outlive this object.
    std::shared_ptr<Shared> shared_;
    std::jthread thread_;
};

} // namespace vorla
