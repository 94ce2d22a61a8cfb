#pragma once
// Writes what a window shows on the screen into a PNG file in the build's screenshots folder, so that a
// person can look at the windows the tests built.
#include <windows.h>
#include <string>

namespace brannoc::test {

// Captures the window's screen rectangle (frame included) into screenshots\<name>.png beside the
// build's bin folder. Returns the file's path, or an empty string when nothing could be written.
std::wstring SaveWindowScreenshot(HWND window, const std::wstring& name);

} // namespace brannoc::test
