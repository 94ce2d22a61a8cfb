#pragma once
// The interval codes of DateAdd, DateDiff and DatePart, in the order of their internal numbers.
#include <string_view>

namespace brannoc {

enum class DateInterval : int {
    kYear,      // "yyyy"
    kQuarter,   // "q"
    kMonth,     // "m"
    kDayOfYear, // "y"
    kDay,       // "d"
    kWeekday,   // "w"
    kWeek,      // "ww"
    kHour,      // "h"
    kMinute,    // "n"
    kSecond,    // "s"
};

// Reads an interval code (without regard to case). False for any other text; nothing is raised.
bool ParseDateInterval(std::wstring_view text, DateInterval& interval);

// The code text of an interval ("yyyy", "q", ...).
std::wstring_view DateIntervalCode(DateInterval interval);

} // namespace brannoc
