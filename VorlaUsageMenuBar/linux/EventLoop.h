// SPDX-License-Identifier: MIT
#pragma once

#include "linux/FileDescriptor.h"
#include "ports/MainLoop.h"

#include <systemd/sd-event.h>

#include <initializer_list>
#include <mutex>
#include <vector>

namespace vorla {

/// The main loop on sd-event. Made, run and destroyed on the main thread; everything it handed out
/// must be destroyed first. Operations throw std::system_error when the system refuses.
class EventLoop final : public MainLoop {
public:
    EventLoop();
    ~EventLoop() override;
    EventLoop(const EventLoop&) = delete;
    EventLoop& operator=(const EventLoop&) = delete;

    void post(std::function<void()> work) override;
    std::chrono::milliseconds now() const override;
    [[nodiscard]] std::unique_ptr<Source>
    after(std::chrono::milliseconds delay, std::function<void()> work) override;
    [[nodiscard]] std::unique_ptr<Source>
    every(std::chrono::seconds interval, std::function<void()> work) override;
    [[nodiscard]] std::unique_ptr<Source>
    whenReadable(int descriptor, std::function<void()> work) override;

    /// Calls `work` for each of these signals. Blocks them for the calling thread and all that it
    /// starts later: call before any thread is started.
    [[nodiscard]] std::vector<std::unique_ptr<Source>>
    onSignals(std::initializer_list<int> signals, const std::function<void()>& work);

    /// Runs until exit() and returns its status.
    int run();
    void exit(int status);

    /// Waits for one event, at most this long, and handles it. False if none came.
    bool runOnce(std::chrono::milliseconds limit);

    sd_event* native() { return event_; }

private:
    std::vector<std::function<void()>> takePosted();
    void runPosted();

    sd_event* event_ = nullptr;
    FileDescriptor wake_;
    std::unique_ptr<Source> wakeWatch_;
    std::mutex postedMutex_;
    std::vector<std::function<void()>> posted_;
};

} // namespace vorla
