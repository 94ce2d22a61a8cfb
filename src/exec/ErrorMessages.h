#pragma once
// Run-time error numbers used by the interpreter and the texts of error numbers. The texts themselves
// live in the string table (runtime_messages.rc); this file names the numbers code refers to.
#include <string>

namespace brannoc {

enum class ErrorId : long {
    None = 0,
    Interrupted = 10000,
    OutOfMemory = 10001,
    Overflow = 10062,
    ResumeOutsideHandler = 10071,
    FunctionTerminated = 10525,
    InvalidInstruction = 10564,
    ApplicationSpecific = 11000,
    ExceptionPrefix = 11002,
    HereMarker = 554,
};

constexpr long ToNumber(ErrorId id) noexcept { return static_cast<long>(id); }

// The message of an error number: "" for 0, the string-table text for 10000 to 10999, and
// "Application specific error." for any other number or a number without a text.
std::wstring MessageFor(long number);

} // namespace brannoc
