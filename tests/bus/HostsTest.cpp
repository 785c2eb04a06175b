// SPDX-License-Identifier: MIT
// The item in every panel that is known: each is played by what has been seen of it.
#include "bus/ItemFixture.h"
#include "bus/PanelProcess.h"
#include "bus/ScriptedHost.h"
#include "linux/FigureIcon.h"
#include "linux/GaugeIcon.h"
#include "linux/TitleIcon.h"

#include <memory>

namespace vorla {

namespace {

using Names = std::vector<std::string>;
using Label = HostTraits::Label;
using Pick = HostTraits::Pick;
using OnLayout = HostTraits::OnLayout;
using Opening = HostTraits::Opening;
using LeftClick = HostTraits::LeftClick;

const HostTraits::Names everything = {"Title", "IconName", "IconPixmap", "XAyatanaLabel"};
const HostTraits::Names icon = {"IconName", "IconPixmap"};

std::map<std::string, HostTraits::Names> allOn(const std::set<std::string>& signals) {
    std::map<std::string, HostTraits::Names> rereads;
    for (const auto& signal : signals) {
        rereads[signal] = everything;
    }
    return rereads;
}

const std::set<std::string> usual = {"NewIcon", "NewTitle", "NewToolTip"};
const std::set<std::string> any = {"NewIcon", "NewTitle", "NewToolTip", "XAyatanaNewLabel"};

const std::vector<HostTraits>& hosts() {
    static const std::vector<HostTraits> all = {
        {.name = "Gnome",
         .commandName = "gnome-shell",
         .label = Label::besideTheIcon,
         .pick = Pick::smallestThatFits,
         .rereads = {{"NewIcon", icon}, {"NewTitle", {"Title"}}},
         .onLayout = OnLayout::keepsOldLabels},
        {.name = "Plasma",
         .commandName = "plasmashell",
         .pick = Pick::smallestThatFits,
         .rereads = allOn(usual),
         .leftClick = LeftClick::opensItIfActivateFails},
        {.name = "Waybar",
         .commandName = "waybar",
         .rereads = allOn(usual),
         .opening = Opening::toldInGroups},
        {.name = "Xfce",
         .commandName = "panel-6-systray",
         .rereads = allOn(any),
         .opening = Opening::toldInGroups},
        {.name = "Lxqt",
         .commandName = "lxqt-panel",
         .pick = Pick::smallestThatFits,
         .rereads = {{"NewIcon", icon}, {"NewTitle", {"Title"}}},
         .onLayout = OnLayout::closesTheMenu,
         .leftClick = LeftClick::onlyActivates},
        {.name = "MateIndicator",
         .commandName = "ayatana-indicat",
         .label = Label::besideTheIcon,
         .pick = Pick::fileOnly,
         .rereads = {{"NewIcon", icon}},
         .opening = Opening::toldInGroups},
        {.name = "MateTray",
         .commandName = "notification-ar",
         .label = Label::insteadOfTheIcon,
         .rereads = {{"NewIcon", icon}, {"NewTitle", {"Title"}}}},
        {.name = "Xapp",
         .commandName = "xapp-sn-watcher",
         .rereads = allOn(usual),
         .leftClick = LeftClick::opensItBelowOnePath},
        {.name = "BudgieIndicator",
         .commandName = "ayatana-indicat",
         .label = Label::besideTheIcon,
         .pick = Pick::fileOnly,
         .rereads = {{"NewIcon", icon}},
         .opening = Opening::toldInGroups},
        {.name = "Swaybar",
         .commandName = "swaybar",
         .pick = Pick::largestSquare,
         .rereads = {{"NewIcon", icon}},
         .hasMenu = false},
        {.name = "Sfwbar",
         .commandName = "sfwbar",
         .label = Label::besideTheIcon,
         .rereads = {{"NewIcon", icon}},
         .opening = Opening::untold},
        {.name = "Quickshell",
         .commandName = "quickshell",
         .rereads = {{"NewIcon", icon}},
         .opening = Opening::untold},
    };
    return all;
}

const HostTraits& traitsOf(const std::string& name) {
    return *std::ranges::find(hosts(), name, &HostTraits::name);
}

/// What a panel has to show for a title and its figures.
struct Expected {
    std::string text = {};
    std::string file = {};
    Pixmap pixmap = {};
};

class HostsTest : public ItemFixture, public testing::WithParamInterface<HostTraits> {
protected:
    static constexpr const char* iconFile = "/usr/share/icons/of-the-program.svg";

