#pragma once
// The window class of Picture items: its text is the file name, its Type is kept in the low style bits.
// Type 0 reads the file as a device-independent bitmap; the bitmap is stretched over the window, or the
// text "(missing picture)" is shown when there is none.
#include <windows.h>

namespace brannoc {

constexpr wchar_t kPictureWindowClass[] = L"__BrannocBasicPictureWindow";

// Registers the class once per process; false when it cannot be registered.
bool RegisterPictureWindowClass();

// Loads (again) the picture named by the window's text with its Type. A Type of 16 or 19 makes a
// picture that cannot be loaded a failure; types other than 0, 3, 16 and 19 fail as well. False then.
bool ReloadPicture(HWND window);

// Whether the window holds a bitmap.
bool PictureLoaded(HWND window);

} // namespace brannoc
