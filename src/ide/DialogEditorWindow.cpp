// The UserDialog editor's window (dialog resource 110, DlgEditProc): its command toolbar, toolbox,
// tool-tips and status bar around the design surface, the commands 401 to 461, the clipboard, and
// closing with or without writing the block back.
#include "ide/DialogEditorState.h"

#include "host/ThisModule.h"
#include "ide/EditorFrameState.h"
#include "ide/FrameHelp.h"
#include "ide/FrameStatusBar.h"
#include "ide/FrameToolbar.h"
#include "ide/TextArea.h"

#include <commctrl.h>

#include <algorithm>
#include <cstring>

namespace brannoc::ide {

namespace {

constexpr int kEditorDialog = 110;
constexpr int kCommandBarHeight = 28;
constexpr int kToolboxWidth = 58;
constexpr ULONG_PTR kDesignerHelpContext = 1;
enum EditorStrings : unsigned { IDS_SAVE_DESIGN = 539 };

constexpr short kToolboxButtons[] = {401, 404, 402, 403, 405, 406, 407, 408, 409, 414, 411, 412, 410, 0};
constexpr short kCommandButtons[] = {450, kToolbarSeparator, 451, kToolbarSeparator, 452, 453, 454, 455,
                                     kToolbarSeparator, 456, 457, kToolbarSeparator, 459, 458, kToolbarSeparator,
                                     460, kToolbarSeparator, 461, 0};

UINT ToolbarMessage()
{
    static const UINT message = RegisterWindowMessageA(kToolbarMessageName);
    return message;
}

DialogEditor* EditorOf(HWND dialog) { return reinterpret_cast<DialogEditor*>(GetWindowLongPtrA(dialog, DWLP_USER)); }

// The status-bar help (before the line feed) or the tool-tip (after it) of a command's string.
std::string CommandText(const DialogEditor& editor, int command, bool toolTip)
{
    const std::string text = editor.Text(static_cast<unsigned>(command));
    const size_t split = text.find('\n');
    if (split == std::string::npos)
        return toolTip ? std::string() : text;
    return toolTip ? text.substr(split + 1, 80) : text.substr(0, split);
}

// The selected entry as clipboard text: its line, an option button with its group's line before it.
std::string SelectionText(const DialogDesign& design)
{
    if (design.selected < 0)
        return HeaderLineText(design) + "\r\n";
    const DialogItem& item = *design.items[static_cast<size_t>(design.selected)];
    if (item.Kind() == ItemKind::OptionButton)
        return "\t\tOptionGroup ." + item.group + "\r\n\t\t\t" + ItemLineText(item) + "\r\n";
    return "\t\t" + ItemLineText(item) + "\r\n";
}

// Owns a global memory block until it is handed to the clipboard.
class GlobalText final {
public:
    explicit GlobalText(const std::string& text) : m_memory(GlobalAlloc(GMEM_MOVEABLE, text.size() + 1))
    {
        if (void* bytes = m_memory ? GlobalLock(m_memory) : nullptr) {
            memcpy(bytes, text.c_str(), text.size() + 1);
            GlobalUnlock(m_memory);
        }
    }
    ~GlobalText()
    {
        if (m_memory)
            GlobalFree(m_memory);
    }
    GlobalText(const GlobalText&) = delete;
    GlobalText& operator=(const GlobalText&) = delete;
    // The clipboard owns the block once it took it.
    bool GiveToClipboard()
    {
        if (!m_memory || !SetClipboardData(CF_TEXT, m_memory))
            return false;
        m_memory = nullptr;
        return true;
    }

private:
    HGLOBAL m_memory;
};

// Holds the clipboard open for one scope.
class OpenClipboardScope final {
public:
    explicit OpenClipboardScope(HWND owner) : m_open(OpenClipboard(owner) != FALSE) {}
    ~OpenClipboardScope()
    {
        if (m_open)
            CloseClipboard();
    }
    OpenClipboardScope(const OpenClipboardScope&) = delete;
    OpenClipboardScope& operator=(const OpenClipboardScope&) = delete;
    bool IsOpen() const { return m_open; }

private:
    bool m_open;
};

void CopySelection(DialogEditor& editor)
{
    OpenClipboardScope clipboard(editor.dialog);
    if (!clipboard.IsOpen())
        return;
    GlobalText text(SelectionText(editor.design));
    EmptyClipboard();
    text.GiveToClipboard();
}

std::string ClipboardText(HWND owner)
{
    OpenClipboardScope clipboard(owner);
    HANDLE data = clipboard.IsOpen() ? GetClipboardData(CF_TEXT) : nullptr;
    const char* bytes = data ? static_cast<const char*>(GlobalLock(data)) : nullptr;
    if (!bytes)
        return {};
    std::string text = bytes;
    GlobalUnlock(data);
    return text;
}

void Changed(DialogEditor& editor, bool rebuild)
{
    editor.design.changed = true;
    if (rebuild)
        RebuildItemWindows(editor);
    SelectEntry(editor, editor.design.selected);
}

void DeleteSelection(DialogEditor& editor)
{
    if (editor.design.selected < 0)
        return;
    editor.design.RemoveItem(editor.design.selected);
    Changed(editor, true);
}

void Paste(DialogEditor& editor)
{
    if (!PasteDialogText(ClipboardText(editor.dialog), editor.design))
        return;
    Changed(editor, true);
}

void SetMode(DialogEditor& editor, int mode)
{
    SendMessageA(editor.toolbox, TBM_RELEASE, static_cast<WPARAM>(editor.mode), 1);
    editor.mode = mode;
    SendMessageA(editor.toolbox, TBM_RELEASE, static_cast<WPARAM>(mode), 0);
}

void Finish(DialogEditor& editor, bool save, bool placeCaret)
{
    if (save && editor.design.changed)
        WriteDesignToSheet(editor);
    if (placeCaret)
        PlaceCaretOnSelection(editor);
    EndDialog(editor.dialog, save ? IDOK : IDCANCEL);
}

// Closing other than by Save and Exit: changes are saved, dropped or the close is cancelled.
void Close(DialogEditor& editor)
{
    if (!editor.design.changed) {
        Finish(editor, false, true);
        return;
    }
    switch (editor.Ask(editor.Text(IDS_SAVE_DESIGN), MB_YESNOCANCEL | MB_ICONQUESTION)) {
    case IDYES: Finish(editor, true, true); break;
    case IDNO: Finish(editor, false, false); break;
    default: break;
    }
}

void ShowHelp(const DialogEditor& editor)
{
    char program[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    ShowHelpFile(editor.dialog, EditorHelpFileOf(program), HELP_CONTEXT, kDesignerHelpContext);
}

HWND MakeChild(const DialogEditor& editor, const char* className, DWORD style, int id)
{
    return CreateWindowExA(0, className, "", WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, editor.dialog,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleA(nullptr), nullptr);
}

int StatusHeight(const DialogEditor& editor) { return static_cast<int>(SendMessageA(editor.statusBar, SBM_HEIGHT, 0, 0)); }

void Layout(DialogEditor& editor)
{
    RECT client;
    GetClientRect(editor.dialog, &client);
    const int status = StatusHeight(editor);
    MoveWindow(editor.commandBar, 0, 0, client.right, kCommandBarHeight, TRUE);
    SendMessageA(editor.commandBar, TBM_SETWIDTH, static_cast<WPARAM>(client.right), 0);
    MoveWindow(editor.statusBar, 0, kCommandBarHeight, client.right, status, TRUE);
    const int below = kCommandBarHeight + 1 + status;
    MoveWindow(editor.toolbox, 0, below, kToolboxWidth, client.bottom - below, TRUE);
    MoveWindow(editor.grab, kToolboxWidth, below, client.right - kToolboxWidth, client.bottom - below, TRUE);
    MoveWindow(editor.selection, 0, 0, client.right, client.bottom, FALSE);
    if (editor.tooltip) {
        SendMessageA(editor.toolbox, TBM_SETTOOLTIPS, 0, reinterpret_cast<LPARAM>(editor.tooltip));
        SendMessageA(editor.commandBar, TBM_SETTOOLTIPS, 0, reinterpret_cast<LPARAM>(editor.tooltip));
    }
}

// The window fits the dialog with the toolbars and the status bar; centred across the screen at a
// quarter of its height.
void PlaceEditorWindow(DialogEditor& editor)
{
    SendMessageA(editor.toolbox, TBM_SETWIDTH, kToolboxWidth, 0);
    const RECT dialogSize = EntryPixels(editor, -1);
    const int top = kCommandBarHeight + 1 + StatusHeight(editor);
    const int toolboxHeight = static_cast<int>(SendMessageA(editor.toolbox, TBM_NEEDEDHEIGHT, 0, 0));
    const int commandWidth = static_cast<int>(SendMessageA(editor.commandBar, TBM_NEEDEDWIDTH, 0, 0));
    RECT frame{0, 0, std::max(kToolboxWidth + static_cast<int>(dialogSize.right) + 2 * kSurfaceMargin, commandWidth),
               top + std::max(static_cast<int>(dialogSize.bottom) + 2 * kSurfaceMargin, toolboxHeight)};
    AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongA(editor.dialog, GWL_STYLE)), FALSE,
                       static_cast<DWORD>(GetWindowLongA(editor.dialog, GWL_EXSTYLE)));
    const int screenWidth = GetSystemMetrics(SM_CXSCREEN), screenHeight = GetSystemMetrics(SM_CYSCREEN);
    const int width = std::min(static_cast<int>(frame.right - frame.left), screenWidth);
    const int height = std::min(static_cast<int>(frame.bottom - frame.top), screenHeight);
    const int y = std::min(screenHeight / 4, screenHeight - height);
    SetWindowPos(editor.dialog, nullptr, (screenWidth - width) / 2, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

// The tool-tip class comes from the common controls library, loaded when first needed so that the
// engine's library imports nothing beyond its usual system libraries.
bool LoadToolTipClass()
{
    HMODULE library = LoadLibraryA("comctl32.dll");
    if (!library)
        return false;
    using InitFunction = BOOL(WINAPI*)(const INITCOMMONCONTROLSEX*);
    // GetProcAddress answers a generic function pointer; the void* step states the conversion.
    void* address = reinterpret_cast<void*>(GetProcAddress(library, "InitCommonControlsEx"));
    const INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_WIN95_CLASSES};
    return address && reinterpret_cast<InitFunction>(address)(&controls);
}

bool RegisterToolTipClass()
{
    static const bool s_loaded = LoadToolTipClass();
    return s_loaded;
}

bool CreateChildren(DialogEditor& editor)
{
    editor.commandBar = MakeChild(editor, kToolbarClassName, 0x0004, ID_DESIGN_COMMANDS);
    editor.toolbox = MakeChild(editor, kToolbarClassName, 0x0004, ID_DESIGN_TOOLBOX);
    editor.statusBar = MakeChild(editor, kStatusBarClassName, 0, ID_DESIGN_STATUS);
    if (!editor.commandBar || !editor.toolbox || !editor.statusBar || !CreateDesignSurface(editor))
        return false;
    SendMessageA(editor.commandBar, TBM_SETBUTTONS, 0, reinterpret_cast<LPARAM>(kCommandButtons));
    SendMessageA(editor.toolbox, TBM_SETBUTTONS, 0, reinterpret_cast<LPARAM>(kToolboxButtons));
    SendMessageA(editor.statusBar, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), FALSE);
    if (!RegisterToolTipClass())
        return false;
    editor.tooltip = CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr, WS_POPUP | TTS_ALWAYSTIP, CW_USEDEFAULT,
                                     CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, editor.dialog, nullptr,
                                     GetModuleHandleA(nullptr), nullptr);
    return editor.tooltip != nullptr;
}

