#include "host/ModuleManager.h"
#include "exec/Activation.h"
#include "exec/HaltFlags.h"
#include "exec/ModuleInstance.h"
#include "exec/ProcedureCode.h"
#include "host/ClassObject.h"
#include "host/CodeUnit.h"
#include "exec/ErrorMessages.h"
#include "host/AnsiText.h"
#include "host/EngineContext.h"
#include "host/HostCallBack.h"

#include <windows.h>

#include <algorithm>
#include <new>
#include <utility>
#include <cctype>

namespace brannoc {
namespace {

// Line number (1-based) of text, without its line end.
std::string LineOf(const std::string& text, int number)
{
    std::size_t start = 0;
    for (int line = 1; line < number; ++line) {
        start = text.find('\n', start);
        if (start == std::string::npos)
            return {};
        ++start;
    }
    std::size_t end = text.find('\n', start);
    std::string line = text.substr(start, end == std::string::npos ? std::string::npos : end - start);
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return line;
}

bool SameName(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::toupper(static_cast<unsigned char>(x)) == std::toupper(static_cast<unsigned char>(y));
           });
}

// Without a callback the name is a file name: the whole file, as bytes.
std::optional<std::string> ReadFileText(const std::wstring& name)
{
    if (name.empty())
        return std::nullopt;
    HANDLE file = CreateFileW(name.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return std::nullopt;
    std::string text;
    DWORD size = GetFileSize(file, nullptr);
    DWORD read = 0;
    bool ok = size != INVALID_FILE_SIZE;
    if (ok) {
        text.resize(size);
        ok = size == 0 || (ReadFile(file, text.data(), size, &read, nullptr) && read == size);
    }
    CloseHandle(file);
    if (!ok)
        return std::nullopt;
    return text;
}

} // namespace

StatusMessage MessageForStatus(ModuleStatus status)
{
    switch (status) {
    case ModuleStatus::Running:
    case ModuleStatus::Paused: return {kErrorMacroAlreadyRunning, L"Macro is already running."};
    case ModuleStatus::Busy: return {kErrorAlreadyEvaluating, L"Already evaluating an expression."};
    case ModuleStatus::AllocFailed: return {kErrorCantAllocateModule, L"Can't allocate memory to macro/module."};
    case ModuleStatus::SyntaxErrors: return {kErrorModuleHasSyntaxErrors, L"Macro/module has syntax errors."};
    case ModuleStatus::NotFound: return {kErrorModuleMissing, L"Macro/module does not exist."};
    default: return {0, L""};
    }
}

ModuleManager::ModuleManager(EngineContext& context)
    : m_context(context), m_compiler(std::make_unique<Compiler>(static_cast<ModuleSource&>(*this)))
{
    m_compiler->SetErrorSink(this);
}

ModuleManager::~ModuleManager() = default;

bool ModuleManager::SplitProject(const std::string& text, std::string& project, std::string& rest)
{
    const std::size_t close = text.size() > 1 && text[0] == '<' ? text.find('>') : std::string::npos;
    if (close == std::string::npos) {
        project.clear();
        rest = text;
        return false;
    }
    project = text.substr(1, close - 1);
    rest = text.substr(close + 1);
    return true;
}

bool ModuleManager::HasProject(const std::string& name) const
{
    std::string project;
    std::string rest;
    const std::string& bare = SplitProject(name, project, rest) ? project : name;
    return std::any_of(m_projects.begin(), m_projects.end(), [&](const std::string& p) { return SameName(p, bare); });
}

bool ModuleManager::CreateProject(const std::string& name)
{
    std::string project;
    std::string rest;
    const std::string bare = SplitProject(name, project, rest) ? project : name;
    if (bare.empty() || HasProject(bare))
        return false;
    m_projects.push_back(bare);
    return true;
}

bool ModuleManager::DestroyProject(const std::string& name)
{
    std::string project;
    std::string rest;
    const std::string bare = SplitProject(name, project, rest) ? project : name;
    if (m_context.State() != RunState::Idle)
        return false;
    if (!bare.empty() && !HasProject(bare))
        return false;
    std::vector<std::string> doomed;
    for (const auto& loaded : m_loaded) {
        std::string owner;
        std::string moduleName;
        if (SplitProject(loaded->name, owner, moduleName) && (bare.empty() || SameName(owner, bare)))
            doomed.push_back(loaded->name);
    }
    for (const std::string& moduleName : doomed) {
        Discard(moduleName);
        m_context.SendNotification(EngineContext::kNotifyUnloaded);
    }
    m_context.Extensions().RemoveProject(bare);
    if (bare.empty())
        m_projects.clear();
    else
        m_projects.erase(std::remove_if(m_projects.begin(), m_projects.end(),
                                        [&](const std::string& p) { return SameName(p, bare); }),
                         m_projects.end());
    return true;
}

