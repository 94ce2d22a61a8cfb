#include "host/ClassObject.h"

#include "exec/ModuleInstance.h"
#include "host/EngineContext.h"
#include "host/EntryGuard.h"
#include "host/ModuleManager.h"

namespace brannoc {

namespace {

// Private interface identity that only class objects answer, with the object itself.
constexpr IID kClassObjectIid = {0x6b1f4e2a, 0x93c5, 0x4d07, {0xa8, 0x41, 0x2e, 0x7c, 0x15, 0xd9, 0x60, 0xb3}};

} // namespace

ClassObject::ClassObject(ModuleManager& manager, std::unique_ptr<ModuleInstance> instance) noexcept
    : m_manager(manager), m_instance(std::move(instance))
{
    m_instance->SetObject(this);
}

ClassObject::~ClassObject() = default;

ModuleInstance* ClassObject::InstanceOf(IUnknown* object) noexcept
{
    if (!object)
        return nullptr;
    void* found = nullptr;
    if (FAILED(object->QueryInterface(kClassObjectIid, &found)) || !found)
        return nullptr;
    // The private identity hands out the object without a reference.
    return static_cast<ClassObject*>(found)->m_instance.get();
}

HRESULT STDMETHODCALLTYPE ClassObject::QueryInterface(REFIID iid, void** out)
{
    if (!out)
        return E_POINTER;
    if (IsEqualIID(iid, kClassObjectIid)) {
        *out = this;
        return S_OK;
    }
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch)) {
        *out = static_cast<IDispatch*>(this);
        AddRef();
        return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
}

ULONG STDMETHODCALLTYPE ClassObject::AddRef()
{
    return ++m_references;
}

ULONG STDMETHODCALLTYPE ClassObject::Release()
{
    const ULONG left = --m_references;
    if (left != 0)
        return left;
    // A host may drop the last reference outside any engine call: the instance goes inside the engine.
    EntryGuard guard(m_manager.Context());
    // The terminate procedure may copy and drop references to this object (Me); keep it alive meanwhile.
    m_references = 1;
    m_manager.TerminateInstance(*m_instance);
    if (m_references > 1) {
        // The terminator kept a reference: the object lives on, its instance terminated.
        return --m_references;
    }
    m_instance->SetObject(nullptr);
    m_manager.DestroyInstance(std::move(m_instance));
    delete this;
    return 0;
}

HRESULT STDMETHODCALLTYPE ClassObject::GetTypeInfoCount(UINT* count)
{
    if (!count)
        return E_POINTER;
    *count = 0;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ClassObject::GetTypeInfo(UINT, LCID, ITypeInfo** info)
{
    if (info)
        *info = nullptr;
    return E_NOTIMPL;
}

} // namespace brannoc
