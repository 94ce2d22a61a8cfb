// The frame's popup menus: the text area's context menus (without and with the stepping commands of a
// stopped macro) and the drop-down menu of the toolbar's New button. Items are commands: the popup is
// marked through WM_INITMENUPOPUP like the menu bar, and a chosen item goes through Dispatch.
#include "ide/EditorFrameState.h"

#include "ide/CommandTable.h"
#include "ide/FrameToolbar.h"
#include "ide/TextArea.h"

namespace brannoc::ide {

namespace {

constexpr int kSeparator = 0;

// The text area's context menu; `stepping` adds Step Over, Step Out and Set Next Statement.
HMENU BuildTextContextMenu(bool stepping)
{
    static constexpr int kPlain[] = {CMD_CUT, CMD_COPY, CMD_PASTE, kSeparator, CMD_TOGGLE_BREAK, CMD_STEP_TO,
                                     kSeparator, CMD_QUICK_WATCH, CMD_ADD_WATCH, CMD_BROWSE};
    static constexpr int kStepping[] = {CMD_CUT, CMD_COPY, CMD_PASTE, kSeparator, CMD_TOGGLE_BREAK, CMD_STEP_TO,
                                        CMD_STEP_OVER, CMD_STEP_OUT, CMD_SET_NEXT, kSeparator, CMD_QUICK_WATCH,
                                        CMD_ADD_WATCH, CMD_BROWSE};
    HMENU menu = CreatePopupMenu();
    const auto append = [menu](const auto& items) {
        for (int command : items) {
            if (command == kSeparator)
                AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
            else
                AppendMenuA(menu, MF_STRING, static_cast<UINT_PTR>(command), CommandMenuText(command));
        }
    };
    if (stepping)
        append(kStepping);
    else
        append(kPlain);
    return menu;
}

// Shows `menu` at the screen point, owned by the frame (which marks it on WM_INITMENUPOPUP), and
// dispatches the chosen command; the menu is destroyed.
void TrackCommandMenu(EditorFrame& frame, HMENU menu, POINT at)
{
    SetForegroundWindow(GetAncestor(frame.m_window, GA_ROOT));
    const int chosen = TrackPopupMenu(menu, TPM_LEFTALIGN | TPM_TOPALIGN | TPM_RIGHTBUTTON | TPM_RETURNCMD, at.x,
                                      at.y, 0, frame.m_window, nullptr);
    DestroyMenu(menu);
    if (chosen > 0)
        frame.Dispatch(chosen, true);
}

} // namespace

void EditorFrame::ShowTextContextMenu(bool atCaret)
{
    POINT at{};
    if (!atCaret) {
        GetCursorPos(&at);
    } else if (RECT caret{}; !PlainEditing() && SendMessageA(m_editor, TAM_CARETRECT, 0, reinterpret_cast<LPARAM>(&caret))) {
        at = POINT{caret.left, caret.bottom};
    } else {
        GetCaretPos(&at);
        ClientToScreen(m_editor, &at);
    }
    const Sheet* sheet = Current();
    const bool stepping = sheet && IsLoaded(*sheet) && EngineStopped();
    UpdateCommandStates();
    TrackCommandMenu(*this, BuildTextContextMenu(stepping), at);
}

void EditorFrame::ShowNewMenu()
{
    HMENU menu = CreatePopupMenu();
    if (!m_run.loadedForDebugging)
        AppendMenuA(menu, MF_STRING, CMD_NEW, Text(IDS_NEW_MACRO_ITEM).c_str());
    for (int command : {CMD_NEW_CODE, CMD_NEW_OBJECT, CMD_NEW_CLASS})
        AppendMenuA(menu, MF_STRING, static_cast<UINT_PTR>(command), CommandMenuText(command));
    RECT button{};
    if (m_toolbar && SendMessageA(m_toolbar, TBM_BUTTONRECT, CMD_TOOLBAR_NEW, reinterpret_cast<LPARAM>(&button)))
        MapWindowPoints(m_toolbar, nullptr, reinterpret_cast<POINT*>(&button), 2);
    else
        GetCursorPos(reinterpret_cast<POINT*>(&button.left));
    UpdateCommandStates();
    TrackCommandMenu(*this, menu, POINT{button.left, button.bottom});
}

} // namespace brannoc::ide
