#pragma once
// IUnknown and the type-information half of IDispatch for the engine's own objects that answer
// late-bound calls only (no type information): fire objects and handlers. The derived class writes
// GetIDsOfNames and Invoke. The reference count may change on any thread; the object is destroyed under
// the engine lock, since what it holds may belong to the engine.
#include "host/EngineLock.h"
#include <oaidl.h>

namespace brannoc {

template <class Derived>
class LateBoundObject : public IDispatch {
public:
    HRESULT __stdcall QueryInterface(REFIID id, void** object) override
    {
        if (!object)
            return E_POINTER;
        if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch)) {
            *object = static_cast<IDispatch*>(this);
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG __stdcall AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&m_references)); }
    ULONG __stdcall Release() override
    {
        const LONG remaining = InterlockedDecrement(&m_references);
        if (remaining == 0) {
            EngineLock::Acquire();
            delete static_cast<Derived*>(this);
            EngineLock::Release();
        }
        return static_cast<ULONG>(remaining);
    }
    HRESULT __stdcall GetTypeInfoCount(UINT* count) override
    {
        if (count)
            *count = 0;
        return E_NOTIMPL;
    }
    HRESULT __stdcall GetTypeInfo(UINT, LCID, ITypeInfo** info) override
    {
        if (info)
            *info = nullptr;
        return E_NOTIMPL;
    }

protected:
    LateBoundObject() = default;

    // The shape of a property read: no arguments, a place for the value, read as a property or a method.
    static HRESULT CheckPropertyGet(WORD flags, const DISPPARAMS& parameters, const VARIANT* result)
    {
        if (!result)
            return DISP_E_TYPEMISMATCH;
        if (parameters.cArgs != 0)
            return DISP_E_BADPARAMCOUNT;
        if (!(flags & (DISPATCH_METHOD | DISPATCH_PROPERTYGET)))
            return DISP_E_TYPEMISMATCH;
        return S_OK;
    }

    ~LateBoundObject() = default;

private:
    volatile LONG m_references = 1;
};

} // namespace brannoc
