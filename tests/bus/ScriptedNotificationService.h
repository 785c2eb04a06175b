// SPDX-License-Identifier: MIT
#pragma once

#include "fakes/ManualLoop.h"
#include "linux/bus/Interface.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vorla {

/// The arguments of Notify as they came in over the bus.
struct ReceivedNotify {
    std::string applicationName;
    std::uint32_t replacedBubble = 0;
    std::string icon;
    std::string title;
    std::string body;
    std::vector<std::string> actions;
    bus::Dictionary hints;
    std::int32_t expiry = 0;
};

/// A notification service on a connection of its own, which answers as the test says. Without a
/// word from the test it shows everything, has no capabilities and is called "scripted".
class ScriptedNotificationService final {
public:
    using Answer = std::function<int(sd_bus_message*)>;

    ScriptedNotificationService(ManualLoop& loop, const std::string& address)
        : bus_(bus::Bus::open(loop.real(), address)) {
        sd_bus_slot* slot = nullptr;
        bus::checked(
            sd_bus_add_object(
                bus_.native(), &slot, "/org/freedesktop/Notifications",
                [](sd_bus_message* message, void* self, sd_bus_error*) {
                    return static_cast<ScriptedNotificationService*>(self)->received(message);
                },
                this),
            "sd_bus_add_object");
        object_ = bus::Slot(slot);
        answers["GetServerInformation"] = serverNamed("scripted");
        answers["GetCapabilities"] = capabilities({});
        answers["Notify"] = [this](sd_bus_message* call) {
            return sd_bus_reply_method_return(call, "u", ++lastBubble);
        };
    }

    ~ScriptedNotificationService() = default;
    ScriptedNotificationService(const ScriptedNotificationService&) = delete;
    ScriptedNotificationService& operator=(const ScriptedNotificationService&) = delete;

    bool appear() { return bus_.requestName("org.freedesktop.Notifications"); }

    static Answer serverNamed(const std::string& name) {
        return [name](sd_bus_message* call) {
            return sd_bus_reply_method_return(call, "ssss", name.c_str(), "vendor", "1", "1.2");
        };
    }

    static Answer capabilities(const std::vector<std::string>& names) {
        return [names](sd_bus_message* call) {
            sd_bus_message* reply = nullptr;
            bus::checked(sd_bus_message_new_method_return(call, &reply), "new_method_return");
            auto answer = bus::Message::owning(reply);
            answer.write(names);
            return sd_bus_send(nullptr, reply, nullptr);
        };
    }

    static Answer error(const std::string& name, const std::string& text) {
        return [name, text](sd_bus_message* call) {
            return sd_bus_reply_method_errorf(call, name.c_str(), "%s", text.c_str());
        };
    }

    /// Two numbers, where texts or one number are expected.
    static Answer nonsense() {
        return
            [](sd_bus_message* call) { return sd_bus_reply_method_return(call, "dd", 0.5, 0.5); };
    }

    static Answer silence() {
        return [](sd_bus_message*) { return 0; };
    }

    /// Returns once the bus has it.
    void close(std::uint32_t bubble) {
        bus_.emit(
            "/org/freedesktop/Notifications", "org.freedesktop.Notifications", "NotificationClosed",
            bubble, std::uint32_t{2});
        bus::checked(
            sd_bus_call_method(
                bus_.native(), "org.freedesktop.DBus", "/", "org.freedesktop.DBus.Peer", "Ping",
                nullptr, nullptr, nullptr),
            "sd_bus_call_method");
    }

    std::ptrdiff_t callsOf(std::string_view member) const {
        return std::ranges::count(calls, member);
    }

    bus::Bus& bus() { return bus_; }

    std::map<std::string, Answer, std::less<>> answers;
    std::vector<std::string> calls;
    std::vector<ReceivedNotify> notifications;
    std::uint32_t lastBubble = 0;

private:
    int received(sd_bus_message* native) {
        auto message = bus::Message::sharing(native);
        calls.emplace_back(sd_bus_message_get_member(message.native()));
        if (calls.back() == "Notify") {
            // Braces read the fields in their order.
            notifications.push_back(ReceivedNotify{
                message.read<std::string>(), message.read<std::uint32_t>(),
                message.read<std::string>(), message.read<std::string>(),
                message.read<std::string>(), message.read<std::vector<std::string>>(),
                message.read<bus::Dictionary>(), message.read<std::int32_t>()});
        }
        const auto answer = answers.find(calls.back());
        if (answer == answers.end()) {
            return 0;
        }
        bus::checked(answer->second(native), "answer");
        return 1;
    }

    bus::Bus bus_;
    bus::Slot object_;
};

} // namespace vorla
