// SPDX-License-Identifier: MIT
#include "linux/AddressOpener.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>
#include <utility>

namespace vorla {

namespace {

constexpr auto tool = "xdg-open";
/// Wayland's name for it, and the older one, which X11 programs read.
constexpr std::array<std::string_view, 2> tokenEntries = {
    "XDG_ACTIVATION_TOKEN=", "DESKTOP_STARTUP_ID="};

bool isToken(std::string_view entry) {
    return std::ranges::any_of(
        tokenEntries, [=](std::string_view name) { return entry.starts_with(name); });
}

} // namespace

DesktopAddressOpener::DesktopAddressOpener(MainLoop& loop, std::vector<std::string> environment)
    : loop_(loop), environment_(std::move(environment)) {
    std::erase_if(environment_, isToken);
}

void DesktopAddressOpener::open(
    const std::string& address, const std::optional<std::string>& activationToken) {
    auto environment = environment_;
    if (activationToken && !activationToken->empty()) {
        for (const auto name : tokenEntries) {
            environment.push_back(std::string(name) + *activationToken);
        }
    }
    // Known only once the process has been made, and looked at only when it ends.
    const auto self = std::make_shared<DetachedProcess*>();
    try {
        running_.push_back(std::make_unique<DetachedProcess>(
            loop_,
            DetachedCommand{
                .program = tool, .arguments = {address}, .environment = std::move(environment)},
            FileDescriptor(), [this, self](int) {
                std::erase_if(running_, [&](const auto& one) { return one.get() == *self; });
            }));
        *self = running_.back().get();
    } catch (const std::system_error&) {
        // A browser that does not open is not reported.
        return;
    }
}

} // namespace vorla
