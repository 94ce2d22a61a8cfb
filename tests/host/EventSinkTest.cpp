// WithEvents variables and "{WithEvents}" extensions: a Ledger object with a connection point (over a
// type library made in memory) raises events that run the macro's procedures.
#include "brannoc.h"
#include "host/FakeEventSource.h"
#include "host/MacroEngine.h"
#include <gtest/gtest.h>

#include <algorithm>

using namespace brannoc;
using namespace brannoc::testing;

namespace {

const wchar_t kMacro[] = L"Dim WithEvents src As LedgerLib.Ledger\r\n"
                         L"Sub Main\r\n"
                         L"End Sub\r\n"
                         L"Sub Hook(o As Object)\r\n"
                         L"    Set src = o\r\n"
                         L"End Sub\r\n"
                         L"Sub Unhook()\r\n"
                         L"    Set src = Nothing\r\n"
                         L"End Sub\r\n"
                         L"Private Sub src_Clicked(Cancel As Boolean)\r\n"
                         L"    Debug.Print \"clicked \" & Cancel\r\n"
                         L"    Dim same As Object\r\n"
                         L"    Set same = src\r\n"
                         L"    same.Note\r\n"
                         L"    Cancel = True\r\n"
                         L"End Sub\r\n";

const wchar_t kFailingMacro[] = L"Dim WithEvents src As LedgerLib.Ledger\r\n"
                                L"Sub Main\r\n"
                                L"End Sub\r\n"
                                L"Sub Hook(o As Object)\r\n"
                                L"    Set src = o\r\n"
                                L"End Sub\r\n"
                                L"Sub src_Changed(ByVal news As String)\r\n"
                                L"    Err.Raise 1005, , \"Bad \" & news\r\n"
                                L"End Sub\r\n";

const wchar_t kExtensionMacro[] = L"Sub Main\r\n"
                                  L"End Sub\r\n"
                                  L"Sub App_Clicked(Cancel As Boolean)\r\n"
                                  L"    Debug.Print \"app clicked\"\r\n"
                                  L"    Cancel = True\r\n"
                                  L"End Sub\r\n";

VARIANT Text(BSTR text)
{
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_BSTR;
    value.bstrVal = text;
    return value;
}

VARIANT BoolReference(VARIANT_BOOL* target)
{
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_BYREF | VT_BOOL;
    value.pboolVal = target;
    return value;
}

class EventSinkTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        CoInitialize(nullptr);
        ASSERT_TRUE(ledgerClass);
        // The library of the Ledger class as a reference, so that macros can name LedgerLib.Ledger.
        ASSERT_TRUE(AddExtension(L"{}", &ledger));
    }
    void TearDown() override { CoUninitialize(); }

    bool AddExtension(const wchar_t* prefix, IDispatch* object)
    {
        BSTR text = SysAllocString(prefix);
        VARIANT_BOOL added = VARIANT_FALSE;
        EXPECT_EQ(S_OK, engine.unit->AddExtensionEx(text, object, &added));
        SysFreeString(text);
        return added == VARIANT_TRUE;
    }
    bool RemoveExtensions(const wchar_t* prefix)
    {
        BSTR text = SysAllocString(prefix);
        VARIANT_BOOL removed = VARIANT_FALSE;
        EXPECT_EQ(S_OK, engine.unit->RemoveExtensions(text, &removed));
        SysFreeString(text);
        return removed == VARIANT_TRUE;
    }
    // Calls a Sub of the loaded macro with the object as its argument (a fire object's Call).
    HRESULT CallWith(const wchar_t* sub, IDispatch* object)
    {
        IDispatch* fire = nullptr;
        EXPECT_EQ(S_OK, engine.unit->get_Fire(VARIANT_FALSE, &fire));
        LateCall call;
        call.Text(sub);
        if (object) {
            Variant argument;
            argument.SetObject(object);
            call.Add(std::move(argument));
        }
        const HRESULT answer = call.Invoke(fire, 2, DISPATCH_METHOD, false);
        fire->Release();
        return answer;
    }
    HRESULT Click(LedgerSource& source, VARIANT_BOOL& cancel)
    {
        return source.Raise(kClicked, {BoolReference(&cancel)});
    }

    // The sources outlive the engine, which unadvises its sinks as it goes.
    ComRef<ITypeInfo> ledgerClass = MakeLedgerClass();
    LedgerSource ledger{ledgerClass.Get()};
    LedgerSource second{ledgerClass.Get()};
    LedgerSource app{ledgerClass.Get()};
    MacroEngine engine;
};

} // namespace

TEST_F(EventSinkTest, AssigningConnectsAndTheEventRunsTheVariablesProcedure)
{
    ASSERT_TRUE(engine.Load(L"lib", kMacro));
    ASSERT_EQ(S_OK, CallWith(L"Hook", &ledger));
    EXPECT_EQ(1u, ledger.SinkCount());

    // The by-reference Cancel comes back to the source; the procedure reaches the source's members.
    VARIANT_BOOL cancel = VARIANT_FALSE;
    EXPECT_EQ(S_OK, Click(ledger, cancel));
    EXPECT_EQ(VARIANT_TRUE, cancel);
    EXPECT_EQ(L"\"clicked False\"\r\n", engine.callBack.AllPrinted());
    EXPECT_EQ(1, ledger.notes);
    EXPECT_TRUE(engine.IsIdle());

    // An event without a procedure is answered S_OK and runs nothing.
    BSTR text = SysAllocString(L"x");
    EXPECT_EQ(S_OK, ledger.Raise(kChanged, {Text(text)}));
    SysFreeString(text);
    EXPECT_EQ(L"\"clicked False\"\r\n", engine.callBack.AllPrinted());
}

