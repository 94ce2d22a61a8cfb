#pragma once
// One-line descriptions of members of type information, in the manner of the class description
// grammar: "0x" and the member id, the name, the parameters with their types, the result type, and
// "=>" or "=<" for property get and put.
#include <oaidl.h>

#include <string>

namespace brannoc::automation {

// The description of a function of type; asTypeNames: result type in the " As " form after the
// parameters instead of a type character after the name.
std::wstring DescribeFunction(ITypeInfo* type, const FUNCDESC& function, bool asTypeNames);
// The description of a variable (a property without parameters) of type.
std::wstring DescribeVariable(ITypeInfo* type, const VARDESC& variable, bool asTypeNames);
// True for members left out of listings (restricted, hidden with an id, class events).
bool IsLeftOut(const std::wstring& name, WORD flags, bool isFunction);

} // namespace brannoc::automation
