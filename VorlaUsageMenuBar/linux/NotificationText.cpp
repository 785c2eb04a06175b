// SPDX-License-Identifier: MIT
#include "linux/NotificationText.h"

#include "linux/BusText.h"
#include "model/Text.h"

namespace vorla {

namespace {

/// The code point past the limit decides whether a character ends there.
constexpr std::size_t longestCodePoint = 4;

std::string bounded(std::string_view text, std::size_t maximumBytes) {
    std::string kept;
    for (const char byte : text) {
        if (kept.size() >= maximumBytes + longestCodePoint) {
            break;
        }
        if (byte != '\0') {
            kept.push_back(byte);
        }
    }
    return std::string(text::fittingCharacters(busText(kept), maximumBytes));
}

std::string escaped(std::string_view text) {
    std::string markup;
    for (const char byte : text) {
        switch (byte) {
        case '&':
            markup += "&amp;";
            break;
        case '<':
            markup += "&lt;";
            break;
        case '>':
            markup += "&gt;";
            break;
        default:
            markup += byte;
        }
    }
    return markup;
}

} // namespace

std::string notificationTitle(std::string_view text) {
    return bounded(text, maximumTitleBytes);
}

std::string notificationBody(std::string_view text, BodyFormat format) {
    const std::string body = bounded(text, maximumBodyBytes);
    return format == BodyFormat::markup ? escaped(body) : body;
}

} // namespace vorla
