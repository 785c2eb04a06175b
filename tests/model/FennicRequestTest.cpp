// SPDX-License-Identifier: MIT
#include "model/FennicRequest.h"

#include "model/JsonObjectReader.h"
#include "model/Repeated.h"

#include <gtest/gtest.h>

#include <limits>

namespace vorla {

namespace {

/// The task that would be sent, or the message shown instead.
std::string prepared(std::string_view text) {
    const auto outcome = FennicRequest::prepare(text, {});
    if (const auto* refusal = std::get_if<FennicRefusal>(&outcome)) {
        return std::string(refusal->message);
    }
    return std::get<FennicRequest>(outcome).task;
}

std::string encodedTask(std::string_view task) {
    return FennicRequest{.task = std::string(task), .quota = {}}.encode().value();
}

} // namespace

TEST(FennicRequest, refusesATextOfSpacesAndLineEndsOnly) {
    for (const char* text : {"", " ", " \n\t\r\n ", "\u00A0\u2003\u2028\u2029\u3000"}) {
        EXPECT_EQ(prepared(text), "Describe the task first.");
    }
}

TEST(FennicRequest, trimsBothEndsAndKeepsWhatIsInside) {
    EXPECT_EQ(prepared("\n\u00A0 Sort  the\n\nlist\u00A0now \t\n"), "Sort  the\n\nlist\u00A0now");
}

TEST(FennicRequest, acceptsEightThousandCharactersBesidesBlankLines) {
    const std::string task = repeated("x", 8000);
    EXPECT_EQ(prepared("\n\n" + task + "\n \n"), task);
}

TEST(FennicRequest, refusesOneCharacterMore) {
    EXPECT_EQ(prepared(repeated("x", 8001)), "That description is longer than 8,000 characters.");
}

TEST(FennicRequest, countsWhatAUserSeesAsOneCharacterOnce) {
    // A family joined of three, a flag of two letters, an e with its accent apart.
    for (const char* character :
         {"\U0001F468\u200D\U0001F469\u200D\U0001F467", "\U0001F1E9\U0001F1EA", "e\u0301"}) {
        const std::string task = repeated(character, 8000);
        EXPECT_EQ(prepared(task), task);
        EXPECT_EQ(prepared(task + character), fennicTaskIsTooLong);
    }
}

TEST(FennicRequest, carriesTheSummaryUnchanged) {
    const FennicQuota quota = {.fiveHourRemainingPercent = 3, .pressureSummary = "Blocked now."};
    const auto outcome = FennicRequest::prepare(" Task ", quota);
    EXPECT_EQ(std::get<FennicRequest>(outcome), (FennicRequest{.task = "Task", .quota = quota}));
}

TEST(FennicRequest, encodesTaskAndAnEmptyQuotaObject) {
    EXPECT_EQ(encodedTask("Sort the list"), R"({"task":"Sort the list","quota":{}})");
}

TEST(FennicRequest, encodesTheSummaryInside) {
    const FennicRequest request = {.task = "A", .quota = {.weeklyRemainingPercent = 0}};
    EXPECT_EQ(request.encode(), R"({"task":"A","quota":{"weeklyRemainingPercent":0}})");
}

TEST(FennicRequest, escapesOnlyWhatMustBe) {
    EXPECT_EQ(
        encodedTask("\"a\\b\"\n\r\t\x01\x1F\x7F/\u00E9\u2028"),
        "{\"task\":\"\\\"a\\\\b\\\"\\n\\r\\t\\u0001\\u001f\x7F/"
        "\u00E9\u2028\",\"quota\":{}}");
    EXPECT_EQ(encodedTask(std::string_view("\0", 1)), R"({"task":"\u0000","quota":{}})");
}

TEST(FennicRequest, readsBackAsTheSameText) {
    const std::string task = "Line \"one\"\n\\ two \x02 \u2029 \U0001F600";
    const JsonValue document = parseJson(encodedTask(task));
    EXPECT_EQ(JsonObjectReader(document).required("task", json::string), task);
}

TEST(FennicRequest, cannotBeEncodedWithANumberThatJsonLacks) {
    const FennicRequest request = {
        .task = "A", .quota = {.weeklySecondsToReset = std::numeric_limits<double>::infinity()}};
    EXPECT_EQ(request.encode(), std::nullopt);
}

} // namespace vorla
