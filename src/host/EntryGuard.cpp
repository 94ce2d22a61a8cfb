#include "host/EntryGuard.h"
#include "host/EngineContext.h"
#include <float.h>

namespace brannoc {
namespace {

// One semaphore for every engine object of the process; ownership is tracked per thread so that a
// thread already inside the engine can enter again.
HANDLE EngineSemaphore()
{
    static HANDLE s_semaphore = CreateSemaphoreW(nullptr, 1, 1, nullptr);
    return s_semaphore;
}

volatile DWORD s_ownerThread = 0;
int s_ownerDepth = 0;
thread_local EngineContext* t_current = nullptr;

} // namespace

void EngineLock::Acquire()
{
    DWORD self = GetCurrentThreadId();
    if (s_ownerThread == self) {
        ++s_ownerDepth;
        return;
    }
    WaitForSingleObject(EngineSemaphore(), INFINITE);
    s_ownerThread = self;
    s_ownerDepth = 1;
}

void EngineLock::Release()
{
    if (s_ownerThread != GetCurrentThreadId())
        return;
    if (--s_ownerDepth == 0) {
        s_ownerThread = 0;
        ReleaseSemaphore(EngineSemaphore(), 1, nullptr);
    }
}

bool EngineLock::HeldByThisThread() { return s_ownerThread == GetCurrentThreadId(); }

int EngineLock::Suspend()
{
    if (!HeldByThisThread())
        return 0;
    int depth = s_ownerDepth;
    s_ownerDepth = 0;
    s_ownerThread = 0;
    ReleaseSemaphore(EngineSemaphore(), 1, nullptr);
    return depth;
}

void EngineLock::Resume(int depth)
{
    if (depth == 0)
        return;
    WaitForSingleObject(EngineSemaphore(), INFINITE);
    s_ownerThread = GetCurrentThreadId();
    s_ownerDepth = depth;
}

EntryGuard::EntryGuard(EngineContext& context)
{
    if (t_current == &context)
        return;
    EngineLock::Acquire();
    m_entered = true;
    m_previous = t_current;
    t_current = &context;
    m_savedControlWord = _controlfp(0, 0);
    _controlfp(kControlWord, kControlMask);
    m_savedErrorMode = SetErrorMode(kErrorMode);
    m_interpreterScope.emplace(context.Machine());
}

EntryGuard::~EntryGuard()
{
    if (!m_entered)
        return;
    m_interpreterScope.reset();
    SetErrorMode(m_savedErrorMode);
    _controlfp(m_savedControlWord, kControlMask);
    t_current = m_previous;
    EngineLock::Release();
}

EngineContext* EntryGuard::Current() { return t_current; }

} // namespace brannoc
