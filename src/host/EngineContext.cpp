#include "host/EngineContext.h"

#include "automation/EventSink.h"
#include "automation/OutsideCall.h"
#include "exec/ModuleInstance.h"
#include "frontend/Module.h"
#include "host/AnsiText.h"
#include "host/ClassObject.h"
#include "host/CodeUnit.h"
#include "host/DefaultCallBack.h"
#include "host/EntryGuard.h"
#include "host/EventSource.h"
#include "host/HostCallBack.h"
#include "host/MemoryReserve.h"
#include "host/SchedulerRing.h"
#include "host/ThisModule.h"
#include "host/ThreadContext.h"
#include "values/Variant.h"
#include <windows.h>
#include <utility>

namespace brannoc {

// The pending-notification timer: finds the engine object by its identifier (the timer's) and delivers
// its deferred idle notification. The timer fires once; an object that has gone is simply not found.
void CALLBACK KZ_PendingNotifyEnd(HWND window, UINT, UINT_PTR identifier, DWORD)
{
    KillTimer(window, identifier);
    EngineLockScope lock;
    CodeUnit* unit = CodeUnit::First();
    while (unit && unit->Identifier() != identifier)
        unit = unit->Next();
    if (!unit)
        return;
    unit->AddRef();
    {
        EntryGuard guard(unit->Context());
        unit->Context().SendNotification(-1);
    }
    unit->Release();
}

EngineContext::EngineContext(CodeUnit& owner) : m_owner(owner), m_modules(*this), m_interpreter(*this)
{
    m_modules.SetBodyCompiler(&m_bodyCompiler);
}

// Everything that can run macro code goes while the interpreter still exists: the frames of a run in
// progress, then the loaded modules, whose variables may hold class instances with terminators.
EngineContext::~EngineContext()
{
    EntryGuard guard(*this);
    m_interpreter.TearDown();
    m_modules.UnloadAll();
}

void EngineContext::SetCallBack(IDispatch* callBack)
{
    // The new callback is held before the previous one goes.
    ComRef<IDispatch> held = ComRef<IDispatch>::Share(callBack);
    m_callBack = std::move(held);
}

void EngineContext::SetDoEventsPolling(bool on)
{
    m_doEvents = on;
    m_interpreter.SetYielding(on);
}

RunState EngineContext::State() const
{
    if (IsBusy())
        return RunState::Busy;
    int level = m_interpreter.RunLevel();
    return level == 0 ? RunState::Idle : level > 0 ? RunState::Active : RunState::Stopped;
}

RunState EngineContext::Control(int request, long argument)
{
    // A Continue while an untrapped error is being reported ends the report state; every other request
    // made meanwhile (or while compiling) is refused.
    if (IsBusy() && !(request == kActionResume && m_reportingError && !m_compiling))
        return RunState::Busy;
    switch (request) {
    case kActionRun:
        return Run(argument);
    case kActionSetStackDepth:
        if (m_interpreter.IsEvaluating())
            return StopRequest(false);
        if (StatementExecuting()) {
            (void)m_interpreter.RequestAction(request, argument);
            return State();
        }
        while (m_interpreter.CallDepth() > (argument < 0 ? 0 : argument) && m_interpreter.ExecutionDepth() > 0)
            m_interpreter.UnwindInnermostCall();
        return State();
    case kActionEndAll:
        return EndAll();
    case kActionEnd:
        return EndCurrent();
    case kActionHalt:
        if (m_interpreter.IsEvaluating())
            return StopRequest(false);
        if (StatementExecuting()) {
            (void)m_interpreter.RequestAction(request, argument);
            return State();
        }
        if (m_interpreter.RunLevel() == 0)
            return StopRequest(true);
        return EndCurrent();
    case kActionStop:
        return StopRequest(argument != 0);
    case kActionResume:
        return Resume();
    case kActionQuery:
        SendNotification(-1);
        return State();
    case kActionQuietQuery:
    default:
        return State();
    }
}

// Request 0: run until the stack depth is below depth, or one line for the step depth.
RunState EngineContext::Run(long depth)
{
    if (depth < -1) {
        SetTraceByte(depth);
        return RunState::Busy;
    }
    const bool step = depth == kStepDepth;
    if (m_interpreter.RunLevel() <= 0) {
        if (step) {
            m_stepIntoHostCall = true;
            return RunState::Busy;
        }
        return State();
    }
    if (StatementExecuting())
        return RunState::Busy;
    int target = depth < 0 || depth == kStartDepth ? 0 : static_cast<int>(depth);
    m_interpreter.SetRunLevel(depth == -1 ? 2 : 1);
    m_interpreter.PrepareRun(target);
    if (depth == kStartDepth)
        m_interpreter.SetStepCounter(3);   // even the statement at which the run resumes may stop
    if (SchedulerRing* ring = SchedulerRing::OfThisThread(); ring && !ring->Owns(*this) && m_hostCallDepth == 0) {
        ring->Join(*this);
        return RunState::Active;
    }
    RunScheduler(step);
    // A host call that waited stopped has returned: its caller goes on from there.
    if (step || m_interpreter.WaitingCallReturned())
        return State();
    if (m_interpreter.RunLevel() > 0)
        return StopRequest(false);
    return State();
}

void EngineContext::WaitForHostCall(std::size_t mark, const std::function<bool()>& goOn)
{
    const std::size_t previous = m_interpreter.EnterWaitingCall(mark);
    auto waiting = [&] { return m_interpreter.ExecutionDepth() > mark && m_deferredHalt == 0 && goOn(); };
    while (waiting()) {
        ServeHostMessages();
        if (!waiting())
            break;
        // No polling loop: the thread sleeps until a message comes or the time slice is over.
        automation::OutsideCall outside;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, Interpreter::kTimeSliceMs, QS_ALLINPUT);
    }
    m_interpreter.LeaveWaitingCall(previous);
}

