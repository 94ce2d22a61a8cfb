#include "TypeLibraryWriter.h"
#include <cstdio>

namespace mktypelib {
namespace {

// Each parameter's type description; pointer forms point into the static leaf descriptions.
TYPEDESC s_leaf[] = {
    {{nullptr}, VT_VOID}, {{nullptr}, VT_BOOL}, {{nullptr}, VT_I2}, {{nullptr}, VT_I4}, {{nullptr}, VT_R8},
    {{nullptr}, VT_BSTR}, {{nullptr}, VT_DISPATCH}, {{nullptr}, VT_UNKNOWN}, {{nullptr}, VT_VARIANT},
    {{nullptr}, VT_R4}, {{nullptr}, VT_CY}, {{nullptr}, VT_DATE}, {{nullptr}, VT_UI1},
};
// SAFEARRAY(VARIANT), pointed to by VariantArray parameters.
TYPEDESC s_variantArray = {{&s_leaf[8]}, VT_SAFEARRAY};

TYPEDESC* Leaf(VARTYPE vt)
{
    for (TYPEDESC& desc : s_leaf)
        if (desc.vt == vt)
            return &desc;
    return &s_leaf[0];
}

VARTYPE LeafType(Type type)
{
    switch (type) {
    case Type::Void: return VT_VOID;
    case Type::Bool: return VT_BOOL;
    case Type::Short: return VT_I2;
    case Type::Long: case Type::LongPtr: return VT_I4;
    case Type::Double: return VT_R8;
    case Type::Bstr: return VT_BSTR;
    case Type::Dispatch: return VT_DISPATCH;
    case Type::Unknown: return VT_UNKNOWN;
    case Type::Variant: case Type::VariantPtr: return VT_VARIANT;
    case Type::Float: return VT_R4;
    case Type::Currency: return VT_CY;
    case Type::Date: return VT_DATE;
    case Type::Byte: return VT_UI1;
    case Type::VariantArray: return VT_SAFEARRAY;
    }
    return VT_VOID;
}

bool IsPointer(Type type) { return type == Type::VariantPtr || type == Type::LongPtr || type == Type::VariantArray; }

// A TYPEDESC that is either the leaf itself or a pointer to it.
struct TypeDescHolder {
    TYPEDESC desc{};
    void Set(Type type, bool extraPointer)
    {
        TYPEDESC* leaf = type == Type::VariantArray ? &s_variantArray : Leaf(LeafType(type));
        if (IsPointer(type) || extraPointer) {
            desc.vt = VT_PTR;
            desc.lptdesc = leaf;
        } else {
            desc = *leaf;
        }
    }
};

} // namespace

TypeLibraryWriter::~TypeLibraryWriter()
{
    for (ITypeInfo* info : m_infos)
        info->Release();
    if (m_stdole)
        m_stdole->Release();
    if (m_lib)
        m_lib->Release();
}

bool TypeLibraryWriter::Fail(const wchar_t* what, HRESULT hr)
{
    wchar_t buffer[256];
    swprintf(buffer, 256, L"%ls failed: 0x%08lx", what, static_cast<unsigned long>(hr));
    m_error = buffer;
    return false;
}

bool TypeLibraryWriter::Create(const wchar_t* path, const GUID& id, const wchar_t* name, const wchar_t* help,
                               WORD major, WORD minor, LCID lcid)
{
    HRESULT hr = CreateTypeLib2(SYS_WIN32, path, &m_lib);
    if (FAILED(hr))
        return Fail(L"CreateTypeLib2", hr);
    hr = LoadTypeLib(L"stdole2.tlb", &m_stdole);
    if (FAILED(hr))
        return Fail(L"LoadTypeLib(stdole2.tlb)", hr);
    m_lib->SetGuid(id);
    m_lib->SetName(const_cast<LPOLESTR>(name));
    m_lib->SetDocString(const_cast<LPOLESTR>(help));
    m_lib->SetVersion(major, minor);
    m_lib->SetLcid(lcid);
    return true;
}

ICreateTypeInfo* TypeLibraryWriter::NewTypeInfo(const wchar_t* name, TYPEKIND kind, const GUID* id,
                                                const wchar_t* help)
{
    ICreateTypeInfo* info = nullptr;
    HRESULT hr = m_lib->CreateTypeInfo(const_cast<LPOLESTR>(name), kind, &info);
    if (FAILED(hr)) {
        Fail(name, hr);
        return nullptr;
    }
    if (id)
        info->SetGuid(*id);
    if (help)
        info->SetDocString(const_cast<LPOLESTR>(help));
    return info;
}

bool TypeLibraryWriter::AddFunctions(ICreateTypeInfo* info, const std::vector<Member>& members, bool dispatchOnly)
{
    UINT index = 0;
    for (const Member& member : members) {
        const bool hasRetval = member.result != Type::Void;
        const size_t inputs = member.params.size();
        const size_t total = inputs + ((hasRetval && !dispatchOnly) ? 1 : 0);
        std::vector<TypeDescHolder> types(total);
        std::vector<ELEMDESC> elems(total);
        std::vector<PARAMDESCEX> defaults(total);
        std::vector<const wchar_t*> names;
        names.push_back(member.name);
        for (size_t i = 0; i < inputs; ++i) {
            const Param& param = member.params[i];
            types[i].Set(param.type, false);
            elems[i].tdesc = types[i].desc;
            elems[i].paramdesc.wParamFlags = PARAMFLAG_FIN | (param.optional ? PARAMFLAG_FOPT : 0);
            if (param.hasDefault) {
                defaults[i].cBytes = sizeof(PARAMDESCEX);
                V_VT(&defaults[i].varDefaultValue) = VT_I4;
                V_I4(&defaults[i].varDefaultValue) = param.defaultValue;
                elems[i].paramdesc.pparamdescex = &defaults[i];
                elems[i].paramdesc.wParamFlags |= PARAMFLAG_FHASDEFAULT;
            }
            names.push_back(param.name);
        }
        if (hasRetval && !dispatchOnly) {
            types[inputs].Set(member.result, true);
            elems[inputs].tdesc = types[inputs].desc;
            elems[inputs].paramdesc.wParamFlags = PARAMFLAG_FOUT | PARAMFLAG_FRETVAL;
        }
        FUNCDESC desc{};
        desc.memid = member.id;
        desc.funckind = dispatchOnly ? FUNC_DISPATCH : FUNC_PUREVIRTUAL;
        desc.invkind = member.kind == Kind::Get   ? INVOKE_PROPERTYGET
                       : member.kind == Kind::Put ? INVOKE_PROPERTYPUT
                                                  : INVOKE_FUNC;
        desc.callconv = CC_STDCALL;
        desc.cParams = static_cast<SHORT>(total);
        if (member.varArgs)
            desc.cParamsOpt = -1;
        desc.lprgelemdescParam = total ? elems.data() : nullptr;
        TypeDescHolder resultType;
        if (dispatchOnly)
            resultType.Set(member.result, false);
        else
            resultType.desc.vt = VT_HRESULT;
        desc.elemdescFunc.tdesc = resultType.desc;
        desc.wFuncFlags = member.restricted ? FUNCFLAG_FRESTRICTED : 0;
        HRESULT hr = info->AddFuncDesc(index, &desc);
        if (FAILED(hr))
            return Fail(member.name, hr);
        // A put's value parameter is not named (the property's own name stands for it).
        UINT nameCount = static_cast<UINT>(names.size());
        if (member.kind == Kind::Put && nameCount > 1)
            --nameCount;
        hr = info->SetFuncAndParamNames(index, const_cast<LPOLESTR*>(names.data()), nameCount);
        if (FAILED(hr))
            return Fail(member.name, hr);
        if (member.help)
            info->SetFuncDocString(index, const_cast<LPOLESTR>(member.help));
        ++index;
    }
    return true;
}

ITypeInfo* TypeLibraryWriter::AddDualInterface(const wchar_t* name, const GUID& id, const wchar_t* help,
                                               const std::vector<Member>& members)
{
    return AddDispatchBased(name, TKIND_INTERFACE, id, help, members);
}

ITypeInfo* TypeLibraryWriter::AddDispInterface(const wchar_t* name, const GUID& id, const wchar_t* help,
                                               const std::vector<Member>& members)
{
    return AddDispatchBased(name, TKIND_DISPATCH, id, help, members);
}

ITypeInfo* TypeLibraryWriter::AddDispatchBased(const wchar_t* name, TYPEKIND kind, const GUID& id,
                                               const wchar_t* help, const std::vector<Member>& members)
{
    ICreateTypeInfo* info = NewTypeInfo(name, kind, &id, help);
    if (!info)
        return nullptr;
    ITypeInfo* dispatch = nullptr;
    HREFTYPE href = 0;
    bool ok = SUCCEEDED(m_stdole->GetTypeInfoOfGuid(IID_IDispatch, &dispatch)) &&
              SUCCEEDED(info->AddRefTypeInfo(dispatch, &href)) && SUCCEEDED(info->AddImplType(0, href));
    if (dispatch)
        dispatch->Release();
    const bool dual = kind == TKIND_INTERFACE;
    if (dual)
        info->SetTypeFlags(TYPEFLAG_FDUAL | TYPEFLAG_FOLEAUTOMATION);
    ok = ok && AddFunctions(info, members, !dual) && SUCCEEDED(info->LayOut());
    ITypeInfo* result = nullptr;
    if (ok)
        info->QueryInterface(IID_ITypeInfo, reinterpret_cast<void**>(&result));
    else
        Fail(name, E_FAIL);
    info->Release();
    if (result)
        m_infos.push_back(result);
    return result;
}

bool TypeLibraryWriter::AddCoClass(const wchar_t* name, const GUID& id, const wchar_t* help,
                                   ITypeInfo* defaultInterface, bool canCreate)
{
    ICreateTypeInfo* info = NewTypeInfo(name, TKIND_COCLASS, &id, help);
    if (!info || !defaultInterface)
        return false;
    HREFTYPE href = 0;
    bool ok = SUCCEEDED(info->AddRefTypeInfo(defaultInterface, &href)) && SUCCEEDED(info->AddImplType(0, href)) &&
              SUCCEEDED(info->SetImplTypeFlags(0, IMPLTYPEFLAG_FDEFAULT));
    info->SetTypeFlags(canCreate ? TYPEFLAG_FCANCREATE : 0);
    ok = ok && SUCCEEDED(info->LayOut());
    info->Release();
    return ok || Fail(name, E_FAIL);
}

bool TypeLibraryWriter::AddEnum(const wchar_t* name, const GUID* id, const std::vector<Constant>& values)
{
    ICreateTypeInfo* info = NewTypeInfo(name, TKIND_ENUM, id, nullptr);
    if (!info)
        return false;
    UINT index = 0;
    for (const Constant& constant : values) {
        VARIANT value;
        VariantInit(&value);
        value.vt = VT_I4;
        value.lVal = constant.value;
        VARDESC desc{};
        desc.memid = 0x40000000 + static_cast<MEMBERID>(index);
        desc.lpvarValue = &value;
        desc.elemdescVar.tdesc.vt = VT_I4;
        desc.varkind = VAR_CONST;
        if (FAILED(info->AddVarDesc(index, &desc)) ||
            FAILED(info->SetVarName(index, const_cast<LPOLESTR>(constant.name)))) {
            info->Release();
            return Fail(constant.name, E_FAIL);
        }
        ++index;
    }
    bool ok = SUCCEEDED(info->LayOut());
    info->Release();
    return ok || Fail(name, E_FAIL);
}

bool TypeLibraryWriter::AddModule(const wchar_t* name, const wchar_t* dllName, const std::vector<Constant>& values)
{
    ICreateTypeInfo* info = NewTypeInfo(name, TKIND_MODULE, nullptr, nullptr);
    if (!info)
        return false;
    UINT index = 0;
    for (const Constant& constant : values) {
        VARIANT value;
        VariantInit(&value);
        VARDESC desc{};
        if (constant.text) {
            value.vt = VT_BSTR;
            value.bstrVal = SysAllocString(constant.text);
            desc.elemdescVar.tdesc.vt = VT_BSTR;
        } else {
            value.vt = VT_I4;
            value.lVal = constant.value;
            desc.elemdescVar.tdesc.vt = VT_I4;
        }
        desc.memid = 0x40000000 + static_cast<MEMBERID>(index);
        desc.lpvarValue = &value;
        desc.varkind = VAR_CONST;
        HRESULT hr = info->AddVarDesc(index, &desc);
        VariantClear(&value);
        if (FAILED(hr) || FAILED(info->SetVarName(index, const_cast<LPOLESTR>(constant.name)))) {
            info->Release();
            return Fail(constant.name, FAILED(hr) ? hr : E_FAIL);
        }
        ++index;
    }
    bool ok = SUCCEEDED(info->LayOut());
    info->Release();
    return ok || Fail(name, E_FAIL);
}

bool TypeLibraryWriter::Save()
{
    HRESULT hr = m_lib->SaveAllChanges();
    return SUCCEEDED(hr) || Fail(L"SaveAllChanges", hr);
}

} // namespace mktypelib
