#pragma once
// An instance of a class module as an object value: the language holds it through its IDispatch like any
// other object, and the last Release ends the instance (its terminate procedure runs as a nested call).
// Member calls from the language reach the module instance directly through InstanceOf; other clients
// (and conversions that ask an object for its value) call its public members by name through Invoke,
// each call a nested run of the member (ClassObjectDispatch.cpp).
#include <oaidl.h>

#include <memory>
#include <vector>

namespace brannoc {

class ModuleInstance;
class ModuleManager;

class ClassObject final : public IDispatch {
public:
    // Takes over instance; the reference count starts at one.
    ClassObject(ModuleManager& manager, std::unique_ptr<ModuleInstance> instance) noexcept;
    ClassObject(const ClassObject&) = delete;
    ClassObject& operator=(const ClassObject&) = delete;

    // The module instance behind object when it is a class object of this engine, else null.
    static ModuleInstance* InstanceOf(IUnknown* object) noexcept;

    // IUnknown
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    // IDispatch
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                                            DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override;

private:
    ~ClassObject();

    // Members a form instance does not have itself are the host object's (its controls and
    // properties): their ids are kHostMemberBase plus an index into m_hostIds, the host's own ids.
    static constexpr DISPID kHostMemberBase = 0x30000000;
    DISPID HostMemberId(LPOLESTR name);
    HRESULT InvokeHostMember(DISPID id, WORD flags, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                             UINT* argumentError);

    ULONG m_references = 1;
    ModuleManager& m_manager;
    std::unique_ptr<ModuleInstance> m_instance;
    std::vector<DISPID> m_hostIds;
};

} // namespace brannoc
