// SPDX-License-Identifier: MIT
#pragma once

#include "ports/MainLoop.h"

#include <functional>
#include <memory>
#include <system_error>
#include <utility>

namespace vorla {

/// A main loop that has room for a number of further sources of one kind, as if a limit of the
/// system were reached then.
class RefusingLoop final : public MainLoop {
public:
    enum class Refuses { timers, watches };

    RefusingLoop(MainLoop& real, Refuses refuses, int room = 0)
        : real_(real), refuses_(refuses), room_(room) {}

    void post(std::function<void()> work) override { real_.post(std::move(work)); }

    std::chrono::milliseconds now() const override { return real_.now(); }

    std::unique_ptr<Source>
    after(std::chrono::milliseconds delay, std::function<void()> work) override {
        take(Refuses::timers);
        return real_.after(delay, std::move(work));
    }

    std::unique_ptr<Source>
    every(std::chrono::seconds interval, std::function<void()> work) override {
        take(Refuses::timers);
        return real_.every(interval, std::move(work));
    }

    std::unique_ptr<Source> whenReadable(int descriptor, std::function<void()> work) override {
        take(Refuses::watches);
        return real_.whenReadable(descriptor, std::move(work));
    }

private:
    void take(Refuses kind) {
        if (kind == refuses_ && room_-- <= 0) {
            throw std::system_error(std::make_error_code(std::errc::no_space_on_device));
        }
    }

    MainLoop& real_;
    Refuses refuses_;
    int room_;
};

} // namespace vorla
