// The library's about box (OA_BrannocAboutBox): a modal dialog placed horizontally centred with a third
// of the free screen height above it, showing the name, the version with the current language, the
// module resources come from, and the logo bitmap sliding inside a shape of elliptic regions.
#include "automation/ExportBoundary.h"
#include "host/AnsiText.h"
#include "host/ThisModule.h"

#include "brannoc.h"

#include <cstdio>
#include <string>

using namespace brannoc;
using namespace brannoc::automation;

namespace {

constexpr int kNameField = 101;
constexpr int kVersionField = 102;
constexpr int kLocalizedField = 103;
constexpr UINT_PTR kLogoTimer = 1;
constexpr UINT kLogoInterval = 50;
// The logo's place in dialog units.
constexpr RECT kLogoArea = {8, 64, 212, 92};

// Drawing resources shared by every open box of the process, made by the first and freed by the last.
struct SharedLogo {
    CRITICAL_SECTION lock;
    int users = 0;
    HBITMAP bitmap = nullptr;
    SIZE size{};
    SharedLogo() { InitializeCriticalSection(&lock); }
};

SharedLogo& Logo()
{
    static SharedLogo logo;
    return logo;
}

void AcquireLogo()
{
    SharedLogo& logo = Logo();
    EnterCriticalSection(&logo.lock);
    if (logo.users++ == 0) {
        logo.bitmap = static_cast<HBITMAP>(LoadImageW(ThisModule(), MAKEINTRESOURCEW(1), IMAGE_BITMAP, 0, 0, 0));
        BITMAP info{};
        if (logo.bitmap && GetObjectW(logo.bitmap, sizeof info, &info))
            logo.size = {info.bmWidth, info.bmHeight};
    }
    LeaveCriticalSection(&logo.lock);
}

void ReleaseLogo()
{
    SharedLogo& logo = Logo();
    EnterCriticalSection(&logo.lock);
    if (logo.users > 0 && --logo.users == 0 && logo.bitmap) {
        DeleteObject(logo.bitmap);
        logo.bitmap = nullptr;
    }
    LeaveCriticalSection(&logo.lock);
}

// State of one open box.
struct AboutState {
    std::wstring name;
    void* logoData = nullptr;
    int phase = 0;
    bool holdsLogo = false;
};

RECT LogoRect(HWND dialog)
{
    RECT area = kLogoArea;
    MapDialogRect(dialog, &area);
    return area;
}

// Two overlapping ellipses make the logo's outline.
HRGN LogoShape(const RECT& area)
{
    const LONG middle = (area.left + area.right) / 2;
    HRGN left = CreateEllipticRgn(area.left, area.top, middle + 20, area.bottom);
    HRGN right = CreateEllipticRgn(middle - 20, area.top, area.right, area.bottom);
    CombineRgn(left, left, right, RGN_OR);
    DeleteObject(right);
    return left;
}

void PaintLogo(HWND dialog, HDC dc, const AboutState& state)
{
    SharedLogo& logo = Logo();
    if (!logo.bitmap || logo.size.cx <= 0)
        return;
    RECT area = LogoRect(dialog);
    HRGN shape = LogoShape(area);
    SelectClipRgn(dc, shape);
    HDC source = CreateCompatibleDC(dc);
    HGDIOBJ old = SelectObject(source, logo.bitmap);
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    // The bitmap tiles the area, shifted by the animation's phase.
    for (int x = -(state.phase % logo.size.cx); x < width; x += logo.size.cx)
        StretchBlt(dc, area.left + x, area.top, logo.size.cx, height, source, 0, 0, logo.size.cx, logo.size.cy, SRCCOPY);
    SelectObject(source, old);
    DeleteDC(source);
    SelectClipRgn(dc, nullptr);
    DeleteObject(shape);
}

void PlaceOnScreen(HWND dialog)
{
    RECT box{};
    GetWindowRect(dialog, &box);
    const int width = box.right - box.left;
    const int height = box.bottom - box.top;
    const int screenWidth = GetSystemMetrics(SM_CXSCREEN);
    const int screenHeight = GetSystemMetrics(SM_CYSCREEN);
    SetWindowPos(dialog, nullptr, (screenWidth - width) / 2, (screenHeight - height) / 3, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

std::wstring FileNameOf(HMODULE module)
{
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(module, path, MAX_PATH);
    std::wstring full(path);
    size_t slash = full.find_last_of(L'\\');
    return slash == std::wstring::npos ? full : full.substr(slash + 1);
}

void FillFields(HWND dialog, const AboutState& state)
{
    SetWindowTextW(dialog, (L"About " + state.name).c_str());
    SetDlgItemTextW(dialog, kNameField, state.name.c_str());
    wchar_t versionTemplate[64] = {};
    GetDlgItemTextW(dialog, kVersionField, versionTemplate, 64);
    wchar_t language[8];
    std::swprintf(language, 8, L"%04X", static_cast<unsigned>(OA_NlsGetLangID()));
    SetDlgItemTextW(dialog, kVersionField,
                    (std::wstring(L"Version ") + versionTemplate + L" [" + language + L"]").c_str());
    SetDlgItemTextW(dialog, kLocalizedField, (L"Localized with " + FileNameOf(OA_NlsGetInstance())).c_str());
}

void StopAnimation(HWND dialog, AboutState& state)
{
    KillTimer(dialog, kLogoTimer);
    if (state.holdsLogo) {
        state.holdsLogo = false;
        ReleaseLogo();
    }
}

INT_PTR CALLBACK AboutProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto* state = reinterpret_cast<AboutState*>(GetWindowLongPtrW(dialog, DWLP_USER));
    switch (message) {
    case WM_INITDIALOG:
        state = reinterpret_cast<AboutState*>(lParam);
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        PlaceOnScreen(dialog);
        FillFields(dialog, *state);
        AcquireLogo();
        state->holdsLogo = true;
        SetTimer(dialog, kLogoTimer, kLogoInterval, nullptr);
        return TRUE;
    case WM_TIMER:
        if (state && wParam == kLogoTimer) {
            ++state->phase;
            RECT area = LogoRect(dialog);
            InvalidateRect(dialog, &area, FALSE);
        }
        return TRUE;
    case WM_PAINT: {
        PAINTSTRUCT paint;
        HDC dc = BeginPaint(dialog, &paint);
        if (state)
            PaintLogo(dialog, dc, *state);
        EndPaint(dialog, &paint);
        return TRUE;
    }
    case WM_COMMAND:
        if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) {
            if (state)
                StopAnimation(dialog, *state);
            EndDialog(dialog, LOWORD(wParam));
            return TRUE;
        }
        return FALSE;
    case WM_DESTROY:
        // A box ended from outside (EndDialog without a command) still gives its resources back.
        if (state)
            StopAnimation(dialog, *state);
        return FALSE;
    default:
        return FALSE;
    }
}

} // namespace

extern "C" BOOL __stdcall OA_BrannocAboutBox(HWND owner, LPCSTR name, void* logoData)
{
    return AtExportBoundary<BOOL>(FALSE, [&]() -> BOOL {
        AboutState state;
        state.name = name ? WideFromAnsi(name) : std::wstring();
        state.logoData = logoData;
        INT_PTR answer = DialogBoxParamW(ThisModule(), L"DL_ABOUT", owner, AboutProc, reinterpret_cast<LPARAM>(&state));
        return answer == IDOK ? TRUE : FALSE;
    });
}
