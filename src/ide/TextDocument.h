#pragma once
// One sheet's text as the editor edits it: the lines, the caret and selection, the marks the debugger
// sets (current statement, error statement, break points), and the undo history. Every change goes
// through one primitive, replacing the selection by a text, which also records the change for undo.
#include "ide/KeywordSets.h"
#include "ide/TextBuffer.h"
#include "ide/UndoList.h"

#include <string>
#include <string_view>

namespace brannoc::ide {

struct TextPosition {
    int line = 0;
    int column = 0;
    friend bool operator==(const TextPosition&, const TextPosition&) = default;
    friend auto operator<=>(const TextPosition& a, const TextPosition& b)
    {
        return a.line != b.line ? a.line <=> b.line : a.column <=> b.column;
    }
};

struct LineRange {
    int first = -1;
    int last = -1;
    bool Holds(int line) const { return first >= 0 && line >= first && line <= last; }
};

// How a change joins the undo history: a plain change on the lines of the previous one merges into
// its record (typing on one line is one step); a forced change always gets a record of its own; a
// grouped change gets a record that is undone together with the previous one.
enum class ChangeKind { Typing, Forced, Grouped };

class TextDocument final {
public:
    explicit TextDocument(const KeywordSets* keywords = nullptr) : m_keywords(keywords) {}

    // Replaces the whole text; the caret goes to the start, the history and the marks are cleared and
    // the document counts as unmodified.
    void Load(std::string text);
    // Loads a module's whole text: its header and reference lines are kept hidden (not shown, not
    // edited) and the code is loaded as by Load.
    void LoadModule(std::string_view wholeText);
    // The hidden lines in front of the code, and the whole text with them.
    const std::string& HiddenText() const { return m_hiddenText; }
    // Replaces the hidden lines (after the module's header was edited); the shown code stays.
    void SetHiddenText(std::string text, int lines) { m_hiddenText = std::move(text); m_hiddenLines = lines; }
    int HiddenLineCount() const { return m_hiddenLines; }
    std::string WholeText() const { return m_hiddenText + m_buffer.Text(); }
    const TextBuffer& Buffer() const { return m_buffer; }
    TextBuffer& Buffer() { return m_buffer; }
    int LineCount() const { return m_buffer.LineCount(); }
    std::string_view Line(int line) const { return m_buffer.Line(line); }
    void SetKeywords(const KeywordSets* keywords) { m_keywords = keywords; }

    // Caret and selection. Moving the caret off the line being edited commits that line.
    TextPosition Caret() const { return m_caret; }
    TextPosition Anchor() const { return m_anchor; }
    void MoveCaret(TextPosition to, bool extendSelection);
    void Select(TextPosition anchor, TextPosition caret);
    bool HasSelection() const { return m_caret != m_anchor; }
    TextPosition SelectionStart() const { return m_caret < m_anchor ? m_caret : m_anchor; }
    TextPosition SelectionEnd() const { return m_caret < m_anchor ? m_anchor : m_caret; }
    std::string SelectedText() const;
    TextPosition Clamp(TextPosition position) const;
    // The first and last line the selection touches (a selection ending at column 0 of a later line
    // leaves that line out).
    LineRange SelectedLines() const;

    // Replaces the selection by `text` (lines separated by CR LF). Answers false, changing nothing,
    // when the line table cannot grow (the control beeps).
    bool ReplaceSelection(std::string_view text, ChangeKind kind = ChangeKind::Typing);
    bool CanUndo() const { return !m_undo.Empty(); }
    bool CanRedo() const { return !m_redo.Empty(); }
    bool Undo();
    bool Redo();
    void EmptyUndoHistory();
    size_t UndoCount() const { return m_undo.Size(); }

    // The line being typed on (drawn plain, committed when the caret leaves it), or -1.
    int EditingLine() const { return m_editingLine; }
    // Expands tabs (in tab-as-spaces mode) and corrects keyword case on the line being edited.
    void CommitEditingLine();
    void CommitLine(int line);

    bool Modified() const { return m_modified; }
    void SetModified(bool modified) { m_modified = modified; }

    // Editing helpers built on ReplaceSelection.
    void InsertNewLine();             // Enter with auto-indent, one undo step
    void Backspace();                 // back to the previous tab stop over blanks
    void DeleteForward();
    void DeleteWordBefore();
    void TypeCharacter(char c);       // replaces the selection; overwrites in overwrite mode
    void IndentSelectedLines();
    void OutdentSelectedLines();

    // Tabs.
    int TabWidth() const { return m_tabWidth; }
    bool TabsAsSpaces() const { return m_tabsAsSpaces; }
    void SetTabs(bool asSpaces, int width);
    bool Overwrite() const { return m_overwrite; }
    void SetOverwrite(bool overwrite) { m_overwrite = overwrite; }

    // Line classes and the end of the declarations section (the last line before the first procedure
    // that is neither empty nor a comment; -1 when there is none).
    uint8_t LineClassOf(int line);
    int EndOfDeclarations();

    // Statements: the last line of the statement starting at `line` (continuation lines end in " _").
    int StatementEnd(int line) const;
    int StatementStart(int line) const;

    // Debugger marks.
    LineRange CurrentStatement() const { return m_currentStatement; }
    LineRange ErrorStatement() const { return m_errorStatement; }
    void MarkCurrentStatement(int line);  // -1 clears; also moves the caret there
    void MarkErrorStatement(int line);    // -1 clears
    void SetBreakPoint(int line, bool set);
    bool BreakPoint(int line) const { return m_buffer.Info(line).breakPoint; }

    // Scrolling state kept with the document, so that a sheet shows where it was left.
    int FirstVisibleLine() const { return m_firstVisibleLine; }
    int FirstVisibleColumn() const { return m_firstVisibleColumn; }
    void SetFirstVisibleLine(int line);
    void SetFirstVisibleColumn(int column);
    static constexpr int kMaxScrollColumn = 1024;

private:
    struct Replacement {
        TextPosition start, end;
        std::string_view text;
    };
    bool Replace(const Replacement& change, ChangeKind kind, bool commitAll);
    UndoRecord RecordFor(int first, int oldLast, int newLineCount) const;
    void ApplyHistory(UndoList& from, UndoList& to);
    void ShiftMarks(int first, int oldLast, int newLast);

    const KeywordSets* m_keywords = nullptr;
    std::string m_hiddenText;
    int m_hiddenLines = 0;
    TextBuffer m_buffer;
    TextPosition m_caret, m_anchor;
    int m_editingLine = -1;
    bool m_modified = false;
    UndoList m_undo, m_redo;
    UndoRecord m_pendingInverse; // the inverse of a history step being applied
    bool m_applyingHistory = false;
    int m_tabWidth = 4;
    bool m_tabsAsSpaces = false;
    bool m_overwrite = false;
    int m_endOfDeclarations = -2; // -2: not computed
    int m_firstHeader = -1;       // the first procedure header found with it (-1: none)
    LineRange m_currentStatement, m_errorStatement;
    int m_firstVisibleLine = 0;
    int m_firstVisibleColumn = 0;
};

} // namespace brannoc::ide
