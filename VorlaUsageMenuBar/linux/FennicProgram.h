// SPDX-License-Identifier: MIT
#pragma once

#include "ports/FennicLauncher.h"
#include "ports/MainLoop.h"

#include <string>
#include <vector>

namespace vorla {

class FennicProgram;

/// Where the task-fit window's program may be, the likeliest place first: beside the running
/// executable, as in a build, then in the folder of the application's own resources.
std::vector<std::string> fennicProgramCandidates();

/// Starts the task-fit window's program. Main thread.
///
/// Each window has a program of its own, which may still be ending when the next one is opened. It
/// is never killed and never waited for: it is collected when it ends, for as long as the launcher
/// exists. This process must ignore SIGPIPE, for a window may go away while it is spoken to.
class FennicProgramLauncher final : public FennicLauncher {
public:
    /// The environment is "NAME=value" each. The first of the absolute paths that holds a program
    /// is started; that is looked for at each opening.
    FennicProgramLauncher(
        MainLoop& loop, std::vector<std::string> environment, std::vector<std::string> candidates);
    ~FennicProgramLauncher() override;
    FennicProgramLauncher(const FennicProgramLauncher&) = delete;
    FennicProgramLauncher& operator=(const FennicProgramLauncher&) = delete;

    std::unique_ptr<FennicWindow>
    open(const FennicOpening& opening, std::function<void()> closed) override;

private:
    MainLoop& loop_;
    std::vector<std::string> environment_;
    std::vector<std::string> candidates_;
    /// Those that have not been collected. Programs find it for as long as the launcher exists.
    std::shared_ptr<std::vector<std::shared_ptr<FennicProgram>>> programs_;
};

} // namespace vorla
