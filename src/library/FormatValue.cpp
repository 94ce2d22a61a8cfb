#include "library/FormatValue.h"

#include "library/FormatPattern.h"
#include "library/LocaleText.h"
#include "library/NamedFormats.h"
#include "library/OwnFormatter.h"
#include "library/PlatformFormatter.h"
#include "library/QuietRaise.h"
#include "values/Conversion.h"
#include "values/ValueError.h"

#include <cmath>
#include <cwctype>

namespace brannoc {

namespace {

// The platform's formatter writes into a fixed buffer of 256 characters (Wine's overruns it), so a
// text that may come near that length is written by the engine instead.
constexpr size_t kPlatformTextLimit = 200;
// The platform's tokens address the pattern's characters by one-byte offsets.
constexpr size_t kPlatformPatternLimit = 255;

bool StoreText(std::wstring_view text, Bstr& result)
{
    return result.Assign(text) || RaiseValueError(kErrorOutOfMemory);
}

// Without a form: Empty and Null give "", a numeric string is written as its number.
bool FormatWithoutForm(const Variant& value, Bstr& result)
{
    if (value.Tag() == VT_EMPTY || value.Tag() == VT_NULL)
        return StoreText(L"", result);
    if (value.Tag() == VT_BSTR) {
        Variant number;
        if (!number.CopyFrom(value.Raw()))
            return RaiseValueError(kErrorOutOfMemory);
        if (StringToNumber(number))
            return ToText(number, TextMode::kNullAsEmpty, result);
    }
    return ToText(value, TextMode::kNullAsEmpty, result);
}

bool FormatBooleanWords(const Variant& value, NamedFormatKind kind, Bstr& result)
{
    if (value.Tag() == VT_EMPTY || value.Tag() == VT_NULL)
        return StoreText(L"", result);
    double number = 0;
    if (!ReadsAsNumber(value, number))
        return ToText(value, TextMode::kLocale, result);
    bool on = number != 0;
    switch (kind) {
    case NamedFormatKind::kYesNo: return StoreText(on ? L"Yes" : L"No", result);
    case NamedFormatKind::kTrueFalse: return StoreText(on ? L"True" : L"False", result);
    default: return StoreText(on ? L"On" : L"Off", result);
    }
}

bool ValidWeekArguments(int firstDay, int firstWeek)
{
    return firstDay >= 0 && firstDay <= 7 && firstWeek >= 0 && firstWeek <= 3;
}

// The week rules with 0 replaced by the locale's first day of week and first week of year.
WeekRules ResolveWeekRules(int firstDay, int firstWeek)
{
    WeekRules rules;
    // The locale numbers its first day 0 for Monday to 6 for Sunday.
    rules.firstDay = firstDay != 0 ? firstDay : (LocaleNumber(LOCALE_IFIRSTDAYOFWEEK, 6) + 1) % 7 + 1;
    if (firstWeek == 0) {
        static constexpr FirstWeekRule kLocaleRules[] = {FirstWeekRule::kJanuaryFirst, FirstWeekRule::kFirstFullWeek,
                                                         FirstWeekRule::kFirstFourDays};
        int locale = LocaleNumber(LOCALE_IFIRSTWEEKOFYEAR, 0);
        rules.firstWeek = kLocaleRules[locale >= 0 && locale <= 2 ? locale : 0];
    } else {
        rules.firstWeek = static_cast<FirstWeekRule>(firstWeek);
    }
    return rules;
}

bool HasUnquotedLetter(std::wstring_view pattern, wchar_t upper)
{
    for (size_t pos = 0; pos < pattern.size(); ++pos) {
        if (pattern[pos] == L'\\') {
            ++pos;
        } else if (pattern[pos] == L'"') {
            size_t close = pattern.find(L'"', pos + 1);
            pos = close == std::wstring_view::npos ? pattern.size() : close;
        } else if (std::towupper(pattern[pos]) == upper) {
            return true;
        }
    }
    return false;
}

PlatformDefect CategoryDefect(PatternCategory category)
{
    switch (category) {
    case PatternCategory::kString: return PlatformDefect::kStringPatterns;
    case PatternCategory::kDate: return PlatformDefect::kDatePatterns;
    case PatternCategory::kNumber:
    default: return PlatformDefect::kNumberPatterns;
    }
}

// Whether the platform's text for this pattern and value might come near its buffer's end: measured
// by the engine's own text, or by its digits and the pattern for a number.
bool MayOverrunPlatform(const Variant& value, std::wstring_view patternText, const PatternSections& pattern,
                        PatternCategory category, const WeekRules& rules)
{
    if (category != PatternCategory::kNumber) {
        std::wstring text;
        QuietRaise quiet;
        return !FormatByOwnRules(value, pattern, category, rules, text) ||
               text.size() + patternText.size() > kPlatformTextLimit;
    }
    double number = 0;
    if (!ReadsAsNumber(value, number))
        return value.Tag() == VT_BSTR && value.StringView().size() + patternText.size() > kPlatformTextLimit;
    // Whole digits, widened by "%" codes, each possibly followed by a grouping separator.
    double magnitude = std::fabs(number);
    size_t digits = magnitude >= 1 ? static_cast<size_t>(std::log10(magnitude)) + 1 : 1;
    for (wchar_t c : patternText)
        digits += c == L'%' ? 2 : 0;
    return 2 * patternText.size() + 2 * digits + 16 > kPlatformTextLimit;
}

// Whether the platform's routines may format this pattern and value, or the engine must.
bool NeedsEngine(const PlatformFormatter& platform, const Variant& value, std::wstring_view patternText,
                 const PatternSections& pattern, PatternCategory category, const WeekRules& rules)
{
    if (patternText.size() > kPlatformPatternLimit || platform.HasDefect(CategoryDefect(category)))
        return true;
    if (platform.HasDefect(PlatformDefect::kGeneralDateOverrun) && HasUnquotedLetter(patternText, L'C'))
        return true;
    return MayOverrunPlatform(value, patternText, pattern, category, rules);
}

bool FormatByPattern(const Variant& value, std::wstring_view patternText, int firstDay, int firstWeek, Bstr& result)
{
    PatternSections pattern;
    if (!SplitPattern(patternText, pattern))
        return false;
    PatternCategory category = CategoryOfPattern(pattern);
    std::wstring text;
    const PlatformFormatter* platform = PlatformFormatter::Find();
    if (!platform) {
        if (firstDay != 1 || firstWeek != 1)
            return RaiseValueError(kErrorInvalidArgument);
        return FormatByOwnRules(value, pattern, category, WeekRules{}, text) && StoreText(text, result);
    }
    if (!ValidWeekArguments(firstDay, firstWeek))
        return RaiseValueError(kErrorInvalidArgument);
    WeekRules rules = ResolveWeekRules(firstDay, firstWeek);
    bool ok = NeedsEngine(*platform, value, patternText, pattern, category, rules)
                  ? FormatByOwnRules(value, pattern, category, rules, text)
                  : platform->Format(value, patternText, firstDay, firstWeek, text);
    return ok && StoreText(text, result);
}

} // namespace

bool FormatValue(const Variant& value, std::optional<std::wstring_view> form, int firstDay, int firstWeek,
                 Bstr& result)
{
    Variant resolved;
    if (!resolved.CopyFrom(value.Raw()))
        return RaiseValueError(kErrorOutOfMemory);
    if (!Resolve(resolved))
        return false;
    if (!form || form->empty())
        return FormatWithoutForm(resolved, result);
    std::wstring_view patternText = *form;
    if (const NamedFormat* named = FindNamedFormat(patternText)) {
        switch (named->kind) {
        case NamedFormatKind::kUnsupported:
            return RaiseValueError(kErrorInvalidArgument);
        case NamedFormatKind::kGeneralNumber:
            return FormatWithoutForm(resolved, result);
        case NamedFormatKind::kYesNo:
        case NamedFormatKind::kTrueFalse:
        case NamedFormatKind::kOnOff:
            return FormatBooleanWords(resolved, named->kind, result);
        case NamedFormatKind::kPattern:
            patternText = named->pattern;
            break;
        }
    }
    return FormatByPattern(resolved, patternText, firstDay, firstWeek, result);
}

} // namespace brannoc
