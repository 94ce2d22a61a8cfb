#pragma once
// One member access written in a procedure (object.Name with its arguments): what the compiler knew
// about it and what the run time needs to reach the member, early-bound through the object's class
// module or late-bound by name.
#include <string>
#include <vector>

namespace brannoc {

class Module;
struct Procedure;

// The access kinds of a member, numbered as the automation bridge numbers them.
enum class MemberAccess : unsigned char { Call = 0, Get = 1, Let = 2, Set = 4 };

struct MemberSite {
    std::string name;
    std::wstring wideName;
    MemberAccess access = MemberAccess::Get;
    // Names of the named arguments, which follow the positional ones (the assigned value of a Let or Set
    // comes last, after them).
    std::vector<std::wstring> namedArguments;
    // Early binding: the class module the compiler saw and its member (a procedure, or a module-level
    // variable's index). Used when the object is an instance of that module.
    const Module* classModule = nullptr;
    Procedure* procedure = nullptr;
    int variable = -1;
    // Late binding to class instances: the member found last, for the module it was found in.
    const Module* cachedModule = nullptr;
    Procedure* cachedProcedure = nullptr;
    int cachedVariable = -1;
};

} // namespace brannoc
