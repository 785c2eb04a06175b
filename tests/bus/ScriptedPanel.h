// SPDX-License-Identifier: MIT
#pragma once

#include "fakes/ManualLoop.h"
#include "linux/PublishedMenu.h"
#include "linux/bus/Interface.h"

#include <systemd/sd-bus.h>

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace vorla {

inline constexpr const char* applicationName = "com.vorla.UsageMenuBar";
inline constexpr const char* itemPath = "/org/ayatana/NotificationItem/VorlaUsageMenuBar";
inline constexpr const char* menuPath = "/org/ayatana/NotificationItem/VorlaUsageMenuBar/Menu";
inline constexpr const char* itemInterface = "org.kde.StatusNotifierItem";
inline constexpr const char* menuInterface = "com.canonical.dbusmenu";

/// A signal as it came in over the bus; the fields are filled as its name demands.
struct ReceivedSignal {
    std::string name;
    /// Of XAyatanaNewLabel: label and guide.
    std::vector<std::string> texts = {};
    /// Of ItemsPropertiesUpdated.
    std::vector<PublishedMenu::Change> changes = {};
    std::vector<std::tuple<std::int32_t, std::vector<std::string>>> removed = {};
    /// Of LayoutUpdated.
    std::uint32_t revision = 0;
    std::int32_t parent = -1;
};

/// A panel on a connection of its own: takes registrations, records what the application sends and
/// asks it questions.
class ScriptedPanel final {
public:
    using Ids = std::vector<std::int32_t>;
    using Names = std::vector<std::string>;
    using Leaf = std::tuple<std::int32_t, bus::Dictionary, std::vector<bus::Variant>>;
    using Layout = std::tuple<std::int32_t, bus::Dictionary, std::vector<bus::InVariant<Leaf>>>;
    using Event = std::tuple<std::int32_t, std::string, bus::Variant, std::uint32_t>;

    ScriptedPanel(ManualLoop& loop, const std::string& address)
        : loop_(loop), bus_(bus::Bus::open(loop.real(), address)) {
        recording_ = bus_.subscribe(
            {.sender = applicationName}, [this](bus::Message& message) { record(message); });
    }

    /// Takes the name at which items register.
    bool becomeWatcher() {
        bus::Interface watcher("org.kde.StatusNotifierWatcher");
        watcher.method("RegisterStatusNotifierItem", [this](const std::string& service) {
            registrations.push_back(service);
        });
        watcher_ = bus::exportObject(bus_, "/StatusNotifierWatcher", std::move(watcher));
        return bus_.requestName("org.kde.StatusNotifierWatcher");
    }

    /// Calls a method of the application and waits for the answer.
    template <typename... Results, typename... Arguments>
    bus::Reply<Results...> call(const bus::MethodName& method, const Arguments&... arguments) {
        std::optional<bus::Reply<Results...>> answer;
        const auto slot = bus_.call(
            method, std::chrono::seconds{25},
            [&](const bus::Reply<Results...>& reply) { answer = reply; }, arguments...);
        loop_.runUntil([&] { return answer.has_value(); });
        return answer.value_or(bus::Reply<Results...>{std::nullopt, {"no answer", ""}});
    }

    template <typename... Results, typename... Arguments>
    bus::Reply<Results...> callItem(const std::string& member, const Arguments&... arguments) {
        return call<Results...>({applicationName, itemPath, itemInterface, member}, arguments...);
    }

    template <typename... Results, typename... Arguments>
    bus::Reply<Results...> callMenu(const std::string& member, const Arguments&... arguments) {
        return call<Results...>({applicationName, menuPath, menuInterface, member}, arguments...);
    }

    /// A property; reads only exactly this type.
    template <typename Value>
    std::optional<Value>
    property(const std::string& path, const std::string& interface, const std::string& name) {
        const auto reply = call<bus::InVariant<Value>>(
            {applicationName, path, "org.freedesktop.DBus.Properties", "Get"}, interface, name);
        if (!reply.results) {
            return std::nullopt;
        }
        return std::get<0>(*reply.results).value;
    }

    template <typename Value>
    std::optional<Value> itemProperty(const std::string& name) {
        return property<Value>(itemPath, itemInterface, name);
    }

    /// The lines with all properties, after all signals sent before them have come in; nothing if
    /// the application does not answer.
    std::optional<std::vector<Leaf>> linesIfAny() {
        const auto reply = callMenu<std::uint32_t, Layout>(
            "GetLayout", std::int32_t{0}, std::int32_t{-1}, Names{});
        if (!reply.results) {
            return std::nullopt;
        }
        std::vector<Leaf> result;
        for (const auto& child : std::get<2>(std::get<1>(*reply.results))) {
            result.push_back(child.value);
        }
        return result;
    }

    std::vector<Leaf> lines() {
        auto result = linesIfAny();
        if (!result) {
            throw std::runtime_error("The application gives no layout.");
        }
        return *std::move(result);
    }

    bool sendEvent(std::int32_t id, const std::string& kind) {
        return callMenu<>("Event", id, kind, bus::Variant(std::int32_t{0}), std::uint32_t{0})
            .results.has_value();
    }

    bool aboutToShow(std::int32_t id = 0) {
        const auto reply = callMenu<bool>("AboutToShow", id);
        if (!reply.results) {
            throw std::runtime_error(reply.error.name);
        }
        return std::get<0>(*reply.results);
    }

    /// Returns once everything that the application has sent so far has come in.
    bool catchUp() {
        return call<>({applicationName, itemPath, "org.freedesktop.DBus.Peer", "Ping"})
            .results.has_value();
    }

    /// Catches up and returns what has come in since the last call.
    std::vector<ReceivedSignal> newSignals() {
        catchUp();
        return std::exchange(signals_, {});
    }

    bus::Bus& bus() { return bus_; }

    std::vector<std::string> registrations;

private:
    void record(bus::Message& message) {
        ReceivedSignal signal{.name = sd_bus_message_get_member(message.native())};
        if (signal.name == "XAyatanaNewLabel") {
            signal.texts = {message.read<std::string>(), message.read<std::string>()};
        } else if (signal.name == "ItemsPropertiesUpdated") {
            signal.changes = message.read<decltype(signal.changes)>();
            signal.removed = message.read<decltype(signal.removed)>();
        } else if (signal.name == "LayoutUpdated") {
            signal.revision = message.read<std::uint32_t>();
            signal.parent = message.read<std::int32_t>();
        }
        signals_.push_back(std::move(signal));
    }

    ManualLoop& loop_;
    bus::Bus bus_;
    bus::Slot recording_;
    bus::Slot watcher_;
    std::vector<ReceivedSignal> signals_;
};

} // namespace vorla
