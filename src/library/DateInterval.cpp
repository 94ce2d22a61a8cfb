#include "library/DateInterval.h"

#include <cwctype>

namespace brannoc {

namespace {

constexpr std::wstring_view kCodes[] = {L"yyyy", L"q", L"m", L"y", L"d", L"w", L"ww", L"h", L"n", L"s"};

bool SameCode(std::wstring_view text, std::wstring_view code)
{
    if (text.size() != code.size())
        return false;
    for (size_t i = 0; i < text.size(); ++i) {
        if (std::towlower(text[i]) != code[i])
            return false;
    }
    return true;
}

} // namespace

bool ParseDateInterval(std::wstring_view text, DateInterval& interval)
{
    for (size_t i = 0; i < std::size(kCodes); ++i) {
        if (SameCode(text, kCodes[i])) {
            interval = static_cast<DateInterval>(i);
            return true;
        }
    }
    return false;
}

std::wstring_view DateIntervalCode(DateInterval interval) { return kCodes[static_cast<int>(interval)]; }

} // namespace brannoc
