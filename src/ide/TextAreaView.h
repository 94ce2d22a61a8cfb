#pragma once
// How the text area lays out and paints a document: a margin one line high wide for break-point dots
// and the execution arrow, a vertical line, a gap, then the text shifted by the first visible column.
// Only the visible lines are laid out and painted.
#include "ide/EditorColours.h"
#include "ide/KeywordSets.h"
#include "ide/TextDocument.h"

#include <windows.h>

#include <string>
#include <vector>

namespace brannoc::ide {

struct PaintOptions {
    bool active = true;    // the caret is shown; an inactive control draws a thin line in its place
    bool readOnly = false;
};

class TextAreaView final {
public:
    // Takes the metrics of `font` (not owned) as selected into a screen-compatible DC.
    void SetFont(HFONT font);
    HFONT Font() const { return m_font; }
    void SetClientSize(int width, int height) { m_width = width; m_height = height; }

    int LineHeight() const { return m_lineHeight; }
    int CharWidth() const { return m_charWidth; }
    int MarginWidth() const { return m_lineHeight; }
    // x of the vertical line, and of text column 0 when not scrolled.
    int DividerX() const { return m_lineHeight; }
    int TextLeft() const { return m_lineHeight + 1 + m_charWidth + 6; }
    int VisibleLines() const;       // whole lines that fit, at least 1
    int VisibleColumns() const;

    void Paint(HDC dc, const RECT& area, TextDocument& document, const EditorColours& colours,
               const KeywordSets& keywords, PaintOptions options) const;

    // The client position of a text position's left edge (top of its line).
    POINT PointOf(const TextDocument& document, TextPosition position) const;
    // The text position nearest to a client point: the boundary left of x, or the nearer one when
    // `nearest` (insert mode).
    TextPosition PositionAt(const TextDocument& document, int x, int y, bool nearest) const;

private:
    struct LineLayout {
        std::string shown;             // tabs expanded
        std::vector<int> shownColumn;  // per text column 0..length
    };
    LineLayout Layout(std::string_view line, int tabWidth) const;
    int ExtentOf(HDC dc, const LineLayout& layout, int shownColumns) const;
    void PaintLine(HDC dc, int line, int y, TextDocument& document, const EditorColours& colours,
                   const KeywordSets& keywords, PaintOptions options) const;
    void PaintMargin(HDC dc, int line, int y, TextDocument& document, const EditorColours& colours) const;

    HFONT m_font = nullptr;
    int m_lineHeight = 16;
    int m_charWidth = 8;
    int m_width = 0;
    int m_height = 0;
};

} // namespace brannoc::ide
