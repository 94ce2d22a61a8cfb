#include "ProgramRunner.h"

#include "frontend/CompileMessage.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

using testing::JoinLines;
using testing::RunProgram;

struct ErrorCase {
    const char* name;
    std::vector<std::string> lines;
    CompileMessage message;
    int line;
};

std::ostream& operator<<(std::ostream& out, const ErrorCase& error) { return out << error.name; }

class CompileErrorTest : public ::testing::TestWithParam<ErrorCase> {};

TEST_P(CompileErrorTest, ReportsMessageAtLine)
{
    const ErrorCase& expected = GetParam();
    const auto result = RunProgram(JoinLines(expected.lines));
    EXPECT_EQ(result.parse, ParseResult::SyntaxErrors);
    ASSERT_FALSE(result.compileErrors.empty());
    const CompileError& first = result.compileErrors.front();
    EXPECT_EQ(first.number, static_cast<unsigned>(expected.message)) << std::string(first.message.begin(), first.message.end());
    EXPECT_EQ(first.line, expected.line);
}

const ErrorCase kErrorCases[] = {
    {"ForWithoutNext", {"Sub Main", "  Dim i As Integer", "  For i = 1 To 2", "End Sub"},
     CompileMessage::UnterminatedBlockStatement, 4},
    {"IfWithoutEndIf", {"Sub Main", "  If 1 Then", "    Debug.Print 1", "End Sub"},
     CompileMessage::UnterminatedBlockStatement, 4},
    {"NextNamesOtherVariable",
     {"Sub Main", "  Dim i As Integer, j As Integer", "  For i = 1 To 2", "  Next j", "End Sub"},
     CompileMessage::NextVarDoesNotMatchForsVar, 4},
    {"EndClosingNothing", {"Sub Main", "  End If", "End Sub"}, CompileMessage::UnexpectedEndStatement, 2},
    {"EndWithWrongWord", {"Sub Main", "  If 1 Then", "  End Select", "  End If", "End Sub"},
     CompileMessage::UnexpectedEndStatement, 3},
    {"GoToUndefinedLabel", {"Sub Main", "  GoTo Nowhere", "End Sub"}, CompileMessage::GoToLabelHasNotBeenDefined, 2},
    {"ExitSubInFunction", {"Function F() As Integer", "  Exit Sub", "End Function", "Sub Main", "End Sub"},
     CompileMessage::Expecting, 2},
    {"StatementBeforeFirstCase", {"Sub Main", "  Select Case 1", "  Debug.Print 1", "  End Select", "End Sub"},
     CompileMessage::ExpectingACaseDefinition, 3},
    {"CaseIsWithoutComparison", {"Sub Main", "  Select Case 1", "  Case Is 2", "  End Select", "End Sub"},
     CompileMessage::ExpectingComparison, 3},
    {"SubInExpression", {"Sub S", "End Sub", "Sub Main", "  Debug.Print S", "End Sub"},
     CompileMessage::SubsCantBeUsedInExpressions, 4},
    {"MissingParameter", {"Sub S(a As Integer, b As Integer)", "End Sub", "Sub Main", "  S 1", "End Sub"},
     CompileMessage::MissingParameter, 4},
    {"UnknownNamedParameter", {"Sub S(a As Integer)", "End Sub", "Sub Main", "  S c:=1", "End Sub"},
     CompileMessage::NoSuchNamedParameter, 4},
    {"NamedParameterTwice", {"Sub S(a As Integer)", "End Sub", "Sub Main", "  S a:=1, a:=2", "End Sub"},
     CompileMessage::ParameterAlreadyHasAValue, 4},
    {"AssignToConstant", {"Const K = 1", "Sub Main", "  K = 2", "End Sub"}, CompileMessage::CantAssignAValueToAConstant,
     3},
    {"AssignToLocalConstant", {"Sub Main", "  Const K = 1", "  K = 2", "End Sub"},
     CompileMessage::CantAssignAValueToAConstant, 3},
    {"UndeclaredUnderOptionExplicit", {"Option Explicit", "Sub Main", "  x = 1", "End Sub"},
     CompileMessage::ExpectingAnExistingScalarVar, 3},
    {"OperatorWithoutOperand", {"Sub Main", "  Debug.Print 1 +", "End Sub"}, CompileMessage::ExpectingAFactor, 2},
    {"ForCounterNotNumeric", {"Sub Main", "  Dim s As String", "  For s = 1 To 2", "  Next", "End Sub"},
     CompileMessage::ExpectingAScalarNumberVar, 3},
    {"LetWithoutAssignment", {"Sub S", "End Sub", "Sub Main", "  Let S", "End Sub"}, CompileMessage::InvalidLetSyntax, 4},
    {"ArrayInArithmetic", {"Dim a(3) As Integer", "Sub Main", "  Debug.Print a + 1", "End Sub"},
     CompileMessage::OperandOperatorTypeMismatch, 3},
    {"NegatedArray", {"Dim a(3) As Integer", "Sub Main", "  x = -a", "End Sub"},
     CompileMessage::OperandOperatorTypeMismatch, 3},
    {"IsWithNumbers", {"Sub Main", "  Dim i As Integer", "  Debug.Print i Is 1", "End Sub"},
     CompileMessage::OperandOperatorTypeMismatch, 3},
    {"ArrayAsDebugItem", {"Dim a(3) As Integer", "Sub Main", "  Debug.Print a", "End Sub"},
     CompileMessage::ExpectingASimpleExpression, 3},
    {"CallSuffixDisagreesWithResult",
     {"Function F() As Integer", "End Function", "Sub Main", "  Debug.Print F$()", "End Sub"},
     CompileMessage::FunctionIsDefinedWithADifferentValueType, 4},
    {"IndexOnUndeclaredName", {"Sub Main", "  x = y(1)", "End Sub"},
     CompileMessage::ExpectingAnAlreadyDimensionedArray, 2},
    {"IndexOnScalar", {"Sub Main", "  Dim n As Integer", "  n(1) = 2", "End Sub"},
     CompileMessage::ExpectingAnAlreadyDimensionedArray, 3},
    {"BoundsOutOfOrder", {"Sub Main", "  Dim a(5 To 1) As Integer", "End Sub"},
     CompileMessage::LowerBoundIsLargerThanUpperBound, 2},
    {"ReDimOfFixedArray", {"Sub Main", "  Dim a(3) As Integer", "  ReDim a(5)", "End Sub"},
     CompileMessage::ExpectingADynamicArrayVar, 3},
    {"LSetOfNumber", {"Sub Main", "  Dim n As Integer", "  LSet n = \"x\"", "End Sub"},
     CompileMessage::ExpectingAStringOrUserTypeVar, 3},
    {"MidStartBelowOne", {"Sub Main", "  Dim s As String", "  Mid(s, 0) = \"x\"", "End Sub"},
     CompileMessage::StringIndexMustBeGreaterThanOrEqualToOne, 3},
    {"MidOfNumber", {"Sub Main", "  Dim n As Long", "  Mid(n, 1) = \"x\"", "End Sub"},
     CompileMessage::ExpectingASimpleVarExpression, 3},
    {"ScalarToArrayParameter", {"Sub S(a() As Integer)", "End Sub", "Sub Main", "  S 1", "End Sub"},
     CompileMessage::ExpressionDoesNotMatchParameterType, 4},
    {"ArrayToScalarParameter",
     {"Sub S(n As Integer)", "End Sub", "Sub Main", "  Dim a(2) As Integer", "  S a", "End Sub"},
     CompileMessage::ExpressionDoesNotMatchParameterType, 5},
    {"LocalConstantFromVariable", {"Sub Main", "  Dim v As Integer", "  Const K = v + 1", "End Sub"},
     CompileMessage::ExpectingAConstantOrFunctionName, 3},
    {"TextAfterBlockElse",
     {"Sub Main", "  If 1 Then", "  Else If 2 Then", "  End If", "End Sub"}, CompileMessage::UnexpectedText, 3},
    {"TextAfterNext", {"Sub Main", "  Dim i As Integer", "  For i = 1 To 2", "  Next i 5", "End Sub"},
     CompileMessage::UnexpectedText, 4},
    {"SuffixDisagreesWithDeclaration", {"Sub Main", "  Dim a As Integer", "  a$ = \"x\"", "End Sub"},
     CompileMessage::VarIsAlreadyDefinedAsADifferentType, 3},
    {"StringSuffixOnNumber", {"Sub Main", "  Debug.Print 1", "  Debug.Print 5$", "End Sub"},
     CompileMessage::TypeMismatch, 3},
    {"NumberTooLargeForItsSuffix", {"Sub Main", "  Debug.Print 1", "  Debug.Print 40000%", "End Sub"},
     CompileMessage::Overflow, 3},
    {"HexDigitExpected", {"Sub Main", "  Debug.Print 1", "  Debug.Print &HG1", "End Sub"},
     CompileMessage::InvalidNumericConstant, 3},
    {"HexLiteralTooLong", {"Sub Main", "  Debug.Print 1", "  Debug.Print &H123456789", "End Sub"},
     CompileMessage::InvalidNumericConstant, 3},
    {"OctalDigitExpected", {"Sub Main", "  Debug.Print 1", "  Debug.Print &OA", "End Sub"},
     CompileMessage::InvalidNumericConstant, 3},
};

