#include "ide/CodeLineScan.h"
#include "ide/TextAreaState.h"

#include <windowsx.h>

#include <algorithm>
#include <cstdlib>

namespace brannoc::ide {

namespace {

constexpr UINT_PTR kDragScrollTimer = 1;
constexpr UINT kDragScrollInterval = 50;

bool KeyDown(int key) { return GetKeyState(key) < 0; }
bool IsBlank(char c) { return c == ' ' || c == '\t'; }

int NextColumn(std::string_view line, int column)
{
    return static_cast<int>(CharNextExA(CP_ACP, line.data() + column, 0) - line.data());
}

int PreviousColumn(std::string_view line, int column)
{
    return static_cast<int>(CharPrevExA(CP_ACP, line.data(), line.data() + column, 0) - line.data());
}

TextPosition CharacterLeft(const TextDocument& document, TextPosition caret)
{
    if (caret.column > 0)
        return TextPosition{caret.line, PreviousColumn(document.Line(caret.line), caret.column)};
    if (caret.line > 0)
        return TextPosition{caret.line - 1, document.Buffer().LineLength(caret.line - 1)};
    return caret;
}

TextPosition CharacterRight(const TextDocument& document, TextPosition caret)
{
    std::string_view line = document.Line(caret.line);
    if (caret.column < static_cast<int>(line.size()))
        return TextPosition{caret.line, NextColumn(line, caret.column)};
    if (caret.line + 1 < document.LineCount())
        return TextPosition{caret.line + 1, 0};
    return caret;
}

// The start of the next word: over the rest of the current word (or one other character), then blanks.
TextPosition WordRight(const TextDocument& document, TextPosition caret)
{
    std::string_view line = document.Line(caret.line);
    int column = caret.column;
    if (column >= static_cast<int>(line.size()))
        return CharacterRight(document, caret);
    if (IsWordCharacter(line[column])) {
        while (column < static_cast<int>(line.size()) && IsWordCharacter(line[column]))
            ++column;
    } else if (!IsBlank(line[column])) {
        column = NextColumn(line, column);
    }
    while (column < static_cast<int>(line.size()) && IsBlank(line[column]))
        ++column;
    return TextPosition{caret.line, column};
}

TextPosition WordLeft(const TextDocument& document, TextPosition caret)
{
    std::string_view line = document.Line(caret.line);
    int column = caret.column;
    if (column == 0)
        return CharacterLeft(document, caret);
    while (column > 0 && IsBlank(line[column - 1]))
        --column;
    if (column > 0 && IsWordCharacter(line[column - 1])) {
        while (column > 0 && IsWordCharacter(line[column - 1]))
            --column;
    } else if (column > 0) {
        column = PreviousColumn(line, column);
    }
    return TextPosition{caret.line, column};
}

// Up and down keep the column at which the caret is shown.
TextPosition LineMove(const TextDocument& document, TextPosition caret, int lines)
{
    int target = std::clamp(caret.line + lines, 0, document.LineCount() - 1);
    int shown = DisplayColumn(document.Line(caret.line), caret.column, document.TabWidth());
    std::string_view line = document.Line(target);
    int column = 0;
    while (column < static_cast<int>(line.size()) && DisplayColumn(line, column + 1, document.TabWidth()) <= shown)
        ++column;
    return TextPosition{target, column};
}

TextPosition SmartHome(const TextDocument& document, TextPosition caret)
{
    std::string_view line = document.Line(caret.line);
    int firstText = 0;
    while (firstText < static_cast<int>(line.size()) && IsBlank(line[firstText]))
        ++firstText;
    return TextPosition{caret.line, caret.column == firstText ? 0 : firstText};
}

void MoveTo(TextAreaState& state, TextPosition to, bool extend)
{
    state.document->MoveCaret(to, extend);
    state.Refresh();
}

void Edit(TextAreaState& state, void (*change)(TextDocument&))
{
    if (!state.CanEdit())
        return;
    change(*state.document);
    state.Refresh();
}

void ToggleOverwrite(TextAreaState& state)
{
    TextDocument& document = *state.document;
    document.SetOverwrite(!document.Overwrite());
    if (state.hasCaret) {
        DestroyCaret();
        CreateCaret(state.window, nullptr, document.Overwrite() ? state.view.CharWidth() : 2, state.view.LineHeight());
        state.caretPoint = POINT{-1, -1};
        state.PlaceCaret();
        ShowCaret(state.window);
    }
}

bool HandleKeyDown(TextAreaState& state, WPARAM key)
{
    TextDocument& document = *state.document;
    bool shift = KeyDown(VK_SHIFT), ctrl = KeyDown(VK_CONTROL);
    TextPosition caret = document.Caret();
    int page = std::max(1, state.view.VisibleLines() - 1);
    switch (key) {
    case VK_LEFT:
        MoveTo(state, ctrl ? WordLeft(document, caret) : CharacterLeft(document, caret), shift);
        return true;
    case VK_RIGHT:
        MoveTo(state, ctrl ? WordRight(document, caret) : CharacterRight(document, caret), shift);
        return true;
    case VK_UP:
    case VK_DOWN:
        if (ctrl)
            state.ScrollTo(document.FirstVisibleLine() + (key == VK_UP ? -1 : 1), document.FirstVisibleColumn());
        else
            MoveTo(state, LineMove(document, caret, key == VK_UP ? -1 : 1), shift);
        return true;
    case VK_PRIOR:
    case VK_NEXT: {
        int lines = key == VK_PRIOR ? -page : page;
        document.SetFirstVisibleLine(document.FirstVisibleLine() + lines);
        MoveTo(state, LineMove(document, caret, lines), shift);
        return true;
    }
    case VK_HOME:
        MoveTo(state, ctrl ? TextPosition{} : SmartHome(document, caret), shift);
        return true;
    case VK_END: {
        int last = document.LineCount() - 1;
        MoveTo(state, ctrl ? TextPosition{last, document.Buffer().LineLength(last)}
                           : TextPosition{caret.line, document.Buffer().LineLength(caret.line)},
               shift);
        return true;
    }
    case VK_DELETE:
        if (shift)
            CopySelection(state, true);
        else if (ctrl)
            ClearSelection(state);
        else
            Edit(state, [](TextDocument& d) { d.DeleteForward(); });
        return true;
    case VK_BACK:
        if (ctrl)
            Edit(state, [](TextDocument& d) { d.DeleteWordBefore(); });
        else
            Edit(state, [](TextDocument& d) { d.Backspace(); });
        return true;
    case VK_INSERT:
        if (ctrl)
            CopySelection(state, false);
        else if (shift)
            PasteClipboard(state);
        else
            ToggleOverwrite(state);
        return true;
    case VK_RETURN:
        Edit(state, [](TextDocument& d) { d.InsertNewLine(); });
        return true;
    default:
        return false;
    }
}

void HandleCharacter(TextAreaState& state, WPARAM code)
{
    char c = static_cast<char>(code);
    unsigned char byte = static_cast<unsigned char>(c);
    // Enter and Backspace come as key-downs; other control characters and DEL are ignored.
    if ((byte < 32 && c != '\t') || byte == 127)
        return;
    if (!state.CanEdit())
        return;
    if (IsDBCSLeadByte(byte)) {
        MSG trail;
        if (PeekMessageA(&trail, state.window, WM_CHAR, WM_CHAR, PM_REMOVE)) {
            char pair[2] = {c, static_cast<char>(trail.wParam)};
            state.document->ReplaceSelection(std::string_view(pair, 2));
            state.Refresh();
            return;
        }
    }
    state.popups.BeforeCharacter(state, c);
    state.document->TypeCharacter(c);
    state.Refresh();
    state.popups.AfterCharacter(state, c);
}

TextPosition WordAt(const TextDocument& document, TextPosition position, TextPosition& end)
{
    std::string_view line = document.Line(position.line);
    int start = position.column, stop = position.column;
    while (start > 0 && IsWordCharacter(line[start - 1]))
        --start;
    while (stop < static_cast<int>(line.size()) && IsWordCharacter(line[stop]))
        ++stop;
    if (start == stop && stop < static_cast<int>(line.size()))
        stop = NextColumn(line, stop);
    end = TextPosition{position.line, stop};
    return TextPosition{position.line, start};
}

bool InsideSelection(const TextDocument& document, TextPosition position)
{
    return document.HasSelection() && document.SelectionStart() <= position && position < document.SelectionEnd();
}

// The position after a whole line: the start of the next line, or the end of the last line.
TextPosition AfterLine(const TextDocument& document, int line)
{
    return line + 1 < document.LineCount() ? TextPosition{line + 1, 0}
                                           : TextPosition{line, document.Buffer().LineLength(line)};
}

void SelectWholeLines(TextAreaState& state, int anchorLine, int line)
{
    TextDocument& document = *state.document;
    if (line < anchorLine)
        document.Select(AfterLine(document, anchorLine), TextPosition{line, 0});
    else
        document.Select(TextPosition{anchorLine, 0}, AfterLine(document, line));
}

void DragTo(TextAreaState& state, int x, int y)
{
    TextDocument& document = *state.document;
    TextPosition position = state.view.PositionAt(document, x, y, !document.Overwrite());
    TextPosition caret = document.Caret(), anchor = document.Anchor();
    if (state.drag == MouseDrag::Lines)
        SelectWholeLines(state, state.dragAnchorLine, position.line);
    else
        document.MoveCaret(position, true);
    if (document.Caret() != caret || document.Anchor() != anchor)
        state.Refresh();
}

void ButtonDown(TextAreaState& state, int x, int y, bool shift)
{
    TextDocument& document = *state.document;
    SetFocus(state.window);
    TextPosition position = state.view.PositionAt(document, x, y, !document.Overwrite());
    if (x < state.view.DividerX()) {
        document.MoveCaret(TextPosition{position.line, 0}, false);
        state.Refresh();
        state.PostCommand(kToggleBreakCommand);
        return;
    }
    if (x < state.view.TextLeft()) {
        state.drag = MouseDrag::Lines;
        state.dragAnchorLine = position.line;
        SelectWholeLines(state, position.line, position.line);
    } else if (!shift && InsideSelection(document, state.view.PositionAt(document, x, y, false))) {
        // The drag starts once the mouse moves; a release without a move places the caret there.
        state.drag = MouseDrag::PendingOleDrag;
        state.pressPoint = POINT{x, y};
        state.pressPosition = position;
        SetCapture(state.window);
        return;
    } else {
        state.drag = MouseDrag::Text;
        document.MoveCaret(position, shift);
    }
    SetCapture(state.window);
    SetTimer(state.window, kDragScrollTimer, kDragScrollInterval, nullptr);
    state.Refresh();
}

void ButtonUp(TextAreaState& state)
{
    if (state.drag == MouseDrag::PendingOleDrag) {
        state.drag = MouseDrag::None;
        ReleaseCapture();
        state.document->MoveCaret(state.pressPosition, false);
        state.Refresh();
        return;
    }
    if (state.drag == MouseDrag::None)
        return;
    state.drag = MouseDrag::None;
    KillTimer(state.window, kDragScrollTimer);
    ReleaseCapture();
}

// A pending drag becomes an OLE drag once the mouse leaves the system's drag rectangle.
void PendingDragMoved(TextAreaState& state, POINT mouse)
{
    const int dx = std::abs(mouse.x - state.pressPoint.x), dy = std::abs(mouse.y - state.pressPoint.y);
    if (dx <= GetSystemMetrics(SM_CXDRAG) / 2 && dy <= GetSystemMetrics(SM_CYDRAG) / 2)
        return;
    state.drag = MouseDrag::None;
    ReleaseCapture();
    StartTextDrag(state);
}

// While a drag is under way and the mouse is above or below the text, scroll towards it.
void DragScroll(TextAreaState& state)
{
    if (state.drag == MouseDrag::None)
        return;
    RECT client;
    GetClientRect(state.window, &client);
    POINT mouse = state.lastMouse;
    int lines = mouse.y < 0 ? -1 : mouse.y >= client.bottom ? 1 : 0;
    if (lines == 0)
        return;
    TextDocument& document = *state.document;
    document.SetFirstVisibleLine(document.FirstVisibleLine() + lines);
    DragTo(state, mouse.x, mouse.y < 0 ? 0 : client.bottom - 1);
}

void Scroll(TextAreaState& state, int bar, WPARAM request)
{
    TextDocument& document = *state.document;
    bool vertical = bar == SB_VERT;
    int position = vertical ? document.FirstVisibleLine() : document.FirstVisibleColumn();
    int page = vertical ? std::max(1, state.view.VisibleLines() - 1) : std::max(1, state.view.VisibleColumns() / 2);
    SCROLLINFO info{sizeof(SCROLLINFO), SIF_TRACKPOS, 0, 0, 0, 0, 0};
    GetScrollInfo(state.window, bar, &info);
    switch (LOWORD(request)) {
    case SB_LINEUP: position -= 1; break;
    case SB_LINEDOWN: position += 1; break;
    case SB_PAGEUP: position -= page; break;
    case SB_PAGEDOWN: position += page; break;
    case SB_TOP: position = 0; break;
    case SB_BOTTOM: position = vertical ? document.LineCount() - 1 : TextDocument::kMaxScrollColumn; break;
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION: position = info.nTrackPos; break;
    default: return;
    }
    if (vertical)
        state.ScrollTo(position, document.FirstVisibleColumn());
    else
        state.ScrollTo(document.FirstVisibleLine(), position);
}

void Wheel(TextAreaState& state, int delta)
{
    TextDocument& document = *state.document;
    int lines = state.wheelLines == -1 ? (delta < 0 ? 1 : -1) * std::max(1, state.view.VisibleLines() - 1)
                                       : MulDiv(-delta, state.wheelLines, WHEEL_DELTA);
    state.ScrollTo(document.FirstVisibleLine() + lines, document.FirstVisibleColumn());
}

bool SetCursorShape(TextAreaState& state)
{
    POINT mouse;
    GetCursorPos(&mouse);
    ScreenToClient(state.window, &mouse);
    RECT client;
    GetClientRect(state.window, &client);
    if (!PtInRect(&client, mouse))
        return false;
    if (mouse.x < state.view.DividerX()) {
        SetCursor(state.arrowCursor);
    } else if (mouse.x < state.view.TextLeft()) {
        SetCursor(state.lineCursor);
    } else {
        TextPosition position = state.view.PositionAt(*state.document, mouse.x, mouse.y, false);
        SetCursor(InsideSelection(*state.document, position) ? state.arrowCursor : state.textCursor);
    }
    return true;
}

} // namespace

int QueryWheelScrollLines()
{
    HWND wheel = FindWindowA("MouseZ", "Magellan MSWHEEL");
    if (wheel) {
        UINT message = RegisterWindowMessageA("MSH_SCROLL_LINES_MSG");
        if (message)
            return static_cast<int>(SendMessageA(wheel, message, 0, 0));
    }
    UINT lines = 3;
    if (!SystemParametersInfoA(SPI_GETWHEELSCROLLLINES, 0, &lines, 0))
        lines = 3;
    return lines == WHEEL_PAGESCROLL ? -1 : static_cast<int>(lines);
}

bool HandleInput(TextAreaState& state, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result)
{
    result = 0;
    switch (message) {
    case WM_KEYDOWN:
        if (HandleKeyDown(state, wParam))
            return true;
        return false;
    case WM_CHAR:
        HandleCharacter(state, wParam);
        return true;
    case WM_LBUTTONDOWN:
        state.lastMouse = POINT{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
        ButtonDown(state, GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam), (wParam & MK_SHIFT) != 0);
        return true;
    case WM_LBUTTONDBLCLK: {
        int x = GET_X_LPARAM(lParam), y = GET_Y_LPARAM(lParam);
        if (x < state.view.TextLeft()) {
            ButtonDown(state, x, y, false);
            return true;
        }
        TextPosition end;
        TextPosition start = WordAt(*state.document, state.view.PositionAt(*state.document, x, y, false), end);
        state.document->Select(start, end);
        state.Refresh();
        return true;
    }
    case WM_MOUSEMOVE: {
        // The system also sends a move after scrolling and caret changes; only a real move counts, else
        // a drag would feed itself.
        POINT mouse{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
        if (mouse.x == state.lastMouse.x && mouse.y == state.lastMouse.y)
            return true;
        state.lastMouse = mouse;
        if (state.drag == MouseDrag::PendingOleDrag)
            PendingDragMoved(state, mouse);
        else if (state.drag != MouseDrag::None)
            DragTo(state, mouse.x, mouse.y);
        return true;
    }
    case WM_LBUTTONUP:
    case WM_CAPTURECHANGED:
        ButtonUp(state);
        return true;
    case WM_TIMER:
        if (wParam != kDragScrollTimer)
            return false;
        DragScroll(state);
        return true;
    case WM_SETCURSOR:
        if (LOWORD(lParam) == HTCLIENT && SetCursorShape(state)) {
            result = TRUE;
            return true;
        }
        return false;
    case WM_MOUSEWHEEL:
        Wheel(state, GET_WHEEL_DELTA_WPARAM(wParam));
        return true;
    case WM_VSCROLL:
        Scroll(state, SB_VERT, wParam);
        return true;
    case WM_HSCROLL:
        Scroll(state, SB_HORZ, wParam);
        return true;
    default:
        return false;
    }
}

} // namespace brannoc::ide
