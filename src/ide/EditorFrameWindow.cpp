// The editor frame's window: class registration, creation of its children and engine, layout,
// caption, status texts, message boxes, keys and the frame messages hosts and tests send.
#include "ide/EditorFrameState.h"

#include "ide/CommandTable.h"
#include "ide/DebugPanes.h"
#include "ide/BrowseCatalog.h"
#include "ide/FrameCallBack.h"
#include "ide/FrameKeys.h"
#include "ide/FrameLayout.h"
#include "ide/FrameStatusBar.h"
#include "ide/FrameToolbar.h"
#include "ide/FrameWindowClass.h"
#include "ide/SheetTabs.h"
#include "ide/TextArea.h"

#include "brannoc.h"

#include <cstdlib>

namespace brannoc::ide {

namespace {

constexpr UINT_PTR kDeferredTimer = 1;
void (*s_beepObserver)(UINT) = nullptr;

// The toolbar's buttons in order; kToolbarSeparator leaves a gap, -355 is the two-state Design Mode.
constexpr short kToolbarButtons[] = {299, 304, 306, 308, 309, kToolbarSeparator, 314, 315, 316, kToolbarSeparator,
                                     312, 313, kToolbarSeparator, 364, kToolbarSeparator, 352, 353, 354, -355,
                                     kToolbarSeparator, 360, 362, kToolbarSeparator, 366, 356, 357, 358,
                                     kToolbarSeparator, 328, 330, 0};

UINT FrameToolbarMessage()
{
    static const UINT message = RegisterWindowMessageA(kToolbarMessageName);
    return message;
}

// A font string is point size, colon, face name ("9:Courier New").
HFONT CreateFontFromString(const std::string& text, int weight)
{
    size_t colon = text.find(':');
    int points = colon == std::string::npos ? 9 : std::atoi(text.substr(0, colon).c_str());
    std::string face = colon == std::string::npos ? text : text.substr(colon + 1);
    HDC screen = GetDC(nullptr);
    int height = -MulDiv(points, GetDeviceCaps(screen, LOGPIXELSY), 72);
    ReleaseDC(nullptr, screen);
    return CreateFontA(height, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                       CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, face.c_str());
}

SIZE TextSize(HWND window, HFONT font, const std::string& text)
{
    HDC dc = GetDC(window);
    HGDIOBJ old = SelectObject(dc, font);
    SIZE size{};
    GetTextExtentPoint32A(dc, text.c_str(), static_cast<int>(text.size()), &size);
    SelectObject(dc, old);
    ReleaseDC(window, dc);
    return size;
}

HWND Child(HWND parent, const char* className, DWORD style, int id)
{
    return CreateWindowExA(0, className, "", WS_CHILD | style, 0, 0, 0, 0, parent,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleA(nullptr), nullptr);
}

void MoveChild(HWND child, const RECT& r, bool shown)
{
    if (!child)
        return;
    if (shown)
        MoveWindow(child, r.left, r.top, r.right - r.left, r.bottom - r.top, TRUE);
    ShowWindow(child, shown ? SW_SHOWNA : SW_HIDE);
}

// Keys reaching the editing child go through the frame's key tables first.
LRESULT CALLBACK EditorKeysProc(HWND editor, UINT message, WPARAM wParam, LPARAM lParam)
{
    HWND frameWindow = GetParent(editor);
    EditorFrame* frame = FrameOf(frameWindow);
    if (!frame)
        return DefWindowProcA(editor, message, wParam, lParam);
    WNDPROC original = frame->m_editorProc;
    switch (message) {
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN: {
        if (wParam == VK_SHIFT || wParam == VK_CONTROL || wParam == VK_MENU || wParam == VK_CAPITAL || wParam == VK_NUMLOCK)
            break;
        if (wParam == VK_DELETE && GetKeyState(VK_CONTROL) >= 0 && !frame->MayEditRunningSheet())
            return 0;
        int command = frame->TranslateKey(KeyWithModifiers(static_cast<int>(wParam)));
        if (command == kContextMenuKey) {
            PostMessageA(frameWindow, FM_HOSTCOMMAND, HOST_CONTEXT_MENU, 1);
            return 0;
        }
        if (command > 0) {
            if (frame->IsEnabled(command) || command == CMD_SAVE)
                PostMessageA(frameWindow, FrameToolbarMessage(), static_cast<WPARAM>(command), -1);
            else
                frame->Beep(MB_ICONASTERISK);
            return 0;
        }
        break;
    }
    case WM_CHAR: {
        if (wParam == VK_ESCAPE)
            return 0;
        const bool typed = wParam >= ' ' || wParam == '\t' || wParam == '\r' || wParam == '\b';
        if (typed && !frame->MayEditRunningSheet())
            return 0;
        SHORT scan = VkKeyScanA(static_cast<CHAR>(wParam));
        if (scan != -1 && (GetKeyState(VK_CONTROL) < 0 || GetKeyState(VK_MENU) < 0)) {
            int key = KeyWithModifiers(LOBYTE(scan));
            if (frame->TranslateKey(key) > 0)
                return 0;
        }
        if ((wParam == '\t') && SendMessageA(editor, EM_GETSEL, 0, 0) != 0) {
            DWORD start = 0, end = 0;
            SendMessageA(editor, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
            if (start != end && frame->Current() && frame->Current()->document) {
                frame->Dispatch(GetKeyState(VK_SHIFT) < 0 ? CMD_OUTDENT : CMD_INDENT, true);
                return 0;
            }
        }
        break;
    }
    case WM_SETFOCUS:
        frame->m_lastFocus = editor;
        break;
    default:
        break;
    }
    LRESULT result = CallWindowProcA(original, editor, message, wParam, lParam);
    if (message == WM_KEYDOWN || message == WM_CHAR || message == WM_LBUTTONUP || message == WM_PASTE ||
        message == WM_CUT || message == WM_UNDO)
        SetTimer(frameWindow, kDeferredTimer, 100, nullptr);
    return result;
}

LRESULT CALLBACK FrameProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    EditorFrame* frame = FrameOf(window);
    if (message == WM_NCCREATE) {
        frame = new EditorFrame(window);
        SetWindowLongPtrA(window, 0, reinterpret_cast<LONG_PTR>(frame));
    } else if (message == WM_NCDESTROY) {
        delete frame;
        SetWindowLongPtrA(window, 0, 0);
        return DefWindowProcA(window, message, wParam, lParam);
    }
    if (!frame)
        return DefWindowProcA(window, message, wParam, lParam);
    return frame->Handle(message, wParam, lParam);
}

} // namespace

EditorFrame* FrameOf(HWND window)
{
    return window ? reinterpret_cast<EditorFrame*>(GetWindowLongPtrA(window, 0)) : nullptr;
}

LRESULT CopyOutString(const std::string& text, WPARAM size, LPARAM buffer)
{
    if (!buffer)
        return static_cast<LRESULT>(text.size());
    if (size == 0)
        return 0;
    size_t length = text.size() < size - 1 ? text.size() : size - 1;
    text.copy(reinterpret_cast<char*>(buffer), length);
    reinterpret_cast<char*>(buffer)[length] = '\0';
    return static_cast<LRESULT>(length);
}

void SetFrameBeepObserver(void (*observer)(UINT type)) { s_beepObserver = observer; }

void EditorFrame::Beep(UINT type) const
{
    if (s_beepObserver)
        s_beepObserver(type);
    else
        MessageBeep(type);
}

bool RegisterEditorFrameClass()
{
    static const bool s_registered = [] {
        if (!RegisterTextAreaClass() || !RegisterToolbarClass() || !RegisterStatusBarClass() || !RegisterSheetTabsClass() ||
            !RegisterTabBarClass())
            return false;
        FrameToolbarMessage();
        RegisterWindowMessageA("commdlg_FindReplace");
        FrameClassLook look;
        look.extraWords = 2;
        look.icon = LoadIcon(nullptr, IDI_APPLICATION);
        look.background = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
        return RegisterFrameFamilyClass(kEditorFrameClassName, FrameProc, look);
    }();
    return s_registered;
}

EditorFrame::~EditorFrame()
{
    if (m_callBack) {
        DetachFrameCallBack(m_callBack);
        if (m_engine)
            CU_SetCallBack(m_engine, nullptr);
        m_callBack->Release();
    }
    if (m_engine) {
        CU_Shutdown(m_engine);
        m_engine->Release();
    }
    ReleasePrintSettings(m_print);
    for (HFONT font : {m_ownsDisplayFont ? m_displayFont : nullptr, m_listFont, m_listBoldFont})
        if (font)
            DeleteObject(font);
}

bool EditorFrame::Create()
{
    if (!Has(FO_NO_ENGINE)) {
        m_engine = static_cast<IUnknown*>(CU_CreateCodeUnit());
        if (!m_engine)
            return false;
    }
    m_enabled.set();
    m_fileDescriptions = m_placeholders.title + "|" + Text(IDS_ALL_FILES);
    bool topLevel = IsTopLevel();
    m_keyboardMode = topLevel ? 2 : ((Has(FO_CAPTION_TEXT) && Has(FO_NO_DEFAULT_FONT)) || Has(FO_HOST_KEYS)) ? 0 : 1;
    m_listFont = CreateFontFromString(Text(IDS_LIST_FONT), FW_NORMAL);
    m_listBoldFont = CreateFontFromString(Text(IDS_LIST_FONT), FW_BOLD);
    if (!Has(FO_NO_DEFAULT_FONT))
        m_displayFont = CreateFontFromString(Text(IDS_DISPLAY_FONT), FW_NORMAL);

    m_toolbar = Child(m_window, kToolbarClassName, 0, ID_FRAME_TOOLBAR);
    SendMessageA(m_toolbar, TBM_SETBUTTONS, 0, reinterpret_cast<LPARAM>(kToolbarButtons));
    DWORD listStyle = WS_VSCROLL | CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED | CBS_HASSTRINGS | CBS_SORT;
    m_objectList = Child(m_window, "COMBOBOX", listStyle, ID_FRAME_OBJECT_LIST);
    m_procList = Child(m_window, "COMBOBOX", listStyle, ID_FRAME_PROC_LIST);
    m_sheetTabs = Child(m_window, kSheetTabsClassName, 0, ID_FRAME_SHEET_TABS);
    SendMessageA(m_sheetTabs, WM_SETFONT, reinterpret_cast<WPARAM>(m_listFont), 0);
    for (HWND list : {m_objectList, m_procList})
        SendMessageA(list, WM_SETFONT, reinterpret_cast<WPARAM>(m_listFont), 0);
    if (PlainEditing())
        m_editor = Child(m_window, "EDIT", WS_VISIBLE | WS_VSCROLL | WS_HSCROLL | ES_MULTILINE | ES_AUTOVSCROLL |
                         ES_AUTOHSCROLL | ES_WANTRETURN | ES_NOHIDESEL, ID_FRAME_EDITOR);
    else
        m_editor = Child(m_window, kTextAreaClassName, WS_VISIBLE | WS_VSCROLL | WS_HSCROLL, ID_FRAME_EDITOR);
    if (!m_editor)
        return false;
    if (!PlainEditing())
        SetTextAreaCatalogSource(m_editor, [this] { return CollectBrowseCatalog(*this); });
    SendMessageA(m_editor, WM_SETFONT, reinterpret_cast<WPARAM>(m_displayFont ? m_displayFont : GetStockObject(SYSTEM_FIXED_FONT)), 0);
    m_editorProc = reinterpret_cast<WNDPROC>(SetWindowLongPtrA(m_editor, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(EditorKeysProc)));
    CreatePanes();
    m_statusBar = Child(m_window, kStatusBarClassName, 0, ID_FRAME_STATUS_BAR);
    SendMessageA(m_statusBar, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), 0);
    if (topLevel)
        SetMenu(m_window, BuildMenu(true));
    if (PlainEditing()) {
        for (int command : {322, 341, 342, 343, 344, 345, 346, 347, 348, 360, 361})
            m_enabled[command - 300] = false;
        SendMessageA(m_toolbar, TBM_SHOW, CMD_TOGGLE_BREAK, 0);
    }
    if (!ProjectMode())
        for (int number = 77; number <= 79; ++number)
            m_enabled[CommandOfHostNumber(number) - 300] = false;
    if (m_engine) {
        m_callBack = CreateFrameCallBack(*this);
        if (!m_callBack)
            return false;
        CU_SetCallBack(m_engine, m_callBack);
    }
    if (!NewSheet(SheetKind::Macro))
        return false;
    Layout();
    PostMessageA(m_window, FM_LAYOUT, 0, 0);
    return true;
}

