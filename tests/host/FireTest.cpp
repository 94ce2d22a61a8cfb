// Fire objects: Subs and Functions of the loaded macros called by name from the host, what a failed
// call answers, the kept result, calls refused while one is in progress, and the CU_Fire functions.
#include "brannoc.h"
#include "host/HostTestText.h"
#include "host/MacroEngine.h"
#include "support/MessageBoxCapture.h"
#include <gtest/gtest.h>
#include <utility>

using namespace brannoc;
using namespace brannoc::testing;
using brannoc::test::MessageBoxCapture;

namespace {

const wchar_t kMacro[] = L"Sub Main\r\n"
                         L"    Debug.Print \"main\"\r\n"
                         L"End Sub\r\n"
                         L"Sub Hello(who)\r\n"
                         L"    Debug.Print \"hello \" & who\r\n"
                         L"End Sub\r\n"
                         L"Function Square(n As Long) As Long\r\n"
                         L"    Debug.Print \"squaring\"\r\n"
                         L"    Square = n * n\r\n"
                         L"End Function\r\n"
                         L"Sub Bump(ByRef v, Optional step = 1)\r\n"
                         L"    v = v + step\r\n"
                         L"End Sub\r\n"
                         L"Sub Twice\r\n"
                         L"    Debug.Print \"first\"\r\n"
                         L"    Debug.Print \"second\"\r\n"
                         L"End Sub\r\n"
                         L"Sub Fails\r\n"
                         L"    Err.Raise 1001, \"Ledger\", \"No such account\"\r\n"
                         L"End Sub\r\n";

class FireTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(engine.Load(L"lib", kMacro));
        ASSERT_EQ(S_OK, engine.unit->get_Fire(VARIANT_FALSE, &fire));
        ASSERT_NE(nullptr, fire);
    }
    void TearDown() override
    {
        if (fire)
            fire->Release();
    }
    bool Read(DISPID member, Variant& value)
    {
        LateCall call;
        const HRESULT status = call.Invoke(fire, member, DISPATCH_PROPERTYGET);
        value = std::move(call.result);
        return status == S_OK;
    }
    bool Succeeded()
    {
        Variant value;
        EXPECT_TRUE(Read(5, value));
        return value.Tag() == VT_BOOL && value.Raw().boolVal == VARIANT_TRUE;
    }

    // Starts a macro that stops at a breakpoint on its second statement.
    void StopAtBreakpoint()
    {
        engine.callBack.macros[L"job"] = L"Sub Main\r\n    Debug.Print \"job\"\r\n    Debug.Print \"job end\"\r\nEnd Sub\r\n";
        BSTR name = SysAllocString(L"job");
        VARIANT_BOOL done = VARIANT_FALSE;
        ASSERT_EQ(S_OK, engine.unit->Start(name, &done));
        ASSERT_EQ(VARIANT_TRUE, done);
        ASSERT_EQ(S_OK, engine.unit->ToggleBreak(name, 3, &done));
        SysFreeString(name);
        ASSERT_EQ(VARIANT_TRUE, done);
        engine.unit->Run(0, &done);
        VARIANT_BOOL stopped = VARIANT_FALSE;
        engine.unit->get_IsStopped(&stopped);
        ASSERT_EQ(VARIANT_TRUE, stopped);
        engine.callBack.printed.clear();
    }

    MacroEngine engine;
    IDispatch* fire = nullptr;
};

} // namespace

TEST_F(FireTest, CallOfAMissingProcedureAnswersAnExceptionAndLeavesSucceededFalse)
{
    LateCall call;
    EXPECT_EQ(DISP_E_EXCEPTION, call.Text(L"Missing").Invoke(fire, 2));
    EXPECT_EQ(L"Sub/Function does not exist.", call.Description());
    EXPECT_EQ(10018, call.exception.wCode);
    EXPECT_FALSE(Succeeded());

    // A Function is not a Sub and the reverse: Call("Square") and Eval("Hello") are both missing.
    LateCall wrongKind;
    EXPECT_EQ(DISP_E_EXCEPTION, wrongKind.Text(L"Square").Long(2).Invoke(fire, 2));
    LateCall wrongKind2;
    EXPECT_EQ(DISP_E_EXCEPTION, wrongKind2.Text(L"Hello").Long(2).Invoke(fire, 3));
    EXPECT_EQ(L"", engine.callBack.AllPrinted()) << "nothing ran";
}

