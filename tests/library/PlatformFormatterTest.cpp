#include "library/PlatformFormatter.h"

#include "library/FormatValue.h"

#include "DateTestSupport.h"
#include "values/RaiseRecorder.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

using namespace test;

TEST(PlatformFormatterTest, FindsTheRoutinesOfTheLoadedLibrary)
{
    ASSERT_NE(PlatformFormatter::Find(), nullptr);
    SetPlatformFormatterEnabled(false);
    EXPECT_EQ(PlatformFormatter::Find(), nullptr);
    SetPlatformFormatterEnabled(true);
    EXPECT_NE(PlatformFormatter::Find(), nullptr);
}

// With every category trusted, the texts that could overrun the platform's fixed buffer still stay
// with the engine (handing them over would fault inside the platform on Wine).
TEST(PlatformFormatterTest, TextsNearThePlatformsBufferStayWithTheEngine)
{
    ASSERT_NE(PlatformFormatter::Find(), nullptr);
    SetPlatformDefectsOverride(static_cast<int>(PlatformDefect::kGeneralDateOverrun));
    RaiseRecorder raised;
    Bstr result;
    Variant text;
    ASSERT_TRUE(text.SetString(std::wstring(600, L'a')));
    EXPECT_TRUE(FormatValue(text, std::wstring_view(L">@"), 1, 1, result));
    EXPECT_EQ(result.View(), std::wstring(600, L'A'));
    Variant number;
    number.SetDouble(1e99);
    EXPECT_TRUE(FormatValue(number, std::wstring_view(L"0"), 1, 1, result));
    EXPECT_EQ(result.Length(), 100u);
    std::wstring quoted = L"\"" + std::wstring(150, L'x') + L"\"0";
    number.SetDouble(5);
    EXPECT_TRUE(FormatValue(number, std::wstring_view(quoted), 1, 1, result));
    EXPECT_EQ(result.View(), std::wstring(150, L'x') + L"5");
    Variant date;
    date.SetDate(At(2000, 1, 1));
    std::wstring days;
    for (int i = 0; i < 20; ++i)
        days += L"dddd ";
    EXPECT_TRUE(FormatValue(date, std::wstring_view(days), 1, 1, result));
    EXPECT_EQ(result.Length(), 20u * 9);
    // A short pattern of a trusted category goes to the platform.
    EXPECT_TRUE(FormatValue(date, std::wstring_view(L"yyyy-mm-dd"), 1, 1, result));
    EXPECT_EQ(result.View(), std::wstring_view(L"2000-01-01"));
    SetPlatformDefectsOverride(-1);
    EXPECT_EQ(raised.Count(), 0u);
}

// A second example of a rule of each category (unlike the probes'): when the platform's text differs
// from the language's, the probes must have found the category defective; Format gives the
// language's text either way.
struct CategoryRow {
    const char* name;
    PlatformDefect defect;
    Variant (*value)();
    const wchar_t* pattern;
    int firstDay;
    int firstWeek;
    const wchar_t* expected;
};

class PlatformCategoryTest : public ::testing::TestWithParam<CategoryRow> {};

TEST_P(PlatformCategoryTest, CategoriesTheProbesPassFormatRight)
{
    const CategoryRow& row = GetParam();
    const PlatformFormatter* platform = PlatformFormatter::Find();
    ASSERT_NE(platform, nullptr);
    RaiseRecorder raised;
    Variant value = row.value();
    std::wstring platformText;
    bool platformOk = platform->Format(value, row.pattern, row.firstDay, row.firstWeek, platformText);
    if (!platformOk || platformText != row.expected) {
        EXPECT_TRUE(platform->HasDefect(row.defect)) << row.name;
    }
    raised.Reset();
    Bstr text;
    ASSERT_TRUE(FormatValue(value, std::wstring_view(row.pattern), row.firstDay, row.firstWeek, text)) << row.name;
    EXPECT_EQ(text.View(), std::wstring_view(row.expected)) << row.name;
    EXPECT_EQ(raised.Count(), 0u) << row.name;
}

Variant Number(double value) { Variant v; v.SetDouble(value); return v; }
Variant DateOf(DATE value) { Variant v; v.SetDate(value); return v; }
Variant Text(const wchar_t* value) { Variant v; (void)v.SetString(std::wstring_view(value)); return v; }

INSTANTIATE_TEST_SUITE_P(
    Categories, PlatformCategoryTest,
    ::testing::Values(
        CategoryRow{"text keeps its case", PlatformDefect::kStringPatterns, [] { return Text(L"MiXeD"); },
                    L"@@@@@@@", 1, 1, L"  MiXeD"},
        CategoryRow{"week of the year", PlatformDefect::kDatePatterns, [] { return DateOf(At(2000, 12, 31)); }, L"ww",
                    1, 1, L"54"},
        CategoryRow{"weekday from Saturday", PlatformDefect::kDatePatterns, [] { return DateOf(At(2000, 1, 7)); },
                    L"w", 7, 1, L"7"},
        CategoryRow{"general date followed by text", PlatformDefect::kGeneralDateOverrun,
                    [] { return DateOf(At(2000, 1, 1)); }, L"c\" - ok\"", 1, 1, L"1/1/2000 - ok"},
        CategoryRow{"twelve-hour clock", PlatformDefect::kDatePatterns, [] { return DateOf(At(2000, 1, 1, 23, 5)); },
                    L"hh:nn AM/PM", 1, 1, L"11:05 PM"},
        CategoryRow{"thousands scaling", PlatformDefect::kNumberPatterns, [] { return Number(987654321); },
                    L"#,##0,,", 1, 1, L"988"},
        CategoryRow{"null section", PlatformDefect::kNumberPatterns, [] { Variant v; v.SetNull(); return v; },
                    L"#;#;#;\"none\"", 1, 1, L"none"},
        CategoryRow{"sign before text", PlatformDefect::kNumberPatterns, [] { return Number(-2.5); }, L"\"x\"0.0", 1,
                    1, L"-x2.5"},
        CategoryRow{"date as number", PlatformDefect::kNumberPatterns, [] { return DateOf(2.75); }, L"0.0", 1, 1,
                    L"2.8"},
        CategoryRow{"empty as zero", PlatformDefect::kNumberPatterns, [] { return Variant(); }, L"0", 1, 1, L"0"},
        CategoryRow{"rounding up to one", PlatformDefect::kNumberPatterns, [] { return Number(0.995); }, L"0.00", 1,
                    1, L"1.00"},
        CategoryRow{"no whole digit codes", PlatformDefect::kNumberPatterns, [] { return Number(1234.5); }, L".0", 1,
                    1, L"1234.5"}));

} // namespace
} // namespace brannoc
