// SPDX-License-Identifier: MIT
#include "bus/ItemFixture.h"

namespace vorla {

namespace {

using Names = std::vector<std::string>;
using Ids = std::vector<std::int32_t>;
using Event = ScriptedPanel::Event;
using Actions = std::vector<MenuAction>;

constexpr const char* invalidArguments = "org.freedesktop.DBus.Error.InvalidArgs";
constexpr std::int32_t unknownId = 999;

class DbusMenuEventsTest : public ItemFixture {
protected:
    static Event eventOf(LineRole role, const std::string& kind) {
        return {idOf(role), kind, bus::Variant(std::int32_t{0}), std::uint32_t{0}};
    }
};

TEST_F(DbusMenuEventsTest, tellsTheListenerThatTheMenuOpens) {
    item.show(usualMenu());
    panel.aboutToShow();
    EXPECT_EQ(listener.openings, 1);
    panel.sendEvent(0, "opened");
    EXPECT_EQ(listener.openings, 2);
    panel.sendEvent(0, "closed");
    panel.aboutToShow(idOf(LineRole::quit));
    EXPECT_EQ(listener.openings, 2);
}

TEST_F(DbusMenuEventsTest, answersThatALayoutChangedOnlyIfItDid) {
    showQuietly(usualMenu());
    EXPECT_FALSE(panel.aboutToShow());

    listener.whenOpening = [&] {
        auto menu = usualMenu();
        lineOf(menu, LineRole::plan).title = "Parlo Pro";
        item.show(menu);
    };
    EXPECT_FALSE(panel.aboutToShow());
    EXPECT_EQ(names(panel.newSignals()), Names{"ItemsPropertiesUpdated"});

    listener.whenOpening = [&] { item.show(menuWithNewLine()); };
    EXPECT_TRUE(panel.aboutToShow());
    EXPECT_EQ(names(panel.newSignals()), (Names{"ItemsPropertiesUpdated", "LayoutUpdated"}));
    EXPECT_FALSE(panel.aboutToShow());
}

TEST_F(DbusMenuEventsTest, bringsAWaitingLayoutOutWhenTheMenuIsAboutToShow) {
    showQuietly(usualMenu());
    panel.sendEvent(0, "opened");
    item.show(menuWithNewLine());
    EXPECT_EQ(names(panel.newSignals()), Names{});
    EXPECT_TRUE(panel.aboutToShow());
    EXPECT_EQ(names(panel.newSignals()), Names{"LayoutUpdated"});
}

TEST_F(DbusMenuEventsTest, refusesToShowAnUnknownLine) {
    item.show(usualMenu());
    EXPECT_EQ(panel.callMenu<bool>("AboutToShow", unknownId).error.name, invalidArguments);
    EXPECT_EQ(listener.openings, 0);
}

TEST_F(DbusMenuEventsTest, answersForAGroupOfLinesAboutToShow) {
    showQuietly(usualMenu());
    listener.whenOpening = [&] { item.show(menuWithNewLine()); };
    const auto reply =
        panel.callMenu<Ids, Ids>("AboutToShowGroup", Ids{0, idOf(LineRole::quit), unknownId});
    EXPECT_EQ(reply.results, (std::tuple<Ids, Ids>{{0}, {unknownId}}));
    const auto again = panel.callMenu<Ids, Ids>("AboutToShowGroup", Ids{0});
    EXPECT_EQ(again.results, (std::tuple<Ids, Ids>{{}, {}}));
}

TEST_F(DbusMenuEventsTest, takesAHundredLinesAboutToShowAtOnceAndRefusesMore) {
    showQuietly(usualMenu());
    Ids ids(99, unknownId);
    ids.push_back(0);
    const auto reply = panel.callMenu<Ids, Ids>("AboutToShowGroup", ids);
    EXPECT_EQ(reply.results, (std::tuple<Ids, Ids>{Ids{}, Ids(99, unknownId)}));
    EXPECT_EQ(listener.openings, 1);

    ids.push_back(unknownId);
    EXPECT_EQ(panel.callMenu<Ids>("AboutToShowGroup", ids).error.name, invalidArguments);
    EXPECT_EQ(listener.openings, 1);
}

TEST_F(DbusMenuEventsTest, runsTheActionOfAClickedLineOnce) {
    item.show(usualMenu());
    EXPECT_TRUE(panel.sendEvent(idOf(LineRole::openDashboard), "clicked"));
    EXPECT_EQ(listener.actions, Actions{MenuAction::openDashboard});
}

TEST_F(DbusMenuEventsTest, doesNothingForClicksOnLinesThatCannotBeChosen) {
    auto menu = usualMenu();
    lineOf(menu, LineRole::refresh).enabled = false;
    item.show(menu);
    erase(menu, LineRole::launchAtLogin);
    item.show(menu);
    EXPECT_TRUE(panel.sendEvent(idOf(LineRole::refresh), "clicked"));
    EXPECT_TRUE(panel.sendEvent(idOf(LineRole::launchAtLogin), "clicked"));
    EXPECT_TRUE(panel.sendEvent(idOf(LineRole::plan), "clicked"));
    EXPECT_TRUE(panel.sendEvent(idOf(LineRole::separator), "clicked"));
    EXPECT_TRUE(panel.sendEvent(0, "clicked"));
    EXPECT_EQ(listener.actions, Actions{});
}

TEST_F(DbusMenuEventsTest, ignoresEventsOtherThanClicks) {
    item.show(usualMenu());
    EXPECT_TRUE(panel.sendEvent(idOf(LineRole::quit), "hovered"));
    EXPECT_TRUE(panel.sendEvent(idOf(LineRole::quit), "opened"));
    EXPECT_TRUE(panel.sendEvent(0, "hovered"));
    EXPECT_EQ(listener.actions, Actions{});
    EXPECT_EQ(listener.openings, 0);
}

TEST_F(DbusMenuEventsTest, refusesEventsOnUnknownLines) {
    showQuietly(usualMenu());
    panel.sendEvent(0, "opened");
    item.show(menuWithNewLine());
    EXPECT_FALSE(panel.sendEvent(unknownId, "clicked"));
    EXPECT_FALSE(panel.sendEvent(-1, "clicked"));
    EXPECT_FALSE(panel.sendEvent(idOf(LineRole::pressure), "clicked"));
    EXPECT_EQ(listener.actions, Actions{});
}

TEST_F(DbusMenuEventsTest, takesSeveralEventsAtOnceAndListsUnknownLines) {
    item.show(usualMenu());
    const Event unknown = {unknownId, "clicked", bus::Variant("x"), std::uint32_t{7}};
    const auto reply = panel.callMenu<Ids>(
        "EventGroup", std::vector<Event>{
                          eventOf(LineRole::refresh, "clicked"), unknown,
                          eventOf(LineRole::plan, "hovered"), eventOf(LineRole::quit, "clicked")});
    EXPECT_EQ(reply.results, std::tuple<Ids>{{unknownId}});
    EXPECT_EQ(listener.actions, (Actions{MenuAction::refresh, MenuAction::quit}));
}

TEST_F(DbusMenuEventsTest, takesAHundredEventsAtOnceAndRefusesMore) {
    item.show(usualMenu());
    std::vector<Event> events(99, eventOf(LineRole::refresh, "clicked"));
    events.insert(events.begin(), {std::int32_t{0}, "opened", bus::Variant(std::int32_t{0}), 0U});
    EXPECT_EQ(panel.callMenu<Ids>("EventGroup", events).results, std::tuple<Ids>{Ids{}});
    EXPECT_EQ(listener.openings, 1);
    EXPECT_EQ(listener.actions, Actions(99, MenuAction::refresh));

    events.push_back(eventOf(LineRole::quit, "clicked"));
    EXPECT_EQ(panel.callMenu<Ids>("EventGroup", events).error.name, invalidArguments);
    EXPECT_EQ(listener.openings, 1);
    EXPECT_EQ(listener.actions, Actions(99, MenuAction::refresh));
}

TEST_F(DbusMenuEventsTest, takesEventDataOfAnyType) {
    item.show(usualMenu());
    const auto reply = panel.callMenu<>(
        "Event", idOf(LineRole::refresh), std::string("clicked"),
        bus::InVariant<std::map<std::string, std::tuple<double, bus::ObjectPath>>>{
            {{"a", {1.5, {"/b"}}}}},
        std::uint32_t{0});
    EXPECT_TRUE(reply.results);
    EXPECT_EQ(listener.actions, Actions{MenuAction::refresh});
}

TEST_F(DbusMenuEventsTest, doesNothingWithoutAListener) {
    item.show(usualMenu());
    item.setListener(nullptr);
    EXPECT_TRUE(panel.sendEvent(idOf(LineRole::refresh), "clicked"));
    EXPECT_TRUE(panel.sendEvent(0, "opened"));
    EXPECT_FALSE(panel.aboutToShow());
}

} // namespace

} // namespace vorla
