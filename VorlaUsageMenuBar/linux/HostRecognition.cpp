// SPDX-License-Identifier: MIT
#include "linux/HostRecognition.h"

#include "linux/AtomicFile.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace vorla {

namespace {

constexpr const char* busName = "org.freedesktop.DBus";
constexpr const char* busPath = "/org/freedesktop/DBus";
constexpr std::string_view watcherName = "org.kde.StatusNotifierWatcher";
constexpr std::string_view hostPrefix = "org.kde.StatusNotifierHost-";
/// The bus itself answers, at once.
constexpr std::chrono::seconds callLimit{10};
/// Of names. A desktop has two or three; with more nobody asks what each of them is.
constexpr std::size_t maximumHosts = 16;

bool belongsToAPanel(std::string_view name) {
    return name == watcherName || name.starts_with(hostPrefix);
}

/// The command name of a process, or nothing if it cannot be read. The kernel ends it with a line
/// break; others belong to the name. Should another process have the number by now, then the one
/// asked for has left the bus, and the news of that brings the next look.
std::string commandName(std::uint32_t process) {
    constexpr std::size_t maximumBytes = 64;
    std::string name = readFile("/proc/" + std::to_string(process) + "/comm", maximumBytes).bytes;
    if (name.ends_with('\n')) {
        name.pop_back();
    }
    return name;
}

} // namespace

HostRecognition::HostRecognition(
    bus::Bus& bus, MainLoop& loop, std::function<void(IconKind)> recognised)
    : recognised_(std::move(recognised)), calls_(bus, loop, callLimit) {
    const bus::SignalRule rule = {
        .sender = busName,
        .path = busPath,
        .interface = busName,
        .member = "NameOwnerChanged",
        .firstArgumentNamespace = "org.kde"};
    ownerChanges_ = bus.subscribe(rule, [this](bus::Message& message) {
        if (belongsToAPanel(message.read<std::string>())) {
            look();
        }
    });
    look();
}

// One look at a time: owners that change faster than the bus answers cost no more than that.
void HostRecognition::look() {
    if (awaited_ > 0) {
        isOutdated_ = true;
        return;
    }
    isOutdated_ = false;
    found_.clear();
    awaited_ = 1;
    calls_.call({busName, busPath, busName, "ListNames"}, [this](const bus::Reply<Names>& reply) {
        lookAtProcesses(reply.results ? std::get<0>(*reply.results) : Names{});
    });
}

void HostRecognition::lookAtProcesses(const Names& names) {
    Names panels;
    std::ranges::copy_if(names, std::back_inserter(panels), belongsToAPanel);
    if (panels.size() > maximumHosts) {
        panels.clear();
        found_.emplace();
    }
    awaited_ = panels.size();
    for (const std::string& panel : panels) {
        calls_.call(
            {busName, busPath, busName, "GetConnectionUnixProcessID"},
            [this](const bus::Reply<std::uint32_t>& reply) {
                found_.insert(reply.results ? commandName(std::get<0>(*reply.results)) : "");
                --awaited_;
                finishLook();
            },
            panel);
    }
    finishLook();
}

void HostRecognition::finishLook() {
    if (awaited_ > 0) {
        return;
    }
    if (isOutdated_) {
        look();
    } else if (!found_.empty()) {
        recognised_(iconKind(found_));
    }
}

} // namespace vorla