void EngineContext::ServeHostMessages()
{
    if (m_callBack && HostCallBack::DoEvents(m_callBack.Get(), m_owner.AsDispatch()))
        return;
    MSG message;
    for (int i = 0; i < 100 && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE); ++i) {
        if (message.message == WM_QUIT) {
            // The host's loop sees the quit message again; the waiting call ends with everything else.
            PostQuitMessage(static_cast<int>(message.wParam));
            DeferHalt(2);
            return;
        }
        automation::OutsideCall outside;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

void EngineContext::RunScheduler(bool single)
{
    // The execution trace brackets each stretch of statements that the scheduler runs.
    const bool traced = ExecutionTraceOn();
    if (traced)
        WriteTrace(TraceKind::Entry, L"*Execute");
    if (m_doEvents && m_hostCallDepth == 0 && !SchedulerRing::OfThisThread()) {
        // Other engine objects asked to run on this thread meanwhile join this ring and run after it.
        SchedulerRing ring(*this);
        (void)m_interpreter.RunSteps(single);
        ring.RunJoined();
    } else {
        (void)m_interpreter.RunSteps(single);
    }
    m_interpreter.SetExecutionMarker(0);
    if (traced)
        WriteTrace(TraceKind::Exit, L"");
}

bool EngineContext::RunTimeSlice(unsigned long ticks)
{
    const DWORD start = m_interpreter.ReadTick();
    int result = 0;
    do {
        result = m_interpreter.RunStep(false);
    } while (result > 0 && ((m_interpreter.ReadTick() - start) & 0x7FFFFFFF) < ticks);
    m_interpreter.SetExecutionMarker(0);
    if (result > 0)
        return true;
    if (m_interpreter.RunLevel() > 0)
        (void)StopRequest(false);
    return false;
}

// Request 5 (stop); fromHalt marks a stop that followed an end or halt request.
RunState EngineContext::StopRequest(bool fromHalt)
{
    if (StatementExecuting()) {
        (void)m_interpreter.RequestAction(kActionStop, 0);
        return State();
    }
    if (m_interpreter.RunLevel() > 0) {
        SendNotification(kNotifyStopped);
    } else if (m_interpreter.RunLevel() == 0 && fromHalt) {
        SendNotification(13);
    }
    return State();
}

// Request 2: stop, then unwind every frame; the run's end notifies idle.
RunState EngineContext::EndAll()
{
    if (m_interpreter.IsEvaluating())
        return StopRequest(false);
    if (StatementExecuting()) {
        (void)m_interpreter.RequestAction(kActionEndAll, 0);
        return State();
    }
    if (m_interpreter.RunLevel() == 0)
        return StopRequest(true);
    if (m_interpreter.RunLevel() > 0)
        SendNotification(kNotifyStopped);
    m_interpreter.UnwindAll();
    return State();
}

// Request 3: unwind the current macro's frames, then stop what remains.
RunState EngineContext::EndCurrent()
{
    if (StatementExecuting()) {
        (void)m_interpreter.RequestAction(kActionEnd, 0);
        return State();
    }
    if (m_interpreter.RunLevel() == 0)
        return StopRequest(true);
    m_interpreter.UnwindEntry();
    return StopRequest(false);
}

RunState EngineContext::Resume()
{
    if (m_reportingError) {
        m_reportingError = false;
        SendNotification(1000);
        return State();
    }
    if (m_interpreter.RunLevel() < 0)
        SendNotification(kNotifyResumed);
    return State();
}

void EngineContext::SetTraceByte(long depth)
{
    const unsigned value = static_cast<unsigned>(depth) & 0xFFFF;
    switch (value & 0xFF00) {
    case 0x8000: m_trace[0] = static_cast<unsigned char>(value & 0xFF); break;
    case 0x8100: m_trace[1] = static_cast<unsigned char>(value & 0xFF); break;
    case 0x8200: m_trace[2] = static_cast<unsigned char>(value & 0xFF); break;
    default: break;
    }
}

void EngineContext::Trace(TraceKind kind, const std::wstring& text)
{
    if (ApiTraceOn())
        WriteTrace(kind, text);
}

void EngineContext::WriteTrace(TraceKind kind, const std::wstring& text)
{
    if (m_callBack)
        HostCallBack::DebugTrace(m_callBack.Get(), m_owner.AsDispatch(), static_cast<short>(kind), text);
    else if (m_traceSink)
        m_traceSink(kind, text);
}

// The detail lines that follow an error recorded while the API trace is on.
void EngineContext::TraceErrorFields()
{
    if (!ApiTraceOn())
        return;
    const ErrorLocation& error = m_errorReport;
    WriteTrace(TraceKind::Detail, L"ErrorDesc=" + error.description);
    WriteTrace(TraceKind::Detail, L"ErrorMacroName=" + error.macroName);
    WriteTrace(TraceKind::Detail, L"ErrorLine=" + error.lineText);
    WriteTrace(TraceKind::Detail, L"ErrorLineNum=" + std::to_wstring(static_cast<short>(error.lineNumber)));
    WriteTrace(TraceKind::Detail, L"ErrorOffset=" + std::to_wstring(error.offset));
}

void EngineContext::SendNotification(short code)
{
    if (m_pendingNotification >= 0) {
        const short pending = static_cast<short>(m_pendingNotification);
        m_pendingNotification = -1;
        if (code == kNotifyStopped) {
            // The stop happened before the idle notification reaches the host: stop first, then idle.
            SendNotification(code);
            SendNotification(pending);
            return;
        }
        if (code != pending)
            SendNotification(pending);
    }
    if (code < 0)
        return;
    switch (code) {
    case kNotifyError:
        if (m_interpreter.IsEvaluating())
            return;
        if (m_interpreter.RunLevel() > 0)
            m_interpreter.SetRunLevel(-m_interpreter.RunLevel());
        break;
    case kNotifyStopped:
        if (m_interpreter.RunLevel() > 0)
            m_interpreter.SetRunLevel(-m_interpreter.RunLevel());
        break;
    case kNotifyResumed:
        if (m_interpreter.RunLevel() < 0)
            m_interpreter.SetRunLevel(-m_interpreter.RunLevel());
        break;
    case kNotifyRunEnded:
        // Every stream the macro opened closes when its run ends: normally, after an error or halted.
        m_streams.CloseAll();
        m_modules.RunEnded();
        if (m_hostCallDepth > 0) {
            DeferIdleNotification();
            return;
        }
        break;
    case kNotifyErrorSet:
        if (m_interpreter.IsEvaluating())
            return;
        TraceErrorFields();
        break;
    default:
        break;
    }
    if (m_notificationSink)
        m_notificationSink(code);
    if (m_callBack)
        HostCallBack::Notify(m_callBack.Get(), m_owner.AsDispatch(), code);
    else
        DefaultNotify(code);
}

namespace {

bool IsUsableOwner(HWND window) { return window && IsWindowEnabled(window) && IsWindowVisible(window); }

// The first top-level window in the Z order that the given window owns, or null.
HWND FirstOwnedWindow(HWND owner)
{
    for (HWND window = GetTopWindow(nullptr); window; window = GetWindow(window, GW_HWNDNEXT)) {
        if (GetWindow(window, GW_OWNER) == owner)
            return window;
    }
    return nullptr;
}

// The owner for a modal dialog made from the host's window: its top-level window when it is a child, or,
// when that cannot take input, the first usable window down its chain of owned windows, else its last
// active pop-up; null when none of them is enabled and visible.
HWND UsableOwnerFrom(HWND window)
{
    while (window && (GetWindowLongW(window, GWL_STYLE) & WS_CHILD))
        window = GetParent(window);
    if (!window || !IsWindow(window))
        return nullptr;
    if (IsUsableOwner(window))
        return window;
    for (HWND owned = FirstOwnedWindow(window); owned; owned = FirstOwnedWindow(owned)) {
        if (IsUsableOwner(owned))
            return owned;
    }
    HWND popup = GetLastActivePopup(window);
    return IsUsableOwner(popup) ? popup : nullptr;
}

} // namespace

bool EngineContext::ChooseModalOwner(void*& owner)
{
    HWND window = nullptr;
    if (m_callBack) {
        long answer = 0;
        if (HostCallBack::Window(m_callBack.Get(), answer))
            window = UsableOwnerFrom(reinterpret_cast<HWND>(static_cast<LONG_PTR>(answer)));
        long chosen = static_cast<long>(reinterpret_cast<LONG_PTR>(window));
        if (HostCallBack::OverrideModalWindowOwner(m_callBack.Get(), m_owner.AsDispatch(), chosen))
            window = reinterpret_cast<HWND>(static_cast<LONG_PTR>(chosen));
    }
    owner = window;
    return true;
}

// Without a callback, an error is shown in a task-modal box; other notifications are ignored.
void EngineContext::DefaultNotify(short code)
{
    if (code == kNotifyError)
        ShowErrorBox(m_errorReport);
}

// A pending action from the scheduler; a start queued meanwhile is carried out after it.
void EngineContext::PerformControlAction(int action, long argument)
{
    (void)Control(action, argument);
    m_modules.RunQueuedStart();
}

// A run that ended inside a host call into macros tells the host later, from the thread's timer
// window, once the host is back in its message loop; any notification sent before that delivers it first.
void EngineContext::DeferIdleNotification()
{
    m_pendingNotification = kNotifyRunEnded;
    if (ThreadContext* thread = ThreadContext::Current(); thread && thread->TimerWindow())
        SetTimer(thread->TimerWindow(), m_owner.Identifier(), kPendingNotificationPeriod, &KZ_PendingNotifyEnd);
}

void EngineContext::HandOverEngine()
{
    EngineLock::HandOver();
}

void EngineContext::PumpMessages()
{
    if (m_callBack) {
        HostCallBack::DoEvents(m_callBack.Get(), m_owner.AsDispatch());
        return;
    }
    MSG message;
    for (int i = 0; i < 100 && m_interpreter.RunLevel() > 0 && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE); ++i) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            (void)Control(kActionEndAll, 0);
            break;
        }
        // Window procedures are host code: the engine is given up while they run.
        const int depth = EngineLock::Suspend();
        TranslateMessage(&message);
        DispatchMessageW(&message);
        EngineLock::Resume(depth);
    }
}

