// SPDX-License-Identifier: MIT
// What is computed between a snapshot and the bus.
#include "Benches.h"
#include "SnapshotText.h"
#include "linux/PublishedMenu.h"
#include "model/StatusMenu.h"

#include <ctime>
#include <stdexcept>

namespace vorla::bench {

namespace {

constexpr std::size_t rounds = 51;
constexpr std::size_t calls = 100;

} // namespace

void measureModel(Table& table) {
    const std::string text = snapshotText(87);
    MenuState state;
    state.usage = Usage::decode(text);
    const auto now = static_cast<double>(std::time(nullptr));
    const StatusMenu menu = composeMenu(state, now);
    PublishedMenu published;
    published.update(menu.lines);
    published.publishWaitingLines();

    // Results that nobody looks at could be left out by the compiler.
    std::size_t seen = 0;
    const auto decoding =
        medianOfCalls(rounds, calls, [&] { seen += Usage::decode(text).windows.size(); });
    const auto composing =
        medianOfCalls(rounds, calls, [&] { seen += composeMenu(state, now).lines.size(); });
    const auto comparing =
        medianOfCalls(rounds, calls, [&] { seen += published.update(menu.lines).size(); });

    if (seen != rounds * calls * (state.usage->windows.size() + menu.lines.size())) {
        throw std::logic_error("The calls that were measured have given other results.");
    }
    table.heading("Snapshot and menu");
    table.add({"size of the snapshot", static_cast<double>(text.size()), ""});
    table.add({"lines of its menu", static_cast<double>(menu.lines.size()), ""});
    table.add({"decoding the snapshot", inMicroseconds(decoding), "us", 50});
    table.add({"composing its menu", inMicroseconds(composing), "us", 50});
    table.add({"comparing it with the published one", inMicroseconds(comparing), "us", 50});
}

} // namespace vorla::bench
