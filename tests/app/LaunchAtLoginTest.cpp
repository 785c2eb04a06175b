// SPDX-License-Identifier: MIT
#include "app/Application.h"
#include "app/LoginItemSwitches.h"

#include <gtest/gtest.h>

namespace vorla {

namespace {

class LaunchAtLoginTest : public Application, public testing::Test {
protected:
    LaunchAtLoginTest() { launch(); }

    bool isChecked() const { return *item.line(LineRole::launchAtLogin)->checked; }
};

} // namespace

TEST_F(LaunchAtLoginTest, registersFromEveryStateButEnabled) {
    for (const auto state :
         {LoginItemStatus::notRegistered, LoginItemStatus::requiresApproval,
          LoginItemStatus::notFound}) {
        loginItem.state = state;
        loginItem.registrations = 0;
        item.listener->menuWillOpen();
        EXPECT_FALSE(isChecked());
        choose(LineRole::launchAtLogin);
        EXPECT_EQ(loginItem.registrations, 1);
        EXPECT_EQ(loginItem.removals, 0);
        EXPECT_TRUE(isChecked());
    }
}

TEST_F(LaunchAtLoginTest, unregistersWhenEnabledAndClearsTheEarlierProblem) {
    loginItem.failure = "Cannot write ~/x: No space left on device.";
    choose(LineRole::launchAtLogin);
    EXPECT_EQ(
        item.text(LineRole::loginItemError),
        "Launch at Login: Cannot write ~/x: No space left on device.");
    loginItem.failure.reset();
    loginItem.state = LoginItemStatus::enabled;
    choose(LineRole::launchAtLogin);
    EXPECT_EQ(loginItem.removals, 1);
    EXPECT_FALSE(isChecked());
    EXPECT_EQ(item.line(LineRole::loginItemError), std::nullopt);
}

TEST_F(LaunchAtLoginTest, staysCheckedWhenItsRemovalFails) {
    loginItem.state = LoginItemStatus::enabled;
    loginItem.failure = "Cannot remove ~/x: Read-only file system.";
    choose(LineRole::launchAtLogin);
    EXPECT_EQ(loginItem.removals, 1);
    EXPECT_TRUE(isChecked());
    EXPECT_EQ(
        item.text(LineRole::loginItemError),
        "Launch at Login: Cannot remove ~/x: Read-only file system.");
}

TEST_F(LaunchAtLoginTest, aRefreshLeavesTheProblemInView) {
    loginItem.failure = "broken.";
    choose(LineRole::launchAtLogin);
    finishRun(snapshotNamed("full.json"));
    EXPECT_EQ(item.text(LineRole::loginItemError), "Launch at Login: broken.");
    EXPECT_FALSE(item.line(LineRole::loginItemError)->enabled);
}

TEST_F(LaunchAtLoginTest, followsOutsideChangesAtTheNextOpening) {
    loginItem.state = LoginItemStatus::enabled;
    item.listener->menuWillOpen();
    EXPECT_TRUE(isChecked());
    loginItem.state = LoginItemStatus::requiresApproval;
    item.listener->menuWillOpen();
    EXPECT_FALSE(isChecked());
    EXPECT_EQ(
        item.text(LineRole::loginItemApproval),
        "Launch at Login needs approval in System Settings");
}

TEST(LoginItemSwitches, addsInEveryStateButEnabled) {
    FakeLoginItem loginItem;
    for (const auto state :
         {LoginItemStatus::notRegistered, LoginItemStatus::requiresApproval,
          LoginItemStatus::notFound}) {
        loginItem.state = state;
        loginItem.registrations = 0;
        EXPECT_EQ(addLoginItem(loginItem), std::nullopt);
        EXPECT_EQ(loginItem.registrations, 1);
    }
    EXPECT_EQ(addLoginItem(loginItem), std::nullopt);
    EXPECT_EQ(loginItem.registrations, 1) << "it was there already";
}

TEST(LoginItemSwitches, removesOnlyWhatIsEnabledOrHeldBack) {
    FakeLoginItem loginItem;
    for (const auto state : {LoginItemStatus::enabled, LoginItemStatus::requiresApproval}) {
        loginItem.state = state;
        loginItem.removals = 0;
        EXPECT_EQ(removeLoginItem(loginItem), std::nullopt);
        EXPECT_EQ(loginItem.removals, 1);
    }
    for (const auto state : {LoginItemStatus::notRegistered, LoginItemStatus::notFound}) {
        loginItem.state = state;
        loginItem.removals = 0;
        EXPECT_EQ(removeLoginItem(loginItem), std::nullopt);
        EXPECT_EQ(loginItem.removals, 0);
    }
}

TEST(LoginItemSwitches, sayWhatFailed) {
    FakeLoginItem loginItem;
    loginItem.failure = "The home directory is unknown.";
    EXPECT_EQ(
        addLoginItem(loginItem), "Could not add login item: The home directory is unknown.\n");
    loginItem.state = LoginItemStatus::enabled;
    EXPECT_EQ(
        removeLoginItem(loginItem),
        "Could not remove login item: The home directory is unknown.\n");
}

} // namespace vorla
