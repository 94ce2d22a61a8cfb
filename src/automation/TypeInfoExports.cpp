// Type information of the OA_ family: loading type libraries and types, finding member ids and names,
// and the one-line member descriptions (MemberDescription) the object browser and completion use.
#include "automation/AnsiBstr.h"
#include "automation/DescribedDispatch.h"
#include "automation/DescribedType.h"
#include "automation/ExportBoundary.h"
#include "automation/MemberDescription.h"
#include "host/AnsiText.h"
#include "values/ComRef.h"
#include "values/Variant.h"

#include "brannoc.h"

#include <ocidl.h>
#include <string>

using namespace brannoc;
using namespace brannoc::automation;

namespace {

constexpr LCID kLocale = 0x409;

std::wstring Wide(LPCSTR text) { return text ? WideFromAnsi(text) : std::wstring(); }
std::wstring Wide(LPCWSTR text) { return text ? std::wstring(text) : std::wstring(); }

BSTR WideResult(const std::wstring& text) { return SysAllocStringLen(text.data(), static_cast<UINT>(text.size())); }

// The type information of an object, or the object itself when it is type information.
ComRef<ITypeInfo> TypeOf(IUnknown* typeOrObject)
{
    return ComRef<ITypeInfo>::Adopt(OA_GetType(typeOrObject));
}

ITypeInfo* LoadType(ITypeLib* library, const std::wstring& guidText)
{
    GUID id;
    ITypeInfo* type = nullptr;
    if (!library || FAILED(CLSIDFromString(const_cast<LPOLESTR>(guidText.c_str()), &id)) ||
        FAILED(library->GetTypeInfoOfGuid(id, &type)))
        return nullptr;
    return type;
}

DISPID IdOfNames(IDispatch* object, std::wstring first, std::wstring second, UINT count)
{
    if (!object || first.empty())
        return DISPID_UNKNOWN;
    LPOLESTR names[2] = {first.data(), second.data()};
    DISPID ids[2] = {DISPID_UNKNOWN, DISPID_UNKNOWN};
    if (FAILED(object->GetIDsOfNames(IID_NULL, names, count, kLocale, ids)))
        return DISPID_UNKNOWN;
    return ids[count - 1];
}

std::wstring MemberName(IUnknown* typeOrObject, MEMBERID id, bool& found)
{
    found = false;
    ComRef<ITypeInfo> type = TypeOf(typeOrObject);
    Bstr name;
    if (!type || FAILED(type->GetDocumentation(id, name.Out(), nullptr, nullptr, nullptr)))
        return {};
    found = true;
    return std::wstring(name.View());
}

// A member's own name: asked for by its names, since the documentation of member id -1 is the type's.
std::wstring NameOfMember(ITypeInfo* type, MEMBERID id)
{
    BSTR names[1] = {nullptr};
    UINT count = 0;
    if (FAILED(type->GetNames(id, names, 1, &count)) || count == 0)
        return {};
    Bstr name;
    *name.Out() = names[0];
    return std::wstring(name.View());
}

std::wstring MemberNames(IUnknown* typeOrObject, const std::wstring& prefix)
{
    ComRef<ITypeInfo> type = TypeOf(typeOrObject);
    TYPEATTR* attributes = nullptr;
    if (!type || FAILED(type->GetTypeAttr(&attributes)))
        return {};
    const WORD functions = attributes->cFuncs;
    const WORD variables = attributes->cVars;
    type->ReleaseTypeAttr(attributes);
    std::wstring text;
    for (UINT i = 0; i < functions; ++i) {
        FUNCDESC* function = nullptr;
        if (FAILED(type->GetFuncDesc(i, &function)))
            continue;
        std::wstring nameText = NameOfMember(type.Get(), function->memid);
        if (!IsLeftOut(nameText, function->wFuncFlags, true))
            text += prefix + nameText + L" ";
        type->ReleaseFuncDesc(function);
    }
    for (UINT i = 0; i < variables; ++i) {
        VARDESC* variable = nullptr;
        if (FAILED(type->GetVarDesc(i, &variable)))
            continue;
        std::wstring nameText = NameOfMember(type.Get(), variable->memid);
        if (!IsLeftOut(nameText, variable->wVarFlags, false))
            text += prefix + nameText + L" ";
        type->ReleaseVarDesc(variable);
    }
    return text;
}

// The index-th member's description, functions first; false past the last member.
bool TypeDescription(IUnknown* typeOrObject, LONG index, LONG flags, std::wstring& text)
{
    ComRef<ITypeInfo> type = TypeOf(typeOrObject);
    TYPEATTR* attributes = nullptr;
    if (!type || index < 0 || FAILED(type->GetTypeAttr(&attributes)))
        return false;
    const LONG functions = attributes->cFuncs;
    const LONG variables = attributes->cVars;
    type->ReleaseTypeAttr(attributes);
    if (index < functions) {
        FUNCDESC* function = nullptr;
        if (FAILED(type->GetFuncDesc(static_cast<UINT>(index), &function)))
            return false;
        text = DescribeFunction(type.Get(), *function, flags != 0);
        type->ReleaseFuncDesc(function);
        return true;
    }
    if (index - functions < variables) {
        VARDESC* variable = nullptr;
        if (FAILED(type->GetVarDesc(static_cast<UINT>(index - functions), &variable)))
            return false;
        text = DescribeVariable(type.Get(), *variable, flags != 0);
        type->ReleaseVarDesc(variable);
        return true;
    }
    return false;
}

// The function of that name, else the property get and put joined by CR LF; false when none.
bool CompDescription(ITypeComp* comp, const std::wstring& name, LONG flags, std::wstring& text)
{
    if (!comp || name.empty())
        return false;
    ULONG hash = LHashValOfNameSys(SYS_WIN32, 1033, name.c_str());
    std::wstring get, put;
    for (WORD kind : {INVOKE_FUNC, INVOKE_PROPERTYGET, INVOKE_PROPERTYPUT, INVOKE_PROPERTYPUTREF}) {
        ComRef<ITypeInfo> type;
        DESCKIND found = DESCKIND_NONE;
        BINDPTR binding{};
        if (FAILED(comp->Bind(const_cast<LPOLESTR>(name.c_str()), hash, kind, type.Out(), &found, &binding)))
            continue;
        if (found == DESCKIND_FUNCDESC) {
            std::wstring description = DescribeFunction(type.Get(), *binding.lpfuncdesc, flags != 0);
            const INVOKEKIND foundKind = binding.lpfuncdesc->invkind;
            type->ReleaseFuncDesc(binding.lpfuncdesc);
            if (foundKind == INVOKE_FUNC) {
                text = description;
                return true;
            }
            if (foundKind == INVOKE_PROPERTYGET && get.empty())
                get = description;
            else if (foundKind != INVOKE_PROPERTYGET && put.empty())
                put = description;
        } else if (found == DESCKIND_VARDESC) {
            text = DescribeVariable(type.Get(), *binding.lpvardesc, flags != 0);
            type->ReleaseVarDesc(binding.lpvardesc);
            return true;
        } else if (found == DESCKIND_TYPECOMP && binding.lptcomp) {
            binding.lptcomp->Release();
        }
    }
    if (get.empty() && put.empty())
        return false;
    text = get.empty() ? put : put.empty() ? get : get + L"\r\n" + put;
    return true;
}

bool SameType(ITypeInfo* a, ITypeInfo* b)
{
    TYPEATTR* left = nullptr;
    TYPEATTR* right = nullptr;
    bool same = false;
    if (SUCCEEDED(a->GetTypeAttr(&left)) && SUCCEEDED(b->GetTypeAttr(&right)))
        same = IsEqualGUID(left->guid, right->guid) && !IsEqualGUID(left->guid, GUID_NULL);
    if (left)
        a->ReleaseTypeAttr(left);
    if (right)
        b->ReleaseTypeAttr(right);
    return same;
}

// The class of type's library whose default interface is type.
ComRef<ITypeInfo> ClassServedBy(ITypeInfo* type)
{
    ComRef<ITypeLib> library;
    UINT index = 0;
    if (FAILED(type->GetContainingTypeLib(library.Out(), &index)))
        return {};
    const UINT count = library->GetTypeInfoCount();
    for (UINT i = 0; i < count; ++i) {
        TYPEKIND kind;
        ComRef<ITypeInfo> candidate;
        if (FAILED(library->GetTypeInfoType(i, &kind)) || kind != TKIND_COCLASS ||
            FAILED(library->GetTypeInfo(i, candidate.Out())))
            continue;
        ComRef<ITypeInfo> served = DispatchTypeOf(candidate.Get());
        if (served && SameType(served.Get(), type))
            return candidate;
    }
    return {};
}

} // namespace

