// SPDX-License-Identifier: MIT
#include "linux/NotificationErrors.h"

#include <gtest/gtest.h>

namespace vorla {
namespace {

TEST(NotificationErrors, haveASentenceEach) {
    struct Case {
        bus::BusError error;
        std::string expected;
    };
    const std::string bus = "org.freedesktop.DBus.Error.";
    const std::string notRunning = "No notification service is running.";
    const std::string notStarted = "The notification service could not be started.";
    const std::string noAnswer = "The notification service did not answer.";
    const std::string noBus = "There is no session bus.";
    const std::string invalid = "The notification service gave no valid answer.";
    const std::string noReason = "The notification service gave no reason.";
    const Case cases[] = {
        {{bus + "ServiceUnknown", "The name is not activatable"}, notRunning},
        {{bus + "NameHasNoOwner", "no owner"}, notRunning},
        {{bus + "Spawn.ChildSignaled", "died of signal 11"}, notStarted},
        {{bus + "Spawn.ChildExited", "exited with status 1"}, notStarted},
        {{bus + "Spawn.ExecFailed", ""}, notStarted},
        {{bus + "TimedOut", "Failed to activate service: timed out"}, notStarted},
        {{"org.freedesktop.systemd1.NoSuchUnit", "Unit dunst.service not found."}, notStarted},
        {{bus + "NoReply", "Method call timed out"}, noAnswer},
        {{bus + "Timeout", ""}, noAnswer},
        {{bus + "Disconnected", ""}, noBus},
        {{bus + "NoServer", ""}, noBus},
        {{bus + "InvalidSignature", "sd_bus_message_read_basic: No such device"}, invalid},
        {{bus + "AccessDenied", "Rejected by policy"}, "Rejected by policy"},
        {{bus + "LimitsExceeded", "Too many notifications"}, "Too many notifications"},
        {{"org.example.Odd", "  First line. \nSecond line."}, "First line."},
        {{"org.example.Odd", "\n\nLate line."}, "Late line."},
        {{"org.example.Odd", "GDBus.Error:org.example.Odd: No room"}, "No room"},
        {{"org.example.Odd", "GDBus.Error:org.example.Odd"}, "GDBus.Error:org.example.Odd"},
        {{"org.example.Odd", ""}, noReason},
        {{"org.example.Odd", " \n "}, noReason},
        {{"org.example.Odd", std::string(5000, 'x')}, std::string(200, 'x')},
        {{"", ""}, noReason},
    };
    for (const auto& [error, expected] : cases) {
        EXPECT_EQ(notificationErrorText(error), expected) << error.name << " " << error.text;
    }
}

TEST(NotificationErrors, countCharactersNotBytes) {
    std::string accents;
    for (int count = 0; count < 300; ++count) {
        accents += "e\u0301";
    }
    EXPECT_EQ(
        notificationErrorText({"org.example.Odd", accents}),
        accents.substr(0, 200 * std::string("e\u0301").size()));
}

TEST(NotificationErrors, holdNoCharacterWithoutEnd) {
    std::string character = "e";
    while (character.size() < 1'000'000) {
        character += "\u0301";
    }
    const auto text = notificationErrorText({"org.example.Odd", character});
    EXPECT_TRUE(text.starts_with("e\u0301"));
    EXPECT_LT(text.size(), 70'000U);
}

TEST(NotificationErrors, tellTheServicesFromTheBus) {
    EXPECT_TRUE(isFromTheService({"org.freedesktop.DBus.Error.UnknownMethod", ""}));
    EXPECT_TRUE(isFromTheService({"org.freedesktop.DBus.Error.InvalidSignature", ""}));
    EXPECT_FALSE(isFromTheService({"org.freedesktop.DBus.Error.NoReply", ""}));
    EXPECT_TRUE(saysThatTheBusIsGone({"org.freedesktop.DBus.Error.Disconnected", ""}));
    EXPECT_FALSE(saysThatTheBusIsGone({"org.freedesktop.DBus.Error.NoReply", ""}));
}

TEST(NotificationErrors, knowTheOneThatIsNone) {
    EXPECT_TRUE(saysThatItIsShownAlready(
        {"org.freedesktop.Notifications.Error.ExcessNotificationGeneration", "too many"}));
    EXPECT_FALSE(saysThatItIsShownAlready({"org.freedesktop.DBus.Error.LimitsExceeded", ""}));
}

} // namespace
} // namespace vorla
