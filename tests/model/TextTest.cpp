// SPDX-License-Identifier: MIT
#include "model/Text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace vorla::text {
namespace {

using namespace std::string_literals;

constexpr std::string_view family = "👨‍👩‍👧‍👦";
constexpr std::string_view swissFlag = "🇨🇭";
constexpr std::string_view frenchFlag = "🇫🇷";
/// "e" and a combining acute accent.
constexpr std::string_view decomposedE = "e\u0301";

TEST(Text, whiteSpaceIsTheUnicodePropertyAndNothingElse) {
    const std::set<char32_t> expected = {0x09,   0x0A,   0x0B,   0x0C,   0x0D,   0x20,   0x85,
                                         0xA0,   0x1680, 0x2000, 0x2001, 0x2002, 0x2003, 0x2004,
                                         0x2005, 0x2006, 0x2007, 0x2008, 0x2009, 0x200A, 0x2028,
                                         0x2029, 0x202F, 0x205F, 0x3000};
    for (char32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
        ASSERT_EQ(isWhiteSpace(codePoint), expected.contains(codePoint))
            << static_cast<std::uint32_t>(codePoint);
    }
}

TEST(Text, trimsWhiteSpaceAtBothEndsOnly) {
    struct Row {
        std::string_view text;
        std::string_view trimmed;
    };

    const std::vector<Row> rows = {
        {"", ""},
        {" \t\r\n", ""},
        {"plain", "plain"},
        {"\n  two words \r\n", "two words"},
        {"\u00A0\u2003wide\u3000\u2028", "wide"},
        {"\u0085next line\v\f", "next line"},
        // Neither a zero-width space nor a byte order mark is white space.
        {"\u200B kept \uFEFF", "\u200B kept \uFEFF"},
        {" ü ", "ü"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(trimmed(row.text), row.trimmed) << row.text;
    }
}

TEST(Text, trimmingKeepsNulBytes) {
    const std::string text = " \0a\0 "s;
    EXPECT_EQ(trimmed(text), "\0a\0"s);
}

TEST(Text, trimmingKeepsIllFormedParts) {
    EXPECT_EQ(trimmed(" \x80 \n"), "\x80");
    EXPECT_EQ(trimmed("a \x80"), "a \x80");
    EXPECT_EQ(trimmed("a\u2003\x80"), "a\u2003\x80");
    EXPECT_EQ(trimmed(" a\xE2\x80 "), "a\xE2\x80");
    EXPECT_EQ(trimmed(" \xE2\x80"), "\xE2\x80");
}

TEST(Text, takesTheFirstCharactersAsPerceived) {
    struct Row {
        std::string text;
        std::size_t count;
        std::string first;
    };

    const std::vector<Row> rows = {
        {"", 3, ""},
        {"abc", 0, ""},
        {"abc", 2, "ab"},
        {"abc", 3, "abc"},
        {"abc", 4, "abc"},
        {"äöü", 2, "äö"},
        {"a\r\nb", 2, "a\r\n"},
        {"a\n\rb", 2, "a\n"},
        {std::string(decomposedE) + "x", 1, std::string(decomposedE)},
        {"e\u0301\u0323\u0302x", 1, "e\u0301\u0323\u0302"},
        {std::string(family) + "x", 1, std::string(family)},
        {std::string(swissFlag) + std::string(frenchFlag), 1, std::string(swissFlag)},
        {std::string(swissFlag) + std::string(frenchFlag) + "x", 2,
         std::string(swissFlag) + std::string(frenchFlag)},
        {"👍🏽!", 1, "👍🏽"},
        {"각각", 1, "각"},
        {"\u1100\u1161\u11A8x", 1, "\u1100\u1161\u11A8"},
        {"a\0b"s, 2, "a\0"s},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(firstCharacters(row.text, row.count), row.first) << row.text << " " << row.count;
    }
}

TEST(Text, takesTheWholeCharactersThatFit) {
    struct Row {
        std::string text;
        std::size_t maximumBytes;
        std::string fitting;
    };

    const std::vector<Row> rows = {
        {"", 0, ""},
        {"abc", 0, ""},
        {"abc", 2, "ab"},
        {"abc", 3, "abc"},
        {"abc", 99, "abc"},
        {"aäb", 2, "a"},
        {"aäb", 3, "aä"},
        {"a\r\nb", 2, "a"},
        {"a\r\nb", 3, "a\r\n"},
        {"ae\u0301x", 2, "a"},
        {"ae\u0301x", 4, "ae\u0301"},
        {std::string(family) + "x", family.size() - 1, ""},
        {std::string(family) + "x", family.size(), std::string(family)},
        {std::string(swissFlag) + std::string(frenchFlag), 12, std::string(swissFlag)},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(fittingCharacters(row.text, row.maximumBytes), row.fitting)
            << row.text << " " << row.maximumBytes;
    }
}

TEST(Text, aCharacterLargerThanTheRoomFitsNotAtAll) {
    std::string huge = "e";
    for (int mark = 0; mark < 1'000'000; ++mark) {
        huge += "\u0301";
    }
    EXPECT_EQ(fittingCharacters(huge, 4096), "");
    EXPECT_EQ(fittingCharacters("ab" + huge, 4096), "ab");
    EXPECT_EQ(firstCharacters(huge + "x", 1), huge);
}

TEST(Text, walksOverIllFormedTextWithoutLeavingIt) {
    const std::string broken = "a\xE2\x82";
    EXPECT_EQ(firstCharacters(broken, 2), "a\xE2");
    EXPECT_EQ(fittingCharacters(broken, 2), "a\xE2");
    EXPECT_EQ(trimmed("\x80\x80 "), "\x80\x80");
}

TEST(Text, anExcerptIsTheFirstCharactersRepaired) {
    struct Row {
        std::string_view bytes;
        std::size_t count;
        std::string_view excerpt;
    };

    const std::vector<Row> rows = {
        {"", 3, ""},
        {"abc", 3, "abc"},
        {"abcd", 3, "abc"},
        {"e\u0301e\u0301e", 2, "e\u0301e\u0301"},
        {"\xFF\xFF\xFF", 2, "\uFFFD\uFFFD"},
        {"a\xE2\x82", 9, "a\uFFFD"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(excerpt(row.bytes, row.count), row.excerpt) << row.bytes;
    }
}

TEST(Text, anExcerptOfOneCharacterWithoutEndHasAnEnd) {
    std::string character = "e";
    while (character.size() <= 2 * maximumExcerptBytes) {
        character += "\u0301";
    }
    // The last of the bytes looked at is half a mark.
    EXPECT_EQ(excerpt(character, 200), character.substr(0, maximumExcerptBytes - 1) + "\uFFFD");
}

TEST(Text, uppercasesTheFirstCharacterOnly) {
    struct Row {
        std::string_view text;
        std::string_view uppercased;
    };

    const std::vector<Row> rows = {
        {"", ""},
        {"weekly", "Weekly"},
        {"Weekly", "Weekly"},
        {"w", "W"},
        {"5h limit", "5h limit"},
        {"weekly limit", "Weekly limit"},
        {"éclair", "Éclair"},
        {"e\u0301clair", "E\u0301clair"},
        {"ж", "Ж"},
        {"ßa", "ßa"},
        {"ﬁsh", "ﬁsh"},
        {"日本", "日本"},
        {"👨‍👩‍👧‍👦 plan", "👨‍👩‍👧‍👦 plan"},
        {" weekly", " weekly"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(withFirstCharacterUppercased(row.text), row.uppercased) << row.text;
    }
}

struct RepairRow {
    std::string bytes;
    std::string repaired;
};

std::vector<RepairRow> repairRows() {
    return {
        {"", ""},
        {"plain", "plain"},
        {"ä€😀", "ä€😀"},
        {"\xE2\x82\x41", "\uFFFDA"},
        {"\xF0\x9F\x98", "\uFFFD"},
        {"\xF0\x9F\x98z", "\uFFFDz"},
        {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},
        {"\xC0\xAF", "\uFFFD\uFFFD"},
        {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xC2", "\uFFFD"},
        {"\x80", "\uFFFD"},
        {"\xFF\xFE", "\uFFFD\uFFFD"},
        {"\xC1\xBF", "\uFFFD\uFFFD"},
        {"\xE0\x9F\x80", "\uFFFD\uFFFD\uFFFD"},
        {"\xF0\x8F\xBF\xBF", "\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xF5\x80", "\uFFFD\uFFFD"},
        {"\xE2\x82\xE2\x82\xAC", "\uFFFD€"},
        {"\xF0\x9F\xC3\xA4", "\uFFFDä"},
        // The first and the last character of each length, and those around the surrogates.
        {"\x7F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF",
         "\x7F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF"},
        {"a\0b"s, "a\0b"s},
        {"\uFFFD", "\uFFFD"},
    };
}

TEST(Utf8Repair, putsOneReplacementForEachMaximalIllFormedPart) {
    for (const RepairRow& row : repairRows()) {
        EXPECT_EQ(repaired(row.bytes), row.repaired);
    }
}

/// Everything that can be wrong with a stream, one after the other.
RepairRow sample() {
    RepairRow all;
    for (const RepairRow& row : repairRows()) {
        // A letter keeps the broken end of one row apart from the next.
        all.bytes += row.bytes + "|";
        all.repaired += row.repaired + "|";
    }
    return all;
}

TEST(Utf8Repair, givesTheSameTextHoweverItIsSplitIntoTwo) {
    const RepairRow row = sample();
    for (std::size_t border = 0; border <= row.bytes.size(); ++border) {
        const std::string_view bytes = row.bytes;
        Utf8Repair repair;
        repair.append(bytes.substr(0, border));
        EXPECT_EQ(repair.text(), repaired(bytes.substr(0, border))) << border;
        repair.append(bytes.substr(border));
        EXPECT_EQ(repair.text(), row.repaired) << border;
    }
}

TEST(Utf8Repair, givesTheSameTextFromSingleBytesAtEveryStep) {
    const RepairRow row = sample();
    Utf8Repair repair;
    for (std::size_t index = 0; index < row.bytes.size(); ++index) {
        const std::string_view bytes = row.bytes;
        repair.append(bytes.substr(index, 1));
        repair.append("");
        ASSERT_EQ(repair.text(), repaired(bytes.substr(0, index + 1))) << index;
    }
    EXPECT_EQ(repair.text(), row.repaired);
}

TEST(Utf8Repair, showsAnUnfinishedCharacterAsReplacedUntilTheRestComes) {
    Utf8Repair repair;
    repair.append("x\xF0");
    EXPECT_EQ(repair.text(), "x\uFFFD");
    repair.append("\x9F\x98");
    EXPECT_EQ(repair.text(), "x\uFFFD");
    repair.append("\x80y");
    EXPECT_EQ(repair.text(), "x😀y");
}

TEST(Utf8Repair, keepsTheLastWholeCodePoints) {
    struct Row {
        std::size_t maximumBytes;
        std::string_view kept;
    };

    const std::vector<Row> rows = {
        {99, "aä€😀"}, {10, "aä€😀"}, {9, "ä€😀"}, {8, "€😀"}, {7, "€😀"},
        {6, "😀"},     {4, "😀"},     {3, ""},     {0, ""},
    };
    for (const Row& row : rows) {
        Utf8Repair repair;
        repair.append("aä€😀");
        repair.keepLast(row.maximumBytes);
        EXPECT_EQ(repair.text(), row.kept) << row.maximumBytes;
    }
}

TEST(Utf8Repair, finishesACharacterAfterTextBeforeItWasDropped) {
    for (const std::size_t maximumBytes : {0U, 2U, 3U, 4U}) {
        Utf8Repair repair;
        repair.append("abc\xE2\x82");
        repair.keepLast(maximumBytes);
        EXPECT_LE(repair.text().size(), maximumBytes);
        repair.append("\xAC!");
        EXPECT_EQ(repair.text(), maximumBytes == 4 ? "c€!" : "€!") << maximumBytes;
    }
}

} // namespace
} // namespace vorla::text
