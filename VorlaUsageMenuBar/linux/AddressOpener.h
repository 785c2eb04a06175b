// SPDX-License-Identifier: MIT
#pragma once

#include "linux/DetachedProcess.h"
#include "ports/AddressOpener.h"
#include "ports/MainLoop.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorla {

/// Opens addresses by means of xdg-open, which every desktop has. Main thread.
///
/// Where xdg-open runs the browser itself it ends only with the browser; so nobody waits for it,
/// and it is collected whenever it ends.
class DesktopAddressOpener final : public AddressOpener {
public:
    /// `environment`, "NAME=value" each, is where the tool is looked for and what it gets.
    DesktopAddressOpener(MainLoop& loop, std::vector<std::string> environment);

    void
    open(const std::string& address, const std::optional<std::string>& activationToken) override;

private:
    MainLoop& loop_;
    /// Without an activation token: one that was meant for us brings nobody else to the front.
    std::vector<std::string> environment_;
    std::vector<std::unique_ptr<DetachedProcess>> running_;
};

} // namespace vorla
