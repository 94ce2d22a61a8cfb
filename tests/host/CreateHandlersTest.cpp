// Handler collections: one handler per event of an object's default source interface, named after a
// prefix, over a type library the test makes in memory.
#include "brannoc.h"
#include "host/FakeEventSource.h"
#include "host/MacroEngine.h"
#include <gtest/gtest.h>

#include <algorithm>

using namespace brannoc;
using namespace brannoc::testing;

namespace {

const wchar_t kMacro[] = L"Sub Main\r\n"
                         L"End Sub\r\n"
                         L"Sub Ledger_Clicked(Cancel As Boolean)\r\n"
                         L"    Cancel = True\r\n"
                         L"End Sub\r\n";

class CreateHandlersTest : public ::testing::Test {
protected:
    IDispatch* CreateHandlers(const wchar_t* prefix, IDispatch* source, HRESULT expected = S_OK)
    {
        BSTR text = SysAllocString(prefix);
        IDispatch* collection = nullptr;
        EXPECT_EQ(expected, engine.unit->CreateHandlers(text, source, &collection));
        SysFreeString(text);
        return collection;
    }
    std::wstring Prototype(IDispatch* handler)
    {
        LateCall call;
        EXPECT_EQ(S_OK, call.Invoke(handler, 8, DISPATCH_PROPERTYGET));
        return call.result.Tag() == VT_BSTR ? std::wstring(call.result.Raw().bstrVal) : L"<none>";
    }

    // Calls `handler` with a by-reference Boolean Cancel (False) and gives what the procedure left in it.
    VARIANT_BOOL CallWithCancel(IDispatch* handler)
    {
        VARIANT_BOOL cancel = VARIANT_FALSE;
        Variant reference;
        reference.Raw().vt = VT_BYREF | VT_BOOL;
        reference.Raw().pboolVal = &cancel;
        LateCall call;
        EXPECT_EQ(S_OK, call.Add(std::move(reference)).Invoke(handler, 1, DISPATCH_METHOD, false));
        return cancel;
    }

    MacroEngine engine;
    ComRef<ITypeInfo> ledgerClass = MakeLedgerClass();
};

} // namespace

TEST_F(CreateHandlersTest, MakesOneHandlerPerEventOfTheDefaultSource)
{
    ASSERT_TRUE(ledgerClass);
    FakeEventSource ledger(ledgerClass.Get());
    IDispatch* handlers = CreateHandlers(L"Ledger", &ledger);
    ASSERT_NE(nullptr, handlers);
    LateCall count;
    ASSERT_EQ(S_OK, count.Invoke(handlers, 1, DISPATCH_PROPERTYGET));
    EXPECT_EQ(2, count.result.Raw().iVal) << "the restricted IDispatch methods get no handler";

    IDispatch* clicked = CU_HandlersItem(handlers, "clicked");
    ASSERT_NE(nullptr, clicked);
    EXPECT_EQ(L"Public Sub Ledger_Clicked(Cancel As Boolean)", Prototype(clicked));
    IDispatch* changed = CU_HandlersItem(handlers, "Changed");
    ASSERT_NE(nullptr, changed);
    EXPECT_EQ(L"Public Sub Ledger_Changed(ByVal Text As String)", Prototype(changed));
    EXPECT_EQ(nullptr, CU_HandlersItem(handlers, "Saved"));
    // The collection's own item function gives the same handler.
    BSTR changedName = SysAllocString(L"changed");
    IDispatch* sameChanged = KZ_HandlersGetItem(handlers, changedName);
    SysFreeString(changedName);
    EXPECT_EQ(changed, sameChanged);
    if (sameChanged)
        sameChanged->Release();
    EXPECT_EQ(nullptr, KZ_HandlersGetItem(nullptr, nullptr));
    // CU_CreateHandlers makes a collection of its own over the same source.
    IDispatch* again = CU_CreateHandlers(engine.unit, "Ledger", &ledger);
    ASSERT_NE(nullptr, again);
    EXPECT_NE(handlers, again);
    KZ_HandlersDestroy(again, nullptr);

    // The handler calls the macro's procedure; its by-reference Cancel comes back.
    ASSERT_TRUE(engine.Load(L"lib", kMacro));
    EXPECT_EQ(VARIANT_TRUE, CallWithCancel(clicked));
    LateCall noProcedure;
    EXPECT_EQ(DISP_E_UNKNOWNNAME, noProcedure.Text(L"x").Invoke(changed, 1, DISPATCH_METHOD, false));

    // _NewEnum gives the handlers in event order.
    LateCall enumerate;
    ASSERT_EQ(S_OK, enumerate.Invoke(handlers, DISPID_NEWENUM, DISPATCH_PROPERTYGET));
    ComRef<IEnumVARIANT> items;
    ASSERT_EQ(S_OK, enumerate.result.Raw().punkVal->QueryInterface(IID_IEnumVARIANT,
                                                                    reinterpret_cast<void**>(items.Out())));
    VARIANT element[3];
    ULONG fetched = 0;
    for (VARIANT& v : element)
        VariantInit(&v);
    items->Next(3, element, &fetched);
    EXPECT_EQ(2u, fetched);
    EXPECT_EQ(clicked, element[0].pdispVal);
    for (VARIANT& v : element)
        VariantClear(&v);
    clicked->Release();
    changed->Release();
    // The destroy function gives up the collection's reference.
    KZ_HandlersDestroy(handlers, nullptr);
    KZ_HandlersDestroy(nullptr, nullptr);
}

