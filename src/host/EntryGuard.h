#pragma once
// The way into the engine: one process-wide engine lock, the current engine context of the thread,
// and the floating-point control word and error mode that engine code runs with.
#include "exec/Interpreter.h"
#include "host/EngineLock.h"
#include <windows.h>
#include <optional>

namespace brannoc {

class EngineContext;

// Scope of one entry into an engine context: holds the engine lock (the lock puts the engine's control
// word and error mode in force while this thread holds it, and the host's back when it gives it up) and
// makes the context current. Entering the context that is already current on this thread only makes
// sure that the lock is held: a callback that calls back into its engine object gave the lock up for the
// call.
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
    std::optional<InterpreterScope> m_interpreterScope;
};

} // namespace brannoc
