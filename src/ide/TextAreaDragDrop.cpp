// OLE drag and drop of text: the text area is a drop target for CF_TEXT (dropped text is inserted
// like a paste, at the position under the mouse), and a click inside the selection followed by a move
// drags the selected text out (moved, or copied with Ctrl). A drag that ends in the same control moves
// the text within the document as one undo step.
#include "ide/TextAreaState.h"

#include "ide/OleObjectBase.h"
#include "ide/TextDataObject.h"
#include "values/ComRef.h"

namespace brannoc::ide {

namespace {

TextPosition PositionOfIndex(const TextDocument& document, int index)
{
    const int line = document.Buffer().LineFromPosition(index);
    return TextPosition{line, index - document.Buffer().LineIndex(line)};
}

int IndexOf(const TextDocument& document, TextPosition position)
{
    return document.Buffer().Position(position.line, position.column);
}

// Selects the text of `length` characters that starts at character `start`.
void SelectInserted(TextDocument& document, int start, int length)
{
    document.Select(PositionOfIndex(document, start), PositionOfIndex(document, start + length));
}

void InsertAt(TextAreaState& state, TextPosition target, const std::string& text)
{
    TextDocument& document = *state.document;
    document.Select(target, target);
    const int start = IndexOf(document, target);
    document.ReplaceSelection(text, ChangeKind::Forced);
    document.CommitEditingLine();
    SelectInserted(document, start, static_cast<int>(text.size()));
}

// Moves the selection to `target` (outside it): the insertion and the removal undo together.
void MoveSelectionTo(TextAreaState& state, TextPosition target)
{
    TextDocument& document = *state.document;
    const TextPosition start = document.SelectionStart(), end = document.SelectionEnd();
    const std::string text = document.SelectedText();
    const int removed = IndexOf(document, end) - IndexOf(document, start);
    int insertedAt = IndexOf(document, target);
    if (target > end) {
        document.Select(target, target);
        document.ReplaceSelection(text, ChangeKind::Forced);
        document.Select(start, end);
        document.ReplaceSelection("", ChangeKind::Grouped);
        insertedAt -= removed;
    } else {
        document.ReplaceSelection("", ChangeKind::Forced);
        document.Select(target, target);
        document.ReplaceSelection(text, ChangeKind::Grouped);
    }
    document.CommitEditingLine();
    SelectInserted(document, insertedAt, static_cast<int>(text.size()));
}

DWORD ChooseEffect(DWORD keys, DWORD allowed)
{
    if ((keys & MK_CONTROL) && (allowed & DROPEFFECT_COPY))
        return DROPEFFECT_COPY;
    if (allowed & DROPEFFECT_MOVE)
        return DROPEFFECT_MOVE;
    return allowed & DROPEFFECT_COPY;
}

class TextAreaDropTarget final : public OleObjectBase<IDropTarget, IID_IDropTarget> {
public:
    explicit TextAreaDropTarget(TextAreaState& state) : m_state(state) {}

    HRESULT STDMETHODCALLTYPE DragEnter(IDataObject* data, DWORD keys, POINTL point, DWORD* effect) override
    {
        FORMATETC format = TextFormat();
        m_accepts = data && data->QueryGetData(&format) == S_OK && !m_state.ReadOnly();
        return DragOver(keys, point, effect);
    }
    HRESULT STDMETHODCALLTYPE DragOver(DWORD keys, POINTL point, DWORD* effect) override
    {
        if (!effect)
            return E_INVALIDARG;
        *effect = m_accepts ? ChooseEffect(keys, *effect) : DROPEFFECT_NONE;
        if (m_accepts)
            ShowDropCaret(PositionAt(point));
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE DragLeave() override
    {
        m_accepts = false;
        RestoreCaret();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Drop(IDataObject* data, DWORD keys, POINTL point, DWORD* effect) override
    {
        if (!effect)
            return E_INVALIDARG;
        const DWORD chosen = m_accepts ? ChooseEffect(keys, *effect) : DROPEFFECT_NONE;
        m_accepts = false;
        RestoreCaret();
        *effect = DROPEFFECT_NONE;
        std::string text;
        if (chosen == DROPEFFECT_NONE || !ReadDataObjectText(data, text))
            return S_OK;
        const TextPosition target = PositionAt(point);
        TextDocument& document = *m_state.document;
        if (m_state.draggingOut) {
            m_state.droppedInside = true;
            const bool onSelection = document.SelectionStart() <= target && target <= document.SelectionEnd();
            if (onSelection)
                return S_OK;
            if (chosen == DROPEFFECT_MOVE)
                MoveSelectionTo(m_state, target);
            else
                InsertAt(m_state, target, document.SelectedText());
        } else {
            InsertAt(m_state, target, NormaliseLineEnds(text));
        }
        *effect = chosen;
        SetFocus(m_state.window);
        m_state.Refresh();
        return S_OK;
    }

private:
    TextPosition PositionAt(POINTL point) const
    {
        POINT client{point.x, point.y};
        ScreenToClient(m_state.window, &client);
        return m_state.view.PositionAt(*m_state.document, client.x, client.y, true);
    }
    void ShowDropCaret(TextPosition position)
    {
        if (!m_state.hasCaret)
            return;
        const POINT at = m_state.view.PointOf(*m_state.document, position);
        SetCaretPos(at.x, at.y);
        m_state.caretPoint = POINT{-1, -1};
    }
    void RestoreCaret() { m_state.PlaceCaret(); }

    TextAreaState& m_state;
    bool m_accepts = false;
};

class TextDropSource final : public OleObjectBase<IDropSource, IID_IDropSource> {
public:
    HRESULT STDMETHODCALLTYPE QueryContinueDrag(BOOL escape, DWORD keys) override
    {
        if (escape)
            return DRAGDROP_S_CANCEL;
        return (keys & MK_LBUTTON) ? S_OK : DRAGDROP_S_DROP;
    }
    HRESULT STDMETHODCALLTYPE GiveFeedback(DWORD) override { return DRAGDROP_S_USEDEFAULTCURSORS; }
};

} // namespace

IDropTarget* CreateTextAreaDropTarget(TextAreaState& state) { return new (std::nothrow) TextAreaDropTarget(state); }

void StartTextDrag(TextAreaState& state)
{
    TextDocument& document = *state.document;
    if (!document.HasSelection())
        return;
    document.CommitEditingLine();
    ComRef<IDataObject> data = ComRef<IDataObject>::Adopt(CreateTextDataObject(document.SelectedText()));
    ComRef<IDropSource> source = ComRef<IDropSource>::Adopt(new (std::nothrow) TextDropSource);
    if (!data || !source)
        return;
    const DWORD allowed = state.ReadOnly() ? DROPEFFECT_COPY : DROPEFFECT_COPY | DROPEFFECT_MOVE;
    DWORD effect = DROPEFFECT_NONE;
    state.draggingOut = true;
    state.droppedInside = false;
    const HRESULT result = DoDragDrop(data.Get(), source.Get(), allowed, &effect);
    state.draggingOut = false;
    // A move into another window takes the text away from here; a drop here moved it already.
    if (result == DRAGDROP_S_DROP && (effect & DROPEFFECT_MOVE) && !state.droppedInside && !state.ReadOnly())
        document.ReplaceSelection("", ChangeKind::Forced);
    state.Refresh();
}

} // namespace brannoc::ide
