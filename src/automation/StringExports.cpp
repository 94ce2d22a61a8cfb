// String helpers of the OA_ family: wide BSTRs, ANSI text in byte-length BSTRs, conversions between
// the two (process ANSI code page) and the wide C string functions. Null or empty input text gives an
// empty, not null, string.
#include "automation/AnsiBstr.h"
#include "automation/ExportBoundary.h"
#include "host/AnsiText.h"

#include "brannoc.h"

#include <cwchar>

using namespace brannoc;
using namespace brannoc::automation;

namespace {

std::string_view BytesOf(LPCSTR text) { return text ? std::string_view(text) : std::string_view(); }
std::string_view BytesOf(LPCSTR text, UINT length)
{
    return text ? std::string_view(text, length) : std::string_view();
}

// Replaces *target by replacement when it was made; 0 keeps the old string.
INT Replace(BSTR* target, BSTR replacement)
{
    if (!target || !replacement) {
        SysFreeString(replacement);
        return 0;
    }
    SysFreeString(*target);
    *target = replacement;
    return 1;
}

} // namespace

extern "C" {

BSTR __stdcall OA_SysAllocNullString(void) { return SysAllocString(L""); }

BSTR __stdcall OA_SysAllocString(LPCWSTR text) { return SysAllocString(text ? text : L""); }

BSTR __stdcall OA_SysAllocStringLen(LPCWSTR text, UINT length) { return SysAllocStringLen(text, length); }

INT __stdcall OA_SysReAllocString(BSTR* text, LPCWSTR value)
{
    if (!text)
        return 0;
    if (!value || !*value)
        return Replace(text, SysAllocString(L""));
    return SysReAllocString(text, value);
}

INT __stdcall OA_SysReAllocStringLen(BSTR* text, LPCWSTR value, UINT length)
{
    return text ? SysReAllocStringLen(text, value, length) : 0;
}

void __stdcall OA_SysFreeString(BSTR text) { SysFreeString(text); }

UINT __stdcall OA_SysStringLen(BSTR text) { return text ? SysStringLen(text) : 0; }

BSTR __stdcall OA_SysDupString(BSTR text)
{
    return text ? SysAllocStringByteLen(reinterpret_cast<LPCSTR>(text), SysStringByteLen(text)) : nullptr;
}

// Character codes up to the shorter length, then the length difference.
INT __stdcall OA_SysCmp(BSTR a, BSTR b)
{
    return AtExportBoundary<INT>(INT(0), [&]() -> INT {
        std::wstring_view left = WideChars(a);
        std::wstring_view right = WideChars(b);
        size_t common = left.size() < right.size() ? left.size() : right.size();
        for (size_t i = 0; i < common; ++i)
            if (left[i] != right[i])
                return static_cast<INT>(left[i]) - static_cast<INT>(right[i]);
        return static_cast<INT>(left.size()) - static_cast<INT>(right.size());
    });
}

BSTR __stdcall OA_SysAllocStringA(LPCSTR text)
{
    return AtExportBoundary<BSTR>(nullptr, [&] { return AllocateAnsiBstr(BytesOf(text)); });
}

BSTR __stdcall OA_SysAllocStringLenA(LPCSTR text, UINT length)
{
    return SysAllocStringByteLen(text, length);
}

INT __stdcall OA_SysReAllocStringA(BSTR* text, LPCSTR value)
{
    return AtExportBoundary<INT>(INT(0), [&] { return Replace(text, AllocateAnsiBstr(BytesOf(value))); });
}

INT __stdcall OA_SysReAllocStringLenA(BSTR* text, LPCSTR value, UINT length)
{
    return Replace(text, SysAllocStringByteLen(value, length));
}

void __stdcall OA_SysFreeStringA(BSTR text) { SysFreeString(text); }

UINT __stdcall OA_SysStringLenA(BSTR text) { return text ? SysStringByteLen(text) : 0; }

BSTR __stdcall OA_SysDupStringA(BSTR text) { return OA_SysDupString(text); }

BSTR __stdcall OA_OLESTRFromBSTRA(BSTR ansiText)
{
    return AtExportBoundary<BSTR>(nullptr, [&] { return WideBstrFromAnsi(AnsiBytes(ansiText)); });
}

BSTR __stdcall OA_OLESTRFromStringA(LPCSTR text)
{
    return AtExportBoundary<BSTR>(nullptr, [&] { return WideBstrFromAnsi(BytesOf(text)); });
}

BSTR __stdcall OA_OLESTRFromStringLenA(LPCSTR text, UINT length)
{
    return AtExportBoundary<BSTR>(nullptr, [&] { return WideBstrFromAnsi(BytesOf(text, length)); });
}

BSTR __stdcall OA_AsciiFromBSTRW(BSTR text)
{
    return AtExportBoundary<BSTR>(nullptr, [&] { return text ? AnsiBstrFromWide(WideChars(text)) : nullptr; });
}

BSTR __stdcall OA_AsciiFromStringW(LPCWSTR text)
{
    return AtExportBoundary<BSTR>(nullptr, [&]() -> BSTR {
        return AnsiBstrFromWide(text ? std::wstring_view(text) : std::wstring_view());
    });
}

BSTR __stdcall OA_AsciiFromStringLenW(LPCWSTR text, UINT length)
{
    return AtExportBoundary<BSTR>(nullptr, [&]() -> BSTR {
        return AnsiBstrFromWide(text ? std::wstring_view(text, length) : std::wstring_view());
    });
}

BOOL __stdcall OA_AsciiFromWide(LPSTR destination, LPCWSTR source)
{
    return AtExportBoundary<BOOL>(FALSE, [&]() -> BOOL {
        if (!destination)
            return FALSE;
        std::string text = AnsiFromWide(source ? source : L"");
        memcpy(destination, text.c_str(), text.size() + 1);
        return TRUE;
    });
}

BOOL __stdcall OA_WideFromAscii(LPWSTR destination, LPCSTR source)
{
    return AtExportBoundary<BOOL>(FALSE, [&]() -> BOOL {
        if (!destination)
            return FALSE;
        std::wstring text = WideFromAnsi(source ? source : "");
        memcpy(destination, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
        return TRUE;
    });
}

LPWSTR __stdcall OA_StrCat(LPWSTR destination, LPCWSTR source) { return wcscat(destination, source ? source : L""); }

INT __stdcall OA_StrCmp(LPCWSTR a, LPCWSTR b) { return wcscmp(a ? a : L"", b ? b : L""); }

INT __stdcall OA_StrCmpi(LPCWSTR a, LPCWSTR b)
{
    return AtExportBoundary<INT>(INT(0), [&]() -> INT {
        std::string left = AnsiFromWide(a ? a : L"");
        std::string right = AnsiFromWide(b ? b : L"");
        return lstrcmpiA(left.c_str(), right.c_str());
    });
}

LPWSTR __stdcall OA_StrCpy(LPWSTR destination, LPCWSTR source) { return wcscpy(destination, source ? source : L""); }

UINT __stdcall OA_StrLen(LPCWSTR text) { return text ? static_cast<UINT>(wcslen(text)) : 0; }

void __stdcall OA_VariantFromBOOL(VARIANT* variant, VARIANT_BOOL value)
{
    VariantClear(variant);
    variant->vt = VT_BOOL;
    variant->boolVal = value;
}

void __stdcall OA_VariantFromI2(VARIANT* variant, SHORT value)
{
    VariantClear(variant);
    variant->vt = VT_I2;
    variant->iVal = value;
}

void __stdcall OA_VariantFromI4(VARIANT* variant, LONG value)
{
    VariantClear(variant);
    variant->vt = VT_I4;
    variant->lVal = value;
}

void __stdcall OA_VariantFromR4(VARIANT* variant, FLOAT value)
{
    VariantClear(variant);
    variant->vt = VT_R4;
    variant->fltVal = value;
}

void __stdcall OA_VariantFromR8(VARIANT* variant, DOUBLE value)
{
    VariantClear(variant);
    variant->vt = VT_R8;
    variant->dblVal = value;
}

void __stdcall OA_VariantFromStringA(VARIANT* variant, LPCSTR value)
{
    AtExportBoundary([&] {
        VariantClear(variant);
        variant->vt = VT_BSTR;
        variant->bstrVal = WideBstrFromAnsi(BytesOf(value));
    });
}

void __stdcall OA_VariantFromStringW(VARIANT* variant, LPCWSTR value)
{
    VariantClear(variant);
    variant->vt = VT_BSTR;
    variant->bstrVal = SysAllocString(value ? value : L"");
}

void __stdcall OA_VariantFromBSTR(VARIANT* variant, BSTR value)
{
    VariantClear(variant);
    variant->vt = VT_BSTR;
    variant->bstrVal = OA_SysDupString(value);
}

void __stdcall OA_VariantFromDisp(VARIANT* variant, IDispatch* value)
{
    VariantClear(variant);
    variant->vt = VT_DISPATCH;
    variant->pdispVal = value;
    if (value)
        value->AddRef();
}

} // extern "C"
