// Completion contexts and the list texts built for them.
#include "ide/CompletionList.h"

#include "ide/BrowsePath.h"
#include "ide/CodeDeclarations.h"
#include "ide/CodeLineScan.h"
#include "ide/ParameterInfo.h"

#include <algorithm>
#include <cctype>
#include <vector>

namespace brannoc::ide {

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::string Entry(std::string_view word, char kind)
{
    std::string line(word);
    line += ' ';
    line += kind;
    line += "\r\n";
    return line;
}

bool LessByName(const std::string& a, const std::string& b) { return lstrcmpiA(a.c_str(), b.c_str()) < 0; }

std::string SortedEntries(std::vector<std::string> entries)
{
    std::sort(entries.begin(), entries.end(), LessByName);
    entries.erase(std::unique(entries.begin(), entries.end()), entries.end());
    std::string text;
    for (const std::string& entry : entries)
        text += entry;
    return text;
}

std::string TypesOf(const BrowseLibrary& library, bool creatableOnly)
{
    std::vector<std::string> entries;
    for (const BrowseType& type : library.types)
        if (!creatableOnly || IsCreatable(type.type.Get()))
            entries.push_back(Entry(type.name, 'G'));
    return SortedEntries(std::move(entries));
}

// The members of the library's types used without qualification, and the names of its enumerations.
std::vector<std::string> GlobalEntries(const BrowseLibrary& library)
{
    std::vector<std::string> entries;
    for (const BrowseType& type : library.types) {
        if (!IsUsedUnqualified(type.type.Get()))
            continue;
        if (IsEnumeration(type.type.Get()))
            entries.push_back(Entry(type.name, 'G'));
        for (const MemberLine& member : ReadMembers(type.type.Get()))
            entries.push_back(Entry(member.name, MemberKindLetter(member)));
    }
    return entries;
}

// The word that ends at `end` (word characters only); empty when none does.
std::string_view WordBefore(std::string_view line, size_t end)
{
    size_t start = end;
    while (start > 0 && IsWordCharacter(line[start - 1]))
        --start;
    return line.substr(start, end - start);
}

// True when the text ends in the word `word` (ignoring case and trailing blanks).
bool EndsWithWord(std::string_view text, std::string_view word)
{
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    if (text.size() < word.size())
        return false;
    const std::string_view last = text.substr(text.size() - word.size());
    const bool separate = text.size() == word.size() || !IsWordCharacter(text[text.size() - word.size() - 1]);
    return separate && SameWord(last, word);
}

// The list after a "." at `dot`: the members of the type the expression before it leads to, or a
// library's types or members.
std::string MemberContextList(TextDocument& document, const BrowseCatalog& catalog, int lineIndex, size_t dot)
{
    const std::string_view line = document.Line(lineIndex);
    const size_t start = DottedNameStart(line, dot);
    std::string expression(line.substr(start, dot - start));
    if (!expression.empty() && std::isdigit(static_cast<unsigned char>(expression.front())))
        return {};
    if (start == dot || (start < line.size() && line[start] == '.'))
        expression = WithCompleted(document, lineIndex, expression.empty() ? std::string() : expression);
    if (expression.empty())
        return {};
    const BrowsePlace place = ResolvePath(catalog, expression, CodeDeclarationsAt(document, lineIndex));
    if (!place.whole)
        return {};
    if (place.type)
        return MemberListText(place.type.Get());
    if (place.library < 0)
        return {};
    const BrowseLibrary& library = catalog.libraries[static_cast<size_t>(place.library)];
    const std::string_view before = line.substr(0, start);
    if (EndsWithWord(before, "New"))
        return TypesOf(library, true);
    if (EndsWithWord(before, "As"))
        return TypesOf(library, false);
    std::vector<std::string> entries = GlobalEntries(library);
    for (const BrowseType& type : library.types)
        entries.push_back(Entry(type.name, 'G'));
    return SortedEntries(std::move(entries));
}

// The list after a blank, "(" or "," (or anything else, for the command): the type lists after "As"
// and "New", the current argument's values while the tip is up, the global names for the command.
std::string WordContextList(const BrowseCatalog& catalog, const CompletionRequest& request, std::string_view line,
                            size_t contextAt, bool blank)
{
    size_t end = contextAt;
    if (blank)
        while (end > 0 && IsBlank(line[end - 1]))
            --end;
    const std::string_view word = WordBefore(line, end);
    if (blank && SameWord(word, "As"))
        return kFixedTypeList + LibraryTypesText(catalog, false);
    if (blank && SameWord(word, "New"))
        return LibraryTypesText(catalog, true);
    if (request.argumentType)
        return ArgumentListText(catalog, *request.argumentType);
    return request.command && !word.empty() ? GlobalListText(catalog) : std::string();
}

} // namespace

char MemberKindLetter(const MemberLine& member)
{
    switch (member.kind) {
    case MemberKind::Const: return 'E';
    case MemberKind::Sub:
    case MemberKind::Function: return 'A';
    default: return member.id == DISPID_VALUE ? 'C' : 'B';
    }
}

std::string LibraryTypesText(const BrowseCatalog& catalog, bool creatableOnly)
{
    std::string text;
    for (const BrowseLibrary& library : catalog.libraries) {
        const std::string types = TypesOf(library, creatableOnly);
        if (!types.empty())
            text += Entry(library.name, 'L') + types;
    }
    return text;
}

std::string MemberListText(ITypeInfo* type)
{
    std::vector<std::string> entries;
    for (const MemberLine& member : ReadMembers(type))
        entries.push_back(Entry(member.name, MemberKindLetter(member)));
    return SortedEntries(std::move(entries));
}

std::string GlobalListText(const BrowseCatalog& catalog)
{
    std::string text = kBooleanList;
    for (const BrowseLibrary& library : catalog.libraries) {
        const std::string globals = SortedEntries(GlobalEntries(library));
        if (!globals.empty())
            text += Entry(library.name, 'L') + globals;
    }
    return text;
}

std::string ArgumentListText(const BrowseCatalog& catalog, std::string_view type)
{
    if (SameWord(type, "Boolean"))
        return kBooleanList;
    const BrowseType* found = type.empty() ? nullptr : ResolveTypeName(catalog, type);
    if (!found || !IsEnumeration(found->type.Get()))
        return {};
    return MemberListText(found->type.Get());
}

CompletionList BuildCompletionList(TextDocument& document, const BrowseCatalog& catalog, const CompletionRequest& request)
{
    CompletionList list;
    const TextPosition caret = document.Caret();
    const std::string_view line = document.Line(caret.line);
    list.line = caret.line;
    size_t end = std::min<size_t>(static_cast<size_t>(caret.column), line.size());
    if (request.command && end < line.size() && IsWordCharacter(line[end]))
        ++end;
    size_t start = std::min<size_t>(static_cast<size_t>(caret.column), line.size());
    while (start > 0 && IsWordCharacter(line[start - 1]))
        --start;
    list.prefixStart = static_cast<int>(start);
    list.prefixEnd = static_cast<int>(end);
    const char context = start > 0 ? line[start - 1] : '\0';
    if (context == '.')
        list.text = MemberContextList(document, catalog, caret.line, start - 1);
    else if (IsBlank(context) || context == '(' || context == ',')
        list.text = WordContextList(catalog, request, line, start - 1, IsBlank(context));
    else if (request.command)
        list.text = request.argumentType ? ArgumentListText(catalog, *request.argumentType) : GlobalListText(catalog);
    return list;
}

} // namespace brannoc::ide
