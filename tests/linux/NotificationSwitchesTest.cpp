// SPDX-License-Identifier: MIT
#include "linux/NotificationSwitches.h"

#include "fakes/ManualLoop.h"
#include "linux/TemporaryFolder.h"
#include "model/ScopedVariable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>

namespace vorla {
namespace {

constexpr auto settingsPath = "org.gnome.desktop.notifications.application:"
                              "/org/gnome/desktop/notifications/application/"
                              "com-vorla-usagemenubar/";

TEST(PlasmaDelivery, followsTheGroupOfThisApplication) {
    struct Case {
        const char* settings;
        NotificationDelivery expected;
    };
    const Case cases[] = {
        {"", NotificationDelivery::shown},
        {"[Applications][com.vorla.UsageMenuBar]\nShowPopups=false\nShowInHistory=false\n",
         NotificationDelivery::off},
        {"[Applications][com.vorla.UsageMenuBar]\nShowPopups=false\n", NotificationDelivery::quiet},
        {"[Applications][com.vorla.UsageMenuBar]\nShowInHistory=false\n",
         NotificationDelivery::shown},
        {"[Applications][com.vorla.UsageMenuBar]\nShowPopups=true\nShowInHistory=true",
         NotificationDelivery::shown},
        {"[Applications][com.vorla.UsageMenuBar]\nSeen=true\nShowPopups=false",
         NotificationDelivery::quiet},
        {"[Applications][org.other]\nShowPopups=false\nShowInHistory=false\n",
         NotificationDelivery::shown},
        {"[Applications]\nShowPopups=false\n[DoNotDisturb]\nShowPopups=false\n",
         NotificationDelivery::shown},
        {"[Applications][com.vorla.UsageMenuBar]\n[Jobs]\nShowPopups=false\n",
         NotificationDelivery::shown},
        {"ShowPopups=false\n", NotificationDelivery::shown},
        {" [Applications][com.vorla.UsageMenuBar] \r\n  ShowPopups = False \r\n",
         NotificationDelivery::quiet},
        {"[Applications][com.vorla.UsageMenuBar][$i]\nShowPopups[$i]=off\nShowInHistory=0",
         NotificationDelivery::off},
        {"[Applications][com.vorla.UsageMenuBar]\nShowPopups=no\nShowPopups=true\n",
         NotificationDelivery::shown},
        {"[Applications][com.vorla.UsageMenuBar]\nShowPopups\n=false\n[\n",
         NotificationDelivery::shown},
    };
    for (const auto& [settings, expected] : cases) {
        EXPECT_EQ(plasmaDelivery(settings), expected) << settings;
    }
}

TEST(GnomeDelivery, followsTheSwitchAndTheBanners) {
    const std::string schema = "org.gnome.desktop.notifications.application ";
    EXPECT_EQ(gnomeDelivery(""), NotificationDelivery::shown);
    EXPECT_EQ(
        gnomeDelivery(schema + "enable true\n" + schema + "show-banners true\n"),
        NotificationDelivery::shown);
    EXPECT_EQ(
        gnomeDelivery(schema + "show-banners false\n" + schema + "enable true\n"),
        NotificationDelivery::quiet);
    EXPECT_EQ(
        gnomeDelivery(schema + "show-banners false\n" + schema + "enable false\n"),
        NotificationDelivery::off);
    EXPECT_EQ(gnomeDelivery(schema + "enable false"), NotificationDelivery::off);
    EXPECT_EQ(gnomeDelivery(schema + "enable-sound-alerts false\n"), NotificationDelivery::shown);
    EXPECT_EQ(gnomeDelivery("false\n"), NotificationDelivery::shown);
}

TEST(FileState, differsAfterAFileWasReplaced) {
    const TemporaryFolder folder;
    EXPECT_EQ(FileState::of(folder.at("user")), FileState());
    const auto path = folder.write("user", "same size");
    const auto before = FileState::of(path);
    EXPECT_NE(before, FileState());
    EXPECT_EQ(FileState::of(path), before);
    std::filesystem::rename(folder.write("new", "also nine"), path);
    EXPECT_NE(FileState::of(path), before);
}

class GnomeSwitchTest : public testing::Test {
protected:
    void installTool() const {
        folder.write("tools/answer", "");
        std::filesystem::create_symlink(
            VORLA_TEST_CHILDREN "/playsSettingsTool", folder.at("tools/gsettings"));
    }

    void look() {
        gnome->look([this](NotificationDelivery newDelivery) {
            ++answers;
            delivery = newDelivery;
        });
    }

    NotificationDelivery ask() {
        const int before = answers;
        look();
        EXPECT_TRUE(loop.runUntil([&] { return answers > before; }));
        EXPECT_EQ(answers, before + 1);
        return delivery;
    }

    static std::ptrdiff_t descriptors() {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    }

    std::ptrdiff_t runs() const { return std::ranges::count(folder.read("tools/calls"), '\n'); }

