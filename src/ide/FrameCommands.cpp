// The frame's command dispatch: which commands are enabled in the frame's state, the host's command
// filter, and the built-in action of each command.
#include "ide/EditorFrameState.h"

#include "ide/CommandTable.h"
#include "ide/DialogEditor.h"
#include "ide/FrameHelp.h"
#include "ide/FrameKeys.h"
#include "ide/FrameOpenUses.h"
#include "ide/FrameToolbar.h"
#include "ide/ModuleProperties.h"
#include "ide/ObjectBrowser.h"
#include "ide/ReferencesDialog.h"
#include "ide/TextArea.h"

#include "brannoc.h"

namespace brannoc::ide {

namespace {

struct FrameConditions {
    bool engine, idle, busy, loaded, stopped, doubleStar, ro, RO, sel, text, focusEditor, focusEvaluating,
        targetEditor, canUndo, canRedo, clipboard, module;
};

FrameConditions ReadConditions(const EditorFrame& frame)
{
    FrameConditions c{};
    void* unit = frame.m_engine;
    c.engine = unit != nullptr;
    c.stopped = unit && CU_IsStopped(unit);
    c.idle = frame.EngineIdle();
    c.busy = unit && (CU_IsActive(unit) || (frame.m_run.ModulesHeld() && !c.stopped));
    c.loaded = frame.Current() && frame.IsLoaded(*frame.Current());
    c.doubleStar = frame.Current() && frame.Current()->name.rfind("**", 0) == 0;
    // The target is the editing child or the debug pane that last had the focus. The text area counts as
    // read-only while its sheet's macro runs, the Stack and Loaded panes always.
    const HWND target = frame.CommandTarget();
    c.targetEditor = target == frame.m_editor;
    c.ro = (GetWindowLongA(target, GWL_STYLE) & ES_READONLY) != 0 || (c.targetEditor && c.loaded) ||
           target == frame.Pane(2) || target == frame.Pane(3);
    c.RO = frame.m_readOnly;
    DWORD start = 0, end = 0;
    SendMessageA(target, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
    c.sel = start != end;
    c.text = GetWindowTextLengthA(target) > 0;
    c.focusEditor = c.targetEditor;
    c.focusEvaluating = target == frame.Pane(0) || target == frame.Pane(1);
    c.canUndo = SendMessageA(target, EM_CANUNDO, 0, 0) != 0;
    const Sheet* sheet = frame.Current();
    c.canRedo = c.targetEditor && sheet && sheet->document && sheet->document->CanRedo();
    c.clipboard = IsClipboardFormatAvailable(CF_TEXT) != 0;
    c.module = sheet && sheet->kind != SheetKind::Macro;
    return c;
}

// When Run, Step, Step To, Pause and End are offered: by the kind of sheet and the frame's mode.
struct RunConditions {
    bool run, step, stepTo, pause, end;
};

RunConditions ReadRunConditions(const EditorFrame& frame, const FrameConditions& c)
{
    const bool loadedStopped = c.loaded && c.stopped;
    if (frame.m_run.loadedForDebugging) {
        const bool run = (c.engine && !c.loaded) || c.stopped;
        return {run, run, loadedStopped, frame.m_run.ModulesHeld() && !c.stopped, c.loaded};
    }
    if (c.doubleStar)
        return {(c.engine && !c.loaded) || c.stopped, loadedStopped, loadedStopped, c.engine && c.busy, c.loaded};
    const bool run = (c.engine && c.idle) || loadedStopped;
    return {run, run, frame.ProjectMode() ? loadedStopped : run, c.engine && (c.busy || !frame.m_designDisplay), !c.idle};
}

bool Enabled(const EditorFrame& frame, const FrameConditions& c, int command, bool wasEnabled)
{
    bool sheets = frame.Has(FO_SHEETS) || frame.ProjectMode();
    RunConditions r = ReadRunConditions(frame, c);
    bool run = r.run;
    switch (command) {
    case CMD_NEW: return (!c.ro || sheets) && !c.RO;
    case CMD_OPEN: return !c.ro || sheets;
    case CMD_SAVE: return !c.RO && frame.Current() && frame.Modified(*frame.Current());
    case CMD_SAVE_AS: case CMD_SAVE_ALL: return !c.RO;
    case CMD_UNDO: return !c.ro && c.canUndo;
    case CMD_REDO: return !c.ro && c.canRedo;
    case CMD_CUT: case CMD_DELETE: return !c.ro && c.sel;
    case CMD_COPY: return true;
    case CMD_PASTE: return !c.ro && c.clipboard;
    case CMD_CUT_LINE: return !c.ro;
    case CMD_SELECT_ALL: return !c.ro && c.text;
    case CMD_INDENT: case CMD_OUTDENT: return !c.ro && c.sel && c.focusEditor && c.text;
    case CMD_FIND: case CMD_AGAIN: return c.focusEditor && c.text;
    case CMD_REPLACE: return !c.ro && c.focusEditor && c.text;
    case CMD_COMPLETE_WORD: case CMD_REFERENCES: return !c.loaded;
    case CMD_USER_DIALOG: return !c.ro && c.targetEditor;
    case CMD_PROPERTIES: return !c.loaded && c.module;
    case CMD_IMMEDIATE: return c.loaded || frame.Has(FO_ALWAYS_SPLIT);
    case CMD_WATCH: case CMD_STACK: return c.loaded;
    case CMD_LOADED: return c.loaded && !frame.ProjectMode() && (frame.Has(FO_FILES) || frame.Has(FO_SHEETS));
    case CMD_VIEW_EDIT_BUTTONS: return frame.Has(FO_TOOLBAR);
    case CMD_RUN: return run;
    case CMD_PAUSE: return r.pause;
    case CMD_END: return r.end;
    case CMD_STEP_INTO: case CMD_STEP_OVER: return r.step;
    case CMD_STEP_OUT: return run && c.stopped;
    case CMD_STEP_TO: return c.focusEditor && c.text && r.stepTo;
    case CMD_QUICK_WATCH: return c.focusEditor && c.text && ((c.engine && !c.busy) || !c.loaded);
    case CMD_ADD_WATCH: return c.focusEditor && c.text && c.stopped;
    case CMD_BROWSE: return (c.focusEditor || c.focusEvaluating) && ((c.engine && !c.busy) || !c.loaded);
    case CMD_SET_NEXT: return c.focusEditor && c.text && run && c.stopped;
    case CMD_SHOW_NEXT: return c.stopped;
    case CMD_TOPIC_SEARCH: return c.focusEditor || c.focusEvaluating;
    default: return wasEnabled;
    }
}

void UpdateToolbar(EditorFrame& frame)
{
    if (!frame.m_toolbar)
        return;
    static constexpr short kButtons[] = {299, 304, 306, 308, 309, 314, 315, 316, 312, 313, 364,
                                         352, 353, 354, 355, 360, 362, 366, 356, 357, 358, 328, 330};
    for (short command : kButtons) {
        int follows = command == CMD_TOOLBAR_NEW ? CMD_NEW : command;
        SendMessageA(frame.m_toolbar, TBM_ENABLE, static_cast<WPARAM>(command), frame.IsEnabled(follows));
    }
    SendMessageA(frame.m_toolbar, TBM_RELEASE, CMD_DESIGN_MODE, frame.m_designDisplay ? 0 : 1);
}

void CutLine(EditorFrame& frame)
{
    Sheet* sheet = frame.Current();
    if (!sheet || !sheet->document)
        return;
    int line = sheet->document->Caret().line;
    SendMessageA(frame.m_editor, TAM_SELECTLINES, static_cast<WPARAM>(line), line);
    SendMessageA(frame.m_editor, WM_CUT, 0, 0);
}

void SetTabs(EditorFrame& frame, bool asSpaces, int width)
{
    frame.m_tabsAsSpaces = asSpaces;
    frame.m_tabWidth = width;
    for (auto& sheet : frame.m_sheets)
        if (sheet->document)
            sheet->document->SetTabs(asSpaces, width);
    InvalidateRect(frame.m_editor, nullptr, TRUE);
}

bool RunEditCommand(EditorFrame& frame, int command)
{
    HWND editor = frame.m_editor;
    // The clipboard commands, Undo and Select All work on the debug pane that last had the focus.
    HWND target = frame.CommandTarget();
    switch (command) {
    case CMD_UNDO: SendMessageA(target, WM_UNDO, 0, 0); return true;
    case CMD_REDO: SendMessageA(editor, TAM_REDO, 0, 0); return true;
    case CMD_CUT: SendMessageA(target, WM_CUT, 0, 0); return true;
    case CMD_COPY: SendMessageA(target, WM_COPY, 0, 0); return true;
    case CMD_PASTE: SendMessageA(target, WM_PASTE, 0, 0); return true;
    case CMD_DELETE: SendMessageA(target, WM_CLEAR, 0, 0); return true;
    case CMD_CUT_LINE: CutLine(frame); return true;
    case CMD_SELECT_ALL: SendMessageA(target, EM_SETSEL, 0, -1); return true;
    case CMD_INDENT:
    case CMD_OUTDENT:
        if (frame.Current() && frame.Current()->document)
            IndentTextArea(editor, command == CMD_OUTDENT);
        return true;
    case CMD_TAB_AS_SPACES: SetTabs(frame, !frame.m_tabsAsSpaces, frame.m_tabWidth); return true;
    case CMD_FOCUS_TEXT: SetFocus(editor); return true;
    case CMD_COMPLETE_WORD: SendMessageA(editor, TAM_SHOWPOPUP, 0, 0); return true;
    case CMD_PARAMETER_INFO: SendMessageA(editor, TAM_SHOWPOPUP, 1, 0); return true;
    default:
        break;
    }
    if (command >= CMD_TAB_WIDTH_1 && command <= CMD_TAB_WIDTH_8) {
        SetTabs(frame, frame.m_tabsAsSpaces, command - CMD_TAB_WIDTH_1 + 1);
        return true;
    }
    return false;
}

bool RunFrameCommand(EditorFrame& frame, int command)
{
    Sheet* sheet = frame.Current();
    switch (command) {
    case CMD_NEW: return frame.NewSheet(SheetKind::Macro);
    case CMD_NEW_CODE: return frame.NewSheet(SheetKind::Code);
    case CMD_NEW_OBJECT: return frame.NewSheet(SheetKind::Object);
    case CMD_NEW_CLASS: return frame.NewSheet(SheetKind::Class);
    case CMD_OPEN: {
        std::string name;
        return frame.ChooseFileName(false, name) && frame.OpenFile(name);
    }
    case CMD_CLOSE: return frame.CloseSheet(frame.m_current, PromptKind::CanCancel);
    case CMD_SAVE: return sheet && frame.SaveSheet(*sheet);
    case CMD_SAVE_AS: return sheet && frame.SaveSheetAs(*sheet, {});
    case CMD_SAVE_ALL: return frame.SaveAll();
    case CMD_EXIT: PostMessageA(frame.m_window, WM_CLOSE, 0, 0); return true;
    case CMD_VIEW_TOOLBAR: frame.ChangeOptions(FO_TOOLBAR, frame.Options() ^ FO_TOOLBAR); return true;
    case CMD_VIEW_STATUS_BAR: frame.ChangeOptions(FO_STATUS_BAR, frame.Options() ^ FO_STATUS_BAR); return true;
    case CMD_VIEW_EDIT_BUTTONS: frame.ChangeOptions(FO_EDIT_BUTTONS, frame.Options() ^ FO_EDIT_BUTTONS); return true;
    case CMD_ALWAYS_SPLIT: frame.ChangeOptions(FO_ALWAYS_SPLIT, frame.Options() ^ FO_ALWAYS_SPLIT); return true;
    case CMD_LISTS_NEITHER: case CMD_LISTS_PROC: case CMD_LISTS_BOTH:
        frame.m_listMode = command - CMD_LISTS_NEITHER;
        frame.Layout();
        frame.FillLists();
        return true;
    case CMD_DESIGN_MODE:
        frame.m_designDisplay = !frame.m_designDisplay;
        frame.UpdateCaption();
        if (frame.m_callbacks.designMode)
            frame.m_callbacks.designMode(frame.m_window, frame.m_designDisplay);
        return true;
    case CMD_CLOSE_ALL: return frame.CloseAll(PromptKind::CanCancel);
    case CMD_RUN: case CMD_PAUSE: case CMD_END: case CMD_STEP_INTO: case CMD_STEP_OVER: case CMD_STEP_OUT:
    case CMD_STEP_TO: case CMD_TOGGLE_BREAK: case CMD_CLEAR_BREAKS: case CMD_SET_NEXT: case CMD_SHOW_NEXT:
        frame.RunCommand(command);
        return true;
    case CMD_IMMEDIATE: case CMD_WATCH: case CMD_STACK: case CMD_LOADED:
        frame.ShowPane(command - CMD_IMMEDIATE);
        return true;
    case CMD_QUICK_WATCH: case CMD_ADD_WATCH: frame.QuickWatch(command == CMD_ADD_WATCH); return true;
    case CMD_REFERENCES: return ShowReferencesDialog(frame);
    case CMD_BROWSE: ShowObjectBrowser(frame); return true;
    case CMD_USER_DIALOG: ShowUserDialogEditor(frame); return true;
    case CMD_PROPERTIES:
        if (sheet && sheet->kind != SheetKind::Macro)
            ShowModuleProperties(frame, *sheet);
        return true;
    case CMD_PRINT: return PrintSheet(frame);
    case CMD_PRINT_SETUP: PrintSetup(frame); return true;
    case CMD_FIND: OpenFindDialog(frame, false); return true;
    case CMD_REPLACE: OpenFindDialog(frame, true); return true;
    case CMD_AGAIN: RepeatFind(frame); return true;
    case CMD_FONT: return frame.ChooseDisplayFont();
    case CMD_OPEN_USES: OpenUses(frame); return true;
    case CMD_EDITOR_HELP: ShowEditorHelp(frame); return true;
    case CMD_LANGUAGE_HELP: ShowLanguageHelp(frame); return true;
    case CMD_TOPIC_SEARCH: SearchHelpTopic(frame); return true;
    case CMD_PROJECT: case CMD_PROJECT_PROPERTIES: case CMD_MORE:
        frame.ShowText("Not implemented.", MB_OK | MB_ICONINFORMATION);
        return true;
    case CMD_ABOUT:
        if (!frame.HostAboutBox())
            OA_BrannocAboutBox(frame.m_window, frame.m_placeholders.title.c_str(), nullptr);
        return true;
    default:
        break;
    }
    if (command >= CMD_SHEET_1 && command <= CMD_SHEET_9)
        return frame.ShowSheet(command - CMD_SHEET_1);
    return RunEditCommand(frame, command);
}

} // namespace

bool EditorFrame::IsChecked(int command) const
{
    if (command >= CMD_TAB_WIDTH_1 && command <= CMD_TAB_WIDTH_8)
        return m_tabWidth == command - CMD_TAB_WIDTH_1 + 1;
    if (command >= CMD_LISTS_NEITHER && command <= CMD_LISTS_BOTH)
        return m_listMode == command - CMD_LISTS_NEITHER;
    if (command >= CMD_IMMEDIATE && command <= CMD_LOADED)
        return PanesShown() && m_topPane == command - CMD_IMMEDIATE;
    if (command >= CMD_SHEET_1 && command <= CMD_SHEET_9)
        return m_current == command - CMD_SHEET_1;
    switch (command) {
    case CMD_TAB_AS_SPACES: return m_tabsAsSpaces;
    case CMD_VIEW_TOOLBAR: return Has(FO_TOOLBAR);
    case CMD_VIEW_STATUS_BAR: return Has(FO_STATUS_BAR);
    case CMD_VIEW_EDIT_BUTTONS: return Has(FO_EDIT_BUTTONS);
    case CMD_ALWAYS_SPLIT: return Has(FO_ALWAYS_SPLIT);
    case CMD_DESIGN_MODE: return m_designDisplay;
    default: return false;
    }
}

void EditorFrame::UpdateCommandStates()
{
    if (!m_editor)
        return;
    FrameConditions conditions = ReadConditions(*this);
    for (int command = kFirstCommand; command < kCommandEnd; ++command)
        m_enabled[command - 300] = Enabled(*this, conditions, command, m_enabled[command - 300]);
    UpdateToolbar(*this);
}

int EditorFrame::Dispatch(int command, bool fromUser)
{
    if (command == -CMD_DESIGN_MODE)
        command = CMD_DESIGN_MODE;
    if (command == CMD_TOOLBAR_NEW) {
        // In list mode 2 the New button drops down the menu of module kinds (offered to the host first).
        if (m_listMode == 2)
            return HostCommand(HOST_NEW_MENU, true) ? 1 : 0;
        command = CMD_NEW;
    }
    int end = ProjectMode() ? kCommandEnd : kProjectCommandsFrom;
    if (command != CMD_SAVE && (command < kFirstCommand || command >= end || !IsEnabled(command)))
        return 0;
    int number = HostNumberOfCommand(command);
    if (number >= 0 && fromUser && command != CMD_DELETE && m_callbacks.commandFilter &&
        m_callbacks.commandFilter(m_window, number))
        return 1;
    RunFrameCommand(*this, command);
    UpdateCommandStates();
    UpdateCaption();
    return 1;
}

LRESULT EditorFrame::HostCommand(int number, bool carryOut)
{
    if (number >= HOST_TO_TOP && number <= HOST_MOUSE_MENU) {
        if (!carryOut)
            return 1;
        // The recorded error offers itself to the host's filter.
        if (number == HOST_SHOW_ERROR) {
            ShowRecordedError();
            return 1;
        }
        if (m_callbacks.commandFilter && m_callbacks.commandFilter(m_window, number))
            return 1;
        switch (number) {
        case HOST_TO_TOP:
            SetForegroundWindow(IsTopLevel() ? m_window : GetAncestor(m_window, GA_ROOT));
            NotifyHost(17);
            break;
        case HOST_CONTEXT_MENU: ShowTextContextMenu(true); break;
        case HOST_NEW_MENU: ShowNewMenu(); break;
        case HOST_MOUSE_MENU: ShowTextContextMenu(false); break;
        default: break;
        }
        return 1;
    }
    int limit = ProjectMode() ? kHostNumberCount : kHostNumberCount - 3;
    if (number < 0 || number >= limit)
        return 0;
    int command = CommandOfHostNumber(number);
    if (!carryOut)
        return IsEnabled(command) ? 1 : 0;
    return Dispatch(command, false);
}

int EditorFrame::TranslateKey(int key) const
{
    KeyContext context;
    context.keyboardMode = m_keyboardMode;
    context.fileCommands = Has(FO_FILES);
    context.macroLoaded = Current() && IsLoaded(*Current());
    return TranslateFrameKey(key, context);
}

std::string EditorFrame::CommandHelp(int command, bool toolTip) const
{
    std::string text = Text(static_cast<unsigned>(command));
    size_t split = text.find('\n');
    if (split == std::string::npos)
        return toolTip ? std::string() : text;
    return toolTip ? text.substr(split + 1, 80) : text.substr(0, split);
}

} // namespace brannoc::ide
