#include "library/DateMath.h"

#include "library/DateParts.h"
#include "values/Conversion.h"
#include "values/ValueError.h"

#include <climits>
#include <cmath>
#include <string>

namespace brannoc {

namespace {

bool StoreDate(double serial, DATE& result)
{
    if (!IsDateSerialInRange(serial))
        return RaiseValueError(kErrorOverflow);
    result = serial;
    return true;
}

bool StoreCount(long long count, LONG& result)
{
    if (count < LONG_MIN || count > LONG_MAX)
        return RaiseValueError(kErrorOverflow);
    result = static_cast<LONG>(count);
    return true;
}

// Moves date by months, keeping the time of day and limiting the day to the month's last day.
bool AddMonths(long long months, DATE date, DATE& result)
{
    DayAndTime start = SplitDayAndTime(date);
    CivilDate civil = CivilDateFromSerial(start.day);
    long long monthIndex = static_cast<long long>(civil.year) * 12 + (civil.month - 1) + months;
    long long year = monthIndex >= 0 ? monthIndex / 12 : -((-monthIndex + 11) / 12);
    int month = static_cast<int>(monthIndex - year * 12) + 1;
    if (year < 100 || year > 9999)
        return RaiseValueError(kErrorOverflow);
    int day = civil.day;
    int lastDay = DaysInMonth(static_cast<long>(year), month);
    if (day > lastDay)
        day = lastDay;
    return StoreDate(JoinDayAndTime(DaySerial(static_cast<long>(year), month, day), start.time), result);
}

bool AddDays(double days, DATE date, DATE& result)
{
    DayAndTime start = SplitDayAndTime(date);
    return StoreDate(JoinDayAndTime(start.day + days, start.time), result);
}

// Days between the whole-day parts of two dates.
long long DayDifference(DATE earlier, DATE later)
{
    return static_cast<long long>(std::trunc(later)) - static_cast<long long>(std::trunc(earlier));
}

long long OrderedDifference(DateInterval interval, DATE earlier, DATE later)
{
    DateParts e = SplitDate(earlier);
    DateParts l = SplitDate(later);
    long long years = l.year - e.year;
    long long days = DayDifference(earlier, later);
    switch (interval) {
    case DateInterval::kYear:
        return years;
    case DateInterval::kQuarter:
        return years * 4 + (l.month - e.month) / 3;
    case DateInterval::kMonth:
        return years * 12 + l.month - e.month;
    case DateInterval::kDayOfYear:
    case DateInterval::kDay:
        return days;
    case DateInterval::kWeekday:
        return days / 7;
    case DateInterval::kWeek: {
        long long weekStart = static_cast<long long>(std::trunc(earlier)) - e.weekday + 1;
        return (static_cast<long long>(std::trunc(later)) - weekStart) / 7;
    }
    case DateInterval::kHour:
        return days * 24 - e.hour + l.hour;
    case DateInterval::kMinute:
        return (days * 24 - e.hour + l.hour) * 60 - e.minute + l.minute;
    case DateInterval::kSecond:
    default:
        return ((days * 24 - e.hour + l.hour) * 60 - e.minute + l.minute) * 60 - e.second + l.second;
    }
}

// The year of the text 1/1/ followed by a two-digit year, read with US-English rules so that the
// platform's two-digit-year window decides the century.
bool WindowedYear(long year, long& result)
{
    Variant text;
    std::wstring source = L"1/1/" + std::to_wstring(year);
    if (!text.SetString(std::wstring_view(source)))
        return RaiseValueError(kErrorOutOfMemory);
    if (!ParseInvariant(text, VT_DATE, RaiseMode::kRaise))
        return false;
    result = SplitDate(text.Date()).year;
    return true;
}

} // namespace

bool AddToDate(DateInterval interval, double number, DATE date, DATE& result)
{
    double whole = std::floor(number);
    if (!(whole >= LONG_MIN && whole <= LONG_MAX))
        return RaiseValueError(kErrorOverflow);
    long long count = static_cast<long long>(whole);
    switch (interval) {
    case DateInterval::kYear:
        return AddMonths(count * 12, date, result);
    case DateInterval::kQuarter:
        return AddMonths(count * 3, date, result);
    case DateInterval::kMonth:
        return AddMonths(count, date, result);
    case DateInterval::kDayOfYear:
    case DateInterval::kDay:
    case DateInterval::kWeekday:
        return AddDays(static_cast<double>(count), date, result);
    case DateInterval::kWeek:
        return AddDays(static_cast<double>(count) * 7, date, result);
    case DateInterval::kHour:
        return StoreDate(date + static_cast<double>(count) / 24.0, result);
    case DateInterval::kMinute:
        return StoreDate(date + static_cast<double>(count) / 1440.0, result);
    case DateInterval::kSecond:
    default:
        return StoreDate(date + static_cast<double>(count) / 86400.0, result);
    }
}

bool DateDifference(DateInterval interval, DATE first, DATE second, LONG& result)
{
    if (second < first)
        return StoreCount(-OrderedDifference(interval, second, first), result);
    return StoreCount(OrderedDifference(interval, first, second), result);
}

int PartOfDate(DateInterval interval, DATE date)
{
    DateParts parts = SplitDate(date);
    switch (interval) {
    case DateInterval::kYear: return static_cast<int>(parts.year);
    case DateInterval::kQuarter: return (parts.month + 2) / 3;
    case DateInterval::kMonth: return parts.month;
    case DateInterval::kDayOfYear: return parts.dayOfYear;
    case DateInterval::kDay: return parts.day;
    case DateInterval::kWeekday: return parts.weekday;
    case DateInterval::kWeek: return WeekOfYear(parts, 1, FirstWeekRule::kJanuaryFirst);
    case DateInterval::kHour: return parts.hour;
    case DateInterval::kMinute: return parts.minute;
    case DateInterval::kSecond:
    default:
        return parts.second;
    }
}

bool DateFromParts(long year, long month, long day, DATE& result)
{
    if (year >= 0 && year <= 99 && !WindowedYear(year, year))
        return false;
    long long monthIndex = static_cast<long long>(year) * 12 + month - 1;
    long long normalYear = monthIndex >= 0 ? monthIndex / 12 : -((-monthIndex + 11) / 12);
    int normalMonth = static_cast<int>(monthIndex - normalYear * 12) + 1;
    if (normalYear < -1000000 || normalYear > 1000000)
        return RaiseValueError(kErrorOverflow);
    double serial = static_cast<double>(DaySerial(static_cast<long>(normalYear), normalMonth, 1)) + day - 1;
    return StoreDate(serial, result);
}

bool TimeFromParts(long hour, long minute, long second, DATE& result)
{
    long long seconds = static_cast<long long>(hour) * 3600 + static_cast<long long>(minute) * 60 + second;
    double linear = static_cast<double>(seconds) / 86400.0;
    double day = std::floor(linear);
    return StoreDate(JoinDayAndTime(day, linear - day), result);
}

DATE DatePartOnly(DATE value) { return std::trunc(value); }

DATE TimePartOnly(DATE value) { return std::fabs(value - std::trunc(value)); }

} // namespace brannoc
