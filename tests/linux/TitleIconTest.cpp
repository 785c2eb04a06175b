// SPDX-License-Identifier: MIT
#include "linux/TitleIcon.h"

#include "linux/Pixels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace vorla {
namespace {

/// Text, since GCC 12 warns without cause when a set compares vectors of bytes.
std::string bytes(const Pixmap& icon) {
    return {icon.argb.begin(), icon.argb.end()};
}

std::string title(int fiveHour, int weekly) {
    return "5h " + std::to_string(fiveHour) + "% · W " + std::to_string(weekly) + "%";
}

/// The ink of each column, from the first to the last that has any.
std::vector<int> columnsOfInk(const Pixmap& icon) {
    std::vector<int> columns;
    for (int column = 0; column < icon.width; ++column) {
        int total = 0;
        for (int row = 0; row < icon.height; ++row) {
            total += ink(icon, column, row);
        }
        columns.push_back(total);
    }
    while (!columns.empty() && columns.back() == 0) {
        columns.pop_back();
    }
    columns.erase(
        columns.begin(), std::ranges::find_if(columns, [](int total) { return total != 0; }));
    return columns;
}

TEST(TitleIcon, isFortyEightPixelsHighAndAsWideAsItsText) {
    int before = 0;
    for (const char* const text :
         {"W 5%", "W 62%", "Vorla ?", "5h 87% · W 62%", "5h 100% · W 100%"}) {
        const Pixmap icon = titleIcon(text);
        EXPECT_EQ(icon.height, 48);
        EXPECT_GT(icon.width, before) << text;
        EXPECT_EQ(icon.argb.size(), static_cast<std::size_t>(icon.width * icon.height * 4));
        before = icon.width;
    }
}

TEST(TitleIcon, looksAsInTheSavedPictures) {
    EXPECT_EQ(picture(titleIcon("5h 87% · W 62%")), savedPicture("title-87-and-62"));
    EXPECT_EQ(picture(titleIcon("Vorla ?")), savedPicture("title-unknown"));
}

TEST(TitleIcon, keepsItsWidthWhileDigitsChange) {
    const int width = titleIcon(title(10, 10)).width;
    for (int figure = 10; figure < 100; ++figure) {
        EXPECT_EQ(titleIcon(title(figure, 109 - figure)).width, width) << figure;
    }
}

TEST(TitleIcon, drawsNoTwoTitlesAlikeAndNoneTouchingTheEdge) {
    std::set<std::string> seen;
    std::size_t count = 0;
    const auto add = [&](const std::string& text) {
        const Pixmap icon = titleIcon(text);
        EXPECT_FALSE(inkTouchesTheEdge(icon)) << text;
        seen.insert(bytes(icon));
        ++count;
    };
    add("Vorla ?");
    for (int figure = 0; figure <= 100; ++figure) {
        add(title(figure, 50));
        if (figure != 50) {
            add(title(50, figure));
        }
        add("5h " + std::to_string(figure) + "%");
        add("W " + std::to_string(figure) + "%");
    }
    EXPECT_EQ(seen.size(), count);
}

TEST(TitleIcon, drawsEachCharacterWhole) {
    // What a text shows is what its two halves show: no glyph is clipped or drawn over another.
    const auto inkOf = [](const std::string& text) {
        int total = 0;
        for (const int column : columnsOfInk(titleIcon(text))) {
            total += column;
        }
        return total;
    };
    EXPECT_EQ(inkOf("5h 87% · W 62%"), inkOf("5h 87%") + inkOf("·") + inkOf("W 62%"));
    EXPECT_EQ(inkOf("Vorla ?"), inkOf("Vo") + inkOf("rl") + inkOf("a") + inkOf("?"));
}

TEST(TitleIcon, standsOutFromItsPlateAndThePlateFromAnyPanel) {
    const Pixmap icon = titleIcon("Vorla ?");
    const Pixel plate = pixelAt(icon, icon.width / 2, 0);
    EXPECT_EQ(plate.alpha, 255);
    EXPECT_GE(contrast(plate, white), 4.5);
    EXPECT_GE(contrast(plate, black), 4.4);
    int fullInk = 0;
    for (int row = 0; row < icon.height; ++row) {
        for (int column = 0; column < icon.width; ++column) {
            fullInk += pixelAt(icon, column, row) == white ? 1 : 0;
        }
    }
    EXPECT_GT(fullInk, 500);
}

TEST(TitleIcon, showsAQuestionMarkForWhatItCannotWrite) {
    EXPECT_EQ(titleIcon("5h ü% 猫 &"), titleIcon("5h ?% ? ?"));
    EXPECT_EQ(titleIcon("\xC2\xB8\x80\xFF"), titleIcon("??"));
}

TEST(TitleIcon, isBoundedInWidth) {
    const std::string thirtyTwo(32, 'W');
    EXPECT_EQ(titleIcon(thirtyTwo + "WWW"), titleIcon(thirtyTwo));
    EXPECT_EQ(titleIcon(std::string(100'000, '0')), titleIcon(std::string(32, '0')));
    EXPECT_GT(titleIcon("").width, 0);
}

} // namespace
} // namespace vorla
