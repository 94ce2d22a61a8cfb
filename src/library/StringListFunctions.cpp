// Strings and lists of strings: Split cuts a string at a delimiter into a String array, Join puts an
// array's elements together with a delimiter, Filter keeps the elements that contain (or lack) a text.
// Arrays made here are one-dimensional String arrays with lower bound 0; an empty result has no
// elements (upper bound -1).
#include "library/BuiltinGroups.h"
#include "library/StringSupport.h"
#include "values/Conversion.h"
#include "values/ValueError.h"

#include <string>
#include <vector>

namespace brannoc {

namespace {

constexpr LONG kBinaryCompare = 0;

// Reads an optional compare argument: 0 binary, 1 text; anything else raises 10620.
bool ReadCompare(BuiltinArguments& arguments, int index, LONG& compare)
{
    compare = kBinaryCompare;
    if (arguments.IsGiven(index) && !arguments.Long(index, compare))
        return false;
    return compare == 0 || compare == 1 || RaiseValueError(kErrorInvalidArgument);
}

std::size_t Find(std::wstring_view text, std::wstring_view pattern, std::size_t from, LONG compare)
{
    return compare == kBinaryCompare ? text.find(pattern, from) : FindIgnoringCase(text, pattern, from);
}

// A String array holding the pieces, as a Variant result.
bool SetStringArray(BuiltinResult& result, const std::vector<std::wstring_view>& pieces)
{
    SafeArray array(SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(pieces.size())));
    if (!array.Get())
        return RaiseValueError(kErrorOutOfMemory);
    if (!pieces.empty()) {
        SafeArrayLock lock(array.Get());
        auto* elements = static_cast<BSTR*>(lock.Data());
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            Bstr piece;
            if (!piece.Assign(pieces[i]))
                return RaiseValueError(kErrorOutOfMemory);
            elements[i] = piece.Detach();
        }
    }
    Variant value;
    value.SetArray(array.Detach(), VT_BSTR);
    result.SetVariant(std::move(value));
    return true;
}

// Split(Expression, [Delimiter = " "], [Limit = -1], [Compare = 0]).
bool Split(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring_view text;
    if (!arguments.String(0, text))
        return false;
    std::wstring_view delimiter = L" ";
    if (arguments.IsGiven(1) && !arguments.String(1, delimiter))
        return false;
    LONG limit = -1;
    if (arguments.IsGiven(2) && !arguments.Long(2, limit))
        return false;
    if (limit < -1)
        return RaiseValueError(kErrorInvalidArgument);
    LONG compare = kBinaryCompare;
    if (!ReadCompare(arguments, 3, compare))
        return false;
    std::vector<std::wstring_view> pieces;
    if (text.empty() || limit == 0)
        return SetStringArray(result, pieces);
    std::size_t position = 0;
    while (!delimiter.empty() && (limit == -1 || static_cast<LONG>(pieces.size()) + 1 < limit)) {
        const std::size_t found = Find(text, delimiter, position, compare);
        if (found == std::wstring_view::npos)
            break;
        pieces.push_back(text.substr(position, found - position));
        position = found + delimiter.size();
    }
    pieces.push_back(text.substr(position));
    return SetStringArray(result, pieces);
}

// The elements of a one-dimensional array argument as strings; false after raising.
bool ReadStrings(BuiltinArguments& arguments, int index, std::vector<Bstr>& strings)
{
    const Variant* value = nullptr;
    if (!arguments.Value(index, value))
        return false;
    const VARIANT& raw = *FollowByRefChain(&value->Raw());
    if ((raw.vt & VT_ARRAY) == 0)
        return RaiseValueError(kErrorTypeMismatch);
    SAFEARRAY* array = (raw.vt & VT_BYREF) ? (raw.pparray ? *raw.pparray : nullptr) : raw.parray;
    if (!array)
        return RaiseValueError(kErrorArrayNotDimensioned);
    if (SafeArrayGetDim(array) != 1)
        return RaiseValueError(kErrorTypeMismatch);
    LONG lower = 0;
    LONG upper = -1;
    SafeArrayGetLBound(array, 1, &lower);
    SafeArrayGetUBound(array, 1, &upper);
    const VARTYPE elementTag = static_cast<VARTYPE>(raw.vt & VT_TYPEMASK);
    for (LONG i = lower; i <= upper; ++i) {
        Variant element;
        VARIANT& slot = element.Raw();
        HRESULT status = S_OK;
        if (elementTag == VT_RECORD) {
            return RaiseValueError(kErrorTypeMismatch);
        } else if (elementTag == VT_VARIANT) {
            status = SafeArrayGetElement(array, &i, &slot);
        } else if (elementTag == VT_DECIMAL) {
            // The DECIMAL overlays the whole VARIANT, its tag included.
            status = SafeArrayGetElement(array, &i, &slot.decVal);
            slot.vt = VT_DECIMAL;
        } else {
            status = SafeArrayGetElement(array, &i, &slot.lVal);
            if (SUCCEEDED(status))
                slot.vt = elementTag;
        }
        if (FAILED(status))
            return RaiseValueError(kErrorTypeMismatch);
        if (!ChangeType(element, VT_BSTR))
            return false;
        Bstr text;
        text.Attach(element.Raw().bstrVal);
        element.Raw().vt = VT_EMPTY;
        strings.push_back(std::move(text));
    }
    return true;
}

// Join(SourceArray, [Delimiter = " "]).
bool Join(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::vector<Bstr> strings;
    if (!ReadStrings(arguments, 0, strings))
        return false;
    std::wstring_view delimiter = L" ";
    if (arguments.IsGiven(1) && !arguments.String(1, delimiter))
        return false;
    std::wstring joined;
    for (std::size_t i = 0; i < strings.size(); ++i) {
        if (i > 0)
            joined.append(delimiter);
        joined.append(strings[i].View());
    }
    return result.SetString(joined);
}

// Filter(SourceArray, Match, [Include = True], [Compare = 0]).
bool Filter(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::vector<Bstr> strings;
    std::wstring_view match;
    if (!ReadStrings(arguments, 0, strings) || !arguments.String(1, match))
        return false;
    bool include = true;
    if (arguments.IsGiven(2) && !arguments.Boolean(2, include))
        return false;
    LONG compare = kBinaryCompare;
    if (!ReadCompare(arguments, 3, compare))
        return false;
    std::vector<std::wstring_view> kept;
    for (const Bstr& text : strings) {
        const bool contains = Find(text.View(), match, 0, compare) != std::wstring_view::npos;
        if (contains == include)
            kept.push_back(text.View());
    }
    return SetStringArray(result, kept);
}

constexpr std::uint8_t kPure = kBuiltinPure;

constexpr BuiltinRecord kRecords[] = {
    Function(Token::Split, ResultKind::kVariant, "$$&&", "Expression Delimiter Limit Compare", kPure, 0b1110, &Split),
    Function(Token::Join, ResultKind::kString, "a$", "SourceArray Delimiter", kPure, 0b10, &Join),
    Function(Token::Filter, ResultKind::kVariant, "a$~&", "SourceArray Match Include Compare", kPure, 0b1100, &Filter),
};

} // namespace

BuiltinGroup StringListFunctions() { return kRecords; }

} // namespace brannoc
