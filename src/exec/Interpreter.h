#pragma once
// The execution state of one engine context: the execution and pending stacks, the value stack,
// activations, yielding, halting and the end of a run. The engine object owns one and drives it through
// RunStep; everything it needs back from the engine object goes through InterpreterHost.
#include "exec/Activation.h"
#include "exec/CallEndMarker.h"
#include "exec/ElementReferences.h"
#include "exec/ErrorMessages.h"
#include "exec/ErrorRecord.h"
#include "exec/ExecStack.h"
#include "exec/FramePool.h"
#include "exec/HaltFlags.h"
#include "exec/InterpreterHost.h"
#include "exec/ModuleInstance.h"
#include "exec/ValueStack.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

namespace brannoc {

class Interpreter;
class ProcedureCode;
class ModuleInstance;
struct FrameLayout;

// The process-wide variables that describe the engine running on the thread that owns the engine lock:
// the current interpreter (with its halt byte) and the value layer's raise routine. A thread that gives
// the lock up saves them; the thread that takes it puts back its own.
struct ExecutionGlobals {
    Interpreter* current = nullptr;
    void (*raise)(long) = nullptr;

    // Saves the variables (the halt byte into its interpreter) and leaves none current.
    static ExecutionGlobals Save() noexcept;
    void Restore() const noexcept;
};

class Interpreter final {
public:
    static constexpr int kMaxCallDepth = 32767;
    // How many calls made by running code may run nested on the native stack (CallFromCode).
    static constexpr int kMaxInlineDepth = 8;
    static constexpr DWORD kTimeSliceMs = 100;
    // Execution marker value that asks the running step to report a pause.
    static constexpr int kMarkerPause = 99;

    using TickSource = DWORD(WINAPI*)();

    explicit Interpreter(InterpreterHost& host);
    Interpreter(const Interpreter&) = delete;
    Interpreter& operator=(const Interpreter&) = delete;
    // Releases whatever is still on the stacks without notifying the host.
    ~Interpreter();
    // The same while the owner still exists: pops and releases every entry without telling the host
    // that the run ended. Code that runs afterwards (terminators) starts runs of its own.
    void TearDown();

    // The interpreter of the engine context that is current on this thread, or null.
    static Interpreter* Current() noexcept { return s_current; }

    // Advances the execution stack by one step. 1: work remains; -1: the step ended with a pause
    // request; 0: nothing is running (run level or step counter below 1).
    int RunStep(bool single);
    // RunStep again and again while it answers 1 (the host's run loop); answers its last answer.
    int RunSteps(bool single);

    // Runs executor.Step once with state 0. Finished: releases the executor and answers true. Else
    // pushes (executor, state) on the pending stack and answers false.
    [[nodiscard]] bool Schedule(Node& executor);

    // Makes an activation of procedure and pushes it, with the call-end marker below it, on the
    // pending stack. The arguments are the top ParameterCount() entries of the value stack; with
    // popArguments the activation removes them when it ends (after a Function's result reached its
    // slot below them). Always answers false, so that the calling statement yields.
    [[nodiscard]] bool CallProcedure(ProcedureCode& procedure, ActivationKind kind, ModuleInstance* instance,
                                     bool popArguments = false);

    // A call made by running code (the calling statement is on its way and its activation is on the
    // execution stack). The callee runs at once, on this native stack, when nothing needs the step
    // loop first; the nesting of such runs is limited (kMaxInlineDepth), so that deep recursion still
    // goes through the execution stack and the native stack does not grow with the call depth. True when
    // the call has ended (a Function's result is in its slot); false when the calling statement must
    // yield: the callee waits on the pending stack (or an error was raised).
    // kEnded: the call has ended (a Function's result is in its slot). kWaiting: the calling statement
    // yields; the callee waits on the pending stack. kFailed: an error stops the calling statement (the
    // call could not start, or the depth limit was reached).
    enum class CallOutcome { kEnded, kWaiting, kFailed };
    [[nodiscard]] CallOutcome CallFromCode(ProcedureCode& procedure, ModuleInstance* instance,
                                           bool popArguments = false);

