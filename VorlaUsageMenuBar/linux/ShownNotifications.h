// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vorla {

/// Which bubble of the notification service belongs to which identifier of ours, for the 64 posted
/// last; with it a bubble can be replaced.
class ShownNotifications final {
public:
    static constexpr std::size_t maximumCount = 64;

    /// 0 if there is none, as the service wants it.
    std::uint32_t bubbleOf(std::string_view identifier) const {
        const auto found = std::ranges::find(bubbles_, identifier, &Entry::first);
        return found == bubbles_.end() ? 0 : found->second;
    }

    void remember(const std::string& identifier, std::uint32_t bubble) {
        std::erase_if(bubbles_, [&](const Entry& entry) { return entry.first == identifier; });
        // No service shows a bubble 0; one that says so has none that could be replaced.
        if (bubble == 0) {
            return;
        }
        if (bubbles_.size() == maximumCount) {
            bubbles_.erase(bubbles_.begin());
        }
        bubbles_.emplace_back(identifier, bubble);
    }

    void forget(std::uint32_t bubble) {
        std::erase_if(bubbles_, [&](const Entry& entry) { return entry.second == bubble; });
    }

    void clear() { bubbles_.clear(); }

    bool isEmpty() const { return bubbles_.empty(); }

private:
    using Entry = std::pair<std::string, std::uint32_t>;

    /// Oldest first.
    std::vector<Entry> bubbles_;
};

} // namespace vorla
