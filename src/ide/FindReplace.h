#pragma once
// Find, Replace and Again of the editor frame: the common find and replace dialogs (modeless), the
// search in the shown code, Replace All, and repeating the last search.
#include <windows.h>
#include <commdlg.h>

#include <string>

namespace brannoc::ide {

class EditorFrame;

enum class FindResult { Found = 0, Replaced = 1, NotFound = 2 };
// What Again repeats: the last search, or the last Replace or Replace All.
enum class FindAction { Search, Replace, ReplaceAll };

struct FindState {
    HWND dialog = nullptr;
    bool replace = false;       // which dialog is open
    char findText[80] = {};
    char replaceText[80] = {};
    bool matchCase = false;
    bool down = true;
    FindResult last = FindResult::NotFound;
    FindAction lastAction = FindAction::Search;
    FINDREPLACEA request{};
};

// Opens the Find (or Replace) dialog, or brings the open one to the front. The find text starts as
// the selection or the word at the caret unless `keepText` (the dialog opening again after no match).
void OpenFindDialog(EditorFrame& frame, bool replace, bool keepText = false);
// The frame's handler of the registered "commdlg_FindReplace" message.
void OnFindNotification(EditorFrame& frame, const FINDREPLACEA& request);
// Again: repeats the last search, Replace or Replace All without a dialog (in read-only code always as a
// search).
void RepeatFind(EditorFrame& frame);

// Searches `text` for `what` from `from` (down) or backwards from `from` (up); answers the offset or npos.
size_t FindInText(const std::string& text, const std::string& what, size_t from, bool down, bool matchCase);
// Replaces every occurrence from `from` to the end in one pass; answers how many were replaced.
int ReplaceAllInText(std::string& text, const std::string& what, const std::string& with, size_t from, bool matchCase);

} // namespace brannoc::ide
