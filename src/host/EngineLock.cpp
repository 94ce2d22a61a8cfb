#include "host/EngineLock.h"
#include "exec/HaltFlags.h"
#include "host/EntryGuard.h"
#include "host/ThreadContext.h"
#include <float.h>
#include <atomic>

namespace brannoc {
namespace {

// How long a waiting thread sleeps before it asks for the engine again; only a safety net, as every
// hand-over wakes it at once.
constexpr DWORD kWaitRetryMs = 50;

// A first-in first-out list of thread records, linked through their lock state.
class ThreadQueue final {
public:
    bool Empty() const { return m_first == nullptr; }
    int Count() const { return m_count; }
    void Append(ThreadContext& thread)
    {
        ThreadContext::LockState& state = thread.Lock();
        state.next = nullptr;
        state.queued = true;
        (m_last ? m_last->Lock().next : m_first) = &thread;
        m_last = &thread;
        ++m_count;
    }
    ThreadContext* TakeFirst()
    {
        ThreadContext* first = m_first;
        if (!first)
            return nullptr;
        m_first = first->Lock().next;
        if (!m_first)
            m_last = nullptr;
        first->Lock().next = nullptr;
        first->Lock().queued = false;
        --m_count;
        return first;
    }

private:
    ThreadContext* m_first = nullptr;
    ThreadContext* m_last = nullptr;
    int m_count = 0;
};

// Everything below is guarded by the state lock.
struct LockTable {
    CRITICAL_SECTION state;
    DWORD owner = 0;
    int depth = 0;
    // Threads that asked for the engine and wait for it (served first).
    ThreadQueue entering;
    // Threads that gave the engine up between statements for another thread.
    ThreadQueue parked;
    // The resume thread asked for a parked thread's turn.
    bool turnWanted = false;
    long handOvers = 0;

