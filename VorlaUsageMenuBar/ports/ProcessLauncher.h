// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vorla {

/// A child process that leads its own process group, and its two output streams. Main thread.
///
/// Destroying it ends the reading and collects a child that has ended; it sends no signal.
class ChildProcess {
public:
    enum class Stream { output, errors };

    /// Who is told what the child does; called on the main thread, never from inside launch() and
    /// never once the child has been destroyed. `exited` may come before or after the ends of the
    /// streams.
    class Listener {
    public:
        virtual ~Listener() = default;

        /// At least one byte.
        virtual void received(Stream stream, std::string_view bytes) = 0;
        virtual void ended(Stream stream) = 0;
        /// The exit code, or the bare number of the signal that ended the child.
        virtual void exited(int status) = 0;
    };

    virtual ~ChildProcess() = default;

    /// Looked at afresh: false from the moment at which the child has ended.
    virtual bool isRunning() const = 0;
    /// SIGTERM to the child. Does nothing once it has ended.
    virtual void terminate() = 0;
    /// SIGKILL to the child's process group, then to the child. Does nothing once it has ended.
    virtual void kill() = 0;
    /// SIGTERM to what the child has left behind in its process group. Does nothing while it runs.
    virtual void terminateRest() = 0;
};

struct LaunchRequest {
    std::string path;
    std::string argument;
    /// "NAME=value" each.
    std::vector<std::string> environment;
};

/// Starts child processes; a port, because tests play the child.
class ProcessLauncher {
public:
    virtual ~ProcessLauncher() = default;

    /// Starts the child with the null device as standard input, no other descriptor of ours,
    /// default signal handling and an empty signal mask. Throws std::system_error if it cannot be
    /// started. `listener` must outlive the child.
    virtual std::unique_ptr<ChildProcess>
    launch(const LaunchRequest& request, ChildProcess::Listener& listener) = 0;
};

} // namespace vorla
