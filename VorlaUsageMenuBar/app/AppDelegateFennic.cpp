// SPDX-License-Identifier: MIT
#include "app/AppDelegate.h"

#include "model/FennicQuota.h"

#include <exception>

namespace vorla {

void AppDelegate::openFennic() {
    const auto token = platform_.statusItem.takeActivationToken();
    if (fennicWindow_ != nullptr) {
        fennicWindow_->bringToFront(token);
        rebuildMenu();
        return;
    }
    if (quitting_) {
        return;
    }
    state_.fennicError.reset();
    try {
        fennicWindow_ = platform_.fennicLauncher.open(
            {.quota = FennicQuota::of(state_.usage, state_.pace), .activationToken = token},
            whileAlive([this] { fennicWindow_.reset(); }));
    } catch (const std::exception& error) {
        state_.fennicError = "Cannot open Fennic: " + reasonOf(error);
    }
    rebuildMenu();
}

} // namespace vorla
