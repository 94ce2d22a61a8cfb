#pragma once
// The local clock of the system as the date built-ins read it: once per call.
#include <windows.h>
#include <wtypes.h>

namespace brannoc {

// The local date and time to the whole second.
DATE LocalNow();

// Seconds since local midnight, with the clock's milliseconds.
float SecondsSinceMidnight();

} // namespace brannoc