std::string ModuleManager::MapName(const std::string& given)
{
    // A name in double quotation marks is unquoted first.
    const bool quoted = given.size() >= 2 && given.front() == '"' && given.back() == '"';
    const std::string name = quoted ? given.substr(1, given.size() - 2) : given;
    std::string project;
    std::string rest;
    if (SplitProject(name, project, rest)) {
        if (project.empty())
            return MapName(rest);
        for (const std::string& known : m_projects) {
            if (SameName(known, project))
                return "<" + known + ">" + rest;
        }
        return name;
    }
    IDispatch* callBack = m_context.CallBack();
    std::wstring mapped;
    if (!name.empty() && callBack &&
        HostCallBack::MapMacroName(callBack, m_context.Owner().AsDispatch(), WideFromAnsi(name), std::wstring(), mapped))
        return AnsiFromWide(mapped);
    return name;
}

void ModuleManager::GiveText(const std::string& name, std::string text)
{
    m_givenTexts[name] = std::move(text);
}

ModuleManager::Loaded* ModuleManager::Find(const std::string& name)
{
    for (auto& loaded : m_loaded)
        if (SameName(loaded->name, name))
            return loaded.get();
    return nullptr;
}

const ModuleManager::Loaded* ModuleManager::RunningMacro() const
{
    if (const Activation* entry = m_context.Machine().EntryActivations()) {
        const ModuleInstance* instance = entry->Instance();
        for (const auto& loaded : m_loaded) {
            if (instance && loaded->module == &instance->OwnModule())
                return loaded.get();
        }
        return nullptr;
    }
    for (const auto& loaded : m_loaded) {
        if (!m_running.empty() && SameName(loaded->name, m_running))
            return loaded.get();
    }
    return nullptr;
}

std::string ModuleManager::RunningName() const
{
    const Loaded* running = RunningMacro();
    return running ? running->name : std::string();
}

ModuleStatus ModuleManager::StatusOf(const Loaded* loaded, bool query)
{
    if (!loaded)
        return ModuleStatus::NotFound;
    if (!query && m_context.IsBusy())
        return ModuleStatus::Busy;
    Interpreter& machine = m_context.Machine();
    const int marker = machine.ExecutionMarker();
    if (marker < -2 || marker > 0)
        return ModuleStatus::Running;
    if (machine.RunLevel() == 0)
        return ModuleStatus::Idle;
    // An activation running in an instance of the module (or of a module it uses) takes part in the run.
    auto belongs = [&](const Activation* activation) {
        const ModuleInstance* instance = activation->Instance();
        if (!instance)
            return false;
        return std::find(loaded->reach.begin(), loaded->reach.end(), &instance->OwnModule()) != loaded->reach.end();
    };
    const Activation* innermost = machine.CurrentActivation();
    bool inRun = loaded == RunningMacro();
    for (const Activation* activation = innermost; activation && !inRun; activation = activation->Caller())
        inRun = belongs(activation);
    for (const Activation* entry = machine.EntryActivations(); entry && !inRun; entry = entry->NextEntry())
        inRun = belongs(entry);
    if (!inRun)
        return ModuleStatus::Idle;
    if (machine.RunLevel() < 0 && innermost && (belongs(innermost) || innermost->Instance() == nullptr))
        return ModuleStatus::Paused;
    return ModuleStatus::Running;
}

ModuleStatus ModuleManager::Status(const std::string& name) { return StatusOf(Find(name), true); }

bool ModuleManager::IsActive(const std::string& name)
{
    ModuleStatus status = Status(name);
    return status == ModuleStatus::Running || status == ModuleStatus::Paused;
}

void ModuleManager::Discard(const std::string& name)
{
    for (auto position = m_loaded.begin(); position != m_loaded.end(); ++position) {
        if (!SameName((*position)->name, name))
            continue;
        std::unique_ptr<Loaded> released = std::move(*position);
        m_loaded.erase(position);
        Release(std::move(released));
        return;
    }
}

// The module leaves the list before its instances go, so that terminators that run meanwhile see a
// consistent list; its code stays until they have run.
void ModuleManager::Release(std::unique_ptr<Loaded> loaded)
{
    ReleaseDefaultInstances(*loaded);
    loaded.reset();
    CollectUnreachableModules();
}

void ModuleManager::UnloadAll()
{
    while (!m_loaded.empty()) {
        std::unique_ptr<Loaded> released = std::move(m_loaded.back());
        m_loaded.pop_back();
        Release(std::move(released));
    }
}

void ModuleManager::CollectUnreachableModules()
{
    std::vector<Module*> unreachable;
    for (const auto& module : m_compiler->Modules()) {
        bool reached = false;
        for (const auto& loaded : m_loaded)
            reached = reached || std::find(loaded->reach.begin(), loaded->reach.end(), module.get()) != loaded->reach.end();
        if (!reached)
            unreachable.push_back(module.get());
    }
    // Newest first, so that a module goes before the modules it uses; a default object ends while its
    // module's code still exists.
    for (auto module = unreachable.rbegin(); module != unreachable.rend(); ++module) {
        ReleaseDefaultObject(**module);
        m_compiler->Release(*module);
    }
}