bool Open(HWND dialog, DialogEditor& editor)
{
    SetWindowLongPtrA(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(&editor));
    editor.dialog = dialog;
    editor.units = DialogUnits::Of(dialog);
    if (!RegisterToolbarClass() || !RegisterStatusBarClass() || !RegisterDesignSurfaceClasses() || !CreateChildren(editor))
        return false;
    SetMode(editor, DE_SELECT);
    if (!RebuildItemWindows(editor))
        return false;
    PlaceEditorWindow(editor);
    Layout(editor);
    SelectEntry(editor, editor.design.selected);
    return true;
}

LRESULT OnToolbar(DialogEditor& editor, WPARAM wParam, LPARAM lParam)
{
    const int command = static_cast<short>(wParam);
    if (lParam == -1) {
        RunEditorCommand(editor, command);
        return 1;
    }
    if (lParam == 2) {
        static char tip[81];
        lstrcpynA(tip, CommandText(editor, command, true).c_str(), sizeof(tip));
        return reinterpret_cast<LRESULT>(tip);
    }
    SetWindowTextA(editor.statusBar, CommandText(editor, command, false).c_str());
    return 0;
}

INT_PTR CALLBACK DlgEditProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    DialogEditor* editor = EditorOf(dialog);
    if (message == ToolbarMessage() && editor) {
        SetWindowLongPtrA(dialog, DWLP_MSGRESULT, OnToolbar(*editor, wParam, lParam));
        return TRUE;
    }
    switch (message) {
    case WM_INITDIALOG:
        // A window that cannot be made closes the editor at once, without changes.
        if (!Open(dialog, *reinterpret_cast<DialogEditor*>(lParam)))
            EndDialog(dialog, -1);
        return FALSE;
    case WM_SIZE:
        if (editor && editor->grab)
            Layout(*editor);
        return TRUE;
    case WM_GETMINMAXINFO:
        reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = POINT{240, 240};
        return TRUE;
    case WM_HELP:
        if (editor)
            RunEditorCommand(*editor, DE_HELP);
        return TRUE;
    case WM_COMMAND:
        if (!editor)
            return FALSE;
        if (LOWORD(wParam) == IDCANCEL)
            Close(*editor);
        else if (LOWORD(wParam) == IDOK)
            return TRUE;
        else
            RunEditorCommand(*editor, LOWORD(wParam));
        return TRUE;
    default:
        return FALSE;
    }
}

