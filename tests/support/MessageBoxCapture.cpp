#include "support/MessageBoxCapture.h"

namespace brannoc::test {
namespace {

// One capture at a time per process: hook procedures get no user data.
MessageBoxCapture* s_active = nullptr;

std::wstring WindowText(HWND window)
{
    if (!window)
        return {};
    int length = GetWindowTextLengthW(window);
    std::wstring text(static_cast<size_t>(length) + 1, L'\0');
    int copied = GetWindowTextW(window, text.data(), length + 1);
    text.resize(static_cast<size_t>(copied > 0 ? copied : 0));
    return text;
}

bool IsDialogWindow(HWND window)
{
    wchar_t className[16] = L"";
    GetClassNameW(window, className, 16);
    return lstrcmpW(className, L"#32770") == 0;
}

// The button set of a box, as its MB_ code.
UINT ButtonsOf(HWND box)
{
    auto has = [box](int id) {
        HWND button = GetDlgItem(box, id);
        return button && (GetWindowLongW(button, GWL_STYLE) & WS_VISIBLE);
    };
    if (has(IDABORT) && has(IDRETRY) && has(IDIGNORE)) return MB_ABORTRETRYIGNORE;
    if (has(IDYES) && has(IDNO)) return has(IDCANCEL) ? MB_YESNOCANCEL : MB_YESNO;
    if (has(IDRETRY) && has(IDCANCEL)) return MB_RETRYCANCEL;
    if (has(IDOK) && has(IDCANCEL)) return MB_OKCANCEL;
    return MB_OK;
}

// The icon of a box, recognised by comparing with the system's standard icons.
UINT IconOf(HWND box)
{
    // Windows' box template names its icon control 0x14, Wine's 0x440.
    HWND iconControl = GetDlgItem(box, 0x14);
    if (!iconControl)
        iconControl = GetDlgItem(box, 0x440);
    if (!iconControl)
        return 0;
    HICON icon = reinterpret_cast<HICON>(SendMessageW(iconControl, STM_GETICON, 0, 0));
    if (!icon)
        return 0;
    struct { LPCWSTR id; UINT flag; } const known[] = {
        {MAKEINTRESOURCEW(32513), MB_ICONSTOP}, {MAKEINTRESOURCEW(32514), MB_ICONQUESTION},
        {MAKEINTRESOURCEW(32515), MB_ICONEXCLAMATION}, {MAKEINTRESOURCEW(32516), MB_ICONINFORMATION}};
    for (const auto& entry : known)
        if (LoadIconW(nullptr, entry.id) == icon)
            return entry.flag;
    return 0;
}

int FirstButton(HWND box)
{
    for (int id : {IDOK, IDYES, IDABORT, IDRETRY, IDCANCEL, IDNO, IDIGNORE})
        if (HWND button = GetDlgItem(box, id); button && (GetWindowLongW(button, GWL_STYLE) & WS_VISIBLE))
            return id;
    return IDCANCEL;
}

} // namespace

MessageBoxCapture::MessageBoxCapture(int answer, DWORD threadId) : m_answer(answer)
{
    InitializeCriticalSection(&m_lock);
    s_active = this;
    m_hook = SetWindowsHookExW(WH_CALLWNDPROCRET, &MessageBoxCapture::HookProc, nullptr, threadId);
}

MessageBoxCapture::~MessageBoxCapture()
{
    if (m_hook)
        UnhookWindowsHookEx(m_hook);
    s_active = nullptr;
    DeleteCriticalSection(&m_lock);
}

LRESULT CALLBACK MessageBoxCapture::HookProc(int code, WPARAM wParam, LPARAM lParam)
{
    // The box's text, buttons and icon are in place once its WM_INITDIALOG has been handled.
    if (code == HC_ACTION && s_active) {
        const auto* message = reinterpret_cast<const CWPRETSTRUCT*>(lParam);
        // Wine's Find and Replace dialogs also have a static control 0xFFFF; their "Find what" field (0x480)
        // tells them apart.
        if (message->message == WM_INITDIALOG && IsDialogWindow(message->hwnd) && GetDlgItem(message->hwnd, 0xFFFF) &&
            !GetDlgItem(message->hwnd, 0x480))
            s_active->Capture(message->hwnd);
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

void MessageBoxCapture::Capture(HWND box)
{
    CapturedMessageBox record;
    record.caption = WindowText(box);
    record.text = WindowText(GetDlgItem(box, 0xFFFF));
    record.windowStyle = static_cast<DWORD>(GetWindowLongW(box, GWL_STYLE));
    record.buttons = ButtonsOf(box);
    record.icon = IconOf(box);
    record.owner = GetWindow(box, GW_OWNER);
    EnterCriticalSection(&m_lock);
    m_boxes.push_back(record);
    LeaveCriticalSection(&m_lock);
    int answer = GetDlgItem(box, m_answer) ? m_answer : FirstButton(box);
    // Ending the dialog from its WM_INITDIALOG means it is never shown: no display round trips.
    EndDialog(box, answer);
}

std::vector<CapturedMessageBox> MessageBoxCapture::Boxes() const
{
    EnterCriticalSection(&m_lock);
    std::vector<CapturedMessageBox> copy = m_boxes;
    LeaveCriticalSection(&m_lock);
    return copy;
}

size_t MessageBoxCapture::Count() const
{
    EnterCriticalSection(&m_lock);
    size_t count = m_boxes.size();
    LeaveCriticalSection(&m_lock);
    return count;
}

void MessageBoxCapture::Clear()
{
    EnterCriticalSection(&m_lock);
    m_boxes.clear();
    LeaveCriticalSection(&m_lock);
}

} // namespace brannoc::test
