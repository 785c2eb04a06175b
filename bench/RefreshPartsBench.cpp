// SPDX-License-Identifier: MIT
// Where the CPU of one refresh goes: the program's classes, one after another, as it uses them.
#include "Benches.h"
#include "Session.h"
#include "SnapshotText.h"
#include "app/CompanionLookup.h"
#include "linux/ProcessLauncher.h"
#include "linux/StatusNotifierItem.h"

#include <ctime>
#include <utility>
#include <vector>

namespace vorla::bench {

namespace {

/// Of one refresh.
struct Parts {
    Nanoseconds lookingUp{0};
    Nanoseconds spawning{0};
    Nanoseconds reading{0};
    Nanoseconds decoding{0};
    Nanoseconds composing{0};
    Nanoseconds publishing{0};
};

/// Collects what a child prints.
class Collector final : public ChildProcess::Listener {
public:
    void received(ChildProcess::Stream, std::string_view bytes) override { output.append(bytes); }
    void ended(ChildProcess::Stream) override { ++ends; }
    void exited(int) override { ++ends; }

    std::string output;
    int ends = 0;
};

/// Runs `work` and adds what this thread computed meanwhile to `part`.
template <typename Work>
auto timed(Nanoseconds& part, Work work) {
    const Nanoseconds start = threadProcessorTime();
    auto result = work();
    part += threadProcessorTime() - start;
    return result;
}

/// The menu is made and shown twice: when the run begins and when it has ended.
void showMenu(Parts& parts, StatusNotifierItem& item, const MenuState& state) {
    const auto now = static_cast<double>(std::time(nullptr));
    const auto menu = timed(parts.composing, [&] { return composeMenu(state, now); });
    const Nanoseconds start = threadProcessorTime();
    item.show(menu);
    parts.publishing += threadProcessorTime() - start;
}

/// Runs the companion once and returns what it printed. What the reading threads compute counts as
/// reading, wherever they happen to be when launch() returns.
std::string runCompanion(
    Parts& parts, Session& session, LinuxProcessLauncher& launcher, const LaunchRequest& request) {
    Collector collector;
    const Nanoseconds start = processorTime();
    auto child = timed(parts.spawning, [&] { return launcher.launch(request, collector); });
    session.loop().runUntil([&] { return collector.ends == 3; });
    child.reset();
    parts.reading += processorTime() - start - parts.spawning;
    return std::move(collector.output);
}

Parts refreshOnce(
    Session& session, LinuxProcessLauncher& launcher, StatusNotifierItem& item, MenuState& state) {
    Parts parts;
    const CompanionPlaces places{
        .environment = Environment(session.environment()),
        .homeDirectory = "/nonexistent",
        .resourcesDirectory = std::nullopt};
    const auto request = timed(parts.lookingUp, [&] {
        const auto environment = places.environment.with("VORLA_USAGE_COMPANION", "1");
        return LaunchRequest{
            .path = findCompanion(places).value_or(""),
            .argument = "--json",
            .environment = environment.entries()};
    });
    state.refreshing = true;
    showMenu(parts, item, state);
    const std::string output = runCompanion(parts, session, launcher, request);
    state.usage = timed(parts.decoding, [&] { return Usage::decode(output); });
    state.refreshing = false;
    showMenu(parts, item, state);
    return parts;
}

} // namespace

void measureRefreshParts(Table& table) {
    constexpr int refreshes = 200;
    Session session;
    bus::Bus bus = bus::Bus::open(session.loop().real(), session.busAddress());
    StatusNotifierItem item(bus, session.loop(), "");
    LinuxProcessLauncher launcher(session.loop());
    MenuState state;
    std::vector<Parts> all;
    for (int count = 0; count < refreshes; ++count) {
        session.setOutput(snapshotText(count % 100));
        all.push_back(refreshOnce(session, launcher, item, state));
        session.loop().runPending();
    }
    const auto add = [&](const char* name, Nanoseconds Parts::* part) {
        std::vector<Nanoseconds> times;
        for (const Parts& parts : all) {
            times.push_back(parts.*part);
        }
        table.add({name, inMicroseconds(median(std::move(times))), "us"});
    };
    table.heading("CPU of a refresh, by parts");
    add("finding the companion", &Parts::lookingUp);
    add("spawning it", &Parts::spawning);
    add("reading its output, two threads", &Parts::reading);
    add("decoding the snapshot", &Parts::decoding);
    add("composing the menu, twice", &Parts::composing);
    add("publishing the differences", &Parts::publishing);
}

} // namespace vorla::bench
