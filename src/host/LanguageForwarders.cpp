// Library entries kept under the engine's own names: the user-interface language forwarders and a
// debugging link that hosts may still call.
#include "brannoc.h"

extern "C" void __stdcall KZ_NlsLock(BOOL on)
{
    OA_NlsLock(on);
}

extern "C" BOOL __stdcall KZ_NlsSetLangID(LANGID language)
{
    return OA_NlsSetLangID(language);
}

extern "C" void __stdcall KZ_MC200_DebugLink(void) {}
