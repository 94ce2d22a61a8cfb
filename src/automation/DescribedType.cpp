#include "automation/DescribedType.h"

#include "automation/AnsiBstr.h"
#include "automation/ExportBoundary.h"
#include "values/Variant.h"

#include <memory>
#include <new>

namespace brannoc::automation {
namespace {

// Answered only by DescribedType's QueryInterface, to recognise its own objects.
const IID kDescribedTypeId = {0x6E0B37D1, 0x52C4, 0x4A8E, {0x9B, 0x5D, 0x13, 0x7F, 0x20, 0xA4, 0xC6, 0x81}};

constexpr LCID kLocale = 0x409;

// The ANSI text of a String argument: a BSTR converted, a reference to a BSTR or a Variant followed, any
// other value converted to text in the thread's locale first. Null when the value cannot be text.
BSTR AnsiArgument(const VARIANT& argument)
{
    const VARIANT* value = FollowByRefChain(&argument);
    if (value->vt == VT_BSTR)
        return AnsiBstrFromWide(WideChars(value->bstrVal));
    if (value->vt == (VT_BYREF | VT_BSTR))
        return AnsiBstrFromWide(WideChars(value->pbstrVal ? *value->pbstrVal : nullptr));
    Variant text;
    if (FAILED(VariantChangeTypeEx(&text.Raw(), const_cast<VARIANT*>(value), GetThreadLocale(), 0, VT_BSTR)))
        return nullptr;
    return AnsiBstrFromWide(text.StringView());
}

} // namespace

DescribedType::DescribedType(ClassDescription description, bool ansi)
    : m_description(std::move(description)), m_ansi(ansi)
{
}

DescribedType* DescribedType::Create(std::wstring_view text, bool ansi)
{
    ClassDescription description;
    DescriptionError error;
    if (!ParseClassDescription(text, ansi, description, error)) {
        ShowDescriptionError(error);
        return nullptr;
    }
    auto* type = new (std::nothrow) DescribedType(std::move(description), ansi);
    if (!type)
        return nullptr;
    if (!type->Build()) {
        type->Release();
        return nullptr;
    }
    return type;
}

DescribedType* DescribedType::From(IUnknown* info)
{
    void* found = nullptr;
    if (!info || FAILED(info->QueryInterface(kDescribedTypeId, &found)))
        return nullptr;
    auto* type = static_cast<DescribedType*>(found);
    type->Release();
    return type;
}

// Fills the INTERFACEDATA from the member records and lets the platform build a class type over it;
// the interface type is the class's first implemented interface.
bool DescribedType::Build()
{
    const auto& members = m_description.members;
    m_parameterData.resize(members.size());
    m_methodData.resize(members.size());
    for (std::size_t i = 0; i < members.size(); ++i) {
        const MemberRecord& member = members[i];
        for (const ParameterRecord& parameter : member.parameters)
            m_parameterData[i].push_back(PARAMDATA{const_cast<OLECHAR*>(parameter.name.c_str()), parameter.type});
        METHODDATA& method = m_methodData[i];
        method.szName = const_cast<OLECHAR*>(member.name.c_str());
        method.ppdata = m_parameterData[i].empty() ? nullptr : m_parameterData[i].data();
        method.dispid = member.id;
        method.iMeth = member.methodIndex;
        method.cc = CC_STDCALL;
        method.cArgs = static_cast<UINT>(member.parameters.size());
        method.wFlags = member.kind;
        method.vtReturn = member.resultType;
    }
    m_interfaceData.pmethdata = m_methodData.empty() ? nullptr : m_methodData.data();
    m_interfaceData.cMembers = static_cast<UINT>(m_methodData.size());
    if (FAILED(CreateDispTypeInfo(&m_interfaceData, kLocale, m_classType.Out())))
        return false;
    HREFTYPE reference = 0;
    if (FAILED(m_classType->GetRefTypeOfImplType(0, &reference)) ||
        FAILED(m_classType->GetRefTypeInfo(reference, m_interfaceType.Out())))
        return false;
    return true;
}

METHODDATA* DescribedType::FindMethod(DISPID id, WORD kind)
{
    for (METHODDATA& method : m_methodData)
        if (method.dispid == id && (method.wFlags & kind))
            return &method;
    return nullptr;
}

HRESULT DescribedType::QueryInterface(REFIID iid, void** out)
{
    if (!out)
        return E_POINTER;
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_ITypeInfo) || IsEqualIID(iid, kDescribedTypeId)) {
        *out = static_cast<ITypeInfo*>(this);
        AddRef();
        return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
}

ULONG DescribedType::AddRef() { return ++m_references; }

ULONG DescribedType::Release()
{
    ULONG left = --m_references;
    if (left == 0)
        delete this;
    return left;
}

HRESULT DescribedType::Invoke(PVOID instance, MEMBERID id, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                              EXCEPINFO* exception, UINT* argumentError)
{
    if (!instance || !parameters)
        return E_INVALIDARG;
    METHODDATA* method = FindMethod(id, flags);
    if (!method)
        return DISP_E_MEMBERNOTFOUND;
    if (parameters->cArgs != method->cArgs)
        return DISP_E_BADPARAMCOUNT;
    if (parameters->cNamedArgs > 1 ||
        (parameters->cNamedArgs == 1 && parameters->rgdispidNamedArgs[0] != DISPID_PROPERTYPUT))
        return DISP_E_NONAMEDARGS;
    if (result && method->vtReturn == VT_EMPTY)
        return DISP_E_TYPEMISMATCH;
    Variant scratch;
    if (!result)
        result = &scratch.Raw();
    if (m_ansi)
        return AtExportBoundary<HRESULT>(E_OUTOFMEMORY, [&] {
            return InvokeAnsi(instance, id, flags, *method, parameters, result, exception, argumentError);
        });
    return DispInvoke(instance, m_interfaceType.Get(), id, flags, parameters, result, exception, argumentError);
}

