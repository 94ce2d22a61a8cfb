// Run-time errors as the host sees them: the engine object's error record after an untrapped error,
// the notifications, trapped errors that are never reported, and the default error message box.
#include "brannoc.h"
#include "host/CodeUnit.h"
#include "host/EngineTest.h"
#include "host/HostTestText.h"
#include "support/MessageBoxCapture.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <map>
#include <string>
#include <vector>

using namespace brannoc;
using namespace brannoc::testing_text;

namespace {

class ErrorReportTest : public brannoc::testing::EngineTest {
protected:
    // Starts the macro and runs it to its end or its stop.
    void StartAndRun(const wchar_t* name)
    {
        ASSERT_TRUE(Start(name));
        Run(0);
    }
    short LineNumber()
    {
        short line = 0;
        EXPECT_EQ(S_OK, unit->get_ErrorLineNum(&line));
        return line;
    }
    short Offset()
    {
        short offset = 0;
        EXPECT_EQ(S_OK, unit->get_ErrorOffset(&offset));
        return offset;
    }
    long HelpContext()
    {
        long context = 0;
        EXPECT_EQ(S_OK, unit->get_ErrorHelpContext(&context));
        return context;
    }
};

} // namespace

TEST_F(ErrorReportTest, AnUntrappedErrorFillsEveryFieldOfTheRecord)
{
    callBack.macros[L"calc"] = L"Sub Main\r\n"
                               L"    Dim a As Integer\r\n"
                               L"    a = 2\r\n"
                               L"    Err.Raise 1234, \"Src\", \"Own message.\", \"own.hlp\", 77\r\n"
                               L"    a = 3\r\n"
                               L"End Sub\r\n";
    StartAndRun(L"calc");
    EXPECT_EQ((std::vector<long>{1234}), callBack.errorNumbers);
    EXPECT_EQ(1234, ErrorNumber());
    EXPECT_EQ(L"Own message.", Text(&CodeUnit::get_ErrorDesc));
    EXPECT_EQ(L"Src", Text(&CodeUnit::get_ErrorSource));
    EXPECT_EQ(L"own.hlp", Text(&CodeUnit::get_ErrorHelpFile));
    EXPECT_EQ(77, HelpContext());
    EXPECT_EQ(L"calc", Text(&CodeUnit::get_ErrorMacroName));
    EXPECT_EQ(L"    Err.Raise 1234, \"Src\", \"Own message.\", \"own.hlp\", 77", Text(&CodeUnit::get_ErrorLine));
    EXPECT_EQ(4, LineNumber());
    EXPECT_EQ(-1, Offset()) << "run-time errors have no column";
    // The error report (19) comes before the error notification (0), each once.
    const std::vector<short>& seen = callBack.notifications;
    auto report = std::find(seen.begin(), seen.end(), 19);
    auto error = std::find(seen.begin(), seen.end(), 0);
    ASSERT_NE(seen.end(), report);
    ASSERT_NE(seen.end(), error);
    EXPECT_LT(report, error);
    EXPECT_EQ(1, std::count(seen.begin(), seen.end(), 0));
    // Then the run stops: notification 3, once, after the report.
    auto stopped = std::find(seen.begin(), seen.end(), 3);
    ASSERT_NE(seen.end(), stopped);
    EXPECT_LT(error, stopped);
    EXPECT_EQ(1, std::count(seen.begin(), seen.end(), 3));
    VARIANT_BOOL isStopped = VARIANT_FALSE;
    EXPECT_EQ(S_OK, unit->get_IsStopped(&isStopped));
    EXPECT_EQ(VARIANT_TRUE, isStopped);
}

// A macro whose first statement raises an untrapped "Division by zero." (10061).
constexpr const wchar_t* kDividesByZero = L"Sub Main\r\n"
                                          L"    Dim d As Integer\r\n"
                                          L"    Debug.Print 10 \\ d\r\n"
                                          L"End Sub\r\n";

