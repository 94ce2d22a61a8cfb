#pragma once
// The operations that expression nodes ask value cells for, binary first, then unary. The expression
// compiler stores these ids; value cells dispatch on them.
#include <cstdint>

namespace brannoc {

enum class OperationId : std::uint8_t {
    // Binary arithmetic.
    kPower,
    kMultiply,
    kDivide,
    kIntegerDivide,
    kModulo,
    kAdd,
    kSubtract,
    // Concatenation.
    kConcatenate,
    // Comparisons.
    kEqual,
    kNotEqual,
    kLess,
    kLessEqual,
    kGreater,
    kGreaterEqual,
    // Logic and bitwise.
    kAnd,
    kOr,
    kXor,
    kEqv,
    kImp,
    // Pattern match and object identity.
    kLike,
    kIs,
    // Unary.
    kNegate,
    kNot,
    kAbs,
    kFix,
    kInt,
};

constexpr bool IsComparison(OperationId op) { return op >= OperationId::kEqual && op <= OperationId::kGreaterEqual; }
constexpr bool IsLogic(OperationId op) { return op >= OperationId::kAnd && op <= OperationId::kImp; }
constexpr bool IsArithmetic(OperationId op) { return op <= OperationId::kSubtract; }
constexpr bool IsUnary(OperationId op) { return op >= OperationId::kNegate; }
// Whether the comparison op holds for two values whose order is `order` (negative: the left one is less,
// 0: equal, positive: greater); false for operations that are not comparisons.
constexpr bool OrderHolds(OperationId op, int order)
{
    switch (op) {
    case OperationId::kEqual: return order == 0;
    case OperationId::kNotEqual: return order != 0;
    case OperationId::kLess: return order < 0;
    case OperationId::kLessEqual: return order <= 0;
    case OperationId::kGreater: return order > 0;
    case OperationId::kGreaterEqual: return order >= 0;
    default: return false;
    }
}

} // namespace brannoc
