#include "ProgramRunner.h"

#include "code/ProcedureBody.h"
#include "frontend/Token.h"

#include <gtest/gtest.h>

namespace brannoc {
namespace {

using testing::JoinLines;
using testing::MemorySource;

class StatementVectorTest : public ::testing::Test {
protected:
    // Compiles the text and answers the code of procedure `name`, or null.
    ProcedureCode* Compile(const std::vector<std::string>& lines, const std::string& name = "Main")
    {
        source.texts["Test"] = ModuleText{JoinLines(lines), false};
        compiler.SetBodyCompiler(&bodies);
        if (compiler.Parse("Test", 0) != ParseResult::Okay)
            return nullptr;
        for (const auto& procedure : compiler.FindModule("Test")->Compiled()->procedures) {
            if (procedure->name == name)
                return procedure->code.get();
        }
        return nullptr;
    }

    static std::string Listing(ProcedureCode& code, int index)
    {
        std::string out;
        code.StatementAt(index)->Print(out);
        return out;
    }

    MemorySource source;
    Compiler compiler{source};
    BodyCompiler bodies;
};

TEST_F(StatementVectorTest, OneEntryPerSourceLine)
{
    ProcedureCode* code = Compile({"Sub Main", "  Dim a As Integer", "", "  ' comment", "  a = 1", "End Sub"});
    ASSERT_NE(code, nullptr);
    EXPECT_EQ(code->LastStatementIndex(), 5);
    EXPECT_FALSE(code->IsEmptyStatement(0)) << "procedure entry";
    EXPECT_TRUE(code->IsEmptyStatement(1)) << "Dim";
    EXPECT_TRUE(code->IsEmptyStatement(2)) << "blank line";
    EXPECT_TRUE(code->IsEmptyStatement(3)) << "comment line";
    EXPECT_FALSE(code->IsEmptyStatement(4));
    EXPECT_FALSE(code->IsEmptyStatement(5)) << "procedure exit";
}

TEST_F(StatementVectorTest, ContinuedStatementIsFollowedByEmptyEntries)
{
    ProcedureCode* code =
        Compile({"Sub Main", "  Debug.Print 1 + _", "    2 + _", "    3", "  Debug.Print 4", "End Sub"});
    ASSERT_NE(code, nullptr);
    EXPECT_FALSE(code->IsEmptyStatement(1));
    EXPECT_TRUE(code->IsEmptyStatement(2));
    EXPECT_TRUE(code->IsEmptyStatement(3));
    EXPECT_FALSE(code->IsEmptyStatement(4));
    EXPECT_EQ(Listing(*code, 1), "Debug.Print 1 + 2 + 3");
    EXPECT_EQ(Listing(*code, 4), "Debug.Print 4");
}

TEST_F(StatementVectorTest, CompoundStatementIsOneEntry)
{
    ProcedureCode* code = Compile({"Sub Main", "  a = 1: b = 2: c = 3", "End Sub"});
    ASSERT_NE(code, nullptr);
    EXPECT_EQ(code->LastStatementIndex(), 2);
    EXPECT_FALSE(code->IsEmptyStatement(1));
}

TEST_F(StatementVectorTest, ListingUsesTheKeywordTableCase)
{
    ProcedureCode* code = Compile({"sub main", "  dim i as integer", "  for i = 1 to 3 step 1", "    debug.print \"for\"; i",
                                   "  next i ' done", "end sub"},
                                  "main");
    ASSERT_NE(code, nullptr);
    EXPECT_EQ(Listing(*code, 2), "For i = 1 To 3 Step 1");
    EXPECT_EQ(Listing(*code, 3), "Debug.Print \"for\"; i");
    EXPECT_EQ(Listing(*code, 4), "Next i ' done");
}

TEST_F(StatementVectorTest, StatementsCarryTheirKeyword)
{
    ProcedureCode* code = Compile({"Sub Main", "  Dim i As Integer", "  For i = 1 To 2", "  Next", "  Do", "  Loop Until 1",
                                   "  If 1 Then Debug.Print 1", "End Sub"});
    ASSERT_NE(code, nullptr);
    EXPECT_EQ(code->StatementAt(2)->KeywordToken(), TokenNumber(Token::For));
    EXPECT_EQ(code->StatementAt(3)->KeywordToken(), TokenNumber(Token::Next));
    EXPECT_EQ(code->StatementAt(4)->KeywordToken(), TokenNumber(Token::Do));
    EXPECT_EQ(code->StatementAt(5)->KeywordToken(), TokenNumber(Token::Loop));
    EXPECT_EQ(code->StatementAt(6)->KeywordToken(), TokenNumber(Token::If));
}

TEST_F(StatementVectorTest, ParametersAndFunctionResultAreInTheFrame)
{
    ProcedureCode* code = Compile({"Function F(a As Integer, b As Long) As Double", "  Dim c As String", "  F = a",
                                   "End Function", "Sub Main", "End Sub"},
                                  "F");
    ASSERT_NE(code, nullptr);
    EXPECT_EQ(code->ParameterCount(), 2);
    EXPECT_EQ(code->FrameSize(), 4 * sizeof(VARIANT)) << "two parameters, the result and one local";
}

TEST(ListingOf, JoinsContinuationsAndKeepsStringsAndComments)
{
    EXPECT_EQ(ListingOf("if x then debug.print \"if then\" ' if"), "If x Then Debug.Print \"if then\" ' if");
    EXPECT_EQ(ListingOf("a = 1 + _\r\n    2"), "a = 1 + 2");
    EXPECT_EQ(ListingOf("myName = 3   "), "myName = 3");
}

} // namespace
} // namespace brannoc