// While an untrapped error is being reported (notifications 19 and 0), the engine answers Busy: the
// state queries are all false and a halt asked for then does nothing; the run stops after the report.
TEST_F(ErrorReportTest, RequestsWhileAnErrorIsReportedAnswerBusyAndDoNothing)
{
    callBack.macros[L"fails"] = kDividesByZero;
    std::vector<std::wstring> seen;
    callBack.onNotify = [&](IDispatch*, short code) {
        if (code != 19 && code != 0)
            return;
        VARIANT_BOOL active = VARIANT_TRUE, idle = VARIANT_TRUE, stopped = VARIANT_TRUE, halted = VARIANT_TRUE;
        unit->get_IsActive(&active);
        unit->get_IsIdle(&idle);
        unit->get_IsStopped(&stopped);
        unit->HaltAll(&halted);
        seen.push_back(std::to_wstring(code) + L": active " + std::to_wstring(active) + L", idle " +
                       std::to_wstring(idle) + L", stopped " + std::to_wstring(stopped) + L", HaltAll " +
                       std::to_wstring(halted));
    };
    StartAndRun(L"fails");
    EXPECT_EQ((std::vector<std::wstring>{L"19: active 0, idle 0, stopped 0, HaltAll 0",
                                         L"0: active 0, idle 0, stopped 0, HaltAll 0"}),
              seen);
    const std::vector<short>& notes = callBack.notifications;
    ASSERT_GE(notes.size(), 5u);
    EXPECT_EQ((std::vector<short>{9, 1, 19, 0, 3}), std::vector<short>(notes.begin(), notes.begin() + 5));
    EXPECT_EQ(0, std::count(notes.begin(), notes.end(), 2)) << "no end of the run from the halts";
    EXPECT_EQ(10061, ErrorNumber());
    VARIANT_BOOL isStopped = VARIANT_FALSE;
    EXPECT_EQ(S_OK, unit->get_IsStopped(&isStopped));
    EXPECT_EQ(VARIANT_TRUE, isStopped) << "requests act again after the report";
}

// A Continue while the error is reported leaves the report state (notification 1000); requests made
// after it act as usual.
TEST_F(ErrorReportTest, AContinueDuringTheReportEndsTheReportState)
{
    callBack.macros[L"fails"] = kDividesByZero;
    std::vector<std::wstring> seen;
    callBack.onNotify = [&](IDispatch*, short code) {
        if (code != 19)
            return;
        VARIANT_BOOL before = VARIANT_TRUE, continued = VARIANT_FALSE, after = VARIANT_FALSE;
        unit->get_IsActive(&before);
        unit->Continue(&continued);
        unit->get_IsActive(&after);
        seen.push_back(L"active " + std::to_wstring(before) + L", Continue " + std::to_wstring(continued) +
                       L", active " + std::to_wstring(after));
    };
    StartAndRun(L"fails");
    EXPECT_EQ((std::vector<std::wstring>{L"active 0, Continue -1, active -1"}), seen);
    const std::vector<short>& notes = callBack.notifications;
    ASSERT_GE(notes.size(), 6u);
    EXPECT_EQ((std::vector<short>{9, 1, 19, 1000, 0, 3}), std::vector<short>(notes.begin(), notes.begin() + 6));
}

TEST_F(ErrorReportTest, AnErrorTheHostSetsIsReportedAndStopsAnActiveRun)
{
    callBack.macros[L"quiet"] = L"Sub Main\r\n    Debug.Print 1\r\nEnd Sub\r\n";
    ASSERT_TRUE(Start(L"quiet"));
    callBack.notifications.clear();
    BSTR text = SysAllocString(L"Host says no.");
    EXPECT_EQ(S_OK, unit->put_ErrorDesc(text));
    SysFreeString(text);
    EXPECT_EQ((std::vector<short>{5, 0, 3}), callBack.notifications);
    EXPECT_EQ(L"Host says no.", Text(&CodeUnit::get_ErrorDesc));
    EXPECT_EQ(5, HelpContext());
    VARIANT_BOOL isStopped = VARIANT_FALSE;
    EXPECT_EQ(S_OK, unit->get_IsStopped(&isStopped));
    EXPECT_EQ(VARIANT_TRUE, isStopped);
}

TEST_F(ErrorReportTest, TheInnermostStatementIsReportedAndAContinuedOneAtItsFirstLine)
{
    callBack.macros[L"deep"] = L"Sub Inner(d As Integer)\r\n"
                               L"    Dim q As Integer\r\n"
                               L"    q = 1 + _\r\n"
                               L"        10 \\ d\r\n"
                               L"End Sub\r\n"
                               L"Sub Main\r\n"
                               L"    Inner 0\r\n"
                               L"End Sub\r\n";
    StartAndRun(L"deep");
    EXPECT_EQ(10061, ErrorNumber());
    EXPECT_EQ(L"Divide by zero.", Text(&CodeUnit::get_ErrorDesc));
    EXPECT_EQ(3, LineNumber());
    EXPECT_EQ(L"    q = 1 + 10 \\ d", Text(&CodeUnit::get_ErrorLine));
    EXPECT_EQ(L"", Text(&CodeUnit::get_ErrorSource));
}

