// SPDX-License-Identifier: MIT
#pragma once

#include "linux/FileDescriptor.h"
#include "ports/MainLoop.h"

#include <functional>
#include <memory>
#include <optional>

namespace vorla {

/// The exit code of a child of ours that has ended, or the bare number of the signal that ended it;
/// -1 if somebody else has collected it. Nothing while it runs, or has ended but is being traced.
///
/// `handle` is its pidfd. The child stays uncollected.
std::optional<int> endStatus(const FileDescriptor& handle);

/// Collects a child that has ended. Never waits.
void collect(const FileDescriptor& handle);

/// Tells once when a child can be collected, which it leaves to others. Main thread.
class ChildEndWatch final {
public:
    using Ended = std::function<void(int status)>;

    /// `handle`, a pidfd, must outlive this object. `ended` may destroy this object; it is never
    /// called from inside the constructor.
    ChildEndWatch(MainLoop& loop, const FileDescriptor& handle, Ended ended);
    ChildEndWatch(const ChildEndWatch&) = delete;
    ChildEndWatch& operator=(const ChildEndWatch&) = delete;

private:
    void look();

    MainLoop& loop_;
    const FileDescriptor& handle_;
    Ended ended_;
    std::unique_ptr<MainLoop::Source> source_;
};

} // namespace vorla
