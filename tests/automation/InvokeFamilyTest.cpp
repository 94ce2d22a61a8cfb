// Argument lists and the OA_Invoke family: arguments stored from the last slot down, by-reference
// arguments, typed results, and the "OA_Invoke Error" boxes (or the error record instead of them).
#include "support/MessageBoxCapture.h"
#include "support/TestComObject.h"

#include "brannoc.h"

#include <gtest/gtest.h>

#include <string>

using brannoc::test::MessageBoxCapture;

namespace {

const wchar_t kTarget[] = L"Subtract&(A&, B&)\nWord$(Which%)\nBump ByRef N&\nNothing\nFail\nHalf#(X#)\nTarget*=O*";

struct Target {
    virtual long __stdcall Subtract(long a, long b) { ++calls; return a - b; }
    virtual BSTR __stdcall Word(short which)
    {
        ++calls;
        const wchar_t* words[] = {L"True", L"not a number", L"12"};
        return SysAllocString(words[which]);
    }
    virtual void __stdcall Bump(long* n) { ++calls; *n += 1; }
    virtual void __stdcall Nothing() { ++calls; }
    virtual void __stdcall Fail() { ++calls; OA_RaiseErrorW(42, L"Target", L"Target failed", nullptr, 0); }
    virtual double __stdcall Half(double x) { ++calls; return x / 2; }
    virtual IDispatch* __stdcall GetTarget() { ++calls; if (held) held->AddRef(); return held; }
    virtual void __stdcall SetTarget(IDispatch* object) { ++calls; held = object; }

    int calls = 0;
    IDispatch* held = nullptr;
};

class InvokeFamily : public ::testing::Test {
protected:
    void SetUp() override
    {
        type = OA_CreateTypeW(kTarget);
        ASSERT_NE(nullptr, type);
        object = OA_CreateDispatch(type, nullptr, &target, nullptr);
        ASSERT_NE(nullptr, object);
    }
    void TearDown() override
    {
        object->Release();
        type->Release();
    }
    DISPID Id(const char* name) { return OA_GetDispatchIDA(object, name); }

    Target target;
    ITypeInfo* type = nullptr;
    IDispatch* object = nullptr;
    MessageBoxCapture capture;
};

// A server whose members fail in set ways: 1 raises an exception with a description, 2 one without.
class FailingServer final : public brannoc::testing::TestDispatch {
public:
    HRESULT __stdcall GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT __stdcall Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO* exception,
                             UINT*) override
    {
        *exception = EXCEPINFO{};
        exception->wCode = 7;
        exception->bstrSource = SysAllocString(L"Server");
        if (id == 1)
            exception->bstrDescription = SysAllocString(L"Server said no");
        return DISP_E_EXCEPTION;
    }
};

} // namespace

TEST_F(InvokeFamily, ArgumentsAreStoredFromTheLastSlotDown)
{
    OA_ARG list;
    ASSERT_TRUE(OA_ArgStart(2, &list));
    EXPECT_EQ(2, list.count);
    EXPECT_EQ(2, list.freeSlots);
    EXPECT_EQ(VT_EMPTY, list.args[0].vt);
    EXPECT_TRUE(OA_ArgAddI4(&list, 10));
    EXPECT_EQ(1, list.freeSlots);
    EXPECT_EQ(VT_I4, list.args[1].vt);
    EXPECT_TRUE(OA_ArgAddI4(&list, 3));
    EXPECT_EQ(3, list.args[0].lVal);
    EXPECT_EQ(7, OA_InvokeI4(object, Id("Subtract"), &list, nullptr));
    EXPECT_EQ(nullptr, list.args);
    EXPECT_EQ(0, list.error);
    EXPECT_EQ(0u, capture.Count());
}

