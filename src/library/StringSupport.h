#pragma once
// Pieces the string built-ins share: strings made from bytes, case mapping through the platform's
// locale string mapping, and searching by code unit or by byte.
#include "library/BuiltinArguments.h"

#include <string>
#include <string_view>

namespace brannoc {

// The bytes of a string's storage (its byte length, which may be odd).
std::string_view StorageBytes(BSTR text);

// Sets the result to a string whose storage is exactly bytes. False after raising "Out of memory.".
[[nodiscard]] bool SetStorageBytes(BuiltinResult& result, std::string_view bytes);

// Maps text with LCMapStringW in the engine's locale (flags such as LCMAP_UPPERCASE); an empty text is
// returned unchanged. False after raising 10620 (the platform refused) or "Out of memory.".
[[nodiscard]] bool MapString(std::wstring_view text, DWORD flags, Bstr& mapped);

// Whole-string comparison in the engine locale's text order, ignoring case: both strings are narrowed
// to the ANSI code page and compared by their sort keys. -1, 0 or 1; false after raising.
[[nodiscard]] bool CompareText(std::wstring_view left, std::wstring_view right, int& order);

// The text narrowed to the ANSI code page (the engine's code page for 8-bit text).
std::string Narrow(std::wstring_view text);

// Case-insensitive search in the engine locale for the list functions (Split, Filter with a text
// compare): the 0-based position of the first match at or after from, or npos.
std::size_t FindIgnoringCase(std::wstring_view text, std::wstring_view pattern, std::size_t from);

} // namespace brannoc
