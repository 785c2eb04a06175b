// SPDX-License-Identifier: MIT
#pragma once

#include "Figures.h"

#include <string>

/// The benchmarks, one source file each. `program` is the path of the program that is measured;
/// those without it measure the classes that are linked into the benchmark.
namespace vorla::bench {

void measureMemory(Table& table, const std::string& program);
void measureFennic(Table& table, const std::string& program);
void measureQuiet(Table& table, const std::string& program);
void measureRefresh(Table& table, const std::string& program);
void measureStartUp(Table& table, const std::string& program);
void measureRefreshParts(Table& table);
void measureModel(Table& table);
void measureStreaming(Table& table);

} // namespace vorla::bench
