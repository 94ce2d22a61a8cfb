#include "ide/TextAreaState.h"
#include "ide/CodeLineScan.h"
#include "values/ComRef.h"

#include <algorithm>
#include <cstring>
#include <tuple>

namespace brannoc::ide {

namespace {

TextAreaState* StateOf(HWND window)
{
    return reinterpret_cast<TextAreaState*>(GetWindowLongPtrA(window, 0));
}

// The display font: "Courier New" at 9 points; where the system maps that name to a proportional
// face (Wine without the core fonts does), any fixed-pitch face instead.
HFONT CreateDisplayFont()
{
    HDC screen = GetDC(nullptr);
    int height = -MulDiv(9, GetDeviceCaps(screen, LOGPIXELSY), 72);
    HFONT font = CreateFontA(height, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, ANSI_CHARSET, OUT_DEFAULT_PRECIS,
                             CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, FIXED_PITCH | FF_MODERN, "Courier New");
    HGDIOBJ old = SelectObject(screen, font);
    TEXTMETRICA metrics{};
    GetTextMetricsA(screen, &metrics);
    SelectObject(screen, old);
    // TMPF_FIXED_PITCH set means a variable-pitch font.
    if (metrics.tmPitchAndFamily & TMPF_FIXED_PITCH) {
        DeleteObject(font);
        font = CreateFontA(height, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, ANSI_CHARSET, OUT_DEFAULT_PRECIS,
                           CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, FIXED_PITCH | FF_MODERN, "DejaVu Sans Mono");
    }
    ReleaseDC(nullptr, screen);
    return font;
}

int PositionOf(const TextDocument& document, TextPosition position)
{
    return document.Buffer().Position(position.line, position.column);
}

TextPosition PositionAtIndex(const TextDocument& document, LPARAM index)
{
    const TextBuffer& buffer = document.Buffer();
    int clamped = static_cast<int>(std::clamp<long long>(static_cast<long long>(static_cast<UINT>(index)), 0,
                                                          static_cast<long long>(buffer.TextLength())));
    int line = buffer.LineFromPosition(clamped);
    return document.Clamp(TextPosition{line, clamped - buffer.LineIndex(line)});
}

// Copies `text` into a caller's buffer of `size` characters with a terminating zero; answers the
// number of characters copied, or the text's length when there is no buffer.
LRESULT CopyOut(const std::string& text, WPARAM size, LPARAM buffer)
{
    if (!buffer)
        return static_cast<LRESULT>(text.size());
    if (size == 0)
        return 0;
    size_t count = std::min<size_t>(text.size(), size - 1);
    std::memcpy(reinterpret_cast<char*>(buffer), text.data(), count);
    reinterpret_cast<char*>(buffer)[count] = '\0';
    return static_cast<LRESULT>(count);
}

LRESULT GetSelection(TextAreaState& state, WPARAM startOut, LPARAM endOut)
{
    TextDocument& document = *state.document;
    int start = PositionOf(document, document.SelectionStart());
    int end = PositionOf(document, document.SelectionEnd());
    if (startOut)
        *reinterpret_cast<DWORD*>(startOut) = static_cast<DWORD>(start);
    if (endOut)
        *reinterpret_cast<DWORD*>(endOut) = static_cast<DWORD>(end);
    return MAKELRESULT(std::min(start, 0xFFFF), std::min(end, 0xFFFF));
}

void SetSelection(TextAreaState& state, WPARAM start, LPARAM end)
{
    TextDocument& document = *state.document;
    if (static_cast<int>(start) == -1) {
        document.MoveCaret(document.Caret(), false);
    } else {
        document.Select(PositionAtIndex(document, static_cast<LPARAM>(start)), PositionAtIndex(document, end));
    }
    state.Refresh();
}

LRESULT LineLengthAt(const TextDocument& document, WPARAM index)
{
    if (static_cast<int>(index) == -1) {
        // The characters before the anchor on its line and after the caret on its line, counted from
        // anchor and caret as they are (not ordered), as the EDIT control counts them.
        TextPosition anchor = document.Anchor(), caret = document.Caret();
        return anchor.column + (document.Buffer().LineLength(caret.line) - caret.column);
    }
    return document.Buffer().LineLength(PositionAtIndex(document, static_cast<LPARAM>(index)).line);
}

LRESULT GetLine(const TextDocument& document, WPARAM line, LPARAM buffer)
{
    if (static_cast<int>(line) < 0 || static_cast<int>(line) >= document.LineCount() || !buffer)
        return 0;
    std::string_view text = document.Line(static_cast<int>(line));
    WORD size = *reinterpret_cast<WORD*>(buffer);
    size_t count = std::min<size_t>(text.size(), size);
    std::memcpy(reinterpret_cast<char*>(buffer), text.data(), count);
    if (count < size)
        reinterpret_cast<char*>(buffer)[count] = '\0';
    return static_cast<LRESULT>(count);
}

// A program's replacement works in read-only mode too, as it does in an EDIT control.
void ReplaceSelectionText(TextAreaState& state, const char* text)
{
    std::string normal = NormaliseLineEnds(text ? text : "");
    state.document->ReplaceSelection(normal, ChangeKind::Forced);
    state.document->CommitEditingLine();
    state.Refresh();
}

void MarkStatement(TextAreaState& state, bool current, LPARAM line)
{
    TextDocument& document = *state.document;
    if (current)
        document.MarkCurrentStatement(static_cast<int>(line));
    else
        document.MarkErrorStatement(static_cast<int>(line));
    state.Refresh(current);
}

void GoToLine(TextAreaState& state, WPARAM column, LPARAM lineAndMode)
{
    TextDocument& document = *state.document;
    int line = std::clamp<int>(LOWORD(lineAndMode), 0, document.LineCount() - 1);
    int wanted = static_cast<int>(column);
    if (wanted == -1)
        document.Select(TextPosition{line, 0}, TextPosition{line, document.Buffer().LineLength(line)});
    else if (wanted == -2)
        document.MoveCaret(line + 1 < document.LineCount() ? TextPosition{line + 1, 0}
                                                           : TextPosition{line, document.Buffer().LineLength(line)},
                           false);
    else
        document.MoveCaret(TextPosition{line, wanted}, false);
    state.Refresh();
}

void SelectLines(TextAreaState& state, int first, int last)
{
    TextDocument& document = *state.document;
    first = std::clamp(first, 0, document.LineCount() - 1);
    last = std::clamp(last, first, document.LineCount() - 1);
    TextPosition end = last + 1 < document.LineCount() ? TextPosition{last + 1, 0}
                                                       : TextPosition{last, document.Buffer().LineLength(last)};
    document.Select(TextPosition{first, 0}, end);
    state.Refresh();
}

// Walks whole statements: upward from the caret's statement to line `bound` (bound > 0), downward
// from the first line to line -bound (bound < 0) or over the whole text (0).
LRESULT WalkStatements(TextAreaState& state, int bound, StatementVisitor* visitor)
{
    if (!visitor || !visitor->visit)
        return 0;
    TextDocument& document = *state.document;
    auto visitStatement = [&](int first, int last) {
        unsigned flags = 0;
        for (int line = first; line <= last; ++line)
            flags |= document.LineClassOf(line);
        if ((flags & visitor->mask) == 0)
            return true;
        std::string text = document.Buffer().Text(first, last);
        return visitor->visit(visitor, first, last, text.c_str(), flags) != 0;
    };
    if (bound > 0) {
        int stop = std::min(bound, document.LineCount() - 1);
        for (int first = document.StatementStart(document.Caret().line); first >= stop && first >= 0;) {
            if (!visitStatement(first, document.StatementEnd(first)))
                return 0;
            if (first == 0)
                break;
            first = document.StatementStart(first - 1);
        }
        return 1;
    }
    int last = bound < 0 ? std::min(-bound, document.LineCount() - 1) : document.LineCount() - 1;
    for (int first = 0; first <= last;) {
        int end = document.StatementEnd(first);
        if (!visitStatement(first, end))
            return 0;
        first = end + 1;
    }
    return 1;
}

LRESULT HandleEditMessage(TextAreaState& state, UINT message, WPARAM wParam, LPARAM lParam, bool& handled)
{
    TextDocument& document = *state.document;
    handled = true;
    switch (message) {
    case WM_SETTEXT:
        document.Load(NormaliseLineEnds(lParam ? reinterpret_cast<const char*>(lParam) : ""));
        state.Refresh();
        return TRUE;
    case WM_GETTEXT:
        document.CommitEditingLine();
        return CopyOut(document.Buffer().Text(), wParam, lParam ? lParam : 0);
    case WM_GETTEXTLENGTH:
        return static_cast<LRESULT>(document.Buffer().TextLength());
    case EM_GETSEL:
        return GetSelection(state, wParam, lParam);
    case EM_SETSEL:
        SetSelection(state, wParam, lParam);
        return 0;
    case EM_GETLINECOUNT:
        return document.LineCount();
    case EM_LINEINDEX: {
        int line = static_cast<int>(wParam) == -1 ? document.Caret().line : static_cast<int>(wParam);
        return line < 0 || line >= document.LineCount() ? -1 : document.Buffer().LineIndex(line);
    }
    case EM_LINELENGTH:
        return LineLengthAt(document, wParam);
    case EM_LINEFROMCHAR:
        if (static_cast<int>(wParam) == -1)
            return document.SelectionStart().line;
        return PositionAtIndex(document, static_cast<LPARAM>(wParam)).line;
    case EM_GETLINE:
        return GetLine(document, wParam, lParam);
    case EM_REPLACESEL:
        ReplaceSelectionText(state, reinterpret_cast<const char*>(lParam));
        return 0;
    case EM_GETMODIFY:
        return document.Modified() ? TRUE : FALSE;
    case EM_SETMODIFY:
        document.SetModified(wParam != 0);
        return 0;
    case EM_SETREADONLY: {
        LONG style = GetWindowLongA(state.window, GWL_STYLE);
        SetWindowLongA(state.window, GWL_STYLE, wParam ? (style | ES_READONLY) : (style & ~ES_READONLY));
        InvalidateRect(state.window, nullptr, FALSE);
        return TRUE;
    }
    case EM_GETLIMITTEXT:
        return kTextAreaLimit;
    case EM_CANUNDO:
        return document.CanUndo() ? TRUE : FALSE;
    case EM_UNDO:
    case WM_UNDO:
        if (!state.CanEdit())
            return FALSE;
        {
            bool undone = document.Undo();
            state.Refresh();
            return undone ? TRUE : FALSE;
        }
    case EM_EMPTYUNDOBUFFER:
        document.EmptyUndoHistory();
        return 0;
    case EM_GETFIRSTVISIBLELINE:
        return document.FirstVisibleLine();
    case EM_LINESCROLL:
        state.ScrollTo(document.FirstVisibleLine() + static_cast<int>(lParam),
                       document.FirstVisibleColumn() + static_cast<int>(wParam));
        return TRUE;
    case EM_SCROLLCARET:
        state.Refresh();
        return TRUE;
    case WM_CUT:
        CopySelection(state, true);
        return 0;
    case WM_COPY:
        CopySelection(state, false);
        return 0;
    case WM_PASTE:
        PasteClipboard(state);
        return 0;
    case WM_CLEAR:
        ClearSelection(state);
        return 0;
    case WM_SETFONT:
        state.view.SetFont(wParam ? reinterpret_cast<HFONT>(wParam) : state.ownFont);
        if (state.hasCaret) {
            DestroyCaret();
            state.hasCaret = false;
        }
        if (GetFocus() == state.window) {
            CreateCaret(state.window, nullptr, 2, state.view.LineHeight());
            state.hasCaret = true;
            state.caretPoint = POINT{-1, -1};
            ShowCaret(state.window);
        }
        state.Refresh(false);
        return 0;
    case WM_GETFONT:
        return reinterpret_cast<LRESULT>(state.view.Font() == state.ownFont ? nullptr : state.view.Font());
    default:
        handled = false;
        return 0;
    }
}

LRESULT HandleOwnMessage(TextAreaState& state, UINT message, WPARAM wParam, LPARAM lParam, bool& handled)
{
    TextDocument& document = *state.document;
    handled = true;
    switch (message) {
    case TAM_MARKERROR:
        MarkStatement(state, false, lParam);
        return 0;
    case TAM_MARKCURRENT:
        MarkStatement(state, true, lParam);
        return 0;
    case TAM_HASSELECTION:
        return document.HasSelection() ? 1 : 0;
    case TAM_GOTOLINE:
        GoToLine(state, wParam, lParam);
        return 0;
    case TAM_SELECTEDLINES: {
        LineRange lines = document.SelectedLines();
        if (lParam)
            *reinterpret_cast<int*>(lParam) = lines.last;
        return lines.first;
    }
    case TAM_SELECTLINES:
        SelectLines(state, static_cast<int>(wParam), static_cast<int>(lParam));
        return 0;
    case TAM_GETSELTEXT:
        return CopyOut(document.SelectedText(), wParam, lParam);
    case TAM_CANREDO:
        return document.CanRedo() ? 1 : 0;
    case TAM_REDO: {
        if (!state.CanEdit())
            return 0;
        bool redone = document.Redo();
        state.Refresh();
        return redone ? 1 : 0;
    }
    case TAM_SETTABS: {
        // The caret keeps the column at which it is shown.
        TextPosition caret = document.Caret();
        int shown = DisplayColumn(document.Line(caret.line), caret.column, document.TabWidth());
        document.SetTabs(wParam != 0, static_cast<int>(lParam));
        std::string_view line = document.Line(caret.line);
        int column = 0;
        while (column < static_cast<int>(line.size()) && DisplayColumn(line, column + 1, document.TabWidth()) <= shown)
            ++column;
        document.MoveCaret(TextPosition{caret.line, column}, false);
        state.Refresh(false);
        return 0;
    }
    case TAM_WALKSTATEMENTS:
        return WalkStatements(state, static_cast<int>(wParam), reinterpret_cast<StatementVisitor*>(lParam));
    case TAM_GETWHOLETEXT:
        document.CommitEditingLine();
        return CopyOut(document.WholeText(), wParam, lParam);
    case TAM_SCROLLCARET:
        state.Refresh();
        return 0;
    case TAM_SETACTIVE: {
        bool old = state.active;
        state.active = wParam != 0;
        InvalidateRect(state.window, nullptr, FALSE);
        return old ? 1 : 0;
    }
    case TAM_CARETRECT: {
        if (!lParam)
            return 0;
        POINT point = state.view.PointOf(document, document.Caret());
        ClientToScreen(state.window, &point);
        *reinterpret_cast<RECT*>(lParam) = RECT{point.x, point.y, point.x + 2, point.y + state.view.LineHeight()};
        return 1;
    }
    case TAM_HASPOPUP:
        return state.popups.Has(static_cast<PopupKind>(wParam != 0)) ? 1 : 0;
    case TAM_SHOWPOPUP:
        return state.popups.Show(state, static_cast<PopupKind>(wParam != 0)) ? 1 : 0;
    case TAM_HIDEPOPUPS:
        if (wParam)
            state.popups.Reshow(state);
        else
            state.popups.HideAll(true);
        return 0;
    case TAM_ATTACH:
        state.popups.HideAll();
        if (state.document->EditingLine() >= 0)
            state.document->CommitEditingLine();
        state.document = lParam ? reinterpret_cast<TextDocument*>(lParam) : &state.ownDocument;
        state.document->SetKeywords(state.keywords);
        state.Refresh(false);
        return 0;
    case TAM_FOCUSREFRESH:
        state.Refresh();
        return 0;
    case TAM_CHANGED:
        return 0;
    default:
        handled = false;
        return 0;
    }
}

// Paints the whole client area into `dc` (the window's own DC while painting, or a caller's DC for
// WM_PRINTCLIENT).
void PaintInto(TextAreaState& state, HDC dc)
{
    RECT client;
    GetClientRect(state.window, &client);
    // Painted off screen first so that a repaint does not flicker.
    HDC memory = CreateCompatibleDC(dc);
    HBITMAP bitmap = CreateCompatibleBitmap(dc, std::max<LONG>(1, client.right), std::max<LONG>(1, client.bottom));
    HGDIOBJ old = SelectObject(memory, bitmap);
    state.view.SetClientSize(client.right, client.bottom);
    state.view.Paint(memory, client, *state.document, state.colours, *state.keywords,
                     PaintOptions{state.active, state.ReadOnly()});
    BitBlt(dc, 0, 0, client.right, client.bottom, memory, 0, 0, SRCCOPY);
    SelectObject(memory, old);
    DeleteObject(bitmap);
    DeleteDC(memory);
}

void Paint(TextAreaState& state)
{
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(state.window, &paint);
    PaintInto(state, dc);
    EndPaint(state.window, &paint);
}

// OLE for the thread (balanced at destruction), the drop target and the pop-up components.
void StartOle(TextAreaState& state)
{
    state.oleInitialised = SUCCEEDED(OleInitialize(nullptr));
    ComRef<IDropTarget> target = ComRef<IDropTarget>::Adopt(CreateTextAreaDropTarget(state));
    state.dropTargetRegistered = target && SUCCEEDED(RegisterDragDrop(state.window, target.Get()));
    state.popups.Create();
}

void EndOle(TextAreaState& state)
{
    state.popups.Release();
    if (state.dropTargetRegistered)
        RevokeDragDrop(state.window);
    state.dropTargetRegistered = false;
    if (state.oleInitialised)
        OleUninitialize();
    state.oleInitialised = false;
}

LRESULT CALLBACK EditWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    TextAreaState* state = StateOf(window);
    if (message == WM_NCCREATE) {
        state = new (std::nothrow) TextAreaState;
        if (!state)
            return FALSE;
        state->window = window;
        SetWindowLongPtrA(window, 0, reinterpret_cast<LONG_PTR>(state));
        state->ownFont = CreateDisplayFont();
        state->view.SetFont(state->ownFont);
        state->ownKeywords.Build(LanguageKeywordSections(), "", state->colours);
        state->ownDocument.SetKeywords(state->keywords);
        state->textCursor = LoadCursor(nullptr, IDC_IBEAM);
        state->arrowCursor = LoadCursor(nullptr, IDC_ARROW);
        state->lineCursor = LoadCursor(GetModuleHandleA(nullptr), MAKEINTRESOURCE(96));
        if (!state->lineCursor)
            state->lineCursor = state->arrowCursor;
        state->wheelLines = QueryWheelScrollLines();
        return DefWindowProcA(window, message, wParam, lParam);
    }
    if (!state)
        return DefWindowProcA(window, message, wParam, lParam);
    if (state->popups.HandleEvent(*state, message, wParam))
        return 0;
    if (message == WM_CREATE) {
        StartOle(*state);
        return 0;
    }
    if (message == WM_DESTROY)
        EndOle(*state);
    if (message == WM_NCDESTROY) {
        SetWindowLongPtrA(window, 0, 0);
        if (state->ownFont)
            DeleteObject(state->ownFont);
        delete state;
        return DefWindowProcA(window, message, wParam, lParam);
    }
    bool handled = false;
    LRESULT result = HandleEditMessage(*state, message, wParam, lParam, handled);
    if (handled)
        return result;
    result = HandleOwnMessage(*state, message, wParam, lParam, handled);
    if (handled)
        return result;
    if (HandleInput(*state, message, wParam, lParam, result))
        return result;
    switch (message) {
    case WM_GETDLGCODE:
        return 0x87;
    case WM_ERASEBKGND:
        return 1;
    case WM_PAINT:
        Paint(*state);
        return 0;
    case WM_PRINTCLIENT:
        PaintInto(*state, reinterpret_cast<HDC>(wParam));
        return 0;
    case WM_SIZE:
        state->view.SetClientSize(LOWORD(lParam), HIWORD(lParam));
        state->UpdateScrollBars();
        return 0;
    case WM_SETFOCUS:
        state->active = true;
        state->wheelLines = QueryWheelScrollLines();
        CreateCaret(window, nullptr, state->document->Overwrite() ? state->view.CharWidth() : 2,
                    state->view.LineHeight());
        state->hasCaret = true;
        state->caretPoint = POINT{-1, -1};
        state->PlaceCaret();
        ShowCaret(window);
        InvalidateRect(window, nullptr, FALSE);
        return 0;
    case WM_KILLFOCUS:
        state->popups.HideAll();
        state->active = false;
        state->document->CommitEditingLine();
        if (state->hasCaret) {
            DestroyCaret();
            state->hasCaret = false;
        }
        InvalidateRect(window, nullptr, FALSE);
        return 0;
    default:
        return DefWindowProcA(window, message, wParam, lParam);
    }
}

} // namespace

