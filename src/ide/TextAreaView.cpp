#include "ide/TextAreaView.h"

#include "ide/CodeLineScan.h"

#include <algorithm>

namespace brannoc::ide {

namespace {

// A stretch of text columns drawn in one pair of colours.
struct ColourRun {
    int start = 0;
    int end = 0;
    COLORREF text = 0;
    COLORREF background = 0;
};

// The colours of each column of a line before the selection is laid over them.
std::vector<ColourRun> TokenRuns(std::string_view line, const KeywordSets& keywords, const EditorColours& colours,
                                 COLORREF background)
{
    std::vector<ColourRun> runs;
    COLORREF text = colours.Resolve(EditorColour::Text);
    ScanCodeLine(line, keywords, [&](const CodeToken& token) {
        COLORREF colour = text;
        if (token.kind == TokenKind::Comment)
            colour = colours.Resolve(EditorColour::Comment);
        else if (token.kind == TokenKind::Keyword)
            colour = colours.Resolve(KeywordSets::ColourOfSet(token.keywordSet));
        runs.push_back(ColourRun{static_cast<int>(token.start), static_cast<int>(token.start + token.length), colour,
                                 background});
    });
    return runs;
}

// Splits runs at the selected columns [from, to) and gives those the selection's colours.
std::vector<ColourRun> OverlaySelection(const std::vector<ColourRun>& runs, int from, int to, COLORREF text,
                                        COLORREF background)
{
    if (from >= to)
        return runs;
    std::vector<ColourRun> result;
    for (const ColourRun& run : runs) {
        int cuts[4] = {run.start, std::clamp(from, run.start, run.end), std::clamp(to, run.start, run.end), run.end};
        for (int i = 0; i < 3; ++i) {
            if (cuts[i] >= cuts[i + 1])
                continue;
            ColourRun piece = run;
            piece.start = cuts[i];
            piece.end = cuts[i + 1];
            if (i == 1) {
                piece.text = text;
                piece.background = background;
            }
            result.push_back(piece);
        }
    }
    return result;
}

class ScopedObject final {
public:
    ScopedObject(HDC dc, HGDIOBJ object) : m_dc(dc), m_old(SelectObject(dc, object)) {}
    ~ScopedObject() { SelectObject(m_dc, m_old); }
    ScopedObject(const ScopedObject&) = delete;
    ScopedObject& operator=(const ScopedObject&) = delete;

private:
    HDC m_dc;
    HGDIOBJ m_old;
};

// Owns a GDI object; declared before the ScopedObject that selects it, so that it is deleted only
// after being deselected.
class GdiObject final {
public:
    explicit GdiObject(HGDIOBJ object) : m_object(object) {}
    ~GdiObject()
    {
        if (m_object)
            DeleteObject(m_object);
    }
    GdiObject(const GdiObject&) = delete;
    GdiObject& operator=(const GdiObject&) = delete;
    HGDIOBJ Get() const { return m_object; }

private:
    HGDIOBJ m_object;
};

void FillSolid(HDC dc, const RECT& rect, COLORREF colour)
{
    SetBkColor(dc, colour);
    ExtTextOutA(dc, 0, 0, ETO_OPAQUE, &rect, nullptr, 0, nullptr);
}

} // namespace

void TextAreaView::SetFont(HFONT font)
{
    m_font = font;
    HDC dc = GetDC(nullptr);
    HGDIOBJ old = SelectObject(dc, font ? static_cast<HGDIOBJ>(font) : GetStockObject(SYSTEM_FIXED_FONT));
    TEXTMETRICA metrics{};
    GetTextMetricsA(dc, &metrics);
    SelectObject(dc, old);
    ReleaseDC(nullptr, dc);
    m_lineHeight = std::max<int>(1, metrics.tmHeight);
    m_charWidth = std::max<int>(1, metrics.tmAveCharWidth);
}

int TextAreaView::VisibleLines() const
{
    return std::max(1, m_height / m_lineHeight);
}

int TextAreaView::VisibleColumns() const
{
    return std::max(1, (m_width - TextLeft()) / m_charWidth);
}

TextAreaView::LineLayout TextAreaView::Layout(std::string_view line, int tabWidth) const
{
    LineLayout layout;
    layout.shownColumn.reserve(line.size() + 1);
    for (char c : line) {
        layout.shownColumn.push_back(static_cast<int>(layout.shown.size()));
        if (c == '\t')
            layout.shown.append(tabWidth - layout.shown.size() % tabWidth, ' ');
        else
            layout.shown += c;
    }
    layout.shownColumn.push_back(static_cast<int>(layout.shown.size()));
    return layout;
}

int TextAreaView::ExtentOf(HDC dc, const LineLayout& layout, int shownColumns) const
{
    if (shownColumns <= 0)
        return 0;
    SIZE size{};
    GetTextExtentPoint32A(dc, layout.shown.data(), std::min<int>(shownColumns, static_cast<int>(layout.shown.size())),
                          &size);
    int beyond = shownColumns - static_cast<int>(layout.shown.size());
    return size.cx + (beyond > 0 ? beyond * m_charWidth : 0);
}

void TextAreaView::Paint(HDC dc, const RECT& area, TextDocument& document, const EditorColours& colours,
                         const KeywordSets& keywords, PaintOptions options) const
{
    ScopedObject font(dc, m_font ? static_cast<HGDIOBJ>(m_font) : GetStockObject(SYSTEM_FIXED_FONT));
    int firstRow = std::max<int>(0, area.top / m_lineHeight);
    int lastRow = (area.bottom - 1) / m_lineHeight;
    for (int row = firstRow; row <= lastRow; ++row) {
        int line = document.FirstVisibleLine() + row;
        int y = row * m_lineHeight;
        if (line >= document.LineCount()) {
            RECT rest{area.left, y, area.right, area.bottom};
            FillSolid(dc, rest, colours.Resolve(EditorColour::Background));
            RECT divider{DividerX(), y, DividerX() + 1, area.bottom};
            FillSolid(dc, divider, kSeparatorColour);
            break;
        }
        PaintLine(dc, line, y, document, colours, keywords, options);
    }
}

void TextAreaView::PaintMargin(HDC dc, int line, int y, TextDocument& document, const EditorColours& colours) const
{
    COLORREF background = colours.Resolve(EditorColour::Background);
    RECT margin{0, y, DividerX(), y + m_lineHeight};
    FillSolid(dc, margin, background);
    RECT divider{DividerX(), y, DividerX() + 1, y + m_lineHeight};
    FillSolid(dc, divider, kSeparatorColour);
    int size = m_lineHeight;
    if (document.BreakPoint(line) && !colours.IsOff(EditorColour::BreakPoint)) {
        GdiObject brush(CreateSolidBrush(colours.Resolve(EditorColour::BreakPoint)));
        GdiObject pen(CreatePen(PS_SOLID, 1, colours.Resolve(EditorColour::BreakPoint)));
        ScopedObject selectBrush(dc, brush.Get()), selectPen(dc, pen.Get());
        Ellipse(dc, 2, y + 2, size - 2, y + size - 2);
    }
    if (document.CurrentStatement().first == line && !colours.IsOff(EditorColour::CurrentStatement)) {
        // An arrow pointing right: a shaft from the left and a head reaching the margin's right side.
        int top = y + 2, bottom = y + size - 2, middle = y + size / 2;
        int shaftTop = middle - size / 6, shaftBottom = middle + size / 6, head = size / 2;
        POINT arrow[7] = {{2, shaftTop}, {head, shaftTop}, {head, top}, {size - 2, middle},
                          {head, bottom}, {head, shaftBottom}, {2, shaftBottom}};
        GdiObject brush(CreateSolidBrush(colours.Resolve(EditorColour::CurrentStatement)));
        GdiObject pen(CreatePen(PS_SOLID, 1, colours.Resolve(EditorColour::Text)));
        ScopedObject selectBrush(dc, brush.Get()), selectPen(dc, pen.Get());
        Polygon(dc, arrow, 7);
    }
}

void TextAreaView::PaintLine(HDC dc, int line, int y, TextDocument& document, const EditorColours& colours,
                             const KeywordSets& keywords, PaintOptions options) const
{
    PaintMargin(dc, line, y, document, colours);
    std::string_view text = document.Line(line);
    LineLayout layout = Layout(text, document.TabWidth());

    COLORREF normalText = colours.Resolve(EditorColour::Text);
    COLORREF normalBackground = colours.Resolve(EditorColour::Background);
    COLORREF background = normalBackground;
    std::vector<ColourRun> runs;
    int length = static_cast<int>(text.size());
    if (document.CurrentStatement().Holds(line) && !colours.IsOff(EditorColour::CurrentStatement)) {
        background = colours.Resolve(EditorColour::CurrentStatement);
        runs.push_back(ColourRun{0, length, ContrastingTextColour(background, normalText, normalBackground), background});
    } else if (document.EditingLine() == line) {
        runs.push_back(ColourRun{0, length, normalText, background});
    } else if (document.ErrorStatement().Holds(line) && !colours.IsOff(EditorColour::ErrorText)) {
        runs.push_back(ColourRun{0, length, colours.Resolve(EditorColour::ErrorText), background});
    } else if (document.BreakPoint(line) && !colours.IsOff(EditorColour::BreakPoint)) {
        background = colours.Resolve(EditorColour::BreakPoint);
        runs.push_back(ColourRun{0, length, ContrastingTextColour(background, normalText, normalBackground), background});
    } else {
        runs = TokenRuns(text, keywords, colours, background);
    }

    TextPosition start = document.SelectionStart(), end = document.SelectionEnd();
    if (document.HasSelection() && line >= start.line && line <= end.line) {
        int from = line == start.line ? start.column : 0;
        int to = line == end.line ? end.column : length;
        runs = OverlaySelection(runs, from, to, colours.Resolve(EditorColour::SelectedText),
                                colours.Resolve(EditorColour::SelectedBackground));
    }

    int scroll = document.FirstVisibleColumn() * m_charWidth;
    int left = TextLeft() - scroll;
    RECT gap{DividerX() + 1, y, TextLeft(), y + m_lineHeight};
    int right = left;
    GdiObject clip(CreateRectRgn(TextLeft(), y, m_width > 0 ? std::max<int>(m_width, TextLeft()) : 32767, y + m_lineHeight));
    SelectClipRgn(dc, static_cast<HRGN>(clip.Get()));
    for (const ColourRun& run : runs) {
        int shownStart = layout.shownColumn[run.start], shownEnd = layout.shownColumn[run.end];
        RECT box{left + ExtentOf(dc, layout, shownStart), y, left + ExtentOf(dc, layout, shownEnd), y + m_lineHeight};
        SetTextColor(dc, run.text);
        SetBkColor(dc, run.background);
        ExtTextOutA(dc, box.left, y, ETO_OPAQUE, &box, layout.shown.data() + shownStart,
                    static_cast<UINT>(shownEnd - shownStart), nullptr);
        right = std::max<int>(right, box.right);
    }
    RECT rest{std::max(right, TextLeft()), y, std::max<int>(m_width, right) + 1, y + m_lineHeight};
    FillSolid(dc, rest, background);
    SelectClipRgn(dc, nullptr);
    FillSolid(dc, gap, normalBackground);

    if ((document.LineClassOf(line) & LineClass::ProcedureEnd) || line == document.EndOfDeclarations()) {
        RECT separator{DividerX() + 1, y + m_lineHeight - 1, std::max<int>(m_width, TextLeft() + 1), y + m_lineHeight};
        FillSolid(dc, separator, kSeparatorColour);
    }
    if (!options.active && !options.readOnly && document.Caret().line == line) {
        POINT caret = PointOf(document, document.Caret());
        if (caret.x >= TextLeft()) {
            RECT mark{caret.x, y, caret.x + 1, y + m_lineHeight};
            FillSolid(dc, mark, normalText);
        }
    }
}

POINT TextAreaView::PointOf(const TextDocument& document, TextPosition position) const
{
    position = document.Clamp(position);
    LineLayout layout = Layout(document.Line(position.line), document.TabWidth());
    HDC dc = GetDC(nullptr);
    ScopedObject font(dc, m_font ? static_cast<HGDIOBJ>(m_font) : GetStockObject(SYSTEM_FIXED_FONT));
    int x = ExtentOf(dc, layout, layout.shownColumn[position.column]);
    ReleaseDC(nullptr, dc);
    return POINT{TextLeft() - document.FirstVisibleColumn() * m_charWidth + x,
                 (position.line - document.FirstVisibleLine()) * m_lineHeight};
}

TextPosition TextAreaView::PositionAt(const TextDocument& document, int x, int y, bool nearest) const
{
    int row = y >= 0 ? y / m_lineHeight : -1 - (-y - 1) / m_lineHeight;
    int line = std::clamp(document.FirstVisibleLine() + row, 0, document.LineCount() - 1);
    std::string_view text = document.Line(line);
    LineLayout layout = Layout(text, document.TabWidth());
    int offset = x - (TextLeft() - document.FirstVisibleColumn() * m_charWidth);
    HDC dc = GetDC(nullptr);
    ScopedObject font(dc, m_font ? static_cast<HGDIOBJ>(m_font) : GetStockObject(SYSTEM_FIXED_FONT));
    // Step back from the end until the column's left edge lies at or left of x.
    int column = static_cast<int>(text.size());
    while (column > 0 && ExtentOf(dc, layout, layout.shownColumn[column]) > offset)
        column = static_cast<int>(CharPrevExA(CP_ACP, text.data(), text.data() + column, 0) - text.data());
    if (nearest && column < static_cast<int>(text.size())) {
        int next = static_cast<int>(CharNextExA(CP_ACP, text.data() + column, 0) - text.data());
        int leftEdge = ExtentOf(dc, layout, layout.shownColumn[column]);
        int rightEdge = ExtentOf(dc, layout, layout.shownColumn[next]);
        if (offset - leftEdge > rightEdge - offset)
            column = next;
    }
    ReleaseDC(nullptr, dc);
    return TextPosition{line, column};
}

} // namespace brannoc::ide
