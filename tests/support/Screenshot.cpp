#include "support/Screenshot.h"

#include <cstdint>
#include <cstdio>
#include <vector>

namespace brannoc::test {
namespace {

std::uint32_t Crc32(const unsigned char* data, std::size_t size, std::uint32_t crc = 0)
{
    crc = ~crc;
    for (std::size_t i = 0; i < size; ++i) {
        crc ^= data[i];
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
    }
    return ~crc;
}

void PutBig32(std::vector<unsigned char>& out, std::uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        out.push_back(static_cast<unsigned char>(value >> shift));
}

void PutChunk(std::vector<unsigned char>& out, const char* type, const std::vector<unsigned char>& data)
{
    PutBig32(out, static_cast<std::uint32_t>(data.size()));
    std::vector<unsigned char> typed(type, type + 4);
    typed.insert(typed.end(), data.begin(), data.end());
    out.insert(out.end(), typed.begin(), typed.end());
    PutBig32(out, Crc32(typed.data(), typed.size()));
}

// A zlib stream of stored (uncompressed) deflate blocks.
std::vector<unsigned char> StoredZlib(const std::vector<unsigned char>& raw)
{
    std::vector<unsigned char> out{0x78, 0x01};
    std::size_t position = 0;
    do {
        const std::size_t length = raw.size() - position < 65535 ? raw.size() - position : 65535;
        const bool last = position + length == raw.size();
        out.push_back(last ? 1 : 0);
        out.push_back(static_cast<unsigned char>(length));
        out.push_back(static_cast<unsigned char>(length >> 8));
        out.push_back(static_cast<unsigned char>(~length));
        out.push_back(static_cast<unsigned char>(~length >> 8));
        out.insert(out.end(), raw.begin() + static_cast<std::ptrdiff_t>(position),
                   raw.begin() + static_cast<std::ptrdiff_t>(position + length));
        position += length;
    } while (position < raw.size());
    std::uint32_t a = 1;
    std::uint32_t b = 0;
    for (unsigned char c : raw) {
        a = (a + c) % 65521;
        b = (b + a) % 65521;
    }
    PutBig32(out, (b << 16) | a);
    return out;
}

} // namespace

std::wstring SaveWindowScreenshot(HWND window, const std::wstring& name)
{
    RECT rect{};
    if (!GetWindowRect(window, &rect))
        return {};
    const int width = rect.right - rect.left;
    const int height = rect.bottom - rect.top;
    if (width <= 0 || height <= 0)
        return {};
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN | RDW_FRAME);
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, width, height, screen, rect.left, rect.top, SRCCOPY);
    SelectObject(memory, old);
    std::vector<unsigned char> raw;
    raw.reserve(static_cast<std::size_t>(height) * (static_cast<std::size_t>(width) * 3 + 1));
    const auto* pixels = static_cast<const unsigned char*>(bits);
    for (int y = 0; y < height; ++y) {
        raw.push_back(0);
        for (int x = 0; x < width; ++x) {
            const unsigned char* pixel = pixels + (static_cast<std::size_t>(y) * width + x) * 4;
            raw.push_back(pixel[2]);
            raw.push_back(pixel[1]);
            raw.push_back(pixel[0]);
        }
    }
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);

    std::vector<unsigned char> png{0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};
    std::vector<unsigned char> header;
    PutBig32(header, static_cast<std::uint32_t>(width));
    PutBig32(header, static_cast<std::uint32_t>(height));
    header.insert(header.end(), {8, 2, 0, 0, 0});
    PutChunk(png, "IHDR", header);
    PutChunk(png, "IDAT", StoredZlib(raw));
    PutChunk(png, "IEND", {});

    // The tests run in the build's bin folder; the pictures go beside it.
    CreateDirectoryW(L"..\\screenshots", nullptr);
    const std::wstring path = L"..\\screenshots\\" + name + L".png";
    FILE* file = _wfopen(path.c_str(), L"wb");
    if (!file)
        return {};
    const bool written = fwrite(png.data(), 1, png.size(), file) == png.size();
    fclose(file);
    return written ? path : std::wstring();
}

} // namespace brannoc::test
