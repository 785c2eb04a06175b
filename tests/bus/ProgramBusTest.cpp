// SPDX-License-Identifier: MIT
// The program itself on a bus that breaks its word, and among peers that do.
#include "bus/OddBodies.h"
#include "bus/ProgramOnBus.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <memory>
#include <set>
#include <string>
#include <system_error>
#include <tuple>
#include <utility>
#include <vector>

namespace vorla {

namespace {

/// Takes connections as a bus does, says one thing to each, whatever it is asked, and hangs up.
class FaithlessBus final {
public:
    FaithlessBus(ManualLoop& loop, const std::string& path, std::string answer)
        : answer_(std::move(answer)), address_("unix:path=" + path) {
        sockaddr_un place = {.sun_family = AF_UNIX, .sun_path = {}};
        path.copy(static_cast<char*>(place.sun_path), sizeof place.sun_path - 1);
        if (bind(socket_.number(), reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0 ||
            listen(socket_.number(), 1) != 0) {
            throw std::system_error(errno, std::generic_category(), path);
        }
        watch_ = loop.whenReadable(socket_.number(), [this] { receiveVisitor(); });
    }

    const std::string& address() const { return address_; }

    int visitors = 0;

private:
    void receiveVisitor() {
        const FileDescriptor visitor(accept4(socket_.number(), nullptr, nullptr, SOCK_CLOEXEC));
        ++visitors;
        send(visitor.number(), answer_.data(), answer_.size(), MSG_NOSIGNAL);
    }

    std::string answer_;
    std::string address_;
    FileDescriptor socket_{socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
    std::unique_ptr<MainLoop::Source> watch_;
};

struct Member {
    std::string path;
    std::string interface;
    std::string name;
};

class ProgramBusTest : public ProgramOnBus {
protected:
    /// All that a peer can call, and some that nobody can.
    static std::vector<Member> members() {
        const std::string properties = "org.freedesktop.DBus.Properties";
        std::vector<Member> all = {
            {itemPath, itemInterface, "ProvideXdgActivationToken"},
            {itemPath, itemInterface, "Activate"},
            {menuPath, menuInterface, "GetLayout"},
            {menuPath, menuInterface, "GetGroupProperties"},
            {menuPath, menuInterface, "GetProperty"},
            {menuPath, menuInterface, "Event"},
            {menuPath, menuInterface, "EventGroup"},
            {menuPath, menuInterface, "AboutToShow"},
            {menuPath, menuInterface, "AboutToShowGroup"},
            {"/", "no.such.Interface", "None"}};
        for (const std::string path : {itemPath, menuPath}) {
            for (const std::string name : {"Get", "GetAll", "Set"}) {
                all.push_back({path, properties, name});
            }
            all.push_back({path, "org.freedesktop.DBus.Introspectable", "Introspect"});
            all.push_back({path, "org.freedesktop.DBus.Peer", "Ping"});
        }
        return all;
    }

    /// The name of the error that the call came to; empty if it succeeded.
    static std::string errorOf(bus::Bus& peer, const Member& member, const Body& write) {
        sd_bus_message* native = nullptr;
        bus::checked(
            sd_bus_message_new_method_call(
                peer.native(), &native, applicationName, member.path.c_str(),
                member.interface.c_str(), member.name.c_str()),
            "sd_bus_message_new_method_call");
        auto call = bus::Message::owning(native);
        write(call);
        sd_bus_error error = {};
        sd_bus_call(peer.native(), native, 0, &error, nullptr);
        std::string name = error.name == nullptr ? "" : error.name;
        sd_bus_error_free(&error);
        return name;
    }

    /// Sends a signal to the program alone, whoever it should come from.
    static void forge(bus::Bus& peer, const Member& signal, const Body& write) {
        sd_bus_message* native = nullptr;
        bus::checked(
            sd_bus_message_new_signal(
                peer.native(), &native, signal.path.c_str(), signal.interface.c_str(),
                signal.name.c_str()),
            "sd_bus_message_new_signal");
        auto message = bus::Message::owning(native);
        write(message);
        bus::checked(sd_bus_message_set_destination(native, applicationName), "set_destination");
        bus::checked(sd_bus_send(peer.native(), native, nullptr), "sd_bus_send");
        sd_bus_flush(peer.native());
    }

    bool runUntilNobodyWatches() {
        return loop().runUntil([this] {
            const auto reply = panel().call<bool>(
                {"org.freedesktop.DBus", "/", "org.freedesktop.DBus", "NameHasOwner"},
                std::string("org.kde.StatusNotifierWatcher"));
            return reply.results && !std::get<0>(*reply.results);
        });
    }
};

} // namespace

TEST_F(ProgramBusTest, saysThatThereIsNoSessionBusIfItHangsUp) {
    const std::string accepted = "DATA\r\nOK 0123456789abcdef0123456789abcdef\r\nAGREE_UNIX_FD\r\n";
    const Texts answers = {"",       "nonsense\r\n",        "REJECTED EXTERNAL\r\n",
                           accepted, accepted + "nonsense", std::string(100'000, '\0')};
    for (const auto& answer : answers) {
        const auto path = (folder() / "bus").string();
        {
            const FaithlessBus bus(loop(), path, answer);
            expectEnd(
                start({}, {"DBUS_SESSION_BUS_ADDRESS=" + bus.address()}), 1,
                "VorlaUsageMenuBar: There is no session bus.\n");
            EXPECT_EQ(bus.visitors, 1);
        }
        std::filesystem::remove(path);
    }
}

TEST_F(ProgramBusTest, registersWithEachOfAHundredPanels) {
    auto& program = startWithFigures();
    const auto descriptors = descriptorsOf(program);
    for (int count = 0; count < 100; ++count) {
        ScriptedPanel watcher(loop(), bus().address());
        ASSERT_TRUE(runUntilNobodyWatches());
        ASSERT_TRUE(watcher.becomeWatcher());
        ASSERT_TRUE(runUntilRegistered(watcher));
        EXPECT_TRUE(watcher.catchUp());
        EXPECT_EQ(watcher.registrations.size(), 1U);
    }
    EXPECT_TRUE(runUntilDescriptors(program, descriptors));
    endsAtRequest(program);
}

TEST_F(ProgramBusTest, goesOnWhenAPanelVanishesInTheMiddleOfACall) {
    auto& program = startWithFigures();
    for (int count = 0; count < 20; ++count) {
        int calls = 0;
        auto vanishing = bus::Bus::open(loop().real(), bus().address());
        sd_bus_slot* slot = nullptr;
        bus::checked(
            sd_bus_add_object(
                vanishing.native(), &slot, "/StatusNotifierWatcher",
                [](sd_bus_message*, void* counter, sd_bus_error*) {
                    // Nothing that could be taken for an answer.
                    return ++*static_cast<int*>(counter);
                },
                &calls),
            "sd_bus_add_object");
        const bus::Slot object(slot);
        ASSERT_TRUE(runUntilNobodyWatches());
        ASSERT_TRUE(vanishing.requestName("org.kde.StatusNotifierWatcher"));
        ASSERT_TRUE(loop().runUntil([&] { return calls > 0; }));
    }
    ASSERT_TRUE(runUntilNobodyWatches());
    ASSERT_TRUE(panel().becomeWatcher());
    EXPECT_TRUE(runUntilRegistered(panel()));
    endsAtRequest(program);
}

TEST_F(ProgramBusTest, answersCallsOfEveryTypeAndSizeAndStaysAsItIs) {
    const std::set<std::string> allowed = {
        "", // a call that happens to be right
        SD_BUS_ERROR_INVALID_ARGS,
        SD_BUS_ERROR_UNKNOWN_METHOD,
        SD_BUS_ERROR_UNKNOWN_OBJECT,
        SD_BUS_ERROR_UNKNOWN_INTERFACE,
        SD_BUS_ERROR_UNKNOWN_PROPERTY,
        SD_BUS_ERROR_PROPERTY_READ_ONLY};
    auto& program = startWithFigures();
    const auto lines = panel().lines();
    const auto descriptors = descriptorsOf(program);
    auto peer = bus::Bus::open(loop().real(), bus().address());
    const auto bodies = oddBodies();
    for (const auto& member : members()) {
        for (std::size_t index = 0; index < bodies.size(); ++index) {
            const auto error = errorOf(peer, member, bodies[index]);
            EXPECT_TRUE(allowed.contains(error)) << member.name << " " << index << " " << error;
        }
        ASSERT_FALSE(program.hasEnded()) << member.name;
    }
    EXPECT_EQ(panel().lines(), lines);
    EXPECT_TRUE(runUntilFigures());
    EXPECT_TRUE(runUntilDescriptors(program, descriptors));
    endsAtRequest(program);
}

TEST_F(ProgramBusTest, letsNobodySetAProperty) {
    auto& program = startWithFigures();
    const std::vector<std::pair<const char*, const char*>> objects = {
        {itemPath, itemInterface}, {menuPath, menuInterface}};
    auto peer = bus::Bus::open(loop().real(), bus().address());
    for (const auto& [path, interface] : objects) {
        const auto all = panel().call<bus::Dictionary>(
            {applicationName, path, "org.freedesktop.DBus.Properties", "GetAll"},
            std::string(interface));
        ASSERT_TRUE(all.results);
        for (const auto& [name, value] : std::get<0>(*all.results)) {
            for (const auto& other : {bus::Variant("x"), bus::Variant(true), bus::Variant(0.5)}) {
                EXPECT_EQ(
                    errorOf(
                        peer, {path, "org.freedesktop.DBus.Properties", "Set"},
                        bodyOf(std::string(interface), name, other)),
                    SD_BUS_ERROR_PROPERTY_READ_ONLY)
                    << name;
            }
        }
    }
    EXPECT_TRUE(runUntilFigures());
    endsAtRequest(program);
}

TEST_F(ProgramBusTest, takesNoPeersWordForThatOfTheBus) {
    const std::vector<Member> signals = {
        {"/org/freedesktop/DBus", "org.freedesktop.DBus", "NameOwnerChanged"},
        {"/org/freedesktop/DBus", "org.freedesktop.DBus", "NameLost"},
        {"/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected"},
        {"/org/freedesktop/Notifications", "org.freedesktop.Notifications", "NotificationClosed"}};
    auto& program = startWithFigures();
    for (const auto& signal : signals) {
        for (const auto& body : oddBodies()) {
            // A bus may throw out who forges.
            auto forger = bus::Bus::open(loop().real(), bus().address());
            forge(forger, signal, body);
        }
        EXPECT_TRUE(panel().catchUp());
        ASSERT_FALSE(program.hasEnded()) << signal.name;
    }
    ASSERT_TRUE(panel().becomeWatcher());
    EXPECT_TRUE(runUntilRegistered(panel()));
    EXPECT_TRUE(runUntilFigures());
    endsAtRequest(program);
}

TEST_F(ProgramBusTest, answersThePanelWhileTheNotificationServiceHangs) {
    auto& service = startNotificationService();
    service.answers["GetServerInformation"] = ScriptedNotificationService::silence();
    auto& program = startWithFigures();
    choose(LineRole::quotaNotifications);
    ASSERT_TRUE(loop().runUntil([&] { return !service.calls.empty(); }));
    for (int count = 0; count < 3; ++count) {
        choose(LineRole::refresh);
        EXPECT_TRUE(runUntilFigures());
    }
    EXPECT_FALSE(isChecked(LineRole::quotaNotifications));
    endsAtRequest(program);
}

} // namespace vorla
