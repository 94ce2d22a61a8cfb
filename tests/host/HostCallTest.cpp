// What a host sees of a run: the order of the notifications for a normal run, a compile error and a
// run-time error, and Subs called by name (Call0 ... Call5 and CU_Call) with arguments written back.
#include "brannoc.h"
#include "host/CodeUnit.h"
#include "host/EngineTest.h"
#include "host/HostTestText.h"
#include "support/MessageBoxCapture.h"
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace brannoc;
using namespace brannoc::testing_text;
using brannoc::test::MessageBoxCapture;
using brannoc::testing::FakeCallBack;

namespace {

const wchar_t kLibrary[] = L"Sub Main\r\n"
                           L"    Debug.Print \"main ran\"\r\n"
                           L"End Sub\r\n"
                           L"Sub Hello\r\n"
                           L"    Debug.Print \"hello\"\r\n"
                           L"End Sub\r\n"
                           L"Sub Twice(ByRef v As Variant, ByRef n As Long)\r\n"
                           L"    v = v & v\r\n"
                           L"    n = n * 2\r\n"
                           L"End Sub\r\n"
                           L"Sub Sum5(a, b, c, d, e)\r\n"
                           L"    Debug.Print a + b + c + d + e\r\n"
                           L"End Sub\r\n"
                           L"Private Sub Hidden\r\n"
                           L"End Sub\r\n"
                           L"Sub Fails\r\n"
                           L"    Error 11\r\n"
                           L"End Sub\r\n";

class HostCallTest : public brannoc::testing::EngineTest {
protected:
    void SetUp() override
    {
        EngineTest::SetUp();
        callBack.macros[L"lib"] = kLibrary;
    }
};

} // namespace

TEST_F(HostCallTest, NotificationOrderOfANormalRunACompileErrorAndARunTimeError)
{
    callBack.macros[L"good"] = L"Sub Main\r\n    Debug.Print 1\r\nEnd Sub\r\n";
    ASSERT_TRUE(Start(L"good"));
    RunToEnd();
    EXPECT_EQ((std::vector<short>{9, 1, 2}), callBack.notifications) << "compiling, active, then idle";

    // A compile error is set (5) and shown (0); the failed start then reports its own status (0).
    callBack.notifications.clear();
    callBack.macros[L"bad"] = L"Sub Main\r\n    Debug.Print 1 +\r\nEnd Sub\r\n";
    EXPECT_FALSE(Start(L"bad"));
    EXPECT_EQ((std::vector<short>{9, 5, 0, 0}), callBack.notifications);
    EXPECT_EQ((std::vector<long>{10537, 10012}), callBack.errorNumbers);

    // An untrapped run-time error: active, report begins, error shown, stopped; ending it goes idle.
    callBack.notifications.clear();
    callBack.macros[L"fails"] = L"Sub Main\r\n    Error 11\r\nEnd Sub\r\n";
    ASSERT_TRUE(Start(L"fails"));
    RunToEnd();
    VARIANT_BOOL stopped = VARIANT_FALSE;
    unit->get_IsStopped(&stopped);
    EXPECT_EQ(VARIANT_TRUE, stopped);
    VARIANT_BOOL idle = VARIANT_FALSE;
    unit->HaltAll(&idle);
    const std::vector<short> seen = callBack.notifications;
    ASSERT_GE(seen.size(), 6u);
    EXPECT_EQ((std::vector<short>{9, 1, 19, 0, 3}), std::vector<short>(seen.begin(), seen.begin() + 5));
    EXPECT_EQ(2, seen.back());
}

