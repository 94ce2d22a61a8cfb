#pragma once
// The per-object state of an engine: callback, caption and settings, the interpreter, the error
// record, notifications, trace bytes, and the control operation that every run request goes through.
#include "automation/ExtensionList.h"
#include "exec/Interpreter.h"
#include "frontend/BodyCompiler.h"
#include "exec/InterpreterHost.h"
#include "values/ComRef.h"
#include "host/Debugger.h"
#include "host/Evaluator.h"
#include "host/ModuleManager.h"
#include "library/DirectorySearch.h"
#include "library/StreamTable.h"
#include <oaidl.h>
#include <bitset>
#include <functional>
#include <string>
#include <utility>

namespace brannoc {

class CodeUnit;

void CALLBACK KZ_PendingNotifyEnd(HWND window, UINT message, UINT_PTR identifier, DWORD time);

// Run state as hosts see it.
enum class RunState : int { Idle = 0, Active = 1, Stopped = 2, Busy = 3 };

// Kinds of API trace lines.
enum class TraceKind : short { Entry = 0, Exit = 1, Detail = 2, Result = 3, Event = 4 };

// Where an error was reported: what the host reads through the Error... members.
struct ErrorLocation {
    long number = 0;
    std::wstring description;
    std::wstring macroName;
    std::wstring lineText;
    long lineNumber = 0; // the full number; the host interface's member holds its low 16 bits
    // Character offset of the failing token in the line; -1 when the error has none.
    short offset = -1;
    std::wstring source;
    std::wstring helpFile;
    long helpContext = 0;

    void Clear() { *this = ErrorLocation{}; }
};

class EngineContext final : public InterpreterHost, private automation::ExtensionHost {
public:
    static constexpr int kKeywordCount = 340;
    static constexpr int kStepDepth = 9999;
    // A run to this depth runs to the end, as depth 0 does, but may stop even at the statement at which
    // it resumes (a handler started on an idle engine runs so).
    static constexpr int kStartDepth = 10000;
    // The period of the timer that delivers an idle notification deferred at the end of a host call.
    static constexpr UINT kPendingNotificationPeriod = 100;

    explicit EngineContext(CodeUnit& owner);
    ~EngineContext();
    EngineContext(const EngineContext&) = delete;
    EngineContext& operator=(const EngineContext&) = delete;

    CodeUnit& Owner() const { return m_owner; }
    Interpreter& Machine() { return m_interpreter; }
    ModuleManager& Modules() { return m_modules; }
    Debugger& Debugging() { return m_debugger; }
    Evaluator& Evaluation() { return m_evaluator; }
    automation::ExtensionList& Extensions() { return m_extensions; }

    // The control operation: carries out request (0..8) with its argument, answers the state after it.
    RunState Control(int request, long argument);
    RunState State() const;

    // Host callback (held); null means the built-in default behaviour.
    IDispatch* CallBack() const { return m_callBack.Get(); }
    void SetCallBack(IDispatch* callBack);

    const std::wstring& Caption() const { return m_caption; }
    void SetCaption(std::wstring caption) { m_caption = std::move(caption); }
    bool DoEventsPolling() const { return m_doEvents; }
    void SetDoEventsPolling(bool on);
    short ErrorLimit() const { return m_errorLimit; }
    void SetErrorLimit(short limit) { m_errorLimit = limit < 1 ? 1 : limit; }
    // The keywords the host closed, in keyword-number order, each followed by a blank.
    const std::string& BlockedKeywords() const { return m_blocked; }
    void SetBlockedKeywords(std::string words) { m_blocked = std::move(words); }

    ErrorLocation& ErrorReport() { return m_errorReport; }
    // How many untrapped run-time errors have been reported so far (a host call checks it for its own).
    unsigned long UntrappedErrorCount() const { return m_untrappedErrors; }
    bool IsBusy() const { return m_compiling || m_reportingError; }
    void SetCompiling(bool on) { m_compiling = on; }
    bool IsCompiling() const { return m_compiling; }

