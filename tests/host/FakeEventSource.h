#pragma once
// An event source for tests: a type library made in memory (ICreateTypeLib2) with the dispatch
// interface LedgerEvents (Clicked(ByRef Cancel As Boolean), Changed(ByVal Text As String)) and the
// class Ledger whose default source it is; and an object that gives that class as its class information.
#include "support/TestComObject.h"
#include "host/ComRef.h"

#include <ocidl.h>
#include <gtest/gtest.h>

namespace brannoc::testing {

enum LedgerEvent : DISPID { kClicked = 1, kChanged = 2 };

// The class type of Ledger; null (with a test failure) when the library could not be made.
inline ComRef<ITypeInfo> MakeLedgerClass()
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
