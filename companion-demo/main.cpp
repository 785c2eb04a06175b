// SPDX-License-Identifier: MIT
#include "Decimal.h"
#include "DemoWeek.h"
#include "WebPage.h"
#include "WebServer.h"

#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace vorla {
namespace {

/// None of the demonstration's texts holds a character that JSON would escape.
/// (Not called "quoted", which would lose to the standard function for a std::string.)
std::string jsonString(std::string_view text) {
    return '"' + std::string(text) + '"';
}

std::string joined(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts) {
        text += text.empty() ? part : "," + part;
    }
    return text;
}

std::string array(const std::vector<std::string>& elements) {
    return "[" + joined(elements) + "]";
}

struct Member {
    std::string_view key;
    std::string value;
};

std::string object(const std::vector<Member>& members) {
    std::vector<std::string> parts;
    parts.reserve(members.size());
    for (const Member& member : members) {
        parts.push_back(jsonString(member.key) + ":" + member.value);
    }
    return "{" + joined(parts) + "}";
}

std::string windowObject(const DemoWindow& window) {
    return object(
        {{"name", jsonString(window.name)},
         {"usedPercent", std::to_string(window.usedPercent())},
         {"remainingPercent", std::to_string(window.remainingPercent())},
         {"windowDurationMins", std::to_string(window.minutes)},
         {"resetsAt", std::to_string(window.resetsAt())}});
}

std::string limitBuckets(const DemoWeek& week) {
    return array(
        {object(
             {{"id", jsonString("main")},
              {"label", jsonString("Main")},
              {"isDefault", "true"},
              {"windows", array({windowObject(week.fiveHour), windowObject(week.weekly)})}}),
         object(
             {{"id", jsonString("large-tasks")},
              {"label", jsonString("Large tasks")},
              {"isDefault", "false"},
              {"windows",
               array({windowObject(week.largeTasksHourly), windowObject(week.largeTasksWeekly)})},
              {"spendControlReached", "false"}})});
}

/// The main window that is furthest ahead of even pace, as members of a pressure check.
std::vector<Member> mostPressured(const DemoWeek& week) {
    const double fiveHour = pointsAheadOfEvenPace(week.fiveHour, week.now);
    const double weekly = pointsAheadOfEvenPace(week.weekly, week.now);
    const double points = std::max(fiveHour, weekly);
    std::string_view classification = "on_track";
    if (points >= 1) {
        classification = "ahead";
    } else if (points <= -1) {
        classification = "behind";
    }
    return {
        {"bucketLabel", jsonString("Main")},
        {"bucketIsDefault", "true"},
        {"windowLabel", jsonString(fiveHour > weekly ? "5h" : "weekly")},
        {"deltaPoints", decimal(points)},
        {"classification", jsonString(classification)}};
}

std::string pressureCheck(const DemoWeek& week) {
    std::vector<Member> pressured = mostPressured(week);
    if (week.largeTasksHourly.remainingPercent() > 0) {
        pressured.push_back({"blocked", "false"});
        return object(pressured);
    }
    return object(
        {{"blocked", "true"},
         {"bucketLabel", jsonString("Large tasks")},
         {"bucketIsDefault", "false"},
         {"windowLabel", jsonString("hourly")},
         {"secondary", object(pressured)}});
}

std::string resetCredits(const DemoWeek& week) {
    constexpr std::int64_t weekSeconds = std::int64_t{7} * 86400;
    const auto credit = [&](std::string_view status, std::int64_t weeks) {
        const std::int64_t expiresAt = week.weekly.startsAt + weeks * weekSeconds;
        return object({{"status", jsonString(status)}, {"expiresAt", std::to_string(expiresAt)}});
    };
    return object(
        {{"availableCount", "2"},
         {"credits", array({credit("used", 1), credit("available", 3), credit("available", 2)})}});
}

std::string weeklyBudget(const DemoWeek& week) {
    const auto secondsToReset = static_cast<double>(week.weekly.resetsAt() - week.now);
    const auto remaining = static_cast<double>(week.weekly.remainingPercent());
    return object(
        {{"percentPerDay", decimal(remaining * 86400 / secondsToReset)},
         {"percentPerHour", decimal(remaining * 3600 / secondsToReset)},
         {"secondsToReset", decimal(secondsToReset)},
         {"remainingPercent", std::to_string(week.weekly.remainingPercent())}});
}