    // Runs statements of a run prepared earlier until it cannot continue or `ticks` have passed; at its
    // end, a run still active (its target reached) is stopped. False when it can no longer continue.
    bool RunTimeSlice(unsigned long ticks);
    // Host calls into macros in progress on this object (fire objects, handlers, event sinks).
    int HostCallDepth() const { return m_hostCallDepth; }
    void EnterHostCall()
    {
        ++m_hostCallDepth;
        m_interpreter.EnterHostCall();
    }
    void LeaveHostCall()
    {
        --m_hostCallDepth;
        m_interpreter.LeaveHostCall();
    }
    // A Halt (1), HaltAll (2) or Shutdown (3) asked for while host calls are in progress: remembered
    // and carried out when the last of them returns. Answers the kind taken (0: none was pending).
    void DeferHalt(int kind) { m_deferredHalt = kind; }
    int TakeDeferredHalt() { return std::exchange(m_deferredHalt, 0); }
    bool HaltDeferred() const { return m_deferredHalt != 0; }
    // A Step asked for while the engine was not active: the next host call into macros stops at its
    // procedure's first line. Answers whether one was asked for, and forgets it.
    bool TakeStepIntoHostCall() { return std::exchange(m_stepIntoHostCall, false); }
    // Waits while a host call into macros is stopped for debugging: serves the host's messages (its
    // DoEvents, or the thread's message queue) about every 100 ms until the call has returned (the
    // execution stack is back at mark), a halt is pending, or goOn answers false. Meanwhile the host's Run
    // and Step go on with the call only.
    void WaitForHostCall(std::size_t mark, const std::function<bool()>& goOn);

    unsigned char TraceByte(int which) const { return m_trace[which]; }
    bool ApiTraceOn() const { return (m_trace[0] & 0x40) != 0; }
    bool ExecutionTraceOn() const { return (m_trace[0] & 0x80) != 0; }
    // Writes an API trace line (only while the API trace is on).
    void Trace(TraceKind kind, const std::wstring& text);
    // Tests read trace lines and notifications here when no callback is set.
    void SetTraceSink(std::function<void(TraceKind, const std::wstring&)> sink) { m_traceSink = std::move(sink); }
    void SetNotificationSink(std::function<void(short)> sink) { m_notificationSink = std::move(sink); }

    // With the API trace on, the error record's fields as detail lines.
    void TraceErrorFields();
    // Sends a notification (delivering a pending one first); -1 only delivers the pending one.
    void SendNotification(short code);

