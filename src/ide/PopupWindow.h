#pragma once
// What the pop-up components' windows share: a top-most tool window that never takes the activation
// or the focus from the text area it serves, placed next to a line of text inside the screen's work
// area.
#include <windows.h>

namespace brannoc::ide {

enum class PopupSide { Below, Above };

// Creates a hidden pop-up window of a registered class, owned by the top-level window of `owner`,
// with `self` as its creation parameter.
HWND CreatePopupWindow(const char* className, HWND owner, void* self);

// Registers a pop-up window class once per process (double clicks on); false when it cannot.
bool RegisterPopupClass(const char* className, WNDPROC procedure);

// Makes `window` a pop-up of the class for the top-level window of `owner`: kept when it already is one,
// else (the old one destroyed) created with `self` as its creation parameter. False when it cannot be.
bool EnsurePopupWindow(HWND& window, HWND owner, const char* className, WNDPROC procedure, void* self);

// The window procedure of a pop-up whose object is its creation parameter: the object's
// WindowMessage(message, wParam, lParam) answers, and WindowGone() is called when the window goes
// (a frame destroys the windows it owns first).
template <class Popup> LRESULT CALLBACK PopupWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NCCREATE)
        SetWindowLongPtrA(window, 0, reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTA*>(lParam)->lpCreateParams));
    auto* popup = reinterpret_cast<Popup*>(GetWindowLongPtrA(window, 0));
    if (popup && message == WM_NCDESTROY)
        popup->WindowGone();
    if (!popup || message == WM_NCCREATE || message == WM_NCDESTROY)
        return DefWindowProcA(window, message, wParam, lParam);
    return popup->WindowMessage(message, wParam, lParam);
}

// The screen rectangle for a pop-up of `size` next to the line whose top left corner is `anchor`:
// below the line (or above it) on the preferred side, on the other side when the work area has no
// room there, and moved left so that it stays inside the work area.
RECT PlacePopup(POINT anchor, int lineHeight, SIZE size, PopupSide side);

// Shows the window at `place` without activating it.
void ShowPopupAt(HWND popup, const RECT& place);

} // namespace brannoc::ide
