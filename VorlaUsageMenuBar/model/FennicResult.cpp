// SPDX-License-Identifier: MIT
#include "model/FennicResult.h"

#include "model/JsonObjectReader.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace vorla {

namespace {

struct Word {
    std::string_view code;
    std::string_view label;
};

constexpr Word sizeLabels[] = {
    {"tiny", "Tiny"},   {"small", "Small"}, {"medium", "Medium"},
    {"large", "Large"}, {"huge", "Huge"},
};

constexpr Word verdicts[] = {
    {"start_now", "START NOW"},
    {"plan_first", "PLAN FIRST"},
    {"split_first", "SPLIT FIRST"},
    {"wait_for_reset", "WAIT FOR RESET"},
};

constexpr std::int64_t mostOfLittleQuota = 15;
constexpr std::int64_t mostOfLimitedQuota = 40;

std::optional<std::string_view> labelOf(std::span<const Word> words, std::string_view code) {
    const auto word = std::ranges::find(words, code, &Word::code);
    if (word == words.end()) {
        return std::nullopt;
    }
    return word->label;
}

/// False for a NaN.
bool isShare(double value) {
    return value >= 0 && value <= 1;
}

bool isValid(const FennicResult& result) {
    return labelOf(sizeLabels, result.taskSize) && labelOf(verdicts, result.recommendedAction) &&
           isShare(result.fitProbability) && isShare(result.taskSizeConfidence) &&
           isShare(result.actionConfidence);
}

std::string_view quotaPhrase(std::int64_t remainingPercent) {
    if (remainingPercent <= mostOfLittleQuota) {
        return "little quota left";
    }
    if (remainingPercent <= mostOfLimitedQuota) {
        return "limited quota remaining";
    }
    return "substantial quota remaining";
}

std::string withPercent(std::string_view label, std::int64_t percent) {
    return std::string(label) + std::to_string(percent) + "%";
}

} // namespace

FennicResult FennicResult::decode(std::string_view bytes) {
    const JsonValue document = parseJson(bytes);
    const JsonObjectReader reader(document);
    FennicResult result = {
        .taskSize = reader.required("taskSize", json::string),
        .taskSizeConfidence = reader.required("taskSizeConfidence", json::decimal),
        .fitProbability = reader.required("fitProbability", json::decimal),
        .recommendedAction = reader.required("recommendedAction", json::string),
        .actionConfidence = reader.required("actionConfidence", json::decimal),
    };
    if (!isValid(result)) {
        throw DecodeError("", "Invalid Fennic result");
    }
    return result;
}

std::string FennicResult::verdict() const {
    return std::string(labelOf(verdicts, recommendedAction).value_or(recommendedAction));
}

std::string FennicResult::sizeLabel() const {
    return std::string(labelOf(sizeLabels, taskSize).value_or(taskSize));
}

std::string FennicResult::summaryLine(
    std::optional<std::int64_t> fiveHour, std::optional<std::int64_t> weekly) const {
    if (!fiveHour && !weekly) {
        return sizeLabel() + " task; current quota unavailable.";
    }
    const std::int64_t scarcer =
        std::min(fiveHour ? *fiveHour : *weekly, weekly ? *weekly : *fiveHour);
    return sizeLabel() + " task with " + std::string(quotaPhrase(scarcer)) + ".";
}

std::vector<FennicLine> FennicResult::lines(const FennicQuota& quota) const {
    const auto fiveHour = quota.fiveHourRemainingPercent;
    const auto weekly = quota.weeklyRemainingPercent;
    std::vector<FennicLine> lines = {
        {.text = verdict(), .points = 26, .weight = FennicLine::Weight::bold},
        {.text = withPercent("Fit probability: ", std::llround(fitProbability * 100))},
        {.text = "Task size: " + sizeLabel()},
    };
    if (fiveHour) {
        lines.push_back({.text = withPercent("Current 5-hour quota: ", *fiveHour)});
    }
    if (weekly) {
        lines.push_back({.text = withPercent("Current weekly quota: ", *weekly)});
    }
    lines.push_back(
        {.text = summaryLine(fiveHour, weekly),
         .points = 12,
         .colour = FennicLine::Colour::secondary});
    lines.push_back(
        {.text = "Experimental task-fit assessment, not an Orvane quota estimate.",
         .points = 11,
         .colour = FennicLine::Colour::secondary});
    return lines;
}

} // namespace vorla
