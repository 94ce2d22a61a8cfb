#pragma once
// The engine's own formatter for string sections: "@" and "&" character positions filled from the
// right (or from the left after "!"), "<" and ">" for lower and upper case, quoted and escaped text.
#include <string>
#include <string_view>

namespace brannoc {

// Appends text written by section. Raises 10620 for an unterminated quote.
[[nodiscard]] bool FormatStringSection(std::wstring_view section, std::wstring_view text, std::wstring& out);

} // namespace brannoc
