// The CU_ functions: results taken from the members' out-parameters, ANSI texts, and the boxes that
// report a null handle without touching the engine's error record.
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

BSTR __stdcall NoSource(IDispatch*, LPCSTR, void*) { return nullptr; }

} // namespace

TEST(CodeUnitExports, ANullHandleShowsTheNothingBoxUnderTheOperationAndAnswersZero)
{
    MessageBoxCapture capture;
    EXPECT_EQ(0, CU_IsIdle(nullptr));
    EXPECT_EQ(nullptr, CU_ErrorDesc(nullptr));
    EXPECT_EQ(0, CU_ErrorNumber(nullptr));
    CU_CaptionPut(nullptr, "ignored");
    EXPECT_EQ(0, CU_Run(nullptr, 0));
    auto boxes = capture.Boxes();
    ASSERT_EQ(5u, boxes.size());
    const wchar_t* captions[] = {L"get_IsIdle Error", L"get_ErrorDesc Error", L"get_ErrorNumber Error",
                                 L"put_Caption Error", L"Run Error"};
    for (size_t i = 0; i < boxes.size(); ++i) {
        EXPECT_EQ(captions[i], boxes[i].caption);
        EXPECT_EQ(L"CodeUnit object is 'Nothing'.", boxes[i].text);
    }
}

TEST(CodeUnitExports, ResultsComeFromTheMembersAndTextsAreAnsi)
{
    void* unit = CU_CreateCodeUnit();
    ASSERT_NE(nullptr, unit);
    MessageBoxCapture capture;
    EXPECT_EQ(-1, CU_IsIdle(unit));
    EXPECT_EQ(0, CU_IsActive(unit));
    EXPECT_EQ("", AnsiText(CU_ErrorDesc(unit))) << "no error gives an empty text, not null";
    CU_CaptionPut(unit, "Ledger macros");
    EXPECT_EQ("Ledger macros", AnsiText(CU_Caption(unit)));
    CU_ErrorLimitPut(unit, 7);
    EXPECT_EQ(7, CU_ErrorLimit(unit));
    CU_ErrorLimitPut(unit, 0);
    EXPECT_EQ(1, CU_ErrorLimit(unit)) << "a limit below 1 is stored as 1";
    CU_DoEventsPut(unit, FALSE);
    EXPECT_EQ(0, CU_DoEvents(unit));
    EXPECT_EQ(0u, capture.Count());
    OA_Release(static_cast<IUnknown*>(unit));
}

TEST(CodeUnitExports, AHostRunsAMacroThroughTheFunctionsAndTheWrapperBoxesLeaveTheErrorRecord)
{
    void* unit = CU_CreateCodeUnit();
    ASSERT_NE(nullptr, unit);
    CB_FUNCTIONS functions{};
    functions.ReadMacro = NoSource;
    IDispatch* callBack = CB_CreateCallBack(nullptr, &functions, nullptr);
    ASSERT_NE(nullptr, callBack);
    CU_SetCallBack(unit, callBack);
    IDispatch* installed = CU_CallBack(unit);
    EXPECT_EQ(callBack, installed);
    OA_Release(reinterpret_cast<IUnknown*>(installed));

    MessageBoxCapture capture;
    EXPECT_EQ(0, CU_Start(unit, "absent"));
    EXPECT_EQ(10013, CU_ErrorNumber(unit));
    capture.Clear();
    EXPECT_EQ(0, CU_IsStopped(nullptr));
    EXPECT_EQ(1u, capture.Count());
    EXPECT_EQ(10013, CU_ErrorNumber(unit)) << "the box of a wrapper does not change the error record";
    EXPECT_EQ("Macro/module does not exist.", AnsiText(CU_ErrorDesc(unit)));
    CU_SetCallBack(unit, nullptr);
    callBack->Release();
    OA_Release(static_cast<IUnknown*>(unit));
}

namespace {

// An engine handle whose members fail: a table in the interface's slot order in which IsIdle and the
// Caption property answer E_FAIL (the wrappers call nothing else here).
HRESULT __stdcall FailingGetBool(void*, VARIANT_BOOL*) { return E_FAIL; }
HRESULT __stdcall FailingGetText(void*, BSTR*) { return E_FAIL; }
HRESULT __stdcall FailingPutText(void*, BSTR) { return 0x80070057; }

struct FailingEngine {
    void** table;
};

constexpr int kFirstMemberSlot = 7;                 // after IUnknown and IDispatch
constexpr int kCaptionGetSlot = kFirstMemberSlot + 2;
constexpr int kCaptionPutSlot = kFirstMemberSlot + 3;
constexpr int kIsIdleSlot = kFirstMemberSlot + 25;

} // namespace

TEST(CodeUnitExports, AFailedMemberShowsItsCodeUnderTheOperationAndAnswersZero)
{
    void* table[kIsIdleSlot + 1] = {};
    table[kCaptionGetSlot] = reinterpret_cast<void*>(FailingGetText);
    table[kCaptionPutSlot] = reinterpret_cast<void*>(FailingPutText);
    table[kIsIdleSlot] = reinterpret_cast<void*>(FailingGetBool);
    FailingEngine engine{table};
    MessageBoxCapture capture;
    EXPECT_EQ(0, CU_IsIdle(&engine));
    EXPECT_EQ(nullptr, CU_Caption(&engine));
    CU_CaptionPut(&engine, "text");
    auto boxes = capture.Boxes();
    ASSERT_EQ(3u, boxes.size());
    EXPECT_EQ(L"get_IsIdle Error", boxes[0].caption);
    EXPECT_EQ(L"CodeUnit method/property failed.\nError=0x80004005", boxes[0].text);
    EXPECT_EQ(L"get_Caption Error", boxes[1].caption);
    EXPECT_EQ(L"put_Caption Error", boxes[2].caption);
    EXPECT_EQ(L"CodeUnit method/property failed.\nError=0x80070057", boxes[2].text);
}
