// SPDX-License-Identifier: MIT
#pragma once

#include "ports/Clock.h"

namespace vorla {

/// Shows what the test sets.
class FakeClock final : public Clock {
public:
    double now() const override { return time; }

    double time = 1'763'000'000;
};

} // namespace vorla
