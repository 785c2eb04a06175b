// SPDX-License-Identifier: MIT
#pragma once

#include "linux/Contrast.h"
#include "linux/Pixmap.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace vorla {

struct Pixel {
    int alpha = 0;
    int red = 0;
    int green = 0;
    int blue = 0;

    bool operator==(const Pixel&) const = default;
};

inline constexpr Pixel black{255, 0, 0, 0};
inline constexpr Pixel white{255, 255, 255, 255};

inline Pixel pixelAt(const Pixmap& icon, int column, int row) {
    const auto* pixel = &icon.argb.at(static_cast<std::size_t>(row * icon.width + column) * 4);
    return {pixel[0], pixel[1], pixel[2], pixel[3]};
}

/// As a panel of the colour `panel` shows the pixel.
inline Pixel over(const Pixel& panel, const Pixel& pixel) {
    const auto mixed = [&](int below, int above) {
        return below + (above - below) * pixel.alpha / 255;
    };
    return {
        255, mixed(panel.red, pixel.red), mixed(panel.green, pixel.green),
        mixed(panel.blue, pixel.blue)};
}

inline double luminance(const Pixel& colour) {
    return luminance(colour.red / 255.0, colour.green / 255.0, colour.blue / 255.0);
}

inline double contrast(const Pixel& one, const Pixel& other) {
    return contrast(luminance(one), luminance(other));
}

/// 0 where the plate shows, 255 for the text's full colour. The middle of the upper edge is never
/// written on.
inline int ink(const Pixmap& icon, int column, int row) {
    const int plate = pixelAt(icon, icon.width / 2, 0).red;
    return (pixelAt(icon, column, row).red - plate) * 255 / (255 - plate);
}

inline bool inkTouchesTheEdge(const Pixmap& icon) {
    for (int row = 0; row < icon.height; ++row) {
        for (int column = 0; column < icon.width; ++column) {
            const bool isEdge =
                row == 0 || column == 0 || row == icon.height - 1 || column == icon.width - 1;
            if (isEdge && ink(icon, column, row) != 0) {
                return true;
            }
        }
    }
    return false;
}

/// '_' is transparent, ',' a fading corner, '.' the plate; text is '-', '+' or '#', the denser the
/// more.
inline std::string picture(const Pixmap& icon) {
    const auto symbol = [](int alpha, int dense) {
        if (alpha < 255) {
            return alpha == 0 ? '_' : ',';
        }
        if (dense < 32) {
            return '.';
        }
        if (dense < 96) {
            return '-';
        }
        return dense < 176 ? '+' : '#';
    };
    std::string text;
    for (int row = 0; row < icon.height; ++row) {
        for (int column = 0; column < icon.width; ++column) {
            text += symbol(pixelAt(icon, column, row).alpha, ink(icon, column, row));
        }
        text += '\n';
    }
    return text;
}

/// Squares in all sizes that panels use, so that none has to be scaled.
inline void expectPanelSizes(const std::vector<Pixmap>& icons) {
    std::vector<int> sizes;
    for (const Pixmap& icon : icons) {
        EXPECT_EQ(icon.width, icon.height);
        EXPECT_EQ(icon.argb.size(), static_cast<std::size_t>(icon.width * icon.height * 4));
        sizes.push_back(icon.width);
    }
    EXPECT_EQ(sizes, (std::vector{16, 22, 24, 32, 48, 64}));
}

inline std::string savedPicture(const std::string& name) {
    const std::ifstream file(VORLA_TEST_DATA "/icons/" + name + ".txt");
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

} // namespace vorla
