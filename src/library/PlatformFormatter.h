#pragma once
// Format through the OLE Automation library's routines VarTokenizeFormatString and
// VarFormatFromTokens, looked up at run time in the loaded library. On first use small probes compare
// the routines with the engine's own formatter, category by category (string, number and date
// patterns); a category the platform formats differently is then left to the engine (FormatValue).
#include "values/Variant.h"

#include <string>
#include <string_view>

namespace brannoc {

// What the probes found: a category of patterns whose probes the platform fails is formatted by the
// engine. The general-date overrun is a safety finding: the platform's tokeniser skips characters
// after the "c" code and may read past the end of the pattern, so such patterns never reach it.
enum class PlatformDefect : unsigned {
    kStringPatterns = 1u << 0,
    kNumberPatterns = 1u << 1,
    kDatePatterns = 1u << 2,
    kGeneralDateOverrun = 1u << 3,
};

class PlatformFormatter final {
public:
    // The loaded library's routines, or null when they are missing or turned off.
    static const PlatformFormatter* Find();

    bool HasDefect(PlatformDefect defect) const { return (Defects() & static_cast<unsigned>(defect)) != 0; }
    // What the probes found (or what a test made them find).
    unsigned Defects() const;

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

// Test hooks: when off, Find answers null and the engine's own formatter does all the work; an
// override (a PlatformDefect mask, or -1 for none) replaces what the probes found.
void SetPlatformFormatterEnabled(bool enabled);
void SetPlatformDefectsOverride(int mask);

} // namespace brannoc
