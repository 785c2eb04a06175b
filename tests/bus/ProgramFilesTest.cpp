// SPDX-License-Identifier: MIT
// The program itself where files are not what they should be.
#include "app/AppDelegate.h"
#include "bus/ProgramOnBus.h"
#include "linux/PreferencesFile.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <functional>
#include <string>
#include <system_error>
#include <vector>

namespace vorla {

namespace {

class ProgramFilesTest : public ProgramOnBus {
protected:
    static std::string loginItemFailure(int error) {
        return "Launch at Login: Cannot write "
               "~/.config/autostart/com.vorla.UsageMenuBar.desktop: " +
               std::generic_category().message(error) + ".";
    }

    std::string preferencesFile() const {
        return home() + "/.config/VorlaUsageMenuBar/preferences.json";
    }

    std::string loginEntry() const {
        return home() + "/.config/autostart/com.vorla.UsageMenuBar.desktop";
    }

    /// What can stand where a file should be. Those with content can be replaced, the others not.
    struct Broken {
        std::string content = {};
        std::function<void(const std::string& path)> make = {};
        /// Why it cannot be replaced.
        int error = 0;
        std::filesystem::file_type type = std::filesystem::file_type::regular;
    };

    static std::vector<Broken> brokenFiles() {
        return {
            {.content = "{broken"},
            {.content = "[Desktop Entry"},
            {.content = "[Desktop Entry]\nType=Application\nExec=\"\n"},
            {.content = std::string(100, '\0')},
            {.content = "\xFF\xFE\xFD"},
            {.content = std::string(2'000'000, '[')},
            {.make = [](const std::string& path) { std::filesystem::create_directory(path); },
             .error = EISDIR,
             .type = std::filesystem::file_type::directory},
            {.make = [](const std::string& path) { ASSERT_EQ(mkfifo(path.c_str(), 0600), 0); },
             .error = EINVAL,
             .type = std::filesystem::file_type::fifo},
            {.make = [](const std::string& path) { std::filesystem::create_symlink(path, path); },
             .error = ELOOP,
             .type = std::filesystem::file_type::symlink},
            {.make =
                 [](const std::string& path) {
                     std::filesystem::create_symlink("/dev/zero", path);
                 },
             .error = EINVAL,
             .type = std::filesystem::file_type::symlink},
        };
    }

    /// What cannot be replaced is still what it was.
    static void expectUntouched(const Broken& broken, const std::string& path) {
        EXPECT_EQ(std::filesystem::symlink_status(path).type(), broken.type) << path;
        EXPECT_EQ(
            std::filesystem::symlink_status("/dev/zero").type(),
            std::filesystem::file_type::character);
    }

