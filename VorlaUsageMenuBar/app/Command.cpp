// SPDX-License-Identifier: MIT
#include "app/Command.h"

#include <utility>

namespace vorla {

namespace {

/// Tells the tool that it does not run in a terminal but for us.
constexpr std::string_view companionVariable = "VORLA_USAGE_COMPANION";

bool isLimited(std::string_view argument) {
    return argument == "--json" || argument == "--diagnostics-json";
}

} // namespace

std::shared_ptr<Command>
Command::create(MainLoop& loop, ProcessLauncher& launcher, const Environment& environment) {
    // Not make_shared, which the private constructor is closed to.
    return std::shared_ptr<Command>(
        new Command(loop, launcher, environment.with(companionVariable, "1")));
}

Command::Command(MainLoop& loop, ProcessLauncher& launcher, Environment environment)
    : loop_(loop), launcher_(launcher), environment_(std::move(environment)) {}

Command::~Command() = default;

void Command::start(const std::string& path, const std::string& argument, Completion completion) {
    // Before the launch, so that a timer that is refused leaves no child behind.
    std::unique_ptr<MainLoop::Source> limit;
    isLimited_ = isLimited(argument);
    if (isLimited_) {
        limit = loop_.after(timeLimit, [this] { timeIsUp(); });
    } else {
        errors_ = StreamCapture(maximumFirstErrorBytes);
    }
    // Whatever the child does at once is told through the loop, when the fields below are set.
    child_ = launcher_.launch(
        {.path = path, .argument = argument, .environment = environment_.entries()}, *this);
    limit_ = std::move(limit);
    completion_ = std::move(completion);
    self_ = shared_from_this();
}

void Command::stop() {
    limit_.reset();
    if (child_ == nullptr || !child_->isRunning()) {
        return;
    }
    child_->terminate();
    killChecks_.push_back(loop_.after(patience, [this] { kill(); }));
}

void Command::kill() {
    if (child_ != nullptr) {
        child_->kill();
    }
}

void Command::stopRest() {
    if (child_ != nullptr) {
        child_->terminateRest();
    }
}

void Command::whenExited(std::function<void()> work) {
    if (child_ == nullptr || !child_->isRunning()) {
        work();
    } else {
        exitWorks_.push_back(std::move(work));
    }
}

void Command::abandon() {
    const auto alive = std::exchange(self_, nullptr);
    completion_ = nullptr;
    onOutput = nullptr;
    exitWorks_.clear();
    killChecks_.clear();
    limit_.reset();
    child_.reset();
}

void Command::timeIsUp() {
    if (child_->isRunning()) {
        timedOut_ = true;
        stop();
    }
}

void Command::received(ChildProcess::Stream stream, std::string_view bytes) {
    // The observer may abandon the run.
    const auto alive = shared_from_this();
    const bool isOutput = stream == ChildProcess::Stream::output;
    std::size_t kept = bytes.size();
    if (isOutput && !isLimited_) {
        recentOutput_.append(bytes);
    } else {
        kept = (isOutput ? output_ : errors_).append(bytes);
    }
    if (isOutput && kept > 0 && onOutput) {
        // It may also replace itself.
        const auto observer = onOutput;
        observer(isLimited_ ? output_.text() : recentOutput_.text());
    }
    if (isLimited_ && kept < bytes.size() && !std::exchange(overflowed_, true)) {
        stop();
        completeIfEnded();
    }
}

void Command::ended(ChildProcess::Stream stream) {
    (stream == ChildProcess::Stream::output ? outputEnded_ : errorsEnded_) = true;
    completeIfEnded();
}

void Command::exited(int status) {
    const auto alive = shared_from_this();
    status_ = status;
    killChecks_.clear();
    for (const auto& work : std::exchange(exitWorks_, {})) {
        work();
    }
    completeIfEnded();
}

void Command::completeIfEnded() {
    // Once a stream has overflowed nothing that comes matters any more, and a child of the child
    // may go on for ever: closing the pipes ends that.
    const bool streamsEnded = (outputEnded_ && errorsEnded_) || overflowed_;
    if (self_ == nullptr || !status_ || !streamsEnded) {
        return;
    }
    const auto alive = std::exchange(self_, nullptr);
    limit_.reset();
    child_.reset();
    const auto completion = std::exchange(completion_, nullptr);
    // Nothing up to here asks for memory, or the completion might never come.
    completion(
        {.output = isLimited_ ? output_.take() : recentOutput_.take(),
         .errors = errors_.take(),
         .status = *status_,
         .timedOut = timedOut_});
}

} // namespace vorla
