// SPDX-License-Identifier: MIT
// Dashboards that do not behave like one.
#include "bus/HostileCompanion.h"

#include <string>
#include <vector>

namespace vorla {

namespace {

using Addresses = std::vector<std::string>;

class HostileDashboard : public HostileCompanion {
protected:
    void choose() { item.listener->chosen(MenuAction::openDashboard); }

    void startDashboard(const std::string& program) {
        startWithFigures();
        companionIs(program);
        choose();
    }

    /// The user chooses again and again until something has been opened, and returns what.
    Addresses chooseUntilOpened() {
        addressOpener.addresses.clear();
        EXPECT_TRUE(loop().runUntil([this] {
            choose();
            return !addressOpener.addresses.empty();
        }));
        return addressOpener.addresses;
    }

    /// What the menu says once a dashboard has failed that printed these errors.
    std::string problemAfter(const std::string& errors) {
        startWithFigures({"STATUS=3"});
        makeFile("errors", errors);
        companionIs("printsFiles");
        choose();
        EXPECT_TRUE(
            loop().runUntil([this] { return item.line(LineRole::dashboardError).has_value(); }));
        return item.text(LineRole::dashboardError);
    }

    void quit() {
        item.listener->chosen(MenuAction::quit);
        EXPECT_TRUE(loop().runUntil([this] { return replies > 0; }));
        destroyApplication();
        loop().runPending();
    }
};

} // namespace

TEST_F(HostileDashboard, aMillionLines) {
    startDashboard("printsAMillionLines");
    // The menu answers while they are still coming in.
    EXPECT_EQ(chooseUntilOpened(), Addresses{"http://127.0.0.1:1000/"});
    ASSERT_TRUE(loop().runUntil([this] {
        choose();
        return addressOpener.addresses.back() == "http://127.0.0.1:2000/";
    }));
    quit();
    EXPECT_TRUE(hasNoChild());
}

TEST_F(HostileDashboard, errorsThatAreOneCharacterWithoutEnd) {
    std::string errors = "e";
    while (errors.size() < 20'000'000) {
        errors += "\u0301";
    }
    EXPECT_EQ(problemAfter(errors), "Dashboard stopped: " + errors.substr(0, 65'535) + "\uFFFD");
}

TEST_F(HostileDashboard, errorsWithoutEnd) {
    EXPECT_EQ(
        problemAfter("port in use\n" + std::string(80'000'000, 'x')),
        "Dashboard stopped: port in use\n" + std::string(188, 'x'));
}

TEST_F(HostileDashboard, aStarterThatPassesNoRequestOn) {
    startDashboard("startsADashboard");
    const FileDescriptor server = processHandle(waitUntilReady());
    quit();
    EXPECT_TRUE(hasNoChild());
    EXPECT_TRUE(runUntilEnded(server));
}

} // namespace vorla
