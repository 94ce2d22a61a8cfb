// WithEvents variables and "{WithEvents}" extensions: a Ledger object with a connection point (over a
// type library made in memory) raises events that run the macro's procedures.
#include "brannoc.h"
#include "automation/EventSink.h"
#include "host/CodeUnit.h"
#include "host/EventSource.h"
#include "host/FakeEventSource.h"
#include <ocidl.h>
#include <olectl.h>
#include "host/MacroEngine.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

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

const wchar_t kPositionMacro[] = L"Sub Main\r\n"
                                 L"End Sub\r\n"
                                 L"Sub Pad_Dropped(ByVal x, ByVal y)\r\n"
                                 L"    Debug.Print \"dropped \" & TypeName(x) & \" \" & x & \" \" & TypeName(y) & \" \" & y\r\n"
                                 L"End Sub\r\n"
                                 L"Sub Pad_Moved(ByVal x, ByVal y)\r\n"
                                 L"    Debug.Print \"moved \" & TypeName(x) & \" \" & CLng(x) & \" \" & TypeName(y) & \" \" & CLng(y)\r\n"
                                 L"End Sub\r\n";

VARIANT Long(LONG number)
{
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_I4;
    value.lVal = number;
    return value;
}

VARIANT Single(FLOAT number)
{
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_R4;
    value.fltVal = number;
    return value;
}

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

// A control site that turns HIMETRIC positions into container units: x * 2 + 0.5, y * 3.
class FakeControlSite final : public IOleClientSite, public IOleControlSite {
public:
    HRESULT __stdcall QueryInterface(REFIID id, void** object) override
    {
        if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IOleClientSite))
            *object = static_cast<IOleClientSite*>(this);
        else if (IsEqualIID(id, IID_IOleControlSite))
            *object = static_cast<IOleControlSite*>(this);
        else
            return *object = nullptr, E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG __stdcall AddRef() override { return 2; }
    ULONG __stdcall Release() override { return 1; }
    // IOleClientSite
    HRESULT __stdcall SaveObject() override { return E_NOTIMPL; }
    HRESULT __stdcall GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
    HRESULT __stdcall GetContainer(IOleContainer**) override { return E_NOTIMPL; }
    HRESULT __stdcall ShowObject() override { return E_NOTIMPL; }
    HRESULT __stdcall OnShowWindow(BOOL) override { return E_NOTIMPL; }
    HRESULT __stdcall RequestNewObjectLayout() override { return E_NOTIMPL; }
    // IOleControlSite
    HRESULT __stdcall OnControlInfoChanged() override { return E_NOTIMPL; }
    HRESULT __stdcall LockInPlaceActive(BOOL) override { return E_NOTIMPL; }
    HRESULT __stdcall GetExtendedControl(IDispatch**) override { return E_NOTIMPL; }
    HRESULT __stdcall TransformCoords(POINTL* himetric, POINTF* container, DWORD flags) override
    {
        if (flags != (XFORMCOORDS_POSITION | XFORMCOORDS_HIMETRICTOCONTAINER))
            return E_INVALIDARG;
        container->x = static_cast<FLOAT>(himetric->x) * 2 + 0.5f;
        container->y = static_cast<FLOAT>(himetric->y) * 3;
        return S_OK;
    }
    HRESULT __stdcall TranslateAccelerator(MSG*, DWORD) override { return E_NOTIMPL; }
    HRESULT __stdcall OnFocus(BOOL) override { return E_NOTIMPL; }
    HRESULT __stdcall ShowPropertyFrame() override { return E_NOTIMPL; }
};

