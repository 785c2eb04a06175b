// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace vorla {

/// The one thread that owns all state, seen from the application; a port, because tests drive time
/// by hand. All callbacks run on the main thread, one after another, and must not throw.
class MainLoop {
public:
    /// A timer or a watch; destroying it ends it, also from inside its own callback.
    class Source {
    public:
        virtual ~Source() = default;
    };

    virtual ~MainLoop() = default;

    /// Calls `work` once on the main thread, in the order of the calls. Any thread; the only
    /// operation that is.
    virtual void post(std::function<void()> work) = 0;

    /// Milliseconds since some moment in the past, on the clock of after().
    virtual std::chrono::milliseconds now() const = 0;

    /// Calls `work` once. The delay does not pass while the machine sleeps (CLOCK_MONOTONIC).
    [[nodiscard]] virtual std::unique_ptr<Source>
    after(std::chrono::milliseconds delay, std::function<void()> work) = 0;

    /// Calls `work` again and again, up to a second late so that it wakes together with others. The
    /// interval passes while the machine sleeps (CLOCK_BOOTTIME): what fell due is caught up on
    /// with one call after it wakes.
    [[nodiscard]] virtual std::unique_ptr<Source>
    every(std::chrono::seconds interval, std::function<void()> work) = 0;

    /// Calls `work` whenever `descriptor` has something to read or has been hung up.
    [[nodiscard]] virtual std::unique_ptr<Source>
    whenReadable(int descriptor, std::function<void()> work) = 0;
};

} // namespace vorla
