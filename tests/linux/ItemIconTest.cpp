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
    const std::string file = "/somewhere/icon.svg";
    auto both = figureIcons(figures);
    both.push_back(titleIcon(contents.title));
    EXPECT_EQ(itemIcon(IconKind::gauge, contents, file), (ItemIcon{"", gaugeIcons(figures)}));
    EXPECT_EQ(itemIcon(IconKind::figures, contents, file), (ItemIcon{"", figureIcons(figures)}));
    EXPECT_EQ(itemIcon(IconKind::figuresAndTitle, contents, file), (ItemIcon{"", both}));
    EXPECT_EQ(itemIcon(IconKind::file, contents, file), (ItemIcon{file, {}}));
    EXPECT_EQ(itemIcon(IconKind::file, contents, ""), ItemIcon{});
}

TEST(ItemIcon, hasTheWholeTitleAsItsLargestPicture) {
    const std::vector<std::int64_t> figures = {5};
    const auto icon = itemIcon(IconKind::figuresAndTitle, {figures, "W 5%"}, "");
    const auto largest = std::ranges::max_element(
        icon.pixmaps, {}, [](const Pixmap& pixmap) { return pixmap.width * pixmap.height; });
    EXPECT_EQ(*largest, titleIcon("W 5%"));
}

} // namespace
} // namespace vorla