namespace brannoc {
namespace {

// Stands in for a breakpoint: counts its runs and runs nothing else.
class CountingStatement final : public Node {
public:
    void Release() override {}
    [[nodiscard]] bool Execute() override
    {
        ++runs;
        return true;
    }
    int runs = 0;
};

TEST(ReplaceStatement, ReplacementRunsInPlaceAndOriginalComesBack)
{
    testing::MemorySource source;
    source.texts["Test"] =
        ModuleText{testing::JoinLines({"Sub Main", "  Debug.Print 1", "  Debug.Print 2", "End Sub"}), false};
    Compiler compiler(source);
    BodyCompiler bodies;
    compiler.SetBodyCompiler(&bodies);
    ASSERT_EQ(compiler.Parse("Test", 0), ParseResult::Okay);
    Module* module = compiler.FindModule("Test");
    auto* code = static_cast<CompiledProcedure*>(module->Compiled()->entry->code.get());
    EXPECT_EQ(code->FirstLine(), 1);
    EXPECT_EQ(code->LineCount(), 4);

    CountingStatement counting;
    Node* original = code->ReplaceStatement(1, &counting);
    testing::PrintingHost host;
    Interpreter interpreter(host);
    host.interpreter = &interpreter;
    InterpreterScope scope(interpreter);
    ModuleInstance instance(*module);
    ASSERT_TRUE(interpreter.StartEntry(*code, &instance));
    interpreter.PrepareRun(0);
    while (interpreter.RunStep(false) != 0) {
    }
    EXPECT_EQ(counting.runs, 1);
    EXPECT_EQ(host.output, L"2%\r\n");
    EXPECT_EQ(code->ReplaceStatement(1, original), &counting);
}

} // namespace
} // namespace brannoc

namespace brannoc {
namespace {

TEST(HostCalls, FunctionResultArrivesInTheMarkedSlotOnly)
{
    testing::MemorySource source;
    source.texts["Test"] = ModuleText{
        testing::JoinLines({"Function Twice(n As Integer) As Integer", "  Twice = n * 2", "End Function", "Sub Main",
                            "End Sub"}),
        false};
    Compiler compiler(source);
    BodyCompiler bodies;
    compiler.SetBodyCompiler(&bodies);
    ASSERT_EQ(compiler.Parse("Test", 0), ParseResult::Okay);
    Module* module = compiler.FindModule("Test");
    ProcedureCode* twice = nullptr;
    for (const auto& procedure : module->Compiled()->procedures) {
        if (procedure->name == "Twice")
            twice = procedure->code.get();
    }
    ASSERT_NE(twice, nullptr);
    testing::PrintingHost host;
    Interpreter interpreter(host);
    host.interpreter = &interpreter;
    InterpreterScope scope(interpreter);
    ModuleInstance instance(*module);

    // With the placeholder below the argument the result replaces it.
    interpreter.Values().Push()->SetError(kResultSlotStatus);
    interpreter.Values().Push()->SetInteger(21);
    ASSERT_TRUE(interpreter.RunHostCall(*twice, &instance));
    ASSERT_EQ(interpreter.Values().Size(), 2u);
    ASSERT_EQ(interpreter.Values().At(0).Tag(), VT_I2);
    EXPECT_EQ(interpreter.Values().At(0).Integer(), 42);
    interpreter.Values().CutBack(0);

    // Without it an Empty value below the argument stays as it was.
    (void)interpreter.Values().Push();
    interpreter.Values().Push()->SetInteger(5);
    ASSERT_TRUE(interpreter.RunHostCall(*twice, &instance));
    EXPECT_EQ(interpreter.Values().At(0).Tag(), VT_EMPTY);
    interpreter.Values().CutBack(0);
}

} // namespace
} // namespace brannoc
