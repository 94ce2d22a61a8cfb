#pragma once
// Late-bound member access on automation objects: the member's name is looked up with
// GetIDsOfNames and the access made with Invoke, both with the locale 0x409; every failure becomes one
// of the language's run-time errors (10080 to 10099, or the server's own number).
#include "code/MemberSite.h"
#include "values/Variant.h"

#include <string>
#include <vector>

namespace brannoc::automation {

// The arguments of one access in the language's order: the positional ones, then the named ones (their
// names in namedArguments, in the same order), then for Let and Set the assigned value.
struct DispatchArguments {
    VARIANT* values = nullptr;
    int count = 0;
    const std::vector<std::wstring>* namedArguments = nullptr;
};

// Performs access on member `name` of object (an empty name: the object's own value). result receives
// the value of a Get or Call. Answers false after raising the run-time error.
[[nodiscard]] bool InvokeMember(IDispatch* object, const std::wstring& name, MemberAccess access,
                                const DispatchArguments& arguments, Variant& result);

} // namespace brannoc::automation
