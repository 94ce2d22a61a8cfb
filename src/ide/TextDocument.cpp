#include "ide/TextDocument.h"

#include "ide/CodeLineScan.h"
#include "ide/ModuleText.h"

#include <windows.h>

#include <algorithm>

namespace brannoc::ide {

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

int CountLineBreaks(std::string_view text)
{
    int count = 0;
    for (size_t i = text.find("\r\n"); i != std::string_view::npos; i = text.find("\r\n", i + 2))
        ++count;
    return count;
}

bool IsCommentOrEmpty(std::string_view line)
{
    size_t i = 0;
    while (i < line.size() && IsBlank(line[i]))
        ++i;
    if (i == line.size() || line[i] == '\'')
        return true;
    std::string_view rest = line.substr(i);
    return rest.size() >= 3 && (rest[0] == 'R' || rest[0] == 'r') && (rest[1] == 'E' || rest[1] == 'e') &&
           (rest[2] == 'M' || rest[2] == 'm') && (rest.size() == 3 || !IsWordCharacter(rest[3]));
}

bool EndsWithContinuation(std::string_view line)
{
    return line.size() >= 2 && line[line.size() - 1] == '_' && IsBlank(line[line.size() - 2]);
}

} // namespace

void TextDocument::Load(std::string text)
{
    m_buffer.Load(std::move(text));
    m_caret = m_anchor = TextPosition{};
    m_editingLine = -1;
    m_modified = false;
    m_undo.Clear();
    m_redo.Clear();
    m_endOfDeclarations = -2;
    m_currentStatement = m_errorStatement = LineRange{};
    m_firstVisibleLine = m_firstVisibleColumn = 0;
}

void TextDocument::LoadModule(std::string_view wholeText)
{
    ModuleTextParts parts = SplitModuleText(wholeText);
    m_hiddenText = parts.header + parts.references;
    m_hiddenLines = parts.headerLines + parts.referenceLines;
    Load(std::move(parts.code));
}

TextPosition TextDocument::Clamp(TextPosition position) const
{
    position.line = std::clamp(position.line, 0, LineCount() - 1);
    position.column = std::clamp(position.column, 0, m_buffer.LineLength(position.line));
    return position;
}

void TextDocument::MoveCaret(TextPosition to, bool extendSelection)
{
    to = Clamp(to);
    if (m_editingLine >= 0 && to.line != m_editingLine)
        CommitEditingLine();
    m_caret = Clamp(to);
    if (!extendSelection)
        m_anchor = m_caret;
    else
        m_anchor = Clamp(m_anchor);
}

void TextDocument::Select(TextPosition anchor, TextPosition caret)
{
    MoveCaret(anchor, false);
    MoveCaret(caret, true);
}

std::string TextDocument::SelectedText() const
{
    TextPosition start = SelectionStart(), end = SelectionEnd();
    if (start.line == end.line)
        return std::string(Line(start.line).substr(start.column, end.column - start.column));
    std::string text(Line(start.line).substr(start.column));
    for (int line = start.line + 1; line < end.line; ++line) {
        text += "\r\n";
        text += Line(line);
    }
    text += "\r\n";
    text += Line(end.line).substr(0, end.column);
    return text;
}

LineRange TextDocument::SelectedLines() const
{
    TextPosition start = SelectionStart(), end = SelectionEnd();
    int last = end.line;
    if (end.line > start.line && end.column == 0)
        --last;
    return LineRange{start.line, last};
}

UndoRecord TextDocument::RecordFor(int first, int oldLast, int newLineCount) const
{
    UndoRecord record;
    record.replacedText = m_buffer.Text(first, oldLast);
    record.firstLine = first;
    record.lastLine = first + newLineCount - 1;
    record.lineCountAfter = LineCount() - (oldLast - first + 1) + newLineCount;
    record.caretLine = m_caret.line;
    record.caretColumn = m_caret.column;
    record.modifiedBefore = m_modified;
    return record;
}

