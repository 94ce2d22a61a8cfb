#pragma once
// An event source for tests: a type library made in memory (ICreateTypeLib2) with the dispatch
// interface LedgerEvents (Clicked(ByRef Cancel As Boolean), Changed(ByVal Text As String), and on request
// Moved(ByVal X As OLE_XPOS_PIXELS, ByVal Y As OLE_YPOS_PIXELS) and Dropped(ByVal X As
// OLE_XPOS_HIMETRIC, ByVal Y As OLE_YPOS_HIMETRIC), the position types being aliases of Long) and the
// class Ledger whose default source it is; an object that gives that class as its class information; and
// a Ledger object with a connection point that raises the events.
#include "support/TestComObject.h"
#include "values/ComRef.h"

#include <ocidl.h>
#include <olectl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace brannoc::testing {

enum LedgerEvent : DISPID { kClicked = 1, kChanged = 2, kMoved = 3, kDropped = 4 };

// The class type of Ledger; null (with a test failure) when the library could not be made.
// An alias of Long named name in library, referenced from events; its type description for a parameter.
inline TYPEDESC PositionType(ICreateTypeLib2* library, ICreateTypeInfo* events, const wchar_t* name)
{
    TYPEDESC type{};
    type.vt = VT_I4;
    ComRef<ICreateTypeInfo> alias;
    if (FAILED(library->CreateTypeInfo(const_cast<LPOLESTR>(name), TKIND_ALIAS, alias.Out()))) {
        ADD_FAILURE() << "alias";
        return type;
    }
    TYPEDESC longType{};
    longType.vt = VT_I4;
    alias->SetTypeDescAlias(&longType);
    alias->LayOut();
    ComRef<ITypeInfo> aliasType;
    HREFTYPE reference = 0;
    if (FAILED(alias->QueryInterface(IID_ITypeInfo, reinterpret_cast<void**>(aliasType.Out()))) ||
        FAILED(events->AddRefTypeInfo(aliasType.Get(), &reference))) {
        ADD_FAILURE() << "alias reference";
        return type;
    }
    type.vt = VT_USERDEFINED;
    type.hreftype = reference;
    return type;
}

// Adds the event id with two by-value parameters X and Y of the given types at index.
inline void AddPositionEvent(ICreateTypeInfo* events, UINT index, DISPID id, const wchar_t* name, const TYPEDESC& x,
                             const TYPEDESC& y)
{
    ELEMDESC parameters[2] = {};
    parameters[0].tdesc = x;
    parameters[0].paramdesc.wParamFlags = PARAMFLAG_FIN;
    parameters[1].tdesc = y;
    parameters[1].paramdesc.wParamFlags = PARAMFLAG_FIN;
    FUNCDESC function{};
    function.funckind = FUNC_DISPATCH;
    function.invkind = INVOKE_FUNC;
    function.callconv = CC_STDCALL;
    function.elemdescFunc.tdesc.vt = VT_VOID;
    function.cParams = 2;
    function.memid = id;
    function.lprgelemdescParam = parameters;
    events->AddFuncDesc(index, &function);
    LPOLESTR names[] = {const_cast<LPOLESTR>(name), const_cast<LPOLESTR>(L"X"), const_cast<LPOLESTR>(L"Y")};
    events->SetFuncAndParamNames(index, names, 3);
}

