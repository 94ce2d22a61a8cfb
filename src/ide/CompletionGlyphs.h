#pragma once
// The small pictures the completion list draws before its entries, one per kind letter: L library,
// G type, E value, A method, B property, C default property.
#include <windows.h>

namespace brannoc::ide {

// Draws the glyph of `kind` centred in `box` (about 12 pixels square); an unknown kind draws nothing.
void DrawKindGlyph(HDC dc, char kind, const RECT& box);

} // namespace brannoc::ide
