#pragma once
// The code editor control: a window of the class "__BrannocTextArea" that shows one document at a
// time with keyword colouring and debugger marks. It answers the multi-line EDIT messages the frame
// uses plus its own messages below.
#include "ide/BrowseCatalog.h"
#include "ide/EditorColours.h"
#include "ide/KeywordSets.h"
#include "ide/TextDocument.h"

#include <windows.h>

#include <functional>
#include <string>

namespace brannoc::ide {

inline constexpr char kTextAreaClassName[] = "__BrannocTextArea";
inline constexpr char kToolbarMessageName[] = "__BrannocToolbar";
inline constexpr LONG_PTR kTextAreaLimit = 2000000000;
inline constexpr int kToggleBreakCommand = 360;

// The control's own messages.
enum TextAreaMessage : UINT {
    TAM_MARKERROR = WM_USER + 0x80,       // lParam line (0-based), -1 clears
    TAM_MARKCURRENT = WM_USER + 0x81,     // lParam line; arrow and caret there
    TAM_HASSELECTION = WM_USER + 0x82,
    TAM_GOTOLINE = WM_USER + 0x83,        // wParam column (-1 whole line, -2 next line start), lParam line
    TAM_SELECTEDLINES = WM_USER + 0x84,   // answers the first line, lParam points to the last
    TAM_SELECTLINES = WM_USER + 0x85,     // wParam first, lParam last
    TAM_GETSELTEXT = WM_USER + 0x86,      // wParam size, lParam buffer (null: length)
    TAM_CANREDO = WM_USER + 0x87,
    TAM_REDO = WM_USER + 0x88,
    TAM_SETTABS = WM_USER + 0x89,         // wParam tabs-as-spaces, lParam width 1 to 8
    TAM_WALKSTATEMENTS = WM_USER + 0x8A,  // wParam bound, lParam StatementVisitor*
    TAM_GETWHOLETEXT = WM_USER + 0x8B,    // hidden header and references + code; wParam size, lParam buffer
    TAM_SCROLLCARET = WM_USER + 0x8C,
    TAM_SETACTIVE = WM_USER + 0x8D,       // wParam flag; answers the old flag
    TAM_CARETRECT = WM_USER + 0x8E,       // lParam RECT* in screen terms
    TAM_HASPOPUP = WM_USER + 0x8F,
    TAM_SHOWPOPUP = WM_USER + 0x90,
    TAM_HIDEPOPUPS = WM_USER + 0x91,
    TAM_ATTACH = WM_USER + 0x100,         // lParam TextDocument* (null: the control's own)
    TAM_FOCUSREFRESH = WM_USER + 0x101,
    TAM_CHANGED = WM_USER + 0x102,
};

// The record handed to TAM_WALKSTATEMENTS: each whole statement whose line class flags meet `mask`
// goes to `visit`; an answer of 0 stops the walk.
struct StatementVisitor {
    unsigned mask = 0xFF;
    int (*visit)(StatementVisitor* self, int firstLine, int lastLine, const char* text, unsigned flags) = nullptr;
    void* context = nullptr;
};

// Registers the window class once per process; answers false when it cannot.
bool RegisterTextAreaClass();

// Direct access for the frame (same thread): the document shown, the colour table and keyword sets.
TextDocument* TextAreaDocument(HWND textArea);
void SetTextAreaColours(HWND textArea, const EditorColours& colours);
// `keywords` must outlive the control's use of it; null returns to the language's own keywords.
void SetTextAreaKeywords(HWND textArea, const KeywordSets* keywords);
void IndentTextArea(HWND textArea, bool outdent);
// What the pop-ups show at the moment: whether each is up, the tip's prototype and current argument.
struct TextAreaPopupView {
    bool listShown = false;
    bool tipShown = false;
    std::string prototype;
    int argument = -1;
};
TextAreaPopupView TextAreaPopupsShown(HWND textArea);
// Where completion and parameter information find the type libraries to offer (the frame's catalog).
void SetTextAreaCatalogSource(HWND textArea, std::function<BrowseCatalog()> source);

} // namespace brannoc::ide
