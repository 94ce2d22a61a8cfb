#pragma once
// The toolbar control "__BrannocToolbar": a row of buttons given as a list of 16-bit command ids
// (ending with 0; kToolbarSeparator leaves a gap; a negative id is a two-state button). Each button's
// visible, enabled and released state is one bit of three 32-bit sets indexed by its position.
#include <windows.h>

namespace brannoc::ide {

inline constexpr char kToolbarClassName[] = "__BrannocToolbar";
inline constexpr short kToolbarSeparator = 1;

enum ToolbarMessage : UINT {
    TBM_ISENABLED = 1025, TBM_ISRELEASED = 1026, TBM_ISVISIBLE = 1027, TBM_SETBUTTONS = 1028,
    TBM_ENABLE = 1029, TBM_RELEASE = 1030, TBM_SHOW = 1031, TBM_NEEDEDWIDTH = 1032, TBM_NEEDEDHEIGHT = 1033,
    TBM_SETWIDTH = 1034, TBM_SETTOOLTIPS = 1035, TBM_BUTTONRECT = 1036,
};

bool RegisterToolbarClass();

} // namespace brannoc::ide
