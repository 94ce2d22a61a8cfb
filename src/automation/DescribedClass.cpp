#include "automation/DescribedClass.h"

#include "brannoc.h"

#include <new>

namespace brannoc::automation {

DescribedClass::DescribedClass(ITypeInfo* type, CreateFunction create, void* userData)
    : m_type(ComRef<ITypeInfo>::Share(type)), m_create(create), m_userData(userData)
{
}

DescribedClass* DescribedClass::Create(ITypeInfo* type, CreateFunction create, void* userData)
{
    if (!create)
        return nullptr;
    return new (std::nothrow) DescribedClass(type, create, userData);
}

HRESULT DescribedClass::QueryInterface(REFIID iid, void** out)
{
    if (!out)
        return E_POINTER;
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory)) {
        *out = static_cast<IClassFactory*>(this);
        AddRef();
        return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
}

ULONG DescribedClass::AddRef() { return ++m_references; }

ULONG DescribedClass::Release()
{
    ULONG left = --m_references;
    if (left == 0)
        delete this;
    return left;
}

HRESULT DescribedClass::CreateInstance(IUnknown* outer, REFIID iid, void** object)
{
    if (!object)
        return E_POINTER;
    *object = nullptr;
    if (outer)
        return CLASS_E_NOAGGREGATION;
    ComRef<IDispatch> created = ComRef<IDispatch>::Adopt(m_create(m_type.Get(), m_userData));
    if (!created)
        return E_OUTOFMEMORY;
    return created->QueryInterface(iid, object);
}

HRESULT DescribedClass::LockServer(BOOL lock)
{
    m_locks += lock ? 1 : -1;
    return S_OK;
}

} // namespace brannoc::automation

extern "C" IClassFactory* __stdcall OA_CreateClass(ITypeInfo* type, OA_CREATEPROC create, LONG, void* userData)
{
    return brannoc::automation::DescribedClass::Create(type, create, userData);
}
