#pragma once
// A value folded at compile time (Const values, Optional defaults, bounds, attribute values).
// FIXME: switch to the engine's Variant once constant folding moves to the expression compiler.
#include "frontend/TypeCode.h"

#include <cstdint>
#include <string>

namespace brannoc {

struct ConstantValue {
    TypeCode type;               // Empty until set; Byte/Boolean/Integer/Long in `integer`,
    std::int64_t integer = 0;    // Single/Double/Currency/Date in `real`, String in `text`.
    double real = 0.0;
    std::wstring text;

    static ConstantValue Integer(std::int64_t value, std::uint16_t code = TypeCode::kLong);
    static ConstantValue Real(double value, std::uint16_t code = TypeCode::kDouble);
    static ConstantValue String(std::wstring value);
    static ConstantValue Boolean(bool value);

    bool IsString() const { return type.IsString(); }
    bool IsIntegral() const;
    bool IsNumeric() const { return type.IsNumeric(); }
    double AsDouble() const { return IsIntegral() ? static_cast<double>(integer) : real; }

    // A Currency constant's whole ten-thousandths (its value rounded to four decimals); false when they
    // do not fit Currency's 64 bits. The whole part and the fraction are scaled apart, so that every
    // value of the range keeps all its digits.
    [[nodiscard]] static bool CurrencyUnits(double value, std::int64_t& units);

    // Converts to a scalar type; false when the value does not fit or cannot be converted.
    [[nodiscard]] bool ConvertTo(TypeCode target);
    bool operator==(const ConstantValue&) const = default;

private:
    // Replaces a Date by its text in the engine locale, as the value conversion writes it.
    [[nodiscard]] bool DateText();
};

} // namespace brannoc
