// SPDX-License-Identifier: MIT
#include "linux/BusText.h"

#include "model/Text.h"

#include <algorithm>
#include <cstddef>

namespace vorla {

namespace {

constexpr std::size_t maximumLabelBytes = 4096;

constexpr std::string_view replacement = "\uFFFD";

/// The length of the noncharacter (The Unicode Standard, 23.7) that well-formed `text` starts with,
/// or 0.
std::size_t noncharacterLength(std::string_view text) {
    const auto byte = [&](std::size_t index) {
        return index < text.size() ? static_cast<unsigned char>(text[index]) : 0U;
    };
    const auto endsAPlane = [&](std::size_t index) {
        return byte(index) == 0xBFU && byte(index + 1) >= 0xBEU;
    };
    if (byte(0) == 0xEFU) {
        const bool isInBlock = byte(1) == 0xB7U && byte(2) >= 0x90U && byte(2) <= 0xAFU;
        return isInBlock || (byte(1) == 0xBFU && endsAPlane(1)) ? 3 : 0;
    }
    return byte(0) >= 0xF0U && (byte(1) & 0x0FU) == 0x0FU && endsAPlane(2) ? 4 : 0;
}

std::string withoutTabs(std::string text) {
    std::ranges::replace(text, '\t', ' ');
    return text;
}

/// How many bytes of `label` fit when each underscore takes two.
std::size_t fittingWhenDoubled(std::string_view label) {
    std::size_t doubledBytes = 0;
    const auto* const firstTooMany = std::ranges::find_if(label, [&](char byte) {
        doubledBytes += byte == '_' ? 2 : 1;
        return doubledBytes > maximumLabelBytes;
    });
    return static_cast<std::size_t>(firstTooMany - label.begin());
}

/// A line that says something must not look empty, although none of what it says can be shown.
std::string orReplacement(std::string_view label, std::string_view text) {
    return std::string(label.empty() && !text.empty() ? replacement : label);
}

} // namespace

std::string busText(std::string_view text) {
    const std::string repaired = text::repaired(text);
    std::string result;
    result.reserve(repaired.size());
    for (std::size_t position = 0; position < repaired.size();) {
        const std::size_t length = noncharacterLength(std::string_view(repaired).substr(position));
        if (length > 0) {
            result.append(replacement);
            position += length;
        } else {
            result.push_back(repaired[position++]);
        }
    }
    std::erase(result, '\0');
    return result;
}

std::string startOfBusText(std::string_view text, std::size_t maximumBytes) {
    // The code point past the limit decides whether a character ends there, and replacing
    // noncharacters takes up to a quarter away.
    const std::size_t sufficientBytes = 2 * maximumBytes;
    std::string start;
    for (std::size_t at = 0; at < text.size() && start.size() < sufficientBytes; ++at) {
        if (text[at] != '\0') {
            start.push_back(text[at]);
        }
    }
    return busText(start);
}

std::string menuLabel(std::string_view text) {
    const std::string label = withoutTabs(startOfBusText(text, maximumLabelBytes));
    // Cut before the doubling, so that a character ends where it does in the text itself.
    const auto cut = text::fittingCharacters(label, fittingWhenDoubled(label));
    std::string doubled;
    for (const char byte : cut) {
        doubled.append(byte == '_' ? 2 : 1, byte);
    }
    return orReplacement(doubled, text);
}

std::string plainLabel(std::string_view text) {
    const std::string label = withoutTabs(startOfBusText(text, maximumLabelBytes));
    return orReplacement(text::fittingCharacters(label, maximumLabelBytes), text);
}

std::string toolTipText(std::string_view text) {
    std::string plain = plainLabel(text);
    std::erase_if(plain, [](char byte) { return byte == '&' || byte == '<' || byte == '>'; });
    return orReplacement(plain, text);
}

} // namespace vorla
