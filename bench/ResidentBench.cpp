// SPDX-License-Identifier: MIT
// The program as it runs all day: at rest, while it refreshes, and after an output that is far too
// long.
#include "Benches.h"
#include "Session.h"
#include "SnapshotText.h"

#include <chrono>
#include <memory>
#include <vector>

namespace vorla::bench {

namespace {

using namespace std::chrono_literals;

constexpr int refreshesBeforeRest = 10;
constexpr std::size_t longOutputBytes = std::size_t{64} << 20U;

/// Starts the program and lets it do what it does in its first minutes.
std::unique_ptr<MeasuredProgram> startAndRefresh(Session& session, const std::string& program) {
    session.setOutput(snapshotText(0));
    auto process = session.start(program);
    session.waitForTitle(titleOf(0));
    for (int count = 0; count < refreshesBeforeRest; ++count) {
        session.refresh();
        session.readEverything();
    }
    session.wait(1s);
    return process;
}

/// What private dirty memory the program keeps of an output of 64 MiB, in MiB.
double growthByLongOutput(Session& session, const MeasuredProgram& process) {
    const double before = process.memory().privateDirtyMebibytes;
    session.refresh(longOutputBytes);
    session.wait(1s);
    return process.memory().privateDirtyMebibytes - before;
}

} // namespace

void measureMemory(Table& table, const std::string& program) {
    constexpr int starts = 5;
    std::vector<double> resident;
    std::vector<double> privateDirty;
    std::vector<double> threads;
    std::vector<double> libraries;
    std::vector<double> growths;
    for (int start = 0; start < starts; ++start) {
        Session session;
        const auto process = startAndRefresh(session, program);
        const auto memory = process->memory();
        resident.push_back(memory.residentMebibytes);
        privateDirty.push_back(memory.privateDirtyMebibytes);
        threads.push_back(static_cast<double>(process->threads()));
        libraries.push_back(static_cast<double>(process->libraries()));
        growths.push_back(growthByLongOutput(session, *process));
    }
    table.heading("At rest, after ten refreshes");
    table.add({"private dirty", median(privateDirty), "MiB", 0.8});
    table.add({"RSS", median(resident), "MiB", 6});
    table.add({"threads", median(threads), "", 1});
    table.add({"libraries", median(libraries), "", 14});
    table.add({"private dirty after 64 MiB of output, above before", median(growths), "MiB", 0.2});
}

void measureQuiet(Table& table, const std::string& program) {
    // Within the first of the program's own minutes, so that its timer does not fire.
    constexpr auto quiet = 40s;
    Session session;
    const auto process = startAndRefresh(session, program);
    const auto before = process->contextSwitches();
    session.wait(quiet);
    const auto wakeUps = process->contextSwitches() - before;
    table.heading("Between two refreshes");
    table.add({"wake-ups in 40 s", static_cast<double>(wakeUps), "", 0});
}

void measureRefresh(Table& table, const std::string& program) {
    constexpr int rounds = 9;
    constexpr int refreshesPerRound = 20;
    Session session;
    const auto process = startAndRefresh(session, program);
    std::vector<Nanoseconds> alone;
    std::vector<Nanoseconds> withReading;
    std::vector<Nanoseconds> latencies;
    for (int round = 0; round < rounds; ++round) {
        const Nanoseconds start = process->processorTime();
        for (int count = 0; count < refreshesPerRound; ++count) {
            session.refresh();
            latencies.push_back(session.exitToTitle());
        }
        const Nanoseconds middle = process->processorTime();
        for (int count = 0; count < refreshesPerRound; ++count) {
            session.refresh();
            session.readEverything();
        }
        alone.push_back((middle - start) / refreshesPerRound);
        withReading.push_back((process->processorTime() - middle) / refreshesPerRound);
    }
    table.heading("Refresh");
    table.add({"own CPU of a refresh", inMilliseconds(median(alone)), "ms", 2});
    table.add(
        {"own CPU of a refresh, panel reads everything after it",
         inMilliseconds(median(withReading)), "ms", 2});
    table.add({"companion's exit to the new title", inMilliseconds(median(latencies)), "ms", 2});
}

} // namespace vorla::bench