// While the editor runs the frame and its host take no input.
class ModalScope final {
public:
    explicit ModalScope(EditorFrame& frame) : m_frame(frame)
    {
        ++m_frame.m_busy;
        m_root = GetAncestor(frame.m_window, GA_ROOT);
        m_host = frame.HostWindow();
        for (HWND window : {frame.m_window, m_root, m_host})
            if (window)
                EnableWindow(window, FALSE);
    }
    ~ModalScope()
    {
        for (HWND window : {m_host, m_root, m_frame.m_window})
            if (window)
                EnableWindow(window, TRUE);
        --m_frame.m_busy;
    }
    ModalScope(const ModalScope&) = delete;
    ModalScope& operator=(const ModalScope&) = delete;

private:
    EditorFrame& m_frame;
    HWND m_root = nullptr;
    HWND m_host = nullptr;
};

} // namespace

std::string DialogEditor::Text(unsigned id) const
{
    return frame->Text(id);
}

int DialogEditor::Ask(const std::string& text, UINT style) const
{
    return MessageBoxA(dialog, text.c_str(), frame->m_placeholders.title.c_str(), style | MB_TASKMODAL);
}

void UpdateEditorButtons(DialogEditor& editor)
{
    const DialogDesign& design = editor.design;
    const bool item = design.selected >= 0;
    auto enable = [&](int command, bool on) { SendMessageA(editor.commandBar, TBM_ENABLE, static_cast<WPARAM>(command), on); };
    for (int command : {DE_DELETE, DE_CUT})
        enable(command, item);
    enable(DE_MOVE_IN_FRONT, item && design.selected + 1 < design.Count());
    enable(DE_MOVE_BEHIND, item && design.selected > 0);
    enable(DE_SELECT_BEHIND, item);
    enable(DE_SELECT_IN_FRONT, design.selected + 1 < design.Count());
}

