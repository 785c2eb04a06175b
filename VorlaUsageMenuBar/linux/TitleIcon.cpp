// SPDX-License-Identifier: MIT
#include "linux/TitleIcon.h"

#include "linux/Plate.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace vorla {

namespace {

constexpr int height = 48;
constexpr int margin = 10;
constexpr double cornerRadius = 9;
constexpr std::size_t maximumCharacters = 32;
constexpr std::string_view middleDot = "·";

const Face face{title30, 0};

/// The title in characters that the face has.
std::u32string drawable(std::string_view title) {
    std::u32string text;
    while (!title.empty() && text.size() < maximumCharacters) {
        const bool isDot = title.starts_with(middleDot);
        const auto character = isDot ? U'·' : char32_t{static_cast<unsigned char>(title.front())};
        const bool isKnown = std::ranges::find(face.glyphs.glyphs, character, &Glyph::character) !=
                             face.glyphs.glyphs.end();
        text.push_back(isKnown ? character : U'?');
        title.remove_prefix(isDot ? middleDot.size() : 1);
        // What is left of a character of several bytes.
        while (!title.empty() && (static_cast<unsigned char>(title.front()) & 0xC0U) == 0x80U) {
            title.remove_prefix(1);
        }
    }
    return text;
}

} // namespace

Pixmap titleIcon(std::string_view title) {
    const std::u32string text = drawable(title);
    Pixmap pixmap = plate(textWidth(text, face) + 2 * margin, height, cornerRadius);
    drawText(pixmap, text, face, margin, (height - face.glyphs.height) / 2);
    return pixmap;
}

} // namespace vorla
