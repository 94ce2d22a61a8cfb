// Evaluations through the engine object: Evaluate, EvaluatePut and EvaluateObject in a paused frame and
// its callers, errors that fail the evaluation but leave the run as it was, a second evaluation during
// one, and evaluations on an idle engine. Macros are served from memory.
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


const std::wstring kMacro = Lines({
    L"Dim total As Long",                    // 1
    L"Sub Main",                             // 2
    L"    Dim x As Integer",                 // 3
    L"    Dim s As String",                  // 4
    L"    x = 21",                           // 5
    L"    s = \"abc\"",                      // 6
    L"    total = 100",                      // 7
    L"    Helper x * 2",                     // 8
    L"    Debug.Print x; s; total",          // 9
    L"End Sub",                              // 10
    L"Sub Helper(ByVal n As Long)",          // 11
    L"    Dim y As Double",                  // 12
    L"    y = n / 4",                        // 13
    L"    Debug.Print y",                    // 14
    L"End Sub",                              // 15
    L"Function Twice(v)",                    // 16
    L"    Twice = v * 2",                    // 17
    L"End Function",                         // 18
    L"Function Noisy()",                     // 19
    L"    Debug.Print \"noisy\"",            // 20
    L"    Noisy = 1",                        // 21
    L"End Function",                         // 22
});

class EvaluationTest : public brannoc::testing::EngineTest {
protected:
    void SetUp() override
    {
        EngineTest::SetUp();
        callBack.macros[L"ev"] = kMacro;
    }
    bool Start(const wchar_t* macro = L"ev") { return EngineTest::Start(macro); }
    // Stops the macro before line 14, inside Helper called from Main.
    void StopInHelper()
    {
        ASSERT_TRUE(Start());
        ASSERT_TRUE(Toggle(L"ev", 14));
        ASSERT_FALSE(Run(0));
        ASSERT_TRUE(Flag(&CodeUnit::get_IsStopped));
    }
    std::wstring Evaluate(const wchar_t* expression, short depth)
    {
        BSTR text = SysAllocString(expression);
        BSTR result = nullptr;
        EXPECT_EQ(S_OK, unit->get_Evaluate(text, depth, &result));
        SysFreeString(text);
        return TakeText(result);
    }
    void EvaluatePut(const wchar_t* target, short depth, const wchar_t* value)
    {
        BSTR text = SysAllocString(target);
        BSTR assigned = SysAllocString(value);
        EXPECT_EQ(S_OK, unit->put_Evaluate(text, depth, assigned));
        SysFreeString(text);
        SysFreeString(assigned);
    }
    std::wstring ErrorDesc() { return Text(&CodeUnit::get_ErrorDesc); }
    std::wstring CurrentLine() { return Text(&CodeUnit::get_CurrentLine); }
    bool ContinueAndRun()
    {
        EXPECT_TRUE(Flag(&CodeUnit::Continue));
        return Run(0);
    }
};

using Texts = std::vector<std::wstring>;

TEST_F(EvaluationTest, EvaluateReadsTheVariablesOfTheSelectedFrame)
{
    StopInHelper();
    EXPECT_EQ(L"10.5#", Evaluate(L"y", 0));
    EXPECT_EQ(L"42&", Evaluate(L"n", 0));
    EXPECT_EQ(L"142&", Evaluate(L"total + n", 0)) << "module-level variables are in scope";
    EXPECT_EQ(L"42%", Evaluate(L"x * 2", 1)) << "depth 1 sees the caller's locals";
    EXPECT_EQ(L"\"abc!\"", Evaluate(L"s & \"!\"", 1));
    EXPECT_EQ(L"84&", Evaluate(L"Twice(n)", 0)) << "procedures of the module can be called";
    EXPECT_EQ(L"\"ABC\"", Evaluate(L"UCase(s)", 1));
    EXPECT_EQ(L"[ev|Helper# 14] Debug.Print y", CurrentLine()) << "the run is still where it stopped";
    EXPECT_EQ(1, callBack.Count(3));
    EXPECT_FALSE(ContinueAndRun());
    EXPECT_EQ((Texts{L"10.5#\r\n", L"21%\"abc\"100&\r\n"}), callBack.printed);
}

TEST_F(EvaluationTest, EvaluatePutAssignsInTheFrame)
{
    StopInHelper();
    EvaluatePut(L"x", 1, L"7");
    EvaluatePut(L"s", 1, L"\"xyz\" & x");
    EvaluatePut(L"total", 0, L"total * 2");
    EXPECT_EQ(L"7%", Evaluate(L"x", 1));
    EXPECT_FALSE(ContinueAndRun());
    EXPECT_EQ((Texts{L"10.5#\r\n", L"7%\"xyz7\"200&\r\n"}), callBack.printed);
}

