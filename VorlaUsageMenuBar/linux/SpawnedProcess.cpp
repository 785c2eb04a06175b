// SPDX-License-Identifier: MIT
#include "linux/SpawnedProcess.h"

#include "linux/Spawn.h"

#include <csignal>
#include <utility>

namespace vorla {

namespace {

void killAll(pid_t number) {
    ::kill(-number, SIGKILL);
    ::kill(number, SIGKILL);
}

} // namespace

SpawnedProcess::SpawnedProcess(
    MainLoop& loop, const LaunchRequest& request, const FileDescriptor& output,
    const FileDescriptor& errors, Ended ended)
    : ended_(std::move(ended)) {
    auto child = spawn(
        {.path = request.path,
         .arguments = {request.argument},
         .environment = request.environment,
         .output = output.number(),
         .errors = errors.number()});
    number_ = child.number;
    handle_ = std::move(child.handle);
    try {
        watch_.emplace(loop, handle_, [this](int status) {
            // The one who is told may destroy this object.
            const auto told = ended_;
            told(status);
        });
    } catch (...) {
        killAndCollect(number_);
        throw;
    }
}

SpawnedProcess::~SpawnedProcess() {
    collect(handle_);
}

void SpawnedProcess::terminate() {
    if (isRunning()) {
        ::kill(number_, SIGTERM);
    }
}

void SpawnedProcess::kill() {
    if (isRunning()) {
        killAll(number_);
    }
}

void SpawnedProcess::terminateRest() {
    // Once somebody else has collected the child, its number may be a stranger's.
    if (endStatus(handle_).value_or(-1) >= 0) {
        ::kill(-number_, SIGTERM);
    }
}

} // namespace vorla
