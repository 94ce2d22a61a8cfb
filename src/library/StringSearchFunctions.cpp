// Searching and comparing strings: InStr, InStrB, InStrRev, Replace and StrComp. Matches are exact (by
// code unit, or by byte for InStrB); StrComp can also compare in the locale's text order.
#include "library/BuiltinGroups.h"
#include "library/StringSupport.h"
#include "values/ValueError.h"

#include <algorithm>
#include <string>

namespace brannoc {

namespace {

// InStr's steps: the start, then the Null rule on both strings, then the forward search.
template <typename Char>
LONG SearchForward(std::basic_string_view<Char> text, std::basic_string_view<Char> pattern, LONG start)
{
    const auto from = static_cast<std::size_t>(start - 1);
    if (from >= text.size())
        return 0;
    const std::size_t found = text.find(pattern, from);
    return found == std::basic_string_view<Char>::npos ? 0 : static_cast<LONG>(found + 1);
}

bool ReadStart(BuiltinArguments& arguments, LONG& start)
{
    start = 1;
    if (!arguments.IsGiven(0))
        return true;
    if (!arguments.Long(0, start))
        return false;
    return start >= 1 || RaiseValueError(kErrorStringIndex);
}

bool InStr(BuiltinArguments& arguments, BuiltinResult& result)
{
    LONG start = 1;
    std::wstring_view text;
    std::wstring_view pattern;
    if (!ReadStart(arguments, start) || !arguments.String(1, text) || !arguments.String(2, pattern))
        return false;
    result.SetLong(SearchForward(text, pattern, start));
    return true;
}

bool InStrB(BuiltinArguments& arguments, BuiltinResult& result)
{
    LONG start = 1;
    BSTR text = nullptr;
    BSTR pattern = nullptr;
    if (!ReadStart(arguments, start) || !arguments.StringValue(1, text) || !arguments.StringValue(2, pattern))
        return false;
    result.SetLong(SearchForward(StorageBytes(text), StorageBytes(pattern), start));
    return true;
}

bool InStrRev(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring_view text;
    std::wstring_view pattern;
    if (!arguments.String(0, text) || !arguments.String(1, pattern))
        return false;
    LONG index = -1;
    if (arguments.IsGiven(2) && !arguments.Long(2, index))
        return false;
    if (index < -1)
        return RaiseValueError(kErrorStringIndex);
    if (index == -1)
        index = static_cast<LONG>(text.size());
    if (text.empty()) {
        result.SetLong(0);
        return true;
    }
    if (pattern.empty()) {
        result.SetLong(index);
        return true;
    }
    // The match must end at or before position index, which never reaches past the text.
    const std::size_t end = std::min(static_cast<std::size_t>(index), text.size());
    if (end < pattern.size()) {
        result.SetLong(0);
        return true;
    }
    const std::size_t found = text.substr(0, end).rfind(pattern);
    result.SetLong(found == std::wstring_view::npos ? 0 : static_cast<LONG>(found + 1));
    return true;
}

bool Replace(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring_view text;
    std::wstring_view pattern;
    std::wstring_view replacement;
    if (!arguments.String(0, text) || !arguments.String(1, pattern) || !arguments.String(2, replacement))
        return false;
    LONG start = 1;
    if (arguments.IsGiven(3) && !arguments.Long(3, start))
        return false;
    if (start < 1)
        return RaiseValueError(kErrorStringIndex);
    LONG count = -1;
    if (arguments.IsGiven(4) && !arguments.Long(4, count))
        return false;
    if (count < -1)
        return RaiseValueError(kErrorInvalidArgument);
    const auto from = static_cast<std::size_t>(start - 1);
    if (from > text.size())
        return result.SetString(std::wstring_view());
    const std::wstring_view working = text.substr(from);
    if (count == 0 || pattern.empty())
        return result.SetString(working);
    // The matches are counted first, so the result is allocated once at its final length: a result too
    // long for memory raises "Out of memory." instead of failing while a buffer grows.
    LONG matches = 0;
    for (std::size_t position = 0; count == -1 || matches < count; ++matches) {
        const std::size_t found = working.find(pattern, position);
        if (found == std::wstring_view::npos)
            break;
        position = found + pattern.size();
    }
    const long long length = static_cast<long long>(working.size()) +
                             static_cast<long long>(matches) *
                                 (static_cast<long long>(replacement.size()) - static_cast<long long>(pattern.size()));
    constexpr long long kLongestString = 0x7FFFFFFF / sizeof(wchar_t) - 1;
    if (length > kLongestString)
        return RaiseValueError(kErrorOutOfMemory);
    Bstr replaced;
    replaced.Attach(SysAllocStringLen(nullptr, static_cast<UINT>(length)));
    if (!replaced.Get())
        return RaiseValueError(kErrorOutOfMemory);
    wchar_t* out = replaced.Get();
    std::size_t position = 0;
    for (LONG made = 0; made < matches; ++made) {
        const std::size_t found = working.find(pattern, position);
        out = std::copy(working.begin() + position, working.begin() + found, out);
        out = std::copy(replacement.begin(), replacement.end(), out);
        position = found + pattern.size();
    }
    std::copy(working.begin() + position, working.end(), out);
    result.SetString(std::move(replaced));
    return true;
}

// StrComp: -1, 0 or 1; a compare argument other than 0 compares in the locale's text order.
bool StrComp(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring_view left;
    std::wstring_view right;
    if (!arguments.String(0, left) || !arguments.String(1, right))
        return false;
    LONG compare = 0;
    if (arguments.IsGiven(2) && !arguments.Long(2, compare))
        return false;
    int order = 0;
    if (compare == 0)
        order = left < right ? -1 : right < left ? 1 : 0;
    else if (!CompareText(left, right, order))
        return false;
    result.SetInteger(static_cast<SHORT>(order));
    return true;
}

constexpr std::uint8_t kPure = kBuiltinPure;

constexpr BuiltinRecord kRecords[] = {
    Function(Token::InStr, ResultKind::kVariant, "&SS", "Index S1 S2", kPure, 0b1, &InStr),
    Function(Token::InStrB, ResultKind::kVariant, "&SS", "Index S1 S2", kPure, 0b1, &InStrB),
    Function(Token::InStrRev, ResultKind::kVariant, "SS&", "S1 S2 Index", kPure, 0b100, &InStrRev),
    Function(Token::Replace, ResultKind::kString, "$$$&&", "S Pat Rep Index Count", kPure, 0b11000, &Replace),
    Function(Token::StrComp, ResultKind::kVariant, "SS&", "Str1 Str2 Comp", kPure, 0b100, &StrComp),
};

} // namespace

BuiltinGroup StringSearchFunctions() { return kRecords; }

} // namespace brannoc
