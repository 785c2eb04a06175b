// SPDX-License-Identifier: MIT
#include "linux/FigureIcon.h"

#include "linux/Pixels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <iterator>
#include <set>
#include <string>

namespace vorla {
namespace {

constexpr int sizeCount = 6;

std::vector<Pixmap> icons(std::initializer_list<std::int64_t> figures) {
    return figureIcons(std::span(figures.begin(), figures.size()));
}

/// The middle of the upper edge is never written on.
Pixel plateOf(const Pixmap& icon) {
    return pixelAt(icon, icon.width / 2, 0);
}

/// The ink of the columns up to `endColumn`, row after row.
std::vector<int> inkOf(const Pixmap& icon, int endColumn) {
    std::vector<int> all;
    for (int row = 0; row < icon.height; ++row) {
        for (int column = 0; column < endColumn; ++column) {
            all.push_back(ink(icon, column, row));
        }
    }
    return all;
}

/// Text, since GCC 12 warns without cause when a set compares vectors of bytes.
using Bytes = std::string;

Bytes upperHalf(const Pixmap& icon) {
    return {icon.argb.begin(), icon.argb.begin() + std::ssize(icon.argb) / 2};
}

Bytes lowerHalf(const Pixmap& icon) {
    return {icon.argb.begin() + std::ssize(icon.argb) / 2, icon.argb.end()};
}

int totalInk(const Pixmap& icon) {
    int total = 0;
    for (const int each : inkOf(icon, icon.width)) {
        total += each;
    }
    return total;
}

TEST(FigureIcon, comesInTheSizesThatPanelsUse) {
    expectPanelSizes(icons({87, 62}));
}

TEST(FigureIcon, looksAsInTheSavedPictures) {
    struct Case {
        std::string name;
        std::vector<std::int64_t> figures;
        int size;
    };

    const std::vector<Case> cases{
        {"87-over-62-at-16", {87, 62}, 16},
        {"87-over-62-at-22", {87, 62}, 22},
        {"87-over-62-at-32", {87, 62}, 32},
        {"100-over-100-at-16", {100, 100}, 16},
        {"100-over-100-at-22", {100, 100}, 22},
        {"5-over-0-at-16", {5, 0}, 16},
        {"62-at-16", {62}, 16},
        {"62-at-22", {62}, 22},
        {"unknown-at-16", {}, 16},
        {"unknown-at-22", {}, 22},
        {"39-over-41-at-24", {39, 41}, 24},
    };
    for (const Case& each : cases) {
        const std::vector<Pixmap> all = figureIcons(each.figures);
        const auto icon = std::ranges::find(all, each.size, &Pixmap::width);
        ASSERT_NE(icon, all.end());
        EXPECT_EQ(picture(*icon), savedPicture(each.name)) << each.name;
    }
}

TEST(FigureIcon, leavesOutWhatComesAfterTheSecondFigure) {
    EXPECT_EQ(icons({87, 62, 5}), icons({87, 62}));
}

TEST(FigureIcon, writesTextThatStandsOutFromThePlate) {
    for (const Pixmap& icon : icons({87, 62})) {
        Pixel brightest = plateOf(icon);
        for (int row = 0; row < icon.height; ++row) {
            for (int column = 0; column < icon.width; ++column) {
                const Pixel colour = pixelAt(icon, column, row);
                brightest = luminance(colour) > luminance(brightest) ? colour : brightest;
            }
        }
        EXPECT_GE(contrast(brightest, plateOf(icon)), 4.5) << icon.width;
    }
}

TEST(FigureIcon, hasAPlateThatStandsOutFromDarkAndLightPanels) {
    for (const Pixmap& icon : icons({})) {
        EXPECT_GE(contrast(plateOf(icon), black), 4.4) << icon.width;
        EXPECT_GE(contrast(plateOf(icon), white), 4.4) << icon.width;
    }
}

TEST(FigureIcon, isOpaqueButForItsRoundedCorners) {
    for (const Pixmap& icon : icons({100, 100})) {
        const int last = icon.width - 1;
        for (const auto& [column, row] : std::initializer_list<std::pair<int, int>>{
                 {0, 0}, {last, 0}, {0, last}, {last, last}}) {
            EXPECT_EQ(pixelAt(icon, column, row).alpha, 0) << icon.width;
        }
        const int corner = (icon.width + 4) / 5;
        for (int row = 0; row < icon.height; ++row) {
            for (int column = 0; column < icon.width; ++column) {
                const bool besideCorner = (row >= corner && row <= last - corner) ||
                                          (column >= corner && column <= last - corner);
                if (besideCorner) {
                    ASSERT_EQ(pixelAt(icon, column, row).alpha, 255) << column << ' ' << row;
                }
            }
        }
    }
}

TEST(FigureIcon, keepsThePlatesFullPixelWhereTheCornersFade) {
    int fading = 0;
    for (const Pixmap& icon : icons({})) {
        Pixel plate = plateOf(icon);
        for (int row = 0; row < icon.height; ++row) {
            for (int column = 0; column < icon.width; ++column) {
                const Pixel colour = pixelAt(icon, column, row);
                if (colour.alpha != 0 && colour.alpha != 255) {
                    plate.alpha = colour.alpha;
                    EXPECT_EQ(colour, plate);
                    ++fading;
                }
            }
        }
    }
    EXPECT_GT(fading, 0);
}

TEST(FigureIcon, drawsEveryPairInsideThePlateAndNoTwoPairsAlike) {
    // Each half shows its own figure and nothing of the other, as the loops below find out for
    // every pair. Different halves for all figures then make all pairs different.
    std::array<std::vector<Bytes>, sizeCount> uppers;
    std::array<std::vector<Bytes>, sizeCount> lowers;
    for (std::int64_t figure = 0; figure <= 100; ++figure) {
        const std::vector<Pixmap> all = icons({figure, figure});
        for (std::size_t size = 0; size < sizeCount; ++size) {
            EXPECT_FALSE(inkTouchesTheEdge(all[size])) << figure << " at " << all[size].width;
            uppers.at(size).push_back(upperHalf(all[size]));
            lowers.at(size).push_back(lowerHalf(all[size]));
        }
    }
    for (std::size_t upper = 0; upper <= 100; ++upper) {
        for (std::size_t lower = 0; lower <= 100; ++lower) {
            const std::vector<Pixmap> all =
                icons({static_cast<std::int64_t>(upper), static_cast<std::int64_t>(lower)});
            for (std::size_t size = 0; size < sizeCount; ++size) {
                ASSERT_EQ(upperHalf(all[size]), uppers.at(size)[upper]) << upper << ' ' << lower;
                ASSERT_EQ(lowerHalf(all[size]), lowers.at(size)[lower]) << upper << ' ' << lower;
            }
        }
    }
    for (std::size_t size = 0; size < sizeCount; ++size) {
        EXPECT_EQ(std::set(uppers.at(size).begin(), uppers.at(size).end()).size(), 101U);
        EXPECT_EQ(std::set(lowers.at(size).begin(), lowers.at(size).end()).size(), 101U);
    }
}

TEST(FigureIcon, drawsNoTwoSingleFiguresAlikeAndNoneTouchingTheEdge) {
    std::array<std::set<Bytes>, sizeCount> seen;
    const auto add = [&seen](const std::vector<Pixmap>& all) {
        for (std::size_t size = 0; size < sizeCount; ++size) {
            EXPECT_FALSE(inkTouchesTheEdge(all[size])) << all[size].width;
            EXPECT_TRUE(seen.at(size).emplace(all[size].argb.begin(), all[size].argb.end()).second)
                << all[size].width;
        }
    };
    add(icons({}));
    for (std::int64_t figure = 0; figure <= 100; ++figure) {
        add(icons({figure}));
    }
}

TEST(FigureIcon, drawsBothDigitsWholeAndApart) {
    for (std::int64_t figure = 10; figure < 100; ++figure) {
        const std::vector<Pixmap> both = icons({figure});
        const std::vector<Pixmap> tens = icons({figure / 10});
        const std::vector<Pixmap> ones = icons({figure % 10});
        for (std::size_t size = 0; size < sizeCount; ++size) {
            // A clipped digit, or one drawn over the other, would leave less ink.
            EXPECT_EQ(totalInk(both[size]), totalInk(tens[size]) + totalInk(ones[size])) << figure;
        }
    }
}

TEST(FigureIcon, leavesAGapBetweenTheTwoFigures) {
    for (const Pixmap& icon : icons({88, 88})) {
        for (int column = 0; column < icon.width; ++column) {
            EXPECT_EQ(ink(icon, column, icon.height / 2 - 1), 0) << icon.width;
            EXPECT_EQ(ink(icon, column, icon.height / 2), 0) << icon.width;
        }
    }
}

TEST(FigureIcon, leavesAGapBetweenTheDigitsOfAHundred) {
    for (const Pixmap& icon : icons({100, 100})) {
        std::string inked;
        for (int column = 0; column < icon.width; ++column) {
            bool any = false;
            for (int row = 0; row < icon.height; ++row) {
                any = any || ink(icon, column, row) != 0;
            }
            inked += any ? '#' : '.';
        }
        const auto repeated = std::ranges::unique(inked);
        inked.erase(repeated.begin(), repeated.end());
        EXPECT_EQ(inked, ".#.#.#.") << icon.width;
    }
}

TEST(FigureIcon, leavesTheFirstDigitInPlaceWhenTheLastOneChanges) {
    const std::vector<Pixmap> before = icons({40, 70});
    for (std::int64_t last = 1; last <= 9; ++last) {
        const std::vector<Pixmap> after = icons({40 + last, 70 + last});
        for (std::size_t size = 0; size < sizeCount; ++size) {
            const int half = before[size].width / 2;
            EXPECT_EQ(inkOf(after[size], half), inkOf(before[size], half));
        }
    }
}

} // namespace
} // namespace vorla
