#pragma once
// The shape of a format pattern for the engine's own formatter: its sections (split at ";" outside
// quoted and escaped text) and its category (number, date or string), decided by the first section
// with a telling character.
#include <array>
#include <string>
#include <string_view>

namespace brannoc {

enum class PatternCategory { kNumber, kDate, kString };

struct PatternSections {
    std::array<std::wstring_view, 4> sections{};
    int count = 0;

    // Section index (0-based), or an empty view when the pattern has no such section.
    std::wstring_view At(int index) const { return index < count ? sections[index] : std::wstring_view(); }
};

// Splits pattern into at most four sections. Raises 10620 for an unterminated quote or a fifth
// section.
[[nodiscard]] bool SplitPattern(std::wstring_view pattern, PatternSections& result);

PatternCategory CategoryOfPattern(const PatternSections& pattern);

// When section[pos] starts a "\" escape or a double-quoted run, appends its text to out, moves pos
// past it and answers true. An unterminated quote raises 10620 and sets failed.
bool ReadLiteralText(std::wstring_view section, size_t& pos, std::wstring& out, bool& failed);

// True when text at pos starts with word, compared without regard to case.
bool StartsWithNoCase(std::wstring_view text, size_t pos, std::wstring_view word);

} // namespace brannoc
