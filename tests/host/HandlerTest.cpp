// Handlers: a prototype bound once and called many times, the argument matching of host calls
// (named arguments, Optional, ParamArray, by-reference results through CallPA) and the CU_Handler
// functions.
#include "brannoc.h"
#include "host/HostTestText.h"
#include "host/MacroEngine.h"
#include "support/MessageBoxCapture.h"
#include <gtest/gtest.h>

using namespace brannoc;
using namespace brannoc::testing;
using namespace brannoc::testing_text;
using brannoc::test::MessageBoxCapture;

namespace {

const wchar_t kMacro[] = L"Sub Main\r\n"
                         L"End Sub\r\n"
                         L"Sub Clicked(button As Integer)\r\n"
                         L"    Debug.Print \"clicked \" & button\r\n"
                         L"End Sub\r\n"
                         L"Sub Pair(a, b)\r\n"
                         L"    Debug.Print a & \"/\" & b\r\n"
                         L"End Sub\r\n"
                         L"Sub Rest(a, ParamArray r())\r\n"
                         L"    Debug.Print a & \" \" & LBound(r) & UBound(r) & \" \" & r(0) & r(1)\r\n"
                         L"End Sub\r\n"
                         L"Sub Swap(x, y)\r\n"
                         L"    Dim t\r\n"
                         L"    t = x: x = y: y = t\r\n"
                         L"End Sub\r\n"
                         L"Function Total(a As Long, Optional b As Long = 100) As Long\r\n"
                         L"    Total = a + b\r\n"
                         L"End Function\r\n"
                         L"Sub Broken\r\n"
                         L"    Err.Raise 1005, , \"Bad input\"\r\n"
                         L"End Sub\r\n";

class HandlerTest : public ::testing::Test {
protected:
    IDispatch* Create(const wchar_t* prototype) { return engine.CreateHandler(prototype); }
    bool ReadBool(IDispatch* handler, DISPID member)
    {
        LateCall call;
        EXPECT_EQ(S_OK, call.Invoke(handler, member, DISPATCH_PROPERTYGET));
        return call.result.Tag() == VT_BOOL && call.result.Raw().boolVal == VARIANT_TRUE;
    }
    std::wstring ReadText(IDispatch* handler, DISPID member)
    {
        LateCall call;
        EXPECT_EQ(S_OK, call.Invoke(handler, member, DISPATCH_PROPERTYGET));
        return call.result.Tag() == VT_BSTR ? std::wstring(call.result.Raw().bstrVal) : L"<not text>";
    }

    MacroEngine engine;
};

} // namespace

TEST_F(HandlerTest, ExistsOnceTheMacroIsLoadedAndDescribesItsPrototype)
{
    IDispatch* handler = Create(L"Sub Clicked(ByVal button As integer)");
    ASSERT_NE(nullptr, handler);
    EXPECT_FALSE(ReadBool(handler, 0)) << "no macro is loaded yet";
    EXPECT_EQ(L"Public Sub Clicked(ByVal button As Integer)", ReadText(handler, 8));
    LateCall early;
    EXPECT_EQ(DISP_E_UNKNOWNNAME, early.Long(1).Invoke(handler, 1, DISPATCH_METHOD, false));

    ASSERT_TRUE(engine.Load(L"lib", kMacro));
    EXPECT_TRUE(ReadBool(handler, 0));
    EXPECT_EQ(L"lib|Clicked", ReadText(handler, 9));
    EXPECT_FALSE(ReadBool(handler, 10)) << "not module-specific, and the engine is idle";
    LateCall call;
    ASSERT_EQ(S_OK, call.Long(3).Invoke(handler, 1, DISPATCH_METHOD, false));
    EXPECT_EQ(L"\"clicked 3\"\r\n", engine.callBack.AllPrinted());

    // Canonical forms: Optional, ParamArray, suffixes, a Function's result, the OLE position types.
    IDispatch* function = Create(L"Function Total(a&, Optional b As Long = 100) As Long");
    ASSERT_NE(nullptr, function);
    EXPECT_EQ(L"Public Function Total(a As Long, Optional b As Long) As Long", ReadText(function, 8));
    IDispatch* rest = Create(L"  sub Rest(a, ParamArray r())");
    ASSERT_NE(nullptr, rest);
    EXPECT_EQ(L"Public Sub Rest(a As Variant, ParamArray r() As Variant)", ReadText(rest, 8));
    IDispatch* moved = Create(L"Sub Moved(ByVal x As OLE_XPOS_PIXELS, ByVal y As OLE_YPOS_PIXELS)");
    ASSERT_NE(nullptr, moved);
    EXPECT_EQ(L"Public Sub Moved(ByVal x As Single, ByVal y As Single)", ReadText(moved, 8));
    IDispatch* specific = Create(L"Sheet|Sub Opened()");
    ASSERT_NE(nullptr, specific);
    EXPECT_EQ(L"Private Sub Opened()", ReadText(specific, 8));
    EXPECT_EQ(L"Sheet|Opened", ReadText(specific, 9));
    EXPECT_FALSE(ReadBool(specific, 10)) << "its module is not loaded";

    // Prototypes that do not parse, a fixed-length string, and a module that exists already.
    EXPECT_EQ(nullptr, Create(L"Clicked(button)"));
    EXPECT_EQ(nullptr, Create(L"Sub (a)"));
    EXPECT_EQ(nullptr, Create(L"Sub S(a As String * 5)"));
    EXPECT_EQ(nullptr, Create(L"Sub S(a"));
    EXPECT_EQ(nullptr, Create(L"lib|Sub Clicked(button As Integer)"));
}

