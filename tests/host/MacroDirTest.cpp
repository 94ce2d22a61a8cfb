// MacroDir: the folder of the running macro as the host's name mapping gives it.
#include "brannoc.h"
#include "host/CodeUnit.h"
#include "host/FakeCallBack.h"
#include <gtest/gtest.h>
#include <string>

using namespace brannoc;

namespace {

// Runs a macro that prints MacroDir (or the error number) with the host mapping names under prefix.
std::vector<std::wstring> MacroDirUnder(const std::wstring& prefix)
{
    CodeUnit* unit = static_cast<CodeUnit*>(static_cast<_CodeUnit*>(KZ_CreateCodeUnit()));
    brannoc::testing::FakeCallBack callBack;
    callBack.mapPrefix = prefix;
    callBack.macros[prefix + L"where"] = L"Sub Main\r\n"
                                         L"    On Error Resume Next\r\n"
                                         L"    Debug.Print MacroDir\r\n"
                                         L"    Debug.Print Err.Number\r\n"
                                         L"End Sub\r\n";
    callBack.macros[L"where"] = callBack.macros[prefix + L"where"];
    unit->SetCallBack(&callBack);
    BSTR name = SysAllocString(L"where");
    VARIANT_BOOL done = VARIANT_FALSE;
    unit->Start(name, &done);
    SysFreeString(name);
    unit->Run(0, &done);
    unit->HaltAll(&done);
    unit->SetCallBack(nullptr);
    unit->Release();
    return callBack.printed;
}

} // namespace

TEST(MacroDir, IsTheFolderOfTheMappedNameWithoutItsBackslashExceptAtARoot)
{
    EXPECT_EQ((std::vector<std::wstring>{L"\"C:\\macros\\daily\"\r\n", L"0&\r\n"}), MacroDirUnder(L"C:\\macros\\daily\\"));
    EXPECT_EQ((std::vector<std::wstring>{L"\"D:\\\"\r\n", L"0&\r\n"}), MacroDirUnder(L"D:\\"));
    // A host that maps no names gives no folder.
    EXPECT_EQ((std::vector<std::wstring>{L"10100&\r\n"}), MacroDirUnder(L""));
}
