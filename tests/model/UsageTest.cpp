// SPDX-License-Identifier: MIT
#include "model/Usage.h"

#include "model/SnapshotDocument.h"

#include <gtest/gtest.h>

namespace vorla {

TEST(Usage, decodesEveryField) {
    const Usage::Window fiveHour{"primary", 13, 87, 300, 1700012000.5};
    const Usage::Window weekly{"secondary", 38, 62, 10080, 1700319900};
    const Usage expected{
        .schemaVersion = 1,
        .fetchedAt = 1700000000,
        .windows = {fiveHour, weekly},
        .limitBuckets = {{
            {"main", "Main", true, {fiveHour, weekly}, "rate_limit_reached", false},
            {"review",
             "Code review",
             false,
             {{"review-weekly", 96, 4, 10080, 1700265600}},
             "workspace_member_usage_limit_reached",
             true},
        }},
        .pressureCheck =
            Usage::PressureCheck{
                .blocked = false,
                .bucketLabel = "Main",
                .bucketIsDefault = true,
                .windowLabel = "weekly",
                .deltaPoints = -9.1,
                .classification = "behind",
                .secondary =
                    Usage::PressureCheck::Secondary{"Code review", false, "weekly", 40, "ahead"},
            },
        .planType = "plus",
        .rateLimitReachedType = "workspace_member_credits_depleted",
        .spendControlReached = true,
        .resetCredits =
            Usage::Credits{2, {{{"available", 1702728000.0}, {"redeemed", 1700600000.25}}}},
        .weeklyBudget = Usage::Budget{16.75, 0.6977, 319900, 62},
        .notificationEvents = {{
            {"review-weekly-low-1700265600", "Code review is running low",
             "4% of the weekly window remains · it resets on Saturday."},
            {"spend-control-1700319900", "Spend control reached",
             "The \"workspace\" limit\nhas been reached."},
        }},
    };
    EXPECT_EQ(Usage::decode(snapshot("full.json")), expected);
}

TEST(Usage, decodesADocumentOfRequiredFieldsOnly) {
    const Usage expected{
        .schemaVersion = 1,
        .fetchedAt = 1700000000,
        .windows = {{"primary", 60, 40, 300, 1700002700}},
    };
    EXPECT_EQ(Usage::decode(snapshot("minimal.json")), expected);
}

TEST(Usage, tellsAnEmptyListFromAnAbsentOne) {
    const Usage usage = Usage::decode(snapshot("weekly-only.json"));
    EXPECT_EQ(usage.limitBuckets, std::vector<Usage::LimitBucket>());
    EXPECT_EQ(usage.notificationEvents, std::vector<Usage::NotificationEvent>());
    EXPECT_EQ(usage.resetCredits, (Usage::Credits{0, std::nullopt}));
    EXPECT_EQ(usage.pressureCheck, std::nullopt);
}

TEST(Usage, decodesTheSameBytesToTheSameValue) {
    for (const char* name : {"full.json", "minimal.json", "weekly-only.json", "blocked.json"}) {
        const std::string bytes = snapshot(name);
        const Usage first = Usage::decode(bytes);
        EXPECT_NE(refusal(fullWith("windows[1]", "null")), "");
        EXPECT_EQ(Usage::decode(bytes), first) << name;
        EXPECT_EQ(Usage::decode(written(parseJson(bytes))), first) << name;
    }
}

TEST(Usage, takesTheLastOfDuplicateKeys) {
    std::string bytes = snapshot("full.json");
    bytes.insert(bytes.rfind('}'), R"(, "planType": "team")");
    EXPECT_EQ(Usage::decode(bytes).planType, "team");
}

TEST(Usage, refusesADocumentCutShortAnywhere) {
    const std::string bytes = snapshot("full.json");
    const std::size_t end = bytes.rfind('}') + 1;
    for (std::size_t length = 0; length < end; ++length) {
        ASSERT_NE(refusal(bytes.substr(0, length)), "") << length;
    }
    EXPECT_EQ(refusal(bytes.substr(0, end)), "");
}

TEST(Usage, refusesTextAfterTheDocument) {
    const std::string bytes = snapshot("full.json");
    EXPECT_NE(refusal(bytes + "x"), "");
    EXPECT_NE(refusal(bytes + bytes), "");
    EXPECT_NE(refusal(bytes + std::string(1, '\0')), "");
    EXPECT_EQ(refusal(bytes + " \r\n\t"), "");
}

TEST(Usage, refusesDeepNestingEvenUnderAnUnknownKey) {
    const std::string deep = std::string(1'000'000, '[') + std::string(1'000'000, ']');
    EXPECT_NE(refusal(fullWith("unheardOf", deep)), "");
}

TEST(Usage, acceptsSchemaVersionOneOnly) {
    for (const char* version : {"0", "2", "-1", "9223372036854775807"}) {
        EXPECT_TRUE(failsTheSchema(fullWith("schemaVersion", version))) << version;
    }
}

TEST(Usage, refusesAnEmptyListOfWindows) {
    EXPECT_TRUE(failsTheSchema(fullWith("windows", "[]")));
}

TEST(Usage, checksThePercentagesAndTheDurationOfEveryMainWindow) {
    struct Row {
        const char* field;
        std::vector<const char*> accepted;
        std::vector<const char*> refused;
    };

    const std::vector<const char*> beyondPercent = {"-1", "101", "500", "-9223372036854775808"};
    const std::vector<Row> rows = {
        {"remainingPercent", {"0", "100"}, beyondPercent},
        {"usedPercent", {"0", "100"}, beyondPercent},
        {"windowDurationMins", {"1", "9223372036854775807"}, {"0", "-1", "-300"}},
    };
    for (const char* window : {"windows[0].", "windows[1]."}) {
        for (const Row& row : rows) {
            for (const char* text : row.accepted) {
                EXPECT_EQ(refusal(fullWith(std::string(window) + row.field, text)), "") << text;
            }
            for (const char* text : row.refused) {
                EXPECT_TRUE(failsTheSchema(fullWith(std::string(window) + row.field, text)))
                    << text;
            }
        }
    }
}

TEST(Usage, refusesAFractionalPercentage) {
    EXPECT_EQ(
        refusal(fullWith("windows[0].remainingPercent", "50.5")),
        "windows[0].remainingPercent: not an integer of 64 bits");
}

TEST(Usage, doesNotAddUpUsedAndRemaining) {
    EXPECT_EQ(refusal(fullWith("windows[0].usedPercent", "100")), "");
}

TEST(Usage, checksTheResetOfEveryMainWindowAgainstTheYearTenThousand) {
    for (const char* place : {"windows[0].resetsAt", "windows[1].resetsAt"}) {
        for (const char* text : {"253402300799.5", "-253402300799.5", "0", "253402300799"}) {
            EXPECT_EQ(refusal(fullWith(place, text)), "") << text;
        }
        for (const char* text : {"253402300800", "-253402300800", "253402300800.5", "1e300"}) {
            EXPECT_TRUE(failsTheSchema(fullWith(place, text))) << text;
        }
    }
}

TEST(Usage, decodesAResetWrittenAsAnInteger) {
    EXPECT_EQ(
        Usage::decode(fullWith("windows[0].resetsAt", "1700012000")).windows[0].resetsAt,
        1700012000.0);
}

TEST(Usage, putsNoBoundOnTheTimeOfTheFetch) {
    EXPECT_EQ(Usage::decode(fullWith("fetchedAt", "1e300")).fetchedAt, 1e300);
    EXPECT_EQ(Usage::decode(fullWith("fetchedAt", "-1e300")).fetchedAt, -1e300);
}

TEST(Usage, leavesTheWindowsOfLimitBucketsUnchecked) {
    const char* windows = R"([{"name": "", "usedPercent": -1, "remainingPercent": 500,
                               "windowDurationMins": 0, "resetsAt": 1e300}])";
    const Usage usage = Usage::decode(fullWith("limitBuckets[0].windows", windows));
    const Usage::Window expected{"", -1, 500, 0, 1e300};
    EXPECT_EQ(usage.limitBuckets->at(0).windows, std::vector{expected});
    EXPECT_EQ(refusal(fullWith("limitBuckets[0].windows", "[]")), "");
}

