#pragma once
// The object browser of the editor frame ("ActiveX Automation Members", command 364 and the frame
// message FM_BROWSE): the data types and members of the engine's extensions and the current sheet's
// references; Paste replaces the browsed text with the chosen member and its argument template.
#include <string>

namespace brannoc::ide {

class EditorFrame;

// Browses the text area's selection (or the word at the caret) when `hostExpression` is null, else
// that expression; true when Paste was pressed. With nothing to browse, message 512 is shown instead.
bool ShowObjectBrowser(EditorFrame& frame, const char* hostExpression = nullptr);

} // namespace brannoc::ide
