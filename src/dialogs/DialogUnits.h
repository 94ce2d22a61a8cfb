#pragma once
// The coordinate units of Begin Dialog blocks: x and widths in eighths of the dialog font's average
// character width, y and heights in twelfths of its character height. One conversion for the run-time
// dialog and the dialog editor, so that both place an item on the same pixels.
#include <windows.h>

namespace brannoc {

struct DialogUnits {
    int baseX = 8;  // pixels per 8 horizontal units (the dialog font's average character width)
    int baseY = 12; // pixels per 12 vertical units (the dialog font's character height)

    // The base units of a dialog window made with the dialog font (MapDialogRect); the defaults when the
    // window answers nothing usable.
    static DialogUnits Of(HWND dialog);

    int PixelsX(int units) const { return MulDiv(units, baseX, 8); }
    int PixelsY(int units) const { return MulDiv(units, baseY, 12); }
    int UnitsX(int pixels) const { return MulDiv(pixels, 8, baseX); }
    int UnitsY(int pixels) const { return MulDiv(pixels, 12, baseY); }
};

} // namespace brannoc
