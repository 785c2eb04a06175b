// SPDX-License-Identifier: MIT
#pragma once

#include "linux/bus/Bus.h"
#include "ports/MainLoop.h"

#include <list>
#include <memory>

namespace vorla {

/// Calls that are on their way over the bus, each with the same limit. Main thread.
///
/// Each is answered exactly once, also if it could not even be sent, and never from inside call().
/// None is answered any more once this has been destroyed, which an answer may do.
class PendingCalls final {
public:
    PendingCalls(bus::Bus& bus, MainLoop& loop, std::chrono::milliseconds limit)
        : bus_(bus), loop_(loop), limit_(limit) {}
    ~PendingCalls() = default;
    PendingCalls(const PendingCalls&) = delete;
    PendingCalls& operator=(const PendingCalls&) = delete;

    /// `answer` is a function of a bus::Reply. Whatever fails once the bus has hung up fails with
    /// the error "Disconnected".
    template <typename Answer, typename... Arguments>
    void call(const bus::MethodName& method, Answer answer, const Arguments&... arguments) {
        send(method, std::function(std::move(answer)), arguments...);
    }

private:
    template <typename ReplyType, typename... Arguments>
    void send(
        const bus::MethodName& method, std::function<void(ReplyType)> answer,
        const Arguments&... arguments) {
        using Reply = std::decay_t<ReplyType>;
        // Shared by the two roads on which it may be called: the reply, or a call that cannot be
        // sent.
        const auto shared = std::make_shared<std::function<void(ReplyType)>>(std::move(answer));
        const auto place = slots_.emplace(slots_.end());
        try {
            *place = bus_.call(
                method, limit_,
                [this, place, shared](const Reply& reply) {
                    const bool explained = reply.results || isConnected();
                    slots_.erase(place);
                    (*shared)(explained ? reply : Reply{std::nullopt, disconnected()});
                },
                arguments...);
        } catch (const std::system_error& failure) {
            slots_.erase(place);
            const auto reason = std::generic_category().message(failure.code().value());
            Reply reply{std::nullopt, isConnected() ? failed(reason) : disconnected()};
            loop_.post([alive = std::weak_ptr(alive_), shared, reply = std::move(reply)] {
                if (!alive.expired()) {
                    (*shared)(reply);
                }
            });
        }
    }

    bool isConnected();
    static bus::BusError disconnected();
    static bus::BusError failed(const std::string& reason);

    bus::Bus& bus_;
    MainLoop& loop_;
    std::chrono::milliseconds limit_;
    std::list<bus::Slot> slots_;
    /// Lets what has been posted find out whether this still exists.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

} // namespace vorla
