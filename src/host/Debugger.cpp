#include "host/Debugger.h"

#include "exec/Interpreter.h"
#include "frontend/CharClasses.h"
#include "frontend/Module.h"
#include "host/AnsiText.h"
#include "host/ModuleManager.h"

#include <algorithm>

namespace brannoc {
namespace {

// The line number right-aligned in a field of three characters; a longer number is written whole.
std::string PaddedLine(int line)
{
    std::string digits = std::to_string(line);
    return digits.size() < 3 ? std::string(3 - digits.size(), ' ') + digits : digits;
}

// The listing of a statement; a statement without one reads as its source line without indentation.
std::string StatementText(const Module& module, const ProcedureCode& code, int index, int line)
{
    std::string listing;
    if (index >= 0 && index <= code.LastStatementIndex())
        code.StatementAt(index)->Print(listing);
    if (!listing.empty())
        return listing;
    std::string source = ModuleManager::SourceLine(module, line);
    const std::size_t indent = source.find_first_not_of(" \t");
    return indent == std::string::npos ? std::string() : source.substr(indent);
}

} // namespace

bool IsHiddenModuleName(const std::string& name)
{
    return name.size() >= 2 && name.front() == '*' && name.back() == '*';
}

bool Debugger::ToggleBreak(const std::string& moduleName, int line)
{
    std::string project;
    std::string rest;
    if (line == 0 && ModuleManager::SplitProject(moduleName, project, rest) && rest.empty())
        return ClearProjectBreaks(project);
    Module* module = m_modules.FindLoadedModule(m_modules.MapName(moduleName));
    CompiledModule* compiled = module ? const_cast<CompiledModule*>(module->Compiled()) : nullptr;
    if (!compiled)
        return false;
    auto& breakpoints = compiled->breakpoints;
    if (line == 0) {
        breakpoints.clear();
        return true;
    }
    for (const auto& procedure : compiled->procedures) {
        ProcedureCode* code = procedure->code.get();
        const int index = line - procedure->firstLine;
        if (!code || index < 0 || index > code->LastStatementIndex())
            continue;
        if (code->IsEmptyStatement(index))
            return false;
        auto existing = std::find_if(breakpoints.begin(), breakpoints.end(), [&](const auto& breakpoint) {
            return &breakpoint->Procedure() == code && breakpoint->Index() == index;
        });
        if (existing != breakpoints.end()) {
            breakpoints.erase(existing);
            return true;
        }
        // A procedure whose statements cannot be replaced takes no break point.
        if (code->FirstLine() == 0)
            return false;
        breakpoints.push_back(std::make_unique<Breakpoint>(*code, index, line));
        return true;
    }
    return false;
}

void Debugger::ClearAllBreaks()
{
    for (const auto& module : m_modules.AllModules()) {
        if (const CompiledModule* compiled = module->Compiled())
            const_cast<CompiledModule*>(compiled)->breakpoints.clear();
    }
}

bool Debugger::ClearProjectBreaks(const std::string& project)
{
    // The default project has no name ("<>"); its modules' names have no project part.
    if (!project.empty() && !m_modules.HasProject(project))
        return false;
    for (const auto& module : m_modules.AllModules()) {
        std::string owner;
        std::string rest;
        (void)ModuleManager::SplitProject(module->Name(), owner, rest);
        if (!SameName(owner, project))
            continue;
        if (const CompiledModule* compiled = module->Compiled())
            const_cast<CompiledModule*>(compiled)->breakpoints.clear();
    }
    return true;
}

int Debugger::BreakLineNum(const std::string& moduleName, int index) const
{
    const Module* module = m_modules.FindLoadedModule(m_modules.MapName(moduleName));
    const CompiledModule* compiled = module ? module->Compiled() : nullptr;
    if (!compiled || index < 0 || static_cast<std::size_t>(index) >= compiled->breakpoints.size())
        return 0;
    return compiled->breakpoints[static_cast<std::size_t>(index)]->Line();
}

std::wstring Debugger::FrameLine(int depth) const
{
    const Activation* frame = m_interpreter.CurrentActivation();
    for (int i = 0; frame && i < depth; ++i)
        frame = frame->Caller();
    if (!frame || depth < 0)
        return {};
    const Procedure* procedure = nullptr;
    const Module* module = m_modules.ModuleOf(frame->OwnProcedure(), &procedure);
    if (!module)
        return {};
    const int line = procedure->firstLine + frame->CurrentIndex();
    // A module of a named project is "<project>module": the line shows "project>module".
    const std::string& name = module->Name();
    std::string text = "[" + (name.rfind('<', 0) == 0 ? name.substr(1) : name) + "|";
    if (module->Kind() != ModuleKind::Plain)
        text += module->RecordName() + ".";
    text += procedure->name + "#" + PaddedLine(line) + "] " +
            StatementText(*module, frame->OwnProcedure(), frame->CurrentIndex(), line);
    return WideFromAnsi(text);
}

int Debugger::CurrentLineNumber() const
{
    const Activation* frame = m_interpreter.CurrentActivation();
    if (!frame)
        return 0;
    const Procedure* procedure = nullptr;
    if (!m_modules.ModuleOf(frame->OwnProcedure(), &procedure))
        return 0;
    return procedure->firstLine + frame->CurrentIndex();
}

bool Debugger::IsSteppingExcluded(const ProcedureCode& procedure) const
{
    const Module* module = m_modules.ModuleOf(procedure);
    return module && IsHiddenModuleName(module->Name());
}

} // namespace brannoc
