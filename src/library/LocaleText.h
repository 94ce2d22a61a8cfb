#pragma once
// Names and pictures of the engine's locale as the date functions and the formatter use them, read
// from the platform's locale data (GetLocaleInfoW with the engine's locale).
#include <windows.h>

#include <string>

namespace brannoc {

// The locale item type of the engine's locale, or fallback when the platform has none.
std::wstring LocaleItem(LCTYPE type, std::wstring_view fallback);

// Name of month 1 to 12 and of weekday 1 (Sunday) to 7, full or abbreviated.
std::wstring MonthNameText(int month, bool abbreviated);
std::wstring WeekdayNameText(int weekday, bool abbreviated);

// A numeric locale item (LOCALE_RETURN_NUMBER), or fallback.
int LocaleNumber(LCTYPE type, int fallback);

} // namespace brannoc