TEST_F(HostCallTest, CallsRunSubsOfALoadedMacroAndWriteByReferenceArgumentsBack)
{
    ASSERT_TRUE(Load(L"lib"));
    BSTR hello = SysAllocString(L"Hello");
    VARIANT_BOOL done = VARIANT_FALSE;
    EXPECT_EQ(S_OK, unit->Call0(hello, &done));
    SysFreeString(hello);
    EXPECT_EQ(VARIANT_TRUE, done);
    EXPECT_EQ(L"\"hello\"\r\n", callBack.AllPrinted()) << "the Sub ran, Main did not";

    // A Variant and a typed reference, both written back.
    VARIANT text;
    VariantInit(&text);
    text.vt = VT_BSTR;
    text.bstrVal = SysAllocString(L"ab");
    LONG number = 21;
    VARIANT numberReference;
    VariantInit(&numberReference);
    numberReference.vt = VT_BYREF | VT_I4;
    numberReference.plVal = &number;
    BSTR twice = SysAllocString(L"twice");
    EXPECT_EQ(S_OK, unit->Call2(twice, &text, &numberReference, &done));
    SysFreeString(twice);
    EXPECT_EQ(VARIANT_TRUE, done);
    ASSERT_EQ(VT_BSTR, text.vt);
    EXPECT_EQ(std::wstring(L"abab"), text.bstrVal);
    EXPECT_EQ(42, number);
    VariantClear(&text);

    // Five arguments.
    VARIANT values[5];
    for (int i = 0; i < 5; ++i) {
        VariantInit(&values[i]);
        values[i].vt = VT_I2;
        values[i].iVal = static_cast<SHORT>(i + 1);
    }
    callBack.printed.clear();
    BSTR sum = SysAllocString(L"Sum5");
    EXPECT_EQ(S_OK, unit->Call5(sum, &values[0], &values[1], &values[2], &values[3], &values[4], &done));
    SysFreeString(sum);
    EXPECT_EQ(VARIANT_TRUE, done);
    EXPECT_EQ(L"15%\r\n", callBack.AllPrinted());
    EXPECT_EQ((std::vector<short>{9, 1, 2, 1, 2, 1, 2}), callBack.notifications)
        << "each call on an idle engine is a run of its own: active, then idle";
}

TEST_F(HostCallTest, UnknownPrivateAndFailingSubsAnswerFalse)
{
    ASSERT_TRUE(Load(L"lib"));
    for (const wchar_t* name : {L"Missing", L"Hidden"}) {
        SCOPED_TRACE(name);
        callBack.errorNumbers.clear();
        BSTR text = SysAllocString(name);
        VARIANT_BOOL done = VARIANT_TRUE;
        EXPECT_EQ(S_OK, unit->Call0(text, &done));
        SysFreeString(text);
        EXPECT_EQ(VARIANT_FALSE, done);
        EXPECT_EQ((std::vector<long>{10018}), callBack.errorNumbers);
        BSTR description = nullptr;
        unit->get_ErrorDesc(&description);
        EXPECT_EQ(L"Sub/Function does not exist. '" + std::wstring(name) + L"'", TakeText(description));
    }
    callBack.errorNumbers.clear();
    BSTR fails = SysAllocString(L"Fails");
    VARIANT_BOOL done = VARIANT_TRUE;
    EXPECT_EQ(S_OK, unit->Call0(fails, &done));
    SysFreeString(fails);
    EXPECT_EQ(VARIANT_FALSE, done);
    EXPECT_EQ((std::vector<long>{11}), callBack.errorNumbers) << "the Sub's own error is reported";
}

TEST_F(HostCallTest, LateBoundCallsPassVariantsByReference)
{
    ASSERT_TRUE(Load(L"lib"));
    DISPID id = 0;
    LPOLESTR name = const_cast<LPOLESTR>(L"Call2");
    ASSERT_EQ(S_OK, unit->GetIDsOfNames(IID_NULL, &name, 1, 0x409, &id));
    EXPECT_EQ(5, id);
    VARIANT text;
    VariantInit(&text);
    text.vt = VT_BSTR;
    text.bstrVal = SysAllocString(L"xy");
    VARIANT number;
    VariantInit(&number);
    number.vt = VT_I4;
    number.lVal = 4;
    VARIANT arguments[3];
    for (VARIANT& argument : arguments)
        VariantInit(&argument);
    arguments[2].vt = VT_BSTR;
    arguments[2].bstrVal = SysAllocString(L"Twice");
    arguments[1].vt = VT_BYREF | VT_VARIANT;
    arguments[1].pvarVal = &text;
    arguments[0].vt = VT_BYREF | VT_VARIANT;
    arguments[0].pvarVal = &number;
    DISPPARAMS parameters{arguments, nullptr, 3, 0};
    VARIANT result;
    VariantInit(&result);
    ASSERT_EQ(S_OK, unit->Invoke(id, IID_NULL, 0x409, DISPATCH_METHOD, &parameters, &result, nullptr, nullptr));
    EXPECT_EQ(VT_BOOL, result.vt);
    EXPECT_EQ(VARIANT_TRUE, result.boolVal);
    EXPECT_EQ(std::wstring(L"xyxy"), text.bstrVal);
    EXPECT_EQ(8, number.lVal);
    VariantClear(&arguments[2]);
    VariantClear(&text);
}