TEST_F(InvokeFamily, EachArgumentKindStoresItsTag)
{
    OA_ARG list;
    ASSERT_TRUE(OA_ArgStart(17, &list));
    SHORT i2 = 0;
    LONG i4 = 0;
    FLOAT r4 = 0;
    DOUBLE r8 = 0;
    BSTR text = nullptr;
    IDispatch* dispatch = nullptr;
    IUnknown* unknown = nullptr;
    BSTR ansi = OA_SysAllocStringA("ansi");
    VARIANT referenced;
    referenced.vt = VT_I2;
    referenced.iVal = 5;
    VARIANT variant;
    variant.vt = VT_BYREF | VT_VARIANT;
    variant.pvarVal = &referenced;
    OA_ArgAddBOOL(&list, -1);
    OA_ArgAddI2(&list, 2);
    OA_ArgAddI4(&list, 4);
    OA_ArgAddR4(&list, 1.5f);
    OA_ArgAddR8(&list, 2.5);
    OA_ArgAddStringA(&list, "a");
    OA_ArgAddStringW(&list, L"w");
    OA_ArgAddBSTRA(&list, ansi);
    OA_ArgAddDisp(&list, object);
    OA_ArgAddVariant(&list, &variant);
    OA_ArgAddI2Ref(&list, &i2);
    OA_ArgAddI4Ref(&list, &i4);
    OA_ArgAddR4Ref(&list, &r4);
    OA_ArgAddR8Ref(&list, &r8);
    OA_ArgAddBSTRRef(&list, &text);
    OA_ArgAddDispRef(&list, &dispatch);
    OA_ArgAddUnkRef(&list, &unknown);
    const VARTYPE expected[] = {VT_BOOL, VT_I2, VT_I4, VT_R4, VT_R8, VT_BSTR, VT_BSTR, VT_BSTR, VT_DISPATCH, VT_I2,
                                0x4002, 0x4003, 0x4004, 0x4005, 0x4008, 0x4009, 0x400D};
    for (int i = 0; i < 17; ++i)
        EXPECT_EQ(expected[i], list.args[16 - i].vt) << i;
    EXPECT_EQ(-1, list.args[16].boolVal);
    EXPECT_STREQ(L"ansi", list.args[9].bstrVal);
    EXPECT_EQ(5, list.args[7].iVal);
    EXPECT_EQ(&i2, list.args[6].piVal);
    OA_ArgRelease(&list);
    OA_SysFreeStringA(ansi);
}

TEST_F(InvokeFamily, ByReferenceArgumentsLetTheObjectWriteIntoTheCallersVariable)
{
    LONG counter = 41;
    OA_ARG list;
    OA_ArgStart(1, &list);
    OA_ArgAddI4Ref(&list, &counter);
    EXPECT_TRUE(OA_Invoke(object, Id("Bump"), &list, nullptr));
    EXPECT_EQ(42, counter);
}

TEST_F(InvokeFamily, AListTooSmallIsShownAndTheObjectIsNotCalled)
{
    OA_ARG list;
    OA_ArgStart(1, &list);
    EXPECT_TRUE(OA_ArgAddI4(&list, 1));
    EXPECT_FALSE(OA_ArgAddI4(&list, 2));
    EXPECT_EQ(1, list.error);
    EXPECT_EQ(0, OA_InvokeI4(object, Id("Subtract"), &list, nullptr));
    EXPECT_EQ(0, target.calls);
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"OA_Invoke Error", capture.Boxes()[0].caption);
    EXPECT_EQ(L"OA_ARG too small.", capture.Boxes()[0].text);
    EXPECT_EQ(0, list.error);
}

