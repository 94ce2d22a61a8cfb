#pragma once
// A test-owned top-level window holding a text area (and, for comparisons, a real multi-line EDIT
// control), with helpers that drive them by messages and by SendInput.
#include "ide/TextArea.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

namespace brannoc::test {

class TextAreaFixture : public ::testing::Test {
protected:
    static constexpr int kWidth = 640;
    static constexpr int kHeight = 400;

    void SetUp() override;
    void TearDown() override;

    // Pumps the thread's messages until none is left (and at least `milliseconds` passed).
    static void Pump(DWORD milliseconds = 0);
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const
    {
        return SendMessageA(m_textArea, message, wParam, lParam);
    }
    void SetText(const std::string& text) const { Send(WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str())); }
    std::string Text() const;
    std::string LineText(int line) const;
    ide::TextDocument& Document() const { return *ide::TextAreaDocument(m_textArea); }
    // Key presses through SendInput with real modifier state; `modifiers` are virtual keys held down.
    void PressKey(WORD key, std::vector<WORD> modifiers = {}) const;
    void TypeText(const std::string& text) const;
    // Moves the caret to a line and column (0-based) through the control's own message.
    void GoTo(int line, int column) const;
    // A mouse click at a client point of the text area.
    void Click(int x, int y, bool doubleClick = false) const;
    // Commands the control posted to its parent through the toolbar message (wParam of each).
    std::vector<WPARAM> PostedCommands() const { return s_commands; }

    HWND m_host = nullptr;
    HWND m_textArea = nullptr;

private:
    static LRESULT CALLBACK HostProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    static inline std::vector<WPARAM> s_commands;
};

// ---- inline definitions (the test folder builds only *Test.cpp files) ----



inline LRESULT CALLBACK TextAreaFixture::HostProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    static const UINT toolbarMessage = RegisterWindowMessageA(ide::kToolbarMessageName);
    if (message == toolbarMessage && lParam == -1) {
        s_commands.push_back(wParam);
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

inline void TextAreaFixture::SetUp()
{
    ASSERT_TRUE(ide::RegisterTextAreaClass());
    WNDCLASSA hostClass{};
    hostClass.lpfnWndProc = HostProc;
    hostClass.hInstance = GetModuleHandleA(nullptr);
    hostClass.lpszClassName = "BrannocTextAreaTestHost";
    hostClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    RegisterClassA(&hostClass);
    s_commands.clear();
    m_host = CreateWindowExA(WS_EX_TOPMOST, "BrannocTextAreaTestHost", "Text area test", WS_POPUP | WS_VISIBLE, 0, 0,
                             kWidth + 20, kHeight + 20, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
    ASSERT_NE(m_host, nullptr);
    m_textArea = CreateWindowExA(0, ide::kTextAreaClassName, "", WS_CHILD | WS_VISIBLE | WS_VSCROLL | WS_HSCROLL,
                                 0, 0, kWidth, kHeight, m_host, reinterpret_cast<HMENU>(1),
                                 GetModuleHandleA(nullptr), nullptr);
    ASSERT_NE(m_textArea, nullptr);
    SetForegroundWindow(m_host);
    SetFocus(m_textArea);
    Pump();
}

inline void TextAreaFixture::TearDown()
{
    if (m_host)
        DestroyWindow(m_host);
    Pump();
}

inline void TextAreaFixture::Pump(DWORD milliseconds)
{
    DWORD start = GetTickCount();
    for (;;) {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
        if (GetTickCount() - start >= milliseconds)
            return;
        Sleep(10);
    }
}

inline std::string TextAreaFixture::Text() const
{
    std::string text(static_cast<size_t>(Send(WM_GETTEXTLENGTH)) + 1, '\0');
    text.resize(static_cast<size_t>(Send(WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

inline std::string TextAreaFixture::LineText(int line) const
{
    return std::string(Document().Line(line));
}

inline void TextAreaFixture::PressKey(WORD key, std::vector<WORD> modifiers) const
{
    std::vector<INPUT> inputs;
    auto add = [&](WORD vk, bool up) {
        INPUT input{};
        input.type = INPUT_KEYBOARD;
        input.ki.wVk = vk;
        input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
        if (vk == VK_LEFT || vk == VK_RIGHT || vk == VK_UP || vk == VK_DOWN || vk == VK_HOME || vk == VK_END ||
            vk == VK_PRIOR || vk == VK_NEXT || vk == VK_INSERT || vk == VK_DELETE)
            input.ki.dwFlags |= KEYEVENTF_EXTENDEDKEY;
        inputs.push_back(input);
    };
    for (WORD modifier : modifiers)
        add(modifier, false);
    add(key, false);
    add(key, true);
    for (auto it = modifiers.rbegin(); it != modifiers.rend(); ++it)
        add(*it, true);
    SetForegroundWindow(m_host);
    SetFocus(m_textArea);
    SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
    Pump(30);
}

inline void TextAreaFixture::TypeText(const std::string& text) const
{
    // Characters go straight to the control as WM_CHAR, as TranslateMessage would produce them.
    for (char c : text)
        Send(WM_CHAR, static_cast<unsigned char>(c), 1);
}

inline void TextAreaFixture::GoTo(int line, int column) const
{
    Send(ide::TAM_GOTOLINE, static_cast<WPARAM>(column), MAKELPARAM(line, 0));
}

inline void TextAreaFixture::Click(int x, int y, bool doubleClick) const
{
    LPARAM point = MAKELPARAM(x, y);
    Send(WM_LBUTTONDOWN, MK_LBUTTON, point);
    Send(WM_LBUTTONUP, 0, point);
    if (doubleClick) {
        Send(WM_LBUTTONDBLCLK, MK_LBUTTON, point);
        Send(WM_LBUTTONUP, 0, point);
    }
    Pump();
}

} // namespace brannoc::test
