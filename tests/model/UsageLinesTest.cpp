// SPDX-License-Identifier: MIT
#include "model/UsageLines.h"

#include "model/LocalZone.h"

#include <gtest/gtest.h>

#include <limits>

namespace vorla {
namespace {

constexpr double now = 1700000000;

using Titles = std::vector<std::string>;

Usage::Window window(std::int64_t durationMins, double resetsAt) {
    return {
        .name = "window",
        .usedPercent = 58,
        .remainingPercent = 42,
        .windowDurationMins = durationMins,
        .resetsAt = resetsAt};
}

/// A snapshot without a line of its own: its window is neither of the two that are shown.
Usage bare() {
    Usage usage;
    usage.windows = {window(60, now)};
    return usage;
}

Titles titles(const Usage& usage, const PaceEstimates& pace = {}) {
    std::vector<MenuLine> lines;
    addUsageLines(lines, usage, pace, now);
    Titles result;
    for (const MenuLine& line : lines) {
        result.push_back(line.title);
    }
    return result;
}

/// The title of the line about `role`, or "none".
std::string title(LineRole role, const Usage& usage, const PaceEstimates& pace = {}) {
    std::vector<MenuLine> lines;
    addUsageLines(lines, usage, pace, now);
    for (const MenuLine& line : lines) {
        if (line.identity.role == role) {
            return line.title;
        }
    }
    return "none";
}

TEST(UsageLines, aSnapshotWithoutKnownWindowsHasNoLines) {
    EXPECT_EQ(titles(bare()), Titles());
}

TEST(UsageLines, namesTheKnownPlans) {
    struct Row {
        const char* planType;
        const char* title;
    };

    for (const Row row :
         {Row{"free", "Parlo Free"}, Row{"go", "Parlo Go"}, Row{"plus", "Parlo Plus"},
          Row{"pro", "Parlo Pro"}, Row{"business", "Business"}, Row{"team", "Team"},
          Row{"enterprise", "Enterprise"}, Row{"edu", "Education"}, Row{"Pro", "Vorla account"},
          Row{"", "Vorla account"}, Row{"professional", "Vorla account"}}) {
        Usage usage = bare();
        usage.planType = row.planType;
        EXPECT_EQ(titles(usage), Titles{row.title}) << row.planType;
    }
}

TEST(UsageLines, theFiveHourResetCountsWholeMinutes) {
    struct Row {
        double seconds;
        const char* title;
    };

    for (const Row row :
         {Row{-1e9, "Reset due now"}, Row{-61, "Reset due now"}, Row{0, "Reset due now"},
          Row{59, "Reset due now"}, Row{59.9, "Reset due now"}, Row{60, "Resets in 0h 1m"},
          Row{2700, "Resets in 0h 45m"}, Row{3 * 3600 + 5 * 60 + 59, "Resets in 3h 5m"},
          Row{90000, "Resets in 25h 0m"}}) {
        Usage usage = bare();
        usage.windows = {window(fiveHourMinutes, now + row.seconds)};
        EXPECT_EQ(title(LineRole::fiveHourReset, usage), row.title) << row.seconds;
    }
}

TEST(UsageLines, theWeeklyResetIsALocalDate) {
    const LocalZone zone("EST5EDT,M3.2.0,M11.1.0");
    Usage usage = bare();
    usage.windows = {window(weeklyMinutes, 1700319900)};
    EXPECT_EQ(title(LineRole::weeklyReset, usage), "Resets Nov 18 at 10:05 AM");
    usage.windows = {window(weeklyMinutes, 1689433500)};
    EXPECT_EQ(title(LineRole::weeklyReset, usage), "Resets Jul 15 at 11:05 AM");
}

TEST(UsageLines, ofTwoWindowsOfOneLengthOnlyTheFirstIsShown) {
    Usage usage = bare();
    usage.windows = {window(fiveHourMinutes, now + 60), window(fiveHourMinutes, now + 120)};
    usage.windows[1].remainingPercent = 7;
    EXPECT_EQ(
        titles(usage),
        (Titles{
            "5-hour: 42% remaining", "Resets in 0h 1m", "5-hour runway: collecting session data"}));
}

TEST(UsageLines, theFormatOfARateIsChosenBeforeItIsRounded) {
    struct Row {
        double percentPerHour;
        const char* title;
    };

    for (const Row row :
         {Row{9.96, "5-hour pace: 10.0%/hr · ~1h 0m"}, Row{10, "5-hour pace: 10%/hr · ~1h 0m"},
          Row{10.4, "5-hour pace: 10%/hr · ~1h 0m"}, Row{10.5, "5-hour pace: 10%/hr · ~1h 0m"},
          Row{11.5, "5-hour pace: 12%/hr · ~1h 0m"}, Row{1.25, "5-hour pace: 1.2%/hr · ~1h 0m"},
          Row{1.75, "5-hour pace: 1.8%/hr · ~1h 0m"}, Row{0.05, "5-hour pace: 0.1%/hr · ~1h 0m"},
          Row{0.04, "5-hour pace: 0.0%/hr · ~1h 0m"},
          Row{2000, "5-hour pace: 2000%/hr · ~1h 0m"}}) {
        Usage usage = bare();
        usage.windows = {window(fiveHourMinutes, now)};
        const PaceEstimates pace = {
            {fiveHourMinutes,
             {.percentPerHour = row.percentPerHour,
              .secondsToExhaustion = 3600,
              .survivesUntilReset = std::nullopt}}};
        EXPECT_EQ(title(LineRole::fiveHourPace, usage, pace), row.title) << row.percentPerHour;
    }
}

TEST(UsageLines, anIncompleteEstimateIsStillBeingCollected) {
    Usage usage = bare();
    usage.windows = {window(weeklyMinutes, now)};
    const std::vector<PaceEstimate> incomplete = {
        {},
        {.percentPerHour = 5, .secondsToExhaustion = std::nullopt, .survivesUntilReset = true},
        {.percentPerHour = std::nullopt, .secondsToExhaustion = 5, .survivesUntilReset = true}};
    for (const PaceEstimate& estimate : incomplete) {
        const PaceEstimates pace = {{weeklyMinutes, estimate}};
        EXPECT_EQ(
            title(LineRole::weeklyPace, usage, pace), "Weekly runway: collecting session data");
        EXPECT_EQ(title(LineRole::weeklySurvival, usage, pace), "none");
        EXPECT_EQ(title(LineRole::paceNote, usage, pace), "none");
    }
}

TEST(UsageLines, onlyTheWeeklyWindowTellsWhetherItSurvives) {
    struct Row {
        std::optional<bool> survives;
        const char* title;
    };

    for (const Row row :
         {Row{true, "Weekly pace: on pace for reset"},
          Row{false, "Weekly pace: likely exhausted before reset"}, Row{std::nullopt, "none"}}) {
        const PaceEstimate estimate = {
            .percentPerHour = 5, .secondsToExhaustion = 3600, .survivesUntilReset = row.survives};
        Usage usage = bare();
        usage.windows = {window(weeklyMinutes, now)};
        EXPECT_EQ(title(LineRole::weeklySurvival, usage, {{weeklyMinutes, estimate}}), row.title);
        usage.windows = {window(fiveHourMinutes, now)};
        EXPECT_EQ(
            titles(usage, {{fiveHourMinutes, estimate}}),
            (Titles{
                "5-hour: 42% remaining", "Reset due now", "5-hour pace: 5.0%/hr · ~1h 0m",
                "Session-rate estimate; not a prediction"}));
    }
}

TEST(UsageLines, theBudgetIsGivenForTheTimeThatIsLeft) {
    struct Row {
        double secondsToReset;
        double percentPerDay;
        double percentPerHour;
        std::string title;
    };

    const std::vector<Row> rows = {
        {-5, 50, 5, "Budget to reset: 42% over remaining hour"},
        {3599.9, 50, 5, "Budget to reset: 42% over remaining hour"},
        {3600, 50, 5, "Budget to reset: ~5.0% / hour"},
        {86399, 50, 9.96, "Budget to reset: ~10.0% / hour"},
        {86399, 50, 0.0999, "Budget to reset: ~<0.1% / hour"},
        {86400, 50, 5, "Budget to reset: ~50% / day"},
        {86400, 0.05, 5, "Budget to reset: ~<0.1% / day"},
        {86400, 0.1, 5, "Budget to reset: ~0.1% / day"},
        {86400, -3, 5, "Budget to reset: ~<0.1% / day"},
        {86400, 14.3, 5, "Budget to reset: ~14% / day"},
        {86400, 0x1p80, 5, "Budget to reset: ~1208925819614629174706176% / day"},
    };
    for (const Row& row : rows) {
        Usage usage = bare();
        usage.weeklyBudget = {
            .percentPerDay = row.percentPerDay,
            .percentPerHour = row.percentPerHour,
            .secondsToReset = row.secondsToReset,
            .remainingPercent = 42};
        EXPECT_EQ(titles(usage), Titles{row.title}) << row.secondsToReset;
    }
}

TEST(UsageLines, aBudgetMayTakeAnyValue) {
    Usage usage = bare();
    usage.weeklyBudget = {
        .percentPerDay = std::numeric_limits<double>::max(),
        .percentPerHour = 0,
        .secondsToReset = 86400,
        .remainingPercent = 0};
    const std::string text = title(LineRole::weeklyBudget, usage);
    EXPECT_EQ(text.size(), std::string("Budget to reset: ~% / day").size() + 309);
    EXPECT_EQ(text.substr(0, 24), "Budget to reset: ~179769");
}

TEST(UsageLines, aBucketListsItsWindowsFromTheShortest) {
    Usage usage = bare();
    Usage::LimitBucket bucket;
    bucket.label = "Extra";
    bucket.windows = {
        window(weeklyMinutes, now + 90000), window(60, now - 1), window(fiveHourMinutes, now + 29),
        window(60, now + 120), window(60, now)};
    usage.limitBuckets = {bucket};
    EXPECT_EQ(
        titles(usage), (Titles{
                           "Additional Vorla limits", "Extra", "60-minute: 42% · resetting now",
                           "60-minute: 42% · resets in 2m", "60-minute: 42% · resetting now",
                           "5-hour: 42% · resets in 1m", "Weekly: 42% · resets in 1d 1h"}));
}

TEST(UsageLines, manyWindowsOfOneLengthKeepTheirOrder) {
    Usage usage = bare();
    Usage::LimitBucket bucket;
    Titles expected = {"Additional Vorla limits", ""};
    for (int place = 0; place < 100; ++place) {
        bucket.windows.push_back(window(60, now));
        bucket.windows.back().remainingPercent = place;
        expected.push_back("60-minute: " + std::to_string(place) + "% · resetting now");
    }
    usage.limitBuckets = {bucket};
    EXPECT_EQ(titles(usage), expected);
}

TEST(UsageLines, theDefaultBucketAloneAddsNothing) {
    Usage usage = bare();
    Usage::LimitBucket bucket;
    bucket.isDefault = true;
    bucket.windows = {window(60, now)};
    usage.limitBuckets = {bucket};
    EXPECT_EQ(titles(usage), Titles());
    usage.limitBuckets = std::vector<Usage::LimitBucket>();
    EXPECT_EQ(titles(usage), Titles());
}

TEST(UsageLines, bankedResetsShowTheirFirstExpiryIfAny) {
    using Credits = std::vector<Usage::Credits::Credit>;
    struct Row {
        std::int64_t availableCount;
        std::optional<Credits> credits;
        Titles titles;
    };

    const LocalZone zone("UTC0");
    const Usage::Credits::Credit december = {.status = "available", .expiresAt = 1701388800};
    const Usage::Credits::Credit january = {.status = "available", .expiresAt = 1704067200};
    const Usage::Credits::Credit open = {.status = "available", .expiresAt = std::nullopt};
    const Usage::Credits::Credit never = {.status = "available", .expiresAt = yearTenThousand};
    const Usage::Credits::Credit used = {.status = "Available", .expiresAt = 1701388800};
    const std::vector<Row> rows = {
        {0, {{december}}, {"Banked resets: 0"}},
        {-1, {{december}}, {"Banked resets: -1"}},
        {2, std::nullopt, {"Banked resets: 2"}},
        {2, Credits(), {"Banked resets: 2"}},
        {2, {{open, never, used}}, {"Banked resets: 2"}},
        {1, {{january, december}}, {"Banked resets: 1", "Expires Dec 1"}},
        {1, {{open, january, never}}, {"Banked resets: 1", "Expires Jan 1"}},
    };
    for (const Row& row : rows) {
        Usage usage = bare();
        usage.resetCredits = {.availableCount = row.availableCount, .credits = row.credits};
        EXPECT_EQ(titles(usage), row.titles);
    }
}

TEST(UsageLines, tellsOfTheKnownLimitsThatAreReached) {
    struct Row {
        const char* type;
        Titles titles;
    };

    const std::vector<Row> rows = {
        {"rate_limit_reached", {"Usage limit reached"}},
        {"workspace_owner_credits_depleted", {"Workspace credits depleted"}},
        {"workspace_member_credits_depleted", {"Workspace member credits depleted"}},
        {"workspace_owner_usage_limit_reached", {"Workspace usage limit reached"}},
        {"workspace_member_usage_limit_reached", {"Workspace member usage limit reached"}},
        {"something_new", {}},
        {"", {}},
    };
    for (const Row& row : rows) {
        Usage usage = bare();
        usage.rateLimitReachedType = row.type;
        EXPECT_EQ(titles(usage), row.titles) << row.type;
    }
}

TEST(UsageLines, tellsOfSpendControlOnlyWhenItIsReached) {
    Usage usage = bare();
    usage.spendControlReached = true;
    EXPECT_EQ(titles(usage), Titles{"Spend-control limit reached"});
    usage.spendControlReached = false;
    EXPECT_EQ(titles(usage), Titles());
}

} // namespace
} // namespace vorla
