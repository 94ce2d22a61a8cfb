#include "support/DialogRobot.h"

#include <string>

namespace brannoc::test {

namespace {

DialogRobot* s_robot = nullptr;
constexpr UINT_PTR kRobotTimer = 0x7A11;

bool IsMessageBox(HWND window)
{
    return GetDlgItem(window, 0xFFFF) && !GetDlgItem(window, 0x480);
}

bool IsDialog(HWND window)
{
    wchar_t className[16] = L"";
    GetClassNameW(window, className, 16);
    return lstrcmpW(className, L"#32770") == 0;
}

} // namespace

DialogRobot::DialogRobot(Action action, DWORD threadId) : m_action(std::move(action))
{
    s_robot = this;
    m_hook = SetWindowsHookExW(WH_CALLWNDPROCRET, &DialogRobot::HookProc, nullptr, threadId);
}

DialogRobot::~DialogRobot()
{
    if (m_hook)
        UnhookWindowsHookEx(m_hook);
    s_robot = nullptr;
}

LRESULT CALLBACK DialogRobot::HookProc(int code, WPARAM wParam, LPARAM lParam)
{
    if (code == HC_ACTION && s_robot) {
        const auto* message = reinterpret_cast<const CWPRETSTRUCT*>(lParam);
        // Only top dialogs: the common dialogs' inner pages are #32770 children.
        if (message->message == WM_INITDIALOG && IsDialog(message->hwnd) && !IsMessageBox(message->hwnd) &&
            !(GetWindowLongW(message->hwnd, GWL_STYLE) & WS_CHILD))
            SetTimer(message->hwnd, kRobotTimer, 300, &DialogRobot::OnTimer);
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

void CALLBACK DialogRobot::OnTimer(HWND dialog, UINT, UINT_PTR id, DWORD)
{
    KillTimer(dialog, id);
    if (!s_robot)
        return;
    s_robot->m_dialogs.push_back(dialog);
    s_robot->m_action(dialog);
}

std::string DialogRobot::Text(HWND dialog, int id)
{
    char buffer[1024] = {};
    GetDlgItemTextA(dialog, id, buffer, sizeof(buffer));
    return buffer;
}

void DialogRobot::SetText(HWND dialog, int id, const char* text)
{
    SetDlgItemTextA(dialog, id, text);
}

void DialogRobot::Press(HWND dialog, int id)
{
    PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}

} // namespace brannoc::test