void TextAreaState::EnsureCaretVisible()
{
    TextDocument& doc = *document;
    TextPosition caret = doc.Caret();
    int visible = view.VisibleLines();
    int first = doc.FirstVisibleLine();
    if (caret.line < first)
        first = caret.line;
    else if (caret.line >= first + visible)
        first = caret.line - visible + 1;
    int shown = DisplayColumn(doc.Line(caret.line), caret.column, doc.TabWidth());
    int column = doc.FirstVisibleColumn();
    int columns = view.VisibleColumns();
    if (shown < column)
        column = std::max(0, shown - columns / 4);
    else if (shown >= column + columns)
        column = shown - columns + columns / 4 + 1;
    doc.SetFirstVisibleLine(first);
    doc.SetFirstVisibleColumn(column);
}

void TextAreaState::UpdateScrollBars()
{
    // Setting a scroll bar redraws it at once, so only changed values are passed on.
    TextDocument& doc = *document;
    ScrollBarState vertical{doc.LineCount() - 1 + view.VisibleLines() - 1, view.VisibleLines(), doc.FirstVisibleLine()};
    ScrollBarState horizontal{TextDocument::kMaxScrollColumn + view.VisibleColumns() - 1, view.VisibleColumns(),
                              doc.FirstVisibleColumn()};
    for (auto [bar, wanted, shown] : {std::tuple{SB_VERT, vertical, &verticalBar},
                                      std::tuple{SB_HORZ, horizontal, &horizontalBar}}) {
        if (wanted == *shown)
            continue;
        SCROLLINFO info{sizeof(SCROLLINFO), SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL, 0, 0, 0, 0, 0};
        info.nMax = wanted.maximum;
        info.nPage = static_cast<UINT>(wanted.page);
        info.nPos = wanted.position;
        SetScrollInfo(window, bar, &info, TRUE);
        *shown = wanted;
    }
}

