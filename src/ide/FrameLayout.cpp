#include "ide/FrameLayout.h"

namespace brannoc::ide {

namespace {

RECT Rect(int x, int y, int width, int height) { return RECT{x, y, x + width, y + height}; }

int PlacePanes(const FrameLayoutInput& in, int top, int bottom, FrameLayoutResult& out)
{
    int s = in.newShell ? 1 : 0;
    int area = in.width - in.margin;
    out.tabBar = Rect(in.margin, top, area, in.tabBarHeight + 4);
    int paneTop = top + in.tabBarHeight + 3 - s;
    int room = bottom - paneTop;
    int height;
    if (in.splitPosition <= 0) {
        height = room / 3;
        out.splitPosition = -(paneTop + height + 1);
    } else {
        height = in.splitPosition - paneTop - 1;
        if (room - height < 60)
            height = room - 60;
        else if (height < 40)
            height = 40;
        out.splitPosition = in.splitPosition;
    }
    out.panes = Rect(in.margin, paneTop, area, height);
    return paneTop + height + 2;
}

int PlaceLists(const FrameLayoutInput& in, int top, FrameLayoutResult& out)
{
    int area = in.width - in.margin;
    int centre = top + in.listHeight / 2;
    if (in.listMode == 2) {
        int listWidth = (area - in.objectLabelWidth - in.procLabelWidth) / 2 - 32;
        int objectX = in.margin + in.objectLabelWidth + 20;
        out.objectLabel = POINT{in.margin + 12, centre};
        out.objectList = Rect(objectX, top, listWidth, in.listHeight);
        out.procLabel = POINT{objectX + listWidth + 24, centre};
        out.procList = Rect(in.margin + area - listWidth - 12, top, listWidth, in.listHeight);
    } else {
        int listWidth = area - in.procLabelWidth - 32;
        if (listWidth > 30 * in.letterWidth)
            listWidth = 30 * in.letterWidth;
        out.procLabel = POINT{12, centre};
        out.procList = Rect(in.procLabelWidth + 20, top, listWidth, in.listHeight);
    }
    return top + in.listHeight + 2;
}

} // namespace

FrameLayoutResult ComputeFrameLayout(const FrameLayoutInput& in)
{
    FrameLayoutResult out;
    int s = in.newShell ? 1 : 0;
    int b = (!in.newShell && in.border) ? 1 : 0;
    int top = b ? 0 : 1;
    if (in.toolbar) {
        out.toolbar = s ? Rect(0, 0, in.width, in.toolbarHeight) : Rect(-1, -1, in.width + 2, in.toolbarHeight + 2);
        top = out.toolbar.bottom;
    }
    int bottom = in.height;
    if (in.statusBar) {
        out.statusBar = s ? Rect(-2, in.height - in.statusHeight + 2, in.width + 4, in.statusHeight)
                          : Rect(0, in.height - in.statusHeight, in.width, in.statusHeight);
        bottom = in.height - in.statusHeight + 2 * s;
    }
    out.splitPosition = in.splitPosition;
    if (in.panes)
        top = PlacePanes(in, top, bottom, out);
    if (in.listMode > 0)
        top = PlaceLists(in, top, out);
    RECT editor{in.margin - b, top, in.width + b, bottom};
    if (in.sheetTabs) {
        out.sheetTabs = RECT{editor.left, editor.top, editor.left + in.sheetStripWidth, editor.bottom};
        editor.left += in.sheetStripWidth;
    }
    out.editor = editor;
    return out;
}

} // namespace brannoc::ide
