#pragma once
// Date arithmetic of the date built-ins: DateAdd, DateDiff, DatePart, DateSerial and TimeSerial on
// plain numbers. Functions that can fail raise through RaiseValueError and answer false.
#include "library/DateInterval.h"

#include <windows.h>
#include <wtypes.h>

namespace brannoc {

// Adds number (rounded down to a whole count) of intervals to date. Years, quarters and months keep
// the time of day and limit the day to the last day of the resulting month. Raises 10062 when the
// count does not fit a Long or the result leaves the Date range.
[[nodiscard]] bool AddToDate(DateInterval interval, double number, DATE date, DATE& result);

// The number of interval boundaries from first to second (negative when second is earlier); weeks
// start on Sunday. Raises 10062 when the count does not fit a Long.
[[nodiscard]] bool DateDifference(DateInterval interval, DATE first, DATE second, LONG& result);

// The part of date that interval names (weeks of the year start on Sunday, week 1 holds 1 January).
int PartOfDate(DateInterval interval, DATE date);

// The date of year, month and day; months and days beyond their ranges carry into the next or
// previous ones, and a year from 0 to 99 follows the platform's two-digit-year window. Raises 10062
// when the result leaves the Date range.
[[nodiscard]] bool DateFromParts(long year, long month, long day, DATE& result);

// The time of hour, minute and second as a fraction of a day (whole days carry over). Raises 10062
// when the result leaves the Date range.
[[nodiscard]] bool TimeFromParts(long hour, long minute, long second, DATE& result);

// The date part (the value rounded down) and the time part (the fraction from the start of that day)
// of a date value.
DATE DatePartOnly(DATE value);
DATE TimePartOnly(DATE value);

} // namespace brannoc
