// SPDX-License-Identifier: MIT
// The program itself, as a desktop or a user starts it.
#include "app/Command.h"
#include "bus/PanelProcess.h"
#include "bus/ProgramFixture.h"
#include "bus/ScriptedNotificationService.h"

#include <gtest/gtest.h>

#include <algorithm>
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

TEST_F(ProgramTest, namesItsInstalledIconToAPanelThatReadsOnlyFiles) {
    const auto prefix = folder() / "prefix";
    const auto program = prefix / "bin" / "VorlaUsageMenuBar";
    const auto icon = prefix / "share/icons/hicolor/scalable/apps/com.vorla.UsageMenuBar.svg";
    std::filesystem::create_directories(program.parent_path());
    std::filesystem::create_directories(icon.parent_path());
    std::filesystem::copy_file(VORLA_PROGRAM, program);
    std::ofstream(icon) << "<svg/>";
    const PrivateBus bus;
    const PanelProcess applet("ayatana-indicat", bus.address(), {"org.kde.StatusNotifierWatcher"});
    ScriptedPanel reader(loop(), bus.address());
    std::size_t icons = 0;
    const auto changes = reader.bus().subscribe(
        {.sender = applicationName, .member = "NewIcon"}, [&](bus::Message&) { ++icons; });

    executable = program;
    auto& installed = start(
        {}, {"DBUS_SESSION_BUS_ADDRESS=" + bus.address(), "VORLA_USAGE_EXECUTABLE=/nonexistent"});
    ASSERT_TRUE(loop().runUntil(
        [&] { return icons > 0 && reader.itemProperty<std::string>("IconName") == icon; }));
    installed.send(SIGTERM);
    expectEnd(installed, 0);
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
    programs[0]->send(SIGTERM);
    programs[1]->send(SIGINT);
    programs[2]->send(SIGHUP);
    buses.back().stop();
    for (auto* program : programs) {
        expectEnd(*program, 0);
    }
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

TEST_F(ProgramTest, killsTheCompanionAtOnceWhenInterruptedAfterQuit) {
    const PrivateBus bus;
    ScriptedPanel panel(loop(), bus.address());
    auto& program = startWithStubbornCompanion(bus);
    const auto asked = std::chrono::steady_clock::now();
    panel.sendEvent(lineId({.role = LineRole::quit}), "clicked");
    EXPECT_FALSE(program.hasEnded());
    program.send(SIGINT);
    expectEnd(program, 0);
    EXPECT_LT(std::chrono::steady_clock::now() - asked, Command::patience);
    expectNoCompanionLeft();
}

TEST_F(ProgramTest, givesTheCompanionItsTimeThoughTheSessionEndsInSeveralWaysAtOnce) {
    std::list<PrivateBus> buses;
    std::vector<Program*> programs;
    for (int count = 0; count < 4; ++count) {
        programs.push_back(&startWithStubbornCompanion(buses.emplace_back()));
    }
    ScriptedPanel panel(loop(), buses.front().address());
    const auto descriptors = descriptorsOf(*programs[3]);
    const auto asked = std::chrono::steady_clock::now();
    programs[0]->send(SIGTERM);
    ASSERT_TRUE(panel.catchUp());
    programs[0]->send(SIGHUP);
    programs[1]->send(SIGHUP);
    programs[1]->send(SIGTERM);
    programs[2]->send(SIGHUP);
    programs[2]->send(SIGINT);
    buses.back().stop();
    // By the time it has let go of the bus it has noticed, so that the signal comes after that.
    ASSERT_TRUE(loop().runUntil([&] { return descriptorsOf(*programs[3]) < descriptors; }));
    programs[3]->send(SIGTERM);
    const auto hasEnded = [](const Program* program) { return program->hasEnded(); };
    ASSERT_TRUE(loop().runUntil([&] { return std::ranges::any_of(programs, hasEnded); }));
    EXPECT_GE(std::chrono::steady_clock::now() - asked, Command::patience);
    for (auto* program : programs) {
        expectEnd(*program, 0);
    }
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

TEST_F(ProgramTest, saysWhyTheLoginItemCannotBeRemoved) {
    // Registered for everybody, which this user's own entry would have to hide.
    const auto systemWide = (folder() / "empty").string() + entryPath;
    std::filesystem::create_directories(std::filesystem::path(systemWide).parent_path());
    std::ofstream(systemWide) << "[Desktop Entry]\nType=Application\nExec=" VORLA_PROGRAM "\n";
    std::ofstream(home() + "/file") << "no folder";
    expectSwitch(
        "--unregister-login-item", {"XDG_CONFIG_HOME=" + home() + "/file/settings"}, 1,
        "Could not remove login item: Cannot write "
        "~/file/settings/autostart/com.vorla.UsageMenuBar.desktop: Not a directory.\n");
}

TEST_F(ProgramTest, leavesALoginEntryAloneWhoseProgramIsGone) {
    const auto entry = home() + "/.config" + entryPath;
    std::filesystem::create_directories(std::filesystem::path(entry).parent_path());
    std::ofstream(entry) << "[Desktop Entry]\nType=Application\nExec=/nonexistent\n";
    expectSwitch("--unregister-login-item", {}, 0);
    EXPECT_TRUE(std::filesystem::exists(entry));
}

TEST_F(ProgramTest, showsEachOutsideChangeOfTheLoginEntryAtTheNextOpening) {
    const PrivateBus bus;
    ScriptedPanel panel(loop(), bus.address());
    ASSERT_TRUE(panel.becomeWatcher());
    auto& program = startOnBus(bus, "printsSnapshot");
    ASSERT_TRUE(runUntilRegistered(panel));
    const auto isShown = [&](LineRole role, const std::string& property, const auto& value) {
        for (const auto& [id, properties, children] : panel.lines()) {
            const auto found = properties.find(property);
            if (id == lineId({.role = role})) {
                return found != properties.end() && found->second == bus::Variant(value);
            }
        }
        return false;
    };
    const auto expectAtNextOpening = [&](bool isChecked, bool isHeldBack) {
        panel.aboutToShow();
        EXPECT_EQ(isShown(LineRole::launchAtLogin, "toggle-state", std::int32_t{1}), isChecked);
        EXPECT_EQ(
            isShown(
                LineRole::loginItemApproval, "label",
                std::string("Launch at Login needs approval in System Settings")) &&
                !isShown(LineRole::loginItemApproval, "visible", false),
            isHeldBack);
    };
    const auto entry = home() + "/.config" + entryPath;
    const auto write = [&](const std::string& lines) {
        std::ofstream(entry) << "[Desktop Entry]\nType=Application\n" << lines;
    };
    const std::string exec = "Exec=" VORLA_PROGRAM "\n";

    expectAtNextOpening(false, false);
    panel.sendEvent(lineId({.role = LineRole::launchAtLogin}), "clicked");
    expectAtNextOpening(true, false);
    write(exec + "Hidden=true\n");
    expectAtNextOpening(false, true);
    write(exec + "X-GNOME-Autostart-enabled=true\n");
    expectAtNextOpening(true, false);
    write(exec + "X-GNOME-Autostart-enabled=false\n");
    expectAtNextOpening(false, true);
    write("Exec=/nonexistent\n");
    expectAtNextOpening(false, false);
    std::filesystem::remove(entry);
    expectAtNextOpening(false, false);
    expectSwitch("--register-login-item", {}, 0);
    expectAtNextOpening(true, false);
    program.send(SIGTERM);
    expectEnd(program, 0);
}

TEST_F(ProgramTest, notifiesOfEachEventOnceAlsoAfterARestart) {
    const PrivateBus bus;
    ScriptedPanel panel(loop(), bus.address());
    ASSERT_TRUE(panel.becomeWatcher());
    ScriptedNotificationService service(loop(), bus.address());
    ASSERT_TRUE(service.appear());
    const auto snapshot = (folder() / "snapshot.json").string();
    const Texts variables = {
        "DBUS_SESSION_BUS_ADDRESS=" + bus.address(), "SNAPSHOT=" + snapshot,
        "VORLA_USAGE_EXECUTABLE=" + child("printsSnapshot")};
    const auto writeEvents =
        [&](const std::string& events) {
            std::ofstream(snapshot)
                << R"({"schemaVersion":1,"fetchedAt":1,"windows":[{"name":"5h","usedPercent":90,)"
                << R"("remainingPercent":10,"windowDurationMins":300,"resetsAt":1763001000}],)"
                << R"("notificationEvents":[)" << events << "]}";
        };
    const auto preferences = home() + "/.config/VorlaUsageMenuBar/preferences.json";
    const auto isRemembered = [&](const std::string& key) {
        return contentOf(preferences).find('"' + key + '"') != std::string::npos;
    };
    const std::string first = R"({"key":"5h-low","title":"5-hour low","body":"10% left"})";
    const std::string second = R"({"key":"w-low","title":"Weekly low","body":"9% left"})";

    writeEvents(first);
    auto& before = start({}, variables);
    ASSERT_TRUE(runUntilRegistered(panel));
    panel.sendEvent(lineId({.role = LineRole::quotaNotifications}), "clicked");
    ASSERT_TRUE(loop().runUntil([&] { return isRemembered("5h-low"); }));
    EXPECT_EQ(service.notifications.size(), 1U);
    before.send(SIGTERM);
    expectEnd(before, 0);

    // Posted in the order of the snapshot, the first would come before the second.
    writeEvents(first + "," + second);
    auto& after = start({}, variables);
    ASSERT_TRUE(loop().runUntil([&] { return isRemembered("w-low"); }));
    ASSERT_EQ(service.notifications.size(), 2U);
    EXPECT_EQ(service.notifications[0].title, "5-hour low");
    EXPECT_EQ(service.notifications[1].title, "Weekly low");
    after.send(SIGTERM);
    expectEnd(after, 0);
}

} // namespace vorla
