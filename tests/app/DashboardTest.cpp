// SPDX-License-Identifier: MIT
#include "app/Application.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <vector>

using namespace std::chrono_literals;

namespace vorla {

namespace {

using Addresses = std::vector<std::string>;

class DashboardTest : public Application, public testing::Test {
protected:
    DashboardTest() {
        launch();
        finishRun(snapshotNamed("full.json"));
    }

    void open() { choose(LineRole::openDashboard); }
    FakeChild& server() const { return *launcher.children.at(1); }
    std::string problem() const { return item.text(LineRole::dashboardError); }
    void refreshMenu() { item.listener->menuWillOpen(); }
};

} // namespace

TEST_F(DashboardTest, startsTheServerAndOpensNothingYet) {
    open();
    EXPECT_EQ(server().request.argument, "--web");
    server().print("Serving on http://127.0.0.1:1000/ (Ctrl-C to stop)\n");
    EXPECT_TRUE(addressOpener.addresses.empty());
}

TEST_F(DashboardTest, opensTheRecordedAddressOnALaterChoice) {
    open();
    server().print("Serving on http://127.0.0.1:1000/ (Ctrl-C to stop)\n");
    item.token = "token";
    open();
    EXPECT_EQ(addressOpener.addresses, Addresses{"http://127.0.0.1:1000/"});
    EXPECT_EQ(addressOpener.lastToken, "token");
    open();
    EXPECT_EQ(addressOpener.addresses.size(), 2U);
    EXPECT_EQ(addressOpener.lastToken, std::nullopt);
    EXPECT_EQ(launcher.children.size(), 2U);
}

TEST_F(DashboardTest, opensTheLastOfSeveralAddresses) {
    open();
    server().print("http://127.0.0.1:1000/\n");
    server().print("http://127.0.0.1:2000/\n");
    open();
    EXPECT_EQ(addressOpener.addresses, Addresses{"http://127.0.0.1:2000/"});
}

TEST_F(DashboardTest, doesNothingWhileThereIsNoAddress) {
    open();
    open();
    EXPECT_EQ(launcher.children.size(), 2U);
    server().print("http://localhost:1000/\n");
    open();
    EXPECT_TRUE(addressOpener.addresses.empty());
    EXPECT_EQ(launcher.children.size(), 2U);
}

TEST_F(DashboardTest, hasNoTimeLimit) {
    open();
    loop.advance(24h);
    EXPECT_TRUE(server().signals.empty());
}

TEST_F(DashboardTest, saysWhyTheServerStopped) {
    open();
    server().print("http://127.0.0.1:1000/\n");
    server().printError("port in use");
    server().finish(2);
    EXPECT_EQ(problem(), "Dashboard stopped: port in use");
    open();
    EXPECT_EQ(launcher.children.size(), 3U) << "the next choice starts a new one";
    refreshMenu();
    EXPECT_EQ(item.line(LineRole::dashboardError), std::nullopt);
    open();
    EXPECT_TRUE(addressOpener.addresses.empty()) << "the old address is gone";
}

TEST_F(DashboardTest, showsTheErrorTextAsItCameUpToTwoHundredCharacters) {
    open();
    server().printError(" \n" + std::string(300, 'x'));
    server().finish(1);
    EXPECT_EQ(problem(), "Dashboard stopped:  \n" + std::string(198, 'x'));
}

TEST_F(DashboardTest, countsCharactersOfTheErrorTextAsAUserDoes) {
    open();
    std::string errors;
    for (int count = 0; count < 300; ++count) {
        errors += "e\u0301";
    }
    server().printError(errors);
    server().finish(1);
    EXPECT_EQ(problem(), "Dashboard stopped: " + errors.substr(0, 200 * 3));
}

TEST_F(DashboardTest, showsNoCharacterWithoutEndOfTheErrorText) {
    open();
    server().printError(characterWithoutEnd());
    server().finish(1);
    EXPECT_TRUE(problem().starts_with("Dashboard stopped: e\u0301"));
    EXPECT_LT(problem().size(), 70'000U);
}

TEST_F(DashboardTest, endsInSilenceWithStatusZero) {
    open();
    server().print("http://127.0.0.1:1000/\n");
    const auto before = item.shown.size();
    server().finish(0);
    EXPECT_EQ(item.shown.size(), before);
    refreshMenu();
    EXPECT_EQ(item.line(LineRole::dashboardError), std::nullopt);
    open();
    EXPECT_EQ(launcher.children.size(), 3U) << "the next choice starts a new one";
    open();
    EXPECT_TRUE(addressOpener.addresses.empty()) << "the old address is gone";
}

TEST_F(DashboardTest, saysThatTheCompanionIsMissing) {
    make("/nonexistent/vorla-usage");
    launch();
    open();
    EXPECT_EQ(problem(), "vorla-usage missing. Install it, then retry.");
}

TEST_F(DashboardTest, saysWhyTheCompanionCannotBeStarted) {
    launcher.launchError = std::errc::permission_denied;
    open();
    EXPECT_EQ(problem(), "Cannot open dashboard: Permission denied");
    launcher.launchError = {};
    open();
    EXPECT_EQ(launcher.children.size(), 2U);
}

TEST_F(DashboardTest, takesNoServerForStartedThatThereWasNoMemoryFor) {
    launcher.isShortOfMemory = true;
    open();
    EXPECT_EQ(problem(), "Cannot open dashboard: Cannot allocate memory");
    launcher.isShortOfMemory = false;
    open();
    EXPECT_EQ(launcher.children.size(), 2U);
}

TEST_F(DashboardTest, aRefreshLeavesTheProblemInView) {
    open();
    server().printError("no");
    server().finish(2);
    choose(LineRole::refresh);
    finishRun(snapshotNamed("full.json"));
    EXPECT_EQ(problem(), "Dashboard stopped: no");
}

TEST_F(DashboardTest, isStoppedWithTheApplicationAndEndsInSilence) {
    open();
    choose(LineRole::quit);
    EXPECT_EQ(server().signals, std::vector<int>{SIGTERM});
    loop.runPending();
    EXPECT_EQ(replies, 0);
    const auto before = item.shown.size();
    server().finish(SIGTERM);
    EXPECT_EQ(replies, 1);
    EXPECT_EQ(item.shown.size(), before);
}

TEST_F(DashboardTest, whatItsStarterLeavesBehindIsEndedWithTheApplication) {
    open();
    choose(LineRole::quit);
    EXPECT_FALSE(server().restTerminated);
    server().exit(0);
    EXPECT_TRUE(server().restTerminated);
}

TEST_F(DashboardTest, whatItsStarterHasLeftBehindEarlierIsEndedToo) {
    open();
    server().exit(0);
    EXPECT_FALSE(server().restTerminated);
    choose(LineRole::quit);
    EXPECT_TRUE(server().restTerminated);
}

TEST_F(DashboardTest, onlyWhatADashboardLeavesBehindIsEnded) {
    choose(LineRole::refresh);
    choose(LineRole::quit);
    launcher.last().exit(0);
    EXPECT_FALSE(launcher.last().restTerminated);
}

TEST_F(DashboardTest, isStartedNoMoreOnceQuitting) {
    choose(LineRole::quit);
    item.listener->chosen(MenuAction::openDashboard);
    EXPECT_EQ(launcher.children.size(), 1U);
}

TEST_F(DashboardTest, allThreeRunsAreStoppedAndWaitedForWhenQuitting) {
    open();
    choose(LineRole::copyDiagnosticSnapshot);
    choose(LineRole::refresh);
    choose(LineRole::quit);
    loop.runPending();
    ASSERT_EQ(launcher.children.size(), 4U);
    for (std::size_t i = 1; i < 4; ++i) {
        EXPECT_EQ(launcher.children[i]->signals, std::vector<int>{SIGTERM});
        EXPECT_EQ(replies, 0);
        launcher.children[i]->exit(0);
    }
    EXPECT_EQ(replies, 1);
}

} // namespace vorla
