// SPDX-License-Identifier: MIT
#include "WebPage.h"

#include "Decimal.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace vorla {

namespace {

/// The drawing area of a curve, in the units of its picture.
constexpr double chartWidth = 600;
constexpr double chartHeight = 160;
/// The parts that a window's length is drawn in.
constexpr int chartSteps = 84;

constexpr std::string_view pageStart = R"html(<!doctype html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta http-equiv="refresh" content="60">
<link rel="icon" href="data:,">
<title>Vorla usage (demonstration)</title>
<style>
:root { color-scheme: light dark; --back: #fbfbf9; --text: #20231f; --quiet: #666b62;
  --track: #e3e4de; --used: #2f7d5b; --low: #b8442e; --card: #ffffff; }
@media (prefers-color-scheme: dark) {
  :root { --back: #171916; --text: #e8eae4; --quiet: #9ba196; --track: #343832; --used: #63bd94;
    --low: #ee8169; --card: #20231f; } }
body { margin: 0 auto; padding: 2rem 1.25rem; max-width: 44rem; background: var(--back);
  color: var(--text); font: 16px/1.5 system-ui, sans-serif; }
h1 { margin: 0; font-size: 1.5rem; }
h2 { margin: 0 0 .75rem; font-size: 1.05rem; }
p { margin: 0; color: var(--quiet); }
section { margin-top: 1.25rem; padding: 1.1rem 1.25rem; border-radius: .75rem;
  background: var(--card); border: 1px solid var(--track); }
.row + .row { margin-top: 1rem; }
.row div { display: flex; justify-content: space-between; gap: 1rem; }
svg { display: block; width: 100%; height: auto; }
.bar { height: .6rem; margin: .35rem 0; border-radius: .3rem; background: var(--track); }
.track { fill: none; stroke: var(--track); }
.used { fill: var(--used); }
.low { fill: var(--low); }
.even { stroke: var(--quiet); stroke-dasharray: 5 5; }
.curve { fill: none; stroke: var(--used); stroke-width: 3; stroke-linejoin: round; }
.below { fill: var(--used); opacity: .15; }
.label { fill: var(--quiet); font-size: 15px; }
.axis { display: flex; justify-content: space-between; color: var(--quiet); margin: .2rem 0 .5rem; }
</style>
</head>
<body>
<h1>Vorla usage</h1>
<p>A demonstration: these figures are made from the clock.</p>
)html";

constexpr std::string_view pageEnd = "</body>\n</html>\n";

std::string timeLeft(std::int64_t seconds) {
    const std::int64_t minutes = seconds / 60;
    if (minutes >= 2 * 1440) {
        return std::to_string(minutes / 1440) + " days";
    }
    if (minutes >= 60) {
        return std::to_string(minutes / 60) + " h " + std::to_string(minutes % 60) + " min";
    }
    return std::to_string(minutes) + " min";
}

std::string bar(std::string_view title, const DemoWindow& window, std::int64_t now) {
    const std::string remaining = std::to_string(window.remainingPercent()) + "% left";
    const bool isLow = window.remainingPercent() < lowPercent;
    std::string text = R"(<div class="row"><div><span>)";
    text.append(title).append("</span><strong>").append(remaining).append("</strong></div>\n");
    text.append(R"(<svg class="bar" viewBox="0 0 100 1" preserveAspectRatio="none" role="img" )")
        .append("aria-label=\"")
        .append(remaining)
        .append("\"><rect class=\"")
        .append(isLow ? "low" : "used")
        .append("\" width=\"")
        .append(std::to_string(window.usedPercent()))
        .append("\" height=\"1\"/></svg>\n<p>");
    text.append(std::to_string(window.usedPercent()))
        .append("% used, resets in ")
        .append(timeLeft(window.resetsAt() - now))
        .append("</p></div>\n");
    return text;
}

/// A place in the drawing area, as the picture spells it.
struct Point {
    std::string across;
    std::string down;

    std::string both() const { return across + "," + down; }
};

Point pointAt(const DemoWindow& window, std::int64_t time, double used) {
    const double elapsed =
        static_cast<double>(time - window.startsAt) / static_cast<double>(window.minutes * 60);
    return {decimal(elapsed * chartWidth), decimal(chartHeight * (1 - used / 100))};
}

/// Levels to compare the curve with.
std::string grid() {
    std::string text;
    for (const int percent : {25, 50, 75}) {
        const std::string height = decimal(chartHeight * (1 - percent / 100.0));
        text.append(R"(<line class="track" x1="0" y1=")").append(height);
        text.append(R"(" x2=")").append(decimal(chartWidth)).append(R"(" y2=")").append(height);
        text.append("\"/>\n");
    }
    for (const int percent : {50, 100}) {
        constexpr double belowItsLine = 17;
        const double height = chartHeight * (1 - percent / 100.0) + belowItsLine;
        text.append(R"(<text class="label" x="6" y=")").append(decimal(height)).append("\">");
        text.append(std::to_string(percent)).append("%</text>\n");
    }
    return text;
}

/// How the window has been used up so far, beside the line of an even pace.
std::string
curve(std::string_view title, const DemoHabit& habit, const DemoWindow& window, std::int64_t now) {
    std::string points;
    for (int step = 0; step < chartSteps; ++step) {
        const std::int64_t time = window.startsAt + window.minutes * 60 * step / chartSteps;
        if (time < now) {
            points += pointAt(window, time, windowAt(habit, time).used).both() + " ";
        }
    }
    const Point present = pointAt(window, now, window.used);
    points += present.both();
    const std::string width = decimal(chartWidth);
    const std::string height = decimal(chartHeight);
    std::string text = "<section><h2>";
    text.append(title).append("</h2>\n<svg viewBox=\"-2 -2 604 164\" role=\"img\" aria-label=\"");
    text.append(title).append("\">\n<rect class=\"track\" width=\"").append(width);
    text.append("\" height=\"").append(height).append("\"/>\n").append(grid());
    text.append(R"(<line class="even" x1="0" y1=")");
    text.append(height).append("\" x2=\"").append(width).append("\" y2=\"0\"/>\n");
    text.append(R"(<polygon class="below" points="0,)").append(height).append(" ").append(points);
    text.append(" ").append(present.across).append(",").append(height).append("\"/>\n");
    text.append(R"(<polyline class="curve" points=")").append(points).append("\"/>\n");
    text.append(R"(<circle class="used" r="5" cx=")").append(present.across);
    text.append("\" cy=\"").append(present.down).append("\"/>\n</svg>\n");
    text.append("<div class=\"axis\"><span>start</span><span>reset in ");
    text.append(timeLeft(window.resetsAt() - now)).append("</span></div>\n");
    text.append("<p>Used so far; dashed: an even pace up to the reset</p></section>\n");
    return text;
}

} // namespace

std::string webPage(const DemoWeek& week) {
    std::string page(pageStart);
    page.append("<section><h2>Windows</h2>\n")
        .append(bar("5 hours", week.fiveHour, week.now))
        .append(bar("Week", week.weekly, week.now))
        .append(bar("Large tasks, hour", week.largeTasksHourly, week.now))
        .append(bar("Large tasks, week", week.largeTasksWeekly, week.now))
        .append("</section>\n")
        .append(curve("This 5-hour window", fiveHourHabit, week.fiveHour, week.now))
        .append(curve("This week", weeklyHabit, week.weekly, week.now))
        .append(pageEnd);
    return page;
}

} // namespace vorla
