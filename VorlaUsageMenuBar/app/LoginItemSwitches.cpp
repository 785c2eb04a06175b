// SPDX-License-Identifier: MIT
#include "app/LoginItemSwitches.h"

namespace vorla {

std::optional<std::string> addLoginItem(LoginItem& loginItem) {
    if (loginItem.status() == LoginItemStatus::enabled) {
        return std::nullopt;
    }
    const auto failure = loginItem.registerItem();
    if (!failure) {
        return std::nullopt;
    }
    return "Could not add login item: " + *failure + "\n";
}

std::optional<std::string> removeLoginItem(LoginItem& loginItem) {
    const auto status = loginItem.status();
    if (status != LoginItemStatus::enabled && status != LoginItemStatus::requiresApproval) {
        return std::nullopt;
    }
    const auto failure = loginItem.unregisterItem();
    if (!failure) {
        return std::nullopt;
    }
    return "Could not remove login item: " + *failure + "\n";
}

} // namespace vorla