    static void put(const Broken& broken, const std::string& path) {
        std::filesystem::remove_all(path);
        std::filesystem::remove(path + ".corrupt");
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        if (broken.make) {
            broken.make(path);
        } else {
            std::ofstream(path, std::ios::binary) << broken.content;
        }
    }
};

} // namespace

TEST_F(ProgramFilesTest, saysWhatAFullDiskRefusesAndGoesOn) {
    const auto& service = startNotificationService();
    // Proposes no notification yet.
    const auto snapshot = home() + "/snapshot.json";
    auto document = contentOf(VORLA_TEST_DATA "/snapshots/full.json");
    const std::string events = R"("notificationEvents")";
    document.replace(document.find(events), events.size(), R"("otherEvents")");
    std::ofstream(snapshot) << document;
    auto& program = startWithFigures({"SNAPSHOT=" + snapshot});
    limit(program, RLIMIT_FSIZE, 0);
    choose(LineRole::launchAtLogin);
    EXPECT_TRUE(runUntilText(LineRole::loginItemError, loginItemFailure(EFBIG)));
    choose(LineRole::quotaNotifications);
    EXPECT_TRUE(runUntilChecked(LineRole::quotaNotifications));
    EXPECT_FALSE(std::filesystem::exists(preferencesFile()));

    limit(program, RLIMIT_FSIZE, RLIM_INFINITY);
    choose(LineRole::launchAtLogin);
    EXPECT_TRUE(runUntilChecked(LineRole::launchAtLogin));
    EXPECT_EQ(text(LineRole::loginItemError), "");
    EXPECT_FALSE(std::filesystem::exists(preferencesFile()));
    // What the disk refused is stored with the next change of something else.
    std::ofstream(snapshot) << contentOf(VORLA_TEST_DATA "/snapshots/full.json");
    choose(LineRole::refresh);
    EXPECT_TRUE(loop().runUntil([&] { return service.notifications.size() == 2; }));
    EXPECT_TRUE(loop().runUntil([this] { return std::filesystem::exists(preferencesFile()); }));
    EXPECT_TRUE(PreferencesFile(home() + "/.config").boolean(AppDelegate::notificationsEnabledKey));
    endsAtRequest(program);
}

TEST_F(ProgramFilesTest, goesOnInAHomeInWhichNothingCanBeWritten) {
    startNotificationService();
    // Nobody can make a file there, not even root, whom no permission stops.
    const std::string place = "/proc/self/task";
    auto& program = startWithFigures({"HOME=" + place});
    errno = 0;
    ASSERT_NE(mkdir((place + "/.config").c_str(), 0700), 0);
    const int error = errno;
    choose(LineRole::launchAtLogin);
    EXPECT_TRUE(runUntilText(LineRole::loginItemError, loginItemFailure(error)));
    choose(LineRole::quotaNotifications);
    EXPECT_TRUE(runUntilChecked(LineRole::quotaNotifications));
    EXPECT_TRUE(runUntilFigures());
    endsAtRequest(program);
}

TEST_F(ProgramFilesTest, keepsItsFilesInTheConfigurationFolderWithoutAHome) {
    const auto settings = home() + "/settings";
    startNotificationService();
    for (const std::string variable : {"HOME=", "HOME=relative", ""}) {
        std::filesystem::remove_all(settings);
        hasHome = !variable.empty();
        auto& program = startWithFigures({variable, "XDG_CONFIG_HOME=" + settings});
        choose(LineRole::launchAtLogin);
        EXPECT_TRUE(runUntilChecked(LineRole::launchAtLogin)) << variable;
        choose(LineRole::quotaNotifications);
        EXPECT_TRUE(runUntilChecked(LineRole::quotaNotifications)) << variable;
        EXPECT_TRUE(
            std::filesystem::exists(settings + "/autostart/com.vorla.UsageMenuBar.desktop"));
        EXPECT_TRUE(std::filesystem::exists(settings + "/VorlaUsageMenuBar/preferences.json"));
        endsAtRequest(program);
    }
}

TEST_F(ProgramFilesTest, startsAnewWithBrokenPreferencesAndKeepsThem) {
    startNotificationService();
    for (const auto& broken : brokenFiles()) {
        put(broken, preferencesFile());
        auto& program = startWithFigures();
        EXPECT_FALSE(isChecked(LineRole::quotaNotifications));
        choose(LineRole::quotaNotifications);
        EXPECT_TRUE(runUntilChecked(LineRole::quotaNotifications)) << broken.error;
        if (broken.error == 0) {
            EXPECT_EQ(contentOf(preferencesFile() + ".corrupt"), broken.content);
            EXPECT_EQ(contentOf(preferencesFile()).substr(0, 2), "{\n");
        } else {
            expectUntouched(broken, preferencesFile());
            EXPECT_FALSE(std::filesystem::exists(preferencesFile() + ".corrupt"));
        }
        endsAtRequest(program);
    }
}

TEST_F(ProgramFilesTest, replacesABrokenLoginEntryWhenTheUserChoosesSo) {
    for (const auto& broken : brokenFiles()) {
        put(broken, loginEntry());
        auto& program = startWithFigures();
        EXPECT_FALSE(isChecked(LineRole::launchAtLogin));
        choose(LineRole::launchAtLogin);
        if (broken.error == 0) {
            EXPECT_TRUE(runUntilChecked(LineRole::launchAtLogin));
        } else {
            EXPECT_TRUE(runUntilText(LineRole::loginItemError, loginItemFailure(broken.error)));
            expectUntouched(broken, loginEntry());
        }
        endsAtRequest(program);
    }
}

} // namespace vorla
