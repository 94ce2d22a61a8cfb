#include "ide/ProcedureIndex.h"

#include <cctype>
#include <windows.h>

namespace brannoc::ide {

namespace {

std::vector<std::string> Words(std::string_view line)
{
    std::vector<std::string> words;
    std::string word;
    for (char c : line) {
        if (c == '\'')
            break;
        if (std::isalnum(static_cast<unsigned char>(c)) || c == '_') {
            word += c;
        } else {
            if (!word.empty())
                words.push_back(word);
            word.clear();
            if (c == '(' || c == '=')
                break;
        }
    }
    if (!word.empty())
        words.push_back(word);
    return words;
}

bool Is(const std::string& word, const char* keyword) { return lstrcmpiA(word.c_str(), keyword) == 0; }

} // namespace

std::vector<ProcedureEntry> ListProcedures(const TextDocument& document)
{
    std::vector<ProcedureEntry> entries;
    for (int line = 0; line < document.LineCount(); ++line) {
        std::vector<std::string> words = Words(document.Line(line));
        size_t at = 0;
        while (at < words.size() && (Is(words[at], "Private") || Is(words[at], "Public") || Is(words[at], "Friend") ||
                                     Is(words[at], "Static")))
            ++at;
        if (at + 1 >= words.size())
            continue;
        ProcedureEntry entry;
        entry.line = line;
        if (Is(words[at], "Sub") || Is(words[at], "Function")) {
            entry.kind = Is(words[at], "Sub") ? ProcedureKind::Sub : ProcedureKind::Function;
            entry.name = words[at + 1];
        } else if (Is(words[at], "Property") && at + 2 < words.size()) {
            const std::string& which = words[at + 1];
            entry.kind = Is(which, "Get") ? ProcedureKind::PropertyGet
                       : Is(which, "Let") ? ProcedureKind::PropertyLet : ProcedureKind::PropertySet;
            entry.name = words[at + 2];
        } else {
            continue;
        }
        entries.push_back(entry);
    }
    return entries;
}

std::vector<std::string> ListWithEventsVariables(const TextDocument& document)
{
    std::vector<std::string> names;
    for (int line = 0; line < document.LineCount(); ++line) {
        std::vector<std::string> words = Words(document.Line(line));
        if (words.size() < 3 || !(Is(words[0], "Dim") || Is(words[0], "Private") || Is(words[0], "Public") || Is(words[0], "Global")))
            continue;
        if (Is(words[1], "Declare"))
            continue;
        if (Is(words[1], "WithEvents"))
            names.push_back(words[2]);
    }
    return names;
}

std::string ProcListText(const ProcedureEntry& entry)
{
    switch (entry.kind) {
    case ProcedureKind::PropertyGet: return entry.name + " [PropertyGet]";
    case ProcedureKind::PropertyLet: return entry.name + " [PropertyLet]";
    case ProcedureKind::PropertySet: return entry.name + " [PropertySet]";
    default: return entry.name;
    }
}

} // namespace brannoc::ide
