#pragma once
// IUnknown for the COM objects that tests own as locals or members: QueryInterface answers IUnknown
// and the object's one interface, and the reference count is only counted (the test's scope ends the
// object, so a test can check that the engine gave back every reference it took).
#include <windows.h>
#include <oaidl.h>

namespace brannoc::testing {

template <class Interface>
class TestComObject : public Interface {
public:
    HRESULT __stdcall QueryInterface(REFIID id, void** object) override
    {
        if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, __uuidof(Interface))) {
            *object = static_cast<Interface*>(this);
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG __stdcall AddRef() override { return ++m_references; }
    ULONG __stdcall Release() override { return --m_references; }
    ULONG References() const { return m_references; }

private:
    ULONG m_references = 1;
};

// An IDispatch without type information; the test writes GetIDsOfNames and Invoke.
class TestDispatch : public TestComObject<IDispatch> {
public:
    HRESULT __stdcall GetTypeInfoCount(UINT* count) override
    {
        *count = 0;
        return S_OK;
    }
    HRESULT __stdcall GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
};

} // namespace brannoc::testing
