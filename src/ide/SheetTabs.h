#pragma once
// The sheet tabs "__BrannocSheetTabs": a vertical strip with one tab per sheet, stacked from the
// top; tabs 1 to 9 show their position as a digit. Pressing a tab sends WM_COMMAND to the parent
// with the control id in the low word and the tab's index (0-based) in the high word.
#include <windows.h>

namespace brannoc::ide {

inline constexpr char kSheetTabsClassName[] = "__BrannocSheetTabs";

enum SheetTabsMessage : UINT {
    STM_WIDTH = 1024,    // answers the strip width
    STM_SETTABS = 1025,  // wParam the number of tabs, lParam the current one (0-based)
    STM_TABHEIGHT = 1026,
};

bool RegisterSheetTabsClass();

} // namespace brannoc::ide
