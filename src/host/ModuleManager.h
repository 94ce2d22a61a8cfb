#pragma once
// The module manager of one engine object: loads (compiles), starts, unloads and renames modules by
// name and answers their status. Texts come through the host callback's ReadMacro, or once from a text
// given directly for a name.
#include "frontend/Compiler.h"
#include "values/ComRef.h"

#include <oaidl.h>
#include "frontend/ModuleSource.h"
#include "exec/Interpreter.h"

#include <functional>
#include <map>
#include <optional>
#include <memory>
#include <string>
#include <vector>

namespace brannoc {

class EngineContext;
class ModuleInstance;
struct Procedure;
class ProcedureCode;
class ValueStack;
class Variant;

// Status of a module request.
enum class ModuleStatus : int {
    Idle = 0,
    Running = 1,
    Busy = 3,
    Paused = 4,
    Queued = 5,
    Unloaded = 6,
    AllocFailed = 7,
    SyntaxErrors = 8,
    NotFound = 9,
};

// The error number and message that a failed status reports, or 0 for success.
struct StatusMessage {
    long number;
    const wchar_t* text;
};
StatusMessage MessageForStatus(ModuleStatus status);

class ModuleManager final : private ModuleSource, private CompileErrorSink {
public:
    explicit ModuleManager(EngineContext& context);
    ~ModuleManager() override;
    ModuleManager(const ModuleManager&) = delete;
    ModuleManager& operator=(const ModuleManager&) = delete;

    void SetBodyCompiler(ProcedureBodyCompiler* compiler) { m_bodyCompiler = compiler; }
    // The text to use, once, the next time the named module is read.
    void GiveText(const std::string& name, std::string text);

    // The host's name for a name that comes from the host (its MapMacroName, with no base); the name
    // itself when the callback has no such member. A name with a project part ("<P>name") names a
    // module of project P: it is not mapped, and comes back as "<P>name" with the project's own spelling.
    std::string MapName(const std::string& name);

    // Projects: named groups of modules. The default project has no name.
    bool CreateProject(const std::string& name);
    // Unloads the project's modules and forgets it (every created project for an empty name). False
    // when there is no such project or the engine is not idle.
    bool DestroyProject(const std::string& name);
    bool HasProject(const std::string& name) const;
    // Splits "<P>rest" into P and rest; false (project empty, rest the whole text) without a project part.
    static bool SplitProject(const std::string& text, std::string& project, std::string& rest);

    ModuleStatus Status(const std::string& name);
    // A start asked for by running code (MacroRun, MacroRunThis): the name is resolved as the running
    // module's '#Uses names are (mapped by the host relative to it); `text`, when given, is the macro's
    // text instead of the one the host keeps. Statements are executing, so the start is queued: it begins
    // before the calling statement's successor, and the caller goes on once the started run has ended.
    ModuleStatus StartFromCode(std::string_view runningModule, const std::string& name, const std::string& command,
                               const std::optional<std::string>& text);
    // Loads (compiles) a module: mode 0 a macro, 2 a code module whose default instance is made and
    // initialized at once, 3 a code module without that step.
    ModuleStatus Load(const std::string& name, int mode = 0);
    ModuleStatus Start(const std::string& name, const std::string& command);
    ModuleStatus Unload(const std::string& name);
    // Reports a failed load or start to the host (error record and notification 0): the status's
    // number and text with the macro's name; for a macro whose storage could not be made or whose Main
    // could not begin, what failed and the line of the declaration where it failed.
    void ReportStatus(ModuleStatus status, const std::wstring& macroName);
    // False when the old name is not loaded or the new one is taken.
    bool Rename(const std::string& oldName, const std::string& newName);
    // True while the named module's run is active or stopped in it.
    bool IsActive(const std::string& name);

    // A Sub that the host may call by name (Call0 ... Call5): a Sub not declared Private of the running
    // macro, else of the loaded macros (newest first), or of a module they use; "Module.Sub" names the
    // module. The module's default instance is made first when it has none. False when there is none.
    bool FindHostSub(const std::string& name, Procedure*& procedure, ModuleInstance*& instance);
    // The same search for a procedure of the given kind (a Sub or a Function).
    bool FindHostProcedure(const std::string& name, ProcedureKind kind, Procedure*& procedure,
                           ModuleInstance*& instance);

