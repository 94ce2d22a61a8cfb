// The default callback: the object an engine uses while the host sets none (or sets null), and its
// exported handlers: Debug.Print and errors in message boxes, macro names read as files.
#include "brannoc.h"
#include "support/MessageBoxCapture.h"
#include <gtest/gtest.h>
#include <string>

using brannoc::test::MessageBoxCapture;

namespace {

std::string AnsiText(BSTR text)
{
    std::string bytes = text ? std::string(reinterpret_cast<const char*>(text), OA_SysStringLenA(text)) : "<null>";
    OA_SysFreeStringA(text);
    return bytes;
}

// A file in the temporary folder holding bytes; removed with the object.
struct TemporaryFile {
    std::string path;
    explicit TemporaryFile(const std::string& bytes)
    {
        char folder[MAX_PATH];
        char name[MAX_PATH];
        if (GetTempPathA(MAX_PATH, folder) == 0 || GetTempFileNameA(folder, "bbd", 0, name) == 0)
            return;
        HANDLE file = CreateFileA(name, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        DWORD written = 0;
        WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
        CloseHandle(file);
        path = name;
    }
    ~TemporaryFile()
    {
        if (!path.empty())
            DeleteFileA(path.c_str());
    }
};

} // namespace

TEST(DefaultCallBack, IsTheCallBackUntilTheHostSetsOneAndAgainAfterNull)
{
    void* unit = CU_CreateCodeUnit();
    ASSERT_NE(nullptr, unit);
    IDispatch* fallback = CU_DefaultCallBack(unit);
    ASSERT_NE(nullptr, fallback);
    IDispatch* current = CU_CallBack(unit);
    EXPECT_EQ(fallback, current);
    OA_Release(reinterpret_cast<IUnknown*>(current));

    CB_FUNCTIONS none{};
    IDispatch* own = CB_CreateCallBack(nullptr, &none, nullptr);
    CU_SetCallBack(unit, own);
    current = CU_CallBack(unit);
    EXPECT_EQ(own, current);
    OA_Release(reinterpret_cast<IUnknown*>(current));
    CU_SetCallBack(unit, nullptr);
    current = CU_CallBack(unit);
    EXPECT_EQ(fallback, current) << "a null callback reinstates the default one";
    OA_Release(reinterpret_cast<IUnknown*>(current));

    OA_Release(reinterpret_cast<IUnknown*>(own));
    OA_Release(reinterpret_cast<IUnknown*>(fallback));
    OA_Release(static_cast<IUnknown*>(unit));
}

TEST(DefaultCallBack, ReadsTheMacroNameAsAFileAndShowsDebugPrintInABox)
{
    // The text ends at the end-of-file character: what follows it is never compiled.
    TemporaryFile macro("Sub Main\r\n    Debug.Print \"from the file\"\r\nEnd Sub\r\n\x1A" "garbage that is not code");
    ASSERT_FALSE(macro.path.empty());
    BSTR text = KZ_CallBackReadMacro(nullptr, macro.path.c_str(), nullptr);
    const std::string bytes = AnsiText(text);
    ASSERT_GT(bytes.size(), 1u);
    EXPECT_EQ('\x1A', bytes.back()) << "one byte longer than the file, the end-of-file character";
    EXPECT_EQ("<null>", AnsiText(KZ_CallBackReadMacro(nullptr, "", nullptr)));
    EXPECT_EQ("<null>", AnsiText(KZ_CallBackReadMacro(nullptr, "no such file.bas", nullptr)));
    EXPECT_EQ(0, KZ_CallBackWindow(nullptr));

    void* unit = CU_CreateCodeUnit();
    ASSERT_NE(nullptr, unit);
    MessageBoxCapture capture;
    IDispatch* fallback = CU_DefaultCallBack(unit);
    CU_SetCallBack(unit, fallback);   // setting the default callback itself changes nothing
    ASSERT_EQ(-1, CU_Start(unit, macro.path.c_str()));
    CU_Run(unit, 0);
    auto boxes = capture.Boxes();
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(L"Debug.Print", boxes[0].caption);
    EXPECT_EQ(L"\"from the file\"\r\n", boxes[0].text);
    EXPECT_EQ(-1, CU_IsIdle(unit));
    OA_Release(reinterpret_cast<IUnknown*>(fallback));
    OA_Release(static_cast<IUnknown*>(unit));
}

namespace {

BSTR __stdcall ServeBadMacro(IDispatch*, LPCSTR, void*)
{
    const std::string text = "Sub Main\r\n    x = (1 +\r\nEnd Sub\r\n";
    return OA_SysAllocStringLenA(text.data(), static_cast<UINT>(text.size()));
}

} // namespace

TEST(DefaultCallBack, TheExportedNotifyHandlerShowsErrorsWithTheirPlace)
{
    void* unit = CU_CreateCodeUnit();
    ASSERT_NE(nullptr, unit);
    CB_FUNCTIONS functions{};
    functions.Notify = KZ_CallBackNotify;
    functions.ReadMacro = ServeBadMacro;
    IDispatch* callBack = CB_CreateCallBack(nullptr, &functions, nullptr);
    CU_SetCallBack(unit, callBack);
    MessageBoxCapture capture;
    EXPECT_EQ(0, CU_Start(unit, "bad"));
    auto boxes = capture.Boxes();
    ASSERT_EQ(2u, boxes.size()) << "the compile error, then the failed start";
    EXPECT_EQ(L"Error", boxes[0].caption);
    EXPECT_EQ(L"[bad#2]     x = (1 +<here>\nExpecting a factor.", boxes[0].text);
    EXPECT_EQ(L"[bad#0] \nMacro/module has syntax errors.", boxes[1].text);
    // The debug output handler shows its text as it is.
    capture.Clear();
    KZ_CallBackDebugPrint(nullptr, "plain text", nullptr);
    boxes = capture.Boxes();
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(L"Debug.Print", boxes[0].caption);
    EXPECT_EQ(L"plain text", boxes[0].text);
    CU_SetCallBack(unit, nullptr);
    OA_Release(reinterpret_cast<IUnknown*>(callBack));
    OA_Release(static_cast<IUnknown*>(unit));
}
