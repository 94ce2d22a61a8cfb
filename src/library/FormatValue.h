#pragma once
// The Format built-in: a value written as text without a form, by a named format or by a pattern.
#include "values/Variant.h"

#include <optional>
#include <string_view>

namespace brannoc {

// Writes value (resolved first) by form into result. firstDay (0 to 7, 0 the locale's) and
// firstWeek (0 to 3, 0 the locale's) matter for the "w" and "ww" codes; without the platform's
// formatting routines both must be 1. Raises 10620 for a failing pattern, "Medium Date" and bad
// week arguments, 10080 for a value the formatter cannot take.
[[nodiscard]] bool FormatValue(const Variant& value, std::optional<std::wstring_view> form, int firstDay,
                               int firstWeek, Bstr& result);

} // namespace brannoc
