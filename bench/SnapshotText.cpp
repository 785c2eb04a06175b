// SPDX-License-Identifier: MIT
#include "SnapshotText.h"

#include <ctime>
#include <string_view>

namespace vorla::bench {

namespace {

constexpr int weeklyRemaining = 62;

std::string window(std::string_view name, int remaining, long minutes, long resetsAt) {
    return R"({"name": ")" + std::string(name) + R"(", "usedPercent": )" +
           std::to_string(100 - remaining) + R"(, "remainingPercent": )" +
           std::to_string(remaining) + R"(, "windowDurationMins": )" + std::to_string(minutes) +
           R"(, "resetsAt": )" + std::to_string(resetsAt) + "}";
}

std::string bucket(std::string_view name, const std::string& windows) {
    return R"({"id": ")" + std::string(name) + R"(", "label": "Tasks of kind )" +
           std::string(name) + R"(", "isDefault": false, "windows": [)" + windows +
           R"(], "rateLimitReachedType": null, "spendControlReached": false})";
}

std::string buckets(long now) {
    const std::string twoWindows = window("primary", 71, 300, now + 9000) + ", " +
                                   window("secondary", 44, 10080, now + 301000);
    std::string text;
    for (const auto* const name : {"large", "review", "search", "night", "batch"}) {
        text += (text.empty() ? "" : ", ") + bucket(name, twoWindows);
    }
    return text;
}

std::string members(int fiveHourRemaining) {
    const long now = std::time(nullptr);
    return R"("schemaVersion": 1, "fetchedAt": )" + std::to_string(now) + R"(, "windows": [)" +
           window("primary", fiveHourRemaining, 300, now + 11000) + ", " +
           window("secondary", weeklyRemaining, 10080, now + 320000) + R"(], "limitBuckets": [)" +
           buckets(now) +
           R"(], "pressureCheck": {"blocked": false, "bucketLabel": "Main",
 "bucketIsDefault": true, "windowLabel": "weekly", "deltaPoints": -9.1, "classification": "behind",
 "secondary": {"bucketLabel": "Tasks of kind review", "bucketIsDefault": false,
 "windowLabel": "weekly", "deltaPoints": 40, "classification": "ahead"}},
 "planType": "plus", "rateLimitReachedType": null, "spendControlReached": false,
 "resetCredits": {"availableCount": 2, "credits": [{"status": "available", "expiresAt": )" +
           std::to_string(now + 900000) + R"(}, {"status": "available", "expiresAt": )" +
           std::to_string(now + 1900000) + R"(}]}, "weeklyBudget": {"percentPerDay": 16.75,
 "percentPerHour": 0.6977, "secondsToReset": 319900, "remainingPercent": 62},
 "notificationEvents": [{"key": "review-low", "title": "Tasks of kind review are running low",
 "body": "Less than a fifth of the weekly window remains."}])";
}

} // namespace

std::string snapshotText(int fiveHourRemaining) {
    return "{" + members(fiveHourRemaining) + "}\n";
}

std::string titleOf(int fiveHourRemaining) {
    return "5h " + std::to_string(fiveHourRemaining) + "% · W " + std::to_string(weeklyRemaining) +
           "%";
}

std::string paddedSnapshotText(int fiveHourRemaining, std::size_t bytes) {
    const std::string start = R"({"padding": ")";
    const std::string end = R"(", )" + members(fiveHourRemaining) + "}\n";
    return start + std::string(bytes - start.size() - end.size(), 'x') + end;
}

} // namespace vorla::bench
