#pragma once
// Texts that host tests pass to and take from the engine object.
#include <windows.h>
#include <oleauto.h>

#include <initializer_list>
#include <string>

namespace brannoc::testing_text {

// The text of a BSTR result, which is freed.
inline std::wstring TakeText(BSTR text)
{
    std::wstring result = text ? std::wstring(text, SysStringLen(text)) : std::wstring();
    SysFreeString(text);
    return result;
}

// Source lines joined with CR LF: line n of the macro is element n - 1.
inline std::wstring Lines(std::initializer_list<const wchar_t*> lines)
{
    std::wstring text;
    for (const wchar_t* line : lines)
        text += std::wstring(line) + L"\r\n";
    return text;
}

} // namespace brannoc::testing_text
