#pragma once
// Class objects for automation servers: CreateInstance calls the creation function with the type and
// the user data and hands out the dispatch object it returns.
#include "values/ComRef.h"

#include <oaidl.h>

namespace brannoc::automation {

using CreateFunction = IDispatch*(__stdcall*)(ITypeInfo* type, void* userData);

class DescribedClass final : public IClassFactory {
public:
    // Null without a creation function; the caller owns the one reference.
    static DescribedClass* Create(ITypeInfo* type, CreateFunction create, void* userData);

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override;
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override;

private:
    DescribedClass(ITypeInfo* type, CreateFunction create, void* userData);
    ~DescribedClass() = default;

    ULONG m_references = 1;
    LONG m_locks = 0;
    ComRef<ITypeInfo> m_type;
    CreateFunction m_create;
    void* m_userData;
};

} // namespace brannoc::automation
