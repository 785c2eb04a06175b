// SPDX-License-Identifier: MIT
#include "app/Application.h"

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <utility>
#include <vector>

namespace vorla {

namespace {

constexpr auto denied = "Notifications denied. Enable them in System Settings.";
constexpr auto unavailable = "Notifications unavailable.";
constexpr auto unavailableHere = "Notifications unavailable on this macOS version.";

std::string snapshotWith(const std::string& members) {
    return R"({"schemaVersion":1,"fetchedAt":1,"windows":[{"name":"w","usedPercent":1,)"
           R"("remainingPercent":99,"windowDurationMins":300,"resetsAt":1763001000}])" +
           members + "}";
}

/// A snapshot that proposes one event for each key, titled and worded after it.
std::string snapshotWithEvents(const std::vector<std::string>& keys) {
    std::string events;
    for (const auto& key : keys) {
        events += events.empty() ? "" : ",";
        events += R"({"key":")" + key + R"(","title":"Title )" + key + R"(","body":"Body )" + key +
                  R"("})";
    }
    return snapshotWith(R"(,"notificationEvents":[)" + events + "]");
}

std::vector<std::string> numberedKeys(int count) {
    std::vector<std::string> keys;
    for (int i = 0; i < count; ++i) {
        keys.push_back("k" + std::to_string(i));
    }
    return keys;
}

class QuotaNotificationsTest : public Application, public testing::Test {
protected:
    QuotaNotificationsTest() { launch(); }

    void switchOn() { preferences.booleans["quotaNotificationsEnabled"] = true; }
    bool isOn() { return preferences.boolean("quotaNotificationsEnabled"); }
    std::vector<std::string> remembered() { return preferences.strings("notifiedQuotaEvents"); }
    void remember(std::vector<std::string> keys) {
        preferences.lists["notifiedQuotaEvents"] = std::move(keys);
    }
    std::string problem() const { return item.text(LineRole::notificationError); }

    /// The refresh in flight, or else the next one, brings this snapshot.
    void bring(const std::string& snapshot) {
        choose(LineRole::refresh);
        finishRun(snapshot);
    }

    std::vector<std::string> postedKeys() const {
        std::vector<std::string> keys;
        for (const auto& post : notificationCentre.posts) {
            keys.push_back(post.notification.identifier);
        }
        return keys;
    }
};

using Keys = std::vector<std::string>;

} // namespace

TEST_F(QuotaNotificationsTest, areOffUntilTheUserTurnsThemOn) {
    EXPECT_FALSE(*item.line(LineRole::quotaNotifications)->checked);
    bring(snapshotWithEvents({"a"}));
    EXPECT_TRUE(notificationCentre.settingsQuestions.empty());
    EXPECT_TRUE(notificationCentre.posts.empty());
}

TEST_F(QuotaNotificationsTest, areTurnedOnWhenTheDesktopAllowsThem) {
    for (const auto status : {AuthorizationStatus::authorized, AuthorizationStatus::provisional}) {
        preferences.booleans.clear();
        choose(LineRole::quotaNotifications);
        EXPECT_FALSE(isOn());
        notificationCentre.answerSettings(status);
        EXPECT_TRUE(isOn());
        EXPECT_TRUE(*item.line(LineRole::quotaNotifications)->checked);
    }
    EXPECT_TRUE(notificationCentre.requests.empty());
}

TEST_F(QuotaNotificationsTest, areTurnedOffAtOnceAndKeepTheRememberedKeys) {
    switchOn();
    remember({"a"});
    choose(LineRole::quotaNotifications);
    EXPECT_FALSE(isOn());
    EXPECT_FALSE(*item.line(LineRole::quotaNotifications)->checked);
    EXPECT_EQ(remembered(), Keys{"a"});
    EXPECT_TRUE(notificationCentre.settingsQuestions.empty());
}

