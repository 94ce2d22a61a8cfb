#pragma once
// The UserDialog editor (frame command 328): a modal designer for the Begin Dialog UserDialog block
// around the caret of the current sheet, writing the block back into the sheet on Save and Exit.
#include <windows.h>

namespace brannoc::ide {

class EditorFrame;

// Child ids and commands of the editor window (dialog resource 110).
enum DialogEditorId : int {
    ID_DESIGN_STATUS = 107, ID_DESIGN_GRAB = 150, ID_DESIGN_SELECT = 151, ID_DESIGN_COMMANDS = 170,
    ID_DESIGN_TOOLBOX = 171, ID_FIRST_DESIGN_ITEM = 1000,
};
enum DialogEditorCommand : int {
    DE_SELECT = 401, DE_FIRST_TOOL = 402, DE_LAST_TOOL = 414, DE_PROPERTIES = 450, DE_TEST = 451,
    DE_DELETE = 452, DE_CUT = 453, DE_COPY = 454, DE_PASTE = 455, DE_MOVE_IN_FRONT = 456,
    DE_MOVE_BEHIND = 457, DE_SELECT_BEHIND = 458, DE_SELECT_IN_FRONT = 459, DE_GRID = 460,
    DE_SAVE_AND_EXIT = 461, DE_HELP = 380,
};

inline constexpr char kGrabClassName[] = "__KZ_MC_Grab";
inline constexpr char kDialogViewClassName[] = "__KZ_MC_DialogView";
inline constexpr char kSelectClassName[] = "__KZ_MC_Select";

// Runs the editor on the current sheet; answers whether it wrote the block back.
bool ShowUserDialogEditor(EditorFrame& frame);

} // namespace brannoc::ide
