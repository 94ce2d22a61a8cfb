#pragma once
// Run-time error numbers used by the interpreter and the texts of error numbers. The texts themselves
// live in the string table (runtime_messages.rc); this file names the numbers code refers to, taking
// the error numbers from the run-time table (values/ValueError.h); the rest are fixed texts.
#include "values/ValueError.h"

#include <string>
#include <string_view>

namespace brannoc {

enum class ErrorId : long {
    None = 0,
    Interrupted = kErrorInterrupted,
    OutOfMemory = kErrorOutOfMemory,
    SubOrFunctionMissing = kErrorSubOrFunctionMissing,
    WrongParameterCount = kErrorWrongNumberOfParameters,
    CantAllocateLargeArray = kErrorCantAllocateLargeArray,
    ArrayNotDimensioned = kErrorArrayNotDimensioned,
    ArrayIndexOutOfRange = kErrorArrayIndexOutOfRange,
    ArrayLowerBoundAboveUpper = kErrorArrayLowerBoundAboveUpper,
    ArrayIndexCount = kErrorArrayIndexCount,
    Overflow = kErrorOverflow,
    ResumeOutsideHandler = kErrorResumeOutsideHandler,
    TypeMismatch = kErrorTypeMismatch,
    HaltedForGood = kErrorHaltedForGood,
    BusyForService = kErrorBusyForService,
    HostCallFailed = kErrorHostCallFailed,
    FunctionTerminated = kErrorFunctionTerminated,
    InvalidInstruction = kErrorInvalidInstruction,
    ExpectingDynamicArray = kErrorExpectingDynamicArray,
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