INSTANTIATE_TEST_SUITE_P(Statements, CompileErrorTest, ::testing::ValuesIn(kErrorCases),
                         [](const ::testing::TestParamInfo<ErrorCase>& info) { return std::string(info.param.name); });

TEST(CompileErrorText, UnterminatedBlockNamesTheKeyword)
{
    const auto result = RunProgram(JoinLines({"Sub Main", "  Do", "End Sub"}));
    ASSERT_FALSE(result.compileErrors.empty());
    EXPECT_NE(result.compileErrors.front().message.find(L"Do"), std::wstring::npos);
}

TEST(RunTimeErrors, DivisionByZeroIsReportedAndStopsTheRun)
{
    const auto result = RunProgram(JoinLines({"Sub Main", "  Dim a As Integer", "  Debug.Print 1", "  Debug.Print 1 / a",
                                              "  Debug.Print 2", "End Sub"}));
    ASSERT_EQ(result.parse, ParseResult::Okay);
    EXPECT_EQ(result.output, L"1%\r\n");
    ASSERT_EQ(result.runErrors.size(), 1u);
    EXPECT_NE(result.runErrors.front().number, 0);
}

TEST(EndStatements, ExitAllEndsTheRunFromInsideACall)
{
    const auto result = RunProgram(JoinLines({"Sub Inner", "  Debug.Print 1", "  Exit All", "  Debug.Print 2",
                                              "End Sub", "Sub Main", "  Inner", "  Debug.Print 3", "End Sub"}));
    ASSERT_EQ(result.parse, ParseResult::Okay);
    EXPECT_EQ(result.output, L"1%\r\n");
    EXPECT_TRUE(result.finished);
}

