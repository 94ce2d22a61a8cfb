#pragma once
// The argument templates the object browser pastes after a member: "_" and the name of each required
// parameter, the name and ":=_" for an optional one, "..." for a ParamArray, and " = _" and the value
// type for a property assignment.
#include "ide/MemberLine.h"

#include <string>
#include <string_view>

namespace brannoc::ide {

enum class TemplateForm {
    Statement,  // the member starts a statement: a Function or "Property:" member is written like a Sub
    Expression, // the member is used for its value
};

// A parameter line reduced to what the template writes: "_Name", "Name:=_" or "...".
std::string ParameterTemplate(std::string_view parameter);

// The text that follows the expression for the member in that form (empty for a constant).
std::string ArgumentTemplate(const MemberLine& member, TemplateForm form);

} // namespace brannoc::ide
