#include "ide/FindReplace.h"

#include "ide/EditorFrameState.h"
#include "ide/TextArea.h"

#include <algorithm>
#include <cctype>

namespace brannoc::ide {

namespace {

UINT_PTR CALLBACK FindReplaceHook(HWND, UINT, WPARAM, LPARAM) { return 0; }

bool SameCharacter(char a, char b, bool matchCase)
{
    if (matchCase)
        return a == b;
    return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

bool MatchesAt(const std::string& text, const std::string& what, size_t at, bool matchCase)
{
    if (at + what.size() > text.size())
        return false;
    for (size_t i = 0; i < what.size(); ++i)
        if (!SameCharacter(text[at + i], what[i], matchCase))
            return false;
    return true;
}

std::string EditorText(HWND editor)
{
    std::string text(static_cast<size_t>(GetWindowTextLengthA(editor)) + 1, '\0');
    text.resize(static_cast<size_t>(GetWindowTextA(editor, text.data(), static_cast<int>(text.size()))));
    return text;
}

void Selection(HWND editor, DWORD& start, DWORD& end)
{
    SendMessageA(editor, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
}

// The selection, or the word at the caret, cut to 79 characters.
std::string InitialFindText(HWND editor)
{
    std::string text = EditorText(editor);
    DWORD start = 0, end = 0;
    Selection(editor, start, end);
    if (start != end)
        return text.substr(start, std::min<size_t>(end - start, 79));
    size_t from = start, to = start;
    auto word = [&](size_t at) { return at < text.size() && (std::isalnum(static_cast<unsigned char>(text[at])) || text[at] == '_'); };
    while (from > 0 && word(from - 1))
        --from;
    while (word(to))
        ++to;
    return text.substr(from, std::min<size_t>(to - from, 79));
}

// Moves the dialog off the selection: beside its left edge, above it when there is room, else below.
void PlaceDialog(HWND dialog, HWND editor)
{
    RECT caret{};
    if (!SendMessageA(editor, TAM_CARETRECT, 0, reinterpret_cast<LPARAM>(&caret))) {
        POINT point{};
        GetCaretPos(&point);
        ClientToScreen(editor, &point);
        caret = RECT{point.x, point.y, point.x + 1, point.y + 16};
    }
    RECT box;
    GetWindowRect(dialog, &box);
    int width = box.right - box.left, height = box.bottom - box.top;
    int left = caret.left + width > GetSystemMetrics(SM_CXSCREEN) ? GetSystemMetrics(SM_CXSCREEN) - width : caret.left;
    int top = height <= caret.top ? caret.top - height : caret.bottom;
    SetWindowPos(dialog, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// Searches from the selection; selects a match. Answers whether one was found.
bool SearchAndSelect(EditorFrame& frame, bool down)
{
    FindState& state = frame.m_find;
    HWND editor = frame.m_editor;
    std::string text = EditorText(editor);
    DWORD start = 0, end = 0;
    Selection(editor, start, end);
    size_t at = FindInText(text, state.findText, down ? end : start, down, state.matchCase);
    if (at == std::string::npos)
        return false;
    SendMessageA(editor, EM_SETSEL, at, at + std::string(state.findText).size());
    SendMessageA(editor, EM_SCROLLCARET, 0, 0);
    return true;
}

void CloseDialog(FindState& state)
{
    if (state.dialog)
        DestroyWindow(state.dialog);
    state.dialog = nullptr;
}

void ReportNotFound(EditorFrame& frame)
{
    bool replace = frame.m_find.replace;
    bool hadDialog = frame.m_find.dialog != nullptr;
    CloseDialog(frame.m_find);
    frame.m_find.last = FindResult::NotFound;
    frame.ShowMessage(IDS_NOT_FOUND, MB_OK | MB_ICONINFORMATION);
    if (hadDialog)
        OpenFindDialog(frame, replace, true);
}

// Replace: the selection is replaced when it is the find text, then the next match is searched and
// selected. False when there is none.
bool ReplaceAndSearch(EditorFrame& frame)
{
    FindState& state = frame.m_find;
    HWND editor = frame.m_editor;
    std::string text = EditorText(editor);
    DWORD start = 0, end = 0;
    Selection(editor, start, end);
    std::string what = state.findText;
    if (end - start == what.size() && MatchesAt(text, what, start, state.matchCase))
        SendMessageA(editor, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(state.replaceText));
    if (!SearchAndSelect(frame, true))
        return false;
    state.last = FindResult::Replaced;
    return true;
}

// Replace All: every match from the selection to the end, in one pass, under a wait cursor. False when
// there was none.
bool ReplaceAllFromSelection(EditorFrame& frame)
{
    FindState& state = frame.m_find;
    HWND editor = frame.m_editor;
    HCURSOR old = SetCursor(LoadCursor(nullptr, IDC_WAIT));
    std::string text = EditorText(editor);
    DWORD start = 0, end = 0;
    Selection(editor, start, end);
    std::string tail = text.substr(std::min<size_t>(start, text.size()));
    int count = ReplaceAllInText(tail, state.findText, state.replaceText, 0, state.matchCase);
    if (count > 0) {
        SendMessageA(editor, EM_SETSEL, start, static_cast<LPARAM>(text.size()));
        SendMessageA(editor, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(tail.c_str()));
    }
    SetCursor(old);
    state.last = count > 0 ? FindResult::Replaced : FindResult::NotFound;
    return count > 0;
}

// The shown code cannot be changed: the frame is read-only, the text area is, or the sheet's macro runs.
bool CodeIsReadOnly(const EditorFrame& frame)
{
    const Sheet* sheet = frame.Current();
    return frame.m_readOnly || (GetWindowLongA(frame.m_editor, GWL_STYLE) & ES_READONLY) != 0 ||
           (sheet && frame.IsLoaded(*sheet));
}

} // namespace

size_t FindInText(const std::string& text, const std::string& what, size_t from, bool down, bool matchCase)
{
    if (what.empty())
        return std::string::npos;
    if (down) {
        for (size_t at = from; at + what.size() <= text.size(); ++at)
            if (MatchesAt(text, what, at, matchCase))
                return at;
        return std::string::npos;
    }
    for (size_t at = std::min(from, text.size()); at-- > 0;)
        if (MatchesAt(text, what, at, matchCase))
            return at;
    return std::string::npos;
}

int ReplaceAllInText(std::string& text, const std::string& what, const std::string& with, size_t from, bool matchCase)
{
    int count = 0;
    for (size_t at = from; at + what.size() <= text.size(); ++at)
        if (MatchesAt(text, what, at, matchCase))
            ++count;
    if (count == 0)
        return 0;
    std::string result;
    result.reserve(text.size() + count * (with.size() > what.size() ? with.size() - what.size() : 0));
    result.append(text, 0, from);
    for (size_t at = from; at < text.size();) {
        if (MatchesAt(text, what, at, matchCase)) {
            result += with;
            at += what.size();
        } else {
            result += text[at++];
        }
    }
    text = std::move(result);
    return count;
}

void OpenFindDialog(EditorFrame& frame, bool replace, bool keepText)
{
    FindState& state = frame.m_find;
    if (state.dialog && state.replace == replace) {
        SetForegroundWindow(state.dialog);
        return;
    }
    CloseDialog(state);
    std::string initial = keepText ? std::string() : InitialFindText(frame.m_editor);
    if (!initial.empty())
        lstrcpynA(state.findText, initial.c_str(), sizeof(state.findText));
    state.replace = replace;
    state.request = FINDREPLACEA{};
    state.request.lStructSize = sizeof(state.request);
    state.request.hwndOwner = frame.m_window;
    state.request.Flags = FR_ENABLEHOOK | FR_HIDEWHOLEWORD | (state.matchCase ? FR_MATCHCASE : 0) | (state.down ? FR_DOWN : 0);
    state.request.lpstrFindWhat = state.findText;
    state.request.wFindWhatLen = sizeof(state.findText);
    state.request.lpstrReplaceWith = state.replaceText;
    state.request.wReplaceWithLen = sizeof(state.replaceText);
    state.request.lpfnHook = FindReplaceHook;
    state.dialog = replace ? ReplaceTextA(&state.request) : FindTextA(&state.request);
    if (state.dialog) {
        PlaceDialog(state.dialog, frame.m_editor);
        // Wine creates the dialog hidden; Windows shows it already.
        ShowWindow(state.dialog, SW_SHOW);
    }
}

void OnFindNotification(EditorFrame& frame, const FINDREPLACEA& request)
{
    FindState& state = frame.m_find;
    if (request.Flags & FR_DIALOGTERM) {
        state.dialog = nullptr;
        return;
    }
    state.matchCase = (request.Flags & FR_MATCHCASE) != 0;
    if (!state.replace)
        state.down = (request.Flags & FR_DOWN) != 0;
    if (!state.replace || (request.Flags & FR_FINDNEXT)) {
        state.lastAction = FindAction::Search;
        if (!SearchAndSelect(frame, state.replace || state.down)) {
            ReportNotFound(frame);
            return;
        }
        state.last = FindResult::Found;
        if (!state.replace)
            CloseDialog(state);
        else
            PlaceDialog(state.dialog, frame.m_editor);
        return;
    }
    if (request.Flags & FR_REPLACEALL) {
        state.lastAction = FindAction::ReplaceAll;
        if (!ReplaceAllFromSelection(frame))
            ReportNotFound(frame);
        return;
    }
    state.lastAction = FindAction::Replace;
    if (!ReplaceAndSearch(frame)) {
        ReportNotFound(frame);
        return;
    }
    PlaceDialog(state.dialog, frame.m_editor);
}

void RepeatFind(EditorFrame& frame)
{
    FindState& state = frame.m_find;
    if (state.findText[0] == '\0') {
        OpenFindDialog(frame, false);
        return;
    }
    const FindAction action = CodeIsReadOnly(frame) ? FindAction::Search : state.lastAction;
    bool found = false;
    switch (action) {
    case FindAction::Search:
        found = SearchAndSelect(frame, state.replace || state.down);
        if (found)
            state.last = FindResult::Found;
        break;
    case FindAction::Replace: found = ReplaceAndSearch(frame); break;
    case FindAction::ReplaceAll: found = ReplaceAllFromSelection(frame); break;
    }
    if (!found) {
        state.last = FindResult::NotFound;
        frame.ShowMessage(IDS_NOT_FOUND, MB_OK | MB_ICONINFORMATION);
    }
}

} // namespace brannoc::ide
