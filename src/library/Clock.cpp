#include "library/Clock.h"

#include "library/DateParts.h"

namespace brannoc {

DATE LocalNow()
{
    SYSTEMTIME now;
    GetLocalTime(&now);
    double seconds = now.wHour * 3600.0 + now.wMinute * 60.0 + now.wSecond;
    return DaySerial(now.wYear, now.wMonth, now.wDay) + seconds / 86400.0;
}

float SecondsSinceMidnight()
{
    SYSTEMTIME now;
    GetLocalTime(&now);
    double seconds = now.wHour * 3600.0 + now.wMinute * 60.0 + now.wSecond + now.wMilliseconds / 1000.0;
    return static_cast<float>(seconds);
}

} // namespace brannoc
