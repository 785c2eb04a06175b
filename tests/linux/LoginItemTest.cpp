// SPDX-License-Identifier: MIT
#include "linux/LoginItem.h"

#include "linux/DesktopEntry.h"
#include "linux/TemporaryFolder.h"
#include "model/FileContent.h"
#include "model/ScopedVariable.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>

namespace vorla {
namespace {

namespace fs = std::filesystem;

constexpr auto entryName = "home/.config/autostart/com.vorla.UsageMenuBar.desktop";
constexpr auto shownEntry = "~/.config/autostart/com.vorla.UsageMenuBar.desktop";
constexpr auto systemEntryName = "system/autostart/com.vorla.UsageMenuBar.desktop";

/// The exit status; what it says goes to standard error.
int validate(const std::string& entry) {
    std::string program = "desktop-file-validate";
    std::string path = entry;
    std::array<char*, 3> arguments = {program.data(), path.data(), nullptr};
    pid_t child = 0;
    int status = 0;
    if (posix_spawnp(&child, program.c_str(), nullptr, nullptr, arguments.data(), environ) != 0 ||
        waitpid(child, &status, 0) != child) {
        return -1;
    }
    return WEXITSTATUS(status);
}

/// A user with a home, a program, and nothing registered.
class LoginItemTest : public testing::Test {
protected:
    AutostartLoginItem item() const { return AutostartLoginItem(environment); }

    LoginItemStatus status() const { return item().status(); }

    /// An entry that starts the program, with further lines.
    std::string entry(std::string_view furtherLines = "") const {
        return "[Desktop Entry]\nType=Application\nName=Foreign\nExec=" + program + "\n" +
               std::string(furtherLines);
    }

    /// The status with this as the user's own entry.
    LoginItemStatus statusWith(std::string_view content) const {
        folder.write(entryName, content);
        return status();
    }

    std::string refusal(const std::string& path) const {
        return "The application's own path cannot be used for login (" + path + ").";
    }

