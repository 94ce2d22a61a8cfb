#include "library/DateMath.h"

#include "DateTestSupport.h"
#include "values/RaiseRecorder.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

using namespace test;

DateInterval Interval(const wchar_t* code)
{
    DateInterval interval{};
    EXPECT_TRUE(ParseDateInterval(code, interval)) << testing::PrintToString(std::wstring(code));
    return interval;
}

TEST(DateIntervalTest, ReadsTheTenCodesWithoutRegardToCase)
{
    const wchar_t* codes[] = {L"yyyy", L"q", L"m", L"y", L"d", L"w", L"ww", L"h", L"n", L"s"};
    for (int i = 0; i < 10; ++i) {
        DateInterval interval{};
        ASSERT_TRUE(ParseDateInterval(codes[i], interval));
        EXPECT_EQ(static_cast<int>(interval), i);
        EXPECT_EQ(DateIntervalCode(interval), codes[i]);
    }
    DateInterval interval{};
    EXPECT_TRUE(ParseDateInterval(L"YYYY", interval));
    EXPECT_EQ(interval, DateInterval::kYear);
    for (const wchar_t* bad : {L"", L"yy", L"yyy", L"www", L"mm", L"x", L"d ", L"hh"})
        EXPECT_FALSE(ParseDateInterval(bad, interval)) << testing::PrintToString(std::wstring(bad));
}

// ---- AddToDate ----

struct AddRow {
    const char* name;
    const wchar_t* interval;
    double number;
    DATE date;
    DATE expected; // ignored when error is set
    long error;
};

class AddToDateTest : public ::testing::TestWithParam<AddRow> {};

TEST_P(AddToDateTest, AddsOrRaises)
{
    const AddRow& row = GetParam();
    RaiseRecorder raised;
    DATE result = 0;
    bool ok = AddToDate(Interval(row.interval), row.number, row.date, result);
    ASSERT_EQ(ok, row.error == 0) << row.name;
    EXPECT_EQ(raised.Last(), row.error) << row.name;
    if (ok) {
        EXPECT_EQ(DateText(result), DateText(row.expected)) << row.name;
    }
}

INSTANTIATE_TEST_SUITE_P(
    MonthsKeepTheTimeAndClampTheDay, AddToDateTest,
    ::testing::Values(
        AddRow{"31 January 2024 plus a month", L"m", 1, At(2024, 1, 31), At(2024, 2, 29), 0},
        AddRow{"31 January 2001 plus a month", L"m", 1, At(2001, 1, 31), At(2001, 2, 28), 0},
        AddRow{"31 March minus a month", L"m", -1, At(2024, 3, 31), At(2024, 2, 29), 0},
        AddRow{"29 February plus a year", L"yyyy", 1, At(2024, 2, 29), At(2025, 2, 28), 0},
        AddRow{"30 November plus a quarter", L"q", 1, At(2000, 11, 30), At(2001, 2, 28), 0},
        AddRow{"twelve months are a year", L"m", 12, At(1999, 12, 15), At(2000, 12, 15), 0},
        AddRow{"minus thirteen months", L"m", -13, At(2000, 1, 15), At(1998, 12, 15), 0},
        AddRow{"the time of day is kept", L"m", 1, At(2000, 1, 31, 10, 30, 15), At(2000, 2, 29, 10, 30, 15), 0}));

INSTANTIATE_TEST_SUITE_P(
    DaysWeeksAndTimes, AddToDateTest,
    ::testing::Values(
        AddRow{"two weeks are fourteen days", L"ww", 2, At(2000, 1, 1), At(2000, 1, 15), 0},
        AddRow{"1.9 days are one day", L"d", 1.9, At(2000, 1, 1), At(2000, 1, 2), 0},
        AddRow{"-1.5 days are two days back", L"d", -1.5, At(2000, 1, 1), At(1999, 12, 30), 0},
        AddRow{"y adds days", L"y", 3, At(2000, 12, 30), At(2001, 1, 2), 0},
        AddRow{"w adds days", L"w", 3, At(2000, 1, 1), At(2000, 1, 4), 0},
        AddRow{"25 hours", L"h", 25, At(2000, 1, 1, 6), At(2000, 1, 2, 7), 0},
        AddRow{"90 minutes", L"n", 90, At(2000, 1, 1, 23), At(2000, 1, 2, 0, 30), 0},
        AddRow{"one second back over midnight", L"s", -1, At(2000, 1, 1), At(1999, 12, 31, 23, 59, 59), 0}));

INSTANTIATE_TEST_SUITE_P(
    OutOfRange, AddToDateTest,
    ::testing::Values(AddRow{"past the year 9999", L"yyyy", 10000, At(2000, 1, 1), 0, 10062},
                      AddRow{"a month past December 9999", L"m", 1, At(9999, 12, 1), 0, 10062},
                      AddRow{"before the year 100", L"d", -1, At(100, 1, 1), 0, 10062},
                      AddRow{"a count beyond Long", L"s", 3e9, At(2000, 1, 1), 0, 10062}));

