// Glyphs of the completion list, drawn with plain GDI shapes so that they scale with no bitmaps.
#include "ide/CompletionGlyphs.h"

#include "ide/GlyphPaint.h"

namespace brannoc::ide {

namespace {

constexpr int kSize = 12;

void Line(HDC dc, COLORREF colour, int x1, int y1, int x2, int y2)
{
    GlyphPaint paint(dc, colour, colour);
    MoveToEx(dc, x1, y1, nullptr);
    LineTo(dc, x2, y2);
}

// A library: a closed book with a light spine.
void Library(HDC dc, int x, int y)
{
    {
        GlyphPaint paint(dc, RGB(110, 30, 30), RGB(170, 50, 50));
        Rectangle(dc, x + 1, y, x + kSize - 1, y + kSize);
    }
    Line(dc, RGB(240, 200, 200), x + 3, y + 1, x + 3, y + kSize - 1);
    Line(dc, RGB(255, 255, 255), x + 5, y + 3, x + kSize - 3, y + 3);
}

// A type: a box with a lid.
void Type(HDC dc, int x, int y)
{
    {
        GlyphPaint paint(dc, RGB(0, 100, 110), RGB(40, 170, 180));
        Rectangle(dc, x, y + 1, x + kSize, y + kSize);
    }
    Line(dc, RGB(0, 100, 110), x, y + 4, x + kSize, y + 4);
    Line(dc, RGB(255, 255, 255), x + 4, y + 6, x + kSize - 4, y + 6);
}

// A value: a blue tag with an equals sign.
void Value(HDC dc, int x, int y)
{
    {
        GlyphPaint paint(dc, RGB(20, 60, 150), RGB(60, 110, 210));
        RoundRect(dc, x, y + 2, x + kSize, y + kSize - 1, 4, 4);
    }
    Line(dc, RGB(255, 255, 255), x + 3, y + 5, x + kSize - 3, y + 5);
    Line(dc, RGB(255, 255, 255), x + 3, y + 8, x + kSize - 3, y + 8);
}

// A method: a purple diamond.
void Method(HDC dc, int x, int y)
{
    GlyphPaint paint(dc, RGB(90, 30, 120), RGB(150, 70, 190));
    const POINT diamond[] = {{x + kSize / 2, y}, {x + kSize, y + kSize / 2}, {x + kSize / 2, y + kSize}, {x, y + kSize / 2}};
    Polygon(dc, diamond, 4);
}

// A property: a grey card with two lines of writing; the default property adds a gold dot.
void Property(HDC dc, int x, int y, bool isDefault)
{
    {
        GlyphPaint paint(dc, RGB(60, 90, 60), RGB(120, 170, 110));
        Rectangle(dc, x + 1, y + 1, x + kSize - 1, y + kSize - 1);
    }
    Line(dc, RGB(255, 255, 255), x + 3, y + 4, x + kSize - 3, y + 4);
    Line(dc, RGB(255, 255, 255), x + 3, y + 7, x + kSize - 5, y + 7);
    if (isDefault) {
        GlyphPaint paint(dc, RGB(150, 110, 0), RGB(250, 200, 30));
        Ellipse(dc, x + kSize - 6, y + kSize - 6, x + kSize + 1, y + kSize + 1);
    }
}

} // namespace

void DrawKindGlyph(HDC dc, char kind, const RECT& box)
{
    const int x = box.left + (box.right - box.left - kSize) / 2;
    const int y = box.top + (box.bottom - box.top - kSize) / 2;
    switch (kind) {
    case 'L': Library(dc, x, y); break;
    case 'G': Type(dc, x, y); break;
    case 'E': Value(dc, x, y); break;
    case 'A': Method(dc, x, y); break;
    case 'B': Property(dc, x, y, false); break;
    case 'C': Property(dc, x, y, true); break;
    default: break;
    }
}

} // namespace brannoc::ide
