// SendKeys into an EDIT control this test owns, and AppActivate of a window of a started program.
#include "code/ProgramRunner.h"
#include <gtest/gtest.h>
#include <windows.h>
#include <string>

using brannoc::testing::JoinLines;
using brannoc::testing::RunProgram;

namespace {

int g_enterKeys = 0;
WNDPROC g_editProcedure = nullptr;

// Counts the Enter keys that reach the EDIT control.
LRESULT CALLBACK CountingEdit(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_KEYDOWN && wParam == VK_RETURN)
        ++g_enterKeys;
    return CallWindowProcW(g_editProcedure, window, message, wParam, lParam);
}

class FocusedEdit final {
public:
    FocusedEdit()
    {
        m_frame = CreateWindowW(L"STATIC", L"SendKeys target", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 10, 300, 100,
                                nullptr, nullptr, nullptr, nullptr);
        m_edit = CreateWindowW(L"EDIT", L"", WS_CHILD | WS_VISIBLE | WS_BORDER | ES_AUTOHSCROLL, 5, 5, 250, 25, m_frame, nullptr,
                               nullptr, nullptr);
        g_editProcedure = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrW(m_edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&CountingEdit)));
        g_enterKeys = 0;
        SetForegroundWindow(m_frame);
        SetFocus(m_edit);
        Pump();
    }
    ~FocusedEdit() { DestroyWindow(m_frame); }
    HWND Edit() const { return m_edit; }
    bool HasFocus() const { return GetFocus() == m_edit; }
    std::wstring Text() const
    {
        wchar_t text[256] = L"";
        GetWindowTextW(m_edit, text, 256);
        return text;
    }
    static void Pump()
    {
        MSG message;
        for (int round = 0; round < 20; ++round) {
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
                TranslateMessage(&message);
                DispatchMessageW(&message);
            }
            Sleep(10);
        }
    }

private:
    HWND m_frame = nullptr;
    HWND m_edit = nullptr;
};

std::wstring RunStatement(const std::string& statement)
{
    auto result = RunProgram(JoinLines({"Sub Main", "On Error Resume Next", statement, "Debug.Print Err.Number",
                                        "End Sub"}));
    return result.output;
}

struct ProcessWindow {
    DWORD process;
    HWND found;
};

BOOL CALLBACK FindProcessWindow(HWND candidate, LPARAM parameter)
{
    auto* search = reinterpret_cast<ProcessWindow*>(parameter);
    DWORD owner = 0;
    GetWindowThreadProcessId(candidate, &owner);
    if (owner != search->process || !IsWindowVisible(candidate))
        return TRUE;
    search->found = candidate;
    return FALSE;
}

} // namespace

TEST(SendKeys, TypesIntoTheFocusedEditWithArrowsAndEnter)
{
    FocusedEdit edit;
    ASSERT_TRUE(edit.HasFocus());
    EXPECT_EQ(L"0&\r\n", RunStatement("SendKeys \"Hello{LEFT 3}X~\", True"));
    FocusedEdit::Pump();
    EXPECT_EQ(L"HeXllo", edit.Text());
    EXPECT_EQ(1, g_enterKeys);
    // Shift over a group, a braced closing brace, and the Enter key by name.
    SetWindowTextW(edit.Edit(), L"");
    EXPECT_EQ(L"0&\r\n", RunStatement("SendKeys \"+(ab)c{}}{enter}{ENTER}\", True"));
    FocusedEdit::Pump();
    EXPECT_EQ(L"ABc}", edit.Text());
    EXPECT_EQ(3, g_enterKeys);
}

TEST(SendKeys, RefusesBadKeyTextsBeforeSendingAnything)
{
    FocusedEdit edit;
    EXPECT_EQ(L"10110&\r\n", RunStatement("SendKeys \"ab{TAB\""));
    EXPECT_EQ(L"10111&\r\n", RunStatement("SendKeys \"ab{F25}\""));
    EXPECT_EQ(L"10112&\r\n", RunStatement("SendKeys \"+(ab\""));
    EXPECT_EQ(L"10119&\r\n", RunStatement("SendKeys String(129, \"a\")"));
    EXPECT_EQ(L"0&\r\n", RunStatement("SendKeys String(128, \"a\"), True"));
    FocusedEdit::Pump();
    EXPECT_EQ(std::wstring(128, L'a'), edit.Text());
}

// The import table's entry for SendInput, through which the engine's code injects the keys.
extern "C" void* g_sendInputEntry __asm__("__imp__SendInput@12");

namespace {

UINT s_offeredEvents = 0;

// A SendInput that the system refuses: nothing is injected.
UINT WINAPI RefusingSendInput(UINT count, LPINPUT, int)
{
    s_offeredEvents += count;
    SetLastError(ERROR_ACCESS_DENIED);
    return 0;
}

void ReplaceSendInput(void* target)
{
    DWORD previous = 0;
    VirtualProtect(&g_sendInputEntry, sizeof(void*), PAGE_READWRITE, &previous);
    g_sendInputEntry = target;
    VirtualProtect(&g_sendInputEntry, sizeof(void*), previous, &previous);
}

} // namespace

TEST(SendKeys, KeysThatTheSystemRefusesToPlayAreAnError)
{
    void* original = g_sendInputEntry;
    s_offeredEvents = 0;
    ReplaceSendInput(reinterpret_cast<void*>(&RefusingSendInput));
    const std::wstring refused = RunStatement("SendKeys \"ab\"");
    const std::wstring nothing = RunStatement("SendKeys \"\"");
    ReplaceSendInput(original);
    EXPECT_EQ(L"10116&\r\n", refused);
    EXPECT_EQ(4u, s_offeredEvents) << "a and b, each down and up";
    EXPECT_EQ(L"0&\r\n", nothing) << "no keys: nothing to play";
}

TEST(AppActivate, FindsAStartedProgramsWindowByCaptionPrefixInAnyCase)
{
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    wchar_t command[] = L"notepad.exe";
    ASSERT_TRUE(CreateProcessW(nullptr, command, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process));
    WaitForInputIdle(process.hProcess, 10000);
    // Its window is the one whose caption ends in "Notepad".
    HWND window = nullptr;
    for (int i = 0; i < 100 && !window; ++i) {
        Sleep(50);
        ProcessWindow search{process.dwProcessId, nullptr};
        EnumWindows(&FindProcessWindow, reinterpret_cast<LPARAM>(&search));
        window = search.found;
    }
    ASSERT_NE(nullptr, window);
    wchar_t caption[80] = L"";
    GetWindowTextW(window, caption, 80);
    std::string prefix;
    for (int i = 0; i < 4 && caption[i]; ++i)
        prefix += static_cast<char>(i % 2 ? towupper(caption[i]) : towlower(caption[i]));
    FocusedEdit other;
    EXPECT_EQ(L"0&\r\n", RunStatement("AppActivate \"" + prefix + "\""));
    FocusedEdit::Pump();
    EXPECT_EQ(window, GetForegroundWindow());
    EXPECT_EQ(L"10120&\r\n", RunStatement("AppActivate \"no window has this caption\""));
    SetForegroundWindow(GetParent(other.Edit()));
    EXPECT_EQ(L"0&\r\n", RunStatement("AppActivate " + std::to_string(process.dwProcessId)));
    FocusedEdit::Pump();
    EXPECT_EQ(window, GetForegroundWindow());
    TerminateProcess(process.hProcess, 0);
    WaitForSingleObject(process.hProcess, 5000);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}