inline ComRef<ITypeInfo> MakeLedgerClass(bool withPositionEvents = false)
{
    ComRef<ICreateTypeLib2> library;
    if (FAILED(CreateTypeLib2(SYS_WIN32, L"ledger.tlb", library.Out()))) {
        ADD_FAILURE() << "CreateTypeLib2";
        return {};
    }
    const GUID libraryId = {0x5a1e7c11, 0x2b3d, 0x4e5f, {0x90, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x01}};
    const GUID eventsId = {0x5a1e7c11, 0x2b3d, 0x4e5f, {0x90, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x02}};
    const GUID classId = {0x5a1e7c11, 0x2b3d, 0x4e5f, {0x90, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x03}};
    library->SetGuid(libraryId);
    library->SetName(const_cast<LPOLESTR>(L"LedgerLib"));

    ComRef<ICreateTypeInfo> events;
    library->CreateTypeInfo(const_cast<LPOLESTR>(L"LedgerEvents"), TKIND_DISPATCH, events.Out());
    events->SetGuid(eventsId);
    ComRef<ITypeLib> standard;
    ComRef<ITypeInfo> dispatchType;
    HREFTYPE dispatchRef = 0;
    if (SUCCEEDED(LoadRegTypeLib(IID_StdOle, 2, 0, 0, standard.Out())) &&
        SUCCEEDED(standard->GetTypeInfoOfGuid(IID_IDispatch, dispatchType.Out()))) {
        events->AddRefTypeInfo(dispatchType.Get(), &dispatchRef);
        events->AddImplType(0, dispatchRef);
    }
    TYPEDESC boolType{};
    boolType.vt = VT_BOOL;
    ELEMDESC cancel{};
    cancel.tdesc.vt = VT_PTR;
    cancel.tdesc.lptdesc = &boolType;
    cancel.paramdesc.wParamFlags = PARAMFLAG_FIN | PARAMFLAG_FOUT;
    ELEMDESC text{};
    text.tdesc.vt = VT_BSTR;
    text.paramdesc.wParamFlags = PARAMFLAG_FIN;
    FUNCDESC function{};
    function.funckind = FUNC_DISPATCH;
    function.invkind = INVOKE_FUNC;
    function.callconv = CC_STDCALL;
    function.elemdescFunc.tdesc.vt = VT_VOID;
    function.cParams = 1;

    function.memid = kClicked;
    function.lprgelemdescParam = &cancel;
    events->AddFuncDesc(0, &function);
    LPOLESTR clickedNames[] = {const_cast<LPOLESTR>(L"Clicked"), const_cast<LPOLESTR>(L"Cancel")};
    events->SetFuncAndParamNames(0, clickedNames, 2);
    function.memid = kChanged;
    function.lprgelemdescParam = &text;
    events->AddFuncDesc(1, &function);
    LPOLESTR changedNames[] = {const_cast<LPOLESTR>(L"Changed"), const_cast<LPOLESTR>(L"Text")};
    events->SetFuncAndParamNames(1, changedNames, 2);
    if (withPositionEvents) {
        AddPositionEvent(events.Get(), 2, kMoved, L"Moved", PositionType(library.Get(), events.Get(), L"OLE_XPOS_PIXELS"),
                         PositionType(library.Get(), events.Get(), L"OLE_YPOS_PIXELS"));
        AddPositionEvent(events.Get(), 3, kDropped, L"Dropped",
                         PositionType(library.Get(), events.Get(), L"OLE_XPOS_HIMETRIC"),
                         PositionType(library.Get(), events.Get(), L"OLE_YPOS_HIMETRIC"));
    }
    events->LayOut();

    ComRef<ICreateTypeInfo> coclass;
    library->CreateTypeInfo(const_cast<LPOLESTR>(L"Ledger"), TKIND_COCLASS, coclass.Out());
    coclass->SetGuid(classId);
    ComRef<ITypeInfo> eventsType;
    events->QueryInterface(IID_ITypeInfo, reinterpret_cast<void**>(eventsType.Out()));
    HREFTYPE eventsRef = 0;
    coclass->AddRefTypeInfo(eventsType.Get(), &eventsRef);
    coclass->AddImplType(0, eventsRef);
    coclass->SetImplTypeFlags(0, IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE);
    coclass->LayOut();
    ComRef<ITypeInfo> classType;
    if (FAILED(coclass->QueryInterface(IID_ITypeInfo, reinterpret_cast<void**>(classType.Out()))))
        ADD_FAILURE() << "no class type";
    return classType;
}

