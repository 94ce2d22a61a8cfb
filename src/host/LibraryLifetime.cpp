#include "host/LibraryLifetime.h"
#include "host/LibraryExports.h"
#include <windows.h>
#include <atomic>

namespace brannoc {
namespace {

std::atomic<long> s_objectCount{0};
std::atomic<long> s_lockCount{0};

// Serialises the unload question against creation and release on other threads.
CRITICAL_SECTION* LibraryLock()
{
    static CRITICAL_SECTION s_lock;
    static bool s_ready = [] {
        InitializeCriticalSection(&s_lock);
        return true;
    }();
    (void)s_ready;
    return &s_lock;
}

} // namespace

void AddObjectReference() { ++s_objectCount; }
void ReleaseObjectReference() { --s_objectCount; }
long ObjectCount() { return s_objectCount.load(); }

void ChangeClassLock(short count)
{
    if (count >= 1)
        ++s_lockCount;
    else if (count < 0)
        --s_lockCount;
}

long ClassLockCount() { return s_lockCount.load(); }

bool CanUnloadLibrary() { return s_objectCount.load() == 0 && s_lockCount.load() == 0; }

} // namespace brannoc

using namespace brannoc;

extern "C" HRESULT __stdcall DllCanUnloadNow()
{
    return CanUnloadLibrary() ? S_OK : S_FALSE;
}

extern "C" BOOL __stdcall KZ_CodeClassLock(SHORT count, LONG /*reserved*/)
{
    ChangeClassLock(count);
    return (ObjectCount() != 0 || ClassLockCount() != 0) ? TRUE : FALSE;
}

extern "C" BOOL __stdcall KZ_FreeLibraryOkay()
{
    return DllCanUnloadNow() == S_OK ? -1 : 0;
}

extern "C" BOOL __stdcall CU_FreeLibraryOkay()
{
    EnterCriticalSection(LibraryLock());
    BOOL result = KZ_FreeLibraryOkay();
    LeaveCriticalSection(LibraryLock());
    return result;
}