// A module that other loaded modules already use is compiled once and shared; loading a loaded module
// again compiles it again (the modules it uses stay while anything reaches them).
ModuleStatus ModuleManager::Load(const std::string& name, int mode)
{
    // What an earlier failed request left unreported does not describe this one.
    if (mode == 0)
        m_allocFailure.reset();
    Loaded* existing = Find(name);
    ModuleStatus status = StatusOf(existing, false);
    if (status == ModuleStatus::Running || status == ModuleStatus::Paused || status == ModuleStatus::Busy)
        return status;
    if (m_context.IsBusy())
        return ModuleStatus::Busy;
    if (existing)
        Discard(name);
    m_compiler->SetErrorLimit(m_context.ErrorLimit());
    m_compiler->GetLexer().SetBlockedKeywords(m_context.BlockedKeywords());
    m_compiler->SetBodyCompiler(m_bodyCompiler);
    m_compiler->ClearErrors();
    m_context.SetCompiling(true);
    // The host hears that a compile begins; requests it makes during the call answer Busy.
    m_context.SendNotification(EngineContext::kNotifyCompiling);
    const ParseResult result = m_compiler->Parse(name, mode);
    m_context.SetCompiling(false);
    switch (result) {
    case ParseResult::Okay: break;
    case ParseResult::AllocFailed: return ModuleStatus::AllocFailed;
    case ParseResult::NotFound: return ModuleStatus::NotFound;
    case ParseResult::SyntaxErrors:
    default: return ModuleStatus::SyntaxErrors;
    }
    auto loaded = std::make_unique<Loaded>();
    loaded->name = name;
    loaded->module = m_compiler->ParsedModule();
    loaded->reach.push_back(loaded->module);
    // The modules its code names (through '#Uses or its projects) stay while it is loaded.
    for (std::size_t i = 0; i < loaded->reach.size(); ++i) {
        for (const auto* list : {&loaded->reach[i]->UsedModules(), &loaded->reach[i]->ProjectModules()}) {
            for (Module* used : *list) {
                if (std::find(loaded->reach.begin(), loaded->reach.end(), used) == loaded->reach.end())
                    loaded->reach.push_back(used);
            }
        }
    }
    Loaded& added = *loaded;
    m_loaded.push_back(std::move(loaded));
    if (mode == 2 && added.module->Kind() == ModuleKind::Plain) {
        // Loaded for use: its storage is made and its initializer runs now.
        std::vector<ModuleInstance*> made;
        if (!HoldDefaultInstances(added, made) || !InitializeUsedModules(made, nullptr)) {
            Discard(name);
            return ModuleStatus::AllocFailed;
        }
        added.module->SetFlags(added.module->Flags() | Module::kInitialized);
    }
    return ModuleStatus::Idle;
}

ModuleStatus ModuleManager::Start(const std::string& name, const std::string& command)
{
    if (m_queued)
        return ModuleStatus::Busy;
    Interpreter& machine = m_context.Machine();
    if (machine.ExecutionMarker() != 0) {
        // Statements are executing: the start waits for the scheduler, which carries out the pending
        // action (and with it the start) before the next statement.
        m_queued = true;
        m_queuedName = name;
        m_queuedCommand = command;
        if (!machine.RequestAction(EngineContext::kActionQuery, 0)) {
            m_queued = false;
            return ModuleStatus::Busy;
        }
        return ModuleStatus::Queued;
    }
    ModuleStatus status = Load(name);
    if (status != ModuleStatus::Idle)
        return status;
    (void)m_context.Control(EngineContext::kActionResume, 0);
    Loaded* loaded = Find(name);
    std::vector<ModuleInstance*> made;
    if (!loaded || !loaded->module || !HoldDefaultInstances(*loaded, made))
        return ModuleStatus::AllocFailed;
    // A class or object module has no Main: starting it makes its default instance, whose initializer
    // runs to its end now.
    const bool plain = loaded->module->Kind() == ModuleKind::Plain;
    if (!plain) {
        ComRef<IDispatch> instance = ComRef<IDispatch>::Adopt(DefaultObject(*loaded->module));
        if (!instance)
            return ModuleStatus::AllocFailed;
    }
    const CompiledModule* compiled = loaded->module->Compiled();
    Procedure* entry = compiled && plain ? compiled->entry : nullptr;
    ProcedureCode* code = entry ? entry->code.get() : nullptr;
    m_command = command;
    loaded->command = command;
    m_running = loaded->name;
    if (!code) {
        // Nothing executable: the run begins and ends at once.
        m_context.SendNotification(EngineContext::kNotifyRunStarted);
        m_running.clear();
        m_context.SendNotification(EngineContext::kNotifyRunEnded);
        return ModuleStatus::Idle;
    }
    // Main is scheduled first; the used modules' initializers then run above it, so all of them have
    // finished before Main's first statement.
    SharedInstance* own = FindShared(*loaded->module);
    if (own && !machine.StartEntry(*code, own->instance.get())) {
        // Main could not begin (its fixed-size local arrays could not be made): the error it raised is
        // reported at Main's header line.
        const ErrorRecord& raised = machine.Error();
        if (raised.number != 0)
            NoteAllocFailure(*loaded->module, raised.number, raised.description, entry->firstLine);
        m_running.clear();
        return ModuleStatus::AllocFailed;
    }
    if (!own || !InitializeUsedModules(made, loaded->module)) {
        m_running.clear();
        return ModuleStatus::AllocFailed;
    }
    return ModuleStatus::Idle;
}