TEST(CompileErrorText, AnOperatorOnConstantsThatFailsIsACompileErrorAtTheOperator)
{
    struct Row {
        const char* line;
        unsigned number;
        const wchar_t* message;
        int offset;
    };
    const Row rows[] = {
        {"  Debug.Print 1 / 0", 10061, L"Divide by zero.", 16},
        {"  Debug.Print 2 + 10 \\ (3 - 3)", 10061, L"Divide by zero.", 21},
        {"  Debug.Print 7 Mod 0", 10061, L"Divide by zero.", 16},
        {"  Debug.Print \"a\" * 2", 10080, L"Type mismatch.", 18},
        {"  Const K = 1 / 0", 10061, L"Divide by zero.", 14},
    };
    for (const Row& row : rows) {
        const auto result = RunProgram(JoinLines({"Sub Main", "  Debug.Print 1", row.line, "End Sub"}));
        EXPECT_EQ(result.parse, ParseResult::SyntaxErrors) << row.line;
        ASSERT_EQ(result.compileErrors.size(), 1u) << row.line;
        EXPECT_EQ(result.compileErrors.front().number, row.number) << row.line;
        EXPECT_EQ(result.compileErrors.front().message, row.message) << row.line;
        EXPECT_EQ(result.compileErrors.front().line, 3) << row.line;
        EXPECT_EQ(result.compileErrors.front().offset, row.offset) << row.line;
        EXPECT_EQ(result.output, L"") << row.line;
    }
}

TEST(RunTimeErrors, IndexOutOfRange)
{
    const auto result = RunProgram(
        JoinLines({"Sub Main", "  Dim a(2) As Integer", "  a(3) = 1", "  Debug.Print 1", "End Sub"}));
    ASSERT_EQ(result.parse, ParseResult::Okay);
    EXPECT_EQ(result.output, L"");
    ASSERT_EQ(result.runErrors.size(), 1u);
    EXPECT_EQ(result.runErrors.front().number, 10023);
}

TEST(RunTimeErrors, ReDimPreserveMayNotMoveTheLowerBound)
{
    const auto result = RunProgram(JoinLines({"Sub Main", "  Dim a() As Integer", "  ReDim a(1 To 10)",
                                              "  ReDim Preserve a(0 To 10)", "End Sub"}));
    ASSERT_EQ(result.parse, ParseResult::Okay);
    ASSERT_EQ(result.runErrors.size(), 1u);
    EXPECT_EQ(result.runErrors.front().number, 10023);
}

TEST(RunTimeErrors, ReDimWithBoundsOutOfOrder)
{
    const auto result = RunProgram(JoinLines({"Sub Main", "  Dim a() As Integer", "  ReDim a(5 To 1)", "End Sub"}));
    ASSERT_EQ(result.parse, ParseResult::Okay);
    ASSERT_EQ(result.runErrors.size(), 1u);
    EXPECT_EQ(result.runErrors.front().number, 10024);
}

