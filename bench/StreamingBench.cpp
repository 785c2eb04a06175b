// SPDX-License-Identifier: MIT
// A run that passes on what it prints: what a byte costs must not depend on how many came before
// it.
#include "Benches.h"
#include "Session.h"
#include "app/Command.h"
#include "linux/ProcessLauncher.h"

#include <stdexcept>
#include <vector>

namespace vorla::bench {

namespace {

constexpr std::size_t mebibyte = std::size_t{1} << 20U;

/// Processor time for each byte, in nanoseconds, from the first piece that comes to the last.
double timePerByte(Session& session, LinuxProcessLauncher& launcher, std::size_t bytes) {
    const auto command =
        Command::create(session.loop(), launcher, Environment(session.environment()));
    Nanoseconds firstAt{0};
    Nanoseconds lastAt{0};
    std::size_t firstBytes = 0;
    bool done = false;
    // The text itself stops growing long before the end.
    command->onOutput = [&](std::string_view text) {
        lastAt = processorTime();
        if (firstBytes == 0) {
            firstAt = lastAt;
            firstBytes = text.size();
        }
    };
    command->start(VORLA_BENCH_COMPANION, "dashboard", [&](const CommandResult&) { done = true; });
    if (!session.loop().runUntil([&] { return done; }, std::chrono::minutes{5}) ||
        firstBytes == 0 || firstBytes >= bytes) {
        throw std::runtime_error("The output has not come piece by piece.");
    }
    return static_cast<double>((lastAt - firstAt).count()) /
           static_cast<double>(bytes - firstBytes);
}

} // namespace

void measureStreaming(Table& table) {
    constexpr int rounds = 7;
    constexpr int shortRuns = 8;
    Session session;
    LinuxProcessLauncher launcher(session.loop());
    std::vector<double> shortTimes;
    std::vector<double> longTimes;
    for (int round = 0; round < rounds; ++round) {
        session.setOutput(std::string(mebibyte, 'x'));
        for (int run = 0; run < shortRuns; ++run) {
            shortTimes.push_back(timePerByte(session, launcher, mebibyte));
        }
        session.setOutput(std::string(64 * mebibyte, 'x'));
        longTimes.push_back(timePerByte(session, launcher, 64 * mebibyte));
    }
    const double shortTime = median(shortTimes);
    const double longTime = median(longTimes);
    table.heading("Output that is passed on while it comes");
    table.add({"CPU for each byte of 1 MiB", shortTime, "ns"});
    table.add({"CPU for each byte of 64 MiB", longTime, "ns"});
    table.add({"ratio of the two", longTime / shortTime, "x", 1.5});
}

} // namespace vorla::bench
