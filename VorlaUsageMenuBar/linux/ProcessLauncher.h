// SPDX-License-Identifier: MIT
#pragma once

#include "ports/MainLoop.h"
#include "ports/ProcessLauncher.h"

#include <memory>

namespace vorla {

class UnattendedChildren;

/// Starts real child processes. Main thread.
///
/// A child whose object is destroyed while it runs is collected when it ends, for as long as the
/// launcher exists.
class LinuxProcessLauncher final : public ProcessLauncher {
public:
    /// Lets children be collected, which the starter of this program may have switched off.
    explicit LinuxProcessLauncher(MainLoop& loop);
    ~LinuxProcessLauncher() override;
    LinuxProcessLauncher(const LinuxProcessLauncher&) = delete;
    LinuxProcessLauncher& operator=(const LinuxProcessLauncher&) = delete;

    std::unique_ptr<ChildProcess>
    launch(const LaunchRequest& request, ChildProcess::Listener& listener) override;

private:
    MainLoop& loop_;
    /// Shared with the children, which may outlive the launcher.
    std::shared_ptr<UnattendedChildren> unattended_;
};

} // namespace vorla