void EngineContext::ReportUntrappedError(const ErrorRecord& error)
{
    ++m_untrappedErrors;
    m_errorReport.Clear();
    m_errorReport.number = error.number;
    m_errorReport.description = error.description;
    m_errorReport.source = error.source;
    m_errorReport.helpFile = error.helpFile;
    m_errorReport.helpContext = error.helpContext;
    // Where: the statement of the innermost activation; run-time errors have no column.
    m_errorReport.offset = -1;
    if (const Activation* current = m_interpreter.CurrentActivation()) {
        int line = 0;
        if (m_modules.Locate(current->OwnProcedure(), current->CurrentIndex(), m_errorReport.macroName, line,
                             m_errorReport.lineText))
            m_errorReport.lineNumber = line;
    }
    TraceErrorFields();
    const bool running = m_interpreter.RunLevel() > 0;
    // While the host hears of the error, control requests answer Busy (a Continue ends that state).
    const bool outerReport = std::exchange(m_reportingError, true);
    SendNotification(kNotifyErrorReport);
    SendNotification(kNotifyError);
    m_reportingError = outerReport;
    // The run stops after the report; the stop request that follows finds it stopped already.
    if (running)
        SendNotification(kNotifyStopped);
}

void EngineContext::ReportHostError()
{
    const bool running = m_interpreter.RunLevel() > 0 && !m_interpreter.IsEvaluating();
    SendNotification(kNotifyErrorSet);
    SendNotification(kNotifyError);
    if (running)
        SendNotification(kNotifyStopped);
}

