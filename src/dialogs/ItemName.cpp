#include "dialogs/ItemName.h"

#include <windows.h>

namespace brannoc {

namespace {

// Letters as the ANSI code page counts them.
bool IsAnsiLetter(wchar_t c)
{
    char narrow = 0;
    BOOL lossy = FALSE;
    if (WideCharToMultiByte(CP_ACP, 0, &c, 1, &narrow, 1, nullptr, &lossy) != 1 || lossy)
        return false;
    return IsCharAlphaA(narrow) != FALSE;
}

} // namespace

std::wstring ItemNameFromText(std::wstring_view text)
{
    constexpr std::size_t kMaxLength = 31;
    std::wstring name;
    std::size_t position = 0;
    while (position < text.size() && !IsAnsiLetter(text[position]))
        ++position;
    int spaces = 0;
    for (; position < text.size() && name.size() < kMaxLength; ++position) {
        const wchar_t c = text[position];
        if (IsAnsiLetter(c) || (c >= L'0' && c <= L'9') || c == L'_') {
            name += c;
            continue;
        }
        if (c == L' ' && ++spaces == 2)
            break;
    }
    return name;
}

} // namespace brannoc
