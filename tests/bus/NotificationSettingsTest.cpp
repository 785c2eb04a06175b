// SPDX-License-Identifier: MIT
#include "bus/NotificationFixture.h"

namespace vorla {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

class NotificationSettings : public NotificationFixture {
protected:
    /// Asks, and waits until the centre waits for the service.
    void askAndHold() {
        const int before = answers;
        centre->getSettings([this](AuthorizationStatus status) {
            ++answers;
            held = status;
        });
        ASSERT_TRUE(loop.runUntil([&] { return loop.timerCount() == 1; }));
        EXPECT_EQ(answers, before);
    }

    /// A store of settings that answers GetProperty like this.
    bus::Slot serveXfceSettings(ScriptedNotificationService::Answer answer) {
        xfceAnswer = std::move(answer);
        sd_bus_slot* slot = nullptr;
        bus::checked(
            sd_bus_add_object(
                xfceBus.native(), &slot, "/org/xfce/Xfconf",
                [](sd_bus_message* message, void* self, sd_bus_error*) {
                    const char* channel = nullptr;
                    const char* property = nullptr;
                    bus::checked(sd_bus_message_read(message, "ss", &channel, &property), "read");
                    EXPECT_STREQ(channel, "xfce4-notifyd");
                    EXPECT_STREQ(property, "/applications/muted_applications");
                    return static_cast<NotificationSettings*>(self)->xfceAnswer(message);
                },
                this),
            "sd_bus_add_object");
        EXPECT_TRUE(xfceBus.requestName("org.xfce.Xfconf"));
        return bus::Slot(slot);
    }