// A line-tracing run: the line about to run, as CurrentLine gives it, to the debug output, and to the
// trace as an event line while the execution trace is on.
void EngineContext::TraceLine()
{
    const std::wstring line = m_debugger.FrameLine(0);
    DebugPrint(line + L"\r\n");
    if (ExecutionTraceOn())
        WriteTrace(TraceKind::Event, line);
}

void EngineContext::DebugPrint(const std::wstring& text)
{
    if (m_callBack) {
        (void)HostCallBack::DebugPrint(m_callBack.Get(), m_owner.AsDispatch(), text);
        return;
    }
    MessageBoxW(nullptr, text.c_str(), L"Debug.Print", MB_TASKMODAL | MB_OK);
}

namespace {

// Puts the reference that object carries into result; false for none.
bool TakeObject(IDispatch* object, Variant& result)
{
    if (!object)
        return false;
    result.SetObject(object, false);
    return true;
}

} // namespace

// The compiled module is shared; its instances only read it.
bool EngineContext::NewInstance(const Module& module, Variant& result)
{
    return TakeObject(m_modules.NewObject(const_cast<Module&>(module)), result);
}

bool EngineContext::ErrObject(Variant& result)
{
    return TakeObject(ComRef<IDispatch>::Share(m_owner.ErrObject()).Detach(), result);
}

