#pragma once
// LSet and RSet on strings: the destination keeps its length and its characters are rewritten in place.
#include <oleauto.h>

#include <string_view>

namespace brannoc {

// Fills target with blanks and puts text at its left (or, with right, its right) end; a text longer than
// target gives its leftmost characters that fit.
inline void AlignText(BSTR target, std::wstring_view text, bool right) noexcept
{
    const UINT length = target ? SysStringLen(target) : 0;
    const UINT copied = static_cast<UINT>(text.size() < length ? text.size() : length);
    const UINT start = right ? length - copied : 0;
    for (UINT i = 0; i < length; ++i)
        target[i] = L' ';
    for (UINT i = 0; i < copied; ++i)
        target[start + i] = text[i];
}

} // namespace brannoc
