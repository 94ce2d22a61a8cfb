#pragma once
// The references dialog of the editor frame (command 329): which registered type libraries the current
// sheet's macro references, written back as its "'#Reference " lines.

#include <string>

namespace brannoc::ide {

class EditorFrame;

// Shows the dialog for the current sheet; true when OK was pressed.
bool ShowReferencesDialog(EditorFrame& frame);
// The dialog for the macro `name`: its sheet's when it is open (the current sheet's for an empty name),
// else the macro's lines as the engine reads them, the new ones going to the host's set-references
// callback.
bool ShowMacroReferencesDialog(EditorFrame& frame, const std::string& name);

} // namespace brannoc::ide
