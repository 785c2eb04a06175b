// SPDX-License-Identifier: MIT
#include "model/StatusMenu.h"

#include "model/FileContent.h"
#include "model/LocalZone.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vorla {
namespace {

/// 2023-11-14T22:13:20Z
constexpr double now = 1700000000;
/// 2023-11-18T15:05:00Z
constexpr double weeklyReset = 1700319900;

std::string nameOf(MenuAction action) {
    switch (action) {
    case MenuAction::none:
        return "";
    case MenuAction::refresh:
        return "refresh";
    case MenuAction::openDashboard:
        return "openDashboard";
    case MenuAction::openFennic:
        return "openFennic";
    case MenuAction::toggleLaunchAtLogin:
        return "toggleLaunchAtLogin";
    case MenuAction::toggleQuotaNotifications:
        return "toggleQuotaNotifications";
    case MenuAction::copyDiagnosticSnapshot:
        return "copyDiagnosticSnapshot";
    case MenuAction::quit:
        return "quit";
    }
    return "?";
}

std::string printed(const MenuLine& line) {
    if (line.identity.role == LineRole::separator) {
        return line == MenuLine{.identity = {LineRole::separator}, .title = ""} ? "----" : "?";
    }
    std::string text = line.enabled ? "* " : "- ";
    if (line.checked) {
        text += *line.checked ? "[x] " : "[ ] ";
    }
    text += line.title;
    if (!line.keyEquivalent.empty()) {
        text += " <" + line.keyEquivalent + ">";
    }
    if (line.action != MenuAction::none) {
        text += " {" + nameOf(line.action) + "}";
    }
    return text;
}

/// The menu as the files in tests/data/menus show it: "*" marks a line that can be chosen and "-"
/// one that cannot, "<q>" is a key equivalent, "{refresh}" an action.
std::string printed(const StatusMenu& menu) {
    std::string text = "title: " + menu.title + "\nfigures:";
    for (const std::int64_t figure : menu.figures) {
        text += " " + std::to_string(figure);
    }
    text += "\n";
    for (const MenuLine& line : menu.lines) {
        text += printed(line) + "\n";
    }
    return text;
}

std::string expectedMenu(const std::string& name) {
    return contentOf(VORLA_TEST_DATA "/menus/" + name + ".txt");
}

Usage::Window window(std::int64_t durationMins, std::int64_t remainingPercent, double resetsAt) {
    return {
        .name = "window" + std::to_string(durationMins),
        .usedPercent = 100 - remainingPercent,
        .remainingPercent = remainingPercent,
        .windowDurationMins = durationMins,
        .resetsAt = resetsAt};
}

Usage::LimitBucket bucket(std::string label, bool isDefault, std::vector<Usage::Window> windows) {
    return {
        .id = label,
        .label = label,
        .isDefault = isDefault,
        .windows = std::move(windows),
        .rateLimitReachedType = "rate_limit_reached",
        .spendControlReached = true};
}

MenuState weeklyOnly() {
    MenuState state;
    state.usage = Usage();
    state.usage->fetchedAt = now;
    state.usage->windows = {window(weeklyMinutes, 62, weeklyReset)};
    return state;
}

MenuState loading() {
    MenuState state;
    state.error = "Loading Vorla usage…";
    state.refreshing = true;
    return state;
}

MenuState failed(std::string error) {
    MenuState state;
    state.error = std::move(error);
    return state;
}

MenuState unknownPlan() {
    MenuState state = weeklyOnly();
    state.usage->planType = "Plus";
    return state;
}

MenuState full() {
    MenuState state = weeklyOnly();
    // Never shown together with a snapshot.
    state.error = "Old error";
    Usage& usage = *state.usage;
    usage.planType = "plus";
    usage.windows = {
        window(weeklyMinutes, 62, weeklyReset), window(60, 1, now),
        window(fiveHourMinutes, 42, now + 9930), window(fiveHourMinutes, 7, now)};
    state.pace = {
        {60, {.percentPerHour = 1, .secondsToExhaustion = 1, .survivesUntilReset = {}}},
        {fiveHourMinutes,
         {.percentPerHour = 7.5, .secondsToExhaustion = 12000, .survivesUntilReset = {}}},
        {weeklyMinutes,
         {.percentPerHour = 10.4, .secondsToExhaustion = 90000, .survivesUntilReset = false}}};
    usage.weeklyBudget = {
        .percentPerDay = 16.75,
        .percentPerHour = 0.7,
        .secondsToReset = 319900,
        .remainingPercent = 62};
    usage.pressureCheck = Usage::PressureCheck();
    usage.pressureCheck->bucketLabel = "Main";
    usage.pressureCheck->windowLabel = "weekly";
    usage.pressureCheck->deltaPoints = 11.6;
    usage.pressureCheck->classification = "ahead";
    usage.limitBuckets = {
        bucket("Main", true, {window(fiveHourMinutes, 42, now)}),
        bucket(
            "Research", false,
            {window(weeklyMinutes, 70, weeklyReset), window(60, 90, now + 2700),
             window(fiveHourMinutes, 80, now + 11100)})};
    usage.resetCredits = {
        .availableCount = 2, .credits = {{{.status = "available", .expiresAt = 1701388800}}}};
    usage.rateLimitReachedType = "workspace_owner_usage_limit_reached";
    usage.spendControlReached = true;
    state.dashboardError = "Dashboard stopped.";
    state.loginItemStatus = LoginItemStatus::requiresApproval;
    return state;
}

MenuState blocked() {
    MenuState state = weeklyOnly();
    Usage& usage = *state.usage;
    usage.windows = {window(fiveHourMinutes, 0, now + 59), window(weeklyMinutes, 31, weeklyReset)};
    state.pace = {
        {fiveHourMinutes,
         {.percentPerHour = 36, .secondsToExhaustion = 0, .survivesUntilReset = {}}},
        {weeklyMinutes, {}}};
    usage.weeklyBudget = {
        .percentPerDay = 9, .percentPerHour = 9, .secondsToReset = 3599, .remainingPercent = 31};
    usage.pressureCheck = Usage::PressureCheck();
    usage.pressureCheck->blocked = true;
    usage.pressureCheck->windowLabel = "5h";
    usage.pressureCheck->secondary = {
        .bucketLabel = "Main",
        .bucketIsDefault = true,
        .windowLabel = "weekly",
        .deltaPoints = 4.2,
        .classification = "behind"};
    usage.rateLimitReachedType = "rate_limit_reached";
    return state;
}

MenuState buckets() {
    MenuState state = weeklyOnly();
    state.usage->limitBuckets = {
        bucket(
            "Research", false,
            {window(weeklyMinutes, 70, weeklyReset), window(45, -5, now + 0.5),
             window(45, 500, now - 1)}),
        bucket("Main", true, {window(fiveHourMinutes, 42, now)}), bucket("Empty", false, {}),
        bucket("Images", false, {window(fiveHourMinutes, 80, now + 11100)})};
    return state;
}

MenuState credits() {
    MenuState state = weeklyOnly();
    state.usage->resetCredits = {
        .availableCount = 3,
        .credits = {
            {{.status = "available", .expiresAt = 1701388800},
             {.status = "available", .expiresAt = 1701345600},
             {.status = "available", .expiresAt = std::nullopt},
             {.status = "used", .expiresAt = 1700000000},
             {.status = std::nullopt, .expiresAt = 1700000000},
             {.status = "available", .expiresAt = -yearTenThousand}}}};
    return state;
}

MenuState withStatusLines(MenuState state) {
    state.dashboardError = "Cannot start the dashboard.";
    state.diagnosticStatus = "Diagnostic snapshot copied.";
    state.notificationError = "Notifications denied. Enable them in System Settings.";
    state.loginItemStatus = LoginItemStatus::requiresApproval;
    state.loginItemError = "Launch at Login: Read-only file system";
    state.fennicError = "Cannot open Fennic: No such file or directory";
    return state;
}

MenuState withRunsGoing() {
    MenuState state = weeklyOnly();
    state.refreshing = true;
    state.copyingDiagnostic = true;
    state.loginItemStatus = LoginItemStatus::enabled;
    state.quotaNotificationsEnabled = true;
    return state;
}

struct Sample {
    std::string name;
    MenuState state;
};

std::vector<Sample> samples() {
    return {
        {"loading", loading()},
        {"nothing", MenuState()},
        {"error-missing",
         failed("vorla-usage missing. Install in ~/.local/bin or PATH, then Refresh.")},
        {"error-cannot-run", failed("Cannot run vorla-usage: Permission denied")},
        {"error-timed-out", failed("vorla-usage timed out. Try Refresh.")},
        {"error-exit-status", failed("vorla-usage failed (3). Try it in Terminal.")},
        {"error-companion-text", failed("Not signed in. Run the sign-in command — then Refresh.")},
        {"error-invalid-json",
         failed("Invalid JSON from vorla-usage. Install v0.5 or newer, then Refresh.")},
        {"full", full()},
        {"weekly-only", unknownPlan()},
        {"blocked", blocked()},
        {"buckets", buckets()},
        {"credits", credits()},
        {"status-lines", withStatusLines(weeklyOnly())},
        {"status-lines-without-snapshot", withStatusLines(MenuState())},
        {"in-flight", withRunsGoing()},
    };
}

TEST(StatusMenu, readsAsInTheFiles) {
    const LocalZone zone("UTC0");
    for (const Sample& sample : samples()) {
        EXPECT_EQ(printed(composeMenu(sample.state, now)), expectedMenu(sample.name))
            << sample.name;
    }
}

TEST(StatusMenu, givesEachLineAnIdentityOfItsOwnInTheOrderOfTheLines) {
    for (const Sample& sample : samples()) {
        const StatusMenu menu = composeMenu(sample.state, now);
        EXPECT_EQ(
            std::ranges::adjacent_find(
                menu.lines,
                [](const MenuLine& upper, const MenuLine& lower) {
                    return !standsAbove(upper.identity, lower.identity) ||
                           standsAbove(lower.identity, upper.identity);
                }),
            menu.lines.end())
            << sample.name;
    }
}

TEST(StatusMenu, aLineKeepsItsIdentityWhenOthersComeAndGo) {
    const auto identityOf = [](const StatusMenu& menu, std::string_view title) {
        return std::ranges::find(menu.lines, title, &MenuLine::title)->identity;
    };
    const StatusMenu menu = composeMenu(buckets(), now);
    EXPECT_EQ(identityOf(menu, "Research"), (LineIdentity{LineRole::bucket, 0, 0}));
    EXPECT_EQ(
        identityOf(menu, "45-minute: 500% · resetting now"),
        (LineIdentity{LineRole::bucketWindow, 0, 1}));
    EXPECT_EQ(identityOf(menu, "Empty"), (LineIdentity{LineRole::bucket, 1, 0}));
    EXPECT_EQ(identityOf(menu, "Images"), (LineIdentity{LineRole::bucket, 2, 0}));
    EXPECT_EQ(
        identityOf(menu, "5-hour: 80% · resets in 3h 5m"),
        (LineIdentity{LineRole::bucketWindow, 2, 0}));
    EXPECT_EQ(identityOf(menu, "Quit"), LineIdentity{LineRole::quit});
    EXPECT_EQ(identityOf(composeMenu(MenuState(), now), "Quit"), LineIdentity{LineRole::quit});
}

TEST(StatusMenu, bucketsAndTheirWindowsInterleave) {
    const std::vector<LineIdentity> ordered = {
        {LineRole::error},
        {LineRole::additionalLimits},
        {LineRole::bucket, 0},
        {LineRole::bucketWindow, 0, 0},
        {LineRole::bucketWindow, 0, 1},
        {LineRole::bucket, 1},
        {LineRole::bucket, 2},
        {LineRole::bucketWindow, 2, 0},
        {LineRole::bankedResets},
        {LineRole::quit}};
    for (std::size_t left = 0; left < ordered.size(); ++left) {
        for (std::size_t right = 0; right < ordered.size(); ++right) {
            EXPECT_EQ(standsAbove(ordered[left], ordered[right]), left < right)
                << left << " " << right;
        }
    }
}

TEST(StatusMenu, aChangedClockChangesOnlyWhatDependsOnIt) {
    const MenuState state = weeklyOnly();
    EXPECT_EQ(composeMenu(state, now), composeMenu(state, now + 3600));
    EXPECT_NE(composeMenu(full(), now), composeMenu(full(), now + 3600));
}

TEST(StatusMenu, launchAtLoginIsCheckedOnlyWhenItIsEnabled) {
    for (const LoginItemStatus status :
         {LoginItemStatus::notRegistered, LoginItemStatus::enabled,
          LoginItemStatus::requiresApproval, LoginItemStatus::notFound}) {
        MenuState state;
        state.loginItemStatus = status;
        const StatusMenu menu = composeMenu(state, now);
        const auto line = std::ranges::find(menu.lines, "Launch at Login", &MenuLine::title);
        ASSERT_NE(line, menu.lines.end());
        EXPECT_EQ(line->checked, status == LoginItemStatus::enabled);
        EXPECT_TRUE(line->enabled);
        EXPECT_EQ(
            std::ranges::count(
                menu.lines, "Launch at Login needs approval in System Settings", &MenuLine::title),
            status == LoginItemStatus::requiresApproval ? 1 : 0);
    }
}

} // namespace
} // namespace vorla