    const TemporaryFolder folder;
    const std::string program = folder.writeProgram("bin/VorlaUsageMenuBar");
    LoginItemEnvironment environment = {
        .homeDirectory = folder.at("home"),
        .configurationDirectory = folder.at("home/.config"),
        .configurationDirectories = folder.at("system"),
        .currentDesktop = "Ubuntu:GNOME",
        .searchPath = folder.at("bin"),
        .programPath = program,
    };
};

TEST_F(LoginItemTest, isNotRegisteredWithoutAnyEntry) {
    EXPECT_EQ(status(), LoginItemStatus::notRegistered);
}

TEST_F(LoginItemTest, isNotRegisteredWhereTheConfigurationFolderIsAFile) {
    folder.write("home/.config", "");
    EXPECT_EQ(status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(item().unregisterItem(), std::nullopt);
}

TEST_F(LoginItemTest, isNotRegisteredOnceItHidASystemWideEntry) {
    folder.write(systemEntryName, entry());
    EXPECT_EQ(
        statusWith(entry("Hidden=true\nX-VorlaUsage-Unregistered=true\n")),
        LoginItemStatus::notRegistered);
}

TEST_F(LoginItemTest, ignoresTheMarkInASystemWideEntry) {
    folder.write(systemEntryName, entry("X-VorlaUsage-Unregistered=true\n"));
    EXPECT_EQ(status(), LoginItemStatus::enabled);
}

TEST_F(LoginItemTest, isEnabledByTheUsersEntry) {
    EXPECT_EQ(statusWith(entry()), LoginItemStatus::enabled);
}

TEST_F(LoginItemTest, isEnabledByAnEntryForAnotherCopyOfTheProgram) {
    environment.programPath = folder.writeProgram("elsewhere/VorlaUsageMenuBar");
    EXPECT_EQ(statusWith(entry()), LoginItemStatus::enabled);
}

TEST_F(LoginItemTest, isEnabledByASystemWideEntry) {
    folder.write(systemEntryName, entry());
    EXPECT_EQ(status(), LoginItemStatus::enabled);
    environment.configurationDirectories =
        "relative::" + folder.at("missing") + ":" + folder.at("system");
    EXPECT_EQ(status(), LoginItemStatus::enabled);
    environment.configurationDirectories = fs::relative(folder.at("system"));
    EXPECT_EQ(status(), LoginItemStatus::notRegistered);
}

TEST_F(LoginItemTest, looksAtTheMostImportantEntryOnly) {
    folder.write("first/autostart/com.vorla.UsageMenuBar.desktop", entry("Hidden=true\n"));
    folder.write(systemEntryName, entry());
    environment.configurationDirectories = folder.at("first") + ":" + folder.at("system");
    EXPECT_EQ(status(), LoginItemStatus::requiresApproval);
    EXPECT_EQ(statusWith("not an entry"), LoginItemStatus::notFound);
}

TEST_F(LoginItemTest, readsTheEntryAfreshAtEachCall) {
    auto oneItem = item();
    EXPECT_EQ(oneItem.status(), LoginItemStatus::notRegistered);
    folder.write(entryName, entry());
    EXPECT_EQ(oneItem.status(), LoginItemStatus::enabled);
    folder.write(entryName, entry("Hidden=true\n"));
    EXPECT_EQ(oneItem.status(), LoginItemStatus::requiresApproval);
}

TEST_F(LoginItemTest, isNotFoundIfTheEntryIsNoEntryOfAProgram) {
    const auto exec = "Exec=" + program + "\n";
    for (const std::string& content : {
             std::string(),
             std::string("\0\xff[", 3),
             "Type=Application\n" + exec,
             "[Desktop Entry]\n" + exec,
             "[Desktop Entry]\nType=Link\n" + exec,
             std::string("[Desktop Entry]\nType=Application\n"),
             std::string("[Desktop Entry]\nType=Application\nExec=\n"),
             "[Desktop Entry]\nType=Application\nExec=\"" + program + "\n",
         }) {
        EXPECT_EQ(statusWith(content), LoginItemStatus::notFound) << content;
    }
}

TEST_F(LoginItemTest, isNotFoundIfTheEntryCannotBeRead) {
    fs::create_directories(folder.at(entryName));
    EXPECT_EQ(status(), LoginItemStatus::notFound);
    fs::remove(folder.at(entryName));
    ASSERT_EQ(mkfifo(folder.at(entryName).c_str(), 0600), 0);
    EXPECT_EQ(status(), LoginItemStatus::notFound);
    fs::remove(folder.at(entryName));
    fs::create_symlink("/dev/null", folder.at(entryName));
    EXPECT_EQ(status(), LoginItemStatus::notFound);
}

TEST_F(LoginItemTest, doesNotReadAHugeEntry) {
    const auto start = entry();
    EXPECT_EQ(statusWith(start + std::string(65536 - start.size(), '#')), LoginItemStatus::enabled);
    EXPECT_EQ(
        statusWith(start + std::string(65537 - start.size(), '#')), LoginItemStatus::notFound);
}

TEST_F(LoginItemTest, isNotFoundIfTheProgramIsNoExecutableFile) {
    const auto plainFile = folder.write("bin/plain", "");
    for (const std::string& exec :
         {folder.at("missing"), plainFile, plainFile + "/below", folder.at("bin"),
          std::string("missing"), std::string("plain"), std::string("./VorlaUsageMenuBar"),
          program + std::string("\0", 1)}) {
        EXPECT_EQ(
            statusWith("[Desktop Entry]\nType=Application\nExec=" + exec + "\n"),
            LoginItemStatus::notFound)
            << exec;
        EXPECT_EQ(statusWith(entry("TryExec=" + exec + "\n")), LoginItemStatus::notFound) << exec;
    }
}

TEST_F(LoginItemTest, looksForABareProgramNameInTheSearchPath) {
    constexpr auto content = "[Desktop Entry]\nType=Application\nExec=VorlaUsageMenuBar --flag\n"
                             "TryExec=VorlaUsageMenuBar\n";
    environment.searchPath = folder.at("missing") + ":" + folder.at("bin");
    EXPECT_EQ(statusWith(content), LoginItemStatus::enabled);
    environment.searchPath = folder.at("missing");
    EXPECT_EQ(statusWith(content), LoginItemStatus::notFound);
    environment.searchPath = "";
    EXPECT_EQ(statusWith(content), LoginItemStatus::notFound);
}

TEST_F(LoginItemTest, requiresApprovalIfTheDesktopTurnedItOff) {
    EXPECT_EQ(statusWith(entry("Hidden=true\n")), LoginItemStatus::requiresApproval);
    EXPECT_EQ(
        statusWith(entry("X-GNOME-Autostart-enabled=false\n")), LoginItemStatus::requiresApproval);
    EXPECT_EQ(statusWith(entry("Hidden=1\n")), LoginItemStatus::requiresApproval);
    EXPECT_EQ(
        statusWith(entry("Hidden=false\nX-GNOME-Autostart-enabled=true\n")),
        LoginItemStatus::enabled);
}

TEST_F(LoginItemTest, isNotFoundRatherThanTurnedOffWithoutItsProgram) {
    EXPECT_EQ(
        statusWith("[Desktop Entry]\nType=Application\nExec=/missing\nHidden=true\n"),
        LoginItemStatus::notFound);
}

TEST_F(LoginItemTest, requiresApprovalWhereItIsNotMeantForTheDesktop) {
    struct Case {
        std::string_view lines;
        std::string currentDesktop;
        LoginItemStatus status;
    };
    using enum LoginItemStatus;
    for (const auto& [lines, currentDesktop, expected] : {
             Case{"OnlyShowIn=GNOME;KDE;\n", "Ubuntu:GNOME", enabled},
             Case{"OnlyShowIn=KDE;\n", "Ubuntu:GNOME", requiresApproval},
             Case{"OnlyShowIn=gnome;\n", "GNOME", requiresApproval},
             Case{"OnlyShowIn=GNOME;\n", "", requiresApproval},
             Case{"NotShowIn=KDE;\n", "Ubuntu:GNOME", enabled},
             Case{"NotShowIn=GNOME;\n", "Ubuntu:GNOME", requiresApproval},
             Case{"NotShowIn=GNOME;\n", "", enabled},
             Case{"OnlyShowIn=Ubuntu;\nNotShowIn=GNOME;\n", "Ubuntu:GNOME", enabled},
             Case{"OnlyShowIn=GNOME;\nNotShowIn=Ubuntu;\n", "Ubuntu:GNOME", requiresApproval},
         }) {
        environment.currentDesktop = currentDesktop;
        EXPECT_EQ(statusWith(entry(lines)), expected) << lines << currentDesktop;
    }
}

TEST_F(LoginItemTest, registersWithAnEntryThatEveryDesktopFollows) {
    EXPECT_EQ(item().registerItem(), std::nullopt);
    EXPECT_EQ(status(), LoginItemStatus::enabled);
    EXPECT_EQ(
        folder.read(entryName), "[Desktop Entry]\n"
                                "Type=Application\n"
                                "Name=VorlaUsageMenuBar\n"
                                "Comment=Keeps the remaining Vorla usage quota in view\n"
                                "Icon=com.vorla.UsageMenuBar\n"
                                "Exec=\"" +
                                    program +
                                    "\"\n"
                                    "Terminal=false\n"
                                    "StartupNotify=false\n"
                                    "X-GNOME-Autostart-enabled=true\n"
                                    "X-LXQt-Need-Tray=true\n");
    struct stat file = {};
    ASSERT_EQ(stat(folder.at(entryName).c_str(), &file), 0);
    EXPECT_EQ(file.st_mode & 07777U, 0644U);
    struct stat configuration = {};
    ASSERT_EQ(stat(folder.at("home/.config/autostart").c_str(), &configuration), 0);
    EXPECT_EQ(configuration.st_mode & 07777U, 0700U);
    EXPECT_EQ(validate(folder.at(entryName)), 0);
}

TEST_F(LoginItemTest, registersProgramsWithOddNames) {
    for (const auto* const name :
         {"with space", "double\"quote", "it's", "$HOME", "`back`", "é 语 🙂",
          "a=b;c#d&e|f<g>(h)*?~"}) {
        environment.programPath = folder.writeProgram(std::string("odd/") + name);
        EXPECT_EQ(item().registerItem(), std::nullopt) << name;
        EXPECT_EQ(status(), LoginItemStatus::enabled) << name;
        const auto written = DesktopEntry::parse(folder.read(entryName));
        ASSERT_TRUE(written);
        EXPECT_EQ(programOfExec(written->string("Exec").value_or("")), environment.programPath);
        EXPECT_EQ(validate(folder.at(entryName)), 0) << name;
    }
}

TEST_F(LoginItemTest, liftsWhatHadTurnedItOff) {
    for (const auto* const lines :
         {"Hidden=true\n", "X-GNOME-Autostart-enabled=false\n", "OnlyShowIn=KDE;\n",
          "Hidden=true\nX-VorlaUsage-Unregistered=true\n", "TryExec=/missing\n"}) {
        folder.write(entryName, entry(lines));
        EXPECT_NE(status(), LoginItemStatus::enabled) << lines;
        EXPECT_EQ(item().registerItem(), std::nullopt) << lines;
        EXPECT_EQ(status(), LoginItemStatus::enabled) << lines;
    }
}

TEST_F(LoginItemTest, mendsTheEntryOfAMovedProgram) {
    EXPECT_EQ(item().registerItem(), std::nullopt);
    fs::rename(program, folder.at("bin/moved"));
    EXPECT_EQ(status(), LoginItemStatus::notFound);
    environment.programPath = folder.at("bin/moved");
    EXPECT_EQ(item().registerItem(), std::nullopt);
    EXPECT_EQ(status(), LoginItemStatus::enabled);
}

TEST_F(LoginItemTest, registersThroughASymbolicLink) {
    folder.write("dotfiles/entry", "old");
    fs::create_directories(folder.at("home/.config/autostart"));
    fs::create_symlink(folder.at("dotfiles/entry"), folder.at(entryName));
    EXPECT_EQ(item().registerItem(), std::nullopt);
    EXPECT_TRUE(fs::is_symlink(folder.at(entryName)));
    EXPECT_EQ(status(), LoginItemStatus::enabled);
}

TEST_F(LoginItemTest, refusesAProgramPathThatNotAllDesktopsUnderstand) {
    for (const auto* const name : {"100%", "back\\slash", "\xff"}) {
        environment.programPath = folder.writeProgram(name);
        EXPECT_TRUE(item().registerItem()) << name;
        EXPECT_FALSE(folder.has("home")) << name;
    }
    environment.programPath = folder.writeProgram("100%");
    EXPECT_EQ(item().registerItem(), refusal(folder.at("100%")));
}

TEST_F(LoginItemTest, showsARefusedPathOnOneLineOfText) {
    environment.programPath = folder.writeProgram("home/line\nend\xff");
    EXPECT_EQ(item().registerItem(), refusal("~/line?end\uFFFD"));
}

TEST_F(LoginItemTest, refusesAProgramThatIsNotThere) {
    for (const std::string& path :
         {folder.at("missing"), folder.path(), folder.write("plain", ""), std::string(),
          std::string("bin/VorlaUsageMenuBar")}) {
        environment.programPath = path;
        EXPECT_EQ(item().registerItem(), refusal(path));
        EXPECT_FALSE(folder.has("home"));
    }
}

TEST_F(LoginItemTest, saysThatTheHomeDirectoryIsUnknown) {
    for (const auto* const configuration : {"", "home/.config"}) {
        environment.configurationDirectory = configuration;
        EXPECT_EQ(status(), LoginItemStatus::notRegistered);
        EXPECT_EQ(item().registerItem(), "The home directory is unknown.");
        EXPECT_EQ(item().unregisterItem(), "The home directory is unknown.");
    }
    folder.write(systemEntryName, entry());
    EXPECT_EQ(status(), LoginItemStatus::enabled);
    EXPECT_EQ(item().unregisterItem(), "The home directory is unknown.");
}

TEST_F(LoginItemTest, saysWhyTheEntryCannotBeWritten) {
    folder.write("home/.config", "");
    EXPECT_EQ(
        item().registerItem(), "Cannot write " + std::string(shownEntry) + ": Not a directory.");
    fs::remove(folder.at("home/.config"));
    fs::create_directories(folder.at(entryName));
    EXPECT_EQ(
        item().registerItem(), "Cannot write " + std::string(shownEntry) + ": Is a directory.");
    EXPECT_EQ(status(), LoginItemStatus::notFound);
}

TEST_F(LoginItemTest, saysWhyTheEntryThatHidesCannotBeWritten) {
    folder.write(systemEntryName, entry());
    folder.write("home/.config", "");
    EXPECT_EQ(
        item().unregisterItem(), "Cannot write " + std::string(shownEntry) + ": Not a directory.");
    EXPECT_EQ(status(), LoginItemStatus::enabled);
}

TEST_F(LoginItemTest, showsAPathOutsideTheHomeDirectoryInFull) {
    folder.write("home-2", "");
    environment.configurationDirectory = folder.at("home-2");
    EXPECT_EQ(
        item().registerItem(), "Cannot write " +
                                   folder.at("home-2/autostart/com.vorla.UsageMenuBar.desktop") +
                                   ": Not a directory.");
    environment.homeDirectory = "";
    EXPECT_EQ(
        item().registerItem(), "Cannot write " +
                                   folder.at("home-2/autostart/com.vorla.UsageMenuBar.desktop") +
                                   ": Not a directory.");
}

TEST_F(LoginItemTest, noticesThatTheEntryWasNotKept) {
    AutostartLoginItem forgetful(
        environment, [](const std::string&, const std::string&) { return 0; });
    EXPECT_EQ(forgetful.registerItem(), "The login entry was not kept by the system.");
}

TEST_F(LoginItemTest, passesOnWhatTheWritingSays) {
    AutostartLoginItem failing(
        environment, [](const std::string&, const std::string&) { return ENOSPC; });
    EXPECT_EQ(
        failing.registerItem(),
        "Cannot write " + std::string(shownEntry) + ": No space left on device.");
}

TEST_F(LoginItemTest, unregistersByRemovingTheUsersEntry) {
    EXPECT_EQ(item().registerItem(), std::nullopt);
    EXPECT_EQ(item().unregisterItem(), std::nullopt);
    EXPECT_EQ(status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(folder.count("home/.config/autostart"), 0);
}

TEST_F(LoginItemTest, unregistersWhatIsNotRegistered) {
    EXPECT_EQ(item().unregisterItem(), std::nullopt);
    EXPECT_FALSE(folder.has("home"));
}

TEST_F(LoginItemTest, unregistersWhatTheDesktopTurnedOff) {
    folder.write(entryName, entry("Hidden=true\n"));
    EXPECT_EQ(item().unregisterItem(), std::nullopt);
    EXPECT_EQ(status(), LoginItemStatus::notRegistered);
}

TEST_F(LoginItemTest, hidesASystemWideEntryWhenUnregistered) {
    folder.write(systemEntryName, entry());
    EXPECT_EQ(item().registerItem(), std::nullopt);
    EXPECT_EQ(item().unregisterItem(), std::nullopt);
    EXPECT_EQ(
        folder.read(entryName), "[Desktop Entry]\n"
                                "Type=Application\n"
                                "Name=VorlaUsageMenuBar\n"
                                "Hidden=true\n"
                                "X-VorlaUsage-Unregistered=true\n");
    EXPECT_EQ(validate(folder.at(entryName)), 0);
    EXPECT_EQ(status(), LoginItemStatus::notRegistered);
    EXPECT_EQ(item().registerItem(), std::nullopt);
    EXPECT_EQ(status(), LoginItemStatus::enabled);
}

TEST_F(LoginItemTest, saysWhyTheEntryCannotBeRemoved) {
    fs::create_directories(folder.at(entryName));
    EXPECT_EQ(
        item().unregisterItem(), "Cannot remove " + std::string(shownEntry) + ": Is a directory.");
}

TEST(LoginItemEnvironment, takesThisProgramsOwnPath) {
    const ScopedVariable image("APPIMAGE", std::nullopt);
    EXPECT_EQ(
        LoginItemEnvironment::ofThisProcess().programPath, fs::read_symlink("/proc/self/exe"));
}

TEST(InstalledDesktopEntry, isValidAndStartsTheProgram) {
    const auto path = std::string(VORLA_TEST_DATA) + "/../../data/com.vorla.UsageMenuBar.desktop";
    EXPECT_EQ(validate(path), 0);
    const auto entry = DesktopEntry::parse(contentOf(path));
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->string("Exec"), "VorlaUsageMenuBar");
    EXPECT_EQ(entry->string("Name"), "VorlaUsageMenuBar");
    EXPECT_EQ(entry->string("Icon"), "com.vorla.UsageMenuBar");
}

} // namespace
} // namespace vorla
