#include "ide/FrameHelp.h"

#include "ide/CodeLineScan.h"
#include "ide/CommandTable.h"
#include "ide/EditorFrameState.h"
#include "ide/EngineLink.h"
#include "ide/TextArea.h"

#include "brannoc.h"

namespace brannoc::ide {

namespace {

constexpr ULONG_PTR kEditorHelpContext = 3;

// HTML Help's commands and its keyword-lookup record.
constexpr UINT kHtmlHelpContext = 0x000F;
constexpr UINT kHtmlHelpCloseAll = 0x0012;
constexpr UINT kHtmlHelpLinkLookup = 0x0013;
constexpr WORD kHtmlHelpOrdinal = 14;

struct HtmlHelpLink {
    int cbStruct;
    BOOL fReserved;
    LPCSTR pszKeywords;
    LPCSTR pszUrl;
    LPCSTR pszMsgText;
    LPCSTR pszMsgTitle;
    LPCSTR pszWindow;
    BOOL fIndexOnFail;
};
static_assert(sizeof(HtmlHelpLink) == 32);

using HtmlHelpFunction = HWND(WINAPI*)(HWND, LPCSTR, UINT, DWORD_PTR);

HtmlHelpFunction LoadHtmlHelp()
{
    HMODULE library = LoadLibraryA("hhctrl.ocx");
    if (!library)
        return nullptr;
    // GetProcAddress answers a generic function pointer; the void* step states the conversion.
    void* address = reinterpret_cast<void*>(GetProcAddress(library, MAKEINTRESOURCEA(kHtmlHelpOrdinal)));
    return reinterpret_cast<HtmlHelpFunction>(address);
}

// hhctrl.ocx is loaded once per process, the first time a help file needs it; a second thread asking
// meanwhile waits for the first (the static's initialisation is guarded).
HtmlHelpFunction HtmlHelp()
{
    static const HtmlHelpFunction function = LoadHtmlHelp();
    return function;
}

bool EndsWithNoCase(const std::string& text, const char* ending)
{
    size_t length = lstrlenA(ending);
    return text.size() >= length && lstrcmpiA(text.c_str() + text.size() - length, ending) == 0;
}

std::string EngineHelpFile(const EditorFrame& frame)
{
    return frame.m_engine ? TakeEngineText(CU_HelpFile(frame.m_engine)) : std::string();
}

// The keyboard hook of the active frame on this thread.
thread_local HHOOK t_helpHook = nullptr;
thread_local HWND t_helpFrame = nullptr;

LRESULT CALLBACK HelpKeyProc(int code, WPARAM key, LPARAM flags)
{
    bool keyDown = (flags & 0x80000000) == 0;
    if (code == HC_ACTION && key == VK_F1 && keyDown && t_helpFrame && GetKeyState(VK_CONTROL) >= 0 &&
        GetKeyState(VK_MENU) >= 0) {
        static const UINT toolbarMessage = RegisterWindowMessageA(kToolbarMessageName);
        int command = GetKeyState(VK_SHIFT) < 0 ? CMD_LANGUAGE_HELP : CMD_TOPIC_SEARCH;
        PostMessageA(t_helpFrame, toolbarMessage, static_cast<WPARAM>(command), -1);
        return 1;
    }
    return CallNextHookEx(t_helpHook, code, key, flags);
}

} // namespace

void WatchHelpKey(HWND frame, bool active)
{
    if (active) {
        t_helpFrame = frame;
        if (!t_helpHook)
            t_helpHook = SetWindowsHookExA(WH_KEYBOARD, HelpKeyProc, nullptr, GetCurrentThreadId());
        return;
    }
    if (t_helpFrame != frame)
        return;
    t_helpFrame = nullptr;
    if (t_helpHook)
        UnhookWindowsHookEx(t_helpHook);
    t_helpHook = nullptr;
}

std::string EditorHelpFileOf(const std::string& programPath)
{
    size_t slash = programPath.find_last_of("\\/");
    size_t dot = programPath.find_last_of('.');
    std::string base = dot != std::string::npos && (slash == std::string::npos || dot > slash) ? programPath.substr(0, dot) : programPath;
    return base + ".HLP";
}

std::string HelpWordAtCaret(const EditorFrame& frame)
{
    int length = GetWindowTextLengthA(frame.m_editor);
    std::string text(static_cast<size_t>(length) + 1, '\0');
    text.resize(static_cast<size_t>(GetWindowTextA(frame.m_editor, text.data(), length + 1)));
    DWORD start = 0;
    SendMessageA(frame.m_editor, EM_GETSEL, reinterpret_cast<WPARAM>(&start), 0);
    size_t from = std::min<size_t>(start, text.size()), to = from;
    while (from > 0 && IsWordCharacter(text[from - 1]))
        --from;
    while (to < text.size() && IsWordCharacter(text[to]))
        ++to;
    return from == to ? std::string(" ") : text.substr(from, to - from);
}

bool ShowHelpFile(HWND owner, const std::string& file, UINT command, ULONG_PTR data)
{
    if (file.empty())
        return false;
    if (EndsWithNoCase(file, ".hlp"))
        return WinHelpA(owner, file.c_str(), command, data) != FALSE;
    HtmlHelpFunction htmlHelp = HtmlHelp();
    if (!htmlHelp)
        return false;
    switch (command) {
    case HELP_CONTEXT: return htmlHelp(owner, file.c_str(), kHtmlHelpContext, data) != nullptr;
    case HELP_INDEX: return htmlHelp(owner, file.c_str(), kHtmlHelpContext, 0) != nullptr;
    case HELP_QUIT: htmlHelp(nullptr, nullptr, kHtmlHelpCloseAll, 0); return true;
    case HELP_PARTIALKEY: {
        HtmlHelpLink link{};
        link.cbStruct = sizeof(link);
        link.pszKeywords = reinterpret_cast<LPCSTR>(data);
        link.fIndexOnFail = TRUE;
        return htmlHelp(owner, file.c_str(), kHtmlHelpLinkLookup, reinterpret_cast<DWORD_PTR>(&link)) != nullptr;
    }
    default: return false;
    }
}

void ShowEditorHelp(EditorFrame& frame)
{
    char program[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    ShowHelpFile(frame.m_window, EditorHelpFileOf(program), HELP_CONTEXT, kEditorHelpContext);
}

void ShowLanguageHelp(EditorFrame& frame)
{
    ShowHelpFile(frame.m_window, EngineHelpFile(frame), HELP_INDEX, 0);
}

void SearchHelpTopic(EditorFrame& frame)
{
    std::string word = HelpWordAtCaret(frame);
    if (frame.HostHelp(word))
        return;
    ShowHelpFile(frame.m_window, EngineHelpFile(frame), HELP_PARTIALKEY, reinterpret_cast<ULONG_PTR>(word.c_str()));
}

} // namespace brannoc::ide
