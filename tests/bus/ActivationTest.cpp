// SPDX-License-Identifier: MIT
#include "bus/ItemFixture.h"
#include "model/ScopedVariable.h"

#include <unistd.h>

namespace vorla {
namespace {

using Tokens = std::vector<std::optional<std::string>>;
using Event = ScriptedPanel::Event;

/// Takes the item's token whenever a line is chosen, as often as it is told to.
class TokenTaker final : public StatusItem::Listener {
public:
    explicit TokenTaker(StatusItem& item) : item_(item) {}

    void menuWillOpen() override { tokensOfOpenings.push_back(item_.takeActivationToken()); }

    void chosen(MenuAction) override {
        for (int count = 0; count < times; ++count) {
            tokens.push_back(item_.takeActivationToken());
        }
    }

    int times = 1;
    Tokens tokens;
    Tokens tokensOfOpenings;

private:
    StatusItem& item_;
};

class ActivationTest : public ItemFixture {
protected:
    ActivationTest() {
        item.setListener(&taker);
        item.show(usualMenu());
    }

    ~ActivationTest() override { item.setListener(nullptr); }

    void sendEvent(std::int32_t id, const std::string& kind, std::uint32_t time) {
        const bus::Variant nothing(std::int32_t{0});
        EXPECT_TRUE(panel.callMenu<>("Event", id, kind, nothing, time).results);
    }

    void choose(std::uint32_t time) { sendEvent(idOf(LineRole::refresh), "clicked", time); }

    void provide(const std::string& token) {
        EXPECT_TRUE(panel.callItem<>("ProvideXdgActivationToken", token).results);
    }

    static std::string ownId(const std::string& time) {
        return "VorlaUsageMenuBar-" + std::to_string(getpid()) + "_TIME" + time;
    }

    TokenTaker taker{item};

private:
    ScopedVariable display_{"WAYLAND_DISPLAY", std::nullopt};
};

TEST_F(ActivationTest, isAnIdWithTheTimeOfTheChoice) {
    choose(1);
    choose(4294967295U);
    EXPECT_EQ(taker.tokens, (Tokens{ownId("1"), ownId("4294967295")}));
}

TEST_F(ActivationTest, isNothingForAChoiceOfUnknownTime) {
    choose(7);
    choose(0);
    EXPECT_EQ(taker.tokens, (Tokens{ownId("7"), std::nullopt}));
}

TEST_F(ActivationTest, isGoodOnceAChoice) {
    taker.times = 2;
    choose(7);
    choose(8);
    EXPECT_EQ(taker.tokens, (Tokens{ownId("7"), std::nullopt, ownId("8"), std::nullopt}));
}

TEST_F(ActivationTest, isForgottenAfterAChoiceThatDidNotNeedIt) {
    taker.times = 0;
    choose(7);
    EXPECT_EQ(item.takeActivationToken(), std::nullopt);
}

TEST_F(ActivationTest, comesFromNoEventOtherThanAChoice) {
    sendEvent(0, "opened", 7);
    sendEvent(idOf(LineRole::refresh), "hovered", 8);
    sendEvent(idOf(LineRole::plan), "clicked", 9);
    EXPECT_EQ(taker.tokensOfOpenings, Tokens{std::nullopt});
    EXPECT_EQ(taker.tokens, Tokens{});
    EXPECT_EQ(item.takeActivationToken(), std::nullopt);
}

TEST_F(ActivationTest, comesWithEachChoiceOfSeveralEventsAtOnce) {
    const auto eventAt = [](LineRole role, std::uint32_t time) {
        return Event{idOf(role), "clicked", bus::Variant(std::int32_t{0}), time};
    };
    const std::vector<Event> events = {
        eventAt(LineRole::refresh, 7), eventAt(LineRole::openDashboard, 0),
        eventAt(LineRole::quit, 9)};
    EXPECT_TRUE(panel.callMenu<ScriptedPanel::Ids>("EventGroup", events).results);
    EXPECT_EQ(taker.tokens, (Tokens{ownId("7"), std::nullopt, ownId("9")}));
}

TEST_F(ActivationTest, isThePanelsTokenIfThereIsOne) {
    taker.times = 2;
    provide("token");
    choose(7);
    EXPECT_EQ(taker.tokens, (Tokens{"token", std::nullopt}));
}

TEST_F(ActivationTest, isAnIdAgainOnceThePanelsTokenIsTooOld) {
    provide("token");
    loop.advance(std::chrono::seconds{10});
    choose(7);
    EXPECT_EQ(taker.tokens, Tokens{ownId("7")});
}

TEST_F(ActivationTest, isOnlyThePanelsTokenUnderWayland) {
    const ScopedVariable display("WAYLAND_DISPLAY", "wayland-0");
    choose(7);
    provide("token");
    choose(8);
    EXPECT_EQ(taker.tokens, (Tokens{std::nullopt, "token"}));
}

} // namespace
} // namespace vorla