TEST_F(EventSinkTest, ReassigningMovesTheConnectionAndNothingDisconnects)
{
    ASSERT_TRUE(engine.Load(L"lib", kMacro));
    ASSERT_EQ(S_OK, CallWith(L"Hook", &ledger));
    ASSERT_EQ(S_OK, CallWith(L"Hook", &second));
    EXPECT_EQ(0u, ledger.SinkCount()) << "the first object is disconnected";
    EXPECT_EQ(1u, second.SinkCount());
    VARIANT_BOOL cancel = VARIANT_FALSE;
    EXPECT_EQ(S_OK, Click(second, cancel));
    EXPECT_EQ(VARIANT_TRUE, cancel);
    EXPECT_EQ(1, second.notes);

    ASSERT_EQ(S_OK, CallWith(L"Unhook", nullptr));
    EXPECT_EQ(0u, second.SinkCount());
    // Unloading the macro lets go of the object its variable held.
    ASSERT_EQ(S_OK, CallWith(L"Hook", &second));
    EXPECT_EQ(1u, second.SinkCount());
    BSTR name = SysAllocString(L"lib");
    VARIANT_BOOL unloaded = VARIANT_FALSE;
    engine.unit->Unload(name, &unloaded);
    SysFreeString(name);
    EXPECT_EQ(0u, second.SinkCount());
}

TEST_F(EventSinkTest, AnErrorInTheEventProcedureReachesTheSourceAsAnException)
{
    ASSERT_TRUE(engine.Load(L"lib", kFailingMacro));
    ASSERT_EQ(S_OK, CallWith(L"Hook", &ledger));
    EXCEPINFO exception{};
    BSTR text = SysAllocString(L"news");
    EXPECT_EQ(DISP_E_EXCEPTION, ledger.Raise(kChanged, {Text(text)}, &exception));
    SysFreeString(text);
    EXPECT_EQ(1005, exception.wCode);
    EXPECT_EQ(std::wstring(L"Bad news"), exception.bstrDescription ? exception.bstrDescription : L"");
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrHelpFile);
    EXPECT_TRUE(engine.IsIdle());
}

TEST_F(EventSinkTest, AnEventSentFromAnotherThreadArrivesOnThePumpingThread)
{
    ledger.marshalSinks = true;
    ASSERT_TRUE(engine.Load(L"lib", kMacro));
    ASSERT_EQ(S_OK, CallWith(L"Hook", &ledger));
    IStream* stream = ledger.TakeSinkStream();
    ASSERT_NE(nullptr, stream);
    struct Sender {
        IStream* stream;
        VARIANT_BOOL cancel = VARIANT_FALSE;
        HRESULT answer = E_FAIL;
        static DWORD __stdcall Run(void* data)
        {
            auto* sender = static_cast<Sender*>(data);
            CoInitializeEx(nullptr, COINIT_MULTITHREADED);
            IDispatch* sink = nullptr;
            if (SUCCEEDED(CoGetInterfaceAndReleaseStream(sender->stream, IID_IDispatch,
                                                         reinterpret_cast<void**>(&sink)))) {
                VARIANT argument = BoolReference(&sender->cancel);
                DISPPARAMS parameters{&argument, nullptr, 1, 0};
                sender->answer = sink->Invoke(kClicked, IID_NULL, 0x409, DISPATCH_METHOD, &parameters, nullptr,
                                              nullptr, nullptr);
                sink->Release();
            }
            CoUninitialize();
            return 0;
        }
    } sender{stream};
    HANDLE thread = CreateThread(nullptr, 0, &Sender::Run, &sender, 0, nullptr);
    ASSERT_NE(nullptr, thread);
    // This thread pumps its messages until the sender is done: the call arrives through them.
    for (;;) {
        const DWORD woken = MsgWaitForMultipleObjects(1, &thread, FALSE, 10000, QS_ALLINPUT);
        if (woken != WAIT_OBJECT_0 + 1)
            break;
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    CloseHandle(thread);
    EXPECT_EQ(S_OK, sender.answer);
    EXPECT_EQ(VARIANT_TRUE, sender.cancel);
    EXPECT_EQ(GetCurrentThreadId(), ledger.noteThread);
    EXPECT_EQ(L"\"clicked False\"\r\n", engine.callBack.AllPrinted());
}

TEST_F(EventSinkTest, AWithEventsExtensionRoutesTheHostObjectsEventsUntilDisconnected)
{
    engine.callBack.offerTrace = true;
    VARIANT_BOOL ignored;
    engine.unit->Run(static_cast<short>(0x8040), &ignored);
    ASSERT_TRUE(AddExtension(L"{WithEvents}App_", &app));
    const auto& traces = engine.callBack.traces;
    EXPECT_NE(traces.end(), std::find(traces.begin(), traces.end(), L"2:Source.TypeInfo.Name=LedgerEvents"));
    EXPECT_EQ(1u, app.SinkCount());
    ASSERT_TRUE(engine.Load(L"lib", kExtensionMacro));
    VARIANT_BOOL cancel = VARIANT_FALSE;
    EXPECT_EQ(S_OK, Click(app, cancel));
    EXPECT_EQ(VARIANT_TRUE, cancel);
    EXPECT_EQ(L"\"app clicked\"\r\n", engine.callBack.AllPrinted());

    // "{Disconnect}" stops every delivery and removes nothing.
    EXPECT_TRUE(RemoveExtensions(L"{Disconnect}"));
    EXPECT_EQ(0u, app.SinkCount());
    EXPECT_FALSE(RemoveExtensions(L"{Disconnect}")) << "nothing left to disconnect";
    cancel = VARIANT_FALSE;
    EXPECT_EQ(S_OK, Click(app, cancel));
    EXPECT_EQ(VARIANT_FALSE, cancel);
}
