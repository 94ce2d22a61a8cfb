#pragma once
// A robot that works a user dialog from a timer of the thread that runs the macro: it waits for the
// dialog window, then carries out its steps one per tick (a step that answers false is tried again on
// the next tick).
#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace brannoc::testing {

class DialogRobot final {
public:
    using Step = std::function<bool(HWND dialog)>;

    explicit DialogRobot(std::vector<Step> steps) : m_steps(std::move(steps))
    {
        s_active = this;
        m_timer = SetTimer(nullptr, 0, 40, &Tick);
    }
    ~DialogRobot()
    {
        KillTimer(nullptr, m_timer);
        s_active = nullptr;
    }
    DialogRobot(const DialogRobot&) = delete;
    DialogRobot& operator=(const DialogRobot&) = delete;

    bool Finished() const { return m_next == m_steps.size(); }

    // The user dialog window of this thread, or null.
    static HWND FindDialog() { return FindWindowW(L"__BrannocBasicDynDlgWindow", nullptr); }

    static std::wstring Text(HWND window)
    {
        wchar_t text[512] = L"";
        GetWindowTextW(window, text, 512);
        return text;
    }

private:
    static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD)
    {
        DialogRobot* robot = s_active;
        if (!robot || robot->m_busy || robot->Finished())
            return;
        HWND dialog = FindDialog();
        if (!dialog || !IsWindowVisible(dialog))
            return;
        robot->m_busy = true;
        if (robot->m_steps[robot->m_next](dialog))
            ++robot->m_next;
        robot->m_busy = false;
    }

    static inline DialogRobot* s_active = nullptr;
    std::vector<Step> m_steps;
    std::size_t m_next = 0;
    UINT_PTR m_timer = 0;
    bool m_busy = false;
};

// Item identifiers: OK 1, Cancel 2, every other item 100 plus its number.
inline HWND Item(HWND dialog, int number) { return GetDlgItem(dialog, 100 + number); }

inline void Click(HWND button) { SendMessageW(button, BM_CLICK, 0, 0); }

} // namespace brannoc::testing
