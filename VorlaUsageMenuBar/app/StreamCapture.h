// SPDX-License-Identifier: MIT
#pragma once

#include "model/Text.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace vorla {

/// What a run keeps of one stream: its bytes, up to a bound, and on demand the text that they are.
class StreamCapture final {
public:
    /// What gives way when the bound is reached.
    enum class WhenFull { dropNewest, dropOldest };

    explicit StreamCapture(std::size_t maximumBytes) : maximumBytes_(maximumBytes) {}

    /// Returns how many of `bytes` were taken: all of them, unless the newest give way, which is
    /// then their end.
    std::size_t append(std::string_view bytes, WhenFull whenFull);

    std::string_view bytes() const { return bytes_; }

    /// The bytes as well-formed text. Only those that came since the last call are decoded, so the
    /// text can reach further back than the bytes once the oldest have been dropped.
    std::string_view text();

    /// Hands over the bytes and forgets everything.
    std::string take();

private:
    void dropOldest(std::size_t bytesToKeep);

    std::size_t maximumBytes_ = 0;
    std::string bytes_;
    text::Utf8Repair text_;
    /// How many of bytes_ are in text_.
    std::size_t decodedBytes_ = 0;
};

} // namespace vorla