    int answers = 0;
    AuthorizationStatus held = AuthorizationStatus::ephemeral;
    bus::Bus xfceBus = bus::Bus::open(loop.real(), daemon.address());
    ScriptedNotificationService::Answer xfceAnswer;
};

TEST_F(NotificationSettings, areAuthorizedWhileAServiceRuns) {
    startService();
    makeCentre();
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
}

TEST_F(NotificationSettings, areAuthorizedIfAServiceCanBeStartedAndStartNone) {
    offerNoteOfStart();
    makeCentre();
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
    catchUp();
    EXPECT_FALSE(wasAskedToStart());
}

TEST_F(NotificationSettings, areNotDeterminedWithoutAServiceAMinuteAfterTheStart) {
    makeCentre();
    askAndHold();
    loop.advance(seconds{60} - milliseconds{1});
    EXPECT_EQ(answers, 0);
    loop.advance(milliseconds{1});
    EXPECT_EQ(answers, 1);
    EXPECT_EQ(held, AuthorizationStatus::notDetermined);
    EXPECT_EQ(loop.timerCount(), 0U);
}

TEST_F(NotificationSettings, waitTheRestOfTheFirstMinute) {
    makeCentre();
    loop.advance(seconds{50});
    askAndHold();
    loop.advance(seconds{10} - milliseconds{1});
    EXPECT_EQ(answers, 0);
    loop.advance(milliseconds{1});
    EXPECT_EQ(answers, 1);
}

TEST_F(NotificationSettings, waitFiveSecondsLaterOn) {
    makeCentre();
    for (const seconds passed : {seconds{58}, seconds{3600}, seconds{1'000'000'000}}) {
        answers = 0;
        loop.advance(passed);
        askAndHold();
        loop.advance(seconds{5} - milliseconds{1});
        EXPECT_EQ(answers, 0);
        loop.advance(milliseconds{1});
        EXPECT_EQ(answers, 1);
        EXPECT_EQ(held, AuthorizationStatus::notDetermined);
    }
}

TEST_F(NotificationSettings, areAuthorizedAsSoonAsTheServiceComes) {
    makeCentre();
    askAndHold();
    loop.advance(seconds{30});
    startService();
    ASSERT_TRUE(loop.runUntil([&] { return answers > 0; }));
    EXPECT_EQ(held, AuthorizationStatus::authorized);
    EXPECT_EQ(loop.timerCount(), 0U);
    loop.advance(seconds{60});
    EXPECT_EQ(answers, 1);
}

TEST_F(NotificationSettings, answerAllWhoAskedMeanwhile) {
    makeCentre();
    askAndHold();
    askAndHold();
    loop.advance(seconds{60});
    EXPECT_EQ(answers, 2);
    askAndHold();
    loop.advance(seconds{5});
    EXPECT_EQ(answers, 3);
}

TEST_F(NotificationSettings, areAuthorizedOnceAServiceWasSeen) {
    makeCentre();
    startService();
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
    stopService();
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
}

TEST_F(NotificationSettings, areAuthorizedEvenIfNobodyAskedWhileTheServiceRan) {
    makeCentre();
    catchUp();
    startService();
    stopService();
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
}

TEST_F(NotificationSettings, areNotDeterminedAtOnceWhenTheBusIsGone) {
    makeCentre();
    daemon.stop();
    EXPECT_EQ(status(), AuthorizationStatus::notDetermined);
    EXPECT_EQ(status(), AuthorizationStatus::notDetermined);
}

TEST_F(NotificationSettings, areAuthorizedOnceAServiceWasSeenEvenWhenTheBusIsGone) {
    startService();
    makeCentre();
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
    EXPECT_EQ(
        answerOf<AuthorizationStatus>([&](const auto& answer) {
            centre->getSettings(answer);
            daemon.stop();
        }),
        AuthorizationStatus::authorized);
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
}

TEST_F(NotificationSettings, areNotDeterminedWhenTheBusGoesDuringTheQuestion) {
    makeCentre();
    catchUp();
    EXPECT_EQ(
        answerOf<AuthorizationStatus>([&](const auto& answer) {
            centre->getSettings(answer);
            daemon.stop();
        }),
        AuthorizationStatus::notDetermined);
}

TEST_F(NotificationSettings, areNotDeterminedOnceTheStartHasFailed) {
    offer("/bin/false");
    makeCentre();
    loop.advance(seconds{3600});
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
    EXPECT_FALSE(request().granted);
    askAndHold();
    loop.advance(seconds{5});
    EXPECT_EQ(held, AuthorizationStatus::notDetermined);
    startService();
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
}

TEST_F(NotificationSettings, areAuthorizedIfTheServiceDoesNotSayWhoseItIs) {
    for (const auto& answer :
         {ScriptedNotificationService::nonsense(),
          ScriptedNotificationService::error("org.freedesktop.DBus.Error.Failed", "no"),
          ScriptedNotificationService::serverNamed(std::string(1'000'000, 'x')),
          ScriptedNotificationService::serverNamed("")}) {
        startService().answers["GetServerInformation"] = answer;
        makeCentre();
        EXPECT_EQ(status(), AuthorizationStatus::authorized);
        stopService();
    }
}

TEST_F(NotificationSettings, areAuthorizedIfTheServiceHangs) {
    startService().answers["GetServerInformation"] = ScriptedNotificationService::silence();
    makeCentre(shortLimit);
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
}

TEST_F(NotificationSettings, areAuthorizedIfTheServiceDiesDuringTheQuestion) {
    startService().answers["GetServerInformation"] = ScriptedNotificationService::silence();
    makeCentre();
    centre->getSettings([this](AuthorizationStatus status) {
        ++answers;
        held = status;
    });
    ASSERT_TRUE(loop.runUntil([&] { return service->calls.size() == 1; }));
    service.reset();
    ASSERT_TRUE(loop.runUntil([&] { return answers > 0; }));
    EXPECT_EQ(held, AuthorizationStatus::authorized);
}

TEST_F(NotificationSettings, askEachServiceForItsNameOnlyOnce) {
    startService();
    makeCentre();
    status();
    status();
    EXPECT_EQ(service->callsOf("GetServerInformation"), 1);
    stopService();
    startService();
    status();
    EXPECT_EQ(service->callsOf("GetServerInformation"), 1);
}

TEST_F(NotificationSettings, areNotThoseOfAnEarlierServiceThatSaysLateWhoseItIs) {
    std::optional<bus::Message> call;
    startService().answers["GetServerInformation"] = [&](sd_bus_message* message) {
        call = bus::Message::sharing(message);
        return 0;
    };
    makeCentre();
    bool answered = false;
    centre->getSettings([&](AuthorizationStatus) { answered = true; });
    ASSERT_TRUE(loop.runUntil([&] { return call.has_value(); }));
    ASSERT_GE(sd_bus_release_name(service->bus().native(), "org.freedesktop.Notifications"), 0);
    ScriptedNotificationService next(loop, daemon.address());
    ASSERT_TRUE(next.appear());
    catchUp();
    bus::checked(
        sd_bus_reply_method_return(call->native(), "ssss", "Plasma", "vendor", "1", "1.2"),
        "reply");
    ASSERT_TRUE(loop.runUntil([&] { return answered; }));
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
    EXPECT_EQ(next.callsOf("GetServerInformation"), 1);
}

TEST_F(NotificationSettings, followPlasmasFileWherePlasmaShowsThem) {
    startService().answers["GetServerInformation"] =
        ScriptedNotificationService::serverNamed("Plasma");
    makeCentre();
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
    const std::string group = "[Applications][com.vorla.UsageMenuBar]\n";
    folder.write("plasmanotifyrc", group + "ShowPopups=false\n");
    EXPECT_EQ(status(), AuthorizationStatus::provisional);
    folder.write("plasmanotifyrc", group + "ShowPopups=false\nShowInHistory=false\n");
    EXPECT_EQ(status(), AuthorizationStatus::denied);
}

TEST_F(NotificationSettings, followTheServiceAndNotFilesOfAnotherDesktop) {
    folder.write(
        "plasmanotifyrc",
        "[Applications][com.vorla.UsageMenuBar]\nShowPopups=false\nShowInHistory=false\n");
    startService();
    makeCentre();
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
    stopService();
    startService().answers["GetServerInformation"] =
        ScriptedNotificationService::serverNamed("Plasma");
    EXPECT_EQ(status(), AuthorizationStatus::denied);
}

TEST_F(NotificationSettings, followGnomesToolWhereGnomeShowsThem) {
    folder.write("tools/answer", "x show-banners false\nx enable true\n");
    std::filesystem::create_symlink(
        VORLA_TEST_CHILDREN "/playsSettingsTool", folder.at("tools/gsettings"));
    startService().answers["GetServerInformation"] =
        ScriptedNotificationService::serverNamed("gnome-shell");
    makeCentre();
    EXPECT_EQ(status(), AuthorizationStatus::provisional);
    folder.write("dconf/user", "changed");
    folder.write("tools/answer", "x enable false\n");
    EXPECT_EQ(status(), AuthorizationStatus::denied);
}

TEST_F(NotificationSettings, followXfcesListWhereXfceShowsThem) {
    startService().answers["GetServerInformation"] =
        ScriptedNotificationService::serverNamed("Xfce Notify Daemon");
    makeCentre();
    EXPECT_EQ(status(), AuthorizationStatus::authorized);
    struct Case {
        ScriptedNotificationService::Answer answer;
        AuthorizationStatus expected;
    };
    const auto reply = [](const char* types, auto... values) {
        return ScriptedNotificationService::Answer([=](sd_bus_message* call) {
            return sd_bus_reply_method_return(call, types, values...);
        });
    };
    const Case cases[] = {
        {reply("v", "as", 2, "other", "VorlaUsageMenuBar"), AuthorizationStatus::provisional},
        {reply("v", "as", 1, "other"), AuthorizationStatus::authorized},
        {reply("v", "av", 2, "u", 7U, "s", "VorlaUsageMenuBar"), AuthorizationStatus::provisional},
        {reply("v", "av", 1, "s", "vorlausagemenubar"), AuthorizationStatus::authorized},
        {reply("v", "s", "VorlaUsageMenuBar"), AuthorizationStatus::authorized},
        {reply("s", "VorlaUsageMenuBar"), AuthorizationStatus::authorized},
        {reply(nullptr), AuthorizationStatus::authorized},
        {ScriptedNotificationService::error("org.xfce.Xfconf.Error.PropertyNotFound", "none"),
         AuthorizationStatus::authorized},
    };
    const auto object = serveXfceSettings({});
    for (const auto& [answer, expected] : cases) {
        xfceAnswer = answer;
        EXPECT_EQ(status(), expected);
    }
}

TEST_F(NotificationSettings, areNotAnsweredOnceTheCentreIsDestroyed) {
    startService();
    makeCentre();
    centre->getSettings([this](AuthorizationStatus) { ++answers; });
    centre.reset();
    catchUp();
    EXPECT_EQ(answers, 0);

    makeCentre();
    stopService();
    centre.reset();
    makeCentre();
    askAndHold();
    centre.reset();
    loop.advance(seconds{60});
    EXPECT_EQ(answers, 0);

    makeCentre();
    daemon.stop();
    centre->getSettings([this](AuthorizationStatus) { ++answers; });
    centre.reset();
    loop.runPending();
    EXPECT_EQ(answers, 0);
}

TEST_F(NotificationSettings, mayBeAskedAgainFromAnAnswerAndTheCentreDestroyedInOne) {
    startService();
    makeCentre();
    centre->getSettings([this](AuthorizationStatus) {
        ++answers;
        centre->getSettings([this](AuthorizationStatus) {
            ++answers;
            centre.reset();
        });
        centre->getSettings([this](AuthorizationStatus) { ++answers; });
    });
    ASSERT_TRUE(loop.runUntil([&] { return !centre.has_value(); }));
    loop.runPending();
    EXPECT_EQ(answers, 2);
}

} // namespace
} // namespace vorla