std::string notificationEvent(const DemoWindow& window, const std::string& label) {
    // The reset time makes the key the same throughout a window and new in the next one.
    const std::string key = std::string(window.name) + "-low-" + std::to_string(window.resetsAt());
    return object(
        {{"key", jsonString(key)},
         {"title", jsonString(label + " quota is running low")},
         {"body",
          jsonString("Less than " + std::to_string(lowPercent) + "% is left until it resets.")}});
}

std::string notificationEvents(const DemoWeek& week) {
    std::vector<std::string> events;
    const auto addIfLow = [&](const DemoWindow& window, const std::string& label) {
        if (window.remainingPercent() < lowPercent) {
            events.push_back(notificationEvent(window, label));
        }
    };
    addIfLow(week.fiveHour, "5-hour");
    addIfLow(week.weekly, "Weekly");
    return array(events);
}

std::string snapshot(const DemoWeek& week) {
    return object(
        {{"schemaVersion", "1"},
         {"fetchedAt", std::to_string(week.now)},
         {"planType", jsonString("pro")},
         {"windows", array({windowObject(week.fiveHour), windowObject(week.weekly)})},
         {"limitBuckets", limitBuckets(week)},
         {"pressureCheck", pressureCheck(week)},
         {"rateLimitReachedType", "null"},
         {"spendControlReached", "false"},
         {"resetCredits", resetCredits(week)},
         {"weeklyBudget", weeklyBudget(week)},
         {"notificationEvents", notificationEvents(week)}});
}

std::string diagnostics(const DemoWeek& week) {
    return object(
        {{"diagnosticSchemaVersion", "1"},
         {"tool",
          object({{"name", jsonString("vorla-usage")}, {"variant", jsonString("demonstration")}})},
         {"generatedAt", std::to_string(week.now)},
         {"source", jsonString("the clock: no account, no network, no files")},
         {"planType", jsonString("pro")},
         {"windows", array({windowObject(week.fiveHour), windowObject(week.weekly)})},
         {"checks", array(
                        {object({{"name", jsonString("clock/readable")}, {"passed", "true"}}),
                         object({{"name", jsonString("week/computed")}, {"passed", "true"}})})}});
}

/// The present, or the moment set in VORLA_DEMO_NOW; nothing if that is not a usable one.
std::optional<std::int64_t> demoNow() {
    const char* const setting = std::getenv("VORLA_DEMO_NOW");
    if (setting == nullptr) {
        const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
        return std::chrono::duration_cast<std::chrono::seconds>(sinceEpoch).count();
    }
    // Some 80 years before the year 10000, which no reset time may reach.
    constexpr std::int64_t latest = 250'900'000'000;
    const std::string_view text = setting;
    std::int64_t seconds = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), seconds);
    const bool whole = end.ec == std::errc() && end.ptr == text.data() + text.size();
    if (!whole || seconds < 0 || seconds > latest) {
        return std::nullopt;
    }
    return seconds;
}

int printed(const std::string& document) {
    const bool done = std::puts(document.c_str()) >= 0 && std::fflush(stdout) == 0;
    return done ? 0 : 1;
}

int refused(const char* sentence) {
    std::fputs(sentence, stderr);
    return 2;
}

int run(std::span<char* const> arguments) {
    const std::string_view argument = arguments.size() == 2 ? arguments[1] : "";
    if (argument != "--json" && argument != "--diagnostics-json" && argument != "--web") {
        return refused("The demonstration knows only --json, --diagnostics-json and --web.\n");
    }
    const std::optional<std::int64_t> now = demoNow();
    if (!now) {
        return refused("VORLA_DEMO_NOW must be whole seconds since 1970.\n");
    }
    if (argument == "--web") {
        // Nothing changes the environment, so what was a moment just now stays one.
        return serve([] { return webPage(DemoWeek::at(demoNow().value())); });
    }
    const DemoWeek week = DemoWeek::at(*now);
    return printed(argument == "--json" ? snapshot(week) : diagnostics(week));
}

} // namespace
} // namespace vorla

int main(int argumentCount, char** arguments) {
    return vorla::run({arguments, static_cast<std::size_t>(argumentCount)});
}
