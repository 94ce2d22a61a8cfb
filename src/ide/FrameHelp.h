#pragma once
// The help commands of the editor frame: the editor's own help file, the engine's help file, and
// help on the word at the caret (offered to the host first). A help file not ending in ".hlp" is
// shown with HTML Help.
#include <windows.h>

#include <string>

namespace brannoc::ide {

class EditorFrame;

// The editor's help file: the program file's name with its extension replaced by "HLP".
std::string EditorHelpFileOf(const std::string& programPath);
// The word at the caret of the frame's text area, or a single blank when there is none.
std::string HelpWordAtCaret(const EditorFrame& frame);

void ShowEditorHelp(EditorFrame& frame);
void ShowLanguageHelp(EditorFrame& frame);
void SearchHelpTopic(EditorFrame& frame);

// While a frame is active its thread's F1 key (without Alt or Ctrl) asks for Topic Search, with Shift
// for Language Help, wherever the focus is; `active` false ends that for the frame.
void WatchHelpKey(HWND frame, bool active);

// Shows a help file with a WinHelp command (HELP_CONTEXT, HELP_INDEX, HELP_PARTIALKEY, HELP_QUIT).
bool ShowHelpFile(HWND owner, const std::string& file, UINT command, ULONG_PTR data);

} // namespace brannoc::ide