extern "C" {

ITypeLib* __stdcall OA_LoadLib(HMODULE module)
{
    return AtExportBoundary<ITypeLib*>(nullptr, [&]() -> ITypeLib* {
        wchar_t path[MAX_PATH] = {};
        if (!GetModuleFileNameW(module, path, MAX_PATH))
            return nullptr;
        ITypeLib* library = nullptr;
        if (SUCCEEDED(LoadTypeLibEx(path, REGKIND_NONE, &library)))
            return library;
        std::wstring other(path);
        size_t dot = other.find_last_of(L'.');
        size_t slash = other.find_last_of(L"\\/");
        if (dot != std::wstring::npos && (slash == std::wstring::npos || dot > slash))
            other.erase(dot + 1);
        else
            other += L".";
        other += L"TLB";
        if (SUCCEEDED(LoadTypeLibEx(other.c_str(), REGKIND_NONE, &library)))
            return library;
        return nullptr;
    });
}

ITypeInfo* __stdcall OA_LoadType_A(ITypeLib* library, LPCSTR guidText)
{
    return AtExportBoundary<ITypeInfo*>(nullptr, [&] { return LoadType(library, Wide(guidText)); });
}
ITypeInfo* __stdcall OA_LoadType_W(ITypeLib* library, LPCWSTR guidText)
{
    return AtExportBoundary<ITypeInfo*>(nullptr, [&] { return LoadType(library, Wide(guidText)); });
}

ITypeInfo* __stdcall OA_GetType(IUnknown* object)
{
    if (!object)
        return nullptr;
    ComRef<IDispatch> dispatch;
    ITypeInfo* type = nullptr;
    if (SUCCEEDED(object->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(dispatch.Out()))) &&
        SUCCEEDED(dispatch->GetTypeInfo(0, kLocale, &type)) && type)
        return type;
    if (SUCCEEDED(object->QueryInterface(IID_ITypeInfo, reinterpret_cast<void**>(&type))))
        return type;
    return nullptr;
}