bool EngineContext::ParseModuleProperties(const std::string& moduleName, std::string_view header)
{
    if (!m_callBack)
        return true;
    const bool outer = std::exchange(m_parsingProperties, true);
    const bool accepted = HostCallBack::ParseMacroProperties(m_callBack.Get(), m_owner.AsDispatch(),
                                                             WideFromAnsi(moduleName), WideFromAnsi(header));
    m_parsingProperties = outer;
    return accepted;
}

bool EngineContext::HostObjectForInstance(const std::string& moduleName, ComRef<IDispatch>& object)
{
    object = {};
    for (const std::string& pending : m_instanceModules) {
        if (pending == moduleName)
            return false;
    }
    if (!m_callBack)
        return true;
    m_instanceModules.push_back(moduleName);
    const HostCallBack::InstanceAnswer answer =
        HostCallBack::NewMacroInstance(m_callBack.Get(), m_owner.AsDispatch(), WideFromAnsi(moduleName), object);
    m_instanceModules.pop_back();
    return answer == HostCallBack::InstanceAnswer::Absent || object;
}

bool EngineContext::DefaultObject(const Module& module, Variant& result)
{
    return TakeObject(m_modules.DefaultObject(const_cast<Module&>(module)), result);
}

ModuleInstance* EngineContext::InstanceOf(IUnknown* object)
{
    return ClassObject::InstanceOf(object);
}

// The source interface of a WithEvents variable's declared type: that of a class of a referenced
// library or extension. A class module of the macros needs none (its instances raise their events
// without type information), so none is looked up or traced for it.
ComRef<ITypeInfo> EngineContext::WithEventsSource(const wchar_t* operation, std::string_view module,
                                                  std::string_view variable, std::string_view className)
{
    Trace(TraceKind::Entry, L"*" + std::wstring(operation) + L"(\"" + WideFromAnsi(module) + L"|" +
                                WideFromAnsi(variable) + L"\")");
    ComRef<ITypeInfo> source;
    const std::string typeName(className);
    const Module* classModule = m_modules.FindLoadedModule(typeName);
    if (!classModule || classModule->Kind() == ModuleKind::Plain) {
        ITypeInfo* type = m_extensions.FindType(std::string(module), typeName);
        if (type && DefaultSourceOfClass(type, source) != SourceLookup::Found)
            source = ComRef<ITypeInfo>();
        TraceSource(source.Get());
    }
    Trace(TraceKind::Exit, L"");
    return source;
}

