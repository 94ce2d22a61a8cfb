// The UserDialog editor and the sheet it edits: the block is read from the frame's text area around
// its caret and written back as one replacement (one undo step), through the EDIT messages that both
// the text area and the plain EDIT control answer.
#include "ide/DialogEditorState.h"

#include "ide/DialogLineSyntax.h"
#include "ide/DialogSkeleton.h"
#include "ide/EditorFrameState.h"

namespace brannoc::ide {

namespace {

enum DialogEditorStrings : unsigned { IDS_CREATE_SKELETON = 521 };

std::string EditorText(HWND editor)
{
    const int length = GetWindowTextLengthA(editor);
    std::string text(static_cast<size_t>(length) + 1, '\0');
    text.resize(static_cast<size_t>(GetWindowTextA(editor, text.data(), length + 1)));
    return text;
}

// The character index where a line starts; the text's end for a line past the last.
LRESULT LineStart(HWND editor, int line)
{
    const LRESULT index = SendMessageA(editor, EM_LINEINDEX, static_cast<WPARAM>(line), 0);
    return index >= 0 && line < static_cast<int>(SendMessageA(editor, EM_GETLINECOUNT, 0, 0))
               ? index
               : static_cast<LRESULT>(GetWindowTextLengthA(editor));
}

void ReplaceRange(HWND editor, LRESULT start, LRESULT end, const std::string& text)
{
    SendMessageA(editor, EM_SETSEL, static_cast<WPARAM>(start), end);
    SendMessageA(editor, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(text.c_str()));
}

int FirstBlockLine(const DialogBlock& block) { return block.found ? block.beginLine : block.insertAt; }

void OfferSkeleton(DialogEditor& editor)
{
    const DialogDesign& design = editor.design;
    HWND text = editor.frame->m_editor;
    if (design.function.empty() || HasProcedure(SplitTextLines(EditorText(text)), design.function))
        return;
    if (editor.Ask(editor.Text(IDS_CREATE_SKELETON), MB_YESNO | MB_ICONQUESTION) != IDYES)
        return;
    const LRESULT end = GetWindowTextLengthA(text);
    ReplaceRange(text, end, end, SkeletonText(design.function));
}

} // namespace

bool LoadDesignFromSheet(DialogEditor& editor)
{
    EditorFrame& frame = *editor.frame;
    if (!frame.Current())
        return false;
    HWND text = frame.m_editor;
    editor.sheetLines = SplitTextLines(EditorText(text));
    const int caretLine = static_cast<int>(SendMessageA(text, EM_LINEFROMCHAR, static_cast<WPARAM>(-1), 0));
    editor.block = LocateDialogBlock(editor.sheetLines, caretLine);
    ReadDialogBlock(editor.sheetLines, editor.block, caretLine, editor.design);
    // A new dialog has not been written yet: saving it is a change.
    editor.design.changed = !editor.block.found;
    editor.design.functionExists =
        !editor.design.function.empty() && HasProcedure(editor.sheetLines, editor.design.function);
    return true;
}

void WriteDesignToSheet(DialogEditor& editor)
{
    HWND text = editor.frame->m_editor;
    const DialogBlock& block = editor.block;
    editor.written = WriteDialogBlock(editor.design);
    const LRESULT start = LineStart(text, FirstBlockLine(block));
    const LRESULT end = block.found ? LineStart(text, block.endLine + 1) : start;
    ReplaceRange(text, start, end, BlockReplacementText(editor.written, block));
    editor.wrote = true;
    editor.design.changed = false;
    OfferSkeleton(editor);
}

void PlaceCaretOnSelection(DialogEditor& editor)
{
    const DialogDesign& design = editor.design;
    int offset = 0;
    if (design.selected >= 0) {
        if (editor.wrote)
            offset = editor.written.itemLines[static_cast<size_t>(design.selected)];
        else if (const int line = design.items[static_cast<size_t>(design.selected)]->sourceLine; line >= 0)
            offset = line;
    }
    if (!editor.block.found && !editor.wrote)
        return;
    HWND text = editor.frame->m_editor;
    const LRESULT at = LineStart(text, FirstBlockLine(editor.block) + offset);
    SendMessageA(text, EM_SETSEL, static_cast<WPARAM>(at), at);
    SendMessageA(text, EM_SCROLLCARET, 0, 0);
}

} // namespace brannoc::ide
