#pragma once
// The per-thread record of every thread that uses the engine: a real handle of the thread, its hidden
// timer window, and what the engine lock keeps for the thread while it waits or has given the engine up.
// Made on first use, destroyed when the thread ends.
#include "exec/Interpreter.h"
#include <windows.h>
#include <vector>

namespace brannoc {

class ThreadContext final {
public:
    static constexpr const wchar_t* kTimerWindowClass = L"__BrannocBasicTimerWindow";
    static constexpr DWORD kTimerWindowStyle = 0xCF0000;

    // This thread's record, made on first use (null only when it cannot be made).
    static ThreadContext* Current();
    // This thread's record when it has been made.
    static ThreadContext* Existing();

    // Frees the per-thread slot when the library goes, so that no thread's end calls into unloaded code.
    static void ReleaseSlot();
    // How many thread records exist (tests).
    static long LiveCount();

    DWORD ThreadId() const { return m_threadId; }
    HANDLE Handle() const { return m_handle; }
    HWND TimerWindow() const { return m_timerWindow; }

    // Kept by the engine lock (under its state lock).
    struct LockState {
        HANDLE wake = nullptr;     // auto-reset: set when the engine has been handed to this thread
        int depth = 0;             // the lock depth the thread gets back
        // What the thread had current each time it gave the engine up in the middle of engine code (a call
        // out, a hand-over), innermost last: it gets them back in turn.
        std::vector<ExecutionGlobals> saved;
        ExecutionGlobals outer;    // what was current before the thread took the engine
        unsigned hostControlWord = 0;
        UINT hostErrorMode = 0;
        ThreadContext* next = nullptr;
        bool queued = false;
    };
    LockState& Lock() { return m_lock; }

    ThreadContext(const ThreadContext&) = delete;
    ThreadContext& operator=(const ThreadContext&) = delete;

private:
    ThreadContext();
    ~ThreadContext();
    static void WINAPI Destroy(void* context);

    DWORD m_threadId = 0;
    HANDLE m_handle = nullptr;
    HWND m_timerWindow = nullptr;
    LockState m_lock;
    ThreadContext* m_nextLive = nullptr;
};

} // namespace brannoc
