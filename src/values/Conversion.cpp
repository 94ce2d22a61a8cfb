#include "values/Conversion.h"

#include "host/ThisModule.h"
#include "values/DecimalWhole.h"
#include "values/ValueError.h"

#include <algorithm>
#include <cstring>
#include <cwctype>

namespace brannoc {

namespace {

LCID s_engineLocale = 0x409;
constexpr LCID kInvariantLocale = 1033;

// Invokes the object's default member as a property get.
bool InvokeDefaultValue(IDispatch* object, Variant& result)
{
    if (!object)
        return RaiseValueError(kErrorTypeMismatch);
    DISPPARAMS none{};
    VARIANT out;
    VariantInit(&out);
    HRESULT status = object->Invoke(DISPID_VALUE, IID_NULL, s_engineLocale, DISPATCH_PROPERTYGET, &none, &out,
                                    nullptr, nullptr);
    if (FAILED(status))
        return RaiseValueError(kErrorTypeMismatch);
    result.Attach(out);
    return true;
}

DefaultValueFn s_defaultValue = &InvokeDefaultValue;

// Leaves value as tag with an all-zero payload (the state after a failed conversion).
void SetZeroOfKind(Variant& value, VARTYPE tag)
{
    value.Clear();
    VARIANT& raw = value.Raw();
    std::memset(&raw, 0, sizeof raw);
    raw.vt = tag;
}

bool IsDecimalDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

// Decimal digits, after an optional sign: the texts tried as Long first (so "-32768" can be an Integer).
// A blank or anything else makes the text a Double's (" 12" and "12 " are read as Doubles).
bool IsWholeNumberText(std::wstring_view text)
{
    if (!text.empty() && (text.front() == L'-' || text.front() == L'+'))
        text.remove_prefix(1);
    return !text.empty() && std::all_of(text.begin(), text.end(), IsDecimalDigit);
}

bool IsHexOrOctalText(std::wstring_view text)
{
    size_t i = 0;
    while (i < text.size() && text[i] == L' ')
        ++i;
    return i + 1 < text.size() && text[i] == L'&' &&
           (text[i + 1] == L'H' || text[i + 1] == L'h' || text[i + 1] == L'O' || text[i + 1] == L'o');
}

// A text or Decimal as Currency units, read exactly as a Decimal and rounded to four decimals with ties
// to even: S_OK, DISP_E_OVERFLOW outside the Currency range, or the failure of reading the text.
HRESULT ExactCurrency(const VARIANT& source, LCID locale, CY& units)
{
    DECIMAL exact{};
    if (source.vt == VT_DECIMAL) {
        exact = source.decVal;
    } else {
        HRESULT status = VarDecFromStr(source.bstrVal, locale, 0, &exact);
        if (FAILED(status))
            return status;
    }
    exact = DecimalRounded(exact, 4);
    if (exact.Hi32 != 0)
        return DISP_E_OVERFLOW;
    ULONGLONG magnitude = exact.Lo64;
    for (int scale = exact.scale; scale < 4; ++scale) {
        if (magnitude > 0xFFFFFFFFFFFFFFFFull / 10)
            return DISP_E_OVERFLOW;
        magnitude *= 10;
    }
    const bool negative = (exact.sign & DECIMAL_NEG) != 0;
    if (magnitude > (negative ? 0x8000000000000000ull : 0x7FFFFFFFFFFFFFFFull))
        return DISP_E_OVERFLOW;
    units.int64 = negative ? static_cast<LONGLONG>(0 - magnitude) : static_cast<LONGLONG>(magnitude);
    return S_OK;
}

// The platform step of ChangeType: VariantChangeTypeEx in locale into a fresh value.
HRESULT PlatformChange(const VARIANT& source, VARTYPE tag, LCID locale, Variant& result)
{
    // Some platforms read a text or Decimal for Currency through a Double, which cannot hold the
    // largest Currency values: these are read on their exact digits; a text that is no number is left
    // to the platform, which gives its own failure.
    if (tag == VT_CY && (source.vt == VT_BSTR || source.vt == VT_DECIMAL)) {
        CY units{};
        const HRESULT exact = ExactCurrency(source, locale, units);
        if (exact == DISP_E_OVERFLOW)
            return exact;
        if (SUCCEEDED(exact)) {
            result.SetCurrency(units);
            return S_OK;
        }
    }
    VARIANT out;
    VariantInit(&out);
    HRESULT status = VariantChangeTypeEx(&out, const_cast<VARIANT*>(&source), locale, 0, tag);
    if (SUCCEEDED(status))
        result.Attach(out);
    return status;
}

bool RaiseForStatus(HRESULT status)
{
    return RaiseValueError(status == DISP_E_OVERFLOW ? kErrorOverflow : kErrorTypeMismatch);
}

// A read-only view of value after following by-reference chains (no copy).
const VARIANT& Peek(const Variant& value) { return *FollowByRefChain(&value.Raw()); }

// The value resolved into scratch when it needs resolving; errors are swallowed (the tests never raise).
const VARIANT* PeekResolved(const Variant& value, Variant& scratch)
{
    const VARIANT& end = Peek(value);
    if ((end.vt & ~VT_BYREF) != VT_DISPATCH && !(end.vt & VT_BYREF))
        return &end;
    RaiseFn previous = SetRaiseHandler(nullptr);
    bool ok = scratch.CopyFrom(value.Raw()) && Resolve(scratch);
    SetRaiseHandler(previous);
    return ok ? &scratch.Raw() : nullptr;
}

} // namespace

LCID EngineLocale() { return s_engineLocale; }
void SetEngineLocale(LCID locale) { s_engineLocale = locale; }

DefaultValueFn SetDefaultValueHandler(DefaultValueFn handler)
{
    DefaultValueFn previous = s_defaultValue;
    s_defaultValue = handler ? handler : &InvokeDefaultValue;
    return previous;
}

bool Resolve(Variant& value)
{
    if (value.IsByRef()) {
        Variant copy;
        if (!copy.CopyIndirectFrom(value.Raw()))
            return RaiseValueError(kErrorAutomation);
        value = std::move(copy);
    }
    if (value.Tag() != VT_DISPATCH)
        return true;
    Variant result;
    if (!s_defaultValue(value.Object(), result)) {
        value.Clear();
        return false;
    }
    if (result.IsByRef() && !result.CopyIndirectFrom(result.Raw())) {
        value.Clear();
        return RaiseValueError(kErrorAutomation);
    }
    if (result.BaseTag() == VT_DISPATCH || result.BaseTag() == VT_UNKNOWN) {
        value.Clear();
        return RaiseValueError(kErrorTypeMismatch);
    }
    value = std::move(result);
    return true;
}

bool ChangeType(Variant& value, VARTYPE tag)
{
    if (tag == VT_DISPATCH) {
        if (value.IsByRef() && !value.CopyIndirectFrom(value.Raw()))
            return RaiseValueError(kErrorAutomation);
        if (value.Tag() == VT_DISPATCH)
            return true;
        SetZeroOfKind(value, tag);
        return RaiseValueError(kErrorTypeMismatch);
    }
    if (!Resolve(value)) {
        SetZeroOfKind(value, tag);
        return false;
    }
    if (value.Tag() == tag)
        return true;
    if (value.Tag() == VT_NULL) {
        SetZeroOfKind(value, tag);
        return RaiseValueError(kErrorNullUse);
    }
    if (value.Tag() == VT_BOOL && tag == VT_BSTR) {
        // These two words follow the resource language.
        std::wstring word = LoadResourceString(value.Boolean() ? 11102 : 11101);
        return value.SetString(std::wstring_view(word)) || RaiseValueError(kErrorOutOfMemory);
    }
    if (value.Tag() == VT_BOOL && tag == VT_DECIMAL) {
        // True is -1 as a Decimal as in every other number kind (the platform's conversion gives +1 here).
        VARIANT converted;
        VariantInit(&converted);
        // The Decimal fills the whole VARIANT, its tag's place included: the tag is set afterwards.
        if (FAILED(VarDecFromI2(value.Boolean() ? -1 : 0, &converted.decVal)))
            return RaiseValueError(kErrorOverflow);
        converted.vt = VT_DECIMAL;
        value.Clear();
        value.Raw() = converted;
        return true;
    }
    Variant result;
    HRESULT status = PlatformChange(value.Raw(), tag, s_engineLocale, result);
    if (FAILED(status) && tag == VT_DATE && value.Tag() == VT_BSTR) {
        // A number written as text is a date serial when the locale cannot read it as a date.
        HRESULT numberStatus = PlatformChange(value.Raw(), VT_R8, s_engineLocale, result);
        if (SUCCEEDED(numberStatus)) {
            double serial = result.Double();
            result.SetDate(serial);
            status = S_OK;
        }
    }
    if (FAILED(status)) {
        SetZeroOfKind(value, tag);
        return RaiseForStatus(status);
    }
    value = std::move(result);
    return true;
}

bool StringToNumber(Variant& value)
{
    if (value.Tag() != VT_BSTR)
        return false;
    std::wstring_view text = value.StringView();
    if (text.empty())
        return false;
    bool radixText = IsHexOrOctalText(text);
    bool wholeText = !radixText && IsWholeNumberText(text);
    Variant result;
    HRESULT status = E_FAIL;
    if (radixText || wholeText)
        status = PlatformChange(value.Raw(), VT_I4, s_engineLocale, result);
    if (FAILED(status) && !radixText)
        status = PlatformChange(value.Raw(), VT_R8, s_engineLocale, result);
    if (FAILED(status))
        return false;
    if (result.Tag() == VT_I4) {
        LONG number = result.Long();
        if (radixText && number >= 0 && number < 65536)
            result.SetInteger(static_cast<SHORT>(static_cast<USHORT>(number)));
        else if (!radixText && number >= -32768 && number <= 32767)
            result.SetInteger(static_cast<SHORT>(number));
    }
    value = std::move(result);
    return true;
}

bool ToNumber(Variant& value)
{
    if (!Resolve(value))
        return false;
    VARTYPE tag = value.Tag();
    if (IsNumericTag(tag))
        return true;
    switch (tag) {
    case VT_EMPTY:
        value.SetInteger(0);
        return true;
    case VT_NULL:
        return RaiseValueError(kErrorNullUse);
    case VT_BSTR:
        return StringToNumber(value) || RaiseValueError(kErrorTypeMismatch);
    default:
        return RaiseValueError(kErrorTypeMismatch);
    }
}

bool ParseInvariant(Variant& value, VARTYPE tag, RaiseMode raise)
{
    if (value.Tag() != VT_BSTR || value.StringView().empty())
        return raise == RaiseMode::kRaise ? RaiseValueError(kErrorTypeMismatch) : false;
    std::wstring_view text = value.StringView();
    bool automatic = tag == 0;
    if (automatic) {
        bool onlyWhole = true;
        for (wchar_t c : text)
            onlyWhole = onlyWhole && (IsDecimalDigit(c) || c == L' ' || c == L'-' || c == L'+');
        tag = onlyWhole ? VT_I4 : VT_R8;
    }
    OLECHAR* source = value.String();
    constexpr ULONG kFlags = LOCALE_NOUSEROVERRIDE;
    Variant result;
    HRESULT status = DISP_E_TYPEMISMATCH;
    switch (tag) {
    case VT_I2: {
        SHORT number = 0;
        status = VarI2FromStr(source, kInvariantLocale, kFlags, &number);
        if (SUCCEEDED(status))
            result.SetInteger(number);
        break;
    }
    case VT_I4: {
        LONG number = 0;
        status = VarI4FromStr(source, kInvariantLocale, kFlags, &number);
        if (SUCCEEDED(status))
            result.SetLong(number);
        break;
    }
    case VT_R4: {
        FLOAT number = 0;
        status = VarR4FromStr(source, kInvariantLocale, kFlags, &number);
        if (SUCCEEDED(status))
            result.SetSingle(number);
        break;
    }
    case VT_R8: {
        DOUBLE number = 0;
        status = VarR8FromStr(source, kInvariantLocale, kFlags, &number);
        if (SUCCEEDED(status))
            result.SetDouble(number);
        break;
    }
    case VT_CY: {
        CY number{};
        status = VarCyFromStr(source, kInvariantLocale, kFlags, &number);
        if (SUCCEEDED(status))
            result.SetCurrency(number);
        break;
    }
    case VT_DATE: {
        DATE number = 0;
        status = VarDateFromStr(source, kInvariantLocale, kFlags, &number);
        if (SUCCEEDED(status))
            result.SetDate(number);
        break;
    }
    case VT_DECIMAL: {
        DECIMAL number{};
        status = VarDecFromStr(source, kInvariantLocale, kFlags, &number);
        if (SUCCEEDED(status))
            result.SetDecimal(number);
        break;
    }
    default:
        break;
    }
    if (FAILED(status))
        return raise == RaiseMode::kRaise ? RaiseForStatus(status) : false;
    if (automatic && result.Tag() == VT_I4 && result.Long() >= -32768 && result.Long() <= 32767)
        result.SetInteger(static_cast<SHORT>(result.Long()));
    value = std::move(result);
    return true;
}

namespace {

// The invariant text of a resolved value, or false when the kind falls back to the locale mode.
bool InvariantText(const VARIANT& value, Bstr& text, HRESULT& status)
{
    constexpr ULONG kFlags = LOCALE_NOUSEROVERRIDE;
    switch (value.vt) {
    case VT_I2: status = VarBstrFromI2(value.iVal, kInvariantLocale, kFlags, text.Out()); return true;
    case VT_UI1: status = VarBstrFromI2(value.bVal, kInvariantLocale, kFlags, text.Out()); return true;
    case VT_I4: status = VarBstrFromI4(value.lVal, kInvariantLocale, kFlags, text.Out()); return true;
    case VT_R4: status = VarBstrFromR4(value.fltVal, kInvariantLocale, kFlags, text.Out()); return true;
    case VT_R8: status = VarBstrFromR8(value.dblVal, kInvariantLocale, kFlags, text.Out()); return true;
    case VT_CY: status = VarBstrFromCy(value.cyVal, kInvariantLocale, kFlags, text.Out()); return true;
    case VT_DATE: status = VarBstrFromDate(value.date, kInvariantLocale, kFlags, text.Out()); return true;
    case VT_DECIMAL:
        status = VarBstrFromDec(const_cast<DECIMAL*>(&value.decVal), kInvariantLocale, kFlags, text.Out());
        return true;
    case VT_BOOL:
        status = text.Assign(value.boolVal ? L"True" : L"False") ? S_OK : E_OUTOFMEMORY;
        return true;
    case VT_NULL:
        status = text.Assign(L"") ? S_OK : E_OUTOFMEMORY;
        return true;
    default:
        return false;
    }
}

} // namespace

bool ToText(const Variant& value, TextMode mode, Bstr& text)
{
    const VARIANT& end = Peek(value);
    if (end.vt == VT_BSTR)
        return text.Assign(std::wstring_view(end.bstrVal ? end.bstrVal : L"", SysStringLen(end.bstrVal))) ||
               RaiseValueError(kErrorOutOfMemory);
    Variant work;
    if (!work.CopyFrom(value.Raw()) || !Resolve(work))
        return false;
    if (work.Tag() == VT_NULL && mode != TextMode::kLocale)
        return text.Assign(L"") || RaiseValueError(kErrorOutOfMemory);
    if (mode == TextMode::kInvariant) {
        HRESULT status = S_OK;
        if (InvariantText(work.Raw(), text, status))
            return SUCCEEDED(status) || RaiseForStatus(status);
    }
    if (!ChangeType(work, VT_BSTR))
        return false;
    text.Attach(work.String());
    work.Raw().vt = VT_EMPTY; // the string now belongs to text
    return true;
}

bool IsNull(const Variant& value)
{
    Variant scratch;
    const VARIANT* end = PeekResolved(value, scratch);
    return end && end->vt == VT_NULL;
}

bool IsEmpty(const Variant& value) { return Peek(value).vt == VT_EMPTY; }

bool IsError(const Variant& value)
{
    Variant scratch;
    const VARIANT* end = PeekResolved(value, scratch);
    return end && end->vt == VT_ERROR;
}

bool IsMissing(const Variant& value)
{
    const VARIANT& end = Peek(value);
    return end.vt == VT_ERROR && end.scode == kMissingArgumentStatus;
}

bool IsObject(const Variant& value)
{
    const VARIANT& end = Peek(value);
    return (end.vt & ~VT_BYREF) == VT_DISPATCH;
}

bool IsArray(const Variant& value) { return (Peek(value).vt & VT_ARRAY) != 0; }

bool IsNegative(const Variant& value)
{
    Variant scratch;
    const VARIANT* end = PeekResolved(value, scratch);
    if (!end)
        return false;
    switch (end->vt) {
    case VT_I2: return end->iVal < 0;
    case VT_I4: return end->lVal < 0;
    case VT_R4: return end->fltVal < 0;
    case VT_R8: return end->dblVal < 0;
    case VT_DATE: return end->date < 0;
    case VT_CY: return end->cyVal.int64 < 0;
    case VT_BOOL: return end->boolVal != VARIANT_FALSE;
    case VT_DECIMAL: return (end->decVal.sign & DECIMAL_NEG) != 0 && (end->decVal.Hi32 || end->decVal.Lo64);
    default: return false;
    }
}

bool IsDate(const Variant& value)
{
    Variant scratch;
    const VARIANT* end = PeekResolved(value, scratch);
    if (!end)
        return false;
    if (end->vt == VT_DATE)
        return true;
    if (end->vt != VT_BSTR)
        return false;
    Variant result;
    return SUCCEEDED(PlatformChange(*end, VT_DATE, s_engineLocale, result));
}

bool IsNumeric(const Variant& value)
{
    Variant scratch;
    const VARIANT* end = PeekResolved(value, scratch);
    if (!end)
        return false;
    if (end->vt == VT_EMPTY)
        return true;
    if (end->vt == VT_DATE)
        return false;
    if (IsNumericTag(end->vt))
        return true;
    if (end->vt != VT_BSTR)
        return false;
    Variant copy;
    return copy.CopyFrom(*end) && StringToNumber(copy);
}

} // namespace brannoc
