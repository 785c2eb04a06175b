// SPDX-License-Identifier: MIT
#include "app/StreamCapture.h"

#include <algorithm>
#include <new>
#include <utility>

namespace vorla {

std::size_t StreamCapture::append(std::string_view bytes, WhenFull whenFull) {
    const std::size_t room = maximumBytes_ - bytes_.size();
    std::size_t kept = bytes.size();
    switch (whenFull) {
    case WhenFull::dropNewest:
        kept = std::min(kept, room);
        try {
            bytes_.append(bytes.substr(0, kept));
        } catch (const std::bad_alloc&) {
            // What there is no memory for is too much, too; a gap would be worse.
            kept = 0;
        }
        break;
    case WhenFull::dropOldest:
        bytes.remove_prefix(bytes.size() - std::min(bytes.size(), maximumBytes_));
        if (bytes.size() > room) {
            // Half of it at a time: moving what stays costs little for each byte that came.
            dropOldest(std::min(maximumBytes_ / 2, maximumBytes_ - bytes.size()));
        }
        bytes_.append(bytes);
        break;
    }
    return kept;
}

void StreamCapture::dropOldest(std::size_t bytesToKeep) {
    const std::size_t dropped = bytes_.size() - std::min(bytes_.size(), bytesToKeep);
    bytes_.erase(0, dropped);
    if (dropped > decodedBytes_) {
        // What was dropped undecoded would be a gap in the middle of the text.
        text_ = {};
    }
    decodedBytes_ -= std::min(decodedBytes_, dropped);
}

std::string_view StreamCapture::text() {
    text_.append(bytes().substr(decodedBytes_));
    decodedBytes_ = bytes_.size();
    if (text_.text().size() > maximumBytes_) {
        text_.keepLast(maximumBytes_ / 2);
    }
    return text_.text();
}

std::string StreamCapture::take() {
    text_ = {};
    decodedBytes_ = 0;
    return std::exchange(bytes_, {});
}

} // namespace vorla
