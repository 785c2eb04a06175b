// SPDX-License-Identifier: MIT
#include "app/Environment.h"

#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace vorla {

namespace {

std::string_view nameOf(std::string_view entry) {
    return entry.substr(0, entry.find('='));
}

auto findEntry(std::vector<std::string>& entries, std::string_view name) {
    return std::ranges::find(entries, name, nameOf);
}

} // namespace

Environment::Environment(std::vector<std::string> entries) {
    for (auto& entry : entries) {
        // Nobody can look up an entry without a value, so it is not worth handing on.
        const bool isVariable = entry.find('=') != std::string::npos;
        if (isVariable && findEntry(entries_, nameOf(entry)) == entries_.end()) {
            entries_.push_back(std::move(entry));
        }
    }
}

Environment Environment::ofThisProcess() {
    std::vector<std::string> entries;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; entry = std::next(entry)) {
        entries.emplace_back(*entry);
    }
    return Environment(std::move(entries));
}

std::optional<std::string> Environment::value(std::string_view name) const {
    const auto entry = std::ranges::find(entries_, name, nameOf);
    if (entry == entries_.end()) {
        return std::nullopt;
    }
    return entry->substr(name.size() + 1);
}

Environment Environment::with(std::string_view name, std::string_view value) const {
    Environment copy = *this;
    std::string entry = std::string(name).append("=").append(value);
    const auto present = findEntry(copy.entries_, name);
    if (present == copy.entries_.end()) {
        copy.entries_.push_back(std::move(entry));
    } else {
        *present = std::move(entry);
    }
    return copy;
}

} // namespace vorla