    // A call whose caller binds the parameters itself (the register form): the activation of procedure,
    // which must have a frame layout, with the frame set up from the layout's image except the parameter
    // slots, which hold nothing yet: the caller writes every one of them before anything else can touch
    // the frame, then runs the call with RunBegunCall. Null after raising an error.
    [[nodiscard]] Activation* BeginFramedCall(ProcedureCode& procedure, ModuleInstance* instance);
    // Runs a begun call as CallFromCode does.
    [[nodiscard]] CallOutcome RunBegunCall(Activation& activation);
    // A begun call that the caller's statement loop runs itself, on the same native stack frame (the
    // register form): the callee and its call-end marker go on the execution stack as for a scheduled
    // call, so that a break, a yield or an error inside it leaves the stacks exactly as the scheduled way
    // would. False, and nothing pushed, when the call must go the scheduled way (RunBegunCall).
    [[nodiscard]] bool EnterCallInLoop(Activation& callee)
    {
        if (!MayEnterCallInLoop() || !m_exec.Reserve(2))
            return false;
        PushCallInLoop(callee);
        return true;
    }
    // BeginFramedCall and EnterCallInLoop in one, for the common case: nothing pending, room on the
    // execution stack, and a free activation whose kept frame is large enough. Null, with nothing done,
    // otherwise (the caller goes the general way). The parameter slots hold nothing yet, as after
    // BeginFramedCall. Both are defined in line in exec/CallsInLoop.h, for the register loop.
    [[nodiscard]] Activation* TryEnterFramedCall(ProcedureCode& procedure, ModuleInstance* instance);
    // The callee entered that way has ended: it and its marker leave the execution stack, the call ends.
    void LeaveCallInLoop(Activation& callee);
    // The callee entered that way has run its last statement but a request or error stops the loop: the
    // step loop finds it finished and ends it.
    void FinishCallInLoop() noexcept { m_exec.Top().state = ExecEntry::kFinished; }
    // Whether a statement loop that the step loop entered for callee (`entry` is the step loop's copy of
    // its entry) may, at the callee's end, leave it and go on with its caller itself: the caller is of
    // the same statement loop (`runner`), waits on the execution stack right below the callee's marker
    // for this call to end, and belongs to the run in progress. The scheduled way would end the callee
    // and step the caller next; going on in the loop leaves the stacks exactly as that would.
    [[nodiscard]] bool MayReturnIntoCaller(const Activation& callee, const ExecEntry& entry,
                                           StatementRunner runner) const noexcept;
    // The statement loop went on into the callers of the entry the step loop gave it: the step loop
    // leaves the execution stack as the loop left it.
    static void LeaveSteppedEntry(ExecEntry& entry) noexcept { entry.executor = nullptr; }

    // Schedules a module's entry procedure (variant A) onto the execution stack; no statement runs.
    // With popArguments its arguments are on the value stack and go when it ends. False when an error
    // was raised.
    [[nodiscard]] bool StartEntry(ProcedureCode& procedure, ModuleInstance* instance, bool popArguments = false);

    // A host call into a procedure whose arguments are on the value stack: runs it to its end (or until
    // the run stops) and releases whatever it left above the stack height it started from. True when
    // no error or stop is pending afterwards.
    // With ErrorExit::kToCaller (a call made by running code), an error that no handler inside the call
    // traps ends the call instead of the run: it answers false with the error object still filled and no
    // halt bit set, for the caller to raise the error again where it can be trapped.
    enum class ErrorExit { kReport, kToCaller };
    // A host call into macros that may stop for debugging (a handler call, a debugging fire call): it
    // runs at run level 3 (4 with line tracing), which becomes 5 (6) when a break point is reached.
    struct DebuggedCall {
        bool lineTracing = false;
        // The run depth of the call: 0 runs it, a step depth stops before its first statement.
        int runDepth = 0;
        // Called when the run stops with the call still outstanding (a break point, a step, a Stop
        // statement), with the execution stack's height below the call: the host may let its user look
        // at the stopped call and go on with it. Whatever of the call is left afterwards is cut short.
        std::function<void(std::size_t mark)> whileStopped;
    };
    [[nodiscard]] bool RunHostCall(ProcedureCode& procedure, ModuleInstance* instance,
                                   ErrorExit errorExit = ErrorExit::kReport, const DebuggedCall* debugged = nullptr);

    // While a host call waits stopped, the scheduler runs only the entries above the call's mark, so that
    // the host's Run and Step go on with the call and end where it returns. Answers the previous mark.
    std::size_t EnterWaitingCall(std::size_t mark) noexcept
    {
        ++m_waitingCalls;
        const std::size_t previous = m_runFloor;
        m_runFloor = mark;
        return previous;
    }
    void LeaveWaitingCall(std::size_t previous) noexcept
    {
        --m_waitingCalls;
        m_runFloor = previous;
    }
    // True when the host call that waits has returned (the run reached the call's mark).
    bool WaitingCallReturned() const noexcept { return m_waitingCalls > 0 && m_exec.Size() <= m_runFloor; }

