#pragma once
// The process-wide engine lock and the cooperative hand-over of the engine between threads.
//
// One thread at a time owns the engine. A thread that needs it while another thread runs statements
// queues itself and sets the hand-over bit of the halt byte; the running thread sees the bit at its next
// statement boundary (the test the statement loop makes anyway), parks itself and hands the engine on.
// Parked threads get the engine back when it is free again (or, when the multi-thread mode is off, when
// a thread calls KZ_Yield); the resume thread gives them turns while another thread keeps running.
// Threads are never suspended from outside: a thread stopped inside the heap allocator would hang the
// next thread that allocates.
//
// Whoever owns the engine keeps the execution globals (current interpreter, halt byte, raise routine)
// in process-wide variables and runs with the engine's floating-point control word and error mode; a
// thread that gives the engine up saves its globals and puts the host's control word and error mode
// back, and restores both when it gets the engine again.

namespace brannoc {

class EngineLock final {
public:
    // Takes the engine for this thread (re-entrant). Waits while another thread owns it.
    static void Acquire();
    static void Release();
    static bool HeldByThisThread();
    // Gives the engine up completely for a call out of the engine and takes it back afterwards.
    static int Suspend();
    static void Resume(int depth);

    // Called by the running thread between statements when the hand-over bit is set: when a thread
    // waits for the engine (or a parked thread's turn has come), this thread parks until the engine is
    // handed back to it.
    static void HandOver();

    // Gives the engine to the first parked thread when it is free or can be freed (KZ_Yield). False
    // when no thread was parked.
    static bool HandToParked();
    // Asks the running thread for a turn of the first parked thread; gives the engine to that thread at
    // once when nobody owns it (the resume thread's tick).
    static void GiveParkedTurn();

    // The multi-thread mode: on at start, off for good after KZ_Yield. While it is off a parked thread
    // continues only when some thread calls KZ_Yield.
    static bool MultiThreadMode();
    static void EndMultiThreadMode();

    // How many threads are parked (tests and the resume thread).
    static int ParkedCount();
    // How many times a running thread has parked so far (tests).
    static long HandOverCount();
};

// Scope of one acquisition of the engine lock.
class EngineLockScope final {
public:
    EngineLockScope() { EngineLock::Acquire(); }
    ~EngineLockScope() { EngineLock::Release(); }
    EngineLockScope(const EngineLockScope&) = delete;
    EngineLockScope& operator=(const EngineLockScope&) = delete;
};

} // namespace brannoc
