// SPDX-License-Identifier: MIT
#pragma once

#include "bus/PrivateBus.h"
#include "fakes/ManualLoop.h"
#include "linux/bus/Bus.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>

namespace vorla {

/// Lets a private bus start a program for the name when somebody wants it. `folder` is for the
/// files that say so.
inline void offerService(
    ManualLoop& loop, const PrivateBus& daemon, const std::string& folder, const std::string& name,
    const std::string& command) {
    std::filesystem::create_directories(folder);
    std::ofstream(folder + "/" + name + ".service")
        << "[D-BUS Service]\nName=" << name << "\nExec=" << command << "\n";

    // The configuration is beside the socket.
    const std::string prefix = "unix:path=";
    const std::string socket =
        daemon.address().substr(prefix.size(), daemon.address().find(',') - prefix.size());
    const std::string path = std::filesystem::path(socket).parent_path() / "bus.conf";
    std::ifstream old(path);
    std::string text{std::istreambuf_iterator<char>(old), {}};
    const std::string line = "<servicedir>" + folder + "</servicedir>";
    if (text.find(line) == std::string::npos) {
        text.insert(text.find("</busconfig>"), line + "\n");
        std::ofstream(path) << text;
    }

    auto bus = bus::Bus::open(loop.real(), daemon.address());
    std::optional<bool> done;
    const auto slot = bus.call(
        {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ReloadConfig"},
        std::chrono::seconds{25},
        [&](const bus::Reply<>& reply) { done = reply.results.has_value(); });
    loop.runUntil([&] { return done.has_value(); });
    if (!done.value_or(false)) {
        throw std::runtime_error("the bus did not reload its configuration");
    }
}

} // namespace vorla
