// String functions that cut, pad, measure and map strings: Left, Right and Mid with their byte forms,
// Len and LenB, the case and trimming functions, StrReverse, Space, String and StrConv.
#include "library/BuiltinGroups.h"
#include "library/StringSupport.h"
#include "values/RecordType.h"
#include "values/ValueError.h"

#include <algorithm>

namespace brannoc {

namespace {

constexpr LONG kNoLength = 2147483647;

// Reads a length argument: a Long that must not be negative.
bool ReadLength(BuiltinArguments& arguments, int index, LONG& length)
{
    if (!arguments.Long(index, length))
        return false;
    return length >= 0 || RaiseValueError(kErrorInvalidArgument);
}

// The part of size elements that Left (fromEnd false) or Right keeps: (start, count).
std::pair<std::size_t, std::size_t> EndPart(std::size_t size, LONG length, bool fromEnd)
{
    const std::size_t count = std::min(size, static_cast<std::size_t>(length));
    return {fromEnd ? size - count : 0, count};
}

template <bool kFromEnd>
bool CutEnd(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring_view text;
    LONG length = 0;
    if (!arguments.String(0, text) || !ReadLength(arguments, 1, length))
        return false;
    const auto [start, count] = EndPart(text.size(), length, kFromEnd);
    return result.SetString(text.substr(start, count));
}

template <bool kFromEnd>
bool CutEndBytes(BuiltinArguments& arguments, BuiltinResult& result)
{
    BSTR text = nullptr;
    LONG length = 0;
    if (!arguments.StringValue(0, text) || !ReadLength(arguments, 1, length))
        return false;
    const std::string_view bytes = StorageBytes(text);
    const auto [start, count] = EndPart(bytes.size(), length, kFromEnd);
    return SetStorageBytes(result, bytes.substr(start, count));
}

// Mid's checks in their order: the Null rule (reading S), the length, then the start index.
bool ReadMidPart(BuiltinArguments& arguments, LONG& index, LONG& length)
{
    length = kNoLength;
    if (arguments.IsGiven(2) && !ReadLength(arguments, 2, length))
        return false;
    if (!arguments.Long(1, index))
        return false;
    return index >= 1 || RaiseValueError(kErrorStringIndex);
}

template <typename Char>
std::basic_string_view<Char> MiddlePart(std::basic_string_view<Char> text, LONG index, LONG length)
{
    const auto start = static_cast<std::size_t>(index - 1);
    if (start >= text.size())
        return {};
    return text.substr(start, std::min(text.size() - start, static_cast<std::size_t>(length)));
}

bool Mid(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring_view text;
    LONG index = 0;
    LONG length = 0;
    if (!arguments.String(0, text) || !ReadMidPart(arguments, index, length))
        return false;
    return result.SetString(MiddlePart(text, index, length));
}

bool MidB(BuiltinArguments& arguments, BuiltinResult& result)
{
    BSTR text = nullptr;
    LONG index = 0;
    LONG length = 0;
    if (!arguments.StringValue(0, text) || !ReadMidPart(arguments, index, length))
        return false;
    return SetStorageBytes(result, MiddlePart(StorageBytes(text), index, length));
}

// A record held in a Variant: Len and LenB give its size in bytes. True when the argument is one.
bool RecordLength(BuiltinArguments& arguments, BuiltinResult& result, bool& done)
{
    const Variant* value = nullptr;
    ULONG size = 0;
    done = false;
    if (!arguments.Value(0, value))
        return false;
    if (RecordSizeOf(*value, size)) {
        result.SetLong(static_cast<LONG>(size));
        done = true;
    }
    return true;
}

bool Len(BuiltinArguments& arguments, BuiltinResult& result)
{
    bool done = false;
    if (!RecordLength(arguments, result, done))
        return false;
    if (done)
        return true;
    std::wstring_view text;
    if (!arguments.String(0, text))
        return false;
    result.SetLong(static_cast<LONG>(text.size()));
    return true;
}

bool LenB(BuiltinArguments& arguments, BuiltinResult& result)
{
    bool done = false;
    if (!RecordLength(arguments, result, done))
        return false;
    if (done)
        return true;
    BSTR text = nullptr;
    if (!arguments.StringValue(0, text))
        return false;
    result.SetLong(static_cast<LONG>(StorageBytes(text).size()));
    return true;
}

template <DWORD kFlags>
bool MapCase(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring_view text;
    Bstr mapped;
    if (!arguments.String(0, text) || !MapString(text, kFlags, mapped))
        return false;
    result.SetString(std::move(mapped));
    return true;
}

enum class TrimSide { kLeft, kRight, kBoth };

template <TrimSide kSide>
bool Trim(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring_view text;
    if (!arguments.String(0, text))
        return false;
    if (kSide != TrimSide::kRight) {
        const std::size_t first = text.find_first_not_of(L' ');
        text.remove_prefix(first == std::wstring_view::npos ? text.size() : first);
    }
    if (kSide != TrimSide::kLeft) {
        const std::size_t last = text.find_last_not_of(L' ');
        text = text.substr(0, last == std::wstring_view::npos ? 0 : last + 1);
    }
    return result.SetString(text);
}

bool StrReverse(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring_view text;
    if (!arguments.String(0, text))
        return false;
    Bstr reversed(text);
    if (!text.empty() && !reversed.Get())
        return RaiseValueError(kErrorOutOfMemory);
    std::reverse(reversed.Get(), reversed.Get() + reversed.Length());
    result.SetString(std::move(reversed));
    return true;
}

// length copies of character.
bool Repeat(BuiltinResult& result, LONG length, wchar_t character)
{
    Bstr text;
    text.Attach(SysAllocStringLen(nullptr, static_cast<UINT>(length)));
    if (!text.Get())
        return RaiseValueError(kErrorOutOfMemory);
    std::fill(text.Get(), text.Get() + length, character);
    result.SetString(std::move(text));
    return true;
}

bool Space(BuiltinArguments& arguments, BuiltinResult& result)
{
    LONG length = 0;
    return ReadLength(arguments, 0, length) && Repeat(result, length, L' ');
}

// String(Len, character): a String gives its first character (code 0 when empty), a number the
// character of that code.
bool StringOf(BuiltinArguments& arguments, BuiltinResult& result)
{
    LONG length = 0;
    if (!ReadLength(arguments, 0, length))
        return false;
    const Variant* value = nullptr;
    if (!arguments.Value(1, value))
        return false;
    const VARIANT& raw = *FollowByRefChain(&value->Raw());
    wchar_t character = 0;
    if (raw.vt == VT_BSTR || raw.vt == (VT_BYREF | VT_BSTR)) {
        std::wstring_view text;
        if (!arguments.String(1, text))
            return false;
        character = text.empty() ? L'\0' : text[0];
    } else {
        SHORT code = 0;
        if (!arguments.Integer(1, code))
            return false;
        character = static_cast<wchar_t>(static_cast<unsigned short>(code));
    }
    return Repeat(result, length, character);
}

// StrConv modes.
constexpr LONG kConvertUpper = 1;
constexpr LONG kConvertLower = 2;
constexpr LONG kConvertProper = 3;
constexpr LONG kConvertWide = 4;
constexpr LONG kConvertNarrow = 8;
constexpr LONG kConvertKatakana = 16;
constexpr LONG kConvertHiragana = 32;
constexpr LONG kConvertUnicode = 64;
constexpr LONG kConvertFromUnicode = 128;

// The string's storage bytes read as ANSI text.
bool WidenStorage(BSTR text, Bstr& widened)
{
    const std::string_view bytes = StorageBytes(text);
    const int length = static_cast<int>(bytes.size());
    const int needed = MultiByteToWideChar(CP_ACP, 0, bytes.data(), length, nullptr, 0);
    widened.Attach(SysAllocStringLen(nullptr, static_cast<UINT>(needed > 0 ? needed : 0)));
    if (!widened.Get())
        return RaiseValueError(kErrorOutOfMemory);
    if (needed > 0)
        MultiByteToWideChar(CP_ACP, 0, bytes.data(), length, widened.Get(), needed);
    return true;
}

// The locale-mapping flags of a StrConv mode: case, then width, then script.
bool MappingFlags(LONG mode, DWORD& flags)
{
    flags = 0;
    switch (mode % 4) {
    case kConvertUpper: flags |= LCMAP_UPPERCASE; break;
    case kConvertLower: flags |= LCMAP_LOWERCASE; break;
    case kConvertProper: return RaiseValueError(kErrorInvalidArgument);
    default: break;
    }
    if (mode & kConvertWide)
        flags |= LCMAP_HALFWIDTH;
    if (mode & kConvertNarrow)
        flags |= LCMAP_FULLWIDTH;
    if (mode & kConvertKatakana)
        flags |= LCMAP_KATAKANA;
    if (mode & kConvertHiragana)
        flags |= LCMAP_HIRAGANA;
    return true;
}

bool StrConv(BuiltinArguments& arguments, BuiltinResult& result)
{
    BSTR text = nullptr;
    LONG mode = 0;
    if (!arguments.StringValue(0, text) || !arguments.Long(1, mode))
        return false;
    if (mode >= 256 || mode < 0)
        return RaiseValueError(kErrorInvalidArgument);
    if (SysStringByteLen(text) == 0)
        return SetStorageBytes(result, StorageBytes(text));
    Bstr converted;
    if (mode & kConvertUnicode) {
        if (!WidenStorage(text, converted))
            return false;
    } else if (!converted.Assign(std::wstring_view(text, SysStringLen(text)))) {
        return RaiseValueError(kErrorOutOfMemory);
    }
    DWORD flags = 0;
    if (!MappingFlags(mode, flags))
        return false;
    if (flags != 0) {
        Bstr mapped;
        if (!MapString(converted.View(), flags, mapped))
            return false;
        converted = std::move(mapped);
    }
    if (mode & kConvertFromUnicode)
        return SetStorageBytes(result, Narrow(converted.View()));
    result.SetString(std::move(converted));
    return true;
}

constexpr std::uint8_t kPure = kBuiltinPure;

constexpr BuiltinRecord kRecords[] = {
    Function(Token::Left, ResultKind::kString, "S&", "S Len", kPure, 0, &CutEnd<false>),
    Function(Token::LeftB, ResultKind::kString, "S&", "S Len", kPure, 0, &CutEndBytes<false>),
    Function(Token::Right, ResultKind::kString, "S&", "S Len", kPure, 0, &CutEnd<true>),
    Function(Token::RightB, ResultKind::kString, "S&", "S Len", kPure, 0, &CutEndBytes<true>),
    Function(Token::Mid, ResultKind::kString, "S&&", "S Index Len", kPure, 0b100, &Mid),
    Function(Token::MidB, ResultKind::kString, "S&&", "S Index Len", kPure, 0b100, &MidB),
    Function(Token::Len, ResultKind::kVariant, "S", "S", kPure, 0, &Len),
    Function(Token::LenB, ResultKind::kVariant, "S", "S", kPure, 0, &LenB),
    Function(Token::LCase, ResultKind::kString, "S", "S", kPure, 0, &MapCase<LCMAP_LOWERCASE>),
    Function(Token::UCase, ResultKind::kString, "S", "S", kPure, 0, &MapCase<LCMAP_UPPERCASE>),
    Function(Token::LTrim, ResultKind::kString, "S", "S", kPure, 0, &Trim<TrimSide::kLeft>),
    Function(Token::RTrim, ResultKind::kString, "S", "S", kPure, 0, &Trim<TrimSide::kRight>),
    Function(Token::Trim, ResultKind::kString, "S", "S", kPure, 0, &Trim<TrimSide::kBoth>),
    Function(Token::StrReverse, ResultKind::kString, "$", "S", kPure, 0, &StrReverse),
    Function(Token::Space, ResultKind::kString, "&", "Len", kPure, 0, &Space),
    Function(Token::String, ResultKind::kString, "&S", "Len character", kPure, 0, &StringOf),
    Function(Token::StrConv, ResultKind::kString, "$&", "Str Conv", kPure, 0, &StrConv),
};

} // namespace

BuiltinGroup StringFunctions() { return kRecords; }

} // namespace brannoc
