#include "library/PlatformFormatter.h"

#include "library/FormatValue.h"

#include "DateTestSupport.h"
#include "RaiseRecorder.h"

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

// For each feature a second example, unlike the probe's: the platform's own text differs from the
// language's exactly when the probe found the feature defective, and Format gives the language's
// text either way.
struct FeatureRow {
    const char* name;
    PlatformDefect defect;
    Variant (*value)();
    const wchar_t* pattern;
    int firstDay;
    int firstWeek;
    const wchar_t* expected;
};

class PlatformFeatureTest : public ::testing::TestWithParam<FeatureRow> {};

TEST_P(PlatformFeatureTest, DefectiveFeaturesAreLeftToTheEngine)
{
    const FeatureRow& row = GetParam();
    const PlatformFormatter* platform = PlatformFormatter::Find();
    ASSERT_NE(platform, nullptr);
    RaiseRecorder raised;
    Variant value = row.value();
    std::wstring platformText;
    bool platformOk = platform->Format(value, row.pattern, row.firstDay, row.firstWeek, platformText);
    EXPECT_EQ(platform->HasDefect(row.defect), !platformOk || platformText != row.expected) << row.name;
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
    Features, PlatformFeatureTest,
    ::testing::Values(
        FeatureRow{"text keeps its case", PlatformDefect::kStringPatterns, [] { return Text(L"MiXeD"); }, L"@@@@@@@",
                   1, 1, L"  MiXeD"},
        FeatureRow{"week of the year", PlatformDefect::kWeekCodes, [] { return DateOf(At(2000, 12, 31)); }, L"ww", 1,
                   1, L"54"},
        FeatureRow{"weekday from Saturday", PlatformDefect::kWeekCodes, [] { return DateOf(At(2000, 1, 7)); }, L"w", 7,
                   1, L"7"},
        FeatureRow{"general date followed by text", PlatformDefect::kGeneralDateCode,
                   [] { return DateOf(At(2000, 1, 1)); }, L"c\" - ok\"", 1, 1, L"1/1/2000 - ok"},
        FeatureRow{"twelve-hour clock", PlatformDefect::kTwelveHourMarkers,
                   [] { return DateOf(At(2000, 1, 1, 23, 5)); }, L"hh:nn AM/PM", 1, 1, L"11:05 PM"},
        FeatureRow{"thousands scaling", PlatformDefect::kScalingCommas, [] { return Number(987654321); },
                   L"#,##0,,", 1, 1, L"988"},
        FeatureRow{"null section", PlatformDefect::kNullSection, [] { Variant v; v.SetNull(); return v; },
                   L"#;#;#;\"none\"", 1, 1, L"none"},
        FeatureRow{"sign before text", PlatformDefect::kSignPlacement, [] { return Number(-2.5); }, L"\"x\"0.0", 1, 1,
                   L"-x2.5"},
        FeatureRow{"date as number", PlatformDefect::kDateAsNumber, [] { return DateOf(2.75); }, L"0.0", 1, 1,
                   L"2.8"},
        FeatureRow{"empty as zero", PlatformDefect::kEmptyAsZero, [] { return Variant(); }, L"0", 1, 1, L"0"}));

} // namespace
} // namespace brannoc
