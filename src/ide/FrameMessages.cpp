// The editor frame's message handler: window messages and the frame messages of hosts and tests.
#include "ide/EditorFrameState.h"

#include "ide/CommandTable.h"
#include "ide/FindReplace.h"
#include "ide/FrameHelp.h"
#include "ide/FrameKeys.h"
#include "ide/FrameRunMessages.h"
#include "ide/ModuleAttributes.h"
#include "ide/ModuleProperties.h"
#include "ide/FrameStatusBar.h"
#include "ide/FrameToolbar.h"
#include "ide/TextArea.h"

#include "brannoc.h"

namespace brannoc::ide {

namespace {

template <typename Callback>
LRESULT SetCallback(Callback& slot, LPARAM lParam)
{
    slot = reinterpret_cast<Callback>(lParam);
    return 0;
}

// The child frame without FO_CAPTION_TEXT answers the text messages with the current sheet's code.
bool TextMeansCode(const EditorFrame& frame)
{
    return !frame.IsTopLevel() && !frame.Has(FO_CAPTION_TEXT);
}

void PaintListLabels(EditorFrame& frame)
{
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(frame.m_window, &paint);
    if (frame.m_listMode > 0) {
        HGDIOBJ old = SelectObject(dc, frame.m_listFont);
        SetBkMode(dc, TRANSPARENT);
        auto label = [&](HWND list, unsigned id, int x) {
            RECT r;
            GetWindowRect(list, &r);
            MapWindowPoints(nullptr, frame.m_window, reinterpret_cast<POINT*>(&r), 2);
            std::string text = frame.Text(id);
            SIZE size{};
            GetTextExtentPoint32A(dc, text.c_str(), static_cast<int>(text.size()), &size);
            int height = static_cast<int>(SendMessageA(list, CB_GETITEMHEIGHT, static_cast<WPARAM>(-1), 0)) + 6;
            TextOutA(dc, x, r.top + (height - size.cy) / 2, text.c_str(), static_cast<int>(text.size()));
        };
        RECT procRect;
        GetWindowRect(frame.m_procList, &procRect);
        MapWindowPoints(nullptr, frame.m_window, reinterpret_cast<POINT*>(&procRect), 2);
        std::string procLabel = frame.Text(IDS_PROC_LABEL);
        if (frame.m_listMode == 2) {
            RECT objectRect;
            GetWindowRect(frame.m_objectList, &objectRect);
            MapWindowPoints(nullptr, frame.m_window, reinterpret_cast<POINT*>(&objectRect), 2);
            label(frame.m_objectList, IDS_OBJECT_LABEL, frame.m_margin + 12);
            label(frame.m_procList, IDS_PROC_LABEL, objectRect.right + 24);
        } else {
            label(frame.m_procList, IDS_PROC_LABEL, 12);
        }
        SelectObject(dc, old);
    }
    EndPaint(frame.m_window, &paint);
}

void DrawListItem(EditorFrame& frame, const DRAWITEMSTRUCT& item)
{
    bool selected = (item.itemState & ODS_SELECTED) != 0;
    FillRect(item.hDC, &item.rcItem, GetSysColorBrush(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
    if (item.itemID == static_cast<UINT>(-1))
        return;
    char text[256] = {};
    SendMessageA(item.hwndItem, CB_GETLBTEXT, item.itemID, reinterpret_cast<LPARAM>(text));
    bool bold = item.itemData == 1;
    HGDIOBJ old = SelectObject(item.hDC, bold ? frame.m_listBoldFont : frame.m_listFont);
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, GetSysColor(selected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
    RECT r = item.rcItem;
    r.left += 3;
    DrawTextA(item.hDC, text, -1, &r, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
    SelectObject(item.hDC, old);
    if (item.itemState & ODS_FOCUS)
        DrawFocusRect(item.hDC, &item.rcItem);
}

// Enables, disables and checks the command items of a menu and of its submenus.
void MarkMenu(const EditorFrame& frame, HMENU menu)
{
    if (!menu || !IsMenu(menu))
        return;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        if (HMENU sub = GetSubMenu(menu, i)) {
            MarkMenu(frame, sub);
            continue;
        }
        const UINT id = GetMenuItemID(menu, i);
        if (id < 300 || id >= 385)
            continue;
        EnableMenuItem(menu, id, MF_BYCOMMAND | (frame.IsEnabled(static_cast<int>(id)) ? MF_ENABLED : MF_GRAYED));
        CheckMenuItem(menu, id, MF_BYCOMMAND | (frame.IsChecked(static_cast<int>(id)) ? MF_CHECKED : MF_UNCHECKED));
    }
}

// The editing child's selection as start and end character positions (the text area and the plain
// edit control both answer EM_GETSEL).
std::pair<DWORD, DWORD> EditorSelection(const EditorFrame& frame)
{
    DWORD start = 0, end = 0;
    SendMessageA(frame.m_editor, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    return {start, end < start ? start : end};
}

std::string EditorSelectedText(const EditorFrame& frame)
{
    const auto [start, end] = EditorSelection(frame);
    const int length = GetWindowTextLengthA(frame.m_editor);
    std::string text(static_cast<size_t>(length) + 1, '\0');
    text.resize(static_cast<size_t>(GetWindowTextA(frame.m_editor, text.data(), length + 1)));
    return start >= text.size() ? std::string() : text.substr(start, end - start);
}

// The object-module file type from "description|extension|type word" (the form its getter answers);
// an empty or missing part keeps the default "Object", "OBM", "Object", and a leading dot of the
// extension is dropped.
void SetObjectFileType(EditorFrame& frame, const std::string& text)
{
    std::string parts[3];
    size_t at = 0;
    for (std::string& part : parts) {
        if (at > text.size())
            break;
        const size_t bar = text.find('|', at);
        part = text.substr(at, bar == std::string::npos ? std::string::npos : bar - at);
        at = bar == std::string::npos ? text.size() + 1 : bar + 1;
    }
    if (!parts[1].empty() && parts[1][0] == '.')
        parts[1].erase(0, 1);
    frame.m_objectNoun = parts[0].empty() ? "Object" : parts[0];
    frame.m_objectExtension = parts[1].empty() ? "OBM" : parts[1];
    frame.m_objectTypeWord = parts[2].empty() ? "Object" : parts[2];
    frame.UpdateCaption();
}

// The status-bar help of the menu item under the mouse or the keyboard: a command's first line, or the
// help of a system-menu item (its id masked with 0xFFF0); the standard edit control's context menu
// items (plain editing) stand for the matching commands; a popup, a separator or an item without a
// command clears the text.
void ShowMenuItemHelp(EditorFrame& frame, WPARAM wParam, LPARAM lParam)
{
    const UINT flags = HIWORD(wParam);
    if (flags == 0xFFFF && lParam == 0)
        return; // the menu closed
    if ((flags & MF_SYSMENU) && !(flags & (MF_POPUP | MF_SEPARATOR))) {
        frame.ShowStatus(frame.Text(LOWORD(wParam) & 0xFFF0));
        return;
    }
    int command = LOWORD(wParam);
    static constexpr std::pair<int, int> kEditMenuIds[] = {
        {768, CMD_CUT}, {769, CMD_COPY}, {770, CMD_PASTE}, {771, CMD_DELETE}, {772, CMD_UNDO}, {1025, CMD_SELECT_ALL}};
    for (const auto& [id, mapped] : kEditMenuIds)
        if (command == id)
            command = mapped;
    const bool isCommand = !(flags & (MF_POPUP | MF_SEPARATOR | MF_SYSMENU)) && command >= 300 && command < 385;
    frame.ShowStatus(isCommand ? frame.CommandHelp(command, false) : std::string());
}

bool OnClose(EditorFrame& frame)
{
    // A macro still runs below this message (the engine pumps messages while it runs): it is asked to
    // end, and the close is tried again once the run has returned to the message loop.
    if (frame.m_engine && !CU_IsIdle(frame.m_engine)) {
        frame.EndExecution();
        PostMessageA(frame.m_window, FM_RETRYCLOSE, 0, 0);
        return false;
    }
    if (!frame.CloseAll(PromptKind::CanCancel))
        return false;
    if (frame.IsTopLevel())
        DestroyWindow(frame.m_window);
    return true;
}

// Gives the current sheet the name of a host's macro; refused for an empty name, a name another sheet
// has, and while the sheet's macro is taken in by the engine (its name is the engine's link to it).
bool RenameCurrentSheet(EditorFrame& frame, const std::string& name)
{
    Sheet* sheet = frame.Current();
    if (!sheet || name.empty() || frame.IsLoaded(*sheet))
        return false;
    const int other = frame.FindSheet(name);
    if (other >= 0 && other != frame.m_current)
        return false;
    sheet->name = name;
    frame.UpdateCaption();
    frame.UpdateCommandStates();
    return true;
}

LRESULT SheetMessage(EditorFrame& frame, UINT message, WPARAM wParam, LPARAM lParam)
{
    Sheet* sheet = frame.Current();
    switch (message) {
    case FM_GETWHOLETEXT: return sheet ? CopyOutString(frame.WholeTextOf(*sheet), wParam, lParam) : 0;
    case FM_GETSHEETNAME: return sheet ? CopyOutString(sheet->name, wParam, lParam) : 0;
    case FM_SHEETCOUNT: return frame.Count();
    case FM_SELECTSHEET:
    case FM_SHOWSHEET: {
        bool shown = frame.ShowSheet(static_cast<int>(lParam) - 1);
        return message == FM_SHOWSHEET ? (shown ? 0 : 1) : shown;
    }
    case FM_CURRENTSHEET: return frame.m_current + 1;
    case FM_FINDSHEET: return frame.FindSheet(StringParameter(lParam)) + 1;
    case FM_SHOWNAMEDSHEET: return frame.ShowSheet(lParam ? frame.FindSheet(StringParameter(lParam)) : frame.m_current) ? 0 : 1;
    case FM_HIDDENLINES: return sheet ? sheet->HiddenLines() : 0;
    case FM_GETVBNAME: return sheet ? CopyOutString(ReadVbName(sheet->header), wParam, lParam) : 0;
    case FM_SETVBNAME:
        if (!sheet || !WriteVbName(sheet->header, StringParameter(lParam)))
            return 1;
        frame.ApplyHeader(*sheet);
        return 0;
    case FM_SHEETKIND: return sheet ? static_cast<int>(sheet->kind) : 0;
    case FM_GETTEXT: return sheet ? CopyOutString(frame.CodeOf(*sheet), wParam, lParam) : 0;
    case FM_SETTEXT:
        if (!sheet || frame.m_readOnly)
            return 1;
        frame.ReplaceCode(*sheet, StringParameter(lParam));
        frame.UpdateCaption();
        return 0;
    case FM_OPENMACRO:
        // Without the file commands the host keeps the macro texts: the name goes to the current sheet.
        if (!frame.Has(FO_FILES))
            return RenameCurrentSheet(frame, StringParameter(lParam)) ? 0 : 1;
        return frame.OpenFile(StringParameter(lParam)) ? 0 : 1;
    case FM_FILE:
        if (wParam == 0)
            return sheet && frame.SaveSheetAs(*sheet, StringParameter(lParam)) ? 0 : 1;
        return frame.OpenFile(StringParameter(lParam)) ? 0 : 1;
    case FM_CLOSEALL:
        frame.EndExecution();
        return frame.CloseAll(PromptKind::CanCancel) ? 0 : 1;
    case FM_DISPLAYNAME: {
        std::string shown = frame.DisplayName(StringParameter(lParam));
        // The name comes in the buffer and the display name goes back into it.
        return CopyOutString(shown, wParam, lParam);
    }
    default: return 0;
    }
}

} // namespace

LRESULT EditorFrame::Handle(UINT message, WPARAM wParam, LPARAM lParam)
{
    static const UINT toolbarMessage = RegisterWindowMessageA(kToolbarMessageName);
    if (message == toolbarMessage) {
        int command = static_cast<int>(static_cast<short>(wParam));
        if (lParam == -1)
            return Dispatch(command, true);
        if (lParam == 2) {
            static char tip[81];
            std::string text = CommandHelp(command < 0 ? -command : command, true);
            lstrcpynA(tip, text.c_str(), sizeof(tip));
            return reinterpret_cast<LRESULT>(tip);
        }
        ShowStatus(CommandHelp(command < 0 ? -command : command, false));
        if (lParam == 1)
            SetFocus(m_window);
        return 0;
    }
    static const UINT findMessage = RegisterWindowMessageA(FINDMSGSTRINGA);
    if (message == findMessage) {
        OnFindNotification(*this, *reinterpret_cast<const FINDREPLACEA*>(lParam));
        return 0;
    }
    if (LRESULT result = 0; RunControlMessage(*this, message, wParam, lParam, result) ||
                            HostDataMessage(*this, message, wParam, lParam, result))
        return result;
    switch (message) {
    case WM_CREATE:
        return Create() ? 0 : -1;
    case WM_SIZE:
        Layout();
        return 0;
    case WM_SETFOCUS:
        if (m_editor)
            SetFocus(m_editor);
        return 0;
    case WM_TIMER:
        UpdateDeferred();
        return 0;
    case WM_PAINT:
        PaintListLabels(*this);
        return 0;
    case WM_DRAWITEM:
        DrawListItem(*this, *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) == ID_FRAME_SHEET_TABS && reinterpret_cast<HWND>(lParam) == m_sheetTabs) {
            ShowSheet(HIWORD(wParam));
            return 0;
        }
        if (HIWORD(wParam) == CBN_SELENDOK && reinterpret_cast<HWND>(lParam) == m_objectList) {
            FillProcList();
            return 0;
        }
        if (HIWORD(wParam) == CBN_SELENDOK && reinterpret_cast<HWND>(lParam) == m_procList) {
            ChooseProc();
            return 0;
        }
        if (lParam == 0)
            Dispatch(LOWORD(wParam), true);
        return 0;
    case WM_MENUSELECT: ShowMenuItemHelp(*this, wParam, lParam); return 0;
    case WM_CONTEXTMENU:
        // The text area's own menu; the plain edit control keeps its standard one. A menu asked for from
        // the keyboard (-1) opens at the caret.
        if (reinterpret_cast<HWND>(wParam) == m_editor && !PlainEditing()) {
            HostCommand(lParam == -1 ? HOST_CONTEXT_MENU : HOST_MOUSE_MENU, true);
            return 0;
        }
        break;
    case WM_INITMENUPOPUP:
        UpdateCommandStates();
        MarkMenu(*this, reinterpret_cast<HMENU>(wParam));
        return 0;
    case FM_LOADACCELERATORS: return reinterpret_cast<LRESULT>(CreateFrameAccelerators(Has(FO_FILES)));
    case FM_UPDATEMENU:
    case FM_PREPAREPOPUP:
        UpdateCommandStates();
        MarkMenu(*this, reinterpret_cast<HMENU>(wParam));
        return 0;
    case WM_CLOSE:
    case FM_RETRYCLOSE:
        OnClose(*this);
        return 0;
    case WM_ACTIVATE:
        WatchHelpKey(m_window, LOWORD(wParam) != WA_INACTIVE);
        break;
    case WM_DESTROY:
        WatchHelpKey(m_window, false);
        if (IsTopLevel() && Has(FO_POST_QUIT))
            PostQuitMessage(0);
        return 0;
    case WM_SETTEXT:
        if (TextMeansCode(*this)) {
            Sheet* sheet = Current();
            if (!sheet || (!ProjectMode() && !QuerySave(*sheet, PromptKind::CanCancel)))
                return FALSE;
            ReplaceCode(*sheet, StringParameter(lParam));
            SetModified(*sheet, false);
            UpdateCaption();
            return TRUE;
        }
        m_placeholders.title = StringParameter(lParam);
        break;
    case WM_GETTEXT:
    case WM_GETTEXTLENGTH:
        if (TextMeansCode(*this) && Current()) {
            std::string code = CodeOf(*Current());
            return message == WM_GETTEXTLENGTH ? static_cast<LRESULT>(code.size()) : CopyOutString(code, wParam, lParam);
        }
        break;
    case FM_GETDESIGNDISPLAY: return m_designDisplay;
    case FM_SETDESIGNDISPLAY: m_designDisplay = lParam != 0; UpdateCaption(); UpdateCommandStates(); return 0;
    case FM_GETDESIGNOFFER: return m_designOffer;
    case FM_SETDESIGNOFFER: m_designOffer = lParam != 0; return 0;
    case FM_GETFILEDESC: return CopyOutString(m_fileDescriptions, wParam, lParam);
    case FM_GETFILEEXT: return CopyOutString(m_fileExtensions, wParam, lParam);
    case FM_SETFILEDESC: m_fileDescriptions = lParam && *reinterpret_cast<const char*>(lParam) ? StringParameter(lParam) : "Brannoc Basic"; return 0;
    case FM_SETFILEEXT: m_fileExtensions = lParam && *reinterpret_cast<const char*>(lParam) ? StringParameter(lParam) : "KZB"; return 0;
    case FM_SETOPTIONS: ChangeOptions(static_cast<DWORD>(wParam), static_cast<DWORD>(lParam)); return 0;
    case FM_GETCAPTION: return CopyOutString(m_caption, wParam, lParam);
    case FM_SETTITLE:
        m_placeholders.title = lParam && *reinterpret_cast<const char*>(lParam) ? StringParameter(lParam) : "Brannoc Basic";
        UpdateCaption();
        return 0;
    case FM_GETREADONLY: return m_readOnly;
    case FM_SETREADONLY: m_readOnly = lParam != 0; UpdateCommandStates(); return 0;
    case FM_GETSELSTART: {
        DWORD start = 0;
        SendMessageA(m_editor, EM_GETSEL, reinterpret_cast<WPARAM>(&start), 0);
        return static_cast<LRESULT>(start);
    }
    case FM_SETCARET:
        SendMessageA(m_editor, EM_SETSEL, static_cast<WPARAM>(lParam), lParam);
        SendMessageA(m_editor, EM_SCROLLCARET, 0, 0);
        return 0;
    case FM_GETSELLENGTH: {
        const auto [start, end] = EditorSelection(*this);
        return static_cast<LRESULT>(end - start);
    }
    case FM_SETSELLENGTH: {
        const DWORD start = EditorSelection(*this).first;
        const DWORD length = lParam < 0 ? 0 : static_cast<DWORD>(lParam);
        SendMessageA(m_editor, EM_SETSEL, start, static_cast<LPARAM>(start + length));
        SendMessageA(m_editor, EM_SCROLLCARET, 0, 0);
        return 0;
    }
    case FM_GETSELTEXT: return CopyOutString(EditorSelectedText(*this), wParam, lParam);
    case FM_REPLACESEL:
        if (m_readOnly || !Current())
            return 1;
        SendMessageA(m_editor, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(StringParameter(lParam).c_str()));
        UpdateCommandStates();
        return 0;
    case FM_SETABOUTCALLBACK: return SetCallback(m_callbacks.about, lParam);
    case FM_SETHELPCALLBACK: return SetCallback(m_callbacks.help, lParam);
    case FM_SETNOTIFYCALLBACK: return SetCallback(m_callbacks.notify, lParam);
    case FM_SETSTATUSCALLBACK: return SetCallback(m_callbacks.status, lParam);
    case FM_SETQUERYSAVECALLBACK: return SetCallback(m_callbacks.querySave, lParam);
    case FM_SETFILENAMECALLBACK: return SetCallback(m_callbacks.fileName, lParam);
    case FM_SETWRITECALLBACK: return SetCallback(m_callbacks.write, lParam);
    case FM_SETDISPLAYNAMECALLBACK: return SetCallback(m_callbacks.displayName, lParam);
    case FM_SETCOMMANDFILTER: return SetCallback(m_callbacks.commandFilter, lParam);
    case FM_HOSTCOMMAND: UpdateCommandStates(); return HostCommand(static_cast<int>(wParam), lParam != 0);
    case FM_HASNOENGINE: return m_engine ? 0 : 1;
    case FM_CHECKSTATE: {
        const int command = CommandOfHostNumber(static_cast<int>(wParam));
        return command && IsChecked(command) ? 1 : 0;
    }
    case FM_COMMANDSTATUS:
    case FM_COMMANDTIP: {
        // wParam carries the host number, so the caller's buffer is taken to be large enough.
        int command = CommandOfHostNumber(static_cast<int>(wParam));
        const std::string text = command ? CommandHelp(command, message == FM_COMMANDTIP) : std::string();
        return CopyOutString(text, text.size() + 1, lParam);
    }
    case FM_GETMACRONOUN: return CopyOutString(m_placeholders.macroNoun, wParam, lParam);
    case FM_SETMACRONOUN:
        m_placeholders.macroNoun = lParam && *reinterpret_cast<const char*>(lParam) ? StringParameter(lParam) : Text(IDS_MACRO);
        UpdateCaption();
        return 0;
    case FM_GETOBJECTFILETYPE:
        return CopyOutString(m_objectNoun + "|" + m_objectExtension + "|" + m_objectTypeWord, wParam, lParam);
    case FM_SETOBJECTFILETYPE: SetObjectFileType(*this, StringParameter(lParam)); return 0;
    case FM_GETLISTMODE: return m_listMode;
    case FM_SETLISTMODE:
        if (lParam < 0 || lParam > 2)
            return 1;
        m_listMode = static_cast<int>(lParam);
        Layout();
        FillLists();
        return 0;
    case FM_GETSPLIT: return m_splitPosition;
    case FM_SETSPLIT: m_splitPosition = lParam < 0 ? 0 : static_cast<int>(lParam); Layout(); return 0;
    case FM_GETMARGIN: return m_margin;
    case FM_SETMARGIN:
        if (!ProjectMode())
            return 1;
        m_margin = lParam < 0 ? 0 : static_cast<int>(lParam);
        Layout();
        return 0;
    case FM_TOOLBARHEIGHT: return Has(FO_TOOLBAR) ? SendMessageA(m_toolbar, TBM_NEEDEDHEIGHT, 0, 0) : 0;
    case FM_STATUSHEIGHT: return Has(FO_STATUS_BAR) ? SendMessageA(m_statusBar, SBM_HEIGHT, 0, 0) : 0;
    case FM_GETTABSASSPACES: return m_tabsAsSpaces;
    case FM_SETTABSASSPACES:
        m_tabsAsSpaces = lParam != 0;
        Dispatch(CMD_TAB_WIDTH_1 + m_tabWidth - 1, false);
        return 0;
    case FM_GETTABWIDTH: return m_tabWidth;
    case FM_SETTABWIDTH:
        if (lParam < 1 || lParam > 8)
            return 1;
        return Dispatch(CMD_TAB_WIDTH_1 + static_cast<int>(lParam) - 1, false) ? 0 : 1;
    case FM_STATUSHELP:
        ShowStatus(wParam ? CommandHelp(static_cast<int>(wParam), false) : StringParameter(lParam));
        return 0;
    case FM_TRANSLATEKEY: {
        int mode = m_keyboardMode;
        m_keyboardMode = 0;
        int command = TranslateKey(static_cast<int>(wParam));
        m_keyboardMode = mode;
        return command;
    }
    case FM_SETKEYBOARDMODE:
        if (lParam < 0 || lParam > 2)
            return 1;
        m_keyboardMode = static_cast<int>(lParam);
        return 0;
    case FM_LOADMENU: return reinterpret_cast<LRESULT>(BuildMenu(false));
    case FM_ENGINE:
        if (m_engine)
            m_engine->AddRef();
        return reinterpret_cast<LRESULT>(m_engine);
    case FM_UPDATE: UpdateDeferred(); return 0;
    case FM_SHOWMESSAGE: ShowMessage(static_cast<unsigned>(lParam), MB_OK); return 0;
    case FM_PROPERTIES:
        if (Sheet* sheet = Current(); sheet && sheet->kind != SheetKind::Macro)
            ShowModuleProperties(*this, *sheet);
        return 0;
    case FM_LAYOUT: Layout(); return 0;
    case FM_SETDISPLAYFONT: SetDisplayFont(reinterpret_cast<HFONT>(wParam), false); return 0;
    default:
        if (message >= WM_USER + 240 && message <= WM_USER + 504)
            return SheetMessage(*this, message, wParam, lParam);
        break;
    }
    return DefWindowProcA(m_window, message, wParam, lParam);
}

} // namespace brannoc::ide
