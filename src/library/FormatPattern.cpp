#include "library/FormatPattern.h"

#include "values/ValueError.h"

#include <cwctype>

namespace brannoc {

namespace {

// Moves pos past a "\" escape or a double-quoted run starting at pos; false when neither starts
// there. unterminated is set for a quote without its closing quote.
bool SkipLiteral(std::wstring_view text, size_t& pos, bool& unterminated)
{
    if (text[pos] == L'\\') {
        pos = pos + 1 < text.size() ? pos + 2 : pos + 1;
        return true;
    }
    if (text[pos] != L'"')
        return false;
    size_t close = text.find(L'"', pos + 1);
    if (close == std::wstring_view::npos) {
        unterminated = true;
        pos = text.size();
        return true;
    }
    pos = close + 1;
    return true;
}

bool IsDateLetter(wchar_t c)
{
    switch (std::towupper(c)) {
    case L'C': case L'D': case L'W': case L'M': case L'Q': case L'Y': case L'H': case L'N': case L'S': case L'T':
        return true;
    default:
        return false;
    }
}

bool IsAmPmCode(std::wstring_view text, size_t pos)
{
    return StartsWithNoCase(text, pos, L"AM/PM") || StartsWithNoCase(text, pos, L"AMPM") ||
           StartsWithNoCase(text, pos, L"A/P");
}

// The category that the first telling character of section gives, or false when it has none.
bool TellingCategory(std::wstring_view section, PatternCategory& category)
{
    bool unterminated = false;
    for (size_t pos = 0; pos < section.size();) {
        if (SkipLiteral(section, pos, unterminated))
            continue;
        wchar_t c = section[pos];
        if (std::wstring_view(L"@&<>!").find(c) != std::wstring_view::npos) {
            category = PatternCategory::kString;
            return true;
        }
        if (std::wstring_view(L"#0.E").find(c) != std::wstring_view::npos) {
            category = PatternCategory::kNumber;
            return true;
        }
        if (IsDateLetter(c) || IsAmPmCode(section, pos)) {
            category = PatternCategory::kDate;
            return true;
        }
        ++pos;
    }
    return false;
}

} // namespace

bool StartsWithNoCase(std::wstring_view text, size_t pos, std::wstring_view word)
{
    if (pos > text.size() || text.size() - pos < word.size())
        return false;
    for (size_t i = 0; i < word.size(); ++i) {
        if (std::towupper(text[pos + i]) != std::towupper(word[i]))
            return false;
    }
    return true;
}

bool SplitPattern(std::wstring_view pattern, PatternSections& result)
{
    result = PatternSections{};
    size_t start = 0;
    bool unterminated = false;
    for (size_t pos = 0; pos < pattern.size();) {
        if (SkipLiteral(pattern, pos, unterminated))
            continue;
        if (pattern[pos] == L';') {
            if (result.count == 3)
                return RaiseValueError(kErrorInvalidArgument);
            result.sections[result.count++] = pattern.substr(start, pos - start);
            start = pos + 1;
        }
        ++pos;
    }
    if (unterminated)
        return RaiseValueError(kErrorInvalidArgument);
    result.sections[result.count++] = pattern.substr(start);
    return true;
}

PatternCategory CategoryOfPattern(const PatternSections& pattern)
{
    PatternCategory category = PatternCategory::kNumber;
    for (int i = 0; i < pattern.count; ++i) {
        if (TellingCategory(pattern.sections[i], category))
            return category;
    }
    return PatternCategory::kNumber;
}

bool ReadLiteralText(std::wstring_view section, size_t& pos, std::wstring& out, bool& failed)
{
    if (section[pos] == L'\\') {
        if (pos + 1 < section.size())
            out.push_back(section[pos + 1]);
        pos += pos + 1 < section.size() ? 2 : 1;
        return true;
    }
    if (section[pos] != L'"')
        return false;
    size_t close = section.find(L'"', pos + 1);
    if (close == std::wstring_view::npos) {
        failed = !RaiseValueError(kErrorInvalidArgument);
        pos = section.size();
        return true;
    }
    out.append(section.substr(pos + 1, close - pos - 1));
    pos = close + 1;
    return true;
}

} // namespace brannoc
