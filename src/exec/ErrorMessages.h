#pragma once
// Run-time error numbers used by the interpreter and the texts of error numbers. The texts themselves
// live in the string table (runtime_messages.rc); this file names the numbers code refers to, taking
// those that the value layer and the library raise too from their table (values/ValueError.h).
#include "values/ValueError.h"

#include <string>
#include <string_view>

namespace brannoc {

enum class ErrorId : long {
    None = 0,
    Interrupted = 10000,
    OutOfMemory = kErrorOutOfMemory,
    SubOrFunctionMissing = 10018,
    WrongParameterCount = kErrorWrongNumberOfParameters,
    CantAllocateLargeArray = 10021,
    ArrayNotDimensioned = kErrorArrayNotDimensioned,
    ArrayIndexOutOfRange = kErrorArrayIndexOutOfRange,
    ArrayLowerBoundAboveUpper = 10024,
    ArrayIndexCount = 10025,
    Overflow = kErrorOverflow,
    ResumeOutsideHandler = 10071,
    TypeMismatch = kErrorTypeMismatch,
    HaltedForGood = 10200,
    BusyForService = 10201,
    HostCallFailed = 10202,
    FunctionTerminated = 10525,
    InvalidInstruction = 10564,
    ExpectingDynamicArray = 10618,
    NotImplemented = kErrorNotImplemented,
    ApplicationSpecific = 11000,
    ExceptionPrefix = 11002,
    ErrorCaption = 11103,
    HereMarker = 554,
};

constexpr long ToNumber(ErrorId id) noexcept { return static_cast<long>(id); }

// The message of an error number: "" for 0, the string-table text for 10000 to 10999, and
// "Application specific error." for any other number or a number without a text.
std::wstring MessageFor(long number);

// The description an error gets when it is raised without one: MessageFor for numbers from 0 to
// 65535, "Exception " and the number in hexadecimal (upper case, as an unsigned 32-bit number) for
// any other number (platform status codes).
std::wstring DefaultDescription(long number);

// A message with an argument: the text, one blank (unless the text already ends with one) and the
// argument in single quotes. An empty argument leaves the text alone.
std::wstring WithArgument(std::wstring text, std::wstring_view argument);

// The language help file: the library file's path with its extension replaced by "HLP" ("?.HLP" when
// it has none). Errors raised without a help file of their own name it.
const std::wstring& LanguageHelpFile();

// A fixed text of the string table (id 554 "<here>", 11103 "Error" ...); fallback when the table has none.
std::wstring FixedText(ErrorId id, const wchar_t* fallback);

} // namespace brannoc
