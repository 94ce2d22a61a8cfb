#include "values/Conversion.h"

#include "RaiseRecorder.h"
#include "ValueMaker.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

using namespace test;

// ---- StringToNumber: hex, octal, Integer narrowing ----

struct NumberTextRow {
    const wchar_t* text;
    bool succeeds;
    VARTYPE tag;
    double number;
};

class StringToNumberTest : public ::testing::TestWithParam<NumberTextRow> {};

TEST_P(StringToNumberTest, ReadsTextAsExpected)
{
    const NumberTextRow& row = GetParam();
    Variant value = MakeString(row.text);
    bool ok = StringToNumber(value);
    ASSERT_EQ(ok, row.succeeds) << "text " << testing::PrintToString(std::wstring(row.text));
    if (!ok) {
        EXPECT_EQ(value.Tag(), VT_BSTR);
        return;
    }
    EXPECT_EQ(value.Tag(), row.tag) << "text " << testing::PrintToString(std::wstring(row.text));
    Variant asDouble(value);
    ASSERT_TRUE(SUCCEEDED(VariantChangeType(&asDouble.Raw(), &asDouble.Raw(), 0, VT_R8)));
    EXPECT_DOUBLE_EQ(asDouble.Double(), row.number);
}

INSTANTIATE_TEST_SUITE_P(
    HexOctalAndNarrowing, StringToNumberTest,
    ::testing::Values(NumberTextRow{L"&HFFFF", true, VT_I2, -1}, NumberTextRow{L"&H10000", true, VT_I4, 65536},
                      NumberTextRow{L"&h7FFF", true, VT_I2, 32767}, NumberTextRow{L"&O17", true, VT_I2, 15},
                      NumberTextRow{L"&o177777", true, VT_I2, -1}, NumberTextRow{L"65535", true, VT_I4, 65535},
                      NumberTextRow{L"32767", true, VT_I2, 32767}, NumberTextRow{L"32768", true, VT_I4, 32768},
                      NumberTextRow{L"-32768", true, VT_I2, -32768}, NumberTextRow{L"-32769", true, VT_I4, -32769},
                      NumberTextRow{L"1.5", true, VT_R8, 1.5}, NumberTextRow{L"3000000000", true, VT_R8, 3e9},
                      NumberTextRow{L"", false, VT_EMPTY, 0}, NumberTextRow{L"a", false, VT_EMPTY, 0},
                      NumberTextRow{L"&HZZ", false, VT_EMPTY, 0}));

// ---- ChangeType ----

struct ChangeRow {
    const char* name;
    Variant (*make)();
    VARTYPE target;
    long error;     // 0 when the conversion succeeds
    double number;  // expected numeric result (success rows with a numeric target)
};

class ChangeTypeTest : public ::testing::TestWithParam<ChangeRow> {};

TEST_P(ChangeTypeTest, ConvertsOrRaises)
{
    const ChangeRow& row = GetParam();
    RaiseRecorder raised;
    Variant value = row.make();
    bool ok = ChangeType(value, row.target);
    EXPECT_EQ(ok, row.error == 0) << row.name;
    EXPECT_EQ(raised.Last(), row.error) << row.name;
    EXPECT_EQ(value.Tag(), row.target) << row.name;
    if (row.target != VT_BSTR && row.target != VT_DISPATCH) {
        Variant asDouble(value);
        ASSERT_TRUE(SUCCEEDED(VariantChangeType(&asDouble.Raw(), &asDouble.Raw(), 0, VT_R8))) << row.name;
        EXPECT_DOUBLE_EQ(asDouble.Double(), row.error ? 0.0 : row.number) << row.name;
    }
}

INSTANTIATE_TEST_SUITE_P(
    RoundingHalfToEven, ChangeTypeTest,
    ::testing::Values(ChangeRow{"12.5 to Integer", [] { return MakeDouble(12.5); }, VT_I2, 0, 12},
                      ChangeRow{"13.5 to Integer", [] { return MakeDouble(13.5); }, VT_I2, 0, 14},
                      ChangeRow{"-2.5 to Long", [] { return MakeDouble(-2.5); }, VT_I4, 0, -2},
                      ChangeRow{"2.5 to Byte", [] { return MakeDouble(2.5); }, VT_UI1, 0, 2},
                      ChangeRow{"text 12.5 to Integer", [] { return MakeString(L"12.5"); }, VT_I2, 0, 12},
                      ChangeRow{"1.23456 to Currency", [] { return MakeDouble(1.23456); }, VT_CY, 0, 1.2346}),
    [](const auto& info) { return "Row" + std::to_string(info.index); });

