#include "ide/ModuleAttributes.h"

#include <cctype>
#include <vector>

namespace brannoc::ide {

namespace {

struct HeaderLine {
    std::string text;   // without the line end
    std::string ending; // "\r\n", "\r", "\n" or ""
};

std::vector<HeaderLine> SplitLines(const std::string& header)
{
    std::vector<HeaderLine> lines;
    size_t at = 0;
    while (at < header.size()) {
        size_t end = header.find_first_of("\r\n", at);
        if (end == std::string::npos) {
            lines.push_back({header.substr(at), ""});
            break;
        }
        size_t next = end + 1;
        if (header[end] == '\r' && next < header.size() && header[next] == '\n')
            ++next;
        lines.push_back({header.substr(at, end - at), header.substr(end, next - end)});
        at = next;
    }
    return lines;
}

std::string JoinLines(const std::vector<HeaderLine>& lines)
{
    std::string text;
    for (const HeaderLine& line : lines)
        text += line.text + line.ending;
    return text;
}

std::vector<std::string> Words(const std::string& line)
{
    std::vector<std::string> words;
    std::string word;
    for (char c : line) {
        if (c == ' ' || c == '\t') {
            if (!word.empty())
                words.push_back(word);
            word.clear();
        } else if (c == '=') {
            if (!word.empty())
                words.push_back(word);
            words.push_back("=");
            word.clear();
        } else {
            word += c;
        }
    }
    if (!word.empty())
        words.push_back(word);
    return words;
}

bool Same(const std::string& a, const char* b)
{
    size_t i = 0;
    for (; i < a.size() && b[i]; ++i)
        if (std::toupper(static_cast<unsigned char>(a[i])) != std::toupper(static_cast<unsigned char>(b[i])))
            return false;
    return i == a.size() && b[i] == '\0';
}

// The attribute line "Attribute <name> = ...", or -1.
int FindAttribute(const std::vector<HeaderLine>& lines, const char* name)
{
    for (size_t i = 0; i < lines.size(); ++i) {
        std::vector<std::string> words = Words(lines[i].text);
        if (words.size() >= 3 && Same(words[0], "Attribute") && Same(words[1], name) && words[2] == "=")
            return static_cast<int>(i);
    }
    return -1;
}

// The value of a Boolean attribute; `missing` when the line is absent.
bool AttributeIsTrue(const std::vector<HeaderLine>& lines, const char* name, bool missing)
{
    int line = FindAttribute(lines, name);
    if (line < 0)
        return missing;
    std::vector<std::string> words = Words(lines[static_cast<size_t>(line)].text);
    return words.size() >= 4 && Same(words[3], "True");
}

// Where the attribute's name ends in "Attribute <name> = ..." (the name may be written in any case).
size_t AttributeNameEnd(const std::string& line)
{
    const auto skip = [&](size_t at, bool blanks) {
        while (at < line.size() && ((line[at] == ' ' || line[at] == '\t') == blanks) && line[at] != '=')
            ++at;
        return at;
    };
    const size_t keywordEnd = skip(skip(0, true), false);
    return skip(skip(keywordEnd, true), false);
}

int FindMultiUse(const std::vector<HeaderLine>& lines)
{
    int depth = 0;
    for (size_t i = 0; i < lines.size(); ++i) {
        std::vector<std::string> words = Words(lines[i].text);
        if (words.empty())
            continue;
        if (Same(words[0], "BEGIN"))
            ++depth;
        else if (Same(words[0], "END"))
            --depth;
        else if (depth == 1 && Same(words[0], "MultiUse"))
            return static_cast<int>(i);
    }
    return -1;
}

struct InstancingRow {
    bool multiUse, creatable, exposed, global;
};

constexpr InstancingRow kInstancing[] = {
    {true, true, false, false}, {true, false, true, false}, {false, true, true, false},
    {false, true, true, true}, {true, true, true, false}, {true, true, true, true},
};

} // namespace

std::string ReadVbName(const std::string& header)
{
    std::vector<HeaderLine> lines = SplitLines(header);
    int line = FindAttribute(lines, "VB_Name");
    if (line < 0)
        return {};
    const std::string& text = lines[static_cast<size_t>(line)].text;
    std::string value = text.substr(text.find('=') + 1);
    size_t first = value.find('"');
    size_t last = value.rfind('"');
    if (first != std::string::npos && last > first)
        return value.substr(first + 1, last - first - 1);
    size_t start = value.find_first_not_of(" \t");
    return start == std::string::npos ? std::string() : value.substr(start);
}

bool WriteVbName(std::string& header, const std::string& name)
{
    std::vector<HeaderLine> lines = SplitLines(header);
    int line = FindAttribute(lines, "VB_Name");
    if (line < 0)
        return false;
    std::string& text = lines[static_cast<size_t>(line)].text;
    text = text.substr(0, text.find('=') + 1) + " \"" + name + "\"";
    header = JoinLines(lines);
    return true;
}

int ReadInstancing(const std::string& header)
{
    std::vector<HeaderLine> lines = SplitLines(header);
    int multiUseLine = FindMultiUse(lines);
    bool multiUse = true;
    if (multiUseLine >= 0) {
        std::vector<std::string> words = Words(lines[static_cast<size_t>(multiUseLine)].text);
        multiUse = words.size() >= 3 && words[2] == "-1";
    }
    if (!AttributeIsTrue(lines, "VB_Exposed", false))
        return INSTANCING_PRIVATE;
    if (!AttributeIsTrue(lines, "VB_Creatable", true))
        return INSTANCING_PUBLIC_NOT_CREATABLE;
    if (AttributeIsTrue(lines, "VB_GlobalNameSpace", false))
        return multiUse ? INSTANCING_GLOBAL_MULTI_USE : INSTANCING_GLOBAL_SINGLE_USE;
    return multiUse ? INSTANCING_MULTI_USE : INSTANCING_SINGLE_USE;
}

int WriteInstancing(std::string& header, int instancing)
{
    if (instancing < 1 || instancing > 6)
        return 0;
    const InstancingRow& row = kInstancing[instancing - 1];
    std::vector<HeaderLine> lines = SplitLines(header);
    int multiUseLine = FindMultiUse(lines);
    if (multiUseLine >= 0) {
        std::string& text = lines[static_cast<size_t>(multiUseLine)].text;
        text = text.substr(0, text.find('=') + 1) + (row.multiUse ? " -1 'True" : " 0 'False");
    }
    int added = 0;
    const std::pair<const char*, bool> attributes[] = {
        {"VB_Creatable", row.creatable}, {"VB_Exposed", row.exposed}, {"VB_GlobalNameSpace", row.global}};
    for (const auto& [name, value] : attributes) {
        int line = FindAttribute(lines, name);
        if (line >= 0) {
            std::string& text = lines[static_cast<size_t>(line)].text;
            text = text.substr(0, AttributeNameEnd(text)) + (value ? " = True" : " = False");
            lines[static_cast<size_t>(line)].ending = "\r\n";
        } else {
            if (!lines.empty() && lines.back().ending.empty())
                lines.back().ending = "\r\n";
            lines.push_back({std::string("Attribute ") + name + (value ? " = True" : " = False"), "\r\n"});
            ++added;
        }
    }
    header = JoinLines(lines);
    return added;
}

std::string CleanIdentifier(const std::string& text, int& caret)
{
    std::string clean;
    int removedBefore = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        unsigned char c = static_cast<unsigned char>(text[i]);
        bool keep = clean.empty() ? std::isalpha(c) != 0 : (std::isalnum(c) != 0 || c == '_');
        if (keep)
            clean += static_cast<char>(c);
        else if (static_cast<int>(i) < caret)
            ++removedBefore;
    }
    caret -= removedBefore;
    return clean;
}

} // namespace brannoc::ide
