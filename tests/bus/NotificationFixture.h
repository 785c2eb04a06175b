// SPDX-License-Identifier: MIT
#pragma once

#include "bus/ActivatableService.h"
#include "bus/ScriptedNotificationService.h"
#include "linux/NotificationCentre.h"
#include "linux/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>

namespace vorla {

/// The notification centre on a private bus, and a service that comes and goes as the test wants.
class NotificationFixture : public testing::Test {
protected:
    using Failure = std::optional<std::string>;

    static constexpr std::chrono::seconds generousLimit{25};
    /// For services that hang: short, but long enough for the bus itself on a busy machine.
    static constexpr std::chrono::seconds shortLimit{3};

    void makeCentre(std::chrono::milliseconds limit = generousLimit) {
        centre.emplace(
            applicationBus, loop,
            NotificationSettingsPlaces{
                .configurationDirectory = folder.path(), .searchPath = folder.at("tools")},
            limit);
    }

    ScriptedNotificationService& startService() {
        service.emplace(loop, daemon.address());
        EXPECT_TRUE(service->appear());
        return *service;
    }

    /// Returns once the centre knows.
    void stopService() {
        bool gone = false;
        const auto slot = applicationBus.subscribe(
            {.sender = "org.freedesktop.DBus",
             .member = "NameOwnerChanged",
             .firstArgument = "org.freedesktop.Notifications"},
            [&](bus::Message&) { gone = true; });
        catchUp();
        gone = false;
        service.reset();
        EXPECT_TRUE(loop.runUntil([&] { return gone; }));
        loop.runPending();
    }

    /// Waits until the centre knows of all that has happened on the bus so far.
    void catchUp() {
        std::optional<bool> done;
        const auto slot = applicationBus.call(
            {"org.freedesktop.DBus", "/", "org.freedesktop.DBus.Peer", "Ping"}, generousLimit,
            [&](const bus::Reply<>& reply) { done = reply.results.has_value(); });
        EXPECT_TRUE(loop.runUntil([&] { return done.has_value(); }));
    }

    /// Asks, and expects one answer, which does not come from inside the call.
    template <typename Answer, typename Ask>
    Answer answerOf(const Ask& ask) {
        std::optional<Answer> answer;
        int answers = 0;
        ask([&](const Answer& given) {
            answer = given;
            ++answers;
        });
        EXPECT_EQ(answers, 0);
        EXPECT_TRUE(loop.runUntil([&] { return answers > 0; }));
        loop.runPending();
        EXPECT_EQ(answers, 1);
        EXPECT_EQ(loop.timerCount(), 0U);
        return answer.value_or(Answer{});
    }

    AuthorizationStatus status() {
        return answerOf<AuthorizationStatus>(
            [&](const auto& answer) { centre->getSettings(answer); });
    }

    AuthorizationAnswer request() {
        return answerOf<AuthorizationAnswer>(
            [&](const auto& answer) { centre->requestAuthorization(answer); });
    }

    Failure add(const Notification& notification) {
        return answerOf<Failure>([&](const auto& answer) { centre->add(notification, answer); });
    }

    Failure add() { return add({"key", "title", "body"}); }

    void offer(const std::string& command) {
        offerService(loop, daemon, folder.at("services"), "org.freedesktop.Notifications", command);
    }

    /// The bus starts nothing but a note that it should; the service itself is the test's.
    void offerNoteOfStart() { offer("/usr/bin/touch " + folder.at("started")); }

    bool wasAskedToStart() const { return folder.has("started"); }

    TemporaryFolder folder;
    PrivateBus daemon;
    ManualLoop loop;
    bus::Bus applicationBus = bus::Bus::open(loop.real(), daemon.address());
    std::optional<ScriptedNotificationService> service;
    std::optional<DesktopNotificationCentre> centre;
};

} // namespace vorla
