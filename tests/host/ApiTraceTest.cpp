// The API trace as a host reads it: switched on by Run with a trace depth, entry and result lines of the
// engine's operations, the error record's detail lines after an error, and names of a named project.
// Also: control requests made while the engine reads a macro answer Busy and do nothing.
#include "brannoc.h"
#include "host/CodeUnit.h"
#include "support/MessageBoxCapture.h"
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

using namespace brannoc;

namespace {

using TraceLine = std::pair<TraceKind, std::wstring>;

bool Contains(const std::vector<TraceLine>& lines, TraceKind kind, const std::wstring& text)
{
    for (const TraceLine& line : lines) {
        if (line.first == kind && line.second == text)
            return true;
    }
    return false;
}

} // namespace

TEST(ApiTrace, TraceDepthsSwitchItOnAndAnErrorAddsItsDetailLines)
{
    CodeUnit* unit = static_cast<CodeUnit*>(static_cast<_CodeUnit*>(KZ_CreateCodeUnit()));
    ASSERT_NE(nullptr, unit);
    std::vector<TraceLine> lines;
    unit->Context().SetTraceSink([&](TraceKind kind, const std::wstring& text) { lines.emplace_back(kind, text); });
    brannoc::test::MessageBoxCapture capture;
    unit->Context().Modules().GiveText("quiet", "Sub Main\r\nEnd Sub\r\n");
    BSTR quiet = SysAllocString(L"quiet");
    VARIANT_BOOL result = VARIANT_TRUE;
    unit->Load(quiet, &result);
    SysFreeString(quiet);
    EXPECT_TRUE(lines.empty()) << "the trace is off until a trace depth switches it on";

    EXPECT_EQ(S_OK, unit->Run(static_cast<short>(0x8040), &result));
    EXPECT_EQ(VARIANT_FALSE, result) << "a trace depth runs nothing and answers false";
    ASSERT_TRUE(unit->Context().ApiTraceOn());

    VARIANT_BOOL created = VARIANT_FALSE;
    BSTR project = SysAllocString(L"Books");
    unit->ProjectCreate(project, &created);
    SysFreeString(project);
    ASSERT_EQ(VARIANT_TRUE, created);
    unit->Context().Modules().GiveText("<Books>bad", "Sub Main\r\n    x = (1 +\r\nEnd Sub\r\n");
    BSTR bad = SysAllocString(L"<Books>bad");
    EXPECT_EQ(S_OK, unit->Start(bad, &result));
    SysFreeString(bad);
    EXPECT_EQ(VARIANT_FALSE, result);
    EXPECT_TRUE(Contains(lines, TraceKind::Entry, L"*Start(\"Books>bad\")"));
    EXPECT_TRUE(Contains(lines, TraceKind::Detail, L"ErrorDesc=Expecting a factor."));
    EXPECT_TRUE(Contains(lines, TraceKind::Detail, L"ErrorMacroName=<Books>bad"));
    EXPECT_TRUE(Contains(lines, TraceKind::Detail, L"ErrorLine=    x = (1 +"));
    EXPECT_TRUE(Contains(lines, TraceKind::Detail, L"ErrorLineNum=2"));
    EXPECT_TRUE(Contains(lines, TraceKind::Detail, L"ErrorOffset=12"));
    EXPECT_TRUE(Contains(lines, TraceKind::Detail, L"ErrorDesc=Macro/module has syntax errors."));
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(TraceLine(TraceKind::Result, L"Result=False"), lines[lines.size() - 2]);
    EXPECT_EQ(TraceLine(TraceKind::Exit, L""), lines.back());

    // Switched off again by the same kind of depth.
    unit->Run(static_cast<short>(0x8000), &result);
    EXPECT_FALSE(unit->Context().ApiTraceOn());
    unit->Release();
}

namespace {

struct ReadingHost {
    void* unit = nullptr;
    BOOL haltAnswer = -1;
    BOOL runAnswer = -1;
    BOOL idleWhileReading = -1;
};

BSTR __stdcall ReadAndRequest(IDispatch*, LPCSTR, void* userData)
{
    auto* host = static_cast<ReadingHost*>(userData);
    host->haltAnswer = CU_HaltAll(host->unit);
    host->runAnswer = CU_Run(host->unit, 0);
    host->idleWhileReading = CU_IsIdle(host->unit);
    const std::string text = "Sub Main\r\n    Debug.Print 1\r\nEnd Sub\r\n";
    return OA_SysAllocStringLenA(text.data(), static_cast<UINT>(text.size()));
}

void __stdcall IgnorePrint(IDispatch*, LPCSTR, void*) {}

} // namespace