void EditorFrame::ChangeOptions(DWORD mask, DWORD values)
{
    mask &= kFrameOptionMask;
    DWORD style = static_cast<DWORD>(GetWindowLongA(m_window, GWL_STYLE));
    SetWindowLongA(m_window, GWL_STYLE, static_cast<LONG>((style & ~mask) | (values & mask)));
    if (GetMenu(m_window) && IsTopLevel()) {
        HMENU old = GetMenu(m_window);
        SetMenu(m_window, BuildMenu(true));
        DestroyMenu(old);
    }
    Layout();
    UpdateCommandStates();
    UpdateCaption();
}

void EditorFrame::Layout()
{
    RECT client;
    GetClientRect(m_window, &client);
    OSVERSIONINFOA version{sizeof(version)};
    GetVersionExA(&version);
    FrameLayoutInput in;
    in.width = client.right;
    in.height = client.bottom;
    in.newShell = version.dwMajorVersion >= 4;
    in.border = (GetWindowLongA(m_window, GWL_STYLE) & WS_BORDER) != 0;
    in.margin = ProjectMode() ? m_margin : 0;
    in.toolbar = Has(FO_TOOLBAR);
    if (in.toolbar) {
        SendMessageA(m_toolbar, TBM_SETWIDTH, static_cast<WPARAM>(in.width), 0);
        in.toolbarHeight = static_cast<int>(SendMessageA(m_toolbar, TBM_NEEDEDHEIGHT, 0, 0));
    }
    in.statusBar = Has(FO_STATUS_BAR);
    in.statusHeight = static_cast<int>(SendMessageA(m_statusBar, SBM_HEIGHT, 0, 0));
    in.panes = PanesShown();
    in.tabBarHeight = TabBarNeededHeight(m_tabBar);
    in.splitPosition = m_splitPosition;
    in.listMode = m_listMode;
    in.listHeight = TextSize(m_window, m_listFont, "A").cy + 8;
    in.objectLabelWidth = TextSize(m_window, m_listFont, Text(IDS_OBJECT_LABEL)).cx;
    in.procLabelWidth = TextSize(m_window, m_listFont, Text(IDS_PROC_LABEL)).cx;
    in.letterWidth = TextSize(m_window, m_listFont, "A").cx;
    in.sheetTabs = Has(FO_SHEETS);
    in.sheetStripWidth = static_cast<int>(SendMessageA(m_sheetTabs, STM_WIDTH, 0, 0));
    FrameLayoutResult out = ComputeFrameLayout(in);
    MoveChild(m_toolbar, out.toolbar, in.toolbar);
    MoveChild(m_statusBar, out.statusBar, in.statusBar);
    RECT objectDrop = out.objectList, procDrop = out.procList;
    objectDrop.bottom += 200;
    procDrop.bottom += 200;
    MoveChild(m_objectList, objectDrop, in.listMode == 2);
    MoveChild(m_procList, procDrop, in.listMode >= 1);
    for (HWND list : {m_objectList, m_procList})
        SendMessageA(list, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), in.listHeight - 6);
    MoveChild(m_sheetTabs, out.sheetTabs, in.sheetTabs);
    MoveChild(m_editor, out.editor, true);
    // The pane on top is the one seen; a pane whose command is off gives its place to the Immediate pane.
    static constexpr int kPaneCommands[] = {CMD_IMMEDIATE, CMD_WATCH, CMD_STACK, CMD_LOADED};
    if (m_topPane > 0 && !IsEnabled(kPaneCommands[m_topPane]))
        m_topPane = 0;
    MoveChild(m_tabBar, out.tabBar, in.panes);
    for (int i = 0; i < 4; ++i)
        MoveChild(m_panes[i], out.panes, in.panes && i == m_topPane);
    InvalidateRect(m_window, nullptr, TRUE);
}