// The embedded object of a source that sits in a control site: only its client site is asked for.
class FakeOleObject final : public TestComObject<IOleObject> {
public:
    explicit FakeOleObject(IOleClientSite* site) : m_site(site) {}
    HRESULT __stdcall SetClientSite(IOleClientSite*) override { return E_NOTIMPL; }
    HRESULT __stdcall GetClientSite(IOleClientSite** site) override
    {
        m_site->AddRef();
        *site = m_site;
        return S_OK;
    }
    HRESULT __stdcall SetHostNames(LPCOLESTR, LPCOLESTR) override { return E_NOTIMPL; }
    HRESULT __stdcall Close(DWORD) override { return E_NOTIMPL; }
    HRESULT __stdcall SetMoniker(DWORD, IMoniker*) override { return E_NOTIMPL; }
    HRESULT __stdcall GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
    HRESULT __stdcall InitFromData(IDataObject*, BOOL, DWORD) override { return E_NOTIMPL; }
    HRESULT __stdcall GetClipboardData(DWORD, IDataObject**) override { return E_NOTIMPL; }
    HRESULT __stdcall DoVerb(LONG, LPMSG, IOleClientSite*, LONG, HWND, LPCRECT) override { return E_NOTIMPL; }
    HRESULT __stdcall EnumVerbs(IEnumOLEVERB**) override { return E_NOTIMPL; }
    HRESULT __stdcall Update() override { return E_NOTIMPL; }
    HRESULT __stdcall IsUpToDate() override { return E_NOTIMPL; }
    HRESULT __stdcall GetUserClassID(CLSID*) override { return E_NOTIMPL; }
    HRESULT __stdcall GetUserType(DWORD, LPOLESTR*) override { return E_NOTIMPL; }
    HRESULT __stdcall SetExtent(DWORD, SIZEL*) override { return E_NOTIMPL; }
    HRESULT __stdcall GetExtent(DWORD, SIZEL*) override { return E_NOTIMPL; }
    HRESULT __stdcall Advise(IAdviseSink*, DWORD*) override { return E_NOTIMPL; }
    HRESULT __stdcall Unadvise(DWORD) override { return E_NOTIMPL; }
    HRESULT __stdcall EnumAdvise(IEnumSTATDATA**) override { return E_NOTIMPL; }
    HRESULT __stdcall GetMiscStatus(DWORD, DWORD*) override { return E_NOTIMPL; }
    HRESULT __stdcall SetColorScheme(LOGPALETTE*) override { return E_NOTIMPL; }

private:
    IOleClientSite* m_site;
};

// A Ledger source that answers IOleObject, sitting in the fake control site.
class SitedLedgerSource final : public LedgerSource {
public:
    explicit SitedLedgerSource(ITypeInfo* classType) : LedgerSource(classType) {}
    HRESULT __stdcall QueryInterface(REFIID id, void** object) override
    {
        if (IsEqualIID(id, IID_IOleObject))
            return m_object.QueryInterface(id, object);
        return LedgerSource::QueryInterface(id, object);
    }

private:
    FakeControlSite m_site;
    FakeOleObject m_object{&m_site};
};

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
    // Sources of events with position parameters: one without a client site, one in a control site.
    ComRef<ITypeInfo> padClass = MakeLedgerClass(true);
    LedgerSource pad{padClass.Get()};
    SitedLedgerSource sitedPad{padClass.Get()};
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

    // An event that returns no value leaves the result the source gave empty.
    VARIANT result;
    result.vt = VT_I4;
    result.lVal = 77;
    EXPECT_EQ(S_OK, ledger.Raise(kClicked, {BoolReference(&cancel)}, nullptr, &result));
    EXPECT_EQ(VT_EMPTY, result.vt);

    // An event without a procedure is answered S_OK and runs nothing.
    engine.callBack.printed.clear();
    BSTR text = SysAllocString(L"x");
    EXPECT_EQ(S_OK, ledger.Raise(kChanged, {Text(text)}));
    SysFreeString(text);
    EXPECT_EQ(L"", engine.callBack.AllPrinted());
}

TEST_F(EventSinkTest, WithTheApiTraceOnAnEventTracesItsArguments)
{
    ASSERT_TRUE(engine.Load(L"lib", kMacro));
    ASSERT_EQ(S_OK, CallWith(L"Hook", &ledger));
    engine.TraceApiCalls();
    engine.callBack.traces.clear();
    VARIANT_BOOL cancel = VARIANT_FALSE;
    EXPECT_EQ(S_OK, Click(ledger, cancel));
    const std::vector<std::wstring>& lines = engine.callBack.traces;
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(L"0:*RaiseEvent(\"src_Clicked\")", lines[0]);
    EXPECT_EQ(L"2:Sink 0x", lines[1].substr(0, 9));
    EXPECT_EQ(L"2:Cancel=False", lines[2]);
    engine.TraceApiCalls(false);
}

