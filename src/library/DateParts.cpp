#include "library/DateParts.h"

#include <cmath>

namespace brannoc {

namespace {

// Days from 1 March of year 0 (proleptic Gregorian) to the given date, by 400-year eras.
long DaysFromCivil(long year, int month, int day)
{
    year -= month <= 2 ? 1 : 0;
    long era = (year >= 0 ? year : year - 399) / 400;
    long yearOfEra = year - era * 400;
    long dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    long dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra;
}

const long kDayZero = DaysFromCivil(1899, 12, 30);

constexpr double kHalfSecond = 0.5 / 86400.0;

} // namespace

bool IsDateSerialInRange(double serial)
{
    return serial > kDateSerialBelowRange && serial < kDateSerialAboveRange;
}

bool IsLeapYear(long year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int DaysInMonth(long year, int month)
{
    static constexpr int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && IsLeapYear(year) ? 29 : kDays[month - 1];
}

long DaySerial(long year, int month, int day) { return DaysFromCivil(year, month, day) - kDayZero; }

CivilDate CivilDateFromSerial(long dayNumber)
{
    long days = dayNumber + kDayZero;
    long era = (days >= 0 ? days : days - 146096) / 146097;
    long dayOfEra = days - era * 146097;
    long yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    long dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    long monthIndex = (5 * dayOfYear + 2) / 153;
    CivilDate date;
    date.day = static_cast<int>(dayOfYear - (153 * monthIndex + 2) / 5 + 1);
    date.month = static_cast<int>(monthIndex < 10 ? monthIndex + 3 : monthIndex - 9);
    date.year = yearOfEra + era * 400 + (date.month <= 2 ? 1 : 0);
    return date;
}

int WeekdayOfDay(long dayNumber)
{
    long shifted = (dayNumber + 6) % 7;
    return static_cast<int>(shifted < 0 ? shifted + 7 : shifted) + 1;
}

int WeekdayFrom(int weekday, int firstDay) { return (weekday - firstDay + 7) % 7 + 1; }

DayAndTime SplitDayAndTime(DATE value)
{
    double whole = std::trunc(value);
    return {static_cast<long>(whole), std::fabs(value - whole)};
}

DATE JoinDayAndTime(double day, double time) { return day >= 0 ? day + time : day - time; }

namespace {

// Whole seconds since the start of the day, at the nearest second.
long SecondsOfDay(DATE value, double rounded, double whole)
{
    double fraction = value >= 0 || rounded >= 0 ? rounded - whole : std::fabs(value - std::trunc(value)) + kHalfSecond;
    long seconds = static_cast<long>(fraction * 86400.0);
    return seconds >= 86400 ? 86399 : seconds;
}

} // namespace

DateParts SplitDate(DATE value)
{
    double rounded = value + kHalfSecond;
    double whole = std::floor(rounded);
    long seconds = SecondsOfDay(value, rounded, whole);
    DateParts parts;
    parts.dayNumber = static_cast<long>(whole);
    CivilDate civil = CivilDateFromSerial(parts.dayNumber);
    parts.year = civil.year;
    parts.month = civil.month;
    parts.day = civil.day;
    parts.dayOfYear = static_cast<int>(parts.dayNumber - DaySerial(civil.year, 1, 1)) + 1;
    parts.weekday = WeekdayOfDay(parts.dayNumber);
    parts.hour = static_cast<int>(seconds / 3600);
    parts.minute = static_cast<int>(seconds / 60 % 60);
    parts.second = static_cast<int>(seconds % 60);
    return parts;
}

namespace {

// First day of week 1 of year.
long FirstWeekStart(long year, int firstDay, FirstWeekRule rule)
{
    long januaryFirst = DaySerial(year, 1, 1);
    int offset = WeekdayFrom(WeekdayOfDay(januaryFirst), firstDay) - 1; // days of the week before 1 January
    long start = januaryFirst - offset;
    switch (rule) {
    case FirstWeekRule::kFirstFourDays:
        return 7 - offset >= 4 ? start : start + 7;
    case FirstWeekRule::kFirstFullWeek:
        return offset == 0 ? start : start + 7;
    case FirstWeekRule::kJanuaryFirst:
    default:
        return start;
    }
}

} // namespace

int WeekOfYear(const DateParts& parts, int firstDay, FirstWeekRule rule)
{
    // With the four-day rule the last days of December may already be week 1 of the next year.
    if (rule == FirstWeekRule::kFirstFourDays && parts.dayNumber >= FirstWeekStart(parts.year + 1, firstDay, rule))
        return 1;
    long start = FirstWeekStart(parts.year, firstDay, rule);
    if (parts.dayNumber < start)
        start = FirstWeekStart(parts.year - 1, firstDay, rule);
    return static_cast<int>((parts.dayNumber - start) / 7) + 1;
}

} // namespace brannoc