ModuleStatus ModuleManager::StartFromCode(std::string_view runningModule, const std::string& name,
                                          const std::string& command, const std::optional<std::string>& text)
{
    if (name.empty())
        return ModuleStatus::NotFound;
    if (m_queued)
        return ModuleStatus::Busy;
    const std::string resolved = text || runningModule.empty() ? name : ResolveName(runningModule, name);
    if (const Loaded* loaded = Find(resolved)) {
        // A macro taking part in the run (the caller itself, or one of its callers) cannot start again:
        // its status is read as the queued start will read it, between statements.
        Interpreter& machine = m_context.Machine();
        const int marker = machine.ExecutionMarker();
        machine.SetExecutionMarker(0);
        const ModuleStatus now = StatusOf(loaded, true);
        machine.SetExecutionMarker(marker);
        if (now == ModuleStatus::Running || now == ModuleStatus::Paused)
            return now;
    }
    if (text) {
        GiveText(resolved, *text);
    } else if (!Find(resolved)) {
        // Read now, so that a macro that does not exist is an error of the calling statement, which the
        // caller can trap; the queued start compiles the text read.
        std::optional<ModuleText> read = Read(resolved);
        if (!read)
            return ModuleStatus::NotFound;
        GiveText(resolved, std::move(read->text));
    }
    return Start(resolved, command);
}

void ModuleManager::RunQueuedStart()
{
    if (!m_queued)
        return;
    m_queued = false;
    const std::string name = std::move(m_queuedName);
    const std::string command = std::move(m_queuedCommand);
    ReportStatus(Start(name, command), WideFromAnsi(name));
}

namespace {

Procedure* CallableProcedure(const Module& module, std::string_view name, ProcedureKind kind)
{
    const CompiledModule* compiled = module.Compiled();
    if (!compiled)
        return nullptr;
    for (const auto& procedure : compiled->procedures) {
        if (procedure->kind == kind && procedure->visibility != Visibility::Private &&
            procedure->code && SameName(procedure->name, name))
            return procedure.get();
    }
    return nullptr;
}

} // namespace

bool ModuleManager::FindHostSub(const std::string& name, Procedure*& procedure, ModuleInstance*& instance)
{
    return FindHostProcedure(name, ProcedureKind::Sub, procedure, instance);
}

bool ModuleManager::FindHostProcedure(const std::string& name, ProcedureKind kind, Procedure*& procedure,
                                      ModuleInstance*& instance)
{
    const std::size_t dot = name.rfind('.');
    const std::string_view moduleName = dot == std::string::npos ? std::string_view() : std::string_view(name).substr(0, dot);
    const std::string_view subName = dot == std::string::npos ? std::string_view(name) : std::string_view(name).substr(dot + 1);
    std::vector<Loaded*> order;
    if (const Loaded* running = RunningMacro())
        order.push_back(const_cast<Loaded*>(running));
    for (auto loaded = m_loaded.rbegin(); loaded != m_loaded.rend(); ++loaded) {
        if (std::find(order.begin(), order.end(), loaded->get()) == order.end())
            order.push_back(loaded->get());
    }
    for (Loaded* loaded : order) {
        for (Module* module : loaded->reach) {
            if (module->Kind() != ModuleKind::Plain || (!moduleName.empty() && !SameName(module->Name(), moduleName)))
                continue;
            procedure = CallableProcedure(*module, subName, kind);
            if (!procedure)
                continue;
            if (!loaded->holdsInstances) {
                // A loaded macro gets its module storage now; the used modules' initializers run, its
                // own Main does not.
                std::vector<ModuleInstance*> made;
                if (!HoldDefaultInstances(*loaded, made) || !InitializeUsedModules(made, loaded->module))
                    return false;
            }
            instance = DefaultInstance(*module);
            return instance != nullptr;
        }
    }
    return false;
}

ModuleManager::SharedInstance* ModuleManager::FindShared(const Module& module)
{
    for (SharedInstance& shared : m_instances) {
        if (shared.module == &module)
            return &shared;
    }
    return nullptr;
}

