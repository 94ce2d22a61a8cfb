#pragma once
// The per-window state of the text area, shared by its message handler, its input handling and its
// clipboard support.
#include "ide/TextArea.h"
#include "ide/TextAreaPopups.h"
#include "ide/TextAreaView.h"

#include <windows.h>

namespace brannoc::ide {

// What a pressed mouse button does: select text or whole lines, or (pressed inside the selection)
// wait for a move that starts an OLE drag of the selected text.
enum class MouseDrag { None, Text, Lines, PendingOleDrag };

struct ScrollBarState {
    int maximum = -1;
    int page = 0;
    int position = 0;
    friend bool operator==(const ScrollBarState&, const ScrollBarState&) = default;
};

struct TextAreaState {
    HWND window = nullptr;
    TextAreaView view;
    TextDocument ownDocument;
    TextDocument* document = &ownDocument;
    EditorColours colours;
    KeywordSets ownKeywords;
    const KeywordSets* keywords = &ownKeywords;
    HFONT ownFont = nullptr;
    bool active = false;
    bool hasCaret = false;
    int wheelLines = 3;
    MouseDrag drag = MouseDrag::None;
    int dragAnchorLine = 0;
    POINT lastMouse{};
    POINT caretPoint{-1, -1};        // where the caret was last placed
    ScrollBarState verticalBar, horizontalBar; // what the scroll bars were last given
    HCURSOR textCursor = nullptr;
    HCURSOR arrowCursor = nullptr;
    HCURSOR lineCursor = nullptr;
    TextAreaPopups popups;
    bool oleInitialised = false;
    bool dropTargetRegistered = false;
    POINT pressPoint{};              // where a pending OLE drag was pressed
    TextPosition pressPosition;
    bool draggingOut = false;        // an OLE drag from this control is under way
    bool droppedInside = false;      // ... and ended on this control

    bool ReadOnly() const { return (GetWindowLongA(window, GWL_STYLE) & ES_READONLY) != 0; }
    // After any change of text, caret or scrolling: keep the caret visible (when asked), update the
    // scroll bars, repaint and place the caret.
    void Refresh(bool showCaret = true);
    void EnsureCaretVisible();
    void UpdateScrollBars();
    void PlaceCaret();
    void ScrollTo(int firstLine, int firstColumn);
    // Refuses an edit in read-only mode with a beep.
    bool CanEdit() const;
    void PostCommand(int command) const;
};

// Input (keys, characters, mouse, wheel, scroll bars): answers true when the message was handled.
bool HandleInput(TextAreaState& state, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
// Clipboard messages and their key equivalents.
void CopySelection(TextAreaState& state, bool cut);
void PasteClipboard(TextAreaState& state);
void ClearSelection(TextAreaState& state);
// OLE drag and drop: the control's drop target (one reference for the caller), and the drag of the
// selected text (returns when the drag ends).
IDropTarget* CreateTextAreaDropTarget(TextAreaState& state);
void StartTextDrag(TextAreaState& state);
// Wheel lines per notch as the system reports them.
int QueryWheelScrollLines();

} // namespace brannoc::ide
