// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vorla {

/// Whether JSON does not allow the byte in a string as it is.
constexpr bool mustBeEscapedInJson(char byte) {
    return byte == '"' || byte == '\\' || static_cast<unsigned char>(byte) < 0x20;
}

/// What stands for such a byte.
std::string jsonEscape(char byte);

/// Appends `text` as a JSON string, in which nothing is escaped but what must be. Any type will do
/// for `json` that pieces can be appended to.
template <typename Json>
void appendJsonString(Json& json, std::string_view text) {
    json.append("\"");
    while (!text.empty()) {
        std::size_t plain = 0;
        while (plain < text.size() && !mustBeEscapedInJson(text[plain])) {
            ++plain;
        }
        json.append(text.substr(0, plain));
        text.remove_prefix(plain);
        if (!text.empty()) {
            json.append(jsonEscape(text.front()));
            text.remove_prefix(1);
        }
    }
    json.append("\"");
}

} // namespace vorla
