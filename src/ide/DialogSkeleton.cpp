#include "ide/DialogSkeleton.h"

#include "ide/DialogLineSyntax.h"
#include "ide/EditorStrings.h"

namespace brannoc::ide {

std::string SkeletonText(const std::string& name, const std::vector<std::string>& lines)
{
    std::string text = "\r\n";
    for (const std::string& line : lines)
        text += line + "\r\n";
    // The string table declares the value as an Integer; the dialog function receives a Long.
    ReplaceAll(text, ", SuppValue%)", ", SuppValue&)");
    ReplaceAll(text, "<NAME>", name);
    return text;
}

std::string SkeletonText(const std::string& name)
{
    std::vector<std::string> lines;
    for (unsigned id = kFirstSkeletonString; id <= kLastSkeletonString; ++id)
        lines.push_back(LoadRawEditorString(id));
    return SkeletonText(name, lines);
}

bool HasProcedure(const std::vector<std::string>& lines, const std::string& name)
{
    for (const std::string& line : lines) {
        std::vector<std::string> words = LeadingWords(line, 4);
        size_t at = 0;
        while (at < words.size() &&
               (EqualsNoCase(words[at], "Private") || EqualsNoCase(words[at], "Public") || EqualsNoCase(words[at], "Static")))
            ++at;
        if (at + 1 < words.size() && (EqualsNoCase(words[at], "Function") || EqualsNoCase(words[at], "Sub")) &&
            EqualsNoCase(words[at + 1], name))
            return true;
    }
    return false;
}

} // namespace brannoc::ide