TEST_F(FireTest, CallRunsASubToItsEndOnAnIdleEngineAndEvalKeepsTheFunctionsValue)
{
    LateCall call;
    ASSERT_EQ(S_OK, call.Text(L"hello").Text(L"world").Invoke(fire, 2)) << "names compare without case";
    EXPECT_EQ(VT_BOOL, call.result.Tag());
    EXPECT_EQ(VARIANT_TRUE, call.result.Raw().boolVal);
    EXPECT_EQ(L"\"hello world\"\r\n", engine.callBack.AllPrinted()) << "the Sub ran, Main did not";
    EXPECT_TRUE(Succeeded());
    EXPECT_TRUE(engine.IsIdle());

    LateCall eval;
    ASSERT_EQ(S_OK, eval.Text(L"Square").Long(12).Invoke(fire, 3));
    Variant value;
    ASSERT_TRUE(Read(4, value));
    EXPECT_EQ(VT_I4, value.Tag());
    EXPECT_EQ(144, value.Raw().lVal);

    // A failed call keeps the earlier value but reads Succeeded false.
    LateCall missing;
    EXPECT_EQ(DISP_E_EXCEPTION, missing.Text(L"Nope").Invoke(fire, 3));
    EXPECT_FALSE(Succeeded());
    ASSERT_TRUE(Read(4, value));
    EXPECT_EQ(144, value.Raw().lVal);
}

TEST_F(FireTest, ArgumentsAreMatchedAndByReferenceOnesWrittenBack)
{
    VARIANT counter;
    VariantInit(&counter);
    counter.vt = VT_I4;
    counter.lVal = 10;
    LateCall call;
    ASSERT_EQ(S_OK, call.Text(L"Bump").Reference(&counter).Long(5).Invoke(fire, 2));
    EXPECT_EQ(15, counter.lVal);
    LateCall optional;
    ASSERT_EQ(S_OK, optional.Text(L"Bump").Reference(&counter).Invoke(fire, 2));
    EXPECT_EQ(16, counter.lVal) << "the Optional parameter took its default";

    LateCall tooMany;
    EXPECT_EQ(DISP_E_BADPARAMCOUNT, tooMany.Text(L"Bump").Long(1).Long(2).Long(3).Invoke(fire, 2));
    LateCall missing;
    EXPECT_EQ(DISP_E_PARAMNOTOPTIONAL, missing.Text(L"Hello").Invoke(fire, 2));
    EXPECT_EQ(0u, missing.argumentError);
    LateCall named;
    EXPECT_EQ(DISP_E_NONAMEDARGS, named.Text(L"Hello").Long(1).Named({0}).Invoke(fire, 2));
    LateCall noName;
    EXPECT_EQ(DISP_E_BADPARAMCOUNT, noName.Invoke(fire, 2));
    LateCall asGet;
    EXPECT_EQ(DISP_E_TYPEMISMATCH, asGet.Text(L"Hello").Long(1).Invoke(fire, 2, DISPATCH_PROPERTYGET));
}

TEST_F(FireTest, AnErrorInTheProcedureBecomesTheException)
{
    LateCall call;
    EXPECT_EQ(DISP_E_EXCEPTION, call.Text(L"Fails").Invoke(fire, 2));
    EXPECT_EQ(1001, call.exception.wCode);
    EXPECT_EQ(L"No such account", call.Description());
    ASSERT_NE(nullptr, call.exception.bstrSource);
    EXPECT_EQ(std::wstring(L"Ledger"), call.exception.bstrSource);
    EXPECT_FALSE(Succeeded());
    EXPECT_EQ(VT_BOOL, call.result.Tag());
    EXPECT_EQ(VARIANT_FALSE, call.result.Raw().boolVal);
    EXPECT_TRUE(engine.IsIdle()) << "the engine is idle again after the failed call";
    LateCall again;
    EXPECT_EQ(DISP_E_EXCEPTION, again.Text(L"Fails").Invoke(fire, 2));
    EXPECT_EQ(1001, again.exception.wCode);
}

TEST_F(FireTest, ResultAndASecondCallAreRefusedWhileAnEvalRuns)
{
    HRESULT resultWhileBusy = S_OK;
    HRESULT callWhileBusy = S_OK;
    bool busySeen = false;
    bool asked = false;
    engine.callBack.onDebugPrint = [&](IDispatch*) {
        if (std::exchange(asked, true))
            return;
        LateCall read;
        resultWhileBusy = read.Invoke(fire, 4, DISPATCH_PROPERTYGET);
        LateCall busy;
        busy.Invoke(fire, 1, DISPATCH_PROPERTYGET);
        busySeen = busy.result.Tag() == VT_BOOL && busy.result.Raw().boolVal == VARIANT_TRUE;
        LateCall second;
        callWhileBusy = second.Text(L"Hello").Long(1).Invoke(fire, 2);
    };
    LateCall eval;
    ASSERT_EQ(S_OK, eval.Text(L"Square").Long(3).Invoke(fire, 3));
    EXPECT_EQ(E_FAIL, resultWhileBusy);
    EXPECT_EQ(E_FAIL, callWhileBusy);
    EXPECT_TRUE(busySeen);
    Variant value;
    ASSERT_TRUE(Read(4, value));
    EXPECT_EQ(9, value.Raw().lVal);
}

