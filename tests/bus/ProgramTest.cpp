// SPDX-License-Identifier: MIT
// The program itself, as a desktop or a user starts it.
#include "app/Command.h"
#include "bus/ProgramFixture.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <list>
#include <string>
#include <utility>
#include <vector>

namespace vorla {

namespace {

using namespace std::chrono_literals;

constexpr auto entryPath = "/autostart/com.vorla.UsageMenuBar.desktop";

} // namespace

TEST_F(ProgramTest, saysThatThereIsNoSessionBus) {
    const auto empty = (folder() / "empty").string();
    const auto file = (folder() / "file").string();
    std::ofstream(file) << "no socket";
    const std::vector<Texts> settings = {
        {},
        {"XDG_RUNTIME_DIR="},
        {"XDG_RUNTIME_DIR=" + empty},
        {"DBUS_SESSION_BUS_ADDRESS=", "XDG_RUNTIME_DIR=" + empty},
        {"DBUS_SESSION_BUS_ADDRESS=unix:path=" + empty + "/bus"},
        {"DBUS_SESSION_BUS_ADDRESS=unix:path=" + file},
        {"DBUS_SESSION_BUS_ADDRESS=nonsense"},
        {"DBUS_SESSION_BUS_ADDRESS=unix:path=%"},
        {"DBUS_SESSION_BUS_ADDRESS=\xFF"}};
    for (const auto& variables : settings) {
        expectEnd(start({}, variables), 1, "VorlaUsageMenuBar: There is no session bus.\n");
    }
}

TEST_F(ProgramTest, registersItsItemAndShowsTheFigures) {
    const PrivateBus bus;
    ScriptedPanel panel(loop(), bus.address());
    std::string title;
    const auto titles = panel.bus().subscribe(
        {.sender = applicationName, .member = "XAyatanaNewLabel"},
        [&](bus::Message& message) { title = message.read<std::string>(); });
    ASSERT_TRUE(panel.becomeWatcher());
    auto& program = startOnBus(bus, "printsSnapshot");
    ASSERT_TRUE(runUntilRegistered(panel));
    ASSERT_TRUE(loop().runUntil([&] { return title == "5h 87% · W 62%"; })) << title;
    EXPECT_EQ(panel.registrations, Texts{itemPath});
    EXPECT_EQ(panel.itemProperty<std::string>("Title"), "5h 87% · W 62%");

    EXPECT_FALSE(program.hasEnded());
    panel.sendEvent(lineId({.role = LineRole::quit}), "clicked");
    expectEnd(program, 0);
}

TEST_F(ProgramTest, aSecondStartEndsInSilenceWhileTheFirstGoesOn) {
    const PrivateBus bus;
    ScriptedPanel panel(loop(), bus.address());
    ASSERT_TRUE(panel.becomeWatcher());
    auto& first = startOnBus(bus, "printsSnapshot");
    ASSERT_TRUE(runUntilRegistered(panel));
    expectEnd(startOnBus(bus, "printsSnapshot"), 0);
    EXPECT_TRUE(panel.catchUp());
    EXPECT_FALSE(first.hasEnded());
    EXPECT_EQ(panel.registrations.size(), 1U);
    first.send(SIGTERM);
    expectEnd(first, 0);
}

TEST_F(ProgramTest, isTheMenuBarProgramForASwitchThatDoesNotStandAlone) {
    const PrivateBus bus;
    ScriptedPanel panel(loop(), bus.address());
    ASSERT_TRUE(panel.becomeWatcher());
    auto& program = startOnBus(bus, "printsSnapshot", {"--register-login-item", "x"});
    ASSERT_TRUE(runUntilRegistered(panel));
    program.send(SIGTERM);
    expectEnd(program, 0);
    EXPECT_FALSE(std::filesystem::exists(home() + "/.config" + entryPath));
}

TEST_F(ProgramTest, endsWithAStubbornCompanionWithinSecondsInWhateverWayItIsEnded) {
    // All at once, since each waits for as long as the companion is given.
    std::list<PrivateBus> buses;
    std::vector<Program*> programs;
    for (int count = 0; count < 4; ++count) {
        programs.push_back(&startWithStubbornCompanion(buses.emplace_back()));
    }
    const auto asked = std::chrono::steady_clock::now();
    programs[0]->send(SIGTERM);
    programs[1]->send(SIGINT);
    programs[2]->send(SIGHUP);
    buses.back().stop();
    for (auto* program : programs) {
        expectEnd(*program, 0);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - asked, 10s);
    expectNoCompanionLeft();
}

TEST_F(ProgramTest, killsTheCompanionAtOnceWhenASecondRequestComes) {
    const PrivateBus bus;
    ScriptedPanel panel(loop(), bus.address());
    auto& program = startWithStubbornCompanion(bus);
    const auto asked = std::chrono::steady_clock::now();
    program.send(SIGTERM);
    // By the time it answers it has taken the first signal, so that the second is one of its own.
    ASSERT_TRUE(panel.catchUp());
    EXPECT_FALSE(program.hasEnded());
    program.send(SIGTERM);
    expectEnd(program, 0);
    EXPECT_LT(std::chrono::steady_clock::now() - asked, Command::patience);
    expectNoCompanionLeft();
}

TEST_F(ProgramTest, addsAndRemovesTheLoginItemWithoutABus) {
    const std::vector<std::pair<Texts, std::string>> places = {
        {{}, home() + "/.config"},
        {{"XDG_CONFIG_HOME=" + home() + "/settings"}, home() + "/settings"}};
    const auto exec = "\nExec=\"" + std::filesystem::canonical(VORLA_PROGRAM).string() + "\"\n";
    for (const auto& [variables, settings] : places) {
        const auto entry = settings + entryPath;
        for (int count = 0; count < 2; ++count) {
            ASSERT_NO_FATAL_FAILURE(expectSwitch("--register-login-item", variables, 0));
            EXPECT_NE(contentOf(entry).find(exec), std::string::npos) << contentOf(entry);
        }
        for (int count = 0; count < 2; ++count) {
            ASSERT_NO_FATAL_FAILURE(expectSwitch("--unregister-login-item", variables, 0));
            EXPECT_FALSE(std::filesystem::exists(entry));
        }
    }
}

TEST_F(ProgramTest, saysWhyTheLoginItemCannotBeAdded) {
    std::ofstream(home() + "/file") << "no folder";
    const Texts variables = {"XDG_CONFIG_HOME=" + home() + "/file/settings"};
    expectSwitch(
        "--register-login-item", variables, 1,
        "Could not add login item: Cannot write "
        "~/file/settings/autostart/com.vorla.UsageMenuBar.desktop: Not a directory.\n");
    expectSwitch("--unregister-login-item", variables, 0);
}

} // namespace vorla