// The class type: from the object's IProvideClassInfo, else the class a description built, else the class
// of the object's type library whose default interface is the object's type.
ITypeInfo* __stdcall OA_GetCoclassType(IUnknown* object)
{
    if (!object)
        return nullptr;
    ComRef<IProvideClassInfo> provider;
    ITypeInfo* type = nullptr;
    if (SUCCEEDED(object->QueryInterface(IID_IProvideClassInfo, reinterpret_cast<void**>(provider.Out()))) &&
        SUCCEEDED(provider->GetClassInfo(&type)))
        return type;
    ComRef<ITypeInfo> own = TypeOf(object);
    if (!own)
        return nullptr;
    if (DescribedType* described = DescribedType::From(own.Get()))
        return ComRef<ITypeInfo>::Share(described->ClassType()).Detach();
    return ClassServedBy(own.Get()).Detach();
}

ITypeInfo* __stdcall OA_GetDispatchType(ITypeInfo* type) { return DispatchTypeOf(type).Detach(); }

DISPID __stdcall OA_GetDispatchIDA(IDispatch* object, LPCSTR name)
{
    return AtExportBoundary<DISPID>(DISPID_UNKNOWN, [&] { return IdOfNames(object, Wide(name), L"", 1); });
}
DISPID __stdcall OA_GetDispatchIDW(IDispatch* object, LPCWSTR name)
{
    return AtExportBoundary<DISPID>(DISPID_UNKNOWN, [&] { return IdOfNames(object, Wide(name), L"", 1); });
}

DISPID __stdcall OA_GetDispatchID2A(IDispatch* object, LPCSTR member, LPCSTR parameter)
{
    return AtExportBoundary<DISPID>(DISPID_UNKNOWN, [&]() -> DISPID {
        return parameter ? IdOfNames(object, Wide(member), Wide(parameter), 2) : DISPID_UNKNOWN;
    });
}