void EngineContext::DeclaredWithEvents(std::string_view module, std::string_view variable, std::string_view className)
{
    if (ApiTraceOn())
        (void)WithEventsSource(L"DimWithEvents", module, variable, className);
}

EventConnection* EngineContext::WithEventsConnection(ModuleInstance& instance, std::size_t variable)
{
    if (EventConnection* connection = instance.Connection(variable))
        return connection;
    const Module& module = instance.OwnModule();
    const auto& variables = module.Variables();
    if (variable >= variables.size() || !variables[variable]->withEvents)
        return nullptr;
    const Variable& declared = *variables[variable];
    ComRef<ITypeInfo> source =
        WithEventsSource(L"DimWithEvents_Initialize", module.Name(), declared.name, declared.type.className);
    automation::EventSink* sink = automation::EventSink::ForVariable(*this, instance, declared.name, source.Get());
    if (!sink)
        return nullptr;
    instance.AddConnection(variable, sink);
    return sink;
}

void EngineContext::InitializeWithEvents(ModuleInstance& instance)
{
    const std::size_t count = instance.OwnModule().Variables().size();
    for (std::size_t variable = 0; variable < count; ++variable)
        if (instance.OwnModule().Variables()[variable]->withEvents)
            (void)WithEventsConnection(instance, variable);
}

// A variable whose instance was made without its sinks (a made-up instance of the evaluator) gets its
// sink at its first assignment.
void EngineContext::WithEventsAssigned(ModuleInstance& instance, std::size_t variable, IUnknown* object)
{
    if (EventConnection* connection = WithEventsConnection(instance, variable))
        connection->Assign(object);
}

void EngineContext::TraceSource(ITypeInfo* source)
{
    if (!source) {
        Trace(TraceKind::Detail, L"Source TypeInfo not available");
        return;
    }
    wchar_t guid[64] = {};
    StringFromGUID2(TypeGuidOf(source), guid, 64);
    Trace(TraceKind::Detail, L"Source.TypeInfo.UUID=" + std::wstring(guid));
    Trace(TraceKind::Detail, L"Source.TypeInfo.Name=" + TypeInfoName(source));
}

EventConnection* EngineContext::ConnectEvents(const std::string& prefix, IDispatch* object)
{
    ComRef<ITypeInfo> source;
    if (FindDefaultSource(object, source) != SourceLookup::Found)
        source = ComRef<ITypeInfo>();
    TraceSource(source.Get());
    if (!source)
        return nullptr;
    automation::EventSink* sink = automation::EventSink::ForExtension(*this, prefix, source.Get());
    if (sink)
        sink->Assign(object);
    return sink;
}

int EngineContext::DisconnectEvents() { return automation::EventSink::DisconnectAll(*this); }

std::wstring EngineContext::CommandText() const
{
    return WideFromAnsi(m_modules.CommandText());
}

void EngineContext::ReleaseMemoryReserve()
{
    MemoryReserve::ReleaseNext();
}

bool EngineContext::MapMacroName(const std::wstring& name, const std::wstring& base, std::wstring& mapped)
{
    return m_callBack && HostCallBack::MapMacroName(m_callBack.Get(), m_owner.AsDispatch(), name, base, mapped);
}

bool EngineContext::EvaluateText(const std::wstring& text, Variant& result)
{
    return m_evaluator.EvaluateForCode(AnsiFromWide(text), result);
}

bool EngineContext::ExecuteText(const std::wstring& text)
{
    return m_evaluator.ExecuteForCode(AnsiFromWide(text));
}

long EngineContext::StartMacroFromCode(const std::wstring& name, const std::wstring& command,
                                       const std::wstring* text)
{
    // The innermost running module that has a name is the base the host maps the name against.
    std::string running;
    for (Activation* frame = Machine().CurrentActivation(); frame && running.empty(); frame = frame->Caller()) {
        if (ModuleInstance* instance = frame->Instance())
            running = instance->OwnModule().Name();
    }
    const std::optional<std::string> given = text ? std::optional<std::string>(AnsiFromWide(*text)) : std::nullopt;
    const ModuleStatus status = m_modules.StartFromCode(running, AnsiFromWide(name), AnsiFromWide(command), given);
    return MessageForStatus(status).number;
}

} // namespace brannoc
