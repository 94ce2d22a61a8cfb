#pragma once
// The state of a running UserDialog editor, shared by its window procedure, its design surface and its
// properties and grid dialogs.
#include "dialogs/DialogUnits.h"
#include "ide/DialogBlockText.h"
#include "ide/DialogEditor.h"

#include <windows.h>

#include <string>
#include <vector>

namespace brannoc::ide {

class EditorFrame;

// A mouse drag on the design surface: moving (HTCAPTION) or sizing by a handle of chain entry `entry`.
struct SurfaceDrag {
    bool active = false;
    int hit = HTNOWHERE;
    int entry = -1;
    POINT start{};
    RECT startRect{};
    int startUnits[4] = {}; // x, y, width and height when the drag began
};

struct DialogEditor {
    EditorFrame* frame = nullptr;
    DialogDesign design;
    DialogBlock block;
    std::vector<std::string> sheetLines;
    HWND dialog = nullptr, commandBar = nullptr, toolbox = nullptr, tooltip = nullptr, statusBar = nullptr;
    HWND grab = nullptr, view = nullptr, selection = nullptr;
    DialogUnits units;
    int mode = DE_SELECT;
    SurfaceDrag drag;
    DWORD lastClickTime = 0;
    int lastClickEntry = -2;
    bool wrote = false;
    BlockText written; // the block as last written into the sheet

    std::string Text(unsigned id) const;
    // A question or message over the editor, captioned with the frame's title.
    int Ask(const std::string& text, UINT style) const;
};

// ---- design surface (DialogDesignSurface.cpp) ----
bool RegisterDesignSurfaceClasses();
// Creates the grab, view and selection windows; false when any cannot be made.
bool CreateDesignSurface(DialogEditor& editor);
// Makes the item windows again from the design (after loading, pasting, reordering or properties).
bool RebuildItemWindows(DialogEditor& editor);
// Sizes the view to the dialog and repaints the surface and the selection.
void RefreshSurface(DialogEditor& editor);
void SelectEntry(DialogEditor& editor, int entry);
// The pixel rectangle of chain entry `entry` on the view (the dialog: the view's client area).
RECT EntryPixels(const DialogEditor& editor, int entry);
inline constexpr int kSurfaceMargin = 12;

// ---- editor window (DialogEditorWindow.cpp) ----
void RunEditorCommand(DialogEditor& editor, int command);
void UpdateEditorButtons(DialogEditor& editor);
void ShowSelectionStatus(DialogEditor& editor);

// ---- properties and grid dialogs ----
// The properties page for chain entry `entry`; answers true after OK (the items may have changed).
bool EditItemProperties(DialogEditor& editor, int entry);
bool EditGridSettings(DialogEditor& editor);

// ---- the sheet (DialogEditorSheet.cpp) ----
// Reads the block around the caret of the frame's current sheet into the editor.
bool LoadDesignFromSheet(DialogEditor& editor);
// Writes the block into the sheet (one replacement), offers the skeleton dialog function.
void WriteDesignToSheet(DialogEditor& editor);
// Puts the text area's caret on the source line of the selected entry.
void PlaceCaretOnSelection(DialogEditor& editor);

} // namespace brannoc::ide