TEST(RunTimeErrors, OverflowInAssignmentToInteger)
{
    const auto result =
        RunProgram(JoinLines({"Sub Main", "  Dim a As Integer", "  a = 40000", "  Debug.Print a", "End Sub"}));
    ASSERT_EQ(result.parse, ParseResult::Okay);
    EXPECT_EQ(result.output, L"");
    EXPECT_EQ(result.runErrors.size(), 1u);
}

} // namespace
} // namespace brannoc

namespace brannoc {
namespace {

TEST(UsedModules, CallsPublicProceduresWithTheirOwnModuleVariables)
{
    const std::string library = testing::JoinLines({"Public Count As Long", "Dim hidden As Integer",
                                                    "Public Sub Bump(ByVal n As Long)", "  Count = Count + n",
                                                    "  hidden = hidden + 1", "End Sub",
                                                    "Public Function Hits() As Integer", "  Hits = hidden",
                                                    "End Function"});
    const auto result = testing::RunProgram(
        testing::JoinLines({"'#Uses \"Lib\"", "Dim hidden As Integer", "Sub Main", "  Bump 5", "  Bump 2",
                            "  hidden = 100", "  Debug.Print Count; Hits(); hidden", "End Sub"}),
        {{"Lib", library}});
    ASSERT_EQ(result.parse, ParseResult::Okay)
        << (result.compileErrors.empty() ? std::string() : result.compileErrors.front().lineText);
    EXPECT_TRUE(result.runErrors.empty());
    EXPECT_EQ(result.output, L"7&2%100%\r\n");
}

TEST(UsedModules, PrivateProceduresOfUsedModulesAreNotVisible)
{
    const auto result = testing::RunProgram(
        testing::JoinLines({"'#Uses \"Lib\"", "Sub Main", "  Secret", "End Sub"}),
        {{"Lib", testing::JoinLines({"Private Sub Secret()", "End Sub"})}});
    EXPECT_EQ(result.parse, ParseResult::SyntaxErrors);
}

} // namespace
} // namespace brannoc

namespace brannoc {
namespace {

TEST(BlockedKeywords, BlockedStatementIsRefused)
{
    testing::MemorySource source;
    source.texts["Test"] = ModuleText{testing::JoinLines({"Sub Main", "Again:", "  GoTo Again", "End Sub"}), false};
    Compiler compiler(source);
    BodyCompiler bodies;
    compiler.SetBodyCompiler(&bodies);
    compiler.GetLexer().SetBlockedKeywords("GoTo");
    EXPECT_EQ(compiler.Parse("Test", 0), ParseResult::SyntaxErrors);
    ASSERT_FALSE(compiler.Errors().empty());
    EXPECT_EQ(compiler.Errors().front().number,
              static_cast<unsigned>(CompileMessage::ThisLanguageFeatureHasBeenDisabled));
    EXPECT_EQ(compiler.Errors().front().line, 3);
}

TEST(CallArguments, TooManyArgumentsAreAWrongNumberOfParameters)
{
    const auto result = testing::RunProgram(
        testing::JoinLines({"Sub S(a As Integer)", "End Sub", "Sub Main", "  S 1, 2", "End Sub"}));
    ASSERT_FALSE(result.compileErrors.empty());
    EXPECT_EQ(result.compileErrors.front().number, 10019u);
    EXPECT_EQ(result.compileErrors.front().message.substr(0, 27), L"Wrong number of parameters.");
}

TEST(CompileErrors, EveryBodyIsCompiledWhileTheErrorsStayBelowTheLimit)
{
    const std::string text = JoinLines({"Sub A", "  x = )", "End Sub", "Sub B", "  y = )", "End Sub", "Sub Main",
                                        "  z = )", "End Sub"});
    const auto result = RunProgram(text);
    ASSERT_EQ(result.compileErrors.size(), 3u) << "one error in each body";
    EXPECT_EQ(result.compileErrors[0].line, 2);
    EXPECT_EQ(result.compileErrors[1].line, 5);
    EXPECT_EQ(result.compileErrors[2].line, 8);

    // At the limit the compile stops.
    testing::MemorySource source;
    source.texts["Test"] = ModuleText{text, false};
    Compiler compiler(source);
    BodyCompiler bodies;
    compiler.SetBodyCompiler(&bodies);
    compiler.SetErrorLimit(2);
    EXPECT_EQ(compiler.Parse("Test", 0), ParseResult::SyntaxErrors);
    EXPECT_EQ(compiler.Errors().size(), 2u);
}

TEST(InlineStatements, BlockKeywordAfterThenIsUnexpected)
{
    const auto result = testing::RunProgram(testing::JoinLines({"Sub Main", "  If 1 Then For", "End Sub"}));
    ASSERT_FALSE(result.compileErrors.empty());
    EXPECT_EQ(result.compileErrors.front().number, static_cast<unsigned>(CompileMessage::UnexpectedText));
}

} // namespace
} // namespace brannoc
