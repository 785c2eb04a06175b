// SPDX-License-Identifier: MIT
#include "bus/ItemFixture.h"

namespace vorla {

namespace {

using Names = std::vector<std::string>;
using Ids = std::vector<std::int32_t>;
using Changes = std::vector<PublishedMenu::Change>;
using Layout = ScriptedPanel::Layout;
using Actions = std::vector<MenuAction>;

constexpr const char* invalidArguments = "org.freedesktop.DBus.Error.InvalidArgs";
constexpr std::int32_t unknownId = 999;

using DbusMenuTest = ItemFixture;

TEST_F(DbusMenuTest, describesItself) {
    item.show(usualMenu());
    const auto property = [&]<typename Value>(const char* name, const Value&) {
        return panel.property<Value>(menuPath, menuInterface, name);
    };
    EXPECT_EQ(property("Version", std::uint32_t{}), 3U);
    EXPECT_EQ(property("TextDirection", std::string{}), "ltr");
    EXPECT_EQ(property("Status", std::string{}), "normal");
    EXPECT_EQ(property("IconThemePath", Names{}), Names{});
}

TEST_F(DbusMenuTest, canBeIntrospected) {
    const auto reply = panel.call<std::string>(
        {applicationName, menuPath, "org.freedesktop.DBus.Introspectable", "Introspect"});
    ASSERT_TRUE(reply.results);
    for (const char* const part :
         {"method name=\"GetLayout\"", "type=\"(ia{sv}av)\" direction=\"out\"",
          "method name=\"GetGroupProperties\"", "method name=\"EventGroup\"",
          "type=\"a(isvu)\" direction=\"in\"", "method name=\"AboutToShowGroup\"",
          "signal name=\"ItemsPropertiesUpdated\"", "type=\"a(ia{sv})\"", "type=\"a(ias)\"",
          "signal name=\"LayoutUpdated\"", "signal name=\"ItemActivationRequested\""}) {
        EXPECT_NE(std::get<0>(*reply.results).find(part), std::string::npos) << part;
    }
}

TEST_F(DbusMenuTest, laysOutTheLinesInTheirOrder) {
    item.show(usualMenu());
    Names labels;
    for (const auto& [id, properties, children] : panel.lines()) {
        const auto label = properties.find("label");
        labels.push_back(label == properties.end() ? "-" : std::get<std::string>(label->second));
    }
    EXPECT_EQ(
        labels,
        (Names{
            "Parlo Plus", "5-hour: 87% remaining", "Resets in 3h 5m", "Weekly: 62% remaining", "-",
            "Refresh", "Open Dashboard", "Launch at Login", "Quit"}));
}

TEST_F(DbusMenuTest, tellsOnlyPropertiesThatPanelsDoNotAssume) {
    item.show(usualMenu());
    EXPECT_EQ(
        propertiesOf(LineRole::plan),
        (bus::Dictionary{{"label", "Parlo Plus"}, {"enabled", false}}));
    EXPECT_EQ(
        propertiesOf(LineRole::separator),
        (bus::Dictionary{{"type", "separator"}, {"enabled", false}}));
    EXPECT_EQ(propertiesOf(LineRole::refresh), (bus::Dictionary{{"label", "Refresh"}}));
    EXPECT_EQ(
        propertiesOf(LineRole::launchAtLogin), (bus::Dictionary{
                                                   {"label", "Launch at Login"},
                                                   {"toggle-type", "checkmark"},
                                                   {"toggle-state", std::int32_t{0}}}));
    EXPECT_EQ(
        propertiesOf(LineRole::quit),
        (bus::Dictionary{{"label", "Quit"}, {"shortcut", std::vector<Names>{{"Control", "q"}}}}));
}

TEST_F(DbusMenuTest, writesLabelsByThePanelsRules) {
    auto menu = usualMenu();
    lineOf(menu, LineRole::plan).title = "a_b\tc & <d>\ne";
    lineOf(menu, LineRole::fiveHourReset).title = std::string(5000, 'x');
    item.show(menu);
    EXPECT_EQ(propertiesOf(LineRole::plan)->at("label"), bus::Variant("a__b c & <d>\ne"));
    EXPECT_EQ(
        propertiesOf(LineRole::fiveHourReset)->at("label"), bus::Variant(std::string(4096, 'x')));
}

TEST_F(DbusMenuTest, showsLinesWithCharactersThatTheBusDoesNotTake) {
    auto menu = usualMenu();
    insert(
        menu, {.identity = {.role = LineRole::bucket, .bucket = 0},
               .title = "Bucket \uFFFF of \U0010FFFE"});
    insert(menu, informational(LineRole::error, "not \uFDD0 logged in"));
    showQuietly(menu);
    EXPECT_EQ(panel.lines().size(), 11U);
    EXPECT_EQ(propertiesOf(LineRole::error)->at("label"), bus::Variant("not \uFFFD logged in"));
    EXPECT_EQ(propertiesOf(LineRole::bucket)->at("label"), bus::Variant("Bucket \uFFFD of \uFFFD"));

    lineOf(menu, LineRole::error).title = "\uFDEF";
    item.show(menu);
    const auto signals = panel.newSignals();
    ASSERT_EQ(names(signals), Names{"ItemsPropertiesUpdated"});
    EXPECT_EQ(signals[0].changes, (Changes{{idOf(LineRole::error), {{"label", "\uFFFD"}}}}));
}

TEST_F(DbusMenuTest, honoursParentDepthAndNamesOfALayoutRequest) {
    item.show(usualMenu());
    const auto layoutOf = [&](std::int32_t parent, std::int32_t depth, const Names& names) {
        const auto reply = panel.callMenu<std::uint32_t, Layout>("GetLayout", parent, depth, names);
        return std::get<1>(reply.results.value());
    };
    const auto [rootId, rootProperties, noChildren] = layoutOf(0, 0, {});
    EXPECT_EQ(rootId, 0);
    EXPECT_EQ(rootProperties, (bus::Dictionary{{"children-display", "submenu"}}));
    EXPECT_TRUE(noChildren.empty());

    const auto [id, properties, children] = layoutOf(0, 1, {"enabled", "unheard-of"});
    EXPECT_TRUE(properties.empty());
    ASSERT_EQ(children.size(), 9U);
    EXPECT_EQ(std::get<1>(children.front().value), (bus::Dictionary{{"enabled", false}}));

    const auto [leafId, leafProperties, leafChildren] = layoutOf(idOf(LineRole::refresh), -1, {});
    EXPECT_EQ(leafId, idOf(LineRole::refresh));
    EXPECT_EQ(leafProperties, (bus::Dictionary{{"label", "Refresh"}}));
    EXPECT_TRUE(leafChildren.empty());
}

TEST_F(DbusMenuTest, refusesTheLayoutOfAnUnknownLine) {
    item.show(usualMenu());
    const auto reply =
        panel.callMenu<std::uint32_t, Layout>("GetLayout", unknownId, std::int32_t{-1}, Names{});
    EXPECT_EQ(reply.error.name, invalidArguments);
}

TEST_F(DbusMenuTest, answersPropertiesOfSeveralLines) {
    item.show(usualMenu());
    const auto properties = [&](const Ids& ids, const Names& names) {
        const auto reply = panel.callMenu<Changes>("GetGroupProperties", ids, names);
        return std::get<0>(reply.results.value());
    };
    const auto quit = idOf(LineRole::quit);
    const auto refresh = idOf(LineRole::refresh);
    EXPECT_EQ(
        properties({quit, unknownId, refresh, quit, 0}, {"label", "children-display"}),
        (Changes{
            {0, {{"children-display", "submenu"}}},
            {refresh, {{"label", "Refresh"}}},
            {quit, {{"label", "Quit"}}}}));
    EXPECT_EQ(properties({}, {}).size(), 10U);
}

TEST_F(DbusMenuTest, looksForAHundredNamesAtOnceAndRefusesMore) {
    item.show(usualMenu());
    const auto ofAGroup = [&](const Names& names) {
        return panel.callMenu<Changes>("GetGroupProperties", Ids{idOf(LineRole::quit)}, names);
    };
    const auto ofTheLayout = [&](const Names& names) {
        return panel.callMenu<std::uint32_t, Layout>(
            "GetLayout", std::int32_t{0}, std::int32_t{-1}, names);
    };
    Names names(99, "unheard-of");
    names.emplace_back("label");
    EXPECT_EQ(
        std::get<0>(ofAGroup(names).results.value()),
        (Changes{{idOf(LineRole::quit), {{"label", "Quit"}}}}));
    const auto [id, properties, children] = std::get<1>(ofTheLayout(names).results.value());
    EXPECT_EQ(std::get<1>(children.back().value), (bus::Dictionary{{"label", "Quit"}}));

    // As many as this would take minutes to look for.
    names.resize(1'000'000, "unheard-of");
    EXPECT_EQ(ofAGroup(names).error.name, invalidArguments);
    EXPECT_EQ(ofTheLayout(names).error.name, invalidArguments);
    names.resize(101);
    EXPECT_EQ(ofAGroup(names).error.name, invalidArguments);
    EXPECT_EQ(ofTheLayout(names).error.name, invalidArguments);
}

TEST_F(DbusMenuTest, answersASinglePropertyEvenIfItIsTheDefault) {
    item.show(usualMenu());
    const auto property = [&](std::int32_t id, const std::string& name) {
        return panel.callMenu<bus::Variant>("GetProperty", id, name);
    };
    const auto refresh = idOf(LineRole::refresh);
    EXPECT_EQ(std::get<0>(*property(refresh, "label").results), bus::Variant("Refresh"));
    EXPECT_EQ(std::get<0>(*property(refresh, "enabled").results), bus::Variant(true));
    EXPECT_EQ(std::get<0>(*property(0, "children-display").results), bus::Variant("submenu"));
    EXPECT_EQ(property(refresh, "colour").error.name, invalidArguments);
    EXPECT_EQ(property(unknownId, "label").error.name, invalidArguments);
}

TEST_F(DbusMenuTest, sendsOnlyTheChangedPropertiesOfChangedLines) {
    auto menu = usualMenu();
    showQuietly(menu);
    lineOf(menu, LineRole::fiveHourRemaining).title = "5-hour: 86% remaining";
    lineOf(menu, LineRole::refresh).title = "Refreshing…";
    lineOf(menu, LineRole::refresh).enabled = false;
    lineOf(menu, LineRole::launchAtLogin).checked = true;
    item.show(menu);

    auto signals = panel.newSignals();
    ASSERT_EQ(names(signals), Names{"ItemsPropertiesUpdated"});
    EXPECT_EQ(
        signals[0].changes,
        (Changes{
            {idOf(LineRole::fiveHourRemaining), {{"label", "5-hour: 86% remaining"}}},
            {idOf(LineRole::refresh), {{"label", "Refreshing…"}, {"enabled", false}}},
            {idOf(LineRole::launchAtLogin), {{"toggle-state", std::int32_t{1}}}}}));
    EXPECT_TRUE(signals[0].removed.empty());

    lineOf(menu, LineRole::refresh).enabled = true;
    item.show(menu);
    signals = panel.newSignals();
    ASSERT_EQ(names(signals), Names{"ItemsPropertiesUpdated"});
    EXPECT_EQ(signals[0].changes, (Changes{{idOf(LineRole::refresh), {{"enabled", true}}}}));
}

TEST_F(DbusMenuTest, hidesAVanishedLineAtOnceAndShowsItAgainWithFreshText) {
    auto menu = usualMenu();
    showQuietly(menu);
    panel.sendEvent(0, "opened");
    auto without = menu;
    erase(without, LineRole::fiveHourReset);
    item.show(without);
    auto signals = panel.newSignals();
    ASSERT_EQ(names(signals), Names{"ItemsPropertiesUpdated"});
    EXPECT_EQ(signals[0].changes, (Changes{{idOf(LineRole::fiveHourReset), {{"visible", false}}}}));
    EXPECT_EQ(propertiesOf(LineRole::fiveHourReset)->at("visible"), bus::Variant(false));

    lineOf(menu, LineRole::fiveHourReset).title = "Reset due now";
    item.show(menu);
    signals = panel.newSignals();
    ASSERT_EQ(names(signals), Names{"ItemsPropertiesUpdated"});
    EXPECT_EQ(
        signals[0].changes,
        (Changes{
            {idOf(LineRole::fiveHourReset), {{"visible", true}, {"label", "Reset due now"}}}}));
}

TEST_F(DbusMenuTest, sendsANewLayoutTogetherWithTheChangesWhenALineIsNew) {
    showQuietly(usualMenu());
    auto menu = menuWithNewLine();
    lineOf(menu, LineRole::plan).title = "Parlo Pro";
    item.show(menu);
    const auto signals = panel.newSignals();
    ASSERT_EQ(names(signals), (Names{"ItemsPropertiesUpdated", "LayoutUpdated"}));
    EXPECT_EQ(signals[0].changes, (Changes{{idOf(LineRole::plan), {{"label", "Parlo Pro"}}}}));
    EXPECT_EQ(signals[1].revision, 2U);
    EXPECT_EQ(signals[1].parent, 0);
    EXPECT_EQ(panel.lines().size(), 10U);
}

TEST_F(DbusMenuTest, keepsTheIdsOfAllLinesWhileOthersComeAndGo) {
    auto menu = menuWithNewLine();
    showQuietly(usualMenu());
    std::vector<std::pair<std::int32_t, bus::Dictionary>> before;
    for (const auto& [id, properties, children] : panel.lines()) {
        before.emplace_back(id, properties);
    }
    item.show(menu);
    erase(menu, LineRole::plan);
    item.show(menu);
    item.show(menuWithNewLine());
    std::vector<std::pair<std::int32_t, bus::Dictionary>> after;
    for (const auto& [id, properties, children] : panel.lines()) {
        if (id != idOf(LineRole::pressure)) {
            after.emplace_back(id, properties);
        }
    }
    EXPECT_EQ(before, after);
}

TEST_F(DbusMenuTest, holdsANewLayoutBackUntilTheOpenMenuIsClosed) {
    showQuietly(usualMenu());
    ASSERT_TRUE(panel.sendEvent(0, "opened"));
    auto menu = menuWithNewLine();
    lineOf(menu, LineRole::plan).title = "Parlo Pro";
    item.show(menu);
    EXPECT_EQ(names(panel.newSignals()), Names{"ItemsPropertiesUpdated"});
    EXPECT_EQ(panel.lines().size(), 9U);

    ASSERT_TRUE(panel.sendEvent(0, "closed"));
    EXPECT_EQ(names(panel.newSignals()), Names{"LayoutUpdated"});
    EXPECT_EQ(panel.lines().size(), 10U);
    EXPECT_EQ(loop.timerCount(), 0U);
}

TEST_F(DbusMenuTest, bringsTheLayoutOutTenSecondsAfterAnOpeningThatNeverEnds) {
    showQuietly(usualMenu());
    ASSERT_TRUE(panel.sendEvent(0, "opened"));
    loop.advance(std::chrono::milliseconds{3'000});
    item.show(menuWithNewLine());
    loop.advance(std::chrono::milliseconds{6'999});
    EXPECT_EQ(names(panel.newSignals()), Names{});
    loop.advance(std::chrono::milliseconds{1});
    EXPECT_EQ(names(panel.newSignals()), Names{"LayoutUpdated"});

    // From then on the menu counts as closed.
    auto menu = menuWithNewLine();
    insert(menu, informational(LineRole::spendControlReached, "Spend-control limit reached"));
    item.show(menu);
    EXPECT_EQ(names(panel.newSignals()), Names{"LayoutUpdated"});
}

TEST_F(DbusMenuTest, neverKeepsALayoutWaitingBeyondTheNextOpening) {
    showQuietly(usualMenu());
    ASSERT_TRUE(panel.sendEvent(0, "opened"));
    item.show(menuWithNewLine());
    loop.advance(std::chrono::seconds{9});
    ASSERT_TRUE(panel.sendEvent(0, "opened"));
    EXPECT_EQ(names(panel.newSignals()), Names{"LayoutUpdated"});
}

TEST_F(DbusMenuTest, sendsNoLayoutForALineThatIsGoneBeforeTheMenuIsClosed) {
    showQuietly(usualMenu());
    ASSERT_TRUE(panel.sendEvent(0, "opened"));
    item.show(menuWithNewLine());
    item.show(usualMenu());
    ASSERT_TRUE(panel.sendEvent(0, "closed"));
    EXPECT_EQ(names(panel.newSignals()), Names{});
}

TEST_F(DbusMenuTest, refusesArgumentsOfOtherTypesAndGoesOn) {
    item.show(usualMenu());
    const std::string text = "text";
    EXPECT_EQ(panel.callMenu<>("Event", text).error.name, invalidArguments);
    EXPECT_EQ(panel.callMenu<>("EventGroup", Ids{1}).error.name, invalidArguments);
    EXPECT_EQ(panel.callMenu<>("AboutToShow", std::uint32_t{0}).error.name, invalidArguments);
    EXPECT_EQ(panel.callMenu<>("AboutToShowGroup").error.name, invalidArguments);
    EXPECT_EQ(panel.callMenu<>("GetLayout", std::int32_t{0}).error.name, invalidArguments);
    EXPECT_EQ(panel.callMenu<>("GetGroupProperties", text, text).error.name, invalidArguments);
    EXPECT_EQ(panel.callMenu<>("GetProperty", text, text).error.name, invalidArguments);
    EXPECT_EQ(panel.callMenu<>("Close").error.name, "org.freedesktop.DBus.Error.UnknownMethod");
    EXPECT_EQ(panel.lines().size(), 9U);
    EXPECT_EQ(listener.openings, 0);
}

TEST_F(DbusMenuTest, publishesAThousandInformationalLinesAndAllActions) {
    auto menu = usualMenu();
    menu.lines.erase(menu.lines.begin(), menu.lines.begin() + 4);
    std::vector<MenuLine> buckets;
    for (std::size_t index = 0; index < 5000; ++index) {
        buckets.push_back(
            {.identity = {.role = LineRole::bucket, .bucket = index},
             .title = "Bucket " + std::to_string(index)});
    }
    menu.lines.insert(menu.lines.begin(), buckets.begin(), buckets.end());
    item.show(menu);

    const auto lines = panel.lines();
    ASSERT_EQ(lines.size(), 1005U);
    EXPECT_EQ(std::get<1>(lines[999]).at("label"), bus::Variant("Bucket 999"));
    EXPECT_EQ(std::get<1>(lines[1000]).at("type"), bus::Variant("separator"));
    EXPECT_EQ(std::get<1>(lines[1004]).at("label"), bus::Variant("Quit"));
    EXPECT_TRUE(panel.sendEvent(idOf(LineRole::quit), "clicked"));
    EXPECT_EQ(listener.actions, Actions{MenuAction::quit});

    panel.newSignals();
    item.show(menu);
    EXPECT_EQ(names(panel.newSignals()), Names{});
}

} // namespace

} // namespace vorla
