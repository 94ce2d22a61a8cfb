// Pop-up windows of the completion list and the parameter tip.
#include "ide/PopupWindow.h"

#include "host/ThisModule.h"

#include <algorithm>

namespace brannoc::ide {

bool RegisterPopupClass(const char* className, WNDPROC procedure)
{
    WNDCLASSA existing{};
    if (GetClassInfoA(ThisModule(), className, &existing))
        return true;
    WNDCLASSA windowClass{};
    windowClass.style = CS_DBLCLKS | CS_SAVEBITS;
    windowClass.lpfnWndProc = procedure;
    windowClass.cbWndExtra = sizeof(LONG_PTR);
    windowClass.hInstance = ThisModule();
    windowClass.hCursor = LoadCursor(nullptr, IDC_ARROW);
    windowClass.lpszClassName = className;
    return RegisterClassA(&windowClass) != 0;
}

HWND CreatePopupWindow(const char* className, HWND owner, void* self)
{
    HWND topLevel = owner ? GetAncestor(owner, GA_ROOT) : nullptr;
    return CreateWindowExA(WS_EX_TOOLWINDOW | WS_EX_TOPMOST | WS_EX_NOACTIVATE, className, "", WS_POPUP | WS_BORDER,
                           0, 0, 0, 0, topLevel, nullptr, ThisModule(), self);
}

bool EnsurePopupWindow(HWND& window, HWND owner, const char* className, WNDPROC procedure, void* self)
{
    if (window && GetWindow(window, GW_OWNER) == GetAncestor(owner, GA_ROOT))
        return true;
    if (window)
        DestroyWindow(window);
    window = RegisterPopupClass(className, procedure) ? CreatePopupWindow(className, owner, self) : nullptr;
    return window != nullptr;
}

RECT PlacePopup(POINT anchor, int lineHeight, SIZE size, PopupSide side)
{
    MONITORINFO monitor{sizeof(MONITORINFO)};
    RECT work{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    if (GetMonitorInfoA(MonitorFromPoint(anchor, MONITOR_DEFAULTTONEAREST), &monitor))
        work = monitor.rcWork;
    const LONG below = anchor.y + lineHeight + 1;
    const LONG above = anchor.y - size.cy - 1;
    const bool roomBelow = below + size.cy <= work.bottom;
    const bool roomAbove = above >= work.top;
    LONG top = side == PopupSide::Below ? (roomBelow || !roomAbove ? below : above)
                                        : (roomAbove || !roomBelow ? above : below);
    LONG left = std::max(work.left, std::min<LONG>(anchor.x, work.right - size.cx));
    return RECT{left, top, left + size.cx, top + size.cy};
}

void ShowPopupAt(HWND popup, const RECT& place)
{
    SetWindowPos(popup, HWND_TOPMOST, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOACTIVATE | SWP_SHOWWINDOW);
}

} // namespace brannoc::ide
