#pragma once
// The lines of one document. A loaded text is kept whole and its lines point into it; a line gets a
// string of its own only once it is edited, so loading a large text copies nothing per line.
// Lines are numbered from 0; character positions count CR LF as two characters, as an EDIT control does.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace brannoc::ide {

struct TextLine {
    std::string ownText;       // the line's text once edited
    uint32_t offset = 0;       // otherwise its place in the loaded text
    uint32_t length = 0;
    bool hasOwnText = false;
    bool breakPoint = false;
    uint8_t classFlags = 0;    // 0: not computed yet
};

class TextBuffer final {
public:
    TextBuffer();

    // Replaces the whole text; lines are separated by CR LF.
    void Load(std::string text);
    int LineCount() const { return static_cast<int>(m_lines.size()); }
    std::string_view Line(int line) const;
    int LineLength(int line) const { return static_cast<int>(Line(line).size()); }
    const TextLine& Info(int line) const { return m_lines[line]; }
    TextLine& Info(int line) { return m_lines[line]; }
    void SetLine(int line, std::string text);

    // Replaces lines [first, last] by `lines` (at least one). Answers false, changing nothing, when
    // the line table cannot grow.
    [[nodiscard]] bool ReplaceLines(int first, int last, std::vector<std::string>& lines);

    // The lines [first, last] joined with CR LF.
    std::string Text(int first, int last) const;
    std::string Text() const { return Text(0, LineCount() - 1); }
    size_t TextLength() const;

    // Character position of a line's start; of (line, column); the line holding a position.
    int LineIndex(int line) const;
    int Position(int line, int column) const { return LineIndex(line) + column; }
    int LineFromPosition(int position) const;

    // Test hook: the line table refuses to grow beyond this many lines (0: no limit).
    void SetGrowthLimitForTest(int lines) { m_growthLimit = lines; }

private:
    std::string m_loaded;
    std::vector<TextLine> m_lines;
    int m_growthLimit = 0;
};

// Splits text at CR LF into lines (always at least one).
std::vector<std::string> SplitLines(std::string_view text);
// Converts lone LF and lone CR line ends to CR LF.
std::string NormaliseLineEnds(std::string_view text);

} // namespace brannoc::ide
