// SPDX-License-Identifier: MIT
#include "model/FennicResult.h"

#include <gtest/gtest.h>

namespace vorla {

namespace {

/// A valid answer with one member replaced.
std::string answerWith(std::string_view key, std::string_view value) {
    std::map<std::string, std::string, std::less<>> members = {
        {"taskSize", R"("medium")"},
        {"taskSizeConfidence", "0.75"},
        {"fitProbability", "0.5"},
        {"recommendedAction", R"("plan_first")"},
        {"actionConfidence", "0.25"}};
    members[std::string(key)] = value;
    std::string answer;
    for (const auto& [name, content] : members) {
        if (!content.empty()) {
            answer += answer.empty() ? "{" : ",";
            answer += "\"" + name + "\":" + content;
        }
    }
    return answer + "}";
}

FennicResult resultWith(std::string_view taskSize, double fitProbability = 0.5) {
    return {
        .taskSize = std::string(taskSize),
        .taskSizeConfidence = 1,
        .fitProbability = fitProbability,
        .recommendedAction = "start_now",
        .actionConfidence = 1};
}

std::vector<std::string> textsOf(const std::vector<FennicLine>& lines) {
    std::vector<std::string> texts;
    for (const FennicLine& line : lines) {
        texts.push_back(line.text);
    }
    return texts;
}

} // namespace

TEST(FennicResult, acceptsIntegersAndBothEndsOfTheRange) {
    const FennicResult expected = {
        .taskSize = "medium",
        .taskSizeConfidence = 1,
        .fitProbability = 0,
        .recommendedAction = "plan_first",
        .actionConfidence = 0.5};
    EXPECT_EQ(
        FennicResult::decode(R"({"taskSize":"medium","taskSizeConfidence":1,"fitProbability":0,)"
                             R"("recommendedAction":"plan_first","actionConfidence":0.5})"),
        expected);
}

TEST(FennicResult, ignoresUnknownKeys) {
    EXPECT_NO_THROW(FennicResult::decode(answerWith("explanation", R"({"deep":[null]})")));
}

TEST(FennicResult, knowsEverySizeByItsExactCode) {
    const std::pair<const char*, const char*> sizes[] = {
        {"tiny", "Tiny"},
        {"small", "Small"},
        {"medium", "Medium"},
        {"large", "Large"},
        {"huge", "Huge"}};
    for (const auto& [code, label] : sizes) {
        const std::string quoted = "\"" + std::string(code) + "\"";
        EXPECT_EQ(FennicResult::decode(answerWith("taskSize", quoted)).sizeLabel(), label);
    }
    for (const char* code :
         {R"("Medium")", R"(" medium")", R"("medium ")", R"("")", R"("giant")"}) {
        EXPECT_THROW(FennicResult::decode(answerWith("taskSize", code)), DecodeError) << code;
    }
}

TEST(FennicResult, knowsEveryActionByItsExactCode) {
    const std::pair<const char*, const char*> actions[] = {
        {"start_now", "START NOW"},
        {"plan_first", "PLAN FIRST"},
        {"split_first", "SPLIT FIRST"},
        {"wait_for_reset", "WAIT FOR RESET"}};
    for (const auto& [code, headline] : actions) {
        const std::string quoted = "\"" + std::string(code) + "\"";
        const auto result = FennicResult::decode(answerWith("recommendedAction", quoted));
        EXPECT_EQ(result.verdict(), headline);
    }
    for (const char* code : {R"("plan first")", R"("Plan_first")", R"("START NOW")", R"("")"}) {
        EXPECT_THROW(FennicResult::decode(answerWith("recommendedAction", code)), DecodeError)
            << code;
    }
}

TEST(FennicResult, refusesSharesOutsideTheRangeInsteadOfClampingThem) {
    for (const char* key : {"fitProbability", "taskSizeConfidence", "actionConfidence"}) {
        for (const char* share : {"1.0000001", "-0.0000001", "2", "-1", "NaN", "1e999"}) {
            EXPECT_THROW(FennicResult::decode(answerWith(key, share)), DecodeError)
                << key << " " << share;
        }
        EXPECT_NO_THROW(FennicResult::decode(answerWith(key, "1.0")));
    }
}

TEST(FennicResult, refusesMissingKeysAndOtherTypes) {
    for (const char* key :
         {"taskSize", "taskSizeConfidence", "fitProbability", "recommendedAction",
          "actionConfidence"}) {
        for (const char* content : {"", "null", "true", "[]", "{}"}) {
            EXPECT_THROW(FennicResult::decode(answerWith(key, content)), DecodeError)
                << key << " " << content;
        }
    }
    EXPECT_THROW(FennicResult::decode(answerWith("taskSize", "1")), DecodeError);
    EXPECT_THROW(FennicResult::decode(answerWith("fitProbability", R"("0.5")")), DecodeError);
}

TEST(FennicResult, refusesWhatIsNotOneJsonObject) {
    for (const char* body : {"", "{", "[]", "null", "\"medium\"", "<html>"}) {
        EXPECT_THROW(FennicResult::decode(body), DecodeError) << body;
    }
    EXPECT_THROW(FennicResult::decode(answerWith("more", "1") + "x"), DecodeError);
}

TEST(FennicResult, showsAnUnknownCodeAsItIs) {
    FennicResult result = resultWith("giant");
    result.recommendedAction = "sleep";
    EXPECT_EQ(result.sizeLabel(), "giant");
    EXPECT_EQ(result.verdict(), "sleep");
}

TEST(FennicResult, sumsUpTheScarcerQuota) {
    struct Row {
        std::optional<std::int64_t> fiveHour;
        std::optional<std::int64_t> weekly;
        const char* sentence;
    };

    const Row rows[] = {
        {15, 90, "Medium task with little quota left."},
        {90, 15, "Medium task with little quota left."},
        {-4, std::nullopt, "Medium task with little quota left."},
        {std::nullopt, 0, "Medium task with little quota left."},
        {16, std::nullopt, "Medium task with limited quota remaining."},
        {40, 41, "Medium task with limited quota remaining."},
        {std::nullopt, 41, "Medium task with substantial quota remaining."},
        {100, 100, "Medium task with substantial quota remaining."},
        {std::nullopt, std::nullopt, "Medium task; current quota unavailable."},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(resultWith("medium").summaryLine(row.fiveHour, row.weekly), row.sentence);
    }
}

TEST(FennicResult, showsSevenLinesFromTheVerdictDown) {
    const FennicQuota quota = {.fiveHourRemainingPercent = 12, .weeklyRemainingPercent = 1234};
    using Weight = FennicLine::Weight;
    using Colour = FennicLine::Colour;
    const std::vector<FennicLine> expected = {
        {"START NOW", 26, Weight::bold, Colour::primary},
        {"Fit probability: 50%", 13, Weight::regular, Colour::primary},
        {"Task size: Large", 13, Weight::regular, Colour::primary},
        {"Current 5-hour quota: 12%", 13, Weight::regular, Colour::primary},
        {"Current weekly quota: 1234%", 13, Weight::regular, Colour::primary},
        {"Large task with little quota left.", 12, Weight::regular, Colour::secondary},
        {"Experimental task-fit assessment, not an Orvane quota estimate.", 11, Weight::regular,
         Colour::secondary},
    };
    EXPECT_EQ(resultWith("large").lines(quota), expected);
}

TEST(FennicResult, leavesOutTheLinesOfAbsentQuotaValues) {
    const FennicResult result = resultWith("tiny");
    const std::vector<std::string> expected = {
        "START NOW", "Fit probability: 50%", "Task size: Tiny",
        "Tiny task; current quota unavailable.",
        "Experimental task-fit assessment, not an Orvane quota estimate."};
    EXPECT_EQ(textsOf(result.lines({})), expected);
    const auto fiveHourOnly = textsOf(result.lines({.fiveHourRemainingPercent = 0}));
    ASSERT_EQ(fiveHourOnly.size(), 6U);
    EXPECT_EQ(fiveHourOnly[3], "Current 5-hour quota: 0%");
    const auto weeklyOnly = textsOf(result.lines({.weeklyRemainingPercent = 99}));
    ASSERT_EQ(weeklyOnly.size(), 6U);
    EXPECT_EQ(weeklyOnly[3], "Current weekly quota: 99%");
}

TEST(FennicResult, roundsTheProbabilityWithHalvesAwayFromZero) {
    const std::pair<double, const char*> rows[] = {{0, "0%"},      {1, "100%"},     {0.125, "13%"},
                                                   {0.005, "1%"},  {0.995, "100%"}, {0.004, "0%"},
                                                   {0.285, "28%"}, {0.5, "50%"}};
    for (const auto& [probability, shown] : rows) {
        EXPECT_EQ(
            resultWith("tiny", probability).lines({})[1].text,
            std::string("Fit probability: ") + shown);
    }
}

} // namespace vorla
