#pragma once
// Drives dialogs (other than message boxes) that open on a thread: shortly after each one appears,
// the robot runs an action on it (fill fields, read lists, press buttons), from the dialog's own
// message loop, so modal common dialogs can be filled and closed by a test.
#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace brannoc::test {

class DialogRobot final {
public:
    using Action = std::function<void(HWND dialog)>;
    explicit DialogRobot(Action action, DWORD threadId = GetCurrentThreadId());
    ~DialogRobot();
    DialogRobot(const DialogRobot&) = delete;
    DialogRobot& operator=(const DialogRobot&) = delete;

    // Dialogs the robot acted on, in order.
    const std::vector<HWND>& Dialogs() const { return m_dialogs; }

    // Helpers for actions: the text of a control, a control's text set, a button pressed.
    static std::string Text(HWND dialog, int id);
    static void SetText(HWND dialog, int id, const char* text);
    static void Press(HWND dialog, int id);

private:
    static LRESULT CALLBACK HookProc(int code, WPARAM wParam, LPARAM lParam);
    static void CALLBACK OnTimer(HWND dialog, UINT, UINT_PTR, DWORD);

    HHOOK m_hook = nullptr;
    Action m_action;
    std::vector<HWND> m_dialogs;
};

} // namespace brannoc::test