TEST_F(QuotaNotificationsTest, turningThemOffClearsTheProblem) {
    choose(LineRole::quotaNotifications);
    notificationCentre.answerSettings(AuthorizationStatus::denied);
    ASSERT_EQ(problem(), denied);
    switchOn();
    choose(LineRole::quotaNotifications);
    EXPECT_EQ(problem(), "");
}

TEST_F(QuotaNotificationsTest, turningThemOnClearsTheProblem) {
    choose(LineRole::quotaNotifications);
    notificationCentre.answerSettings(AuthorizationStatus::denied);
    ASSERT_EQ(problem(), denied);
    choose(LineRole::quotaNotifications);
    EXPECT_EQ(problem(), denied);
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    EXPECT_EQ(problem(), "");
}

TEST_F(QuotaNotificationsTest, asksForPermissionWhenItIsUndetermined) {
    choose(LineRole::quotaNotifications);
    notificationCentre.answerSettings(AuthorizationStatus::notDetermined);
    ASSERT_EQ(notificationCentre.requests.size(), 1U);
    EXPECT_FALSE(isOn());
    notificationCentre.answerRequest({.granted = true});
    EXPECT_TRUE(isOn());
    EXPECT_EQ(problem(), "");
}

TEST_F(QuotaNotificationsTest, saysWhyThePermissionRequestFailed) {
    choose(LineRole::quotaNotifications);
    notificationCentre.answerSettings(AuthorizationStatus::notDetermined);
    notificationCentre.answerRequest(
        {.granted = false, .error = "No notification service is running."});
    EXPECT_FALSE(isOn());
    EXPECT_EQ(problem(), "Notifications unavailable: No notification service is running.");
}

TEST_F(QuotaNotificationsTest, saysThatThePermissionWasRefused) {
    choose(LineRole::quotaNotifications);
    notificationCentre.answerSettings(AuthorizationStatus::notDetermined);
    notificationCentre.answerRequest({.granted = false});
    EXPECT_FALSE(isOn());
    EXPECT_EQ(problem(), denied);
}

TEST_F(QuotaNotificationsTest, stayOffWhenTheDesktopDeniesThem) {
    choose(LineRole::quotaNotifications);
    notificationCentre.answerSettings(AuthorizationStatus::denied);
    EXPECT_FALSE(isOn());
    EXPECT_EQ(problem(), denied);
}

TEST_F(QuotaNotificationsTest, stayOffInAStateThatIsUnknown) {
    for (const int status : {4, 5, -1}) {
        choose(LineRole::quotaNotifications);
        notificationCentre.answerSettings(static_cast<AuthorizationStatus>(status));
        EXPECT_FALSE(isOn());
        EXPECT_EQ(problem(), unavailableHere) << status;
    }
}

TEST_F(QuotaNotificationsTest, postsTheEventsOfTheHeldSnapshotWhenTurnedOn) {
    finishRun(snapshotWithEvents({"a", "b"}));
    choose(LineRole::quotaNotifications);
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    ASSERT_EQ(postedKeys(), (Keys{"a", "b"}));
    EXPECT_EQ(notificationCentre.posts[1].notification.title, "Title b");
    EXPECT_EQ(notificationCentre.posts[1].notification.body, "Body b");
}

TEST_F(QuotaNotificationsTest, postsNothingWhenAllEventsAreRemembered) {
    finishRun(snapshotWithEvents({"a", "b"}));
    remember({"b", "a"});
    choose(LineRole::quotaNotifications);
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    EXPECT_TRUE(notificationCentre.posts.empty());
}

TEST_F(QuotaNotificationsTest, postsTheNewEventsOfEachSnapshotAndRemembersThem) {
    switchOn();
    finishRun(snapshotWithEvents({"a"}));
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    notificationCentre.answerPosts();
    EXPECT_EQ(remembered(), Keys{"a"});
    bring(snapshotWithEvents({"a", "b"}));
    notificationCentre.answerSettings(AuthorizationStatus::provisional);
    EXPECT_EQ(postedKeys(), Keys{"b"});
    notificationCentre.answerPosts();
    EXPECT_EQ(remembered(), (Keys{"a", "b"}));
}

