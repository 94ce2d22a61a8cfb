#include "values/Operators.h"

#include "values/Conversion.h"
#include "values/TextForm.h"

#include "RaiseRecorder.h"
#include "ValueMaker.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

using namespace test;
using Op = OperationId;

// ---- Common-kind table: every row ----

struct KindRow {
    VARTYPE left;
    VARTYPE right;
    VARTYPE common;
};

TEST(CommonKindTable, EveryPairOfNumericKinds)
{
    constexpr VARTYPE I2 = VT_I2, I4 = VT_I4, R4 = VT_R4, R8 = VT_R8, CY = VT_CY, DT = VT_DATE, BO = VT_BOOL,
                      DE = VT_DECIMAL, BY = VT_UI1;
    const VARTYPE kinds[] = {I2, I4, R4, R8, CY, DT, BO, DE, BY};
    // Rows in the order of kinds; columns likewise.
    const VARTYPE expected[9][9] = {
        /* I2 */ {I2, I4, R4, R8, CY, DT, I2, DE, I2},
        /* I4 */ {I4, I4, R8, R8, CY, DT, I4, DE, I4},
        /* R4 */ {R4, R8, R4, R8, CY, DT, R4, DE, R4},
        /* R8 */ {R8, R8, R8, R8, CY, DT, R8, DE, R8},
        /* CY */ {CY, CY, CY, CY, CY, DT, CY, DE, CY},
        /* DT */ {DT, DT, DT, DT, DT, DT, DT, DE, DT},
        /* BO */ {I2, I4, R4, R8, CY, DT, BO, DE, I2},
        /* DE */ {DE, DE, DE, DE, DE, DE, DE, DE, DE},
        /* BY */ {I2, I4, R4, R8, CY, DT, I2, DE, BY},
    };
    for (int l = 0; l < 9; ++l)
        for (int r = 0; r < 9; ++r)
            EXPECT_EQ(CommonKind(kinds[l], kinds[r]), expected[l][r])
                << "left " << kinds[l] << " right " << kinds[r];
    EXPECT_EQ(CommonKind(VT_BSTR, VT_I2), VT_EMPTY);
}

struct AdjustRow {
    Op op;
    VARTYPE left;
    VARTYPE right;
    VARTYPE kind;
};

TEST(OperatorAdjustment, EveryRule)
{
    const AdjustRow rows[] = {
        {Op::kPower, VT_I2, VT_I2, VT_R8},          {Op::kPower, VT_CY, VT_DECIMAL, VT_R8},
        {Op::kAdd, VT_BOOL, VT_BOOL, VT_I2},        {Op::kEqual, VT_BOOL, VT_BOOL, VT_BOOL},
        {Op::kAnd, VT_BOOL, VT_BOOL, VT_BOOL},      {Op::kAnd, VT_I2, VT_I2, VT_I2},
        {Op::kOr, VT_UI1, VT_UI1, VT_UI1},          {Op::kXor, VT_I4, VT_I2, VT_I4},
        {Op::kAnd, VT_R8, VT_I2, VT_I4},            {Op::kImp, VT_CY, VT_CY, VT_I4},
        {Op::kMultiply, VT_DATE, VT_I2, VT_R8},     {Op::kMultiply, VT_CY, VT_I4, VT_CY},
        {Op::kMultiply, VT_CY, VT_R8, VT_R8},       {Op::kMultiply, VT_R4, VT_CY, VT_R8},
        {Op::kDivide, VT_DECIMAL, VT_I2, VT_DECIMAL}, {Op::kDivide, VT_I2, VT_I2, VT_R8},
        {Op::kDivide, VT_CY, VT_CY, VT_R8},         {Op::kIntegerDivide, VT_I2, VT_I2, VT_I2},
        {Op::kIntegerDivide, VT_UI1, VT_UI1, VT_UI1}, {Op::kModulo, VT_R8, VT_I2, VT_I4},
        {Op::kModulo, VT_BOOL, VT_BOOL, VT_I2},     {Op::kSubtract, VT_DATE, VT_DATE, VT_R8},
        {Op::kSubtract, VT_DATE, VT_I2, VT_DATE},   {Op::kAdd, VT_DATE, VT_DATE, VT_DATE},
        {Op::kLess, VT_CY, VT_R8, VT_CY},
    };
    for (const AdjustRow& row : rows)
        EXPECT_EQ(OperationKind(row.op, row.left, row.right), row.kind)
            << "op " << static_cast<int>(row.op) << " left " << row.left << " right " << row.right;
}

