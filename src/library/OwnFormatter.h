#pragma once
// The engine's own formatter: picks the section of a split pattern for a value and writes it by the
// pattern's category. Used when the platform's formatting routines are missing, and by the platform
// layer for the patterns that the platform is found to format wrongly.
#include "library/DateFormatter.h"
#include "library/FormatPattern.h"
#include "values/Variant.h"

#include <string>

namespace brannoc {

// Appends value (already resolved) written by pattern. Failures raise their error (10620 for a
// failing pattern, conversion errors for values that cannot be written as text).
[[nodiscard]] bool FormatByOwnRules(const Variant& value, const PatternSections& pattern, PatternCategory category,
                                    const WeekRules& rules, std::wstring& out);

// The number a resolved value reads as (Empty as 0, strings through StringToNumber); nothing is raised.
bool ReadsAsNumber(const Variant& value, double& number);

} // namespace brannoc
