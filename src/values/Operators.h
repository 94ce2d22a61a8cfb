#pragma once
// The generic operator routines: they apply the Null rules, the string rules and the common-kind table,
// then compute in the chosen kind. Results are written over the left operand; on failure the error has
// been raised and the left operand holds 0 of the kind being computed.
#include "values/OperationId.h"
#include "values/Variant.h"

#include <string_view>

namespace brannoc {

// The common kind of two numeric tags (Integer, Long, Single, Double, Currency, Date, Boolean, Decimal,
// Byte); VT_EMPTY for pairs that never reach the table.
VARTYPE CommonKind(VARTYPE left, VARTYPE right);

// The common kind after the operator's adjustment.
VARTYPE OperationKind(OperationId op, VARTYPE left, VARTYPE right);

// Mixed static kinds, done by a compiled binary expression before it calls the operator: when one
// operand has a fixed static kind, the operator is not &, and neither value is Null, the Variant-typed
// side (else the right side) is converted toward the other: to String when the other is a String,
// to a number by ToNumber otherwise.
enum class StaticKind { kVariant, kFixed };
[[nodiscard]] bool AlignStaticKinds(OperationId op, Variant& left, StaticKind leftKind, Variant& right,
                                    StaticKind rightKind);

[[nodiscard]] bool BinaryOperation(OperationId op, Variant& left, const Variant& right);
[[nodiscard]] bool UnaryOperation(OperationId op, Variant& value);

// Matches text against a Like pattern (both already in the ANSI code page). A malformed list raises
// 10620 and answers false.
[[nodiscard]] bool MatchLike(std::string_view text, std::string_view pattern, bool& matched);

// Currency arithmetic on counts of 1/10,000 with exact intermediates; overflow raises 10062 and a zero
// divisor 10061.
[[nodiscard]] bool CurrencyMultiply(LONGLONG left, LONGLONG right, LONGLONG& result);
[[nodiscard]] bool CurrencyDivide(LONGLONG left, LONGLONG right, LONGLONG& result);

} // namespace brannoc
