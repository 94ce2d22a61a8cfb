// A handler's Start and StartPA: the bound Sub begins as a run of its own; what is refused.
#include "brannoc.h"
#include "host/MacroEngine.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using namespace brannoc;
using namespace brannoc::testing;

namespace {

const wchar_t kMacro[] = L"Sub Main\r\n"
                         L"    Debug.Print \"main\"\r\n"
                         L"End Sub\r\n"
                         L"Sub Opening(ByVal n As Long, Optional label As String = \"x\")\r\n"
                         L"    Debug.Print \"opening\"; n; label\r\n"
                         L"End Sub\r\n"
                         L"Function Twice(n As Long) As Long\r\n"
                         L"    Twice = 2 * n\r\n"
                         L"End Function\r\n";

class HandlerStartTest : public ::testing::Test {
protected:
    IDispatch* Create(const wchar_t* prototype) { return engine.CreateHandler(prototype); }

    MacroEngine engine;
};

} // namespace

TEST_F(HandlerStartTest, OnAnIdleEngineTheSubRunsAsARunOfItsOwnInsideTheCall)
{
    ASSERT_TRUE(engine.Load(L"lib", kMacro));
    IDispatch* opening = Create(L"Sub Opening(ByVal n As Long, Optional label As String)");
    ASSERT_NE(nullptr, opening);
    LateCall start;
    ASSERT_EQ(S_OK, start.Long(5).Invoke(opening, 3, DISPATCH_METHOD, false));
    EXPECT_EQ(L"\"opening\"5&\"x\"\r\n", engine.callBack.AllPrinted());
    EXPECT_TRUE(engine.IsIdle());
    const auto& notes = engine.callBack.notifications;
    EXPECT_NE(notes.end(), std::find(notes.begin(), notes.end(), 1)) << "the run started";
    engine.PumpUntilNotified(2);
    EXPECT_NE(notes.end(), std::find(notes.begin(), notes.end(), 2)) << "and the host heard of its end afterwards";

    // StartPA takes the arguments from an array.
    SAFEARRAYBOUND bound{2, 0};
    Variant array;
    array.Raw().vt = VT_ARRAY | VT_VARIANT;
    array.Raw().parray = SafeArrayCreate(VT_VARIANT, 1, &bound);
    VARIANT* elements = nullptr;
    ASSERT_EQ(S_OK, SafeArrayAccessData(array.Raw().parray, reinterpret_cast<void**>(&elements)));
    elements[0].vt = VT_I4;
    elements[0].lVal = 8;
    elements[1].vt = VT_BSTR;
    elements[1].bstrVal = SysAllocString(L"y");
    SafeArrayUnaccessData(array.Raw().parray);
    LateCall startPA;
    ASSERT_EQ(S_OK, startPA.Add(std::move(array)).Invoke(opening, 7, DISPATCH_METHOD, false));
    EXPECT_EQ(L"\"opening\"5&\"x\"\r\n\"opening\"8&\"y\"\r\n", engine.callBack.AllPrinted());
}

TEST_F(HandlerStartTest, AStartDuringAnActiveRunRunsWhenTheRunGoesOn)
{
    ASSERT_TRUE(engine.Load(L"lib", kMacro));
    IDispatch* opening = Create(L"Sub Opening(ByVal n As Long, Optional label As String)");
    BSTR name = SysAllocString(L"lib");
    VARIANT_BOOL ok = VARIANT_FALSE;
    engine.unit->Start(name, &ok);
    SysFreeString(name);
    ASSERT_EQ(VARIANT_TRUE, ok);
    LateCall start;
    ASSERT_EQ(S_OK, start.Long(7).Invoke(opening, 3, DISPATCH_METHOD, false));
    EXPECT_EQ(L"", engine.callBack.AllPrinted()) << "nothing runs before the host runs the engine";
    engine.unit->Run(0, &ok);
    EXPECT_EQ(L"\"opening\"7&\"x\"\r\n\"main\"\r\n", engine.callBack.AllPrinted());
    EXPECT_TRUE(engine.IsIdle());
}

TEST_F(HandlerStartTest, WhatStartRefuses)
{
    ASSERT_TRUE(engine.Load(L"lib", kMacro));
    IDispatch* opening = Create(L"Sub Opening(ByVal n As Long, Optional label As String)");
    IDispatch* twice = Create(L"Function Twice(n As Long) As Long");
    IDispatch* missing = Create(L"Sub Missing()");
    LateCall function;
    EXPECT_EQ(E_INVALIDARG, function.Long(1).Invoke(twice, 3, DISPATCH_METHOD, false));
    LateCall withResult;
    EXPECT_EQ(DISP_E_TYPEMISMATCH, withResult.Long(1).Invoke(opening, 3, DISPATCH_METHOD, true));
    LateCall named;
    EXPECT_EQ(DISP_E_NONAMEDARGS, named.Long(1).Named({0}).Invoke(opening, 3, DISPATCH_METHOD, false));
    LateCall tooMany;
    EXPECT_EQ(DISP_E_BADPARAMCOUNT, tooMany.Long(1).Long(2).Long(3).Invoke(opening, 3, DISPATCH_METHOD, false));
    LateCall unbound;
    EXPECT_EQ(DISP_E_UNKNOWNNAME, unbound.Invoke(missing, 3, DISPATCH_METHOD, false));
    EXPECT_EQ(L"", engine.callBack.AllPrinted());
    EXPECT_TRUE(engine.IsIdle());
}
