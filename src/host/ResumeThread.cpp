#include "host/ResumeThread.h"
#include "brannoc.h"
#include "host/EngineLock.h"
#include <windows.h>
#include <atomic>

namespace brannoc {
namespace {

std::atomic<bool> s_running{false};
std::atomic<bool> s_stopRequested{false};

struct ResumeControl {
    CRITICAL_SECTION lock;
    HANDLE wake = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    ResumeControl() { InitializeCriticalSection(&lock); }
};

ResumeControl& Control()
{
    static ResumeControl s_control;
    return s_control;
}

DWORD WINAPI ResumeLoop(void*)
{
    s_running.store(true);
    while (!s_stopRequested.load()) {
        WaitForSingleObject(Control().wake, ResumeThread::kTurnMs);
        if (!s_stopRequested.load())
            EngineLock::GiveParkedTurn();
    }
    s_running.store(false);
    return 0;
}

} // namespace

void ResumeThread::Start()
{
    ResumeControl& control = Control();
    EnterCriticalSection(&control.lock);
    if (!s_running.load() && EngineLock::MultiThreadMode()) {
        s_stopRequested.store(false);
        if (HANDLE thread = CreateThread(nullptr, 0, &ResumeLoop, nullptr, 0, nullptr)) {
            while (!s_running.load())
                Sleep(0);
            CloseHandle(thread);
        }
    }
    LeaveCriticalSection(&control.lock);
}

void ResumeThread::Stop()
{
    ResumeControl& control = Control();
    EnterCriticalSection(&control.lock);
    if (s_running.load()) {
        s_stopRequested.store(true);
        SetEvent(control.wake);
        while (s_running.load())
            Sleep(1);
    }
    LeaveCriticalSection(&control.lock);
}

bool ResumeThread::IsRunning() { return s_running.load(); }

} // namespace brannoc

using namespace brannoc;

// Ends the multi-thread mode for the rest of the process (the resume thread stops), then gives the
// engine to the first parked thread, if any.
extern "C" void __stdcall KZ_Yield()
{
    if (EngineLock::MultiThreadMode()) {
        ResumeThread::Stop();
        EngineLock::EndMultiThreadMode();
    }
    (void)EngineLock::HandToParked();
}

extern "C" void __stdcall CU_Yield()
{
    KZ_Yield();
}
