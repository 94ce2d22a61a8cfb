// DDE conversations of macros with a server run by this test on its own thread: the service "BbTest"
// with the topic "Topic" answers requests for "Greeting", records executes and pokes, refuses other
// items, and takes its time over the execute "slow".
#include "code/ProgramRunner.h"
#include <gtest/gtest.h>
#include <windows.h>
#include <ddeml.h>
#include <atomic>
#include <string>

using brannoc::testing::JoinLines;
using brannoc::testing::RunProgram;

namespace {

class DdeServer final {
public:
    DdeServer()
    {
        m_ready = CreateEventW(nullptr, TRUE, FALSE, nullptr);
        m_thread = CreateThread(nullptr, 0, &DdeServer::Main, this, 0, &m_threadId);
        WaitForSingleObject(m_ready, 10000);
    }
    ~DdeServer()
    {
        PostThreadMessageW(m_threadId, WM_QUIT, 0, 0);
        WaitForSingleObject(m_thread, 10000);
        CloseHandle(m_thread);
        CloseHandle(m_ready);
    }
    bool Running() const { return m_running; }
    static std::string LastExecute() { return s_execute; }
    static std::string LastPoke() { return s_poke; }

private:
    static DWORD WINAPI Main(void* parameter)
    {
        auto* self = static_cast<DdeServer*>(parameter);
        DWORD instance = 0;
        if (DdeInitializeA(&instance, &Callback, APPCLASS_STANDARD, 0) == DMLERR_NO_ERROR) {
            s_instance = instance;
            s_service = DdeCreateStringHandleA(instance, "BbTest", CP_WINANSI);
            s_topic = DdeCreateStringHandleA(instance, "Topic", CP_WINANSI);
            self->m_running = DdeNameService(instance, s_service, nullptr, DNS_REGISTER) != nullptr;
        }
        MSG message;
        PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
        SetEvent(self->m_ready);
        while (GetMessageW(&message, nullptr, 0, 0) > 0)
            DispatchMessageW(&message);
        if (instance) {
            DdeNameService(instance, s_service, nullptr, DNS_UNREGISTER);
            DdeFreeStringHandle(instance, s_service);
            DdeFreeStringHandle(instance, s_topic);
            DdeUninitialize(instance);
        }
        return 0;
    }
    static std::string Text(HSZ handle)
    {
        char text[256] = "";
        DdeQueryStringA(s_instance, handle, text, sizeof text, CP_WINANSI);
        return text;
    }
    static std::string Data(HDDEDATA data)
    {
        char text[256] = "";
        DdeGetData(data, reinterpret_cast<BYTE*>(text), sizeof text - 1, 0);
        return text;
    }
    static HDDEDATA CALLBACK Callback(UINT type, UINT format, HCONV, HSZ topic, HSZ item, HDDEDATA data, ULONG_PTR,
                                      ULONG_PTR)
    {
        switch (type) {
        case XTYP_CONNECT: return reinterpret_cast<HDDEDATA>(static_cast<INT_PTR>(DdeCmpStringHandles(topic, s_topic) == 0));
        case XTYP_REQUEST:
            if (format == CF_TEXT && Text(item) == "Greeting")
                return DdeCreateDataHandle(s_instance, reinterpret_cast<BYTE*>(const_cast<char*>("hello there")), 12,
                                           0, item, CF_TEXT, 0);
            return nullptr;
        case XTYP_EXECUTE:
            s_execute = Data(data);
            if (s_execute == "slow")
                Sleep(1500);
            return reinterpret_cast<HDDEDATA>(DDE_FACK);
        case XTYP_POKE:
            s_poke = Text(item) + "=" + Data(data);
            return reinterpret_cast<HDDEDATA>(DDE_FACK);
        default: return nullptr;
        }
    }

    HANDLE m_ready = nullptr;
    HANDLE m_thread = nullptr;
    DWORD m_threadId = 0;
    std::atomic<bool> m_running{false};
    static inline DWORD s_instance = 0;
    static inline HSZ s_service = nullptr;
    static inline HSZ s_topic = nullptr;
    static inline std::string s_execute;
    static inline std::string s_poke;
};

std::wstring RunMacro(std::initializer_list<std::string> lines)
{
    std::vector<std::string> all{"Sub Main"};
    all.insert(all.end(), lines.begin(), lines.end());
    all.push_back("End Sub");
    auto result = RunProgram(JoinLines(all));
    std::wstring output = result.output;
    for (const auto& error : result.runErrors)
        output += L"error " + std::to_wstring(error.number) + L"\r\n";
    return output;
}

} // namespace

TEST(Dde, RequestExecutePokeAndTerminate)
{
    DdeServer server;
    ASSERT_TRUE(server.Running());
    EXPECT_EQ(L"1%\r\n\"hello there\"\r\n", RunMacro({"Dim c As Integer", "c = DDEInitiate(\"BbTest\", \"Topic\")",
                                                "Debug.Print c", "Debug.Print DDERequest(c, \"Greeting\")",
                                                "DDEExecute c, \"[Open(\"\"x\"\")]\"", "DDEPoke c, \"Cell\", \"42\"",
                                                "DDETerminate c"}));
    EXPECT_EQ("[Open(\"x\")]", DdeServer::LastExecute());
    EXPECT_EQ("Cell=42", DdeServer::LastPoke());
    // A terminated channel is no longer valid; numbers outside 1 to 10 never are.
    EXPECT_EQ(L"10132&\r\n10132&\r\n10132&\r\n",
              RunMacro({"On Error Resume Next", "c = DDEInitiate(\"BbTest\", \"Topic\")", "DDETerminate c",
                   "DDEExecute c, \"x\"", "Debug.Print Err.Number", "Err.Clear", "DDEExecute 0, \"x\"",
                   "Debug.Print Err.Number", "Err.Clear", "x = DDERequest(11, \"Greeting\")", "Debug.Print Err.Number"}));
}

TEST(Dde, TenConversationsAtMostAndDDETerminateAllEndsThem)
{
    DdeServer server;
    ASSERT_TRUE(server.Running());
    EXPECT_EQ(L"10%\r\n10131&\r\n1%\r\n",
              RunMacro({"On Error Resume Next", "Dim i As Integer, c As Integer", "For i = 1 To 10",
                   "c = DDEInitiate(\"BbTest\", \"Topic\")", "Next", "Debug.Print c",
                   "c = DDEInitiate(\"BbTest\", \"Topic\")", "Debug.Print Err.Number", "DDETerminateAll",
                   "Err.Clear", "c = DDEInitiate(\"BbTest\", \"Topic\")", "Debug.Print c", "DDETerminateAll"}));
}

TEST(Dde, TimeOutsRefusalsAndMissingServersAreErrors)
{
    DdeServer server;
    ASSERT_TRUE(server.Running());
    // Each failing case on a fresh conversation: a timed-out one is left unusable by the library.
    EXPECT_EQ(L"10133&\r\n10135&\r\n10135&\r\n",
              RunMacro({"On Error Resume Next", "c = DDEInitiate(\"BbTest\", \"Topic\")", "DDEExecute c, \"slow\", 0.3",
                   "Debug.Print Err.Number", "Err.Clear", "DDETerminate c", "c = DDEInitiate(\"BbTest\", \"Topic\")",
                   "x = DDERequest(c, \"Unknown\")", "Debug.Print Err.Number", "Err.Clear", "DDETerminate c",
                   "c = DDEInitiate(\"BbNoSuchServer\", \"Topic\")", "Debug.Print Err.Number", "DDETerminateAll"}));
}
