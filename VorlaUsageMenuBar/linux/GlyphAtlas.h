// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace vorla {

/// Where one character stands in the picture of its set.
struct Glyph {
    char32_t character;
    /// First column of its cell.
    std::uint16_t x;
    /// Width of its cell, side bearings included: the next glyph starts there.
    std::uint8_t advance;
};

/// The coverage of some characters at one size, drawn ahead of time so that the program needs no
/// font library. All cells stand side by side in one picture, on one baseline.
///
/// The picture is constant data of the executable, and costs the process no memory of its own.
struct GlyphSet {
    int height;
    /// Length of one row of the picture, over all cells.
    int rowLength;
    std::span<const Glyph> glyphs;
    /// Row by row, one character a pixel: '.' for none, then '1' to '9' and 'A' to 'F' for full.
    std::string_view picture;
};

// All digits of a set are equally wide. The number is their height in pixels. The narrow sets have
// only the digits of "100", for sizes at which the others would leave no room for three.
extern const GlyphSet narrow6;
extern const GlyphSet digits6;
extern const GlyphSet digits7;
extern const GlyphSet digits8;
extern const GlyphSet digits9;
extern const GlyphSet digits10;
extern const GlyphSet digits12;
extern const GlyphSet digits13;
extern const GlyphSet digits16;
extern const GlyphSet digits19;
extern const GlyphSet narrow20;
extern const GlyphSet digits24;
extern const GlyphSet digits26;
/// All characters of the title.
extern const GlyphSet title30;

} // namespace vorla