    // A host call into macros that runs to its end without debugging: break points and Stop statements
    // do not stop it.
    void EnterPlainCall() noexcept { ++m_plainCalls; }
    void LeavePlainCall() noexcept { --m_plainCalls; }
    // Whether a break point or a Stop statement may stop the run now.
    bool DebugStopsAllowed() const noexcept { return m_plainCalls == 0; }
    // The thread that last ran statements of this engine (the scheduler or a host call).
    DWORD StepThread() const noexcept { return m_stepThread; }

    // Moves the execution point of the current activation.
    void SetNextStatement(int index) noexcept;
    // Moves the execution point of the current activation to the statement of a source line of its
    // procedure (the debugger's set-next-statement). Refused (false, nothing changed) for a line outside
    // the procedure or a move into a With block from outside it; a move out of With blocks releases
    // their objects.
    [[nodiscard]] bool SetNextLine(int line);
    // Pops and releases entries until activation is the top executor.
    void UnwindTo(const Activation& activation);
    // Pops and releases every entry; the run ends when the last call-end marker goes.
    void UnwindAll();
    // Pops the newest entry procedure's frames (the current macro); with none, everything.
    void UnwindEntry();
    // Pops the innermost call (everything above its activation, the activation and its call-end
    // marker); the caller goes on after the call, which gives the value its result holds so far.
    void UnwindInnermostCall();

    // Asks for a host-control action at the next step. While a host evaluation or call is being served
    // only actions 5 and 7 are accepted; others raise "Invalid instruction." and answer false.
    [[nodiscard]] bool RequestAction(int action, long argument);

    // Raises a run-time error with the message of its number (followed by " 'argument'" when one is
    // given; see RaiseRuntimeError). Always answers false.
    [[nodiscard]] bool SignalError(long number);
    [[nodiscard]] bool SignalError(long number, std::wstring_view argument);
    [[nodiscard]] bool SignalError(ErrorId id) { return SignalError(ToNumber(id)); }
    // Raises a run-time error: unless an error is already pending, fills the error object (SetErr)
    // and sets halt bit 1 (8 inside a host evaluation); a second error before the first is dispatched
    // is dropped. Always answers false, for the raiser to return.
    [[nodiscard]] bool RaiseRuntimeError(long number, std::wstring_view description, std::wstring_view source = {},
                                         std::wstring_view helpFile = {}, long helpContext = 0);
    // The same for an error that an automation server reported: its fields are kept as they came (an
    // empty help file stays empty; an empty description gets the number's default one).
    [[nodiscard]] bool RaiseServerError(long number, std::wstring_view description, std::wstring_view source,
                                        std::wstring_view helpFile, long helpContext);
    // Sets the sticky out-of-memory bit and raises "Out of memory.". Always answers false.
    [[nodiscard]] bool RaiseOutOfMemory();
    // The raise routine installed for the value layer: raises on the current interpreter.
    static void RaiseOnCurrent(long number);

    // The time-slice test: true at most every 100 ms while yielding is on, and then a yield is asked
    // for; never true (and the tick counter is not read) while it is off.
    // The counter is read again only after a number of tests that grows while the counter stands still
    // between reads and drops back to one as soon as time passes between them, so that a loop of quick
    // statements does not read it for each one and a slow statement is never followed by a late yield.
    [[nodiscard]] bool YieldDue() { return m_yieldSetting != 0 && --m_testsUntilTickRead <= 0 && TimeSliceOver(); }

    // The checks the statement loop makes before each non-empty statement: the break test, then the
    // time-slice test. True when the run must pause or yield before the statement (it runs on a later
    // step). Both are made in full only when the count of tests until the next tick read runs out; while
    // a break test can stop a statement (the first statements of a run, a run depth) that count stays at
    // one, so that every statement is tested.
    [[nodiscard]] bool StatementCheckStops() { return --m_testsUntilTickRead <= 0 && StatementCheckSlow(); }
    // The same for a statement loop that makes statement `index` current only once it runs (the register
    // form): the full checks see it as the current statement (the trace and the debugger show it).
    [[nodiscard]] bool StatementCheckStops(Activation& activation, int index)
    {
        return --m_testsUntilTickRead <= 0 && StatementCheckSlowAt(activation, index);
    }

