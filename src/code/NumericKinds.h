#pragma once
// The value kinds the typed and register forms compute in, and small tests on them shared by the
// builders of those forms and the statements that step counters inline.
#include "frontend/TypeCode.h"
#include "values/OperationId.h"

#include <windows.h>
#include <oleauto.h>

namespace brannoc {

// The kind a variable of the declared type always holds when it is one the direct forms compute in
// (Integer, Long, Double, Boolean); VT_EMPTY for every other type.
inline VARTYPE FixedKind(TypeCode type)
{
    if (!type.IsNumeric() || type.IsArray())
        return VT_EMPTY;
    switch (type.ValueTag()) {
    case VT_I2: return VT_I2;
    case VT_I4: return VT_I4;
    case VT_R8: return VT_R8;
    case VT_BOOL: return VT_BOOL;
    default: return VT_EMPTY;
    }
}

inline bool IsWhole(VARTYPE kind) { return kind == VT_I2 || kind == VT_I4; }

inline bool IsFourRules(OperationId op)
{
    return op == OperationId::kAdd || op == OperationId::kSubtract || op == OperationId::kMultiply ||
           op == OperationId::kDivide;
}

// The whole number an Integer or Long holds; false for other kinds.
inline bool WholeOf(const VARIANT& value, LONG& out)
{
    if (value.vt == VT_I4)
        out = value.lVal;
    else if (value.vt == VT_I2)
        out = value.iVal;
    else
        return false;
    return true;
}

} // namespace brannoc
