#include "ide/CodeLineScan.h"

#include <windows.h>

namespace brannoc::ide {

bool IsWordCharacter(char c)
{
    return c == '_' || IsCharAlphaNumericA(c);
}

namespace detail {

size_t ScanQuoted(std::string_view line, size_t start, char close)
{
    size_t end = line.find(close, start + 1);
    return end == std::string_view::npos ? line.size() : end + 1;
}

size_t ScanWord(std::string_view line, size_t start)
{
    size_t end = start;
    while (end < line.size() && IsWordCharacter(line[end]))
        ++end;
    return end;
}

} // namespace detail

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

bool EqualsIgnoringCase(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i) {
        char x = a[i], y = b[i];
        if (x >= 'a' && x <= 'z')
            x = static_cast<char>(x - 32);
        if (y >= 'a' && y <= 'z')
            y = static_cast<char>(y - 32);
        if (x != y)
            return false;
    }
    return true;
}

// The word starting at `position` after blanks, and the position after it.
std::string_view NextWord(std::string_view line, size_t& position)
{
    while (position < line.size() && IsBlank(line[position]))
        ++position;
    size_t start = position;
    position = detail::ScanWord(line, position);
    return line.substr(start, position - start);
}

bool IsProcedureWord(std::string_view word)
{
    return EqualsIgnoringCase(word, "Sub") || EqualsIgnoringCase(word, "Function") ||
           EqualsIgnoringCase(word, "Property");
}

bool HoldsAs(std::string_view line)
{
    for (size_t i = 0; i + 3 < line.size(); ++i) {
        if (IsBlank(line[i]) && (line[i + 1] == 'A' || line[i + 1] == 'a') && line[i + 2] == 's' &&
            IsBlank(line[i + 3]))
            return true;
    }
    return false;
}

bool IsUsesComment(std::string_view line, size_t position)
{
    if (line.substr(position, 2) != "'#")
        return false;
    position += 2;
    while (position < line.size() && IsBlank(line[position]))
        ++position;
    return EqualsIgnoringCase(line.substr(position, 4), "Uses");
}

} // namespace

uint8_t ClassifyLine(std::string_view line)
{
    size_t position = 0;
    while (position < line.size() && IsBlank(line[position]))
        ++position;
    if (IsUsesComment(line, position))
        return LineClass::Uses;
    std::string_view first = NextWord(line, position);
    uint8_t flags = LineClass::Other;
    if (EqualsIgnoringCase(first, "Public") || EqualsIgnoringCase(first, "Private") ||
        EqualsIgnoringCase(first, "Friend"))
        first = NextWord(line, position);
    if (IsProcedureWord(first)) {
        flags = LineClass::ProcedureHeader;
    } else if (EqualsIgnoringCase(first, "With")) {
        return LineClass::With;
    } else if (EqualsIgnoringCase(first, "End")) {
        std::string_view second = NextWord(line, position);
        if (IsProcedureWord(second))
            flags = LineClass::ProcedureEnd;
        else if (EqualsIgnoringCase(second, "With"))
            return LineClass::EndWith;
    }
    if (HoldsAs(line))
        flags |= LineClass::HoldsAs;
    return flags;
}

bool CorrectKeywordCase(std::string& line, const KeywordSets& keywords)
{
    bool changed = false;
    ScanCodeLine(line, keywords, [&](const CodeToken& token) {
        if (token.keywordSet < 0)
            return;
        size_t length = token.kind == TokenKind::Comment ? token.canonical.size() : token.length;
        if (line.compare(token.start, length, token.canonical) != 0) {
            line.replace(token.start, length, token.canonical);
            changed = true;
        }
    });
    return changed;
}

bool ExpandTabs(std::string& line, int tabWidth)
{
    if (line.find('\t') == std::string::npos)
        return false;
    std::string expanded;
    expanded.reserve(line.size() + 8);
    for (char c : line) {
        if (c == '\t')
            expanded.append(tabWidth - expanded.size() % tabWidth, ' ');
        else
            expanded += c;
    }
    line.swap(expanded);
    return true;
}

int DisplayColumn(std::string_view line, size_t column, int tabWidth)
{
    int shown = 0;
    for (size_t i = 0; i < column && i < line.size(); ++i)
        shown = line[i] == '\t' ? (shown / tabWidth + 1) * tabWidth : shown + 1;
    if (column > line.size())
        shown += static_cast<int>(column - line.size());
    return shown;
}

size_t DottedNameStart(std::string_view line, size_t end, size_t lowest)
{
    size_t start = end;
    for (;;) {
        while (start > lowest && (IsWordCharacter(line[start - 1]) || line[start - 1] == '.'))
            --start;
        if (start > lowest + 1 && line[start] == '.' && line[start - 1] == ')') {
            int depth = 0;
            size_t at = start - 1;
            for (;; --at) {
                if (line[at] == ')')
                    ++depth;
                else if (line[at] == '(' && --depth == 0)
                    break;
                if (at == lowest)
                    return start;
            }
            start = at;
            continue;
        }
        return start;
    }
}

} // namespace brannoc::ide
