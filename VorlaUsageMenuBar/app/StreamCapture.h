// SPDX-License-Identifier: MIT
#pragma once

#include "model/Text.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace vorla {

/// The beginning of a stream: its bytes, up to a bound, and on demand the text that they are.
class StreamCapture final {
public:
    explicit StreamCapture(std::size_t maximumBytes) : maximumBytes_(maximumBytes) {}

    /// Returns how many of `bytes` were taken: fewer than all if that is too much, for the bound or
    /// for the memory there is.
    std::size_t append(std::string_view bytes);

    std::string_view bytes() const { return bytes_; }

    /// The bytes as well-formed text. Only those that came since the last call are decoded.
    std::string_view text();

    /// Hands over the bytes and forgets everything.
    std::string take();

private:
    std::size_t maximumBytes_ = 0;
    std::string bytes_;
    text::Utf8Repair text_;
    /// How many of bytes_ are in text_.
    std::size_t decodedBytes_ = 0;
};

} // namespace vorla
