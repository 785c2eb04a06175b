// SPDX-License-Identifier: MIT
#include "linux/PublishedMenu.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace vorla {

namespace {

using Changes = std::vector<PublishedMenu::Change>;

MenuLine line(LineIdentity identity, std::string title) {
    return {.identity = identity, .title = std::move(title)};
}

MenuLine line(LineRole role, std::string title) {
    return line(LineIdentity{.role = role}, std::move(title));
}

MenuLine bucket(std::size_t index) {
    return line(LineIdentity{.role = LineRole::bucket, .bucket = index}, "Bucket");
}

MenuLine quit() {
    return {
        .identity = {.role = LineRole::quit},
        .title = "Quit",
        .enabled = true,
        .keyEquivalent = "q",
        .action = MenuAction::quit};
}

std::vector<LineRole> visibleRoles(const PublishedMenu& menu) {
    std::vector<LineRole> roles;
    for (const auto& published : menu.lines()) {
        if (published.visible) {
            roles.push_back(published.identity.role);
        }
    }
    return roles;
}

PublishedMenu menuOf(const std::vector<MenuLine>& lines) {
    PublishedMenu menu;
    menu.update(lines);
    menu.publishWaitingLines();
    return menu;
}

TEST(PublishedMenu, givesEachLineAnIdOfItsOwn) {
    std::set<std::int32_t> ids;
    std::size_t count = 0;
    const auto add = [&](const LineIdentity& identity) {
        ids.insert(lineId(identity));
        ++count;
    };
    for (int role = 0; role <= static_cast<int>(LineRole::quit); ++role) {
        if (role != static_cast<int>(LineRole::bucketWindow)) {
            add({.role = static_cast<LineRole>(role)});
        }
    }
    for (std::size_t bucketIndex = 1; bucketIndex < 1000; ++bucketIndex) {
        add({.role = LineRole::bucket, .bucket = bucketIndex});
    }
    for (std::size_t bucketIndex = 0; bucketIndex < 1000; ++bucketIndex) {
        for (const std::size_t window : {0U, 1U, 998U, 999U}) {
            add({.role = LineRole::bucketWindow, .bucket = bucketIndex, .window = window});
        }
    }
    EXPECT_EQ(ids.size(), count);
    EXPECT_GT(*ids.begin(), 0);
}

TEST(PublishedMenu, keepsTheFirstLinesWaitingUntilTheyArePublished) {
    PublishedMenu menu;
    EXPECT_FALSE(menu.hasWaitingLines());
    EXPECT_EQ(menu.update(std::vector{line(LineRole::plan, "Plan"), quit()}), Changes{});
    EXPECT_TRUE(menu.hasWaitingLines());
    EXPECT_TRUE(menu.lines().empty());
    EXPECT_EQ(menu.revision(), 0U);

    menu.publishWaitingLines();
    EXPECT_FALSE(menu.hasWaitingLines());
    EXPECT_EQ(visibleRoles(menu), (std::vector{LineRole::plan, LineRole::quit}));
    EXPECT_EQ(menu.revision(), 1U);
}

TEST(PublishedMenu, seesNoDifferenceInTheSameMenu) {
    const std::vector lines = {line(LineRole::plan, "Plan"), quit()};
    auto menu = menuOf(lines);
    EXPECT_EQ(menu.update(lines), Changes{});
    EXPECT_FALSE(menu.hasWaitingLines());
}

TEST(PublishedMenu, seesNoDifferenceBeyondTheBoundsOfALabel) {
    auto menu = menuOf({line(LineRole::plan, std::string(5000, 'x') + "a")});
    EXPECT_EQ(
        menu.update(std::vector{line(LineRole::plan, std::string(5000, 'x') + "b")}), Changes{});
}

TEST(PublishedMenu, namesOnlyThePropertiesThatChanged) {
    auto menu = menuOf({quit()});

    struct Case {
        MenuLine next;
        bus::Dictionary expected;
    };

    using Shortcuts = std::vector<std::vector<std::string>>;
    auto next = quit();
    std::vector<Case> cases;
    next.title = "Quit_";
    cases.push_back({next, {{"label", "Quit__"}}});
    next.enabled = false;
    cases.push_back({next, {{"enabled", false}}});
    next.checked = false;
    cases.push_back({next, {{"toggle-type", "checkmark"}, {"toggle-state", std::int32_t{0}}}});
    next.checked = true;
    cases.push_back({next, {{"toggle-state", std::int32_t{1}}}});
    next.checked = std::nullopt;
    cases.push_back({next, {{"toggle-type", ""}, {"toggle-state", std::int32_t{-1}}}});
    next.keyEquivalent = "";
    cases.push_back({next, {{"shortcut", Shortcuts{}}}});
    next.keyEquivalent = "w";
    cases.push_back({next, {{"shortcut", Shortcuts{{"Control", "w"}}}}});
    next.enabled = true;
    cases.push_back({next, {{"enabled", true}}});
    for (const auto& [changed, expected] : cases) {
        EXPECT_EQ(
            menu.update(std::vector{changed}), (Changes{{lineId(changed.identity), expected}}));
    }
}

TEST(PublishedMenu, takesOverAnActionThatNoPropertyShows) {
    auto menu = menuOf({quit()});
    auto next = quit();
    next.action = MenuAction::refresh;
    EXPECT_EQ(menu.update(std::vector{next}), Changes{});
    EXPECT_EQ(menu.find(lineId(next.identity))->action, MenuAction::refresh);
}

TEST(PublishedMenu, hidesWhatVanishesAndShowsItInItsPlaceWhenItReturns) {
    const std::vector lines = {
        line(LineRole::plan, "Plan"), line(LineRole::pressure, "Pressure"), quit()};
    auto menu = menuOf(lines);
    const auto pressureId = lineId({.role = LineRole::pressure});
    EXPECT_EQ(
        menu.update(std::vector{lines[0], lines[2]}),
        (Changes{{pressureId, {{"visible", false}}}}));
    EXPECT_EQ(visibleRoles(menu), (std::vector{LineRole::plan, LineRole::quit}));
    EXPECT_EQ(menu.lines().size(), 3U);
    EXPECT_EQ(menu.update(std::vector{lines[0], lines[2]}), Changes{});

    EXPECT_EQ(menu.update(lines), (Changes{{pressureId, {{"visible", true}}}}));
    EXPECT_FALSE(menu.hasWaitingLines());
    EXPECT_EQ(
        visibleRoles(menu), (std::vector{LineRole::plan, LineRole::pressure, LineRole::quit}));
}

TEST(PublishedMenu, hidesEverythingForAnEmptyMenu) {
    auto menu = menuOf({line(LineRole::plan, "Plan"), quit()});
    EXPECT_EQ(menu.update({}).size(), 2U);
    EXPECT_TRUE(visibleRoles(menu).empty());
}

TEST(PublishedMenu, putsNewLinesWhereTheyBelong) {
    auto menu = menuOf({line(LineRole::pressure, "Pressure"), quit()});
    const auto changes =
        menu.update(std::vector{line(LineRole::plan, "Plan"), bucket(0), bucket(1), quit()});
    EXPECT_EQ(changes.size(), 1U);
    EXPECT_TRUE(menu.hasWaitingLines());
    menu.publishWaitingLines();
    EXPECT_EQ(
        visibleRoles(menu),
        (std::vector{LineRole::plan, LineRole::bucket, LineRole::bucket, LineRole::quit}));
    EXPECT_EQ(menu.lines().size(), 5U);
    EXPECT_EQ(menu.lines()[1].identity.role, LineRole::pressure);
    EXPECT_EQ(menu.revision(), 2U);
}

TEST(PublishedMenu, neverHoldsATextTwiceWhileItPublishes) {
    const std::string title(4096, 'x');
    auto menu = menuOf({line(LineRole::plan, title), quit()});
    const auto* const before = menu.lines()[0].label.data();
    menu.update(std::vector{line(LineRole::plan, title), bucket(0), quit()});
    menu.publishWaitingLines();
    EXPECT_EQ(menu.lines()[0].label, title);
    EXPECT_EQ(menu.lines()[0].label.data(), before);
    EXPECT_EQ(menu.lines()[1].label, "Bucket");
}

TEST(PublishedMenu, forgetsAWaitingLineThatIsGoneAgain) {
    auto menu = menuOf({quit()});
    menu.update(std::vector{line(LineRole::plan, "Plan"), quit()});
    EXPECT_TRUE(menu.hasWaitingLines());
    EXPECT_EQ(menu.update(std::vector{quit()}), Changes{});
    EXPECT_FALSE(menu.hasWaitingLines());
}

TEST(PublishedMenu, findsOnlyLinesOfTheLayout) {
    auto menu = menuOf({quit()});
    menu.update(std::vector{line(LineRole::plan, "Plan"), quit()});
    ASSERT_NE(menu.find(lineId({.role = LineRole::quit})), nullptr);
    EXPECT_EQ(menu.find(lineId({.role = LineRole::quit}))->label, "Quit");
    EXPECT_EQ(menu.find(lineId({.role = LineRole::plan})), nullptr);
    EXPECT_EQ(menu.find(0), nullptr);
    EXPECT_EQ(menu.find(-5), nullptr);
}

TEST(PublishedMenu, publishesTheFirstThousandInformationalLines) {
    std::vector<MenuLine> lines;
    for (std::size_t index = 0; index < 1001; ++index) {
        lines.push_back(bucket(index));
    }
    lines.push_back(line(LineRole::separator, ""));
    lines.push_back(quit());
    const auto menu = menuOf(lines);
    EXPECT_EQ(menu.lines().size(), 1002U);
    EXPECT_EQ(menu.lines()[999].identity.bucket, 999U);
    EXPECT_EQ(menu.lines()[1000].identity.role, LineRole::separator);
}

/// A menu with `hidden` hidden bucket windows, the visible line "Quit", and one line that waits.
PublishedMenu menuWithHiddenLines(std::size_t hidden) {
    const auto windowsOf = [](std::size_t bucketIndex, std::size_t count) {
        std::vector<MenuLine> lines;
        for (std::size_t window = 0; window < count; ++window) {
            lines.push_back(line(
                LineIdentity{
                    .role = LineRole::bucketWindow, .bucket = bucketIndex, .window = window},
                "Window"));
        }
        lines.push_back(quit());
        return lines;
    };
    auto menu = menuOf(windowsOf(0, 1000));
    menu.update(windowsOf(1, hidden - 1000));
    menu.publishWaitingLines();
    menu.update(std::vector{line(LineRole::plan, "Plan"), quit()});
    return menu;
}

TEST(PublishedMenu, dropsHiddenLinesFromALayoutWithMoreThanAThousand) {
    auto full = menuWithHiddenLines(1000);
    full.publishWaitingLines();
    EXPECT_EQ(full.lines().size(), 1002U);

    auto overfull = menuWithHiddenLines(1001);
    EXPECT_EQ(overfull.lines().size(), 1002U);
    overfull.publishWaitingLines();
    EXPECT_EQ(visibleRoles(overfull), (std::vector{LineRole::plan, LineRole::quit}));
    EXPECT_EQ(overfull.lines().size(), 2U);
}

TEST(PublishedMenu, leavesOutValuesThatPanelsAssume) {
    EXPECT_EQ(withoutDefaults(allProperties({.enabled = true})), bus::Dictionary{});
    EXPECT_EQ(
        withoutDefaults(allProperties({.label = "Label", .enabled = false, .visible = false})),
        (bus::Dictionary{{"label", "Label"}, {"enabled", false}, {"visible", false}}));
}

} // namespace

} // namespace vorla