    void SetUp() override {
        item.show(usualMenu());
        startHost();
    }

    void startHost() {
        host = std::make_unique<ScriptedHost>(loop, daemon.address(), GetParam());
        ASSERT_TRUE(loop.runUntil([&] { return host->appear(); }));
        ASSERT_TRUE(loop.runUntil([&] { return host->knowsTheItem(); }));
        settle();
    }

    /// Also lets the item find out who its panel is: two answers from the bus.
    void settle() {
        for (int round = 0; round < 4; ++round) {
            host->settle();
            panel.catchUp();
        }
    }

    static Pixmap ofSize(const std::vector<Pixmap>& pixmaps, int size) {
        return *std::ranges::find(pixmaps, size, &Pixmap::width);
    }

    Expected expected(const StatusMenu& menu) const {
        const std::string& name = GetParam().name;
        if (name == "Gnome") {
            return {.text = menu.title, .pixmap = ofSize(gaugeIcons(menu.figures), 22)};
        }
        if (name == "MateIndicator" || name == "BudgieIndicator") {
            return {.text = menu.title, .file = iconFile};
        }
        if (name == "MateTray") {
            return {.text = menu.title};
        }
        if (name == "Waybar" || name == "Xapp") {
            return {.pixmap = titleIcon(menu.title)};
        }
        // The largest, which the panel shrinks, or the one of its own size.
        const bool takesItsOwn = GetParam().pick == Pick::smallestThatFits;
        return {
            .text = name == "Sfwbar" ? menu.title : "",
            .pixmap = ofSize(figureIcons(menu.figures), takesItsOwn ? 22 : 64)};
    }

    void expectShown(const StatusMenu& menu) const {
        const Expected wanted = expected(menu);
        EXPECT_EQ(host->shownText(), wanted.text);
        EXPECT_EQ(host->shownFile(), wanted.file);
        EXPECT_TRUE(host->shownPixmap() == wanted.pixmap);
        if (host->rereadsTitle()) {
            EXPECT_EQ(host->title(), menu.title);
        }
    }

    void expectLines(const StatusMenu& menu) const {
        Names titles;
        for (const auto& line : menu.lines) {
            titles.push_back(line.title);
        }
        EXPECT_EQ(host->shownLines(), GetParam().hasMenu ? titles : Names{});
    }

    static StatusMenu laterMenu() {
        auto menu = usualMenu();
        menu.title = "5h 9% · W 61%";
        menu.figures = {9, 61};
        lineOf(menu, LineRole::fiveHourRemaining).title = "5-hour: 9% remaining";
        lineOf(menu, LineRole::weeklyRemaining).title = "Weekly: 61% remaining";
        return menu;
    }

