#include "automation/IndexedEnumerator.h"

#include "brannoc.h"

#include <new>

namespace brannoc::automation {

IndexedEnumerator::IndexedEnumerator(IUnknown* data, ElementGetter getter, LONG position)
    : m_data(ComRef<IUnknown>::Share(data)), m_getter(getter), m_position(position)
{
}

IndexedEnumerator* IndexedEnumerator::Create(IUnknown* data, ElementGetter getter, LONG position)
{
    if (!getter)
        return nullptr;
    return new (std::nothrow) IndexedEnumerator(data, getter, position);
}

HRESULT IndexedEnumerator::QueryInterface(REFIID iid, void** out)
{
    if (!out)
        return E_POINTER;
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IEnumVARIANT)) {
        *out = static_cast<IEnumVARIANT*>(this);
        AddRef();
        return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
}

ULONG IndexedEnumerator::AddRef() { return ++m_references; }

ULONG IndexedEnumerator::Release()
{
    ULONG left = --m_references;
    if (left == 0)
        delete this;
    return left;
}

HRESULT IndexedEnumerator::Next(ULONG count, VARIANT* elements, ULONG* fetched)
{
    ULONG done = 0;
    if (!elements && count > 0)
        return E_POINTER;
    while (done < count && m_position >= 0) {
        VariantInit(&elements[done]);
        if (!m_getter(m_data.Get(), m_position, &elements[done])) {
            VariantClear(&elements[done]);
            m_position = -1;
            break;
        }
        ++m_position;
        ++done;
    }
    if (fetched)
        *fetched = done;
    return done == count ? S_OK : S_FALSE;
}

HRESULT IndexedEnumerator::Skip(ULONG count)
{
    if (m_position < 0)
        return S_FALSE;
    m_position += static_cast<LONG>(count);
    return S_OK;
}

HRESULT IndexedEnumerator::Reset()
{
    m_position = 0;
    return S_OK;
}

HRESULT IndexedEnumerator::Clone(IEnumVARIANT** copy)
{
    if (!copy)
        return E_POINTER;
    *copy = Create(m_data.Get(), m_getter, m_position);
    return *copy ? S_OK : E_OUTOFMEMORY;
}

} // namespace brannoc::automation

extern "C" IEnumVARIANT* __stdcall OA_CreateEnum(IUnknown* data, OA_ENUMPROC getter)
{
    return brannoc::automation::IndexedEnumerator::Create(data, getter);
}