INSTANTIATE_TEST_SUITE_P(
    Errors, ChangeTypeTest,
    ::testing::Values(ChangeRow{"Null to Long", [] { return MakeNull(); }, VT_I4, 10075, 0},
                      ChangeRow{"Null to String", [] { return MakeNull(); }, VT_BSTR, 10075, 0},
                      ChangeRow{"32768 to Integer", [] { return MakeLong(32768); }, VT_I2, 10062, 0},
                      ChangeRow{"256 to Byte", [] { return MakeInteger(256); }, VT_UI1, 10062, 0},
                      ChangeRow{"-1 to Byte", [] { return MakeInteger(-1); }, VT_UI1, 10062, 0},
                      ChangeRow{"text a to Double", [] { return MakeString(L"a"); }, VT_R8, 10080, 0},
                      ChangeRow{"Long to Object", [] { return MakeLong(1); }, VT_DISPATCH, 10080, 0},
                      ChangeRow{"Empty to Long", [] { return Variant(); }, VT_I4, 0, 0}),
    [](const auto& info) { return "Row" + std::to_string(info.index); });

TEST(ChangeTypeRules, BooleanToStringUsesResourceTexts)
{
    Variant value = MakeBoolean(true);
    ASSERT_TRUE(ChangeType(value, VT_BSTR));
    EXPECT_EQ(value.StringView(), L"True");
    value = MakeBoolean(false);
    ASSERT_TRUE(ChangeType(value, VT_BSTR));
    EXPECT_EQ(value.StringView(), L"False");
}

TEST(ChangeTypeRules, NumberTextBecomesDateSerial)
{
    Variant value = MakeString(L"36526");
    ASSERT_TRUE(ChangeType(value, VT_DATE));
    EXPECT_EQ(value.Tag(), VT_DATE);
    EXPECT_DOUBLE_EQ(value.Date(), 36526.0);
}

TEST(ChangeTypeRules, ByReferenceChainIsFollowed)
{
    Variant target = MakeString(L"42");
    Variant reference;
    reference.SetByRef(VT_VARIANT, &target.Raw());
    ASSERT_TRUE(ChangeType(reference, VT_I4));
    EXPECT_EQ(reference.Long(), 42);
    EXPECT_EQ(target.Tag(), VT_BSTR);
}

// ---- ToNumber ----

TEST(ToNumberRules, EmptyIsIntegerZeroAndNumbersStay)
{
    Variant value;
    ASSERT_TRUE(ToNumber(value));
    EXPECT_EQ(value.Tag(), VT_I2);
    EXPECT_EQ(value.Integer(), 0);
    value = MakeBoolean(true);
    ASSERT_TRUE(ToNumber(value));
    EXPECT_EQ(value.Tag(), VT_BOOL);
    value = MakeDate(2.5);
    ASSERT_TRUE(ToNumber(value));
    EXPECT_EQ(value.Tag(), VT_DATE);
}

TEST(ToNumberRules, ErrorsByKind)
{
    struct Row {
        Variant value;
        long error;
    } rows[] = {{MakeNull(), 10075}, {MakeString(L"a"), 10080}, {MakeError(kErrorValueBase + 5), 10080}};
    for (Row& row : rows) {
        RaiseRecorder raised;
        EXPECT_FALSE(ToNumber(row.value));
        EXPECT_EQ(raised.Last(), row.error);
    }
}

// ---- ParseInvariant ----

