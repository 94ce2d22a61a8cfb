// Calls of numeric procedures that the register form runs inside its caller's statement loop: time
// slices that end deep in a recursion yield there, and the run goes on from there to the same result as
// when each call is scheduled.
#include "code/FastExpression.h"

#include "ProgramRunner.h"

#include <gtest/gtest.h>

#include <string>

namespace brannoc {
namespace {

using testing::JoinLines;
using testing::PrintingHost;
using testing::ProgramResult;
using testing::RunProgram;

// A clock that moves on at each reading, so that time slices end every few statements.
DWORD s_clock = 0;
DWORD WINAPI AdvancingClock() { return s_clock += 7; }

struct YieldRecord {
    int yields = 0;
    int deepest = 0;
};

ProgramResult RunYielding(const std::string& text, bool directForms, YieldRecord& record)
{
    const bool previous = SetDirectFormsEnabled(directForms);
    s_clock = 0;
    ProgramResult result = RunProgram(text, {}, 20000000, [&record](ModuleInstance&) {
        Interpreter& interpreter = *Interpreter::Current();
        interpreter.SetTickSource(&AdvancingClock);
        interpreter.SetYielding(true);
        auto& host = static_cast<PrintingHost&>(interpreter.Host());
        host.pumped = [&record, &interpreter] {
            ++record.yields;
            const int calls = interpreter.CallDepth();
            record.deepest = calls > record.deepest ? calls : record.deepest;
        };
    });
    SetDirectFormsEnabled(previous);
    return result;
}

TEST(CallsInLoopTest, TimeSlicesEndingDeepInARecursionYieldThereAndTheRunGoesOn)
{
    const std::string program = JoinLines({
        "Function Depth(ByVal n As Long) As Long",
        "    If n = 0 Then",
        "        Depth = 0",
        "    Else",
        "        Depth = Depth(n - 1) + n Mod 3",
        "    End If",
        "End Function",
        "Sub Bump(ByRef total As Long, ByVal n As Long)",
        "    If n > 0 Then",
        "        total = total + n",
        "        Bump total, n - 1",
        "    End If",
        "End Sub",
        "Sub Main",
        "    Dim total As Long",
        "    Bump total, 1500",
        "    Debug.Print Depth(3000); total",
        "End Sub",
    });
    YieldRecord direct;
    const ProgramResult inLoop = RunYielding(program, true, direct);
    YieldRecord general;
    const ProgramResult scheduled = RunYielding(program, false, general);
    ASSERT_TRUE(inLoop.finished);
    ASSERT_TRUE(scheduled.finished);
    EXPECT_TRUE(inLoop.runErrors.empty());
    EXPECT_EQ(inLoop.output, scheduled.output);
    EXPECT_NE(inLoop.output.find(L"3000"), std::wstring::npos);
    EXPECT_NE(inLoop.output.find(L"1125750"), std::wstring::npos);
    EXPECT_GT(direct.yields, 100);
    EXPECT_GT(direct.deepest, 1000) << "yields came deep inside the recursion";
    EXPECT_GT(general.yields, 100);
}

// A Function with many locals, so that each level's frame is large.
std::string DeepFramesProgram(int depth)
{
    std::vector<std::string> lines = {"Function Deep(ByVal n As Long) As Long"};
    std::string locals = "    Dim v0 As Long";
    for (int i = 1; i < 48; ++i)
        locals += ", v" + std::to_string(i) + " As Long";
    lines.push_back(locals);
    lines.push_back("    v0 = n: v47 = n Mod 7");
    lines.push_back("    If n = 0 Then Deep = 0 Else Deep = Deep(n - 1) + v47 - v0 + n");
    lines.push_back("End Function");
    lines.push_back("Sub Main");
    lines.push_back("    Debug.Print Deep(" + std::to_string(depth) + "); Deep(" + std::to_string(depth) + ")");
    lines.push_back("End Sub");
    return JoinLines(lines);
}

TEST(CallsInLoopTest, FrameBlocksKeptAfterADeepRecursionStayWithinTheirBudget)
{
    // About 800 bytes a level: 3000 levels hold more than the budget while they run.
    std::size_t deepKept = 0;
    const auto keepDeep = [&deepKept](Interpreter& interpreter) { deepKept = interpreter.KeptFrameBytes(); };
    const ProgramResult deep = RunProgram(DeepFramesProgram(3000), {}, 2000000, {}, keepDeep);
    ASSERT_TRUE(deep.finished);
    EXPECT_TRUE(deep.runErrors.empty());
    // Each level adds n Mod 7: the sum over 1..3000.
    long expected = 0;
    for (long n = 1; n <= 3000; ++n)
        expected += n % 7;
    EXPECT_NE(deep.output.find(std::to_wstring(expected)), std::wstring::npos);
    EXPECT_GT(deepKept, Interpreter::kMostKeptFrameBytes / 2) << "the blocks within the budget are kept";
    EXPECT_LE(deepKept, Interpreter::kMostKeptFrameBytes) << "the blocks past the budget went back";

    // A shallow recursion keeps every level's block for the next call.
    std::size_t shallowKept = 0;
    const auto keepShallow = [&shallowKept](Interpreter& interpreter) { shallowKept = interpreter.KeptFrameBytes(); };
    const ProgramResult shallow = RunProgram(DeepFramesProgram(100), {}, 2000000, {}, keepShallow);
    ASSERT_TRUE(shallow.finished);
    EXPECT_GT(shallowKept, 100u * 48 * sizeof(VARIANT));
    EXPECT_LT(shallowKept, Interpreter::kMostKeptFrameBytes / 4);
}

} // namespace
} // namespace brannoc
