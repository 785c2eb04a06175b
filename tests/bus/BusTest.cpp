// SPDX-License-Identifier: MIT
#include "bus/PrivateBus.h"
#include "fakes/ManualLoop.h"
#include "linux/bus/Interface.h"
#include "model/ScopedVariable.h"

#include <gtest/gtest.h>

#include <systemd/sd-bus.h>
#include <unistd.h>

#include <stdexcept>

namespace vorla::bus {

namespace {

constexpr const char* peerName = "test.Peer";
constexpr const char* objectPath = "/object";
constexpr const char* interfaceName = "test.Interface";
constexpr std::chrono::seconds generousLimit{25};

using Everything = std::tuple<
    bool, std::uint8_t, std::int32_t, std::uint32_t, double, std::string, ObjectPath,
    std::vector<std::uint8_t>, std::vector<std::tuple<std::string, bool>>,
    std::map<std::string, std::vector<std::string>>, Dictionary>;

class BusTest : public testing::Test {
protected:
    BusTest() { peer.requestName(peerName); }

    /// Calls a method of the peer and waits for the answer.
    template <typename... Results, typename... Arguments>
    Reply<Results...> call(const std::string& member, const Arguments&... arguments) {
        std::optional<Reply<Results...>> answer;
        const Slot slot = caller.call(
            {peerName, objectPath, interfaceName, member}, generousLimit,
            [&](const Reply<Results...>& reply) { answer = reply; }, arguments...);
        EXPECT_TRUE(loop.runUntil([&] { return answer.has_value(); }));
        return answer.value();
    }

