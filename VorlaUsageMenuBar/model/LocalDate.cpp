// SPDX-License-Identifier: MIT
#include "model/LocalDate.h"

#include <array>
#include <cmath>
#include <ctime>
#include <string_view>

namespace vorla {

namespace {

// strftime() would ask the locale, and gives no AM and PM at all in many of them.
constexpr std::array<std::string_view, 12> monthNames = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

std::tm localDate(double time) {
    // localtime_r() alone keeps the zone it saw first, and a laptop travels.
    tzset();
    const auto wholeSeconds = static_cast<std::time_t>(std::floor(time));
    std::tm date = {};
    localtime_r(&wholeSeconds, &date);
    return date;
}

std::string day(const std::tm& date) {
    std::string text(monthNames.at(static_cast<std::size_t>(date.tm_mon)));
    return text.append(" ").append(std::to_string(date.tm_mday));
}

} // namespace

std::string dayAndTime(double time) {
    const std::tm date = localDate(time);
    const int hour = date.tm_hour % 12 == 0 ? 12 : date.tm_hour % 12;
    return day(date)
        .append(" at ")
        .append(std::to_string(hour))
        .append(date.tm_min < 10 ? ":0" : ":")
        .append(std::to_string(date.tm_min))
        .append(date.tm_hour < 12 ? " AM" : " PM");
}

std::string day(double time) {
    return day(localDate(time));
}

} // namespace vorla
