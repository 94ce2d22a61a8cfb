#pragma once
// How value code reports a run-time error. The interpreter installs its raise routine as the handler;
// until it does (and in unit tests) a recording handler can stand in.

namespace brannoc {

// Error numbers that the value layer raises.
enum ValueErrorNumber : long {
    kErrorOutOfMemory = 10001,
    kErrorFloatInvalid = 10060,
    kErrorDivideByZero = 10061,
    kErrorOverflow = 10062,
    kErrorUnderflow = 10063,
    kErrorNullUse = 10075,
    kErrorTypeMismatch = 10080,
    kErrorAutomation = 10090,
    kErrorInvalidArgument = 10620,
};

using RaiseFn = void (*)(long number);

// Installs the routine that records a raised error (null removes it). Returns the previous one.
RaiseFn SetRaiseHandler(RaiseFn handler);

// Raises error number through the installed handler and always answers false, so that failing code
// can write `return RaiseValueError(kErrorTypeMismatch);`.
[[nodiscard]] bool RaiseValueError(long number);

} // namespace brannoc