bool ModuleManager::HoldDefaultInstances(Loaded& loaded, std::vector<ModuleInstance*>& made)
{
    if (loaded.holdsInstances)
        ReleaseDefaultInstances(loaded);
    for (Module* module : loaded.reach) {
        if (module->Kind() != ModuleKind::Plain)
            continue;
        SharedInstance* shared = FindShared(*module);
        if (!shared) {
            m_instances.push_back(SharedInstance{module, std::make_unique<ModuleInstance>(*module), 0});
            shared = &m_instances.back();
            made.push_back(shared->instance.get());
        }
        ++shared->holds;
        const int failed = shared->instance->FailedVariable();
        if (failed < 0 && !made.empty() && made.back() == shared->instance.get())
            m_context.InitializeWithEvents(*shared->instance);
        if (failed >= 0) {
            const Variable& variable = *module->Compiled()->variables[static_cast<std::size_t>(failed)];
            const long number = shared->instance->StorageError();
            NoteAllocFailure(*module, number, MessageFor(number), variable.line);
            // The holds taken so far end again; the instances made now go with them.
            loaded.holdsInstances = true;
            ReleaseDefaultInstances(loaded);
            made.clear();
            return false;
        }
    }
    loaded.holdsInstances = true;
    return true;
}

void ModuleManager::NoteAllocFailure(const Module& module, long number, std::wstring description, int line)
{
    m_allocFailure = AllocFailure{number, std::move(description), WideFromAnsi(module.Name()), line,
                                  WideFromAnsi(LineOf(module.Text(), line))};
}

void ModuleManager::ReportStatus(ModuleStatus status, const std::wstring& macroName)
{
    std::optional<AllocFailure> failure = std::exchange(m_allocFailure, std::nullopt);
    StatusMessage message = MessageForStatus(status);
    if (message.number == 0)
        return;
    ErrorLocation& error = m_context.ErrorReport();
    error.Clear();
    error.number = message.number;
    error.description = message.text;
    error.macroName = macroName;
    if (status == ModuleStatus::AllocFailed && failure) {
        error.number = failure->number;
        error.description = std::move(failure->description);
        error.macroName = std::move(failure->module);
        error.lineNumber = failure->line;
        error.lineText = std::move(failure->lineText);
    }
    m_context.TraceErrorFields();
    m_context.SendNotification(EngineContext::kNotifyError);
}

void ModuleManager::ReportError(long number, const std::wstring& macroName)
{
    ErrorLocation& error = m_context.ErrorReport();
    error.Clear();
    error.number = number;
    error.description = MessageFor(number);
    error.macroName = macroName;
    m_context.TraceErrorFields();
    m_context.SendNotification(EngineContext::kNotifyError);
}

// Released newest first; an instance goes with its last hold (its variables' objects with it).
void ModuleManager::ReleaseDefaultInstances(Loaded& loaded)
{
    if (!loaded.holdsInstances)
        return;
    loaded.holdsInstances = false;
    for (auto module = loaded.reach.rbegin(); module != loaded.reach.rend(); ++module) {
        for (std::size_t i = 0; i < m_instances.size(); ++i) {
            if (m_instances[i].module != *module || --m_instances[i].holds > 0)
                continue;
            std::unique_ptr<ModuleInstance> released = std::move(m_instances[i].instance);
            m_instances.erase(m_instances.begin() + static_cast<std::ptrdiff_t>(i));
            released.reset();
            break;
        }
    }
}

bool ModuleManager::InitializeUsedModules(const std::vector<ModuleInstance*>& instances, const Module* top)
{
    // A used module's initializer runs before those of the modules that use it: the modules are taken
    // depth first, each after what it uses, siblings in the order of their '#Uses lines.
    std::vector<ModuleInstance*> ordered;
    std::vector<const Module*> visited;
    const auto instanceOf = [&](const Module* module) -> ModuleInstance* {
        for (ModuleInstance* instance : instances) {
            if (&instance->OwnModule() == module)
                return instance;
        }
        return nullptr;
    };
    const auto visit = [&](const auto& self, const Module* module) -> void {
        if (std::find(visited.begin(), visited.end(), module) != visited.end())
            return;
        visited.push_back(module);
        for (const Module* used : module->UsedModules())
            self(self, used);
        if (ModuleInstance* instance = instanceOf(module))
            ordered.push_back(instance);
    };
    if (top)
        visit(visit, top);
    for (ModuleInstance* instance : instances)
        visit(visit, &instance->OwnModule());
    for (ModuleInstance* instance : ordered) {
        if (&instance->OwnModule() == top)
            continue;
        const CompiledModule* compiled = instance->OwnModule().Compiled();
        ProcedureCode* code = compiled && compiled->entry ? compiled->entry->code.get() : nullptr;
        if (code && !RunNested(*code, *instance))
            return false;
    }
    return true;
}

