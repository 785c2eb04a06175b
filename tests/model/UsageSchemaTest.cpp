// SPDX-License-Identifier: MIT
#include "model/SnapshotDocument.h"

#include "model/Usage.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace vorla {

namespace {

enum class Kind { integer, decimal, boolean, string, record, list };
enum class Need { required, optional };

struct Field {
    Kind kind;
    Need need;
};

/// Every member and every kind of element that the schema knows.
const std::map<std::string, Field>& schema() {
    static const std::map<std::string, Field> fields = {
        {"schemaVersion", {Kind::integer, Need::required}},
        {"fetchedAt", {Kind::decimal, Need::required}},
        {"windows", {Kind::list, Need::required}},
        {"windows[]", {Kind::record, Need::required}},
        {"windows[].name", {Kind::string, Need::required}},
        {"windows[].usedPercent", {Kind::integer, Need::required}},
        {"windows[].remainingPercent", {Kind::integer, Need::required}},
        {"windows[].windowDurationMins", {Kind::integer, Need::required}},
        {"windows[].resetsAt", {Kind::decimal, Need::required}},
        {"limitBuckets", {Kind::list, Need::optional}},
        {"limitBuckets[]", {Kind::record, Need::required}},
        {"limitBuckets[].id", {Kind::string, Need::required}},
        {"limitBuckets[].label", {Kind::string, Need::required}},
        {"limitBuckets[].isDefault", {Kind::boolean, Need::required}},
        {"limitBuckets[].windows", {Kind::list, Need::required}},
        {"limitBuckets[].windows[]", {Kind::record, Need::required}},
        {"limitBuckets[].windows[].name", {Kind::string, Need::required}},
        {"limitBuckets[].windows[].usedPercent", {Kind::integer, Need::required}},
        {"limitBuckets[].windows[].remainingPercent", {Kind::integer, Need::required}},
        {"limitBuckets[].windows[].windowDurationMins", {Kind::integer, Need::required}},
        {"limitBuckets[].windows[].resetsAt", {Kind::decimal, Need::required}},
        {"limitBuckets[].rateLimitReachedType", {Kind::string, Need::optional}},
        {"limitBuckets[].spendControlReached", {Kind::boolean, Need::optional}},
        {"pressureCheck", {Kind::record, Need::optional}},
        {"pressureCheck.blocked", {Kind::boolean, Need::required}},
        {"pressureCheck.bucketLabel", {Kind::string, Need::optional}},
        {"pressureCheck.bucketIsDefault", {Kind::boolean, Need::optional}},
        {"pressureCheck.windowLabel", {Kind::string, Need::optional}},
        {"pressureCheck.deltaPoints", {Kind::decimal, Need::optional}},
        {"pressureCheck.classification", {Kind::string, Need::optional}},
        {"pressureCheck.secondary", {Kind::record, Need::optional}},
        {"pressureCheck.secondary.bucketLabel", {Kind::string, Need::required}},
        {"pressureCheck.secondary.bucketIsDefault", {Kind::boolean, Need::required}},
        {"pressureCheck.secondary.windowLabel", {Kind::string, Need::required}},
        {"pressureCheck.secondary.deltaPoints", {Kind::decimal, Need::required}},
        {"pressureCheck.secondary.classification", {Kind::string, Need::required}},
        {"planType", {Kind::string, Need::optional}},
        {"rateLimitReachedType", {Kind::string, Need::optional}},
        {"spendControlReached", {Kind::boolean, Need::optional}},
        {"resetCredits", {Kind::record, Need::optional}},
        {"resetCredits.availableCount", {Kind::integer, Need::required}},
        {"resetCredits.credits", {Kind::list, Need::optional}},
        {"resetCredits.credits[]", {Kind::record, Need::required}},
        {"resetCredits.credits[].status", {Kind::string, Need::optional}},
        {"resetCredits.credits[].expiresAt", {Kind::decimal, Need::optional}},
        {"weeklyBudget", {Kind::record, Need::optional}},
        {"weeklyBudget.percentPerDay", {Kind::decimal, Need::required}},
        {"weeklyBudget.percentPerHour", {Kind::decimal, Need::required}},
        {"weeklyBudget.secondsToReset", {Kind::decimal, Need::required}},
        {"weeklyBudget.remainingPercent", {Kind::integer, Need::required}},
        {"notificationEvents", {Kind::list, Need::optional}},
        {"notificationEvents[]", {Kind::record, Need::required}},
        {"notificationEvents[].key", {Kind::string, Need::required}},
        {"notificationEvents[].title", {Kind::string, Need::required}},
        {"notificationEvents[].body", {Kind::string, Need::required}},
    };
    return fields;
}

/// "windows[1].name" without its indices: "windows[].name".
std::string schemaPath(std::string place) {
    // No key has a digit.
    std::erase_if(place, [](char byte) { return byte >= '0' && byte <= '9'; });
    return place;
}

Field fieldAt(const std::string& place) {
    return schema().at(schemaPath(place));
}

bool accepts(Kind field, Kind sample) {
    return field == sample || (field == Kind::decimal && sample == Kind::integer);
}

} // namespace

