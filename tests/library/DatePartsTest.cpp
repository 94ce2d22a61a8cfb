#include "library/DateParts.h"

#include "DateTestSupport.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

using namespace test;

// ---- The calendar: serials and their dates both ways ----

struct CalendarRow {
    long year;
    int month;
    int day;
    long serial;
};

class CalendarTest : public ::testing::TestWithParam<CalendarRow> {};

TEST_P(CalendarTest, SerialAndDateAgree)
{
    const CalendarRow& row = GetParam();
    EXPECT_EQ(DaySerial(row.year, row.month, row.day), row.serial) << row.year << "-" << row.month << "-" << row.day;
    CivilDate civil = CivilDateFromSerial(row.serial);
    EXPECT_EQ(civil.year, row.year) << row.serial;
    EXPECT_EQ(civil.month, row.month) << row.serial;
    EXPECT_EQ(civil.day, row.day) << row.serial;
}

INSTANTIATE_TEST_SUITE_P(
    ProlepticGregorian, CalendarTest,
    ::testing::Values(CalendarRow{1899, 12, 30, 0}, CalendarRow{1899, 12, 31, 1}, CalendarRow{1900, 1, 1, 2},
                      CalendarRow{1899, 12, 29, -1}, CalendarRow{2000, 1, 1, 36526}, CalendarRow{1900, 3, 1, 61},
                      CalendarRow{2000, 2, 29, 36585}, CalendarRow{2000, 3, 1, 36586}, CalendarRow{100, 1, 1, -657434},
                      CalendarRow{9999, 12, 31, 2958465}, CalendarRow{1600, 2, 29, -109512}));

TEST(CalendarTest, LeapYearsFollowTheFourHundredYearRule)
{
    EXPECT_TRUE(IsLeapYear(2000));
    EXPECT_FALSE(IsLeapYear(1900));
    EXPECT_TRUE(IsLeapYear(2024));
    EXPECT_FALSE(IsLeapYear(2023));
    EXPECT_EQ(DaysInMonth(1900, 2), 28);
    EXPECT_EQ(DaysInMonth(2000, 2), 29);
    EXPECT_EQ(DaysInMonth(2001, 4), 30);
}

// ---- Parts of a date: half-second rounding, weekdays, values before day 0 ----

struct PartsRow {
    const char* name;
    DATE value;
    const char* text; // yyyy-mm-dd hh:nn:ss
    int weekday;
    int dayOfYear;
};

class DatePartsTest : public ::testing::TestWithParam<PartsRow> {};

TEST_P(DatePartsTest, SplitsAtTheNearestSecond)
{
    const PartsRow& row = GetParam();
    DateParts parts = SplitDate(row.value);
    EXPECT_EQ(DateText(row.value), row.text) << row.name;
    EXPECT_EQ(parts.weekday, row.weekday) << row.name;
    EXPECT_EQ(parts.dayOfYear, row.dayOfYear) << row.name;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DatePartsTest,
    ::testing::Values(
        PartsRow{"day zero is a Saturday", 0.0, "1899-12-30 00:00:00", 7, 364},
        PartsRow{"first of January 2000", At(2000, 1, 1), "2000-01-01 00:00:00", 7, 1},
        PartsRow{"59.75 seconds round to the next minute", At(2000, 1, 1, 12, 0, 0) + 59.75 / 86400,
                 "2000-01-01 12:01:00", 7, 1},
        PartsRow{"59.4 seconds stay", At(2000, 1, 1, 12, 0, 0) + 59.4 / 86400, "2000-01-01 12:00:59", 7, 1},
        PartsRow{"23:59:59.6 belongs to the next day", At(1999, 12, 31) + 86399.6 / 86400, "2000-01-01 00:00:00", 7,
                 1},
        PartsRow{"last day of a leap year", At(2000, 12, 31, 13, 45, 30), "2000-12-31 13:45:30", 1, 366},
        PartsRow{"a whole day before day 0", -1.0, "1899-12-29 00:00:00", 6, 363},
        PartsRow{"before day 0 the day is rounded down, the time is the fraction's size", -1.25,
                 "1899-12-28 06:00:00", 5, 362}));

// ---- Week of the year under each rule ----

struct WeekRow {
    DATE date;
    int firstDay;
    FirstWeekRule rule;
    int week;
};

class WeekOfYearTest : public ::testing::TestWithParam<WeekRow> {};

TEST_P(WeekOfYearTest, CountsWeeksByTheRule)
{
    const WeekRow& row = GetParam();
    EXPECT_EQ(WeekOfYear(SplitDate(row.date), row.firstDay, row.rule), row.week)
        << DateText(row.date) << " first day " << row.firstDay << " rule " << static_cast<int>(row.rule);
}

constexpr int kSunday = 1;
constexpr int kMonday = 2;

INSTANTIATE_TEST_SUITE_P(
    JanuaryFirst, WeekOfYearTest,
    ::testing::Values(WeekRow{At(2000, 1, 1), kSunday, FirstWeekRule::kJanuaryFirst, 1},
                      WeekRow{At(2000, 1, 2), kSunday, FirstWeekRule::kJanuaryFirst, 2},
                      WeekRow{At(2000, 12, 31), kSunday, FirstWeekRule::kJanuaryFirst, 54},
                      WeekRow{At(2000, 1, 2), kMonday, FirstWeekRule::kJanuaryFirst, 1},
                      WeekRow{At(2000, 1, 3), kMonday, FirstWeekRule::kJanuaryFirst, 2}));

INSTANTIATE_TEST_SUITE_P(
    FirstFourDays, WeekOfYearTest,
    ::testing::Values(WeekRow{At(2000, 1, 2), kMonday, FirstWeekRule::kFirstFourDays, 52},
                      WeekRow{At(2000, 1, 3), kMonday, FirstWeekRule::kFirstFourDays, 1},
                      WeekRow{At(2005, 1, 1), kMonday, FirstWeekRule::kFirstFourDays, 53},
                      WeekRow{At(2008, 12, 29), kMonday, FirstWeekRule::kFirstFourDays, 1},
                      WeekRow{At(2009, 12, 31), kMonday, FirstWeekRule::kFirstFourDays, 53},
                      WeekRow{At(2004, 1, 1), kSunday, FirstWeekRule::kFirstFourDays, 53},
                      WeekRow{At(2004, 1, 4), kSunday, FirstWeekRule::kFirstFourDays, 1}));

INSTANTIATE_TEST_SUITE_P(
    FirstFullWeek, WeekOfYearTest,
    ::testing::Values(WeekRow{At(2000, 1, 1), kSunday, FirstWeekRule::kFirstFullWeek, 52},
                      WeekRow{At(2000, 1, 2), kSunday, FirstWeekRule::kFirstFullWeek, 1},
                      WeekRow{At(2006, 1, 1), kSunday, FirstWeekRule::kFirstFullWeek, 1},
                      WeekRow{At(2006, 1, 1), kMonday, FirstWeekRule::kFirstFullWeek, 52},
                      WeekRow{At(2006, 1, 2), kMonday, FirstWeekRule::kFirstFullWeek, 1}));

TEST(WeekdayFromTest, CountsFromTheFirstDay)
{
    EXPECT_EQ(WeekdayFrom(1, kSunday), 1);
    EXPECT_EQ(WeekdayFrom(1, kMonday), 7);
    EXPECT_EQ(WeekdayFrom(2, kMonday), 1);
    EXPECT_EQ(WeekdayFrom(7, 7), 1);
    EXPECT_EQ(WeekdayFrom(6, 7), 7);
}

} // namespace
} // namespace brannoc
