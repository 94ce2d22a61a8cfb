#pragma once
// Registration of the editor frame's window classes (the frame, its toolbar, status bar and sheet
// tabs): global classes drawn on the parent's device context, with the arrow cursor.
#include <windows.h>

namespace brannoc::ide {

struct FrameClassLook {
    int extraWords = 1;           // window words of LONG_PTR size
    HICON icon = nullptr;
    HBRUSH background = nullptr;
};

// Registers the class; a class of that name registered before counts as success.
bool RegisterFrameFamilyClass(const char* name, WNDPROC procedure, const FrameClassLook& look = {});

} // namespace brannoc::ide