// ---- DateDifference ----

struct DiffRow {
    const char* name;
    const wchar_t* interval;
    DATE first;
    DATE second;
    LONG expected;
};

class DateDifferenceTest : public ::testing::TestWithParam<DiffRow> {};

TEST_P(DateDifferenceTest, CountsBoundariesAndNegatesWhenExchanged)
{
    const DiffRow& row = GetParam();
    RaiseRecorder raised;
    LONG forward = 0;
    LONG backward = 0;
    ASSERT_TRUE(DateDifference(Interval(row.interval), row.first, row.second, forward)) << row.name;
    ASSERT_TRUE(DateDifference(Interval(row.interval), row.second, row.first, backward)) << row.name;
    EXPECT_EQ(forward, row.expected) << row.name;
    EXPECT_EQ(backward, -row.expected) << row.name;
    EXPECT_EQ(raised.Count(), 0u);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DateDifferenceTest,
    ::testing::Values(
        DiffRow{"years across New Year", L"yyyy", At(2000, 12, 31), At(2001, 1, 1), 1},
        DiffRow{"years within a year", L"yyyy", At(2000, 1, 1), At(2000, 12, 31), 0},
        DiffRow{"quarter 31 March to 1 April", L"q", At(2000, 3, 31), At(2000, 4, 1), 0},
        DiffRow{"quarter 30 November to 1 February", L"q", At(2000, 11, 30), At(2001, 2, 1), 1},
        DiffRow{"quarter January to April", L"q", At(2000, 1, 1), At(2000, 4, 1), 1},
        DiffRow{"months 31 January to 1 February", L"m", At(2000, 1, 31), At(2000, 2, 1), 1},
        DiffRow{"months across years", L"m", At(1999, 11, 15), At(2001, 2, 1), 15},
        DiffRow{"days 23:59 to 00:01", L"d", At(2000, 1, 1, 23, 59), At(2000, 1, 2, 0, 1), 1},
        DiffRow{"day of year counts days", L"y", At(2000, 1, 1, 23, 59), At(2000, 1, 2, 0, 1), 1},
        DiffRow{"days within one day", L"d", At(2000, 1, 1, 0, 1), At(2000, 1, 1, 23, 59), 0},
        DiffRow{"w Saturday to Sunday", L"w", At(2000, 1, 1), At(2000, 1, 2), 0},
        DiffRow{"ww Saturday to Sunday", L"ww", At(2000, 1, 1), At(2000, 1, 2), 1},
        DiffRow{"w fourteen days", L"w", At(2000, 1, 1), At(2000, 1, 15), 2},
        DiffRow{"w thirteen days", L"w", At(2000, 1, 1), At(2000, 1, 14), 1},
        DiffRow{"ww Sunday to Saturday", L"ww", At(2000, 1, 2), At(2000, 1, 8), 0},
        DiffRow{"ww Saturday to the Sunday a week later", L"ww", At(2000, 1, 1), At(2000, 1, 9), 2},
        DiffRow{"hours 23:59 to 00:01", L"h", At(2000, 1, 1, 23, 59), At(2000, 1, 2, 0, 1), 1},
        DiffRow{"minutes 23:59 to 00:01", L"n", At(2000, 1, 1, 23, 59), At(2000, 1, 2, 0, 1), 2},
        DiffRow{"seconds 23:59 to 00:01", L"s", At(2000, 1, 1, 23, 59), At(2000, 1, 2, 0, 1), 120},
        DiffRow{"seconds over a day", L"s", At(2000, 1, 1), At(2000, 1, 2), 86400},
        DiffRow{"same date", L"d", At(2000, 1, 1), At(2000, 1, 1), 0}));

TEST(DateDifferenceTest, SecondsBeyondLongRaiseOverflow)
{
    RaiseRecorder raised;
    LONG result = 0;
    EXPECT_FALSE(DateDifference(DateInterval::kSecond, At(1900, 1, 1), At(2000, 1, 1), result));
    EXPECT_EQ(raised.Last(), 10062);
}

// ---- PartOfDate ----

struct PartRow {
    const wchar_t* interval;
    DATE date;
    int expected;
};

class PartOfDateTest : public ::testing::TestWithParam<PartRow> {};

