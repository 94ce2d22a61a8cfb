// Debugging through the engine object: break points, the Stop statement, stepping into, over and out,
// the call stack's line texts, moving the execution point and line tracing. Macros are served from
// memory; the fake callback records DebugPrint texts and notifications.
#include "brannoc.h"
#include "host/CodeUnit.h"
#include "host/EngineTest.h"
#include "host/HostTestText.h"
#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <vector>

using namespace brannoc;
using namespace brannoc::testing_text;

namespace {


// A macro whose lines are numbered by the comments at their ends' positions in this list.
const std::wstring kMacro = Lines({
    L"' debugging",                          // 1
    L"Dim counter As Long",                  // 2
    L"",                                     // 3
    L"Sub Main",                             // 4
    L"    Dim x As Long",                    // 5
    L"    x = 1",                            // 6
    L"    Debug.Print \"a\"",                // 7
    L"    Helper x",                         // 8
    L"    Debug.Print \"b\": Debug.Print \"c\"", // 9
    L"    Debug.Print \"end\"; x",           // 10
    L"End Sub",                              // 11
    L"",                                     // 12
    L"Sub Helper(ByRef v As Long)",          // 13
    L"    v = v + 1",                        // 14
    L"    Debug.Print \"helper\"",           // 15
    L"End Sub",                              // 16
});

class DebuggerTest : public brannoc::testing::EngineTest {
protected:
    void SetUp() override
    {
        EngineTest::SetUp();
        callBack.macros[L"dbg"] = kMacro;
    }
    static BSTR Name(const wchar_t* text) { return SysAllocString(text); }
    bool Start(const wchar_t* macro = L"dbg") { return EngineTest::Start(macro); }
    bool Step() { return Flag(&CodeUnit::Step); }
    bool Continue() { return Flag(&CodeUnit::Continue); }
    short BreakLine(const wchar_t* macro, short index)
    {
        BSTR name = Name(macro);
        short line = -1;
        EXPECT_EQ(S_OK, unit->get_BreakLineNum(name, index, &line));
        SysFreeString(name);
        return line;
    }
    bool IsStopped() { return Flag(&CodeUnit::get_IsStopped); }
    bool IsIdle() { return Flag(&CodeUnit::get_IsIdle); }
    std::wstring CurrentLine() { return Text(&CodeUnit::get_CurrentLine); }
    std::wstring CallersLine(short depth)
    {
        BSTR text = nullptr;
        EXPECT_EQ(S_OK, unit->get_CallersLine(depth, &text));
        return TakeText(text);
    }
    short StackDepth()
    {
        short depth = -1;
        EXPECT_EQ(S_OK, unit->get_StackDepth(&depth));
        return depth;
    }
    short LineNum()
    {
        short line = -1;
        EXPECT_EQ(S_OK, unit->get_LineNum(&line));
        return line;
    }
    // Continues a stopped run and runs it to its end or its next stop.
    bool ContinueAndRun()
    {
        EXPECT_TRUE(Continue());
        return Run(0);
    }
    std::vector<std::wstring> Printed() const { return callBack.printed; }
    // Runs macro `name`, whose line 5 is statement `second` over Variants after a line 4 over Variants,
    // in a loop that stops at line 6 on pass `stopAt`: a break point set on line 5 then stops there on
    // each of the next two passes, and once cleared the loop runs to its end and prints `printed`.
    void ExpectBreakPointOnSecondVariantStatement(const wchar_t* name, const std::wstring& second, int stopAt,
                                                  const std::wstring& printed)
    {
        const std::wstring stopLine = L"If i = " + std::to_wstring(stopAt) + L" Then Stop";
        const std::wstring fifth = L"        " + second;
        const std::wstring sixth = L"        " + stopLine;
        callBack.macros[name] = Lines({
            L"Sub Main",                   // 1
            L"    Dim i, a, b",            // 2
            L"    For i = 1 To 100",       // 3
            L"        a = a + i",          // 4
            fifth.c_str(),                 // 5
            sixth.c_str(),                 // 6
            L"    Next i",                 // 7
            L"    Debug.Print a; b",       // 8
            L"End Sub",                    // 9
        });
        const std::wstring prefix = L"[" + std::wstring(name) + L"|Main#  ";
        ASSERT_TRUE(Start(name));
        EXPECT_FALSE(Run(0));
        ASSERT_TRUE(IsStopped());
        EXPECT_EQ(prefix + L"6] " + stopLine, CurrentLine());
        EXPECT_TRUE(Toggle(name, 5));
        for (int stop = 0; stop < 2; ++stop) {
            EXPECT_FALSE(ContinueAndRun());
            ASSERT_TRUE(IsStopped());
            EXPECT_EQ(prefix + L"5] " + second, CurrentLine());
        }
        EXPECT_TRUE(Toggle(name, 5));
        EXPECT_FALSE(ContinueAndRun());
        EXPECT_FALSE(IsStopped());
        EXPECT_EQ((std::vector<std::wstring>{printed}), Printed());
    }
};

using Texts = std::vector<std::wstring>;

TEST_F(DebuggerTest, ABreakPointStopsTheRunBeforeItsLine)
{
    ASSERT_TRUE(Start());
    EXPECT_TRUE(Toggle(L"dbg", 7));
    EXPECT_FALSE(Run(0)) << "the run stopped";
    EXPECT_TRUE(IsStopped());
    EXPECT_EQ(1, callBack.Count(3));
    EXPECT_TRUE(Printed().empty()) << "line 7 has not run";
    EXPECT_EQ(L"[dbg|Main#  7] Debug.Print \"a\"", CurrentLine());
    EXPECT_EQ(7, LineNum());

    // Continuing runs the line at the break point and does not stop there again.
    EXPECT_FALSE(ContinueAndRun());
    EXPECT_TRUE(IsIdle());
    EXPECT_EQ((Texts{L"\"a\"\r\n", L"\"helper\"\r\n", L"\"b\"\r\n", L"\"c\"\r\n", L"\"end\"2&\r\n"}), Printed());
    EXPECT_EQ(1, callBack.Count(3));
    EXPECT_EQ(1, callBack.Count(4));
}

TEST_F(DebuggerTest, OnlyLinesWithAnExecutableStatementTakeABreakPoint)
{
    ASSERT_TRUE(Load(L"dbg"));
    for (short line : {1, 2, 3, 5, 12, 17, 200})
        EXPECT_FALSE(Toggle(L"dbg", line)) << "line " << line;
    EXPECT_EQ(0, BreakLine(L"dbg", 0));
    EXPECT_FALSE(Toggle(L"nothing", 6)) << "a module that is not loaded";
    EXPECT_FALSE(Toggle(L"", 6)) << "an empty name with a line";
}

TEST_F(DebuggerTest, TogglingTwiceLeavesNoBreakPoint)
{
    ASSERT_TRUE(Start());
    EXPECT_TRUE(Toggle(L"dbg", 14));
    EXPECT_TRUE(Toggle(L"dbg", 14));
    EXPECT_EQ(0, BreakLine(L"dbg", 0));
    EXPECT_FALSE(Run(0));
    EXPECT_TRUE(IsIdle());
    EXPECT_EQ(0, callBack.Count(3));
    EXPECT_EQ(5u, Printed().size());
}

TEST_F(DebuggerTest, ABreakPointOnALineOfSeveralStatementsStopsOnceBeforeTheLine)
{
    ASSERT_TRUE(Start());
    EXPECT_TRUE(Toggle(L"dbg", 9));
    EXPECT_FALSE(Run(0));
    EXPECT_TRUE(IsStopped());
    EXPECT_EQ((Texts{L"\"a\"\r\n", L"\"helper\"\r\n"}), Printed());
    EXPECT_EQ(L"[dbg|Main#  9] Debug.Print \"b\": Debug.Print \"c\"", CurrentLine());
    EXPECT_FALSE(ContinueAndRun());
    EXPECT_EQ((Texts{L"\"a\"\r\n", L"\"helper\"\r\n", L"\"b\"\r\n", L"\"c\"\r\n", L"\"end\"2&\r\n"}), Printed());
    EXPECT_EQ(1, callBack.Count(3));
}

TEST_F(DebuggerTest, ABreakPointInALoopStopsEachTime)
{
    callBack.macros[L"loop"] = Lines({
        L"Sub Main",                          // 1
        L"    Dim i As Long, total As Long",  // 2
        L"    For i = 1 To 3",                // 3
        L"        total = total + i",         // 4
        L"    Next i",                        // 5
        L"    Debug.Print total",             // 6
        L"End Sub",                           // 7
    });
    ASSERT_TRUE(Start(L"loop"));
    EXPECT_TRUE(Toggle(L"loop", 4));
    EXPECT_FALSE(Run(0));
    int stops = 0;
    while (IsStopped() && stops < 10) {
        ++stops;
        EXPECT_EQ(L"[loop|Main#  4] total = total + i", CurrentLine());
        EXPECT_FALSE(ContinueAndRun());
    }
    EXPECT_EQ(3, stops);
    EXPECT_EQ((Texts{L"6&\r\n"}), Printed());
}

// A statement over Variants runs in the form made for the kinds they held; a break point set on it in
// the middle of the loop still stops there, and once cleared the loop goes on in that form.
TEST_F(DebuggerTest, ABreakPointOnAStatementOverVariantsStopsAfterItsFormWasMade)
{
    callBack.macros[L"kinds"] = Lines({
        L"Sub Main",                          // 1
        L"    Dim i, total",                  // 2
        L"    total = 0",                     // 3
        L"    For i = 1 To 100",              // 4
        L"        total = total + i * 2",     // 5
        L"        If i = 50 Then Stop",       // 6
        L"    Next i",                        // 7
        L"    Debug.Print total; i",          // 8
        L"End Sub",                           // 9
    });
    ASSERT_TRUE(Start(L"kinds"));
    EXPECT_FALSE(Run(0));
    ASSERT_TRUE(IsStopped());
    EXPECT_EQ(L"[kinds|Main#  6] If i = 50 Then Stop", CurrentLine());
    EXPECT_TRUE(Toggle(L"kinds", 5));
    EXPECT_FALSE(ContinueAndRun());
    ASSERT_TRUE(IsStopped());
    EXPECT_EQ(L"[kinds|Main#  5] total = total + i * 2", CurrentLine());
    EXPECT_TRUE(Toggle(L"kinds", 5));
    EXPECT_FALSE(ContinueAndRun());
    EXPECT_FALSE(IsStopped());
    EXPECT_EQ((Texts{L"10100%101%\r\n"}), Printed());
}

// Consecutive statements over Variants, their forms made one after the other: the second is entered
// from the end of the first one's form. A break point set on it in the middle of the loop stops there
// all the same, every time, and once cleared the loop goes on without stopping.
TEST_F(DebuggerTest, ABreakPointOnTheSecondOfTwoStatementsOverVariantsStops)
{
    ExpectBreakPointOnSecondVariantStatement(L"pair", L"b = b + 2", 50, L"5050%200%\r\n");
}

// The same once the second statement's Variant has grown from Integer into Long (from i = 46) and the
// statement has been given a new form for that (some passes later): the new form lies elsewhere, and
// the end of the first statement's form goes there itself. The break point still stops.
TEST_F(DebuggerTest, ABreakPointOnAStatementWhoseVariantsChangedKindStops)
{
    ExpectBreakPointOnSecondVariantStatement(L"grown", L"b = b + a * 2", 80, L"5050%343400&\r\n");
}

TEST_F(DebuggerTest, TheStopStatementStopsAndContinuingDoesNotStopOnItAgain)
{
    callBack.macros[L"stops"] = Lines({
        L"Sub Main",               // 1
        L"    Debug.Print 1",      // 2
        L"    Stop",               // 3
        L"    Debug.Print 2",      // 4
        L"End Sub",                // 5
    });
    ASSERT_TRUE(Start(L"stops"));
    EXPECT_FALSE(Run(0));
    EXPECT_TRUE(IsStopped());
    EXPECT_EQ((Texts{L"1%\r\n"}), Printed());
    EXPECT_EQ(L"[stops|Main#  3] Stop", CurrentLine());
    EXPECT_FALSE(ContinueAndRun());
    EXPECT_TRUE(IsIdle());
    EXPECT_EQ((Texts{L"1%\r\n", L"2%\r\n"}), Printed());
    EXPECT_EQ(1, callBack.Count(3));
}

TEST_F(DebuggerTest, StepIntoStopsAtTheCalleesFirstStatement)
{
    ASSERT_TRUE(Start());
    EXPECT_TRUE(Toggle(L"dbg", 8));
    EXPECT_FALSE(Run(0));
    ASSERT_EQ(L"[dbg|Main#  8] Helper x", CurrentLine());
    EXPECT_EQ(1, StackDepth());
    EXPECT_TRUE(Continue());
    EXPECT_TRUE(Step()) << "a step leaves the run active";
    EXPECT_EQ(L"[dbg|Helper# 13] Sub Helper(ByRef v As Long)", CurrentLine()) << "the header comes first";
    EXPECT_EQ(2, StackDepth());
    EXPECT_TRUE(Step());
    EXPECT_EQ(L"[dbg|Helper# 14] v = v + 1", CurrentLine());
    EXPECT_TRUE(Step());
    EXPECT_EQ(L"[dbg|Helper# 15] Debug.Print \"helper\"", CurrentLine());
    EXPECT_TRUE(Printed().size() == 1u);
}

TEST_F(DebuggerTest, StepOverRunsTheCallAndStopsAtTheNextLine)
{
    ASSERT_TRUE(Start());
    EXPECT_TRUE(Toggle(L"dbg", 8));
    EXPECT_FALSE(Run(0));
    EXPECT_TRUE(Continue());
    EXPECT_FALSE(Run(static_cast<short>(StackDepth() + 1))) << "reaching the depth stops the run";
    EXPECT_TRUE(IsStopped());
    EXPECT_EQ(L"[dbg|Main#  9] Debug.Print \"b\": Debug.Print \"c\"", CurrentLine());
    EXPECT_EQ((Texts{L"\"a\"\r\n", L"\"helper\"\r\n"}), Printed());
}

TEST_F(DebuggerTest, StepOverStopsAtABreakPointInsideTheCallee)
{
    ASSERT_TRUE(Start());
    EXPECT_TRUE(Toggle(L"dbg", 8));
    EXPECT_TRUE(Toggle(L"dbg", 15));
    EXPECT_FALSE(Run(0));
    EXPECT_TRUE(Continue());
    EXPECT_FALSE(Run(static_cast<short>(StackDepth() + 1)));
    EXPECT_EQ(L"[dbg|Helper# 15] Debug.Print \"helper\"", CurrentLine());
}

TEST_F(DebuggerTest, StepOutRunsToTheCallersNextLine)
{
    ASSERT_TRUE(Start());
    EXPECT_TRUE(Toggle(L"dbg", 14));
    EXPECT_FALSE(Run(0));
    ASSERT_EQ(L"[dbg|Helper# 14] v = v + 1", CurrentLine());
    EXPECT_EQ(2, StackDepth());
    EXPECT_TRUE(Continue());
    EXPECT_FALSE(Run(StackDepth()));
    EXPECT_EQ(L"[dbg|Main#  9] Debug.Print \"b\": Debug.Print \"c\"", CurrentLine());
    EXPECT_EQ(1, StackDepth());
    EXPECT_EQ((Texts{L"\"a\"\r\n", L"\"helper\"\r\n"}), Printed());
}

TEST_F(DebuggerTest, PuttingTheStackDepthUnwindsTheInnerFramesOnly)
{
    ASSERT_TRUE(Start());
    EXPECT_TRUE(Toggle(L"dbg", 15));
    EXPECT_FALSE(Run(0));
    ASSERT_EQ(2, StackDepth());
    EXPECT_EQ(S_OK, unit->put_StackDepth(2));
    EXPECT_EQ(2, StackDepth()) << "the depth it has already";
    EXPECT_EQ(S_OK, unit->put_StackDepth(1));
    EXPECT_EQ(1, StackDepth());
    EXPECT_TRUE(IsStopped()) << "the run stays stopped, in the caller";
    EXPECT_EQ(L"[dbg|Main#  8] Helper x", CurrentLine());
    // The caller goes on after the call; the helper's last line never runs.
    EXPECT_FALSE(ContinueAndRun());
    EXPECT_TRUE(IsIdle());
    EXPECT_EQ((Texts{L"\"a\"\r\n", L"\"b\"\r\n", L"\"c\"\r\n", L"\"end\"2&\r\n"}), Printed());
}

TEST_F(DebuggerTest, PuttingTheStackDepthToZeroEndsTheMacro)
{
    ASSERT_TRUE(Start());
    EXPECT_TRUE(Toggle(L"dbg", 15));
    EXPECT_FALSE(Run(0));
    EXPECT_EQ(S_OK, unit->put_StackDepth(0));
    EXPECT_EQ(0, StackDepth());
    EXPECT_TRUE(IsIdle());
    EXPECT_EQ((Texts{L"\"a\"\r\n"}), Printed());
}

TEST_F(DebuggerTest, AMacroStartedOnTopOfAStoppedOneHandsTheRunBackWhenItIsHalted)
{
    callBack.macros[L"outer"] = Lines({L"Sub Main", L"    Stop", L"    Debug.Print \"outer end\"", L"End Sub"});
    callBack.macros[L"inner"] = Lines({L"Sub Main", L"    Stop", L"    Debug.Print \"inner end\"", L"End Sub"});
    const auto command = [&] {
        BSTR expression = SysAllocString(L"Command");
        BSTR text = nullptr;
        EXPECT_EQ(S_OK, unit->get_Evaluate(expression, 0, &text));
        SysFreeString(expression);
        return TakeText(text);
    };
    ASSERT_TRUE(Start(L"outer first"));
    Run(0);
    ASSERT_TRUE(IsStopped());
    ASSERT_TRUE(Start(L"inner second"));
    Run(0);
    ASSERT_TRUE(IsStopped());
    EXPECT_EQ(L"\"second\"", command());
    EXPECT_EQ(L"[inner|Main#  2] Stop", CurrentLine());
    EXPECT_EQ(L"inner", Text(&CodeUnit::get_MacroName));
    EXPECT_TRUE(Named(&CodeUnit::get_IsMacroActive, L"inner"));
    EXPECT_TRUE(Named(&CodeUnit::get_IsMacroActive, L"outer"));
    EXPECT_TRUE(Flag(&CodeUnit::Halt));
    EXPECT_EQ(L"[outer|Main#  2] Stop", CurrentLine());
    EXPECT_EQ(L"outer", Text(&CodeUnit::get_MacroName)) << "the run is back in the macro below";
    EXPECT_EQ(L"\"first\"", command()) << "with its own command text";
    EXPECT_FALSE(Named(&CodeUnit::get_IsMacroActive, L"inner"));
    EXPECT_TRUE(Named(&CodeUnit::get_IsMacroActive, L"outer"));
    EXPECT_TRUE(Named(&CodeUnit::Unload, L"inner")) << "nothing of it runs any more";
    EXPECT_FALSE(ContinueAndRun());
    EXPECT_TRUE(IsIdle());
    EXPECT_EQ((Texts{L"\"outer end\"\r\n"}), Printed());
    EXPECT_EQ(L"", Text(&CodeUnit::get_MacroName));
}

TEST_F(DebuggerTest, CallersLineDescribesEachFrame)
{
    ASSERT_TRUE(Start());
    EXPECT_TRUE(Toggle(L"dbg", 15));
    EXPECT_FALSE(Run(0));
    EXPECT_EQ(2, StackDepth());
    EXPECT_EQ(L"[dbg|Helper# 15] Debug.Print \"helper\"", CallersLine(0));
    EXPECT_EQ(CurrentLine(), CallersLine(0));
    EXPECT_EQ(L"[dbg|Main#  8] Helper x", CallersLine(1));
    EXPECT_EQ(L"", CallersLine(2));
    EXPECT_EQ(L"", CallersLine(200));
}

TEST_F(DebuggerTest, CallersLineNamesTheObjectOfAnObjectModule)
{
    callBack.macros[L"Shape.cls"] = Lines({
        L"VERSION 1.0 CLASS",                   // 1
        L"BEGIN",                               // 2
        L"  MultiUse = -1",                     // 3
        L"END",                                 // 4
        L"Attribute VB_Name = \"Shape\"",       // 5
        L"Public Function Area() As Long",      // 6
        L"    Area = 12",                       // 7
        L"End Function",                        // 8
    });
    callBack.macros[L"user"] = Lines({
        L"'#Uses \"Shape.cls\"",                // 1
        L"Sub Main",                            // 2
        L"    Dim s As New Shape",              // 3
        L"    Debug.Print s.Area()",            // 4
        L"End Sub",                             // 5
    });
    ASSERT_TRUE(Start(L"user"));
    EXPECT_TRUE(Toggle(L"Shape.cls", 7));
    EXPECT_FALSE(Run(0));
    EXPECT_EQ(L"[Shape.cls|Shape.Area#  7] Area = 12", CallersLine(0));
    EXPECT_EQ(L"[user|Main#  4] Debug.Print s.Area()", CallersLine(1));
    EXPECT_FALSE(ContinueAndRun());
    EXPECT_EQ((Texts{L"12&\r\n"}), Printed());
}

TEST_F(DebuggerTest, BreakLineNumListsBreakPointsInTheOrderSet)
{
    ASSERT_TRUE(Start());
    EXPECT_TRUE(Toggle(L"dbg", 10));
    EXPECT_TRUE(Toggle(L"dbg", 7));
    EXPECT_TRUE(Toggle(L"dbg", 14));
    EXPECT_EQ(10, BreakLine(L"dbg", 0));
    EXPECT_EQ(7, BreakLine(L"dbg", 1));
    EXPECT_EQ(14, BreakLine(L"dbg", 2));
    EXPECT_EQ(0, BreakLine(L"dbg", 3));
    EXPECT_EQ(0, BreakLine(L"dbg", -1));
    EXPECT_TRUE(Toggle(L"dbg", 7));
    EXPECT_EQ(14, BreakLine(L"dbg", 1));
    EXPECT_TRUE(Toggle(L"", 0)) << "clears every break point";
    EXPECT_EQ(0, BreakLine(L"dbg", 0));
    EXPECT_FALSE(Run(0));
    EXPECT_EQ(0, callBack.Count(3));
}

TEST_F(DebuggerTest, LineZeroClearsOneModulesBreakPoints)
{
    ASSERT_TRUE(Load(L"dbg"));
    EXPECT_TRUE(Toggle(L"dbg", 10));
    EXPECT_TRUE(Toggle(L"dbg", 14));
    EXPECT_TRUE(Toggle(L"dbg", 0));
    EXPECT_EQ(0, BreakLine(L"dbg", 0));
}

TEST_F(DebuggerTest, LineZeroWithOnlyAProjectPartClearsThatProjectsBreakPoints)
{
    callBack.mapPrefix = L"";
    ASSERT_TRUE(Named(&CodeUnit::ProjectCreate, L"Ledger"));
    ASSERT_TRUE(Load(L"<Ledger>dbg"));
    ASSERT_TRUE(Load(L"dbg"));
    EXPECT_TRUE(Toggle(L"<Ledger>dbg", 10));
    EXPECT_TRUE(Toggle(L"<Ledger>dbg", 14));
    EXPECT_TRUE(Toggle(L"dbg", 7));
    EXPECT_FALSE(Toggle(L"<Nowhere>", 0)) << "no such project";
    EXPECT_FALSE(Toggle(L"<Ledger>", 7)) << "only line 0 applies to a whole project";
    EXPECT_EQ(10, BreakLine(L"<Ledger>dbg", 0));
    EXPECT_TRUE(Toggle(L"<ledger>", 0));
    EXPECT_EQ(0, BreakLine(L"<Ledger>dbg", 0));
    EXPECT_EQ(7, BreakLine(L"dbg", 0)) << "the default project's break points stay";
    EXPECT_TRUE(Toggle(L"<>", 0));
    EXPECT_EQ(0, BreakLine(L"dbg", 0));
}

TEST_F(DebuggerTest, UnloadingOrRecompilingAModuleDropsItsBreakPoints)
{
    ASSERT_TRUE(Load(L"dbg"));
    EXPECT_TRUE(Toggle(L"dbg", 7));
    BSTR name = Name(L"dbg");
    VARIANT_BOOL unloaded = VARIANT_FALSE;
    EXPECT_EQ(S_OK, unit->Unload(name, &unloaded));
    SysFreeString(name);
    EXPECT_TRUE(unloaded == VARIANT_TRUE);
    ASSERT_TRUE(Load(L"dbg"));
    EXPECT_EQ(0, BreakLine(L"dbg", 0));
    // Starting compiles the module again: the break point set after the load goes.
    EXPECT_TRUE(Toggle(L"dbg", 7));
    ASSERT_TRUE(Start());
    EXPECT_EQ(0, BreakLine(L"dbg", 0));
    EXPECT_FALSE(Run(0));
    EXPECT_EQ(0, callBack.Count(3));
    EXPECT_EQ(5u, Printed().size());
}

TEST_F(DebuggerTest, SetNextStatementMovesWithinTheProcedureOnly)
{
    ASSERT_TRUE(Start());
    EXPECT_TRUE(Toggle(L"dbg", 7));
    EXPECT_FALSE(Run(0));
    EXPECT_EQ(S_OK, unit->put_LineNum(15));
    EXPECT_EQ(7, LineNum()) << "a line of another procedure is refused";
    EXPECT_EQ(S_OK, unit->put_LineNum(2));
    EXPECT_EQ(7, LineNum()) << "a line outside every procedure is refused";
    EXPECT_EQ(S_OK, unit->put_LineNum(10));
    EXPECT_EQ(10, LineNum());
    EXPECT_EQ(L"[dbg|Main# 10] Debug.Print \"end\"; x", CurrentLine());
    EXPECT_FALSE(ContinueAndRun());
    EXPECT_EQ((Texts{L"\"end\"1&\r\n"}), Printed());
}

TEST_F(DebuggerTest, SetNextStatementRespectsWithBlocks)
{
    callBack.macros[L"Probe.cls"] = Lines({
        L"VERSION 1.0 CLASS",
        L"BEGIN",
        L"  MultiUse = -1",
        L"END",
        L"Attribute VB_Name = \"Probe\"",
        L"Public Value As Long",
        L"Private Sub Class_Terminate()",
        L"    Debug.Print \"released\"",
        L"End Sub",
    });
    callBack.macros[L"with"] = Lines({
        L"'#Uses \"Probe.cls\"",            // 1
        L"Sub Main",                        // 2
        L"    Debug.Print \"start\"",       // 3
        L"    With New Probe",              // 4
        L"        .Value = 1",              // 5
        L"        Debug.Print .Value",      // 6
        L"    End With",                    // 7
        L"    Debug.Print \"after\"",       // 8
        L"End Sub",                         // 9
    });
    ASSERT_TRUE(Start(L"with"));
    EXPECT_TRUE(Toggle(L"with", 3));
    EXPECT_TRUE(Toggle(L"with", 6));
    EXPECT_FALSE(Run(0));
    ASSERT_EQ(3, LineNum());
    EXPECT_EQ(S_OK, unit->put_LineNum(5));
    EXPECT_EQ(3, LineNum()) << "into a With block from outside is refused";
    EXPECT_EQ(S_OK, unit->put_LineNum(4));
    EXPECT_EQ(4, LineNum()) << "onto the With line itself is allowed";
    EXPECT_FALSE(ContinueAndRun());
    ASSERT_EQ(6, LineNum());
    EXPECT_EQ((Texts{}), Printed()) << "line 3 was skipped";
    EXPECT_EQ(S_OK, unit->put_LineNum(8));
    EXPECT_EQ(8, LineNum()) << "out of the block to after End With is allowed";
    EXPECT_EQ((Texts{L"\"released\"\r\n"}), Printed()) << "the With object goes at once";
    EXPECT_FALSE(ContinueAndRun());
    EXPECT_EQ((Texts{L"\"released\"\r\n", L"\"after\"\r\n"}), Printed());
}

TEST_F(DebuggerTest, LineTracingPrintsEachLineAsItRuns)
{
    callBack.macros[L"trace"] = Lines({
        L"Sub Main",                 // 1
        L"    Dim x As Long",        // 2
        L"    ' a comment",          // 3
        L"",                         // 4
        L"    x = 2",                // 5
        L"    Debug.Print x",        // 6
        L"End Sub",                  // 7
    });
    ASSERT_TRUE(Start(L"trace"));
    EXPECT_FALSE(Run(-1));
    EXPECT_EQ((Texts{L"[trace|Main#  1] Sub Main\r\n", L"[trace|Main#  5] x = 2\r\n", L"[trace|Main#  6] Debug.Print x\r\n", L"2&\r\n",
                     L"[trace|Main#  7] End Sub\r\n"}),
              Printed());
}

// Lines that do nothing themselves (Else, End If, End Select, Case) are traced and stopped at like
// any other, in a loop that has run in its fast form long before the trace is turned on.
TEST_F(DebuggerTest, LineTracingAndBreakPointsSeeTheLinesThatDoNothing)
{
    callBack.macros[L"blocks"] = Lines({
        L"Sub Main",                          // 1
        L"    Dim i As Long, n As Long",      // 2
        L"    For i = 1 To 1003",             // 3
        L"        If i Mod 2 = 0 Then",       // 4
        L"            n = n + i",             // 5
        L"        Else",                      // 6
        L"            n = n - 1",             // 7
        L"        End If",                    // 8
        L"        Select Case i",             // 9
        L"        Case 1000",                 // 10
        L"            Stop",                  // 11
        L"        Case Else",                 // 12
        L"        End Select",                // 13
        L"    Next i",                        // 14
        L"    Debug.Print n",                 // 15
        L"End Sub",                           // 16
    });
    ASSERT_TRUE(Start(L"blocks"));
    EXPECT_FALSE(Run(0));
    ASSERT_TRUE(IsStopped());
    EXPECT_TRUE(Toggle(L"blocks", 8));
    EXPECT_TRUE(Continue());
    EXPECT_FALSE(Run(0));
    ASSERT_TRUE(IsStopped());
    EXPECT_EQ(L"[blocks|Main#  8] End If", CurrentLine());
    EXPECT_TRUE(Toggle(L"blocks", 8));
    callBack.printed.clear();
    EXPECT_TRUE(Continue());
    EXPECT_FALSE(Run(-1));
    // From the break at pass 1001 on: pass 1002 takes the Then part and leaves it through its Else.
    EXPECT_EQ((Texts{L"[blocks|Main#  9] Select Case i\r\n", L"[blocks|Main# 13] End Select\r\n",
                     L"[blocks|Main# 14] Next i\r\n", L"[blocks|Main#  4] If i Mod 2 = 0 Then\r\n",
                     L"[blocks|Main#  5] n = n + i\r\n", L"[blocks|Main#  6] Else\r\n",
                     L"[blocks|Main#  9] Select Case i\r\n", L"[blocks|Main# 13] End Select\r\n",
                     L"[blocks|Main# 14] Next i\r\n", L"[blocks|Main#  4] If i Mod 2 = 0 Then\r\n",
                     L"[blocks|Main#  7] n = n - 1\r\n", L"[blocks|Main#  8] End If\r\n",
                     L"[blocks|Main#  9] Select Case i\r\n", L"[blocks|Main# 13] End Select\r\n",
                     L"[blocks|Main# 14] Next i\r\n", L"[blocks|Main# 15] Debug.Print n\r\n", L"251000&\r\n",
                     L"[blocks|Main# 16] End Sub\r\n"}),
              Printed());
}

TEST_F(DebuggerTest, LineTracingSkipsTheLineAtWhichTheRunResumes)
{
    ASSERT_TRUE(Start());
    EXPECT_TRUE(Toggle(L"dbg", 15));
    EXPECT_FALSE(Run(0));
    callBack.printed.clear();
    EXPECT_TRUE(Continue());
    EXPECT_FALSE(Run(-1));
    ASSERT_GE(callBack.printed.size(), 2u);
    EXPECT_EQ(L"\"helper\"\r\n", callBack.printed[0]) << "no trace line for the resumed line";
    EXPECT_EQ(L"[dbg|Helper# 16] End Sub\r\n", callBack.printed[1]);
}

TEST_F(DebuggerTest, TheExecutionTraceBracketsTheRunAndRepeatsEachTracedLine)
{
    callBack.offerTrace = true;
    EXPECT_FALSE(Run(static_cast<short>(0x8080))) << "a trace depth runs nothing";
    ASSERT_TRUE(Start());
    EXPECT_TRUE(Toggle(L"dbg", 9));
    EXPECT_FALSE(Run(-1));
    EXPECT_EQ((Texts{L"0:*Execute", L"4:[dbg|Main#  4] Sub Main", L"4:[dbg|Main#  6] x = 1", L"4:[dbg|Main#  7] Debug.Print \"a\"",
                     L"4:[dbg|Main#  8] Helper x",
                     L"4:[dbg|Helper# 13] Sub Helper(ByRef v As Long)", L"4:[dbg|Helper# 14] v = v + 1",
                     L"4:[dbg|Helper# 15] Debug.Print \"helper\"", L"4:[dbg|Helper# 16] End Sub",
                     L"4:[dbg|Main#  9] Debug.Print \"b\": Debug.Print \"c\"", L"1:"}),
              callBack.traces);
    EXPECT_EQ(L"[dbg|Main#  9] Debug.Print \"b\": Debug.Print \"c\"", CurrentLine());
}

TEST_F(DebuggerTest, ARunDepthAbove999CountsAs999)
{
    // 10000 would run to the end inside the engine; from the host it is 999: stop at the next line.
    ASSERT_TRUE(Start());
    EXPECT_FALSE(Run(10000));
    EXPECT_TRUE(IsStopped());
    EXPECT_EQ(L"[dbg|Main#  4] Sub Main", CurrentLine());
    EXPECT_TRUE(Continue());
    EXPECT_FALSE(Run(5000));
    EXPECT_TRUE(IsStopped());
    EXPECT_EQ(L"[dbg|Main#  6] x = 1", CurrentLine());
    EXPECT_TRUE(Printed().empty());
}

TEST_F(DebuggerTest, SteppingNeverStopsInAHiddenModule)
{
    callBack.macros[L"*Hidden*"] = Lines({
        L"Sub Secret",                       // 1
        L"    Debug.Print \"secret\"",       // 2
        L"End Sub",                          // 3
    });
    callBack.macros[L"open"] = Lines({
        L"'#Uses \"*Hidden*\"",              // 1
        L"Sub Main",                         // 2
        L"    Secret",                       // 3
        L"    Debug.Print \"back\"",         // 4
        L"End Sub",                          // 5
    });
    ASSERT_TRUE(Start(L"open"));
    EXPECT_TRUE(Toggle(L"open", 3));
    EXPECT_FALSE(Run(0));
    EXPECT_TRUE(Continue());
    EXPECT_TRUE(Step());
    EXPECT_EQ(L"[open|Main#  4] Debug.Print \"back\"", CurrentLine());
    EXPECT_EQ((Texts{L"\"secret\"\r\n"}), Printed());
}

TEST_F(DebuggerTest, TheExportedFunctionsReachTheSameMembers)
{
    ASSERT_TRUE(Start());
    void* handle = static_cast<_CodeUnit*>(unit);
    EXPECT_EQ(-1, CU_ToggleBreak(handle, "dbg", 15));
    EXPECT_EQ(0, CU_ToggleBreak(handle, "dbg", 12));
    EXPECT_EQ(15, CU_BreakLineNum(handle, "dbg", 0));
    EXPECT_EQ(0, CU_BreakLineNum(handle, "dbg", 1));
    EXPECT_FALSE(Run(0));
    EXPECT_EQ(15, CU_LineNum(handle));
    CU_LineNumPut(handle, 16);
    EXPECT_EQ(16, CU_LineNum(handle));
    auto ansi = [](BSTR text) {
        std::string bytes = text ? std::string(reinterpret_cast<const char*>(text), OA_SysStringLenA(text)) : "<null>";
        OA_SysFreeStringA(text);
        return bytes;
    };
    EXPECT_EQ("[dbg|Helper# 16] End Sub", ansi(CU_CurrentLine(handle)));
    EXPECT_EQ("[dbg|Main#  8] Helper x", ansi(CU_CallersLine(handle, 1)));
    EXPECT_EQ("", ansi(CU_CallersLine(handle, 2)));
    EXPECT_EQ(-1, CU_ToggleBreak(handle, "", 0));
    EXPECT_EQ(0, CU_BreakLineNum(handle, "dbg", 0));
}

TEST_F(DebuggerTest, AStoppedRunAnswersEveryOtherMember)
{
    ASSERT_TRUE(Start());
    EXPECT_TRUE(Toggle(L"dbg", 7));
    EXPECT_FALSE(Run(0));
    BSTR caption = nullptr;
    EXPECT_EQ(S_OK, unit->get_Caption(&caption));
    EXPECT_EQ(L"Brannoc Basic", TakeText(caption));
    BSTR name = Name(L"dbg");
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(S_OK, unit->get_IsMacro(name, &result));
    EXPECT_TRUE(result == VARIANT_TRUE);
    EXPECT_EQ(S_OK, unit->get_IsMacroActive(name, &result));
    EXPECT_TRUE(result == VARIANT_TRUE);
    SysFreeString(name);
    VARIANT_BOOL paused = VARIANT_TRUE;
    EXPECT_EQ(S_OK, unit->get_IsPaused(&paused));
    EXPECT_TRUE(paused == VARIANT_FALSE) << "no statement is executing while stopped";
    EXPECT_TRUE(Flag(&CodeUnit::HaltAll));
    EXPECT_TRUE(IsIdle());
    EXPECT_EQ(L"", CurrentLine());
    EXPECT_EQ(0, LineNum());
}

// Calls of numeric Functions run inside their caller's statement loop: a stop deep inside them sees
// every frame, and the run goes on from there to the same result.
std::wstring DeepMacro(const wchar_t* bottom)
{
    return Lines({
        L"Function Down(ByVal n As Long) As Long", // 1
        L"    If n = 0 Then",                     // 2
        bottom,                                   // 3
        L"    Else",                              // 4
        L"        Down = Down(n - 1) + 1",        // 5
        L"    End If",                            // 6
        L"End Function",                          // 7
        L"",                                      // 8
        L"Sub Main",                              // 9
        L"    Dim r As Long",                     // 10
        L"    r = Down(40)",                      // 11
        L"    Debug.Print r",                     // 12
        L"End Sub",                               // 13
    });
}

TEST_F(DebuggerTest, ABreakPointDeepInNumericCallsSeesEveryFrame)
{
    callBack.macros[L"deep"] = DeepMacro(L"        Down = 100");
    ASSERT_TRUE(Start(L"deep"));
    EXPECT_TRUE(Toggle(L"deep", 3));
    EXPECT_FALSE(Run(0));
    ASSERT_TRUE(IsStopped());
    EXPECT_EQ(42, StackDepth()) << "Main and 41 calls of Down";
    EXPECT_EQ(L"[deep|Down#  3] Down = 100", CallersLine(0));
    EXPECT_EQ(L"[deep|Down#  5] Down = Down(n - 1) + 1", CallersLine(1));
    EXPECT_EQ(L"[deep|Down#  5] Down = Down(n - 1) + 1", CallersLine(40));
    EXPECT_EQ(L"[deep|Main# 11] r = Down(40)", CallersLine(41));
    EXPECT_EQ(L"", CallersLine(42));
    EXPECT_FALSE(ContinueAndRun());
    EXPECT_TRUE(IsIdle());
    EXPECT_EQ((Texts{L"140&\r\n"}), Printed());
}

TEST_F(DebuggerTest, AStopDeepInNumericCallsSeesEveryFrameAndStepsOutOfThem)
{
    callBack.macros[L"deep"] = DeepMacro(L"        Stop");
    ASSERT_TRUE(Start(L"deep"));
    EXPECT_FALSE(Run(0));
    ASSERT_TRUE(IsStopped());
    EXPECT_EQ(42, StackDepth());
    EXPECT_EQ(L"[deep|Down#  3] Stop", CallersLine(0));
    EXPECT_EQ(L"[deep|Down#  5] Down = Down(n - 1) + 1", CallersLine(1));
    EXPECT_EQ(L"[deep|Main# 11] r = Down(40)", CallersLine(41));
    // Running until the depth falls below the stopped frame's stops in one of its callers.
    EXPECT_TRUE(Continue());
    EXPECT_FALSE(Run(StackDepth()));
    ASSERT_TRUE(IsStopped());
    const short depth = StackDepth();
    EXPECT_LT(depth, 42);
    EXPECT_GE(depth, 1);
    EXPECT_EQ(0u, CallersLine(static_cast<short>(depth - 1)).find(L"[deep|Main#")) << "the outermost frame is Main's";
    EXPECT_EQ(L"", CallersLine(depth));
    EXPECT_FALSE(ContinueAndRun());
    EXPECT_TRUE(IsIdle());
    EXPECT_EQ((Texts{L"40&\r\n"}), Printed());
}

// After a stop deep in calls, the run goes on in one statement loop from the stopped frame up through
// its callers: frames that own strings hand their results up, by-reference arguments reach the
// caller's variable, and an error raised after the returns is trapped by the handler of the outermost
// caller. Running the macro again (with the activations and frames the first run freed) gives the same.
TEST_F(DebuggerTest, ContinuingFromDeepInCallsReturnsThroughEveryCaller)
{
    callBack.macros[L"up"] = Lines({
        L"Function Count(ByVal n As Long, ByRef total As Long) As Long", // 1
        L"    total = total + n",                                       // 2
        L"    If n = 0 Then",                                           // 3
        L"        Count = 0",                                           // 4
        L"    Else",                                                    // 5
        L"        Count = Count(n - 1, total) + 1",                     // 6
        L"    End If",                                                  // 7
        L"End Function",                                                // 8
        L"",                                                            // 9
        L"Function Label(ByVal n As Long) As String",                   // 10
        L"    If n = 0 Then",                                           // 11
        L"        Label = \"<\" & Count(30, 0) & \">\"",                // 12
        L"    Else",                                                    // 13
        L"        Label = Label(n - 1) & n Mod 10",                     // 14
        L"    End If",                                                  // 15
        L"End Function",                                                // 16
        L"",                                                            // 17
        L"Sub Main",                                                    // 18
        L"    Dim total As Long, q As Long",                            // 19
        L"    On Error GoTo Failed",                                    // 20
        L"    Debug.Print Count(40, total); total; Label(12)",         // 21
        L"    q = total \\ (Count(5, total) - 5)",                       // 22
        L"    Exit Sub",                                                // 23
        L"Failed:",                                                     // 24
        L"    Debug.Print \"trapped\"; Err.Number; total",              // 25
        L"End Sub",                                                     // 26
    });
    for (int round = 0; round < 2; ++round) {
        callBack.printed.clear();
        ASSERT_TRUE(Start(L"up"));
        EXPECT_TRUE(Toggle(L"up", 4));
        EXPECT_FALSE(Run(0));
        ASSERT_TRUE(IsStopped());
        EXPECT_EQ(42, StackDepth()) << "Main and 41 calls of Count";
        EXPECT_FALSE(ContinueAndRun()) << "the second stop: in the Count that Label calls";
        ASSERT_TRUE(IsStopped());
        EXPECT_EQ(45, StackDepth()) << "Main, 13 calls of Label and 31 of Count";
        EXPECT_FALSE(ContinueAndRun()) << "the third stop: in the Count of line 22";
        ASSERT_TRUE(IsStopped());
        EXPECT_FALSE(ContinueAndRun());
        EXPECT_TRUE(IsIdle());
        EXPECT_EQ((Texts{L"40&820&\"<30>123456789012\"\r\n", L"\"trapped\"10061&835&\r\n"}), Printed());
    }
}

} // namespace
