#pragma once
// The cells of Integer, Long and Double, the kinds that counters, indexes and arithmetic use most. Each
// offers its operations as an inline fast path (TryBinary, TryUnary) for the operand pairs of these
// three kinds: it computes in the kind that the common-kind table and the operator's adjustment give and
// answers true only when the result is exact in that kind. Everything else it declines with false,
// untouched: an overflow that climbs to a wider kind, a zero divisor, a floating result that is not a
// normal number or zero, another kind, another operator. The generic routines then compute, promote or
// raise, so the fast path never changes a result.
#include "values/ValueCell.h"

#include <climits>
#include <cmath>

namespace brannoc {

namespace fast {

inline void SetBoolean(VARIANT& value, bool truth) noexcept
{
    value.vt = VT_BOOL;
    value.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
}

template <typename T>
inline bool Compare(OperationId op, T a, T b, VARIANT& left) noexcept
{
    switch (op) {
    case OperationId::kEqual: SetBoolean(left, a == b); return true;
    case OperationId::kNotEqual: SetBoolean(left, a != b); return true;
    case OperationId::kLess: SetBoolean(left, a < b); return true;
    case OperationId::kLessEqual: SetBoolean(left, a <= b); return true;
    case OperationId::kGreater: SetBoolean(left, a > b); return true;
    case OperationId::kGreaterEqual: SetBoolean(left, a >= b); return true;
    default: return false;
    }
}

// + - * / and comparisons in Double. A result is taken when it is a normal number, or a zero that is
// exact (equal terms cancelling, a zero factor, a zero dividend); the generic routine reads the
// floating-point status for everything else.
inline bool DoubleOperation(OperationId op, double a, double b, VARIANT& left) noexcept
{
    // Stored through memory so that the tests below see the value rounded to double, not the wider
    // intermediate of the x87 unit.
    volatile double result = 0;
    bool exactZero = false;
    switch (op) {
    case OperationId::kAdd:
        result = a + b;
        exactZero = true;
        break;
    case OperationId::kSubtract:
        result = a - b;
        exactZero = true;
        break;
    case OperationId::kMultiply:
        result = a * b;
        exactZero = a == 0 || b == 0;
        break;
    case OperationId::kDivide:
        if (b == 0)
            return false;
        result = a / b;
        exactZero = a == 0;
        break;
    default: return Compare(op, a, b, left);
    }
    const double rounded = result;
    if (!std::isnormal(rounded) && !(rounded == 0 && exactZero))
        return false;
    left.vt = VT_R8;
    left.dblVal = rounded;
    return true;
}

// Arithmetic, integer division, Mod, logic and comparisons of two whole numbers in kind (Integer or
// Long); / goes to Double.
inline bool WholeOperation(OperationId op, VARTYPE kind, LONG a, LONG b, VARIANT& left) noexcept
{
    LONG result = 0;
    switch (op) {
    case OperationId::kAdd:
        if (__builtin_add_overflow(a, b, &result))
            return false;
        break;
    case OperationId::kSubtract:
        if (__builtin_sub_overflow(a, b, &result))
            return false;
        break;
    case OperationId::kMultiply:
        if (__builtin_mul_overflow(a, b, &result))
            return false;
        break;
    case OperationId::kIntegerDivide:
        // The smallest value divided by -1 leaves the kind: promotion or overflow, decided generically.
        if (b == 0 || (b == -1 && a == (kind == VT_I2 ? SHRT_MIN : LONG_MIN)))
            return false;
        result = a / b;
        break;
    case OperationId::kModulo:
        if (b == 0)
            return false;
        result = b == -1 ? 0 : a % b;
        break;
    case OperationId::kAnd: result = a & b; break;
    case OperationId::kOr: result = a | b; break;
    case OperationId::kXor: result = a ^ b; break;
    case OperationId::kEqv: result = ~(a ^ b); break;
    case OperationId::kImp: result = ~a | b; break;
    case OperationId::kDivide: return DoubleOperation(op, a, b, left);
    default: return Compare(op, a, b, left);
    }
    if (kind == VT_I2) {
        if (result < SHRT_MIN || result > SHRT_MAX)
            return false;
        left.vt = VT_I2;
        left.iVal = static_cast<SHORT>(result);
    } else {
        left.vt = VT_I4;
        left.lVal = result;
    }
    return true;
}

// Logic and comparisons of two Booleans (16-bit values, True = -1); arithmetic goes generic.
inline bool BooleanOperation(OperationId op, VARIANT_BOOL a, VARIANT_BOOL b, VARIANT& left) noexcept
{
    SHORT result = 0;
    switch (op) {
    case OperationId::kAnd: result = static_cast<SHORT>(a & b); break;
    case OperationId::kOr: result = static_cast<SHORT>(a | b); break;
    case OperationId::kXor: result = static_cast<SHORT>(a ^ b); break;
    case OperationId::kEqv: result = static_cast<SHORT>(~(a ^ b)); break;
    case OperationId::kImp: result = static_cast<SHORT>(~a | b); break;
    default:
        if (!IsComparison(op))
            return false;
        return Compare<SHORT>(op, a, b, left);
    }
    left.vt = VT_BOOL;
    left.boolVal = result;
    return true;
}

// The whole-number payload of an Integer or Long value.
inline LONG WholeOf(const VARIANT& value) noexcept { return value.vt == VT_I2 ? value.iVal : value.lVal; }

} // namespace fast

// Integer and Long share their fast path: Integer with Integer computes in Integer, any other pairing
// of the two in Long, either with a Double in Double.
class WholeNumberCell : public ValueCell {
public:
    [[nodiscard]] static bool TryBinary(OperationId op, VARIANT& left, const VARIANT& right) noexcept
    {
        switch (right.vt) {
        case VT_I2:
        case VT_I4: {
            const VARTYPE kind = left.vt == VT_I2 && right.vt == VT_I2 ? VT_I2 : VT_I4;
            return fast::WholeOperation(op, kind, fast::WholeOf(left), fast::WholeOf(right), left);
        }
        case VT_R8: return fast::DoubleOperation(op, fast::WholeOf(left), right.dblVal, left);
        default: return false;
        }
    }
    [[nodiscard]] static bool TryUnary(OperationId op, VARIANT& value) noexcept
    {
        const LONG smallest = value.vt == VT_I2 ? SHRT_MIN : LONG_MIN;
        const LONG number = fast::WholeOf(value);
        switch (op) {
        case OperationId::kNegate:
            if (number == smallest)
                return false;
            return Store(value, -number);
        case OperationId::kAbs:
            if (number == smallest)
                return false;
            return Store(value, number < 0 ? -number : number);
        case OperationId::kNot: return Store(value, ~number);
        case OperationId::kFix:
        case OperationId::kInt: return true;
        default: return false;
        }
    }
    [[nodiscard]] bool Binary(OperationId op, Variant& left, const Variant& right) const override;
    [[nodiscard]] bool Unary(OperationId op, Variant& value) const override;

private:
    // Writes number back in the value's own kind (it fits: negation and complement of a value that
    // is not the smallest stay in range).
    static bool Store(VARIANT& value, LONG number) noexcept
    {
        if (value.vt == VT_I2)
            value.iVal = static_cast<SHORT>(number);
        else
            value.lVal = number;
        return true;
    }
};

class IntegerCell final : public WholeNumberCell {
public:
    VARTYPE Kind() const override { return VT_I2; }
};

class LongCell final : public WholeNumberCell {
public:
    VARTYPE Kind() const override { return VT_I4; }
};

class DoubleCell final : public ValueCell {
public:
    VARTYPE Kind() const override { return VT_R8; }
    [[nodiscard]] static bool TryBinary(OperationId op, VARIANT& left, const VARIANT& right) noexcept
    {
        switch (right.vt) {
        case VT_R8: return fast::DoubleOperation(op, left.dblVal, right.dblVal, left);
        case VT_I2:
        case VT_I4: return fast::DoubleOperation(op, left.dblVal, fast::WholeOf(right), left);
        default: return false;
        }
    }
    [[nodiscard]] static bool TryUnary(OperationId op, VARIANT& value) noexcept
    {
        switch (op) {
        case OperationId::kNegate: value.dblVal = -value.dblVal; return true;
        case OperationId::kAbs:
            if (value.dblVal < 0)
                value.dblVal = -value.dblVal;
            return true;
        case OperationId::kFix: value.dblVal = std::trunc(value.dblVal); return true;
        case OperationId::kInt: value.dblVal = std::floor(value.dblVal); return true;
        default: return false;
        }
    }
    [[nodiscard]] bool Binary(OperationId op, Variant& left, const Variant& right) const override;
    [[nodiscard]] bool Unary(OperationId op, Variant& value) const override;
};

// Tries the fast path of the left operand's cell; false when it declined (nothing changed).
[[nodiscard]] inline bool TryFastBinary(OperationId op, VARIANT& left, const VARIANT& right) noexcept
{
    switch (left.vt) {
    case VT_I2:
    case VT_I4: return WholeNumberCell::TryBinary(op, left, right);
    case VT_R8: return DoubleCell::TryBinary(op, left, right);
    case VT_BOOL: return right.vt == VT_BOOL && fast::BooleanOperation(op, left.boolVal, right.boolVal, left);
    default: return false;
    }
}

[[nodiscard]] inline bool TryFastUnary(OperationId op, VARIANT& value) noexcept
{
    switch (value.vt) {
    case VT_I2:
    case VT_I4: return WholeNumberCell::TryUnary(op, value);
    case VT_R8: return DoubleCell::TryUnary(op, value);
    case VT_BOOL:
        if (op != OperationId::kNot)
            return false;
        value.boolVal = static_cast<VARIANT_BOOL>(~value.boolVal);
        return true;
    default: return false;
    }
}

// left = left op right through the left operand's cell: its inline fast path, else its Binary.
[[nodiscard]] inline bool ApplyBinary(OperationId op, Variant& left, const Variant& right)
{
    return TryFastBinary(op, left.Raw(), right.Raw()) || CellFor(left.Tag()).Binary(op, left, right);
}

// value = op value through the value's cell.
[[nodiscard]] inline bool ApplyUnary(OperationId op, Variant& value)
{
    return TryFastUnary(op, value.Raw()) || CellFor(value.Tag()).Unary(op, value);
}

} // namespace brannoc
