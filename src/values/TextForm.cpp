#include "values/TextForm.h"

#include "host/ThisModule.h"
#include "values/ComRef.h"
#include "values/Conversion.h"
#include "values/ValueError.h"

#include <cstdio>

namespace brannoc {

namespace {

enum class Form { kPrint, kWrite, kDebug };

void AppendNumber(std::wstring& out, long number) { out += std::to_wstring(number); }

void AppendAddress(std::wstring& out, const void* address)
{
    wchar_t buffer[16];
    std::swprintf(buffer, std::size(buffer), L"0x%08X", static_cast<unsigned>(reinterpret_cast<UINT_PTR>(address)));
    out += buffer;
}

bool AppendText(std::wstring& out, const Variant& value, TextMode mode)
{
    Bstr text;
    if (!ToText(value, mode, text))
        return false;
    out += text.View();
    return true;
}

wchar_t TypeCharacter(VARTYPE tag)
{
    switch (tag) {
    case VT_I2: return L'%';
    case VT_I4: return L'&';
    case VT_R4: return L'!';
    case VT_R8: return L'#';
    case VT_CY: return L'@';
    default: return 0;
    }
}

// The name a record description gives.
std::wstring RecordTypeName(IRecordInfo* info)
{
    if (!info)
        return std::wstring(kUndescribedRecordName);
    Bstr text;
    if (SUCCEEDED(info->GetName(text.Out())))
        return std::wstring(text.View());
    return L"?";
}

void AppendArray(std::wstring& out, SAFEARRAY* array, VARTYPE elementTag)
{
    out += L'(';
    UINT dimensions = array ? SafeArrayGetDim(array) : 0;
    for (UINT d = 1; d <= dimensions; ++d) {
        LONG lower = 0, upper = -1;
        SafeArrayGetLBound(array, d, &lower);
        SafeArrayGetUBound(array, d, &upper);
        if (d > 1)
            out += L", ";
        AppendNumber(out, lower);
        out += L" To ";
        AppendNumber(out, upper);
    }
    out += L") As ";
    if (elementTag == VT_RECORD) {
        ComRef<IRecordInfo> info;
        if (array)
            SafeArrayGetRecordInfo(array, info.Out());
        out += RecordTypeName(info.Get());
    } else {
        out += KindName(elementTag);
    }
}

// The form of a resolved-by-reference value; objects are replaced by their default value first.
bool WriteForm(std::wstring& out, const Variant& source, Form form)
{
    const VARIANT& raw = *FollowByRefChain(&source.Raw());
    VARTYPE tag = raw.vt & VT_TYPEMASK;
    bool isArray = (raw.vt & VT_ARRAY) != 0;
    if (isArray) {
        if (form != Form::kDebug)
            return RaiseValueError(kErrorTypeMismatch);
        SAFEARRAY* array = (raw.vt & VT_BYREF) ? (raw.pparray ? *raw.pparray : nullptr) : raw.parray;
        AppendArray(out, array, tag);
        return true;
    }
    Variant value;
    if (!value.CopyIndirectFrom(raw))
        return RaiseValueError(kErrorAutomation);
    switch (tag) {
    case VT_EMPTY:
        if (form == Form::kDebug)
            out += L"Empty";
        return true;
    case VT_NULL:
        out += form == Form::kPrint ? LoadResourceString(11100) : form == Form::kWrite ? L"#NULL#" : L"Null";
        return true;
    case VT_I2: case VT_I4: case VT_R4: case VT_R8: case VT_CY: case VT_DECIMAL: case VT_UI1:
        if (form == Form::kPrint) {
            if (!IsNegative(value))
                out += L' ';
            return AppendText(out, value, TextMode::kLocale);
        }
        if (!AppendText(out, value, TextMode::kInvariant))
            return false;
        if (form == Form::kDebug && TypeCharacter(tag))
            out += TypeCharacter(tag);
        return true;
    case VT_DATE:
        if (form == Form::kPrint)
            return AppendText(out, value, TextMode::kLocale);
        out += L'#';
        if (!AppendText(out, value, TextMode::kInvariant))
            return false;
        out += L'#';
        return true;
    case VT_BOOL:
        if (form == Form::kWrite)
            out += value.Boolean() ? L"#TRUE#" : L"#FALSE#";
        else
            out += value.Boolean() ? L"True" : L"False";
        return true;
    case VT_BSTR:
        if (form == Form::kPrint)
            out += value.StringView();
        else
            WriteQuoted(out, value.StringView());
        return true;
    case VT_ERROR: {
        long number = static_cast<long>(value.Error() & 0xFFFF);
        if (form == Form::kPrint) {
            out += LoadResourceString(11103);
            AppendNumber(out, number);
        } else if (form == Form::kWrite) {
            out += L"#ERROR ";
            AppendNumber(out, number);
            out += L'#';
        } else if (value.Error() != kMissingArgumentStatus) {
            out += L"Error ";
            AppendNumber(out, number);
        }
        return true;
    }
    case VT_DISPATCH:
        if (form == Form::kDebug) {
            if (!value.Object()) {
                out += L"Nothing";
                return true;
            }
            out += L'[';
            out += ObjectTypeName(value.Object());
            out += L'@';
            AppendAddress(out, value.Object());
            out += L']';
            return true;
        }
        if (!Resolve(value))
            return false;
        return WriteForm(out, value, form);
    case VT_UNKNOWN:
        if (form != Form::kDebug)
            return RaiseValueError(kErrorTypeMismatch);
        if (!raw.punkVal) {
            out += L"[Unknown@Nothing]";
            return true;
        }
        out += L"[Unknown@";
        AppendAddress(out, value.Raw().punkVal);
        out += L']';
        return true;
    case VT_RECORD:
        if (form != Form::kDebug)
            return RaiseValueError(kErrorTypeMismatch);
        out += L'{';
        out += RecordTypeName(raw.pRecInfo);
        out += L'@';
        AppendAddress(out, raw.pvRecord);
        out += L'}';
        return true;
    default:
        return RaiseValueError(kErrorTypeMismatch);
    }
}

} // namespace

bool WritePrint(std::wstring& out, const Variant& value) { return WriteForm(out, value, Form::kPrint); }
bool WriteWrite(std::wstring& out, const Variant& value) { return WriteForm(out, value, Form::kWrite); }
bool WriteDebug(std::wstring& out, const Variant& value) { return WriteForm(out, value, Form::kDebug); }

void WriteQuoted(std::wstring& out, std::wstring_view text)
{
    if (text.empty()) {
        out += L"\"\"";
        return;
    }
    // Pass the text through the ANSI code page, so characters it cannot hold show as that page does.
    std::wstring ansi(text);
    int bytes = WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr,
                                    nullptr);
    if (bytes > 0) {
        std::string narrow(static_cast<size_t>(bytes), '\0');
        WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), narrow.data(), bytes, nullptr,
                            nullptr);
        int chars = MultiByteToWideChar(CP_ACP, 0, narrow.data(), bytes, nullptr, 0);
        ansi.assign(static_cast<size_t>(chars), L'\0');
        MultiByteToWideChar(CP_ACP, 0, narrow.data(), bytes, ansi.data(), chars);
    }
    bool first = true;
    size_t i = 0;
    while (i < ansi.size()) {
        if (!first)
            out += L" & ";
        first = false;
        size_t j = i;
        if (ansi[i] == L'\0') {
            while (j < ansi.size() && ansi[j] == L'\0')
                ++j;
            if (j - i == 1) {
                out += L"vbNullChar";
            } else {
                out += L"String(";
                out += std::to_wstring(j - i);
                out += L",0)";
            }
        } else {
            out += L'"';
            while (j < ansi.size() && ansi[j] != L'\0') {
                if (ansi[j] == L'"')
                    out += L'"';
                out += ansi[j];
                ++j;
            }
            out += L'"';
        }
        i = j;
    }
}