    // The loaded top-level modules in load order; empty past the end.
    std::string LoadedName(std::size_t index) const;
    std::size_t LoadedCount() const { return m_loaded.size(); }
    // Carries out a start that was queued while statements executed; nothing when none is queued.
    void RunQueuedStart();
    bool HasQueuedStart() const { return m_queued; }
    // The macro the run is in now (empty when idle): the one whose Main is the newest entry activation,
    // so that a macro started on top of another and ended hands the name back to that one.
    std::string RunningName() const;
    // The command text of the current run (what the language's Command gives).
    const std::string& CommandText() const
    {
        const Loaded* running = RunningMacro();
        return running ? running->command : m_command;
    }
    // A loaded module (top-level or used) by its resolved name, or null.
    Module* FindLoadedModule(const std::string& name) const;
    // The default instance of a loaded module (a started module or one that it uses), or null before
    // its module was started or after it was unloaded.
    ModuleInstance* DefaultInstance(const Module& module) const;
    // A new instance of a class or object module: its storage is made and its initializer
    // (Class_Initialize, Form_Initialize) runs to its end as a nested call. The instance keeps one use
    // for its creator until DestroyInstance. Null when the initializer failed; the instance has then
    // been terminated and freed.
    // A form the host built carries the host's object for the instance (held).
    std::unique_ptr<ModuleInstance> CreateInstance(Module& module, IDispatch* hostObject = nullptr);
    // A new instance of a class or object module as the object that holds it (CreateInstance, then the
    // object). The caller owns the one reference; null when it could not be made (raised or reported).
    IDispatch* NewObject(Module& module);
    // The default instance of a class or object module as an object: made at its first use and held
    // until the module goes (its terminator runs then). The caller owns the reference it gets; null when
    // it could not be made.
    IDispatch* DefaultObject(Module& module);
    // The object of the live class instance with that number (ModuleInstance::Number), held for the
    // caller; null when there is none.
    IDispatch* NumberedObject(unsigned number);
    // Reports an error of a host's request (not of running code) with its own message: the engine's
    // error properties, the trace and notification 0.
    void ReportError(long number, const std::wstring& macroName);
    // Runs the instance's terminate procedure (Class_Terminate, Form_Terminate) as a nested call, then
    // gives the instance up: it is freed now, or when the last activation running in it ends.
    void DestroyInstance(std::unique_ptr<ModuleInstance> instance);
    // Runs the terminate procedure once; later calls do nothing.
    void TerminateInstance(ModuleInstance& instance);
    // Unloads every module, newest first: their default instances go and with them the objects that
    // their variables hold. Called while the interpreter still exists (engine teardown).
    void UnloadAll();

    // Fills the module name, line number and line text (the statement's listing) of statement index
    // of the procedure whose executable form is code. False when no loaded module has that procedure.
    bool Locate(const ProcedureCode& code, int index, std::wstring& moduleName, int& line,
                std::wstring& lineText) const;
    // The module whose compiled code holds the procedure code, and its procedure; null when none does.
    Module* ModuleOf(const ProcedureCode& code, const Procedure** procedure = nullptr) const;
    // Every compiled module (top-level and used ones).
    const std::vector<std::unique_ptr<Module>>& AllModules() const { return m_compiler->Modules(); }
    // Line `number` (from 1) of a module's text, without its line break.
    static std::string SourceLine(const Module& module, int number);
    // The run has ended: the started module is idle again.
    void RunEnded();

    // Splits a start request into the macro name and the command text.
    static void SplitStartText(const std::string& text, std::string& name, std::string& command);
    // True when the text's first line that is not blank or a comment begins with "VERSION".
    static bool IsObjectModuleText(const std::string& text);

