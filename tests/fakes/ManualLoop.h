// SPDX-License-Identifier: MIT
#pragma once

#include "linux/EventLoop.h"
#include "ports/MainLoop.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace vorla {

/// A main loop whose descriptors and posts are real, and whose time stands still until advance().
class ManualLoop final : public MainLoop {
public:
    void post(std::function<void()> work) override { loop_.post(std::move(work)); }

    std::chrono::milliseconds now() const override { return now_; }

    [[nodiscard]] std::unique_ptr<Source>
    whenReadable(int descriptor, std::function<void()> work) override {
        return loop_.whenReadable(descriptor, std::move(work));
    }

    [[nodiscard]] std::unique_ptr<Source>
    after(std::chrono::milliseconds delay, std::function<void()> work) override {
        return add({now_ + delay, std::chrono::milliseconds{0}, std::move(work)});
    }

    [[nodiscard]] std::unique_ptr<Source>
    every(std::chrono::seconds interval, std::function<void()> work) override {
        return add({now_ + interval, interval, std::move(work)});
    }

    /// Lets time pass: timers that fall due on the way fire in the order of their times.
    void advance(std::chrono::milliseconds duration) {
        const auto end = now_ + duration;
        while (auto timer = nextDue(end)) {
            now_ = timer->due;
            if (timer->interval.count() > 0) {
                timer->due += timer->interval;
            } else {
                timer->done = true;
            }
            const auto work = timer->work;
            work();
        }
        now_ = end;
    }

    /// Lets the machine sleep: of all clocks only that of every() goes on. What falls due meanwhile
    /// is caught up on with one call, and the next follows on the old grid.
    void sleep(std::chrono::milliseconds duration) {
        for (const auto& kept : std::vector(timers_)) {
            const auto timer = kept.lock();
            if (timer == nullptr || timer->done || timer->interval.count() == 0) {
                continue;
            }
            timer->due -= duration;
            if (timer->due <= now_) {
                timer->due += ((now_ - timer->due) / timer->interval + 1) * timer->interval;
                const auto work = timer->work;
                work();
            }
        }
    }

    /// Handles real events until `condition` holds; false if it does not within the limit, which is
    /// so generous that only a mistake reaches it.
    bool runUntil(
        const std::function<bool()>& condition,
        std::chrono::seconds limit = std::chrono::seconds{30}) {
        const auto end = std::chrono::steady_clock::now() + limit;
        while (!condition()) {
            if (std::chrono::steady_clock::now() > end) {
                return false;
            }
            loop_.runOnce(std::chrono::milliseconds{100});
        }
        return true;
    }

    /// Handles what has already happened, without waiting.
    void runPending() {
        while (loop_.runOnce(std::chrono::milliseconds{0})) {}
    }

    /// How many timers are still to fire.
    std::size_t timerCount() const {
        return static_cast<std::size_t>(std::ranges::count_if(timers_, [](const auto& timer) {
            const auto held = timer.lock();
            return held != nullptr && !held->done;
        }));
    }

    EventLoop& real() { return loop_; }

private:
    struct Timer {
        std::chrono::milliseconds due{0};
        std::chrono::milliseconds interval{0};
        std::function<void()> work;
        bool done = false;
    };

    class Handle final : public Source {
    public:
        explicit Handle(std::shared_ptr<Timer> timer) : timer_(std::move(timer)) {}
        ~Handle() override { timer_->done = true; }
        Handle(const Handle&) = delete;
        Handle& operator=(const Handle&) = delete;

    private:
        std::shared_ptr<Timer> timer_;
    };

    std::unique_ptr<Source> add(Timer timer) {
        auto shared = std::make_shared<Timer>(std::move(timer));
        timers_.push_back(shared);
        return std::make_unique<Handle>(std::move(shared));
    }

    std::shared_ptr<Timer> nextDue(std::chrono::milliseconds end) {
        std::erase_if(timers_, [](const auto& timer) {
            const auto held = timer.lock();
            return held == nullptr || held->done;
        });
        std::shared_ptr<Timer> next;
        for (const auto& timer : timers_) {
            const auto held = timer.lock();
            if (held->due <= end && (next == nullptr || held->due < next->due)) {
                next = held;
            }
        }
        return next;
    }

    EventLoop loop_;
    std::chrono::milliseconds now_{0};
    std::vector<std::weak_ptr<Timer>> timers_;
};

} // namespace vorla