    TemporaryFolder folder;
    ManualLoop loop;
    std::optional<GnomeNotificationSwitch> gnome{
        std::in_place, loop,
        NotificationSettingsPlaces{
            .configurationDirectory = folder.path(),
            .searchPath = "relative:/nonexistent::" + folder.at("tools")}};
    NotificationDelivery delivery = NotificationDelivery::shown;
    int answers = 0;
};

TEST_F(GnomeSwitchTest, showsNotificationsWhereTheToolIsMissing) {
    EXPECT_EQ(ask(), NotificationDelivery::shown);
}

TEST_F(GnomeSwitchTest, asksTheToolForTheSettingsOfThisApplication) {
    installTool();
    folder.write("tools/answer", "x enable false\n");
    EXPECT_EQ(ask(), NotificationDelivery::off);
    EXPECT_EQ(folder.read("tools/calls"), std::string("list-recursively ") + settingsPath + "\n");
}

TEST_F(GnomeSwitchTest, asksAgainOnlyWhenTheSettingsHaveChanged) {
    installTool();
    folder.write("dconf/user", "one");
    EXPECT_EQ(ask(), NotificationDelivery::shown);
    folder.write("tools/answer", "x show-banners false\n");
    EXPECT_EQ(ask(), NotificationDelivery::shown);
    EXPECT_EQ(runs(), 1);
    folder.write("dconf/user", "another");
    EXPECT_EQ(ask(), NotificationDelivery::quiet);
    EXPECT_EQ(ask(), NotificationDelivery::quiet);
    EXPECT_EQ(runs(), 2);
}

TEST_F(GnomeSwitchTest, asksAgainWhenTheFirstSettingIsWritten) {
    installTool();
    EXPECT_EQ(ask(), NotificationDelivery::shown);
    folder.write("dconf/user", "first");
    folder.write("tools/answer", "x enable false\n");
    EXPECT_EQ(ask(), NotificationDelivery::off);
}

TEST_F(GnomeSwitchTest, asksEachTimeWhereNoFileTellsOfAChange) {
    installTool();
    EXPECT_EQ(ask(), NotificationDelivery::shown);
    folder.write("tools/answer", "x enable false\n");
    EXPECT_EQ(ask(), NotificationDelivery::off);
    EXPECT_EQ(runs(), 2);
}

TEST_F(GnomeSwitchTest, keepsNothingOfAToolThatHasEnded) {
    installTool();
    const auto before = descriptors();
    EXPECT_EQ(ask(), NotificationDelivery::shown);
    EXPECT_EQ(descriptors(), before);
}

TEST_F(GnomeSwitchTest, showsNotificationsIfTheToolFailsAndDoesNotTryAgain) {
    installTool();
    folder.write("dconf/user", "one");
    std::filesystem::remove(folder.at("tools/answer"));
    EXPECT_EQ(ask(), NotificationDelivery::shown);
    EXPECT_EQ(ask(), NotificationDelivery::shown);
    EXPECT_EQ(runs(), 1);
}

TEST_F(GnomeSwitchTest, doesNotWaitLongForTheToolButTriesAgain) {
    installTool();
    folder.write("tools/answer", "x enable false\n");
    const auto hang = folder.write("tools/hang", "");
    look();
    ASSERT_TRUE(loop.runUntil([&] { return runs() == 1; }));
    EXPECT_EQ(answers, 0);
    loop.advance(GnomeNotificationSwitch::toolLimit);
    EXPECT_EQ(answers, 1);
    EXPECT_EQ(delivery, NotificationDelivery::shown);
    EXPECT_EQ(loop.timerCount(), 0U);
    // Not before the first run has died.
    EXPECT_EQ(ask(), NotificationDelivery::shown);
    EXPECT_EQ(runs(), 1);
    std::filesystem::remove(hang);
    EXPECT_TRUE(loop.runUntil([&] { return ask() == NotificationDelivery::off; }));
}

TEST_F(GnomeSwitchTest, showsNotificationsIfTheToolCannotBeStarted) {
    folder.writeProgram("tools/gsettings");
    EXPECT_EQ(ask(), NotificationDelivery::shown);
}

TEST_F(GnomeSwitchTest, answersNoMoreOnceDestroyed) {
    installTool();
    folder.write("tools/hang", "");
    look();
    gnome.reset();
    loop.advance(GnomeNotificationSwitch::toolLimit);
    loop.runPending();
    EXPECT_EQ(answers, 0);
}

/// With the desktop's real tool and schema; the settings are in a file that no service has to
/// write.
class RealGnomeSwitchTest : public testing::Test {
protected:
    NotificationDelivery askAnew() {
        GnomeNotificationSwitch gnome(loop, NotificationSettingsPlaces::ofThisProcess());
        std::optional<NotificationDelivery> delivery;
        gnome.look([&](NotificationDelivery newDelivery) { delivery = newDelivery; });
        EXPECT_TRUE(loop.runUntil([&] { return delivery.has_value(); }));
        return delivery.value();
    }

    static void set(const std::string& keyAndValue) {
        const auto command = std::string("gsettings set ") + settingsPath + " " + keyAndValue;
        ASSERT_EQ(std::system(command.c_str()), 0);
    }

    TemporaryFolder folder;
    ScopedVariable backend{"GSETTINGS_BACKEND", "keyfile"};
    ScopedVariable configuration{"XDG_CONFIG_HOME", folder.path()};
    ManualLoop loop;
};

TEST_F(RealGnomeSwitchTest, isReadAsItWasSet) {
    EXPECT_EQ(askAnew(), NotificationDelivery::shown);
    set("show-banners false");
    EXPECT_EQ(askAnew(), NotificationDelivery::quiet);
    set("enable false");
    EXPECT_EQ(askAnew(), NotificationDelivery::off);
    set("enable true");
    set("show-banners true");
    EXPECT_EQ(askAnew(), NotificationDelivery::shown);
}

} // namespace
} // namespace vorla
