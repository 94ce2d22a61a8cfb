// The call around the caret, the prototype of what it calls and the argument the caret is in.
#include "ide/ParameterInfo.h"

#include "ide/BrowsePath.h"
#include "ide/CodeLineScan.h"

namespace brannoc::ide {

namespace {

constexpr std::string_view kTypeCharacters = "!#$%&";

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::string Trimmed(std::string_view text)
{
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return std::string(text);
}

bool StartsWith(std::string_view text, std::string_view prefix) { return text.substr(0, prefix.size()) == prefix; }

// A ":" that separates statements (not the one of a named argument's ":=").
bool IsSeparator(std::string_view line, size_t at)
{
    return line[at] == ':' && !(at + 1 < line.size() && line[at + 1] == '=');
}

// Where the caret's statement starts on the line; npos when the caret is inside a string or comment.
size_t StatementStartBefore(std::string_view line, size_t caret)
{
    size_t start = 0;
    bool quoted = false;
    for (size_t i = 0; i < caret; ++i) {
        if (line[i] == '"')
            quoted = !quoted;
        else if (quoted)
            continue;
        else if (line[i] == '\'')
            return std::string_view::npos;
        else if (IsSeparator(line, i))
            start = i + 1;
    }
    return quoted ? std::string_view::npos : start;
}

struct Opening {
    CallSite site;
    bool named = false;
};

} // namespace

std::vector<CallSite> OpenCallSites(std::string_view line, int caretColumn)
{
    const size_t caret = std::min<size_t>(static_cast<size_t>(std::max(caretColumn, 0)), line.size());
    const size_t statement = StatementStartBefore(line, caret);
    if (statement == std::string_view::npos)
        return {};
    std::vector<Opening> open;
    bool firstName = true;
    std::optional<CallSite> blankAtCaret;
    for (size_t i = statement; i < caret;) {
        const char c = line[i];
        if (c == '"') {
            const size_t close = line.find('"', i + 1);
            i = close == std::string_view::npos ? caret : close + 1;
            firstName = false;
            continue;
        }
        if (IsWordCharacter(c) || c == '.') {
            size_t end = i;
            while (end < caret && (IsWordCharacter(line[end]) || line[end] == '.'))
                ++end;
            const size_t start = DottedNameStart(line, i, statement);
            std::string name(line.substr(start, end - start));
            if (end < caret && kTypeCharacters.find(line[end]) != std::string_view::npos)
                ++end;
            size_t next = end;
            while (next < caret && IsBlank(line[next]))
                ++next;
            const int nameColumn = static_cast<int>(start);
            if (next < caret && line[next] == '(') {
                open.push_back({CallSite{name, nameColumn, static_cast<int>(next), CallOpening::Parenthesis}, true});
                i = next + 1;
                firstName = false;
                continue;
            }
            if (firstName && next < caret && line[next] == '=')
                open.push_back({CallSite{name, nameColumn, static_cast<int>(next), CallOpening::Assignment}, true});
            else if (firstName && end < caret && IsBlank(line[end]))
                open.push_back({CallSite{name, nameColumn, static_cast<int>(end), CallOpening::Blank}, true});
            if (next == caret && end < caret && !firstName)
                blankAtCaret = CallSite{name, nameColumn, static_cast<int>(end), CallOpening::Blank};
            firstName = false;
            i = end;
            continue;
        }
        if (c == '(') {
            open.push_back({CallSite{{}, static_cast<int>(i), static_cast<int>(i), CallOpening::Parenthesis}, false});
        } else if (c == ')') {
            while (!open.empty()) {
                const bool parenthesis = open.back().site.opening == CallOpening::Parenthesis;
                open.pop_back();
                if (parenthesis)
                    break;
            }
        }
        if (!IsBlank(c))
            firstName = false;
        ++i;
    }
    std::vector<CallSite> sites;
    if (blankAtCaret)
        sites.push_back(*blankAtCaret);
    for (auto it = open.rbegin(); it != open.rend(); ++it)
        if (it->named)
            sites.push_back(it->site);
    return sites;
}

int ArgumentIndex(std::string_view line, const CallSite& site, int caretColumn)
{
    const size_t caret = std::min<size_t>(static_cast<size_t>(std::max(caretColumn, 0)), line.size());
    if (static_cast<size_t>(site.openColumn) >= caret)
        return -1;
    int depth = 0, commas = 0;
    bool quoted = false;
    for (size_t i = static_cast<size_t>(site.openColumn) + 1; i < caret; ++i) {
        const char c = line[i];
        if (c == '"')
            quoted = !quoted;
        else if (quoted)
            continue;
        else if (c == '\'' || IsSeparator(line, i))
            return -1;
        else if (c == '(')
            ++depth;
        else if (c == ')' && --depth < 0)
            return -1;
        else if (c == ',' && depth == 0)
            ++commas;
    }
    return commas;
}

bool HasParameters(std::string_view prototype)
{
    const size_t open = prototype.find('(');
    return open != std::string_view::npos && open + 1 < prototype.size() && prototype[open + 1] != ')';
}

std::string MemberPrototype(const MemberLine& member)
{
    std::string_view description = member.description;
    if (description.size() >= 2 && description[description.size() - 2] == '=')
        description.remove_suffix(2);
    // Default values are written " : value" and end at the next "," or ")" of the parameter list.
    std::string text;
    for (size_t i = 0; i < description.size(); ++i) {
        if (description.compare(i, 3, " : ") == 0) {
            while (i < description.size() && description[i] != ',' && description[i] != ')')
                ++i;
            if (i == description.size())
                break;
        }
        text += description[i];
    }
    const size_t nameEnd = member.name.size();
    if (text.size() > nameEnd && text[nameEnd] == ' ' && text.compare(0, nameEnd, member.name) == 0 &&
        !StartsWith(std::string_view(text).substr(nameEnd), " As "))
        text = member.name + "(" + text.substr(nameEnd + 1) + ")";
    return text;
}

std::string ProcedurePrototype(const ProcedureHeader& header) { return header.name + header.parameterPart; }

std::vector<std::string> PrototypeParameters(std::string_view prototype)
{
    std::vector<std::string> parameters;
    const size_t open = prototype.find('(');
    if (open == std::string_view::npos)
        return parameters;
    int depth = 0;
    size_t start = open + 1;
    for (size_t i = open; i < prototype.size(); ++i) {
        const char c = prototype[i];
        if (c == '(') {
            ++depth;
        } else if (c == ')' && --depth == 0) {
            if (i > start || !parameters.empty())
                parameters.push_back(Trimmed(prototype.substr(start, i - start)));
            break;
        } else if (c == ',' && depth == 1) {
            parameters.push_back(Trimmed(prototype.substr(start, i - start)));
            start = i + 1;
        }
    }
    return parameters;
}

std::string BracketOptionals(std::string_view prototype)
{
    const size_t open = prototype.find('(');
    if (open == std::string_view::npos)
        return std::string(prototype);
    std::string inside;
    size_t close = open + 1;
    int depth = 0;
    for (size_t i = open; i < prototype.size(); ++i) {
        if (prototype[i] == '(')
            ++depth;
        else if (prototype[i] == ')' && --depth == 0) {
            close = i;
            break;
        }
    }
    for (const std::string& parameter : PrototypeParameters(prototype)) {
        if (!inside.empty())
            inside += ", ";
        inside += StartsWith(parameter, "Optional ") ? "[" + parameter.substr(9) + "]" : parameter;
    }
    std::string text = std::string(prototype.substr(0, open + 1)) + inside + std::string(prototype.substr(close));
    const std::string_view variant = " As Variant]";
    for (size_t at = text.find(variant); at != std::string::npos; at = text.find(variant, at))
        text.replace(at, variant.size(), "]");
    return text;
}

std::string ParameterTypeAt(std::string_view prototype, int index)
{
    const std::vector<std::string> parameters = PrototypeParameters(prototype);
    if (index < 0 || index >= static_cast<int>(parameters.size()))
        return {};
    const std::string& parameter = parameters[static_cast<size_t>(index)];
    const size_t as = parameter.find(" As ");
    if (as == std::string::npos)
        return {};
    std::string type = parameter.substr(as + 4);
    const size_t end = type.find_first_of(",)]");
    if (end != std::string::npos)
        type.resize(end);
    for (std::string_view defaultMark : {" = ", " : "}) {
        const size_t at = type.find(defaultMark);
        if (at != std::string::npos)
            type.resize(at);
    }
    return Trimmed(type);
}

DeclaredTypeLookup CodeDeclarationsAt(TextDocument& document, int line)
{
    return [&document, line](const std::string& name) { return DeclaredTypeOf(document, line, name); };
}

std::string WithCompleted(TextDocument& document, int line, std::string expression)
{
    if (!expression.empty() && expression.front() != '.')
        return expression;
    const std::string object = WithObjectAt(document, line);
    return object.empty() ? std::string() : object + expression;
}

namespace {

// The prototype of what a call site names; "" when it names nothing with a prototype.
std::string PrototypeOf(TextDocument& document, int line, const BrowseCatalog& catalog, const CallSite& site)
{
    const std::string name = WithCompleted(document, line, site.name);
    const bool assigning = site.opening == CallOpening::Assignment;
    const size_t dot = name.rfind('.');
    if (dot == std::string::npos) {
        if (std::optional<ProcedureHeader> procedure = FindProcedure(document, name, !assigning))
            return ProcedurePrototype(*procedure);
        MemberLine member;
        return FindGlobalMember(catalog, name, member) ? MemberPrototype(member) : std::string();
    }
    const BrowsePlace place = ResolvePath(catalog, name.substr(0, dot), CodeDeclarationsAt(document, line));
    if (!place.whole || !place.type)
        return {};
    const std::string memberName = name.substr(dot + 1);
    for (const MemberLine& member : ReadMembers(place.type.Get()))
        if (SameWord(member.name, memberName))
            return MemberPrototype(member);
    return {};
}

} // namespace

std::optional<ParameterTip> FindParameterTip(TextDocument& document, const BrowseCatalog& catalog)
{
    const TextPosition caret = document.Caret();
    const std::string_view line = document.Line(caret.line);
    for (const CallSite& site : OpenCallSites(line, caret.column)) {
        const std::string prototype = PrototypeOf(document, caret.line, catalog, site);
        if (!HasParameters(prototype))
            continue;
        const int argument = ArgumentIndex(line, site, caret.column);
        if (argument < 0)
            continue;
        return ParameterTip{site, caret.line, BracketOptionals(prototype), argument};
    }
    return std::nullopt;
}

} // namespace brannoc::ide
