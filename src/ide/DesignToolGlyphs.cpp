#include "ide/DesignToolGlyphs.h"

#include "ide/DialogEditor.h"
#include "ide/GlyphPaint.h"

namespace brannoc::ide {

namespace {

void Line(HDC dc, int x, int y, int x2, int y2, COLORREF ink)
{
    GlyphPaint paint(dc, ink, ink);
    MoveToEx(dc, x, y, nullptr);
    LineTo(dc, x2, y2);
}

void Letters(HDC dc, int x, int y, const char* text, COLORREF ink)
{
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, ink);
    HGDIOBJ old = SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
    RECT r{x, y, x + 16, y + 16};
    DrawTextA(dc, text, -1, &r, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    SelectObject(dc, old);
}

void Arrow(HDC dc, int x, int y, bool up, COLORREF ink)
{
    POINT head[] = {{x + 4, y + (up ? 6 : 9)}, {x + 8, y + (up ? 2 : 13)}, {x + 12, y + (up ? 6 : 9)}};
    GlyphShape(dc, head, 3, ink, ink);
    Line(dc, x + 8, y + (up ? 6 : 2), x + 8, y + (up ? 14 : 10), ink);
}

void Tools(HDC dc, int x, int y, int command, COLORREF ink, COLORREF white, COLORREF blue)
{
    switch (command) {
    case 401: {
        POINT pointer[] = {{x + 4, y + 1}, {x + 4, y + 13}, {x + 7, y + 10}, {x + 10, y + 15}, {x + 12, y + 14},
                           {x + 9, y + 9}, {x + 13, y + 9}};
        GlyphShape(dc, pointer, 7, ink, white);
        break;
    }
    case 402: Letters(dc, x, y, "Aa", ink); break;
    case 403:
        GlyphBox(dc, x, y + 3, x + 16, y + 13, ink, white);
        Line(dc, x + 3, y + 5, x + 3, y + 11, ink);
        break;
    case 404:
        GlyphBox(dc, x + 1, y + 4, x + 15, y + 15, ink, GetSysColor(COLOR_BTNFACE));
        GlyphBox(dc, x + 3, y + 2, x + 9, y + 6, GetSysColor(COLOR_BTNFACE), GetSysColor(COLOR_BTNFACE));
        Line(dc, x + 3, y + 4, x + 9, y + 4, ink);
        break;
    case 405:
        GlyphBox(dc, x + 2, y + 3, x + 12, y + 13, ink, white);
        Line(dc, x + 4, y + 7, x + 6, y + 10, ink);
        Line(dc, x + 6, y + 10, x + 11, y + 4, ink);
        break;
    case 406: {
        GlyphPaint paint(dc, ink, white);
        Ellipse(dc, x + 2, y + 3, x + 13, y + 14);
        GlyphBox(dc, x + 6, y + 7, x + 9, y + 10, ink, ink);
        break;
    }
    case 407: case 409:
        GlyphBox(dc, x, y + 2, x + 16, y + 8, ink, white);
        GlyphBox(dc, x + 10, y + 2, x + 16, y + 8, ink, GetSysColor(COLOR_BTNFACE));
        if (command == 407)
            GlyphBox(dc, x, y + 8, x + 16, y + 15, ink, white);
        break;
    case 408:
        GlyphBox(dc, x, y + 1, x + 16, y + 15, ink, white);
        for (int row = 0; row < 3; ++row)
            Line(dc, x + 3, y + 4 + row * 3, x + 12, y + 4 + row * 3, blue);
        break;
    case 410: case 411: case 412:
        GlyphBox(dc, x, y + 3, x + 16, y + 13, ink, GetSysColor(COLOR_BTNFACE));
        Letters(dc, x, y, command == 411 ? "OK" : command == 412 ? "X" : "", ink);
        break;
    case 414: {
        GlyphBox(dc, x, y + 1, x + 16, y + 15, ink, RGB(200, 230, 255));
        POINT hill[] = {{x + 2, y + 13}, {x + 7, y + 6}, {x + 11, y + 11}, {x + 14, y + 8}, {x + 14, y + 13}};
        GlyphShape(dc, hill, 5, blue, blue);
        break;
    }
    default: break;
    }
}

void Commands(HDC dc, int x, int y, int command, COLORREF ink, COLORREF white, COLORREF blue)
{
    switch (command) {
    case 450:
        GlyphBox(dc, x + 1, y + 1, x + 15, y + 15, ink, white);
        for (int line = 0; line < 3; ++line)
            GlyphBox(dc, x + 4, y + 4 + line * 3, x + 12, y + 5 + line * 3, blue, blue);
        break;
    case 451: {
        POINT play[] = {{x + 4, y + 2}, {x + 13, y + 8}, {x + 4, y + 14}};
        GlyphShape(dc, play, 3, ink, ink == RGB(0, 0, 0) ? RGB(0, 128, 0) : ink);
        break;
    }
    case 452:
        Line(dc, x + 3, y + 3, x + 13, y + 13, ink);
        Line(dc, x + 4, y + 3, x + 14, y + 13, ink);
        Line(dc, x + 13, y + 3, x + 3, y + 13, ink);
        Line(dc, x + 14, y + 3, x + 4, y + 13, ink);
        break;
    case 453: {
        Line(dc, x + 4, y + 1, x + 11, y + 11, ink);
        Line(dc, x + 11, y + 1, x + 4, y + 11, ink);
        GlyphPaint paint(dc, ink, white);
        Ellipse(dc, x + 1, y + 10, x + 6, y + 15);
        Ellipse(dc, x + 10, y + 10, x + 15, y + 15);
        break;
    }
    case 454:
        GlyphBox(dc, x, y, x + 10, y + 12, ink, white);
        GlyphBox(dc, x + 5, y + 4, x + 15, y + 16, ink, white);
        break;
    case 455:
        GlyphBox(dc, x + 1, y + 2, x + 12, y + 15, ink, RGB(224, 192, 64));
        GlyphBox(dc, x + 5, y + 6, x + 15, y + 16, ink, white);
        break;
    case 456: Arrow(dc, x, y, true, blue); break;
    case 457: Arrow(dc, x, y, false, blue); break;
    case 458: case 459:
        GlyphBox(dc, x + 1, y + (command == 459 ? 1 : 8), x + 15, y + (command == 459 ? 8 : 15), ink, white);
        GlyphBox(dc, x + 1, y + (command == 459 ? 8 : 1), x + 15, y + (command == 459 ? 15 : 8), ink, blue);
        break;
    case 460:
        for (int row = 0; row < 4; ++row)
            for (int column = 0; column < 4; ++column)
                GlyphBox(dc, x + 1 + column * 4, y + 1 + row * 4, x + 3 + column * 4, y + 3 + row * 4, ink, ink);
        break;
    case 461:
        GlyphBox(dc, x + 1, y + 1, x + 15, y + 15, ink, blue);
        GlyphBox(dc, x + 4, y + 1, x + 12, y + 7, ink, white);
        break;
    default: break;
    }
}

} // namespace

bool IsDesignToolCommand(int command)
{
    return (command >= DE_SELECT && command <= DE_LAST_TOOL) || (command >= DE_PROPERTIES && command <= DE_SAVE_AND_EXIT);
}

void DrawDesignToolGlyph(HDC dc, int x, int y, int command, COLORREF ink)
{
    const bool coloured = ink == RGB(0, 0, 0);
    const COLORREF white = coloured ? RGB(255, 255, 255) : GetSysColor(COLOR_BTNFACE);
    const COLORREF blue = coloured ? RGB(0, 0, 160) : ink;
    if (command < DE_PROPERTIES)
        Tools(dc, x, y, command, ink, white, blue);
    else
        Commands(dc, x, y, command, ink, white, blue);
}

} // namespace brannoc::ide
