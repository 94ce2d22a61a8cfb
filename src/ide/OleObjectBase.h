#pragma once
// The reference count and QueryInterface of a small OLE object that offers one interface besides
// IUnknown. The object starts with one reference (the creator's) and deletes itself with the last.
#include <windows.h>
#include <objbase.h>

namespace brannoc::ide {

template <typename Interface, const IID& kInterfaceId>
class OleObjectBase : public Interface {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override
    {
        if (!out)
            return E_POINTER;
        if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, kInterfaceId)) {
            *out = static_cast<Interface*>(this);
            AddRef();
            return S_OK;
        }
        *out = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&m_references)); }
    ULONG STDMETHODCALLTYPE Release() override
    {
        const LONG left = InterlockedDecrement(&m_references);
        if (left == 0)
            delete this;
        return static_cast<ULONG>(left);
    }

protected:
    OleObjectBase() = default;
    virtual ~OleObjectBase() = default;

private:
    LONG m_references = 1;
};

} // namespace brannoc::ide
