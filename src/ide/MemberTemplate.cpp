// Argument templates for the object browser's Paste.
#include "ide/MemberTemplate.h"

namespace brannoc::ide {

namespace {

bool TakePrefix(std::string_view& text, std::string_view prefix)
{
    if (text.substr(0, prefix.size()) != prefix)
        return false;
    text.remove_prefix(prefix.size());
    return true;
}

bool WrittenLikeSub(MemberKind kind, TemplateForm form)
{
    if (kind == MemberKind::Sub)
        return true;
    return form == TemplateForm::Statement && (kind == MemberKind::Function || kind == MemberKind::Property);
}

bool AssignsValue(MemberKind kind, TemplateForm form)
{
    return kind == MemberKind::PropertyLet || (kind == MemberKind::Property && form == TemplateForm::Statement);
}

std::string ParameterList(const MemberLine& member)
{
    std::string list;
    for (const std::string& parameter : member.parameters) {
        if (!list.empty())
            list += ", ";
        list += ParameterTemplate(parameter);
    }
    return list;
}

} // namespace

std::string ParameterTemplate(std::string_view parameter)
{
    if (parameter.substr(0, 11) == "ParamArray ")
        return "...";
    const bool optional = TakePrefix(parameter, "Optional ");
    if (!TakePrefix(parameter, "ByVal "))
        TakePrefix(parameter, "ByRef ");
    const std::string name(parameter.substr(0, parameter.find(' ')));
    return optional ? name + ":=_" : "_" + name;
}

std::string ArgumentTemplate(const MemberLine& member, TemplateForm form)
{
    if (member.kind == MemberKind::Const)
        return {};
    std::string text;
    if (!member.parameters.empty()) {
        // Sub-like calls take their arguments after a blank unless they have a result type to pass on.
        if (WrittenLikeSub(member.kind, form) && member.type.empty())
            text = " " + ParameterList(member);
        else
            text = "(" + ParameterList(member) + ")";
    }
    if (AssignsValue(member.kind, form))
        text += " = _" + member.type;
    return text;
}

} // namespace brannoc::ide
