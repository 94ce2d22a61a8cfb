#pragma once
// Array elements passed to by-reference parameters. A parameter binds to a variable cell, and the
// elements of typed arrays are not cells, so the element travels through a hidden slot of the caller's
// frame: its value is copied in before the call, the parameter binds to the slot, and the slot's value
// goes back into the element when the call returns. While the call runs, the reference on the value
// stack keeps the array from being re-dimensioned or released (ElementReferences).
#include "code/ProcedureBody.h"

namespace brannoc {

// kElementArgument: replaces the indexes on top of the value stack by a reference to the hidden slot
// holding the element's value. A Variant that holds an object gives its default member's value instead
// (nothing goes back). False after raising.
[[nodiscard]] bool PushElementArgument(const RunContext& context, const ExprOp& op);
// kElementWriteBack: stores the hidden slot's value into the element it came from and empties the slot.
// False after raising.
[[nodiscard]] bool WriteBackElementArgument(const RunContext& context, const ExprOp& op);

} // namespace brannoc
