// SPDX-License-Identifier: MIT
#include "linux/bus/Bus.h"

#include "linux/EventLoop.h"

#include <systemd/sd-bus.h>

#include <string_view>

namespace vorla::bus {

namespace {

using Handler = std::function<void(Message&)>;

/// Nobody waits for an answer to a signal or to a reply, so what goes wrong here is told to no one.
int received(sd_bus_message* message, void* handler, sd_bus_error*) {
    try {
        auto shared = Message::sharing(message);
        (*static_cast<const Handler*>(handler))(shared);
    } catch (...) {
        return 0;
    }
    return 0;
}

int ignored(sd_bus_message*, void*, sd_bus_error*) {
    return 0;
}

void destroyHandler(void* handler) {
    const std::unique_ptr<Handler> last(static_cast<Handler*>(handler));
}

/// The library holds a slot while it runs its handler. Owned by the slot, the handler lives as
/// long, even if it drops the slot itself.
Slot owningSlot(sd_bus_slot* slot, std::unique_ptr<Handler> handler) {
    Slot owner(slot);
    checked(
        sd_bus_slot_set_destroy_callback(slot, &destroyHandler),
        "sd_bus_slot_set_destroy_callback");
    // The slot destroys it from now on.
    static_cast<void>(handler.release());
    return owner;
}

std::string matchText(const SignalRule& rule) {
    std::string text = "type='signal'";
    const auto add = [&](std::string_view key, const std::string& value) {
        if (!value.empty()) {
            text.append(",").append(key).append("='").append(value).append("'");
        }
    };
    add("sender", rule.sender);
    add("path", rule.path);
    add("interface", rule.interface);
    add("member", rule.member);
    add("arg0", rule.firstArgument);
    add("arg0namespace", rule.firstArgumentNamespace);
    return text;
}

} // namespace

void SlotRelease::operator()(sd_bus_slot* slot) const {
    sd_bus_slot_unref(slot);
}

// Without flushing, which could wait for ever for a bus that has stopped reading.
void Bus::Release::operator()(sd_bus* bus) const {
    sd_bus_close_unref(bus);
}

Bus Bus::openSession(EventLoop& loop) {
    sd_bus* native = nullptr;
    checked(sd_bus_open_user(&native), "sd_bus_open_user");
    Bus bus(native);
    bus.attach(loop);
    return bus;
}

Bus Bus::open(EventLoop& loop, const std::string& address) {
    sd_bus* native = nullptr;
    checked(sd_bus_new(&native), "sd_bus_new");
    Bus bus(native);
    checked(sd_bus_set_address(native, address.c_str()), "sd_bus_set_address");
    checked(sd_bus_set_bus_client(native, 1), "sd_bus_set_bus_client");
    checked(sd_bus_start(native), "sd_bus_start");
    bus.attach(loop);
    return bus;
}

void Bus::attach(EventLoop& loop) {
    checked(
        sd_bus_attach_event(native(), loop.native(), SD_EVENT_PRIORITY_NORMAL),
        "sd_bus_attach_event");
}

bool Bus::requestName(const std::string& name) {
    const int result = sd_bus_request_name(native(), name.c_str(), 0);
    if (result == -EEXIST) {
        return false;
    }
    checked(result, "sd_bus_request_name");
    return true;
}

void Bus::onDisconnect(std::function<void()> work) {
    const SignalRule rule = {
        .sender = "org.freedesktop.DBus.Local",
        .path = "/org/freedesktop/DBus/Local",
        .interface = "org.freedesktop.DBus.Local",
        .member = "Disconnected"};
    disconnected_ = subscribe(rule, [work = std::move(work)](Message&) { work(); });
}

Slot Bus::subscribe(const SignalRule& rule, std::function<void(Message&)> handler) {
    auto owned = std::make_unique<Handler>(std::move(handler));
    sd_bus_slot* slot = nullptr;
    // Without a handler of its own, a subscription that the bus refuses would end the connection.
    checked(
        sd_bus_add_match_async(
            native(), &slot, matchText(rule).c_str(), &received, &ignored, owned.get()),
        "sd_bus_add_match_async");
    return owningSlot(slot, std::move(owned));
}

Message Bus::methodCall(const MethodName& method) {
    sd_bus_message* message = nullptr;
    checked(
        sd_bus_message_new_method_call(
            native(), &message, method.destination.c_str(), method.path.c_str(),
            method.interface.c_str(), method.member.c_str()),
        "sd_bus_message_new_method_call");
    Message request = Message::owning(message);
    checked(sd_bus_message_set_auto_start(message, 0), "sd_bus_message_set_auto_start");
    return request;
}

Message
Bus::newSignal(const std::string& path, const std::string& interface, const std::string& member) {
    sd_bus_message* message = nullptr;
    checked(
        sd_bus_message_new_signal(
            native(), &message, path.c_str(), interface.c_str(), member.c_str()),
        "sd_bus_message_new_signal");
    return Message::owning(message);
}

void Bus::sendSignal(Message signal) {
    [[maybe_unused]] const int result = sd_bus_send(native(), signal.native(), nullptr);
}

Slot Bus::send(
    Message request, std::chrono::milliseconds limit, std::function<void(Message&)> answer) {
    auto owned = std::make_unique<Handler>(std::move(answer));
    const auto microseconds = std::chrono::microseconds(limit).count();
    sd_bus_slot* slot = nullptr;
    checked(
        sd_bus_call_async(
            native(), &slot, request.native(), &received, owned.get(),
            static_cast<std::uint64_t>(microseconds)),
        "sd_bus_call_async");
    return owningSlot(slot, std::move(owned));
}

} // namespace vorla::bus
