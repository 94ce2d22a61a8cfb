#include "ide/ModuleText.h"

#include <cctype>

namespace brannoc::ide {

namespace {

// Walks a text line by line; a line ends after CR LF, a lone CR or a lone LF.
class LineCursor final {
public:
    explicit LineCursor(std::string_view text) : m_text(text) {}

    bool AtEnd() const { return m_offset >= m_text.size(); }
    size_t Offset() const { return m_offset; }
    // The current line without its line end.
    std::string_view Line() const { return m_text.substr(m_offset, ContentEnd() - m_offset); }
    void Next()
    {
        size_t end = ContentEnd();
        if (end < m_text.size() && m_text[end] == '\r')
            ++end;
        if (end < m_text.size() && m_text[end] == '\n')
            ++end;
        m_offset = end;
    }

private:
    size_t ContentEnd() const
    {
        size_t end = m_offset;
        while (end < m_text.size() && m_text[end] != '\r' && m_text[end] != '\n')
            ++end;
        return end;
    }

    std::string_view m_text;
    size_t m_offset = 0;
};

std::string_view SkipBlanks(std::string_view line)
{
    size_t start = 0;
    while (start < line.size() && (line[start] == ' ' || line[start] == '\t'))
        ++start;
    return line.substr(start);
}

bool StartsWith(std::string_view line, std::string_view prefix)
{
    if (line.size() < prefix.size())
        return false;
    for (size_t i = 0; i < prefix.size(); ++i) {
        if (std::toupper(static_cast<unsigned char>(line[i])) != std::toupper(static_cast<unsigned char>(prefix[i])))
            return false;
    }
    return true;
}

// The line's first word is `word` (what follows cannot continue a name).
bool StartsWithWord(std::string_view line, std::string_view word)
{
    if (!StartsWith(line, word))
        return false;
    if (line.size() == word.size())
        return true;
    unsigned char next = static_cast<unsigned char>(line[word.size()]);
    return !std::isalnum(next) && next != '_';
}

bool IsUsesLine(std::string_view line) { return line.size() >= 3 && line[0] == '\'' && line[1] == '#' && (line[2] == 'U' || line[2] == 'u'); }

// Moves past the VERSION line, its BEGIN ... END block, "Object" and "Attribute" lines.
void SkipObjectHeader(LineCursor& cursor, int& lines)
{
    cursor.Next();
    ++lines;
    int depth = 0;
    while (!cursor.AtEnd()) {
        std::string_view line = SkipBlanks(cursor.Line());
        if (depth > 0) {
            if (StartsWithWord(line, "BEGIN"))
                ++depth;
            else if (StartsWithWord(line, "END"))
                --depth;
        } else if (StartsWithWord(line, "BEGIN")) {
            depth = 1;
        } else if (!StartsWithWord(line, "Object") && !StartsWithWord(line, "Attribute")) {
            return;
        }
        cursor.Next();
        ++lines;
    }
}

} // namespace

ModuleTextParts SplitModuleText(std::string_view text)
{
    ModuleTextParts parts;
    LineCursor cursor(text);
    int usesLines = 0;
    while (!cursor.AtEnd() && IsUsesLine(cursor.Line())) {
        cursor.Next();
        ++usesLines;
    }
    size_t headerEnd = 0;
    if (!cursor.AtEnd() && StartsWithWord(cursor.Line(), "Attribute")) {
        cursor.Next();
        parts.headerLines = usesLines + 1;
        headerEnd = cursor.Offset();
    } else if (!cursor.AtEnd() && StartsWithWord(cursor.Line(), "VERSION")) {
        parts.headerLines = usesLines;
        SkipObjectHeader(cursor, parts.headerLines);
        headerEnd = cursor.Offset();
    } else {
        // A macro: the "'#Uses" lines stay in the code.
        cursor = LineCursor(text);
    }
    parts.header = std::string(text.substr(0, headerEnd));
    while (!cursor.AtEnd() && StartsWith(cursor.Line(), "'#Reference ")) {
        cursor.Next();
        ++parts.referenceLines;
    }
    parts.references = std::string(text.substr(headerEnd, cursor.Offset() - headerEnd));
    parts.code = std::string(text.substr(cursor.Offset()));
    return parts;
}

} // namespace brannoc::ide
