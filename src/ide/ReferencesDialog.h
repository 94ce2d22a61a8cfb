#pragma once
// The references dialog of the editor frame (command 329): which registered type libraries the current
// sheet's macro references, written back as its "'#Reference " lines.

namespace brannoc::ide {

class EditorFrame;

// Shows the dialog for the current sheet; true when OK was pressed.
bool ShowReferencesDialog(EditorFrame& frame);

} // namespace brannoc::ide
