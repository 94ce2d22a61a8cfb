#pragma once
// IEnumVARIANT over an indexed source: a getter fills element i and answers false when there is none.
#include "values/ComRef.h"

#include <oaidl.h>

namespace brannoc::automation {

using ElementGetter = BOOL(__stdcall*)(IUnknown* data, LONG index, VARIANT* element);

class IndexedEnumerator final : public IEnumVARIANT {
public:
    // The data object is held; the caller owns the one reference of the result.
    static IndexedEnumerator* Create(IUnknown* data, ElementGetter getter, LONG position = 0);

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* elements, ULONG* fetched) override;
    HRESULT STDMETHODCALLTYPE Skip(ULONG count) override;
    HRESULT STDMETHODCALLTYPE Reset() override;
    HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** copy) override;

private:
    IndexedEnumerator(IUnknown* data, ElementGetter getter, LONG position);
    ~IndexedEnumerator() = default;

    ULONG m_references = 1;
    ComRef<IUnknown> m_data;
    ElementGetter m_getter;
    LONG m_position;   // -1 once exhausted
};

} // namespace brannoc::automation
