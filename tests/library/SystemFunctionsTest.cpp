// Settings as other programs see them in the registry, and the text clipboard shared with another
// process and refused while another thread holds it.
#include "code/ProgramRunner.h"
#include <gtest/gtest.h>
#include <windows.h>
#include <cstdlib>
#include <fstream>
#include <string>

using brannoc::testing::JoinLines;
using brannoc::testing::RunProgram;

namespace {

std::wstring RegistryText(const wchar_t* key, const wchar_t* name)
{
    HKEY handle = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, key, 0, KEY_READ, &handle) != ERROR_SUCCESS)
        return L"<no key>";
    wchar_t text[256] = L"";
    DWORD size = sizeof text - sizeof(wchar_t);
    DWORD type = 0;
    const LONG status = RegQueryValueExW(handle, name, nullptr, &type, reinterpret_cast<BYTE*>(text), &size);
    RegCloseKey(handle);
    if (status != ERROR_SUCCESS)
        return L"<no value>";
    return type == REG_SZ ? std::wstring(text) : L"<not text>";
}

// Runs a macro text through the command-line host in its own process; its output.
std::string RunInOtherProcess(const std::string& text)
{
    const char* bin = std::getenv("BRANNOC_BIN");
    char folder[MAX_PATH];
    GetTempPathA(MAX_PATH, folder);
    const std::string script = std::string(folder) + "bb_clipboard_reader.bas";
    const std::string output = std::string(folder) + "bb_clipboard_reader.out";
    std::ofstream(script, std::ios::binary) << text;
    std::string command = "\"" + std::string(bin ? bin : ".") + "\\bbrun.exe\" \"" + script + "\"";
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    HANDLE out = CreateFileA(output.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherit, CREATE_ALWAYS, 0, nullptr);
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = out;
    startup.hStdError = out;
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process)) {
        CloseHandle(out);
        return "<not started>";
    }
    WaitForSingleObject(process.hProcess, 60000);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    CloseHandle(out);
    std::ifstream in(output, std::ios::binary);
    std::string result((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    DeleteFileA(script.c_str());
    DeleteFileA(output.c_str());
    return result;
}

struct ClipboardEvents {
    HANDLE opened;
    HANDLE release;
    bool held = false;
};

// Holds the clipboard open from its own thread until told to let go.
DWORD WINAPI HoldClipboard(void* parameter)
{
    auto* events = static_cast<ClipboardEvents*>(parameter);
    HWND owner = CreateWindowW(L"STATIC", L"clipboard holder", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    const BOOL open = OpenClipboard(owner);
    events->held = open != FALSE;
    SetEvent(events->opened);
    WaitForSingleObject(events->release, 30000);
    if (open)
        CloseClipboard();
    DestroyWindow(owner);
    return 0;
}

} // namespace

TEST(Settings, LiveUnderTheApplicationsKeyOfTheCurrentUser)
{
    const wchar_t* key = L"Software\\VB and VBA Program Settings\\BrannocUnitTest\\Sect";
    auto saved = RunProgram(JoinLines({"Sub Main", "SaveSetting \"BrannocUnitTest\", \"Sect\", \"Key\", \"v 1\"",
                                       "Debug.Print GetSetting(\"BrannocUnitTest\", \"Sect\", \"Key\")", "End Sub"}));
    ASSERT_TRUE(saved.finished);
    EXPECT_EQ(L"\"v 1\"\r\n", saved.output);
    EXPECT_EQ(L"v 1", RegistryText(key, L"Key"));
    // A value another program stored is read back; deleting the section removes the key.
    HKEY handle = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_CURRENT_USER, key, 0, KEY_WRITE, &handle));
    const wchar_t other[] = L"from outside";
    RegSetValueExW(handle, L"Other", 0, REG_SZ, reinterpret_cast<const BYTE*>(other), sizeof other);
    RegCloseKey(handle);
    auto read = RunProgram(JoinLines({"Sub Main", "Debug.Print GetSetting(\"BrannocUnitTest\", \"Sect\", \"Other\")",
                                      "DeleteSetting \"BrannocUnitTest\", \"Sect\"", "End Sub"}));
    EXPECT_EQ(L"\"from outside\"\r\n", read.output);
    EXPECT_EQ(L"<no key>", RegistryText(key, L"Key"));
    RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\VB and VBA Program Settings\\BrannocUnitTest");
}

TEST(ClipboardText, ReachesAnotherProcess)
{
    auto set = RunProgram(JoinLines({"Sub Main", "Clipboard \"shared \" & 42", "End Sub"}));
    ASSERT_TRUE(set.finished);
    EXPECT_EQ("\"shared 42\"\n", RunInOtherProcess("Sub Main\r\n    Debug.Print Clipboard\r\nEnd Sub\r\n"));
    RunInOtherProcess("Sub Main\r\n    Clipboard \"back\"\r\nEnd Sub\r\n");
    auto get = RunProgram(JoinLines({"Sub Main", "Debug.Print Clipboard()", "End Sub"}));
    EXPECT_EQ(L"\"back\"\r\n", get.output);
}

TEST(ClipboardText, IsRefusedWhileAnotherThreadHoldsIt)
{
    HANDLE opened = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HANDLE release = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    ClipboardEvents events{opened, release};
    HANDLE holder = CreateThread(
        nullptr, 0,
        &HoldClipboard, &events, 0, nullptr);
    ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(opened, 30000));
    EXPECT_TRUE(events.held);
    auto held = RunProgram(JoinLines({"Sub Main", "On Error Resume Next", "Clipboard \"x\"", "Debug.Print Err.Number",
                                      "Err.Clear", "Debug.Print Clipboard", "Debug.Print Err.Number", "End Sub"}));
    SetEvent(release);
    WaitForSingleObject(holder, 30000);
    CloseHandle(holder);
    CloseHandle(opened);
    CloseHandle(release);
    EXPECT_EQ(L"10140&\r\n10140&\r\n", held.output);
    auto free = RunProgram(JoinLines({"Sub Main", "Clipboard \"free\"", "Debug.Print Clipboard", "End Sub"}));
    EXPECT_EQ(L"\"free\"\r\n", free.output);
}
