// SPDX-License-Identifier: MIT
#pragma once

#include "model/Text.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace vorla {

/// The newest text of a stream that may go on for ever: at most `maximumBytes` of it, and at least
/// half as many once there have been more.
class RecentText final {
public:
    explicit RecentText(std::size_t maximumBytes) : maximumBytes_(maximumBytes) {}

    void append(std::string_view bytes) {
        text_.append(bytes);
        if (text_.text().size() > maximumBytes_) {
            // Half of it at a time: moving what stays costs little for each byte that came.
            text_.keepLast(maximumBytes_ / 2);
        }
    }

    std::string_view text() const { return text_.text(); }

    /// Hands over the text and forgets it.
    std::string take() { return text_.take(); }

private:
    std::size_t maximumBytes_ = 0;
    text::Utf8Repair text_;
};

} // namespace vorla
