// SPDX-License-Identifier: MIT
#include "model/JsonObjectReader.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace vorla {

namespace {

/// The complaint about `key` of `document` when it is asked for as `decode` takes it.
template <typename Decoder>
std::string complaint(const std::string& document, const std::string& key, Decoder decode) {
    const JsonValue value = parseJson(document);
    try {
        JsonObjectReader(value, "place").required(key, decode);
    } catch (const DecodeError& error) {
        return error.what();
    }
    return "none";
}

} // namespace

TEST(JsonObjectReader, readsEachTypeThatIsAskedFor) {
    const JsonValue value = parseJson(R"({"b":true,"i":-3,"d":0.5,"s":"text","a":[1,2],"x":9})");
    const JsonObjectReader reader(value);
    EXPECT_TRUE(reader.required("b", json::boolean));
    EXPECT_EQ(reader.required("i", json::integer), -3);
    EXPECT_EQ(reader.required("d", json::decimal), 0.5);
    EXPECT_EQ(reader.required("s", json::string), "text");
    EXPECT_EQ(
        reader.required("a", json::arrayOf(json::integer)), (std::vector<std::int64_t>{1, 2}));
}

TEST(JsonObjectReader, refusesEveryOtherType) {
    const std::string document =
        R"({"b":1,"i":0.5,"n":"1","s":true,"a":{},"e":[1,"2"],"o":[],"null":null})";
    EXPECT_EQ(complaint(document, "b", json::boolean), "place.b: not a boolean");
    EXPECT_EQ(complaint(document, "i", json::integer), "place.i: not an integer of 64 bits");
    EXPECT_EQ(complaint(document, "n", json::integer), "place.n: not a number");
    EXPECT_EQ(complaint(document, "n", json::decimal), "place.n: not a number");
    EXPECT_EQ(complaint(document, "s", json::string), "place.s: not a string");
    EXPECT_EQ(complaint(document, "a", json::arrayOf(json::integer)), "place.a: not an array");
    EXPECT_EQ(complaint(document, "e", json::arrayOf(json::integer)), "place.e[1]: not a number");
    EXPECT_EQ(complaint(document, "null", json::string), "place.null: not a string");
    EXPECT_EQ(complaint(document, "none", json::string), "place.none: missing");
    EXPECT_EQ(complaint("[]", "b", json::boolean), "place: not an object");
}

TEST(JsonObjectReader, takesNullForMissingWhereThatIsAllowed) {
    const JsonValue value = parseJson(R"({"null":null,"s":"text","n":1})");
    const JsonObjectReader reader(value);
    EXPECT_EQ(reader.optional("none", json::string), std::nullopt);
    EXPECT_EQ(reader.optional("null", json::string), std::nullopt);
    EXPECT_EQ(reader.optional("s", json::string), "text");
    EXPECT_THROW(reader.optional("n", json::string), DecodeError);
}

} // namespace vorla
