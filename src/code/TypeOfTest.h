#pragma once
// TypeOf object Is Type: at run time, whether the object on the value stack is of the named type.
#include "code/ProcedureBody.h"

namespace brannoc {

// Replaces the object and the type name above it (a String) by a Boolean: False for Nothing; True for
// the type Object, for an instance of class module `classModule` or of a module that implements the
// type, or for an automation object whose type information carries the name. A value that is not an
// object raises 10080.
[[nodiscard]] bool ReplaceByTypeTest(const RunContext& context, const Module* classModule);

} // namespace brannoc
