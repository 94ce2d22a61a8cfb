#pragma once
// A compiled one-module program run step by step, so that a test can look at the run in its middle (and
// read the process's memory counters there).
#include "code/ProgramRunner.h"

#include <windows.h>
#include <psapi.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace brannoc::testing {

inline PROCESS_MEMORY_COUNTERS_EX MemoryNow()
{
    PROCESS_MEMORY_COUNTERS_EX counters{};
    counters.cb = sizeof counters;
    GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof counters);
    return counters;
}

class SteppedRun final {
public:
    explicit SteppedRun(const std::vector<std::string>& lines) : m_compiler(m_source), m_interpreter(m_host)
    {
        m_source.texts["Test"] = ModuleText{JoinLines(lines), false};
        m_compiler.SetBodyCompiler(&m_bodies);
        m_host.interpreter = &m_interpreter;
        // What the program prints goes here without growing the text during the measured part.
        m_host.output.reserve(4096);
        m_parse = m_compiler.Parse("Test", 0);
    }
    ~SteppedRun() { m_interpreter.UnwindAll(); }

    bool Start()
    {
        Module* module = m_compiler.FindModule("Test");
        if (m_parse != ParseResult::Okay || !module || !module->Compiled() || !module->Compiled()->entry)
            return false;
        m_scope = std::make_unique<InterpreterScope>(m_interpreter);
        m_instance = std::make_unique<ModuleInstance>(*module);
        if (!m_interpreter.StartEntry(*module->Compiled()->entry->code, m_instance.get()))
            return false;
        m_interpreter.PrepareRun(0);
        return true;
    }
    void RunToEnd()
    {
        while (m_interpreter.RunStep(false) != 0) {
        }
    }
    const PrintingHost& Host() const { return m_host; }
    // Calls hook with each text the program prints, at the moment it prints it.
    void OnPrint(std::function<void(const std::wstring&)> hook) { m_host.printed = std::move(hook); }

private:
    MemorySource m_source;
    Compiler m_compiler;
    BodyCompiler m_bodies;
    PrintingHost m_host;
    Interpreter m_interpreter;
    ParseResult m_parse = ParseResult::NotFound;
    std::unique_ptr<InterpreterScope> m_scope;
    std::unique_ptr<ModuleInstance> m_instance;
};

} // namespace brannoc::testing
