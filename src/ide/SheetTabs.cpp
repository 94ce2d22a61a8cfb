#include "ide/SheetTabs.h"

#include "ide/FrameWindowClass.h"

#include <windowsx.h>

namespace brannoc::ide {

namespace {

struct SheetTabsState {
    int width = 0;      // the text "00" in the list font plus 1
    int tabHeight = 0;  // the text "00" plus 3
    int count = 0;
    int current = -1;
    HFONT font = nullptr;
};

SheetTabsState* StateOf(HWND window) { return reinterpret_cast<SheetTabsState*>(GetWindowLongPtrA(window, 0)); }

void Measure(HWND window, SheetTabsState& state)
{
    HDC dc = GetDC(window);
    HGDIOBJ old = SelectObject(dc, state.font ? state.font : GetStockObject(DEFAULT_GUI_FONT));
    SIZE size{};
    GetTextExtentPoint32A(dc, "00", 2, &size);
    SelectObject(dc, old);
    ReleaseDC(window, dc);
    state.width = size.cx + 1;
    state.tabHeight = size.cy + 3;
}

void Paint(HWND window, const SheetTabsState& state)
{
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(window, &paint);
    RECT client;
    GetClientRect(window, &client);
    FillRect(dc, &client, GetSysColorBrush(COLOR_APPWORKSPACE));
    HGDIOBJ old = SelectObject(dc, state.font ? state.font : GetStockObject(DEFAULT_GUI_FONT));
    SetBkMode(dc, TRANSPARENT);
    for (int i = 0; i < state.count; ++i) {
        bool current = i == state.current;
        RECT tab{0, i * state.tabHeight, state.width - (current ? 0 : 1), (i + 1) * state.tabHeight};
        FillRect(dc, &tab, GetSysColorBrush(current ? COLOR_WINDOW : COLOR_BTNFACE));
        DrawEdge(dc, &tab, current ? EDGE_RAISED : BDR_RAISEDOUTER, BF_LEFT | BF_TOP | BF_BOTTOM);
        if (i < 9) {
            char digit = static_cast<char>('1' + i);
            TextOutA(dc, state.width / 4, tab.top + 2, &digit, 1);
        }
    }
    SelectObject(dc, old);
    EndPaint(window, &paint);
}

LRESULT CALLBACK SheetTabsProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    SheetTabsState* state = StateOf(window);
    switch (message) {
    case WM_NCCREATE:
        SetWindowLongPtrA(window, 0, reinterpret_cast<LONG_PTR>(new SheetTabsState));
        break;
    case WM_CREATE:
        Measure(window, *state);
        break;
    case WM_NCDESTROY:
        delete state;
        SetWindowLongPtrA(window, 0, 0);
        break;
    case WM_SETFONT:
        state->font = reinterpret_cast<HFONT>(wParam);
        Measure(window, *state);
        return 0;
    case WM_PAINT:
        Paint(window, *state);
        return 0;
    case WM_ERASEBKGND:
        return 1;
    case WM_LBUTTONDOWN: {
        int index = state->tabHeight > 0 ? GET_Y_LPARAM(lParam) / state->tabHeight : -1;
        if (index >= 0 && index < state->count)
            SendMessageA(GetParent(window), WM_COMMAND,
                         MAKEWPARAM(GetDlgCtrlID(window), index), reinterpret_cast<LPARAM>(window));
        return 0;
    }
    case STM_WIDTH:
        return state->width;
    case STM_TABHEIGHT:
        return state->tabHeight;
    case STM_SETTABS:
        state->count = static_cast<int>(wParam);
        state->current = static_cast<int>(lParam);
        InvalidateRect(window, nullptr, TRUE);
        return 1;
    default:
        break;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

} // namespace

bool RegisterSheetTabsClass()
{
    static const bool s_registered = RegisterFrameFamilyClass(kSheetTabsClassName, SheetTabsProc);
    return s_registered;
}

} // namespace brannoc::ide
