// Entry point of the engine DLL. Thread records go with their threads through their fiber-local slot;
// the slot goes with the library, so that threads ending after an unload call nothing in it.
#include "host/ThreadContext.h"
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/)
{
    if (reason == DLL_PROCESS_ATTACH)
        DisableThreadLibraryCalls(instance);
    else if (reason == DLL_PROCESS_DETACH)
        brannoc::ThreadContext::ReleaseSlot();
    return TRUE;
}
