#pragma once
// The built-ins of user dialogs that the compiler calls for the Begin Dialog block and the Dialog
// statement and function (their arguments are laid out by the compiler, not written by the macro), and
// the instruction forms of the Dlg functions, whose statement form differs from the function form.
#include "library/BuiltinTable.h"

namespace brannoc {

// Stores the evaluated definition into the hidden slot: (slot, template, x, y, dx, dy, title, six
// values per item, list arrays).
const BuiltinRecord& DialogDefinitionRecord();
// (definition, dialog variable, [DefaultButton]): the function returns the exit code; the statement
// raises "User pressed cancel." for 0.
const BuiltinRecord& DialogFunctionRecord();
const BuiltinRecord& DialogStatementRecord();
// The instruction form of a Dlg function called as a statement, or null.
const BuiltinRecord* DialogInstructionForm(Token keyword);

} // namespace brannoc
