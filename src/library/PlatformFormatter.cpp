#include "library/PlatformFormatter.h"

#include "library/DateFormatter.h"
#include "library/FormatPattern.h"
#include "library/OwnFormatter.h"
#include "library/QuietRaise.h"
#include "values/Conversion.h"
#include "values/ValueError.h"

#include <atomic>

namespace brannoc {

namespace {

std::atomic<bool> s_enabled{true};
std::atomic<int> s_defectsOverride{-1};

constexpr LCID kPatternLocale = 1033;
constexpr int kTokenBufferSize = 1024;

// One probe: a value and a pattern whose platform text must equal the engine's own.
struct ProbeCase {
    PlatformDefect defect;
    Variant (*value)();
    const wchar_t* pattern;
    int firstDay;
    int firstWeek;
};

Variant MakeText(const wchar_t* text)
{
    Variant value;
    (void)value.SetString(std::wstring_view(text));
    return value;
}

Variant MakeNumber(double number)
{
    Variant value;
    value.SetDouble(number);
    return value;
}

Variant MakeDateValue(DATE date)
{
    Variant value;
    value.SetDate(date);
    return value;
}

Variant MakeNull()
{
    Variant value;
    value.SetNull();
    return value;
}

constexpr DATE kSundaySecondOfJanuary2000 = 36527.0;
constexpr DATE kFirstOfJanuary2000 = 36526.0;
constexpr DATE kOneInTheAfternoon = kFirstOfJanuary2000 + 13.0 / 24;

// Each probe is a rule of the language that the platform's routines are known to be able to get
// wrong. The "c" probe keeps five characters after the code inside the pattern, so a platform that
// skips them still reads only the pattern's own text.
const ProbeCase kProbes[] = {
    // Text keeps its case without "<" or ">"; "!" fills from the left.
    {PlatformDefect::kStringPatterns, [] { return MakeText(L"AbC"); }, L"@@@@", 1, 1},
    {PlatformDefect::kStringPatterns, [] { return MakeText(L"abcd"); }, L"!@@", 1, 1},
    // Week codes follow the first day of week and first week of year.
    {PlatformDefect::kDatePatterns, [] { return MakeDateValue(kSundaySecondOfJanuary2000); }, L"ww", 1, 1},
    {PlatformDefect::kDatePatterns, [] { return MakeDateValue(kSundaySecondOfJanuary2000); }, L"w", 2, 1},
    {PlatformDefect::kDatePatterns, [] { return MakeDateValue(kSundaySecondOfJanuary2000); }, L"ww", 2, 2},
    // Any AM/PM code puts every hour code of the section on the 12-hour clock.
    {PlatformDefect::kDatePatterns, [] { return MakeDateValue(kOneInTheAfternoon); }, L"h AM/PM", 1, 1},
    {PlatformDefect::kDatePatterns, [] { return MakeDateValue(kOneInTheAfternoon); }, L"A/P h", 1, 1},
    // The time picture is written for midnight too.
    {PlatformDefect::kDatePatterns, [] { return MakeDateValue(kFirstOfJanuary2000); }, L"ttttt", 1, 1},
    {PlatformDefect::kGeneralDateOverrun, [] { return MakeDateValue(kFirstOfJanuary2000 + 0.5); }, L"c-----", 1, 1},
    // Number sections: scaling commas, the Null section, the sign in front of leading text, Date and
    // Empty values as numbers, rounding up to a new leading digit, a section without whole digit
    // codes, "#" codes of an exponent.
    {PlatformDefect::kNumberPatterns, [] { return MakeNumber(1234567); }, L"0,", 1, 1},
    {PlatformDefect::kNumberPatterns, MakeNull, L"0;0;0;\"n\"", 1, 1},
    {PlatformDefect::kNumberPatterns, [] { return MakeNumber(-5); }, L"\\$0", 1, 1},
    {PlatformDefect::kNumberPatterns, [] { return MakeDateValue(kFirstOfJanuary2000 + 0.5); }, L"0.00", 1, 1},
    {PlatformDefect::kNumberPatterns, [] { return Variant(); }, L"0.00", 1, 1},
    {PlatformDefect::kNumberPatterns, [] { return MakeNumber(0.5); }, L"0", 1, 1},
    {PlatformDefect::kNumberPatterns, [] { return MakeNumber(12.5); }, L".00", 1, 1},
    {PlatformDefect::kNumberPatterns, [] { return MakeNumber(1); }, L"0E+#", 1, 1},
};

bool OwnText(const Variant& value, const wchar_t* patternText, int firstDay, int firstWeek, std::wstring& out)
{
    PatternSections pattern;
    if (!SplitPattern(patternText, pattern))
        return false;
    WeekRules rules{firstDay, static_cast<FirstWeekRule>(firstWeek)};
    return FormatByOwnRules(value, pattern, CategoryOfPattern(pattern), rules, out);
}

} // namespace

void SetPlatformFormatterEnabled(bool enabled) { s_enabled = enabled; }

void SetPlatformDefectsOverride(int mask) { s_defectsOverride = mask; }

unsigned PlatformFormatter::Defects() const
{
    int mask = s_defectsOverride;
    return mask >= 0 ? static_cast<unsigned>(mask) : m_defects;
}

const PlatformFormatter* PlatformFormatter::Find()
{
    if (!s_enabled)
        return nullptr;
    static const PlatformFormatter* s_formatter = Load();
    return s_formatter;
}

const PlatformFormatter* PlatformFormatter::Load()
{
    HMODULE library = GetModuleHandleW(L"oleaut32.dll");
    if (!library)
        return nullptr;
    // GetProcAddress answers a generic function pointer; the void* step states the conversion.
    void* tokenizeAddress = reinterpret_cast<void*>(GetProcAddress(library, "VarTokenizeFormatString"));
    void* formatAddress = reinterpret_cast<void*>(GetProcAddress(library, "VarFormatFromTokens"));
    auto tokenize = reinterpret_cast<TokenizeFn>(tokenizeAddress);
    auto format = reinterpret_cast<FormatFn>(formatAddress);
    if (!tokenize || !format)
        return nullptr;
    static PlatformFormatter s_formatter(tokenize, format);
    s_formatter.m_defects = s_formatter.FindDefects();
    return &s_formatter;
}

unsigned PlatformFormatter::FindDefects() const
{
    QuietRaise quiet;
    unsigned defects = 0;
    for (const ProbeCase& probe : kProbes) {
        Variant value = probe.value();
        std::wstring platformText;
        std::wstring ownText;
        HRESULT status = FormatText(value, probe.pattern, probe.firstDay, probe.firstWeek, platformText);
        bool ownOk = OwnText(value, probe.pattern, probe.firstDay, probe.firstWeek, ownText);
        if (FAILED(status) || !ownOk || platformText != ownText)
            defects |= static_cast<unsigned>(probe.defect);
    }
    return defects;
}

HRESULT PlatformFormatter::FormatText(const Variant& value, std::wstring_view pattern, int firstDay, int firstWeek,
                                      std::wstring& out) const
{
    // The token stream refers back into the pattern text, so both calls get the same string.
    Bstr patternText;
    if (!patternText.Assign(pattern))
        return E_OUTOFMEMORY;
    BYTE tokens[kTokenBufferSize] = {};
    int used = 0;
    HRESULT status =
        m_tokenize(patternText.Get(), tokens, kTokenBufferSize, firstDay, firstWeek, kPatternLocale, &used);
    if (FAILED(status))
        return status;
    Variant input;
    if (!input.CopyFrom(value.Raw()))
        return E_OUTOFMEMORY;
    Bstr text;
    status = m_format(&input.Raw(), patternText.Get(), tokens, 0, text.Out(), EngineLocale());
    if (FAILED(status))
        return status;
    out.append(text.View());
    return S_OK;
}

bool PlatformFormatter::Format(const Variant& value, std::wstring_view pattern, int firstDay, int firstWeek,
                               std::wstring& out) const
{
    HRESULT status = FormatText(value, pattern, firstDay, firstWeek, out);
    if (status == E_OUTOFMEMORY)
        return RaiseValueError(kErrorOutOfMemory);
    if (status == DISP_E_TYPEMISMATCH)
        return RaiseValueError(kErrorTypeMismatch);
    return SUCCEEDED(status) || RaiseValueError(kErrorInvalidArgument);
}

} // namespace brannoc
