// SPDX-License-Identifier: MIT
#include "linux/SpawnedProcess.h"

#include "linux/Spawn.h"

#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <utility>

namespace vorla {

namespace {

constexpr std::chrono::seconds retryInterval{1};

void killAll(pid_t number) {
    ::kill(-number, SIGKILL);
    ::kill(number, SIGKILL);
}

} // namespace

SpawnedProcess::SpawnedProcess(
    MainLoop& loop, const LaunchRequest& request, const FileDescriptor& output,
    const FileDescriptor& errors, Ended ended)
    : loop_(loop), ended_(std::move(ended)) {
    auto child = spawn(
        {.path = request.path,
         .arguments = {request.argument},
         .environment = request.environment,
         .output = output.number(),
         .errors = errors.number()});
    number_ = child.number;
    handle_ = std::move(child.handle);
    try {
        watch_ = loop.whenReadable(handle_.number(), [this] { lookForEnd(); });
    } catch (...) {
        killAndCollect(number_);
        throw;
    }
}

SpawnedProcess::~SpawnedProcess() {
    waitid(P_PIDFD, static_cast<id_t>(handle_.number()), nullptr, WEXITED | WNOHANG);
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

std::optional<int> SpawnedProcess::endStatus() const {
    siginfo_t end = {};
    // It stays uncollected. Without WNOHANG a child that runs would block us.
    const int options = WEXITED | WNOWAIT | WNOHANG;
    if (waitid(P_PIDFD, static_cast<id_t>(handle_.number()), &end, options) != 0) {
        // Somebody else has collected our child. It has ended, but nobody can tell how any more,
        // and no child can have ended so.
        return -1;
    }
    if (end.si_pid == 0) {
        return std::nullopt;
    }
    return end.si_status;
}

void SpawnedProcess::lookForEnd() {
    const auto status = endStatus();
    if (!status) {
        // It has ended, but whoever traces it must let go of it before we can learn how. Its handle
        // would call us without a pause until then.
        watch_ = loop_.after(retryInterval, [this] { lookForEnd(); });
        return;
    }
    watch_.reset();
    // The one who is told may destroy this object.
    const auto ended = ended_;
    ended(*status);
}

} // namespace vorla
