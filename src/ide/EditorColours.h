#pragma once
// The editor's colour table: 11 entries, each 0x00BBGGRR or, with the top bit set, a system colour.
#include <windows.h>

#include <array>

namespace brannoc::ide {

enum class EditorColour : int {
    Keyword0 = 0,
    Keyword1 = 1,
    Keyword2 = 2,
    Comment = 3,
    ErrorText = 4,
    CurrentStatement = 5,
    BreakPoint = 6,
    Text = 7,
    Background = 8,
    SelectedText = 9,
    SelectedBackground = 10,
};

// A colour entry of this value switches its class or highlight off.
constexpr COLORREF kColourOff = 0xFFFFFF;
constexpr DWORD kSystemColourFlag = 0x80000000u;
constexpr COLORREF kSeparatorColour = 0x808080;

class EditorColours final {
public:
    static constexpr int kCount = 11;

    EditorColours();
    // The entry as stored (a system-colour entry keeps its flag).
    DWORD Entry(EditorColour index) const { return m_entries[static_cast<int>(index)]; }
    void SetEntry(EditorColour index, DWORD value) { m_entries[static_cast<int>(index)] = value; }
    // The entry as an RGB value, system colours resolved.
    COLORREF Resolve(EditorColour index) const;
    bool IsOff(EditorColour index) const { return Entry(index) == kColourOff; }

private:
    std::array<DWORD, kCount> m_entries;
};

// Of the text and background colours, the one whose brightness differs more from `background`'s;
// brightness is the integer square root of R² + G² + B².
COLORREF ContrastingTextColour(COLORREF background, COLORREF text, COLORREF normalBackground);

} // namespace brannoc::ide
