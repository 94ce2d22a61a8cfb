#include "ide/ToolbarGlyphs.h"

#include "ide/CommandTable.h"
#include "ide/DesignToolGlyphs.h"
#include "ide/GlyphPaint.h"

#include <iterator>

namespace brannoc::ide {

namespace {

void Page(HDC dc, int x, int y, COLORREF ink)
{
    POINT page[] = {{x + 2, y}, {x + 9, y}, {x + 12, y + 3}, {x + 12, y + 15}, {x + 2, y + 15}};
    GlyphShape(dc, page, 5, ink, RGB(255, 255, 255));
}

void Arrow(HDC dc, int x, int y, bool right, COLORREF ink)
{
    POINT head[] = {{x + (right ? 10 : 4), y + 2}, {x + (right ? 14 : 0), y + 6}, {x + (right ? 10 : 4), y + 10}};
    GlyphShape(dc, head, 3, ink, ink);
    GlyphBox(dc, x + (right ? 3 : 4), y + 5, x + (right ? 11 : 12), y + 8, ink, ink);
}

void Draw(HDC dc, int x, int y, int command, COLORREF ink)
{
    const COLORREF blue = ink == RGB(0, 0, 0) ? RGB(0, 0, 160) : ink;
    const COLORREF green = ink == RGB(0, 0, 0) ? RGB(0, 128, 0) : ink;
    const COLORREF red = ink == RGB(0, 0, 0) ? RGB(192, 0, 0) : ink;
    const COLORREF yellow = ink == RGB(0, 0, 0) ? RGB(224, 192, 64) : RGB(255, 255, 255);
    switch (command) {
    case CMD_TOOLBAR_NEW:
    case CMD_NEW:
        Page(dc, x, y, ink);
        break;
    case CMD_OPEN: {
        POINT folder[] = {{x, y + 4}, {x + 5, y + 4}, {x + 6, y + 6}, {x + 14, y + 6}, {x + 14, y + 14}, {x, y + 14}};
        GlyphShape(dc, folder, 6, ink, yellow);
        break;
    }
    case CMD_SAVE:
    case CMD_SAVE_ALL:
        GlyphBox(dc, x + 1, y + 1, x + 15, y + 15, ink, blue);
        GlyphBox(dc, x + 4, y + 1, x + 12, y + 7, ink, RGB(255, 255, 255));
        if (command == CMD_SAVE_ALL)
            GlyphBox(dc, x + 5, y + 10, x + 11, y + 15, ink, RGB(255, 255, 255));
        break;
    case CMD_PRINT:
        GlyphBox(dc, x + 3, y + 1, x + 13, y + 7, ink, RGB(255, 255, 255));
        GlyphBox(dc, x, y + 7, x + 16, y + 13, ink, RGB(192, 192, 192));
        break;
    case CMD_CUT: {
        GlyphPaint pen(dc, ink, ink);
        MoveToEx(dc, x + 4, y + 1, nullptr);
        LineTo(dc, x + 11, y + 11);
        MoveToEx(dc, x + 11, y + 1, nullptr);
        LineTo(dc, x + 4, y + 11);
        Ellipse(dc, x + 1, y + 10, x + 6, y + 15);
        Ellipse(dc, x + 10, y + 10, x + 15, y + 15);
        break;
    }
    case CMD_COPY:
        Page(dc, x - 2, y - 1, ink);
        Page(dc, x + 3, y + 1, ink);
        break;
    case CMD_PASTE:
        GlyphBox(dc, x + 1, y + 2, x + 12, y + 15, ink, yellow);
        Page(dc, x + 4, y + 5, ink);
        break;
    case CMD_UNDO:
        Arrow(dc, x, y + 3, false, blue);
        break;
    case CMD_REDO:
        Arrow(dc, x + 1, y + 3, true, blue);
        break;
    case CMD_BROWSE:
        GlyphBox(dc, x + 1, y + 1, x + 11, y + 11, ink, RGB(200, 230, 255));
        GlyphBox(dc, x + 9, y + 9, x + 15, y + 15, ink, ink);
        break;
    case CMD_RUN: {
        POINT play[] = {{x + 4, y + 2}, {x + 13, y + 8}, {x + 4, y + 14}};
        GlyphShape(dc, play, 3, green, green);
        break;
    }
    case CMD_PAUSE:
        GlyphBox(dc, x + 3, y + 2, x + 7, y + 14, blue, blue);
        GlyphBox(dc, x + 9, y + 2, x + 13, y + 14, blue, blue);
        break;
    case CMD_END:
        GlyphBox(dc, x + 3, y + 3, x + 13, y + 13, blue, blue);
        break;
    case CMD_DESIGN_MODE: {
        POINT square[] = {{x + 1, y + 14}, {x + 14, y + 1}, {x + 14, y + 14}};
        GlyphShape(dc, square, 3, ink, yellow);
        break;
    }
    case CMD_TOGGLE_BREAK: {
        GlyphPaint pen(dc, red, red);
        Ellipse(dc, x + 3, y + 3, x + 13, y + 13);
        break;
    }
    case CMD_QUICK_WATCH: {
        GlyphPaint pen(dc, ink, RGB(200, 230, 255));
        Ellipse(dc, x, y + 5, x + 8, y + 13);
        Ellipse(dc, x + 8, y + 5, x + 16, y + 13);
        break;
    }
    case CMD_SHOW_NEXT:
        Arrow(dc, x + 1, y + 3, true, yellow);
        break;
    case CMD_STEP_INTO:
    case CMD_STEP_OVER:
    case CMD_STEP_OUT:
        for (int line = 0; line < 4; ++line)
            GlyphBox(dc, x + 6, y + 1 + line * 4, x + 15, y + 3 + line * 4, ink, ink);
        Arrow(dc, x, y + (command == CMD_STEP_INTO ? 6 : command == CMD_STEP_OVER ? 10 : 0), true, blue);
        break;
    case CMD_USER_DIALOG:
        GlyphBox(dc, x, y + 1, x + 16, y + 15, ink, RGB(255, 255, 255));
        GlyphBox(dc, x, y + 1, x + 16, y + 4, blue, blue);
        GlyphBox(dc, x + 9, y + 10, x + 14, y + 13, ink, RGB(192, 192, 192));
        break;
    case CMD_PROPERTIES:
        GlyphBox(dc, x + 1, y + 1, x + 15, y + 15, ink, RGB(255, 255, 255));
        for (int line = 0; line < 3; ++line)
            GlyphBox(dc, x + 4, y + 4 + line * 3, x + 12, y + 5 + line * 3, blue, blue);
        break;
    default:
        if (IsDesignToolCommand(command))
            DrawDesignToolGlyph(dc, x, y, command, ink);
        else
            GlyphBox(dc, x + 4, y + 4, x + 12, y + 12, ink, ink);
        break;
    }
}

} // namespace

void DrawToolbarGlyph(HDC dc, const RECT& face, int command, bool enabled)
{
    if (!enabled) {
        Draw(dc, face.left + 1, face.top + 1, command, GetSysColor(COLOR_BTNHIGHLIGHT));
        Draw(dc, face.left, face.top, command, GetSysColor(COLOR_GRAYTEXT));
        return;
    }
    Draw(dc, face.left, face.top, command, RGB(0, 0, 0));
}

} // namespace brannoc::ide
