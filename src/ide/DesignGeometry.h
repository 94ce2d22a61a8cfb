#pragma once
// The arithmetic of the design surface: moving and sizing a rectangle with the mouse inside the area it
// may occupy, the grab handles around a selected rectangle, and the conversion between pixels and dialog
// units with the grid's snap.
#include "dialogs/DialogUnits.h"
#include "ide/DialogDesign.h"

#include <windows.h>

namespace brannoc::ide {

inline constexpr int kHandleSize = 5;
inline constexpr int kMinimumSize = 5;

// Which grab handles a rectangle shows: an item all eight, the dialog those of its right and bottom edges
// (its top left corner stays where it is).
enum class HandleSet { All, RightAndBottom };

// The rectangle shifted by the mouse's offset, kept inside `area`.
RECT MovedRect(const RECT& start, POINT offset, const RECT& area);
// The rectangle with the edges the handle `hit` (HTLEFT ... HTBOTTOMRIGHT) stands for moved by the offset:
// each edge stays inside `area` and at least kMinimumSize pixels from the opposite edge.
RECT SizedRect(const RECT& start, POINT offset, int hit, const RECT& area);

// The 5 by 5 pixel handle just outside the rectangle for a hit-test code.
RECT HandleRect(const RECT& box, int hit);
// The handle under the point, or HTNOWHERE.
int HandleAt(const RECT& box, POINT point, HandleSet handles);
// The hit-test codes of a handle set, in drawing order.
const int* HandleCodes(HandleSet handles, int& count);
// The sizing cursor for a handle's hit-test code.
LPCSTR SizingCursor(int hit);

// A rectangle in dialog units (x, y, width, height).
struct UnitBox {
    int x = 0, y = 0, width = 0, height = 0;
};
// Pixels to dialog units; with snap on, x and the width go to multiples of the horizontal step, y and the
// height to multiples of the vertical step (a size never snaps below one step).
UnitBox ToUnits(const RECT& pixels, const DialogUnits& units, const GridSettings& grid);
RECT ToPixels(const DesignElement& element, const DialogUnits& units);
// The box after a drag that began on `start` (dialog units) and now covers `pixels`: a move (HTCAPTION)
// takes the new position, a handle the edges it stands for; what the drag did not move keeps its value
// (snapped when snap is on), so that rounding between pixels and units never changes it.
UnitBox DraggedBox(const UnitBox& start, const RECT& pixels, int hit, const DialogUnits& units, const GridSettings& grid);

} // namespace brannoc::ide
