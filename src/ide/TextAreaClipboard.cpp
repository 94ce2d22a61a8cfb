#include "ide/TextAreaState.h"

#include <cstring>

namespace brannoc::ide {

namespace {

// Opens the clipboard for the window; beeps when it is not available.
class ClipboardSession final {
public:
    explicit ClipboardSession(HWND window) : m_open(OpenClipboard(window) != FALSE)
    {
        if (!m_open)
            MessageBeep(MB_ICONHAND);
    }
    ~ClipboardSession()
    {
        if (m_open)
            CloseClipboard();
    }
    ClipboardSession(const ClipboardSession&) = delete;
    ClipboardSession& operator=(const ClipboardSession&) = delete;
    bool IsOpen() const { return m_open; }

private:
    bool m_open;
};

bool PutText(HWND window, const std::string& text)
{
    ClipboardSession clipboard(window);
    if (!clipboard.IsOpen())
        return false;
    HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, text.size() + 1);
    if (!memory) {
        MessageBeep(MB_ICONHAND);
        return false;
    }
    std::memcpy(GlobalLock(memory), text.c_str(), text.size() + 1);
    GlobalUnlock(memory);
    EmptyClipboard();
    if (!SetClipboardData(CF_TEXT, memory)) {
        GlobalFree(memory);
        MessageBeep(MB_ICONHAND);
        return false;
    }
    return true;
}

} // namespace

// Copy and Cut take the selection, or the whole caret line (with its line end) without one.
void CopySelection(TextAreaState& state, bool cut)
{
    TextDocument& document = *state.document;
    if (cut && !state.CanEdit())
        return;
    document.CommitEditingLine();
    if (!document.HasSelection()) {
        int line = document.Caret().line;
        TextPosition end = line + 1 < document.LineCount()
                               ? TextPosition{line + 1, 0}
                               : TextPosition{line, document.Buffer().LineLength(line)};
        std::string text(document.Line(line));
        if (line + 1 < document.LineCount())
            text += "\r\n";
        if (!PutText(state.window, text) || !cut)
            return;
        document.Select(TextPosition{line, 0}, end);
    } else if (!PutText(state.window, document.SelectedText()) || !cut) {
        return;
    }
    document.ReplaceSelection("", ChangeKind::Forced);
    state.Refresh();
}

void PasteClipboard(TextAreaState& state)
{
    if (!state.CanEdit())
        return;
    std::string text;
    {
        ClipboardSession clipboard(state.window);
        if (!clipboard.IsOpen())
            return;
        HANDLE data = GetClipboardData(CF_TEXT);
        if (!data) {
            MessageBeep(MB_ICONHAND);
            return;
        }
        const char* chars = static_cast<const char*>(GlobalLock(data));
        if (chars)
            text = NormaliseLineEnds(chars);
        GlobalUnlock(data);
    }
    state.document->ReplaceSelection(text, ChangeKind::Forced);
    state.document->CommitEditingLine();
    state.Refresh();
}

void ClearSelection(TextAreaState& state)
{
    if (!state.CanEdit())
        return;
    if (state.document->HasSelection())
        state.document->ReplaceSelection("", ChangeKind::Forced);
    state.Refresh();
}

} // namespace brannoc::ide
