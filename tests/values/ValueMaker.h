#pragma once
// Test helpers that build values of each kind in one expression.
#include "values/Variant.h"

#include <string_view>

namespace brannoc::test {

inline Variant MakeInteger(SHORT v) { Variant x; x.SetInteger(v); return x; }
inline Variant MakeLong(LONG v) { Variant x; x.SetLong(v); return x; }
inline Variant MakeSingle(FLOAT v) { Variant x; x.SetSingle(v); return x; }
inline Variant MakeDouble(DOUBLE v) { Variant x; x.SetDouble(v); return x; }
inline Variant MakeCurrency(LONGLONG units) { Variant x; x.SetCurrencyUnits(units); return x; }
inline Variant MakeDate(DATE v) { Variant x; x.SetDate(v); return x; }
inline Variant MakeBoolean(bool v) { Variant x; x.SetBoolean(v); return x; }
inline Variant MakeByte(BYTE v) { Variant x; x.SetByte(v); return x; }
inline Variant MakeError(SCODE v) { Variant x; x.SetError(v); return x; }
inline Variant MakeNull() { Variant x; x.SetNull(); return x; }
inline Variant MakeString(std::wstring_view v) { Variant x; (void)x.SetString(v); return x; }
inline Variant MakeDecimal(LONGLONG v, BYTE scale = 0)
{
    DECIMAL d{};
    d.Lo64 = static_cast<ULONGLONG>(v < 0 ? -v : v);
    d.sign = v < 0 ? DECIMAL_NEG : 0;
    d.scale = scale;
    Variant x;
    x.SetDecimal(d);
    return x;
}

} // namespace brannoc::test
