// SPDX-License-Identifier: MIT
#include "linux/Pixmap.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace vorla {

namespace {

/// How much of the pixel lies in the box, 0 to 1; column and row are those of the box.
double coverage(const RoundedBox& box, int column, int row) {
    const int fromSide = std::min(column, box.width - 1 - column);
    const int fromEnd = std::min(row, box.height - 1 - row);
    const double radius = box.cornerRadius;
    if (fromSide >= radius || fromEnd >= radius) {
        return 1;
    }
    // How far the middle of the pixel is outside the circle, in pixels.
    const double outside = std::hypot(radius - fromSide - 0.5, radius - fromEnd - 0.5) - radius;
    return std::clamp(0.5 - outside, 0.0, 1.0);
}

} // namespace

Pixmap emptyPixmap(int width, int height) {
    const auto bytes = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
    return {width, height, std::vector<std::uint8_t>(bytes)};
}

void fill(
    Pixmap& pixmap, const RoundedBox& box, const Colour& colour, std::uint8_t alpha, int firstRow) {
    for (int row = firstRow; row < box.height; ++row) {
        const int start = (box.top + row) * pixmap.width + box.left;
        std::uint8_t* channel = &pixmap.argb[static_cast<std::size_t>(start) * 4];
        for (int column = 0; column < box.width; ++column) {
            const double share = coverage(box, column, row);
            *channel++ = static_cast<std::uint8_t>(std::lround(share * alpha));
            *channel++ = colour.red;
            *channel++ = colour.green;
            *channel++ = colour.blue;
        }
    }
}

} // namespace vorla