TEST(ParseInvariantRules, AutomaticChoiceAndFailures)
{
    Variant value = MakeString(L"123");
    ASSERT_TRUE(ParseInvariant(value, 0, RaiseMode::kQuiet));
    EXPECT_EQ(value.Tag(), VT_I2);
    value = MakeString(L"70000");
    ASSERT_TRUE(ParseInvariant(value, 0, RaiseMode::kQuiet));
    EXPECT_EQ(value.Tag(), VT_I4);
    value = MakeString(L"1.25");
    ASSERT_TRUE(ParseInvariant(value, 0, RaiseMode::kQuiet));
    EXPECT_EQ(value.Tag(), VT_R8);
    EXPECT_EQ(value.Double(), 1.25);

    RaiseRecorder raised;
    value = MakeString(L"x");
    EXPECT_FALSE(ParseInvariant(value, VT_I4, RaiseMode::kQuiet));
    EXPECT_EQ(raised.Count(), 0u);
    EXPECT_EQ(value.Tag(), VT_BSTR);
    EXPECT_FALSE(ParseInvariant(value, VT_I4, RaiseMode::kRaise));
    EXPECT_EQ(raised.Last(), 10080);
    value = MakeString(L"40000");
    EXPECT_FALSE(ParseInvariant(value, VT_I2, RaiseMode::kRaise));
    EXPECT_EQ(raised.Last(), 10062);
}

// ---- ToText ----

TEST(ToTextRules, ModesDifferOnNullAndBoolean)
{
    Bstr text;
    RaiseRecorder raised;
    EXPECT_FALSE(ToText(MakeNull(), TextMode::kLocale, text));
    EXPECT_EQ(raised.Last(), 10075);
    ASSERT_TRUE(ToText(MakeNull(), TextMode::kNullAsEmpty, text));
    EXPECT_EQ(text.View(), L"");
    ASSERT_TRUE(ToText(MakeNull(), TextMode::kInvariant, text));
    EXPECT_EQ(text.View(), L"");
    ASSERT_TRUE(ToText(MakeBoolean(true), TextMode::kInvariant, text));
    EXPECT_EQ(text.View(), L"True");
    ASSERT_TRUE(ToText(MakeDouble(1.5), TextMode::kInvariant, text));
    EXPECT_EQ(text.View(), L"1.5");
    ASSERT_TRUE(ToText(MakeByte(200), TextMode::kInvariant, text));
    EXPECT_EQ(text.View(), L"200");
    ASSERT_TRUE(ToText(MakeString(L"as is"), TextMode::kInvariant, text));
    EXPECT_EQ(text.View(), L"as is");
}

// ---- Tests of kinds ----

TEST(KindTests, AnswerByKindAndThroughReferences)
{
    Variant empty;
    Variant reference;
    reference.SetByRef(VT_VARIANT, &empty.Raw());
    EXPECT_TRUE(IsEmpty(reference));
    EXPECT_TRUE(IsNull(MakeNull()));
    EXPECT_FALSE(IsNull(empty));
    EXPECT_TRUE(IsMissing(MakeError(DISP_E_PARAMNOTFOUND)));
    EXPECT_FALSE(IsMissing(MakeError(kErrorValueBase + 1)));
    EXPECT_TRUE(IsError(MakeError(kErrorValueBase + 1)));
    EXPECT_TRUE(IsNegative(MakeBoolean(true)));
    EXPECT_TRUE(IsNegative(MakeCurrency(-1)));
    EXPECT_FALSE(IsNegative(MakeInteger(0)));
    EXPECT_TRUE(IsNumeric(empty));
    EXPECT_TRUE(IsNumeric(MakeString(L"&H10")));
    EXPECT_FALSE(IsNumeric(MakeString(L"x1")));
    EXPECT_FALSE(IsNumeric(MakeDate(1)));
    EXPECT_FALSE(IsNumeric(MakeNull()));
    EXPECT_TRUE(IsDate(MakeDate(1)));
    EXPECT_FALSE(IsDate(MakeString(L"not a date")));
    Variant array;
    array.SetArray(SafeArrayCreateVector(VT_I2, 0, 1), VT_I2);
    EXPECT_TRUE(IsArray(array));
    EXPECT_FALSE(IsObject(array));
    Variant nothing;
    nothing.SetObject(nullptr);
    EXPECT_TRUE(IsObject(nothing));
}

} // namespace
} // namespace brannoc