// ---- Binary operations: results by rule ----

struct BinaryRow {
    const char* name;
    Variant (*left)();
    Op op;
    Variant (*right)();
    const wchar_t* debug;  // debug display of the result ("Null", "5%", ...); empty when an error is expected
    long error;
};

class BinaryTest : public ::testing::TestWithParam<BinaryRow> {};

TEST_P(BinaryTest, ComputesExpectedResult)
{
    const BinaryRow& row = GetParam();
    RaiseRecorder raised;
    Variant left = row.left();
    Variant right = row.right();
    bool ok = BinaryOperation(row.op, left, right);
    EXPECT_EQ(ok, row.error == 0) << row.name;
    EXPECT_EQ(raised.Last(), row.error) << row.name;
    if (row.error == 0) {
        std::wstring shown;
        ASSERT_TRUE(WriteDebug(shown, left)) << row.name;
        EXPECT_EQ(shown, row.debug) << row.name;
    }
}

#define ROW(name, l, op, r, shown) BinaryRow{name, [] { return l; }, Op::op, [] { return r; }, shown, 0}
#define ERR(name, l, op, r, number) BinaryRow{name, [] { return l; }, Op::op, [] { return r; }, L"", number}

auto RowName = [](const auto& info) { return "Row" + std::to_string(info.index); };

INSTANTIATE_TEST_SUITE_P(
    Promotion, BinaryTest,
    ::testing::Values(ROW("Integer 32767+1", MakeInteger(32767), kAdd, MakeInteger(1), L"32768&"),
                      ROW("Integer -32768-1", MakeInteger(-32768), kSubtract, MakeInteger(1), L"-32769&"),
                      ROW("Integer 200*200", MakeInteger(200), kMultiply, MakeInteger(200), L"40000&"),
                      ROW("Integer fits", MakeInteger(2), kAdd, MakeInteger(3), L"5%"),
                      ROW("Long max+1", MakeLong(2147483647), kAdd, MakeLong(1), L"2147483648#"),
                      ROW("Long min*2", MakeLong(-2147483647 - 1), kMultiply, MakeLong(2), L"-4294967296#"),
                      ROW("Byte 200+100", MakeByte(200), kAdd, MakeByte(100), L"300%"),
                      ROW("Byte 0-1", MakeByte(0), kSubtract, MakeByte(1), L"-1%"),
                      ROW("Byte fits", MakeByte(2), kMultiply, MakeByte(3), L"6"),
                      ROW("Single overflow", MakeSingle(3e38f), kMultiply, MakeSingle(10), L"3.00000000549776E+39#"),
                      ROW("Integer -32768 \\ -1", MakeInteger(-32768), kIntegerDivide, MakeInteger(-1), L"32768&"),
                      ERR("Long min \\ -1", MakeLong(-2147483647 - 1), kIntegerDivide, MakeLong(-1), 10062),
                      ERR("Double overflow", MakeDouble(1e308), kMultiply, MakeDouble(10), 10062),
                      ERR("Currency overflow", MakeCurrency(LLONG_MAX), kAdd, MakeCurrency(1), 10062)),
    RowName);

