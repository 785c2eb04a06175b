// SPDX-License-Identifier: MIT
#include "app/StreamCapture.h"

#include <algorithm>
#include <new>
#include <utility>

namespace vorla {

std::size_t StreamCapture::append(std::string_view bytes) {
    const std::size_t kept = std::min(bytes.size(), maximumBytes_ - bytes_.size());
    try {
        bytes_.append(bytes.substr(0, kept));
    } catch (const std::bad_alloc&) {
        // Full from now on: a shorter piece might still fit, and leave a gap before it.
        maximumBytes_ = bytes_.size();
        return 0;
    }
    return kept;
}

std::string_view StreamCapture::text() {
    text_.append(bytes().substr(decodedBytes_));
    decodedBytes_ = bytes_.size();
    return text_.text();
}

std::string StreamCapture::take() {
    text_ = {};
    decodedBytes_ = 0;
    return std::exchange(bytes_, {});
}

} // namespace vorla
