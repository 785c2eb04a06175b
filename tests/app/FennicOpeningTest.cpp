// SPDX-License-Identifier: MIT
#include "app/Application.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace vorla {

namespace {

class FennicOpeningTest : public Application, public testing::Test {
protected:
    FennicOpeningTest() { launch(); }

    void open() { choose(LineRole::openFennic); }
    std::string problem() const { return item.text(LineRole::fennicError); }
};

} // namespace

TEST_F(FennicOpeningTest, handsOverTheQuotaOfTheMoment) {
    finishRun(snapshotNamed("full.json"));
    item.token = "token";
    open();
    ASSERT_EQ(fennicLauncher.openings.size(), 1U);
    EXPECT_EQ(fennicLauncher.openings[0].quota.fiveHourRemainingPercent, 87);
    EXPECT_EQ(fennicLauncher.openings[0].quota.weeklyRemainingPercent, 62);
    EXPECT_EQ(fennicLauncher.openings[0].activationToken, "token");
}

TEST_F(FennicOpeningTest, opensWithoutAnyFigures) {
    open();
    ASSERT_EQ(fennicLauncher.openings.size(), 1U);
    EXPECT_EQ(fennicLauncher.openings[0].quota, FennicQuota());
}

TEST_F(FennicOpeningTest, bringsTheOneWindowToTheFrontOnASecondChoice) {
    open();
    finishRun(snapshotNamed("full.json"));
    item.token = "second";
    open();
    EXPECT_EQ(fennicLauncher.openings.size(), 1U);
    ASSERT_EQ(fennicLauncher.raises.size(), 1U);
    EXPECT_EQ(fennicLauncher.raises[0], "second");
}

TEST_F(FennicOpeningTest, opensANewWindowWithFreshFiguresOnceTheLastHasClosed) {
    open();
    finishRun(snapshotNamed("full.json"));
    fennicLauncher.closed();
    EXPECT_EQ(fennicLauncher.openWindows, 0);
    open();
    ASSERT_EQ(fennicLauncher.openings.size(), 2U);
    EXPECT_EQ(fennicLauncher.openings[1].quota.weeklyRemainingPercent, 62);
}

TEST_F(FennicOpeningTest, saysWhyTheWindowCannotBeOpenedUntilItCan) {
    fennicLauncher.launchError = std::errc::no_such_file_or_directory;
    open();
    EXPECT_EQ(problem(), "Cannot open Fennic: No such file or directory");
    fennicLauncher.launchError = {};
    open();
    EXPECT_EQ(item.line(LineRole::fennicError), std::nullopt);
    EXPECT_EQ(fennicLauncher.openWindows, 1);
}

TEST_F(FennicOpeningTest, saysThatMemoryHasRunOut) {
    fennicLauncher.memoryRunsOut = true;
    open();
    EXPECT_EQ(problem(), "Cannot open Fennic: Cannot allocate memory");
}

TEST_F(FennicOpeningTest, closesTheWindowWhenQuitting) {
    open();
    choose(LineRole::quit);
    EXPECT_EQ(fennicLauncher.openWindows, 0);
    item.listener->chosen(MenuAction::openFennic);
    EXPECT_EQ(fennicLauncher.openWindows, 0);
}

TEST_F(FennicOpeningTest, aWindowThatClosesLateFindsNobody) {
    open();
    const auto closed = fennicLauncher.closed;
    delegate.reset();
    EXPECT_EQ(fennicLauncher.openWindows, 0);
    closed();
    EXPECT_EQ(fennicLauncher.openWindows, 0);
}

} // namespace vorla
