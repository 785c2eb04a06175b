// SPDX-License-Identifier: MIT
#pragma once

#include "linux/FileDescriptor.h"

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace vorla {

struct SpawnRequest {
    enum class Leads { processGroup, session };

    /// Never looked for in PATH; also the first of the arguments that the program sees.
    std::string path;
    /// Those after its name.
    std::vector<std::string> arguments = {};
    /// "NAME=value" each; the environment of this process if there is nothing.
    std::optional<std::vector<std::string>> environment = std::nullopt;
    /// Descriptors of ours for the standard streams; -1 stands for the null device.
    int input = -1;
    int output = -1;
    int errors = -1;
    /// What the child is the leader of from its start.
    Leads leads = Leads::processGroup;
};

struct SpawnedChild {
    /// Also that of its process group.
    pid_t number = 0;
    /// A pidfd; readable once the child has ended.
    FileDescriptor handle;
};

/// Starts a child with default signal handling, no signal blocked and nothing open but its standard
/// streams. Throws std::system_error, and leaves neither child nor descriptor behind then.
SpawnedChild spawn(SpawnRequest request);

/// Ends an uncollected child at once, with all of its process group, and waits for its end.
void killAndCollect(pid_t number);

} // namespace vorla