    LockTable() { InitializeCriticalSection(&state); }
};

LockTable& Table()
{
    static LockTable s_table;
    return s_table;
}

std::atomic<bool> s_multiThreadMode{true};

class StateLock final {
public:
    StateLock() { EnterCriticalSection(&Table().state); }
    ~StateLock() { LeaveCriticalSection(&Table().state); }
    StateLock(const StateLock&) = delete;
    StateLock& operator=(const StateLock&) = delete;
};

// The thread takes the engine: its globals come back (when it gave the engine up in the middle of engine
// code) and engine code runs with the engine's control word and error mode; the host's, and whatever
// was current before, are kept to be put back when it gives the engine up.
// consume: the thread goes on with the engine code it left (after a call out or a hand-over); else it
// only enters the engine for a while from inside such a call, and the globals stay saved for the return.
void TakeOver(ThreadContext& thread, bool consume)
{
    ThreadContext::LockState& state = thread.Lock();
    state.hostControlWord = _controlfp(0, 0);
    _controlfp(EntryGuard::kControlWord, EntryGuard::kControlMask);
    state.hostErrorMode = SetErrorMode(EntryGuard::kErrorMode);
    state.outer = ExecutionGlobals::Save();
    (state.saved.empty() ? state.outer : state.saved.back()).Restore();
    if (consume && !state.saved.empty())
        state.saved.pop_back();
}

// keep: the thread gives the engine up in the middle of engine code (a call out, a hand-over) and gets
// its globals back when it takes the engine again.
void GiveUp(ThreadContext& thread, bool keep)
{
    ThreadContext::LockState& state = thread.Lock();
    const ExecutionGlobals current = ExecutionGlobals::Save();
    if (keep)
        state.saved.push_back(current);
    state.outer.Restore();
    SetErrorMode(state.hostErrorMode);
    _controlfp(state.hostControlWord, EntryGuard::kControlMask);
}

// Makes thread the owner with the depth it waits for and wakes it. Under the state lock.
void Wake(ThreadContext& thread)
{
    LockTable& table = Table();
    table.owner = thread.ThreadId();
    table.depth = thread.Lock().depth;
    SetEvent(thread.Lock().wake);
}

// Keeps the hand-over bit set exactly while someone waits for the running thread. Under the state lock.
void RefreshHandOverBit()
{
    LockTable& table = Table();
    HaltFlags::SetHandOver(!table.entering.Empty() || (table.turnWanted && !table.parked.Empty()));
}

// The engine is free: hands it to the next thread that should have it. Under the state lock.
void HandToNext(bool parkedFirst)
{
    LockTable& table = Table();
    table.owner = 0;
    table.depth = 0;
    ThreadContext* next = nullptr;
    if (parkedFirst)
        next = table.parked.TakeFirst();
    if (!next)
        next = table.entering.TakeFirst();
    if (!next && s_multiThreadMode.load())
        next = table.parked.TakeFirst();
    if (next) {
        table.turnWanted = false;
        Wake(*next);
    }
    RefreshHandOverBit();
}

// Waits until the engine has been handed to this thread, asking again now and then in case the
// running thread missed the bit.
void WaitForTurn(ThreadContext& thread)
{
    while (WaitForSingleObject(thread.Lock().wake, kWaitRetryMs) == WAIT_TIMEOUT) {
        StateLock lock;
        RefreshHandOverBit();
    }
}

// This thread's record; waits for memory rather than run without one.
ThreadContext& Self()
{
    ThreadContext* thread = ThreadContext::Current();
    while (!thread) {
        Sleep(10);
        thread = ThreadContext::Current();
    }
    return *thread;
}

// Takes the engine with the given depth, waiting for its owner to hand it over.
void AcquireWithDepth(int depth, bool consume)
{
    ThreadContext& self = Self();
    LockTable& table = Table();
    bool mustWait = false;
    {
        StateLock lock;
        if (table.owner == 0 && table.entering.Empty()) {
            table.owner = self.ThreadId();
            table.depth = depth;
        } else {
            self.Lock().depth = depth;
            table.entering.Append(self);
            RefreshHandOverBit();
            mustWait = true;
        }
    }
    if (mustWait)
        WaitForTurn(self);
    TakeOver(self, consume);
}

// Gives the engine up entirely; answers the depth this thread held.
int ReleaseAll(bool parkedFirst, bool keep)
{
    ThreadContext& self = Self();
    StateLock lock;
    const int depth = Table().depth;
    GiveUp(self, keep);
    HandToNext(parkedFirst);
    return depth;
}

} // namespace

bool EngineLock::HeldByThisThread()
{
    StateLock lock;
    return Table().owner == GetCurrentThreadId();
}

void EngineLock::Acquire()
{
    {
        StateLock lock;
        if (Table().owner == GetCurrentThreadId()) {
            ++Table().depth;
            return;
        }
    }
    AcquireWithDepth(1, false);
}

void EngineLock::Release()
{
    {
        StateLock lock;
        LockTable& table = Table();
        if (table.owner != GetCurrentThreadId())
            return;
        if (table.depth > 1) {
            --table.depth;
            return;
        }
    }
    (void)ReleaseAll(false, false);
}

int EngineLock::Suspend()
{
    if (!HeldByThisThread())
        return 0;
    return ReleaseAll(false, true);
}

void EngineLock::Resume(int depth)
{
    if (depth > 0)
        AcquireWithDepth(depth, true);
}

void EngineLock::HandOver()
{
    ThreadContext* self = &Self();
    LockTable& table = Table();
    {
        StateLock lock;
        if (table.owner != GetCurrentThreadId()) {
            RefreshHandOverBit();
            return;
        }
        const bool entering = !table.entering.Empty();
        const bool turn = table.turnWanted && !table.parked.Empty();
        table.turnWanted = false;
        if (!entering && !turn) {
            RefreshHandOverBit();
            return;
        }
        ++table.handOvers;
        ThreadContext::LockState& state = self->Lock();
        state.depth = table.depth;
        GiveUp(*self, true);
        // An entering thread goes first; else the first parked thread has its turn. This thread joins
        // the end of the parked list either way.
        ThreadContext* next = entering ? table.entering.TakeFirst() : table.parked.TakeFirst();
        table.parked.Append(*self);
        Wake(*next);
        RefreshHandOverBit();
    }
    WaitForTurn(*self);
    TakeOver(*self, true);
}

bool EngineLock::HandToParked()
{
    if (HeldByThisThread())
        return false;
    AcquireWithDepth(1, false);
    bool anyParked = false;
    {
        StateLock lock;
        anyParked = !Table().parked.Empty();
    }
    (void)ReleaseAll(anyParked, false);
    return anyParked;
}

void EngineLock::GiveParkedTurn()
{
    StateLock lock;
    LockTable& table = Table();
    if (table.parked.Empty())
        return;
    if (table.owner == 0) {
        Wake(*table.parked.TakeFirst());
        RefreshHandOverBit();
        return;
    }
    table.turnWanted = true;
    RefreshHandOverBit();
}

bool EngineLock::MultiThreadMode() { return s_multiThreadMode.load(); }

void EngineLock::EndMultiThreadMode() { s_multiThreadMode.store(false); }

int EngineLock::ParkedCount()
{
    StateLock lock;
    return Table().parked.Count();
}

long EngineLock::HandOverCount()
{
    StateLock lock;
    return Table().handOvers;
}

} // namespace brannoc
