#include "ide/FrameWindowClass.h"

namespace brannoc::ide {

bool RegisterFrameFamilyClass(const char* name, WNDPROC procedure, const FrameClassLook& look)
{
    WNDCLASSA windowClass{};
    windowClass.style = CS_GLOBALCLASS | CS_PARENTDC;
    windowClass.lpfnWndProc = procedure;
    windowClass.cbWndExtra = look.extraWords * static_cast<int>(sizeof(LONG_PTR));
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.hIcon = look.icon;
    windowClass.hCursor = LoadCursor(nullptr, IDC_ARROW);
    windowClass.hbrBackground = look.background;
    windowClass.lpszClassName = name;
    return RegisterClassA(&windowClass) != 0 || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

} // namespace brannoc::ide
