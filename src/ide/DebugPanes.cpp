// The frame's four debug panes (Immediate, Watch, Stack, Loaded) and the tab bar that chooses between
// them: the Immediate pane runs typed lines against the engine object, Watch re-evaluates its
// expressions whenever execution stops, Stack lists the active calls and Loaded the engine's macros.
#include "ide/DebugPanes.h"

#include "ide/CommandTable.h"
#include "ide/EditorFrameState.h"
#include "ide/EngineLink.h"
#include "ide/FrameHelp.h"
#include "ide/TextArea.h"

#include "brannoc.h"

#include <algorithm>

namespace brannoc::ide {

namespace {

enum PaneStrings : unsigned { IDS_IDLE_TEXT = 556, IDS_CANNOT_SHOW_LINE = 562, IDS_FIRST_TAB = 582 };

constexpr size_t kValueLimit = 100;   // value text in the Immediate pane and in messages
constexpr size_t kWatchLimit = 200;   // a whole Watch or Stack line
constexpr size_t kImmediateLimit = 25000, kImmediateKeep = 20000;
constexpr int kStackShown = 100;
constexpr UINT kTabBarHeightMessage = WM_USER;

const char* const kPaneWindowProp = "BrannocPaneProc";

// Cuts a text longer than `limit` to its first `keep` characters and "...", and makes every control
// character visible as 1. Values keep all 100 characters; whole lines end at 200 with the dots.
std::string Shown(std::string text, size_t limit, size_t keep)
{
    if (text.size() > limit)
        text = text.substr(0, keep) + "...";
    for (char& c : text)
        if (static_cast<unsigned char>(c) < 32)
            c = '\x01';
    return text;
}

std::string WindowTextOf(HWND window)
{
    const int length = GetWindowTextLengthA(window);
    std::string text(static_cast<size_t>(length) + 1, '\0');
    GetWindowTextA(window, text.data(), length + 1);
    text.resize(static_cast<size_t>(length));
    return text;
}

std::vector<std::string> SplitLines(const std::string& text)
{
    std::vector<std::string> lines;
    size_t at = 0;
    while (true) {
        const size_t end = text.find("\r\n", at);
        if (end == std::string::npos) {
            lines.push_back(text.substr(at));
            return lines;
        }
        lines.push_back(text.substr(at, end - at));
        at = end + 2;
    }
}

std::string TrimBlanks(const std::string& text, bool tabsAtEnd)
{
    size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos)
        return {};
    size_t last = text.find_last_not_of(tabsAtEnd ? " \t" : " ");
    return text.substr(first, last - first + 1);
}

// The line of an EDIT control that holds the caret, and its text.
int CaretLine(HWND edit)
{
    DWORD start = 0;
    SendMessageA(edit, EM_GETSEL, reinterpret_cast<WPARAM>(&start), 0);
    return static_cast<int>(SendMessageA(edit, EM_LINEFROMCHAR, start, 0));
}

std::string LineText(HWND edit, int line)
{
    const int first = static_cast<int>(SendMessageA(edit, EM_LINEINDEX, static_cast<WPARAM>(line), 0));
    if (first < 0)
        return {};
    const int length = static_cast<int>(SendMessageA(edit, EM_LINELENGTH, static_cast<WPARAM>(first), 0));
    std::string text(static_cast<size_t>(length) + 2, '\0');
    *reinterpret_cast<WORD*>(text.data()) = static_cast<WORD>(text.size());
    const int copied = static_cast<int>(SendMessageA(edit, EM_GETLINE, static_cast<WPARAM>(line),
                                                      reinterpret_cast<LPARAM>(text.data())));
    text.resize(static_cast<size_t>(std::max(0, std::min(copied, length))));
    return text;
}

void InsertAtCaret(HWND edit, const std::string& text)
{
    SendMessageA(edit, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(text.c_str()));
}

// Finds "=" outside parentheses, double-quoted strings and square brackets (":=" does not count).
size_t FindAssignment(const std::string& line)
{
    int depth = 0;
    bool quoted = false, bracketed = false;
    for (size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (quoted) {
            quoted = c != '"';
        } else if (bracketed) {
            bracketed = c != ']';
        } else if (c == '"') {
            quoted = true;
        } else if (c == '[') {
            bracketed = true;
        } else if (c == '(') {
            ++depth;
        } else if (c == ')') {
            --depth;
        } else if (c == '=' && depth == 0 && (i == 0 || line[i - 1] != ':')) {
            return i;
        }
    }
    return std::string::npos;
}

bool StartsWithWord(const std::string& line, const char* word)
{
    const size_t length = lstrlenA(word);
    return line.size() > length && CompareStringA(LOCALE_INVARIANT, NORM_IGNORECASE, line.c_str(), static_cast<int>(length),
                                                  word, static_cast<int>(length)) == CSTR_EQUAL &&
           (line[length] == ' ' || line[length] == '\t');
}

int PaneIndexOf(HWND pane)
{
    return GetDlgCtrlID(pane) - ID_FRAME_IMMEDIATE;
}

void ImmediateEnter(EditorFrame& frame, HWND pane)
{
    const int line = CaretLine(pane);
    const std::string text = LineText(pane, line);
    const int lines = static_cast<int>(SendMessageA(pane, EM_GETLINECOUNT, 0, 0));
    if (line == lines - 1) {
        const int end = GetWindowTextLengthA(pane);
        SendMessageA(pane, EM_SETSEL, static_cast<WPARAM>(end), end);
        InsertAtCaret(pane, "\r\n");
    } else {
        const int next = static_cast<int>(SendMessageA(pane, EM_LINEINDEX, static_cast<WPARAM>(line + 1), 0));
        SendMessageA(pane, EM_SETSEL, static_cast<WPARAM>(next), next);
    }
    frame.RunImmediateLine(text);
}

// Shows the source line of the call level under the caret of the Stack pane.
void ShowStackLine(EditorFrame& frame, HWND pane)
{
    const int line = CaretLine(pane);
    if (line < 0 || line >= static_cast<int>(frame.m_stackMacros.size()))
        return;
    const std::string text = LineText(pane, line);
    const size_t bar = text.find('|');
    const size_t hash = bar == std::string::npos ? std::string::npos : text.find('#', bar);
    const std::string& macro = frame.m_stackMacros[static_cast<size_t>(line)];
    if (hash == std::string::npos || macro == "**")
        return;
    const int absolute = atoi(text.c_str() + hash + 1);
    const int index = frame.FindSheet(Unquoted(macro));
    if (index < 0 || !frame.ShowSheet(index) || !frame.Current()->document) {
        frame.ShowPane(2);
        frame.ShowMessage(IDS_CANNOT_SHOW_LINE, MB_OK | MB_ICONINFORMATION);
        return;
    }
    const int codeLine = CodeLine(*frame.Current(), absolute);
    if (codeLine >= 0)
        SendMessageA(frame.m_editor, TAM_SELECTLINES, static_cast<WPARAM>(codeLine), codeLine);
}

void ShowLoadedMacro(EditorFrame& frame, HWND pane)
{
    const int line = CaretLine(pane);
    if (frame.m_loadedMacros.empty()) {
        frame.Beep(MB_ICONASTERISK);
        return;
    }
    if (line < 0 || line >= static_cast<int>(frame.m_loadedMacros.size()))
        return;
    const std::string macro = Unquoted(frame.m_loadedMacros[static_cast<size_t>(line)]);
    const int index = frame.FindSheet(macro);
    if (!(index >= 0 ? frame.ShowSheet(index) : frame.OpenFile(macro)))
        frame.ShowMessage(IDS_CANNOT_SHOW_LINE, MB_OK | MB_ICONINFORMATION);
}

LRESULT CALLBACK DebugWindowProc(HWND pane, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto previous = reinterpret_cast<WNDPROC>(GetPropA(pane, kPaneWindowProp));
    EditorFrame* frame = FrameOf(GetParent(pane));
    const int index = PaneIndexOf(pane);
    if (frame) {
        switch (message) {
        case WM_CHAR:
            if ((wParam == '\r' || wParam == '\n') && index == 0) {
                ImmediateEnter(*frame, pane);
                return 0;
            }
            if ((wParam == '\r' || wParam == '\n') && index == 1) {
                LRESULT result = CallWindowProcA(previous, pane, message, wParam, lParam);
                frame->RefreshWatch();
                return result;
            }
            if (index >= 2)
                return 0;
            break;
        case WM_PASTE:
        case WM_CUT:
        case WM_CLEAR:
            if (index >= 2)
                return 0;
            if (message == WM_PASTE && index == 1) {
                LRESULT result = CallWindowProcA(previous, pane, message, wParam, lParam);
                frame->RefreshWatch();
                return result;
            }
            break;
        case WM_LBUTTONUP:
        case WM_KEYUP: {
            LRESULT result = CallWindowProcA(previous, pane, message, wParam, lParam);
            if (index == 2)
                ShowStackLine(*frame, pane);
            else if (index == 3 && message == WM_LBUTTONUP)
                ShowLoadedMacro(*frame, pane);
            return result;
        }
        case WM_SETFOCUS:
            frame->m_lastFocus = pane;
            break;
        case WM_NCDESTROY:
            RemovePropA(pane, kPaneWindowProp);
            break;
        default:
            break;
        }
    }
    return CallWindowProcA(previous, pane, message, wParam, lParam);
}

// ---- the tab bar ----

struct TabBarState {
    HFONT font = nullptr, boldFont = nullptr;
};

int TabCount(HWND bar)
{
    EditorFrame* frame = FrameOf(GetParent(bar));
    if (!frame)
        return 1;
    return frame->IsEnabled(CMD_LOADED) ? 4 : frame->IsEnabled(CMD_WATCH) ? 3 : 1;
}

int TabWidth(HWND bar)
{
    RECT client;
    GetClientRect(bar, &client);
    return std::max(60, std::min(120, static_cast<int>(client.right) / 4));
}

int TabBarHeight(HWND bar)
{
    HDC dc = GetDC(bar);
    EditorFrame* frame = FrameOf(GetParent(bar));
    HGDIOBJ old = SelectObject(dc, frame && frame->m_listFont ? frame->m_listFont : GetStockObject(DEFAULT_GUI_FONT));
    TEXTMETRICA metrics{};
    GetTextMetricsA(dc, &metrics);
    SelectObject(dc, old);
    ReleaseDC(bar, dc);
    return metrics.tmHeight + 6;
}

void PaintTabBar(HWND bar)
{
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(bar, &paint);
    EditorFrame* frame = FrameOf(GetParent(bar));
    RECT client;
    GetClientRect(bar, &client);
    FillRect(dc, &client, GetSysColorBrush(COLOR_BTNFACE));
    if (frame) {
        const int count = TabCount(bar), width = TabWidth(bar);
        SetBkMode(dc, TRANSPARENT);
        // The seen pane's tab comes last, over its neighbours.
        std::vector<int> order;
        for (int i = 0; i < count; ++i)
            if (i != frame->m_topPane)
                order.push_back(i);
        order.push_back(std::min(frame->m_topPane, count - 1));
        for (int i : order) {
            const bool top = i == frame->m_topPane;
            RECT tab{i * width, top ? 0 : 2, (i + 1) * width + (top ? 2 : 0), client.bottom};
            FillRect(dc, &tab, GetSysColorBrush(top ? COLOR_WINDOW : COLOR_BTNSHADOW));
            FrameRect(dc, &tab, GetSysColorBrush(COLOR_WINDOWFRAME));
            HGDIOBJ old = SelectObject(dc, top ? frame->m_listBoldFont : frame->m_listFont);
            const std::string label = frame->Text(IDS_FIRST_TAB + static_cast<unsigned>(i));
            DrawTextA(dc, label.c_str(), -1, &tab, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
            SelectObject(dc, old);
        }
    }
    EndPaint(bar, &paint);
}

LRESULT CALLBACK TabBarProc(HWND bar, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case kTabBarHeightMessage: return TabBarHeight(bar);
    case WM_PAINT: PaintTabBar(bar); return 0;
    case WM_ERASEBKGND: return 1;
    case WM_LBUTTONDOWN: {
        const int index = static_cast<short>(LOWORD(lParam)) / TabWidth(bar);
        if (index >= 0 && index < TabCount(bar))
            if (EditorFrame* frame = FrameOf(GetParent(bar)))
                frame->ShowPane(index);
        return 0;
    }
    default: return DefWindowProcA(bar, message, wParam, lParam);
    }
}

} // namespace

