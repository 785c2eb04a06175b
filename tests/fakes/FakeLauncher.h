// SPDX-License-Identifier: MIT
#pragma once

#include "ports/ProcessLauncher.h"

#include <csignal>
#include <memory>
#include <new>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace vorla {

/// A child that does what the test says. It can be asked and told things also after the object that
/// stands for it has been destroyed: then nobody listens any more.
class FakeChild final {
public:
    FakeChild(LaunchRequest newRequest, ChildProcess::Listener& listener)
        : request(std::move(newRequest)), listener_(&listener) {}

    void print(std::string_view bytes) {
        if (listener_ != nullptr) {
            listener_->received(ChildProcess::Stream::output, bytes);
        }
    }

    void printError(std::string_view bytes) {
        if (listener_ != nullptr) {
            listener_->received(ChildProcess::Stream::errors, bytes);
        }
    }

    void close(ChildProcess::Stream stream) {
        if (listener_ != nullptr) {
            listener_->ended(stream);
        }
    }

    void exit(int status) {
        running = false;
        if (listener_ != nullptr) {
            listener_->exited(status);
        }
    }

    /// Exits and closes both streams: the run is over.
    void finish(int status) {
        exit(status);
        close(ChildProcess::Stream::output);
        close(ChildProcess::Stream::errors);
    }

    void forget() { listener_ = nullptr; }

    bool isForgotten() const { return listener_ == nullptr; }

    LaunchRequest request;
    /// SIGTERM and SIGKILL in the order in which they were sent.
    std::vector<int> signals;
    /// Whether what it left behind was asked to end.
    bool restTerminated = false;
    /// False lets it have ended before anybody is told; see exit().
    bool running = true;

private:
    ChildProcess::Listener* listener_ = nullptr;
};

/// Starts no processes; the test plays each child.
class FakeLauncher final : public ProcessLauncher {
public:
    std::unique_ptr<ChildProcess>
    launch(const LaunchRequest& request, ChildProcess::Listener& listener) override {
        if (isShortOfMemory) {
            throw std::bad_alloc();
        }
        if (launchError != std::errc{}) {
            throw std::system_error(std::make_error_code(launchError));
        }
        children.push_back(std::make_shared<FakeChild>(request, listener));
        return std::make_unique<Handle>(children.back());
    }

    FakeChild& last() const { return *children.back(); }

    /// All that were ever started, the oldest first.
    std::vector<std::shared_ptr<FakeChild>> children;
    /// If set, the error of each launch.
    std::errc launchError{};
    bool isShortOfMemory = false;

private:
    class Handle final : public ChildProcess {
    public:
        explicit Handle(std::shared_ptr<FakeChild> child) : child_(std::move(child)) {}

        ~Handle() override { child_->forget(); }

        Handle(const Handle&) = delete;
        Handle& operator=(const Handle&) = delete;

        bool isRunning() const override { return child_->running; }

        void terminate() override { send(SIGTERM); }

        void kill() override { send(SIGKILL); }

        void terminateRest() override { child_->restTerminated |= !child_->running; }

    private:
        void send(int signal) {
            if (child_->running) {
                child_->signals.push_back(signal);
            }
        }

        std::shared_ptr<FakeChild> child_;
    };
};

} // namespace vorla
