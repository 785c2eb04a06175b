// SPDX-License-Identifier: MIT
#include "model/Usage.h"

#include "model/JsonObjectReader.h"

#include <algorithm>
#include <cmath>

namespace vorla {

namespace {

using json::arrayOf;
using json::boolean;
using json::decimal;
using json::integer;
using json::string;

Usage::Window decodeWindow(const JsonValue& value, std::string_view path) {
    const JsonObjectReader reader(value, path);
    return {
        .name = reader.required("name", string),
        .usedPercent = reader.required("usedPercent", integer),
        .remainingPercent = reader.required("remainingPercent", integer),
        .windowDurationMins = reader.required("windowDurationMins", integer),
        .resetsAt = reader.required("resetsAt", decimal),
    };
}

Usage::LimitBucket decodeLimitBucket(const JsonValue& value, std::string_view path) {
    const JsonObjectReader reader(value, path);
    return {
        .id = reader.required("id", string),
        .label = reader.required("label", string),
        .isDefault = reader.required("isDefault", boolean),
        .windows = reader.required("windows", arrayOf(decodeWindow)),
        .rateLimitReachedType = reader.optional("rateLimitReachedType", string),
        .spendControlReached = reader.optional("spendControlReached", boolean),
    };
}

Usage::PressureCheck::Secondary decodeSecondary(const JsonValue& value, std::string_view path) {
    const JsonObjectReader reader(value, path);
    return {
        .bucketLabel = reader.required("bucketLabel", string),
        .bucketIsDefault = reader.required("bucketIsDefault", boolean),
        .windowLabel = reader.required("windowLabel", string),
        .deltaPoints = reader.required("deltaPoints", decimal),
        .classification = reader.required("classification", string),
    };
}

Usage::PressureCheck decodePressureCheck(const JsonValue& value, std::string_view path) {
    const JsonObjectReader reader(value, path);
    return {
        .blocked = reader.required("blocked", boolean),
        .bucketLabel = reader.optional("bucketLabel", string),
        .bucketIsDefault = reader.optional("bucketIsDefault", boolean),
        .windowLabel = reader.optional("windowLabel", string),
        .deltaPoints = reader.optional("deltaPoints", decimal),
        .classification = reader.optional("classification", string),
        .secondary = reader.optional("secondary", decodeSecondary),
    };
}

Usage::Credits::Credit decodeCredit(const JsonValue& value, std::string_view path) {
    const JsonObjectReader reader(value, path);
    return {
        .status = reader.optional("status", string),
        .expiresAt = reader.optional("expiresAt", decimal),
    };
}

Usage::Credits decodeCredits(const JsonValue& value, std::string_view path) {
    const JsonObjectReader reader(value, path);
    return {
        .availableCount = reader.required("availableCount", integer),
        .credits = reader.optional("credits", arrayOf(decodeCredit)),
    };
}

Usage::Budget decodeBudget(const JsonValue& value, std::string_view path) {
    const JsonObjectReader reader(value, path);
    return {
        .percentPerDay = reader.required("percentPerDay", decimal),
        .percentPerHour = reader.required("percentPerHour", decimal),
        .secondsToReset = reader.required("secondsToReset", decimal),
        .remainingPercent = reader.required("remainingPercent", integer),
    };
}

Usage::NotificationEvent decodeEvent(const JsonValue& value, std::string_view path) {
    const JsonObjectReader reader(value, path);
    return {
        .key = reader.required("key", string),
        .title = reader.required("title", string),
        .body = reader.required("body", string),
    };
}

Usage decodeUsage(const JsonValue& document) {
    const JsonObjectReader reader(document);
    return {
        .schemaVersion = reader.required("schemaVersion", integer),
        .fetchedAt = reader.required("fetchedAt", decimal),
        .windows = reader.required("windows", arrayOf(decodeWindow)),
        .limitBuckets = reader.optional("limitBuckets", arrayOf(decodeLimitBucket)),
        .pressureCheck = reader.optional("pressureCheck", decodePressureCheck),
        .planType = reader.optional("planType", string),
        .rateLimitReachedType = reader.optional("rateLimitReachedType", string),
        .spendControlReached = reader.optional("spendControlReached", boolean),
        .resetCredits = reader.optional("resetCredits", decodeCredits),
        .weeklyBudget = reader.optional("weeklyBudget", decodeBudget),
        .notificationEvents = reader.optional("notificationEvents", arrayOf(decodeEvent)),
    };
}

void requireSchema(bool holds, const std::string& path) {
    if (!holds) {
        throw DecodeError(path, "Invalid usage schema");
    }
}

bool isPercentage(std::int64_t points) {
    return points >= 0 && points <= 100;
}

/// The windows of limit buckets are left unchecked on purpose: they are shown as they come, and
/// nothing is computed from them.
void checkSchema(const Usage& usage) {
    requireSchema(usage.schemaVersion == 1, "schemaVersion");
    requireSchema(!usage.windows.empty(), "windows");
    for (std::size_t index = 0; index < usage.windows.size(); ++index) {
        const Usage::Window& window = usage.windows[index];
        const std::string path = "windows[" + std::to_string(index) + "].";
        requireSchema(isPercentage(window.remainingPercent), path + "remainingPercent");
        requireSchema(window.windowDurationMins >= 1, path + "windowDurationMins");
        requireSchema(isPercentage(window.usedPercent), path + "usedPercent");
        requireSchema(std::abs(window.resetsAt) < yearTenThousand, path + "resetsAt");
    }
    requireSchema(std::isfinite(usage.fetchedAt), "fetchedAt");
}

} // namespace

Usage Usage::decode(std::string_view bytes) {
    Usage usage = decodeUsage(parseJson(bytes));
    checkSchema(usage);
    return usage;
}

const Usage::Window* Usage::window(std::int64_t durationMins) const {
    const auto found = std::ranges::find(windows, durationMins, &Window::windowDurationMins);
    return found == windows.end() ? nullptr : &*found;
}

} // namespace vorla
