// Built-in calls in a running loop: calls on numbers allocate nothing (neither through operator new nor
// as automation strings), and a million string calls leave the process's memory where it was.
#include "code/SteppedRun.h"

#include <gtest/gtest.h>

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

// Counts from the moment the macro prints "warm" to the moment it prints its result.
void CountBetweenPrints(SteppedRun& run, PROCESS_MEMORY_COUNTERS_EX& before, PROCESS_MEMORY_COUNTERS_EX& after)
{
    run.OnPrint([&](const std::wstring& text) {
        if (text == L"\"warm\"\r\n") {
            before = MemoryNow();
            s_allocations = 0;
            s_counting = true;
        } else if (s_counting) {
            s_counting = false;
            after = MemoryNow();
        }
    });
}

TEST(BuiltinMemory, CallsOnNumbersAllocateNothing)
{
    SteppedRun run({"Sub Main", "  Dim i As Long, n As Long, d As Double, s As String", "  s = \"abc\": d = 2.5",
                    "  For i = 1 To 100000",
                    "    n = Abs(-i) + Sgn(i) + CLng(d) + Round(d) + Int(d) + Fix(d) + Sqr(16) + Len(s)",
                    "    n = n + InStr(s, \"c\") + RGB(1, 2, 3) + IIf(i > 0, 1, 2) + Choose(2, 1, 2) + Asc(s) + Val(\"7\")",
                    "    If i = 1000 Then Debug.Print \"warm\"", "  Next", "  Debug.Print n", "End Sub"});
    PROCESS_MEMORY_COUNTERS_EX before{};
    PROCESS_MEMORY_COUNTERS_EX after{};
    CountBetweenPrints(run, before, after);
    ASSERT_TRUE(run.Start());
    run.RunToEnd();
    s_counting = false;
    EXPECT_EQ(s_allocations, 0);
    EXPECT_EQ(run.Host().output, L"\"warm\"\r\n297247&\r\n");
    std::cout << "[ numbers  ] 99,000 loops of 14 built-in calls: operator new " << s_allocations << "\n";
}

TEST(BuiltinMemory, MillionStringCallsKeepMemoryFlat)
{
    SteppedRun run({"Sub Main", "  Dim i As Long, n As Long, s As String, t As String",
                    "  s = \"The quick brown fox jumps over the lazy dog\"", "  For i = 1 To 1010000",
                    "    t = Mid(s, 5, 10)", "    n = n + InStr(s, \"lazy\") + Len(t)",
                    "    If i = 10000 Then Debug.Print \"warm\"", "  Next", "  Debug.Print n", "End Sub"});
    PROCESS_MEMORY_COUNTERS_EX before{};
    PROCESS_MEMORY_COUNTERS_EX after{};
    CountBetweenPrints(run, before, after);
    ASSERT_TRUE(run.Start());
    run.RunToEnd();
    s_counting = false;
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
