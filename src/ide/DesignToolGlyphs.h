#pragma once
// The faces of the UserDialog editor's toolbox and command buttons (401 to 461), drawn into a 16 by 16
// square like the frame's own buttons.
#include <windows.h>

namespace brannoc::ide {

bool IsDesignToolCommand(int command);
void DrawDesignToolGlyph(HDC dc, int x, int y, int command, COLORREF ink);

} // namespace brannoc::ide
