#include "library/LocaleText.h"

#include "values/Conversion.h"

namespace brannoc {

std::wstring LocaleItem(LCTYPE type, std::wstring_view fallback)
{
    wchar_t buffer[128];
    int length = GetLocaleInfoW(EngineLocale(), type, buffer, static_cast<int>(std::size(buffer)));
    if (length <= 0)
        return std::wstring(fallback);
    return std::wstring(buffer, static_cast<size_t>(length - 1));
}

int LocaleNumber(LCTYPE type, int fallback)
{
    DWORD number = 0;
    int length = GetLocaleInfoW(EngineLocale(), type | LOCALE_RETURN_NUMBER, reinterpret_cast<LPWSTR>(&number),
                                sizeof number / sizeof(wchar_t));
    return length > 0 ? static_cast<int>(number) : fallback;
}

std::wstring MonthNameText(int month, bool abbreviated)
{
    static constexpr const wchar_t* kFallback[12] = {L"January", L"February", L"March",     L"April",
                                                     L"May",     L"June",     L"July",      L"August",
                                                     L"September", L"October", L"November", L"December"};
    LCTYPE first = abbreviated ? LOCALE_SABBREVMONTHNAME1 : LOCALE_SMONTHNAME1;
    std::wstring_view fallback = kFallback[month - 1];
    return LocaleItem(first + month - 1, abbreviated ? fallback.substr(0, 3) : fallback);
}

std::wstring WeekdayNameText(int weekday, bool abbreviated)
{
    static constexpr const wchar_t* kFallback[7] = {L"Sunday",   L"Monday", L"Tuesday", L"Wednesday",
                                                    L"Thursday", L"Friday", L"Saturday"};
    // The platform's day names start with Monday.
    LCTYPE first = abbreviated ? LOCALE_SABBREVDAYNAME1 : LOCALE_SDAYNAME1;
    std::wstring_view fallback = kFallback[weekday - 1];
    return LocaleItem(first + (weekday + 5) % 7, abbreviated ? fallback.substr(0, 3) : fallback);
}

} // namespace brannoc
