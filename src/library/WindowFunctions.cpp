// Built-ins that drive other windows: SendKeys plays keystrokes into the window that has the focus,
// AppActivate brings a top-level window to the front.
//
// Keystrokes are injected with SendInput, one key at a time in the order modifiers down, key down, key
// up, modifiers up: the platform this engine is tested on installs a journal playback hook but never
// calls it, while injected input reaches its windows with Shift, Alt and arrow keys.
#include "library/BuiltinGroups.h"

#include "exec/Interpreter.h"
#include "library/BuiltinArguments.h"
#include "library/KeySequence.h"
#include "values/ValueError.h"

#include <windows.h>

#include <cwctype>
#include <mutex>
#include <string>
#include <vector>

namespace brannoc {

namespace {

INPUT KeyEvent(WORD code, bool up)
{
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = code;
    input.ki.wScan = static_cast<WORD>(MapVirtualKeyA(code, 0));
    input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
    input.ki.time = GetTickCount();
    return input;
}

// The events of one key entry: Alt, Ctrl and Shift down as asked, the key down and up, the modifiers up.
void AppendKeyEvents(std::uint32_t key, std::vector<INPUT>& events)
{
    const WORD code = static_cast<WORD>(key & 0xFF);
    const bool alt = (key & kKeyAlt) && code != VK_MENU;
    const bool ctrl = (key & kKeyCtrl) != 0;
    const bool shift = (key & kKeyShift) != 0;
    if (alt)
        events.push_back(KeyEvent(VK_MENU, false));
    if (ctrl)
        events.push_back(KeyEvent(VK_CONTROL, false));
    if (shift)
        events.push_back(KeyEvent(VK_SHIFT, false));
    events.push_back(KeyEvent(code, false));
    events.push_back(KeyEvent(code, true));
    if (shift)
        events.push_back(KeyEvent(VK_SHIFT, true));
    if (ctrl)
        events.push_back(KeyEvent(VK_CONTROL, true));
    if (alt)
        events.push_back(KeyEvent(VK_MENU, true));
}

// Lets the thread's windows take what has arrived (the keys reach a window of this thread only when
// its messages are dispatched).
void PumpPendingMessages()
{
    MSG message;
    const DWORD until = GetTickCount() + 50;
    do {
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        Sleep(1);
    } while (static_cast<LONG>(until - GetTickCount()) > 0);
}

bool SendKeys(BuiltinArguments& arguments, BuiltinResult&)
{
    std::wstring_view text;
    bool wait = false;
    if (!arguments.String(0, text) || (arguments.IsGiven(1) && !arguments.Boolean(1, wait)))
        return false;
    std::vector<std::uint32_t> keys;
    if (!ParseKeySequence(text, keys))
        return false;
    // One caller at a time plays its keys.
    static std::mutex s_playing;
    std::lock_guard<std::mutex> lock(s_playing);
    // No key is left logically pressed from before.
    BYTE state[256];
    if (GetKeyboardState(state)) {
        for (BYTE& key : state)
            key &= 0x7F;
        SetKeyboardState(state);
    }
    std::vector<INPUT> events;
    for (std::uint32_t key : keys)
        AppendKeyEvents(key, events);
    // Input that the system refuses (another desktop, a blocked input queue) is an error, not a silent loss.
    if (!events.empty() && SendInput(static_cast<UINT>(events.size()), events.data(), sizeof(INPUT)) != events.size())
        return RaiseValueError(kErrorKeysNotPlayed);
    if (wait)
        PumpPendingMessages();
    return true;
}

// The search of AppActivate: a caption prefix (any case) or a process.
struct WindowSearch {
    std::wstring prefix;
    DWORD process = 0;
    bool byProcess = false;
    HWND found = nullptr;
};

BOOL CALLBACK MatchWindow(HWND window, LPARAM parameter)
{
    auto* search = reinterpret_cast<WindowSearch*>(parameter);
    if (!IsWindowVisible(window) || !IsWindowEnabled(window))
        return TRUE;
    if (search->byProcess) {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        if (process != search->process)
            return TRUE;
    } else {
        wchar_t caption[80] = L"";
        GetWindowTextW(window, caption, 80);
        const std::wstring_view text(caption);
        if (text.size() < search->prefix.size())
            return TRUE;
        for (std::size_t i = 0; i < search->prefix.size(); ++i) {
            if (std::towupper(text[i]) != std::towupper(search->prefix[i]))
                return TRUE;
        }
    }
    search->found = window;
    return FALSE;
}

bool AppActivate(BuiltinArguments& arguments, BuiltinResult&)
{
    const Variant* title = nullptr;
    if (!arguments.Value(0, title))
        return false;
    WindowSearch search;
    if ((FollowByRefChain(&title->Raw())->vt & VT_TYPEMASK) == VT_BSTR) {
        std::wstring_view text;
        if (!arguments.String(0, text))
            return false;
        search.prefix.assign(text);
        search.found = FindWindowW(nullptr, search.prefix.c_str());
    } else {
        LONG process = 0;
        if (!arguments.Long(0, process))
            return false;
        search.process = static_cast<DWORD>(process);
        search.byProcess = true;
    }
    if (!search.found)
        EnumWindows(&MatchWindow, reinterpret_cast<LPARAM>(&search));
    if (!search.found)
        return RaiseValueError(kErrorWindowNotFound);
    HWND window = search.found;
    // A disabled window stands for its owner, or for the pop-up it shows.
    if (!IsWindowEnabled(window)) {
        HWND owner = window;
        while (HWND next = GetWindow(owner, GW_OWNER))
            owner = next;
        window = owner;
        if (!IsWindowEnabled(window))
            window = GetLastActivePopup(window);
    }
    BringWindowToTop(window);
    SetForegroundWindow(window);
    return true;
}

constexpr BuiltinRecord kRecords[] = {
    Instruction(Token::SendKeys, "$~", "Keys Wait", 0b10, &SendKeys),
    Instruction(Token::AppActivate, "?", "Title", 0, &AppActivate),
};

} // namespace

BuiltinGroup WindowFunctions() { return kRecords; }

} // namespace brannoc
