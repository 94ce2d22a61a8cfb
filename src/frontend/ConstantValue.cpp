#include "frontend/ConstantValue.h"

#include "values/Conversion.h"
#include "values/ValueError.h"

#include <cmath>
#include <cwchar>
#include <limits>

namespace brannoc {

ConstantValue ConstantValue::Integer(std::int64_t value, std::uint16_t code)
{
    ConstantValue result;
    result.type = TypeCode(code);
    result.integer = value;
    return result;
}

ConstantValue ConstantValue::Real(double value, std::uint16_t code)
{
    ConstantValue result;
    result.type = TypeCode(code);
    result.real = value;
    return result;
}

ConstantValue ConstantValue::String(std::wstring value)
{
    ConstantValue result;
    result.type = TypeCode(TypeCode::kString);
    result.text = std::move(value);
    return result;
}

ConstantValue ConstantValue::Boolean(bool value) { return Integer(value ? -1 : 0, TypeCode::kBoolean); }

bool ConstantValue::IsIntegral() const
{
    const auto code = type.Code();
    return code == TypeCode::kByte || code == TypeCode::kBoolean || code == TypeCode::kInteger ||
           code == TypeCode::kLong;
}

namespace {

bool FitsInteger(double value, double low, double high) { return value >= low && value <= high; }

} // namespace

bool ConstantValue::CurrencyUnits(double value, std::int64_t& units)
{
    constexpr double kLargestWhole = 922337203685477.0;
    const double whole = std::trunc(value);
    if (!(whole >= -kLargestWhole && whole <= kLargestWhole))
        return false;
    // Both parts are exact: the whole part lies far below 2^53, and scaling it is whole-number arithmetic.
    const auto fraction = static_cast<std::int64_t>(std::nearbyint((value - whole) * 10000.0));
    const auto scaled = static_cast<std::int64_t>(whole) * 10000;
    if ((fraction > 0 && scaled > std::numeric_limits<std::int64_t>::max() - fraction) ||
        (fraction < 0 && scaled < std::numeric_limits<std::int64_t>::min() - fraction))
        return false;
    units = scaled + fraction;
    return true;
}

bool ConstantValue::DateText()
{
    Variant date;
    date.SetDate(real);
    const RaiseFn previous = SetRaiseHandler(nullptr);
    const bool converted = ChangeType(date, VT_BSTR);
    SetRaiseHandler(previous);
    if (!converted)
        return false;
    *this = String(std::wstring(date.StringView()));
    return true;
}

bool ConstantValue::ConvertTo(TypeCode target)
{
    const auto code = target.Scalar().Code();
    if (target.IsVariant() || code == type.Code())
        return true;
    if (target.IsString() || target.IsFixedString()) {
        if (IsString())
            return true;
        if (type.Code() == TypeCode::kDate)
            return DateText();
        wchar_t buffer[64];
        if (IsIntegral())
            std::swprintf(buffer, 64, L"%lld", static_cast<long long>(integer));
        else
            std::swprintf(buffer, 64, L"%.15g", real);
        *this = String(buffer);
        return true;
    }
    if (!target.IsNumeric())
        return false;
    double value = 0;
    if (IsString()) {
        wchar_t* end = nullptr;
        value = std::wcstod(text.c_str(), &end);
        if (text.empty() || end == nullptr || *end != L'\0')
            return false;
    } else if (IsNumeric()) {
        value = AsDouble();
    } else if (type.Code() != TypeCode::kEmpty) {
        return false;
    }
    switch (code) {
    case TypeCode::kByte:
    case TypeCode::kInteger:
    case TypeCode::kLong: {
        const double rounded = std::nearbyint(value);
        const double low = code == TypeCode::kByte ? 0 : code == TypeCode::kInteger ? -32768.0 : -2147483648.0;
        const double high = code == TypeCode::kByte ? 255 : code == TypeCode::kInteger ? 32767.0 : 2147483647.0;
        if (!FitsInteger(rounded, low, high))
            return false;
        *this = Integer(static_cast<std::int64_t>(rounded), code);
        return true;
    }
    case TypeCode::kBoolean:
        *this = Boolean(value != 0);
        return true;
    case TypeCode::kSingle:
        if (std::fabs(value) > std::numeric_limits<float>::max())
            return false;
        *this = Real(static_cast<float>(value), code);
        return true;
    case TypeCode::kCurrency: {
        std::int64_t units = 0;
        if (!CurrencyUnits(value, units))
            return false;
        *this = Real(value, code);
        return true;
    }
    default:
        *this = Real(value, code);
        return true;
    }
}

} // namespace brannoc
