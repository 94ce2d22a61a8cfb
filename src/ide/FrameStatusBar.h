#pragma once
// The status bar "__BrannocStatusbar": a status text at the left (its window text) and a right-hand
// text (message 1025) at the right, each in a sunken frame.
#include <windows.h>

namespace brannoc::ide {

inline constexpr char kStatusBarClassName[] = "__BrannocStatusbar";

enum StatusBarMessage : UINT {
    SBM_HEIGHT = 1024,       // answers the height the bar needs
    SBM_SETRIGHTTEXT = 1025, // lParam the text
};

bool RegisterStatusBarClass();

} // namespace brannoc::ide
