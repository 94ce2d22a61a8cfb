#include "ide/FrameStatusBar.h"

#include "ide/FrameWindowClass.h"

#include <string>

namespace brannoc::ide {

namespace {

struct StatusBarState {
    HFONT font = nullptr; // not owned; SYSTEM_FONT until WM_SETFONT
    std::string text;
    std::string right;
};

StatusBarState* StateOf(HWND window) { return reinterpret_cast<StatusBarState*>(GetWindowLongPtrA(window, 0)); }

HFONT FontOf(const StatusBarState& state)
{
    return state.font ? state.font : static_cast<HFONT>(GetStockObject(SYSTEM_FONT));
}

int Height(HWND window, const StatusBarState& state)
{
    HDC dc = GetDC(window);
    HGDIOBJ old = SelectObject(dc, FontOf(state));
    TEXTMETRICA metrics{};
    GetTextMetricsA(dc, &metrics);
    SelectObject(dc, old);
    ReleaseDC(window, dc);
    return metrics.tmHeight + 2 * metrics.tmExternalLeading + 6;
}

void DrawField(HDC dc, RECT field, const std::string& text)
{
    DrawEdge(dc, &field, BDR_SUNKENOUTER, BF_RECT);
    InflateRect(&field, -2, -1);
    DrawTextA(dc, text.c_str(), static_cast<int>(text.size()), &field, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}

void Paint(HWND window, const StatusBarState& state)
{
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(window, &paint);
    RECT client;
    GetClientRect(window, &client);
    FillRect(dc, &client, GetSysColorBrush(COLOR_BTNFACE));
    HGDIOBJ old = SelectObject(dc, FontOf(state));
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
    RECT inner{client.left + 4, client.top + 3, client.right - 4, client.bottom - 3};
    int rightWidth = 0;
    if (!state.right.empty()) {
        SIZE size{};
        GetTextExtentPoint32A(dc, state.right.c_str(), static_cast<int>(state.right.size()), &size);
        rightWidth = size.cx + 6;
        DrawField(dc, RECT{inner.right - rightWidth, inner.top, inner.right, inner.bottom}, state.right);
    }
    DrawField(dc, RECT{inner.left, inner.top, inner.right - rightWidth - (rightWidth ? 8 : 0), inner.bottom}, state.text);
    SelectObject(dc, old);
    EndPaint(window, &paint);
}

LRESULT CALLBACK StatusBarProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    StatusBarState* state = StateOf(window);
    switch (message) {
    case WM_NCCREATE:
        SetWindowLongPtrA(window, 0, reinterpret_cast<LONG_PTR>(new StatusBarState));
        break;
    case WM_NCDESTROY:
        delete state;
        SetWindowLongPtrA(window, 0, 0);
        break;
    case WM_SETTEXT:
        state->text = lParam ? reinterpret_cast<const char*>(lParam) : "";
        InvalidateRect(window, nullptr, TRUE);
        return TRUE;
    case WM_GETTEXTLENGTH:
        return static_cast<LRESULT>(state->text.size());
    case WM_GETTEXT: {
        if (wParam == 0)
            return 0;
        size_t length = state->text.size() < wParam - 1 ? state->text.size() : wParam - 1;
        state->text.copy(reinterpret_cast<char*>(lParam), length);
        reinterpret_cast<char*>(lParam)[length] = '\0';
        return static_cast<LRESULT>(length);
    }
    case WM_SETFONT:
        state->font = reinterpret_cast<HFONT>(wParam);
        return 0;
    case WM_GETFONT:
        return reinterpret_cast<LRESULT>(state->font);
    case WM_PAINT:
        Paint(window, *state);
        return 0;
    case WM_ERASEBKGND:
        return 1;
    case SBM_HEIGHT:
        return Height(window, *state);
    case SBM_SETRIGHTTEXT:
        state->right = lParam ? reinterpret_cast<const char*>(lParam) : "";
        InvalidateRect(window, nullptr, TRUE);
        return 1;
    default:
        break;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

} // namespace

bool RegisterStatusBarClass()
{
    static const bool s_registered = RegisterFrameFamilyClass(kStatusBarClassName, StatusBarProc);
    return s_registered;
}

} // namespace brannoc::ide
