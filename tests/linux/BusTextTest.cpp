// SPDX-License-Identifier: MIT
#include "linux/BusText.h"

#include "model/Repeated.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <ios>
#include <string>
#include <vector>

namespace vorla {

namespace {

using namespace std::string_literals;

std::string utf8(char32_t codePoint) {
    const auto continued = [&](unsigned shift) {
        return static_cast<char>(0x80U | (codePoint >> shift & 0x3FU));
    };
    if (codePoint < 0x80) {
        return {static_cast<char>(codePoint)};
    }
    if (codePoint < 0x800) {
        return {static_cast<char>(0xC0U | codePoint >> 6U), continued(0)};
    }
    if (codePoint < 0x10000) {
        return {static_cast<char>(0xE0U | codePoint >> 12U), continued(6), continued(0)};
    }
    return {static_cast<char>(0xF0U | codePoint >> 18U), continued(12), continued(6), continued(0)};
}

std::string withoutDoubling(const std::string& label) {
    std::string text;
    for (std::size_t place = 0; place < label.size(); ++place) {
        text += label[place];
        if (label[place] == '_') {
            ++place;
            EXPECT_TRUE(place < label.size() && label[place] == '_') << label;
        }
    }
    return text;
}

struct Case {
    std::string text;
    std::string expected;
};

TEST(BusText, writesLabelsWithoutWhatPanelsWouldMisread) {
    const Case cases[] = {
        {"", ""},
        {"5-hour: 42% remaining", "5-hour: 42% remaining"},
        {"a_b", "a__b"},
        {"__", "____"},
        {"left\tright", "left right"},
        {"nul\0inside"s, "nulinside"},
        {"first\nsecond\r\nthird", "first\nsecond\r\nthird"},
        {"a & <b>", "a & <b>"},
        {"bad \xC3( byte", "bad \uFFFD( byte"},
        {"\xE2\x80", "\uFFFD"},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(menuLabel(text), expected);
    }
}

TEST(BusText, cutsALabelAtItsByteLimit) {
    EXPECT_EQ(menuLabel(std::string(4096, 'x')), std::string(4096, 'x'));
    EXPECT_EQ(menuLabel(std::string(4097, 'x')), std::string(4096, 'x'));
    EXPECT_EQ(menuLabel(std::string(1'000'000, 'x')), std::string(4096, 'x'));
    EXPECT_EQ(menuLabel(std::string(10, '\0') + std::string(4096, 'x')), std::string(4096, 'x'));
}

TEST(BusText, cutsALabelBetweenCharacters) {
    const std::string family = "👩‍👩‍👧";
    ASSERT_EQ(family.size(), 18U);
    EXPECT_EQ(menuLabel(repeated(family, 300)), repeated(family, 227));
    EXPECT_EQ(menuLabel(std::string(4095, 'x') + "é"), std::string(4095, 'x'));
    EXPECT_EQ(menuLabel(std::string(4096, 'x') + "\u0301"), std::string(4095, 'x'));
    EXPECT_EQ(menuLabel(std::string(4095, 'x') + "\r\n"), std::string(4095, 'x'));
    EXPECT_EQ(menuLabel(std::string(4096, 'x') + "👩"), std::string(4096, 'x'));
}

TEST(BusText, neverCutsADoubledUnderscoreInTwo) {
    EXPECT_EQ(menuLabel(std::string(2048, '_')), std::string(4096, '_'));
    EXPECT_EQ(menuLabel(std::string(5000, '_')), std::string(4096, '_'));
    EXPECT_EQ(menuLabel("x" + std::string(5000, '_')), "x" + std::string(4094, '_'));
    EXPECT_EQ(menuLabel(std::string(4094, 'x') + "_y"), std::string(4094, 'x') + "__");
    EXPECT_EQ(menuLabel(std::string(4095, 'x') + "_y"), std::string(4095, 'x'));
    EXPECT_EQ(menuLabel(std::string(4094, 'x') + "_\u0301"), std::string(4094, 'x'));
}

TEST(BusText, cutsBothLabelsBetweenCharactersOfTheTextItself) {
    // A mark joins the underscore before it, a prepended sign the one after it.
    for (const std::string& character : {"_\u0301"s, "__\u0301"s, "\u0600_"s, "\u0600__"s, "_"s}) {
        for (std::size_t before = 4080; before <= 4096; ++before) {
            const std::string start(before, 'x');
            const std::string text = start + character + "y";
            const std::string plain = plainLabel(text);
            const std::string menu = menuLabel(text);
            const std::string single = withoutDoubling(menu);
            EXPECT_LE(menu.size(), 4096U);
            EXPECT_TRUE(plain.starts_with(single)) << character << before;
            const bool isCutBetweenCharacters =
                single == start || single == text || single + "y" == text ||
                (character.starts_with("__") && single == start + "_") ||
                (character.ends_with("__") && single + "_y" == text);
            EXPECT_TRUE(isCutBetweenCharacters) << character << before;
        }
    }
    EXPECT_EQ(menuLabel(std::string(4093, 'x') + "\u0600_"), std::string(4093, 'x'));
}

TEST(BusText, cutsBothLabelsAlikeWhereThereIsNoUnderscore) {
    for (const std::string& text :
         {repeated("👩‍👩‍👧", 300), std::string(4096, 'x') + "\u0301",
          repeated("\r\n", 3000), std::string(5000, '\xFF'), std::string(4095, 'x') + "\tyz"}) {
        EXPECT_EQ(menuLabel(text), plainLabel(text)) << text.size();
    }
}

TEST(BusText, cutsARowOfBrokenBytesAtTheLimitToo) {
    EXPECT_EQ(menuLabel(std::string(9000, '\xFF')), repeated("\uFFFD", 1365));
}

TEST(BusText, fillsALabelAlsoWithCharactersThatBecomeShorter) {
    EXPECT_EQ(menuLabel(repeated("\U0001FFFE", 2000)), repeated("\uFFFD", 1365));
    // Where the text is cut before its noncharacters shrink, no part of a character is left over.
    EXPECT_EQ(
        menuLabel(repeated("\U0001FFFE", 1000) + repeated("é", 1000)),
        repeated("\uFFFD", 1000) + repeated("é", 548));
}

TEST(BusText, replacesNoncharacters) {
    std::vector<char32_t> noncharacters = {0xFDD0, 0xFDD1, 0xFDEE, 0xFDEF};
    for (char32_t plane = 0; plane <= 0x10; ++plane) {
        noncharacters.push_back(plane << 16U | 0xFFFEU);
        noncharacters.push_back(plane << 16U | 0xFFFFU);
    }
    for (const char32_t codePoint : noncharacters) {
        const std::string text = "a" + utf8(codePoint) + utf8(codePoint) + "b";
        EXPECT_EQ(busText(text), "a\uFFFD\uFFFDb") << std::hex << std::uint32_t{codePoint};
        EXPECT_EQ(menuLabel(text), "a\uFFFD\uFFFDb") << std::hex << std::uint32_t{codePoint};
        EXPECT_EQ(plainLabel(text), "a\uFFFD\uFFFDb") << std::hex << std::uint32_t{codePoint};
    }
}

TEST(BusText, leavesTheNeighboursOfNoncharactersAlone) {
    for (const std::string text :
         {"\uFDCF", "\uFDF0", "\uFFFD", "\U00010000", "\U0001FFFD", "\U0001EFFF", "\U0001FFBF",
          "\U0010FFFD", "\uEFFF", "\uFFBF", "\uF7D0", "\uFFD0"}) {
        EXPECT_EQ(busText(text), text);
        EXPECT_EQ(menuLabel(text), text);
        EXPECT_EQ(plainLabel(text), text);
    }
}

TEST(BusText, keepsEveryOtherCharacterButNul) {
    std::string all;
    std::string expected;
    for (char32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
        if (codePoint >= 0xD800 && codePoint <= 0xDFFF) {
            continue;
        }
        const std::string character = utf8(codePoint);
        all += character;
        const bool isNone =
            (codePoint >= 0xFDD0 && codePoint <= 0xFDEF) || (codePoint & 0xFFFEU) == 0xFFFEU;
        if (codePoint != 0) {
            expected += isNone ? "\uFFFD" : character;
        }
    }
    // Not compared by EXPECT_EQ, which would print both.
    EXPECT_TRUE(busText(all) == expected);
}

TEST(BusText, showsThatThereIsATextOfWhichNothingCanBeShown) {
    std::string endless = "e";
    endless += repeated("\u0301", 2048);
    ASSERT_EQ(endless.size(), 4097U);
    for (const auto& text :
         {"\0"s, std::string(10'000, '\0'), endless, endless + " and more",
          "_" + repeated("\u0301", 2048), "\uFFFF"s}) {
        EXPECT_EQ(menuLabel(text), "\uFFFD") << text.size();
        EXPECT_EQ(plainLabel(text), "\uFFFD") << text.size();
        EXPECT_EQ(toolTipText(text), "\uFFFD") << text.size();
    }
    endless.pop_back();
    endless.pop_back();
    EXPECT_EQ(menuLabel(endless), endless);
    EXPECT_EQ(menuLabel(""), "");
    EXPECT_EQ(plainLabel(""), "");
    EXPECT_EQ(toolTipText(""), "");
    EXPECT_EQ(busText(""), "");
}

TEST(BusText, boundsNothingWhereThatIsNotAskedFor) {
    EXPECT_EQ(busText(std::string(5000, 'x') + "_\t\0\xFF"s), std::string(5000, 'x') + "_\t\uFFFD");
}

TEST(BusText, leavesUnderscoresInTitlesAlone) {
    EXPECT_EQ(plainLabel("a_b\tc\0d"s), "a_b cd");
    EXPECT_EQ(plainLabel(std::string(5000, '_')), std::string(4096, '_'));
    EXPECT_EQ(plainLabel("\xFF"), "\uFFFD");
}

TEST(BusText, keepsMarkupOutOfToolTips) {
    EXPECT_EQ(toolTipText("5h 87% · W 62%"), "5h 87% · W 62%");
    EXPECT_EQ(toolTipText("<b>a_b</b> &amp;"), "ba_b/b amp;");
    EXPECT_EQ(toolTipText("&<>"), "\uFFFD");
}

} // namespace

} // namespace vorla
