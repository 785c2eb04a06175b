// SPDX-License-Identifier: MIT
#include "linux/GaugeIcon.h"

#include "linux/Pixels.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <set>

namespace vorla {
namespace {

std::vector<Pixmap> icons(std::initializer_list<std::int64_t> figures) {
    return gaugeIcons(std::span(figures.begin(), figures.size()));
}

bool isInked(const Pixmap& icon, int column, int row) {
    return pixelAt(icon, column, row).alpha != 0;
}

/// The first and last column of each bar, found in the middle row.
std::vector<std::pair<int, int>> bars(const Pixmap& icon) {
    std::vector<std::pair<int, int>> found;
    for (int column = 0; column < icon.width; ++column) {
        if (!isInked(icon, column, icon.height / 2)) {
            continue;
        }
        if (found.empty() || found.back().second != column - 1) {
            found.emplace_back(column, column);
        }
        found.back().second = column;
    }
    return found;
}

/// How many rows of the middle column of a bar are full, and how many empty.
struct Level {
    int full = 0;
    int empty = 0;

    bool operator==(const Level&) const = default;
};

Level level(const Pixmap& icon, const std::pair<int, int>& bar) {
    const int column = (bar.first + bar.second) / 2;
    Level found;
    for (int row = 0; row < icon.height; ++row) {
        const int alpha = pixelAt(icon, column, row).alpha;
        if (alpha == 255) {
            ++found.full;
        } else if (alpha != 0) {
            EXPECT_EQ(found.full, 0) << "empty below full at " << icon.width;
            ++found.empty;
        }
    }
    return found;
}

TEST(GaugeIcon, comesInTheSizesThatPanelsUse) {
    expectPanelSizes(icons({87, 62}));
}

TEST(GaugeIcon, hasOneBarForEachFigureAndTwoWithoutAny) {
    const std::vector<std::pair<std::vector<std::int64_t>, std::size_t>> cases = {
        {{}, 2}, {{62}, 1}, {{87, 62}, 2}, {{87, 62, 5}, 2}};
    for (const auto& [figures, count] : cases) {
        for (const Pixmap& icon : gaugeIcons(figures)) {
            EXPECT_EQ(bars(icon).size(), count) << figures.size() << " at " << icon.width;
        }
    }
}

TEST(GaugeIcon, standsInTheMiddle) {
    for (const auto& all : {icons({100, 100}), icons({100})}) {
        for (const Pixmap& icon : all) {
            for (int row = 0; row < icon.height; ++row) {
                for (int column = 0; column < icon.width; ++column) {
                    const Pixel pixel = pixelAt(icon, column, row);
                    EXPECT_EQ(pixel, pixelAt(icon, icon.width - 1 - column, row)) << icon.width;
                    EXPECT_EQ(pixel, pixelAt(icon, column, icon.height - 1 - row)) << icon.width;
                }
            }
        }
    }
}

TEST(GaugeIcon, isFilledFromBelowByWhatIsLeft) {
    for (std::int64_t figure = 0; figure <= 100; ++figure) {
        for (const Pixmap& icon : icons({figure, 100 - figure})) {
            const auto both = bars(icon);
            ASSERT_EQ(both.size(), 2U);
            const Level left = level(icon, both[0]);
            const Level right = level(icon, both[1]);
            const int height = left.full + left.empty;
            EXPECT_EQ(right.full + right.empty, height);
            EXPECT_NEAR(left.full, height * static_cast<double>(figure) / 100, 1) << icon.width;
            EXPECT_NEAR(right.full, height - left.full, 1) << icon.width;
            // Neither end of the scale is shown before it is reached.
            EXPECT_EQ(left.full == 0, figure == 0) << figure << " at " << icon.width;
            EXPECT_EQ(left.empty == 0, figure == 100) << figure << " at " << icon.width;
        }
    }
}

TEST(GaugeIcon, leavesTheSecondBarInPlaceWhenTheFirstChanges) {
    const auto before = icons({40, 70});
    const auto after = icons({41, 70});
    for (std::size_t size = 0; size < before.size(); ++size) {
        EXPECT_EQ(bars(before[size]), bars(after[size]));
        EXPECT_EQ(
            level(before[size], bars(before[size])[1]), level(after[size], bars(after[size])[1]));
    }
}

TEST(GaugeIcon, hasSharpEdges) {
    for (const Pixmap& icon : icons({50, 50})) {
        std::set<int> shades;
        for (int column = 0; column < icon.width; ++column) {
            shades.insert(pixelAt(icon, column, icon.height / 2).alpha);
        }
        for (const auto& [first, last] : bars(icon)) {
            for (int row = 0; row < icon.height; ++row) {
                shades.insert(pixelAt(icon, (first + last) / 2, row).alpha);
            }
        }
        // Nothing, what has been used, what is left.
        EXPECT_EQ(shades.size(), 3U) << icon.width;
    }
}

TEST(GaugeIcon, standsOutFromDarkAndLightPanels) {
    for (const Pixmap& icon : icons({50, 0})) {
        const auto both = bars(icon);
        const Pixel left = pixelAt(icon, both[0].first + 1, icon.height / 2 + 1);
        const Pixel used = pixelAt(icon, both[1].first + 1, icon.height / 2 + 1);
        ASSERT_EQ(left.alpha, 255);
        for (const Pixel& panel : {black, white}) {
            EXPECT_GE(contrast(over(panel, left), panel), 4.4) << icon.width;
            EXPECT_GE(contrast(over(panel, left), over(panel, used)), 2.9) << icon.width;
            EXPECT_GE(contrast(over(panel, used), panel), 1.2) << icon.width;
        }
    }
}

TEST(GaugeIcon, touchesNoEdge) {
    for (const Pixmap& icon : icons({100, 100})) {
        for (int place = 0; place < icon.width; ++place) {
            EXPECT_FALSE(isInked(icon, place, 0)) << icon.width;
            EXPECT_FALSE(isInked(icon, place, icon.height - 1)) << icon.width;
            EXPECT_FALSE(isInked(icon, 0, place)) << icon.width;
            EXPECT_FALSE(isInked(icon, icon.width - 1, place)) << icon.width;
        }
    }
}

} // namespace
} // namespace vorla
