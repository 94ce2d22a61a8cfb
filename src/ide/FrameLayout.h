#pragma once
// Where the frame puts its children: toolbar, status bar, debug panes with their tab bar, object and
// proc lists, sheet tabs and the editing child. Pure arithmetic, so it can be checked on its own.
#include <windows.h>

namespace brannoc::ide {

struct FrameLayoutInput {
    int width = 0, height = 0;   // client area
    bool newShell = true;        // system major version 4 or later
    bool border = false;         // the frame has WS_BORDER
    int margin = 0;              // left margin kept for the host (project mode)
    bool toolbar = false, statusBar = false, sheetTabs = false;
    int toolbarHeight = 0, statusHeight = 0;
    bool panes = false;          // the Immediate pane is shown
    int tabBarHeight = 0;        // as the tab bar reports it
    int splitPosition = 0;       // 0 or negative: not set by the user
    int listMode = 0;            // 0 neither, 1 proc only, 2 both
    int listHeight = 0;          // height of "A" in the list font + 8
    int objectLabelWidth = 0, procLabelWidth = 0, letterWidth = 0;
    int sheetStripWidth = 0;
};

struct FrameLayoutResult {
    RECT toolbar{}, statusBar{}, tabBar{}, panes{}, objectList{}, procList{}, sheetTabs{}, editor{};
    POINT objectLabel{}, procLabel{}; // left end of each label, vertically centred on the lists
    int splitPosition = 0;            // the position to keep (negative when recorded by default)
};

FrameLayoutResult ComputeFrameLayout(const FrameLayoutInput& in);

} // namespace brannoc::ide
