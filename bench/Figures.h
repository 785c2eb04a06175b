// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorla::bench {

using Nanoseconds = std::chrono::nanoseconds;

/// Of a list that is not empty; of an even number of values, the greater of the two in the middle.
template <typename Value>
Value median(std::vector<Value> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

/// CLOCK_MONOTONIC, the same in all processes.
Nanoseconds wallTime();
/// What this process has computed so far, all its threads together.
Nanoseconds processorTime();
/// What the calling thread has computed so far.
Nanoseconds threadProcessorTime();

/// Median processor time of one call of `work` on this thread, taken from `rounds` rounds of
/// `calls` calls each.
Nanoseconds medianOfCalls(std::size_t rounds, std::size_t calls, const std::function<void()>& work);

double inMicroseconds(Nanoseconds time);
double inMilliseconds(Nanoseconds time);

/// What was measured, and the budget it has to keep, if it has one.
struct Figure {
    std::string name;
    double value = 0;
    std::string unit;
    std::optional<double> budget = std::nullopt;
};

/// The table of all figures; each line is printed at once, since some take their time.
class Table final {
public:
    void heading(std::string_view text);
    void add(const Figure& figure);

    /// How many figures were above their budgets.
    int missed() const { return missed_; }

private:
    int missed_ = 0;
};

} // namespace vorla::bench
