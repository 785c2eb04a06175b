// SPDX-License-Identifier: MIT
#include "linux/BusText.h"

#include <gtest/gtest.h>

namespace vorla {

namespace {

using namespace std::string_literals;

std::string repeated(const std::string& text, std::size_t count) {
    std::string result;
    for (std::size_t index = 0; index < count; ++index) {
        result += text;
    }
    return result;
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

TEST(BusText, cutsARowOfBrokenBytesAtTheLimitToo) {
    EXPECT_EQ(menuLabel(std::string(9000, '\xFF')), repeated("\uFFFD", 1365));
}

TEST(BusText, leavesUnderscoresInTitlesAlone) {
    EXPECT_EQ(plainLabel("a_b\tc\0d"s), "a_b cd");
    EXPECT_EQ(plainLabel(std::string(5000, '_')), std::string(4096, '_'));
    EXPECT_EQ(plainLabel("\xFF"), "\uFFFD");
}

TEST(BusText, keepsMarkupOutOfToolTips) {
    EXPECT_EQ(toolTipText("5h 87% · W 62%"), "5h 87% · W 62%");
    EXPECT_EQ(toolTipText("<b>a_b</b> &amp;"), "ba_b/b amp;");
    EXPECT_EQ(toolTipText("&<>"), "");
}

} // namespace

} // namespace vorla
