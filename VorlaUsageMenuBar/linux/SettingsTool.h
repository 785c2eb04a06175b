// SPDX-License-Identifier: MIT
#pragma once

#include "linux/ChildEndWatch.h"
#include "linux/FileDescriptor.h"
#include "ports/MainLoop.h"

#include <sys/types.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorla {

/// One run of a small tool that prints one short answer and ends. Main thread.
///
/// Destroying it kills and collects a tool that still runs.
class SettingsTool final {
public:
    /// What is read of an answer; a tool that prints more than a pipe holds never ends by itself.
    static constexpr std::size_t maximumAnswerBytes = 4096;

    /// Told once, never from inside the constructor: what the tool printed, if it ended by itself
    /// within the limit and with exit code 0.
    struct Result {
        std::optional<std::string> output;
        bool inTime = true;
    };
    using Finished = std::function<void(const Result&)>;

    /// Throws std::system_error if the tool cannot be started.
    SettingsTool(
        MainLoop& loop, const std::vector<std::string>& command, std::chrono::milliseconds limit,
        Finished finished);
    ~SettingsTool();
    SettingsTool(const SettingsTool&) = delete;
    SettingsTool& operator=(const SettingsTool&) = delete;

    /// Whether the tool has ended and been collected; false for one that was killed and is dying.
    bool hasEnded() const { return number_ == 0; }

private:
    void ended(int status);
    void timeIsUp();
    std::string readOutput() const;
    void tell(const Result& result);

    pid_t number_ = 0;
    FileDescriptor output_;
    FileDescriptor handle_;
    std::optional<ChildEndWatch> watch_;
    std::unique_ptr<MainLoop::Source> limit_;
    /// Empty once it has been told.
    Finished finished_;
};

} // namespace vorla
