// SPDX-License-Identifier: MIT
#pragma once

#include "app/Environment.h"
#include "app/RecentText.h"
#include "app/StreamCapture.h"
#include "model/Text.h"
#include "ports/MainLoop.h"
#include "ports/ProcessLauncher.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorla {

/// What one run of the companion left behind.
struct CommandResult {
    /// Standard output as it came; of a run without a time limit its newest text.
    std::string output;
    /// Standard error as it came; of a run without a time limit its beginning. Repairing all of it
    /// to show a few hundred characters could take three times its memory.
    std::string errors;
    /// The exit code, or the bare number of the signal that ended the child.
    int status = 0;
    /// Whether the time limit ended the run.
    bool timedOut = false;
};

/// One run of the companion tool: starts it, passes on what it prints, and stops it when its time
/// is up.
///
/// Lives on the main thread and calls back only there, never from inside start(). Once started it
/// keeps itself alive until its completion has been called; so a run always completes, also when
/// its owner has dropped it, unless abandon() ends it first.
class Command final : public std::enable_shared_from_this<Command>, ChildProcess::Listener {
public:
    using Completion = std::function<void(CommandResult)>;

    /// Of each stream, a run with a time limit keeps at most this many bytes. Past it, it is
    /// stopped as by stop().
    static constexpr std::size_t maximumStreamBytes = std::size_t{64} << 20U;
    /// A run without one may print for days. Of its output it keeps the newest text, so much that
    /// whatever has just arrived is in it whole; of its errors the first bytes, since those are
    /// shown.
    static constexpr std::size_t maximumRecentBytes = std::size_t{1} << 20U;
    static constexpr std::size_t maximumFirstErrorBytes = text::maximumExcerptBytes;

    /// Of a run with "--json" or "--diagnostics-json".
    static constexpr std::chrono::seconds timeLimit{45};
    /// From the request to end to the kill.
    static constexpr std::chrono::seconds patience{3};

    static std::shared_ptr<Command>
    create(MainLoop& loop, ProcessLauncher& launcher, const Environment& environment);
    ~Command() override;

    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

    /// Called with all text printed so far, as far as it is kept, whenever some arrives. May be
    /// set, replaced or emptied at any time, also by itself: a copy is called, so what it has to
    /// remember lies elsewhere. The text is valid during the call.
    std::function<void(std::string_view)> onOutput;

    /// Runs `path` with exactly one argument; "--json" and "--diagnostics-json" are limited to 45
    /// seconds. Throws std::system_error if the child cannot be started; `completion` is then never
    /// called, otherwise exactly once. At most one call for each object.
    void start(const std::string& path, const std::string& argument, Completion completion);

    /// Asks the child to end, and kills it and its process group if it still runs 3 seconds later.
    /// Any number of calls, at any time.
    void stop();

    /// Kills the child and its process group at once.
    void kill();

    /// Asks what the child has left behind in its process group to end. Does nothing while the
    /// child itself runs.
    void stopRest();

    /// Calls `work` once the child itself has ended, at once if it has (or never started); whether
    /// its streams have does not matter.
    void whenExited(std::function<void()> work);

    /// Ends the run without a completion: for an owner that goes away.
    void abandon();

private:
    Command(MainLoop& loop, ProcessLauncher& launcher, Environment environment);

    void received(ChildProcess::Stream stream, std::string_view bytes) override;
    void ended(ChildProcess::Stream stream) override;
    void exited(int status) override;
    void timeIsUp();
    void completeIfEnded();

    MainLoop& loop_;
    ProcessLauncher& launcher_;
    Environment environment_;
    Completion completion_;
    /// Set from start() until the completion has been called.
    std::shared_ptr<Command> self_;
    std::unique_ptr<ChildProcess> child_;
    StreamCapture output_{maximumStreamBytes};
    StreamCapture errors_{maximumStreamBytes};
    /// Instead of output_ for a run without a time limit.
    RecentText recentOutput_{maximumRecentBytes};
    bool isLimited_ = false;
    bool overflowed_ = false;
    bool outputEnded_ = false;
    bool errorsEnded_ = false;
    std::optional<int> status_;
    bool timedOut_ = false;
    std::unique_ptr<MainLoop::Source> limit_;
    /// One for each stop(), until the child has ended.
    std::vector<std::unique_ptr<MainLoop::Source>> killChecks_;
    std::vector<std::function<void()>> exitWorks_;
};

} // namespace vorla
