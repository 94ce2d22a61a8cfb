#pragma once
// The dispatch object over an implementation object: late-bound calls are answered by its type
// information, which calls the implementation's virtual functions (implementation object first).
// The last Release calls the destroy function once with the implementation object and the user data.
#include "values/ComRef.h"

#include <oaidl.h>

namespace brannoc::automation {

using DestroyFunction = void(__stdcall*)(void* implementation, void* userData);

class DescribedDispatch final : public IDispatch {
public:
    // A dispatch object over implementation answering with type (a type object of a description, or
    // any type information; a class type is followed to its default interface). Null for a null type or
    // a type without a dispatch interface. The caller owns the one reference.
    static DescribedDispatch* Create(ITypeInfo* type, DestroyFunction destroy, void* implementation, void* userData);
    // The object behind dispatch when it is one of these (no reference added), else null.
    static DescribedDispatch* From(IUnknown* dispatch);

    void* Implementation() const { return m_implementation; }
    ITypeInfo* DispatchType() const { return m_dispatchType.Get(); }

    // IUnknown
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    // IDispatch
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                                            DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override;

private:
    DescribedDispatch(ITypeInfo* type, ComRef<ITypeInfo> dispatchType, const IID& interfaceId, DestroyFunction destroy,
                      void* implementation, void* userData);
    ~DescribedDispatch() = default;

    ULONG m_references = 1;
    ComRef<ITypeInfo> m_type;
    ComRef<ITypeInfo> m_dispatchType;
    IID m_interfaceId;
    DestroyFunction m_destroy;
    void* m_implementation;
    void* m_userData;
};

// The dispatch interface that serves type: its default interface for a class type, else type itself.
// Null when there is none.
ComRef<ITypeInfo> DispatchTypeOf(ITypeInfo* type);

} // namespace brannoc::automation