void TextAreaState::PlaceCaret()
{
    if (!hasCaret)
        return;
    POINT point = view.PointOf(*document, document->Caret());
    if (point.x == caretPoint.x && point.y == caretPoint.y)
        return;
    caretPoint = point;
    SetCaretPos(point.x, point.y);
}

void TextAreaState::Refresh(bool showCaret)
{
    if (showCaret)
        EnsureCaretVisible();
    UpdateScrollBars();
    InvalidateRect(window, nullptr, FALSE);
    PlaceCaret();
    popups.Follow(*this);
}

void TextAreaState::ScrollTo(int firstLine, int firstColumn)
{
    document->SetFirstVisibleLine(firstLine);
    document->SetFirstVisibleColumn(firstColumn);
    Refresh(false);
}

bool TextAreaState::CanEdit() const
{
    if (!ReadOnly())
        return true;
    MessageBeep(MB_ICONHAND);
    return false;
}

void TextAreaState::PostCommand(int command) const
{
    static const UINT toolbarMessage = RegisterWindowMessageA(kToolbarMessageName);
    HWND parent = GetParent(window);
    if (parent)
        PostMessageA(parent, toolbarMessage, static_cast<WPARAM>(command), static_cast<LPARAM>(-1));
}

bool RegisterTextAreaClass()
{
    RegisterPopupProgramIds();
    WNDCLASSA existing{};
    HINSTANCE instance = GetModuleHandleA(nullptr);
    if (GetClassInfoA(instance, kTextAreaClassName, &existing))
        return true;
    WNDCLASSA windowClass{};
    windowClass.style = CS_DBLCLKS;
    windowClass.lpfnWndProc = EditWindowProc;
    windowClass.cbWndExtra = sizeof(LONG_PTR);
    windowClass.hInstance = instance;
    windowClass.hCursor = nullptr;
    windowClass.lpszClassName = kTextAreaClassName;
    return RegisterClassA(&windowClass) != 0;
}

