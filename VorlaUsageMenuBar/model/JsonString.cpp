// SPDX-License-Identifier: MIT
#include "model/JsonString.h"

namespace vorla {

namespace {

constexpr std::string_view hexadecimalDigits = "0123456789abcdef";

} // namespace

std::string jsonEscape(char byte) {
    switch (byte) {
    case '"':
        return "\\\"";
    case '\\':
        return "\\\\";
    case '\b':
        return "\\b";
    case '\f':
        return "\\f";
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        const auto code = static_cast<unsigned char>(byte);
        return {'\\', 'u', '0', '0', hexadecimalDigits[code / 16], hexadecimalDigits[code % 16]};
    }
}

} // namespace vorla
