#pragma once
// Captures message boxes shown on a thread: records what each box said, then dismisses it, so that
// tests can assert on reports shown in message boxes instead of blocking on them.
#include <windows.h>
#include <string>
#include <vector>

namespace brannoc::test {

struct CapturedMessageBox {
    std::wstring caption;
    std::wstring text;
    DWORD windowStyle = 0;    // the box window's style bits
    UINT buttons = 0;         // MB_OK, MB_OKCANCEL, ... as read from the box's buttons
    UINT icon = 0;            // MB_ICONSTOP, ... as read from the box's icon (0 when none)
    HWND owner = nullptr;     // the box window's owner
};

class MessageBoxCapture final {
public:
    // Captures the boxes of the given thread (default: the calling thread) until destroyed.
    // Each box is answered with `answer` when it has that button, else with its first button.
    explicit MessageBoxCapture(int answer = IDOK, DWORD threadId = GetCurrentThreadId());
    ~MessageBoxCapture();
    MessageBoxCapture(const MessageBoxCapture&) = delete;
    MessageBoxCapture& operator=(const MessageBoxCapture&) = delete;

    std::vector<CapturedMessageBox> Boxes() const;
    size_t Count() const;
    void Clear();

private:
    static LRESULT CALLBACK HookProc(int code, WPARAM wParam, LPARAM lParam);
    void Capture(HWND box);

    HHOOK m_hook = nullptr;
    int m_answer;
    mutable CRITICAL_SECTION m_lock;
    std::vector<CapturedMessageBox> m_boxes;
};

} // namespace brannoc::test
