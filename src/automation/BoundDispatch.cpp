#include "automation/BoundDispatch.h"
#include "automation/ExportBoundary.h"

#include "host/AnsiText.h"

#include "brannoc.h"

#include <new>

namespace brannoc::automation {

IUnknown* WrapObject(WrapFunction wrap, REFIID interfaceId, IUnknown* object)
{
    IUnknown* wrapped = nullptr;
    if (!wrap || !object || FAILED(wrap(interfaceId, object, &wrapped)) || !wrapped)
        return object;
    object->Release();
    return wrapped;
}

BoundDispatch::BoundDispatch(IDispatch* target, ITypeInfo* type, std::wstring typeGuidText, WrapFunction wrap)
    : m_target(ComRef<IDispatch>::Share(target)), m_type(ComRef<ITypeInfo>::Share(type)),
      m_typeGuidText(std::move(typeGuidText)), m_wrap(wrap)
{
}

BoundDispatch* BoundDispatch::Create(IDispatch* target, ITypeInfo* type)
{
    return new (std::nothrow) BoundDispatch(target, type, {}, nullptr);
}

BoundDispatch* BoundDispatch::CreateLazy(IDispatch* target, std::wstring typeGuidText, WrapFunction wrap)
{
    return new (std::nothrow) BoundDispatch(target, nullptr, std::move(typeGuidText), wrap);
}

// Loads the type from the program's own type library on first need.
ITypeInfo* BoundDispatch::Type()
{
    if (!m_type && !m_typeGuidText.empty()) {
        ITypeLib* library = OA_LoadLib(nullptr);
        library = static_cast<ITypeLib*>(WrapObject(m_wrap, IID_ITypeLib, library));
        if (library) {
            m_type = ComRef<ITypeInfo>::Adopt(OA_LoadType_W(library, m_typeGuidText.c_str()));
            library->Release();
        }
    }
    return m_type.Get();
}

HRESULT BoundDispatch::QueryInterface(REFIID iid, void** out)
{
    if (!out)
        return E_POINTER;
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch)) {
        *out = static_cast<IDispatch*>(this);
        AddRef();
        return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
}

ULONG BoundDispatch::AddRef() { return ++m_references; }

ULONG BoundDispatch::Release()
{
    ULONG left = --m_references;
    if (left == 0)
        delete this;
    return left;
}

HRESULT BoundDispatch::GetTypeInfoCount(UINT* count)
{
    if (!count)
        return E_POINTER;
    *count = Type() ? 1 : 0;
    return S_OK;
}

HRESULT BoundDispatch::GetTypeInfo(UINT index, LCID, ITypeInfo** info)
{
    if (!info)
        return E_POINTER;
    *info = nullptr;
    if (index != 0)
        return DISP_E_BADINDEX;
    ITypeInfo* type = Type();
    if (!type)
        return E_NOTIMPL;
    type->AddRef();
    *info = type;
    return S_OK;
}

HRESULT BoundDispatch::GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids)
{
    return m_target->GetIDsOfNames(iid, names, count, locale, ids);
}

HRESULT BoundDispatch::Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                              VARIANT* result, EXCEPINFO* exception, UINT* argumentError)
{
    return m_target->Invoke(id, iid, locale, flags, parameters, result, exception, argumentError);
}

} // namespace brannoc::automation

using namespace brannoc;
using namespace brannoc::automation;

extern "C" {

IDispatch* __stdcall OA_BindDispatch(IDispatch* dispatch, ITypeInfo* type)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&]() -> IDispatch* {
        if (!dispatch || !type)
            return dispatch;
        return BoundDispatch::Create(dispatch, type);
    });
}

IUnknown* __stdcall OA_WrapMFCLib(ITypeLib* library, OA_WRAPPROC wrap)
{
    return WrapObject(wrap, IID_ITypeLib, library);
}

IDispatch* __stdcall OA_BindMFC(IDispatch* dispatch, LPCSTR typeGuidText, OA_WRAPPROC wrap, BOOL keep)
{
    return AtExportBoundary<IDispatch*>(nullptr, [&]() -> IDispatch* {
        if (!dispatch)
            return nullptr;
        if (wrap && !keep)
            dispatch = static_cast<IDispatch*>(WrapObject(wrap, IID_IDispatch, dispatch));
        if (!typeGuidText || !*typeGuidText)
            return dispatch;
        BoundDispatch* bound = BoundDispatch::CreateLazy(dispatch, WideFromAnsi(typeGuidText), wrap);
        // The binding object holds its own reference of the dispatch.
        dispatch->Release();
        return bound;
    });
}

} // extern "C"