INSTANTIATE_TEST_SUITE_P(
    ArithmeticByKind, BinaryTest,
    ::testing::Values(ROW("True+True", MakeBoolean(true), kAdd, MakeBoolean(true), L"-2%"),
                      ROW("7.5 \\ 2", MakeDouble(7.5), kIntegerDivide, MakeInteger(2), L"4&"),
                      ROW("6.5 Mod 4", MakeDouble(6.5), kModulo, MakeInteger(4), L"2&"),
                      ROW("7 Mod -2", MakeInteger(7), kModulo, MakeInteger(-2), L"1%"),
                      ROW("-7 Mod 2", MakeInteger(-7), kModulo, MakeInteger(2), L"-1%"),
                      ROW("x Mod -1", MakeLong(-2147483647 - 1), kModulo, MakeLong(-1), L"0&"),
                      ROW("-7 \\ 2", MakeInteger(-7), kIntegerDivide, MakeInteger(2), L"-3%"),
                      ROW("1 / 4", MakeInteger(1), kDivide, MakeInteger(4), L"0.25#"),
                      ROW("2 ^ 10", MakeInteger(2), kPower, MakeInteger(10), L"1024#"),
                      ROW("Single", MakeSingle(1.5f), kAdd, MakeSingle(1), L"2.5!"),
                      ROW("Date+1", MakeDate(36526), kAdd, MakeInteger(1), L"#1/2/2000#"),
                      ROW("Date-Date", MakeDate(36527.5), kSubtract, MakeDate(36526), L"1.5#"),
                      ROW("Currency*", MakeCurrency(15000), kMultiply, MakeCurrency(25000), L"3.75@"),
                      ROW("Currency*Double", MakeCurrency(15000), kMultiply, MakeDouble(2), L"3#"),
                      ROW("Currency-", MakeCurrency(10000), kSubtract, MakeCurrency(1), L"0.9999@"),
                      ROW("Byte Decimal", MakeByte(2), kAdd, MakeDecimal(125, 2), L"3.25"),
                      ROW("Decimal Byte", MakeDecimal(125, 2), kAdd, MakeByte(2), L"3.25"),
                      ROW("Decimal /", MakeDecimal(1), kDivide, MakeDecimal(4), L"0.25"),
                      ROW("text 5 + 1", MakeString(L"5"), kAdd, MakeInteger(1), L"6%"),
                      ROW("Empty + 1", Variant(), kAdd, MakeInteger(1), L"1%"),
                      ROW("string + string", MakeString(L"a"), kAdd, MakeString(L"b"), L"\"ab\""),
                      ROW("number & text", MakeInteger(1), kConcatenate, MakeString(L"x"), L"\"1x\"")),
    RowName);

INSTANTIATE_TEST_SUITE_P(
    Errors, BinaryTest,
    ::testing::Values(ERR("text a + 1", MakeString(L"a"), kAdd, MakeInteger(1), 10080),
                      ERR("1 \\ 0", MakeInteger(1), kIntegerDivide, MakeInteger(0), 10061),
                      ERR("1 Mod 0", MakeLong(1), kModulo, MakeLong(0), 10061),
                      ERR("1 / 0", MakeInteger(1), kDivide, MakeInteger(0), 10061),
                      ERR("0 / 0", MakeDouble(0), kDivide, MakeDouble(0), 10060),
                      ERR("Decimal / 0", MakeDecimal(1), kDivide, MakeDecimal(0), 10061),
                      ERR("Error value + 1", MakeError(kErrorValueBase + 1), kAdd, MakeInteger(1), 10080),
                      ERR("underflow", MakeDouble(1e-300), kMultiply, MakeDouble(1e-300), 10063),
                      ERR("Error < text", MakeError(kErrorValueBase + 1), kLess, MakeString(L"a"), 10080)),
    RowName);

INSTANTIATE_TEST_SUITE_P(
    NullRules, BinaryTest,
    ::testing::Values(ROW("Null = Null", MakeNull(), kEqual, MakeNull(), L"Null"),
                      ROW("Null & x", MakeNull(), kConcatenate, MakeString(L"x"), L"\"x\""),
                      ROW("Null + text", MakeNull(), kAdd, MakeString(L"x"), L"Null"),
                      ROW("1 - Null", MakeInteger(1), kSubtract, MakeNull(), L"Null"),
                      ROW("Null < 1", MakeNull(), kLess, MakeInteger(1), L"Null"),
                      ROW("Null Xor True", MakeNull(), kXor, MakeBoolean(true), L"Null"),
                      ROW("Null Like a", MakeNull(), kLike, MakeString(L"a"), L"Null"),
                      ROW("False And Null", MakeBoolean(false), kAnd, MakeNull(), L"False"),
                      ROW("True And Null", MakeBoolean(true), kAnd, MakeNull(), L"Null"),
                      ROW("Null And 0 Long", MakeNull(), kAnd, MakeLong(0), L"0&"),
                      ROW("True Or Null", MakeBoolean(true), kOr, MakeNull(), L"True"),
                      ROW("False Or Null", MakeBoolean(false), kOr, MakeNull(), L"Null"),
                      ROW("Null Or 6 Integer", MakeNull(), kOr, MakeInteger(6), L"6%"),
                      ROW("Null Or 6.2 Double", MakeNull(), kOr, MakeDouble(6.2), L"6&"),
                      ROW("False Imp Null", MakeBoolean(false), kImp, MakeNull(), L"True"),
                      ROW("True Imp Null", MakeBoolean(true), kImp, MakeNull(), L"Null"),
                      ROW("Null Imp True", MakeNull(), kImp, MakeBoolean(true), L"True"),
                      ROW("Null Imp False", MakeNull(), kImp, MakeBoolean(false), L"Null")),
    RowName);

