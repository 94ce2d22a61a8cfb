#pragma once
// Resolving values, the one conversion routine (ChangeType), the numeric reading of strings and the
// text of a value in its three modes. Every function that can fail raises its error through
// RaiseValueError and answers false.
#include "values/Variant.h"

#include <string>

namespace brannoc {

// Value tags of the language beside the platform's VT_ names.
enum ValueTag : VARTYPE {
    kTagEmpty = VT_EMPTY,
    kTagNull = VT_NULL,
    kTagInteger = VT_I2,
    kTagLong = VT_I4,
    kTagSingle = VT_R4,
    kTagDouble = VT_R8,
    kTagCurrency = VT_CY,
    kTagDate = VT_DATE,
    kTagString = VT_BSTR,
    kTagObject = VT_DISPATCH,
    kTagError = VT_ERROR,
    kTagBoolean = VT_BOOL,
    kTagVariant = VT_VARIANT,
    kTagDataObject = VT_UNKNOWN,
    kTagDecimal = VT_DECIMAL,
    kTagByte = VT_UI1,
    kTagUserDefinedType = VT_RECORD,
};

// Status of an Error value made from a language error number, and of a missing optional argument.
constexpr SCODE kErrorValueBase = static_cast<SCODE>(0x80040000);
constexpr SCODE kMissingArgumentStatus = DISP_E_PARAMNOTFOUND;

// The engine's locale for conversions (0x409 until the host or the automation layer changes it).
LCID EngineLocale();
void SetEngineLocale(LCID locale);

// Fetches the default member value of object into result. The automation layer installs the real
// late-bound call; the built-in fallback invokes DISPID_VALUE as a property get. A handler that fails
// must have raised its error.
using DefaultValueFn = bool (*)(IDispatch* object, Variant& result);
DefaultValueFn SetDefaultValueHandler(DefaultValueFn handler);

// Makes value self-contained and non-object: follows a by-reference chain (10090 when the copy fails)
// and replaces an object by its default value (10080 when that is again an object or missing).
[[nodiscard]] bool Resolve(Variant& value);

// Converts value in place to tag with the language's rules. On failure the value holds tag with a
// zero payload and 10062 (overflow), 10075 (Null) or 10080 (anything else) has been raised.
[[nodiscard]] bool ChangeType(Variant& value, VARTYPE tag);

// The numeric operand rule: Empty becomes Integer 0, numbers stay, strings are read by StringToNumber;
// Null raises 10075 and everything else 10080.
[[nodiscard]] bool ToNumber(Variant& value);

// Reads the String value as a number in the engine locale (hex &H and octal &O texts included). Raises
// nothing; on failure the value is unchanged.
[[nodiscard]] bool StringToNumber(Variant& value);

// Reads the String value with the fixed US-English rules into tag (0: Long or Double chosen from the
// text). On failure raises 10062/10080 only when raise is set; the value is then unchanged.
enum class RaiseMode { kQuiet, kRaise };
[[nodiscard]] bool ParseInvariant(Variant& value, VARTYPE tag, RaiseMode raise);

enum class TextMode { kLocale, kNullAsEmpty, kInvariant };
// The text of value in mode; failures are those of ChangeType.
[[nodiscard]] bool ToText(const Variant& value, TextMode mode, Bstr& text);

// Tests used by the built-ins.
bool IsNull(const Variant& value);
bool IsEmpty(const Variant& value);
bool IsError(const Variant& value);
bool IsMissing(const Variant& value);
bool IsObject(const Variant& value);
bool IsArray(const Variant& value);
bool IsNegative(const Variant& value);
bool IsDate(const Variant& value);
bool IsNumeric(const Variant& value);

// True for the tags ToNumber lets through unchanged.
constexpr bool IsNumericTag(VARTYPE tag)
{
    switch (tag) {
    case VT_I2: case VT_I4: case VT_R4: case VT_R8: case VT_CY: case VT_DATE: case VT_BOOL:
    case VT_DECIMAL: case VT_UI1:
        return true;
    default:
        return false;
    }
}

} // namespace brannoc
