// SPDX-License-Identifier: MIT
#include "bus/ItemFixture.h"
#include "linux/FigureIcon.h"

namespace vorla {

namespace {

using Names = std::vector<std::string>;
using Pixels = std::vector<std::tuple<std::int32_t, std::int32_t, std::vector<std::uint8_t>>>;
using ToolTip = std::tuple<std::string, Pixels, std::string, std::string>;

class StatusNotifierItemTest : public ItemFixture {
protected:
    bool runUntilRegistered(const ScriptedPanel& watcher, std::size_t times) {
        return loop.runUntil([&] { return watcher.registrations.size() >= times; });
    }
};

TEST_F(StatusNotifierItemTest, runsWithoutAnyPanel) {
    item.show(usualMenu());
    EXPECT_TRUE(panel.catchUp());
    EXPECT_TRUE(panel.registrations.empty());
    EXPECT_EQ(panel.itemProperty<std::string>("Title"), "5h 87% · W 62%");
}

TEST_F(StatusNotifierItemTest, registersItsPathOnceThereIsSomethingToShow) {
    ASSERT_TRUE(panel.becomeWatcher());
    EXPECT_TRUE(panel.catchUp());
    EXPECT_TRUE(panel.registrations.empty());

    item.show(usualMenu());
    ASSERT_TRUE(runUntilRegistered(panel, 1));
    EXPECT_EQ(panel.registrations, Names{itemPath});

    item.show(usualMenu());
    EXPECT_TRUE(panel.catchUp());
    EXPECT_EQ(panel.registrations.size(), 1U);
}

TEST_F(StatusNotifierItemTest, registersWithAPanelThatComesLate) {
    item.show(usualMenu());
    EXPECT_TRUE(panel.catchUp());
    ASSERT_TRUE(panel.becomeWatcher());
    ASSERT_TRUE(runUntilRegistered(panel, 1));
    EXPECT_EQ(panel.registrations, Names{itemPath});
}

TEST_F(StatusNotifierItemTest, doesNotRegisterWithALatePanelBeforeItIsComplete) {
    EXPECT_TRUE(panel.catchUp());
    ASSERT_TRUE(panel.becomeWatcher());
    EXPECT_TRUE(panel.catchUp());
    EXPECT_TRUE(panel.catchUp());
    EXPECT_TRUE(panel.registrations.empty());
}

TEST_F(StatusNotifierItemTest, registersAgainWhenThePanelIsRestarted) {
    item.show(usualMenu());
    {
        ScriptedPanel first(loop, daemon.address());
        ASSERT_TRUE(first.becomeWatcher());
        ASSERT_TRUE(runUntilRegistered(first, 1));
    }
    ScriptedPanel second(loop, daemon.address());
    ASSERT_TRUE(loop.runUntil([&] { return second.becomeWatcher(); }));
    ASSERT_TRUE(runUntilRegistered(second, 1));
    EXPECT_EQ(second.registrations, Names{itemPath});
}

TEST_F(StatusNotifierItemTest, survivesAPanelThatRefusesItAndTriesTheNext) {
    {
        auto refusing = bus::Bus::open(loop.real(), daemon.address());
        ASSERT_TRUE(refusing.requestName("org.kde.StatusNotifierWatcher"));
        item.show(usualMenu());
        EXPECT_TRUE(panel.catchUp());
    }
    ASSERT_TRUE(loop.runUntil([&] { return panel.becomeWatcher(); }));
    EXPECT_TRUE(runUntilRegistered(panel, 1));
}

TEST_F(StatusNotifierItemTest, answersTwoPanelsAlike) {
    ScriptedPanel other(loop, daemon.address());
    ASSERT_TRUE(panel.becomeWatcher());
    item.show(usualMenu());
    EXPECT_EQ(panel.lines(), other.lines());
    EXPECT_EQ(other.itemProperty<std::string>("XAyatanaLabel"), "5h 87% · W 62%");
    panel.newSignals();
    other.newSignals();

    auto menu = usualMenu();
    menu.title = "5h 86% · W 62%";
    item.show(menu);
    const Names expected = {"XAyatanaNewLabel", "NewTitle", "NewToolTip"};
    EXPECT_EQ(names(panel.newSignals()), expected);
    EXPECT_EQ(names(other.newSignals()), expected);
}

TEST_F(StatusNotifierItemTest, hasThePropertiesThatPanelsReadInTheirTypes) {
    item.show(usualMenu());
    const std::string none;
    EXPECT_EQ(panel.itemProperty<std::string>("Category"), "ApplicationStatus");
    EXPECT_EQ(panel.itemProperty<std::string>("Id"), "VorlaUsageMenuBar");
    EXPECT_EQ(panel.itemProperty<std::string>("Title"), "5h 87% · W 62%");
    EXPECT_EQ(panel.itemProperty<std::string>("Status"), "Active");
    EXPECT_EQ(panel.itemProperty<std::int32_t>("WindowId"), 0);
    EXPECT_EQ(panel.itemProperty<std::string>("IconName"), none);
    EXPECT_EQ(panel.itemProperty<std::string>("IconThemePath"), none);
    EXPECT_EQ(panel.itemProperty<std::string>("OverlayIconName"), none);
    EXPECT_EQ(panel.itemProperty<Pixels>("OverlayIconPixmap"), Pixels{});
    EXPECT_EQ(panel.itemProperty<std::string>("AttentionIconName"), none);
    EXPECT_EQ(panel.itemProperty<Pixels>("AttentionIconPixmap"), Pixels{});
    EXPECT_EQ(panel.itemProperty<std::string>("AttentionMovieName"), none);
    EXPECT_EQ(panel.itemProperty<ToolTip>("ToolTip"), (ToolTip{"", {}, "5h 87% · W 62%", ""}));
    EXPECT_EQ(panel.itemProperty<bool>("ItemIsMenu"), true);
    EXPECT_EQ(panel.itemProperty<bus::ObjectPath>("Menu"), bus::ObjectPath{menuPath});
    EXPECT_EQ(panel.itemProperty<std::string>("XAyatanaLabel"), "5h 87% · W 62%");
    EXPECT_EQ(panel.itemProperty<std::string>("XAyatanaLabelGuide"), "5h 100% · W 100%");
    EXPECT_EQ(panel.itemProperty<std::uint32_t>("XAyatanaOrderingIndex"), 0U);
}

TEST_F(StatusNotifierItemTest, publishesThePaintedFigures) {
    item.show(usualMenu());
    Pixels expected;
    for (const auto& icon : figureIcons(std::vector<std::int64_t>{87, 62})) {
        expected.emplace_back(icon.width, icon.height, icon.argb);
    }
    EXPECT_FALSE(expected.empty());
    EXPECT_EQ(panel.itemProperty<Pixels>("IconPixmap"), expected);
}

TEST_F(StatusNotifierItemTest, answersAllPropertiesAtOnce) {
    item.show(usualMenu());
    const auto reply = panel.call<bus::Dictionary>(
        {applicationName, itemPath, "org.freedesktop.DBus.Properties", "GetAll"},
        std::string(itemInterface));
    ASSERT_TRUE(reply.results);
    const auto& properties = std::get<0>(*reply.results);
    EXPECT_EQ(properties.size(), 19U);
    EXPECT_EQ(properties.at("Title"), bus::Variant("5h 87% · W 62%"));
}

TEST_F(StatusNotifierItemTest, announcesTitleAndIconEachOnlyWhenItChanges) {
    auto menu = usualMenu();
    showQuietly(menu);

    menu.title = "5h 87% · W ?";
    item.show(menu);
    auto signals = panel.newSignals();
    EXPECT_EQ(names(signals), (Names{"XAyatanaNewLabel", "NewTitle", "NewToolTip"}));
    EXPECT_EQ(signals.front().texts, (Names{"5h 87% · W ?", "5h 100% · W 100%"}));

    menu.figures = {87};
    item.show(menu);
    EXPECT_EQ(names(panel.newSignals()), Names{"NewIcon"});
}

TEST_F(StatusNotifierItemTest, sendsNothingAtAllForTheSameMenu) {
    item.show(usualMenu());
    EXPECT_FALSE(panel.newSignals().empty());
    for (int repetition = 0; repetition < 3; ++repetition) {
        item.show(usualMenu());
    }
    EXPECT_EQ(names(panel.newSignals()), Names{});
}

TEST_F(StatusNotifierItemTest, keepsMarkupOutOfTheToolTip) {
    auto menu = usualMenu();
    menu.title = "a<b> & c_d";
    item.show(menu);
    EXPECT_EQ(panel.itemProperty<ToolTip>("ToolTip"), (ToolTip{"", {}, "ab  c_d", ""}));
    EXPECT_EQ(panel.itemProperty<std::string>("Title"), "a<b> & c_d");
}

TEST_F(StatusNotifierItemTest, showsATitleWithCharactersThatTheBusDoesNotTake) {
    showQuietly(usualMenu());
    auto menu = usualMenu();
    menu.title = "a\uFFFEb";
    item.show(menu);
    const auto signals = panel.newSignals();
    ASSERT_EQ(names(signals), (Names{"XAyatanaNewLabel", "NewTitle", "NewToolTip"}));
    EXPECT_EQ(signals.front().texts.front(), "a\uFFFDb");
    EXPECT_EQ(panel.itemProperty<std::string>("Title"), "a\uFFFDb");
    EXPECT_EQ(panel.itemProperty<ToolTip>("ToolTip"), (ToolTip{"", {}, "a\uFFFDb", ""}));
}

TEST_F(StatusNotifierItemTest, refusesToBeActivated) {
    item.show(usualMenu());
    for (const char* const member : {"Activate", "SecondaryActivate", "ContextMenu"}) {
        const auto reply = panel.callItem<>(member, std::int32_t{1}, std::int32_t{1});
        EXPECT_FALSE(reply.results) << member;
        EXPECT_EQ(reply.error.name, "org.freedesktop.DBus.Error.UnknownMethod") << member;
    }
}

TEST_F(StatusNotifierItemTest, canBeIntrospected) {
    const auto reply = panel.call<std::string>(
        {applicationName, itemPath, "org.freedesktop.DBus.Introspectable", "Introspect"});
    ASSERT_TRUE(reply.results);
    const std::string& text = std::get<0>(*reply.results);
    for (const char* const part :
         {"interface name=\"org.kde.StatusNotifierItem\"",
          "method name=\"ProvideXdgActivationToken\"",
          "property name=\"IconPixmap\" type=\"a(iiay)\"",
          "property name=\"ToolTip\" type=\"(sa(iiay)ss)\"", "property name=\"Menu\" type=\"o\"",
          "signal name=\"NewIcon\"", "signal name=\"XAyatanaNewLabel\""}) {
        EXPECT_NE(text.find(part), std::string::npos) << part;
    }
    EXPECT_EQ(text.find("Activate\""), std::string::npos);
    EXPECT_EQ(text.find("ContextMenu"), std::string::npos);
}

TEST_F(StatusNotifierItemTest, handsOutAnActivationTokenOnce) {
    EXPECT_EQ(item.takeActivationToken(), std::nullopt);
    EXPECT_TRUE(panel.callItem<>("ProvideXdgActivationToken", std::string("token")).results);
    EXPECT_EQ(item.takeActivationToken(), "token");
    EXPECT_EQ(item.takeActivationToken(), std::nullopt);
    EXPECT_EQ(loop.timerCount(), 0U);
}

TEST_F(StatusNotifierItemTest, keepsAnActivationTokenForTenSeconds) {
    panel.callItem<>("ProvideXdgActivationToken", std::string("first"));
    loop.advance(std::chrono::milliseconds{9'999});
    EXPECT_EQ(item.takeActivationToken(), "first");

    panel.callItem<>("ProvideXdgActivationToken", std::string("second"));
    loop.advance(std::chrono::milliseconds{10'000});
    EXPECT_EQ(item.takeActivationToken(), std::nullopt);
}

TEST_F(StatusNotifierItemTest, keepsTheLastActivationTokenFromItsOwnArrival) {
    panel.callItem<>("ProvideXdgActivationToken", std::string("first"));
    loop.advance(std::chrono::seconds{8});
    panel.callItem<>("ProvideXdgActivationToken", std::string("second"));
    loop.advance(std::chrono::seconds{8});
    EXPECT_EQ(item.takeActivationToken(), "second");
}

TEST_F(StatusNotifierItemTest, ignoresActivationTokensOfNoOrExcessiveLength) {
    const std::string longest(1024, 't');
    panel.callItem<>("ProvideXdgActivationToken", longest);
    panel.callItem<>("ProvideXdgActivationToken", longest + "t");
    panel.callItem<>("ProvideXdgActivationToken", std::string());
    EXPECT_EQ(item.takeActivationToken(), longest);
}

TEST_F(StatusNotifierItemTest, refusesArgumentsOfOtherTypesAndGoesOn) {
    item.show(usualMenu());
    const auto reply = panel.callItem<>("ProvideXdgActivationToken", std::uint32_t{1});
    EXPECT_EQ(reply.error.name, "org.freedesktop.DBus.Error.InvalidArgs");
    EXPECT_EQ(item.takeActivationToken(), std::nullopt);
    EXPECT_TRUE(panel.catchUp());
}

TEST_F(StatusNotifierItemTest, canStillBeShownAfterTheBusIsLost) {
    bool lost = false;
    applicationBus.onDisconnect([&] { lost = true; });
    item.show(usualMenu());
    daemon.stop();
    ASSERT_TRUE(loop.runUntil([&] { return lost; }));
    auto menu = usualMenu();
    menu.title = "Vorla ?";
    menu.figures = {};
    EXPECT_NO_THROW(item.show(menu));
}

TEST_F(StatusNotifierItemTest, canBeShownForTheFirstTimeAfterTheBusIsLost) {
    bool lost = false;
    applicationBus.onDisconnect([&] { lost = true; });
    daemon.stop();
    ASSERT_TRUE(loop.runUntil([&] { return lost; }));
    EXPECT_NO_THROW(item.show(usualMenu()));
}

} // namespace

} // namespace vorla
