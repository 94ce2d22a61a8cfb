#include "ProgramRunner.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

using testing::JoinLines;
using testing::RunProgram;

struct RunCase {
    const char* name;
    std::vector<std::string> lines;
    const wchar_t* expected;
};

std::ostream& operator<<(std::ostream& out, const RunCase& run) { return out << run.name; }

class ProgramOutputTest : public ::testing::TestWithParam<RunCase> {};

TEST_P(ProgramOutputTest, PrintsExpectedText)
{
    const RunCase& run = GetParam();
    const auto result = RunProgram(JoinLines(run.lines));
    ASSERT_EQ(result.parse, ParseResult::Okay)
        << (result.compileErrors.empty() ? std::string("no error record")
                                         : result.compileErrors.front().lineText + " / line " +
                                               std::to_string(result.compileErrors.front().line) + " / " +
                                               std::to_string(result.compileErrors.front().number));
    EXPECT_TRUE(result.runErrors.empty()) << (result.runErrors.empty() ? 0 : result.runErrors.front().number);
    EXPECT_TRUE(result.finished);
    EXPECT_EQ(result.output, run.expected);
}

const RunCase kRunCases[] = {
    {"PrintConstant", {"Sub Main", "  Debug.Print 5", "End Sub"}, L"5%\r\n"},
    {"Assignment", {"Sub Main", "  Dim a As Integer", "  a = 2 + 3 * 4", "  Debug.Print a", "End Sub"}, L"14%\r\n"},
    {"UnaryMinusBeforePower", {"Sub Main", "  Debug.Print -2 ^ 2", "End Sub"}, L"4#\r\n"},
    {"PowerIsLeftAssociative", {"Sub Main", "  Debug.Print 2 ^ 3 ^ 2", "End Sub"}, L"64#\r\n"},
    {"Concatenation", {"Sub Main", "  Dim s As String", "  s = \"ab\" & \"cd\"", "  Debug.Print s", "End Sub"},
     L"\"abcd\"\r\n"},
    {"TrailingSemicolonKeepsLine",
     {"Sub Main", "  Debug.Print 1;", "  Debug.Print 2", "End Sub"}, L"1%2%\r\n"},
    {"BlockIf",
     {"Sub Main", "  Dim x As Integer", "  x = 5", "  If x > 3 Then", "    Debug.Print 1", "  Else",
      "    Debug.Print 2", "  End If", "End Sub"},
     L"1%\r\n"},
    {"ElseIfChain",
     {"Sub Main", "  Dim x As Integer", "  x = 2", "  If x = 1 Then", "    Debug.Print 10", "  ElseIf x = 2 Then",
      "    Debug.Print 20", "  ElseIf x = 3 Then", "    Debug.Print 30", "  Else", "    Debug.Print 40", "  End If",
      "  Debug.Print 99", "End Sub"},
     L"20%\r\n99%\r\n"},
    {"SingleLineIf",
     {"Sub Main", "  Dim x As Integer", "  If x = 0 Then Debug.Print 1 Else Debug.Print 2",
      "  If x <> 0 Then Debug.Print 3 Else Debug.Print 4", "End Sub"},
     L"1%\r\n4%\r\n"},
    {"ForLoop",
     {"Sub Main", "  Dim i As Integer", "  For i = 1 To 3", "    Debug.Print i;", "  Next i", "  Debug.Print",
      "  Debug.Print i", "End Sub"},
     L"1%2%3%\r\n4%\r\n"},
    {"ForNegativeStep",
     {"Sub Main", "  Dim i As Integer", "  For i = 3 To 1 Step -1", "    Debug.Print i;", "  Next", "End Sub"},
     L"3%2%1%"},
    {"ForFractionalStep",
     {"Sub Main", "  Dim x As Double", "  Dim n As Integer", "  For x = 0 To 1 Step 0.25", "    n = n + 1",
      "  Next", "  Debug.Print n", "End Sub"},
     L"5%\r\n"},
    {"ForEndEvaluatedOnce",
     {"Sub Main", "  Dim i As Integer, n As Integer, k As Integer", "  n = 3", "  For i = 1 To n", "    n = 10",
      "    k = k + 1", "  Next", "  Debug.Print k", "End Sub"},
     L"3%\r\n"},
    {"ForNotEntered", {"Sub Main", "  Dim i As Integer", "  For i = 5 To 1", "    Debug.Print i", "  Next",
                       "  Debug.Print 0", "End Sub"},
     L"0%\r\n"},
    {"DoWhileLoop",
     {"Sub Main", "  Dim i As Integer", "  Do While i < 3", "    i = i + 1", "  Loop", "  Debug.Print i", "End Sub"},
     L"3%\r\n"},
    {"DoUntilLoop",
     {"Sub Main", "  Dim i As Integer", "  Do Until i >= 4", "    i = i + 2", "  Loop", "  Debug.Print i", "End Sub"},
     L"4%\r\n"},
    {"LoopWhileRunsOnce",
     {"Sub Main", "  Dim i As Integer", "  Do", "    i = i + 1", "  Loop While i < 0", "  Debug.Print i", "End Sub"},
     L"1%\r\n"},
    {"LoopUntil",
     {"Sub Main", "  Dim i As Integer", "  Do", "    i = i + 1", "  Loop Until i = 5", "  Debug.Print i", "End Sub"},
     L"5%\r\n"},
    {"ExitDo",
     {"Sub Main", "  Dim i As Integer", "  Do", "    i = i + 1", "    If i = 7 Then Exit Do", "  Loop",
      "  Debug.Print i", "End Sub"},
     L"7%\r\n"},
    {"WhileWend",
     {"Sub Main", "  Dim i As Long", "  While i < 10", "    i = i + 3", "  Wend", "  Debug.Print i", "End Sub"},
     L"12&\r\n"},
    {"ExitForFromNestedDo",
     {"Sub Main", "  Dim i As Integer", "  For i = 1 To 10", "    Do", "      Exit For", "    Loop", "  Next",
      "  Debug.Print i", "End Sub"},
     L"1%\r\n"},
    {"SubCallByRef",
     {"Sub Bump(n As Integer)", "  n = n + 1", "End Sub", "Sub Main", "  Dim a As Integer", "  a = 1", "  Bump a",
      "  Call Bump(a)", "  Debug.Print a", "End Sub"},
     L"3%\r\n"},
    {"SubCallByVal",
     {"Sub Bump(ByVal n As Integer)", "  n = n + 1", "End Sub", "Sub Main", "  Dim a As Integer", "  a = 1",
      "  Bump a", "  Debug.Print a", "End Sub"},
     L"1%\r\n"},
    {"ByRefWithOtherTypeCopies",
     {"Sub Bump(n As Integer)", "  n = n + 1", "End Sub", "Sub Main", "  Dim a As Long", "  a = 1", "  Bump a",
      "  Debug.Print a", "End Sub"},
     L"1&\r\n"},
    {"ParenthesisedArgumentIsByValue",
     {"Sub Bump(n As Integer)", "  n = n + 1", "End Sub", "Sub Main", "  Dim a As Integer", "  Bump (a)",
      "  Debug.Print a", "End Sub"},
     L"0%\r\n"},
    {"FunctionResult",
     {"Function Twice(x As Integer) As Integer", "  Twice = x * 2", "End Function", "Sub Main",
      "  Debug.Print Twice(4) + 1", "End Sub"},
     L"9%\r\n"},
    {"RecursiveFunction",
     {"Function Fact(ByVal n As Long) As Long", "  If n <= 1 Then", "    Fact = 1", "  Else",
      "    Fact = n * Fact(n - 1)", "  End If", "End Function", "Sub Main", "  Debug.Print Fact(10)", "End Sub"},
     L"3628800&\r\n"},
    {"NamedArguments",
     {"Sub Show(a As Integer, b As Integer)", "  Debug.Print a; b", "End Sub", "Sub Main",
      "  Show b:=2, a:=1", "End Sub"},
     L"1%2%\r\n"},
    {"OptionalWithDefault",
     {"Sub Show(a As Integer, Optional b As Integer = 7)", "  Debug.Print a; b", "End Sub", "Sub Main",
      "  Show 1", "  Show 1, 2", "End Sub"},
     L"1%7%\r\n1%2%\r\n"},
    {"FunctionCallInsideLoopCondition",
     {"Function Limit() As Integer", "  Limit = 3", "End Function", "Sub Main", "  Dim i As Integer",
      "  Do While i < Limit()", "    i = i + 1", "  Loop", "  Debug.Print i", "End Sub"},
     L"3%\r\n"},
    {"SelectCase",
     {"Sub Main", "  Dim i As Integer", "  For i = 1 To 6", "    Select Case i", "      Case 1", "        Debug.Print \"a\";",
      "      Case 2, 3", "        Debug.Print \"b\";", "      Case 4 To 5", "        Debug.Print \"c\";",
      "      Case Else", "        Debug.Print \"d\";", "    End Select", "  Next", "End Sub"},
     L"\"a\"\"b\"\"b\"\"c\"\"c\"\"d\""},
    {"SelectCaseIs",
     {"Sub Main", "  Select Case 10", "    Case Is < 5", "      Debug.Print 1", "    Case Is >= 10",
      "      Debug.Print 2", "  End Select", "End Sub"},
     L"2%\r\n"},
    {"GoToLabel",
     {"Sub Main", "  Dim i As Integer", "Again:", "  i = i + 1", "  If i < 4 Then GoTo Again", "  Debug.Print i",
      "End Sub"},
     L"4%\r\n"},
    {"ExitSub",
     {"Sub Main", "  Debug.Print 1", "  Exit Sub", "  Debug.Print 2", "End Sub"}, L"1%\r\n"},
    {"EndStopsRun",
     {"Sub Inner", "  Debug.Print 1", "  End", "End Sub", "Sub Main", "  Inner", "  Debug.Print 2", "End Sub"},
     L"1%\r\n"},
    {"StaticLocalKeepsValue",
     {"Sub Count", "  Static n As Integer", "  n = n + 1", "  Debug.Print n", "End Sub", "Sub Main", "  Count",
      "  Count", "  Count", "End Sub"},
     L"1%\r\n2%\r\n3%\r\n"},
    {"ModuleVariable",
     {"Dim total As Long", "Sub Add(n As Long)", "  total = total + n", "End Sub", "Sub Main", "  Add 5", "  Add 6",
      "  Debug.Print total", "End Sub"},
     L"11&\r\n"},
    {"ParamArrayCountsItems",
     {"Function Sum(ParamArray items() As Variant) As Long", "  Dim i As Integer", "  For i = 0 To UBound(items)",
      "    Sum = Sum + items(i)", "  Next", "End Function", "Sub Main", "  Debug.Print Sum(1, 2, 3); Sum()",
      "End Sub"},
     L"6&0&\r\n"},
    {"LocalArray",
     {"Sub Main", "  Dim a(1 To 3) As Integer, i As Integer", "  For i = 1 To 3", "    a(i) = i * i", "  Next",
      "  Debug.Print a(1); a(2); a(3); LBound(a); UBound(a)", "End Sub"},
     L"1%4%9%1&3&\r\n"},
    {"TwoDimensionalModuleArray",
     {"Dim grid(2, 3) As Long", "Sub Main", "  grid(2, 3) = 23", "  grid(1, 0) = 10",
      "  Debug.Print grid(2, 3); grid(1, 0); grid(0, 0); UBound(grid, 2)", "End Sub"},
     L"23&10&0&3&\r\n"},
    {"StringArrayElements",
     {"Sub Main", "  Dim s(2) As String", "  s(0) = \"x\"", "  s(2) = s(0) & \"y\"", "  Debug.Print s(2); s(1)",
      "End Sub"},
     L"\"xy\"\"\"\r\n"},
    {"ForEachOverArray",
     {"Sub Main", "  Dim a(3) As Integer, v As Variant, i As Integer", "  For i = 0 To 3", "    a(i) = 10 + i",
      "  Next", "  For Each v In a", "    Debug.Print v;", "  Next v", "End Sub"},
     L"10%11%12%13%"},
    {"ArrayPassedByReference",
     {"Sub Fill(b() As Integer)", "  b(1) = 7", "End Sub", "Sub Main", "  Dim a(2) As Integer", "  Fill a",
      "  Debug.Print a(1)", "End Sub"},
     L"7%\r\n"},
    {"CompoundStatement",
     {"Sub Main", "  Dim a As Integer, b As Integer", "  a = 1: b = 2: a = a + b", "  Debug.Print a", "End Sub"},
     L"3%\r\n"},
    {"ContinuationLine",
     {"Sub Main", "  Debug.Print 1 + _", "    2", "  Debug.Print 4", "End Sub"}, L"3%\r\n4%\r\n"},
    {"ModuleConstant",
     {"Const Base = 100", "Sub Main", "  Const Step2 = 2", "  Debug.Print Base + Step2", "End Sub"}, L"102%\r\n"},
    {"WithBlockRunsBody",
     {"Sub Main", "  With 5", "    Debug.Print 1", "  End With", "End Sub"}, L"1%\r\n"},
    {"ImplicitVariable", {"Sub Main", "  x = 3", "  Debug.Print x * 2", "End Sub"}, L"6%\r\n"},
};

INSTANTIATE_TEST_SUITE_P(Statements, ProgramOutputTest, ::testing::ValuesIn(kRunCases),
                         [](const ::testing::TestParamInfo<RunCase>& info) { return std::string(info.param.name); });

} // namespace
} // namespace brannoc
