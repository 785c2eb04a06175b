// SPDX-License-Identifier: MIT
#pragma once

#include "linux/ChildEndWatch.h"
#include "linux/FileDescriptor.h"
#include "ports/MainLoop.h"

#include <sys/types.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorla {

/// The value of the first "NAME=value" of that name; empty if there is none.
std::string_view variableIn(const std::vector<std::string>& environment, std::string_view name);

struct DetachedCommand {
    /// A name without slashes, looked for in the absolute folders of the environment's PATH.
    std::string program;
    std::vector<std::string> arguments;
    /// "NAME=value" each.
    std::vector<std::string> environment;
};

/// A desktop tool that was started here, in a session of its own: it shares neither our terminal
/// nor a process group with anything of ours, and whatever it leaves running outlives this program.
/// Main thread.
class DetachedProcess final {
public:
    /// Told once that the tool has ended and been collected, with 0 only for exit code 0.
    using Ended = std::function<void(int status)>;

    /// The tool reads `input`, or the null device if that is not open; what it prints is lost. It
    /// gets default signal handling and no other descriptor of ours. Throws std::system_error, and
    /// leaves nothing behind then. `ended` may destroy this object.
    DetachedProcess(
        MainLoop& loop, const DetachedCommand& command, const FileDescriptor& input, Ended ended);
    /// A tool that still runs goes on.
    ~DetachedProcess();
    DetachedProcess(const DetachedProcess&) = delete;
    DetachedProcess& operator=(const DetachedProcess&) = delete;

    /// Kills the tool, and what it has started itself. Does nothing once it has been collected.
    void kill() const;

private:
    void toolEnded(int status);

    pid_t number_ = 0;
    FileDescriptor handle_;
    std::optional<ChildEndWatch> watch_;
    Ended ended_;
};

} // namespace vorla
