// How Shell creates its process: the call is replaced in this program's import table by one that
// records its arguments and the error mode in force, and then creates the process as asked.
#include "code/ProgramRunner.h"
#include <gtest/gtest.h>
#include <windows.h>

using brannoc::testing::JoinLines;
using brannoc::testing::RunProgram;

// The import table's entry for CreateProcessW, through which the engine's code calls it.
extern "C" void* g_createProcessEntry __asm__("__imp__CreateProcessW@40");

namespace {

struct Recorded {
    bool called = false;
    BOOL inheritHandles = FALSE;
    DWORD flags = 0;
    WORD show = 0;
    UINT errorMode = 0;
};

Recorded s_recorded;
void* s_original = nullptr;

BOOL WINAPI RecordingCreateProcess(LPCWSTR application, LPWSTR command, LPSECURITY_ATTRIBUTES process,
                                   LPSECURITY_ATTRIBUTES thread, BOOL inheritHandles, DWORD flags, LPVOID environment,
                                   LPCWSTR folder, LPSTARTUPINFOW startup, LPPROCESS_INFORMATION information)
{
    s_recorded.called = true;
    s_recorded.inheritHandles = inheritHandles;
    s_recorded.flags = flags;
    s_recorded.show = startup ? startup->wShowWindow : 0;
    s_recorded.errorMode = GetErrorMode();
    using CreateFn = BOOL(WINAPI*)(LPCWSTR, LPWSTR, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL, DWORD, LPVOID,
                                   LPCWSTR, LPSTARTUPINFOW, LPPROCESS_INFORMATION);
    return reinterpret_cast<CreateFn>(s_original)(application, command, process, thread, inheritHandles, flags,
                                                  environment, folder, startup, information);
}

// Puts replacement into the import entry for the lifetime of the object.
class ImportReplacement {
public:
    explicit ImportReplacement(void* replacement)
    {
        s_original = g_createProcessEntry;
        Write(replacement);
    }
    ~ImportReplacement() { Write(s_original); }

private:
    static void Write(void* target)
    {
        DWORD previous = 0;
        VirtualProtect(&g_createProcessEntry, sizeof(void*), PAGE_READWRITE, &previous);
        g_createProcessEntry = target;
        VirtualProtect(&g_createProcessEntry, sizeof(void*), previous, &previous);
    }
};

} // namespace

TEST(ShellCreationTest, TheProcessGetsTheDefaultErrorModeInheritableHandlesAndTheWindowStyle)
{
    s_recorded = Recorded{};
    const UINT modeBefore = GetErrorMode();
    {
        ImportReplacement replacement(reinterpret_cast<void*>(&RecordingCreateProcess));
        auto result = RunProgram(JoinLines({"Sub Main", "Debug.Print Shell(\"cmd.exe /c exit\", 0) > 0", "End Sub"}));
        ASSERT_TRUE(result.finished);
        EXPECT_EQ(L"True\r\n", result.output);
    }
    ASSERT_TRUE(s_recorded.called);
    EXPECT_TRUE(s_recorded.inheritHandles);
    EXPECT_EQ(static_cast<DWORD>(CREATE_DEFAULT_ERROR_MODE | NORMAL_PRIORITY_CLASS), s_recorded.flags);
    EXPECT_EQ(0, s_recorded.show);
    // No message box for a missing file while the process is being created; the mode is restored after.
    EXPECT_EQ(static_cast<UINT>(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX),
              s_recorded.errorMode & (SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX));
    EXPECT_EQ(modeBefore, GetErrorMode());
}