TEST_F(InvokeFamily, TypedResults)
{
    auto word = [&](short which) {
        static OA_ARG list;
        OA_ArgStart(1, &list);
        OA_ArgAddI2(&list, which);
        return &list;
    };
    EXPECT_EQ(-1, OA_InvokeBOOL(object, Id("Word"), word(0), nullptr));
    EXPECT_EQ(12, OA_InvokeI2(object, Id("Word"), word(2), nullptr));
    EXPECT_FLOAT_EQ(12.0f, OA_InvokeR4(object, Id("Word"), word(2), nullptr));
    BSTR wide = OA_InvokeBSTRW(object, Id("Word"), word(1), nullptr);
    EXPECT_STREQ(L"not a number", wide);
    OA_SysFreeString(wide);
    BSTR ansi = OA_InvokeBSTRA(object, Id("Word"), word(1), nullptr);
    ASSERT_NE(nullptr, ansi);
    EXPECT_EQ(12u, OA_SysStringLenA(ansi));
    EXPECT_EQ(std::string("not a number"), std::string(reinterpret_cast<const char*>(ansi), 12));
    OA_SysFreeStringA(ansi);
    OA_ARG half;
    OA_ArgStart(1, &half);
    OA_ArgAddR8(&half, 5.0);
    EXPECT_DOUBLE_EQ(2.5, OA_InvokeR8(object, Id("Half"), &half, nullptr));
    VARIANT result;
    VariantInit(&result);
    EXPECT_TRUE(OA_InvokeVariant(object, Id("Word"), word(0), nullptr, &result));
    EXPECT_EQ(VT_BSTR, result.vt);
    VariantClear(&result);
    EXPECT_EQ(0u, capture.Count());

    EXPECT_EQ(0, OA_InvokeBOOL(object, Id("Word"), word(1), nullptr));
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"Result type conversion failed.", capture.Boxes()[0].text);
    OA_ERROR record{};
    EXPECT_EQ(0, OA_InvokeI4(object, Id("Word"), word(1), &record));
    EXPECT_EQ(1u, capture.Count());
}

TEST_F(InvokeFamily, PutAndObjectResults)
{
    OA_ARG list;
    OA_ArgStart(1, &list);
    OA_ArgAddDisp(&list, object);
    // An Object value is a put-reference, which a plain put does not reach.
    EXPECT_FALSE(OA_InvokePut(object, Id("Target"), &list, nullptr));
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"Invoke failed.\nError=0x80020003", capture.Boxes()[0].text);
    EXPECT_EQ(nullptr, OA_InvokeDisp(object, Id("Target"), nullptr, nullptr));
    target.held = object;
    IDispatch* got = OA_InvokeDisp(object, Id("Target"), nullptr, nullptr);
    EXPECT_EQ(object, got);
    OA_Release(got);
    IUnknown* unknown = OA_InvokeUnk(object, Id("Target"), nullptr, nullptr);
    EXPECT_NE(nullptr, unknown);
    OA_Release(unknown);
}

TEST_F(InvokeFamily, FailuresAreShownOrRecorded)
{
    EXPECT_FALSE(OA_Invoke(nullptr, 1, nullptr, nullptr));
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"Dispatch pointer is nothing.", capture.Boxes()[0].text);
    capture.Clear();

    // An error raised inside the method: its description is shown, or the record is filled.
    EXPECT_FALSE(OA_Invoke(object, Id("Fail"), nullptr, nullptr));
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"Target failed", capture.Boxes()[0].text);
    EXPECT_EQ(L"OA_Invoke Error", capture.Boxes()[0].caption);
    capture.Clear();
    OA_ERROR record{};
    EXPECT_FALSE(OA_Invoke(object, Id("Fail"), nullptr, &record));
    EXPECT_EQ(0u, capture.Count());
    EXPECT_EQ(42, record.wCode);
    EXPECT_STREQ(L"Target", record.bstrSource);
    EXPECT_STREQ(L"Target failed", record.bstrDescription);
    SysFreeString(record.bstrSource);
    SysFreeString(record.bstrDescription);

    FailingServer server;
    EXPECT_FALSE(OA_Invoke(&server, 2, nullptr, nullptr));
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"Invoke failed.", capture.Boxes()[0].text);
    capture.Clear();
    EXPECT_FALSE(OA_Invoke(&server, 1, nullptr, nullptr));
    EXPECT_EQ(L"Server said no", capture.Boxes()[0].text);
    capture.Clear();

    // Other failures: the status in hexadecimal, or silence with a record.
    EXPECT_FALSE(OA_Invoke(object, 999, nullptr, nullptr));
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"Invoke failed.\nError=0x80020003", capture.Boxes()[0].text);
    capture.Clear();
    OA_ERROR silent{};
    EXPECT_FALSE(OA_Invoke(object, 999, nullptr, &silent));
    EXPECT_EQ(0u, capture.Count());

    EXPECT_FALSE(OA_InvokeError(object, 1, nullptr, nullptr));
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"Program Error", capture.Boxes()[0].caption);
    EXPECT_EQ(L"OA_InvokeError[Silent] is no longer supported.", capture.Boxes()[0].text);
}
