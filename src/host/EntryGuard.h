#pragma once
// The way into the engine: one process-wide engine lock, the current engine context of the thread,
// and the floating-point control word and error mode that engine code runs with.
#include "exec/Interpreter.h"
#include <windows.h>
#include <optional>

namespace brannoc {

class EngineContext;

// The process-wide engine lock. Re-entrant for the thread that holds it.
class EngineLock final {
public:
    static void Acquire();
    static void Release();
    static bool HeldByThisThread();
    // Gives the lock up completely for a call out of the engine and takes it back afterwards.
    static int Suspend();
    static void Resume(int depth);
};

// Scope of one entry into an engine context. Entering the context that is already current on this
// thread takes nothing and restores nothing.
class EntryGuard final {
public:
    static constexpr unsigned kControlWord = 0xD001F;
    static constexpr unsigned kControlMask = 0xF031F;
    static constexpr UINT kErrorMode = SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX;

    explicit EntryGuard(EngineContext& context);
    ~EntryGuard();
    EntryGuard(const EntryGuard&) = delete;
    EntryGuard& operator=(const EntryGuard&) = delete;

    // The context current on this thread (null outside the engine).
    static EngineContext* Current();

private:
    EngineContext* m_previous = nullptr;
    bool m_entered = false;
    unsigned m_savedControlWord = 0;
    UINT m_savedErrorMode = 0;
    std::optional<InterpreterScope> m_interpreterScope;
};

} // namespace brannoc
