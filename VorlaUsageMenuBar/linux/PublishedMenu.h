// SPDX-License-Identifier: MIT
#pragma once

#include "linux/bus/Values.h"
#include "model/StatusMenu.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <vector>

namespace vorla {

/// The same for the life of the program, whatever the menu holds; never 0, which is the root.
/// Precondition: the ordinals are below 1,000.
std::int32_t lineId(const LineIdentity& identity);

/// A line as panels know it.
struct PublishedLine {
    LineIdentity identity = {};
    std::string label = {};
    bool enabled = false;
    std::optional<bool> checked = std::nullopt;
    std::string keyEquivalent = {};
    MenuAction action = MenuAction::none;
    /// False for a line that has vanished and keeps its place.
    bool visible = true;

    bool operator==(const PublishedLine&) const = default;
};

/// The properties of com.canonical.dbusmenu that `line` has, defaults included.
bus::Dictionary allProperties(const PublishedLine& line);

/// Without the values that panels assume for a property they are not told.
bus::Dictionary withoutDefaults(bus::Dictionary properties);

/// What panels have been told of the menu, and how a new menu differs from it. Pure.
///
/// The layout is the list of lines and their order. Panels take a new layout badly while the menu
/// is open, so it changes only when it must: a line that vanishes is hidden, one that returns is
/// shown in the same place, and one that never was there waits for publishWaitingLines().
class PublishedMenu final {
public:
    /// An id, and those of its properties that changed.
    using Change = std::tuple<std::int32_t, bus::Dictionary>;

    /// Takes over a menu and returns what changed in the lines of the layout. Of the informational
    /// lines, those above the separator, only the first 1,000 are published.
    std::vector<Change> update(std::span<const MenuLine> lines);

    bool hasWaitingLines() const { return !waiting_.empty(); }

    /// Puts waiting lines into the layout, and drops the hidden ones if they are more than 1,000.
    void publishWaitingLines();

    /// Counts the layouts.
    std::uint32_t revision() const { return revision_; }

    /// The layout, from top to bottom.
    const std::vector<PublishedLine>& lines() const { return layout_; }

    /// Nothing for an id that the layout does not hold.
    const PublishedLine* find(std::int32_t id) const;

private:
    std::vector<PublishedLine> layout_;
    std::vector<PublishedLine> waiting_;
    std::uint32_t revision_ = 0;
};

} // namespace vorla
