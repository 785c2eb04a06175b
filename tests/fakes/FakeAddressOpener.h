// SPDX-License-Identifier: MIT
#pragma once

#include "ports/AddressOpener.h"

#include <optional>
#include <string>
#include <vector>

namespace vorla {

/// Remembers what it was told to open.
class FakeAddressOpener final : public AddressOpener {
public:
    void
    open(const std::string& address, const std::optional<std::string>& activationToken) override {
        addresses.push_back(address);
        lastToken = activationToken;
    }

    std::vector<std::string> addresses;
    std::optional<std::string> lastToken;
};

} // namespace vorla
