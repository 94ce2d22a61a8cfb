#pragma once
// The pixels of a window's client area as painted on screen, read back with BitBlt, for tests that
// check colours and for screenshots a person can look at (written as PNG files).
#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace brannoc::test {

class WindowImage final {
public:
    // Repaints the window and copies its client area (or the whole window with `wholeWindow`).
    static WindowImage Capture(HWND window, bool wholeWindow = false);

    int Width() const { return m_width; }
    int Height() const { return m_height; }
    COLORREF Pixel(int x, int y) const;
    // How many pixels of the rectangle have the colour.
    int Count(const RECT& area, COLORREF colour) const;
    bool Contains(const RECT& area, COLORREF colour) const { return Count(area, colour) > 0; }

    // Copies `other` onto this image with its top left corner at (x, y), clipped to this image (a
    // pop-up window drawn over the window it belongs to).
    void Overlay(const WindowImage& other, int x, int y);

    // Writes the image as a PNG file; answers false when the file cannot be written.
    bool WritePng(const std::wstring& path) const;
    // Writes `name`.png into the build's screenshots folder (created when missing) and answers its path.
    std::wstring WriteScreenshot(const std::wstring& name) const;

private:
    int m_width = 0;
    int m_height = 0;
    std::vector<uint32_t> m_pixels; // 0x00RRGGBB, top row first
};

} // namespace brannoc::test
