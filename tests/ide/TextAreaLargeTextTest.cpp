// A text of 100 000 lines loads, scrolls and takes keystrokes at its end. The times are printed as a
// benchmark row (never asserted).
#include "ide/TextAreaFixture.h"

#include <cstdio>

namespace brannoc::test {
namespace {

double Milliseconds(LARGE_INTEGER start, LARGE_INTEGER end)
{
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return 1000.0 * static_cast<double>(end.QuadPart - start.QuadPart) / static_cast<double>(frequency.QuadPart);
}

using LargeTextTest = TextAreaFixture;

// Loads `lines` lines, goes to the end and types one character there; prints the times.
void LoadScrollAndType(TextAreaFixture& fixture, HWND textArea, int lines)
{
    std::string text;
    text.reserve(static_cast<size_t>(lines) * 32);
    for (int line = 0; line < lines; ++line)
        text += "    x = x + " + std::to_string(line) + " ' step\r\n";
    text += "End Sub";
    LARGE_INTEGER start, loaded, scrolled, typed;
    QueryPerformanceCounter(&start);
    SendMessageA(textArea, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    UpdateWindow(textArea);
    QueryPerformanceCounter(&loaded);
    SendMessageA(textArea, EM_SETSEL, text.size(), static_cast<LPARAM>(text.size()));
    SendMessageA(textArea, EM_SCROLLCARET, 0, 0);
    UpdateWindow(textArea);
    QueryPerformanceCounter(&scrolled);
    SendMessageA(textArea, WM_CHAR, 'Z', 1);
    UpdateWindow(textArea);
    QueryPerformanceCounter(&typed);
    (void)fixture;
    std::printf("[ bench    ] text area, %d lines: load and paint %.1f ms, go to the end %.1f ms, keystroke at the end %.1f ms\n",
                lines + 1, Milliseconds(start, loaded), Milliseconds(loaded, scrolled), Milliseconds(scrolled, typed));
}

TEST_F(LargeTextTest, HundredThousandLines)
{
    LoadScrollAndType(*this, m_textArea, 1000);
    LoadScrollAndType(*this, m_textArea, 100000);
    EXPECT_EQ(Send(EM_GETLINECOUNT), 100001);
    EXPECT_EQ(LineText(100000), "End SubZ");
    EXPECT_GT(Send(EM_GETFIRSTVISIBLELINE), 99900);
    PressKey(VK_HOME, {VK_CONTROL});
    EXPECT_EQ(Send(EM_GETFIRSTVISIBLELINE), 0);
    PressKey(VK_END, {VK_CONTROL});
    EXPECT_GT(Send(EM_GETFIRSTVISIBLELINE), 99900);
    Send(WM_VSCROLL, SB_TOP, 0);
    EXPECT_EQ(Send(EM_GETFIRSTVISIBLELINE), 0);
}

} // namespace
} // namespace brannoc::test
