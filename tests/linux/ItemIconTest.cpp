// SPDX-License-Identifier: MIT
#include "linux/ItemIcon.h"

#include "linux/FigureIcon.h"
#include "linux/GaugeIcon.h"
#include "linux/TitleIcon.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vorla {
namespace {

TEST(ItemIcon, holdsWhatItsKindSays) {
    const std::vector<std::int64_t> figures = {87, 62};
    const IconContents contents = {.figures = figures, .title = "5h 87% · W 62%"};
    auto both = figureIcons(figures);
    both.push_back(titleIcon(contents.title));
    EXPECT_EQ(iconPixmaps(IconKind::gauge, contents), gaugeIcons(figures));
    EXPECT_EQ(iconPixmaps(IconKind::figures, contents), figureIcons(figures));
    EXPECT_EQ(iconPixmaps(IconKind::figuresAndTitle, contents), both);
    EXPECT_TRUE(iconPixmaps(IconKind::file, contents).empty());
}

TEST(ItemIcon, hasTheWholeTitleAsItsLargestPicture) {
    const std::vector<std::int64_t> figures = {5};
    const auto pixmaps = iconPixmaps(IconKind::figuresAndTitle, {figures, "W 5%"});
    const auto largest = std::ranges::max_element(
        pixmaps, {}, [](const Pixmap& pixmap) { return pixmap.width * pixmap.height; });
    EXPECT_EQ(*largest, titleIcon("W 5%"));
}

TEST(ItemIcon, isToldApartByItsFingerprint) {
    const std::vector<std::int64_t> figures = {87, 62};
    const auto squares = figureIcons(figures);
    EXPECT_EQ(fingerprint(squares), fingerprint(figureIcons(figures)));
    EXPECT_NE(fingerprint(squares), fingerprint(gaugeIcons(figures)));
    EXPECT_NE(fingerprint(squares), fingerprint(std::vector<Pixmap>{}));
    auto changed = squares;
    changed.back().argb.back() ^= 1U;
    EXPECT_NE(fingerprint(squares), fingerprint(changed));
    // The same bytes, in rows of another length.
    const std::vector<Pixmap> wide = {{4, 1, std::vector<std::uint8_t>(16)}};
    const std::vector<Pixmap> high = {{1, 4, std::vector<std::uint8_t>(16)}};
    EXPECT_NE(fingerprint(wide), fingerprint(high));
}

} // namespace
} // namespace vorla