void EditorFrame::UpdateCaption()
{
    Sheet* sheet = Current();
    if (!sheet)
        return;
    const std::string& title = m_placeholders.title;
    if (m_engine)
        CU_CaptionPut(m_engine, title.c_str());
    std::string state = m_designDisplay ? Text(IDS_STATE_DESIGN) : std::string();
    if (IsLoaded(*sheet))
        state = Text(EngineStopped() ? IDS_STATE_BREAK : IDS_STATE_RUN);
    std::string shown = DisplayName(sheet->name);
    ReplaceAll(shown, " - ", " -- ");
    if (Modified(*sheet))
        shown += " *";
    std::string kind = KindWord(*sheet);
    for (char& c : kind)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    shown += " (" + kind + ")";
    OSVERSIONINFOA version{sizeof(version)};
    GetVersionExA(&version);
    std::string caption = version.dwMajorVersion >= 4 && !ProjectMode()
                              ? title + " - " + (state.empty() ? "" : state + " ") + shown
                              : shown + " - " + title + (state.empty() ? "" : " " + state);
    if (caption == m_caption)
        return;
    m_caption = caption;
    if (Has(FO_CAPTION_TEXT) || IsTopLevel())
        DefWindowProcA(m_window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(caption.c_str()));
}

void EditorFrame::ShowStatus(const std::string& text, bool alert)
{
    m_lastStatus = text;
    if (Has(FO_STATUS_BAR))
        SetWindowTextA(m_statusBar, text.c_str());
    if (m_callbacks.status) {
        m_callbacks.status(m_window, text.c_str(), alert);
        return;
    }
    if (alert) {
        Beep(MB_ICONASTERISK);
        if (!Has(FO_STATUS_BAR) || IsIconic(m_window) || !IsWindowVisible(m_window))
            MessageBoxA(m_window, text.c_str(), m_placeholders.title.c_str(), MB_OK | MB_TASKMODAL);
    }
}