    // Pushes the values of a nested call (a result slot, then the arguments); false after raising.
    using NestedArguments = std::function<bool(ValueStack&)>;
    // Runs a procedure of an instance to its end as a nested call, on a value stack of its own; push
    // (when given) puts the call's values on it first, and result (when given) receives what the bottom
    // slot holds afterwards (a Function's result). The execution marker is kept. errorExit says where
    // an error that the call does not trap goes, and debugged (when given) how the call may stop for
    // debugging (Interpreter::RunHostCall).
    [[nodiscard]] bool RunNested(ProcedureCode& code, ModuleInstance& instance, const NestedArguments& push = {},
                                 Variant* result = nullptr,
                                 Interpreter::ErrorExit errorExit = Interpreter::ErrorExit::kReport,
                                 const Interpreter::DebuggedCall* debugged = nullptr);
    EngineContext& Context() const { return m_context; }

private:
    // A module loaded by name (a macro, or a code module loaded with mode 2 or 3).
    struct Loaded {
        std::string name;
        Module* module = nullptr;
        // The command text of its latest start (what Command gives while its Main runs).
        std::string command;
        // The module and the modules it reaches through '#Uses, each once, in the order first met.
        std::vector<Module*> reach;
        // Whether it holds the default instances of the plain modules of reach (from its start, or
        // from a mode 2 load).
        bool holdsInstances = false;
    };
    // The default instance of a class or object module, held as its object.
    struct HeldObject {
        const Module* module = nullptr;
        ComRef<IDispatch> object;
    };
    // The default instance of a plain module, shared by the loaded modules that reach it.
    struct SharedInstance {
        Module* module = nullptr;
        std::unique_ptr<ModuleInstance> instance;
        int holds = 0;
    };

    // ModuleSource
    std::optional<ModuleText> Read(std::string_view name) override;
    std::string ResolveName(std::string_view usingModule, std::string_view name) override;
    void TraceCompile(std::string_view line) override;
    void DeclaredWithEvents(std::string_view module, std::string_view variable, std::string_view className) override;
    bool AddReferences(std::string_view module, std::string_view lines, std::size_t& failedLine) override;
    bool IsGlobalNameInUse(std::string_view name) override;
    bool BuildForm(std::string_view name, std::string_view headerText) override;
    bool IsExternalTypeName(std::string_view module, std::string_view name) override;
    bool IsLoadedClassName(std::string_view name) override;
    ExtensionName FindExtensionName(std::string_view module, std::string_view name) override;
    bool IsExternalEnumName(std::string_view module, std::string_view name) override;
    std::string CreatableClassId(std::string_view module, std::string_view name) override;
    std::vector<std::string> ReachableProjects(std::string_view module) override;
    // CompileErrorSink
    void Report(const CompileError& error) override;

    Loaded* Find(const std::string& name);
    const Loaded* RunningMacro() const;
    ModuleStatus StatusOf(const Loaded* loaded, bool query);
    // Unloads a loaded module: its holds on default instances end, then the modules that nothing
    // loaded reaches any more go.
    void Discard(const std::string& name);
    void Release(std::unique_ptr<Loaded> loaded);
    void CollectUnreachableModules();
    // Takes a hold on the default instances of the plain modules that loaded reaches, making those that
    // do not exist yet; made receives the ones made now (used modules' initializers run for them).
    [[nodiscard]] bool HoldDefaultInstances(Loaded& loaded, std::vector<ModuleInstance*>& made);
    void ReleaseDefaultInstances(Loaded& loaded);
    SharedInstance* FindShared(const Module& module);
    // Ends the default object of module, if it has one (its terminator runs when nothing else holds it).
    void ReleaseDefaultObject(const Module& module);
    // Runs the entry procedures (Private Sub Main) of the given used modules' instances, each to its end.
    [[nodiscard]] bool InitializeUsedModules(const std::vector<ModuleInstance*>& instances, const Module* top);

    // What could not be made when a load or start answers AllocFailed, and where.
    struct AllocFailure {
        long number = 0;
        std::wstring description;
        std::wstring module;
        long line = 0;
        std::wstring lineText;
    };
    void NoteAllocFailure(const Module& module, long number, std::wstring description, int line);

    EngineContext& m_context;
    ProcedureBodyCompiler* m_bodyCompiler = nullptr;
    std::optional<AllocFailure> m_allocFailure;
    // One compiler for every module: a module that several others use is loaded once.
    std::unique_ptr<Compiler> m_compiler;
    std::vector<std::unique_ptr<Loaded>> m_loaded;
    std::vector<SharedInstance> m_instances;
    std::vector<HeldObject> m_defaultObjects;
    // The module whose default object is being made (its initializer runs), else null.
    const Module* m_makingDefault = nullptr;
    unsigned m_instanceNumbers = 0;
    std::map<std::string, std::string> m_givenTexts;
    std::vector<std::string> m_projects;
    std::string m_running;
    std::string m_command;
    bool m_queued = false;
    // Value stacks of nested runs, one per nesting level, kept for reuse.
    std::vector<std::unique_ptr<ValueStack>> m_spareStacks;
    std::size_t m_nestedDepth = 0;
    std::string m_queuedName;
    std::string m_queuedCommand;
};

} // namespace brannoc
