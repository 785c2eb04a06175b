// SPDX-License-Identifier: MIT
#include "linux/NotificationText.h"

#include "linux/BusText.h"
#include "model/Text.h"

namespace vorla {

namespace {

std::string bounded(std::string_view text, std::size_t maximumBytes) {
    return std::string(text::fittingCharacters(startOfBusText(text, maximumBytes), maximumBytes));
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
