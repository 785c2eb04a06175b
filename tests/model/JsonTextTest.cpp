// SPDX-License-Identifier: MIT
#include "model/JsonText.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>

namespace vorla {
namespace {

constexpr std::size_t plenty = 1'000'000;

JsonValue number(std::string text) {
    return {JsonNumber{std::move(text)}};
}

JsonValue nestedArrays(int depth) {
    JsonValue value{JsonArray{}};
    for (int level = 1; level < depth; ++level) {
        JsonArray outer;
        std::swap(outer.emplace_back(), value);
        value.content = std::move(outer);
    }
    return value;
}

TEST(JsonText, writesEachKindOfValue) {
    EXPECT_EQ(prettyJson({}, plenty), "null");
    EXPECT_EQ(prettyJson({true}, plenty), "true");
    EXPECT_EQ(prettyJson({false}, plenty), "false");
    EXPECT_EQ(prettyJson({std::string("text")}, plenty), "\"text\"");
    EXPECT_EQ(prettyJson({JsonArray{}}, plenty), "[]");
    EXPECT_EQ(prettyJson({JsonObject{}}, plenty), "{}");
}

TEST(JsonText, keepsEveryDigitOfANumber) {
    for (const auto* const digits : {"0.1000", "1e2", "12345678901234567890123", "-0.0", "50"}) {
        EXPECT_EQ(prettyJson(number(digits), plenty), digits);
    }
}

TEST(JsonText, indentsByTwoSpacesALevel) {
    JsonObject inner;
    inner["list"] = {JsonArray{number("1"), {JsonArray{}}, {JsonObject{}}}};
    JsonObject outer;
    outer["inner"] = {std::move(inner)};
    outer["flag"] = {true};
    EXPECT_EQ(
        prettyJson({std::move(outer)}, plenty), "{\n"
                                                "  \"flag\": true,\n"
                                                "  \"inner\": {\n"
                                                "    \"list\": [\n"
                                                "      1,\n"
                                                "      [],\n"
                                                "      {}\n"
                                                "    ]\n"
                                                "  }\n"
                                                "}");
}

TEST(JsonText, sortsMembersByTheBytesOfTheirKeys) {
    JsonObject object;
    for (const auto* const key : {"é", "b", "Z", "a10", "a9", ""}) {
        object[key] = number("0");
    }
    EXPECT_EQ(
        prettyJson({std::move(object)}, plenty),
        "{\n  \"\": 0,\n  \"Z\": 0,\n  \"a10\": 0,\n  \"a9\": 0,\n  \"b\": 0,\n  \"é\": 0\n}");
}

TEST(JsonText, escapesOnlyWhatMustBeEscaped) {
    struct Case {
        std::string_view string;
        std::string_view text;
    };

    using namespace std::string_view_literals;
    for (const auto& [string, text] : {
             Case{"x/y", R"("x/y")"},
             Case{"\"\\", R"("\"\\")"},
             Case{"\b\f\n\r\t", R"("\b\f\n\r\t")"},
             Case{"\0\x01\x1f"sv, R"("\u0000\u0001\u001f")"},
             Case{"a\nb\"c", R"("a\nb\"c")"},
             Case{"<&>\x7f é 语 🙂", "\"<&>\x7f é 语 🙂\""},
         }) {
        EXPECT_EQ(prettyJson({std::string(string)}, plenty), text);
    }
}

TEST(JsonText, escapesKeysLikeStrings) {
    JsonObject object;
    object[std::string("a\0\"", 3)] = {};
    EXPECT_EQ(prettyJson({std::move(object)}, plenty), "{\n  \"a\\u0000\\\"\": null\n}");
}

TEST(JsonText, allowsExactlyTheGivenNumberOfBytes) {
    JsonObject object;
    object["key"] = {JsonArray{{std::string("a\n")}, {}}};
    const JsonValue value{std::move(object)};
    const auto whole = prettyJson(value, plenty);
    ASSERT_TRUE(whole);
    EXPECT_EQ(prettyJson(value, whole->size()), whole);
    for (std::size_t limit = 0; limit < whole->size(); ++limit) {
        EXPECT_EQ(prettyJson(value, limit), std::nullopt) << limit;
    }
}

TEST(JsonText, writesWhatIsNestedAsDeeplyAsCanBeParsed) {
    const auto text = prettyJson(nestedArrays(maximumJsonDepth), plenty);
    ASSERT_TRUE(text);
    EXPECT_EQ(text->substr(0, 8), "[\n  [\n  ");
    EXPECT_TRUE(text->ends_with("  ]\n]"));
}

TEST(JsonText, refusesWhatIsNestedMoreDeeply) {
    EXPECT_EQ(prettyJson(nestedArrays(maximumJsonDepth + 1), plenty), std::nullopt);
}

// The indentation of these 40 kilobytes would take more than 20 megabytes.
TEST(JsonText, stopsAtTheLimitBeforeIndentationTakesTheMemory) {
    JsonArray rows;
    for (int row = 0; row < 40; ++row) {
        rows.push_back(nestedArrays(maximumJsonDepth - 1));
    }
    EXPECT_EQ(prettyJson({std::move(rows)}, plenty), std::nullopt);
}

TEST(JsonText, givesBackWhatWasParsed) {
    constexpr std::string_view document = "{\n"
                                          "  \"a\": 2,\n"
                                          "  \"b\": \"x/y\",\n"
                                          "  \"c\": [\n"
                                          "    0.1000,\n"
                                          "    \"\\u0000\"\n"
                                          "  ]\n"
                                          "}";
    EXPECT_EQ(prettyJson(parseJson(document), plenty), document);
    EXPECT_EQ(
        prettyJson(parseJson(R"({"c":[0.1000,"\u0000"],"b":"x\/y","a":2})"), plenty), document);
}

} // namespace
} // namespace vorla
