#include "values/TextForm.h"

#include "values/Conversion.h"

#include "RaiseRecorder.h"
#include "ValueMaker.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

using namespace test;

struct FormRow {
    const char* name;
    Variant (*make)();
    const wchar_t* print;
    const wchar_t* write;
    const wchar_t* debug;
};

class TextFormTest : public ::testing::TestWithParam<FormRow> {};

TEST_P(TextFormTest, EachFormOfTheKind)
{
    const FormRow& row = GetParam();
    std::wstring print, write, debug;
    ASSERT_TRUE(WritePrint(print, row.make())) << row.name;
    ASSERT_TRUE(WriteWrite(write, row.make())) << row.name;
    ASSERT_TRUE(WriteDebug(debug, row.make())) << row.name;
    EXPECT_EQ(print, row.print) << row.name;
    EXPECT_EQ(write, row.write) << row.name;
    EXPECT_EQ(debug, row.debug) << row.name;
}

INSTANTIATE_TEST_SUITE_P(
    ByKind, TextFormTest,
    ::testing::Values(
        FormRow{"Empty", [] { return Variant(); }, L"", L"", L"Empty"},
        FormRow{"Null", [] { return MakeNull(); }, L"Null", L"#NULL#", L"Null"},
        FormRow{"Integer 5", [] { return MakeInteger(5); }, L" 5", L"5", L"5%"},
        FormRow{"Integer -5", [] { return MakeInteger(-5); }, L"-5", L"-5", L"-5%"},
        FormRow{"Long", [] { return MakeLong(70000); }, L" 70000", L"70000", L"70000&"},
        FormRow{"Single", [] { return MakeSingle(0.5f); }, L" 0.5", L"0.5", L"0.5!"},
        FormRow{"Double", [] { return MakeDouble(1.5); }, L" 1.5", L"1.5", L"1.5#"},
        FormRow{"Currency", [] { return MakeCurrency(12500); }, L" 1.25", L"1.25", L"1.25@"},
        FormRow{"Decimal", [] { return MakeDecimal(-125, 2); }, L"-1.25", L"-1.25", L"-1.25"},
        FormRow{"Byte", [] { return MakeByte(7); }, L" 7", L"7", L"7"},
        FormRow{"Boolean True", [] { return MakeBoolean(true); }, L"True", L"#TRUE#", L"True"},
        FormRow{"Boolean False", [] { return MakeBoolean(false); }, L"False", L"#FALSE#", L"False"},
        FormRow{"String", [] { return MakeString(L"a\"b"); }, L"a\"b", L"\"a\"\"b\"", L"\"a\"\"b\""},
        FormRow{"Empty string", [] { return MakeString(L""); }, L"", L"\"\"", L"\"\""},
        FormRow{"Error", [] { return MakeError(kErrorValueBase + 13); }, L"Error13", L"#ERROR 13#", L"Error 13"},
        FormRow{"Missing", [] { return MakeError(DISP_E_PARAMNOTFOUND); }, L"Error4", L"#ERROR 4#", L""}),
    [](const auto& info) { return "Row" + std::to_string(info.index); });

TEST(TextFormRules, DateForms)
{
    std::wstring write, debug;
    ASSERT_TRUE(WriteWrite(write, MakeDate(36526)));
    ASSERT_TRUE(WriteDebug(debug, MakeDate(36526)));
    EXPECT_EQ(write.front(), L'#');
    EXPECT_EQ(write.back(), L'#');
    EXPECT_EQ(write, debug);
}

TEST(TextFormRules, ArraysShowBoundsInDebugAndRaiseElsewhere)
{
    SAFEARRAYBOUND bounds[2] = {{6, 0}, {3, 1}};
    const struct {
        SAFEARRAY* array;   // null: not dimensioned (no descriptor)
        VARTYPE elementTag;
        const wchar_t* debug;
    } rows[] = {
        {SafeArrayCreate(VT_I2, 2, bounds), VT_I2, L"(0 To 5, 1 To 3) As Integer"},
        {nullptr, VT_BSTR, L"() As String"},
        {nullptr, VT_VARIANT, L"() As Variant"},
    };
    for (const auto& row : rows) {
        Variant array;
        array.SetArray(row.array, row.elementTag);
        std::wstring debug;
        ASSERT_TRUE(WriteDebug(debug, array)) << row.debug;
        EXPECT_EQ(debug, row.debug);
        RaiseRecorder raised;
        std::wstring print;
        EXPECT_FALSE(WritePrint(print, array)) << row.debug;
        EXPECT_EQ(raised.Last(), 10080) << row.debug;
        raised.Reset();
        EXPECT_FALSE(WriteWrite(print, array)) << row.debug;
        EXPECT_EQ(raised.Last(), 10080) << row.debug;
    }
}

TEST(TextFormRules, NothingShowsInDebugOnly)
{
    Variant nothing;
    nothing.SetObject(nullptr);
    std::wstring debug;
    ASSERT_TRUE(WriteDebug(debug, nothing));
    EXPECT_EQ(debug, L"Nothing");
    RaiseRecorder raised;
    std::wstring print;
    EXPECT_FALSE(WritePrint(print, nothing));
    EXPECT_EQ(raised.Last(), 10080);
}

TEST(TextFormRules, UnknownNothing)
{
    Variant unknown;
    unknown.SetUnknown(nullptr);
    std::wstring debug;
    ASSERT_TRUE(WriteDebug(debug, unknown));
    EXPECT_EQ(debug, L"[Unknown@Nothing]");
    RaiseRecorder raised;
    std::wstring print;
    EXPECT_FALSE(WritePrint(print, unknown));
    EXPECT_EQ(raised.Last(), 10080);
}

struct QuotedRow {
    std::wstring text;
    const wchar_t* quoted;
};

TEST(WriteQuotedRules, RunsOfNulAndText)
{
    const QuotedRow rows[] = {
        {L"", L"\"\""},
        {std::wstring(1, L'\0'), L"vbNullChar"},
        {std::wstring(3, L'\0'), L"String(3,0)"},
        {std::wstring(L"ab\0\0c", 5), L"\"ab\" & String(2,0) & \"c\""},
        {std::wstring(L"\0x", 2), L"vbNullChar & \"x\""},
        {std::wstring(L"x\0", 2), L"\"x\" & vbNullChar"},
        {L"say \"hi\"", L"\"say \"\"hi\"\"\""},
    };
    for (const QuotedRow& row : rows) {
        std::wstring out;
        WriteQuoted(out, row.text);
        EXPECT_EQ(out, row.quoted);
    }
}

} // namespace
} // namespace brannoc