TextDocument* TextAreaDocument(HWND textArea)
{
    TextAreaState* state = StateOf(textArea);
    return state ? state->document : nullptr;
}

void SetTextAreaColours(HWND textArea, const EditorColours& colours)
{
    TextAreaState* state = StateOf(textArea);
    if (!state)
        return;
    state->colours = colours;
    state->ownKeywords.Build(LanguageKeywordSections(), "", colours);
    InvalidateRect(textArea, nullptr, FALSE);
}

void SetTextAreaKeywords(HWND textArea, const KeywordSets* keywords)
{
    TextAreaState* state = StateOf(textArea);
    if (!state)
        return;
    state->keywords = keywords ? keywords : &state->ownKeywords;
    state->document->SetKeywords(state->keywords);
    InvalidateRect(textArea, nullptr, FALSE);
}

TextAreaPopupView TextAreaPopupsShown(HWND textArea)
{
    TextAreaPopupView view;
    if (TextAreaState* state = StateOf(textArea)) {
        view.listShown = state->popups.Shown(PopupKind::Completion);
        view.tipShown = state->popups.Shown(PopupKind::ParameterTip);
        if (view.tipShown) {
            view.prototype = state->popups.TipPrototype();
            view.argument = state->popups.TipArgument();
        }
    }
    return view;
}

void SetTextAreaCatalogSource(HWND textArea, std::function<BrowseCatalog()> source)
{
    if (TextAreaState* state = StateOf(textArea))
        state->popups.SetCatalogSource(std::move(source));
}

void IndentTextArea(HWND textArea, bool outdent)
{
    TextAreaState* state = StateOf(textArea);
    if (!state || !state->CanEdit())
        return;
    if (outdent)
        state->document->OutdentSelectedLines();
    else
        state->document->IndentSelectedLines();
    state->Refresh();
}

} // namespace brannoc::ide
