// SPDX-License-Identifier: MIT
#pragma once

#include "ports/Clock.h"

#include <algorithm>
#include <chrono>

namespace vorla {

class SystemClock final : public Clock {
public:
    double now() const override {
        const std::chrono::duration<double> sinceEpoch =
            std::chrono::system_clock::now().time_since_epoch();
        return std::max(sinceEpoch.count(), 0.0);
    }
};

} // namespace vorla
