// Compiling calls of built-ins: argument checks and their messages, named arguments, user names that
// hide built-ins, instructions as statements, blocked built-ins and constant folding.
#include "code/ProcedureBody.h"
#include "code/ProgramRunner.h"
#include "frontend/CompileMessage.h"

#include <gtest/gtest.h>

namespace brannoc::testing {
namespace {

struct CompileRow {
    const char* line;
    CompileMessage message;
    const wchar_t* text;
};

std::ostream& operator<<(std::ostream& out, const CompileRow& row) { return out << row.line; }

class BuiltinCompileErrorTest : public ::testing::TestWithParam<CompileRow> {};

TEST_P(BuiltinCompileErrorTest, ReportsMessage)
{
    const CompileRow& row = GetParam();
    const auto result = RunProgram(JoinLines({"Sub Main", "  Dim s As String, a(3) As Integer", std::string("  ") + row.line,
                                              "End Sub"}));
    EXPECT_EQ(result.parse, ParseResult::SyntaxErrors) << row.line;
    ASSERT_FALSE(result.compileErrors.empty()) << row.line;
    const CompileError& first = result.compileErrors.front();
    EXPECT_EQ(first.number, static_cast<unsigned>(row.message)) << row.line;
    EXPECT_EQ(first.message, row.text) << row.line;
    EXPECT_EQ(first.line, 3) << row.line;
}

const CompileRow kCompileRows[] = {
    {"Debug.Print Left(\"abc\")", CompileMessage::MissingParameter, L"Missing parameter. 'Len'"},
    {"Debug.Print Left(\"abc\", 1, 2)", static_cast<CompileMessage>(10019), L"Wrong number of parameters."},
    {"Debug.Print Mid(Index:=1)", CompileMessage::MissingParameter, L"Missing parameter. 'S'"},
    {"Debug.Print Left(S:=\"a\", Size:=1)", CompileMessage::NoSuchNamedParameter, L"No such named parameter. 'Size'"},
    {"Debug.Print Left(S:=\"a\", S:=\"b\")", CompileMessage::ParameterAlreadyHasAValue,
     L"Parameter already has a value. 'S'"},
    {"Debug.Print Left(S:=\"a\", 1)", CompileMessage::Expecting, L"Expecting ':='"},
    {"Debug.Print Len(a)", CompileMessage::ExpressionDoesNotMatchParameterType,
     L"Expression does not match parameter type. 'S'"},
    {"Debug.Print UBound(s)", CompileMessage::ExpectingAnArrayVar, L"Expecting an array var."},
    {"Debug.Print Join(s)", CompileMessage::ExpectingAnArrayVar, L"Expecting an array var."},
    {"Debug.Print Randomize", CompileMessage::TheBuiltInInstructionCantHaveAResult,
     L"The built-in instruction can't have a result. 'Randomize'"},
    {"s = Beep()", CompileMessage::TheBuiltInInstructionCantHaveAResult,
     L"The built-in instruction can't have a result. 'Beep'"},
    {"Debug.Print Left%(\"a\", 1)", CompileMessage::FunctionIsDefinedWithADifferentValueType,
     L"Function is defined with a different value type. 'Left'"},
    {"Debug.Print InStr(S1:=\"a\")", CompileMessage::MissingParameter, L"Missing parameter. 'S2'"},
};
INSTANTIATE_TEST_SUITE_P(Calls, BuiltinCompileErrorTest, ::testing::ValuesIn(kCompileRows));

std::wstring Output(const std::vector<std::string>& lines)
{
    const auto result = RunProgram(JoinLines(lines));
    EXPECT_EQ(result.parse, ParseResult::Okay);
    EXPECT_TRUE(result.runErrors.empty());
    return result.output;
}

TEST(BuiltinCalls, NamedArgumentsUseTheTypeLibraryNames)
{
    EXPECT_EQ(Output({"Sub Main", "  Debug.Print Mid(Len:=2, S:=\"abcdef\", Index:=3); InStr(S2:=\"c\", S1:=\"abc\")",
                      "End Sub"}),
              L"\"cd\"3&\r\n");
    EXPECT_EQ(Output({"Sub Main", "  Debug.Print Replace(\"aaa\", \"a\", \"b\", Count:=1)", "End Sub"}), L"\"baa\"\r\n");
}

TEST(BuiltinCalls, DeclaredNamesHideBuiltins)
{
    EXPECT_EQ(Output({"Function Left(a, b)", "  Left = \"mine\"", "End Function", "Sub Main",
                      "  Debug.Print Left(\"abc\", 1)", "End Sub"}),
              L"\"mine\"\r\n");
    EXPECT_EQ(Output({"Sub Main", "  Dim Command As Integer", "  Command = 3", "  Debug.Print Command", "End Sub"}),
              L"3%\r\n");
    EXPECT_EQ(Output({"Dim Rnd", "Sub Main", "  Rnd = \"x\"", "  Debug.Print Rnd", "End Sub"}), L"\"x\"\r\n");
}

TEST(BuiltinCalls, InstructionsAndFunctionsAsStatements)
{
    EXPECT_EQ(Output({"Sub Main", "  Randomize 3", "  Randomize", "  Randomize(3): Beep: DoEvents", "  Left \"abc\", 1",
                      "  Debug.Print Rnd(-1)", "End Sub"}),
              L"0.001251221!\r\n");
}

TEST(BuiltinCalls, DollarFormsAndBareNames)
{
    EXPECT_EQ(Output({"Sub Main", "  Debug.Print Chr$(65); Trim$(\" a \"); Command$; Error$; Rnd(0) = Rnd(0)", "End Sub"}),
              L"\"A\"\"a\"\"\"\"\"True\r\n");
}

TEST(BuiltinCalls, BlockedBuiltinIsRefused)
{
    MemorySource source;
    source.texts["Test"] = ModuleText{JoinLines({"Sub Main", "  Debug.Print Len(\"a\")", "  Debug.Print Mid(\"ab\", 2)", "End Sub"}), false};
    Compiler compiler(source);
    BodyCompiler bodies;
    compiler.SetBodyCompiler(&bodies);
    compiler.SetErrorLimit(5);
    compiler.GetLexer().SetBlockedKeywords("Mid Len");
    EXPECT_EQ(compiler.Parse("Test", 0), ParseResult::SyntaxErrors);
    ASSERT_EQ(compiler.Errors().size(), 2u);
    EXPECT_EQ(compiler.Errors()[0].message, L"This language feature has been disabled. 'Len'");
    EXPECT_EQ(compiler.Errors()[1].message, L"This language feature has been disabled. 'Mid'");
    EXPECT_EQ(compiler.Errors()[1].line, 3);
}

// The number of built-in calls compiled into Main of a one-module program.
int CompiledBuiltinCalls(const std::vector<std::string>& lines)
{
    MemorySource source;
    source.texts["Test"] = ModuleText{JoinLines(lines), false};
    Compiler compiler(source);
    BodyCompiler bodies;
    compiler.SetBodyCompiler(&bodies);
    EXPECT_EQ(compiler.Parse("Test", 0), ParseResult::Okay);
    const Module* module = compiler.FindModule("Test");
    if (!module || !module->Compiled() || !module->Compiled()->entry || !module->Compiled()->entry->code)
        return -1;
    return static_cast<CompiledProcedure*>(module->Compiled()->entry->code.get())->BuiltinCallCount();
}

// A pure call with constant arguments becomes a constant; one that fails is left to run time, where it
// raises with the statement's position.
TEST(BuiltinCalls, PureCallsWithConstantsFold)
{
    EXPECT_EQ(CompiledBuiltinCalls({"Sub Main", "  Debug.Print Left(\"abc\", 2) & UCase(Chr(120))", "End Sub"}), 0);
    EXPECT_EQ(CompiledBuiltinCalls({"Sub Main", "  Dim s", "  Debug.Print Left(s, 2)", "End Sub"}), 1);
    EXPECT_EQ(CompiledBuiltinCalls({"Sub Main", "  Debug.Print Rnd(1)", "End Sub"}), 1);
    EXPECT_EQ(CompiledBuiltinCalls({"Sub Main", "  Debug.Print Left(\"abc\", -1)", "End Sub"}), 1);
    const auto result = RunProgram(JoinLines({"Sub Main", "  Debug.Print Left(\"abc\", 2) & UCase(Chr(120))",
                                              "  Debug.Print Left(\"abc\", -1)", "End Sub"}));
    EXPECT_EQ(result.output, L"\"abX\"\r\n");
    ASSERT_EQ(result.runErrors.size(), 1u);
    EXPECT_EQ(result.runErrors[0].number, 10620);
}

} // namespace
} // namespace brannoc::testing
