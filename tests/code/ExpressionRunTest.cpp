#include "ProgramRunner.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

// One expression printed with Debug.Print inside Main; the expected text is its debug form.
struct ExpressionCase {
    const char* expression;
    const wchar_t* expected;
};

std::ostream& operator<<(std::ostream& out, const ExpressionCase& value) { return out << value.expression; }

class ExpressionValueTest : public ::testing::TestWithParam<ExpressionCase> {};

TEST_P(ExpressionValueTest, PrintsValue)
{
    const ExpressionCase& value = GetParam();
    const auto result = testing::RunProgram(testing::JoinLines(
        {"Sub Main", "  Dim i As Integer, l As Long, d As Double, s As String", "  i = 7: l = 100000: d = 2.5: s = \"ab\"",
         std::string("  Debug.Print ") + value.expression, "End Sub"}));
    ASSERT_EQ(result.parse, ParseResult::Okay) << value.expression;
    EXPECT_TRUE(result.runErrors.empty()) << value.expression;
    EXPECT_EQ(result.output, std::wstring(value.expected) + L"\r\n") << value.expression;
}

const ExpressionCase kExpressionCases[] = {
    {"1 + 2 * 3", L"7%"},
    {"(1 + 2) * 3", L"9%"},
    {"i \\ 2", L"3%"},
    {"i Mod 4", L"3%"},
    {"i / 2", L"3.5#"},
    {"-i + 1", L"-6%"},
    {"10 - 2 - 3", L"5%"},
    {"2 ^ 3 * 2", L"16#"},
    {"-3 ^ 2", L"9#"},
    {"i * l", L"700000&"},
    {"d * 2", L"5#"},
    {"s & i", L"\"ab7\""},
    {"s & s & s", L"\"ababab\""},
    {"i > 5", L"True"},
    {"i <= 6", L"False"},
    {"i <> 7", L"False"},
    {"s = \"ab\"", L"True"},
    {"s < \"b\"", L"True"},
    {"Not i > 5", L"False"},
    {"i > 5 And d < 3", L"True"},
    {"i > 50 Or d > 3", L"False"},
    {"5 Xor 3", L"6%"},
    {"Not 0", L"-1%"},
    {"True Imp False", L"False"},
    {"True Eqv True", L"True"},
    {"&HFF", L"255%"},
    {"&H8000", L"-32768%"},
    {"&H8000&", L"32768&"},
    {"&HFFFF", L"-1%"},
    {"&HFFFF&", L"65535&"},
    {"&H10000", L"65536&"},
    {"&H0FFFF", L"-1%"},
    {"&Hff", L"255%"},
    {"&HFFFFFFFF", L"-1&"},
    {"&O177777", L"-1%"},
    {"&O177777&", L"65535&"},
    {"2147483647", L"2147483647&"},
    {"2147483648", L"2147483648#"},
    {"-2 ^ 2", L"4#"},
    {"2 ^ 3 ^ 2", L"64#"},
    {"Not 1 = 2", L"True"},
    {"s & 1 + 2", L"\"ab3\""},
    {"10&", L"10&"},
    {"32768", L"32768&"},
    {"1.5E2", L"150#"},
    {"Abs(-i)", L"7%"},
    {"Int(-d)", L"-3#"},
    {"Fix(-d)", L"-2#"},
    {"s Like \"a*\"", L"True"},
    {"Null", L"Null"},
    {"Empty", L"Empty"},
    {"1 + Null", L"Null"},
    {"i; l; d", L"7%100000&2.5#"},
};

INSTANTIATE_TEST_SUITE_P(Operators, ExpressionValueTest, ::testing::ValuesIn(kExpressionCases));

} // namespace
} // namespace brannoc
