#pragma once
// The calendar under the Date kind: serial day numbers counted from 30 December 1899 (day 0) on the
// proleptic Gregorian calendar, and the parts of a date value (year to second, weekday, day of year)
// as the date functions and the formatter read them.
#include <windows.h>
#include <wtypes.h>

namespace brannoc {

// The Date values the platform accepts lie strictly between these two: 1 January 100 to the end of
// 31 December 9999 (a value before day 0 keeps its time of day in its fraction).
constexpr double kDateSerialBelowRange = -657435.0;
constexpr double kDateSerialAboveRange = 2958466.0;

// True when serial lies in the platform's Date range.
bool IsDateSerialInRange(double serial);

// Day number of a calendar date; month and day must be normal (1 to 12, 1 to 31).
long DaySerial(long year, int month, int day);

struct CivilDate {
    long year = 0;
    int month = 0;
    int day = 0;
};

CivilDate CivilDateFromSerial(long dayNumber);

bool IsLeapYear(long year);
int DaysInMonth(long year, int month);

// The parts of a date value, taken at the nearest whole second (half a second is added first, so
// 23:59:59.6 belongs to the next day); the day number is that value rounded down. Before day 0 the
// platform keeps the time of day as the magnitude of the fraction (-1.25 is 6:00 on the day before
// day 0), so the hour, minute and second are taken from that magnitude.
struct DateParts {
    long dayNumber = 0;
    long year = 0;
    int month = 0;
    int day = 0;
    int dayOfYear = 0;
    int weekday = 0; // 1 Sunday to 7 Saturday
    int hour = 0;
    int minute = 0;
    int second = 0;
};

DateParts SplitDate(DATE value);

// A date value as the platform encodes it: the whole part toward zero is the day, the magnitude of
// the fraction the time of day; and back.
struct DayAndTime {
    long day = 0;
    double time = 0;
};
DayAndTime SplitDayAndTime(DATE value);
DATE JoinDayAndTime(double day, double time);

// Weekday 1 to 7 of a day number, 1 being Sunday.
int WeekdayOfDay(long dayNumber);

// Weekday counted from firstDay (1 Sunday to 7 Saturday): 1 for firstDay itself.
int WeekdayFrom(int weekday, int firstDay);

// Rules for the first week of a year (the type library's VbFirstWeekOfYear values).
enum class FirstWeekRule : int { kJanuaryFirst = 1, kFirstFourDays = 2, kFirstFullWeek = 3 };

// The week of the year that holds the date, weeks starting on firstDay (1 Sunday to 7 Saturday) and
// week 1 chosen by rule; days before week 1 belong to the last week of the year before, and with the
// four-day rule the last days of December that start the next year's week 1 are week 1.
int WeekOfYear(const DateParts& parts, int firstDay, FirstWeekRule rule);

} // namespace brannoc
