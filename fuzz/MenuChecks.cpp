// SPDX-License-Identifier: MIT
#include "MenuChecks.h"

#include "Require.h"
#include "Utf8.h"

#include "linux/BusText.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace vorla::fuzz {

namespace {

constexpr std::size_t maximumLabelBytes = 4096;
constexpr std::size_t maximumInformationalLines = 1000;

void checkLine(const MenuLine& line) {
    require(isWellFormed(line.title), "a line is well-formed");
    const bool isAction = line.identity.role > LineRole::separator;
    require((line.action != MenuAction::none) == isAction, "only actions act");
    require(isAction || !line.enabled, "information cannot be chosen");
    require(isAction || !line.checked, "information has no check mark");
    const bool isSeparator = line.identity.role == LineRole::separator;
    const bool mayBeEmpty = line.identity.role == LineRole::bucket || isSeparator ||
                            line.identity.role == LineRole::dashboardError ||
                            line.identity.role == LineRole::error;
    require(mayBeEmpty || !line.title.empty(), "a line says something");
}

void checkLabel(std::string_view label) {
    require(label.size() <= maximumLabelBytes, "a label is bounded");
    require(isWellFormed(label), "a label is well-formed");
    require(!hasNoncharacter(label), "a label has no noncharacter");
    require(label.find('\0') == std::string_view::npos, "a label has no NUL");
}

/// The lines of `menu` that panels may see, with the labels they see.
std::vector<std::pair<LineIdentity, std::string>> expectedLines(const StatusMenu& menu) {
    const auto separator =
        std::ranges::find(menu.lines, LineIdentity{LineRole::separator}, &MenuLine::identity);
    const auto informational = static_cast<std::size_t>(separator - menu.lines.begin());
    std::vector<std::pair<LineIdentity, std::string>> expected;
    for (std::size_t place = 0; place < menu.lines.size(); ++place) {
        if (place < maximumInformationalLines || place >= informational) {
            const MenuLine& line = menu.lines[place];
            expected.emplace_back(line.identity, menuLabel(line.title));
        }
    }
    return expected;
}

std::vector<std::pair<LineIdentity, std::string>>
visibleLines(const std::vector<PublishedLine>& lines) {
    std::vector<std::pair<LineIdentity, std::string>> visible;
    for (const PublishedLine& line : lines) {
        if (line.visible) {
            visible.emplace_back(line.identity, line.label);
        }
    }
    return visible;
}

/// What the protocol says of properties that a panel is not told.
void addDefaults(bus::Dictionary& properties) {
    static const bus::Dictionary defaults = {
        {"type", "standard"},
        {"label", ""},
        {"enabled", true},
        {"visible", true},
        {"toggle-type", ""},
        {"toggle-state", std::int32_t{-1}},
        {"shortcut", std::vector<std::vector<std::string>>{}},
    };
    properties.insert(defaults.begin(), defaults.end());
}

} // namespace

void checkMenu(const StatusMenu& menu) {
    require(!menu.title.empty() && isWellFormed(menu.title), "the title is a text");
    require(plainLabel(menu.title) == menu.title, "the title is short and plain");
    checkLabel(toolTipText(menu.title));
    require(menu.figures.size() <= 2, "the title has at most two figures");
    for (const std::int64_t figure : menu.figures) {
        require(figure >= 0 && figure <= 100, "a figure is a percentage");
        require(
            menu.title.find(" " + std::to_string(figure) + "%") != std::string::npos,
            "the figures are the title's");
    }
    std::ranges::for_each(menu.lines, checkLine);
    for (std::size_t place = 1; place < menu.lines.size(); ++place) {
        const LineIdentity& above = menu.lines[place - 1].identity;
        const LineIdentity& below = menu.lines[place].identity;
        require(standsAbove(above, below), "identities stand in order");
        require(!standsAbove(below, above) && above != below, "an order has one direction");
    }
    const auto actions = std::ranges::count_if(
        menu.lines, [](const MenuLine& line) { return line.action != MenuAction::none; });
    require(actions == static_cast<int>(MenuAction::quit), "every action has one line");
}

void Panel::show(const StatusMenu& menu) {
    takeOverChanges(menu);
    checkView(menu);
}

void Panel::showInNewLayout(const StatusMenu& menu) {
    takeOverChanges(menu);
    const std::uint32_t revision = published_.revision();
    published_.publishWaitingLines();
    require(!published_.hasWaitingLines(), "a new layout leaves no line waiting");
    require(published_.revision() == revision + 1, "layouts are counted");
    readLayout();
    checkView(menu);
    require(visibleLines(published_.lines()) == expectedLines(menu), "a new layout is complete");
}

void Panel::takeOverChanges(const StatusMenu& menu) {
    for (auto& [id, changed] : published_.update(menu.lines)) {
        const auto line = seen_.find(id);
        require(line != seen_.end(), "only lines of the layout change");
        require(!changed.empty(), "a change changes something");
        for (auto& [property, value] : changed) {
            line->second.insert_or_assign(property, std::move(value));
        }
    }
}

void Panel::readLayout() {
    seen_.clear();
    for (const PublishedLine& line : published_.lines()) {
        bus::Dictionary properties = withoutDefaults(allProperties(line));
        addDefaults(properties);
        const std::int32_t id = lineId(line.identity);
        require(id != 0, "the root's id is the root's");
        require(seen_.emplace(id, std::move(properties)).second, "ids are unique");
    }
}

void Panel::checkView(const StatusMenu& menu) const {
    require(seen_.size() == published_.lines().size(), "no line comes or goes unannounced");
    for (const PublishedLine& line : published_.lines()) {
        checkLabel(line.label);
        const auto seen = seen_.find(lineId(line.identity));
        require(seen != seen_.end(), "a line keeps its id");
        require(seen->second == allProperties(line), "a panel sees every change");
    }
    if (!published_.lines().empty()) {
        const PublishedLine& last = published_.lines().back();
        require(published_.find(lineId(last.identity)) == &last, "a line is found by its id");
    }
    // Lines that wait are missing, but no line is shown that the menu does not hold.
    const auto expected = expectedLines(menu);
    const auto visible = visibleLines(published_.lines());
    auto place = expected.begin();
    for (const auto& line : visible) {
        place = std::find(place, expected.end(), line);
        require(place != expected.end(), "what is shown is in the menu, in its order");
    }
    require(
        published_.hasWaitingLines() || visible.size() == expected.size(),
        "a line that is not shown waits");
}

} // namespace vorla::fuzz
