#pragma once
// Exact rounding of Decimal values on their 96-bit magnitude: the whole part (Fix and Int) and rounding
// to a number of decimals with ties to the even neighbour (Round). Both only drop digits, so they never
// overflow; a zero result has no sign.
#include <oaidl.h>

namespace brannoc {

// The whole part of value: toward zero, or toward minus infinity when floor is set.
DECIMAL DecimalWholePart(const DECIMAL& value, bool floor);

// value rounded to places decimals (0 or more), ties to the even neighbour; unchanged when it has no
// more decimals than that.
DECIMAL DecimalRounded(const DECIMAL& value, int places);

} // namespace brannoc