TEST(Usage, putsNoBoundOnCountsAndBudgets) {
    for (const char* place : {"resetCredits.availableCount", "weeklyBudget.remainingPercent"}) {
        for (const char* text : {"-1", "9223372036854775807", "-9223372036854775808"}) {
            EXPECT_EQ(refusal(fullWith(place, text)), "") << place << " " << text;
        }
    }
    for (const char* place :
         {"weeklyBudget.percentPerDay", "weeklyBudget.percentPerHour",
          "weeklyBudget.secondsToReset", "resetCredits.credits[0].expiresAt",
          "pressureCheck.deltaPoints"}) {
        EXPECT_EQ(refusal(fullWith(place, "-1e300")), "") << place;
    }
}

TEST(Usage, takesANullPlanForAnAbsentOneAndRefusesANumber) {
    EXPECT_EQ(Usage::decode(fullWith("planType", "null")).planType, std::nullopt);
    EXPECT_EQ(refusal(fullWith("planType", "5")), "planType: not a string");
}

TEST(Usage, refusesTheDocumentForOneEventWithoutABody) {
    EXPECT_EQ(
        refusal(fullWithout("notificationEvents[1].body")), "notificationEvents[1].body: missing");
}

TEST(Usage, findsTheFirstWindowOfALength) {
    const Usage usage{
        .windows = {{"a", 1, 99, 60, 0}, {"b", 2, 98, 300, 0}, {"c", 3, 97, 300, 0}},
        .limitBuckets = {{{.id = "i", .label = "l", .windows = {{"d", 4, 96, 10080, 0}}}}},
    };
    ASSERT_NE(usage.window(fiveHourMinutes), nullptr);
    EXPECT_EQ(usage.window(fiveHourMinutes)->name, "b");
    EXPECT_EQ(usage.window(weeklyMinutes), nullptr);
}

} // namespace vorla