    // InterpreterHost
    void Notify(Notification code) override { SendNotification(code); }
    void PerformControlAction(int action, long argument) override;
    std::wstring EngineCaption() const override { return m_caption; }
    bool ChooseModalOwner(void*& owner) override;
    void PumpMessages() override;
    void HandOverEngine() override;
    void ReportUntrappedError(const ErrorRecord& error) override;
    // The host set the error record's description: it is reported at once (notifications 5 and 0), and
    // an active run stops as it does after an untrapped error.
    void ReportHostError();
    void ReleaseMemoryReserve() override;
    // Output of Debug.Print: the callback's DebugPrint, or a task-modal box captioned "Debug.Print".
    void DebugPrint(const std::wstring& text) override;
    [[nodiscard]] bool NewInstance(const Module& module, Variant& result) override;
    [[nodiscard]] bool ErrObject(Variant& result) override;
    // The host's answer to a form module's header (true when it has no say).
    bool ParseModuleProperties(const std::string& moduleName, std::string_view header);
    // The host's object for a new instance of a form module. False when the host answered Nothing or a
    // call for the same module is already in progress; object stays null when the host has no say.
    bool HostObjectForInstance(const std::string& moduleName, ComRef<IDispatch>& object);
    [[nodiscard]] bool DefaultObject(const Module& module, Variant& result) override;
    ModuleInstance* InstanceOf(IUnknown* object) override;
    void WithEventsAssigned(ModuleInstance& instance, std::size_t variable, IUnknown* object) override;
    // Traces the declaration of a module-level WithEvents variable as the compiler reads it.
    void DeclaredWithEvents(std::string_view module, std::string_view variable, std::string_view className);
    // Gives each WithEvents variable of a new instance (or of a code module's storage) its event sink,
    // before any of the instance's code runs.
    void InitializeWithEvents(ModuleInstance& instance);
    std::wstring CommandText() const override;
    StreamTable* Streams() override { return &m_streams; }
    DirectorySearch* DirectoryListing() override { return &m_directorySearch; }
    bool MapMacroName(const std::wstring& name, const std::wstring& base, std::wstring& mapped) override;
    void TraceLine() override;
    [[nodiscard]] bool EvaluateText(const std::wstring& text, Variant& result) override;
    [[nodiscard]] bool ExecuteText(const std::wstring& text) override;
    [[nodiscard]] long StartMacroFromCode(const std::wstring& name, const std::wstring& command,
                                          const std::wstring* text) override;
    bool IsSteppingExcluded(const ProcedureCode& procedure) override
    {
        return m_debugger.IsSteppingExcluded(procedure) || m_evaluator.IsEvaluationCode(procedure);
    }
    // The name a module is loaded under ("<project>" part and the host's mapping applied).
    std::string MapModuleName(const std::string& name) override { return m_modules.MapName(name); }
    // The module whose new instance the host is making its object for (NewMacroInstance), or null:
    // meanwhile only that module's extensions and handlers may be added.
    const std::string* InstanceModuleBeingCreated() const override
    {
        return m_instanceModules.empty() ? nullptr : &m_instanceModules.back();
    }

private:
    // ExtensionHost
    void TraceExtension(short kind, const std::wstring& text) override { Trace(static_cast<TraceKind>(kind), text); }
    void ExtensionsChanged() override { SendNotification(kNotifyExtensionsChanged); }
    bool ModuleExists(const std::string& name) override { return m_modules.FindLoadedModule(name) != nullptr; }
    bool ProjectExists(const std::string& name) const override { return m_modules.HasProject(name); }
    bool ParsingModuleProperties() const override { return m_parsingProperties; }
    EventConnection* ConnectEvents(const std::string& prefix, IDispatch* object) override;
    int DisconnectEvents() override;
    // The detail lines that name an event source interface, or say that there is none.
    void TraceSource(ITypeInfo* source);
    // The source interface of a WithEvents variable's declared type, traced under the operation.
    ComRef<ITypeInfo> WithEventsSource(const wchar_t* operation, std::string_view module, std::string_view variable,
                                       std::string_view className);
    // The event link of a WithEvents variable of instance, made on first need; null when it cannot be.
    EventConnection* WithEventsConnection(ModuleInstance& instance, std::size_t variable);

    RunState Run(long depth);
    RunState StopRequest(bool fromHalt);
    RunState EndAll();
    RunState EndCurrent();
    RunState Resume();
    void SetTraceByte(long depth);
    bool StatementExecuting() const { return m_interpreter.ExecutionMarker() != 0; }
    void RunScheduler(bool single);
    void DeferIdleNotification();
    // One round of the host's messages while a host call waits: the callback's DoEvents, or up to 100
    // messages of the thread's queue.
    void ServeHostMessages();
    void DefaultNotify(short code);
    // Writes a trace line through the callback (or the test sink) whatever the trace bytes say.
    void WriteTrace(TraceKind kind, const std::wstring& text);

    CodeUnit& m_owner;
    bool m_parsingProperties = false;
    std::vector<std::string> m_instanceModules;
    // Declared before the interpreter and modules so that it outlives them, and the files close last.
    StreamTable m_streams;
    DirectorySearch m_directorySearch;
    ComRef<IDispatch> m_callBack;
    std::wstring m_caption = L"Brannoc Basic";
    bool m_doEvents = true;
    short m_errorLimit = 1;
    std::string m_blocked;
    bool m_compiling = false;
    bool m_reportingError = false;
    bool m_stepIntoHostCall = false;
    int m_hostCallDepth = 0;
    int m_deferredHalt = 0;
    int m_pendingNotification = -1;
    unsigned char m_trace[3] = {0, 0, 1};
    ErrorLocation m_errorReport;
    unsigned long m_untrappedErrors = 0;
    std::function<void(TraceKind, const std::wstring&)> m_traceSink;
    std::function<void(short)> m_notificationSink;
    BodyCompiler m_bodyCompiler;
    // Declared before the modules so that compiled code may still use the objects it names while the
    // modules go.
    automation::ExtensionList m_extensions{*this};
    // Declared before the interpreter so that the interpreter's stacks go before the code they run.
    ModuleManager m_modules;
    Interpreter m_interpreter;
    Debugger m_debugger{m_modules, m_interpreter};
    Evaluator m_evaluator{*this};
};

} // namespace brannoc
