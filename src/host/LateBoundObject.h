#pragma once
// IUnknown and the type-information half of IDispatch for the engine's own dispatch objects: fire
// objects, handlers, handler collections and event sinks. The derived class writes GetIDsOfNames and
// Invoke, and may hide two hooks: AnswersAlso (one more interface identifier answered with the
// IDispatch pointer, such as an event sink's source interface) and DescribingType (the type information
// that describes the object; objects that keep the default answer E_NOTIMPL for it, as objects that
// are reached by name only do). The reference count may change on any thread; the object is destroyed
// under the engine lock, since what it holds may belong to the engine.
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
        if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch) || Self().AnswersAlso(id)) {
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
        if constexpr (!Derived::kDescribed) {
            if (count)
                *count = 0;
            return E_NOTIMPL;
        } else {
            if (!count)
                return E_POINTER;
            *count = Self().DescribingType() ? 1 : 0;
            return S_OK;
        }
    }
    HRESULT __stdcall GetTypeInfo(UINT index, LCID, ITypeInfo** info) override
    {
        if constexpr (!Derived::kDescribed) {
            if (info)
                *info = nullptr;
            return E_NOTIMPL;
        } else {
            if (!info)
                return E_POINTER;
            *info = nullptr;
            ITypeInfo* type = Self().DescribingType();
            if (index != 0 || !type)
                return DISP_E_BADINDEX;
            type->AddRef();
            *info = type;
            return S_OK;
        }
    }

protected:
    LateBoundObject() = default;

    // The hooks' defaults: no other interface, no type information.
    static constexpr bool kDescribed = false;
    bool AnswersAlso(REFIID) const { return false; }
    ITypeInfo* DescribingType() const { return nullptr; }

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
    const Derived& Self() const { return *static_cast<const Derived*>(this); }

    volatile LONG m_references = 1;
};

} // namespace brannoc
