#include "automation/DescribedDispatch.h"

#include "automation/DescribedType.h"
#include "automation/InvokeErrorScope.h"

#include <new>

namespace brannoc::automation {
namespace {

const IID kDescribedDispatchId = {0x3C9E51A2, 0x7D40, 0x4B16, {0x8F, 0x2A, 0x61, 0xD0, 0x95, 0x3E, 0xB7, 0x4C}};

// The interface identifier the type gives, or IID_IDispatch when it gives none (the platform's
// description-built interfaces have GUID_NULL).
IID InterfaceIdOf(ITypeInfo* type)
{
    IID id = IID_IDispatch;
    TYPEATTR* attributes = nullptr;
    if (SUCCEEDED(type->GetTypeAttr(&attributes)) && attributes) {
        if (!IsEqualGUID(attributes->guid, GUID_NULL))
            id = attributes->guid;
        type->ReleaseTypeAttr(attributes);
    }
    return id;
}

} // namespace

ComRef<ITypeInfo> DispatchTypeOf(ITypeInfo* type)
{
    if (!type)
        return {};
    TYPEATTR* attributes = nullptr;
    if (FAILED(type->GetTypeAttr(&attributes)) || !attributes)
        return {};
    const TYPEKIND kind = attributes->typekind;
    const WORD interfaces = attributes->cImplTypes;
    type->ReleaseTypeAttr(attributes);
    if (kind != TKIND_COCLASS)
        return ComRef<ITypeInfo>::Share(type);
    UINT chosen = 0;
    for (UINT i = 0; i < interfaces; ++i) {
        INT flags = 0;
        if (SUCCEEDED(type->GetImplTypeFlags(i, &flags)) && (flags & IMPLTYPEFLAG_FDEFAULT) &&
            !(flags & IMPLTYPEFLAG_FSOURCE)) {
            chosen = i;
            break;
        }
    }
    HREFTYPE reference = 0;
    ComRef<ITypeInfo> dispatchType;
    if (interfaces == 0 || FAILED(type->GetRefTypeOfImplType(chosen, &reference)) ||
        FAILED(type->GetRefTypeInfo(reference, dispatchType.Out())))
        return {};
    return dispatchType;
}

DescribedDispatch::DescribedDispatch(ITypeInfo* type, ComRef<ITypeInfo> dispatchType, const IID& interfaceId,
                                     DestroyFunction destroy, void* implementation, void* userData)
    : m_type(ComRef<ITypeInfo>::Share(type)), m_dispatchType(std::move(dispatchType)), m_interfaceId(interfaceId),
      m_destroy(destroy), m_implementation(implementation), m_userData(userData)
{
}

DescribedDispatch* DescribedDispatch::Create(ITypeInfo* type, DestroyFunction destroy, void* implementation,
                                             void* userData)
{
    if (!type)
        return nullptr;
    // A type object of a description answers calls itself (its Invoke checks them and converts ANSI text).
    ComRef<ITypeInfo> dispatchType =
        DescribedType::From(type) ? ComRef<ITypeInfo>::Share(type) : DispatchTypeOf(type);
    if (!dispatchType)
        return nullptr;
    IID interfaceId = InterfaceIdOf(dispatchType.Get());
    return new (std::nothrow)
        DescribedDispatch(type, std::move(dispatchType), interfaceId, destroy, implementation, userData);
}

DescribedDispatch* DescribedDispatch::From(IUnknown* dispatch)
{
    void* found = nullptr;
    if (!dispatch || FAILED(dispatch->QueryInterface(kDescribedDispatchId, &found)))
        return nullptr;
    auto* object = static_cast<DescribedDispatch*>(found);
    object->Release();
    return object;
}

HRESULT DescribedDispatch::QueryInterface(REFIID iid, void** out)
{
    if (!out)
        return E_POINTER;
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) || IsEqualIID(iid, m_interfaceId) ||
        IsEqualIID(iid, kDescribedDispatchId)) {
        *out = static_cast<IDispatch*>(this);
        AddRef();
        return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
}

ULONG DescribedDispatch::AddRef() { return ++m_references; }

ULONG DescribedDispatch::Release()
{
    ULONG left = --m_references;
    if (left == 0) {
        if (m_destroy)
            m_destroy(m_implementation, m_userData);
        delete this;
    }
    return left;
}

HRESULT DescribedDispatch::GetTypeInfoCount(UINT* count)
{
    if (!count)
        return E_POINTER;
    *count = 1;
    return S_OK;
}

HRESULT DescribedDispatch::GetTypeInfo(UINT index, LCID, ITypeInfo** info)
{
    if (!info)
        return E_POINTER;
    *info = nullptr;
    if (index != 0)
        return DISP_E_BADINDEX;
    *info = ComRef<ITypeInfo>(m_dispatchType).Detach();
    return S_OK;
}

HRESULT DescribedDispatch::GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID, DISPID* ids)
{
    if (!IsEqualIID(iid, IID_NULL))
        return DISP_E_UNKNOWNINTERFACE;
    return m_dispatchType->GetIDsOfNames(names, count, ids);
}

HRESULT DescribedDispatch::Invoke(DISPID id, REFIID iid, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                  EXCEPINFO* exception, UINT* argumentError)
{
    if (!IsEqualIID(iid, IID_NULL))
        return DISP_E_UNKNOWNINTERFACE;
    // The call may release the last outside reference; keep the object alive until it returns.
    AddRef();
    ScopedInvokeErrors errors(exception);
    HRESULT status = m_dispatchType->Invoke(m_implementation, id, flags, parameters, result, exception, argumentError);
    status = errors.Close(status);
    Release();
    return status;
}

} // namespace brannoc::automation
