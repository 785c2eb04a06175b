// SPDX-License-Identifier: MIT
// Nothing that a peer puts on the wire breaks the menu or what listens to the notification service.
#include "PlayedBus.h"
#include "Require.h"

#include "fakes/ManualLoop.h"
#include "linux/DbusMenu.h"
#include "linux/NotificationService.h"

#include <fuzzer/FuzzedDataProvider.h>
#include <systemd/sd-bus.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace vorla;
using fuzz::require;
using fuzz::WireMessage;
using Type = WireMessage::Type;

constexpr std::size_t messagesTried = 6;

constexpr const char* menuPath = "/menu";
constexpr const char* menuInterface = "com.canonical.dbusmenu";
constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";
constexpr const char* busName = "org.freedesktop.DBus";
constexpr const char* serviceName = "org.freedesktop.Notifications";

/// The types that bodies claim to have when they do not claim to have the expected one.
constexpr std::array<const char*, 20> signatures = {
    "",  "y",  "b",  "i",  "u",  "x",     "d",      "s",  "o",   "g",
    "v", "as", "ai", "ay", "av", "a{sv}", "(isvu)", "ss", "sss", "h",
};

class Actions final : public StatusItem::Listener {
public:
    void menuWillOpen() override {}
    void chosen(MenuAction action) override {
        require(action == MenuAction::refresh, "only what can be chosen is chosen");
    }
};

/// What the program has on the bus, and the bus.
class World final {
public:
    World() {
        pump();
        require(!played_.unanswered.empty(), "a connection says hello");
        // That was its first call; what it has asked for besides is refused.
        played_.send(
            {.type = Type::answer,
             .replySerial = played_.unanswered.front(),
             .signature = "s",
             .body = {"\x04\0\0\0:1.1\0", 9}});
        played_.unanswered.erase(played_.unanswered.begin());
        menu_.setListener(&actions_);
        const std::vector<MenuLine> lines = {
            {.identity = {.role = LineRole::plan}, .title = "plan"},
            {.identity = {.role = LineRole::separator}, .title = ""},
            {.identity = {.role = LineRole::refresh},
             .title = "Refresh",
             .enabled = true,
             .checked = false,
             .keyEquivalent = "r",
             .action = MenuAction::refresh}};
        menu_.show(lines);
        service_.listenForClosedBubbles();
        refuseAll();
        layout_ = layout();
    }

    /// A message to the menu, which is answered once.
    void call(WireMessage message) {
        message.sender = ":1.2";
        const std::size_t before = played_.answers.size();
        played_.send(message);
        pump();
        require(played_.answers.size() == before + 1, "a call is answered once");
    }

    void signal(WireMessage message) {
        message.type = Type::signal;
        played_.send(message);
        pump();
    }

    /// The answer to a call of ours, which `ask` makes: a function of the work to be done at its
    /// end.
    template <typename Ask>
    void answer(WireMessage message, const Ask& ask) {
        int ends = 0;
        ask(service_, [&] { ++ends; });
        pump();
        message.sender = ":1.3";
        answerAll(message);
        refuseAll();
        require(ends == 1, "a question has one answer");
    }

    /// Nothing that came has left a trace, or can be felt later.
    void check() {
        loop_.advance(std::chrono::minutes{1});
        refuseAll();
        require(sd_bus_is_open(bus_.native()) > 0, "the connection holds");
        require(layout() == layout_, "the menu stays as it is");
        require(loop_.timerCount() == 0, "no timer is left");
        played_.answers.clear();
    }

private:
    void pump() {
        do {
            loop_.runPending();
        } while (played_.receive());
    }

    void answerAll(WireMessage message) {
        for (const std::uint32_t serial : std::exchange(played_.unanswered, {})) {
            message.replySerial = serial;
            played_.send(message);
        }
        pump();
    }

    /// Until there is nothing more to be asked.
    void refuseAll() {
        pump();
        while (!played_.unanswered.empty()) {
            answerAll({.type = Type::error, .errorName = "a.B", .sender = busName});
        }
    }

    std::string layout() {
        call(
            {.path = menuPath,
             .interface = menuInterface,
             .member = "GetLayout",
             .signature = "iias",
             .body = {"\0\0\0\0\xFF\xFF\xFF\xFF\0\0\0\0", 12}});
        return played_.answers.back();
    }

