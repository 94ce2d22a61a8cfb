#include "ide/FrameToolbar.h"

#include "ide/FrameWindowClass.h"
#include "ide/TextArea.h"
#include "ide/ToolbarGlyphs.h"

#include <commctrl.h>
#include <windowsx.h>

namespace brannoc::ide {

namespace {

constexpr int kButtonWidth = 24;
constexpr int kButtonHeight = 22;
constexpr int kSeparatorWidth = 8;
constexpr int kMaxButtons = 32;

struct ToolbarState {
    const short* buttons = nullptr;
    DWORD visible = 0, enabled = 0, released = 0;
    int width = 28672;
    HWND tooltips = nullptr;
    int hot = -1;     // button under the mouse
    int pressed = -1; // button held down with the mouse
};

ToolbarState* StateOf(HWND window) { return reinterpret_cast<ToolbarState*>(GetWindowLongPtrA(window, 0)); }

int ButtonCount(const ToolbarState& state)
{
    int count = 0;
    while (state.buttons && state.buttons[count] != 0 && count < kMaxButtons)
        ++count;
    return count;
}

int PositionOf(const ToolbarState& state, WPARAM command)
{
    short wanted = static_cast<short>(command);
    for (int i = 0; i < ButtonCount(state); ++i)
        if (state.buttons[i] == wanted || state.buttons[i] == -wanted)
            return i;
    return -1;
}

// Lays the visible buttons out in rows no wider than the available width; answers the rectangle of
// button `position` (empty when hidden) and, through `size`, the extent all buttons need.
RECT LayOut(const ToolbarState& state, int position, SIZE* size = nullptr)
{
    RECT found{};
    int x = 2, y = 2, widest = 0;
    for (int i = 0; i < ButtonCount(state); ++i) {
        if (!(state.visible & (1u << i)))
            continue;
        int width = state.buttons[i] == kToolbarSeparator ? kSeparatorWidth : kButtonWidth;
        if (x + width > state.width && x > 2) {
            x = 2;
            y += kButtonHeight;
        }
        if (i == position)
            found = RECT{x, y, x + width, y + kButtonHeight};
        x += width;
        if (x > widest)
            widest = x;
    }
    if (size)
        *size = SIZE{widest + 2, y + kButtonHeight + 2};
    return found;
}

int ButtonAt(const ToolbarState& state, POINT point)
{
    for (int i = 0; i < ButtonCount(state); ++i) {
        RECT r = LayOut(state, i);
        if (state.buttons[i] != kToolbarSeparator && PtInRect(&r, point))
            return i;
    }
    return -1;
}

void Paint(HWND window, ToolbarState& state)
{
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(window, &paint);
    RECT client;
    GetClientRect(window, &client);
    FillRect(dc, &client, GetSysColorBrush(COLOR_BTNFACE));
    for (int i = 0; i < ButtonCount(state); ++i) {
        RECT r = LayOut(state, i);
        if (IsRectEmpty(&r))
            continue;
        if (state.buttons[i] == kToolbarSeparator) {
            RECT line{r.left + 3, r.top + 2, r.left + 5, r.bottom - 2};
            DrawEdge(dc, &line, EDGE_ETCHED, BF_LEFT);
            continue;
        }
        bool down = !(state.released & (1u << i)) || state.pressed == i;
        if (down)
            DrawEdge(dc, &r, BDR_SUNKENOUTER, BF_RECT);
        else if (state.hot == i)
            DrawEdge(dc, &r, BDR_RAISEDINNER, BF_RECT);
        RECT face{r.left + 4, r.top + 3, r.left + 20, r.top + 19};
        if (down)
            OffsetRect(&face, 1, 1);
        DrawToolbarGlyph(dc, face, state.buttons[i] < 0 ? -state.buttons[i] : state.buttons[i],
                         (state.enabled & (1u << i)) != 0);
    }
    EndPaint(window, &paint);
}

void Notify(HWND window, const ToolbarState& state, int position, LPARAM how)
{
    static const UINT message = RegisterWindowMessageA(kToolbarMessageName);
    int command = state.buttons[position] < 0 ? -state.buttons[position] : state.buttons[position];
    SendMessageA(GetParent(window), message, static_cast<WPARAM>(command), how);
}

LRESULT SetBit(HWND window, ToolbarState& state, DWORD ToolbarState::*set, WPARAM command, LPARAM on)
{
    int position = PositionOf(state, command);
    if (position < 0)
        return 0;
    DWORD bit = 1u << position;
    DWORD before = state.*set;
    state.*set = on ? (before | bit) : (before & ~bit);
    if (set == &ToolbarState::visible)
        InvalidateRect(window, nullptr, TRUE);
    else if (before != state.*set) {
        RECT r = LayOut(state, position);
        InvalidateRect(window, &r, TRUE);
    }
    return 1;
}

// The tool-tip window gets one tool per visible button, its rectangle following the layout; the tool
// asks for its text when shown (TTN_NEEDTEXTA).
void RegisterTools(HWND window, const ToolbarState& state)
{
    if (!state.tooltips)
        return;
    TOOLINFOA tool{};
    tool.cbSize = TTTOOLINFOA_V2_SIZE;
    tool.hwnd = window;
    for (int i = 0; i < ButtonCount(state); ++i) {
        if (state.buttons[i] == kToolbarSeparator)
            continue;
        tool.uId = static_cast<UINT_PTR>(i + 1);
        SendMessageA(state.tooltips, TTM_DELTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
        tool.rect = LayOut(state, i);
        if (IsRectEmpty(&tool.rect))
            continue;
        tool.uFlags = TTF_SUBCLASS;
        tool.lpszText = LPSTR_TEXTCALLBACKA;
        SendMessageA(state.tooltips, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
    }
}

LRESULT OnToolTipText(HWND window, const ToolbarState& state, NMHDR* header)
{
    if (header->code != TTN_NEEDTEXTA)
        return 0;
    auto* text = reinterpret_cast<NMTTDISPINFOA*>(header);
    const int position = static_cast<int>(header->idFrom) - 1;
    if (position < 0 || position >= ButtonCount(state))
        return 0;
    static const UINT message = RegisterWindowMessageA(kToolbarMessageName);
    const short id = state.buttons[position];
    text->lpszText = reinterpret_cast<char*>(
        SendMessageA(GetParent(window), message, static_cast<WPARAM>(id < 0 ? -id : id), 2));
    return 0;
}

LRESULT OnMouse(HWND window, ToolbarState& state, UINT message, LPARAM lParam)
{
    POINT point{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    int at = ButtonAt(state, point);
    if (message == WM_LBUTTONDOWN && at >= 0 && (state.enabled & (1u << at))) {
        state.pressed = at;
        SetCapture(window);
        InvalidateRect(window, nullptr, TRUE);
    } else if (message == WM_LBUTTONUP && state.pressed >= 0) {
        int pressed = state.pressed;
        state.pressed = -1;
        ReleaseCapture();
        InvalidateRect(window, nullptr, TRUE);
        if (at == pressed)
            Notify(window, state, pressed, -1);
    } else if (message == WM_MOUSEMOVE && at != state.hot) {
        state.hot = at;
        InvalidateRect(window, nullptr, TRUE);
        if (at >= 0 && !(GetWindowLongA(window, GWL_STYLE) & 0x0004))
            Notify(window, state, at, 0);
    }
    return 0;
}

LRESULT CALLBACK ToolbarProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    ToolbarState* state = StateOf(window);
    switch (message) {
    case WM_NCCREATE:
        SetWindowLongPtrA(window, 0, reinterpret_cast<LONG_PTR>(new ToolbarState));
        break;
    case WM_NCDESTROY:
        delete state;
        SetWindowLongPtrA(window, 0, 0);
        break;
    case WM_PAINT:
        Paint(window, *state);
        return 0;
    case WM_ERASEBKGND:
        return 1;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP:
    case WM_MOUSEMOVE:
        return OnMouse(window, *state, message, lParam);
    case WM_MENUSELECT:
        return SendMessageA(GetParent(window), message, wParam, lParam);
    case TBM_ISENABLED:
    case TBM_ISRELEASED:
    case TBM_ISVISIBLE: {
        int position = PositionOf(*state, wParam);
        DWORD set = message == TBM_ISENABLED ? state->enabled : message == TBM_ISRELEASED ? state->released : state->visible;
        return position >= 0 && (set & (1u << position)) ? 1 : 0;
    }
    case TBM_SETBUTTONS:
        state->buttons = reinterpret_cast<const short*>(lParam);
        state->visible = state->enabled = state->released = 0xFFFFFFFFu;
        RegisterTools(window, *state);
        InvalidateRect(window, nullptr, TRUE);
        return 1;
    case TBM_ENABLE:
        return SetBit(window, *state, &ToolbarState::enabled, wParam, lParam);
    case TBM_RELEASE:
        return SetBit(window, *state, &ToolbarState::released, wParam, lParam);
    case TBM_SHOW: {
        const LRESULT done = SetBit(window, *state, &ToolbarState::visible, wParam, lParam);
        RegisterTools(window, *state);
        return done;
    }
    case TBM_NEEDEDWIDTH:
    case TBM_NEEDEDHEIGHT: {
        SIZE size;
        LayOut(*state, -1, &size);
        return message == TBM_NEEDEDWIDTH ? size.cx : size.cy;
    }
    case TBM_SETWIDTH:
        state->width = static_cast<int>(wParam) > 28672 ? 28672 : static_cast<int>(wParam) < 51 ? 50 : static_cast<int>(wParam);
        RegisterTools(window, *state);
        InvalidateRect(window, nullptr, TRUE);
        return 1;
    case TBM_SETTOOLTIPS:
        state->tooltips = reinterpret_cast<HWND>(lParam);
        RegisterTools(window, *state);
        return 1;
    case WM_NOTIFY:
        return OnToolTipText(window, *state, reinterpret_cast<NMHDR*>(lParam));
    case TBM_BUTTONRECT: {
        RECT r = LayOut(*state, PositionOf(*state, wParam));
        if (lParam)
            *reinterpret_cast<RECT*>(lParam) = r;
        return !IsRectEmpty(&r);
    }
    default:
        break;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

} // namespace

bool RegisterToolbarClass()
{
    static const bool s_registered = RegisterFrameFamilyClass(kToolbarClassName, ToolbarProc);
    return s_registered;
}

} // namespace brannoc::ide
