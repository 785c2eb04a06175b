// SPDX-License-Identifier: MIT
#pragma once

#include "linux/bus/Codec.h"

#include <chrono>
#include <functional>
#include <system_error>

struct sd_bus;
struct sd_bus_slot;

namespace vorla {
class EventLoop;
}

namespace vorla::bus {

struct SlotRelease {
    void operator()(sd_bus_slot* slot) const;
};

/// A call on its way, a subscription or an exported object: ends when it is destroyed, also from
/// inside its own handler. It may outlive the connection, and is then without effect.
using Slot = std::unique_ptr<sd_bus_slot, SlotRelease>;

struct MethodName {
    std::string destination;
    std::string path;
    std::string interface;
    std::string member;
};

/// Which signals a subscription is about; an empty part matches anything.
struct SignalRule {
    std::string sender = {};
    std::string path = {};
    std::string interface = {};
    std::string member = {};
    /// The text that is the signal's first argument.
    std::string firstArgument = {};
    /// The first part of the bus name that is the signal's first argument, such as "org.kde".
    std::string firstArgumentNamespace = {};
};

/// What came back: the results, or why there are none (an error, no answer in time, other types).
template <typename... Results>
struct Reply {
    std::optional<std::tuple<Results...>> results;
    BusError error;

    static Reply from(Message& message) {
        if (auto error = message.error()) {
            return {std::nullopt, *std::move(error)};
        }
        try {
            return {std::tuple<Results...>{message.read<Results>()...}, {}};
        } catch (const std::system_error& failure) {
            return {std::nullopt, {"org.freedesktop.DBus.Error.InvalidSignature", failure.what()}};
        }
    }
};

/// A connection to a message bus, served by the main loop. Main thread, where all handlers are
/// called too. Operations throw std::system_error unless they say otherwise; what a handler throws
/// goes no further than the bus.
class Bus final {
public:
    /// The bus of the user's session. The loop must outlive the connection.
    static Bus openSession(EventLoop& loop);
    static Bus open(EventLoop& loop, const std::string& address);

    /// False if another connection has the name; never queues for it. Waits for the bus to answer.
    bool requestName(const std::string& name);

    /// Called once when the bus hangs up.
    void onDisconnect(std::function<void()> work);

    /// Calls a method; `answer`, a function of a Reply with the types that are expected, is called
    /// once, never from inside this call. No service is started for it. Dropping the slot gives the
    /// answer up.
    template <typename Answer, typename... Arguments>
    [[nodiscard]] Slot call(
        const MethodName& method, std::chrono::milliseconds limit, Answer answer,
        const Arguments&... arguments) {
        Message request = methodCall(method);
        request.write(arguments...);
        return send(std::move(request), limit, reading(std::function(std::move(answer))));
    }

    /// Takes effect before anything that is sent after it. A signal of other types than `handler`
    /// reads is dropped.
    [[nodiscard]] Slot subscribe(const SignalRule& rule, std::function<void(Message&)> handler);

    /// Signals are never acknowledged: one that cannot be sent, since the bus is gone or does not
    /// take it, is dropped.
    template <typename... Arguments>
    void emit(
        const std::string& path, const std::string& interface, const std::string& member,
        const Arguments&... arguments) {
        try {
            Message signal = newSignal(path, interface, member);
            signal.write(arguments...);
            sendSignal(std::move(signal));
        } catch (const std::system_error&) {}
    }

    sd_bus* native() { return bus_.get(); }

private:
    struct Release {
        void operator()(sd_bus* bus) const;
    };

    explicit Bus(sd_bus* bus) : bus_(bus) {}

    void attach(EventLoop& loop);
    Message methodCall(const MethodName& method);
    Message
    newSignal(const std::string& path, const std::string& interface, const std::string& member);
    void sendSignal(Message signal);
    Slot
    send(Message request, std::chrono::milliseconds limit, std::function<void(Message&)> answer);

    template <typename ReplyType>
    static std::function<void(Message&)> reading(std::function<void(ReplyType)> answer) {
        return [answer = std::move(answer)](Message& message) {
            answer(std::decay_t<ReplyType>::from(message));
        };
    }

    std::unique_ptr<sd_bus, Release> bus_;
    Slot disconnected_;
};

} // namespace vorla::bus