bool ModuleManager::RunNested(ProcedureCode& code, ModuleInstance& instance, const NestedArguments& push,
                              Variant* result, Interpreter::ErrorExit errorExit,
                              const Interpreter::DebuggedCall* debugged)
{
    Interpreter& machine = m_context.Machine();
    ValueStack& values = machine.Values();
    // The nested run gets a value stack of its own: the code that started it (a release in the middle
    // of a store, a conversion asking an object for its value) may hold references into the current one.
    if (m_nestedDepth >= m_spareStacks.size())
        m_spareStacks.push_back(std::make_unique<ValueStack>());
    ValueStack& outer = *m_spareStacks[m_nestedDepth++];
    values.Swap(outer);
    struct Restore {
        ValueStack& values;
        ValueStack& outer;
        std::size_t& depth;
        ~Restore()
        {
            values.CutBack(0);
            values.Swap(outer);
            --depth;
        }
    } restore{values, outer, m_nestedDepth};
    if (push && !push(values))
        return false;
    // The steps of the call leave their own marker; the caller's state comes back afterwards.
    const int marker = machine.ExecutionMarker();
    // A call nested inside a running statement (an initializer or terminator, a late-bound member, an
    // evaluation) can neither stop nor end the run from inside: a stop would cut the call short and leave
    // the statement running on in a stopped run, an End would unwind the frames of the statement that is
    // still running them. A Stop, break point or step target there is passed over, and an End raises
    // "Invalid instruction." instead, as in a host's call.
    const bool insideStatement = marker != 0 && !debugged;
    const int runDepth = machine.RunDepth();
    const int stepCounter = machine.StepCounter();
    if (insideStatement) {
        machine.EnterHostCall();
        machine.EnterPlainCall();
        machine.PrepareRun(0);
    }
    const bool finished = machine.RunHostCall(code, &instance, errorExit, debugged);
    if (insideStatement) {
        machine.LeavePlainCall();
        machine.LeaveHostCall();
        machine.PrepareRun(runDepth);
        machine.SetStepCounter(stepCounter);
    }
    machine.SetExecutionMarker(marker);
    if (result && values.Size() > 0)
        *result = std::move(values.At(0));
    return finished;
}

std::unique_ptr<ModuleInstance> ModuleManager::CreateInstance(Module& module, IDispatch* hostObject)
{
    auto instance = std::make_unique<ModuleInstance>(module);
    if (hostObject)
        instance->AttachHostObject(hostObject);
    Interpreter& machine = m_context.Machine();
    if (instance->FailedVariable() >= 0) {
        // Its variables could not all be made: no object, and the code that asked for it gets the error.
        const long number = instance->StorageError();
        instance.reset();
        if (machine.ExecutionMarker() < 0)
            (void)machine.SignalError(number);
        return nullptr;
    }
    // The creator's hold: the initializer's own activation never leaves the instance without uses.
    instance->AddUse();
    m_context.InitializeWithEvents(*instance);
    const CompiledModule* compiled = module.Compiled();
    ProcedureCode* entry = compiled && compiled->entry ? compiled->entry->code.get() : nullptr;
    // Made by running code (New, the first use of a default instance), the initializer hands an error
    // that it does not trap back to that code, which raises it again where it can be trapped.
    const bool madeByCode = machine.ExecutionMarker() < 0;
    if (entry && !RunNested(*entry, *instance, {}, nullptr,
                            madeByCode ? Interpreter::ErrorExit::kToCaller : Interpreter::ErrorExit::kReport)) {
        // The terminator may change the error object: the initializer's error is kept first.
        const ErrorRecord error = machine.Error();
        DestroyInstance(std::move(instance));
        if (madeByCode && !HaltFlags::MustStop() && error.number != 0)
            (void)machine.RaiseRuntimeError(error.number, error.description, error.source, error.helpFile,
                                            error.helpContext);
        return nullptr;
    }
    return instance;
}

bool ModuleManager::BuildForm(std::string_view name, std::string_view headerText)
{
    return m_context.ParseModuleProperties(std::string(name), headerText);
}

IDispatch* ModuleManager::NewObject(Module& module)
{
    // A form the host built gets the host's object for each instance, asked for before the instance
    // exists (so that the host may add extensions specific to the module meanwhile).
    ComRef<IDispatch> hostObject;
    if (module.IsHostForm() && !m_context.HostObjectForInstance(module.Name(), hostObject)) {
        // Running code gets the error where it can trap it; a host's request has it reported.
        if (m_context.Machine().ExecutionMarker() < 0)
            (void)m_context.Machine().SignalError(kErrorObjectInstanceNotCreated);
        else
            ReportError(kErrorObjectInstanceNotCreated, WideFromAnsi(module.Name()));
        return nullptr;
    }
    std::unique_ptr<ModuleInstance> instance = CreateInstance(module, hostObject.Get());
    if (!instance)
        return nullptr;
    instance->SetNumber(++m_instanceNumbers);
    auto* object = new (std::nothrow) ClassObject(*this, std::move(instance));
    if (!object)
        (void)m_context.Machine().RaiseOutOfMemory();
    return object;
}

IDispatch* ModuleManager::NumberedObject(unsigned number)
{
    ModuleInstance* instance = ModuleInstance::FindNumbered(static_cast<ModuleSource*>(this), number);
    return instance ? ComRef<IDispatch>::Share(instance->Object()).Detach() : nullptr;
}

