// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace vorla {

struct Colour {
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;
};

/// A picture as a panel takes it over the bus.
struct Pixmap {
    int width = 0;
    int height = 0;
    /// Row by row, four bytes a pixel: alpha, red, green, blue; the colours are not multiplied by
    /// the alpha.
    std::vector<std::uint8_t> argb;

    bool operator==(const Pixmap&) const = default;
};

/// Fully transparent.
Pixmap emptyPixmap(int width, int height);

/// Sides and corners of a box. Its edges lie between pixels, so that they are sharp.
struct RoundedBox {
    int left;
    int top;
    int width;
    int height;
    double cornerRadius;
};

/// Replaces the pixels of the rows from `box.top` + `firstRow` to the end of the box; of a pixel
/// that a corner cuts, `alpha` counts in part. The box lies within the pixmap.
void fill(
    Pixmap& pixmap, const RoundedBox& box, const Colour& colour, std::uint8_t alpha,
    int firstRow = 0);

} // namespace vorla
