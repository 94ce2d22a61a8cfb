#pragma once
// A test-owned editor frame (top-level unless asked otherwise), with helpers that read its children
// and drive it by its frame messages, the toolbar message and key presses.
#include "ide/EditorFrame.h"
#include "ide/TextArea.h"
#include "support/MessageBoxCapture.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <ostream>
#include <string>
#include <vector>

// Rectangles compared and printed in test messages.
inline bool operator==(const RECT& a, const RECT& b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}
inline void PrintTo(const RECT& r, std::ostream* out)
{
    *out << "{" << r.left << ", " << r.top << ", " << r.right << ", " << r.bottom << "}";
}

namespace brannoc::test {

class EditorFrameFixture : public ::testing::Test {
protected:
    static constexpr DWORD kDefaultOptions = ide::FO_TOOLBAR | ide::FO_STATUS_BAR | ide::FO_FILES | ide::FO_SHEETS;

    void TearDown() override { Destroy(); }

    // Creates the frame with the option bits; a child frame gets a test-owned top-level parent.
    HWND Create(DWORD options = kDefaultOptions, bool child = false, int width = 760, int height = 520)
    {
        Destroy();
        EXPECT_TRUE(ide::RegisterEditorFrameClass());
        HWND parent = nullptr;
        DWORD style = WS_OVERLAPPEDWINDOW | WS_VISIBLE;
        if (child) {
            m_parent = CreateWindowExA(0, "STATIC", "Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, width + 40,
                                       height + 60, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
            parent = m_parent;
            style = WS_CHILD | WS_VISIBLE;
        }
        m_frame = CreateWindowExA(0, ide::kEditorFrameClassName, "", style | options, 0, 0, width, height, parent,
                                  nullptr, GetModuleHandleA(nullptr), nullptr);
        EXPECT_NE(m_frame, nullptr);
        if (m_frame) {
            SetForegroundWindow(child ? m_parent : m_frame);
            SetFocus(m_frame);
        }
        Pump();
        Send(ide::FM_UPDATE);
        return m_frame;
    }

    void Destroy()
    {
        if (m_frame && IsWindow(m_frame)) {
            MessageBoxCapture capture(IDNO);
            DestroyWindow(m_frame);
        }
        if (m_parent)
            DestroyWindow(m_parent);
        m_frame = m_parent = nullptr;
        Pump();
    }

    // Pumps messages until done() holds or the time is up (input sent through the display server arrives
    // later on a busy machine); answers done().
    template <typename Done> static bool PumpUntil(Done done, DWORD milliseconds = 3000)
    {
        const DWORD start = GetTickCount();
        while (!done() && GetTickCount() - start < milliseconds)
            Pump(20);
        return done();
    }
    static void Pump(DWORD milliseconds = 0)
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

    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const { return SendMessageA(m_frame, message, wParam, lParam); }
    LRESULT SendText(UINT message, const std::string& text, WPARAM wParam = 0) const
    {
        return Send(message, wParam, reinterpret_cast<LPARAM>(text.c_str()));
    }
    // A string getter of the frame: asks the length first, then the text.
    std::string Get(UINT message, LPARAM input = 0) const
    {
        LRESULT length = Send(message, 0, input);
        std::string text(static_cast<size_t>(length) + 1, '\0');
        text.resize(static_cast<size_t>(Send(message, text.size(), reinterpret_cast<LPARAM>(text.data()))));
        return text;
    }
    std::string Caption() const { return Get(ide::FM_GETCAPTION); }
    std::string WindowText(HWND window) const
    {
        char buffer[1024] = {};
        GetWindowTextA(window, buffer, sizeof(buffer));
        return buffer;
    }
    // Dispatches a command as the user interface does (toolbar message, lParam -1).
    LRESULT Command(int command) const
    {
        static const UINT message = RegisterWindowMessageA(ide::kToolbarMessageName);
        return Send(message, static_cast<WPARAM>(command), -1);
    }
    HWND Child(int id) const { return GetDlgItem(m_frame, id); }
    HWND Editor() const { return Child(ide::ID_FRAME_EDITOR); }
    ide::TextDocument* Document() const { return ide::TextAreaDocument(Editor()); }
    RECT ChildRect(int id) const
    {
        RECT r{};
        GetWindowRect(Child(id), &r);
        MapWindowPoints(nullptr, m_frame, reinterpret_cast<POINT*>(&r), 2);
        return r;
    }
    // Key presses through SendInput with the modifier keys held down.
    void PressKey(WORD key, std::vector<WORD> modifiers = {}) const
    {
        std::vector<INPUT> inputs;
        auto add = [&](WORD vk, bool up) {
            INPUT input{};
            input.type = INPUT_KEYBOARD;
            input.ki.wVk = vk;
            input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
            inputs.push_back(input);
        };
        for (WORD modifier : modifiers)
            add(modifier, false);
        add(key, false);
        add(key, true);
        for (auto it = modifiers.rbegin(); it != modifiers.rend(); ++it)
            add(*it, true);
        SetForegroundWindow(GetAncestor(m_frame, GA_ROOT));
        SetFocus(Editor());
        Pump();
        SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
        Pump(150);
    }
    static std::string TempPath(const std::string& name)
    {
        char folder[MAX_PATH];
        GetTempPathA(MAX_PATH, folder);
        return std::string(folder) + name;
    }
    static void WriteFileBytes(const std::string& path, const std::string& bytes)
    {
        HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        DWORD written = 0;
        WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
        CloseHandle(file);
    }
    static std::string ReadFileBytes(const std::string& path)
    {
        HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
        if (file == INVALID_HANDLE_VALUE)
            return "<missing>";
        std::string bytes(GetFileSize(file, nullptr), '\0');
        DWORD read = 0;
        ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
        CloseHandle(file);
        return bytes;
    }
    static std::string Narrow(const std::wstring& text)
    {
        return std::string(text.begin(), text.end());
    }

    HWND m_frame = nullptr;
    HWND m_parent = nullptr;
};

} // namespace brannoc::test
