// SPDX-License-Identifier: MIT
// From exec to the item in the panel, beside a program that only connects to the bus.
#include "Benches.h"
#include "Session.h"
#include "SnapshotText.h"

#include <vector>

namespace vorla::bench {

void measureStartUp(Table& table, const std::string& program) {
    constexpr int starts = 41;
    Session session;
    session.setOutput(snapshotText(50));
    std::vector<Nanoseconds> ours;
    std::vector<Nanoseconds> floors;
    std::vector<Nanoseconds> processorTimes;
    // In turn, so that whatever else the machine does falls on both.
    for (int count = 0; count < starts; ++count) {
        floors.push_back(session.floorStartUpTime());
        const auto process = session.start(program);
        processorTimes.push_back(process->processorTime());
        ours.push_back(session.startUpTime());
        session.waitForTitle(titleOf(50));
    }
    const auto own = median(ours);
    const auto floor = median(floors);
    table.heading("Start");
    table.add({"exec to registered item", inMilliseconds(own), "ms"});
    table.add({"own CPU until then", inMilliseconds(median(processorTimes)), "ms"});
    table.add({"bare floor: exec to connected", inMilliseconds(floor), "ms"});
    table.add({"ratio of the two", inMilliseconds(own) / inMilliseconds(floor), "x", 4});
}

} // namespace vorla::bench