    std::unique_ptr<ScriptedHost> host;
};

TEST_P(HostsTest, showsTheFiguresAndTheMenu) {
    expectShown(usualMenu());
    expectLines(usualMenu());
}

TEST_P(HostsTest, followsTheFigures) {
    item.show(laterMenu());
    settle();
    expectShown(laterMenu());
    expectLines(laterMenu());

    StatusMenu unknown = {.title = "Vorla ?", .figures = {}, .lines = laterMenu().lines};
    item.show(unknown);
    settle();
    expectShown(unknown);
}

TEST_P(HostsTest, hearsNothingWhileNothingChanges) {
    host->newSignals();
    for (int repetition = 0; repetition < 3; ++repetition) {
        item.show(usualMenu());
    }
    settle();
    EXPECT_EQ(host->newSignals(), Names{});
}

TEST_P(HostsTest, hearsOfANewIconOnlyIfItsPixelsChanged) {
    host->newSignals();
    auto menu = usualMenu();
    menu.title = "5h 87% · W ?";
    item.show(menu);
    settle();
    Names signals = {"XAyatanaNewLabel", "NewTitle", "NewToolTip"};
    if (expected(menu).pixmap == titleIcon(menu.title)) {
        signals.emplace_back("NewIcon");
    }
    EXPECT_EQ(host->newSignals(), signals);
    expectShown(menu);
}

TEST_P(HostsTest, keepsAnOpenMenuOpenAndCurrentWhileFiguresChange) {
    host->openMenu();
    ASSERT_EQ(host->isOpen(), GetParam().hasMenu);
    const int layouts = host->layoutsTaken;
    auto menu = laterMenu();
    item.show(menu);
    settle();
    expectLines(menu);

    // A line that vanishes is gone from the open menu at once.
    erase(menu, LineRole::fiveHourReset);
    item.show(menu);
    settle();
    expectLines(menu);

    // And back in its place.
    item.show(laterMenu());
    settle();
    expectLines(laterMenu());
    EXPECT_EQ(host->layoutsTaken, layouts) << "the menu was built anew";
    EXPECT_EQ(host->isOpen(), GetParam().hasMenu);
}

TEST_P(HostsTest, addsANewLineWithoutClosingAnOpenMenu) {
    host->openMenu();
    item.show(menuWithNewLine());
    settle();
    EXPECT_EQ(host->isOpen(), GetParam().hasMenu);
    host->closeMenu();
    settle();
    expectLines(menuWithNewLine());
}

TEST_P(HostsTest, hasFreshFiguresWhenTheMenuOpens) {
    listener.whenOpening = [this] { item.show(laterMenu()); };
    host->openMenu();
    settle();
    expectLines(GetParam().hasMenu ? laterMenu() : usualMenu());
}

TEST_P(HostsTest, opensTheMenuWithALeftClickWhereThePanelAllowsIt) {
    const bool cannot = GetParam().leftClick == LeftClick::onlyActivates || !GetParam().hasMenu;
    EXPECT_EQ(host->leftClick(), !cannot);
    host->openMenu();
    EXPECT_EQ(host->isOpen(), GetParam().hasMenu);
}

TEST_P(HostsTest, isThereAgainAfterThePanelWasRestarted) {
    host.reset();
    item.show(laterMenu());
    startHost();
    expectShown(laterMenu());
    expectLines(laterMenu());
}

INSTANTIATE_TEST_SUITE_P(All, HostsTest, testing::ValuesIn(hosts()), [](const auto& parameter) {
    return parameter.param.name;
});

using SeveralHostsTest = ItemFixture;

TEST_F(SeveralHostsTest, getAnIconThatEachOfThemCanShow) {
    item.show(usualMenu());
    ScriptedHost waybar(loop, daemon.address(), traitsOf("Waybar"));
    ASSERT_TRUE(waybar.appear());
    const auto shows = [&](const Pixmap& pixmap) {
        return loop.runUntil([&] { return waybar.shownPixmap() == pixmap; });
    };
    EXPECT_TRUE(shows(titleIcon("5h 87% · W 62%")));
    {
        // It would shrink the title to the width of a square.
        const PanelProcess xfce(
            "panel-6-systray", daemon.address(), {"org.kde.StatusNotifierHost-2"});
        EXPECT_TRUE(shows(figureIcons(usualMenu().figures).back()));
    }
    EXPECT_TRUE(shows(titleIcon("5h 87% · W 62%")));
}

} // namespace

} // namespace vorla
