// SPDX-License-Identifier: MIT
#include "bus/NotificationFixture.h"

namespace vorla {
namespace {

constexpr auto notRunning = "No notification service is running.";
constexpr auto notStarted = "The notification service could not be started.";
constexpr auto noAnswer = "The notification service did not answer.";
constexpr auto noBus = "There is no session bus.";

class NotificationPermission : public NotificationFixture {};

TEST_F(NotificationPermission, isGrantedByAServiceThatAnswers) {
    startService();
    makeCentre();
    const auto answer = request();
    EXPECT_TRUE(answer.granted);
    EXPECT_EQ(answer.error, std::nullopt);
    request();
    EXPECT_EQ(service->callsOf("GetServerInformation"), 2);
}

TEST_F(NotificationPermission, startsTheService) {
    offerNoteOfStart();
    makeCentre();
    std::optional<AuthorizationAnswer> answer;
    centre->requestAuthorization([&](const AuthorizationAnswer& given) { answer = given; });
    ASSERT_TRUE(loop.runUntil([&] { return wasAskedToStart(); }));
    EXPECT_FALSE(answer);
    startService();
    ASSERT_TRUE(loop.runUntil([&] { return answer.has_value(); }));
    EXPECT_TRUE(answer->granted);
    EXPECT_EQ(service->callsOf("GetServerInformation"), 1);
}

TEST_F(NotificationPermission, isNotGrantedWithoutAService) {
    makeCentre();
    const auto answer = request();
    EXPECT_FALSE(answer.granted);
    EXPECT_EQ(answer.error, notRunning);
}

TEST_F(NotificationPermission, isNotGrantedIfTheServiceCannotBeStarted) {
    makeCentre();
    for (const char* const command :
         {"/bin/false", "/nonexistent/service", "/bin/sh -c 'kill $$'"}) {
        offer(command);
        const auto answer = request();
        EXPECT_FALSE(answer.granted);
        EXPECT_EQ(answer.error, notStarted) << command;
    }
}

TEST_F(NotificationPermission, isNotGrantedIfTheStartTakesTooLong) {
    offerNoteOfStart();
    makeCentre(shortLimit);
    const auto answer = request();
    EXPECT_FALSE(answer.granted);
    EXPECT_EQ(answer.error, noAnswer);
    EXPECT_TRUE(loop.runUntil([&] { return wasAskedToStart(); }));
}

TEST_F(NotificationPermission, isNotGrantedByAServiceThatHangs) {
    startService().answers["GetServerInformation"] = ScriptedNotificationService::silence();
    makeCentre(shortLimit);
    const auto answer = request();
    EXPECT_FALSE(answer.granted);
    EXPECT_EQ(answer.error, noAnswer);
}

TEST_F(NotificationPermission, isNotGrantedWithoutASessionBus) {
    makeCentre();
    daemon.stop();
    const auto answer = request();
    EXPECT_FALSE(answer.granted);
    EXPECT_EQ(answer.error, noBus);
    EXPECT_EQ(request().error, noBus);
}

TEST_F(NotificationPermission, isNeverRefusedWithoutASentence) {
    startService();
    makeCentre();
    for (const auto& [name, text, expected] :
         {std::tuple{"org.freedesktop.DBus.Error.AccessDenied", "Not for you.", "Not for you."},
          std::tuple{
              "org.freedesktop.DBus.Error.Failed", "", "The notification service gave no reason."},
          std::tuple{"org.example.Odd", "First.\nSecond.", "First."}}) {
        service->answers["GetServerInformation"] = ScriptedNotificationService::error(name, text);
        const auto answer = request();
        EXPECT_FALSE(answer.granted);
        EXPECT_EQ(answer.error, expected);
    }
    service->answers["GetServerInformation"] = ScriptedNotificationService::nonsense();
    EXPECT_EQ(request().error, "The notification service gave no valid answer.");
}

TEST_F(NotificationPermission, isNotAnsweredOnceTheCentreIsDestroyed) {
    startService();
    makeCentre();
    int answers = 0;
    centre->requestAuthorization([&](const AuthorizationAnswer&) { ++answers; });
    centre.reset();
    catchUp();
    EXPECT_EQ(answers, 0);
}

TEST_F(NotificationPermission, mayDestroyTheCentreWithItsAnswer) {
    startService();
    makeCentre();
    centre->requestAuthorization([&](const AuthorizationAnswer&) { centre.reset(); });
    ASSERT_TRUE(loop.runUntil([&] { return !centre.has_value(); }));
    EXPECT_EQ(service->callsOf("GetServerInformation"), 1);
}

class NotificationPosting : public NotificationFixture {
protected:
    /// The bubble that the last notification was to replace.
    std::uint32_t lastReplaced() const { return service->notifications.back().replacedBubble; }

