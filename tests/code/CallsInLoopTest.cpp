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

} // namespace
} // namespace brannoc
