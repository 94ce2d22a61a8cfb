#include "library/DateFormatter.h"

#include "DateTestSupport.h"
#include "values/RaiseRecorder.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

using namespace test;

const DATE kAfternoon = At(2000, 1, 1, 13, 45, 30);
const DATE kMorning = At(2000, 1, 1, 9, 5, 7);

std::string Narrow(std::wstring_view text) { return std::string(text.begin(), text.end()); }

// ---- The locale's pictures: "y" a year code, "t"/"tt" the locale's marker, single quotes ----

struct PictureRow {
    const wchar_t* picture;
    DATE value;
    const char* expected;
};

class LocalePictureTest : public ::testing::TestWithParam<PictureRow> {};

TEST_P(LocalePictureTest, ExpandsLikeTheLocale)
{
    const PictureRow& row = GetParam();
    DatePicture picture;
    ASSERT_TRUE(ParseDatePicture(row.picture, PictureSyntax::kLocalePicture, picture));
    std::wstring text;
    ASSERT_TRUE(WriteDatePicture(picture, row.value, WeekRules{}, text));
    EXPECT_EQ(Narrow(text), row.expected) << Narrow(row.picture);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, LocalePictureTest,
    ::testing::Values(PictureRow{L"dddd, MMMM d, yyyy", kAfternoon, "Saturday, January 1, 2000"},
                      PictureRow{L"M/d/yyyy", kAfternoon, "1/1/2000"},
                      PictureRow{L"d/M/yy", kAfternoon, "1/1/00"},
                      PictureRow{L"y yy yyyy", At(2009, 1, 1), "9 09 2009"},
                      PictureRow{L"HH:mm:ss", kAfternoon, "13:45:30"},
                      PictureRow{L"h:mm:ss tt", kAfternoon, "1:45:30 PM"},
                      PictureRow{L"h:mm:ss tt", kMorning, "9:05:07 AM"},
                      PictureRow{L"h 't' t", kAfternoon, "1 t P"},
                      PictureRow{L"HH 'o''clock'", kAfternoon, "13 o'clock"},
                      PictureRow{L"'unterminated", kAfternoon, "unterminated"}));

// ---- User patterns: runs longer than a code, markers in the case written, the length limit ----

struct UserRow {
    const wchar_t* pattern;
    DATE value;
    const char* expected;
    long error;
};

class DateSectionTest : public ::testing::TestWithParam<UserRow> {};

TEST_P(DateSectionTest, WritesOrRaises)
{
    const UserRow& row = GetParam();
    RaiseRecorder raised;
    std::wstring text;
    bool ok = FormatDateSection(row.pattern, row.value, WeekRules{}, text);
    EXPECT_EQ(ok, row.error == 0) << Narrow(row.pattern);
    EXPECT_EQ(raised.Last(), row.error) << Narrow(row.pattern);
    if (ok) {
        EXPECT_EQ(Narrow(text), row.expected) << Narrow(row.pattern);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Runs, DateSectionTest,
    ::testing::Values(UserRow{L"yyy", kAfternoon, "001", 0}, UserRow{L"yyyyy", kAfternoon, "20001", 0},
                      UserRow{L"ddddddd", kAfternoon, "Saturday, January 1, 20001", 0},
                      UserRow{L"mmmmm", kAfternoon, "January1", 0}, UserRow{L"hhh", kAfternoon, "1313", 0},
                      UserRow{L"www", kAfternoon, "17", 0}, UserRow{L"DD/MM/YYYY", kAfternoon, "01/01/2000", 0},
                      UserRow{L"ttttt", kMorning, "9:05:07 AM", 0}, UserRow{L"t", kAfternoon, "", 10620},
                      UserRow{L"tttttt", kAfternoon, "", 10620}, UserRow{L"\"open", kAfternoon, "", 10620}));

INSTANTIATE_TEST_SUITE_P(
    Markers, DateSectionTest,
    ::testing::Values(UserRow{L"h Am/Pm", kMorning, "9 Am", 0}, UserRow{L"h Am/Pm", kAfternoon, "1 Pm", 0},
                      UserRow{L"h a/P", kMorning, "9 a", 0}, UserRow{L"h a/P", kAfternoon, "1 P", 0},
                      UserRow{L"hh ampm", At(2000, 1, 1), "12 AM", 0},
                      UserRow{L"hh:nn", At(2000, 1, 1), "00:00", 0},
                      UserRow{L"AM/PM h", kAfternoon, "PM 1", 0}));

TEST(DateSectionTest, OutputStopsAt255Characters)
{
    std::wstring pattern;
    for (int i = 0; i < 100; ++i)
        pattern += L"yyyy";
    std::wstring text;
    ASSERT_TRUE(FormatDateSection(pattern, kAfternoon, WeekRules{}, text));
    EXPECT_EQ(text.size(), 255u);
}

TEST(DatePictureTest, MarkersSwitchTheWholeSectionToTwelveHours)
{
    DatePicture picture;
    ASSERT_TRUE(ParseDatePicture(L"hh:nn", PictureSyntax::kUserPattern, picture));
    EXPECT_FALSE(picture.twelveHour);
    ASSERT_TRUE(ParseDatePicture(L"hh:nn A/P", PictureSyntax::kUserPattern, picture));
    EXPECT_TRUE(picture.twelveHour);
    EXPECT_TRUE(picture.Uses(DateCode::kMarkerAP));
    EXPECT_FALSE(picture.Uses(DateCode::kWeekOfYear));
}

} // namespace
} // namespace brannoc