// An object with class information (the Ledger class) and a type count of 1.
class FakeEventSource : public TestComObject<IDispatch>, public IProvideClassInfo {
public:
    explicit FakeEventSource(ITypeInfo* classType, bool giveClassInfo = true)
        : m_classType(ComRef<ITypeInfo>::Share(classType)), m_giveClassInfo(giveClassInfo)
    {
    }
    HRESULT __stdcall QueryInterface(REFIID id, void** object) override
    {
        if (m_giveClassInfo && IsEqualIID(id, IID_IProvideClassInfo)) {
            *object = static_cast<IProvideClassInfo*>(this);
            TestComObject<IDispatch>::AddRef();
            return S_OK;
        }
        return TestComObject<IDispatch>::QueryInterface(id, object);
    }
    ULONG __stdcall AddRef() override { return TestComObject<IDispatch>::AddRef(); }
    ULONG __stdcall Release() override { return TestComObject<IDispatch>::Release(); }
    HRESULT __stdcall GetTypeInfoCount(UINT* count) override
    {
        *count = 1;
        return S_OK;
    }
    HRESULT __stdcall GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT __stdcall GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }
    HRESULT __stdcall Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override
    {
        return DISP_E_MEMBERNOTFOUND;
    }
    HRESULT __stdcall GetClassInfo(ITypeInfo** info) override
    {
        *info = ComRef<ITypeInfo>::Share(m_classType.Get()).Detach();
        return *info ? S_OK : E_FAIL;
    }

private:
    ComRef<ITypeInfo> m_classType;
    bool m_giveClassInfo;
};

} // namespace brannoc::testing

