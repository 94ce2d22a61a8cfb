// Built-ins that ask the user through standard windows: MsgBox, InputBox and GetFilePath, Wait, and the
// about box (AboutBrannocBasic). All
// are modal on the execution thread, owned by its active window, and a stop of the macro while they
// are up abandons the call: it gives no result and raises nothing. Their owner window is the one the
// engine's host chooses for the thread's macro dialogs (MacroModalScope).
#include "library/BuiltinGroups.h"

#include "brannoc.h"
#include "automation/OutsideCall.h"
#include "host/EngineLock.h"
#include "exec/HaltFlags.h"
#include "exec/Interpreter.h"
#include "host/AnsiText.h"
#include "host/ThisModule.h"
#include "library/BuiltinArguments.h"
#include "library/MacroModalScope.h"
#include "values/ValueError.h"

#include <windows.h>
#include <commdlg.h>

#include <string>
#include <vector>

namespace brannoc {

namespace {

constexpr UINT_PTR kStopWatchTimer = 0x4254;
constexpr UINT kStopWatchMs = 50;
constexpr DWORD kWaitSliceMs = 50;
constexpr int kAnswerId = 100;
constexpr double kAboutSeconds = 3;
constexpr double kLongestAboutSeconds = 1000000;
// The about box's version field, by which its window is told from other dialogs.
constexpr int kAboutVersionField = 102;

bool StopRequestedInEngine()
{
    Interpreter* machine = Interpreter::Current();
    return HaltFlags::Has(HaltFlags::kAction | HaltFlags::kStopMask) || (machine && machine->RunLevel() <= 0);
}

// The same from a box's message loop, which runs with the engine given up.
bool StopRequested()
{
    EngineLockScope lock;
    return StopRequestedInEngine();
}

std::wstring EngineCaption()
{
    Interpreter* machine = Interpreter::Current();
    return machine ? machine->Host().EngineCaption() : std::wstring();
}

// While a platform box runs its own message loop, the engine is given up (other threads and the host's
// windows are served meanwhile), the owner window is disabled, and a thread timer watches for a stop of
// the macro and closes the box (and any common dialog) of this thread when one comes.
class StopWatch final {
public:
    explicit StopWatch(HWND owner = nullptr)
    {
        s_stopped = false;
        if (owner && IsWindowEnabled(owner)) {
            m_disabledOwner = owner;
            EnableWindow(owner, FALSE);
        }
        m_timer = SetTimer(nullptr, 0, kStopWatchMs, &Check);
    }
    ~StopWatch()
    {
        KillTimer(nullptr, m_timer);
        if (m_disabledOwner)
            EnableWindow(m_disabledOwner, TRUE);
    }
    StopWatch(const StopWatch&) = delete;
    StopWatch& operator=(const StopWatch&) = delete;
    static bool Stopped() { return s_stopped; }

private:
    static BOOL CALLBACK CloseBox(HWND window, LPARAM)
    {
        wchar_t className[16] = L"";
        GetClassNameW(window, className, 16);
        if (lstrcmpW(className, L"#32770") == 0 && IsWindowVisible(window))
            PostMessageW(window, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
        return TRUE;
    }
    static void CALLBACK Check(HWND, UINT, UINT_PTR, DWORD)
    {
        if (s_stopped)
            return;
        if (!StopRequested())
            return;
        s_stopped = true;
        EnumThreadWindows(GetCurrentThreadId(), &CloseBox, 0);
    }
    static inline thread_local bool s_stopped = false;
    automation::OutsideCall m_outside;
    HWND m_disabledOwner = nullptr;
    UINT_PTR m_timer = 0;
};

// MsgBox(Message, [Type], [Title]): only the known style bits pass.
UINT FilterStyle(int type)
{
    UINT style = 0;
    const int buttons = type & 7;
    if (buttons < 6)
        style |= static_cast<UINT>(buttons);
    const int icon = type & 112;
    if (icon <= 64)
        style |= static_cast<UINT>(icon);
    const int defaultButton = type & 768;
    if (defaultButton <= 640)
        style |= static_cast<UINT>(defaultButton);
    if (type & (2048 | 4096))
        style |= MB_SYSTEMMODAL;
    return style;
}

bool MsgBox(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring_view message;
    if (!arguments.String(0, message))
        return false;
    SHORT type = 0;
    if (arguments.IsGiven(1) && !arguments.Integer(1, type))
        return false;
    std::wstring title;
    if (arguments.IsGiven(2)) {
        std::wstring_view given;
        if (!arguments.String(2, given))
            return false;
        title = given;
    } else {
        title = EngineCaption();
    }
    UINT style = FilterStyle(type);
    if ((style & MB_SYSTEMMODAL) == 0)
        style |= MB_TASKMODAL;
    MacroModalScope level;
    HWND owner = level.Owner();
    if (!owner)
        style |= MB_SETFOREGROUND;
    else if (GetWindowLongW(owner, GWL_EXSTYLE) & WS_EX_TOPMOST)
        style |= MB_TOPMOST;
    int answer = 0;
    {
        StopWatch watch(owner);
        answer = MessageBoxW(owner, std::wstring(message).c_str(), title.c_str(), style);
        if (StopWatch::Stopped())
            return false;
    }
    result.SetInteger(static_cast<SHORT>(answer));
    return true;
}

// InputBox: the dialog is built in memory, 460 by 50 in the units of user dialogs (eighths of the
// average character width, twelfths of the character height; dialog units are quarters and eighths).
struct InputRequest {
    std::wstring prompt;
    std::wstring title;
    std::wstring answer;
    int x = -1;
    int y = -1;
    bool stopped = false;
};

void AppendWord(std::vector<WORD>& words, WORD value) { words.push_back(value); }

void AppendText(std::vector<WORD>& words, std::wstring_view text)
{
    for (wchar_t c : text)
        words.push_back(static_cast<WORD>(c));
    words.push_back(0);
}

void AlignToDword(std::vector<WORD>& words)
{
    if (words.size() % 2 != 0)
        words.push_back(0);
}

void AppendItem(std::vector<WORD>& words, DWORD style, int x, int y, int width, int height, int id, WORD atom,
                std::wstring_view text)
{
    AlignToDword(words);
    DLGITEMTEMPLATE item{};
    item.style = style | WS_CHILD | WS_VISIBLE;
    // Our units to dialog units.
    item.x = static_cast<short>(x / 2);
    item.y = static_cast<short>(y * 2 / 3);
    item.cx = static_cast<short>(width / 2);
    item.cy = static_cast<short>(height * 2 / 3);
    item.id = static_cast<WORD>(id);
    const auto* raw = reinterpret_cast<const WORD*>(&item);
    words.insert(words.end(), raw, raw + sizeof item / sizeof(WORD));
    AppendWord(words, 0xFFFF);
    AppendWord(words, atom);
    AppendText(words, text);
    AppendWord(words, 0);
}

std::vector<WORD> InputTemplate()
{
    std::vector<WORD> words(sizeof(DLGTEMPLATE) / sizeof(WORD), 0);
    auto* header = reinterpret_cast<DLGTEMPLATE*>(words.data());
    header->style = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_SETFONT | DS_MODALFRAME;
    header->cdit = 4;
    header->cx = 460 / 2;
    header->cy = 50 * 2 / 3;
    AppendWord(words, 0);
    AppendWord(words, 0);
    AppendText(words, L"");
    AppendWord(words, 8);
    AppendText(words, L"Helv");
    AppendItem(words, SS_LEFT | SS_NOPREFIX, 14, 6, 340, 12, 0xFFFF, 0x0082, L"");
    AppendItem(words, WS_BORDER | WS_TABSTOP | ES_AUTOHSCROLL, 14, 24, 340, 18, kAnswerId, 0x0081, L"");
    AppendItem(words, BS_DEFPUSHBUTTON | WS_TABSTOP | WS_GROUP, 380, 5, 60, 18, IDOK, 0x0080, LoadResourceString(538));
    AppendItem(words, BS_PUSHBUTTON | WS_TABSTOP | WS_GROUP, 380, 24, 60, 18, IDCANCEL, 0x0080, LoadResourceString(537));
    return words;
}

void PlaceInputBox(HWND dialog, const InputRequest& request)
{
    RECT frame;
    GetWindowRect(dialog, &frame);
    const int width = frame.right - frame.left;
    const int height = frame.bottom - frame.top;
    // Each coordinate left out (-1) centres the box along its own axis.
    RECT units{0, 0, 4, 8};
    MapDialogRect(dialog, &units);
    const int x = request.x != -1 ? MulDiv(request.x, units.right, 8) : (GetSystemMetrics(SM_CXSCREEN) - width) / 2;
    const int y = request.y != -1 ? MulDiv(request.y, units.bottom, 12) : (GetSystemMetrics(SM_CYSCREEN) - height) / 2;
    SetWindowPos(dialog, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
}

INT_PTR CALLBACK InputProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto* request = reinterpret_cast<InputRequest*>(GetWindowLongPtrW(dialog, DWLP_USER));
    switch (message) {
    case WM_INITDIALOG:
        request = reinterpret_cast<InputRequest*>(lParam);
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        SetWindowTextW(dialog, request->title.c_str());
        SetDlgItemTextW(dialog, 0xFFFF, request->prompt.c_str());
        SetDlgItemTextW(dialog, kAnswerId, request->answer.c_str());
        SendDlgItemMessageW(dialog, kAnswerId, EM_SETSEL, 0, -1);
        PlaceInputBox(dialog, *request);
        SetTimer(dialog, kStopWatchTimer, kStopWatchMs, nullptr);
        SetFocus(GetDlgItem(dialog, kAnswerId));
        return FALSE;
    case WM_TIMER:
        if (wParam == kStopWatchTimer && request && StopRequested()) {
            request->stopped = true;
            EndDialog(dialog, IDCANCEL);
        }
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) == IDOK && request) {
            const int length = GetWindowTextLengthW(GetDlgItem(dialog, kAnswerId));
            request->answer.assign(static_cast<std::size_t>(length) + 1, L'\0');
            GetDlgItemTextW(dialog, kAnswerId, request->answer.data(), length + 1);
            request->answer.resize(static_cast<std::size_t>(length));
            EndDialog(dialog, IDOK);
            return TRUE;
        }
        if (LOWORD(wParam) == IDCANCEL) {
            EndDialog(dialog, IDCANCEL);
            return TRUE;
        }
        return FALSE;
    case WM_DESTROY: KillTimer(dialog, kStopWatchTimer); return FALSE;
    default: return FALSE;
    }
}

bool InputBox(BuiltinArguments& arguments, BuiltinResult& result)
{
    InputRequest request;
    std::wstring_view text;
    if (!arguments.String(0, text))
        return false;
    request.prompt = text;
    if (arguments.IsGiven(1)) {
        if (!arguments.String(1, text))
            return false;
        request.title = text;
    } else {
        request.title = EngineCaption();
    }
    if (arguments.IsGiven(2)) {
        if (!arguments.String(2, text))
            return false;
        request.answer = text;
    }
    SHORT x = -1;
    SHORT y = -1;
    if ((arguments.IsGiven(3) && !arguments.Integer(3, x)) || (arguments.IsGiven(4) && !arguments.Integer(4, y)))
        return false;
    request.x = x;
    request.y = y;
    const std::vector<WORD> words = InputTemplate();
    INT_PTR answer = 0;
    {
        MacroModalScope level;
        automation::OutsideCall outside;
        answer = DialogBoxIndirectParamW(ThisModule(), reinterpret_cast<const DLGTEMPLATE*>(words.data()),
                                         level.Owner(), &InputProc, reinterpret_cast<LPARAM>(&request));
    }
    if (request.stopped)
        return false;
    return result.SetString(answer == IDOK ? request.answer : std::wstring());
}

// GetFilePath([DefName], [DefExt], [DefDir], [Title], [Option]).
bool GetFilePath(BuiltinArguments& arguments, BuiltinResult& result)
{
    std::wstring_view text;
    std::wstring name = L"*.*";
    std::wstring extensions = L"*";
    std::wstring folder;
    std::wstring title = LoadResourceString(11001);
    if (arguments.IsGiven(0)) {
        if (!arguments.String(0, text))
            return false;
        name = text;
    }
    if (arguments.IsGiven(1)) {
        if (!arguments.String(1, text))
            return false;
        extensions = text;
    }
    if (arguments.IsGiven(2)) {
        if (!arguments.String(2, text))
            return false;
        folder = text;
    }
    if (arguments.IsGiven(3)) {
        if (!arguments.String(3, text))
            return false;
        title = text;
    }
    SHORT option = 0;
    if (arguments.IsGiven(4) && !arguments.Integer(4, option))
        return false;
    if (option < 0 || option > 7) {
        Interpreter* machine = Interpreter::Current();
        return machine && machine->SignalError(kErrorInvalidArgument);
    }
    // The extensions, separated by ";" or "|": the first is the default one.
    std::vector<std::wstring> list;
    std::wstring current;
    for (wchar_t c : extensions + L";") {
        if (c == L';' || c == L'|') {
            if (!current.empty())
                list.push_back(current);
            current.clear();
        } else {
            current += c;
        }
    }
    std::wstring joined;
    for (const std::wstring& extension : list)
        joined += (joined.empty() ? L"*." : L";*.") + extension;
    std::wstring filter = LoadResourceString(11001) + L"(" + joined + L")";
    filter.push_back(L'\0');
    filter += joined;
    filter.push_back(L'\0');
    filter.push_back(L'\0');
    wchar_t path[MAX_PATH] = L"";
    lstrcpynW(path, name.c_str(), 260);
    OPENFILENAMEW request{};
    request.lStructSize = sizeof request;
    MacroModalScope level;
    request.hwndOwner = level.Owner();
    request.lpstrFilter = filter.c_str();
    request.nFilterIndex = 1;
    request.lpstrFile = path;
    request.nMaxFile = MAX_PATH;
    request.lpstrInitialDir = folder.empty() ? nullptr : folder.c_str();
    request.lpstrTitle = title.c_str();
    const std::wstring defaultExtension = list.empty() || list[0] == L"*" ? std::wstring() : list[0];
    request.lpstrDefExt = defaultExtension.empty() ? nullptr : defaultExtension.c_str();
    request.Flags = OFN_PATHMUSTEXIST | OFN_HIDEREADONLY;
    const int kind = option & 3;
    if (option < 4)
        request.Flags |= OFN_NOCHANGEDIR;
    if (kind == 0)
        request.Flags |= OFN_FILEMUSTEXIST;
    else if (kind == 1)
        request.Flags |= OFN_CREATEPROMPT;
    else if (kind == 3)
        request.Flags |= OFN_OVERWRITEPROMPT;
    BOOL chosen = FALSE;
    {
        StopWatch watch;
        chosen = kind < 2 ? GetOpenFileNameW(&request) : GetSaveFileNameW(&request);
        if (StopWatch::Stopped())
            return false;
    }
    return result.SetString(chosen ? std::wstring(path) : std::wstring());
}

// Waits up to the given time for messages and serves them, with the engine given up meanwhile. True
// when a quit message came (it is posted again).
bool ServeMessagesFor(DWORD milliseconds)
{
    automation::OutsideCall outside;
    MsgWaitForMultipleObjects(0, nullptr, FALSE, milliseconds, QS_ALLINPUT);
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return true;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return false;
}

// Wait(Delay): waits for messages in slices and serves them until the delay has passed.
bool Wait(BuiltinArguments& arguments, BuiltinResult&)
{
    double delay = 0;
    if (!arguments.Double(0, delay))
        return false;
    if (!(delay > 0))
        return true;
    if (delay > 1000000)
        delay = 1000000;
    const DWORD start = GetTickCount();
    const DWORD length = static_cast<DWORD>(delay * 1000);
    for (;;) {
        const DWORD passed = GetTickCount() - start;
        if (passed >= length)
            return true;
        const DWORD left = length - passed;
        if (ServeMessagesFor(left < kWaitSliceMs ? left : kWaitSliceMs))
            return true;
        if (StopRequested())
            return false;
    }
}

// Closes the about box of this thread when its time is up: a thread timer, as the box runs its own
// message loop.
class AboutTimeout final {
public:
    explicit AboutTimeout(UINT milliseconds) { m_timer = SetTimer(nullptr, 0, milliseconds, &Expire); }
    ~AboutTimeout() { KillTimer(nullptr, m_timer); }
    AboutTimeout(const AboutTimeout&) = delete;
    AboutTimeout& operator=(const AboutTimeout&) = delete;

private:
    static BOOL CALLBACK CloseAboutBox(HWND window, LPARAM)
    {
        wchar_t className[16] = L"";
        GetClassNameW(window, className, 16);
        if (lstrcmpW(className, L"#32770") == 0 && GetDlgItem(window, kAboutVersionField))
            PostMessageW(window, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
        return TRUE;
    }
    static void CALLBACK Expire(HWND, UINT, UINT_PTR, DWORD)
    {
        EnumThreadWindows(GetCurrentThreadId(), &CloseAboutBox, 0);
    }
    UINT_PTR m_timer = 0;
};

// AboutBrannocBasic [Timeout]: the library's about box with the engine's caption as the name, owned by
// the engine's window, for the whole seconds of Timeout (3 when omitted).
bool AboutBrannocBasic(BuiltinArguments& arguments, BuiltinResult&)
{
    double seconds = kAboutSeconds;
    if (arguments.IsGiven(0) && !arguments.Double(0, seconds))
        return false;
    seconds = seconds > 0 ? (seconds < kLongestAboutSeconds ? seconds : kLongestAboutSeconds) : 0;
    const UINT milliseconds = static_cast<UINT>(static_cast<long>(seconds)) * 1000u;
    const std::string name = AnsiFromWide(EngineCaption());
    MacroModalScope level;
    AboutTimeout timeout(milliseconds);
    StopWatch watch;
    OA_BrannocAboutBox(level.Owner(), name.c_str(), nullptr);
    return !StopWatch::Stopped();
}

constexpr BuiltinRecord kRecords[] = {
    Instruction(Token::AboutBrannocBasic, "#", "Timeout", 1, &AboutBrannocBasic),
    Function(Token::MsgBox, ResultKind::kInteger, "$%$", "Message Type Title", 0, 6, &MsgBox),
    Function(Token::InputBox, ResultKind::kString, "$$$%%", "Prompt Title Default X Y", 0, 30, &InputBox),
    Function(Token::GetFilePath, ResultKind::kString, "$$$$%", "DefName DefExt DefDir Title Option", 0, 31,
             &GetFilePath),
    Instruction(Token::Wait, "#", "Delay", 0, &Wait),
};

} // namespace

BuiltinGroup StandardDialogs() { return kRecords; }

} // namespace brannoc
