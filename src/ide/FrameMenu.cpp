// The frame's menus: menu 101 (the full bar of a top-level frame) and 97 (the same for a host, without
// the Ctrl shortcuts of the file commands and without Object/Proc), trimmed by the frame's options.
#include "ide/EditorFrameState.h"

#include "ide/CommandTable.h"
#include "ide/TextArea.h"

#include <objbase.h>

namespace brannoc::ide {

namespace {

// When an item appears.
enum class Show {
    Always, Sheets, ModuleMenu, EditProperties, ProjectOnly, DesignOffer, Completion, ParameterTip, AnyTip,
    FullMenu, Exit
};

struct MenuRow {
    int depth;          // 0: top-level popup, 1: item or popup inside it, 2: inside that
    int command;        // 0: separator or popup
    const char* text;   // popup text; items take the command's menu text
    const char* keys;   // shortcut shown in menu 101
    Show show = Show::Always;
};

constexpr MenuRow kMenu[] = {
    {0, 0, "&File", nullptr},
    {1, CMD_NEW, nullptr, "Ctrl+N"},
    {1, 0, "New &Module", nullptr, Show::ModuleMenu},
    {2, CMD_NEW_CODE, nullptr, nullptr, Show::ModuleMenu},
    {2, CMD_NEW_OBJECT, nullptr, nullptr, Show::ModuleMenu},
    {2, CMD_NEW_CLASS, nullptr, nullptr, Show::ModuleMenu},
    {1, CMD_OPEN, nullptr, "Ctrl+O"},
    {1, CMD_CLOSE, nullptr, nullptr, Show::Sheets},
    {1, 0, nullptr, nullptr, Show::Sheets},
    {1, CMD_SAVE, nullptr, "Ctrl+S"},
    {1, CMD_SAVE_AS, nullptr, nullptr},
    {1, CMD_SAVE_ALL, nullptr, nullptr, Show::Sheets},
    {1, 0, nullptr, nullptr},
    {1, CMD_PRINT, nullptr, "Ctrl+P"},
    {1, CMD_PRINT_SETUP, nullptr, nullptr},
    {1, 0, nullptr, nullptr, Show::Exit},
    {1, CMD_EXIT, nullptr, nullptr, Show::Exit},
    {0, 0, "&Edit", nullptr},
    {1, CMD_UNDO, nullptr, "Ctrl+Z"},
    {1, CMD_REDO, nullptr, "Ctrl+Y"},
    {1, 0, nullptr, nullptr},
    {1, CMD_CUT, nullptr, "Ctrl+X"},
    {1, CMD_COPY, nullptr, "Ctrl+C"},
    {1, CMD_PASTE, nullptr, "Ctrl+V"},
    {1, CMD_DELETE, nullptr, "Del"},
    {1, CMD_SELECT_ALL, nullptr, nullptr},
    {1, 0, nullptr, nullptr},
    {1, CMD_INDENT, nullptr, "Tab"},
    {1, CMD_OUTDENT, nullptr, "Shift+Tab"},
    {1, CMD_TAB_AS_SPACES, nullptr, nullptr},
    {1, 0, nullptr, nullptr},
    {1, CMD_FIND, nullptr, "Ctrl+F"},
    {1, CMD_REPLACE, nullptr, "Ctrl+R"},
    {1, CMD_AGAIN, nullptr, "F3"},
    {1, 0, nullptr, nullptr, Show::AnyTip},
    {1, CMD_COMPLETE_WORD, nullptr, "Ctrl+Space", Show::Completion},
    {1, CMD_PARAMETER_INFO, nullptr, "Ctrl+I", Show::ParameterTip},
    {1, 0, nullptr, nullptr},
    {1, CMD_USER_DIALOG, nullptr, nullptr},
    {1, CMD_REFERENCES, nullptr, nullptr},
    {1, CMD_PROPERTIES, nullptr, nullptr, Show::EditProperties},
    {0, 0, "&View", nullptr},
    {1, CMD_FOCUS_TEXT, nullptr, "Ctrl+A"},
    {1, CMD_IMMEDIATE, nullptr, "Ctrl+E"},
    {1, CMD_WATCH, nullptr, "Ctrl+W"},
    {1, CMD_STACK, nullptr, "Ctrl+T"},
    {1, CMD_LOADED, nullptr, "Ctrl+L"},
    {1, 0, nullptr, nullptr},
    {1, CMD_VIEW_TOOLBAR, nullptr, nullptr},
    {1, CMD_VIEW_STATUS_BAR, nullptr, nullptr},
    {1, CMD_VIEW_EDIT_BUTTONS, nullptr, nullptr},
    {1, CMD_ALWAYS_SPLIT, nullptr, nullptr},
    {1, 0, nullptr, nullptr},
    {1, CMD_FONT, nullptr, nullptr},
    {1, 0, "Tab &Width", nullptr},
    {2, 341, nullptr, nullptr}, {2, 342, nullptr, nullptr}, {2, 343, nullptr, nullptr}, {2, 344, nullptr, nullptr},
    {2, 345, nullptr, nullptr}, {2, 346, nullptr, nullptr}, {2, 347, nullptr, nullptr}, {2, 348, nullptr, nullptr},
    {1, 0, "Object/&Proc", nullptr, Show::FullMenu},
    {2, CMD_LISTS_NEITHER, nullptr, nullptr, Show::FullMenu},
    {2, CMD_LISTS_PROC, nullptr, nullptr, Show::FullMenu},
    {2, CMD_LISTS_BOTH, nullptr, nullptr, Show::FullMenu},
    {1, CMD_PROJECT, nullptr, nullptr, Show::ProjectOnly},
    {1, CMD_PROJECT_PROPERTIES, nullptr, nullptr, Show::ProjectOnly},
    {0, 0, "&Macro", nullptr},
    {1, CMD_RUN, nullptr, "F5"},
    {1, CMD_PAUSE, nullptr, "Esc"},
    {1, CMD_END, nullptr, nullptr},
    {1, 0, nullptr, nullptr, Show::DesignOffer},
    {1, CMD_DESIGN_MODE, nullptr, nullptr, Show::DesignOffer},
    {1, 0, nullptr, nullptr},
    {1, CMD_STEP_INTO, nullptr, "F8"},
    {1, CMD_STEP_OVER, nullptr, "Shift+F8"},
    {1, CMD_STEP_OUT, nullptr, "Ctrl+F8"},
    {1, CMD_STEP_TO, nullptr, "F7"},
    {1, 0, nullptr, nullptr},
    {1, CMD_TOGGLE_BREAK, nullptr, "F9"},
    {1, CMD_CLEAR_BREAKS, nullptr, "Ctrl+Shift+F9"},
    {1, CMD_QUICK_WATCH, nullptr, "Shift+F9"},
    {1, CMD_ADD_WATCH, nullptr, "Ctrl+F9"},
    {1, CMD_BROWSE, nullptr, nullptr},
    {1, 0, nullptr, nullptr},
    {1, CMD_SET_NEXT, nullptr, nullptr},
    {1, CMD_SHOW_NEXT, nullptr, nullptr},
    {1, CMD_OPEN_USES, nullptr, nullptr},
    {0, 0, "&Sheet", nullptr, Show::Sheets},
    {1, CMD_CLOSE_ALL, nullptr, nullptr, Show::Sheets},
    {0, 0, "&Help", nullptr},
    {1, CMD_EDITOR_HELP, nullptr, nullptr},
    {1, CMD_LANGUAGE_HELP, nullptr, "Shift+F1"},
    {1, CMD_TOPIC_SEARCH, nullptr, "F1"},
    {1, 0, nullptr, nullptr},
    {1, CMD_ABOUT, nullptr, nullptr},
};

// Whether the text area created the pop-up component (0 completion list, 1 parameter tip); an EDIT
// control in plain editing answers 0.
bool EditorHasPopup(HWND editor, WPARAM which)
{
    return editor && SendMessageA(editor, TAM_HASPOPUP, which, 0) != 0;
}

struct MenuContext {
    bool sheets, project, listsBoth, files, designOffer, completion, parameterTip, full, exit;
};

bool Shown(Show show, const MenuContext& c)
{
    switch (show) {
    case Show::Always: return true;
    case Show::Sheets: return c.sheets || c.project;
    case Show::ModuleMenu: return c.listsBoth;
    case Show::EditProperties: return c.listsBoth && !c.project;
    case Show::ProjectOnly: return c.project;
    case Show::DesignOffer: return c.designOffer;
    case Show::Completion: return c.completion;
    case Show::ParameterTip: return c.parameterTip;
    case Show::AnyTip: return c.completion || c.parameterTip;
    case Show::FullMenu: return c.full;
    case Show::Exit: return c.exit;
    }
    return true;
}

// Shortcuts that menu 97 leaves out: those of the file commands.
bool ShowsKeys(int command, bool full)
{
    return full || (command != CMD_NEW && command != CMD_OPEN && command != CMD_SAVE && command != CMD_PRINT);
}

} // namespace

HMENU EditorFrame::BuildMenu(bool full) const
{
    MenuContext context{};
    context.sheets = Has(FO_SHEETS);
    context.project = ProjectMode();
    context.listsBoth = m_listMode == 2;
    context.files = Has(FO_FILES);
    context.designOffer = m_designOffer;
    context.completion = EditorHasPopup(m_editor, 0);
    context.parameterTip = EditorHasPopup(m_editor, 1);
    context.full = full;
    // A host's menu loses the separator and Exit unless the frame is top-level and quits with it.
    context.exit = full || (IsTopLevel() && Has(FO_POST_QUIT));
    HMENU bar = CreateMenu();
    HMENU popups[3] = {bar, nullptr, nullptr};
    bool skipping[3] = {false, false, false};
    for (const MenuRow& row : kMenu) {
        if (row.depth > 0 && skipping[row.depth - 1])
            continue;
        bool shown = Shown(row.show, context) && !(row.depth == 0 && !context.files && std::string_view(row.text) == "&File");
        skipping[row.depth] = !shown;
        if (!shown)
            continue;
        HMENU parent = popups[row.depth];
        if (row.command == 0 && row.text) {
            HMENU popup = CreatePopupMenu();
            AppendMenuA(parent, MF_POPUP | MF_STRING, reinterpret_cast<UINT_PTR>(popup), row.text);
            popups[row.depth + 1] = popup;
        } else if (row.command == 0) {
            AppendMenuA(parent, MF_SEPARATOR, 0, nullptr);
        } else {
            std::string text = CommandMenuText(row.command);
            if (row.command == CMD_NEW)
                text = LoadEditorString(IDS_NEW_MACRO_ITEM, m_placeholders);
            if (row.keys && ShowsKeys(row.command, full))
                text += std::string("\t") + row.keys;
            AppendMenuA(parent, MF_STRING, static_cast<UINT_PTR>(row.command), text.c_str());
        }
    }
    return bar;
}

} // namespace brannoc::ide
