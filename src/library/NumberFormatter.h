#pragma once
// The engine's own formatter for number sections: digit codes "0" and "#", the decimal point,
// thousands grouping and scaling by ",", "%" and the exponent codes, with quoted and escaped text.
#include <string>
#include <string_view>
#include <vector>

namespace brannoc {

enum class NumberPart { kWhole, kFraction, kExponent };

struct NumberItem {
    enum class Kind { kLiteral, kDigit, kDecimalPoint, kExponent } kind = Kind::kLiteral;
    NumberPart part = NumberPart::kWhole;
    bool zeroDigit = false;    // "0" rather than "#"
    bool upperCase = true;     // exponent letter
    bool alwaysSign = false;   // exponent written with "+"
    std::wstring text;         // literal text
};

struct NumberSection {
    std::vector<NumberItem> items;
    bool grouping = false;
    int scalingCommas = 0;
    int percents = 0;
    bool exponent = false;

    // True when the section holds text before its first digit code.
    bool HasLeadingText() const;
};

// Reads a number section (at most 511 codes). Raises 10620 for a misplaced "," or exponent code and
// for an unterminated quote.
[[nodiscard]] bool ParseNumberSection(std::wstring_view section, NumberSection& result);

// Appends the magnitude of value written by section, with a "-" in front when withSign is set and the
// value is negative. Raises 10620 when the value needs more than 100 digit positions.
[[nodiscard]] bool WriteNumberSection(const NumberSection& section, double value, bool withSign, std::wstring& out);

} // namespace brannoc
