// SPDX-License-Identifier: MIT
#pragma once

#include "ports/StatusItem.h"

#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorla {

/// A panel item that remembers what it was told to show, and lets a test click.
class FakeStatusItem final : public StatusItem {
public:
    void setListener(Listener* newListener) override { listener = newListener; }
    void show(const StatusMenu& menu) override {
        if (refusals > 0) {
            --refusals;
            throw std::bad_alloc();
        }
        shown.push_back(menu);
    }
    std::optional<std::string> takeActivationToken() override {
        return std::exchange(token, std::nullopt);
    }

    const StatusMenu& last() const { return shown.back(); }

    /// The line of that role in the last menu, or nothing.
    std::optional<MenuLine> line(LineRole role) const {
        for (const auto& line : last().lines) {
            if (line.identity.role == role) {
                return line;
            }
        }
        return std::nullopt;
    }

    /// The title of that line, or an empty text.
    std::string text(LineRole role) const { return line(role).value_or(MenuLine{}).title; }

    Listener* listener = nullptr;
    std::vector<StatusMenu> shown;
    std::optional<std::string> token;
    /// How many more menus there is no memory for.
    int refusals = 0;
};

} // namespace vorla
