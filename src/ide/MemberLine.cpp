// Member description lines taken apart for the object browser.
#include "ide/MemberLine.h"

#include <cstdlib>

namespace brannoc::ide {

namespace {

constexpr std::string_view kAs = " As ";

bool StartsWith(std::string_view text, std::string_view prefix) { return text.substr(0, prefix.size()) == prefix; }

bool EndsWith(std::string_view text, std::string_view suffix)
{
    return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

std::string_view Trimmed(std::string_view text)
{
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r' || text.back() == '\n'))
        text.remove_suffix(1);
    return text;
}

bool ParseMemberId(std::string_view& text, MEMBERID& id)
{
    if (text.size() < 11 || !StartsWith(text, "0x") || text[10] != ':')
        return false;
    const std::string digits(text.substr(2, 8));
    char* end = nullptr;
    const unsigned long value = std::strtoul(digits.c_str(), &end, 16);
    if (end != digits.c_str() + 8)
        return false;
    id = static_cast<MEMBERID>(value);
    text.remove_prefix(11);
    return true;
}

// The name runs to the first blank or "(" ("_[Static]" and the like stay part of it).
std::string_view TakeName(std::string_view& text)
{
    size_t end = 0;
    while (end < text.size() && text[end] != ' ' && text[end] != '(')
        ++end;
    std::string_view name = text.substr(0, end);
    text.remove_prefix(end);
    return name;
}

// Parameters separated by ", " outside parentheses (array types carry "()").
std::vector<std::string> SplitParameters(std::string_view text)
{
    std::vector<std::string> parameters;
    int depth = 0;
    size_t start = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '(')
            ++depth;
        else if (text[i] == ')')
            --depth;
        else if (text[i] == ',' && depth == 0) {
            parameters.emplace_back(Trimmed(text.substr(start, i - start)));
            start = i + 1;
        }
    }
    std::string_view last = Trimmed(text.substr(start));
    if (!last.empty() || !parameters.empty())
        parameters.emplace_back(last);
    return parameters;
}

// The position of the ")" closing the "(" at text[0], or npos.
size_t ClosingParenthesis(std::string_view text)
{
    int depth = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '(')
            ++depth;
        else if (text[i] == ')' && --depth == 0)
            return i;
    }
    return std::string_view::npos;
}

MemberKind KindOf(bool constant, bool get, bool put, bool hasResult, bool isVariable)
{
    if (constant)
        return MemberKind::Const;
    if (get)
        return MemberKind::PropertyGet;
    if (put)
        return MemberKind::PropertyLet;
    if (isVariable)
        return MemberKind::Property;
    return hasResult ? MemberKind::Function : MemberKind::Sub;
}

} // namespace

std::string ParameterType(std::string_view parameter)
{
    const size_t as = parameter.find(kAs);
    if (as == std::string_view::npos)
        return {};
    std::string_view type = parameter.substr(as + kAs.size());
    const size_t defaultValue = type.find(" : ");
    return std::string(Trimmed(type.substr(0, defaultValue)));
}

std::optional<MemberLine> ParseMemberLine(std::string_view line, bool constant)
{
    std::string_view text = Trimmed(line);
    MemberLine member;
    if (!ParseMemberId(text, member.id))
        return std::nullopt;
    member.description = std::string(text);
    const bool get = EndsWith(text, "=>");
    const bool put = EndsWith(text, "=<");
    if (get || put)
        text.remove_suffix(2);
    member.name = std::string(TakeName(text));
    bool hasResult = false, isVariable = false;
    if (!text.empty() && text.front() == '(') {
        // A function or property get: "(" parameters ")" and " As " the result type.
        const size_t close = ClosingParenthesis(text);
        const std::string_view inside = text.substr(1, close == std::string_view::npos ? text.npos : close - 1);
        member.parameters = SplitParameters(inside);
        text = close == std::string_view::npos ? std::string_view() : text.substr(close + 1);
        if (StartsWith(text, kAs))
            member.type = std::string(Trimmed(text.substr(kAs.size())));
        hasResult = true;
    } else if (StartsWith(text, kAs)) {
        // A variable: the name and its type.
        member.type = std::string(Trimmed(text.substr(kAs.size())));
        isVariable = true;
    } else {
        // A method without result (or a property put): the parameters after a blank.
        member.parameters = SplitParameters(text);
    }
    member.kind = KindOf(constant, get, put, hasResult, isVariable);
    if (member.kind == MemberKind::PropertyLet && !member.parameters.empty()) {
        // The put's last parameter is the value assigned: it gives the type, not an argument.
        member.type = ParameterType(member.parameters.back());
        member.parameters.pop_back();
    }
    return member;
}

const char* MemberKindLabel(MemberKind kind)
{
    switch (kind) {
    case MemberKind::Const: return "Const:";
    case MemberKind::Sub: return "Sub:";
    case MemberKind::Function: return "Function:";
    case MemberKind::PropertyGet: return "Property Get:";
    case MemberKind::PropertyLet: return "Property Let:";
    case MemberKind::Property: return "Property:";
    }
    return "";
}

bool IsHiddenMember(const MemberLine& member) { return member.name.empty() || member.name.front() == '_'; }

std::vector<MemberLine> JoinPropertyPairs(std::vector<MemberLine> members)
{
    std::vector<MemberLine> joined;
    for (MemberLine& member : members) {
        if (member.kind == MemberKind::PropertyLet || member.kind == MemberKind::PropertyGet) {
            const MemberKind other =
                member.kind == MemberKind::PropertyLet ? MemberKind::PropertyGet : MemberKind::PropertyLet;
            bool paired = false;
            for (MemberLine& earlier : joined) {
                if (earlier.id == member.id && earlier.name == member.name && earlier.kind == other) {
                    if (member.kind == MemberKind::PropertyGet)
                        earlier = member;
                    earlier.kind = MemberKind::Property;
                    paired = true;
                    break;
                }
            }
            if (paired)
                continue;
        }
        joined.push_back(std::move(member));
    }
    return joined;
}

} // namespace brannoc::ide
