// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// Dates in the local time zone, in English whatever the locale. Times are seconds since the Unix
/// epoch, closer to it than the year 10000. The zone is looked up afresh at every call.
namespace vorla {

/// "Nov 18 at 3:05 PM"
std::string dayAndTime(double time);

/// "Nov 18"
std::string day(double time);

} // namespace vorla
