#pragma once
// What the interpreter needs from the engine object that owns it: notifications, the control
// operation, message pumping and the reporting of errors that no handler traps.
#include "exec/ErrorRecord.h"
#include "values/ValueError.h"

#include <cstddef>
#include <string>

struct IUnknown;

namespace brannoc {

class Module;
class ProcedureCode;
class ModuleInstance;
class StreamTable;
struct DirectorySearch;
class Variant;

class InterpreterHost {
public:
    // Notification codes passed to Notify.
    enum Notification : short {
        kNotifyError = 0,
        kNotifyRunStarted = 1,
        kNotifyRunEnded = 2,
        kNotifyStopped = 3,
        kNotifyResumed = 4,
        kNotifyErrorSet = 5,
        kNotifyModalOpened = 6,
        kNotifyModalClosed = 7,
        kNotifyActionPending = 8,
        kNotifyCompiling = 9,
        kNotifyUnloaded = 10,
        kNotifyExtensionsChanged = 14,
        kNotifyErrorReport = 19,
    };
    // Request codes of the engine's control operation.
    enum ControlAction : int {
        kActionRun = 0,
        kActionSetStackDepth = 1,
        kActionEndAll = 2,
        kActionEnd = 3,
        kActionHalt = 4,
        kActionStop = 5,
        kActionResume = 6,
        kActionQuery = 7,
        kActionQuietQuery = 8,
    };
    // The pending-action value that means none is pending.
    static constexpr int kNoAction = kActionQuietQuery;

    // Tells the engine's host about a state change (run started, run ended, action pending).
    virtual void Notify(Notification code) = 0;
    // Carries out a host-control action with its argument (the engine's control operation).
    virtual void PerformControlAction(int action, long argument) = 0;
    // Lets the window message loop run (the callback's DoEvents).
    virtual void PumpMessages() = 0;
    // Another thread waits for the engine: give it up between statements and take it back later.
    virtual void HandOverEngine() {}
    // An error that no handler trapped: the host records its location and notifies (19, then 0).
    // The interpreter stops the run afterwards through action 5.
    virtual void ReportUntrappedError(const ErrorRecord& error) = 0;
    // An error raised while a host evaluation is in progress; the evaluation fails with it.
    virtual void ReportEvaluationError(const ErrorRecord& error) { (void)error; }
    // Frees the emergency memory reserve so that the run can be stopped and reported.
    virtual void ReleaseMemoryReserve() {}
    // Output of Debug.Print: the text of one statement, ending in CR LF unless its list ended with ";".
    virtual void DebugPrint(const std::wstring& text) { (void)text; }
    // A new instance of a class module as an object value in result; its initializer has run. False
    // when it could not be made (an error has then been raised or reported).
    [[nodiscard]] virtual bool NewInstance(const Module& module, Variant& result)
    {
        (void)module;
        (void)result;
        return false;
    }
    // The engine's Err object as an automation object; false when the host has none.
    [[nodiscard]] virtual bool ErrObject(Variant& result)
    {
        (void)result;
        return false;
    }
    // The default instance of an object module as an object value in result: made (its initializer run)
    // at its first use and kept until the module is unloaded. False when it could not be made (an error
    // has then been raised or reported).
    [[nodiscard]] virtual bool DefaultObject(const Module& module, Variant& result)
    {
        (void)module;
        (void)result;
        return false;
    }
    // The engine's caption: the default title of the dialogs that macros show.
    virtual std::wstring EngineCaption() const { return {}; }
    // The owner window (a window handle, null for none) of a modal dialog or message box that a macro
    // shows, as the host chooses it. False when the host has no say: the thread's active window owns it.
    virtual bool ChooseModalOwner(void*& owner)
    {
        (void)owner;
        return false;
    }
    // The command text of the current run (what the language's Command gives).
    virtual std::wstring CommandText() const { return {}; }
    // The host's name for a macro name relative to the module named base (its MapMacroName); false when
    // the host maps no names.
    virtual bool MapMacroName(const std::wstring& name, const std::wstring& base, std::wstring& mapped)
    {
        (void)name;
        (void)base;
        (void)mapped;
        return false;
    }
    // Line tracing: the current line as the debugger shows it goes to the host's debug output.
    virtual void TraceLine() {}
    // True for a procedure that stepping never stops in (one of a hidden module).
    virtual bool IsSteppingExcluded(const ProcedureCode& procedure)
    {
        (void)procedure;
        return false;
    }
    // The language's Eval: the text as an expression in the scope of the running procedure. False after
    // raising the evaluation's error; a host without evaluations answers false having raised nothing.
    [[nodiscard]] virtual bool EvaluateText(const std::wstring& text, Variant& result)
    {
        (void)text;
        (void)result;
        return false;
    }
    // The language's Execute: the text as statements of one line in the scope of the running procedure.
    // False after raising the error; a host without evaluations answers false having raised nothing.
    [[nodiscard]] virtual bool ExecuteText(const std::wstring& text)
    {
        (void)text;
        return false;
    }
    // MacroRun and MacroRunThis: starts the macro `name` (resolved as the running module's own names are)
    // with `command` as its command text; with `text`, the macro is that text instead of the one the host
    // keeps. Answers 0 or the number of the error to raise; a host without modules has none to start.
    [[nodiscard]] virtual long StartMacroFromCode(const std::wstring& name, const std::wstring& command,
                                                  const std::wstring* text)
    {
        (void)name;
        (void)command;
        (void)text;
        return kErrorModuleMissing;
    }
    // The file streams of the engine (null: the host keeps none, and stream statements find nothing open).
    virtual StreamTable* Streams() { return nullptr; }
    // The engine's open Dir search (null: the host keeps none, and each thread keeps its own).
    virtual DirectorySearch* DirectoryListing() { return nullptr; }
    // A WithEvents variable (module-level variable `variable` of instance) was assigned object (null:
    // Nothing): the events of the object it held before stop, those of object go to its procedures.
    virtual void WithEventsAssigned(ModuleInstance& instance, std::size_t variable, IUnknown* object)
    {
        (void)instance;
        (void)variable;
        (void)object;
    }
    // The module instance behind an object value made by NewInstance, else null.
    virtual ModuleInstance* InstanceOf(IUnknown* object) { (void)object; return nullptr; }

protected:
    ~InterpreterHost() = default;
};

} // namespace brannoc