TEST_F(EventSinkTest, ASinkOfAClassInstanceIsTracedAsItIsBoundAndReleased)
{
    engine.callBack.macros[L"Listener.cls"] = L"VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1\r\nEND\r\n"
                                               L"Attribute VB_Name = \"Listener\"\r\n"
                                               L"Private WithEvents src As LedgerLib.Ledger\r\n"
                                               L"Public Sub Watch(o As Object)\r\n    Set src = o\r\nEnd Sub\r\n"
                                               L"Private Sub src_Clicked(Cancel As Boolean)\r\n"
                                               L"    Cancel = True\r\nEnd Sub\r\n";
    ASSERT_TRUE(engine.Load(L"watcher", L"'#Uses \"Listener.cls\"\r\nSub Main\r\nEnd Sub\r\n"
                                        L"Sub Hook(o As Object)\r\n    Dim l As New Listener\r\n    l.Watch o\r\n"
                                        L"End Sub\r\n"));
    engine.TraceApiCalls();
    engine.callBack.traces.clear();
    ASSERT_EQ(S_OK, CallWith(L"Hook", &ledger));
    const auto traced = [&](const std::wstring& start) {
        return std::count_if(engine.callBack.traces.begin(), engine.callBack.traces.end(),
                             [&](const std::wstring& line) { return line.rfind(start, 0) == 0; });
    };
    EXPECT_EQ(1, traced(L"4:Connect Sink 0x"));
    EXPECT_EQ(1, traced(L"4:Advise Sink 0x"));
    EXPECT_EQ(1, traced(L"4:Disconnect Sink 0x")) << "the instance ended with the call";
    engine.TraceApiCalls(false);
}

TEST_F(EventSinkTest, TheDeclarationAndTheModulesStorageTraceTheSourceBeforeAnyAssignment)
{
    engine.TraceApiCalls();
    engine.callBack.traces.clear();
    ASSERT_TRUE(engine.Load(L"lib", kMacro));
    // A call of Main makes the module's storage; nothing is assigned to the variable.
    ASSERT_EQ(S_OK, CallWith(L"Main", nullptr));
    const std::vector<std::wstring> lines = engine.callBack.traces;
    engine.TraceApiCalls(false);
    EXPECT_EQ(0u, ledger.SinkCount());
    // Read with the declarations: the variable and its type's source interface.
    const auto declared = std::find(lines.begin(), lines.end(), L"0:*DimWithEvents(\"lib|src\")");
    ASSERT_NE(lines.end(), declared);
    ASSERT_GT(lines.end() - declared, 3);
    EXPECT_EQ(0u, declared[1].rfind(L"2:Source.TypeInfo.UUID={", 0)) << declared[1];
    EXPECT_EQ(L"2:Source.TypeInfo.Name=LedgerEvents", declared[2]);
    EXPECT_EQ(L"1:", declared[3]);
    // The module's storage has the variable's sink before anything is assigned.
    const auto initialized = std::find(declared, lines.end(), L"0:*DimWithEvents_Initialize(\"lib|src\")");
    ASSERT_NE(lines.end(), initialized);
    ASSERT_GT(lines.end() - initialized, 3);
    EXPECT_EQ(declared[1], initialized[1]);
    EXPECT_EQ(L"2:Source.TypeInfo.Name=LedgerEvents", initialized[2]);
    EXPECT_EQ(L"1:", initialized[3]);
    EXPECT_EQ(1, std::count(lines.begin(), lines.end(), L"0:*DimWithEvents_Initialize(\"lib|src\")"));
}

TEST_F(EventSinkTest, ATypeWithoutEventsIsTracedAsHavingNoSource)
{
    engine.TraceApiCalls();
    engine.callBack.traces.clear();
    ASSERT_TRUE(engine.Load(L"plain", L"Dim WithEvents quiet As Object\r\nSub Main\r\nEnd Sub\r\n"));
    ASSERT_EQ(S_OK, CallWith(L"Main", nullptr));
    const std::vector<std::wstring> lines = engine.callBack.traces;
    engine.TraceApiCalls(false);
    for (const wchar_t* entry : {L"0:*DimWithEvents(\"plain|quiet\")", L"0:*DimWithEvents_Initialize(\"plain|quiet\")"}) {
        const auto found = std::find(lines.begin(), lines.end(), entry);
        ASSERT_NE(lines.end(), found) << entry;
        ASSERT_GT(lines.end() - found, 2) << entry;
        EXPECT_EQ(L"2:Source TypeInfo not available", found[1]) << entry;
        EXPECT_EQ(L"1:", found[2]) << entry;
    }
}