    // For a statement loop that counts its statements' tests itself: takes up to kMostTestBudget of the
    // tests left before the full checks are due, which that loop's statements then skip (neither the
    // checks nor the halt byte are read for them). None while every statement must be tested (a break
    // test can stop one: the count stays at one). The loop gives back nothing: tests taken and not used
    // only make the full checks come sooner.
    static constexpr int kMostTestBudget = 64;
    [[nodiscard]] int TakeTestBudget() noexcept
    {
        int budget = m_testsUntilTickRead - 1;
        if (budget <= 0)
            return 0;
        if (budget > kMostTestBudget)
            budget = kMostTestBudget;
        m_testsUntilTickRead -= budget;
        return budget;
    }

    // Pushes an entry on the pending stack (Node::Execute's default). False after raising out of memory.
    [[nodiscard]] bool PushPending(const ExecEntry& entry)
    {
        return m_pending.Push(entry) || PendingPushFailed(entry);
    }

    // Called by the call-end marker when it is popped.
    void EndCall();

    // Prepares a Run or Step from the host: the break test stops while the call depth is below
    // runDepth (0: never), and the statement at which the run resumes is not stopped at.
    void PrepareRun(int runDepth) noexcept;
    // Whether a break point reached now stops the run: not at the statement at which the run resumes,
    // not while a host evaluation runs, and only while a run is active.
    // Inside a host call that has reached a break point already (run level 5 or 6) nothing stops again.
    bool BreakpointStops() const noexcept
    {
        return m_stepCounter != 2 && !m_evaluating && DebugStopsAllowed() && m_runLevel > 0 && m_runLevel != 5 &&
               m_runLevel != 6;
    }
    // A break point stops the run: inside a host call (run level 3 or 4) the level becomes 5 (6) and the
    // step yields to the call, which stops the engine and waits; elsewhere the run stops (action 5).
    void BreakpointReached();
    // An even run level: each statement that the break test examines is traced (Run with depth -1).
    bool IsLineTracing() const noexcept { return m_runLevel > 0 && (m_runLevel & 1) == 0; }

    // The error object (the language's Err).
    const ErrorRecord& Error() const noexcept { return m_error; }
    // Number 0 clears the object. Otherwise the fields are stored; an empty description becomes the
    // number's default description (DefaultDescription).
    void SetErr(long number, std::wstring_view description, std::wstring_view source, std::wstring_view helpFile,
                long helpContext);
    // Number 0, empty texts, help context 0.
    void ClearErr() { m_error.Clear(); }
    void SetDescription(std::wstring_view description);
    void SetSource(std::wstring_view source);
    void SetHelpFile(std::wstring_view helpFile);
    void SetHelpContext(long helpContext) noexcept { m_error.helpContext = helpContext; }
    void SetLastDllError(long code) noexcept { m_error.lastDllError = code; }
    // Replaces the whole error object (a host evaluation saves and restores it).
    void RestoreErr(ErrorRecord record) { m_error = std::move(record); }

    int RunLevel() const noexcept { return m_runLevel; }
    void SetRunLevel(int level) noexcept { m_runLevel = level; }
    int ExecutionMarker() const noexcept { return m_executionMarker; }
    void SetExecutionMarker(int marker) noexcept { m_executionMarker = marker; }
    int StepCounter() const noexcept { return m_stepCounter; }
    void SetStepCounter(int counter) noexcept { m_stepCounter = counter; }
    int RunDepth() const noexcept { return m_runDepth; }
    int CallDepth() const noexcept { return m_callDepth; }
    // Bytes of the frame blocks that activations keep for later calls (bounded once a run has ended).
    std::size_t KeptFrameBytes() const noexcept { return m_keptFrameBytes; }
    static constexpr std::size_t kMostKeptFrameBytes = 1024 * 1024;
    Activation* CurrentActivation() const noexcept { return m_current; }
    Activation* EntryActivations() const noexcept { return m_entryActivations; }
    std::size_t ExecutionDepth() const noexcept { return m_exec.Size(); }
    std::size_t PendingDepth() const noexcept { return m_pending.Size(); }
    ValueStack& Values() noexcept { return m_values; }
    // References into array storage that the value stack holds.
    ElementReferences& References() noexcept { return m_references; }
    InterpreterHost& Host() noexcept { return m_host; }
    int PendingAction() const noexcept { return m_pendingAction; }
    long PendingArgument() const noexcept { return m_pendingArgument; }

