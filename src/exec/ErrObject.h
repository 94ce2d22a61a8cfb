#pragma once
// The members of the language's Err object (the type library's ErrObject) and their reads and writes
// on the engine's error object. Number is the default member: Err alone reads it.
#include "exec/ErrorRecord.h"

#include <string_view>

namespace brannoc {

class Interpreter;
class Variant;

enum class ErrMember : int {
    Number,
    Description,
    Source,
    HelpFile,
    HelpContext,
    LastDllError,
    Raise,
    Clear,
};

// The member of that name (compared without regard to case); false when Err has none.
[[nodiscard]] bool FindErrMember(std::string_view name, ErrMember& member);

// Properties can be read; all but LastDllError can be written. Raise and Clear are methods.
constexpr bool IsErrProperty(ErrMember member) { return member <= ErrMember::LastDllError; }
constexpr bool IsWritableErrProperty(ErrMember member) { return member < ErrMember::LastDllError; }

// Copies a property of the error object into value (Number, HelpContext and LastDllError as Long,
// the others as String). False after raising out of memory.
[[nodiscard]] bool ReadErrProperty(const ErrorRecord& error, ErrMember member, Variant& value);

// Assigns a property: the value is converted to the property's kind first (a conversion error is
// raised and answers false). Number 0 clears the object; another number takes its default
// description.
[[nodiscard]] bool WriteErrProperty(Interpreter& interpreter, ErrMember member, const Variant& value);

// Err.Raise Number [, Source [, Description [, HelpFile [, HelpContext]]]]: arguments holds five
// values, a left-out optional one being the missing-argument value. Raises the error (number 0 raises
// nothing) and answers false when something was raised.
[[nodiscard]] bool RaiseFromErr(Interpreter& interpreter, Variant* arguments);

} // namespace brannoc
