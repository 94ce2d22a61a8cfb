#pragma once
// Calls of Declare'd procedures: the procedure is bound to its library function at its first call,
// each argument is handed over by its declared type (by reference as an address), and the function's
// result becomes the value of the call.
#include "code/ProcedureBody.h"

namespace brannoc {

struct Procedure;

// The top `count` values are the call's arguments in parameter order; a Function's result goes into
// the slot below them (the arguments stay for the caller to remove). False after raising 10040 or
// 10041 (binding), 10080 (an argument of the wrong kind) or another conversion error.
[[nodiscard]] bool CallExternal(const RunContext& context, Procedure& procedure, int count);

} // namespace brannoc
