// SPDX-License-Identifier: MIT
#include "model/Text.h"

#include <utf8proc.h>

#include <array>
#include <utility>

namespace vorla::text {

namespace {

constexpr char32_t replacementCharacter = U'\uFFFD';
constexpr std::string_view replacementBytes = "\xEF\xBF\xBD";

struct CodePoint {
    char32_t value = replacementCharacter;
    std::size_t length = 1;
};

/// The code point at the start of `text`, which is not empty. A byte that starts none counts as one
/// replacement character, so that every walk over a text ends.
CodePoint firstCodePoint(std::string_view text) {
    utf8proc_int32_t value = 0;
    const auto length = utf8proc_iterate(
        reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
        static_cast<utf8proc_ssize_t>(text.size()), &value);
    if (length <= 0) {
        return {};
    }
    return {static_cast<char32_t>(value), static_cast<std::size_t>(length)};
}

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// Where the last code point of `text`, which is not empty, begins.
std::size_t lastCodePointStart(std::string_view text) {
    std::size_t start = text.size() - 1;
    while (start > 0 && text.size() - start < 4 && isContinuation(text[start])) {
        --start;
    }
    return start;
}

/// Calls `visit(position, isBorder)` before each code point but the first, in order, for as long as
/// it says true; `isBorder` tells whether a new character begins there. Visiting code points and
/// not only borders lets a caller leave a character that has no end.
template <typename Visit>
void walk(std::string_view text, Visit visit) {
    if (text.empty()) {
        return;
    }
    utf8proc_int32_t state = 0;
    CodePoint previous = firstCodePoint(text);
    for (std::size_t position = previous.length; position < text.size();) {
        const CodePoint next = firstCodePoint(text.substr(position));
        const bool isBorder = utf8proc_grapheme_break_stateful(
            static_cast<utf8proc_int32_t>(previous.value),
            static_cast<utf8proc_int32_t>(next.value), &state);
        if (!visit(position, isBorder)) {
            return;
        }
        previous = next;
        position += next.length;
    }
}

void appendCodePoint(std::string& text, char32_t value) {
    std::array<utf8proc_uint8_t, 4> bytes = {};
    const auto length = utf8proc_encode_char(static_cast<utf8proc_int32_t>(value), bytes.data());
    text.append(reinterpret_cast<const char*>(bytes.data()), static_cast<std::size_t>(length));
}

char32_t uppercased(char32_t letter) {
    // Its capital exists, but is not what German writes at the start of a word.
    if (letter == U'ß') {
        return letter;
    }
    return static_cast<char32_t>(utf8proc_toupper(static_cast<utf8proc_int32_t>(letter)));
}

enum class PartKind { character, illFormed, unfinished };

struct Part {
    PartKind kind = PartKind::illFormed;
    std::size_t length = 1;
};

/// What a lead byte asks of the bytes after it (The Unicode Standard, table 3-7).
struct LeadByte {
    /// 0 for a byte that begins no character.
    std::size_t length = 0;
    unsigned char lowestSecond = 0x80;
    unsigned char highestSecond = 0xBF;
};

LeadByte leadByte(unsigned char byte) {
    if (byte < 0x80) {
        return {.length = 1};
    }
    if (byte < 0xC2 || byte > 0xF4) {
        return {};
    }
    if (byte < 0xE0) {
        return {.length = 2};
    }
    if (byte < 0xF0) {
        // Overlong forms begin below E0 A0, surrogates at ED A0.
        return {
            .length = 3,
            .lowestSecond = static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80),
            .highestSecond = static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF)};
    }
    // Overlong forms begin below F0 90, values past the last code point at F4 90.
    return {
        .length = 4,
        .lowestSecond = static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80),
        .highestSecond = static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF)};
}

/// The character or the maximal ill-formed part at the start of `bytes`, which are not empty. It is
/// unfinished if it is all there is and more bytes could complete it.
Part firstPart(std::string_view bytes) {
    const LeadByte lead = leadByte(static_cast<unsigned char>(bytes.front()));
    if (lead.length == 0) {
        return {PartKind::illFormed, 1};
    }
    for (std::size_t index = 1; index < lead.length; ++index) {
        if (index == bytes.size()) {
            return {PartKind::unfinished, index};
        }
        const auto byte = static_cast<unsigned char>(bytes[index]);
        const unsigned char lowest = index == 1 ? lead.lowestSecond : 0x80;
        const unsigned char highest = index == 1 ? lead.highestSecond : 0xBF;
        if (byte < lowest || byte > highest) {
            return {PartKind::illFormed, index};
        }
    }
    return {PartKind::character, lead.length};
}

