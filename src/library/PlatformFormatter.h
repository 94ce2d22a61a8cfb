#pragma once
// Format through the OLE Automation library's routines VarTokenizeFormatString and
// VarFormatFromTokens, looked up at run time in the loaded library. On first use a few small probes
// compare the routines with the engine's own formatter; a feature the platform is found to format
// differently is then left to the engine (see FormatValue).
#include "values/Variant.h"

#include <string>
#include <string_view>

namespace brannoc {

// Features a platform may format differently from the language's rules.
enum class PlatformDefect : unsigned {
    kStringPatterns = 1u << 0,    // text folded to lower case without "<", or "!" ignored
    kWeekCodes = 1u << 1,         // "w" and "ww" ignore the first day of week and first week rules
    kGeneralDateCode = 1u << 2,   // "c" swallows the characters after it
    kTwelveHourMarkers = 1u << 3, // an AM/PM code leaves the hours on the 24-hour clock
    kScalingCommas = 1u << 4,     // a "," after the digit codes does not divide by 1,000
    kNullSection = 1u << 5,       // Null does not use the fourth section
    kSignPlacement = 1u << 6,     // the "-" of a negative value goes after leading text
    kDateAsNumber = 1u << 7,      // a Date value is not written as its number by number patterns
    kEmptyAsZero = 1u << 8,       // Empty is not written as the number 0 by number patterns
};

class PlatformFormatter final {
public:
    // The loaded library's routines, or null when they are missing or turned off.
    static const PlatformFormatter* Find();

    bool HasDefect(PlatformDefect defect) const { return (m_defects & static_cast<unsigned>(defect)) != 0; }
    unsigned Defects() const { return m_defects; }

    // Tokenises pattern (US-English conventions, the given first day of week and first week of year)
    // and formats value with the engine's locale. Raises 10080 when the platform reports a type
    // mismatch and 10620 for any other failure.
    [[nodiscard]] bool Format(const Variant& value, std::wstring_view pattern, int firstDay, int firstWeek,
                              std::wstring& out) const;

private:
    using TokenizeFn = HRESULT(WINAPI*)(LPOLESTR, LPBYTE, int, int, int, LCID, int*);
    using FormatFn = HRESULT(WINAPI*)(LPVARIANT, LPOLESTR, LPBYTE, ULONG, BSTR*, LCID);

    PlatformFormatter(TokenizeFn tokenize, FormatFn format) : m_tokenize(tokenize), m_format(format) {}
    static const PlatformFormatter* Load();
    HRESULT FormatText(const Variant& value, std::wstring_view pattern, int firstDay, int firstWeek,
                       std::wstring& out) const;
    unsigned FindDefects() const;

    TokenizeFn m_tokenize = nullptr;
    FormatFn m_format = nullptr;
    unsigned m_defects = 0;
};

// Test hook: when off, Find answers null and the engine's own formatter does all the work.
void SetPlatformFormatterEnabled(bool enabled);

} // namespace brannoc
