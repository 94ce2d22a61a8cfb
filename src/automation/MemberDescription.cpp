#include "automation/MemberDescription.h"

#include "values/ComRef.h"
#include "values/Variant.h"

#include <cstdio>

namespace brannoc::automation {
namespace {

struct KindRow {
    VARTYPE type;
    const wchar_t* character;
    const wchar_t* name;
};

const KindRow kKinds[] = {
    {VT_BOOL, L"~", L"Boolean"}, {VT_UI1, L"/", L"Byte"},       {VT_I2, L"%", L"Integer"},
    {VT_I4, L"&", L"Long"},      {VT_R4, L"!", L"Single"},      {VT_R8, L"#", L"Double"},
    {VT_DATE, L"^", L"Date"},    {VT_CY, L"@", L"Currency"},    {VT_BSTR, L"$", L"String"},
    {VT_DISPATCH, L"*", L"Object"}, {VT_UNKNOWN, L"+", L"Unknown"}, {VT_VARIANT, L"?", L"Variant"},
};

struct OtherKind {
    VARTYPE type;
    const wchar_t* text;
};

const OtherKind kOtherKinds[] = {
    {VT_PTR, L"_PTR"},        {VT_LPWSTR, L"_WSTRING"}, {VT_LPSTR, L"_CSTRING"}, {VT_USERDEFINED, L"_UserType"},
    {VT_HRESULT, L"_HRESULT"}, {VT_VOID, L"_void"},      {VT_ERROR, L"_SCODE"},  {VT_I1, L"_signed_char"},
    {VT_I8, L"_signed___int64"}, {VT_UI8, L"_unsigned___int64"}, {VT_EMPTY, L"_Empty"},
    {VT_INT, L"PortInt"},
};

std::wstring NameOfReference(ITypeInfo* type, HREFTYPE reference)
{
    ComRef<ITypeInfo> referenced;
    Bstr name;
    if (FAILED(type->GetRefTypeInfo(reference, referenced.Out())) ||
        FAILED(referenced->GetDocumentation(MEMBERID_NIL, name.Out(), nullptr, nullptr, nullptr)))
        return L"?";
    return std::wstring(name.View());
}

// A type as a type character (asName false) or as " As " and its name.
std::wstring TypeText(ITypeInfo* type, const TYPEDESC& description, bool asName)
{
    if (description.vt == VT_SAFEARRAY && description.lptdesc)
        return TypeText(type, *description.lptdesc, asName) + L"()";
    if (description.vt == VT_PTR && description.lptdesc && description.lptdesc->vt == VT_USERDEFINED)
        return TypeText(type, *description.lptdesc, asName);
    if (description.vt == VT_USERDEFINED)
        return (asName ? L" As " : L" ") + NameOfReference(type, description.hreftype);
    for (const KindRow& row : kKinds)
        if (row.type == description.vt)
            return asName ? std::wstring(L" As ") + row.name : std::wstring(row.character);
    for (const OtherKind& row : kOtherKinds)
        if (row.type == description.vt)
            return (asName ? L" As " : L"") + std::wstring(row.text);
    return L"?";
}

std::wstring IdText(MEMBERID id)
{
    wchar_t text[16];
    std::swprintf(text, 16, L"0x%08X:", static_cast<unsigned>(id));
    return text;
}

std::wstring DefaultText(const PARAMDESC& parameter)
{
    if (!(parameter.wParamFlags & PARAMFLAG_FHASDEFAULT) || !parameter.pparamdescex)
        return {};
    Variant text;
    if (FAILED(VariantChangeTypeEx(&text.Raw(), &parameter.pparamdescex->varDefaultValue, 0x409, 0, VT_BSTR)))
        return {};
    return L" : " + std::wstring(text.StringView());
}

} // namespace

bool IsLeftOut(const std::wstring& name, WORD flags, bool isFunction)
{
    if (isFunction) {
        if (flags & FUNCFLAG_FRESTRICTED)
            return true;
        if (flags & FUNCFLAG_FHIDDEN)
            return true;
        for (const wchar_t* event : {L"Class_Initialize", L"Class_Terminate", L"Form_Initialize", L"Form_Terminate"})
            if (name == event)
                return true;
        return false;
    }
    return (flags & VARFLAG_FHIDDEN) || name.empty();
}

std::wstring DescribeFunction(ITypeInfo* type, const FUNCDESC& function, bool asTypeNames)
{
    BSTR names[64] = {};
    UINT count = 0;
    type->GetNames(function.memid, names, 64, &count);
    std::wstring name = count > 0 && names[0] ? names[0] : L"";
    std::wstring text = IdText(function.memid);
    if (function.funckind == FUNC_STATIC)
        text += L"_[Static]";
    else if (IsLeftOut(name, function.wFuncFlags, true))
        text += L"_";
    text += name;
    const TYPEDESC& result = function.elemdescFunc.tdesc;
    const bool hasResult = result.vt != VT_VOID && result.vt != VT_EMPTY && result.vt != VT_HRESULT;
    if (hasResult && !asTypeNames)
        text += TypeText(type, result, false);
    if (hasResult)
        text += L"(";
    else if (function.cParams > 0)
        text += L" ";
    for (SHORT i = 0; i < function.cParams; ++i) {
        const ELEMDESC& parameter = function.lprgelemdescParam[i];
        if (i > 0)
            text += L", ";
        if (function.cParamsOpt == -1 && i == function.cParams - 1)
            text += L"ParamArray ";
        const bool optional = (parameter.paramdesc.wParamFlags & PARAMFLAG_FOPT) ||
                              (function.cParamsOpt > 0 && i >= function.cParams - function.cParamsOpt);
        if (optional)
            text += L"Optional ";
        UINT nameIndex = static_cast<UINT>(i) + 1;
        if (nameIndex < count && names[nameIndex]) {
            text += names[nameIndex];
        } else {
            wchar_t generated[16];
            std::swprintf(generated, 16, L"Param%02d", i + 1);
            text += generated;
        }
        text += TypeText(type, parameter.tdesc, asTypeNames);
        if (optional)
            text += DefaultText(parameter.paramdesc);
    }
    if (hasResult)
        text += L")";
    if (hasResult && asTypeNames)
        text += TypeText(type, result, true);
    if (function.invkind & INVOKE_PROPERTYGET)
        text += L"=>";
    else if (function.invkind & (INVOKE_PROPERTYPUT | INVOKE_PROPERTYPUTREF))
        text += L"=<";
    for (UINT i = 0; i < count; ++i)
        SysFreeString(names[i]);
    return text;
}

std::wstring DescribeVariable(ITypeInfo* type, const VARDESC& variable, bool asTypeNames)
{
    Bstr name;
    type->GetDocumentation(variable.memid, name.Out(), nullptr, nullptr, nullptr);
    std::wstring text = IdText(variable.memid);
    std::wstring nameText(name.View());
    if (IsLeftOut(nameText, variable.wVarFlags, false))
        text += L"_";
    text += nameText;
    text += TypeText(type, variable.elemdescVar.tdesc, asTypeNames);
    return text;
}

} // namespace brannoc::automation