TEST_P(PartOfDateTest, GivesThePart)
{
    const PartRow& row = GetParam();
    EXPECT_EQ(PartOfDate(Interval(row.interval), row.date), row.expected)
        << testing::PrintToString(std::wstring(row.interval)) << " of " << DateText(row.date);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, PartOfDateTest,
    ::testing::Values(PartRow{L"yyyy", At(2000, 12, 31, 23, 59, 59), 2000}, PartRow{L"q", At(2000, 3, 31), 1},
                      PartRow{L"q", At(2000, 4, 1), 2}, PartRow{L"q", At(2000, 12, 1), 4},
                      PartRow{L"m", At(2000, 7, 4), 7}, PartRow{L"y", At(2000, 12, 31), 366},
                      PartRow{L"d", At(2000, 7, 4), 4}, PartRow{L"w", At(2000, 1, 1), 7},
                      PartRow{L"w", At(2000, 1, 2), 1}, PartRow{L"ww", At(2000, 1, 1), 1},
                      PartRow{L"ww", At(2000, 1, 2), 2}, PartRow{L"ww", At(2000, 12, 31), 54},
                      PartRow{L"h", At(2000, 1, 1, 13, 45, 30), 13}, PartRow{L"n", At(2000, 1, 1, 13, 45, 30), 45},
                      PartRow{L"s", At(2000, 1, 1, 13, 45, 30), 30},
                      PartRow{L"s", At(2000, 1, 1, 12) + 59.75 / 86400, 0},
                      PartRow{L"n", At(2000, 1, 1, 12) + 59.75 / 86400, 1}));

// ---- DateFromParts and TimeFromParts ----

struct SerialRow {
    const char* name;
    long a;
    long b;
    long c;
    DATE expected;
    long error;
};

class DateFromPartsTest : public ::testing::TestWithParam<SerialRow> {};

TEST_P(DateFromPartsTest, NormalisesMonthsAndDays)
{
    const SerialRow& row = GetParam();
    RaiseRecorder raised;
    DATE result = 0;
    ASSERT_EQ(DateFromParts(row.a, row.b, row.c, result), row.error == 0) << row.name;
    EXPECT_EQ(raised.Last(), row.error) << row.name;
    if (row.error == 0) {
        EXPECT_EQ(result, row.expected) << row.name << ": " << DateText(result);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DateFromPartsTest,
    ::testing::Values(SerialRow{"30 February 2000", 2000, 2, 30, At(2000, 3, 1), 0},
                      SerialRow{"month 13 of 1999", 1999, 13, 1, At(2000, 1, 1), 0},
                      SerialRow{"month 0", 2000, 0, 1, At(1999, 12, 1), 0},
                      SerialRow{"month -12", 2000, -12, 1, At(1998, 12, 1), 0},
                      SerialRow{"day 0", 2000, 1, 0, At(1999, 12, 31), 0},
                      SerialRow{"day 35 of January", 2000, 1, 35, At(2000, 2, 4), 0},
                      SerialRow{"day -1", 2000, 3, -1, At(2000, 2, 28), 0},
                      SerialRow{"two-digit year 99", 99, 1, 1, At(1999, 1, 1), 0},
                      SerialRow{"two-digit year 29", 29, 1, 1, At(2029, 1, 1), 0},
                      SerialRow{"two-digit year 0", 0, 12, 31, At(2000, 12, 31), 0},
                      SerialRow{"year 100 is taken as it is", 100, 1, 1, At(100, 1, 1), 0},
                      SerialRow{"year 10000", 10000, 1, 1, 0, 10062},
                      SerialRow{"before year 100", 100, 1, 0, 0, 10062}));

class TimeFromPartsTest : public ::testing::TestWithParam<SerialRow> {};

TEST_P(TimeFromPartsTest, GivesTheFractionOfADay)
{
    const SerialRow& row = GetParam();
    RaiseRecorder raised;
    DATE result = 0;
    ASSERT_TRUE(TimeFromParts(row.a, row.b, row.c, result)) << row.name;
    EXPECT_DOUBLE_EQ(result, row.expected) << row.name;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, TimeFromPartsTest,
    ::testing::Values(SerialRow{"noon", 12, 0, 0, 0.5, 0}, SerialRow{"13:45:30", 13, 45, 30, 49530.0 / 86400, 0},
                      SerialRow{"90 minutes", 0, 90, 0, 1.5 / 24, 0},
                      SerialRow{"25 hours carry a day", 25, 0, 0, 1 + 1.0 / 24, 0},
                      SerialRow{"an hour before day 0 is 23:00 the day before", -1, 0, 0, -1 - 23.0 / 24, 0},
                      SerialRow{"-1 second", 0, 0, -1, -1 - 86399.0 / 86400, 0}));

TEST(DatePartOnlyTest, SplitsLikeThePlatform)
{
    EXPECT_EQ(DatePartOnly(36526.75), 36526.0);
    EXPECT_EQ(TimePartOnly(36526.75), 0.75);
    EXPECT_EQ(DatePartOnly(-1.25), -1.0);
    EXPECT_EQ(TimePartOnly(-1.25), 0.25);
}

} // namespace
} // namespace brannoc
