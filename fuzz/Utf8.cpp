// SPDX-License-Identifier: MIT
#include "Utf8.h"

#include <algorithm>
#include <array>

namespace vorla::fuzz {

namespace {

constexpr std::size_t longestCodePoint = 4;

struct Form {
    unsigned char leadMask;
    unsigned char lead;
    std::size_t length;
    char32_t lowest;
};

constexpr std::array<Form, longestCodePoint> forms = {{
    {0x80, 0x00, 1, 0x0},
    {0xE0, 0xC0, 2, 0x80},
    {0xF0, 0xE0, 3, 0x800},
    {0xF8, 0xF0, 4, 0x10000},
}};

bool isScalarValue(char32_t value) {
    return value < 0xD800 || (value > 0xDFFF && value <= 0x10FFFF);
}

/// Whether some bytes would complete `part`, which is no whole code point, to one.
bool canBeCompleted(std::string_view part) {
    for (std::size_t length = part.size() + 1; length <= longestCodePoint; ++length) {
        // After every lead byte at least one of these is allowed.
        for (const char continuation : {'\x80', '\x90', '\xA0'}) {
            std::string completed(part);
            completed.resize(length, continuation);
            const auto first = firstCodePoint(completed);
            if (first && first->length == length) {
                return true;
            }
        }
    }
    return false;
}

std::size_t illFormedLength(std::string_view bytes) {
    std::size_t length = std::min(bytes.size(), longestCodePoint - 1);
    while (length > 1 && !canBeCompleted(bytes.substr(0, length))) {
        --length;
    }
    return length;
}

} // namespace

std::optional<CodePoint> firstCodePoint(std::string_view bytes) {
    for (const Form& form : forms) {
        if (bytes.size() < form.length ||
            (static_cast<unsigned char>(bytes.front()) & form.leadMask) != form.lead) {
            continue;
        }
        auto value = static_cast<char32_t>(
            static_cast<unsigned char>(bytes.front()) & static_cast<unsigned char>(~form.leadMask));
        for (const char byte : bytes.substr(1, form.length - 1)) {
            const auto bits = static_cast<unsigned char>(byte);
            if ((bits & 0xC0U) != 0x80U) {
                return std::nullopt;
            }
            value = value << 6U | (bits & 0x3FU);
        }
        if (value < form.lowest || !isScalarValue(value)) {
            return std::nullopt;
        }
        return CodePoint{.value = value, .length = form.length};
    }
    return std::nullopt;
}

bool isWellFormed(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto first = firstCodePoint(bytes);
        if (!first) {
            return false;
        }
        bytes.remove_prefix(first->length);
    }
    return true;
}

bool hasNoncharacter(std::string_view text) {
    while (const auto first = firstCodePoint(text)) {
        if ((first->value & 0xFFFEU) == 0xFFFEU ||
            (first->value >= 0xFDD0 && first->value <= 0xFDEF)) {
            return true;
        }
        text.remove_prefix(first->length);
    }
    return false;
}

std::string expectedRepair(std::string_view bytes) {
    std::string text;
    while (!bytes.empty()) {
        const auto first = firstCodePoint(bytes);
        const std::size_t length = first ? first->length : illFormedLength(bytes);
        text.append(first ? bytes.substr(0, length) : std::string_view("\uFFFD"));
        bytes.remove_prefix(length);
    }
    return text;
}

} // namespace vorla::fuzz
