#pragma once
// The tab bar of the frame's debug panes ("__BrannocTabbar"); the panes themselves are EDIT controls
// that the frame creates and serves (EditorFrame's debug pane members).
#include <windows.h>

namespace brannoc::ide {

inline constexpr char kTabBarClassName[] = "__BrannocTabbar";

bool RegisterTabBarClass();
// The height the tab bar asks for (its message 1024); 0 without a tab bar.
int TabBarNeededHeight(HWND bar);

} // namespace brannoc::ide
