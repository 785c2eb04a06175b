// SPDX-License-Identifier: MIT
// A notification service that answers and signals what it should not.
#include "bus/NotificationFixture.h"
#include "bus/OddBodies.h"

namespace vorla {

namespace {

class NotificationBreach : public NotificationFixture {
protected:
    void TearDown() override {
        centre.reset();
        service.reset();
    }

    static ScriptedNotificationService::Answer replying(const Body& write) {
        return [write](sd_bus_message* call) {
            sd_bus_message* native = nullptr;
            bus::checked(sd_bus_message_new_method_return(call, &native), "new_method_return");
            auto reply = bus::Message::owning(native);
            write(reply);
            return sd_bus_send(nullptr, native, nullptr);
        };
    }

    /// Sends a signal of the service.
    void signal(const char* member, const Body& write) {
        sd_bus_message* native = nullptr;
        bus::checked(
            sd_bus_message_new_signal(
                service->bus().native(), &native, "/org/freedesktop/Notifications",
                "org.freedesktop.Notifications", member),
            "sd_bus_message_new_signal");
        auto message = bus::Message::owning(native);
        write(message);
        bus::checked(sd_bus_send(service->bus().native(), native, nullptr), "sd_bus_send");
    }
};

TEST_F(NotificationBreach, answersOfEveryTypeAndSizeAreTakenForWhatTheyCanMean) {
    makeCentre();
    for (const auto& body : oddBodies()) {
        auto& breaker = startService();
        for (const char* const method : {"GetServerInformation", "GetCapabilities", "Notify"}) {
            breaker.answers[method] = replying(body);
        }
        const auto permission = request();
        EXPECT_TRUE(permission.granted || !permission.error.value_or("").empty());
        EXPECT_EQ(status(), AuthorizationStatus::authorized);
        // It is shown, whatever number the service gives it.
        EXPECT_EQ(add(), std::nullopt);
        EXPECT_EQ(add(), std::nullopt);
        EXPECT_EQ(breaker.callsOf("Notify"), 2);
        stopService();
    }
    startService();
    EXPECT_EQ(add(), std::nullopt);
}

TEST_F(NotificationBreach, signalsOfEveryTypeAndSizeChangeNothing) {
    makeCentre();
    startService();
    EXPECT_EQ(add(), std::nullopt);
    for (const char* const member : {"NotificationClosed", "ActionInvoked", "NoSuchSignal"}) {
        for (const auto& body : oddBodies()) {
            signal(member, body);
        }
    }
    // The service goes through all of them before it answers.
    EXPECT_EQ(add(), std::nullopt);
    ASSERT_EQ(service->notifications.size(), 2U);
    EXPECT_EQ(service->notifications.back().replacedBubble, 1U);
    EXPECT_EQ(loop.timerCount(), 0U);
}

} // namespace

} // namespace vorla