TEST_F(EvaluationTest, AnErrorFailsTheEvaluationButLeavesTheRunStopped)
{
    StopInHelper();
    EXPECT_EQ(L"", Evaluate(L"y / (n - 42)", 0));
    EXPECT_EQ(10061, ErrorNumber()) << ErrorDesc();
    EXPECT_EQ(L"", Evaluate(L"Twice(", 0));
    EXPECT_EQ(10539, ErrorNumber()) << ErrorDesc();
    EXPECT_EQ(L"Expecting an expression.", ErrorDesc());
    EXPECT_EQ(0, callBack.Count(0)) << "an evaluation's error is no error of the run";
    EXPECT_TRUE(Flag(&CodeUnit::get_IsStopped));
    EXPECT_EQ(1, callBack.Count(3));
    EXPECT_EQ(L"[ev|Helper# 14] Debug.Print y", CurrentLine());
    EXPECT_EQ(L"10.5#", Evaluate(L"y", 0)) << "the next evaluation works";
    EXPECT_FALSE(ContinueAndRun());
    EXPECT_TRUE(Flag(&CodeUnit::get_IsIdle));
    EXPECT_EQ((Texts{L"10.5#\r\n", L"21%\"abc\"100&\r\n"}), callBack.printed);
}

TEST_F(EvaluationTest, EvaluatingDuringAnEvaluationIsRefused)
{
    StopInHelper();
    bool evaluatingSeen = false;
    std::wstring nested = L"<none>";
    long nestedError = 0;
    callBack.onDebugPrint = [&](IDispatch*) {
        evaluatingSeen = Flag(&CodeUnit::get_Evaluating);
        nested = Evaluate(L"1 + 1", 0);
        nestedError = ErrorNumber();
    };
    EXPECT_EQ(L"1%", Evaluate(L"Noisy()", 0));
    EXPECT_TRUE(evaluatingSeen);
    EXPECT_EQ(L"", nested);
    EXPECT_EQ(10509, nestedError);
    callBack.onDebugPrint = nullptr;
    EXPECT_FALSE(Flag(&CodeUnit::get_Evaluating));
    EXPECT_EQ((Texts{L"\"noisy\"\r\n"}), callBack.printed);
}

TEST_F(EvaluationTest, EvaluationCodeIsNeverSteppedOrStoppedIn)
{
    StopInHelper();
    EXPECT_TRUE(Toggle(L"ev", 17));
    EXPECT_EQ(L"6%", Evaluate(L"Twice(3)", 0)) << "a break point inside an evaluation does not stop it";
    EXPECT_EQ(1, callBack.Count(3));
    // Stepping goes on from where the run stopped, not from inside the evaluation.
    EXPECT_TRUE(Flag(&CodeUnit::Continue));
    EXPECT_TRUE(Flag(&CodeUnit::Step));
    EXPECT_EQ(L"[ev|Helper# 15] End Sub", CurrentLine());
    EXPECT_EQ(L"10.5#", Evaluate(L"y", 0));
    EXPECT_TRUE(Flag(&CodeUnit::Step));
    EXPECT_EQ(L"[ev|Main#  9] Debug.Print x; s; total", CurrentLine());
}

TEST_F(EvaluationTest, EvaluateObjectGivesTheObject)
{
    callBack.macros[L"Shape.cls"] = Lines({
        L"VERSION 1.0 CLASS",
        L"BEGIN",
        L"  MultiUse = -1",
        L"END",
        L"Attribute VB_Name = \"Shape\"",
        L"Public Side As Long",
        L"Public Function Area() As Long",
        L"    Area = Side * Side",
        L"End Function",
    });
    callBack.macros[L"user"] = Lines({
        L"'#Uses \"Shape.cls\"",                // 1
        L"Sub Main",                            // 2
        L"    Dim s As New Shape",              // 3
        L"    s.Side = 3",                      // 4
        L"    Debug.Print s.Area()",            // 5
        L"End Sub",                             // 6
    });
    ASSERT_TRUE(Start(L"user"));
    EXPECT_TRUE(Toggle(L"user", 5));
    EXPECT_FALSE(Run(0));
    BSTR text = SysAllocString(L"s");
    IDispatch* object = nullptr;
    EXPECT_EQ(S_OK, unit->get_EvaluateObject(text, 0, &object));
    SysFreeString(text);
    ASSERT_NE(nullptr, object);
    EXPECT_EQ(L"9&", Evaluate(L"s.Area()", 0));
    object->Release();
    text = SysAllocString(L"s.Side");
    EXPECT_EQ(S_OK, unit->get_EvaluateObject(text, 0, &object));
    SysFreeString(text);
    EXPECT_EQ(nullptr, object) << "a number is no object";
    EXPECT_FALSE(ContinueAndRun());
    EXPECT_EQ((Texts{L"9&\r\n"}), callBack.printed);
}

TEST_F(EvaluationTest, AnIdleEngineEvaluatesWithoutARun)
{
    EXPECT_EQ(L"3%", Evaluate(L"1 + 2", 0));
    EXPECT_EQ(L"\"AB\"", Evaluate(L"UCase(\"a\" & \"b\")", 5));
    EXPECT_TRUE(callBack.notifications.empty()) << "no run started or ended";
    EXPECT_TRUE(Flag(&CodeUnit::get_IsIdle));
}

TEST_F(EvaluationTest, TheExportedFunctionsEvaluateToo)
{
    StopInHelper();
    void* handle = static_cast<_CodeUnit*>(unit);
    BSTR value = CU_Evaluate(handle, "y * 2", 0);
    ASSERT_NE(nullptr, value);
    EXPECT_EQ("21#", std::string(reinterpret_cast<const char*>(value), OA_SysStringLenA(value)));
    OA_SysFreeStringA(value);
    CU_EvaluatePut(handle, "y", 0, "1.25");
    EXPECT_EQ(L"1.25#", Evaluate(L"y", 0));
}

} // namespace
