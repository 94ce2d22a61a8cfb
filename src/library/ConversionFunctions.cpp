// The conversion functions C... (CBool to CVar), CStr, CVErr and Error, the function that gives the
// message of an error number (and, as a statement, raises it).
#include "library/BuiltinGroups.h"

#include "exec/ErrorMessages.h"
#include "exec/Interpreter.h"
#include "library/BuiltinArguments.h"
#include "values/Conversion.h"
#include "values/ValueError.h"

#include <string>

namespace brannoc {

namespace {

constexpr LONG kLargestErrorNumber = 65535;

LONG ErrorNumberOf(SCODE status) { return static_cast<LONG>(status & 0xFFFF); }

// ChangeType to tag; an Error value converts as its error number.
template <VARTYPE kTag>
bool ConvertNumber(Variant& value)
{
    if (!Resolve(value))
        return false;
    if (value.Tag() == VT_ERROR)
        value.SetLong(ErrorNumberOf(value.Error()));
    return ChangeType(value, kTag);
}

bool ConvertDate(Variant& value) { return ChangeType(value, VT_DATE); }

// CVar: the value itself, made self-contained; Null stays Null.
bool ConvertVariant(Variant& value) { return Resolve(value); }

bool ConvertString(Variant& value)
{
    if (!Resolve(value))
        return false;
    if (value.Tag() == VT_ERROR) {
        const std::wstring text = L"Error " + std::to_wstring(ErrorNumberOf(value.Error()));
        return value.SetString(std::wstring_view(text)) || RaiseValueError(kErrorOutOfMemory);
    }
    Bstr text;
    if (!ToText(value, TextMode::kNullAsEmpty, text))
        return false;
    value.SetString(std::move(text));
    return true;
}

bool ConvertError(Variant& value)
{
    if (!Resolve(value))
        return false;
    if (value.Tag() == VT_ERROR)
        return true;
    if (!ChangeType(value, VT_I4))
        return false;
    const LONG number = value.Long();
    if (number < 0 || number > kLargestErrorNumber)
        return RaiseValueError(kErrorOverflow);
    value.SetError(kErrorValueBase + number);
    return true;
}

// Reads an error number from 0 to 65,535; any other number overflows.
bool ReadErrorNumber(BuiltinArguments& arguments, LONG& number)
{
    if (!arguments.Long(0, number))
        return false;
    return (number >= 0 && number <= kLargestErrorNumber) || RaiseValueError(kErrorOverflow);
}

// Error([ErrorCode]): the current error's description for its number, else the standard message.
bool ErrorMessage(BuiltinArguments& arguments, BuiltinResult& result)
{
    const Interpreter* interpreter = Interpreter::Current();
    const long current = interpreter ? interpreter->Error().number : 0;
    LONG number = current;
    if (arguments.IsGiven(0) && !ReadErrorNumber(arguments, number))
        return false;
    if (number == current && interpreter)
        return result.SetString(interpreter->Error().description);
    return result.SetString(MessageFor(number));
}

// The Error statement: raises the run-time error of that number.
bool RaiseError(BuiltinArguments& arguments, BuiltinResult&)
{
    if (!arguments.IsGiven(0))
        return RaiseValueError(kErrorInvalidArgument);
    LONG number = 0;
    if (!ReadErrorNumber(arguments, number))
        return false;
    // Error 0 raises "no error": the error object is cleared and the macro goes on.
    if (number == 0) {
        (void)RaiseValueError(0);
        return true;
    }
    return RaiseValueError(number);
}

constexpr std::uint8_t kPure = kBuiltinPure;

constexpr BuiltinRecord kRecords[] = {
    Conversion(Token::CBool, ResultKind::kBoolean, "?", "Num", kPure, &ConvertNumber<VT_BOOL>),
    Conversion(Token::CByte, ResultKind::kByte, "?", "Num", kPure, &ConvertNumber<VT_UI1>),
    Conversion(Token::CCur, ResultKind::kCurrency, "?", "Num", kPure, &ConvertNumber<VT_CY>),
    Conversion(Token::CDate, ResultKind::kDate, "?", "Num", kPure, &ConvertDate),
    Conversion(Token::CVDate, ResultKind::kVariant, "?", "Num", kPure, &ConvertDate),
    Conversion(Token::CDbl, ResultKind::kDouble, "?", "Num", kPure, &ConvertNumber<VT_R8>),
    Conversion(Token::CDec, ResultKind::kVariant, "?", "Num", kPure, &ConvertNumber<VT_DECIMAL>),
    Conversion(Token::CInt, ResultKind::kInteger, "?", "Num", kPure, &ConvertNumber<VT_I2>),
    Conversion(Token::CLng, ResultKind::kLong, "?", "Num", kPure, &ConvertNumber<VT_I4>),
    Conversion(Token::CSng, ResultKind::kSingle, "?", "Num", kPure, &ConvertNumber<VT_R4>),
    Conversion(Token::CVar, ResultKind::kVariant, "?", "Num", kPure, &ConvertVariant),
    Conversion(Token::CStr, ResultKind::kString, "?", "Num", kPure, &ConvertString),
    Conversion(Token::CVErr, ResultKind::kVariant, "?", "Num", kPure, &ConvertError),
    Function(Token::Error, ResultKind::kString, "&", "ErrorCode", 0, 0b1, &ErrorMessage),
};

constexpr BuiltinRecord kErrorStatement = Instruction(Token::Error, "&", "ErrorCode", 0b1, &RaiseError);

} // namespace

BuiltinGroup ConversionFunctions() { return kRecords; }

const BuiltinRecord& ErrorStatementRecord() { return kErrorStatement; }

} // namespace brannoc