    /// Posts a notification. Before the service answers the call of `member` it loses its name to
    /// `next`; the test gives its answer to `heldCall`.
    void replaceServiceDuring(const std::string& member, ScriptedNotificationService& next) {
        startService().answers[member] = [this](sd_bus_message* message) {
            heldCall = bus::Message::sharing(message);
            return 0;
        };
        makeCentre();
        centre->add({"a", "", ""}, [this](const Failure& failure) { lateAnswer = failure; });
        ASSERT_TRUE(loop.runUntil([&] { return heldCall.has_value(); }));
        ASSERT_GE(sd_bus_release_name(service->bus().native(), "org.freedesktop.Notifications"), 0);
        ASSERT_TRUE(next.appear());
        catchUp();
    }

    std::optional<bus::Message> heldCall;
    std::optional<Failure> lateAnswer;
};

TEST_F(NotificationPosting, sendsWhatEveryServiceUnderstands) {
    startService();
    makeCentre();
    EXPECT_EQ(add({"weekly-10", "Weekly <10%>", "5h & \"more\" <left>"}), std::nullopt);
    ASSERT_EQ(service->notifications.size(), 1U);
    const auto& sent = service->notifications.front();
    EXPECT_EQ(sent.applicationName, "VorlaUsageMenuBar");
    EXPECT_EQ(sent.replacedBubble, 0U);
    EXPECT_EQ(sent.icon, "com.vorla.UsageMenuBar");
    EXPECT_EQ(sent.title, "Weekly <10%>");
    EXPECT_EQ(sent.body, "5h & \"more\" <left>");
    EXPECT_EQ(sent.actions, std::vector<std::string>());
    const bus::Dictionary hints = {
        {"desktop-entry", std::string("com.vorla.UsageMenuBar")}, {"urgency", std::uint8_t{1}}};
    EXPECT_EQ(sent.hints, hints);
    EXPECT_EQ(sent.expiry, -1);
}

TEST_F(NotificationPosting, usesWhatTheServiceCanDo) {
    startService().answers["GetCapabilities"] = ScriptedNotificationService::capabilities(
        {"body", "actions", "body-markup", "sound", "persistence"});
    makeCentre();
    EXPECT_EQ(add({"key", "<t>", "a & <b>"}), std::nullopt);
    const auto& sent = service->notifications.at(0);
    EXPECT_EQ(sent.title, "<t>");
    EXPECT_EQ(sent.body, "a &amp; &lt;b&gt;");
    EXPECT_EQ(sent.actions, (std::vector<std::string>{"default", ""}));
    const bus::Dictionary hints = {
        {"desktop-entry", std::string("com.vorla.UsageMenuBar")},
        {"urgency", std::uint8_t{1}},
        {"sound-name", std::string("message-new-instant")}};
    EXPECT_EQ(sent.hints, hints);
}

TEST_F(NotificationPosting, cutsLongTextsAndDropsWhatTheBusRefuses) {
    startService();
    makeCentre();
    std::string title(3000, 't');
    title[0] = '\0';
    EXPECT_EQ(add({"key", title, std::string(1'000'000, 'b') + "\xFF"}), std::nullopt);
    EXPECT_EQ(service->notifications.at(0).title, std::string(1024, 't'));
    EXPECT_EQ(service->notifications.at(0).body, std::string(4096, 'b'));
}

TEST_F(NotificationPosting, keepsTheOrder) {
    startService();
    makeCentre();
    int answers = 0;
    for (const char* const title : {"one", "two", "three"}) {
        centre->add({title, title, ""}, [&](const Failure& failure) {
            EXPECT_EQ(failure, std::nullopt);
            ++answers;
        });
    }
    ASSERT_TRUE(loop.runUntil([&] { return answers == 3; }));
    std::vector<std::string> titles;
    for (const auto& sent : service->notifications) {
        titles.push_back(sent.title);
    }
    EXPECT_EQ(titles, (std::vector<std::string>{"one", "two", "three"}));
}

TEST_F(NotificationPosting, replacesTheBubbleOfTheSameIdentifier) {
    startService();
    makeCentre();
    add({"a", "first", ""});
    add({"b", "other", ""});
    EXPECT_EQ(lastReplaced(), 0U);
    add({"a", "second", ""});
    EXPECT_EQ(lastReplaced(), 1U);
    add({"a", "third", ""});
    EXPECT_EQ(lastReplaced(), 3U);
}

TEST_F(NotificationPosting, replacesNoBubbleThatWasClosed) {
    startService();
    makeCentre();
    add({"a", "", ""});
    add({"b", "", ""});
    service->close(1);
    catchUp();
    add({"a", "", ""});
    EXPECT_EQ(lastReplaced(), 0U);
    add({"b", "", ""});
    EXPECT_EQ(lastReplaced(), 2U);
    service->close(2);
    service->close(3);
    service->close(4);
    catchUp();
    add({"c", "", ""});
    service->close(5);
    catchUp();
    add({"c", "", ""});
    EXPECT_EQ(lastReplaced(), 0U);
}

TEST_F(NotificationPosting, replacesNoBubbleOfAnotherService) {
    startService();
    makeCentre();
    add({"a", "", ""});
    stopService();
    startService();
    add({"a", "", ""});
    EXPECT_EQ(lastReplaced(), 0U);
    add({"a", "", ""});
    EXPECT_EQ(lastReplaced(), 1U);
}

TEST_F(NotificationPosting, replacesNoBubbleThatAnEarlierServiceNamesLate) {
    ScriptedNotificationService next(loop, daemon.address());
    ASSERT_NO_FATAL_FAILURE(replaceServiceDuring("Notify", next));
    bus::checked(sd_bus_reply_method_return(heldCall->native(), "u", 7U), "reply");
    ASSERT_TRUE(loop.runUntil([&] { return lateAnswer.has_value(); }));
    EXPECT_EQ(*lateAnswer, std::nullopt);
    EXPECT_EQ(add({"a", "", ""}), std::nullopt);
    EXPECT_EQ(next.notifications.at(0).replacedBubble, 0U);
}

TEST_F(NotificationPosting, keepsNoCapabilitiesThatAnEarlierServiceNamesLate) {
    ScriptedNotificationService next(loop, daemon.address());
    next.answers["GetCapabilities"] = ScriptedNotificationService::capabilities({"body-markup"});
    ASSERT_NO_FATAL_FAILURE(replaceServiceDuring("GetCapabilities", next));
    bus::checked(sd_bus_reply_method_return(heldCall->native(), "as", 0), "reply");
    ASSERT_TRUE(loop.runUntil([&] { return lateAnswer.has_value(); }));
    EXPECT_EQ(add({"a", "", "<"}), std::nullopt);
    EXPECT_EQ(next.notifications.back().body, "&lt;");
}

TEST_F(NotificationPosting, replacesOnlyTheLast64) {
    startService();
    makeCentre();
    for (int number = 0; number <= 64; ++number) {
        add({std::to_string(number), "", ""});
    }
    add({"1", "", ""});
    EXPECT_EQ(lastReplaced(), 2U);
    add({"0", "", ""});
    EXPECT_EQ(lastReplaced(), 0U);
}

TEST_F(NotificationPosting, replacesNothingAfterAFailure) {
    startService();
    makeCentre();
    add({"a", "", ""});
    service->answers["Notify"] = ScriptedNotificationService::error("org.example.Odd", "no");
    add({"a", "", ""});
    EXPECT_EQ(lastReplaced(), 1U);
    add({"b", "", ""});
    add({"b", "", ""});
    EXPECT_EQ(lastReplaced(), 0U);
}

TEST_F(NotificationPosting, asksEachServiceForItsCapabilitiesOnlyOnce) {
    startService().answers["GetCapabilities"] =
        ScriptedNotificationService::capabilities({"actions"});
    makeCentre();
    add();
    add();
    EXPECT_EQ(service->callsOf("GetCapabilities"), 1);
    stopService();
    startService();
    add();
    EXPECT_EQ(service->callsOf("GetCapabilities"), 1);
    EXPECT_TRUE(service->notifications.back().actions.empty());
}

TEST_F(NotificationPosting, startsTheService) {
    offerNoteOfStart();
    makeCentre();
    std::optional<Failure> answer;
    centre->add({"key", "title", "body"}, [&](const Failure& failure) { answer = failure; });
    ASSERT_TRUE(loop.runUntil([&] { return wasAskedToStart(); }));
    startService();
    ASSERT_TRUE(loop.runUntil([&] { return answer.has_value(); }));
    EXPECT_EQ(*answer, std::nullopt);
    EXPECT_EQ(service->notifications.at(0).title, "title");
}

TEST_F(NotificationPosting, saysWhyItFailed) {
    struct Case {
        const char* name;
        const char* text;
        const char* expected;
    };
    const Case cases[] = {
        {"org.freedesktop.DBus.Error.ServiceUnknown", "The name is gone", notRunning},
        {"org.freedesktop.DBus.Error.NameHasNoOwner", "", notRunning},
        {"org.freedesktop.DBus.Error.Spawn.ChildSignaled", "signal 6", notStarted},
        {"org.freedesktop.DBus.Error.TimedOut", "", notStarted},
        {"org.freedesktop.DBus.Error.NoReply", "", noAnswer},
        {"org.freedesktop.DBus.Error.Disconnected", "", noBus},
        {"org.freedesktop.DBus.Error.AccessDenied", "Refused.\nLong story.", "Refused."},
        {"org.freedesktop.DBus.Error.LimitsExceeded", "Too many", "Too many"},
    };
    startService();
    makeCentre();
    for (const auto& [name, text, expected] : cases) {
        service->answers["Notify"] = ScriptedNotificationService::error(name, text);
        EXPECT_EQ(add(), expected) << name;
    }
    service->answers["Notify"] =
        ScriptedNotificationService::error("org.example.Odd", std::string(1000, 'x'));
    EXPECT_EQ(add(), std::string(200, 'x'));
}

TEST_F(NotificationPosting, countsWhatIsShownAlreadyAsPosted) {
    startService().answers["Notify"] = ScriptedNotificationService::error(
        "org.freedesktop.Notifications.Error.ExcessNotificationGeneration", "Too many");
    makeCentre();
    EXPECT_EQ(add(), std::nullopt);
}

TEST_F(NotificationPosting, failsWithoutAService) {
    makeCentre();
    EXPECT_EQ(add(), notRunning);
}

TEST_F(NotificationPosting, failsIfTheServiceCannotBeStarted) {
    offer("/bin/false");
    makeCentre();
    EXPECT_EQ(add(), notStarted);
}

TEST_F(NotificationPosting, failsWithoutASessionBus) {
    startService();
    makeCentre();
    EXPECT_EQ(add(), std::nullopt);
    daemon.stop();
    EXPECT_EQ(add(), noBus);
    EXPECT_EQ(add(), noBus);
}

TEST_F(NotificationPosting, failsIfTheServiceHangs) {
    startService().answers["Notify"] = ScriptedNotificationService::silence();
    makeCentre(shortLimit);
    EXPECT_EQ(add(), noAnswer);
    EXPECT_EQ(service->notifications.size(), 1U);
}

TEST_F(NotificationPosting, failsIfTheServiceHangsWhenAskedForItsCapabilities) {
    startService().answers["GetCapabilities"] = ScriptedNotificationService::silence();
    makeCentre(shortLimit);
    EXPECT_EQ(add(), noAnswer);
    EXPECT_TRUE(service->notifications.empty());
}

TEST_F(NotificationPosting, failsIfTheServiceDiesBeforeItAnswers) {
    for (const char* const member : {"GetCapabilities", "Notify"}) {
        startService().answers[member] = ScriptedNotificationService::silence();
        makeCentre();
        std::optional<Failure> answer;
        centre->add({"key", "title", "body"}, [&](const Failure& failure) { answer = failure; });
        ASSERT_TRUE(loop.runUntil([&] { return service->callsOf(member) == 1; }));
        stopService();
        ASSERT_TRUE(loop.runUntil([&] { return answer.has_value(); }));
        EXPECT_EQ(*answer, noAnswer) << member;
    }
}

TEST_F(NotificationPosting, worksAgainAfterTheServiceWasRestarted) {
    startService();
    makeCentre();
    add();
    stopService();
    EXPECT_EQ(add(), notRunning);
    startService();
    EXPECT_EQ(add(), std::nullopt);
}

TEST_F(NotificationPosting, takesAnyAnswerForSuccessButRemembersNoBubbleThen) {
    startService().answers["Notify"] = ScriptedNotificationService::nonsense();
    makeCentre();
    EXPECT_EQ(add(), std::nullopt);
    EXPECT_EQ(add(), std::nullopt);
    EXPECT_EQ(lastReplaced(), 0U);
}

TEST_F(NotificationPosting, expectsNothingOfAServiceThatCannotSayWhatItCanDo) {
    startService().answers["GetCapabilities"] = ScriptedNotificationService::nonsense();
    makeCentre();
    EXPECT_EQ(add({"key", "title", "a & b"}), std::nullopt);
    EXPECT_EQ(service->notifications.back().body, "a & b");
    EXPECT_TRUE(service->notifications.back().actions.empty());
    stopService();
    startService().answers["GetCapabilities"] =
        ScriptedNotificationService::error("org.freedesktop.DBus.Error.UnknownMethod", "none");
    EXPECT_EQ(add(), std::nullopt);
    EXPECT_EQ(service->notifications.size(), 1U);
}

TEST_F(NotificationPosting, findsACapabilityInAVeryLongList) {
    std::vector<std::string> names(10'000, std::string(100, 'x'));
    names.emplace_back("body-markup");
    startService().answers["GetCapabilities"] = ScriptedNotificationService::capabilities(names);
    makeCentre();
    EXPECT_EQ(add({"key", "title", "<"}), std::nullopt);
    EXPECT_EQ(service->notifications.back().body, "&lt;");
}

TEST_F(NotificationPosting, isNotAnsweredOnceTheCentreIsDestroyed) {
    startService();
    int answers = 0;
    const auto count = [&](const Failure&) { ++answers; };
    makeCentre();
    centre->add({"key", "title", "body"}, count);
    centre.reset();
    makeCentre();
    EXPECT_EQ(add(), std::nullopt);
    centre->add({"key", "title", "body"}, count);
    centre.reset();
    catchUp();
    EXPECT_EQ(answers, 0);
}

TEST_F(NotificationPosting, mayDestroyTheCentreWithItsAnswer) {
    startService();
    makeCentre();
    centre->add({"key", "title", "body"}, [&](const Failure&) { centre.reset(); });
    ASSERT_TRUE(loop.runUntil([&] { return !centre.has_value(); }));
    EXPECT_EQ(service->notifications.size(), 1U);

    makeCentre();
    daemon.stop();
    centre->add({"key", "title", "body"}, [&](const Failure&) { centre.reset(); });
    EXPECT_TRUE(loop.runUntil([&] { return !centre.has_value(); }));
}

/// How many rules our connection has with the bus cannot be seen, but what they let through can.
TEST_F(NotificationPosting, isNotWokenByBubblesOnceItsOwnAreClosed) {
    startService();
    makeCentre();
    add();
    service->close(1);
    catchUp();
    loop.runPending();
    service->close(99);
    // What has come in by the time of this answer waits in the connection.
    bus::checked(
        sd_bus_call_method(
            applicationBus.native(), "org.freedesktop.DBus", "/", "org.freedesktop.DBus.Peer",
            "Ping", nullptr, nullptr, nullptr),
        "sd_bus_call_method");
    EXPECT_FALSE(loop.real().runOnce(std::chrono::milliseconds{0}));
}

} // namespace
} // namespace vorla
