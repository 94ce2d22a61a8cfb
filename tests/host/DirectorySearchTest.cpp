// Dir keeps its open search per engine: two engines on one thread list their own patterns, and a Dir
// without a pattern goes on with the search of its own engine whatever the other started meanwhile.
#include "brannoc.h"
#include "host/CodeUnit.h"
#include "host/EngineTest.h"
#include <gtest/gtest.h>
#include <string>
#include <vector>
#include <algorithm>

using namespace brannoc;

namespace {

class DirectorySearchTest : public brannoc::testing::EngineTest {
protected:
    void SetUp() override
    {
        EngineTest::SetUp();
        ASSERT_NE(nullptr, other);
        other->SetCallBack(&otherCallBack);
        wchar_t temp[MAX_PATH];
        GetTempPathW(MAX_PATH, temp);
        folder = std::wstring(temp) + L"bb_directory_search";
        CreateDirectoryW(folder.c_str(), nullptr);
        for (const wchar_t* name : {L"\\a1.txt", L"\\a2.txt", L"\\b1.dat", L"\\b2.dat"}) {
            HANDLE file = CreateFileW((folder + name).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
            CloseHandle(file);
        }
    }
    void TearDown() override
    {
        VARIANT_BOOL ignored;
        other->HaltAll(&ignored);
        other->SetCallBack(nullptr);
        other->Release();
        EngineTest::TearDown();
        for (const wchar_t* name : {L"\\a1.txt", L"\\a2.txt", L"\\b1.dat", L"\\b2.dat"})
            DeleteFileW((folder + name).c_str());
        RemoveDirectoryW(folder.c_str());
    }
    // Runs a macro that prints the expression on the engine with that callback.
    static void RunPrinting(CodeUnit* engine, brannoc::testing::FakeCallBack& host, const std::wstring& expression)
    {
        host.macros[L"listing"] = L"Sub Main\r\n    Debug.Print " + expression + L"\r\nEnd Sub\r\n";
        BSTR name = SysAllocString(L"listing");
        VARIANT_BOOL started = VARIANT_FALSE;
        ASSERT_EQ(S_OK, engine->Start(name, &started));
        SysFreeString(name);
        ASSERT_EQ(VARIANT_TRUE, started);
        VARIANT_BOOL active = VARIANT_FALSE;
        ASSERT_EQ(S_OK, engine->Run(0, &active));
    }

    CodeUnit* other = static_cast<CodeUnit*>(static_cast<_CodeUnit*>(KZ_CreateCodeUnit()));
    brannoc::testing::FakeCallBack otherCallBack;
    std::wstring folder;
};

} // namespace

TEST_F(DirectorySearchTest, EachEngineGoesOnWithItsOwnSearch)
{
    RunPrinting(unit, callBack, L"Dir(\"" + folder + L"\\*.txt\")");
    RunPrinting(other, otherCallBack, L"Dir(\"" + folder + L"\\*.dat\")");
    RunPrinting(unit, callBack, L"Dir");
    RunPrinting(other, otherCallBack, L"Dir");
    RunPrinting(unit, callBack, L"\"[\" & Dir & \"]\"");
    // The system lists a folder's entries in an order of its own: compare the names as sets.
    ASSERT_EQ(3u, callBack.printed.size());
    ASSERT_EQ(2u, otherCallBack.printed.size());
    std::vector<std::wstring> first{callBack.printed[0], callBack.printed[1]};
    std::sort(first.begin(), first.end());
    EXPECT_EQ((std::vector<std::wstring>{L"\"a1.txt\"\r\n", L"\"a2.txt\"\r\n"}), first);
    EXPECT_EQ(L"\"[]\"\r\n", callBack.printed[2]);
    std::vector<std::wstring> second{otherCallBack.printed[0], otherCallBack.printed[1]};
    std::sort(second.begin(), second.end());
    EXPECT_EQ((std::vector<std::wstring>{L"\"b1.dat\"\r\n", L"\"b2.dat\"\r\n"}), second);
    EXPECT_TRUE(callBack.errorNumbers.empty());
    EXPECT_TRUE(otherCallBack.errorNumbers.empty());
}
