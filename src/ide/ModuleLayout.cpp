#include "ide/ModuleLayout.h"

#include <cctype>
#include <vector>

namespace brannoc::ide {

namespace {

struct TextLine {
    size_t offset;
    std::string_view text; // without its line end
};

// Lines end with CR LF, a lone CR or a lone LF.
std::vector<TextLine> SplitLines(std::string_view text)
{
    std::vector<TextLine> lines;
    size_t at = 0;
    while (at < text.size()) {
        size_t end = at;
        while (end < text.size() && text[end] != '\r' && text[end] != '\n')
            ++end;
        lines.push_back({at, text.substr(at, end - at)});
        if (end < text.size() && text[end] == '\r')
            ++end;
        if (end < text.size() && text[end] == '\n')
            ++end;
        at = end;
    }
    return lines;
}

std::string_view TrimLeft(std::string_view line)
{
    while (!line.empty() && (line.front() == ' ' || line.front() == '\t'))
        line.remove_prefix(1);
    return line;
}

std::string_view TrimRight(std::string_view line)
{
    while (!line.empty() && (line.back() == ' ' || line.back() == '\t'))
        line.remove_suffix(1);
    return line;
}

bool StartsWithNoCase(std::string_view line, std::string_view prefix)
{
    if (line.size() < prefix.size())
        return false;
    for (size_t i = 0; i < prefix.size(); ++i)
        if (std::toupper(static_cast<unsigned char>(line[i])) != std::toupper(static_cast<unsigned char>(prefix[i])))
            return false;
    return true;
}

bool IsWord(std::string_view line, std::string_view word)
{
    if (!StartsWithNoCase(line, word))
        return false;
    return line.size() == word.size() || line[word.size()] == ' ' || line[word.size()] == '\t';
}

std::string LastWord(std::string_view line)
{
    line = TrimRight(line);
    size_t start = line.find_last_of(" \t");
    return std::string(start == std::string_view::npos ? line : line.substr(start + 1));
}

// The display form of an object module's type word: first letter upper case, "Form" for a number.
std::string ObjectTypeWord(std::string_view versionLine)
{
    std::string word = LastWord(versionLine);
    if (word.empty() || !std::isalpha(static_cast<unsigned char>(word[0])))
        return "Form";
    for (char& c : word)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    word[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(word[0])));
    return word;
}

bool IsUsesLine(std::string_view line)
{
    return line.size() >= 3 && line[0] == '\'' && line[1] == '#' && (line[2] == 'U' || line[2] == 'u');
}

// Records the MultiUse line inside the BEGIN block and the first Attribute line.
void ReadObjectHeader(const std::vector<TextLine>& lines, size_t versionLine, ModuleLayout& layout)
{
    int depth = 0;
    for (size_t i = versionLine + 1; i < lines.size(); ++i) {
        std::string_view line = TrimLeft(lines[i].text);
        if (depth > 0) {
            if (depth == 1 && IsWord(line, "MULTIUSE") && layout.multiUseLine < 0)
                layout.multiUseLine = static_cast<int>(i);
            if (IsWord(line, "BEGIN"))
                ++depth;
            else if (IsWord(line, "END"))
                --depth;
        } else if (IsWord(line, "BEGIN")) {
            depth = 1;
        } else if (IsWord(line, "Object")) {
            continue;
        } else if (IsWord(line, "Attribute")) {
            if (layout.firstAttributeLine < 0)
                layout.firstAttributeLine = static_cast<int>(i);
        } else {
            return;
        }
    }
}

} // namespace

ModuleLayout ReadModuleLayout(std::string_view wholeText)
{
    ModuleLayout layout;
    layout.parts = SplitModuleText(wholeText);
    std::vector<TextLine> lines = SplitLines(wholeText);
    size_t first = 0;
    while (first < lines.size() && IsUsesLine(lines[first].text))
        ++first;
    if (first >= lines.size())
        return layout;
    std::string_view line = lines[first].text;
    if (IsWord(line, "Attribute")) {
        layout.kind = SheetKind::Code;
        layout.firstAttributeLine = static_cast<int>(first);
    } else if (IsWord(line, "VERSION")) {
        std::string word = LastWord(line);
        bool isClass = word.size() == 5 && StartsWithNoCase(word, "CLASS");
        layout.kind = isClass ? SheetKind::Class : SheetKind::Object;
        if (!isClass)
            layout.objectType = ObjectTypeWord(line);
        layout.versionOffset = static_cast<int>(lines[first].offset);
        ReadObjectHeader(lines, first, layout);
    }
    return layout;
}

std::string NewModuleText(SheetKind kind, std::string_view typeWord, std::string_view name)
{
    static constexpr char kAttributes[] = "Attribute VB_Creatable = True\r\nAttribute VB_Exposed = False\r\n"
                                          "Attribute VB_GlobalNameSpace = False\r\n";
    std::string nameLine = "Attribute VB_Name = \"" + std::string(name) + "\"\r\n";
    switch (kind) {
    case SheetKind::Macro:
        return "Sub Main\r\n\t\r\nEnd Sub\r\n";
    case SheetKind::Code:
        return nameLine;
    case SheetKind::Object: {
        std::string upper(typeWord);
        for (char& c : upper)
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        return "VERSION 1.0 " + upper + "\r\nBEGIN\r\n  MultiUse = -1 'True\r\nEND\r\nAttribute VB_PredeclaredId = True\r\n" +
               kAttributes + nameLine;
    }
    case SheetKind::Class:
        return std::string("VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1 'True\r\nEND\r\nAttribute VB_PredeclaredId = False\r\n") +
               kAttributes + nameLine;
    }
    return {};
}

} // namespace brannoc::ide
