#pragma once
// Test helpers: dates from calendar parts, and a date written back as text for messages.
#include "library/DateParts.h"

#include <cstdio>
#include <string>

namespace brannoc::test {

inline DATE At(long year, int month, int day, int hour = 0, int minute = 0, int second = 0)
{
    return DaySerial(year, month, day) + (hour * 3600.0 + minute * 60.0 + second) / 86400.0;
}

// yyyy-mm-dd hh:nn:ss of a date's parts.
inline std::string DateText(DATE value)
{
    DateParts parts = SplitDate(value);
    char text[40];
    std::snprintf(text, sizeof text, "%04ld-%02d-%02d %02d:%02d:%02d", parts.year, parts.month, parts.day, parts.hour,
                  parts.minute, parts.second);
    return text;
}

} // namespace brannoc::test
