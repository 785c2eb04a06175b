// SPDX-License-Identifier: MIT
#include "model/Json.h"

#include "linux/TemporaryFolder.h"
#include "model/Repeated.h"
#include "model/ScopedVariable.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdlib>

namespace vorla {

namespace {

using namespace std::string_literals;

std::string nestedArrays(std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

/// An array of `count` zeros.
std::string zeros(std::size_t count) {
    return "[0" + repeated(",0", count - 1) + "]";
}

bool isRefused(std::string_view bytes) {
    try {
        parseJson(bytes);
    } catch (const DecodeError& error) {
        return !std::string_view(error.what()).empty();
    }
    return false;
}

template <typename Content>
Content parsed(std::string_view bytes) {
    return std::get<Content>(parseJson(bytes).content);
}

/// A decimal comma for as long as it lives, in a locale of its own: who knows which are installed.
class DecimalComma final {
public:
    DecimalComma() {
        const std::string command =
            "localedef --no-archive -i de_DE -f UTF-8 " + folder_.at("comma");
        EXPECT_EQ(std::system(command.c_str()), 0);
        EXPECT_NE(std::setlocale(LC_NUMERIC, "comma"), nullptr);
    }

    ~DecimalComma() { std::setlocale(LC_NUMERIC, before_.c_str()); }

    DecimalComma(const DecimalComma&) = delete;
    DecimalComma& operator=(const DecimalComma&) = delete;

private:
    std::string before_ = std::setlocale(LC_NUMERIC, nullptr);
    TemporaryFolder folder_;
    ScopedVariable place_{"LOCPATH", folder_.path()};
};

} // namespace

TEST(Json, refusesEverythingThatIsNotOneValue) {
    const std::vector<std::string> refused = {
        "",
        " ",
        "[",
        "]",
        "{",
        "[1",
        "[1,",
        "[1,]",
        "[,1]",
        "[1 2]",
        "[1}",
        "{\"a\"",
        "{\"a\":",
        "{\"a\":1",
        "{\"a\":1,}",
        "{\"a\" 1}",
        "{a:1}",
        "{1:1}",
        "{'a':1}",
        "nul",
        "True",
        "undefined",
        "NaN",
        "Infinity",
        "-Infinity",
        "inf",
        "// remark\n1",
        "/* remark */ 1",
    };
    for (const std::string& text : refused) {
        EXPECT_TRUE(isRefused(text)) << text;
    }
}

TEST(Json, refusesTextAfterTheDocument) {
    for (const char* text : {"{} {}", "1 2", "[]]", "{}}", "null,", "{}x", R"("a""b")", "1,"}) {
        EXPECT_TRUE(isRefused(text)) << text;
    }
}

TEST(Json, acceptsWhiteSpaceAroundTheDocument) {
    EXPECT_EQ(parsed<JsonNumber>(" \t\r\n1 \t\r\n").text, "1");
    EXPECT_TRUE(isRefused("\v1"));
    EXPECT_TRUE(isRefused("\u00A01"));
}

TEST(Json, refusesANulByteAnywhere) {
    const std::string document = R"({"key": [1, "text"]})";
    for (std::size_t position = 0; position <= document.size(); ++position) {
        std::string text = document;
        text.insert(position, 1, '\0');
        EXPECT_TRUE(isRefused(text)) << position;
    }
}

TEST(Json, acceptsAnEscapedNul) {
    EXPECT_EQ(parsed<std::string>("\"a\\u0000b\""), "a\0b"s);
}

TEST(Json, acceptsAByteOrderMarkAtTheStartOnly) {
    EXPECT_EQ(
        parsed<JsonNumber>("\xEF\xBB\xBF"
                           "7")
            .text,
        "7");
    EXPECT_TRUE(isRefused("\xEF\xBB\xBF"));
    EXPECT_TRUE(isRefused("\xEF\xBB"
                          "7"));
    EXPECT_TRUE(isRefused("7\xEF\xBB\xBF"));
}

TEST(Json, refusesIllFormedUtf8) {
    const std::vector<std::string> illFormed = {
        "\x80",             // a continuation without a start
        "\xC3",             // a start without its continuation
        "\xC0\xAF",         // overlong
        "\xE0\x80\x80",     // overlong
        "\xED\xA0\x80",     // a surrogate
        "\xF4\x90\x80\x80", // beyond U+10FFFF
        "\xF5\x80\x80\x80", // no start byte at all
        "\xFF",
    };
    for (const std::string& bytes : illFormed) {
        EXPECT_TRUE(isRefused("\"" + bytes + "\""));
        EXPECT_TRUE(isRefused("{\"" + bytes + "\":1}"));
        EXPECT_TRUE(isRefused(bytes));
    }
}

TEST(Json, refusesControlCharactersAndWrongEscapesInStrings) {
    for (const char* text :
         {"\"\n\"", "\"\t\"", "\"\x01\"", R"("\x41")", R"("\u12G4")", R"("\")", R"("\udc00")",
          R"("\ud800")", R"("\ud800A")", R"("\ud800\u0041")"}) {
        EXPECT_TRUE(isRefused(text)) << text;
    }
}

TEST(Json, unescapesStrings) {
    EXPECT_EQ(
        parsed<std::string>(R"("\"\\\/\b\f\n\r\t\u00e9\ud83d\ude00é")"),
        "\"\\/\b\f\n\r\t\u00e9\U0001F600\u00e9");
}

TEST(Json, buildsEveryKindOfValue) {
    const auto object = parsed<JsonObject>(
        R"({"list": [null, true, false, 1, "text", [], {}], "record": {"inner": "value"}})");
    ASSERT_EQ(object.size(), 2U);
    const auto& list = std::get<JsonArray>(object.at("list").content);
    ASSERT_EQ(list.size(), 7U);
    EXPECT_TRUE(std::holds_alternative<std::nullptr_t>(list[0].content));
    EXPECT_TRUE(std::get<bool>(list[1].content));
    EXPECT_FALSE(std::get<bool>(list[2].content));
    EXPECT_EQ(std::get<JsonNumber>(list[3].content).text, "1");
    EXPECT_EQ(std::get<std::string>(list[4].content), "text");
    EXPECT_TRUE(std::get<JsonArray>(list[5].content).empty());
    EXPECT_TRUE(std::get<JsonObject>(list[6].content).empty());
    const auto& record = std::get<JsonObject>(object.at("record").content);
    EXPECT_EQ(std::get<std::string>(record.at("inner").content), "value");
}

TEST(Json, sortsKeysByTheirBytes) {
    std::string order;
    for (const auto& [key, value] :
         parsed<JsonObject>(R"({"é":1,"b":1,"Z":1,"ab":1,"a":1,"":1})")) {
        order += key + ",";
    }
    EXPECT_EQ(order, ",Z,a,ab,b,é,");
}

TEST(Json, takesTheLastOfDuplicateKeys) {
    EXPECT_EQ(
        std::get<JsonNumber>(parsed<JsonObject>(R"({"a":{"b":[1]},"c":0,"a":2})").at("a").content)
            .text,
        "2");
    const auto object = parsed<JsonObject>(R"({"a":{"first":1},"a":{"second":2}})");
    ASSERT_EQ(object.size(), 1U);
    const auto& last = std::get<JsonObject>(object.at("a").content);
    EXPECT_EQ(last.size(), 1U);
    EXPECT_TRUE(last.contains("second"));
}

TEST(Json, keepsTheSourceTextOfNumbers) {
    for (const char* text :
         {"0", "-1", "0.1000", "1e2", "1E+2", "-0.0", "1e-7", "12345678901234567890123",
          "9223372036854775807", "-9223372036854775808", "18446744073709551615",
          "18446744073709551616", "0.30000000000000004", "1700000000.50"}) {
        EXPECT_EQ(parsed<JsonNumber>(text).text, text);
    }
}

TEST(Json, keepsNumbersWhateverTheDecimalPointOfTheProcess) {
    const DecimalComma comma;
    ASSERT_STREQ(localeconv()->decimal_point, ",");
    const auto number = parsed<JsonNumber>("-12.50e1");
    EXPECT_EQ(number.text, "-12.50e1");
    EXPECT_EQ(number.decimal(), -125.0);
    EXPECT_TRUE(isRefused("-12,50e1"));
}

TEST(Json, refusesMisspeltNumbers) {
    for (const char* text :
         {"01", "-01", ".5", "1.", "-", "+1", "1e", "1e+", "1.e1", "0x10", "1_0", "1,5", "--1",
          "1.5.5", "\xC2\xBD"}) {
        EXPECT_TRUE(isRefused(text)) << text;
    }
}

TEST(Json, refusesNumbersBeyondTheRangeOfADouble) {
    EXPECT_TRUE(isRefused("1e999"));
    EXPECT_TRUE(isRefused("[-1e309]"));
    EXPECT_TRUE(isRefused(std::string(400, '9')));
    EXPECT_EQ(parsed<JsonNumber>("1.7976931348623157e308").decimal(), 1.7976931348623157e308);
    EXPECT_EQ(parsed<JsonNumber>(std::string(308, '9')).decimal(), 1e308);
}

TEST(JsonNumber, hasAnIntegerOnlyWithoutFractionAndExponentAndWithin64Bits) {
    struct Row {
        const char* text;
        std::optional<std::int64_t> integer;
    };

    const std::vector<Row> rows = {
        {"0", 0},
        {"-0", 0},
        {"50", 50},
        {"-50", -50},
        {"9007199254740993", 9007199254740993},
        {"9223372036854775807", INT64_MAX},
        {"-9223372036854775808", INT64_MIN},
        {"9223372036854775808", std::nullopt},
        {"-9223372036854775809", std::nullopt},
        {"18446744073709551615", std::nullopt},
        {"18446744073709551616", std::nullopt},
        {"12345678901234567890123", std::nullopt},
        {"50.0", std::nullopt},
        {"50.5", std::nullopt},
        {"-0.0", std::nullopt},
        {"5e1", std::nullopt},
        {"1E0", std::nullopt},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(parsed<JsonNumber>(row.text).integer(), row.integer) << row.text;
    }
}

TEST(JsonNumber, hasTheNearestDecimal) {
    struct Row {
        const char* text;
        double decimal;
    };

    const std::vector<Row> rows = {
        {"0", 0.0},
        {"50", 50.0},
        {"0.1", 0.1},
        {"1e2", 100.0},
        {"-2.5E-1", -0.25},
        {"253402300799.5", 253402300799.5},
        {"9007199254740993", 9007199254740992.0},
        {"12345678901234567890123", 12345678901234567890123.0},
        {"2.2250738585072011e-308", 2.2250738585072011e-308},
        {"5e-324", 5e-324},
        {"1e-999", 0.0},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(parsed<JsonNumber>(row.text).decimal(), row.decimal) << row.text;
    }
    EXPECT_TRUE(std::signbit(parsed<JsonNumber>("-1e-999").decimal()));
    EXPECT_EQ(parsed<JsonNumber>("-1e-999").decimal(), 0.0);
}

TEST(Json, accepts512NestedContainersAndRefusesOneMore) {
    EXPECT_FALSE(isRefused(nestedArrays(512)));
    EXPECT_TRUE(isRefused(nestedArrays(513)));
    EXPECT_FALSE(isRefused(repeated("{\"a\":", 512) + "1" + std::string(512, '}')));
    EXPECT_TRUE(isRefused(repeated("{\"a\":", 513) + "1" + std::string(513, '}')));
    EXPECT_FALSE(isRefused(repeated("[{\"a\":", 256) + "1" + repeated("}]", 256)));
    EXPECT_TRUE(isRefused(repeated("[{\"a\":", 256) + "[]" + repeated("}]", 256)));
}

TEST(Json, countsOnlyOpenContainersAsDepth) {
    EXPECT_EQ(parsed<JsonArray>("[[]" + repeated(",[[]]", 2000) + "]").size(), 2001U);
}

TEST(Json, refusesAMillionNestedContainers) {
    EXPECT_TRUE(isRefused(nestedArrays(1'000'000)));
    EXPECT_TRUE(isRefused(std::string(1'000'000, '[')));
    EXPECT_TRUE(isRefused(repeated("{\"a\":", 1'000'000)));
}

TEST(Json, acceptsTheGreatestNumberOfValues) {
    EXPECT_EQ(parsed<JsonArray>(zeros(maximumJsonValues - 1)).size(), maximumJsonValues - 1);
}

TEST(Json, refusesOneValueMoreAndCountsContainersToo) {
    EXPECT_TRUE(isRefused("[[]" + repeated(",[]", maximumJsonValues - 1) + "]"));
}

TEST(Json, refusesTwoMillionValues) {
    EXPECT_TRUE(isRefused(zeros(2'000'000)));
}

TEST(Json, refusesThirtyMegabytesOfShortNumbers) {
    EXPECT_TRUE(isRefused(zeros(15'000'000)));
}

TEST(Json, acceptsThirtyMegabytesOfText) {
    EXPECT_EQ(parsed<std::string>("\"" + repeated("Résumé", 3'750'000) + "\"").size(), 30'000'000U);
}

TEST(DecodeError, namesThePlaceAndTheProblem) {
    EXPECT_STREQ(
        DecodeError("windows[1].resetsAt", "missing").what(), "windows[1].resetsAt: missing");
    EXPECT_STREQ(DecodeError("", "a NUL byte").what(), "a NUL byte");
}

} // namespace vorla
