#include "ide/DialogLineSyntax.h"

#include <cctype>
#include <cstdlib>

namespace brannoc::ide {

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsWordCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

} // namespace

std::string_view TrimBlanks(std::string_view text)
{
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && (IsBlank(text.back()) || text.back() == '\r' || text.back() == '\n'))
        text.remove_suffix(1);
    return text;
}

CodeAndComment SplitComment(std::string_view line)
{
    CodeAndComment result;
    bool inString = false;
    for (size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '"')
            inString = !inString;
        else if (line[i] == '\'' && !inString) {
            result.comment = std::string(line.substr(i + 1));
            result.hasComment = true;
            line = line.substr(0, i);
            break;
        }
    }
    while (!line.empty() && IsBlank(line.back()))
        line.remove_suffix(1);
    result.code = std::string(line);
    return result;
}

std::vector<std::string> LeadingWords(std::string_view line, size_t count)
{
    std::vector<std::string> words;
    size_t at = 0;
    while (words.size() < count) {
        while (at < line.size() && IsBlank(line[at]))
            ++at;
        size_t start = at;
        while (at < line.size() && IsWordCharacter(line[at]))
            ++at;
        if (at == start)
            break;
        words.emplace_back(line.substr(start, at - start));
        if (at < line.size() && !IsBlank(line[at]))
            break;
    }
    return words;
}

bool EqualsNoCase(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

bool StartsWithWords(std::string_view line, const std::vector<std::string_view>& words)
{
    const std::vector<std::string> found = LeadingWords(line, words.size());
    if (found.size() < words.size())
        return false;
    for (size_t i = 0; i < words.size(); ++i)
        if (!EqualsNoCase(found[i], words[i]))
            return false;
    return true;
}

std::string_view AfterWords(std::string_view line, size_t count)
{
    size_t at = 0;
    for (size_t word = 0; word < count; ++word) {
        while (at < line.size() && IsBlank(line[at]))
            ++at;
        while (at < line.size() && IsWordCharacter(line[at]))
            ++at;
    }
    while (at < line.size() && IsBlank(line[at]))
        ++at;
    return line.substr(at);
}

std::vector<std::string> SplitArguments(std::string_view text)
{
    std::vector<std::string> arguments;
    if (TrimBlanks(text).empty())
        return arguments;
    int depth = 0;
    bool inString = false;
    size_t start = 0;
    for (size_t i = 0; i <= text.size(); ++i) {
        const char c = i < text.size() ? text[i] : ',';
        if (c == '"')
            inString = !inString;
        if (inString && i < text.size())
            continue;
        if (c == '(')
            ++depth;
        else if (c == ')' && depth > 0)
            --depth;
        else if (c == ',' && (depth == 0 || i == text.size())) {
            arguments.emplace_back(TrimBlanks(text.substr(start, i - start)));
            start = i + 1;
        }
    }
    return arguments;
}

std::optional<int> ParseWholeNumber(std::string_view text)
{
    text = TrimBlanks(text);
    if (text.empty() || text.size() > 11)
        return std::nullopt;
    size_t digits = text[0] == '-' || text[0] == '+' ? 1 : 0;
    if (digits == text.size())
        return std::nullopt;
    for (size_t i = digits; i < text.size(); ++i)
        if (!std::isdigit(static_cast<unsigned char>(text[i])))
            return std::nullopt;
    return static_cast<int>(std::strtol(std::string(text).c_str(), nullptr, 10));
}

std::string Quoted(std::string_view text)
{
    std::string quoted = "\"";
    for (char c : text) {
        quoted += c;
        if (c == '"')
            quoted += '"';
    }
    return quoted + "\"";
}

std::optional<std::string> Unquoted(std::string_view argument)
{
    argument = TrimBlanks(argument);
    if (argument.size() < 2 || argument.front() != '"' || argument.back() != '"')
        return std::nullopt;
    std::string text;
    for (size_t i = 1; i + 1 < argument.size(); ++i) {
        if (argument[i] == '"') {
            // Inside the literal a quote must be doubled; a single one ends it early.
            if (i + 2 >= argument.size() || argument[i + 1] != '"')
                return std::nullopt;
            ++i;
        }
        text += argument[i];
    }
    return text;
}

std::vector<std::string> SplitTextLines(std::string_view text)
{
    std::vector<std::string> lines;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string_view::npos) {
            lines.emplace_back(text.substr(start));
            break;
        }
        size_t stop = end > start && text[end - 1] == '\r' ? end - 1 : end;
        lines.emplace_back(text.substr(start, stop - start));
        start = end + 1;
    }
    return lines;
}

} // namespace brannoc::ide