DISPID __stdcall OA_GetDispatchID2W(IDispatch* object, LPCWSTR member, LPCWSTR parameter)
{
    return AtExportBoundary<DISPID>(DISPID_UNKNOWN, [&]() -> DISPID {
        return parameter ? IdOfNames(object, Wide(member), Wide(parameter), 2) : DISPID_UNKNOWN;
    });
}

BSTR __stdcall OA_GetDispatchNameA(IUnknown* typeOrObject, MEMBERID id)
{
    return AtExportBoundary<BSTR>(nullptr, [&]() -> BSTR {
        bool found = false;
        std::wstring name = MemberName(typeOrObject, id, found);
        return found ? AnsiBstrFromWide(name) : nullptr;
    });
}

BSTR __stdcall OA_GetDispatchNameW(IUnknown* typeOrObject, MEMBERID id)
{
    return AtExportBoundary<BSTR>(nullptr, [&]() -> BSTR {
        bool found = false;
        std::wstring name = MemberName(typeOrObject, id, found);
        return found ? WideResult(name) : nullptr;
    });
}

BSTR __stdcall OA_GetDispatchNamesA(IUnknown* typeOrObject, LPCSTR prefix)
{
    return AtExportBoundary<BSTR>(nullptr, [&]() -> BSTR {
        return AnsiBstrFromWide(MemberNames(typeOrObject, Wide(prefix)));
    });
}

BSTR __stdcall OA_GetDispatchNamesW(IUnknown* typeOrObject, LPCWSTR prefix)
{
    return AtExportBoundary<BSTR>(nullptr, [&]() -> BSTR {
        return WideResult(MemberNames(typeOrObject, Wide(prefix)));
    });
}

BSTR __stdcall OA_GetTypeDescA(IUnknown* typeOrObject, LONG index, LONG flags)
{
    return AtExportBoundary<BSTR>(nullptr, [&]() -> BSTR {
        std::wstring text;
        return TypeDescription(typeOrObject, index, flags, text) ? AnsiBstrFromWide(text) : nullptr;
    });
}

BSTR __stdcall OA_GetTypeDescW(IUnknown* typeOrObject, LONG index, LONG flags)
{
    return AtExportBoundary<BSTR>(nullptr, [&]() -> BSTR {
        std::wstring text;
        return TypeDescription(typeOrObject, index, flags, text) ? WideResult(text) : nullptr;
    });
}

BSTR __stdcall OA_GetTypeHelpFileW(IUnknown* typeOrObject, MEMBERID id, DWORD* helpContext)
{
    ComRef<ITypeInfo> type = TypeOf(typeOrObject);
    BSTR file = nullptr;
    DWORD context = 0;
    if (!type || FAILED(type->GetDocumentation(id, nullptr, nullptr, &context, &file)))
        return nullptr;
    if (helpContext)
        *helpContext = context;
    return file ? file : SysAllocString(L"");
}

BSTR __stdcall OA_GetTypeHelpFileA(IUnknown* typeOrObject, MEMBERID id, DWORD* helpContext)
{
    return AtExportBoundary<BSTR>(nullptr, [&]() -> BSTR {
        Bstr file;
        file.Attach(OA_GetTypeHelpFileW(typeOrObject, id, helpContext));
        return file.Get() ? AnsiBstrFromWide(file.View()) : nullptr;
    });
}

ITypeComp* __stdcall OA_GetComp(IUnknown* object)
{
    ComRef<ITypeInfo> type = TypeOf(object);
    ITypeComp* comp = nullptr;
    if (!type || FAILED(type->GetTypeComp(&comp)))
        return nullptr;
    return comp;
}

BSTR __stdcall OA_GetCompDescA(ITypeComp* comp, LPCSTR name, LONG flags)
{
    return AtExportBoundary<BSTR>(nullptr, [&]() -> BSTR {
        std::wstring text;
        return CompDescription(comp, Wide(name), flags, text) ? AnsiBstrFromWide(text) : nullptr;
    });
}

BSTR __stdcall OA_GetCompDescW(ITypeComp* comp, LPCWSTR name, LONG flags)
{
    return AtExportBoundary<BSTR>(nullptr, [&]() -> BSTR {
        std::wstring text;
        return CompDescription(comp, Wide(name), flags, text) ? WideResult(text) : nullptr;
    });
}

} // extern "C"
