// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"

namespace vorla {

void AppDelegate::toggleLaunchAtLogin() {
    const auto failure = platform_.loginItem.status() == LoginItemStatus::enabled
                             ? platform_.loginItem.unregisterItem()
                             : platform_.loginItem.registerItem();
    if (failure) {
        state_.loginItemError = "Launch at Login: " + *failure;
    } else {
        state_.loginItemError.reset();
    }
    rebuildMenu();
}

} // namespace vorla
