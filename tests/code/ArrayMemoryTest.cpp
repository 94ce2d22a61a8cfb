// Ten million Long elements allocated, filled and summed by a running macro: the process commits the
// elements' 40 MB and little more (no copy of the array while For Each walks it), and Erase gives the
// memory back. The memory counters are read as the macro prints its marks; the figures are printed for
// reading.
#include "SteppedRun.h"

#include <gtest/gtest.h>

#include <iostream>
#include <map>

namespace brannoc::testing {
namespace {

TEST(ArrayMemory, TenMillionElementsAreFilledAndSummedInTheirOwnFortyMegabytes)
{
    SteppedRun run({"Sub Main", "  Dim a() As Long, i As Long, total As Double, x As Variant", "  Debug.Print \"ready\"",
                    "  ReDim a(1 To 10000000)", "  For i = 1 To 10000000", "    a(i) = i", "  Next",
                    "  For Each x In a", "    total = total + x", "  Next", "  Debug.Print \"summed\"",
                    "  Debug.Print total; UBound(a)", "  Erase a", "  Debug.Print \"erased\"", "End Sub"});
    std::map<std::wstring, PROCESS_MEMORY_COUNTERS_EX> at;
    run.OnPrint([&](const std::wstring& text) { at[text] = MemoryNow(); });
    ASSERT_TRUE(run.Start());
    run.RunToEnd();
    EXPECT_EQ(run.Host().output, L"\"ready\"\r\n\"summed\"\r\n50000005000000#10000000&\r\n\"erased\"\r\n");
    EXPECT_TRUE(run.Host().errors.empty());
    ASSERT_EQ(at.count(L"\"ready\"\r\n") + at.count(L"\"summed\"\r\n") + at.count(L"\"erased\"\r\n"), 3u);
    const PROCESS_MEMORY_COUNTERS_EX& before = at[L"\"ready\"\r\n"];
    const PROCESS_MEMORY_COUNTERS_EX& summed = at[L"\"summed\"\r\n"];
    const PROCESS_MEMORY_COUNTERS_EX& erased = at[L"\"erased\"\r\n"];

    // Wine reports the commit charge as the page-file usage (it leaves the private bytes at 0) and keeps
    // no peak of it; the peak working set shows a copy that came and went.
    auto growth = [](SIZE_T from, SIZE_T to) { return static_cast<long long>(to) - static_cast<long long>(from); };
    const long long held = growth(before.PagefileUsage, summed.PagefileUsage);
    const long long peakWorkingSet = growth(before.PeakWorkingSetSize, summed.PeakWorkingSetSize);
    const long long left = growth(before.PagefileUsage, erased.PagefileUsage);
    EXPECT_GE(held, 40000000);
    EXPECT_LE(held, 42000000);
    EXPECT_LE(peakWorkingSet, 42000000) << "no second copy of the elements at any time";
    EXPECT_LE(left, 1000000) << "Erase gives the elements back";
    std::cout << "[ array    ] 10,000,000 Longs filled and summed: commit +" << held << " bytes, peak working set +"
              << peakWorkingSet << ", after Erase +" << left << "\n";
}

} // namespace
} // namespace brannoc::testing