namespace {
ObjectNamer s_objectNamer = nullptr;
} // namespace

ObjectNamer SetObjectNamer(ObjectNamer namer)
{
    const ObjectNamer previous = s_objectNamer;
    s_objectNamer = namer;
    return previous;
}

std::wstring ObjectTypeName(IUnknown* object)
{
    std::wstring name;
    if (!object)
        return L"Nothing";
    if (s_objectNamer && s_objectNamer(object, name))
        return name;
    name = L"Object";
    ComRef<IDispatch> dispatch;
    if (FAILED(object->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(dispatch.Out()))) || !dispatch)
        return name;
    ComRef<ITypeInfo> info;
    if (SUCCEEDED(dispatch->GetTypeInfo(0, EngineLocale(), info.Out())) && info) {
        Bstr text;
        if (SUCCEEDED(info->GetDocumentation(MEMBERID_NIL, text.Out(), nullptr, nullptr, nullptr)) && text.Length()) {
            std::wstring_view typeName = text.View();
            if (typeName.size() > 1 && typeName[0] == L'_')
                typeName.remove_prefix(1);
            name.assign(typeName);
        }
    }
    return name;
}

std::wstring_view KindName(VARTYPE tag)
{
    switch (tag & VT_TYPEMASK) {
    case VT_EMPTY: return L"Empty";
    case VT_NULL: return L"Null";
    case VT_I2: return L"Integer";
    case VT_I4: return L"Long";
    case VT_R4: return L"Single";
    case VT_R8: return L"Double";
    case VT_CY: return L"Currency";
    case VT_DATE: return L"Date";
    case VT_BSTR: return L"String";
    case VT_DISPATCH: return L"Object";
    case VT_ERROR: return L"Error";
    case VT_BOOL: return L"Boolean";
    case VT_VARIANT: return L"Variant";
    case VT_UNKNOWN: return L"DataObject";
    case VT_DECIMAL: return L"Decimal";
    case VT_UI1: return L"Byte";
    case VT_RECORD: return L"UserDefinedType";
    default: return L"Unknown";
    }
}

} // namespace brannoc
