// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <string>

namespace vorla {

/// A message bus for one test alone, with its own configuration and socket.
class PrivateBus final {
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    const std::string& address() const { return address_; }

    /// Ends the bus as a logout does; all connections are lost.
    void stop();

    /// From now on it neither reads nor answers; whoever calls it waits.
    void freeze() const;

private:
    std::string folder_;
    std::string address_;
    pid_t daemon_ = 0;
};

} // namespace vorla
