// SPDX-License-Identifier: MIT
#pragma once

#include "Figures.h"

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <vector>

namespace vorla::bench {

/// A program that is being measured from outside; ended and collected with this object.
class MeasuredProgram final {
public:
    struct Memory {
        double residentMebibytes = 0;
        double privateDirtyMebibytes = 0;
    };

    /// `environment` holds "NAME=value" entries and is all the program gets. Its output goes to
    /// ours.
    MeasuredProgram(std::string path, std::vector<std::string> environment);
    ~MeasuredProgram();
    MeasuredProgram(const MeasuredProgram&) = delete;
    MeasuredProgram& operator=(const MeasuredProgram&) = delete;

    /// The moment just before it was started.
    Nanoseconds startedAt() const { return startedAt_; }

    /// What it has computed, threads that have ended included and its children not.
    Nanoseconds processorTime() const;
    Memory memory() const;
    std::size_t threads() const;
    /// Shared objects mapped, the loader among them.
    std::size_t libraries() const;
    /// How often its main thread has gone to sleep or been put aside; if it does nothing in
    /// between, the number stays.
    std::size_t contextSwitches() const;

private:
    /// The number behind `key` in /proc/PID/status.
    std::size_t statusValue(const std::string& key) const;
    std::string procPath(const char* file) const;

    Nanoseconds startedAt_{0};
    pid_t number_ = 0;
};

} // namespace vorla::bench
