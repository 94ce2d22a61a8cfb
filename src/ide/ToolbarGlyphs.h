#pragma once
// The faces of the frame's toolbar buttons, drawn into a 16 by 16 square.
#include <windows.h>

namespace brannoc::ide {

void DrawToolbarGlyph(HDC dc, const RECT& face, int command, bool enabled);

} // namespace brannoc::ide
