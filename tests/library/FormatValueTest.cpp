#include "library/FormatValue.h"

#include "library/PlatformFormatter.h"

#include "DateTestSupport.h"
#include "values/RaiseRecorder.h"

#include <gtest/gtest.h>

#include <optional>

namespace brannoc {
namespace {

using namespace test;

// Every row runs twice: through the platform's routines (with the engine's corrections) and through
// the engine's own formatter alone; both must give the language's text.
enum class Path { kPlatform, kOwn };

Variant Number(double value) { Variant v; v.SetDouble(value); return v; }
Variant Whole(LONG value) { Variant v; v.SetLong(value); return v; }
Variant DateValue(DATE value) { Variant v; v.SetDate(value); return v; }
Variant Text(const wchar_t* value) { Variant v; (void)v.SetString(std::wstring_view(value)); return v; }
Variant Truth(bool value) { Variant v; v.SetBoolean(value); return v; }
Variant NullValue() { Variant v; v.SetNull(); return v; }
Variant EmptyValue() { return Variant(); }
Variant ErrorValue() { Variant v; v.SetError(static_cast<SCODE>(0x80040000 + 5)); return v; }
Variant ArrayValue()
{
    Variant v;
    v.SetArray(SafeArrayCreateVector(VT_I2, 0, 2), VT_I2);
    return v;
}

struct FormatRow {
    const char* name;
    Variant (*value)();
    const wchar_t* form; // null: no form
    const wchar_t* expected;
    long error = 0;
    int firstDay = 1;
    int firstWeek = 1;
};

std::string Narrow(std::wstring_view text)
{
    std::string narrow;
    for (wchar_t c : text)
        narrow.push_back(c < 128 ? static_cast<char>(c) : '?');
    return narrow;
}

class FormatValueTest : public ::testing::TestWithParam<std::tuple<FormatRow, Path>> {
protected:
    void TearDown() override { SetPlatformFormatterEnabled(true); }
};

TEST_P(FormatValueTest, WritesTheLanguagesText)
{
    const auto& [row, path] = GetParam();
    bool weekArguments = row.firstDay != 1 || row.firstWeek != 1;
    SetPlatformFormatterEnabled(path == Path::kPlatform);
    if (path == Path::kPlatform) {
        ASSERT_NE(PlatformFormatter::Find(), nullptr);
    }
    RaiseRecorder raised;
    Bstr result;
    std::optional<std::wstring_view> form;
    if (row.form)
        form = row.form;
    bool ok = FormatValue(row.value(), form, row.firstDay, row.firstWeek, result);
    // Without the platform's routines, week arguments other than 1 are refused.
    long expectedError = path == Path::kOwn && weekArguments ? 10620 : row.error;
    EXPECT_EQ(ok, expectedError == 0) << row.name;
    EXPECT_EQ(raised.Last(), expectedError) << row.name;
    if (ok && expectedError == 0) {
        EXPECT_EQ(Narrow(result.View()), Narrow(row.expected)) << row.name;
    }
}

std::string RowName(const ::testing::TestParamInfo<std::tuple<FormatRow, Path>>& info)
{
    std::string name = std::get<0>(info.param).name;
    for (char& c : name)
        c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    return name + (std::get<1>(info.param) == Path::kPlatform ? "_platform" : "_own");
}

#define FORMAT_ROWS(suite, ...)                                                                                    \
    INSTANTIATE_TEST_SUITE_P(suite, FormatValueTest,                                                               \
                             ::testing::Combine(::testing::Values(__VA_ARGS__),                                    \
                                                ::testing::Values(Path::kPlatform, Path::kOwn)),                   \
                             RowName)

FORMAT_ROWS(WithoutForm,
            FormatRow{"empty", EmptyValue, nullptr, L""},
            FormatRow{"null", NullValue, nullptr, L""},
            FormatRow{"boolean", [] { return Truth(true); }, nullptr, L"True"},
            FormatRow{"numeric_text", [] { return Text(L"007"); }, nullptr, L"7"},
            FormatRow{"plain_text", [] { return Text(L"abc"); }, nullptr, L"abc"},
            FormatRow{"double", [] { return Number(1.5); }, nullptr, L"1.5"},
            FormatRow{"date", [] { return DateValue(At(2000, 1, 1)); }, nullptr, L"1/1/2000"},
            FormatRow{"empty_form", [] { return Number(2.25); }, L"", L"2.25"},
            FormatRow{"error_value", ErrorValue, nullptr, L"", 10080});

FORMAT_ROWS(ValuesWithoutText,
            FormatRow{"error_number_pattern", ErrorValue, L"0", L"", 10080},
            FormatRow{"error_date_pattern", ErrorValue, L"yyyy", L"", 10080},
            FormatRow{"error_string_pattern", ErrorValue, L"@", L"", 10080},
            FormatRow{"array_number_pattern", ArrayValue, L"0.00", L"", 10080},
            FormatRow{"array_named_format", ArrayValue, L"Standard", L"", 10080});

FORMAT_ROWS(NamedNumberFormats,
            FormatRow{"general_number", [] { return Number(1234.5); }, L"General Number", L"1234.5"},
            FormatRow{"general_number_text", [] { return Text(L"1e3"); }, L"General Number", L"1000"},
            FormatRow{"general_number_null", NullValue, L"general number", L""},
            FormatRow{"currency", [] { return Number(1234.5); }, L"Currency", L"$1,234.50"},
            FormatRow{"currency_negative", [] { return Number(-1234.5); }, L"Currency", L"($1,234.50)"},
            FormatRow{"currency_zero", [] { return Number(0); }, L"Currency", L"$0.00"},
            FormatRow{"fixed", [] { return Number(1234.5); }, L"Fixed", L"1234.50"},
            FormatRow{"fixed_rounds_half_up", [] { return Number(0.125); }, L"Fixed", L"0.13"},
            FormatRow{"standard", [] { return Number(1234.5); }, L"Standard", L"1,234.50"},
            FormatRow{"standard_lower_case_name", [] { return Number(1234567.891); }, L"standard", L"1,234,567.89"},
            FormatRow{"percent", [] { return Number(0.5); }, L"Percent", L"50.00%"},
            FormatRow{"scientific", [] { return Number(1234.5); }, L"Scientific", L"1.23E+03"},
            FormatRow{"scientific_small", [] { return Number(0.000123); }, L"Scientific", L"1.23E-04"},
            FormatRow{"yes_no_zero", [] { return Number(0); }, L"Yes/No", L"No"},
            FormatRow{"yes_no_text_zero", [] { return Text(L"0"); }, L"Yes/No", L"No"},
            FormatRow{"yes_no_text", [] { return Text(L"abc"); }, L"Yes/No", L"abc"},
            FormatRow{"yes_no_empty", EmptyValue, L"Yes/No", L""},
            FormatRow{"on_off_minus_one", [] { return Number(-1); }, L"On/Off", L"On"},
            FormatRow{"on_off_zero", [] { return Whole(0); }, L"ON/OFF", L"Off"},
            FormatRow{"true_false_null", NullValue, L"True/False", L""},
            FormatRow{"true_false_three", [] { return Whole(3); }, L"True/False", L"True"},
            FormatRow{"true_false_boolean", [] { return Truth(false); }, L"True/False", L"False"});

FORMAT_ROWS(NamedDateFormats,
            FormatRow{"general_date", [] { return DateValue(At(2000, 1, 1, 13, 45, 30)); }, L"General Date",
                      L"1/1/2000 1:45:30 PM"},
            FormatRow{"general_date_no_time", [] { return DateValue(At(2000, 1, 1)); }, L"General Date", L"1/1/2000"},
            FormatRow{"general_date_time_only", [] { return DateValue(0.5); }, L"General Date", L"12:00:00 PM"},
            FormatRow{"long_date", [] { return DateValue(At(2000, 1, 1, 13, 45, 30)); }, L"Long Date",
                      L"Saturday, January 1, 2000"},
            FormatRow{"medium_date", [] { return DateValue(At(2000, 1, 1)); }, L"Medium Date", L"", 10620},
            FormatRow{"short_date", [] { return DateValue(At(2000, 1, 1, 13, 45, 30)); }, L"Short Date", L"1/1/2000"},
            FormatRow{"long_time", [] { return DateValue(At(2000, 1, 1, 13, 45, 30)); }, L"Long Time", L"1:45:30 PM"},
            FormatRow{"medium_time", [] { return DateValue(At(2000, 1, 1, 13, 45, 30)); }, L"Medium Time", L"01:45 PM"},
            FormatRow{"medium_time_midnight", [] { return DateValue(At(2000, 1, 1)); }, L"medium time", L"12:00 AM"},
            FormatRow{"short_time", [] { return DateValue(At(2000, 1, 1, 13, 45, 30)); }, L"Short Time", L"13:45"},
            FormatRow{"short_date_of_text", [] { return Text(L"7/4/1999"); }, L"Short Date", L"7/4/1999"},
            FormatRow{"short_date_of_number", [] { return Whole(36526); }, L"Short Date", L"1/1/2000"});

FORMAT_ROWS(NumberPatterns,
            FormatRow{"grouping", [] { return Number(1234.5); }, L"#,##0.00", L"1,234.50"},
            FormatRow{"grouping_small", [] { return Number(100); }, L"#,###", L"100"},
            FormatRow{"grouping_thousand", [] { return Number(1000); }, L"#,###", L"1,000"},
            FormatRow{"hash_zero_is_empty", [] { return Number(0); }, L"#,###", L""},
            FormatRow{"scaling_one_comma", [] { return Whole(1234567); }, L"#,##0,", L"1,235"},
            FormatRow{"scaling_two_commas", [] { return Whole(1234567); }, L"#,##0,,", L"1"},
            FormatRow{"scaling_without_grouping", [] { return Whole(1234567); }, L"0,", L"1235"},
            FormatRow{"comma_before_digits_is_text", [] { return Number(5); }, L",0", L",5"},
            FormatRow{"negative_second_section", [] { return Number(-5); }, L"0;(0)", L"(5)"},
            FormatRow{"negative_first_section", [] { return Number(-5); }, L"0", L"-5"},
            FormatRow{"negative_sign_before_text", [] { return Number(-5); }, L"\\$0", L"-$5"},
            FormatRow{"negative_empty_second_section", [] { return Number(-5); }, L"0.00;;\"z\"", L"-5.00"},
            FormatRow{"zero_section", [] { return Number(0); }, L"0;(0);\"zero\"", L"zero"},
            FormatRow{"zero_section_only_for_zero", [] { return Number(0.001); }, L"0.00;-0.00;\"z\"", L"0.00"},
            FormatRow{"null_section", NullValue, L"0;0;0;\"null\"", L"null"},
            FormatRow{"null_without_section", NullValue, L"0.00", L""},
            FormatRow{"half_up", [] { return Number(2.675); }, L"0.00", L"2.68"},
            FormatRow{"carry", [] { return Number(99.999); }, L"0.00", L"100.00"},
            FormatRow{"negative_rounds_to_zero", [] { return Number(-0.4); }, L"0", L"-0"},
            FormatRow{"hash_drops_zero", [] { return Number(0.4); }, L"#", L""},
            FormatRow{"hash_fraction", [] { return Number(0.4); }, L"#.##", L".4"},
            FormatRow{"hash_fraction_trailing", [] { return Number(1.5); }, L"0.##", L"1.5"},
            FormatRow{"point_stays", [] { return Number(12); }, L"000.##", L"012."},
            FormatRow{"hash_before_last_zero", [] { return Number(0.5); }, L"#.#0", L".50"},
            FormatRow{"hash_before_last_zero_small", [] { return Number(0.05); }, L"#.#0", L".05"},
            FormatRow{"hash_after_first_zero", [] { return Number(5); }, L"#0#", L"05"},
            FormatRow{"exponent_plus", [] { return Number(1234.5); }, L"0.00E+00", L"1.23E+03"},
            FormatRow{"exponent_minus_positive", [] { return Number(1234.5); }, L"0.00e-00", L"1.23e03"},
            FormatRow{"exponent_minus_negative", [] { return Number(0.0001234); }, L"0.00E-00", L"1.23E-04"},
            FormatRow{"exponent_carry", [] { return Number(9.9996); }, L"0.00E+00", L"1.00E+01"},
            FormatRow{"exponent_zero", [] { return Number(0); }, L"0.00E+00", L"0.00E+00"},
            FormatRow{"exponent_one_digit", [] { return Number(123); }, L"0E+0", L"1E+2"},
            FormatRow{"percent", [] { return Number(5); }, L"0%", L"500%"},
            FormatRow{"percent_after_text", [] { return Number(5); }, L"0.0 %", L"500.0 %"},
            FormatRow{"quoted_text", [] { return Number(5); }, L"\"Val: \"0", L"Val: 5"},
            FormatRow{"numeric_text", [] { return Text(L"12.5"); }, L"0.00", L"12.50"},
            FormatRow{"other_text", [] { return Text(L"abc"); }, L"0.00", L"abc"},
            FormatRow{"boolean", [] { return Truth(true); }, L"0", L"-1"},
            FormatRow{"empty_is_zero", EmptyValue, L"0.00", L"0.00"},
            FormatRow{"date_as_number", [] { return DateValue(36526.5); }, L"0.00", L"36526.50"},
            FormatRow{"more_digits_than_codes", [] { return Number(1234); }, L"00", L"1234"},
            FormatRow{"text_between_digits", [] { return Number(123); }, L"0-0", L"12-3"},
            FormatRow{"no_whole_codes", [] { return Number(12.5); }, L".00", L"12.50"},
            FormatRow{"percent_before_digits", [] { return Number(5); }, L"%0", L"%5"},
            FormatRow{"grouping_with_exponent", [] { return Number(5); }, L"#,##0.00E+00", L"5,000.00E-03"},
            FormatRow{"exponent_hash_digits", [] { return Number(1); }, L"0E+#", L"1E+"},
            FormatRow{"exponent_without_digit_code", [] { return Number(5); }, L"E+0", L"", 10620},
            FormatRow{"exponent_without_sign", [] { return Number(5); }, L"0E0", L"", 10620},
            FormatRow{"comma_after_point", [] { return Number(5); }, L"0.0,", L"", 10620},
            FormatRow{"too_many_digits", [] { return Number(1e200); }, L"0", L"", 10620},
            FormatRow{"unterminated_quote", [] { return Number(5); }, L"0\"abc", L"", 10620},
            FormatRow{"five_sections", [] { return Number(5); }, L"0;0;0;0;0", L"", 10620});

FORMAT_ROWS(DatePatterns,
            FormatRow{"iso", [] { return DateValue(At(2000, 1, 1, 13, 45, 30)); }, L"yyyy-mm-dd hh:nn:ss",
                      L"2000-01-01 13:45:30"},
            FormatRow{"names", [] { return DateValue(At(2000, 1, 1, 13, 45, 30)); }, L"mmm mmmm ddd dddd q y yy",
                      L"Jan January Sat Saturday 1 1 00"},
            FormatRow{"separators", [] { return DateValue(At(2000, 7, 4, 9, 5, 7)); }, L"m/d/yy h:n:s",
                      L"7/4/00 9:5:7"},
            FormatRow{"minutes_after_hour", [] { return DateValue(At(2000, 7, 4, 9, 5, 7)); }, L"h:mm mm",
                      L"9:05 07"},
            FormatRow{"marker_upper", [] { return DateValue(At(2000, 1, 1, 13, 45, 30)); }, L"h:m:s AM/PM",
                      L"1:45:30 PM"},
            FormatRow{"marker_lower", [] { return DateValue(At(2000, 1, 1, 13, 45, 30)); }, L"h:m:s am/pm",
                      L"1:45:30 pm"},
            FormatRow{"marker_letter", [] { return DateValue(At(2000, 1, 1, 13, 45, 30)); }, L"h:m:s a/p",
                      L"1:45:30 p"},
            FormatRow{"marker_letter_upper", [] { return DateValue(At(2000, 1, 1, 1, 45, 30)); }, L"A/P hh",
                      L"A 01"},
            FormatRow{"marker_locale", [] { return DateValue(At(2000, 1, 1, 0, 5)); }, L"hh:nn AMPM", L"12:05 AM"},
            FormatRow{"general_and_text", [] { return DateValue(At(2000, 1, 1, 13, 45, 30)); }, L"c x",
                      L"1/1/2000 1:45:30 PM x"},
            FormatRow{"general_time_only", [] { return DateValue(0.5); }, L"c", L"12:00:00 PM"},
            FormatRow{"rounded_second", [] { return DateValue(At(2000, 1, 1, 12) + 59.75 / 86400); }, L"hh:nn:ss",
                      L"12:01:00"},
            FormatRow{"escaped_and_quoted", [] { return DateValue(At(2000, 1, 1)); }, L"\"Day \"d\\-mm", L"Day 1-01"},
            FormatRow{"week_of_year", [] { return DateValue(At(2000, 1, 2)); }, L"ww", L"2"},
            FormatRow{"week_of_year_end", [] { return DateValue(At(2000, 12, 31)); }, L"ww", L"54"},
            FormatRow{"weekday", [] { return DateValue(At(2000, 1, 2)); }, L"w", L"1"},
            FormatRow{"weekday_monday_first", [] { return DateValue(At(2000, 1, 2)); }, L"w", L"7", 0, 2, 1},
            FormatRow{"week_monday_four_days", [] { return DateValue(At(2000, 1, 2)); }, L"ww", L"52", 0, 2, 2},
            FormatRow{"week_monday_four_days_next", [] { return DateValue(At(2008, 12, 29)); }, L"ww", L"1", 0, 2, 2},
            FormatRow{"week_full_week", [] { return DateValue(At(2000, 1, 1)); }, L"ww", L"52", 0, 1, 3},
            FormatRow{"week_full_week_first", [] { return DateValue(At(2000, 1, 2)); }, L"ww", L"1", 0, 1, 3},
            FormatRow{"first_day_out_of_range", [] { return DateValue(At(2000, 1, 2)); }, L"w", L"", 10620, 8, 1},
            FormatRow{"first_week_out_of_range", [] { return DateValue(At(2000, 1, 2)); }, L"ww", L"", 10620, 1, 4},
            FormatRow{"bad_t_run", [] { return DateValue(At(2000, 1, 1)); }, L"ttt", L"", 10620},
            FormatRow{"text_that_is_a_date", [] { return Text(L"1/1/2000"); }, L"yyyy", L"2000"},
            FormatRow{"text_that_is_no_date", [] { return Text(L"abc"); }, L"yyyy", L"abc"},
            FormatRow{"number_as_date", [] { return Whole(36526); }, L"yyyy", L"2000"},
            FormatRow{"null_date", NullValue, L"yyyy", L""});

FORMAT_ROWS(StringPatterns,
            FormatRow{"fills_from_right", [] { return Text(L"AbC"); }, L"@@@@@", L"  AbC"},
            FormatRow{"fills_from_left", [] { return Text(L"AbC"); }, L"!@@@@@", L"AbC  "},
            FormatRow{"longer_text_follows", [] { return Text(L"AbCd"); }, L"@@", L"AbCd"},
            FormatRow{"longer_text_left_keeps_end", [] { return Text(L"AbCd"); }, L"!@@", L"Cd"},
            FormatRow{"upper", [] { return Text(L"AbC"); }, L">@@@", L"ABC"},
            FormatRow{"lower", [] { return Text(L"AbC"); }, L"<@@@", L"abc"},
            FormatRow{"ampersand_prints_nothing", [] { return Text(L"AbC"); }, L"&&&&&", L"AbC"},
            FormatRow{"ampersand_left", [] { return Text(L"ab"); }, L"!&&&&-", L"ab-"},
            FormatRow{"empty_section", [] { return Text(L""); }, L"@;\"empty\"", L"empty"},
            FormatRow{"text_between_positions", [] { return Text(L"hello world"); }, L"@@@@@-@@", L"hello- world"},
            FormatRow{"parentheses", [] { return Text(L"ab"); }, L"(@@@@)", L"(  ab)"},
            FormatRow{"number_value", [] { return Whole(12); }, L"@@@@", L"  12"},
            FormatRow{"escaped_at", [] { return Text(L"abc"); }, L"\\@@", L"@abc"},
            FormatRow{"null_string", NullValue, L"@@", L""});

TEST(FormatValueTest, TheEnginesFormatterKeepsSixteenDigits)
{
    SetPlatformFormatterEnabled(false);
    Bstr result;
    ASSERT_TRUE(FormatValue(Number(123456789012345678.0), std::wstring_view(L"0"), 1, 1, result));
    SetPlatformFormatterEnabled(true);
    EXPECT_EQ(Narrow(result.View()), "123456789012345700");
}

TEST(FormatValueTest, LongTextsStayWithTheEngine)
{
    RaiseRecorder raised;
    Bstr result;
    std::wstring text(600, L'a');
    ASSERT_TRUE(FormatValue(Text(text.c_str()), std::wstring_view(L"@"), 1, 1, result));
    EXPECT_EQ(result.Length(), 600u);
    std::wstring pattern = L"\"" + std::wstring(300, L'x') + L"\"0";
    ASSERT_TRUE(FormatValue(Number(5), std::wstring_view(pattern), 1, 1, result));
    EXPECT_EQ(result.View(), std::wstring(300, L'x') + L"5");
    ASSERT_TRUE(FormatValue(Number(1e99), std::wstring_view(L"0"), 1, 1, result));
    EXPECT_EQ(result.Length(), 100u);
    std::wstring dates;
    for (int i = 0; i < 60; ++i)
        dates += L"dddd ";
    ASSERT_TRUE(FormatValue(DateValue(At(2000, 1, 1)), std::wstring_view(dates), 1, 1, result));
    EXPECT_EQ(result.Length(), 255u);
    EXPECT_EQ(raised.Count(), 0u);
}

} // namespace
} // namespace brannoc
