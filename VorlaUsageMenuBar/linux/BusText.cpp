// SPDX-License-Identifier: MIT
#include "linux/BusText.h"

#include "model/Text.h"

#include <cstddef>

namespace vorla {

namespace {

constexpr std::size_t maximumBytes = 4096;
/// What must be known of a text to cut it: the code point past the limit decides whether a
/// character ends there.
constexpr std::size_t sufficientBytes = maximumBytes + 4;

enum class Underscores { kept, doubled };

std::string transcribed(std::string_view text, Underscores underscores) {
    std::string result;
    for (const char byte : text) {
        if (result.size() >= sufficientBytes) {
            break;
        }
        if (byte == '_' && underscores == Underscores::doubled) {
            result.append("__");
        } else if (byte != '\0') {
            result.push_back(byte == '\t' ? ' ' : byte);
        }
    }
    return text::repaired(result);
}

std::string_view fitting(std::string_view label) {
    return text::fittingCharacters(label, maximumBytes);
}

} // namespace

std::string menuLabel(std::string_view text) {
    const std::string label = transcribed(text, Underscores::doubled);
    std::string_view cut = fitting(label);
    const std::size_t lastOther = cut.find_last_not_of('_');
    const std::size_t underscores =
        lastOther == std::string_view::npos ? cut.size() : cut.size() - lastOther - 1;
    // The cut may fall into a pair, since there a character ends too.
    if (underscores % 2 == 1) {
        cut.remove_suffix(1);
    }
    return std::string(cut);
}

std::string plainLabel(std::string_view text) {
    return std::string(fitting(transcribed(text, Underscores::kept)));
}

std::string toolTipText(std::string_view text) {
    std::string plain = plainLabel(text);
    std::erase_if(plain, [](char byte) { return byte == '&' || byte == '<' || byte == '>'; });
    return plain;
}

} // namespace vorla