TEST_F(HandlerTest, ArgumentsAreMatchedToTheProceduresParameters)
{
    ASSERT_TRUE(engine.Load(L"lib", kMacro));
    IDispatch* pair = Create(L"Sub Pair(a, b)");
    LateCall tooMany;
    EXPECT_EQ(DISP_E_BADPARAMCOUNT, tooMany.Long(1).Long(2).Long(3).Invoke(pair, 1, DISPATCH_METHOD, false));
    LateCall tooFew;
    EXPECT_EQ(DISP_E_PARAMNOTOPTIONAL, tooFew.Long(1).Invoke(pair, 1, DISPATCH_METHOD, false));
    EXPECT_EQ(1u, tooFew.argumentError) << "the second parameter is missing";

    // A named argument for the second parameter, then one positional argument for the first.
    LateCall named;
    ASSERT_EQ(S_OK, named.Long(1).Long(2).Named({1}).Invoke(pair, 1, DISPATCH_METHOD, false));
    EXPECT_EQ(L"\"1/2\"\r\n", engine.callBack.AllPrinted());
    LateCall clash;
    EXPECT_EQ(E_INVALIDARG, clash.Long(1).Long(2).Named({5}).Invoke(pair, 1, DISPATCH_METHOD, false))
        << "a named argument past the parameters finds no place";

    engine.callBack.printed.clear();
    IDispatch* rest = Create(L"Sub Rest(a, ParamArray r())");
    LateCall collected;
    ASSERT_EQ(S_OK, collected.Long(7).Text(L"x").Text(L"y").Invoke(rest, 1, DISPATCH_METHOD, false));
    EXPECT_EQ(L"\"7 01 xy\"\r\n", engine.callBack.AllPrinted());
    LateCall namedRest;
    EXPECT_EQ(DISP_E_PARAMNOTOPTIONAL, namedRest.Long(1).Named({0}).Invoke(rest, 1, DISPATCH_METHOD, false));
    LateCall restTooFew;
    EXPECT_EQ(DISP_E_BADPARAMCOUNT, restTooFew.Invoke(rest, 1, DISPATCH_METHOD, false));

    // Evaluate gives the value; an Optional parameter takes its default.
    IDispatch* total = Create(L"Function Total(a As Long, Optional b As Long) As Long");
    LateCall evaluate;
    ASSERT_EQ(S_OK, evaluate.Long(5).Invoke(total, 2));
    EXPECT_EQ(105, evaluate.result.Raw().lVal);
    LateCall withoutResult;
    EXPECT_EQ(DISP_E_TYPEMISMATCH, withoutResult.Long(5).Invoke(total, 2, DISPATCH_METHOD, false));
    LateCall callWithResult;
    EXPECT_EQ(DISP_E_TYPEMISMATCH, callWithResult.Long(1).Long(2).Invoke(pair, 1));
    LateCall asPut;
    EXPECT_EQ(DISP_E_TYPEMISMATCH, asPut.Long(1).Long(2).Invoke(pair, 1, DISPATCH_PROPERTYGET, false));
}

TEST_F(HandlerTest, CallPAWritesByReferenceResultsIntoTheArray)
{
    ASSERT_TRUE(engine.Load(L"lib", kMacro));
    IDispatch* swap = Create(L"Sub Swap(x, y)");
    SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, 2);
    VARIANT* elements = nullptr;
    ASSERT_EQ(S_OK, SafeArrayAccessData(array, reinterpret_cast<void**>(&elements)));
    elements[0].vt = VT_I4;
    elements[0].lVal = 1;
    elements[1].vt = VT_BSTR;
    elements[1].bstrVal = SysAllocString(L"two");
    SafeArrayUnaccessData(array);
    Variant packed;
    packed.Raw().vt = VT_ARRAY | VT_VARIANT;
    packed.Raw().parray = array;
    LateCall call;
    ASSERT_EQ(S_OK, call.Add(std::move(packed)).Invoke(swap, 5, DISPATCH_METHOD, false));
    ASSERT_EQ(S_OK, SafeArrayAccessData(call.arguments[0].Raw().parray, reinterpret_cast<void**>(&elements)));
    EXPECT_EQ(VT_BSTR, elements[0].vt);
    EXPECT_EQ(std::wstring(L"two"), elements[0].bstrVal);
    EXPECT_EQ(VT_I4, elements[1].vt);
    EXPECT_EQ(1, elements[1].lVal);
    SafeArrayUnaccessData(call.arguments[0].Raw().parray);

    // Two dimensions, two arguments, or no array are refused.
    SAFEARRAYBOUND bounds[2] = {{2, 0}, {1, 0}};
    Variant square;
    square.Raw().vt = VT_ARRAY | VT_VARIANT;
    square.Raw().parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
    LateCall twoDimensions;
    EXPECT_EQ(DISP_E_TYPEMISMATCH, twoDimensions.Add(std::move(square)).Invoke(swap, 5, DISPATCH_METHOD, false));
    LateCall twoArguments;
    EXPECT_EQ(DISP_E_BADPARAMCOUNT, twoArguments.Long(1).Long(2).Invoke(swap, 5, DISPATCH_METHOD, false));
    LateCall notArray;
    EXPECT_EQ(DISP_E_TYPEMISMATCH, notArray.Long(1).Invoke(swap, 5, DISPATCH_METHOD, false));
}

