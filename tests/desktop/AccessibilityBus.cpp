// SPDX-License-Identifier: MIT
#include "desktop/AccessibilityBus.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace vorla {

namespace {

constexpr const char* busName = "org.freedesktop.DBus";
constexpr const char* registryName = "org.a11y.atspi.Registry";
constexpr const char* accessible = "org.a11y.atspi.Accessible";

/// Waits for the answer. Nothing if it is an error: what is asked may be gone by now.
template <typename... Results, typename... Arguments>
std::optional<std::tuple<Results...>> call(
    ManualLoop& loop, bus::Bus& bus, const bus::MethodName& method, const Arguments&... arguments) {
    std::optional<bus::Reply<Results...>> answer;
    const auto slot = bus.call(
        method, std::chrono::seconds{25},
        [&](const bus::Reply<Results...>& reply) { answer = reply; }, arguments...);
    loop.runUntil([&] { return answer.has_value(); });
    return answer ? answer->results : std::nullopt;
}

/// `call` for one result that has to come.
template <typename Result, typename... Arguments>
Result need(
    ManualLoop& loop, bus::Bus& bus, const bus::MethodName& method, const Arguments&... arguments) {
    const auto results = call<Result>(loop, bus, method, arguments...);
    if (!results) {
        throw std::runtime_error("no answer from " + method.destination + " to " + method.member);
    }
    return std::get<0>(*results);
}

void startService(ManualLoop& loop, bus::Bus& bus, const char* name) {
    need<std::uint32_t>(
        loop, bus, {busName, "/org/freedesktop/DBus", busName, "StartServiceByName"},
        std::string(name), std::uint32_t{0});
}

} // namespace

bool AccessibilityBus::Control::has(int state) const {
    return std::ranges::find(states, state) != states.end();
}

AccessibilityBus::AccessibilityBus(ManualLoop& loop, const std::string& sessionAddress)
    : loop_(loop), session_(bus::Bus::open(loop.real(), sessionAddress)),
      bus_(join(loop, session_)) {}

bus::Bus AccessibilityBus::join(ManualLoop& loop, bus::Bus& session) {
    constexpr const char* name = "org.a11y.Bus";
    constexpr const char* path = "/org/a11y/bus";
    startService(loop, session, name);
    // As a screen reader does. Programs that start from now on take part.
    call<>(
        loop, session, {name, path, "org.freedesktop.DBus.Properties", "Set"},
        std::string("org.a11y.Status"), std::string("IsEnabled"), bus::Variant(true));
    const auto address = need<std::string>(loop, session, {name, path, name, "GetAddress"});
    auto joined = bus::Bus::open(loop.real(), address);
    startService(loop, joined, registryName);
    return joined;
}

std::vector<pid_t> AccessibilityBus::programs(const std::string& name) {
    std::vector<pid_t> processes;
    for (const auto& program : childrenOf({registryName, {"/org/a11y/atspi/accessible/root"}})) {
        if (nameOf(program) == name) {
            processes.push_back(processOf(std::get<0>(program)));
        }
    }
    return processes;
}

std::vector<AccessibilityBus::Control> AccessibilityBus::controls(pid_t program) {
    std::vector<Control> found;
    for (const auto& other : childrenOf({registryName, {"/org/a11y/atspi/accessible/root"}})) {
        if (processOf(std::get<0>(other)) == program) {
            for (const auto& window : childrenOf(other)) {
                addControls(window, found);
            }
        }
    }
    return found;
}

bool AccessibilityBus::insertText(const Control& control, const std::string& text) {
    const auto done = call<bool>(
        loop_, bus_,
        {control.owner, control.path.path, "org.a11y.atspi.EditableText", "InsertText"},
        std::int32_t{0}, text, static_cast<std::int32_t>(text.size()));
    return done && std::get<0>(*done);
}

bool AccessibilityBus::press(const Control& control) {
    const auto done = call<bool>(
        loop_, bus_, {control.owner, control.path.path, "org.a11y.atspi.Action", "DoAction"},
        std::int32_t{0});
    return done && std::get<0>(*done);
}

std::string AccessibilityBus::textOf(const Control& control) {
    return need<std::string>(
        loop_, bus_, {control.owner, control.path.path, "org.a11y.atspi.Text", "GetText"},
        std::int32_t{0}, std::int32_t{-1});
}

std::vector<AccessibilityBus::Reference> AccessibilityBus::childrenOf(const Reference& parent) {
    const auto& [owner, path] = parent;
    const auto children =
        call<std::vector<Reference>>(loop_, bus_, {owner, path.path, accessible, "GetChildren"});
    return children ? std::get<0>(*children) : std::vector<Reference>{};
}

void AccessibilityBus::addControls(const Reference& reference, std::vector<Control>& controls) {
    const auto& [owner, path] = reference;
    const auto role = call<std::string>(loop_, bus_, {owner, path.path, accessible, "GetRoleName"});
    Control control = {
        .owner = owner,
        .path = path,
        .role = role ? std::get<0>(*role) : std::string(),
        .name = nameOf(reference),
        .states = statesOf(reference)};
    if (!control.has(visible)) {
        return;
    }
    controls.push_back(std::move(control));
    for (const auto& child : childrenOf(reference)) {
        addControls(child, controls);
    }
}

std::vector<int> AccessibilityBus::statesOf(const Reference& reference) {
    constexpr int wordBits = 32;
    const auto& [owner, path] = reference;
    const auto words =
        call<std::vector<std::uint32_t>>(loop_, bus_, {owner, path.path, accessible, "GetState"});
    std::vector<int> states;
    for (int state = 0; words && state < wordBits * 2; ++state) {
        const std::uint32_t word = std::get<0>(*words).at(static_cast<std::size_t>(state / 32));
        if ((word >> static_cast<unsigned>(state % wordBits) & 1U) != 0) {
            states.push_back(state);
        }
    }
    return states;
}

std::string AccessibilityBus::nameOf(const Reference& reference) {
    const auto& [owner, path] = reference;
    const auto name = call<bus::InVariant<std::string>>(
        loop_, bus_, {owner, path.path, "org.freedesktop.DBus.Properties", "Get"},
        std::string(accessible), std::string("Name"));
    return name ? std::get<0>(*name).value : std::string();
}

pid_t AccessibilityBus::processOf(const std::string& owner) {
    const auto process = call<std::uint32_t>(
        loop_, bus_, {busName, "/org/freedesktop/DBus", busName, "GetConnectionUnixProcessID"},
        owner);
    return process ? static_cast<pid_t>(std::get<0>(*process)) : 0;
}

} // namespace vorla
