#pragma once
// The type object of a dispatch class made from a text description: OLE type information built by the
// platform (CreateDispTypeInfo) from the description's method records, with its own Invoke that checks
// the call against the records and, for ANSI classes, hands String parameters over as ANSI text.
#include "automation/ClassDescription.h"
#include "values/ComRef.h"

#include <oaidl.h>
#include <string_view>
#include <vector>

namespace brannoc::automation {

class DescribedType final : public ITypeInfo {
public:
    // Parses text and builds the type; null after showing the description's error, or when the platform
    // refuses the type. The caller owns the one reference.
    static DescribedType* Create(std::wstring_view text, bool ansi);
    // The type object behind info when it is one of these (no reference added), else null.
    static DescribedType* From(IUnknown* info);

    bool IsAnsi() const { return m_ansi; }
    const std::wstring& InterfaceName() const { return m_description.interfaceName; }
    const ClassDescription& Description() const { return m_description; }
    // The platform's class type over the interface.
    ITypeInfo* ClassType() const { return m_classType.Get(); }
    // The platform's interface type under this object.
    ITypeInfo* InterfaceType() const { return m_interfaceType.Get(); }
    // The method record for id and kind (any of the DISPATCH_ flags), or null.
    METHODDATA* FindMethod(DISPID id, WORD kind);

    // IUnknown
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    // ITypeInfo: everything but Invoke and the type's own name answered by the platform's interface type.
    HRESULT STDMETHODCALLTYPE GetTypeAttr(TYPEATTR** attributes) override;
    HRESULT STDMETHODCALLTYPE GetTypeComp(ITypeComp** comp) override;
    HRESULT STDMETHODCALLTYPE GetFuncDesc(UINT index, FUNCDESC** description) override;
    HRESULT STDMETHODCALLTYPE GetVarDesc(UINT index, VARDESC** description) override;
    HRESULT STDMETHODCALLTYPE GetNames(MEMBERID id, BSTR* names, UINT maxNames, UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetRefTypeOfImplType(UINT index, HREFTYPE* type) override;
    HRESULT STDMETHODCALLTYPE GetImplTypeFlags(UINT index, INT* flags) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(LPOLESTR* names, UINT count, MEMBERID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(PVOID instance, MEMBERID id, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override;
    HRESULT STDMETHODCALLTYPE GetDocumentation(MEMBERID id, BSTR* name, BSTR* doc, DWORD* helpContext,
                                               BSTR* helpFile) override;
    HRESULT STDMETHODCALLTYPE GetDllEntry(MEMBERID id, INVOKEKIND kind, BSTR* dll, BSTR* name,
                                          WORD* ordinal) override;
    HRESULT STDMETHODCALLTYPE GetRefTypeInfo(HREFTYPE type, ITypeInfo** info) override;
    HRESULT STDMETHODCALLTYPE AddressOfMember(MEMBERID id, INVOKEKIND kind, PVOID* address) override;
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, PVOID* object) override;
    HRESULT STDMETHODCALLTYPE GetMops(MEMBERID id, BSTR* mops) override;
    HRESULT STDMETHODCALLTYPE GetContainingTypeLib(ITypeLib** library, UINT* index) override;
    void STDMETHODCALLTYPE ReleaseTypeAttr(TYPEATTR* attributes) override;
    void STDMETHODCALLTYPE ReleaseFuncDesc(FUNCDESC* description) override;
    void STDMETHODCALLTYPE ReleaseVarDesc(VARDESC* description) override;

private:
    DescribedType(ClassDescription description, bool ansi);
    ~DescribedType() = default;
    bool Build();
    // Invoke of a checked call, with String arguments turned into ANSI text.
    HRESULT InvokeAnsi(PVOID instance, MEMBERID id, WORD flags, const METHODDATA& method, DISPPARAMS* parameters,
                       VARIANT* result, EXCEPINFO* exception, UINT* argumentError);

    ULONG m_references = 1;
    ClassDescription m_description;
    bool m_ansi;
    // The INTERFACEDATA handed to the platform: method records and their parameter records.
    std::vector<std::vector<PARAMDATA>> m_parameterData;
    std::vector<METHODDATA> m_methodData;
    INTERFACEDATA m_interfaceData{};
    ComRef<ITypeInfo> m_classType;
    ComRef<ITypeInfo> m_interfaceType;
};

} // namespace brannoc::automation