int EditorFrame::ShowMessage(unsigned id, UINT style, const std::string& file)
{
    std::string text = Text(id);
    ReplaceAll(text, "<FILE>", file);
    ReplaceAll(text, "<CAPTION>", m_placeholders.title);
    return ShowText(text, style);
}

int EditorFrame::ShowText(const std::string& text, UINT style)
{
    if (!(style & MB_SYSTEMMODAL))
        style |= MB_TASKMODAL;
    ++m_busy;
    int answer = MessageBoxA(m_window, text.c_str(), m_placeholders.title.c_str(), style);
    --m_busy;
    return answer;
}

void EditorFrame::UpdateDeferred()
{
    KillTimer(m_window, kDeferredTimer);
    if (m_listMode > 0 && !SendMessageA(m_procList, CB_GETDROPPEDSTATE, 0, 0) &&
        !SendMessageA(m_objectList, CB_GETDROPPEDSTATE, 0, 0))
        FillLists();
    UpdateCommandStates();
    UpdateCaption();
    if (Sheet* sheet = Current()) {
        int line = sheet->document ? sheet->document->Caret().line + 1
                                   : static_cast<int>(SendMessageA(m_editor, EM_LINEFROMCHAR, static_cast<WPARAM>(-1), 0)) + 1;
        std::string text = " " + std::to_string(line) + " ";
        SendMessageA(m_statusBar, SBM_SETRIGHTTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }
}

} // namespace brannoc::ide
