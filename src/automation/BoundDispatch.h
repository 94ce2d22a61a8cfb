#pragma once
// A dispatch object that answers GetTypeInfo with a type of its own and forwards names and calls to a
// held dispatch object. The type is given, or loaded on first need from the program's own type library
// by its GUID text (OA_BindMFC).
#include "values/ComRef.h"

#include <oaidl.h>
#include <string>

namespace brannoc::automation {

using WrapFunction = HRESULT(__stdcall*)(REFIID interfaceId, IUnknown* object, IUnknown** wrapped);

class BoundDispatch final : public IDispatch {
public:
    static BoundDispatch* Create(IDispatch* target, ITypeInfo* type);
    static BoundDispatch* CreateLazy(IDispatch* target, std::wstring typeGuidText, WrapFunction wrap);

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                                            DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override;

private:
    BoundDispatch(IDispatch* target, ITypeInfo* type, std::wstring typeGuidText, WrapFunction wrap);
    ~BoundDispatch() = default;
    ITypeInfo* Type();

    ULONG m_references = 1;
    ComRef<IDispatch> m_target;
    ComRef<ITypeInfo> m_type;
    std::wstring m_typeGuidText;
    WrapFunction m_wrap;
};

// The object wrap gives for object (adopting it and releasing object), or object unchanged when wrap
// fails or is null.
IUnknown* WrapObject(WrapFunction wrap, REFIID interfaceId, IUnknown* object);

} // namespace brannoc::automation