TEST_F(ErrorReportTest, TrappedErrorsAreNeverReported)
{
    callBack.macros[L"quiet"] = L"Sub Main\r\n"
                                L"    On Error Resume Next\r\n"
                                L"    Err.Raise 5\r\n"
                                L"    Debug.Print Err.Number\r\n"
                                L"End Sub\r\n";
    StartAndRun(L"quiet");
    EXPECT_TRUE(callBack.errorNumbers.empty());
    EXPECT_EQ(0, std::count(callBack.notifications.begin(), callBack.notifications.end(), 19));
    EXPECT_EQ(L"5&\r\n", callBack.AllPrinted());
    EXPECT_EQ(0, ErrorNumber()) << "the record belongs to untrapped errors only";
}

// A macro text in a new temporary file, whose path is returned (empty when it could not be written).
std::wstring WriteTemporaryMacro(const std::string& text)
{
    wchar_t folder[MAX_PATH];
    wchar_t path[MAX_PATH];
    if (GetTempPathW(MAX_PATH, folder) == 0 || GetTempFileNameW(folder, L"bbe", 0, path) == 0)
        return {};
    HANDLE file = CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return {};
    DWORD written = 0;
    const bool wrote = WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) &&
                       written == text.size();
    CloseHandle(file);
    return wrote ? std::wstring(path) : std::wstring();
}

// Starts the macro file at path on an engine object without a callback and runs it; the boxes that
// appeared meanwhile and the macro name of the error record.
std::vector<brannoc::test::CapturedMessageBox> BoxesOfRun(const std::wstring& path, std::wstring& macroName)
{
    CodeUnit* unit = static_cast<CodeUnit*>(static_cast<_CodeUnit*>(KZ_CreateCodeUnit()));
    EXPECT_NE(nullptr, unit);
    if (!unit)
        return {};
    std::vector<brannoc::test::CapturedMessageBox> boxes;
    {
        brannoc::test::MessageBoxCapture capture;
        BSTR name = SysAllocString(path.c_str());
        VARIANT_BOOL result = VARIANT_FALSE;
        EXPECT_EQ(S_OK, unit->Start(name, &result));
        if (result == VARIANT_TRUE)
            EXPECT_EQ(S_OK, unit->Run(0, &result));
        SysFreeString(name);
        BSTR macro = nullptr;
        EXPECT_EQ(S_OK, unit->get_ErrorMacroName(&macro));
        macroName = TakeText(macro);
        boxes = capture.Boxes();
        VARIANT_BOOL idle = VARIANT_FALSE;
        unit->HaltAll(&idle);
    }
    unit->Release();
    return boxes;
}

TEST(DefaultErrorBox, AnUntrappedErrorShowsTheLocationAndDescription)
{
    const std::wstring path =
        WriteTemporaryMacro("Sub Main\r\n    Dim x As Integer, zero As Integer\r\n    x = 1 \\ zero\r\nEnd Sub\r\n");
    ASSERT_FALSE(path.empty());
    std::wstring macroName;
    const std::vector<brannoc::test::CapturedMessageBox> boxes = BoxesOfRun(path, macroName);
    DeleteFileW(path.c_str());
    EXPECT_FALSE(macroName.empty());
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(L"Error", boxes[0].caption);
    EXPECT_EQ(L"[" + macroName + L"#3]     x = 1 \\ zero\nDivide by zero.", boxes[0].text);
    EXPECT_EQ(static_cast<UINT>(MB_OK), boxes[0].buttons);
}

TEST(DefaultErrorBox, ACompileErrorMarksItsPlaceInTheLine)
{
    const std::wstring path = WriteTemporaryMacro("Sub Main\r\n    Debug.Print 1 +\r\nEnd Sub\r\n");
    ASSERT_FALSE(path.empty());
    std::wstring macroName;
    const std::vector<brannoc::test::CapturedMessageBox> boxes = BoxesOfRun(path, macroName);
    DeleteFileW(path.c_str());
    ASSERT_EQ(2u, boxes.size());
    EXPECT_EQ(L"Error", boxes[0].caption);
    EXPECT_EQ(L"[" + macroName + L"#2]     Debug.Print 1 +<here>\nExpecting a factor.", boxes[0].text);
    // The failed start has no place in a line: no marker.
    EXPECT_EQ(L"Error", boxes[1].caption);
    EXPECT_EQ(L"[" + macroName + L"#0] \nMacro/module has syntax errors.", boxes[1].text);
}