/// Appends `bytes`, which follow no unfinished character, and returns the unfinished one at their
/// end. For that, too, a replacement character is appended.
std::string_view appendRepaired(std::string& text, std::string_view bytes) {
    std::size_t wellFormed = 0;
    while (wellFormed < bytes.size()) {
        const Part part = firstPart(bytes.substr(wellFormed));
        if (part.kind == PartKind::character) {
            wellFormed += part.length;
            continue;
        }
        text.append(bytes.substr(0, wellFormed)).append(replacementBytes);
        bytes.remove_prefix(wellFormed);
        if (part.kind == PartKind::unfinished) {
            return bytes;
        }
        bytes.remove_prefix(part.length);
        wellFormed = 0;
    }
    text.append(bytes);
    return {};
}

} // namespace

bool isWhiteSpace(char32_t codePoint) {
    return (codePoint >= 0x09 && codePoint <= 0x0D) || codePoint == 0x20 || codePoint == 0x85 ||
           codePoint == 0xA0 || codePoint == 0x1680 ||
           (codePoint >= 0x2000 && codePoint <= 0x200A) || codePoint == 0x2028 ||
           codePoint == 0x2029 || codePoint == 0x202F || codePoint == 0x205F || codePoint == 0x3000;
}

std::string_view trimmed(std::string_view bytes) {
    while (!bytes.empty()) {
        const CodePoint first = firstCodePoint(bytes);
        if (!isWhiteSpace(first.value)) {
            break;
        }
        bytes.remove_prefix(first.length);
    }
    while (!bytes.empty()) {
        const std::size_t start = lastCodePointStart(bytes);
        const CodePoint last = firstCodePoint(bytes.substr(start));
        // Bytes that belong to no character may follow one.
        if (start + last.length != bytes.size() || !isWhiteSpace(last.value)) {
            break;
        }
        bytes = bytes.substr(0, start);
    }
    return bytes;
}

std::string_view firstCharacters(std::string_view text, std::size_t count) {
    if (count == 0) {
        return text.substr(0, 0);
    }
    std::size_t begun = 1;
    std::size_t end = text.size();
    walk(text, [&](std::size_t position, bool isBorder) {
        if (isBorder && begun == count) {
            end = position;
            return false;
        }
        begun += isBorder ? 1 : 0;
        return true;
    });
    return text.substr(0, end);
}

std::string_view fittingCharacters(std::string_view text, std::size_t maximumBytes) {
    if (text.size() <= maximumBytes) {
        return text;
    }
    std::size_t end = 0;
    walk(text, [&](std::size_t position, bool isBorder) {
        if (position > maximumBytes) {
            return false;
        }
        if (isBorder) {
            end = position;
        }
        return true;
    });
    return text.substr(0, end);
}

std::string withFirstCharacterUppercased(std::string_view text) {
    std::string_view first = firstCharacters(text, 1);
    const std::string_view rest = text.substr(first.size());
    std::string result;
    result.reserve(text.size());
    while (!first.empty()) {
        const CodePoint codePoint = firstCodePoint(first);
        appendCodePoint(result, uppercased(codePoint.value));
        first.remove_prefix(codePoint.length);
    }
    return result.append(rest);
}

void Utf8Repair::append(std::string_view bytes) {
    if (bytes.empty()) {
        return;
    }
    if (!unfinished_.empty()) {
        // keepLast() may have dropped everything, the replacement character included.
        if (!text_.empty()) {
            text_.resize(text_.size() - replacementBytes.size());
        }
        // Three more bytes complete any character.
        const std::string joined = unfinished_ + std::string(bytes.substr(0, 3));
        const Part part = firstPart(joined);
        bytes.remove_prefix(part.length - unfinished_.size());
        if (part.kind == PartKind::unfinished) {
            unfinished_ = joined;
            text_.append(replacementBytes);
            return;
        }
        unfinished_.clear();
        text_.append(
            part.kind == PartKind::character ? std::string_view(joined).substr(0, part.length)
                                             : replacementBytes);
    }
    unfinished_ = appendRepaired(text_, bytes);
}

void Utf8Repair::keepLast(std::size_t maximumBytes) {
    if (text_.size() <= maximumBytes) {
        return;
    }
    std::size_t start = text_.size() - maximumBytes;
    while (start < text_.size() && isContinuation(text_[start])) {
        ++start;
    }
    text_.erase(0, start);
}

std::string Utf8Repair::take() {
    unfinished_.clear();
    return std::exchange(text_, {});
}

std::string repaired(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    appendRepaired(text, bytes);
    return text;
}

std::string excerpt(std::string_view bytes, std::size_t count) {
    const std::string text = repaired(bytes.substr(0, maximumExcerptBytes));
    return std::string(firstCharacters(text, count));
}

} // namespace vorla::text
