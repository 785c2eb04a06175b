// SPDX-License-Identifier: MIT
#pragma once

#include "linux/ChildEndWatch.h"
#include "linux/FileDescriptor.h"
#include "ports/MainLoop.h"
#include "ports/ProcessLauncher.h"

#include <sys/types.h>

#include <optional>

namespace vorla {

/// A child process that was started here and leads its own process group. Main thread.
///
/// It is collected when this object is destroyed and not before: until then its number, also as
/// that of its group, cannot pass to a stranger who would get our signals.
class SpawnedProcess final {
public:
    /// Told once that the child has ended, with its exit code or the bare number of the signal.
    using Ended = ChildEndWatch::Ended;

    /// The descriptors become the child's standard output and standard error. Throws
    /// std::system_error, and leaves no child behind then.
    SpawnedProcess(
        MainLoop& loop, const LaunchRequest& request, const FileDescriptor& output,
        const FileDescriptor& errors, Ended ended);
    /// A child that still runs is left alone, and stays uncollected.
    ~SpawnedProcess();
    SpawnedProcess(const SpawnedProcess&) = delete;
    SpawnedProcess& operator=(const SpawnedProcess&) = delete;

    bool isRunning() const { return !endStatus(handle_).has_value(); }

    void terminate();
    void kill();
    /// To its process group, once it has ended itself.
    void terminateRest();

    /// From now on `ended` is told instead.
    void tell(Ended ended) { ended_ = std::move(ended); }

private:
    pid_t number_ = 0;
    FileDescriptor handle_;
    Ended ended_;
    std::optional<ChildEndWatch> watch_;
};

} // namespace vorla