TEST_F(CreateHandlersTest, TheTraceNamesTheSourceInterfaceAndItsUuid)
{
    ASSERT_TRUE(ledgerClass);
    engine.TraceApiCalls();
    FakeEventSource ledger(ledgerClass.Get());
    IDispatch* handlers = CreateHandlers(L"Ledger", &ledger);
    ASSERT_NE(nullptr, handlers);
    const auto& traces = engine.callBack.traces;
    const auto name = std::find(traces.begin(), traces.end(), L"2:Source.TypeInfo.Name=LedgerEvents");
    ASSERT_NE(traces.end(), name);
    ASSERT_NE(traces.end(), name + 1);
    EXPECT_EQ(0u, (name + 1)->rfind(L"2:Source.TypeInfo.UUID={", 0)) << "the UUID follows the name";
    EXPECT_EQ(L'}', (name + 1)->back());
    KZ_HandlersDestroy(handlers, nullptr);
}

// Releasing a collection is traced as DestroyHandlers with its prefix; its handlers' own ends come in
// between its entry and exit lines.
TEST_F(CreateHandlersTest, ReleasingTheCollectionIsTracedWithItsPrefix)
{
    ASSERT_TRUE(ledgerClass);
    engine.TraceApiCalls();
    FakeEventSource ledger(ledgerClass.Get());
    IDispatch* handlers = CreateHandlers(L"Ledger", &ledger);
    ASSERT_NE(nullptr, handlers);
    engine.callBack.traces.clear();
    KZ_HandlersDestroy(handlers, nullptr);
    const std::vector<std::wstring> expected{L"0:*DestroyHandlers(\"Ledger\")", L"0:*DestroyHandler(\"|Ledger_Clicked\")",
                                             L"1:", L"0:*DestroyHandler(\"|Ledger_Changed\")", L"1:", L"1:"};
    EXPECT_EQ(expected, engine.callBack.traces);
}

TEST_F(CreateHandlersTest, WithoutASourceTheAnswerIsNullAndWithoutTypeInformationAnError)
{
    ASSERT_TRUE(ledgerClass);
    engine.TraceApiCalls();
    FakeEventSource noClassInfo(ledgerClass.Get(), false);
    EXPECT_EQ(nullptr, CreateHandlers(L"App", &noClassInfo));
    const auto& traces = engine.callBack.traces;
    EXPECT_NE(traces.end(), std::find(traces.begin(), traces.end(), L"2:No source type info."));

    FakeCallBack noTypes;
    EXPECT_EQ(nullptr, CreateHandlers(L"App", &noTypes, E_NOINTERFACE));
}

TEST_F(CreateHandlersTest, AModulePartInThePrefixMakesEveryHandlerSpecificToThatModule)
{
    ASSERT_TRUE(ledgerClass);
    FakeEventSource ledger(ledgerClass.Get());
    IDispatch* handlers = CreateHandlers(L"lib|Ledger", &ledger);
    ASSERT_NE(nullptr, handlers);
    IDispatch* clicked = CU_HandlersItem(handlers, "Clicked");
    ASSERT_NE(nullptr, clicked);
    EXPECT_EQ(L"Private Sub Ledger_Clicked(Cancel As Boolean)", Prototype(clicked));
    LateCall name;
    ASSERT_EQ(S_OK, name.Invoke(clicked, 9, DISPATCH_PROPERTYGET));
    EXPECT_EQ(L"lib|Ledger_Clicked", std::wstring(name.result.Raw().bstrVal));

    // Bound to that module's procedure once it is loaded.
    ASSERT_TRUE(engine.Load(L"lib", kMacro));
    EXPECT_EQ(VARIANT_TRUE, CallWithCancel(clicked));
    clicked->Release();
    KZ_HandlersDestroy(handlers, nullptr);

    // Now that the module exists, no more handlers specific to it.
    engine.TraceApiCalls();
    EXPECT_EQ(nullptr, CreateHandlers(L"lib|Ledger", &ledger));
    const auto& traces = engine.callBack.traces;
    EXPECT_NE(traces.end(), std::find(traces.begin(), traces.end(),
                                      L"2:Module specific handlers not allowed for a module that already exists."));
    IDispatch* general = CreateHandlers(L"Ledger", &ledger);
    EXPECT_NE(nullptr, general);
    KZ_HandlersDestroy(general, nullptr);
}
