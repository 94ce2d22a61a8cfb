#pragma once
// Drawing steps of the small button faces (toolbar and dialog-editor toolbox): a pen and a brush
// selected for one step, and the boxes, lines and shapes drawn with them.
#include <windows.h>

namespace brannoc::ide {

// Selects a solid one-pixel pen and a solid brush into a device context for one drawing step; the old
// ones are selected back and the new ones deleted at the end of the step.
class GlyphPaint final {
public:
    GlyphPaint(HDC dc, COLORREF line, COLORREF fill)
        : m_dc(dc), m_pen(CreatePen(PS_SOLID, 1, line)), m_brush(CreateSolidBrush(fill))
    {
        m_oldPen = SelectObject(dc, m_pen);
        m_oldBrush = SelectObject(dc, m_brush);
    }
    ~GlyphPaint()
    {
        SelectObject(m_dc, m_oldPen);
        SelectObject(m_dc, m_oldBrush);
        DeleteObject(m_pen);
        DeleteObject(m_brush);
    }
    GlyphPaint(const GlyphPaint&) = delete;
    GlyphPaint& operator=(const GlyphPaint&) = delete;

private:
    HDC m_dc;
    HPEN m_pen;
    HBRUSH m_brush;
    HGDIOBJ m_oldPen;
    HGDIOBJ m_oldBrush;
};

inline void GlyphBox(HDC dc, int x, int y, int x2, int y2, COLORREF line, COLORREF fill)
{
    GlyphPaint paint(dc, line, fill);
    Rectangle(dc, x, y, x2, y2);
}

inline void GlyphShape(HDC dc, const POINT* points, int count, COLORREF line, COLORREF fill)
{
    GlyphPaint paint(dc, line, fill);
    Polygon(dc, points, count);
}

} // namespace brannoc::ide
