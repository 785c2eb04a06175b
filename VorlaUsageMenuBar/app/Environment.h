// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorla {

/// The variables of a process, as a value.
class Environment final {
public:
    Environment() = default;

    /// "NAME=value" each; of a name that is given twice, the first counts, as for getenv(3).
    explicit Environment(std::vector<std::string> entries);

    /// That of this process. Call before any thread starts.
    static Environment ofThisProcess();

    std::optional<std::string> value(std::string_view name) const;
    /// A copy with `name` added or overwritten.
    Environment with(std::string_view name, std::string_view value) const;

    const std::vector<std::string>& entries() const { return entries_; }

private:
    std::vector<std::string> entries_;
};

} // namespace vorla
