// SPDX-License-Identifier: MIT
#include "Figures.h"

#include <cstdio>
#include <ctime>

namespace vorla::bench {

namespace {

Nanoseconds timeOf(clockid_t clock) {
    timespec now = {};
    clock_gettime(clock, &now);
    return std::chrono::seconds{now.tv_sec} + Nanoseconds{now.tv_nsec};
}

std::string withUnit(double value, const std::string& unit) {
    const int decimals = unit.empty() ? 0 : 2;
    std::string text(64, '\0');
    const int length = std::snprintf(
        text.data(), text.size(), "%.*f%s%s", decimals, value, unit.empty() ? "" : " ",
        unit.c_str());
    text.resize(static_cast<std::size_t>(length));
    return text;
}

} // namespace

Nanoseconds wallTime() {
    return timeOf(CLOCK_MONOTONIC);
}

Nanoseconds processorTime() {
    return timeOf(CLOCK_PROCESS_CPUTIME_ID);
}

Nanoseconds threadProcessorTime() {
    return timeOf(CLOCK_THREAD_CPUTIME_ID);
}

Nanoseconds
medianOfCalls(std::size_t rounds, std::size_t calls, const std::function<void()>& work) {
    std::vector<Nanoseconds> times;
    for (std::size_t round = 0; round < rounds; ++round) {
        const Nanoseconds start = threadProcessorTime();
        for (std::size_t call = 0; call < calls; ++call) {
            work();
        }
        times.push_back((threadProcessorTime() - start) / calls);
    }
    return median(std::move(times));
}

double inMicroseconds(Nanoseconds time) {
    return std::chrono::duration<double, std::micro>(time).count();
}

double inMilliseconds(Nanoseconds time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

void Table::heading(std::string_view text) {
    std::printf("\n%.*s\n", static_cast<int>(text.size()), text.data());
    std::fflush(stdout);
}

void Table::add(const Figure& figure) {
    const bool isMissed = figure.budget && figure.value > *figure.budget;
    const std::string value = withUnit(figure.value, figure.unit);
    std::string budget;
    const char* verdict = "";
    if (figure.budget) {
        budget = "<= " + withUnit(*figure.budget, figure.unit);
        verdict = isMissed ? "MISSED" : "kept";
    }
    std::printf(
        "  %-56s %11s  %13s  %s\n", figure.name.c_str(), value.c_str(), budget.c_str(), verdict);
    std::fflush(stdout);
    missed_ += isMissed ? 1 : 0;
}

} // namespace vorla::bench
