#include "exec/Interpreter.h"

#include "exec/CallEndMarker.h"
#include "exec/ModuleInstance.h"
#include "exec/ProcedureCode.h"
#include "values/ValueError.h"

#include <new>
#include <utility>

namespace brannoc {

Interpreter::Interpreter(InterpreterHost& host) : m_host(host) {}

Interpreter::~Interpreter()
{
    TearDown();
    while (m_freeActivations) {
        Activation* next = m_freeActivations->m_nextFree;
        m_frames.Free(m_freeActivations->m_frameBlock);
        delete m_freeActivations;
        m_freeActivations = next;
    }
}

void Interpreter::TearDown()
{
    // Releasing entries calls back through the current interpreter (the call-end marker).
    InterpreterScope scope(*this);
    m_tearingDown = true;
    UnwindAll();
    HaltFlags::Clear(HaltFlags::kError | HaltFlags::kAction | HaltFlags::kEvaluationError);
    m_tearingDown = false;
    m_runLevel = 0;
}

// ---- Running ----

int Interpreter::RunStep(bool single) { return StepOnce(single); }

int Interpreter::RunSteps(bool single)
{
    m_stepThread = GetCurrentThreadId();
    int result = 0;
    while ((result = StepOnce(single)) > 0) {
    }
    return result;
}

inline int Interpreter::StepOnce(bool single)
{
    if (HaltFlags::Any())
        RunHaltHandler();
    if (m_runLevel < 1 || m_stepCounter < 1 || m_exec.Size() <= m_runFloor)
        return 0;
    m_executionMarker = single ? -2 : -1;

    // The executor works on a copy: a nested host call inside it may grow (and move) the stack.
    const std::size_t pendingBase = m_pending.Size();
    const std::size_t index = m_exec.Size() - 1;
    ExecEntry entry = m_exec.At(index);
    const ExecEntry* const outerEntry = std::exchange(m_steppedEntry, &entry);
    const bool done = entry.state == ExecEntry::kFinished || entry.executor->Step(entry);
    m_steppedEntry = outerEntry;
    // A statement loop that went on into the entry's callers left the stack as it should stand.
    if (entry.executor) {
        if (index < m_exec.Size())
            m_exec.At(index).state = entry.state;
        if (done && m_exec.Size() == index + 1)
            PopAndRelease();
    }
    if (m_pending.Size() > pendingBase)
        MovePending(pendingBase);

    const int result = m_executionMarker == kMarkerPause ? -1 : 1;
    m_executionMarker = 1;
    if (HaltFlags::Any())
        RunHaltHandler();
    if (m_yieldRequest == 1)
        (void)YieldDue();
    if (m_yieldRequest == -1) {
        m_yieldRequest = m_yieldSetting;
        m_host.PumpMessages();
        if (HaltFlags::Any())
            RunHaltHandler();
    }
    return m_runLevel > 0 && m_stepCounter > 0 ? result : 0;
}

bool Interpreter::Schedule(Node& executor)
{
    ExecEntry entry{&executor, 0};
    if (executor.Step(entry)) {
        executor.Release();
        return true;
    }
    (void)PushPending(entry);
    return false;
}

bool Interpreter::PendingPushFailed(const ExecEntry& entry)
{
    // The executor cannot run; it goes as if it had been popped.
    entry.executor->Release();
    return RaiseOutOfMemory();
}

void Interpreter::MovePending(std::size_t base)
{
    while (m_pending.Size() > base) {
        ExecEntry entry = m_pending.Pop();
        if (!m_exec.Push(entry)) {
            entry.executor->Release();
            (void)RaiseOutOfMemory();
        }
    }
}

void Interpreter::PopAndRelease()
{
    ExecEntry entry = m_exec.Pop();
    entry.executor->Release();
}

bool Interpreter::TimeSliceOver()
{
    // At most this many tests pass between two reads while the counter stands still. The interval
    // doubles only while the counter did not move over the last one, so a slice overruns by at most
    // about two ticks however long statements take.
    constexpr int kLongestReadInterval = 1024;
    const DWORD tick = m_tick();
    if (tick == m_lastTickRead)
        m_tickReadInterval = m_tickReadInterval < kLongestReadInterval ? m_tickReadInterval * 2 : kLongestReadInterval;
    else
        m_tickReadInterval = 1;
    m_lastTickRead = tick;
    RefreshTestCount();
    // Unsigned difference: correct across the wrap of the 32-bit millisecond counter.
    if (tick - m_lastYieldTick < kTimeSliceMs)
        return false;
    m_lastYieldTick = tick;
    m_yieldRequest = -1;
    return true;
}

void Interpreter::RefreshTestCount() noexcept
{
    // Without yielding nothing but a break test needs the tick counter or the budget.
    constexpr int kTestsWithoutYielding = 1 << 30;
    if (m_stepCounter <= 2 || m_runDepth > 0 || IsLineTracing())
        m_testsUntilTickRead = 1;
    else
        m_testsUntilTickRead = m_yieldSetting != 0 ? m_tickReadInterval : kTestsWithoutYielding;
}

bool Interpreter::StatementCheckSlow()
{
    // A yield comes first: the statement is tested again afterwards, and the break test (which counts
    // the statement at which the run resumed, and traces) sees each statement once.
    if (m_yieldSetting != 0 && TimeSliceOver()) {
        CheckNextStatement();
        return true;
    }
    if (BreakTestStops()) {
        CheckNextStatement();
        return true;
    }
    if (m_yieldSetting == 0)
        RefreshTestCount();
    return false;
}

bool Interpreter::StatementCheckSlowAt(Activation& activation, int index)
{
    activation.m_currentIndex = index;
    return StatementCheckSlow();
}

void Interpreter::SetYielding(bool on) noexcept
{
    m_yieldSetting = on ? 1 : 0;
    m_yieldRequest = m_yieldSetting;
    CheckNextStatement();
}

void Interpreter::PrepareRun(int runDepth) noexcept
{
    m_runDepth = runDepth < 0 ? 0 : runDepth;
    m_stepCounter = 1;
    CheckNextStatement();
}

bool Interpreter::BreakTestSlow()
{
    if (m_stepCounter <= 2) {
        ++m_stepCounter;
        // The statement at which the run resumed is neither traced nor stopped at.
        if (m_stepCounter == 2)
            return false;
    }
    if (IsLineTracing())
        m_host.TraceLine();
    // Stepping runs through the procedures of hidden modules (evaluation code and the like).
    if (m_callDepth < m_runDepth && !(m_current && m_host.IsSteppingExcluded(m_current->OwnProcedure()))) {
        m_stepCounter = 0;
        (void)RequestAction(InterpreterHost::kActionQuery, 0);
        return true;
    }
    return false;
}

// ---- Calls ----

void Interpreter::BeginRun()
{
    ClearErr();
    m_runLevel = 1;
    m_stepCounter = 1;
    CheckNextStatement();
    m_yieldRequest = m_yieldSetting;
    if (m_yieldSetting != 0)
        m_lastYieldTick = m_tick();
    // A host evaluation on an idle engine is no run of a macro: the host hears neither start nor end.
    if (!m_evaluating)
        m_host.Notify(InterpreterHost::kNotifyRunStarted);
}

void Interpreter::EndRun()
{
    m_runLevel = 0;
    m_yieldRequest = m_yieldSetting;
    ClearErr();
    // FIXME: the per-run lists (queued starts, dialogs) are emptied here once they exist.
    if (!m_tearingDown && !m_evaluating)
        m_host.Notify(InterpreterHost::kNotifyRunEnded);
}

bool Interpreter::CallProcedure(ProcedureCode& procedure, ActivationKind kind, ModuleInstance* instance,
                                bool popArguments)
{
    if (Activation* activation = BeginCall(procedure, kind, instance, popArguments))
        QueueCall(*activation);
    return false;
}

Interpreter::CallOutcome Interpreter::CallFromCode(ProcedureCode& procedure, ModuleInstance* instance,
                                                   bool popArguments)
{
    Activation* activation = BeginCall(procedure, ActivationKind::Call, instance, popArguments);
    if (!activation)
        return CallOutcome::kFailed;
    return RunBegunCall(*activation);
}

Activation* Interpreter::StartActivation(ProcedureCode& procedure, ActivationKind kind, ModuleInstance* instance,
                                         bool popArguments)
{
    Activation* activation = NewActivation();
    if (!activation) {
        (void)RaiseOutOfMemory();
        return nullptr;
    }
    SetUpActivation(*activation, procedure, kind, instance, popArguments);
    return activation;
}

bool Interpreter::ProvideFrame(Activation& activation, std::size_t frameSize)
{
    // The activation keeps its frame block between calls; a smaller one goes back to the pool.
    if (activation.m_frameCapacity < frameSize) {
        m_frames.Free(activation.m_frameBlock);
        m_keptFrameBytes -= activation.m_frameCapacity;
        activation.m_frameBlock = m_frames.Acquire(frameSize);
        activation.m_frameCapacity = activation.m_frameBlock ? frameSize : 0;
        m_keptFrameBytes += activation.m_frameCapacity;
    }
    activation.m_locals = activation.m_frameBlock;
    activation.m_localSize = frameSize;
    return activation.m_locals != nullptr;
}

// Every call of the register form starts here: the activation's set-up is inlined into it.
__attribute__((flatten)) Activation* Interpreter::BeginFramedCall(ProcedureCode& procedure, ModuleInstance* instance)
{
    Activation* activation = StartActivation(procedure, ActivationKind::Call, instance, false);
    if (!activation)
        return nullptr;
    const FrameLayout& layout = procedure.Layout();
    const std::size_t frameSize = static_cast<std::size_t>(layout.slotCount) * sizeof(VARIANT);
    if (frameSize > 0) {
        if (!ProvideFrame(*activation, frameSize)) {
            activation->Release();
            --m_callDepth;
            (void)RaiseOutOfMemory();
            return nullptr;
        }
        CopyFrameImage(static_cast<VARIANT*>(activation->m_locals), layout.image, layout.parameterCount,
                       layout.initializedCount);
    }
    return activation;
}

Interpreter::CallOutcome Interpreter::RunBegunCall(Activation& begun)
{
    Activation* activation = &begun;
    // Deep recursion, a pending error or request, or a paused run: the call goes the scheduled way, where
    // the step loop sees to all of them.
    if (m_inlineDepth >= kMaxInlineDepth || m_callDepth >= kMaxCallDepth || HaltFlags::Any() ||
        m_stepCounter < 1 || m_runLevel < 1)
        return QueueFromCode(*activation);
    // The callee and its call-end marker stand on the execution stack while it runs, as they would when
    // scheduled: error dispatch, unwinding and nested runs see the same stack.
    if (!m_exec.Push(ExecEntry{&CallEndMarker::Instance(), 1}))
        return QueueFromCode(*activation);
    if (!m_exec.Push(ExecEntry{activation, 1})) {
        (void)m_exec.Pop();
        return QueueFromCode(*activation);
    }
    const std::size_t height = m_exec.Size();
    ++m_inlineDepth;
    ExecEntry entry{activation, 1};
    const bool done = activation->RunFromStart(entry);
    --m_inlineDepth;
    // Calls that the callee's statement loop ran itself and that have not ended stand above it: they
    // wait on the pending stack too, above it and below whatever the innermost of them scheduled.
    while (m_exec.Size() > height)
        (void)PushPending(m_exec.Pop());
    // Nested runs inside the callee leave the stack as they found it: the callee and its marker are on top.
    (void)m_exec.Pop();
    (void)m_exec.Pop();
    if (done) {
        activation->Release();
        EndCall();
        // Something the call's end ran (a terminator) left a request or error: the calling statement
        // yields after the call, as if it had been scheduled, so that the step loop sees to it first.
        return HaltFlags::Any() ? CallOutcome::kWaiting : CallOutcome::kEnded;
    }
    // The callee yielded (it scheduled work, stopped at a break or hit an error): it goes on the pending
    // stack below whatever it scheduled, exactly as a scheduled call that ran this far, and the calling
    // statement waits for it even when an error is pending (its dispatch finds the callee first).
    if (!PushPending(entry) || !PushPending(ExecEntry{&CallEndMarker::Instance(), 1}))
        return CallOutcome::kFailed;
    return CallOutcome::kWaiting;
}

Interpreter::CallOutcome Interpreter::QueueFromCode(Activation& activation)
{
    QueueCall(activation);
    return HaltFlags::MustStop() ? CallOutcome::kFailed : CallOutcome::kWaiting;
}

Activation* Interpreter::BeginCall(ProcedureCode& procedure, ActivationKind kind, ModuleInstance* instance,
                                   bool popArguments)
{
    if (m_exec.IsEmpty())
        BeginRun();
    Activation* activation = StartActivation(procedure, kind, instance, popArguments);
    if (!activation)
        return nullptr;
    if (kind == ActivationKind::Entry) {
        activation->m_nextEntry = m_entryActivations;
        m_entryActivations = activation;
    }

    bool bound = true;
    if (!procedure.Layout().image)
        procedure.PrepareForCalls();
    const FrameLayout& layout = procedure.Layout();
    const std::size_t frameSize =
        layout.image ? static_cast<std::size_t>(layout.slotCount) * sizeof(VARIANT) : procedure.FrameSize();
    if (frameSize > 0) {
        if (!ProvideFrame(*activation, frameSize)) {
            bound = RaiseOutOfMemory();
        } else if (layout.image) {
            bound = SetUpFrame(procedure, layout, static_cast<VARIANT*>(activation->m_locals));
        } else if (!procedure.InitializeLocals(activation->m_locals)) {
            bound = false;
        } else {
            const int count = procedure.ParameterCount();
            const std::size_t size = m_values.Size();
            if (static_cast<std::size_t>(count) > size)
                bound = SignalError(kErrorWrongNumberOfParameters);
            // Parameter i binds the entry at size - count + i: the first one the deepest argument.
            else if (count > 0)
                bound = procedure.BindArguments(activation->m_locals, &m_values.At(size - count));
        }
    }
    if (!bound) {
        // The call never started: the error belongs to the calling statement.
        activation->Release();
        --m_callDepth;
        return nullptr;
    }
    return activation;
}

bool Interpreter::SetUpFrame(ProcedureCode& procedure, const FrameLayout& layout, VARIANT* slots)
{
    const int count = layout.parameterCount;
    CopyFrameImage(slots, layout.image, count, layout.initializedCount);
    if (count == 0)
        return true;
    const std::size_t size = m_values.Size();
    if (static_cast<std::size_t>(count) > size) {
        for (int i = 0; i < count; ++i)
            slots[i].vt = VT_EMPTY;
        return SignalError(kErrorWrongNumberOfParameters);
    }
    // Parameter i binds the entry at size - count + i: the first one the deepest argument.
    Variant* arguments = &m_values.At(size - static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        if (BindDirectly(layout.bindings[i], slots[i], arguments[i].Raw()))
            continue;
        // A conversion, a default or a record: the procedure binds the rest, with the parameters it has
        // not reached yet Empty (so that ending the call after a failure finds nothing to release).
        for (int j = i; j < count; ++j)
            slots[j].vt = VT_EMPTY;
        for (; i < count; ++i) {
            if (!procedure.BindParameter(i, slots, arguments[i]))
                return false;
        }
        return true;
    }
    return true;
}

void Interpreter::QueueCall(Activation& activation)
{
    // Scheduling the activation runs its first step, which only marks state 1 and reports not done: the
    // activation goes on the pending stack with state 1, the call-end marker after it.
    if (PushPending(ExecEntry{&activation, 1}))
        (void)PushPending(ExecEntry{&CallEndMarker::Instance(), 1});
    if (m_callDepth >= kMaxCallDepth)
        (void)SignalError(ErrorId::Overflow);
}

bool Interpreter::StartEntry(ProcedureCode& procedure, ModuleInstance* instance, bool popArguments)
{
    const std::size_t pendingBase = m_pending.Size();
    (void)CallProcedure(procedure, ActivationKind::Entry, instance, popArguments);
    MovePending(pendingBase);
    return !HaltFlags::MustStop();
}

void Interpreter::BreakpointReached()
{
    if (m_runLevel == 3 || m_runLevel == 4) {
        m_runLevel += 2;
        m_executionMarker = kMarkerPause;
        return;
    }
    (void)RequestAction(InterpreterHost::kActionStop, 0);
}

bool Interpreter::RunHostCall(ProcedureCode& procedure, ModuleInstance* instance, ErrorExit errorExit,
                              const DebuggedCall* debugged)
{
    const std::size_t mark = m_exec.Size();
    const std::size_t pendingBase = m_pending.Size();
    const bool outerPassedOut = std::exchange(m_errorPassedOut, false);
    // A call made while the run is stopped (a terminator that runs as the stopped frames are unwound)
    // runs to its end as a run of its own; the stopped run stays stopped.
    struct StoppedRun {
        Interpreter& machine;
        int level;
        int counter;
        ~StoppedRun()
        {
            if (level < 0) {
                machine.m_runLevel = level;
                machine.m_stepCounter = counter;
                machine.CheckNextStatement();
            }
        }
    } stoppedRun{*this, debugged ? 0 : m_runLevel, m_stepCounter};
    // A debugged call runs at a level of its own; the run around it (idle, active or stopped) comes back
    // afterwards with its step counter and run depth.
    struct AroundRun {
        Interpreter& machine;
        const DebuggedCall* debugged;
        int level;
        int counter;
        int depth;
        DWORD thread;
        ~AroundRun()
        {
            machine.m_stepThread = thread;
            if (!debugged)
                return;
            if (level != 0)
                machine.m_runLevel = level;
            machine.m_stepCounter = counter;
            machine.m_runDepth = depth;
            machine.CheckNextStatement();
        }
    } aroundRun{*this, debugged, m_runLevel, m_stepCounter, m_runDepth, m_stepThread};
    m_stepThread = GetCurrentThreadId();
    if (!debugged && m_runLevel < 0) {
        m_runLevel = 1;
        m_stepCounter = 1;
        CheckNextStatement();
    }
    (void)CallProcedure(procedure, ActivationKind::Call, instance);
    MovePending(pendingBase);
    if (m_exec.Size() > mark && m_current) {
        m_current->SetHostCallBoundary(true);
        m_current->SetPassesErrorsOut(errorExit == ErrorExit::kToCaller);
    }
    if (debugged && m_exec.Size() > mark) {
        m_runLevel = debugged->lineTracing ? 4 : 3;
        PrepareRun(debugged->runDepth);
        // Even the call's first statement may stop (a break point on it, a step into the call).
        m_stepCounter = 3;
    }
    while (m_exec.Size() > mark && !m_errorPassedOut) {
        if (RunStep(false) > 0)
            continue;
        if (debugged && debugged->whileStopped && m_exec.Size() > mark && !m_errorPassedOut)
            debugged->whileStopped(mark);
        break;
    }
    const bool cutShort = m_exec.Size() > mark;
    while (m_exec.Size() > mark)
        PopAndRelease();
    if (std::exchange(m_errorPassedOut, outerPassedOut))
        return false;
    // A debugged call that a halt ended never returned.
    if (cutShort && debugged)
        return false;
    if (cutShort && m_evaluating && !HaltFlags::MustStop())
        (void)SignalError(ErrorId::FunctionTerminated);
    return !HaltFlags::MustStop();
}

void Interpreter::EndCall()
{
    --m_callDepth;
    if (m_exec.IsEmpty())
        EndRun();
}

Activation* Interpreter::NewActivation()
{
    Activation* activation = m_freeActivations;
    if (activation) {
        m_freeActivations = activation->m_nextFree;
    } else {
        activation = new (std::nothrow) Activation();
        if (!activation)
            return nullptr;
        activation->m_interpreter = this;
    }
    activation->ResetForCall();
    return activation;
}

void Interpreter::UnlinkEntry(Activation& activation) noexcept
{
    for (Activation** link = &m_entryActivations; *link; link = &(*link)->m_nextEntry) {
        if (*link == &activation) {
            *link = activation.m_nextEntry;
            return;
        }
    }
}

// ---- Moving the execution point and unwinding ----

void Interpreter::SetNextStatement(int index) noexcept
{
    if (m_current)
        m_current->SetIndexes(index);
}

bool Interpreter::SetNextLine(int line)
{
    Activation* activation = m_current;
    if (!activation)
        return false;
    const ProcedureCode& procedure = activation->OwnProcedure();
    const int target = line - procedure.FirstLine();
    if (procedure.FirstLine() == 0 || target < 0 || target > procedure.LastStatementIndex())
        return false;
    // The With depth along the way: forwards each statement passed over counts as it would run,
    // backwards as undone. Ending above the lowest value reached means entering a block from outside.
    const int current = activation->CurrentIndex();
    int change = 0;
    int lowest = 0;
    for (int i = current; i < target; ++i) {
        change += procedure.WithDepthChangeAt(i);
        lowest = change < lowest ? change : lowest;
    }
    for (int i = current - 1; i >= target; --i) {
        change -= procedure.WithDepthChangeAt(i);
        lowest = change < lowest ? change : lowest;
    }
    const int withDepth = activation->WithDepth() + change;
    if (change > lowest || withDepth < 0)
        return false;
    UnwindTo(*activation);
    activation->SetIndexes(target);
    // The objects of the With blocks left go; the ones still entered stay on the value stack.
    m_values.CutBack(activation->ValueStackBase() + static_cast<std::size_t>(withDepth));
    activation->SetWithDepth(withDepth);
    return true;
}

void Interpreter::UnwindTo(const Activation& activation)
{
    while (!m_exec.IsEmpty() && m_exec.Top().executor != &activation)
        PopAndRelease();
}

void Interpreter::UnwindAll()
{
    // Ending everything supersedes a stop or end that is still pending; left set, it would cut short
    // the terminators that run as the frames go.
    m_pendingAction = InterpreterHost::kNoAction;
    HaltFlags::Clear(HaltFlags::kAction);
    // Pending entries are newer than anything on the execution stack.
    while (!m_pending.IsEmpty()) {
        ExecEntry entry = m_pending.Pop();
        entry.executor->Release();
    }
    while (!m_exec.IsEmpty())
        PopAndRelease();
}

void Interpreter::UnwindEntry() { UnwindThrough(m_entryActivations); }

void Interpreter::UnwindInnermostCall() { UnwindThrough(m_current); }

void Interpreter::UnwindThrough(const Activation* activation)
{
    if (!activation) {
        UnwindAll();
        return;
    }
    while (!m_exec.IsEmpty()) {
        const bool reached = m_exec.Top().executor == activation;
        PopAndRelease();
        if (reached) {
            if (!m_exec.IsEmpty() && m_exec.Top().executor == &CallEndMarker::Instance())
                PopAndRelease();
            return;
        }
    }
}

// ---- Actions, errors and halting ----

bool Interpreter::RequestAction(int action, long argument)
{
    if ((m_evaluating || m_hostCallDepth > 0) && action != InterpreterHost::kActionStop &&
        action != InterpreterHost::kActionQuery)
        return SignalError(ErrorId::InvalidInstruction);
    // FIXME: the other engines of this thread's ring get a stop request too.
    if (action == InterpreterHost::kActionEndAll || m_pendingAction == InterpreterHost::kNoAction) {
        m_host.Notify(InterpreterHost::kNotifyActionPending);
        m_pendingAction = action;
        m_pendingArgument = argument;
        HaltFlags::Set(HaltFlags::kAction);
    }
    return true;
}

void Interpreter::AssignText(std::wstring& field, std::wstring_view text)
{
    try {
        field.assign(text);
    } catch (const std::bad_alloc&) {
        field.clear();
        HaltFlags::Set(HaltFlags::kOutOfMemory);
    }
}

void Interpreter::SetErr(long number, std::wstring_view description, std::wstring_view source,
                         std::wstring_view helpFile, long helpContext)
{
    if (number == 0) {
        ClearErr();
        return;
    }
    m_error.number = number;
    if (description.empty()) {
        try {
            m_error.description = DefaultDescription(number);
        } catch (const std::bad_alloc&) {
            m_error.description.clear();
            HaltFlags::Set(HaltFlags::kOutOfMemory);
        }
    } else {
        AssignText(m_error.description, description);
    }
    AssignText(m_error.source, source);
    AssignText(m_error.helpFile, helpFile);
    m_error.helpContext = helpContext;
}

void Interpreter::SetDescription(std::wstring_view description) { AssignText(m_error.description, description); }
void Interpreter::SetSource(std::wstring_view source) { AssignText(m_error.source, source); }
void Interpreter::SetHelpFile(std::wstring_view helpFile) { AssignText(m_error.helpFile, helpFile); }

std::uint8_t Interpreter::PendingErrorMask() const noexcept
{
    // Inside a host evaluation an error of the run (bit 1) also blocks a new one.
    return m_evaluating ? HaltFlags::kStopMask : static_cast<std::uint8_t>(HaltFlags::kError);
}

bool Interpreter::SignalError(long number) { return SignalError(number, {}); }

bool Interpreter::SignalError(long number, std::wstring_view argument)
{
    // Nothing is composed while an error is pending: the second one is dropped anyway.
    if (HaltFlags::Has(PendingErrorMask()))
        return false;
    try {
        return RaiseRuntimeError(number, WithArgument(MessageFor(number), argument));
    } catch (const std::bad_alloc&) {
        HaltFlags::Set(HaltFlags::kOutOfMemory);
        return RaiseRuntimeError(number, {});
    }
}

bool Interpreter::RaiseRuntimeError(long number, std::wstring_view description, std::wstring_view source,
                                    std::wstring_view helpFile, long helpContext)
{
    return RaiseServerError(number, description, source,
                            helpFile.empty() ? std::wstring_view(LanguageHelpFile()) : helpFile, helpContext);
}

bool Interpreter::RaiseServerError(long number, std::wstring_view description, std::wstring_view source,
                                   std::wstring_view helpFile, long helpContext)
{
    // A second error before the first is dispatched is dropped: the first one stands.
    if (HaltFlags::Has(PendingErrorMask()))
        return false;
    SetErr(number, description, source, helpFile, helpContext);
    if (number != 0)
        HaltFlags::Set(m_evaluating ? HaltFlags::kEvaluationError : HaltFlags::kError);
    // FIXME: an evaluation error raised while no statement executes is to be reported at once; host
    // evaluations do not exist yet.
    return false;
}

bool Interpreter::RaiseOutOfMemory()
{
    HaltFlags::Set(HaltFlags::kOutOfMemory);
    return SignalError(ErrorId::OutOfMemory);
}

void Interpreter::RaiseOnCurrent(long number)
{
    if (Interpreter* interpreter = Current())
        (void)interpreter->SignalError(number);
}

void Interpreter::RunHaltHandler()
{
    const std::uint8_t copy = HaltFlags::Value();
    HaltFlags::Clear(HaltFlags::kError | HaltFlags::kAction);
    if (copy & HaltFlags::kOutOfMemory)
        m_host.ReleaseMemoryReserve();

    if (copy & HaltFlags::kAction) {
        m_executionMarker = 0;
        // FIXME: an evaluation the host asked for while paused runs here.
        if (m_pendingAction != InterpreterHost::kNoAction) {
            const int action = m_pendingAction;
            const long argument = m_pendingArgument;
            m_pendingAction = InterpreterHost::kNoAction;
            m_pendingArgument = 0;
            m_host.PerformControlAction(action, argument);
        }
        m_executionMarker = 1;
    }

    bool stopped = false;
    // An error that a handler trapped or that leaves a call for its caller stops nothing.
    bool handled = false;
    if ((copy & HaltFlags::kStopMask) && m_runLevel != 0) {
        if (Activation* trapping = FindErrorHandler()) {
            TrapError(*trapping);
            handled = true;
        } else if (FindPassingBoundary()) {
            // The call that ran into the error ends; the code that made it raises the error again.
            HaltFlags::Clear(HaltFlags::kError | HaltFlags::kEvaluationError);
            m_errorPassedOut = true;
            handled = true;
        } else if (copy & HaltFlags::kEvaluationError) {
            m_host.ReportEvaluationError(m_error);
        } else {
            m_host.ReportUntrappedError(m_error);
            m_host.PerformControlAction(InterpreterHost::kActionStop, 0);
            stopped = true;
        }
    }
    const std::uint8_t stopping = handled ? HaltFlags::kOutOfMemory : HaltFlags::kOutOfMemory | HaltFlags::kEvaluationError;
    if (!stopped && (copy & stopping))
        m_host.PerformControlAction(InterpreterHost::kActionStop, 0);
    // Between statements, with every request of this engine seen to: the engine may change hands here.
    if (HaltFlags::HandOverWanted())
        m_host.HandOverEngine();
}

Activation* Interpreter::FindErrorHandler() const noexcept
{
    for (Activation* activation = m_current; activation; activation = activation->Caller()) {
        if (activation->ActiveHandler() && !activation->IsRunningHandler())
            return activation;
        // A host call's own error handling takes over at its boundary.
        if (activation->IsHostCallBoundary())
            return nullptr;
    }
    return nullptr;
}

Activation* Interpreter::FindPassingBoundary() const noexcept
{
    for (Activation* activation = m_current; activation; activation = activation->Caller()) {
        if (activation->IsHostCallBoundary())
            return activation->PassesErrorsOut() ? activation : nullptr;
    }
    return nullptr;
}

void Interpreter::TrapError(Activation& activation)
{
    HaltFlags::Clear(HaltFlags::kEvaluationError);
    UnwindTo(activation);
    // The failing statement does not go on where it stopped (after a call that did not end).
    activation.SetResumeOperation(-1);
    // What the failing statement left on the value stack goes; the With objects stay.
    m_values.CutBack(activation.ValueStackBase() + static_cast<std::size_t>(activation.WithDepth()));
    const int target = activation.ActiveHandler()->HandlerTarget();
    // The statement after the failing one, or after the call that led to it: in a line of several
    // statements the next one on the line.
    const int position = activation.PositionAfterCurrent();
    if (target == ErrorHandler::kResumeNext) {
        if (position > 0)
            activation.SetIndexes(activation.CurrentIndex(), position);
        return;
    }
    if (position > 0)
        activation.SetResumeIndex(activation.CurrentIndex(), position);
    else
        activation.SetResumeIndex(activation.NextIndex());
    activation.SetIndexes(target);
}

// ---- Current interpreter ----

ExecutionGlobals ExecutionGlobals::Save() noexcept
{
    ExecutionGlobals saved{Interpreter::s_current, SetRaiseHandler(nullptr)};
    if (saved.current)
        saved.current->m_savedHalt = HaltFlags::Value();
    HaltFlags::Assign(0);
    Interpreter::s_current = nullptr;
    return saved;
}

void ExecutionGlobals::Restore() const noexcept
{
    Interpreter::s_current = current;
    HaltFlags::Assign(current ? current->m_savedHalt : 0);
    (void)SetRaiseHandler(raise);
}

InterpreterScope::InterpreterScope(Interpreter& interpreter) : m_interpreter(&interpreter)
{
    if (Interpreter::s_current == &interpreter)
        return;
    m_changed = true;
    m_previous = Interpreter::s_current;
    if (m_previous)
        m_previous->m_savedHalt = HaltFlags::Value();
    HaltFlags::Assign(interpreter.m_savedHalt);
    Interpreter::s_current = &interpreter;
    m_previousRaise = SetRaiseHandler(&Interpreter::RaiseOnCurrent);
}

InterpreterScope::~InterpreterScope()
{
    if (!m_changed)
        return;
    m_interpreter->m_savedHalt = HaltFlags::Value();
    HaltFlags::Assign(m_previous ? m_previous->m_savedHalt : 0);
    Interpreter::s_current = m_previous;
    SetRaiseHandler(m_previousRaise);
}

} // namespace brannoc
