#include "ide/EditorColours.h"

namespace brannoc::ide {

EditorColours::EditorColours()
    : m_entries{0xFF0000, 0x800000, 0x808000, 0x008000, 0x0000FF, 0x00FFFF, 0x000080,
                kSystemColourFlag | COLOR_WINDOWTEXT, kSystemColourFlag | COLOR_WINDOW,
                kSystemColourFlag | COLOR_HIGHLIGHTTEXT, kSystemColourFlag | COLOR_HIGHLIGHT}
{
}

COLORREF EditorColours::Resolve(EditorColour index) const
{
    DWORD entry = Entry(index);
    if (entry & kSystemColourFlag)
        return GetSysColor(static_cast<int>(entry & 0xFF));
    return entry & 0xFFFFFF;
}

namespace {

unsigned IntegerSquareRoot(unsigned value)
{
    unsigned root = 0;
    while ((root + 1) * (root + 1) <= value)
        ++root;
    return root;
}

int Brightness(COLORREF colour)
{
    unsigned r = GetRValue(colour), g = GetGValue(colour), b = GetBValue(colour);
    return static_cast<int>(IntegerSquareRoot(r * r + g * g + b * b));
}

} // namespace

COLORREF ContrastingTextColour(COLORREF background, COLORREF text, COLORREF normalBackground)
{
    int base = Brightness(background);
    int textDistance = Brightness(text) - base;
    int backgroundDistance = Brightness(normalBackground) - base;
    if (textDistance < 0)
        textDistance = -textDistance;
    if (backgroundDistance < 0)
        backgroundDistance = -backgroundDistance;
    return textDistance >= backgroundDistance ? text : normalBackground;
}

} // namespace brannoc::ide