TEST_F(QuotaNotificationsTest, postsAnEventOnceThatASnapshotListsTwice) {
    switchOn();
    finishRun(snapshotWithEvents({"a", "a"}));
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    EXPECT_EQ(postedKeys(), Keys{"a"});
}

TEST_F(QuotaNotificationsTest, posts256NewEventsAtOnceAndTheOthersAfterTheNextRefresh) {
    switchOn();
    remember({"k0"});
    const auto all = numberedKeys(300);
    finishRun(snapshotWithEvents(all));
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    EXPECT_EQ(postedKeys(), Keys(all.begin() + 1, all.begin() + 257));
    notificationCentre.answerPosts();
    bring(snapshotWithEvents(all));
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    const auto posted = postedKeys();
    EXPECT_EQ(posted.size(), 236U) << "all but the 64 that are remembered";
    EXPECT_EQ(Keys(posted.end() - 43, posted.end()), Keys(all.begin() + 257, all.end()));
}

TEST_F(QuotaNotificationsTest, offersAnEventAgainThatMemoryRanOutFor) {
    switchOn();
    finishRun(snapshotWithEvents({"a"}));
    notificationCentre.memoryRunsOut = true;
    EXPECT_THROW(
        notificationCentre.answerSettings(AuthorizationStatus::authorized), std::bad_alloc);
    notificationCentre.memoryRunsOut = false;
    bring(snapshotWithEvents({"a"}));
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    EXPECT_EQ(postedKeys(), Keys{"a"});
}

TEST_F(QuotaNotificationsTest, leaveOutAnEventWhoseKeyIsLongerThan1024Bytes) {
    switchOn();
    const std::string longest(1024, 'k');
    finishRun(snapshotWithEvents({longest + "k", longest, "a"}));
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    EXPECT_EQ(postedKeys(), (Keys{longest, "a"}));
    choose(LineRole::quotaNotifications);
    choose(LineRole::quotaNotifications);
    notificationCentre.answerPosts();
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    EXPECT_TRUE(notificationCentre.posts.empty()) << "nor is it posted when turned on";
}

TEST_F(QuotaNotificationsTest, postsNoEventAgainWhileItsAnswerIsDue) {
    switchOn();
    finishRun(snapshotWithEvents({"a"}));
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    bring(snapshotWithEvents({"a"}));
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    EXPECT_EQ(postedKeys(), Keys{"a"});
}

TEST_F(QuotaNotificationsTest, tellsOfAFailedPostAndTriesItAgain) {
    switchOn();
    finishRun(snapshotWithEvents({"a"}));
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    notificationCentre.answerPosts("The notification service did not answer.");
    EXPECT_EQ(problem(), "Notification failed: The notification service did not answer.");
    EXPECT_TRUE(isOn());
    EXPECT_TRUE(remembered().empty());
    bring(snapshotWithEvents({"a"}));
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    EXPECT_EQ(postedKeys(), Keys{"a"});
    notificationCentre.answerPosts();
    EXPECT_EQ(problem(), "");
    EXPECT_EQ(remembered(), Keys{"a"});
}

TEST_F(QuotaNotificationsTest, forgetsTheOldestOfSixtyFourKeys) {
    switchOn();
    remember(numberedKeys(64));
    finishRun(snapshotWithEvents({"new"}));
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    notificationCentre.answerPosts();
    auto expected = numberedKeys(64);
    expected.erase(expected.begin());
    expected.emplace_back("new");
    EXPECT_EQ(remembered(), expected);
}

TEST_F(QuotaNotificationsTest, trimsALongerListAtASuccessForAKeyThatItHolds) {
    switchOn();
    finishRun(snapshotWithEvents({"k69"}));
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    ASSERT_EQ(postedKeys(), Keys{"k69"});
    // An older version of the program wrote the list meanwhile.
    remember(numberedKeys(70));
    notificationCentre.answerPosts();
    const auto all = numberedKeys(70);
    EXPECT_EQ(remembered(), Keys(all.begin() + 6, all.end()));
}