TEST(ApiTrace, ControlRequestsFromInsideReadMacroAnswerBusyAndDoNothing)
{
    ReadingHost host;
    host.unit = CU_CreateCodeUnit();
    ASSERT_NE(nullptr, host.unit);
    CB_FUNCTIONS functions{};
    functions.ReadMacro = ReadAndRequest;
    functions.DebugPrint = IgnorePrint;
    IDispatch* callBack = CB_CreateCallBack(nullptr, &functions, &host);
    CU_SetCallBack(host.unit, callBack);
    EXPECT_EQ(-1, CU_Start(host.unit, "macro"));
    EXPECT_EQ(0, host.haltAnswer) << "Busy, not Idle";
    EXPECT_EQ(0, host.runAnswer);
    EXPECT_EQ(0, host.idleWhileReading);
    EXPECT_EQ(-1, CU_IsActive(host.unit)) << "the start went on as if nothing had been asked";
    EXPECT_EQ(0, CU_Run(host.unit, 0));
    EXPECT_EQ(-1, CU_IsIdle(host.unit));
    CU_SetCallBack(host.unit, nullptr);
    OA_Release(reinterpret_cast<IUnknown*>(callBack));
    OA_Release(static_cast<IUnknown*>(host.unit));
}

TEST(ApiTrace, AHandlerTracesItsCreationEachCallWithItsArgumentsAndItsEnd)
{
    CodeUnit* unit = static_cast<CodeUnit*>(static_cast<_CodeUnit*>(KZ_CreateCodeUnit()));
    ASSERT_NE(nullptr, unit);
    std::vector<TraceLine> lines;
    unit->Context().SetTraceSink([&](TraceKind kind, const std::wstring& text) { lines.emplace_back(kind, text); });
    brannoc::test::MessageBoxCapture capture;
    VARIANT_BOOL result = VARIANT_TRUE;
    unit->Run(static_cast<short>(0x8040), &result);
    unit->Context().Modules().GiveText(
        "lib", "Sub Main\r\nEnd Sub\r\nFunction Total(a As Long, Optional b As Long = 100) As Long\r\n"
               "    Total = a + b\r\nEnd Function\r\n");
    BSTR lib = SysAllocString(L"lib");
    unit->Load(lib, &result);
    SysFreeString(lib);
    EXPECT_TRUE(Contains(lines, TraceKind::Entry, L"*LoadModule(\"lib\")"));

    BSTR prototype = SysAllocString(L"Function Total(a As Long, Optional b As Long) As Long");
    IDispatch* handler = nullptr;
    EXPECT_EQ(S_OK, unit->CreateHandler(prototype, &handler));
    SysFreeString(prototype);
    ASSERT_NE(nullptr, handler);
    EXPECT_TRUE(Contains(lines, TraceKind::Entry, L"*CreateHandler(\"Function Total(a As Long, Optional b As Long) As Long\")"));

    lines.clear();
    VARIANT argument;
    VariantInit(&argument);
    argument.vt = VT_I4;
    argument.lVal = 5;
    DISPPARAMS parameters{&argument, nullptr, 1, 0};
    VARIANT value;
    VariantInit(&value);
    EXPECT_EQ(S_OK, handler->Invoke(2, IID_NULL, 0, DISPATCH_METHOD, &parameters, &value, nullptr, nullptr));
    EXPECT_EQ(105, value.lVal);
    ASSERT_GE(lines.size(), 5u);
    EXPECT_EQ(TraceLine(TraceKind::Entry, L"*Invoke(\"lib|Total\")"), lines[0]);
    EXPECT_EQ(TraceKind::Detail, lines[1].first);
    EXPECT_EQ(L"Me=0x", lines[1].second.substr(0, 5));
    EXPECT_EQ(TraceLine(TraceKind::Detail, L"a=5&"), lines[2]);
    EXPECT_EQ(TraceLine(TraceKind::Result, L"Result=105&"), lines[lines.size() - 2]);
    EXPECT_EQ(TraceLine(TraceKind::Exit, L""), lines.back());

    lines.clear();
    handler->Release();
    EXPECT_TRUE(Contains(lines, TraceKind::Entry, L"*DestroyHandler(\"|Total\")"));
    unit->Release();
}
