#include "ide/DesignGeometry.h"

#include <algorithm>

namespace brannoc::ide {

namespace {

bool MovesLeft(int hit) { return hit == HTLEFT || hit == HTTOPLEFT || hit == HTBOTTOMLEFT; }
bool MovesRight(int hit) { return hit == HTRIGHT || hit == HTTOPRIGHT || hit == HTBOTTOMRIGHT; }
bool MovesTop(int hit) { return hit == HTTOP || hit == HTTOPLEFT || hit == HTTOPRIGHT; }
bool MovesBottom(int hit) { return hit == HTBOTTOM || hit == HTBOTTOMLEFT || hit == HTBOTTOMRIGHT; }

// The start of a handle along one axis: before the low edge, at the middle, or at the high edge.
int HandleStart(int low, int high, bool atLow, bool atHigh)
{
    if (atLow)
        return low - kHandleSize;
    if (atHigh)
        return high;
    return (low + high - kHandleSize) / 2;
}

constexpr int kAllHandles[] = {HTTOPLEFT, HTLEFT, HTBOTTOMLEFT, HTTOP, HTBOTTOM, HTTOPRIGHT, HTRIGHT, HTBOTTOMRIGHT};
constexpr int kOuterHandles[] = {HTBOTTOM, HTRIGHT, HTBOTTOMRIGHT};

int SnappedSize(int size, int step, bool snap)
{
    if (!snap || step <= 0)
        return size;
    const int snapped = SnapToStep(size, step);
    return snapped > 0 ? snapped : step;
}

} // namespace

RECT MovedRect(const RECT& start, POINT offset, const RECT& area)
{
    const int width = start.right - start.left;
    const int height = start.bottom - start.top;
    int left = start.left + offset.x;
    int top = start.top + offset.y;
    left = std::max(std::min(left, static_cast<int>(area.right) - width), static_cast<int>(area.left));
    top = std::max(std::min(top, static_cast<int>(area.bottom) - height), static_cast<int>(area.top));
    return RECT{left, top, left + width, top + height};
}

RECT SizedRect(const RECT& start, POINT offset, int hit, const RECT& area)
{
    RECT r = start;
    if (MovesLeft(hit))
        r.left = std::min(std::max(start.left + offset.x, area.left), start.right - kMinimumSize);
    if (MovesRight(hit))
        r.right = std::max(std::min(start.right + offset.x, area.right), start.left + kMinimumSize);
    if (MovesTop(hit))
        r.top = std::min(std::max(start.top + offset.y, area.top), start.bottom - kMinimumSize);
    if (MovesBottom(hit))
        r.bottom = std::max(std::min(start.bottom + offset.y, area.bottom), start.top + kMinimumSize);
    return r;
}

RECT HandleRect(const RECT& box, int hit)
{
    const int x = HandleStart(box.left, box.right, MovesLeft(hit), MovesRight(hit));
    const int y = HandleStart(box.top, box.bottom, MovesTop(hit), MovesBottom(hit));
    return RECT{x, y, x + kHandleSize, y + kHandleSize};
}

const int* HandleCodes(HandleSet handles, int& count)
{
    if (handles == HandleSet::All) {
        count = static_cast<int>(std::size(kAllHandles));
        return kAllHandles;
    }
    count = static_cast<int>(std::size(kOuterHandles));
    return kOuterHandles;
}

int HandleAt(const RECT& box, POINT point, HandleSet handles)
{
    int count = 0;
    const int* codes = HandleCodes(handles, count);
    for (int i = 0; i < count; ++i) {
        const RECT handle = HandleRect(box, codes[i]);
        if (PtInRect(&handle, point))
            return codes[i];
    }
    return HTNOWHERE;
}

LPCSTR SizingCursor(int hit)
{
    switch (hit) {
    case HTLEFT: case HTRIGHT: return IDC_SIZEWE;
    case HTTOP: case HTBOTTOM: return IDC_SIZENS;
    case HTTOPLEFT: case HTBOTTOMRIGHT: return IDC_SIZENWSE;
    case HTTOPRIGHT: case HTBOTTOMLEFT: return IDC_SIZENESW;
    default: return IDC_ARROW;
    }
}

UnitBox ToUnits(const RECT& pixels, const DialogUnits& units, const GridSettings& grid)
{
    UnitBox box{units.UnitsX(pixels.left), units.UnitsY(pixels.top), units.UnitsX(pixels.right - pixels.left),
                units.UnitsY(pixels.bottom - pixels.top)};
    if (grid.snap) {
        box.x = SnapToStep(box.x, grid.horizontal);
        box.y = SnapToStep(box.y, grid.vertical);
    }
    box.width = SnappedSize(box.width, grid.horizontal, grid.snap);
    box.height = SnappedSize(box.height, grid.vertical, grid.snap);
    return box;
}

UnitBox DraggedBox(const UnitBox& start, const RECT& pixels, int hit, const DialogUnits& units, const GridSettings& grid)
{
    const UnitBox measured = ToUnits(pixels, units, grid);
    const bool moving = hit == HTCAPTION;
    UnitBox box;
    box.x = moving || MovesLeft(hit) ? measured.x : start.x;
    box.y = moving || MovesTop(hit) ? measured.y : start.y;
    box.width = MovesLeft(hit) || MovesRight(hit) ? measured.width : SnappedSize(start.width, grid.horizontal, grid.snap);
    box.height = MovesTop(hit) || MovesBottom(hit) ? measured.height : SnappedSize(start.height, grid.vertical, grid.snap);
    return box;
}

RECT ToPixels(const DesignElement& element, const DialogUnits& units)
{
    const int left = units.PixelsX(element.x);
    const int top = units.PixelsY(element.y);
    return RECT{left, top, left + units.PixelsX(element.width), top + units.PixelsY(element.height)};
}

} // namespace brannoc::ide