TEST_F(QuotaNotificationsTest, writesTheListBackEvenIfItDidNotChange) {
    switchOn();
    finishRun(snapshotWithEvents({"a"}));
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    remember({"a"});
    notificationCentre.answerPosts();
    EXPECT_EQ(preferences.listWrites, 1);
    EXPECT_EQ(remembered(), Keys{"a"});
}

TEST_F(QuotaNotificationsTest, areTurnedOffWhenThePermissionHasBeenWithdrawn) {
    switchOn();
    finishRun(snapshotWithEvents({"a"}));
    notificationCentre.answerSettings(AuthorizationStatus::denied);
    EXPECT_FALSE(isOn());
    EXPECT_EQ(problem(), denied);
    EXPECT_FALSE(*item.line(LineRole::quotaNotifications)->checked);
    EXPECT_TRUE(notificationCentre.posts.empty());
}

TEST_F(QuotaNotificationsTest, areTurnedOffWhenAnEvaluationFindsAnyOtherState) {
    for (const int status : {0, 4, 5}) {
        switchOn();
        bring(snapshotWithEvents({"a"}));
        notificationCentre.answerSettings(static_cast<AuthorizationStatus>(status));
        EXPECT_FALSE(isOn());
        EXPECT_EQ(problem(), unavailable) << status;
    }
}

TEST_F(QuotaNotificationsTest, postsNothingWhenTurnedOffWhileTheDesktopWasThinking) {
    switchOn();
    finishRun(snapshotWithEvents({"a"}));
    choose(LineRole::quotaNotifications);
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    EXPECT_TRUE(notificationCentre.posts.empty());
}

TEST_F(QuotaNotificationsTest, postAndStoreNothingWithoutEvents) {
    switchOn();
    finishRun(snapshotWith(""));
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    EXPECT_TRUE(notificationCentre.posts.empty());
    EXPECT_EQ(preferences.listWrites, 0);
}

TEST_F(QuotaNotificationsTest, evaluateNothingAfterAFailedRun) {
    switchOn();
    finishRun("", 1);
    EXPECT_TRUE(notificationCentre.settingsQuestions.empty());
}

TEST_F(QuotaNotificationsTest, areLeftAsTheyAreByADesktopThatGoesAwayWhileQuitting) {
    switchOn();
    finishRun(snapshotWithEvents({"a"}));
    choose(LineRole::quit);
    notificationCentre.answerSettings(AuthorizationStatus::notDetermined);
    EXPECT_TRUE(isOn());
    EXPECT_EQ(problem(), "");
}

TEST_F(QuotaNotificationsTest, postNothingNewWhileQuitting) {
    switchOn();
    finishRun(snapshotWithEvents({"a"}));
    choose(LineRole::quit);
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    EXPECT_TRUE(notificationCentre.posts.empty());
}

TEST_F(QuotaNotificationsTest, rememberWhatWasPostedJustBeforeQuitting) {
    switchOn();
    finishRun(snapshotWithEvents({"a"}));
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    choose(LineRole::quit);
    notificationCentre.answerPosts();
    EXPECT_EQ(remembered(), Keys{"a"});
}

TEST_F(QuotaNotificationsTest, answersThatOutliveTheDelegateChangeNothing) {
    switchOn();
    finishRun(snapshotWithEvents({"a"}));
    notificationCentre.answerSettings(AuthorizationStatus::authorized);
    bring(snapshotWithEvents({"b"}));
    delegate.reset();
    notificationCentre.answerSettings(AuthorizationStatus::denied);
    notificationCentre.answerPosts();
    EXPECT_TRUE(isOn());
    EXPECT_TRUE(remembered().empty());
}

} // namespace vorla
