#include "support/WindowImage.h"

#include <algorithm>
#include <cstdio>

namespace brannoc::test {

namespace {

uint32_t Crc32(const uint8_t* data, size_t size, uint32_t crc = 0)
{
    static uint32_t table[256];
    static bool ready = false;
    if (!ready) {
        for (uint32_t n = 0; n < 256; ++n) {
            uint32_t c = n;
            for (int k = 0; k < 8; ++k)
                c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            table[n] = c;
        }
        ready = true;
    }
    crc = ~crc;
    for (size_t i = 0; i < size; ++i)
        crc = table[(crc ^ data[i]) & 0xFF] ^ (crc >> 8);
    return ~crc;
}

void PutBigEndian(std::vector<uint8_t>& out, uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        out.push_back(static_cast<uint8_t>(value >> shift));
}

void WriteChunk(std::vector<uint8_t>& out, const char* type, const std::vector<uint8_t>& data)
{
    PutBigEndian(out, static_cast<uint32_t>(data.size()));
    size_t start = out.size();
    out.insert(out.end(), type, type + 4);
    out.insert(out.end(), data.begin(), data.end());
    PutBigEndian(out, Crc32(out.data() + start, out.size() - start));
}

// A zlib stream of stored (uncompressed) deflate blocks: simple, and the files stay small enough.
std::vector<uint8_t> StoredZlib(const std::vector<uint8_t>& raw)
{
    std::vector<uint8_t> out{0x78, 0x01};
    size_t position = 0;
    do {
        size_t length = std::min<size_t>(65535, raw.size() - position);
        bool last = position + length == raw.size();
        out.push_back(last ? 1 : 0);
        out.push_back(static_cast<uint8_t>(length));
        out.push_back(static_cast<uint8_t>(length >> 8));
        out.push_back(static_cast<uint8_t>(~length));
        out.push_back(static_cast<uint8_t>(~length >> 8));
        out.insert(out.end(), raw.begin() + position, raw.begin() + position + length);
        position += length;
    } while (position < raw.size());
    uint32_t a = 1, b = 0;
    for (uint8_t byte : raw) {
        a = (a + byte) % 65521;
        b = (b + a) % 65521;
    }
    PutBigEndian(out, (b << 16) | a);
    return out;
}

} // namespace

WindowImage WindowImage::Capture(HWND window, bool wholeWindow)
{
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN | (wholeWindow ? RDW_FRAME : 0));
    GdiFlush();
    RECT rect;
    if (wholeWindow)
        GetWindowRect(window, &rect), OffsetRect(&rect, -rect.left, -rect.top);
    else
        GetClientRect(window, &rect);
    WindowImage image;
    image.m_width = rect.right;
    image.m_height = rect.bottom;
    if (image.m_width <= 0 || image.m_height <= 0)
        return image;
    HDC source = wholeWindow ? GetWindowDC(window) : GetDC(window);
    HDC memory = CreateCompatibleDC(source);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = image.m_width;
    info.bmiHeader.biHeight = -image.m_height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, image.m_width, image.m_height, source, 0, 0, SRCCOPY);
    GdiFlush();
    const uint32_t* pixels = static_cast<const uint32_t*>(bits);
    image.m_pixels.assign(pixels, pixels + static_cast<size_t>(image.m_width) * image.m_height);
    for (uint32_t& pixel : image.m_pixels)
        pixel &= 0xFFFFFF;
    SelectObject(memory, old);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(window, source);
    return image;
}

void WindowImage::Overlay(const WindowImage& other, int x, int y)
{
    for (int row = 0; row < other.m_height; ++row)
        for (int column = 0; column < other.m_width; ++column) {
            const int toX = x + column, toY = y + row;
            if (toX >= 0 && toY >= 0 && toX < m_width && toY < m_height)
                m_pixels[static_cast<size_t>(toY) * m_width + toX] =
                    other.m_pixels[static_cast<size_t>(row) * other.m_width + column];
        }
}

COLORREF WindowImage::Pixel(int x, int y) const
{
    if (x < 0 || y < 0 || x >= m_width || y >= m_height)
        return CLR_INVALID;
    uint32_t pixel = m_pixels[static_cast<size_t>(y) * m_width + x];
    return RGB((pixel >> 16) & 0xFF, (pixel >> 8) & 0xFF, pixel & 0xFF);
}

int WindowImage::Count(const RECT& area, COLORREF colour) const
{
    int count = 0;
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x)
            if (Pixel(x, y) == colour)
                ++count;
    return count;
}

bool WindowImage::WritePng(const std::wstring& path) const
{
    std::vector<uint8_t> raw;
    raw.reserve(static_cast<size_t>(m_height) * (1 + 3 * m_width));
    for (int y = 0; y < m_height; ++y) {
        raw.push_back(0);
        for (int x = 0; x < m_width; ++x) {
            uint32_t pixel = m_pixels[static_cast<size_t>(y) * m_width + x];
            raw.push_back(static_cast<uint8_t>(pixel >> 16));
            raw.push_back(static_cast<uint8_t>(pixel >> 8));
            raw.push_back(static_cast<uint8_t>(pixel));
        }
    }
    std::vector<uint8_t> file{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    std::vector<uint8_t> header;
    PutBigEndian(header, static_cast<uint32_t>(m_width));
    PutBigEndian(header, static_cast<uint32_t>(m_height));
    header.insert(header.end(), {8, 2, 0, 0, 0}); // 8-bit RGB
    WriteChunk(file, "IHDR", header);
    WriteChunk(file, "IDAT", StoredZlib(raw));
    WriteChunk(file, "IEND", {});
    FILE* out = _wfopen(path.c_str(), L"wb");
    if (!out)
        return false;
    bool written = fwrite(file.data(), 1, file.size(), out) == file.size();
    return fclose(out) == 0 && written;
}

std::wstring WindowImage::WriteScreenshot(const std::wstring& name) const
{
    // Test programs live in the build's bin folder; screenshots go beside it.
    wchar_t module[MAX_PATH];
    DWORD length = GetModuleFileNameW(nullptr, module, MAX_PATH);
    std::wstring folder(module, length);
    folder = folder.substr(0, folder.find_last_of(L"\\/"));
    folder = folder.substr(0, folder.find_last_of(L"\\/")) + L"\\screenshots";
    CreateDirectoryW(folder.c_str(), nullptr);
    std::wstring path = folder + L"\\" + name + L".png";
    return WritePng(path) ? path : std::wstring();
}

} // namespace brannoc::test
