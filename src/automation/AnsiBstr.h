#pragma once
// ANSI text held in byte-length automation strings (SysAllocStringByteLen), the form in which the
// exported functions hand 8-bit text to hosts and ANSI dispatch classes receive String parameters.
#include <windows.h>
#include <oleauto.h>

#include <string_view>

namespace brannoc::automation {

// A new byte-length BSTR holding bytes; never null unless allocation failed (empty input: empty string).
BSTR AllocateAnsiBstr(std::string_view bytes);
// The ANSI (process code page) form of a wide text, as a new byte-length BSTR.
BSTR AnsiBstrFromWide(std::wstring_view text);
// The bytes of a byte-length BSTR (empty for null).
std::string_view AnsiBytes(BSTR text);
// The wide form of ANSI bytes, as a new ordinary BSTR (empty, not null, for empty input).
BSTR WideBstrFromAnsi(std::string_view bytes);
// The characters of an ordinary BSTR (empty for null).
std::wstring_view WideChars(BSTR text);

} // namespace brannoc::automation
