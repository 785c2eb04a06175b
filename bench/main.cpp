// SPDX-License-Identifier: MIT
// Measures what the program may cost and compares it with its budgets:
//   bench [--program PATH] [memory] [refresh] [parts] [model] [streaming] [start] [fennic] [quiet]
// Without names it measures everything. Exit status 1 if a budget is missed, 2 if something could
// not be measured.
#include "Benches.h"
#include "linux/Memory.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <exception>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vorla::bench {
namespace {

struct Bench {
    std::string_view name;
    std::function<void(Table&)> measure;
};

struct Request {
    std::string program = VORLA_PROGRAM;
    std::vector<std::string_view> names = {};

    bool wants(std::string_view name) const {
        return names.empty() || std::ranges::find(names, name) != names.end();
    }
};

Request requestOf(std::span<char* const> arguments) {
    Request request;
    for (std::size_t index = 1; index < arguments.size(); ++index) {
        const std::string_view argument = arguments[index];
        if (argument == "--program" && index + 1 < arguments.size()) {
            request.program = arguments[++index];
        } else {
            request.names.push_back(argument);
        }
    }
    return request;
}

int run(const Request& request) {
    const std::array<Bench, 8> benches = {{
        {"memory", [&](Table& table) { measureMemory(table, request.program); }},
        {"refresh", [&](Table& table) { measureRefresh(table, request.program); }},
        {"parts", measureRefreshParts},
        {"model", measureModel},
        {"streaming", measureStreaming},
        {"start", [&](Table& table) { measureStartUp(table, request.program); }},
        {"fennic", [&](Table& table) { measureFennic(table, request.program); }},
        {"quiet", [&](Table& table) { measureQuiet(table, request.program); }},
    }};
    for (const std::string_view name : request.names) {
        if (std::ranges::find(benches, name, &Bench::name) == benches.end()) {
            throw std::invalid_argument("There is no benchmark of that name.");
        }
    }
    Table table;
    for (const Bench& bench : benches) {
        if (request.wants(bench.name)) {
            bench.measure(table);
        }
    }
    std::printf("\n%d missed\n", table.missed());
    return table.missed() == 0 ? 0 : 1;
}

} // namespace
} // namespace vorla::bench

int main(int argumentCount, char** arguments) {
    // As the program does, whose classes are measured in here.
    vorla::keepMemorySmall();
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return vorla::bench::run(
            vorla::bench::requestOf({arguments, static_cast<std::size_t>(argumentCount)}));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench: %s\n", error.what());
        return 2;
    }
}
