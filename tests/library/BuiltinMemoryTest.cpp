// Built-in calls in a running loop: calls on numbers allocate nothing (neither through operator new nor
// as automation strings), and a million string calls leave the process's memory where it was.
#include "code/ProgramRunner.h"

#include <gtest/gtest.h>

#include <windows.h>
#include <psapi.h>

#include <atomic>
#include <cstdlib>
#include <iostream>
#include <new>

namespace {
std::atomic<bool> s_counting{false};
std::atomic<long> s_allocations{0};
} // namespace

// Counts operator new while a test asks for it.
void* operator new(std::size_t size)
{
    if (s_counting)
        ++s_allocations;
    if (void* block = std::malloc(size ? size : 1))
        return block;
    throw std::bad_alloc();
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace brannoc::testing {
namespace {

PROCESS_MEMORY_COUNTERS_EX MemoryNow()
{
    PROCESS_MEMORY_COUNTERS_EX counters{};
    counters.cb = sizeof counters;
    GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof counters);
    return counters;
}

// A compiled one-module program run step by step, so that a test can look at the run in its middle.
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
    // Runs until the program has printed text (a call right after the print hands control back here);
    // false when the run ends first.
    bool RunUntilPrinted(std::wstring_view text)
    {
        while (m_host.output.find(text) == std::wstring::npos) {
            if (m_interpreter.RunStep(false) == 0)
                return false;
        }
        return true;
    }
    void RunToEnd()
    {
        while (m_interpreter.RunStep(false) != 0) {
        }
    }
    const PrintingHost& Host() const { return m_host; }

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

TEST(BuiltinMemory, CallsOnNumbersAllocateNothing)
{
    SteppedRun run({"Sub Mark", "End Sub", "Sub Main", "  Dim i As Long, n As Long, d As Double, s As String",
                    "  s = \"abc\": d = 2.5", "  For i = 1 To 100000",
                    "    n = Abs(-i) + Sgn(i) + CLng(d) + Round(d) + Int(d) + Fix(d) + Sqr(16) + Len(s)",
                    "    n = n + InStr(s, \"c\") + RGB(1, 2, 3) + IIf(i > 0, 1, 2) + Choose(2, 1, 2) + Asc(s) + Val(\"7\")",
                    "    If i = 1000 Then Debug.Print \"warm\": Mark", "  Next", "  Debug.Print n", "End Sub"});
    ASSERT_TRUE(run.Start());
    ASSERT_TRUE(run.RunUntilPrinted(L"warm"));
    s_allocations = 0;
    s_counting = true;
    run.RunToEnd();
    s_counting = false;
    EXPECT_EQ(s_allocations, 0);
    EXPECT_EQ(run.Host().output, L"\"warm\"\r\n297247&\r\n");
    std::cout << "[ numbers  ] 99,000 loops of 14 built-in calls: operator new " << s_allocations << "\n";
}

TEST(BuiltinMemory, MillionStringCallsKeepMemoryFlat)
{
    SteppedRun run({"Sub Mark", "End Sub", "Sub Main", "  Dim i As Long, n As Long, s As String, t As String",
                    "  s = \"The quick brown fox jumps over the lazy dog\"", "  For i = 1 To 1010000",
                    "    t = Mid(s, 5, 10)", "    n = n + InStr(s, \"lazy\") + Len(t)",
                    "    If i = 10000 Then Debug.Print \"warm\": Mark", "  Next", "  Debug.Print n", "End Sub"});
    ASSERT_TRUE(run.Start());
    ASSERT_TRUE(run.RunUntilPrinted(L"warm"));
    const PROCESS_MEMORY_COUNTERS_EX before = MemoryNow();
    s_allocations = 0;
    s_counting = true;
    run.RunToEnd();
    s_counting = false;
    const PROCESS_MEMORY_COUNTERS_EX after = MemoryNow();
    EXPECT_EQ(run.Host().output, L"\"warm\"\r\n46460000&\r\n");
    EXPECT_TRUE(run.Host().errors.empty());
    EXPECT_EQ(s_allocations, 0);
    // Wine reports the commit charge as the page-file usage (it leaves the private bytes at 0).
    auto growth = [](SIZE_T from, SIZE_T to) { return static_cast<long long>(to) - static_cast<long long>(from); };
    EXPECT_LT(growth(before.PagefileUsage, after.PagefileUsage), 256 * 1024);
    EXPECT_LT(growth(before.PeakWorkingSetSize, after.PeakWorkingSetSize), 256 * 1024);
    std::cout << "[ strings  ] 1,000,000 loops of Mid/InStr/Len: committed bytes " << before.PagefileUsage << " -> "
              << after.PagefileUsage << ", peak working set " << before.PeakWorkingSetSize << " -> "
              << after.PeakWorkingSetSize << ", operator new " << s_allocations << "\n";
}

} // namespace
} // namespace brannoc::testing
