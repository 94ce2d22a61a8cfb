#pragma once
// How value code reports a run-time error. The interpreter installs its raise routine as the handler;
// until it does (and in unit tests) a recording handler can stand in.

namespace brannoc {

// The run-time error numbers that the value layer, the built-in library, the interpreter and the host
// raise: each number is named once, here (the interpreter's names in exec/ErrorMessages.h and the
// compiler's in frontend/CompileMessage.h refer to these where they share a number; the texts live in
// the string table).
enum RunTimeErrorNumber : long {
    kErrorInterrupted = 10000,
    kErrorOutOfMemory = 10001,
    // Macros and modules.
    kErrorMacroAlreadyRunning = 10010,
    kErrorCantAllocateModule = 10011,
    kErrorModuleHasSyntaxErrors = 10012,
    kErrorModuleMissing = 10013,
    kErrorSubOrFunctionMissing = 10018,
    kErrorWrongNumberOfParameters = 10019,
    kErrorCantAllocateLargeArray = 10021,
    kErrorArrayNotDimensioned = 10022,
    kErrorArrayIndexOutOfRange = 10023,
    kErrorArrayLowerBoundAboveUpper = 10024,
    kErrorArrayIndexCount = 10025,
    // User dialogs.
    kErrorUserDialogNotDefined = 10030,
    kErrorUserPressedCancel = 10031,
    kErrorDialogItemOutOfRange = 10032,
    kErrorNoDialogDisplayed = 10033,
    kErrorDialogInaccessible = 10034,
    kErrorWrongWith = 10035,
    kErrorModuleNotLoaded = 10040,
    kErrorFunctionNotFound = 10041,
    // Streams.
    kErrorNoReadAccess = 10048,
    kErrorNoWriteAccess = 10049,
    kErrorRecordLengthExceeded = 10050,
    kErrorCouldNotOpenFile = 10051,
    kErrorFileNotOpen = 10052,
    kErrorReadPastEnd = 10053,
    kErrorBadStreamNumber = 10054,
    kErrorInputMismatch = 10055,
    kErrorBadRecordLength = 10056,
    kErrorStreamAlreadyOpen = 10057,
    kErrorWrongStreamMode = 10058,
    kErrorFileOperation = 10059,
    // Arithmetic and conversion.
    kErrorFloatInvalid = 10060,
    kErrorDivideByZero = 10061,
    kErrorOverflow = 10062,
    kErrorUnderflow = 10063,
    kErrorResumeOutsideHandler = 10071,
    kErrorNullUse = 10075,
    kErrorTypeMismatch = 10080,
    // Automation.
    kErrorAutomation = 10090,
    kErrorNoSuchMember = 10091,
    kErrorCannotCreateObject = 10092,
    kErrorCannotLoadFile = 10093,
    kErrorObjectIsNothing = 10094,
    kErrorServerNotFound = 10095,
    kErrorNoActiveObject = 10096,
    kErrorWrongParameterCount = 10097,
    kErrorBadIndex = 10098,
    kErrorNoSuchNamedParameter = 10099,
    // File system.
    kErrorDirectoryNotFound = 10100,
    kErrorFileNotKilled = 10101,
    kErrorDirectoryNotCreated = 10102,
    kErrorFileNotRenamed = 10103,
    kErrorDirectoryNotRemoved = 10104,
    kErrorDriveNotFound = 10105,
    kErrorSourceNotOpened = 10106,
    kErrorDestinationNotCreated = 10107,
    // Key sequences (SendKeys) and windows.
    kErrorMissingBrace = 10110,
    kErrorInvalidKeyName = 10111,
    kErrorMissingParen = 10112,
    kErrorKeysNotPlayed = 10116,
    kErrorTooManyKeys = 10119,
    kErrorWindowNotFound = 10120,
    // DDE.
    kErrorDdeNotAvailable = 10130,
    kErrorTooManyConversations = 10131,
    kErrorBadChannel = 10132,
    kErrorDdeTimeOut = 10133,
    kErrorDdeServerDied = 10134,
    kErrorDdeFailed = 10135,
    // Clipboard, Shell and arguments.
    kErrorClipboard = 10140,
    kErrorWindowStyle = 10150,
    kErrorDeclareNotImplemented = 10160,
    // The engine and its host.
    kErrorHaltedForGood = 10200,
    kErrorBusyForService = 10201,
    kErrorHostCallFailed = 10202,
    // Numbers of the compile-time range that running code raises too.
    kErrorAlreadyEvaluating = 10509,
    kErrorFunctionTerminated = 10525,
    kErrorInvalidInstruction = 10564,
    kErrorExpectingDynamicArray = 10618,
    kErrorStringIndex = 10619,
    kErrorInvalidArgument = 10620,
    kErrorObjectInstanceNotCreated = 10637,
    kErrorNotImplemented = 10902,
};

// "Type mismatch for parameter #n." for the parameters 1 to 9; plain "Type mismatch." for any other.
constexpr long TypeMismatchForParameter(int position)
{
    return position >= 1 && position <= 9 ? kErrorTypeMismatch + position : kErrorTypeMismatch;
}

using RaiseFn = void (*)(long number);

// Installs the routine that records a raised error (null removes it). Returns the previous one.
RaiseFn SetRaiseHandler(RaiseFn handler);

// Raises error number through the installed handler and always answers false, so that failing code
// can write `return RaiseValueError(kErrorTypeMismatch);`.
[[nodiscard]] bool RaiseValueError(long number);

} // namespace brannoc