bool TextDocument::Replace(const Replacement& change, ChangeKind kind, bool commitAll)
{
    TextPosition start = Clamp(change.start), end = Clamp(change.end);
    if (end < start)
        std::swap(start, end);
    if (m_editingLine >= 0 && (m_editingLine < start.line || m_editingLine > end.line))
        CommitEditingLine();

    std::string joined(Line(start.line).substr(0, start.column));
    joined += change.text;
    size_t tailLength = Line(end.line).size() - end.column;
    joined += Line(end.line).substr(end.column);
    int newLineCount = CountLineBreaks(joined) + 1;

    UndoRecord record = RecordFor(start.line, end.line, newLineCount);
    const UndoRecord* previous = m_undo.Newest();
    bool mergesWithPrevious = !m_applyingHistory && kind == ChangeKind::Typing && previous &&
                              previous->firstLine == record.firstLine && previous->lastLine == record.lastLine &&
                              previous->lineCountAfter == record.lineCountAfter;
    record.groupedWithPrevious = kind == ChangeKind::Grouped;

    bool firstLineBreakPoint = m_buffer.Info(start.line).breakPoint;
    std::vector<std::string> lines = SplitLines(joined);
    if (!m_buffer.ReplaceLines(start.line, end.line, lines)) {
        MessageBeep(MB_ICONHAND);
        return false;
    }
    if (!m_applyingHistory) {
        m_redo.Clear();
        if (!mergesWithPrevious)
            m_undo.Push(std::move(record));
    } else {
        m_pendingInverse = std::move(record);
    }
    int newLast = start.line + newLineCount - 1;
    m_buffer.Info(start.line).breakPoint = firstLineBreakPoint;
    ShiftMarks(start.line, end.line, newLast);

    for (int line = start.line; line < newLast; ++line)
        CommitLine(line);
    m_caret = m_anchor = TextPosition{newLast, m_buffer.LineLength(newLast) - static_cast<int>(tailLength)};
    m_editingLine = newLast;
    if (commitAll)
        CommitEditingLine();
    m_modified = true;
    return true;
}

void TextDocument::ShiftMarks(int first, int oldLast, int newLast)
{
    int delta = newLast - oldLast;
    // The end of the declarations depends on the lines up to the first procedure header only.
    bool headerAdded = false;
    for (int line = first; line <= newLast && !headerAdded; ++line)
        headerAdded = (LineClassOf(line) & LineClass::ProcedureHeader) != 0;
    if (m_firstHeader < 0 ? headerAdded : first <= m_firstHeader)
        m_endOfDeclarations = -2;
    for (LineRange* range : {&m_currentStatement, &m_errorStatement}) {
        if (range->first < 0)
            continue;
        if (range->last >= first && range->first <= oldLast)
            *range = LineRange{};
        else if (range->first > oldLast)
            *range = LineRange{range->first + delta, range->last + delta};
    }
}

bool TextDocument::ReplaceSelection(std::string_view text, ChangeKind kind)
{
    return Replace(Replacement{m_anchor, m_caret, text}, kind, false);
}

void TextDocument::CommitLine(int line)
{
    if (line < 0 || line >= LineCount())
        return;
    std::string text(Line(line));
    bool changed = false;
    if (m_tabsAsSpaces && !text.empty())
        changed = ExpandTabs(text, m_tabWidth);
    if (m_keywords)
        changed = CorrectKeywordCase(text, *m_keywords) || changed;
    if (changed) {
        bool breakPoint = m_buffer.Info(line).breakPoint;
        m_buffer.SetLine(line, std::move(text));
        m_buffer.Info(line).breakPoint = breakPoint;
        m_caret = Clamp(m_caret);
        m_anchor = Clamp(m_anchor);
    }
}

void TextDocument::CommitEditingLine()
{
    int line = m_editingLine;
    m_editingLine = -1;
    CommitLine(line);
}

