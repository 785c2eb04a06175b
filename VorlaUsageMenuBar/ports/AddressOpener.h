// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace vorla {

/// Opens addresses in the user's browser; a port, because tests have none. Main thread.
class AddressOpener {
public:
    virtual ~AddressOpener() = default;

    /// Returns at once. `activationToken` lets the browser's window come to the front. A failure is
    /// not reported.
    virtual void
    open(const std::string& address, const std::optional<std::string>& activationToken) = 0;
};

} // namespace vorla
