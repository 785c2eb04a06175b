// SPDX-License-Identifier: MIT
#pragma once

#include "ports/LoginItem.h"

#include <optional>
#include <string>

namespace vorla {

/// A login item in the state that the test sets; it fails with `failure` if that is set.
class FakeLoginItem final : public LoginItem {
public:
    LoginItemStatus status() override { return state; }

    std::optional<std::string> registerItem() override {
        ++registrations;
        if (!failure) {
            state = LoginItemStatus::enabled;
        }
        return failure;
    }

    std::optional<std::string> unregisterItem() override {
        ++removals;
        if (!failure) {
            state = LoginItemStatus::notRegistered;
        }
        return failure;
    }

    LoginItemStatus state = LoginItemStatus::notRegistered;
    std::optional<std::string> failure;
    int registrations = 0;
    int removals = 0;
};

} // namespace vorla
