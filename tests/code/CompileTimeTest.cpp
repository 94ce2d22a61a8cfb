// Compiles and runs a generated 1000-line macro and prints how long the engine took. The figures are
// for reading only; the test checks the result of the run, never the time.
#include "ProgramRunner.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

namespace brannoc {
namespace {

using testing::JoinLines;
using testing::MemorySource;
using testing::RunProgram;

constexpr int kProcedures = 46;
constexpr int kLinesPerProcedure = 21;
constexpr int kMainCallLines = 30;
// Main: its Sub line, the Dim, the call lines, the Debug.Print and End Sub.
constexpr int kMacroLines = kProcedures * kLinesPerProcedure + kMainCallLines + 4;
static_assert(kMacroLines == 1000);

// One Function of exactly kLinesPerProcedure lines with nested For, Select Case, If and Do blocks.
void AppendProcedure(std::vector<std::string>& lines, int k)
{
    const std::string name = "F" + std::to_string(k);
    lines.push_back("Function " + name + "(ByVal n As Long) As Long");
    lines.push_back("    Dim i As Long, total As Long");
    lines.push_back("    For i = 1 To n");
    lines.push_back("        Select Case i Mod 3");
    lines.push_back("            Case 0");
    lines.push_back("                total = total + i");
    lines.push_back("            Case 1");
    lines.push_back("                total = total - 1");
    lines.push_back("            Case Else");
    lines.push_back("                If i > 2 Then");
    lines.push_back("                    total = total + 2");
    lines.push_back("                Else");
    lines.push_back("                    total = total * 1");
    lines.push_back("                End If");
    lines.push_back("        End Select");
    lines.push_back("    Next i");
    lines.push_back("    Do While total > 1000");
    lines.push_back("        total = total \\ 2");
    lines.push_back("    Loop");
    lines.push_back("    " + name + " = total + " + std::to_string(k));
    lines.push_back("End Function");
}

// What one generated Function returns, worked out the same way in C++.
long ExpectedProcedureResult(long n, int k)
{
    long total = 0;
    for (long i = 1; i <= n; ++i) {
        switch (i % 3) {
        case 0: total += i; break;
        case 1: total -= 1; break;
        default:
            if (i > 2)
                total += 2;
            break;
        }
    }
    while (total > 1000)
        total /= 2;
    return total + k;
}

struct GeneratedMacro {
    std::vector<std::string> lines;
    long expectedSum = 0;
};

// kProcedures Functions, then a Main that calls each of them (three calls a line) and prints the sum.
GeneratedMacro MakeMacro()
{
    GeneratedMacro macro;
    for (int k = 0; k < kProcedures; ++k)
        AppendProcedure(macro.lines, k);
    macro.lines.push_back("Sub Main");
    macro.lines.push_back("    Dim sum As Long");
    int next = 0;
    for (int line = 0; line < kMainCallLines; ++line) {
        std::string text = "    sum = sum";
        for (int call = 0; call < 3; ++call, ++next) {
            const int k = next % kProcedures;
            text += " + F" + std::to_string(k) + "(" + std::to_string(10 + line) + ")";
            macro.expectedSum += ExpectedProcedureResult(10 + line, k);
        }
        macro.lines.push_back(text);
    }
    macro.lines.push_back("    Debug.Print sum");
    macro.lines.push_back("End Sub");
    return macro;
}

double MillisecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

TEST(CompileTimeTest, GeneratedMacroHasAThousandLines)
{
    EXPECT_EQ(MakeMacro().lines.size(), static_cast<std::size_t>(kMacroLines));
}

TEST(CompileTimeTest, CompilesAndRunsAThousandLineMacro)
{
    const GeneratedMacro macro = MakeMacro();
    const std::string text = JoinLines(macro.lines);

    MemorySource source;
    source.texts["Test"] = ModuleText{text, false};
    Compiler compiler(source);
    BodyCompiler bodies;
    compiler.SetBodyCompiler(&bodies);
    const auto compileStart = std::chrono::steady_clock::now();
    const ParseResult parse = compiler.Parse("Test", 0);
    const double compileMs = MillisecondsSince(compileStart);
    ASSERT_EQ(parse, ParseResult::Okay);
    EXPECT_TRUE(compiler.Errors().empty());

    const auto runStart = std::chrono::steady_clock::now();
    const auto result = RunProgram(text);
    const double compileAndRunMs = MillisecondsSince(runStart);
    ASSERT_EQ(result.parse, ParseResult::Okay);
    EXPECT_TRUE(result.finished);
    EXPECT_TRUE(result.runErrors.empty());
    EXPECT_EQ(result.output, std::to_wstring(macro.expectedSum) + L"&\r\n");

    std::printf("[ timing   ] %zu lines: compile %.2f ms; compile and run %.2f ms\n", macro.lines.size(), compileMs,
                compileAndRunMs);
}

} // namespace
} // namespace brannoc
