// SPDX-License-Identifier: MIT
#pragma once

#include <sched.h>

#include <chrono>
#include <functional>

namespace vorla {

/// Waits for what the system tells nobody of; false if it does not come within a generous limit.
inline bool comesTrue(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds{30};
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        sched_yield();
    }
    return true;
}

} // namespace vorla
