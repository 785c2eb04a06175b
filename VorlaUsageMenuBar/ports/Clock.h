// SPDX-License-Identifier: MIT
#pragma once

namespace vorla {

/// The time of day; a port, because tests set it.
class Clock {
public:
    virtual ~Clock() = default;

    /// Seconds since the Unix epoch, never negative.
    virtual double now() const = 0;
};

} // namespace vorla