namespace {

struct PausedCall {
    void* unit = nullptr;
    std::vector<std::string> printed;
    BOOL paused = 0;
    BOOL answer = -1;
};

void __stdcall CallWhilePaused(IDispatch*, LPCSTR text, void* userData)
{
    auto* state = static_cast<PausedCall*>(userData);
    state->printed.emplace_back(text);
    if (state->printed.size() != 1)
        return;
    state->paused = CU_IsPaused(state->unit);
    OA_ARG list{};
    OA_ArgStart(1, &list);
    OA_ArgAddStringA(&list, "Hello");
    state->answer = CU_Call(state->unit, &list);
}

BSTR __stdcall ServeLibrary(IDispatch*, LPCSTR, void*)
{
    const std::string text = "Sub Main\r\n    Debug.Print \"main\"\r\nEnd Sub\r\nSub Hello\r\n    Debug.Print \"hello\"\r\nEnd Sub\r\n";
    return OA_SysAllocStringLenA(text.data(), static_cast<UINT>(text.size()));
}

} // namespace

TEST(HostCallExports, CallWithTheNameOnlyCallsCall0AndBadCountsShowTheBox)
{
    void* unit = CU_CreateCodeUnit();
    ASSERT_NE(nullptr, unit);
    PausedCall state;
    state.unit = unit;
    CB_FUNCTIONS functions{};
    functions.DebugPrint = CallWhilePaused;
    functions.ReadMacro = ServeLibrary;
    IDispatch* callBack = CB_CreateCallBack(nullptr, &functions, &state);
    ASSERT_NE(nullptr, callBack);
    CU_SetCallBack(unit, callBack);
    MessageBoxCapture capture;

    // From inside Debug.Print the engine is paused: the call answers false and runs nothing.
    ASSERT_EQ(-1, CU_Start(unit, "lib"));
    CU_Run(unit, 0);
    EXPECT_EQ(-1, state.paused);
    EXPECT_EQ(0, state.answer);
    EXPECT_EQ((std::vector<std::string>{"\"main\"\r\n"}), state.printed);

    // Idle again: the name alone calls Call0.
    OA_ARG list{};
    ASSERT_TRUE(OA_ArgStart(1, &list));
    OA_ArgAddStringA(&list, "Hello");
    EXPECT_EQ(-1, CU_Call(unit, &list));
    EXPECT_EQ((std::vector<std::string>{"\"main\"\r\n", "\"hello\"\r\n"}), state.printed);
    EXPECT_EQ(0u, capture.Count());

    // No entries, or seven: the box, and false.
    OA_ARG empty{};
    ASSERT_TRUE(OA_ArgStart(0, &empty));
    EXPECT_EQ(0, CU_Call(unit, &empty));
    OA_ARG seven{};
    ASSERT_TRUE(OA_ArgStart(7, &seven));
    for (int i = 0; i < 7; ++i)
        OA_ArgAddI4(&seven, i);
    EXPECT_EQ(0, CU_Call(unit, &seven));
    EXPECT_EQ(0, CU_Call(unit, nullptr));
    auto boxes = capture.Boxes();
    ASSERT_EQ(3u, boxes.size());
    for (const auto& box : boxes) {
        EXPECT_EQ(L"Call Error", box.caption);
        EXPECT_EQ(L"Wrong number of arguments.", box.text);
    }
    CU_SetCallBack(unit, nullptr);
    callBack->Release();
    OA_Release(static_cast<IUnknown*>(unit));
}

TEST_F(HostCallTest, PrototypesListTheDeclarationLinesOfALoadedMacro)
{
    BSTR name = SysAllocString(L"lib");
    BSTR text = nullptr;
    EXPECT_EQ(S_OK, unit->get_Prototypes(name, &text));
    EXPECT_EQ(L"", TakeText(text)) << "nothing before the macro is loaded";
    ASSERT_TRUE(Load(L"lib"));
    EXPECT_EQ(S_OK, unit->get_Prototypes(name, &text));
    SysFreeString(name);
    EXPECT_EQ(L"Sub Main\r\n"
              L"Sub Hello\r\n"
              L"Sub Twice(ByRef v As Variant, ByRef n As Long)\r\n"
              L"Sub Sum5(a, b, c, d, e)\r\n"
              L"Private Sub Hidden\r\n"
              L"Sub Fails\r\n",
              TakeText(text));
}
