#include "host/EventSource.h"

#include "host/AnsiText.h"
#include "values/Variant.h"

#include <ocidl.h>
#include <optional>

namespace brannoc {
namespace {

// Releases a type attribute, function description or names when it goes.
class TypeAttr {
public:
    TypeAttr(ITypeInfo* type) : m_type(type)
    {
        if (FAILED(type->GetTypeAttr(&m_attr)))
            m_attr = nullptr;
    }
    ~TypeAttr()
    {
        if (m_attr)
            m_type->ReleaseTypeAttr(m_attr);
    }
    TypeAttr(const TypeAttr&) = delete;
    TypeAttr& operator=(const TypeAttr&) = delete;
    const TYPEATTR* operator->() const { return m_attr; }
    explicit operator bool() const { return m_attr != nullptr; }

private:
    ITypeInfo* m_type;
    TYPEATTR* m_attr = nullptr;
};

class FuncDesc {
public:
    FuncDesc(ITypeInfo* type, UINT index) : m_type(type)
    {
        if (FAILED(type->GetFuncDesc(index, &m_desc)))
            m_desc = nullptr;
    }
    ~FuncDesc()
    {
        if (m_desc)
            m_type->ReleaseFuncDesc(m_desc);
    }
    FuncDesc(const FuncDesc&) = delete;
    FuncDesc& operator=(const FuncDesc&) = delete;
    const FUNCDESC* operator->() const { return m_desc; }
    explicit operator bool() const { return m_desc != nullptr; }

private:
    ITypeInfo* m_type;
    FUNCDESC* m_desc = nullptr;
};

std::string NameOfUserType(ITypeInfo* context, HREFTYPE reference);

// The language's name of a type description; by-reference pointers are followed by the caller.
std::string TypeName(ITypeInfo* context, const TYPEDESC& type)
{
    switch (type.vt) {
    case VT_I2: return "Integer";
    case VT_I4: case VT_INT: case VT_HRESULT: case VT_UI4: case VT_UINT: case VT_UI2: case VT_I1: return "Long";
    case VT_R4: return "Single";
    case VT_R8: return "Double";
    case VT_CY: return "Currency";
    case VT_DATE: return "Date";
    case VT_BSTR: case VT_LPSTR: case VT_LPWSTR: return "String";
    case VT_DISPATCH: case VT_UNKNOWN: return "Object";
    case VT_BOOL: return "Boolean";
    case VT_UI1: return "Byte";
    case VT_PTR: return type.lptdesc ? TypeName(context, *type.lptdesc) : "Variant";
    case VT_SAFEARRAY: return type.lptdesc ? TypeName(context, *type.lptdesc) : "Variant";
    case VT_USERDEFINED: return NameOfUserType(context, type.hreftype);
    default: return "Variant";
    }
}

// Enumerations are Long, interfaces and classes Object; an alias is its own name for the position
// types a handler converts, else the type it stands for.
std::string NameOfUserType(ITypeInfo* context, HREFTYPE reference)
{
    ComRef<ITypeInfo> type;
    if (FAILED(context->GetRefTypeInfo(reference, type.Out())))
        return "Variant";
    TypeAttr attr(type.Get());
    if (!attr)
        return "Variant";
    switch (attr->typekind) {
    case TKIND_ENUM: return "Long";
    case TKIND_ALIAS: {
        const std::string name = AnsiFromWide(TypeInfoName(type.Get()));
        if (name.rfind("OLE_XPOS_", 0) == 0 || name.rfind("OLE_YPOS_", 0) == 0)
            return name;
        return TypeName(type.Get(), attr->tdescAlias);
    }
    case TKIND_DISPATCH: case TKIND_INTERFACE: case TKIND_COCLASS: return "Object";
    default: return "Variant";
    }
}

std::string ParameterText(ITypeInfo* source, const ELEMDESC& element, const std::wstring& name, bool paramArray)
{
    const TYPEDESC& type = element.tdesc;
    const bool byReference = type.vt == VT_PTR || (element.paramdesc.wParamFlags & PARAMFLAG_FOUT) != 0;
    const bool array = type.vt == VT_SAFEARRAY || (type.vt == VT_PTR && type.lptdesc && type.lptdesc->vt == VT_SAFEARRAY);
    std::string text;
    if (!byReference && !paramArray)
        text += "ByVal ";
    if (element.paramdesc.wParamFlags & PARAMFLAG_FOPT)
        text += "Optional ";
    if (paramArray)
        text += "ParamArray ";
    text += AnsiFromWide(name) + (array ? "()" : "") + " As " + TypeName(source, type);
    return text;
}

} // namespace

std::wstring TypeInfoName(ITypeInfo* type)
{
    Bstr name;
    if (!type || FAILED(type->GetDocumentation(MEMBERID_NIL, name.Out(), nullptr, nullptr, nullptr)))
        return {};
    return std::wstring(name.View());
}

SourceLookup FindDefaultSource(IDispatch* object, ComRef<ITypeInfo>& source)
{
    ComRef<IProvideClassInfo> provider;
    ComRef<ITypeInfo> classInfo;
    if (object && SUCCEEDED(object->QueryInterface(IID_IProvideClassInfo, reinterpret_cast<void**>(provider.Out()))))
        provider->GetClassInfo(classInfo.Out());
    if (!classInfo) {
        UINT count = 0;
        if (!object || FAILED(object->GetTypeInfoCount(&count)) || count == 0)
            return SourceLookup::NoTypeInfo;
        return SourceLookup::NoSource;
    }
    return DefaultSourceOfClass(classInfo.Get(), source);
}

SourceLookup DefaultSourceOfClass(ITypeInfo* classInfo, ComRef<ITypeInfo>& source)
{
    if (!classInfo)
        return SourceLookup::NoSource;
    TypeAttr attr(classInfo);
    if (!attr)
        return SourceLookup::NoSource;
    int chosen = -1;
    for (UINT i = 0; i < attr->cImplTypes; ++i) {
        INT flags = 0;
        if (FAILED(classInfo->GetImplTypeFlags(i, &flags)) || !(flags & IMPLTYPEFLAG_FSOURCE))
            continue;
        if (chosen < 0 || (flags & IMPLTYPEFLAG_FDEFAULT))
            chosen = static_cast<int>(i);
        if (flags & IMPLTYPEFLAG_FDEFAULT)
            break;
    }
    HREFTYPE reference = 0;
    if (chosen < 0 || FAILED(classInfo->GetRefTypeOfImplType(static_cast<UINT>(chosen), &reference)) ||
        FAILED(classInfo->GetRefTypeInfo(reference, source.Out())))
        return SourceLookup::NoSource;
    TypeAttr sourceAttr(source.Get());
    if (!sourceAttr || sourceAttr->typekind != TKIND_DISPATCH)
        return SourceLookup::NotDispatch;
    return SourceLookup::Found;
}

GUID TypeGuidOf(ITypeInfo* type)
{
    TypeAttr attr(type);
    return attr ? attr->guid : GUID_NULL;
}

std::wstring MemberNameOf(ITypeInfo* type, MEMBERID id)
{
    Bstr name;
    if (!type || FAILED(type->GetDocumentation(id, name.Out(), nullptr, nullptr, nullptr)))
        return {};
    return std::wstring(name.View());
}

namespace {

// The declaration of the event procedure for the function at index; nothing for a restricted function,
// a property, or one whose names cannot be read.
std::optional<EventPrototype> PrototypeAt(ITypeInfo* source, UINT index, const std::string& prefix)
{
    FuncDesc function(source, index);
    if (!function || (function->wFuncFlags & FUNCFLAG_FRESTRICTED) || function->invkind != INVOKE_FUNC)
        return std::nullopt;
    BSTR names[33] = {};
    UINT count = 0;
    if (FAILED(source->GetNames(function->memid, names, 33, &count)) || count == 0)
        return std::nullopt;
    const std::wstring event(names[0], SysStringLen(names[0]));
    const bool returnsValue = function->elemdescFunc.tdesc.vt != VT_VOID && function->elemdescFunc.tdesc.vt != VT_HRESULT;
    std::string declaration = std::string(returnsValue ? "Function " : "Sub ") + prefix + "_" + AnsiFromWide(event) + "(";
    for (SHORT p = 0; p < function->cParams; ++p) {
        const std::wstring name = static_cast<UINT>(p + 1) < count && names[p + 1]
                                      ? std::wstring(names[p + 1], SysStringLen(names[p + 1]))
                                      : L"Arg" + std::to_wstring(p + 1);
        const bool paramArray = function->cParamsOpt == -1 && p == function->cParams - 1;
        declaration += (p ? ", " : "") + ParameterText(source, function->lprgelemdescParam[p], name, paramArray);
    }
    declaration += ")";
    if (returnsValue)
        declaration += " As " + TypeName(source, function->elemdescFunc.tdesc);
    for (UINT n = 0; n < count; ++n)
        SysFreeString(names[n]);
    return EventPrototype{event, std::move(declaration)};
}

} // namespace

std::vector<EventPrototype> EventPrototypes(ITypeInfo* source, const std::string& prefix)
{
    std::vector<EventPrototype> events;
    TypeAttr attr(source);
    if (!attr)
        return events;
    for (UINT i = 0; i < attr->cFuncs; ++i) {
        if (std::optional<EventPrototype> event = PrototypeAt(source, i, prefix))
            events.push_back(std::move(*event));
    }
    return events;
}

std::optional<EventPrototype> EventPrototypeOf(ITypeInfo* source, MEMBERID event, const std::string& prefix)
{
    TypeAttr attr(source);
    if (!attr)
        return std::nullopt;
    for (UINT i = 0; i < attr->cFuncs; ++i) {
        FuncDesc function(source, i);
        if (function && function->memid == event)
            return PrototypeAt(source, i, prefix);
    }
    return std::nullopt;
}

} // namespace brannoc