TEST_F(HandlerTest, AnErrorInTheProcedureReachesTheCallerAsAnException)
{
    ASSERT_TRUE(engine.Load(L"lib", kMacro));
    IDispatch* broken = Create(L"Sub Broken()");
    LateCall call;
    EXPECT_EQ(DISP_E_EXCEPTION, call.Invoke(broken, 1, DISPATCH_METHOD, false));
    EXPECT_EQ(1005, call.exception.wCode);
    EXPECT_EQ(L"Bad input", call.Description());
}

TEST_F(HandlerTest, EvaluatingASubOrCallingAFunctionFindsNoSuchProcedure)
{
    ASSERT_TRUE(engine.Load(L"lib", kMacro));
    LateCall evaluated;
    EXPECT_EQ(DISP_E_EXCEPTION, evaluated.Long(1).Long(2).Invoke(Create(L"Sub Pair(a, b)"), 2, DISPATCH_METHOD, true));
    EXPECT_EQ(10018, evaluated.exception.wCode);
    LateCall called;
    EXPECT_EQ(DISP_E_EXCEPTION,
              called.Long(1).Invoke(Create(L"Function Total(a As Long, Optional b As Long) As Long"), 1,
                                    DISPATCH_METHOD, false));
    EXPECT_EQ(10018, called.exception.wCode);
    EXPECT_EQ(L"", engine.callBack.AllPrinted()) << "neither procedure ran";
}

TEST_F(HandlerTest, TheCuHandlerFunctionsCallTheMembers)
{
    ASSERT_TRUE(engine.Load(L"lib", kMacro));
    IDispatch* total = Create(L"Function Total(a As Long, Optional b As Long) As Long");
    EXPECT_EQ(-1, CU_HandlerExists(total));
    // CU_CreateHandler makes the same handler from ANSI text.
    IDispatch* throughExport = CU_CreateHandler(engine.unit, "Function Total(a As Long, Optional b As Long) As Long");
    ASSERT_NE(nullptr, throughExport);
    engine.Keep(throughExport);
    EXPECT_EQ(-1, CU_HandlerExists(throughExport));
    EXPECT_EQ(L"lib|Total", ReadText(throughExport, 9));
    BSTR prototype = CU_HandlerPrototype(total);
    EXPECT_EQ("Public Function Total(a As Long, Optional b As Long) As Long",
              std::string(reinterpret_cast<const char*>(prototype), OA_SysStringLenA(prototype)));
    OA_SysFreeStringA(prototype);
    BSTR procName = CU_HandlerProcName(total);
    EXPECT_EQ("lib|Total", std::string(reinterpret_cast<const char*>(procName), OA_SysStringLenA(procName)));
    OA_SysFreeStringA(procName);
    EXPECT_EQ(0, CU_HandlerIsModuleLoaded(total));
    EXPECT_EQ(0, CU_HandlerStepInto(total));
    CU_HandlerStepIntoPut(total, TRUE);
    EXPECT_EQ(-1, CU_HandlerStepInto(total));
    CU_HandlerStepIntoPut(total, FALSE);

    OA_ARG list{};
    ASSERT_TRUE(OA_ArgStart(2, &list));
    OA_ArgAddI4(&list, 1);
    OA_ArgAddI4(&list, 2);
    VARIANT value;
    VariantInit(&value);
    EXPECT_EQ(1, CU_HandlerEvaluate(total, &list, nullptr, &value));
    EXPECT_EQ(3, value.lVal);

    // With an error record nothing is shown and the record holds the exception; without, a box.
    IDispatch* broken = Create(L"Sub Broken()");
    MessageBoxCapture capture;
    OA_ERROR error{};
    EXPECT_EQ(0, CU_HandlerCall(broken, nullptr, &error));
    EXPECT_EQ(0u, capture.Count());
    EXPECT_EQ(1005, error.wCode);
    EXPECT_EQ(std::wstring(L"Bad input"), error.bstrDescription);
    SysFreeString(error.bstrDescription);
    SysFreeString(error.bstrSource);
    SysFreeString(error.bstrHelpFile);
    EXPECT_EQ(0, CU_HandlerCall(broken, nullptr, nullptr));
    const auto boxes = capture.Boxes();
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(L"Bad input", boxes[0].text);
}