bool RegisterTabBarClass()
{
    WNDCLASSA type{};
    type.style = CS_GLOBALCLASS | CS_HREDRAW | CS_VREDRAW;
    type.lpfnWndProc = TabBarProc;
    type.hInstance = GetModuleHandleA(nullptr);
    type.hCursor = LoadCursor(nullptr, IDC_ARROW);
    type.lpszClassName = kTabBarClassName;
    return RegisterClassA(&type) != 0 || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

int TabBarNeededHeight(HWND bar) { return bar ? static_cast<int>(SendMessageA(bar, kTabBarHeightMessage, 0, 0)) : 0; }

void EditorFrame::CreatePanes()
{
    HINSTANCE instance = GetModuleHandleA(nullptr);
    m_tabBar = CreateWindowExA(0, kTabBarClassName, "", WS_CHILD, 0, 0, 0, 0, m_window,
                               reinterpret_cast<HMENU>(static_cast<INT_PTR>(ID_FRAME_TABBAR)), instance, nullptr);
    for (int i = 0; i < 4; ++i) {
        DWORD style = WS_CHILD | WS_BORDER | WS_VSCROLL | WS_HSCROLL | ES_MULTILINE | ES_AUTOVSCROLL | ES_AUTOHSCROLL |
                      ES_NOHIDESEL | (i >= 2 ? ES_READONLY : 0);
        HWND pane = CreateWindowExA(0, "EDIT", "", style, 0, 0, 0, 0, m_window,
                                    reinterpret_cast<HMENU>(static_cast<INT_PTR>(ID_FRAME_IMMEDIATE + i)), instance, nullptr);
        if (!pane)
            continue;
        SendMessageA(pane, WM_SETFONT, reinterpret_cast<WPARAM>(m_displayFont ? m_displayFont : GetStockObject(SYSTEM_FIXED_FONT)), 0);
        SendMessageA(pane, EM_SETLIMITTEXT, 0, 0);
        SetPropA(pane, kPaneWindowProp,
                 reinterpret_cast<HANDLE>(SetWindowLongPtrA(pane, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(DebugWindowProc))));
        m_panes[i] = pane;
    }
    SendMessageA(m_panes[2], WM_SETTEXT, 0, reinterpret_cast<LPARAM>(Text(IDS_IDLE_TEXT).c_str()));
}

bool EditorFrame::PanesShown() const
{
    const Sheet* sheet = Current();
    return m_engine && ((sheet && IsLoaded(*sheet)) || Has(FO_ALWAYS_SPLIT));
}

void EditorFrame::ShowPane(int index)
{
    if (index < 0 || index > 3)
        return;
    m_topPane = index;
    Layout();
    if (m_tabBar)
        InvalidateRect(m_tabBar, nullptr, TRUE);
    if (index == 2)
        RefreshStack();
    else if (index == 3)
        RefreshLoaded();
}

void EditorFrame::AppendToPane(int index, const std::string& text)
{
    HWND pane = m_panes[index];
    if (!pane)
        return;
    const int end = GetWindowTextLengthA(pane);
    SendMessageA(pane, EM_SETSEL, static_cast<WPARAM>(end), end);
    InsertAtCaret(pane, text);
}

void EditorFrame::DebugPrint(const std::string& text)
{
    HWND pane = m_panes[0];
    if (!pane)
        return;
    std::string added = text;
    if (added.size() > kImmediateKeep) {
        added = added.substr(added.size() - kImmediateKeep);
        const size_t lineBreak = added.find('\n');
        added = lineBreak == std::string::npos ? std::string() : added.substr(lineBreak + 1);
    }
    if (static_cast<size_t>(GetWindowTextLengthA(pane)) + added.size() > kImmediateLimit)
        SetWindowTextA(pane, "");
    AppendToPane(0, added);
}

std::string EditorFrame::ValueText(const std::string& expression, size_t limit)
{
    if (!m_engine)
        return {};
    return Shown(TakeEngineText(CU_Evaluate(m_engine, expression.c_str(), m_run.evaluationDepth)), limit, limit);
}

void EditorFrame::RunImmediateLine(const std::string& typed)
{
    const std::string line = TrimBlanks(typed, false);
    if (line.empty() || !m_engine)
        return;
    HWND pane = m_panes[0];
    // The current sheet's macro is taken in first, so that the line runs in its context.
    if (Sheet* sheet = Current(); sheet && !IsLoaded(*sheet) && CU_IsIdle(m_engine) && !m_run.ModulesHeld()) {
        if (!CU_Start(m_engine, EngineName(*sheet).c_str()))
            return;
        sheet->running = true;
    }
    if (line[0] == '?') {
        InsertAtCaret(pane, ValueText(line.substr(1), kValueLimit) + "\r\n");
    } else if (lstrcmpiA(TrimBlanks(line, true).c_str(), "Trace") == 0) {
        m_run.trace = !m_run.trace;
        InsertAtCaret(pane, m_run.trace ? "TRACE ON\r\n" : "TRACE OFF\r\n");
    } else if (StartsWithWord(line, "Call")) {
        TakeEngineText(CU_Evaluate(m_engine, line.c_str(), m_run.evaluationDepth));
    } else if (const size_t equals = FindAssignment(line); equals != std::string::npos) {
        CU_EvaluatePut(m_engine, line.substr(0, equals).c_str(), m_run.evaluationDepth, line.substr(equals + 1).c_str());
    } else {
        TakeEngineText(CU_Evaluate(m_engine, ("Call " + line).c_str(), m_run.evaluationDepth));
    }
    const std::string error = TakeEngineText(CU_ErrorDesc(m_engine));
    if (!error.empty())
        ShowStatus(error, true);
}

void EditorFrame::RefreshWatch()
{
    HWND pane = m_panes[1];
    if (!pane)
        return;
    std::vector<std::string> lines = SplitLines(WindowTextOf(pane));
    if (!lines.empty() && lines.back().empty())
        lines.pop_back();
    std::string text;
    for (const std::string& line : lines) {
        const size_t arrow = line.find("->");
        const std::string expression = TrimBlanks(line.substr(0, arrow), false);
        if (expression.empty())
            continue;
        const std::string shown = expression + " -> " + ValueText(expression, kValueLimit);
        text += Shown(shown, kWatchLimit, kWatchLimit - 3) + "\r\n";
    }
    DWORD start = 0, end = 0;
    SendMessageA(pane, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    SetWindowTextA(pane, text.c_str());
    SendMessageA(pane, EM_SETSEL, start, end);
}

void EditorFrame::RefreshStack()
{
    HWND pane = m_panes[2];
    if (!pane)
        return;
    m_stackMacros.clear();
    std::string text;
    // Level 0 is the innermost call; of a deep stack the innermost levels are shown.
    const int depth = m_engine ? CU_StackDepth(m_engine) : 0;
    const int shownLevels = std::min(depth, kStackShown);
    for (int level = 0; level < shownLevels; ++level) {
        const std::string line = TakeEngineText(CU_CallersLine(m_engine, level));
        const size_t bar = line.find('|');
        const size_t nameStart = !line.empty() && line[0] == '[' ? 1 : 0;
        const std::string macro = line.substr(nameStart, bar == std::string::npos ? std::string::npos : bar - nameStart);
        const std::string rest = bar == std::string::npos ? std::string() : line.substr(bar);
        const std::string shown = "[" + DisplayName(Unquoted(macro)) + rest;
        text += Shown(shown, kWatchLimit, kWatchLimit - 3) + "\r\n";
        m_stackMacros.push_back(macro);
    }
    if (shownLevels < depth) {
        m_stackMacros.push_back("**");
        text += "...\r\n";
    }
    if (depth == 0)
        text = Text(IDS_IDLE_TEXT);
    SetWindowTextA(pane, text.c_str());
    ShowNextStatement();
}

void EditorFrame::RefreshLoaded()
{
    HWND pane = m_panes[3];
    if (!pane || !(Has(FO_FILES) || Has(FO_SHEETS)))
        return;
    m_loadedMacros.clear();
    std::string text;
    for (int index = 0; m_engine; ++index) {
        const std::string name = TakeEngineText(CU_LoadedMacroName(m_engine, index));
        if (name.empty())
            break;
        const std::string bare = Unquoted(name);
        if (bare.size() >= 2 && bare.front() == '*' && bare.back() == '*')
            continue;
        text += DisplayName(bare) + "\r\n";
        m_loadedMacros.push_back(name);
    }
    SetWindowTextA(pane, text.c_str());
}

void EditorFrame::QuickWatch(bool addToWatch)
{
    std::string expression;
    if (SendMessageA(m_editor, TAM_HASSELECTION, 0, 0)) {
        const int length = static_cast<int>(SendMessageA(m_editor, TAM_GETSELTEXT, 0, 0));
        expression.assign(static_cast<size_t>(length) + 1, '\0');
        SendMessageA(m_editor, TAM_GETSELTEXT, static_cast<WPARAM>(length + 1), reinterpret_cast<LPARAM>(expression.data()));
        expression.resize(static_cast<size_t>(length));
    } else {
        expression = HelpWordAtCaret(*this);
    }
    expression = TrimBlanks(expression, true);
    if (expression.empty())
        return;
    const std::string line = expression + " -> " + ValueText(expression, kValueLimit) + "\r\n";
    const int index = addToWatch ? 1 : 0;
    if (PanesShown() && m_topPane == index)
        AppendToPane(index, line);
    else
        ShowText(line, MB_OK | MB_ICONINFORMATION);
}

void EditorFrame::RefreshPanes()
{
    RefreshWatch();
    RefreshStack();
    RefreshLoaded();
}

} // namespace brannoc::ide
