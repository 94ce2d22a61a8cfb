#pragma once
// The engine's own formatter for date patterns: a section is read into date codes once
// (ParseDatePicture) and written for a date value (WriteDatePicture). The locale's own pictures
// (short and long date, time) are read with the same codes, except that in them "y" is a year code,
// "t" and "tt" the locale's marker and quoted text uses single quotes.
#include "library/DateParts.h"

#include <string>
#include <string_view>
#include <vector>

namespace brannoc {

enum class DateCode {
    kLiteral, kDateSeparator, kTimeSeparator, kGeneralDate, kDay, kDay2, kDayAbbreviation, kDayName,
    kShortDate, kLongDate, kWeekday, kWeekOfYear, kMonth, kMonth2, kMonthAbbreviation, kMonthName,
    kQuarter, kDayOfYear, kYearInCentury, kYear2, kYear4, kHour, kHour2, kMinute, kMinute2, kSecond,
    kSecond2, kMarkerAmPm, kMarkerAP, kLocaleMarker, kLocaleMarkerLetter, kTimePicture,
};

enum class PictureSyntax { kUserPattern, kLocalePicture };

struct DateItem {
    DateCode code = DateCode::kLiteral;
    std::wstring text; // literal text, or the marker as written
};

struct DatePicture {
    std::vector<DateItem> items;
    bool twelveHour = false;

    bool Uses(DateCode code) const;
};

struct WeekRules {
    int firstDay = 1; // 1 Sunday to 7 Saturday
    FirstWeekRule firstWeek = FirstWeekRule::kJanuaryFirst;
};

// Reads a section into codes. Raises 10620 for an unterminated quote or a run of "t" other than
// five in a user pattern.
[[nodiscard]] bool ParseDatePicture(std::wstring_view section, PictureSyntax syntax, DatePicture& picture);

// Appends the text of value written by picture. Fails only when the date cannot be written as text.
[[nodiscard]] bool WriteDatePicture(const DatePicture& picture, DATE value, const WeekRules& rules,
                                    std::wstring& out);

// Formats value by a user date section, at most 255 characters.
[[nodiscard]] bool FormatDateSection(std::wstring_view section, DATE value, const WeekRules& rules,
                                     std::wstring& out);

} // namespace brannoc