    PrivateBus daemon;
    ManualLoop loop;
    Bus peer = Bus::open(loop.real(), daemon.address());
    Bus caller = Bus::open(loop.real(), daemon.address());
};

TEST_F(BusTest, carriesValuesOfAllTypes) {
    Interface interface(interfaceName);
    interface.method("Echo", [](const Everything& value) {
        return std::tuple<Everything, std::int32_t>{value, 7};
    });
    const Slot object = exportObject(peer, objectPath, std::move(interface));
    const Everything value = {
        true,
        std::uint8_t{255},
        -2147483647,
        4294967295U,
        0.1,
        "naïve\ntext",
        {"/a/b"},
        {0, 1, 255},
        {{"one", true}, {"", false}},
        {{"key", {"a", "b"}}, {"none", {}}},
        {{"bool", true},
         {"byte", std::uint8_t{1}},
         {"int", std::int32_t{-1}},
         {"unsigned", std::uint32_t{1}},
         {"double", 2.5},
         {"text", "text"},
         {"texts", std::vector<std::string>{"a"}},
         {"nested", std::vector<std::vector<std::string>>{{"a"}, {}}}}};
    const auto reply = call<Everything, std::int32_t>("Echo", value);
    EXPECT_EQ(reply.results, (std::tuple<Everything, std::int32_t>{value, 7}));
}

TEST_F(BusTest, readsAVariantOfAnotherTypeAsNoValue) {
    Interface interface(interfaceName);
    std::optional<Variant> received;
    std::int32_t after = 0;
    interface.method("Take", [&](const Variant& value, std::int32_t next) {
        received = value;
        after = next;
    });
    const Slot object = exportObject(peer, objectPath, std::move(interface));
    EXPECT_TRUE(call<>("Take", InVariant<ObjectPath>{{"/path"}}, std::int32_t{5}).results);
    EXPECT_EQ(received, Variant());
    EXPECT_EQ(after, 5);
}

TEST_F(BusTest, refusesToSendWhatTheBusForbids) {
    EXPECT_THROW(call<>("Take", Variant()), std::system_error);
    EXPECT_THROW(call<>("Take", std::string("\xFF")), std::system_error);
    EXPECT_THROW(call<>("Take", ObjectPath{"no path"}), std::system_error);
}

TEST_F(BusTest, refusesCallsOfAnotherSignature) {
    Interface interface(interfaceName);
    bool called = false;
    interface.method("Take", [&](std::int32_t) { called = true; });
    const Slot object = exportObject(peer, objectPath, std::move(interface));
    EXPECT_EQ(
        call<>("Take", std::uint32_t{1}).error.name, "org.freedesktop.DBus.Error.InvalidArgs");
    EXPECT_EQ(call<>("Take").error.name, "org.freedesktop.DBus.Error.InvalidArgs");
    EXPECT_FALSE(called);
    EXPECT_TRUE(call<>("Take", std::int32_t{1}).results);
    EXPECT_TRUE(called);
}

TEST_F(BusTest, answersWhatAMethodThrowsWithAnError) {
    Interface interface(interfaceName);
    interface.method("Refuse", []() -> std::int32_t {
        throw std::system_error(EINVAL, std::generic_category(), "no such thing");
    });
    interface.method("Fail", [] { throw std::runtime_error("failure"); });
    const Slot object = exportObject(peer, objectPath, std::move(interface));
    const auto refused = call<std::int32_t>("Refuse");
    EXPECT_FALSE(refused.results);
    EXPECT_EQ(refused.error.name, "org.freedesktop.DBus.Error.InvalidArgs");
    EXPECT_EQ(refused.error.text.find("no such thing"), 0U);
    EXPECT_FALSE(call<>("Fail").error.name.empty());
    EXPECT_EQ(call<>("Missing").error.name, "org.freedesktop.DBus.Error.UnknownMethod");
}

TEST_F(BusTest, reportsResultsOfAnotherTypeAsAnError) {
    Interface interface(interfaceName);
    interface.method("Text", [] { return std::string("text"); });
    const Slot object = exportObject(peer, objectPath, std::move(interface));
    const auto wrongType = call<std::int32_t>("Text");
    EXPECT_FALSE(wrongType.results);
    EXPECT_EQ(wrongType.error.name, "org.freedesktop.DBus.Error.InvalidSignature");
    const auto tooMany = call<std::string, std::string>("Text");
    EXPECT_FALSE(tooMany.results);
    EXPECT_TRUE(call<std::string>("Text").results);
}

TEST_F(BusTest, reportsACallToNobodyAsAnError) {
    std::optional<Reply<>> answer;
    const Slot slot = caller.call(
        {"test.Nobody", objectPath, interfaceName, "Take"}, generousLimit,
        [&](const Reply<>& reply) { answer = reply; });
    EXPECT_FALSE(answer);
    ASSERT_TRUE(loop.runUntil([&] { return answer.has_value(); }));
    EXPECT_FALSE(answer->results);
    EXPECT_FALSE(answer->error.name.empty());
}

TEST_F(BusTest, reportsAPeerThatDoesNotAnswerInTime) {
    EventLoop neverRun;
    Bus silent = Bus::open(neverRun, daemon.address());
    ASSERT_TRUE(silent.requestName("test.Silent"));
    std::optional<Reply<>> answer;
    const Slot slot = caller.call(
        {"test.Silent", objectPath, interfaceName, "Take"}, std::chrono::milliseconds{1},
        [&](const Reply<>& reply) { answer = reply; });
    ASSERT_TRUE(loop.runUntil([&] { return answer.has_value(); }));
    EXPECT_EQ(answer->error.name, "org.freedesktop.DBus.Error.NoReply");
}

TEST_F(BusTest, forgetsACallWhoseSlotIsDropped) {
    Interface interface(interfaceName);
    int calls = 0;
    interface.method("Take", [&] { ++calls; });
    const Slot object = exportObject(peer, objectPath, std::move(interface));
    bool answered = false;
    Slot slot = caller.call(
        {peerName, objectPath, interfaceName, "Take"}, generousLimit,
        [&](const Reply<>&) { answered = true; });
    slot.reset();
    EXPECT_TRUE(call<>("Take").results);
    EXPECT_EQ(calls, 2);
    EXPECT_FALSE(answered);
}

TEST_F(BusTest, letsAnAnswerDropItsOwnSlot) {
    Interface interface(interfaceName);
    interface.method("Take", [] {});
    const Slot object = exportObject(peer, objectPath, std::move(interface));
    std::string witness = "before";
    Slot slot;
    slot = caller.call(
        {peerName, objectPath, interfaceName, "Take"}, generousLimit,
        [&slot, &witness,
         text = std::string("a text too long to be stored in place")](const Reply<>&) {
            slot.reset();
            witness = text;
        });
    ASSERT_TRUE(loop.runUntil([&] { return witness != "before"; }));
    EXPECT_EQ(witness, "a text too long to be stored in place");
}

TEST_F(BusTest, letsAMethodWithdrawItsOwnObject) {
    Slot object;
    Interface interface(interfaceName);
    interface.method("Withdraw", [&object] {
        object.reset();
        return std::string("done");
    });
    object = exportObject(peer, objectPath, std::move(interface));
    EXPECT_EQ(call<std::string>("Withdraw").results, std::tuple<std::string>{"done"});
    EXPECT_FALSE(call<std::string>("Withdraw").results);
}

TEST_F(BusTest, runsACallThatWantsNoAnswer) {
    Interface interface(interfaceName);
    int calls = 0;
    interface.method("Take", [&] {
        ++calls;
        throw std::runtime_error("nobody wants to know");
    });
    const Slot object = exportObject(peer, objectPath, std::move(interface));
    ASSERT_GE(
        sd_bus_call_method_async(
            caller.native(), nullptr, peerName, objectPath, interfaceName, "Take", nullptr, nullptr,
            nullptr),
        0);
    ASSERT_TRUE(loop.runUntil([&] { return calls == 1; }));
    EXPECT_FALSE(call<>("Take").results);
    EXPECT_EQ(calls, 2);
}

TEST_F(BusTest, deliversSignalsThatASubscriptionIsAbout) {
    std::vector<std::string> received;
    const Slot subscription = caller.subscribe(
        {.path = objectPath,
         .interface = interfaceName,
         .member = "Changed",
         .firstArgument = "mine"},
        [&](Message& message) {
            const auto first = message.read<std::string>();
            received.push_back(first + message.read<std::string>());
        });
    const Slot object = exportObject(peer, objectPath, Interface(interfaceName));
    // Ends the wait for the subscription to be in force.
    call<>("Missing");
    peer.emit(objectPath, interfaceName, "Changed", std::string("other"), std::string("1"));
    peer.emit(objectPath, interfaceName, "Unrelated", std::string("mine"), std::string("2"));
    peer.emit(objectPath, interfaceName, "Changed", std::string("mine"), std::int32_t{3});
    peer.emit(objectPath, interfaceName, "Changed", std::string("mine"), std::string("4"));
    ASSERT_TRUE(loop.runUntil([&] { return !received.empty(); }));
    EXPECT_EQ(received, std::vector<std::string>{"mine4"});
}

TEST_F(BusTest, deliversNoMoreSignalsOnceASubscriptionIsDropped) {
    int dropped = 0;
    int kept = 0;
    Slot first;
    first = caller.subscribe({.interface = interfaceName}, [&](Message&) {
        ++dropped;
        first.reset();
    });
    const Slot second = caller.subscribe({.interface = interfaceName}, [&](Message&) { ++kept; });
    call<>("Missing");
    peer.emit(objectPath, interfaceName, "Changed");
    peer.emit(objectPath, interfaceName, "Changed");
    ASSERT_TRUE(loop.runUntil([&] { return kept == 2; }));
    EXPECT_EQ(dropped, 1);
}

TEST_F(BusTest, dropsASignalThatCannotBeBuilt) {
    std::vector<std::string> received;
    const Slot subscription = caller.subscribe({.interface = interfaceName}, [&](Message& message) {
        received.push_back(message.read<std::string>());
    });
    call<>("Missing");
    EXPECT_NO_THROW(peer.emit(objectPath, interfaceName, "Changed", std::string("\xFF")));
    EXPECT_NO_THROW(peer.emit(objectPath, interfaceName, "Changed", std::string("\uFFFF")));
    EXPECT_NO_THROW(peer.emit("no path", interfaceName, "Changed", std::string("path")));
    EXPECT_NO_THROW(peer.emit(objectPath, interfaceName, "no member", std::string("member")));
    EXPECT_NO_THROW(peer.emit(objectPath, interfaceName, "Changed", ObjectPath{"no path"}));
    peer.emit(objectPath, interfaceName, "Changed", std::string("last"));
    ASSERT_TRUE(loop.runUntil([&] { return !received.empty(); }));
    EXPECT_EQ(received, std::vector<std::string>{"last"});
}

TEST_F(BusTest, tellsTheProcessOfAPeer) {
    std::optional<Reply<std::uint32_t>> answer;
    const Slot slot = caller.call(
        {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
         "GetConnectionUnixProcessID"},
        generousLimit, [&](const Reply<std::uint32_t>& reply) { answer = reply; },
        std::string(peerName));
    ASSERT_TRUE(loop.runUntil([&] { return answer.has_value(); }));
    EXPECT_EQ(answer->results, std::tuple{static_cast<std::uint32_t>(getpid())});
}

TEST_F(BusTest, doesNotGetANameThatIsTaken) {
    EXPECT_FALSE(caller.requestName(peerName));
    EXPECT_TRUE(caller.requestName("test.Free"));
    EXPECT_THROW(caller.requestName("no name"), std::system_error);
}

TEST_F(BusTest, neverQueuesForATakenName) {
    {
        auto holder = Bus::open(loop.real(), daemon.address());
        ASSERT_TRUE(holder.requestName("test.Taken"));
        EXPECT_FALSE(caller.requestName("test.Taken"));
    }
    // Once the holder is gone the name is free for anyone.
    EXPECT_TRUE(loop.runUntil([&] { return peer.requestName("test.Taken"); }));
}

TEST_F(BusTest, tellsOnceThatTheBusIsLost) {
    int losses = 0;
    caller.onDisconnect([&] { ++losses; });
    std::optional<Reply<>> answer;
    EventLoop neverRun;
    Bus silent = Bus::open(neverRun, daemon.address());
    ASSERT_TRUE(silent.requestName("test.Silent"));
    const Slot slot = caller.call(
        {"test.Silent", objectPath, interfaceName, "Take"}, generousLimit,
        [&](const Reply<>& reply) { answer = reply; });
    daemon.stop();
    ASSERT_TRUE(loop.runUntil([&] { return losses > 0; }));
    loop.runPending();
    EXPECT_EQ(losses, 1);
    ASSERT_TRUE(answer);
    EXPECT_FALSE(answer->results);
    EXPECT_NO_THROW(caller.emit(objectPath, interfaceName, "Changed"));
    EXPECT_THROW(caller.requestName("test.Late"), std::system_error);
}

TEST_F(BusTest, leavesSlotsHarmlessThatOutliveTheConnection) {
    std::optional<Bus> shortLived = Bus::open(loop.real(), daemon.address());
    Slot subscription = shortLived->subscribe({.interface = interfaceName}, [](Message&) {});
    Slot object = exportObject(*shortLived, objectPath, Interface(interfaceName));
    shortLived.reset();
    subscription.reset();
    object.reset();
    EXPECT_FALSE(call<>("Missing").results);
}

TEST_F(BusTest, opensTheBusOfTheSession) {
    const ScopedVariable variable("DBUS_SESSION_BUS_ADDRESS", daemon.address());
    auto session = Bus::openSession(loop.real());
    EXPECT_FALSE(session.requestName(peerName));
}

TEST_F(BusTest, failsToOpenABusThatIsNotThere) {
    const ScopedVariable variable("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    EXPECT_THROW(Bus::openSession(loop.real()), std::system_error);
    EXPECT_THROW(Bus::open(loop.real(), "unix:path=/nonexistent/bus"), std::system_error);
    EXPECT_THROW(Bus::open(loop.real(), "nonsense"), std::system_error);
}

} // namespace

} // namespace vorla::bus