void TextDocument::ApplyHistory(UndoList& from, UndoList& to)
{
    bool inverseGrouped = false;
    for (;;) {
        UndoRecord record = from.Pop();
        m_applyingHistory = true;
        int last = std::min(record.lastLine, LineCount() - 1);
        m_editingLine = -1;
        bool applied = Replace(Replacement{TextPosition{record.firstLine, 0},
                                           TextPosition{last, m_buffer.LineLength(last)}, record.replacedText},
                               ChangeKind::Forced, false);
        m_applyingHistory = false;
        if (applied) {
            m_pendingInverse.groupedWithPrevious = inverseGrouped;
            to.Push(std::move(m_pendingInverse));
        }
        m_editingLine = -1;
        m_caret = m_anchor = Clamp(TextPosition{record.caretLine, record.caretColumn});
        m_modified = record.modifiedBefore;
        if (!record.groupedWithPrevious || from.Empty())
            return;
        inverseGrouped = true;
    }
}

bool TextDocument::Undo()
{
    if (m_undo.Empty())
        return false;
    CommitEditingLine();
    ApplyHistory(m_undo, m_redo);
    return true;
}

bool TextDocument::Redo()
{
    if (m_redo.Empty())
        return false;
    CommitEditingLine();
    ApplyHistory(m_redo, m_undo);
    return true;
}

void TextDocument::EmptyUndoHistory()
{
    m_undo.Clear();
    m_redo.Clear();
}

void TextDocument::InsertNewLine()
{
    TextPosition start = SelectionStart(), end = SelectionEnd();
    std::string_view line = Line(start.line);
    size_t indent = 0;
    while (indent < line.size() && indent < static_cast<size_t>(start.column) && IsBlank(line[indent]))
        ++indent;
    std::string text = "\r\n" + std::string(line.substr(0, indent));
    std::string_view endLine = Line(end.line);
    while (end.column < static_cast<int>(endLine.size()) && endLine[end.column] == ' ')
        ++end.column;
    Replace(Replacement{start, end, text}, ChangeKind::Forced, false);
}

void TextDocument::Backspace()
{
    if (HasSelection()) {
        ReplaceSelection("");
        return;
    }
    TextPosition caret = m_caret;
    if (caret.column == 0) {
        if (caret.line > 0)
            Replace(Replacement{TextPosition{caret.line - 1, m_buffer.LineLength(caret.line - 1)}, caret, ""},
                    ChangeKind::Forced, false);
        return;
    }
    std::string_view line = Line(caret.line);
    bool onlyBlanks = line.substr(0, caret.column).find_first_not_of(' ') == std::string_view::npos;
    int to = onlyBlanks ? ((caret.column - 1) / m_tabWidth) * m_tabWidth
                        : static_cast<int>(CharPrevExA(CP_ACP, line.data(), line.data() + caret.column, 0) - line.data());
    Replace(Replacement{TextPosition{caret.line, to}, caret, ""}, ChangeKind::Typing, false);
}

void TextDocument::DeleteForward()
{
    if (HasSelection()) {
        ReplaceSelection("");
        return;
    }
    TextPosition caret = m_caret;
    std::string_view line = Line(caret.line);
    if (caret.column >= static_cast<int>(line.size())) {
        if (caret.line + 1 < LineCount())
            Replace(Replacement{caret, TextPosition{caret.line + 1, 0}, ""}, ChangeKind::Forced, false);
        return;
    }
    int next = static_cast<int>(CharNextExA(CP_ACP, line.data() + caret.column, 0) - line.data());
    Replace(Replacement{caret, TextPosition{caret.line, next}, ""}, ChangeKind::Typing, false);
}

void TextDocument::DeleteWordBefore()
{
    if (HasSelection() || m_caret.column == 0) {
        Backspace();
        return;
    }
    std::string_view line = Line(m_caret.line);
    int column = m_caret.column;
    while (column > 0 && IsBlank(line[column - 1]))
        --column;
    if (column > 0 && IsWordCharacter(line[column - 1])) {
        while (column > 0 && IsWordCharacter(line[column - 1]))
            --column;
    } else if (column > 0 && column == m_caret.column) {
        --column;
    }
    Replace(Replacement{TextPosition{m_caret.line, column}, m_caret, ""}, ChangeKind::Forced, false);
}

