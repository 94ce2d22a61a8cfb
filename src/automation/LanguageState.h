#pragma once
// The user-interface language of a thread (OA_Nls... functions): the language identifier, its code
// page, the satellite resource module, and a lock that keeps them while resources are in use.
#include <windows.h>

namespace brannoc {

constexpr LANGID kFollowUserLanguage = 1024;
constexpr LANGID kResetLanguage = 65535;

} // namespace brannoc