TEST_F(FireTest, MembersAreFoundByNameWithoutCase)
{
    const wchar_t* names[] = {L"busy", L"CALL", L"Eval", L"result", L"Succeeded"};
    for (DISPID expected = 1; expected <= 5; ++expected) {
        LPOLESTR name = const_cast<LPOLESTR>(names[expected - 1]);
        DISPID id = 0;
        EXPECT_EQ(S_OK, fire->GetIDsOfNames(IID_NULL, &name, 1, 0x409, &id));
        EXPECT_EQ(expected, id);
    }
    LPOLESTR two[] = {const_cast<LPOLESTR>(L"Call"), const_cast<LPOLESTR>(L"x")};
    DISPID ids[2] = {0, 0};
    EXPECT_EQ(DISP_E_PARAMNOTFOUND, fire->GetIDsOfNames(IID_NULL, two, 2, 0x409, ids));
    EXPECT_EQ(2, ids[0]) << "the first name is still filled";
    LPOLESTR other = const_cast<LPOLESTR>(L"Start");
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, fire->GetIDsOfNames(IID_NULL, &other, 1, 0x409, ids));
    EXPECT_EQ(E_INVALIDARG, fire->GetIDsOfNames(IID_NULL, two, 0, 0x409, ids));
    UINT count = 7;
    EXPECT_EQ(E_NOTIMPL, fire->GetTypeInfoCount(&count));
    EXPECT_EQ(0u, count);
    LateCall unknown;
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, unknown.Invoke(fire, 6));
}

TEST_F(FireTest, TheCuFireFunctionsCallTheMembers)
{
    IDispatch* wrapped = CU_Fire(engine.unit, FALSE);
    ASSERT_NE(nullptr, wrapped);
    OA_ARG list{};
    ASSERT_TRUE(OA_ArgStart(2, &list));
    OA_ArgAddStringA(&list, "Square");
    OA_ArgAddI4(&list, 7);
    EXPECT_EQ(-1, CU_FireEval(wrapped, &list));
    EXPECT_EQ(-1, CU_FireSucceeded(wrapped));
    EXPECT_EQ(0, CU_FireBusy(wrapped));
    VARIANT value;
    VariantInit(&value);
    EXPECT_EQ(1, CU_FireResult(wrapped, &value));
    EXPECT_EQ(49, value.lVal);

    // A failed call shows the exception's description in the invoke family's box.
    MessageBoxCapture capture;
    ASSERT_TRUE(OA_ArgStart(1, &list));
    OA_ArgAddStringA(&list, "Missing");
    EXPECT_EQ(0, CU_FireCall(wrapped, &list));
    EXPECT_EQ(0, CU_FireSucceeded(wrapped));
    const auto boxes = capture.Boxes();
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(L"OA_Invoke Error", boxes[0].caption);
    EXPECT_EQ(L"Sub/Function does not exist.", boxes[0].text);
    OA_Release(wrapped);
}

TEST_F(FireTest, HaltAllAskedForInsideACallIsCarriedOutWhenTheCallReturns)
{
    StopAtBreakpoint();
    VARIANT_BOOL haltAnswer = VARIANT_TRUE;
    bool asked = false;
    engine.callBack.onDebugPrint = [&](IDispatch*) {
        if (!std::exchange(asked, true))
            engine.unit->HaltAll(&haltAnswer);
    };
    LateCall call;
    ASSERT_EQ(S_OK, call.Text(L"Twice").Invoke(fire, 2));
    EXPECT_EQ(VARIANT_FALSE, haltAnswer) << "deferred, not carried out inside the call";
    EXPECT_EQ(L"\"first\"\r\n\"second\"\r\n", engine.callBack.AllPrinted()) << "the call ran to its end";
    EXPECT_TRUE(engine.IsIdle()) << "the stopped macro ended when the call returned";
}

TEST_F(FireTest, APlainFireCallRunsThroughAStoppedEngineWhichStaysStopped)
{
    StopAtBreakpoint();
    LateCall plain;
    ASSERT_EQ(S_OK, plain.Text(L"Twice").Invoke(fire, 2));
    EXPECT_EQ(L"\"first\"\r\n\"second\"\r\n", engine.callBack.AllPrinted());
    VARIANT_BOOL stopped = VARIANT_FALSE;
    engine.unit->get_IsStopped(&stopped);
    EXPECT_EQ(VARIANT_TRUE, stopped);
}