TEST(UsageSchema, isCoveredByTheFullDocument) {
    std::set<std::string> present;
    for (const std::string& place : placesIn(fullDocument())) {
        present.insert(schemaPath(place));
    }
    std::set<std::string> known;
    for (const auto& [path, field] : schema()) {
        known.insert(path);
    }
    EXPECT_EQ(present, known);
}

TEST(UsageSchema, refusesEveryWrongType) {
    struct Sample {
        Kind kind;
        const char* text;
    };

    const std::vector<Sample> samples = {
        {Kind::integer, "1"},    {Kind::integer, "0"},     {Kind::decimal, "1.5"},
        {Kind::boolean, "true"}, {Kind::boolean, "false"}, {Kind::string, "\"1\""},
        {Kind::string, "\"\""},  {Kind::record, "{}"},     {Kind::list, "[]"},
    };
    for (const std::string& place : placesIn(fullDocument())) {
        for (const Sample& sample : samples) {
            if (!accepts(fieldAt(place).kind, sample.kind)) {
                const std::string error = refusal(fullWith(place, sample.text));
                EXPECT_TRUE(error.starts_with(place + ": not a")) << sample.text << ": " << error;
            }
        }
    }
}

TEST(UsageSchema, takesNullForMissingWhereAFieldIsOptional) {
    for (const std::string& place : placesIn(fullDocument())) {
        const std::string withNull = fullWith(place, "null");
        const bool isElement = place.ends_with(']');
        if (fieldAt(place).need == Need::required) {
            EXPECT_TRUE(refusal(withNull).starts_with(place + ": not a")) << place;
            EXPECT_TRUE(isElement || refusal(fullWithout(place)) == place + ": missing") << place;
        } else {
            const Usage usage = Usage::decode(withNull);
            EXPECT_EQ(usage, Usage::decode(fullWithout(place))) << place;
            EXPECT_NE(usage, Usage::decode(snapshot("full.json"))) << place;
        }
    }
}

TEST(UsageSchema, refusesIntegersThatAreNotPlainOrDoNotFit) {
    for (const std::string& place : placesIn(fullDocument())) {
        if (fieldAt(place).kind != Kind::integer) {
            continue;
        }
        for (const char* text :
             {"50.5", "50.0", "5e1", "1E0", "-0.0", "9223372036854775808",
              "-9223372036854775809"}) {
            const std::string error = refusal(fullWith(place, text));
            EXPECT_EQ(error, place + ": not an integer of 64 bits") << text;
        }
    }
}

TEST(UsageSchema, takesEveryFiniteNumberForADecimal) {
    for (const std::string& place : placesIn(fullDocument())) {
        if (fieldAt(place).kind != Kind::decimal) {
            continue;
        }
        for (const char* text : {"7", "-7", "7.25", "7e3", "1E+2", "0", "-0.0", "1e-999"}) {
            EXPECT_EQ(refusal(fullWith(place, text)), "") << place << " " << text;
        }
        for (const char* text : {"1e999", "-1e999", "NaN", "Infinity", "-Infinity"}) {
            EXPECT_NE(refusal(fullWith(place, text)), "") << place << " " << text;
        }
    }
}

TEST(UsageSchema, refusesOneBadElementOfAnyList) {
    for (const std::string& place : placesIn(fullDocument())) {
        if (fieldAt(place).kind == Kind::list) {
            JsonValue document = fullDocument();
            std::get<JsonArray>(at(document, place).content).emplace_back();
            EXPECT_NE(refusal(written(document)), "") << place;
        }
    }
}

TEST(UsageSchema, ignoresUnknownKeysAtEveryLevel) {
    JsonValue document = fullDocument();
    std::vector<std::string> records = {""};
    for (const std::string& place : placesIn(document)) {
        if (fieldAt(place).kind == Kind::record) {
            records.push_back(place);
        }
    }
    for (const std::string& place : records) {
        auto& members = std::get<JsonObject>(at(document, place).content);
        members["unheardOf"].content = JsonNumber{R"({"windows": [null, {"name": 1e2}]})"};
        // Keys are taken letter for letter.
        members["plan_type"].content = JsonNumber{"5"};
        members["PlanType"].content = JsonNumber{"5"};
    }
    EXPECT_EQ(Usage::decode(written(document)), Usage::decode(snapshot("full.json")));
}

TEST(UsageSchema, refusesADocumentThatIsNoRecord) {
    for (const char* text : {"null", "true", "1", "\"text\"", "[]", "[{}]"}) {
        EXPECT_TRUE(refusal(text).find("not an object") != std::string::npos) << text;
    }
    EXPECT_EQ(refusal("{}"), "schemaVersion: missing");
}

TEST(UsageSchema, takesAnyTextForLabelsAndCodes) {
    for (const std::string& place : placesIn(fullDocument())) {
        if (fieldAt(place).kind == Kind::string) {
            EXPECT_EQ(refusal(fullWith(place, R"("")")), "") << place;
            EXPECT_EQ(refusal(fullWith(place, R"("no such code \u0000 é")")), "") << place;
        }
    }
}

} // namespace vorla
