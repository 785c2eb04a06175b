// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>

namespace vorla {

/// Relative luminance as the Web Content Accessibility Guidelines 2.1 define it, 0 to 1; so are the
/// channels.
inline double luminance(double red, double green, double blue) {
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(red) + 0.7152 * linear(green) + 0.0722 * linear(blue);
}

/// Between two luminances, 1 to 21.
inline double contrast(double one, double other) {
    const auto [darker, lighter] = std::minmax(one, other);
    return (lighter + 0.05) / (darker + 0.05);
}

} // namespace vorla