IDispatch* ModuleManager::DefaultObject(Module& module)
{
    for (HeldObject& held : m_defaultObjects) {
        if (held.module == &module)
            return ComRef<IDispatch>(held.object).Detach();
    }
    if (m_makingDefault == &module) {
        // Its own initializer names the default instance that it is making.
        (void)m_context.Machine().SignalError(kErrorObjectInstanceNotCreated);
        return nullptr;
    }
    const Module* outer = std::exchange(m_makingDefault, &module);
    ComRef<IDispatch> object = ComRef<IDispatch>::Adopt(NewObject(module));
    m_makingDefault = outer;
    if (!object)
        return nullptr;
    m_defaultObjects.push_back(HeldObject{&module, object});
    return object.Detach();
}

void ModuleManager::ReleaseDefaultObject(const Module& module)
{
    for (auto held = m_defaultObjects.begin(); held != m_defaultObjects.end(); ++held) {
        if (held->module != &module)
            continue;
        // Out of the list first: the terminator that the release runs may reach the list again.
        ComRef<IDispatch> object = std::move(held->object);
        m_defaultObjects.erase(held);
        return;
    }
}

void ModuleManager::TerminateInstance(ModuleInstance& instance)
{
    if (instance.IsTerminated())
        return;
    instance.MarkTerminated();
    // Its WithEvents variables hear no more events once it ends.
    instance.CloseConnections();
    const CompiledModule* compiled = instance.OwnModule().Compiled();
    ProcedureCode* terminate = compiled && compiled->terminate ? compiled->terminate->code.get() : nullptr;
    // Only class and object modules have one, also when one is started as the macro of a run.
    if (terminate)
        (void)RunNested(*terminate, instance);
}

void ModuleManager::DestroyInstance(std::unique_ptr<ModuleInstance> instance)
{
    if (!instance)
        return;
    TerminateInstance(*instance);
    // The creator's hold ends; activations still running in the instance keep it until they end.
    ModuleInstance* released = instance.release();
    (void)released->ReleaseUse();
    released->Abandon();
}


bool ModuleManager::Locate(const ProcedureCode& code, int index, std::wstring& moduleName, int& line,
                           std::wstring& lineText) const
{
    auto search = [&](const Module* module) {
        const CompiledModule* compiled = module ? module->Compiled() : nullptr;
        if (!compiled)
            return false;
        for (const auto& procedure : compiled->procedures) {
            if (procedure->code.get() != &code)
                continue;
            line = procedure->firstLine + (index < 0 ? 0 : index);
            moduleName = WideFromAnsi(module->Name());
            // The statement's listing after the line's indentation: a statement continued over several
            // lines reads as one.
            const std::string source = LineOf(module->Text(), line);
            std::string listing;
            if (index >= 0 && index <= code.LastStatementIndex())
                code.StatementAt(index)->Print(listing);
            if (listing.empty()) {
                lineText = WideFromAnsi(source);
            } else {
                const std::size_t indent = source.find_first_not_of(" \t");
                lineText = WideFromAnsi(source.substr(0, indent == std::string::npos ? 0 : indent) + listing);
            }
            return true;
        }
        return false;
    };
    for (const auto& module : m_compiler->Modules()) {
        if (search(module.get()))
            return true;
    }
    return false;
}

Module* ModuleManager::ModuleOf(const ProcedureCode& code, const Procedure** procedure) const
{
    for (const auto& module : m_compiler->Modules()) {
        const CompiledModule* compiled = module->Compiled();
        if (!compiled)
            continue;
        for (const auto& candidate : compiled->procedures) {
            if (candidate->code.get() == &code) {
                if (procedure)
                    *procedure = candidate.get();
                return module.get();
            }
        }
    }
    return nullptr;
}

std::string ModuleManager::SourceLine(const Module& module, int number) { return LineOf(module.Text(), number); }

Module* ModuleManager::FindLoadedModule(const std::string& name) const
{
    // A loaded module answers to its registered name, which Rename may have changed; a module that
    // is only reached through '#Uses answers to its own.
    for (const auto& loaded : m_loaded) {
        if (SameName(loaded->name, name))
            return loaded->module;
    }
    Module* module = m_compiler->FindModule(name);
    for (const auto& loaded : m_loaded) {
        if (module && loaded->module == module)
            return nullptr;
    }
    return module;
}

ModuleInstance* ModuleManager::DefaultInstance(const Module& module) const
{
    for (const SharedInstance& shared : m_instances) {
        if (shared.module == &module)
            return shared.instance.get();
    }
    return nullptr;
}

ModuleStatus ModuleManager::Unload(const std::string& name)
{
    Loaded* loaded = Find(name);
    ModuleStatus status = StatusOf(loaded, false);
    if (status == ModuleStatus::Idle || status == ModuleStatus::NotFound) {
        Discard(name);
        // The module's own extensions and references go with it.
        m_context.Extensions().RemoveModule(name, false);
        if (loaded)
            m_context.SendNotification(EngineContext::kNotifyUnloaded);
        return ModuleStatus::Unloaded;
    }
    return status;
}

