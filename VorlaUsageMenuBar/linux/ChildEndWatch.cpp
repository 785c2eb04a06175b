// SPDX-License-Identifier: MIT
#include "linux/ChildEndWatch.h"

#include <sys/wait.h>

#include <chrono>
#include <utility>

namespace vorla {

namespace {

constexpr std::chrono::seconds retryInterval{1};

} // namespace

std::optional<int> endStatus(const FileDescriptor& handle) {
    siginfo_t end = {};
    // Without WNOHANG a child that runs would block us.
    const int options = WEXITED | WNOWAIT | WNOHANG;
    if (waitid(P_PIDFD, static_cast<id_t>(handle.number()), &end, options) != 0) {
        // Somebody else has collected our child. It has ended, but nobody can tell how any more,
        // and no child can have ended so.
        return -1;
    }
    if (end.si_pid == 0) {
        return std::nullopt;
    }
    return end.si_status;
}

void collect(const FileDescriptor& handle) {
    siginfo_t ignored = {};
    waitid(P_PIDFD, static_cast<id_t>(handle.number()), &ignored, WEXITED | WNOHANG);
}

ChildEndWatch::ChildEndWatch(MainLoop& loop, const FileDescriptor& handle, Ended ended)
    : loop_(loop), handle_(handle), ended_(std::move(ended)),
      source_(loop.whenReadable(handle.number(), [this] { look(); })) {}

void ChildEndWatch::look() {
    const auto status = endStatus(handle_);
    if (!status) {
        // It has ended, but whoever traces it must let go of it before we can learn how. Its handle
        // would call us without a pause until then.
        source_ = loop_.after(retryInterval, [this] { look(); });
        return;
    }
    source_.reset();
    const auto ended = std::move(ended_);
    ended(*status);
}

} // namespace vorla
