// Declarations read from a sheet's code text: variables, parameters, procedure headers, With blocks.
#include "ide/CodeDeclarations.h"

#include "ide/CodeLineScan.h"

#include <windows.h>

#include <vector>

namespace brannoc::ide {

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view Trimmed(std::string_view text)
{
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && (IsBlank(text.back()) || text.back() == '\r' || text.back() == '\n'))
        text.remove_suffix(1);
    return text;
}

// The leading word of `text` (word characters), with the rest after it in `rest`.
std::string_view LeadingWord(std::string_view text, std::string_view* rest = nullptr)
{
    text = Trimmed(text);
    size_t end = 0;
    while (end < text.size() && IsWordCharacter(text[end]))
        ++end;
    if (rest)
        *rest = Trimmed(text.substr(end));
    return text.substr(0, end);
}

// Removes one leading keyword (ignoring case) followed by a blank; true when it was there.
bool TakeKeyword(std::string_view& text, std::string_view keyword)
{
    std::string_view rest;
    std::string_view word = LeadingWord(text, &rest);
    if (word.empty() || !SameWord(word, keyword) || word.size() == Trimmed(text).size())
        return false;
    text = rest;
    return true;
}

// Splits at the separator where it stands outside quotes and parentheses.
std::vector<std::string_view> SplitOutside(std::string_view text, char separator)
{
    std::vector<std::string_view> parts;
    int depth = 0;
    bool quoted = false;
    size_t start = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '"')
            quoted = !quoted;
        else if (quoted)
            continue;
        else if (c == '(')
            ++depth;
        else if (c == ')')
            --depth;
        else if (c == separator && depth == 0) {
            parts.push_back(text.substr(start, i - start));
            start = i + 1;
        }
    }
    parts.push_back(text.substr(start));
    return parts;
}

// The position of the ")" that closes the "(" at `open`, or npos.
size_t ClosingParenthesis(std::string_view text, size_t open)
{
    int depth = 0;
    bool quoted = false;
    for (size_t i = open; i < text.size(); ++i) {
        if (text[i] == '"')
            quoted = !quoted;
        else if (quoted)
            continue;
        else if (text[i] == '(')
            ++depth;
        else if (text[i] == ')' && --depth == 0)
            return i;
    }
    return std::string_view::npos;
}

// The type after " As " (and "New ") in a declared item: a name, possibly qualified by a library.
std::string TypeAfterAs(std::string_view item)
{
    std::string_view rest = item;
    while (!rest.empty()) {
        std::string_view word = LeadingWord(rest, &rest);
        if (word.empty()) {
            if (!rest.empty())
                rest.remove_prefix(1);
            continue;
        }
        if (!SameWord(word, "As"))
            continue;
        TakeKeyword(rest, "New");
        size_t end = 0;
        while (end < rest.size() && (IsWordCharacter(rest[end]) || rest[end] == '.'))
            ++end;
        return std::string(rest.substr(0, end));
    }
    return {};
}

// One declared item ("x As Integer", "ByVal y() As New Foo = 2"): its name and type; false when the
// item declares another name.
bool ItemDeclares(std::string_view item, std::string_view name, std::string& type)
{
    item = Trimmed(item);
    for (std::string_view modifier : {"Optional", "ParamArray", "ByVal", "ByRef", "WithEvents"})
        TakeKeyword(item, modifier);
    std::string_view declared = LeadingWord(item);
    if (declared.empty() || !SameWord(declared, name))
        return false;
    type = TypeAfterAs(item.substr(declared.size()));
    return true;
}

bool ListDeclares(std::string_view list, std::string_view name, std::string& type)
{
    for (std::string_view item : SplitOutside(list, ','))
        if (ItemDeclares(item, name, type))
            return true;
    return false;
}

// A declaration statement: one of the leading keywords, then the list of declared items.
bool StatementDeclares(std::string_view statement, std::initializer_list<std::string_view> keywords,
                       std::string_view name, std::string& type)
{
    for (std::string_view part : SplitOutside(statement, ':')) {
        std::string_view rest = Trimmed(part);
        bool matched = false;
        for (std::string_view keyword : keywords)
            if (TakeKeyword(rest, keyword)) {
                matched = true;
                break;
            }
        if (!matched || TakeKeyword(rest, "Declare") || SameWord(LeadingWord(rest), "Sub") ||
            SameWord(LeadingWord(rest), "Function") || SameWord(LeadingWord(rest), "Property"))
            continue;
        TakeKeyword(rest, "Const");
        if (ListDeclares(rest, name, type))
            return true;
    }
    return false;
}

bool IsProcedureEnd(std::string_view statement)
{
    std::string_view rest;
    if (!SameWord(LeadingWord(statement, &rest), "End"))
        return false;
    std::string_view what = LeadingWord(rest);
    return SameWord(what, "Sub") || SameWord(what, "Function") || SameWord(what, "Property");
}

std::string DeclaredInProcedure(TextDocument& document, int line, std::string_view name)
{
    const int header = ProcedureHeaderLine(document, line);
    if (header < 0)
        return {};
    std::string type;
    for (int first = document.StatementStart(line); first > header; first = document.StatementStart(first - 1))
        if (StatementDeclares(StatementCode(document, first), {"Dim", "ReDim", "Static"}, name, type))
            return type;
    std::optional<ProcedureHeader> procedure = ParseProcedureHeader(StatementCode(document, header));
    if (!procedure || procedure->parameterPart.empty() || procedure->parameterPart[0] != '(')
        return {};
    std::string_view part = procedure->parameterPart;
    const size_t close = ClosingParenthesis(part, 0);
    if (close != std::string_view::npos && ListDeclares(part.substr(1, close - 1), name, type))
        return type;
    return {};
}

