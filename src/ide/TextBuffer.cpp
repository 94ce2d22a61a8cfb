#include "ide/TextBuffer.h"

#include <new>

namespace brannoc::ide {

TextBuffer::TextBuffer()
{
    m_lines.emplace_back();
}

void TextBuffer::Load(std::string text)
{
    m_loaded = std::move(text);
    std::vector<TextLine> lines;
    lines.reserve(m_loaded.size() / 32 + 1);
    size_t start = 0;
    for (;;) {
        size_t end = m_loaded.find("\r\n", start);
        TextLine line;
        line.offset = static_cast<uint32_t>(start);
        line.length = static_cast<uint32_t>((end == std::string::npos ? m_loaded.size() : end) - start);
        lines.push_back(std::move(line));
        if (end == std::string::npos)
            break;
        start = end + 2;
    }
    m_lines.swap(lines);
}

std::string_view TextBuffer::Line(int line) const
{
    const TextLine& info = m_lines[line];
    if (info.hasOwnText)
        return info.ownText;
    return std::string_view(m_loaded).substr(info.offset, info.length);
}

void TextBuffer::SetLine(int line, std::string text)
{
    TextLine& info = m_lines[line];
    info.ownText = std::move(text);
    info.hasOwnText = true;
    info.classFlags = 0;
}

bool TextBuffer::ReplaceLines(int first, int last, std::vector<std::string>& lines)
{
    int removed = last - first + 1;
    int added = static_cast<int>(lines.size());
    if (m_growthLimit > 0 && LineCount() - removed + added > m_growthLimit)
        return false;
    try {
        if (added > removed)
            m_lines.insert(m_lines.begin() + last + 1, static_cast<size_t>(added - removed), TextLine{});
        else if (added < removed)
            m_lines.erase(m_lines.begin() + first + added, m_lines.begin() + first + removed);
    } catch (const std::bad_alloc&) {
        return false;
    }
    for (int i = 0; i < added; ++i) {
        TextLine& info = m_lines[first + i];
        info = TextLine{};
        info.ownText = std::move(lines[i]);
        info.hasOwnText = true;
    }
    return true;
}

std::string TextBuffer::Text(int first, int last) const
{
    std::string text;
    size_t size = 0;
    for (int line = first; line <= last; ++line)
        size += Line(line).size() + 2;
    text.reserve(size);
    for (int line = first; line <= last; ++line) {
        if (line > first)
            text += "\r\n";
        text += Line(line);
    }
    return text;
}

size_t TextBuffer::TextLength() const
{
    size_t size = 0;
    for (int line = 0; line < LineCount(); ++line)
        size += Line(line).size();
    return size + 2 * static_cast<size_t>(LineCount() - 1);
}

int TextBuffer::LineIndex(int line) const
{
    int position = 0;
    for (int i = 0; i < line; ++i)
        position += LineLength(i) + 2;
    return position;
}

int TextBuffer::LineFromPosition(int position) const
{
    int start = 0;
    for (int line = 0; line < LineCount(); ++line) {
        int next = start + LineLength(line) + 2;
        if (position < next)
            return line;
        start = next;
    }
    return LineCount() - 1;
}

std::vector<std::string> SplitLines(std::string_view text)
{
    std::vector<std::string> lines;
    size_t start = 0;
    for (;;) {
        size_t end = text.find("\r\n", start);
        if (end == std::string_view::npos) {
            lines.emplace_back(text.substr(start));
            return lines;
        }
        lines.emplace_back(text.substr(start, end - start));
        start = end + 2;
    }
}

std::string NormaliseLineEnds(std::string_view text)
{
    std::string normal;
    normal.reserve(text.size() + text.size() / 16);
    for (size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c == '\r') {
            normal += "\r\n";
            if (i + 1 < text.size() && text[i + 1] == '\n')
                ++i;
        } else if (c == '\n') {
            normal += "\r\n";
        } else {
            normal += c;
        }
    }
    return normal;
}

} // namespace brannoc::ide