void ShowSelectionStatus(DialogEditor& editor)
{
    DialogDesign& design = editor.design;
    const std::string line = design.selected < 0 ? HeaderLineText(design).substr(1) : ItemLineText(*design.SelectedItem());
    SetWindowTextA(editor.statusBar, line.c_str());
}

void RunEditorCommand(DialogEditor& editor, int command)
{
    DialogDesign& design = editor.design;
    if (command == DE_SELECT || (command >= DE_FIRST_TOOL && command <= DE_LAST_TOOL && command != 413)) {
        SetMode(editor, command);
        return;
    }
    switch (command) {
    case DE_PROPERTIES:
        if (EditItemProperties(editor, design.selected)) {
            RebuildItemWindows(editor);
            SelectEntry(editor, design.selected);
        }
        break;
    case DE_TEST: editor.Ask("Not implemented.", MB_OK | MB_ICONINFORMATION); break;
    case DE_DELETE: DeleteSelection(editor); break;
    case DE_CUT:
        CopySelection(editor);
        DeleteSelection(editor);
        break;
    case DE_COPY: CopySelection(editor); break;
    case DE_PASTE: Paste(editor); break;
    case DE_MOVE_IN_FRONT:
    case DE_MOVE_BEHIND:
        if (design.MoveSelected(command == DE_MOVE_IN_FRONT ? 1 : -1))
            Changed(editor, true);
        break;
    case DE_SELECT_BEHIND:
    case DE_SELECT_IN_FRONT:
        if (design.SelectNeighbour(command == DE_SELECT_IN_FRONT ? 1 : -1))
            SelectEntry(editor, design.selected);
        break;
    case DE_GRID:
        if (EditGridSettings(editor))
            RefreshSurface(editor);
        break;
    case DE_SAVE_AND_EXIT: Finish(editor, true, true); break;
    case DE_HELP: ShowHelp(editor); break;
    default: break;
    }
}

bool ShowUserDialogEditor(EditorFrame& frame)
{
    DialogEditor editor;
    editor.frame = &frame;
    if (!frame.Current() || !LoadDesignFromSheet(editor))
        return false;
    {
        ModalScope modal(frame);
        DialogBoxParamA(ThisModule(), MAKEINTRESOURCEA(kEditorDialog), frame.m_window, DlgEditProc,
                        reinterpret_cast<LPARAM>(&editor));
    }
    if (editor.wrote)
        SetFocus(frame.m_editor);
    return editor.wrote;
}

} // namespace brannoc::ide