    fuzz::PlayedBus played_;
    ManualLoop loop_;
    bus::Bus bus_ = bus::Bus::open(loop_.real(), played_.address());
    Actions actions_;
    DbusMenu menu_{bus_, loop_, menuPath};
    NotificationService service_{
        bus_, loop_, std::chrono::hours{1}, {[](bool) {}, [](std::uint32_t) {}}};
    std::string layout_;
};

WireMessage menuCall(const char* member, const char* signature) {
    return {.path = menuPath, .interface = menuInterface, .member = member, .signature = signature};
}

WireMessage propertyCall(const char* member, const char* signature) {
    return {
        .path = menuPath,
        .interface = propertiesInterface,
        .member = member,
        .signature = signature};
}

const std::vector<WireMessage>& calls() {
    static const std::vector<WireMessage> all = {
        menuCall("GetLayout", "iias"),      menuCall("GetGroupProperties", "aias"),
        menuCall("GetProperty", "is"),      menuCall("Event", "isvu"),
        menuCall("EventGroup", "a(isvu)"),  menuCall("AboutToShow", "i"),
        menuCall("AboutToShowGroup", "ai"), menuCall("None", ""),
        propertyCall("Get", "ss"),          propertyCall("GetAll", "s"),
        propertyCall("Set", "ssv"),
    };
    return all;
}

const std::vector<WireMessage>& signals() {
    static const std::vector<WireMessage> all = {
        {.path = "/org/freedesktop/DBus",
         .interface = busName,
         .member = "NameOwnerChanged",
         .sender = busName,
         .signature = "sss"},
        {.path = "/org/freedesktop/Notifications",
         .interface = serviceName,
         .member = "NotificationClosed",
         .sender = ":1.3",
         .signature = "uu"},
    };
    return all;
}

/// Answers a question of ours with `message`.
void answerQuestion(World& world, std::size_t question, const WireMessage& message) {
    switch (question) {
    case 0:
        world.answer(message, [](NotificationService& service, const auto& end) {
            service.findPresence([end](NotificationService::Presence) { end(); });
        });
        return;
    case 1:
        world.answer(message, [](NotificationService& service, const auto& end) {
            service.start([end](const std::optional<std::string>&) { end(); });
        });
        return;
    case 2:
        world.answer(message, [](NotificationService& service, const auto& end) {
            service.identify([end](const auto&) { end(); });
        });
        return;
    case 3:
        world.answer(message, [](NotificationService& service, const auto& end) {
            service.askAbilities([end](const auto&) { end(); });
        });
        return;
    default:
        world.answer(message, [](NotificationService& service, const auto& end) {
            service.notify(
                {.title = "title", .body = "body", .abilities = {.actions = true}},
                [end](const auto&) { end(); });
        });
    }
}

constexpr std::array<const char*, 5> resultSignatures = {"b", "u", "ssss", "as", "u"};

/// With the next bytes as its body.
WireMessage filled(WireMessage message, FuzzedDataProvider& provider) {
    if (provider.ConsumeIntegral<std::uint8_t>() >= 192) {
        message.signature = provider.PickValueInArray(signatures);
    }
    message.body = provider.ConsumeBytesAsString(provider.ConsumeIntegral<std::uint8_t>());
    return message;
}

void sendOne(World& world, FuzzedDataProvider& provider) {
    const std::size_t questions = resultSignatures.size();
    const std::size_t kinds = calls().size() + signals().size() + 2 * questions;
    std::size_t kind = provider.ConsumeIntegral<std::uint8_t>() % kinds;
    if (kind < calls().size()) {
        world.call(filled(calls()[kind], provider));
        return;
    }
    kind -= calls().size();
    if (kind < signals().size()) {
        world.signal(filled(signals()[kind], provider));
        return;
    }
    kind -= signals().size();
    const std::size_t question = kind % questions;
    WireMessage message = {.type = Type::answer, .signature = resultSignatures[question]};
    if (kind >= questions) {
        message = {
            .type = Type::error,
            .errorName = "org.freedesktop.DBus.Error.ServiceUnknown",
            .signature = "s"};
    }
    answerQuestion(world, question, filled(message, provider));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // One for all inputs: whatever comes must leave no trace anyway.
    static World world;
    FuzzedDataProvider provider(data, size);
    for (std::size_t count = 0; count < messagesTried && provider.remaining_bytes() > 0; ++count) {
        sendOne(world, provider);
    }
    world.check();
    return 0;
}