    // Yielding (the engine's DoEvents setting).
    void SetYielding(bool on) noexcept;
    bool IsYielding() const noexcept { return m_yieldSetting != 0; }
    // Replaces the tick counter (GetTickCount); tests pass a clock of their own.
    void SetTickSource(TickSource source) noexcept { m_tick = source ? source : &GetTickCount; }
    DWORD ReadTick() const noexcept { return m_tick(); }

    // A host evaluation is in progress: errors set halt bit 8 instead of 1.
    void SetEvaluating(bool on) noexcept { m_evaluating = on; }
    bool IsEvaluating() const noexcept { return m_evaluating; }
    // Host calls into macros in progress; while any runs, only actions 5 and 7 may be requested.
    void EnterHostCall() noexcept { ++m_hostCallDepth; }
    void LeaveHostCall() noexcept { --m_hostCallDepth; }

private:
    friend class Activation;
    friend class InterpreterScope;
    friend struct ExecutionGlobals;

    // The step itself, shared by RunStep and RunSteps.
    __attribute__((always_inline)) int StepOnce(bool single);
    // The executor of an entry that could not go on the pending stack goes as if popped; out of memory.
    [[nodiscard]] bool PendingPushFailed(const ExecEntry& entry);
    void BeginRun();
    void EndRun();
    void RunHaltHandler();
    // The break test before a non-empty statement: true when the run must pause before it. Past the
    // first statements of a run, at or below the run depth and without line tracing there is nothing
    // to test.
    [[nodiscard]] bool BreakTestStops()
    {
        return (m_stepCounter <= 2 || m_callDepth < m_runDepth || IsLineTracing()) && BreakTestSlow();
    }
    [[nodiscard]] bool BreakTestSlow();
    [[nodiscard]] bool StatementCheckSlow();
    [[nodiscard]] bool StatementCheckSlowAt(Activation& activation, int index);
    // Sets the number of tests until the next full check: one while break tests can stop, the read
    // interval while yielding, and a long count otherwise.
    void RefreshTestCount() noexcept;
    // A full check at the next test (the step counter or the run depth changed).
    void CheckNextStatement() noexcept { m_testsUntilTickRead = 1; }
    // Reads the tick counter: true (and a yield asked for) when the time slice is over.
    [[nodiscard]] bool TimeSliceOver();
    // Moves the pending entries above base onto the execution stack, first pushed ending on top.
    void MovePending(std::size_t base);
    void PopAndRelease();
    // Pops and releases entries down to and including activation and the call-end marker below it;
    // with no activation, everything.
    void UnwindThrough(const Activation* activation);
    // Error dispatch: the activation whose On Error handler traps the pending error, or null when the
    // search reaches a host-call boundary or the outermost caller.
    Activation* FindErrorHandler() const noexcept;
    // The host-call boundary the error search stops at when that call passes errors to its caller.
    Activation* FindPassingBoundary() const noexcept;
    // Unwinds to the trapping activation and moves its execution point as its handler says.
    void TrapError(Activation& activation);
    // Assigns one text field of the error object; an allocation failure sets the out-of-memory bit.
    void AssignText(std::wstring& field, std::wstring_view text);
    // The halt bits that mean an error is already pending (a new one is then dropped).
    std::uint8_t PendingErrorMask() const noexcept;