HRESULT DescribedType::InvokeAnsi(PVOID instance, MEMBERID id, WORD flags, const METHODDATA& method,
                                  DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                  UINT* argumentError)
{
    // The arguments arrive last first: parameter i is argument cArgs - 1 - i.
    const UINT count = parameters->cArgs;
    std::unique_ptr<VARIANT[]> arguments(new (std::nothrow) VARIANT[count ? count : 1]);
    std::unique_ptr<Variant[]> converted(new (std::nothrow) Variant[count ? count : 1]);
    if (!arguments || !converted)
        return E_OUTOFMEMORY;
    for (UINT slot = 0; slot < count; ++slot) {
        arguments[slot] = parameters->rgvarg[slot];
        if (method.ppdata[count - 1 - slot].vt != VT_BSTR)
            continue;
        BSTR text = AnsiArgument(parameters->rgvarg[slot]);
        if (!text) {
            if (argumentError)
                *argumentError = slot;
            return DISP_E_TYPEMISMATCH;
        }
        converted[slot].SetString(text);
        arguments[slot] = converted[slot].Raw();
    }
    DISPPARAMS ansiParameters{arguments.get(), parameters->rgdispidNamedArgs, count, parameters->cNamedArgs};
    return DispInvoke(instance, m_interfaceType.Get(), id, flags, &ansiParameters, result, exception, argumentError);
}

HRESULT DescribedType::GetDocumentation(MEMBERID id, BSTR* name, BSTR* doc, DWORD* helpContext, BSTR* helpFile)
{
    if (id != MEMBERID_NIL)
        return m_interfaceType->GetDocumentation(id, name, doc, helpContext, helpFile);
    // The platform's interface has no name; the description's "=" line gives it.
    if (name)
        *name = SysAllocString(m_description.interfaceName.c_str());
    if (doc)
        *doc = nullptr;
    if (helpContext)
        *helpContext = 0;
    if (helpFile)
        *helpFile = nullptr;
    return S_OK;
}

HRESULT DescribedType::GetTypeAttr(TYPEATTR** attributes) { return m_interfaceType->GetTypeAttr(attributes); }
HRESULT DescribedType::GetTypeComp(ITypeComp** comp) { return m_interfaceType->GetTypeComp(comp); }
HRESULT DescribedType::GetFuncDesc(UINT index, FUNCDESC** description)
{
    return m_interfaceType->GetFuncDesc(index, description);
}
HRESULT DescribedType::GetVarDesc(UINT index, VARDESC** description)
{
    return m_interfaceType->GetVarDesc(index, description);
}
HRESULT DescribedType::GetNames(MEMBERID id, BSTR* names, UINT maxNames, UINT* count)
{
    return m_interfaceType->GetNames(id, names, maxNames, count);
}
HRESULT DescribedType::GetRefTypeOfImplType(UINT index, HREFTYPE* type)
{
    return m_interfaceType->GetRefTypeOfImplType(index, type);
}
HRESULT DescribedType::GetImplTypeFlags(UINT index, INT* flags) { return m_interfaceType->GetImplTypeFlags(index, flags); }
HRESULT DescribedType::GetIDsOfNames(LPOLESTR* names, UINT count, MEMBERID* ids)
{
    return m_interfaceType->GetIDsOfNames(names, count, ids);
}
HRESULT DescribedType::GetDllEntry(MEMBERID id, INVOKEKIND kind, BSTR* dll, BSTR* name, WORD* ordinal)
{
    return m_interfaceType->GetDllEntry(id, kind, dll, name, ordinal);
}
HRESULT DescribedType::GetRefTypeInfo(HREFTYPE type, ITypeInfo** info) { return m_interfaceType->GetRefTypeInfo(type, info); }
HRESULT DescribedType::AddressOfMember(MEMBERID id, INVOKEKIND kind, PVOID* address)
{
    return m_interfaceType->AddressOfMember(id, kind, address);
}
HRESULT DescribedType::CreateInstance(IUnknown* outer, REFIID iid, PVOID* object)
{
    return m_interfaceType->CreateInstance(outer, iid, object);
}
HRESULT DescribedType::GetMops(MEMBERID id, BSTR* mops) { return m_interfaceType->GetMops(id, mops); }
HRESULT DescribedType::GetContainingTypeLib(ITypeLib** library, UINT* index)
{
    return m_interfaceType->GetContainingTypeLib(library, index);
}
void DescribedType::ReleaseTypeAttr(TYPEATTR* attributes) { m_interfaceType->ReleaseTypeAttr(attributes); }
void DescribedType::ReleaseFuncDesc(FUNCDESC* description) { m_interfaceType->ReleaseFuncDesc(description); }
void DescribedType::ReleaseVarDesc(VARDESC* description) { m_interfaceType->ReleaseVarDesc(description); }

} // namespace brannoc::automation