TEST_F(EventSinkTest, AClassInstanceBindsItsSinkWhenItIsMadeEvenWithoutAnAssignment)
{
    engine.callBack.macros[L"Quiet.cls"] = L"VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1\r\nEND\r\n"
                                            L"Attribute VB_Name = \"Quiet\"\r\n"
                                            L"Private WithEvents src As LedgerLib.Ledger\r\n"
                                            L"Public Sub Idle()\r\nEnd Sub\r\n";
    ASSERT_TRUE(engine.Load(L"maker", L"'#Uses \"Quiet.cls\"\r\nSub Main\r\nEnd Sub\r\n"
                                      L"Sub Hook(o As Object)\r\n    Dim q As New Quiet\r\n    q.Idle\r\n"
                                      L"End Sub\r\n"));
    engine.TraceApiCalls();
    engine.callBack.traces.clear();
    ASSERT_EQ(S_OK, CallWith(L"Hook", &ledger));
    const std::vector<std::wstring> lines = engine.callBack.traces;
    engine.TraceApiCalls(false);
    const auto traced = [&](const std::wstring& start) {
        return std::count_if(lines.begin(), lines.end(), [&](const std::wstring& line) { return line.rfind(start, 0) == 0; });
    };
    EXPECT_EQ(1, traced(L"0:*DimWithEvents_Initialize("));
    EXPECT_EQ(1, traced(L"4:Connect Sink 0x"));
    EXPECT_EQ(0, traced(L"4:Advise Sink 0x"));
    EXPECT_EQ(1, traced(L"4:Disconnect Sink 0x"));
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
    engine.TraceApiCalls();
    ASSERT_TRUE(AddExtension(L"{WithEvents}App_", &app));
    const auto& traces = engine.callBack.traces;
    EXPECT_NE(traces.end(), std::find(traces.begin(), traces.end(), L"2:Source.TypeInfo.Name=LedgerEvents"));
    EXPECT_NE(traces.end(), std::find(traces.begin(), traces.end(), L"2:TypeLib.Name=LedgerLib"))
        << "the object's type library comes with it";
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

TEST_F(EventSinkTest, ASystemWithEventsExtensionGoesOnlyWithTheSystemExtensions)
{
    ASSERT_TRUE(AddExtension(L"{WithEvents}$App_", &app));
    EXPECT_EQ(1u, app.SinkCount());
    // The object's type information is asked for with the engine's fixed locale.
    ASSERT_FALSE(app.typeInfoLocales.empty());
    for (LCID locale : app.typeInfoLocales)
        EXPECT_EQ(0x409u, locale);
    ASSERT_TRUE(engine.Load(L"lib", kExtensionMacro));
    // The project's own extensions go (the fixture's library); the system one keeps listening.
    EXPECT_TRUE(RemoveExtensions(L""));
    EXPECT_EQ(1u, app.SinkCount());
    VARIANT_BOOL cancel = VARIANT_FALSE;
    EXPECT_EQ(S_OK, Click(app, cancel));
    EXPECT_EQ(VARIANT_TRUE, cancel);
    EXPECT_EQ(L"\"app clicked\"\r\n", engine.callBack.AllPrinted());
    // Removing the system extensions ends it and its sink.
    EXPECT_TRUE(RemoveExtensions(L"$"));
    EXPECT_EQ(0u, app.SinkCount());
}

TEST_F(EventSinkTest, PositionArgumentsReachTheProcedureAsSingles)
{
    ASSERT_TRUE(padClass);
    ASSERT_TRUE(AddExtension(L"{WithEvents}Pad_", &pad));
    ASSERT_EQ(1u, pad.SinkCount());
    ASSERT_TRUE(engine.Load(L"lib", kPositionMacro));

    // A source without a client site: the integers it passed, as Singles.
    EXPECT_EQ(S_OK, pad.Raise(kDropped, {Long(120), Long(-30)}));
    // Pixels are turned into HIMETRIC units by the screen's resolution.
    EXPECT_EQ(S_OK, pad.Raise(kMoved, {Long(96), Long(48)}));
    // A Single given already leaves both as they are.
    EXPECT_EQ(S_OK, pad.Raise(kMoved, {Single(1.5f), Long(48)}));

    HDC screen = GetDC(nullptr);
    const int perInchX = GetDeviceCaps(screen, LOGPIXELSX);
    const int perInchY = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    ASSERT_GT(perInchX, 0);
    const long x = std::lround(96.0f * 2540 / perInchX);
    const long y = std::lround(48.0f * 2540 / perInchY);
    const std::vector<std::wstring> expected = {
        L"\"dropped Single 120 Single -30\"\r\n",
        L"\"moved Single " + std::to_wstring(x) + L" Single " + std::to_wstring(y) + L"\"\r\n",
        L"\"moved Single 2 Long 48\"\r\n",
    };
    EXPECT_EQ(expected, engine.callBack.printed);
}

TEST_F(EventSinkTest, AnExtensionsEventWithoutAProcedureIsOfferedToTheHostWhileTheEngineIsIdle)
{
    engine.callBack.offerEditEventCode = true;
    ASSERT_TRUE(AddExtension(L"{WithEvents}App_", &app));
    ASSERT_TRUE(engine.Load(L"lib", kExtensionMacro));
    BSTR text = SysAllocString(L"x");
    EXPECT_EQ(S_OK, app.Raise(kChanged, {Text(text)}));
    const std::vector<std::wstring> offered = {L"App_Changed|False"};
    EXPECT_EQ(offered, engine.callBack.editEventCodes);
    VARIANT_BOOL cancel = VARIANT_FALSE;
    EXPECT_EQ(S_OK, Click(app, cancel));
    EXPECT_EQ(offered, engine.callBack.editEventCodes) << "an event with a procedure runs it";

    // A WithEvents variable's module is loaded while it listens: its events are not offered.
    ASSERT_TRUE(engine.Load(L"var", kMacro));
    ASSERT_EQ(S_OK, CallWith(L"Hook", &ledger));
    EXPECT_EQ(S_OK, ledger.Raise(kChanged, {Text(text)}));
    EXPECT_EQ(offered, engine.callBack.editEventCodes);

    // Nor while a macro is active.
    BSTR name = SysAllocString(L"lib");
    VARIANT_BOOL started = VARIANT_FALSE;
    ASSERT_EQ(S_OK, engine.unit->Start(name, &started));
    SysFreeString(name);
    ASSERT_EQ(VARIANT_TRUE, started);
    EXPECT_EQ(S_OK, app.Raise(kChanged, {Text(text)}));
    EXPECT_EQ(offered, engine.callBack.editEventCodes);
    SysFreeString(text);
    EXPECT_EQ(0, engine.callBack.badCalls);
}

TEST_F(EventSinkTest, ASinkForOneEventOffersOnlyThatEventUnderTheSourcesFirstName)
{
    engine.callBack.offerEditEventCode = true;
    ComRef<ITypeInfo> source;
    ASSERT_EQ(SourceLookup::Found, DefaultSourceOfClass(ledgerClass.Get(), source));
    EngineContext& context = static_cast<CodeUnit*>(engine.unit)->Context();
    automation::EventSink* sink = automation::EventSink::ForExtension(context, "Doc", source.Get());
    ASSERT_NE(nullptr, sink);
    sink->RestrictTo(kChanged);
    sink->Assign(static_cast<IDispatch*>(&app));
    ASSERT_EQ(1u, app.SinkCount());
    VARIANT_BOOL cancel = VARIANT_FALSE;
    EXPECT_EQ(S_OK, Click(app, cancel));
    EXPECT_TRUE(engine.callBack.editEventCodes.empty()) << "outside the filter";
    BSTR text = SysAllocString(L"x");
    EXPECT_EQ(S_OK, app.Raise(kChanged, {Text(text)}));
    SysFreeString(text);
    EXPECT_EQ((std::vector<std::wstring>{L"Doc_Clicked|True"}), engine.callBack.editEventCodes);
    sink->Close();
    EXPECT_EQ(0u, app.SinkCount());
}

TEST_F(EventSinkTest, PositionsOfASourceInAControlSiteAreTransformedIntoTheContainersUnits)
{
    ASSERT_TRUE(padClass);
    ASSERT_TRUE(AddExtension(L"{WithEvents}Pad_", static_cast<IDispatch*>(&sitedPad)));
    ASSERT_TRUE(engine.Load(L"lib", kPositionMacro));
    EXPECT_EQ(S_OK, sitedPad.Raise(kDropped, {Long(10), Long(20)}));
    EXPECT_EQ(S_OK, sitedPad.Raise(kMoved, {Long(96), Long(48)}));

    HDC screen = GetDC(nullptr);
    const int perInchX = GetDeviceCaps(screen, LOGPIXELSX);
    const int perInchY = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    ASSERT_GT(perInchX, 0);
    const long x = std::lround((96.0f * 2 + 0.5f) * 2540 / perInchX);
    const long y = std::lround(48.0f * 3 * 2540 / perInchY);
    const std::vector<std::wstring> expected = {
        L"\"dropped Single 20.5 Single 60\"\r\n",
        L"\"moved Single " + std::to_wstring(x) + L" Single " + std::to_wstring(y) + L"\"\r\n",
    };
    EXPECT_EQ(expected, engine.callBack.printed);
}
