// Numeric functions: Abs, Fix and Int (the unary operators' arithmetic), Sgn, Round with ties to even,
// and the runtime library's Atn, Cos, Exp, Log, Sin, Sqr and Tan on Doubles.
#include "library/BuiltinGroups.h"
#include "library/BuiltinArguments.h"
#include "values/Conversion.h"
#include "values/DecimalWhole.h"
#include "values/ValueCell.h"
#include "values/ValueError.h"

#include <cmath>

namespace brannoc {

namespace {

template <OperationId kOperation>
bool Unary(Variant& value)
{
    return ApplyUnary(kOperation, value);
}

// -1, 0 or 1 by the sign of the value (True counts as negative).
bool Sign(Variant& value)
{
    if (!ToNumber(value) || !ChangeType(value, VT_R8))
        return false;
    const double number = value.Double();
    value.SetInteger(static_cast<SHORT>(number < 0 ? -1 : number > 0 ? 1 : 0));
    return true;
}

// Ties go to the even neighbour (the processor's default rounding).
double RoundHalfEven(double value, int places)
{
    const double scale = std::pow(10.0, places);
    const double scaled = value * scale;
    if (!std::isfinite(scaled))
        return value;
    return std::nearbyint(scaled) / scale;
}

// Currency units (1/10,000) rounded to places decimals, ties to even.
LONGLONG RoundUnits(LONGLONG units, int places)
{
    if (places >= 4)
        return units;
    LONGLONG step = 1;
    for (int i = places; i < 4; ++i)
        step *= 10;
    LONGLONG whole = units / step;
    const LONGLONG rest = units % step;
    const LONGLONG twice = (rest < 0 ? -rest : rest) * 2;
    if (twice > step || (twice == step && whole % 2 != 0))
        whole += units < 0 ? -1 : 1;
    return whole * step;
}

// Round(Num, [Places]).
bool Round(BuiltinArguments& arguments, BuiltinResult& result)
{
    SHORT places = 0;
    if (arguments.IsGiven(1) && !arguments.Integer(1, places))
        return false;
    if (places < 0)
        return RaiseValueError(kErrorInvalidArgument);
    Variant* value = nullptr;
    if (!arguments.OwnValue(0, value) || !Resolve(*value))
        return false;
    if (value->Tag() != VT_NULL && value->Tag() != VT_EMPTY && !ToNumber(*value))
        return false;
    switch (value->Tag()) {
    case VT_R4: value->SetSingle(static_cast<FLOAT>(RoundHalfEven(value->Single(), places))); break;
    case VT_R8: value->SetDouble(RoundHalfEven(value->Double(), places)); break;
    case VT_DATE: value->SetDate(RoundHalfEven(value->Date(), places)); break;
    case VT_CY: value->SetCurrencyUnits(RoundUnits(value->Currency().int64, places)); break;
    case VT_DECIMAL: value->SetDecimal(DecimalRounded(value->Decimal(), places)); break;
    default: break;
    }
    result.SetVariant(std::move(*value));
    return true;
}

// The runtime library's function on the Double; a domain or range error raises 10060.
template <double (*kFunction)(double)>
bool Math(Variant& value)
{
    if (!ChangeType(value, VT_R8))
        return false;
    const double computed = kFunction(value.Double());
    if (!std::isfinite(computed))
        return RaiseValueError(kErrorFloatInvalid);
    value.SetDouble(computed);
    return true;
}

double Atan(double x) { return std::atan(x); }
double Cosine(double x) { return std::cos(x); }
double Exponential(double x) { return std::exp(x); }
double Logarithm(double x) { return std::log(x); }
double Sine(double x) { return std::sin(x); }
double SquareRoot(double x) { return std::sqrt(x); }
double Tangent(double x) { return std::tan(x); }

constexpr std::uint8_t kPure = kBuiltinPure;

constexpr BuiltinRecord kRecords[] = {
    Conversion(Token::Abs, ResultKind::kArgumentKind, "/", "Num", kPure, &Unary<OperationId::kAbs>),
    Conversion(Token::Fix, ResultKind::kArgumentKind, "/", "Num", kPure, &Unary<OperationId::kFix>),
    Conversion(Token::Int, ResultKind::kArgumentKind, "/", "Num", kPure, &Unary<OperationId::kInt>),
    Conversion(Token::Sgn, ResultKind::kInteger, "/", "Num", kPure, &Sign),
    Function(Token::Round, ResultKind::kArgumentKind, "/%", "Num Places", kPure, 0b10, &Round),
    Conversion(Token::Atn, ResultKind::kDouble, "#", "Num", kPure, &Math<&Atan>),
    Conversion(Token::Cos, ResultKind::kDouble, "#", "Num", kPure, &Math<&Cosine>),
    Conversion(Token::Exp, ResultKind::kDouble, "#", "Num", kPure, &Math<&Exponential>),
    Conversion(Token::Log, ResultKind::kDouble, "#", "Num", kPure, &Math<&Logarithm>),
    Conversion(Token::Sin, ResultKind::kDouble, "#", "Num", kPure, &Math<&Sine>),
    Conversion(Token::Sqr, ResultKind::kDouble, "#", "Num", kPure, &Math<&SquareRoot>),
    Conversion(Token::Tan, ResultKind::kDouble, "#", "Num", kPure, &Math<&Tangent>),
};

} // namespace

BuiltinGroup MathFunctions() { return kRecords; }

} // namespace brannoc