    // Makes the activation of a call, binds its arguments and makes it current; null after raising an
    // error (the call never started).
    [[nodiscard]] Activation* BeginCall(ProcedureCode& procedure, ActivationKind kind, ModuleInstance* instance,
                                        bool popArguments);
    // Sets up a frame from the procedure's layout: the image copied, the parameters bound (directly where
    // they can be, else by the procedure). False after raising an error.
    [[nodiscard]] bool SetUpFrame(ProcedureCode& procedure, const FrameLayout& layout, VARIANT* slots);
    // Pushes a begun call on the pending stack, the call-end marker after it.
    void QueueCall(Activation& activation);
    // QueueCall for CallFromCode: kFailed when an error is pending afterwards, else kWaiting.
    [[nodiscard]] CallOutcome QueueFromCode(Activation& activation);
    // A fresh activation of procedure made current (its frame not yet set up); null after raising out of
    // memory.
    [[nodiscard]] Activation* StartActivation(ProcedureCode& procedure, ActivationKind kind, ModuleInstance* instance,
                                              bool popArguments);
    // Gives the activation a frame block of frameSize bytes (its own when large enough); false when memory
    // runs out.
    [[nodiscard]] bool ProvideFrame(Activation& activation, std::size_t frameSize);
    [[nodiscard]] Activation* NewActivation();
    // Makes a new activation the current one, the call of procedure (one level deeper).
    void SetUpActivation(Activation& activation, ProcedureCode& procedure, ActivationKind kind,
                         ModuleInstance* instance, bool popArguments) noexcept
    {
        ++m_callDepth;
        activation.m_procedure = &procedure;
        activation.m_caller = m_current;
        activation.m_instance = instance;
        if (instance)
            instance->AddUse();
        activation.m_kind = kind;
        activation.m_popArguments = popArguments;
        activation.m_valueStackBase = m_values.Size();
        m_current = &activation;
    }
    // Nothing stops a call from running inside its caller's statement loop.
    bool MayEnterCallInLoop() const noexcept
    {
        return m_callDepth < kMaxCallDepth && !HaltFlags::Any() && m_stepCounter >= 1 && m_runLevel >= 1;
    }
    // The callee and its call-end marker go on the execution stack, which has room for both.
    void PushCallInLoop(Activation& callee) noexcept
    {
        m_exec.PushPairInRoom(ExecEntry{&CallEndMarker::Instance(), 1}, ExecEntry{&callee, 1});
    }
    void FreeActivation(Activation& activation) noexcept
    {
        activation.m_procedure = nullptr;
        activation.m_caller = nullptr;
        activation.m_instance = nullptr;
        // A free activation keeps its frame block for the next call while all kept blocks stay within
        // their byte budget; past it, blocks go back to the pool (which bounds what it keeps) as their
        // activations end.
        if (m_keptFrameBytes > kMostKeptFrameBytes && activation.m_frameBlock) {
            m_frames.Free(activation.m_frameBlock);
            m_keptFrameBytes -= activation.m_frameCapacity;
            activation.m_frameBlock = nullptr;
            activation.m_frameCapacity = 0;
        }
        activation.m_nextFree = m_freeActivations;
        m_freeActivations = &activation;
    }
    void UnlinkEntry(Activation& activation) noexcept;

    static inline Interpreter* s_current = nullptr;

    InterpreterHost& m_host;
    int m_runLevel = 0;
    int m_executionMarker = 0;
    int m_yieldSetting = 1;
    int m_yieldRequest = 1;
    DWORD m_lastYieldTick = 0;
    DWORD m_lastTickRead = 0;
    int m_testsUntilTickRead = 1;
    int m_tickReadInterval = 1;
    TickSource m_tick = &GetTickCount;
    int m_stepCounter = 0;
    int m_runDepth = 0;
    int m_callDepth = 0;
    // Calls running nested on the native stack (CallFromCode).
    int m_inlineDepth = 0;
    // The step loop's copy of the entry it steps now (null between steps).
    const ExecEntry* m_steppedEntry = nullptr;
    Activation* m_current = nullptr;
    ExecStack m_exec;
    ExecStack m_pending;
    Activation* m_entryActivations = nullptr;
    int m_pendingAction = InterpreterHost::kNoAction;
    long m_pendingArgument = 0;
    ValueStack m_values;
    ElementReferences m_references;
    FramePool m_frames;
    Activation* m_freeActivations = nullptr;
    // Bytes of the frame blocks that activations keep, in use or free: enough for a recursion some
    // thousands of levels deep to run again without allocating, bounded so that one deep run does not
    // hold memory once it has ended.
    std::size_t m_keptFrameBytes = 0;
    ErrorRecord m_error;
    bool m_evaluating = false;
    int m_hostCallDepth = 0;
    int m_plainCalls = 0;
    int m_waitingCalls = 0;
    std::size_t m_runFloor = 0;
    DWORD m_stepThread = 0;
    // Set when an error left a host call that passes errors out; its RunHostCall then ends.
    bool m_errorPassedOut = false;
    bool m_tearingDown = false;
    // This engine's halt byte while another engine is current.
    std::uint8_t m_savedHalt = 0;
};

// Makes an interpreter the current one for the scope: swaps the halt bytes of the engines, installs
// the value layer's raise routine, and restores all of it on exit. Nested scopes on the interpreter
// that is already current change nothing.
class InterpreterScope final {
public:
    explicit InterpreterScope(Interpreter& interpreter);
    InterpreterScope(const InterpreterScope&) = delete;
    InterpreterScope& operator=(const InterpreterScope&) = delete;
    ~InterpreterScope();

private:
    Interpreter* m_interpreter = nullptr;
    Interpreter* m_previous = nullptr;
    void (*m_previousRaise)(long) = nullptr;
    bool m_changed = false;
};

} // namespace brannoc
