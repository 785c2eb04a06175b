// SPDX-License-Identifier: MIT
#include "model/LocalDate.h"

#include "model/LocalZone.h"

#include <gtest/gtest.h>

#include <vector>

namespace vorla {
namespace {

constexpr const char* newYork = "EST5EDT,M3.2.0,M11.1.0";

TEST(LocalDate, readsAsAnEnglishDayWithATwelveHourClock) {
    struct Row {
        double time;
        const char* text;
    };

    const LocalZone zone("UTC0");
    const std::vector<Row> rows = {
        {0, "Jan 1 at 12:00 AM"},
        {59.999, "Jan 1 at 12:00 AM"},
        {60, "Jan 1 at 12:01 AM"},
        {1700319900, "Nov 18 at 3:05 PM"},
        {1700308800, "Nov 18 at 12:00 PM"},
        {1700308799, "Nov 18 at 11:59 AM"},
        {1709251199, "Feb 29 at 11:59 PM"},
        {1709251200, "Mar 1 at 12:00 AM"},
        {253402300799.5, "Dec 31 at 11:59 PM"},
        // A fraction before the epoch belongs to the second before it.
        {-0.5, "Dec 31 at 11:59 PM"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(dayAndTime(row.time), row.text) << row.time;
    }
}

TEST(LocalDate, namesEveryMonth) {
    const LocalZone zone("UTC0");
    const std::vector<const char*> months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    for (std::size_t month = 0; month < months.size(); ++month) {
        // The 15th day of the mean month never leaves the month of 1970.
        const double time = (30.4 * static_cast<double>(month) + 14) * 86400;
        EXPECT_EQ(day(time).substr(0, 4), std::string(months[month]) + " ") << month;
    }
}

TEST(LocalDate, followsTheLocalZoneAndItsSummerTime) {
    const LocalZone zone(newYork);
    EXPECT_EQ(dayAndTime(1700319900), "Nov 18 at 10:05 AM");
    EXPECT_EQ(dayAndTime(1689433500), "Jul 15 at 11:05 AM");
    EXPECT_EQ(day(1700355600 - 1), "Nov 18");
    EXPECT_EQ(day(1700370000 - 1), "Nov 18");
    EXPECT_EQ(day(1700370000), "Nov 19");
}

TEST(LocalDate, noticesAChangedZone) {
    const LocalZone before("UTC0");
    EXPECT_EQ(dayAndTime(1700319900), "Nov 18 at 3:05 PM");
    // Without tzset(): that is for the code under test to call.
    setenv("TZ", "XYZ-9:30", 1);
    EXPECT_EQ(dayAndTime(1700319900), "Nov 19 at 12:35 AM");
}

} // namespace
} // namespace vorla