INSTANTIATE_TEST_SUITE_P(
    LogicAndComparison, BinaryTest,
    ::testing::Values(ROW("True And True", MakeBoolean(true), kAnd, MakeBoolean(true), L"True"),
                      ROW("6 And 3.4", MakeInteger(6), kAnd, MakeDouble(3.4), L"2&"),
                      ROW("12 Or 3", MakeInteger(12), kOr, MakeInteger(3), L"15%"),
                      ROW("5 Xor 3", MakeInteger(5), kXor, MakeInteger(3), L"6%"),
                      ROW("5 Eqv 3", MakeInteger(5), kEqv, MakeInteger(3), L"-7%"),
                      ROW("5 Imp 3", MakeInteger(5), kImp, MakeInteger(3), L"-5%"),
                      ROW("Byte Xor", MakeByte(255), kXor, MakeByte(15), L"240"),
                      ROW("abc < abd", MakeString(L"abc"), kLess, MakeString(L"abd"), L"True"),
                      ROW("ab < abc", MakeString(L"ab"), kLess, MakeString(L"abc"), L"True"),
                      ROW("a > B", MakeString(L"a"), kGreater, MakeString(L"B"), L"True"),
                      ROW("5 < text 1", MakeInteger(5), kLess, MakeString(L"1"), L"True"),
                      ROW("text 1 = 1", MakeString(L"1"), kEqual, MakeInteger(1), L"False"),
                      ROW("errors", MakeError(kErrorValueBase + 2), kGreater, MakeError(kErrorValueBase + 1), L"True"),
                      ROW("CCur(1) = 1.00001", MakeCurrency(10000), kEqual, MakeDouble(1.00001), L"True"),
                      ROW("Single compare", MakeSingle(0.1f), kEqual, MakeSingle(0.1f), L"True"),
                      ROW("Decimal compare", MakeDecimal(10, 1), kEqual, MakeInteger(1), L"True"),
                      ROW("2 >= 2", MakeLong(2), kGreaterEqual, MakeInteger(2), L"True"),
                      ROW("2 <> 2", MakeLong(2), kNotEqual, MakeInteger(2), L"False")),
    RowName);

// ---- Unary operations ----

struct UnaryRow {
    const char* name;
    Op op;
    Variant (*value)();
    const wchar_t* debug;
};

TEST(UnaryOperations, WideningAndResults)
{
    const UnaryRow rows[] = {
        {"-(-32768)", Op::kNegate, [] { return MakeInteger(-32768); }, L"32768&"},
        {"-(Long min)", Op::kNegate, [] { return MakeLong(-2147483647 - 1); }, L"2147483648#"},
        {"-True", Op::kNegate, [] { return MakeBoolean(true); }, L"1%"},
        {"-Byte", Op::kNegate, [] { return MakeByte(5); }, L"-5%"},
        {"-Currency", Op::kNegate, [] { return MakeCurrency(15000); }, L"-1.5@"},
        {"-Decimal", Op::kNegate, [] { return MakeDecimal(25, 1); }, L"-2.5"},
        {"-text", Op::kNegate, [] { return MakeString(L"3"); }, L"-3%"},
        {"-Null", Op::kNegate, [] { return MakeNull(); }, L"Null"},
        {"Not Byte 0", Op::kNot, [] { return MakeByte(0); }, L"255"},
        {"Not True", Op::kNot, [] { return MakeBoolean(true); }, L"False"},
        {"Not 0", Op::kNot, [] { return MakeInteger(0); }, L"-1%"},
        {"Not 1.4", Op::kNot, [] { return MakeDouble(1.4); }, L"-2&"},
        {"Abs -32768", Op::kAbs, [] { return MakeInteger(-32768); }, L"32768&"},
        {"Abs True", Op::kAbs, [] { return MakeBoolean(true); }, L"1%"},
        {"Abs -1.5", Op::kAbs, [] { return MakeDouble(-1.5); }, L"1.5#"},
        {"Int -2.5", Op::kInt, [] { return MakeDouble(-2.5); }, L"-3#"},
        {"Fix -2.5", Op::kFix, [] { return MakeDouble(-2.5); }, L"-2#"},
        {"Int Currency", Op::kInt, [] { return MakeCurrency(-15000); }, L"-2@"},
        {"Fix Currency", Op::kFix, [] { return MakeCurrency(-15000); }, L"-1@"},
        {"Int Decimal", Op::kInt, [] { return MakeDecimal(-25, 1); }, L"-3"},
        {"Fix Integer", Op::kFix, [] { return MakeInteger(7); }, L"7%"},
    };
    for (const UnaryRow& row : rows) {
        Variant value = row.value();
        ASSERT_TRUE(UnaryOperation(row.op, value)) << row.name;
        std::wstring shown;
        ASSERT_TRUE(WriteDebug(shown, value)) << row.name;
        EXPECT_EQ(shown, row.debug) << row.name;
    }
}