bool ModuleManager::Rename(const std::string& oldName, const std::string& newName)
{
    Loaded* loaded = Find(oldName);
    if (!loaded || newName.empty() || (Find(newName) && !SameName(oldName, newName)))
        return false;
    if (SameName(m_running, loaded->name))
        m_running = newName;
    loaded->name = newName;
    return true;
}

std::string ModuleManager::LoadedName(std::size_t index) const
{
    return index < m_loaded.size() ? m_loaded[index]->name : std::string();
}

void ModuleManager::RunEnded()
{
    m_running.clear();
    m_command.clear();
}

void ModuleManager::SplitStartText(const std::string& text, std::string& name, std::string& command)
{
    std::size_t rest = 0;
    if (!text.empty() && text[0] == '"') {
        std::size_t close = text.find('"', 1);
        name = text.substr(1, close == std::string::npos ? std::string::npos : close - 1);
        rest = close == std::string::npos ? text.size() : close + 1;
    } else {
        std::size_t blank = text.find(' ');
        name = text.substr(0, blank);
        rest = blank == std::string::npos ? text.size() : blank;
    }
    while (rest < text.size() && text[rest] == ' ')
        ++rest;
    command = text.substr(rest);
}

bool ModuleManager::IsObjectModuleText(const std::string& text)
{
    std::size_t position = 0;
    while (position < text.size()) {
        std::size_t end = text.find('\n', position);
        if (end == std::string::npos)
            end = text.size();
        std::size_t first = text.find_first_not_of(" \t\r", position);
        if (first < end && text[first] != '\'')
            return text.compare(first, 7, "VERSION") == 0;
        position = end + 1;
    }
    return false;
}

std::optional<ModuleText> ModuleManager::Read(std::string_view fullName)
{
    // A module of a named project is read under its own name; a project that was never created has none.
    std::string project;
    std::string name;
    if (SplitProject(std::string(fullName), project, name) && !project.empty() && !HasProject(project))
        return std::nullopt;
    std::string text;
    auto given = m_givenTexts.find(std::string(fullName));
    if (given == m_givenTexts.end())
        given = m_givenTexts.find(name);
    if (given != m_givenTexts.end()) {
        text = std::move(given->second);
        m_givenTexts.erase(given);
    } else if (IDispatch* callBack = m_context.CallBack()) {
        std::wstring read;
        if (!HostCallBack::ReadMacro(callBack, m_context.Owner().AsDispatch(), WideFromAnsi(name), read))
            return std::nullopt;
        text = AnsiFromWide(read);
    } else {
        std::optional<std::string> file = ReadFileText(WideFromAnsi(name));
        if (!file)
            return std::nullopt;
        text = std::move(*file);
    }
    // The source ends at the first end-of-file character.
    std::size_t end = text.find('\x1A');
    if (end != std::string::npos)
        text.resize(end);
    if (text.empty())
        return std::nullopt;
    ModuleText result;
    result.objectModuleFile = IsObjectModuleText(text);
    result.text = std::move(text);
    return result;
}

std::string ModuleManager::ResolveName(std::string_view usingModule, std::string_view name)
{
    // A module of a named project uses modules of the same project; names are not mapped there.
    std::string project;
    std::string rest;
    if (SplitProject(std::string(usingModule), project, rest) && !project.empty())
        return "<" + project + ">" + std::string(name);
    IDispatch* callBack = m_context.CallBack();
    std::wstring mapped;
    if (callBack && HostCallBack::MapMacroName(callBack, m_context.Owner().AsDispatch(), WideFromAnsi(name),
                                               WideFromAnsi(usingModule), mapped))
        return AnsiFromWide(mapped);
    return std::string(name);
}

void ModuleManager::TraceCompile(std::string_view line)
{
    if (m_context.ApiTraceOn())
        m_context.Trace(!line.empty() && line[0] == '*' ? TraceKind::Entry : TraceKind::Result, WideFromAnsi(line));
}

void ModuleManager::DeclaredWithEvents(std::string_view module, std::string_view variable, std::string_view className)
{
    m_context.DeclaredWithEvents(module, variable, className);
}

void ModuleManager::Report(const CompileError& error)
{
    ErrorLocation& report = m_context.ErrorReport();
    report.Clear();
    report.number = static_cast<long>(error.number);
    report.description = error.message;
    report.macroName = WideFromAnsi(error.module);
    report.lineText = WideFromAnsi(error.lineText);
    report.lineNumber = static_cast<long>(error.line);
    report.offset = static_cast<short>(error.offset);
    // The compile error is set (5) and then shown (0); a failed start reports its status afterwards.
    m_context.SendNotification(EngineContext::kNotifyErrorSet);
    m_context.SendNotification(EngineContext::kNotifyError);
}

} // namespace brannoc