std::string DeclaredInDeclarations(TextDocument& document, std::string_view name)
{
    std::string type;
    for (int first = 0; first < document.LineCount(); first = document.StatementEnd(first) + 1) {
        if (document.LineClassOf(first) & LineClass::ProcedureHeader)
            break;
        if (StatementDeclares(StatementCode(document, first), {"Dim", "Private", "Public", "Global"}, name, type))
            return type;
    }
    return {};
}

} // namespace

bool SameWord(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && CompareStringA(LOCALE_INVARIANT, NORM_IGNORECASE, a.data(), static_cast<int>(a.size()),
                                                  b.data(), static_cast<int>(b.size())) == CSTR_EQUAL;
}

std::string StatementCode(const TextDocument& document, int line)
{
    std::string code;
    const int last = document.StatementEnd(line);
    for (int at = line; at <= last; ++at) {
        std::string_view text = document.Line(at);
        if (at < last)
            text.remove_suffix(1); // the continuation's "_"; its blank stays as the separator
        code += text;
    }
    bool quoted = false;
    for (size_t i = 0; i < code.size(); ++i) {
        if (code[i] == '"')
            quoted = !quoted;
        else if (code[i] == '\'' && !quoted) {
            code.resize(i);
            break;
        }
    }
    return std::string(Trimmed(code));
}

std::optional<ProcedureHeader> ParseProcedureHeader(std::string_view statement)
{
    std::string_view rest = Trimmed(statement);
    while (TakeKeyword(rest, "Public") || TakeKeyword(rest, "Private") || TakeKeyword(rest, "Friend") ||
           TakeKeyword(rest, "Static")) {
    }
    ProcedureHeader header;
    if (TakeKeyword(rest, "Function")) {
        header.function = true;
    } else if (TakeKeyword(rest, "Property")) {
        header.propertyGet = TakeKeyword(rest, "Get");
        header.propertyPut = !header.propertyGet && (TakeKeyword(rest, "Let") || TakeKeyword(rest, "Set"));
        if (!header.propertyGet && !header.propertyPut)
            return std::nullopt;
    } else if (!TakeKeyword(rest, "Sub")) {
        return std::nullopt;
    }
    std::string_view name = LeadingWord(rest, &rest);
    if (name.empty())
        return std::nullopt;
    header.name = std::string(name);
    if (!rest.empty() && std::string_view("!#$%&@").find(rest.front()) != std::string_view::npos)
        rest = Trimmed(rest.substr(1));
    if (rest.empty() || rest.front() != '(')
        header.parameterPart = "() " + std::string(rest);
    else
        header.parameterPart = std::string(rest);
    const size_t close = ClosingParenthesis(header.parameterPart, 0);
    if (close != std::string::npos)
        header.resultType = TypeAfterAs(std::string_view(header.parameterPart).substr(close + 1));
    while (!header.parameterPart.empty() && IsBlank(header.parameterPart.back()))
        header.parameterPart.pop_back();
    return header;
}

int ProcedureHeaderLine(TextDocument& document, int line)
{
    for (int first = document.StatementStart(line);; first = document.StatementStart(first - 1)) {
        const uint8_t flags = document.LineClassOf(first);
        if (flags & LineClass::ProcedureHeader)
            return first;
        if ((flags & LineClass::ProcedureEnd) && first != document.StatementStart(line))
            return -1;
        if (first == 0)
            return -1;
    }
}

std::optional<ProcedureHeader> FindProcedure(TextDocument& document, std::string_view name, bool wantGetter)
{
    std::optional<ProcedureHeader> found;
    for (int first = 0; first < document.LineCount(); first = document.StatementEnd(first) + 1) {
        if (!(document.LineClassOf(first) & LineClass::ProcedureHeader))
            continue;
        std::optional<ProcedureHeader> header = ParseProcedureHeader(StatementCode(document, first));
        if (!header || !SameWord(header->name, name))
            continue;
        const bool preferred = wantGetter ? !header->propertyPut : header->propertyPut;
        if (preferred)
            return header;
        if (!found)
            found = std::move(header);
    }
    return found;
}

std::string DeclaredTypeOf(TextDocument& document, int line, std::string_view name)
{
    if (name.empty() || document.LineCount() == 0)
        return {};
    std::string type = DeclaredInProcedure(document, line, name);
    if (type.empty())
        type = DeclaredInDeclarations(document, name);
    if (type.empty())
        if (std::optional<ProcedureHeader> procedure = FindProcedure(document, name))
            if (procedure->function || procedure->propertyGet)
                type = procedure->resultType;
    return type;
}

std::string WithObjectAt(TextDocument& document, int line)
{
    int open = 0; // With blocks closed between the line and the statement looked at
    for (int first = document.StatementStart(line) - 1; first >= 0; --first) {
        first = document.StatementStart(first);
        const uint8_t flags = document.LineClassOf(first);
        if (flags & LineClass::ProcedureHeader)
            return {};
        if (flags & LineClass::EndWith) {
            ++open;
        } else if (flags & LineClass::With) {
            if (open > 0) {
                --open;
                continue;
            }
            const std::string statement = StatementCode(document, first);
            std::string_view rest = statement;
            TakeKeyword(rest, "With");
            std::string object(Trimmed(rest));
            if (!object.empty() && object.front() == '.')
                object = WithObjectAt(document, first) + object;
            return object;
        }
    }
    return {};
}

} // namespace brannoc::ide
