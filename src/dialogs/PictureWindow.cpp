#include "dialogs/PictureWindow.h"

#include "host/ThisModule.h"

#include <cstdio>
#include <vector>

namespace brannoc {

namespace {

constexpr DWORD kTypeMask = 0x1F;
constexpr DWORD kLoadMustSucceed = 16;

// The window keeps its bitmap in the user data.
HBITMAP BitmapOf(HWND window) { return reinterpret_cast<HBITMAP>(GetWindowLongPtrW(window, GWLP_USERDATA)); }

void ReplaceBitmap(HWND window, HBITMAP bitmap)
{
    if (HBITMAP old = BitmapOf(window))
        DeleteObject(old);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(bitmap));
}

// Reads a device-independent bitmap file: file header, information header, colour table, bits.
HBITMAP ReadBitmapFile(const std::wstring& path)
{
    FILE* file = _wfopen(path.c_str(), L"rb");
    if (!file)
        return nullptr;
    std::vector<unsigned char> bytes;
    unsigned char buffer[4096];
    for (std::size_t read; (read = fread(buffer, 1, sizeof buffer, file)) > 0;)
        bytes.insert(bytes.end(), buffer, buffer + read);
    fclose(file);
    if (bytes.size() < sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER) || bytes[0] != 'B' || bytes[1] != 'M')
        return nullptr;
    const auto* info = reinterpret_cast<const BITMAPINFO*>(bytes.data() + sizeof(BITMAPFILEHEADER));
    const BITMAPINFOHEADER& header = info->bmiHeader;
    if (header.biSize < sizeof(BITMAPINFOHEADER) || header.biWidth <= 0 || header.biHeight == 0)
        return nullptr;
    std::size_t colours = header.biClrUsed;
    if (colours == 0 && header.biBitCount < 24)
        colours = std::size_t{1} << header.biBitCount;
    const std::size_t bitsOffset = sizeof(BITMAPFILEHEADER) + header.biSize + colours * sizeof(RGBQUAD);
    if (bitsOffset >= bytes.size())
        return nullptr;
    HDC screen = GetDC(nullptr);
    HBITMAP bitmap = CreateDIBitmap(screen, &header, CBM_INIT, bytes.data() + bitsOffset, info, DIB_RGB_COLORS);
    ReleaseDC(nullptr, screen);
    return bitmap;
}

void Paint(HWND window)
{
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(window, &paint);
    RECT client;
    GetClientRect(window, &client);
    if (HBITMAP bitmap = BitmapOf(window)) {
        BITMAP size{};
        GetObjectW(bitmap, sizeof size, &size);
        HDC memory = CreateCompatibleDC(dc);
        HGDIOBJ old = SelectObject(memory, bitmap);
        SetStretchBltMode(dc, COLORONCOLOR);
        StretchBlt(dc, 0, 0, client.right, client.bottom, memory, 0, 0, size.bmWidth, size.bmHeight, SRCCOPY);
        SelectObject(memory, old);
        DeleteDC(memory);
    } else {
        const std::wstring missing = LoadResourceString(11110);
        HGDIOBJ font = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(GetParent(window), WM_GETFONT, 0, 0)));
        SetBkMode(dc, TRANSPARENT);
        TextOutW(dc, 0, 0, missing.c_str(), static_cast<int>(missing.size()));
        SelectObject(dc, font);
    }
    EndPaint(window, &paint);
}

LRESULT CALLBACK PictureWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_PAINT: Paint(window); return 0;
    case WM_DESTROY: ReplaceBitmap(window, nullptr); break;
    default: break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

} // namespace

bool RegisterPictureWindowClass()
{
    WNDCLASSW existing;
    if (GetClassInfoW(ThisModule(), kPictureWindowClass, &existing))
        return true;
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = &PictureWindowProc;
    windowClass.hInstance = ThisModule();
    windowClass.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    windowClass.lpszClassName = kPictureWindowClass;
    return RegisterClassW(&windowClass) != 0;
}

bool ReloadPicture(HWND window)
{
    const DWORD type = static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE)) & kTypeMask;
    const DWORD base = type & ~kLoadMustSucceed;
    if (base != 0 && base != 3)
        return false;
    HBITMAP bitmap = nullptr;
    if (base == 0) {
        const int length = GetWindowTextLengthW(window);
        std::wstring path(static_cast<std::size_t>(length) + 1, L'\0');
        GetWindowTextW(window, path.data(), length + 1);
        path.resize(static_cast<std::size_t>(length));
        bitmap = ReadBitmapFile(path);
    }
    ReplaceBitmap(window, bitmap);
    InvalidateRect(window, nullptr, TRUE);
    return bitmap || (type & kLoadMustSucceed) == 0;
}

bool PictureLoaded(HWND window) { return BitmapOf(window) != nullptr; }

} // namespace brannoc
