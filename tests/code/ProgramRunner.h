#pragma once
// Compiles a one-module macro text with the statement compiler, runs its Main on an interpreter and
// collects what Debug.Print wrote, the compile errors and the untrapped run-time errors.
#include "exec/Interpreter.h"
#include "exec/ModuleInstance.h"
#include "frontend/BodyCompiler.h"
#include "frontend/Compiler.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brannoc::testing {

class MemorySource final : public ModuleSource {
public:
    std::optional<ModuleText> Read(std::string_view name) override
    {
        const auto found = texts.find(std::string(name));
        if (found == texts.end())
            return std::nullopt;
        return found->second;
    }
    std::map<std::string, ModuleText> texts;
};

class PrintingHost final : public InterpreterHost {
public:
    Interpreter* interpreter = nullptr;
    std::wstring output;
    std::vector<ErrorRecord> errors;
    // Called with each printed text (when set), while the statement that printed it runs.
    std::function<void(const std::wstring&)> printed;
    // Called at each yield (when set), between two steps of the run.
    std::function<void()> pumped;

    void Notify(Notification) override {}
    void PerformControlAction(int action, long) override
    {
        if (action == kActionEnd || action == kActionEndAll)
            interpreter->UnwindAll();
        else if (action == kActionStop && interpreter->RunLevel() > 0)
            interpreter->SetRunLevel(-interpreter->RunLevel());
    }
    void PumpMessages() override
    {
        if (pumped)
            pumped();
    }
    void ReportUntrappedError(const ErrorRecord& error) override { errors.push_back(error); }
    void DebugPrint(const std::wstring& text) override
    {
        output += text;
        if (printed)
            printed(text);
    }
};

struct ProgramResult {
    ParseResult parse = ParseResult::NotFound;
    std::vector<CompileError> compileErrors;
    std::wstring output;
    std::vector<ErrorRecord> runErrors;
    bool finished = false;
};

// Lines are joined with CR LF; the module is a macro named "Test".
inline std::string JoinLines(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    return text;
}

// Other modules (name, text) that the program names in '#Uses get default instances linked to Main's.
// prepare (when given) sees the macro's instance before Main runs (to put values into its variables).
// afterRun (when given) sees the interpreter after the run has been unwound, before it goes.
inline ProgramResult RunProgram(const std::string& text, const std::map<std::string, std::string>& others = {},
                                int stepLimit = 2000000,
                                const std::function<void(ModuleInstance&)>& prepare = {},
                                const std::function<void(Interpreter&)>& afterRun = {})
{
    ProgramResult result;
    MemorySource source;
    source.texts["Test"] = ModuleText{text, false};
    for (const auto& [name, other] : others)
        source.texts[name] = ModuleText{other, false};
    Compiler compiler(source);
    BodyCompiler bodies;
    compiler.SetBodyCompiler(&bodies);
    compiler.SetErrorLimit(20);
    result.parse = compiler.Parse("Test", 0);
    result.compileErrors = compiler.Errors();
    if (result.parse != ParseResult::Okay)
        return result;
    Module* module = compiler.FindModule("Test");
    if (!module || !module->Compiled() || !module->Compiled()->entry || !module->Compiled()->entry->code)
        return result;
    PrintingHost host;
    Interpreter interpreter(host);
    host.interpreter = &interpreter;
    InterpreterScope scope(interpreter);
    ModuleInstance instance(*module);
    std::vector<std::unique_ptr<ModuleInstance>> used;
    for (Module* usedModule : module->UsedModules()) {
        used.push_back(std::make_unique<ModuleInstance>(*usedModule));
        instance.Link(*used.back());
    }
    if (prepare)
        prepare(instance);
    if (!interpreter.StartEntry(*module->Compiled()->entry->code, &instance))
        return result;
    interpreter.PrepareRun(0);
    int steps = 0;
    while (steps < stepLimit && interpreter.RunStep(false) != 0)
        ++steps;
    result.finished = interpreter.ExecutionDepth() == 0;
    interpreter.UnwindAll();
    if (afterRun)
        afterRun(interpreter);
    result.output = host.output;
    result.runErrors = host.errors;
    return result;
}

} // namespace brannoc::testing