// ---- Like ----

struct LikeRow {
    const char* text;
    const char* pattern;
    bool matched;
};

TEST(LikeRules, EveryPatternElement)
{
    const LikeRow rows[] = {
        {"aBc", "a?c", true},   {"abc", "A*", false},   {"a1", "a#", true},     {"ab", "a#", false},
        {"b", "[!a-c]", false}, {"d", "[!a-c]", true},  {"b", "[a-c]", true},   {"-", "[a-]", true},
        {"a", "a[]", false},    {"ab", "a[]b", true},   {"", "", true},         {"", "***", true},
        {"abc", "a**c", true},  {"abc", "*", true},     {"abcbc", "*bc", true}, {"abd", "*bc", false},
        {"x", "[xyz]", true},   {"q", "[xyz]", false},  {"a*", "a[*]", true},   {"ab", "a", false},
        {"a", "ab", false},     {"a#", "a[#]", true},   {"abc", "a*c*", true},  {"", "?", false},
    };
    for (const LikeRow& row : rows) {
        bool matched = !row.matched;
        ASSERT_TRUE(MatchLike(row.text, row.pattern, matched)) << row.text << " Like " << row.pattern;
        EXPECT_EQ(matched, row.matched) << row.text << " Like " << row.pattern;
    }
}

TEST(LikeRules, MalformedListsRaise10620)
{
    for (const char* pattern : {"[z-a]", "a[bc", "*[b"}) {
        RaiseRecorder raised;
        bool matched = true;
        EXPECT_FALSE(MatchLike("abc", pattern, matched)) << pattern;
        EXPECT_FALSE(matched) << pattern;
        EXPECT_EQ(raised.Last(), 10620) << pattern;
    }
}

TEST(LikeRules, OperatorConvertsOperandsToText)
{
    Variant left = MakeInteger(12);
    ASSERT_TRUE(BinaryOperation(Op::kLike, left, MakeString(L"1#")));
    EXPECT_EQ(left.Tag(), VT_BOOL);
    EXPECT_EQ(left.Boolean(), VARIANT_TRUE);
}

// ---- Currency helpers ----

TEST(CurrencyArithmetic, ExactIntermediates)
{
    LONGLONG result = 0;
    // 900,000,000,000.0000 * 10 needs more than 64 bits before the division by 10,000.
    ASSERT_TRUE(CurrencyMultiply(9000000000000000LL, 100000LL, result));
    EXPECT_EQ(result, 90000000000000000LL);
    ASSERT_TRUE(CurrencyMultiply(-15000, 25000, result));
    EXPECT_EQ(result, -37500);
    ASSERT_TRUE(CurrencyDivide(10000, 30000, result));
    EXPECT_EQ(result, 3333);
    ASSERT_TRUE(CurrencyDivide(-10000, 30000, result));
    EXPECT_EQ(result, -3333);
    RaiseRecorder raised;
    EXPECT_FALSE(CurrencyDivide(1, 0, result));
    EXPECT_EQ(raised.Last(), 10061);
    EXPECT_FALSE(CurrencyMultiply(LLONG_MAX, 20000, result));
    EXPECT_EQ(raised.Last(), 10062);
}

} // namespace
} // namespace brannoc