void TextDocument::TypeCharacter(char c)
{
    TextPosition end = m_caret;
    if (m_overwrite && !HasSelection() && c != '\t' && end.column < m_buffer.LineLength(end.line)) {
        std::string_view line = Line(end.line);
        end.column = static_cast<int>(CharNextExA(CP_ACP, line.data() + end.column, 0) - line.data());
    }
    Replace(Replacement{m_anchor, end, std::string_view(&c, 1)}, ChangeKind::Typing, false);
}

void TextDocument::IndentSelectedLines()
{
    LineRange lines = SelectedLines();
    std::string text;
    for (int line = lines.first; line <= lines.last; ++line) {
        if (line > lines.first)
            text += "\r\n";
        text += '\t';
        text += Line(line);
    }
    Replace(Replacement{TextPosition{lines.first, 0}, TextPosition{lines.last, m_buffer.LineLength(lines.last)}, text},
            ChangeKind::Forced, true);
    Select(TextPosition{lines.first, 0}, TextPosition{lines.last, m_buffer.LineLength(lines.last)});
}

void TextDocument::OutdentSelectedLines()
{
    LineRange lines = SelectedLines();
    std::string text;
    for (int line = lines.first; line <= lines.last; ++line) {
        std::string_view content = Line(line);
        size_t blanks = 0;
        while (blanks < content.size() && blanks < static_cast<size_t>(m_tabWidth) && content[blanks] == ' ')
            ++blanks;
        if (blanks < static_cast<size_t>(m_tabWidth) && blanks < content.size() && content[blanks] == '\t')
            ++blanks;
        if (line > lines.first)
            text += "\r\n";
        text += content.substr(blanks);
    }
    Replace(Replacement{TextPosition{lines.first, 0}, TextPosition{lines.last, m_buffer.LineLength(lines.last)}, text},
            ChangeKind::Forced, true);
    Select(TextPosition{lines.first, 0}, TextPosition{lines.last, m_buffer.LineLength(lines.last)});
}

void TextDocument::SetTabs(bool asSpaces, int width)
{
    m_tabsAsSpaces = asSpaces;
    m_tabWidth = std::clamp(width, 1, 8);
}

uint8_t TextDocument::LineClassOf(int line)
{
    TextLine& info = m_buffer.Info(line);
    if (info.classFlags == 0)
        info.classFlags = ClassifyLine(m_buffer.Line(line));
    return info.classFlags;
}

int TextDocument::EndOfDeclarations()
{
    if (m_endOfDeclarations != -2)
        return m_endOfDeclarations;
    m_endOfDeclarations = -1;
    m_firstHeader = -1;
    for (int line = 0; line < LineCount(); ++line) {
        if (LineClassOf(line) & LineClass::ProcedureHeader) {
            m_firstHeader = line;
            int before = line - 1;
            while (before >= 0 && IsCommentOrEmpty(Line(before)))
                --before;
            m_endOfDeclarations = before;
            break;
        }
    }
    return m_endOfDeclarations;
}

int TextDocument::StatementEnd(int line) const
{
    while (line + 1 < LineCount() && EndsWithContinuation(Line(line)))
        ++line;
    return line;
}

int TextDocument::StatementStart(int line) const
{
    while (line > 0 && EndsWithContinuation(Line(line - 1)))
        --line;
    return line;
}

void TextDocument::MarkCurrentStatement(int line)
{
    if (line < 0 || line >= LineCount()) {
        m_currentStatement = LineRange{};
        return;
    }
    m_currentStatement = LineRange{line, StatementEnd(line)};
    MoveCaret(TextPosition{line, 0}, false);
}

void TextDocument::MarkErrorStatement(int line)
{
    if (line < 0 || line >= LineCount())
        m_errorStatement = LineRange{};
    else
        m_errorStatement = LineRange{line, StatementEnd(line)};
}

void TextDocument::SetBreakPoint(int line, bool set)
{
    if (line >= 0 && line < LineCount())
        m_buffer.Info(line).breakPoint = set;
}

void TextDocument::SetFirstVisibleLine(int line)
{
    m_firstVisibleLine = std::clamp(line, 0, LineCount() - 1);
}

void TextDocument::SetFirstVisibleColumn(int column)
{
    m_firstVisibleColumn = std::clamp(column, 0, kMaxScrollColumn);
}

} // namespace brannoc::ide
