// The library's about box: placement, caption and fields, and the button that closed it.
#include "brannoc.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct SeenBox {
    std::wstring caption;
    std::wstring fields[3];
    RECT rect{};
    int count = 0;
};

SeenBox s_seen;
WPARAM s_answer = IDOK;

std::wstring ItemText(HWND dialog, int id)
{
    wchar_t text[256] = {};
    GetDlgItemTextW(dialog, id, text, 256);
    return text;
}

// Reads the box once its WM_INITDIALOG is done, then presses the chosen button.
LRESULT CALLBACK WatchAboutBox(int code, WPARAM wParam, LPARAM lParam)
{
    const auto* message = reinterpret_cast<const CWPRETSTRUCT*>(lParam);
    if (code == HC_ACTION && message->message == WM_INITDIALOG && GetDlgItem(message->hwnd, 102)) {
        ++s_seen.count;
        wchar_t caption[128] = {};
        GetWindowTextW(message->hwnd, caption, 128);
        s_seen.caption = caption;
        for (int i = 0; i < 3; ++i)
            s_seen.fields[i] = ItemText(message->hwnd, 101 + i);
        GetWindowRect(message->hwnd, &s_seen.rect);
        PostMessageW(message->hwnd, WM_COMMAND, s_answer, 0);
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

bool ShowAbout(WPARAM answer)
{
    s_seen = SeenBox{};
    s_answer = answer;
    HHOOK hook = SetWindowsHookExW(WH_CALLWNDPROCRET, WatchAboutBox, nullptr, GetCurrentThreadId());
    BOOL result = OA_BrannocAboutBox(nullptr, "Test Host", nullptr);
    UnhookWindowsHookEx(hook);
    return result != FALSE;
}

} // namespace

TEST(AboutBox, FieldsPlacementAndAnswer)
{
    OA_NlsSetLangID(0x407);
    EXPECT_TRUE(ShowAbout(IDOK));
    ASSERT_EQ(1, s_seen.count);
    EXPECT_EQ(L"About Test Host", s_seen.caption);
    EXPECT_EQ(L"Test Host", s_seen.fields[0]);
    EXPECT_EQ(L"Version 5.2.16/32 [0407]", s_seen.fields[1]);
    EXPECT_EQ(0u, s_seen.fields[2].find(L"Localized with "));
    EXPECT_NE(std::wstring::npos, s_seen.fields[2].find(L".exe"));   // the module itself: no satellite here
    const int width = s_seen.rect.right - s_seen.rect.left;
    const int height = s_seen.rect.bottom - s_seen.rect.top;
    EXPECT_EQ((GetSystemMetrics(SM_CXSCREEN) - width) / 2, s_seen.rect.left);
    EXPECT_EQ((GetSystemMetrics(SM_CYSCREEN) - height) / 3, s_seen.rect.top);
    EXPECT_FALSE(ShowAbout(IDCANCEL));
    EXPECT_EQ(1, s_seen.count);
    OA_NlsSetLangID(1024);
}