namespace brannoc::testing {

// A Ledger object that raises its events through a connection point for LedgerEvents, as an event
// source of an application would. Its one method Note (DISPID 100) records the thread it was called on.
// Sinks advised with marshalling on are reached through a stream, so that another thread can raise
// events into the advising thread's apartment.
class LedgerSource : public IDispatch, public IProvideClassInfo, public IConnectionPointContainer,
                     public IConnectionPoint {
public:
    static constexpr DISPID kNote = 100;

    explicit LedgerSource(ITypeInfo* classType) : m_classType(ComRef<ITypeInfo>::Share(classType))
    {
        TYPEATTR* attr = nullptr;
        ComRef<ITypeInfo> events;
        HREFTYPE reference = 0;
        if (classType && SUCCEEDED(classType->GetRefTypeOfImplType(0, &reference)) &&
            SUCCEEDED(classType->GetRefTypeInfo(reference, events.Out())) && SUCCEEDED(events->GetTypeAttr(&attr))) {
            m_eventsId = attr->guid;
            events->ReleaseTypeAttr(attr);
        }
    }
    ~LedgerSource()
    {
        for (Sink& sink : m_sinks)
            if (sink.dispatch)
                sink.dispatch->Release();
    }

    // IUnknown: one count for all interfaces; the test's scope ends the object.
    HRESULT __stdcall QueryInterface(REFIID id, void** object) override
    {
        if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch))
            *object = static_cast<IDispatch*>(this);
        else if (IsEqualIID(id, IID_IProvideClassInfo))
            *object = static_cast<IProvideClassInfo*>(this);
        else if (IsEqualIID(id, IID_IConnectionPointContainer))
            *object = static_cast<IConnectionPointContainer*>(this);
        else {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    ULONG __stdcall AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&m_references)); }
    ULONG __stdcall Release() override { return static_cast<ULONG>(InterlockedDecrement(&m_references)); }

    // IDispatch: the class's library is reached through the type information.
    HRESULT __stdcall GetTypeInfoCount(UINT* count) override
    {
        *count = 1;
        return S_OK;
    }
    HRESULT __stdcall GetTypeInfo(UINT, LCID locale, ITypeInfo** info) override
    {
        typeInfoLocales.push_back(locale);
        *info = ComRef<ITypeInfo>::Share(m_classType.Get()).Detach();
        return S_OK;
    }
    HRESULT __stdcall GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override
    {
        if (_wcsicmp(names[0], L"Note") != 0)
            return DISP_E_UNKNOWNNAME;
        ids[0] = kNote;
        return S_OK;
    }
    HRESULT __stdcall Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override
    {
        if (member != kNote)
            return DISP_E_MEMBERNOTFOUND;
        noteThread = GetCurrentThreadId();
        ++notes;
        return S_OK;
    }

    // IProvideClassInfo
    HRESULT __stdcall GetClassInfo(ITypeInfo** info) override
    {
        *info = ComRef<ITypeInfo>::Share(m_classType.Get()).Detach();
        return *info ? S_OK : E_FAIL;
    }

    // IConnectionPointContainer: one connection point, for LedgerEvents.
    HRESULT __stdcall EnumConnectionPoints(IEnumConnectionPoints**) override { return E_NOTIMPL; }
    HRESULT __stdcall FindConnectionPoint(REFIID id, IConnectionPoint** point) override
    {
        *point = nullptr;
        if (!IsEqualIID(id, m_eventsId))
            return CONNECT_E_NOCONNECTION;
        *point = static_cast<IConnectionPoint*>(this);
        AddRef();
        return S_OK;
    }

    // IConnectionPoint: the sink must answer the events interface.
    HRESULT __stdcall GetConnectionInterface(IID* id) override
    {
        *id = m_eventsId;
        return S_OK;
    }
    HRESULT __stdcall GetConnectionPointContainer(IConnectionPointContainer** container) override
    {
        *container = static_cast<IConnectionPointContainer*>(this);
        AddRef();
        return S_OK;
    }
    HRESULT __stdcall Advise(IUnknown* sink, DWORD* cookie) override
    {
        IDispatch* dispatch = nullptr;
        if (FAILED(sink->QueryInterface(m_eventsId, reinterpret_cast<void**>(&dispatch))))
            return CONNECT_E_CANNOTCONNECT;
        Sink entry{dispatch, nullptr, ++m_lastCookie};
        if (marshalSinks && FAILED(CoMarshalInterThreadInterfaceInStream(IID_IDispatch, dispatch, &entry.stream)))
            entry.stream = nullptr;
        m_sinks.push_back(entry);
        *cookie = entry.cookie;
        return S_OK;
    }
    HRESULT __stdcall Unadvise(DWORD cookie) override
    {
        for (auto it = m_sinks.begin(); it != m_sinks.end(); ++it) {
            if (it->cookie == cookie) {
                it->dispatch->Release();
                m_sinks.erase(it);
                return S_OK;
            }
        }
        return CONNECT_E_NOCONNECTION;
    }
    HRESULT __stdcall EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }

    std::size_t SinkCount() const { return m_sinks.size(); }

    // Raises an event in every advised sink, arguments first to last; the last sink's answer.
    HRESULT Raise(DISPID event, std::vector<VARIANT> arguments, EXCEPINFO* exception = nullptr,
                  VARIANT* result = nullptr)
    {
        HRESULT answer = S_OK;
        std::reverse(arguments.begin(), arguments.end());
        DISPPARAMS parameters{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
        for (Sink& sink : std::vector<Sink>(m_sinks))
            answer = sink.dispatch->Invoke(event, IID_NULL, 0x409, DISPATCH_METHOD, &parameters, result, exception,
                                           nullptr);
        return answer;
    }
    // The marshalled first sink for another thread (once), or null.
    IStream* TakeSinkStream()
    {
        return m_sinks.empty() ? nullptr : std::exchange(m_sinks.front().stream, nullptr);
    }

    bool marshalSinks = false;
    DWORD noteThread = 0;
    int notes = 0;
    // The locale of every GetTypeInfo call, in order.
    std::vector<LCID> typeInfoLocales;

private:
    struct Sink {
        IDispatch* dispatch;
        IStream* stream;
        DWORD cookie;
    };
    volatile LONG m_references = 1;
    ComRef<ITypeInfo> m_classType;
    IID m_eventsId = GUID_NULL;
    std::vector<Sink> m_sinks;
    DWORD m_lastCookie = 0;
};

} // namespace brannoc::testing
