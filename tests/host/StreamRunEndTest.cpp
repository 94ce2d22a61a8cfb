// File streams a macro leaves open are closed when its run ends: at its normal end, when the host ends
// a run stopped by an error, and when the host halts a running macro. The macro opens its files with
// "Lock Read Write", so another opener is refused for as long as any of them stays open.
#include "brannoc.h"
#include "host/CodeUnit.h"
#include "host/EngineTest.h"
#include <gtest/gtest.h>
#include <string>

using namespace brannoc;

namespace {

class StreamRunEndTest : public brannoc::testing::EngineTest {
protected:
    void SetUp() override
    {
        EngineTest::SetUp();
        wchar_t folder[MAX_PATH];
        GetTempPathW(MAX_PATH, folder);
        path = std::wstring(folder) + L"bb_stream_run_end.txt";
    }
    void TearDown() override
    {
        EngineTest::TearDown();
        DeleteFileW(path.c_str());
        DeleteFileW((path + L"2").c_str());
    }
    // A macro that opens the file as stream 1 and a second one as stream 300 (denying others), then
    // runs `rest`.
    void Define(const std::wstring& rest)
    {
        callBack.macros[L"streams"] = L"Sub Main\r\n"
                                      L"    Open \"" + path + L"\" For Binary Lock Read Write As #1\r\n"
                                      L"    Open \"" + path + L"2\" For Binary Lock Write As #300\r\n" + rest +
                                      L"End Sub\r\n";
    }
    void Start() { ASSERT_TRUE(EngineTest::Start(L"streams")); }
    void Run() { EngineTest::Run(0); }
    // Whether another opener may have both files to itself.
    bool FileIsFree() const { return IsFree(path) && IsFree(path + L"2"); }
    static bool IsFree(const std::wstring& name)
    {
        HANDLE file = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE)
            return false;
        CloseHandle(file);
        return true;
    }

    std::wstring path;
};

} // namespace

TEST_F(StreamRunEndTest, TheNormalEndClosesEveryStream)
{
    Define(L"    Debug.Print FreeFile\r\n");
    Start();
    Run();
    ASSERT_EQ((std::vector<std::wstring>{L"256%\r\n"}), callBack.printed);
    EXPECT_TRUE(FileIsFree());
    // The numbers are free again for the next run.
    Define(L"    Debug.Print FreeFile\r\n    Close\r\n");
    Start();
    Run();
    EXPECT_EQ(L"256%\r\n", callBack.printed.back());
    EXPECT_EQ(0u, callBack.errorNumbers.size());
}

TEST_F(StreamRunEndTest, EndingARunStoppedByAnErrorClosesEveryStream)
{
    Define(L"    Error 5\r\n");
    Start();
    Run();
    ASSERT_EQ((std::vector<long>{5}), callBack.errorNumbers);
    EXPECT_FALSE(FileIsFree()) << "the stopped run still holds its streams";
    VARIANT_BOOL ended = VARIANT_FALSE;
    ASSERT_EQ(S_OK, unit->HaltAll(&ended));
    EXPECT_TRUE(FileIsFree());
}

TEST_F(StreamRunEndTest, HaltingARunningMacroClosesEveryStream)
{
    Define(L"    Dim v As Integer\r\n    Do\r\n        v = v + 1\r\n        Put #300, 1, v\r\n    Loop\r\n");
    Start();
    VARIANT_BOOL active = VARIANT_FALSE;
    for (int i = 0; i < 8; ++i)
        ASSERT_EQ(S_OK, unit->Step(&active));
    EXPECT_FALSE(FileIsFree());
    ASSERT_EQ(S_OK, unit->HaltAll(&active));
    EXPECT_TRUE(FileIsFree());
}
