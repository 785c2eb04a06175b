// SPDX-License-Identifier: MIT
#include "linux/PublishedMenu.h"

#include "linux/BusText.h"

#include <algorithm>
#include <cassert>
#include <iterator>
#include <utility>

namespace vorla {

namespace {

constexpr std::size_t maximumInformationalLines = 1000;
constexpr std::ptrdiff_t maximumHiddenLines = 1000;

constexpr std::int32_t firstSingleId = 1;
/// Above the ids of all roles that do not repeat.
constexpr std::int32_t firstBucketId = 1000;
/// The bucket's own line and its windows.
constexpr std::int32_t idsPerBucket = 1 + 1000;

bool isInformational(const MenuLine& line) {
    return line.identity.role < LineRole::separator;
}

PublishedLine published(const MenuLine& line) {
    return {
        .identity = line.identity,
        .label = menuLabel(line.title),
        .enabled = line.enabled,
        .checked = line.checked,
        .keyEquivalent = line.keyEquivalent,
        .action = line.action,
    };
}

std::vector<PublishedLine> publishedLines(std::span<const MenuLine> lines) {
    std::vector<PublishedLine> result;
    std::size_t informational = 0;
    for (const auto& line : lines) {
        if (isInformational(line) && ++informational > maximumInformationalLines) {
            continue;
        }
        result.push_back(published(line));
    }
    return result;
}

bool isAbove(const PublishedLine& left, const PublishedLine& right) {
    return standsAbove(left.identity, right.identity);
}

/// Replaces `line` and notes the difference, if it can be seen.
void replace(PublishedLine& line, PublishedLine next, std::vector<PublishedMenu::Change>& changes) {
    if (line == next) {
        return;
    }
    const bus::Dictionary before = allProperties(line);
    bus::Dictionary changed = allProperties(next);
    std::erase_if(changed, [&](const auto& property) {
        return before.at(property.first) == property.second;
    });
    line = std::move(next);
    if (!changed.empty()) {
        changes.emplace_back(lineId(line.identity), std::move(changed));
    }
}

void hide(PublishedLine& line, std::vector<PublishedMenu::Change>& changes) {
    PublishedLine hidden = line;
    hidden.visible = false;
    replace(line, std::move(hidden), changes);
}

} // namespace

std::int32_t lineId(const LineIdentity& identity) {
    if (identity.role != LineRole::bucket && identity.role != LineRole::bucketWindow) {
        return firstSingleId + static_cast<std::int32_t>(identity.role);
    }
    assert(identity.bucket < maximumInformationalLines);
    assert(identity.window < maximumInformationalLines);
    const auto bucket = firstBucketId + static_cast<std::int32_t>(identity.bucket) * idsPerBucket;
    if (identity.role == LineRole::bucket) {
        return bucket;
    }
    return bucket + 1 + static_cast<std::int32_t>(identity.window);
}

bus::Dictionary allProperties(const PublishedLine& line) {
    using Shortcuts = std::vector<std::vector<std::string>>;
    const bool isSeparator = line.identity.role == LineRole::separator;
    const std::int32_t uncheckable = -1;
    return {
        {"type", isSeparator ? "separator" : "standard"},
        {"label", line.label},
        {"enabled", line.enabled},
        {"visible", line.visible},
        {"toggle-type", line.checked ? "checkmark" : ""},
        {"toggle-state", line.checked ? std::int32_t{*line.checked} : uncheckable},
        {"shortcut",
         line.keyEquivalent.empty() ? Shortcuts{} : Shortcuts{{"Control", line.keyEquivalent}}},
    };
}

bus::Dictionary withoutDefaults(bus::Dictionary properties) {
    static const bus::Dictionary defaults = allProperties({.enabled = true});
    std::erase_if(properties, [](const auto& property) {
        const auto known = defaults.find(property.first);
        return known != defaults.end() && known->second == property.second;
    });
    return properties;
}

std::vector<PublishedMenu::Change> PublishedMenu::update(std::span<const MenuLine> lines) {
    std::vector<Change> changes;
    waiting_.clear();
    auto known = layout_.begin();
    for (auto& line : publishedLines(lines)) {
        for (; known != layout_.end() && isAbove(*known, line); ++known) {
            hide(*known, changes);
        }
        if (known != layout_.end() && known->identity == line.identity) {
            replace(*known, std::move(line), changes);
            ++known;
        } else {
            waiting_.push_back(std::move(line));
        }
    }
    for (; known != layout_.end(); ++known) {
        hide(*known, changes);
    }
    return changes;
}

void PublishedMenu::publishWaitingLines() {
    std::vector<PublishedLine> layout;
    layout.reserve(layout_.size() + waiting_.size());
    const auto from = [](auto place) { return std::make_move_iterator(place); };
    std::merge(
        from(layout_.begin()), from(layout_.end()), from(waiting_.begin()), from(waiting_.end()),
        std::back_inserter(layout), isAbove);
    layout_ = std::move(layout);
    waiting_.clear();
    const auto isHidden = [](const PublishedLine& line) { return !line.visible; };
    if (std::ranges::count_if(layout_, isHidden) > maximumHiddenLines) {
        std::erase_if(layout_, isHidden);
    }
    ++revision_;
}

const PublishedLine* PublishedMenu::find(std::int32_t id) const {
    const auto line = std::ranges::find_if(
        layout_, [&](const PublishedLine& candidate) { return lineId(candidate.identity) == id; });
    return line == layout_.end() ? nullptr : &*line;
}

} // namespace vorla
