// Callbacks over plain function pointers: the engine's calls reach the host's functions with the user
// data, ANSI texts and the end-of-file rule for macro texts; null pointers forward to a fallback.
#include "brannoc.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct HostRecord {
    std::string source;        // what ReadMacro answers; "<null>" answers a null pointer
    std::vector<std::string> printed;
    std::vector<long> notifications;
    std::vector<std::string> reads;
    std::vector<long> errorNumbers;
    std::vector<std::wstring> errorDescriptions;
    std::vector<void*> userData;
};

void __stdcall RecordPrint(IDispatch*, LPCSTR text, void* userData)
{
    auto* record = static_cast<HostRecord*>(userData);
    record->userData.push_back(userData);
    record->printed.emplace_back(text);
}

void __stdcall RecordNotify(IDispatch* engine, LONG code, void* userData)
{
    auto* record = static_cast<HostRecord*>(userData);
    record->userData.push_back(userData);
    record->notifications.push_back(code);
    if (code != 0)
        return;
    _CodeUnit* unit = nullptr;
    if (FAILED(engine->QueryInterface(IID__CodeUnit, reinterpret_cast<void**>(&unit))))
        return;
    long number = 0;
    unit->get_ErrorNumber(&number);
    record->errorNumbers.push_back(number);
    BSTR description = nullptr;
    unit->get_ErrorDesc(&description);
    record->errorDescriptions.emplace_back(description ? description : L"");
    SysFreeString(description);
    unit->Release();
}

BSTR __stdcall ServeSource(IDispatch*, LPCSTR name, void* userData)
{
    auto* record = static_cast<HostRecord*>(userData);
    record->userData.push_back(userData);
    record->reads.emplace_back(name);
    if (record->source == "<null>")
        return nullptr;
    return OA_SysAllocStringLenA(record->source.data(), static_cast<UINT>(record->source.size()));
}

LONG __stdcall NoWindow(void*) { return 0; }

BSTR __stdcall JoinWithBase(IDispatch*, LPCSTR name, LPCSTR base, void*)
{
    return OA_SysAllocStringA((std::string(base) + "\\" + name).c_str());
}

const CB_FUNCTIONS kRecording{RecordPrint, nullptr, RecordNotify, ServeSource, NoWindow};

class FunctionCallBackTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        unit = static_cast<_CodeUnit*>(CU_CreateCodeUnit());
        ASSERT_NE(nullptr, unit);
    }
    void TearDown() override
    {
        if (unit)
            unit->Release();
    }
    // Starts the macro through callBack and runs it to its end; the start's answer.
    bool StartAndRun(IDispatch* callBack, const wchar_t* name)
    {
        unit->SetCallBack(callBack);
        BSTR macro = SysAllocString(name);
        VARIANT_BOOL started = 0;
        unit->Start(macro, &started);
        SysFreeString(macro);
        if (started) {
            VARIANT_BOOL running = 0;
            unit->Run(0, &running);
        }
        return started != 0;
    }

    _CodeUnit* unit = nullptr;
};

} // namespace

TEST_F(FunctionCallBackTest, AMacroPrintsAndNotifiesThroughTheFunctionsWithTheUserData)
{
    HostRecord record;
    record.source = "Sub Main\r\n    Debug.Print \"one\"\r\n    Debug.Print \"two\";\r\nEnd Sub\r\n";
    IDispatch* callBack = CB_CreateCallBack(nullptr, &kRecording, &record);
    ASSERT_NE(nullptr, callBack);
    EXPECT_TRUE(StartAndRun(callBack, L"greeting"));
    EXPECT_EQ(std::vector<std::string>{"greeting"}, record.reads);
    // Strings appear in the debugging display's quoted form; the line end follows unless the list ends with ";".
    EXPECT_EQ((std::vector<std::string>{"\"one\"\r\n", "\"two\""}), record.printed);
    ASSERT_GE(record.notifications.size(), 2u);
    EXPECT_EQ(9, record.notifications.front()) << "the compile comes first";
    EXPECT_EQ(1, record.notifications.at(1));
    EXPECT_EQ(2, record.notifications.back());
    for (void* data : record.userData)
        EXPECT_EQ(&record, data);
    unit->SetCallBack(nullptr);
    callBack->Release();
}

TEST_F(FunctionCallBackTest, TheMacroTextEndsAtTheFirstEndOfFileCharacter)
{
    HostRecord record;
    record.source = std::string("Sub Main\r\n    Debug.Print \"kept\"\r\nEnd Sub\r\n\x1A") + "this is not Basic at all (";
    IDispatch* callBack = CB_CreateCallBack(nullptr, &kRecording, &record);
    ASSERT_NE(nullptr, callBack);
    EXPECT_TRUE(StartAndRun(callBack, L"cut"));
    EXPECT_EQ(std::vector<std::string>{"\"kept\"\r\n"}, record.printed);
    EXPECT_TRUE(record.errorNumbers.empty());
    unit->SetCallBack(nullptr);
    callBack->Release();
}

TEST_F(FunctionCallBackTest, ANullOrEmptyAnswerMeansTheMacroDoesNotExist)
{
    for (const char* answer : {"<null>", "", "\x1A" "Sub Main\r\nEnd Sub\r\n"}) {
        HostRecord record;
        record.source = answer;
        IDispatch* callBack = CB_CreateCallBack(nullptr, &kRecording, &record);
        ASSERT_NE(nullptr, callBack);
        EXPECT_FALSE(StartAndRun(callBack, L"missing")) << "answer " << answer;
        EXPECT_EQ(std::vector<long>{10013}, record.errorNumbers) << "answer " << answer;
        ASSERT_EQ(1u, record.errorDescriptions.size());
        EXPECT_EQ(L"Macro/module does not exist.", record.errorDescriptions[0]);
        EXPECT_TRUE(record.printed.empty());
        unit->SetCallBack(nullptr);
        callBack->Release();
    }
}

TEST_F(FunctionCallBackTest, NullFunctionsForwardEveryCallToTheFallback)
{
    HostRecord record;
    record.source = "Sub Main\r\n    Debug.Print 6 * 7\r\nEnd Sub\r\n";
    IDispatch* inner = CB_CreateCallBack(nullptr, &kRecording, &record);
    ASSERT_NE(nullptr, inner);
    IDispatch* outer = CB_CreateCallBack(inner, nullptr, nullptr);
    ASSERT_NE(nullptr, outer);
    inner->Release();   // the outer callback holds its fallback
    EXPECT_TRUE(StartAndRun(outer, L"forwarded"));
    EXPECT_EQ(std::vector<std::string>{"forwarded"}, record.reads);
    ASSERT_EQ(1u, record.printed.size());
    EXPECT_NE(std::string::npos, record.printed[0].find("42"));
    EXPECT_EQ(9, record.notifications.front()) << "the compile comes first";
    EXPECT_EQ(1, record.notifications.at(1));
    EXPECT_EQ(0, CB_Window(outer));
    unit->SetCallBack(nullptr);
    outer->Release();
}

TEST(CallBackFunctions, MapMacroNameAnswersACopyWithoutTheMemberAndTheHostsNameWithIt)
{
    HostRecord record;
    IDispatch* plain = CB_CreateCallBack(nullptr, &kRecording, &record);
    ASSERT_NE(nullptr, plain);
    BSTR copy = CB_MapMacroNameA(plain, nullptr, "report", "base");
    ASSERT_NE(nullptr, copy);
    EXPECT_EQ("report", std::string(reinterpret_cast<const char*>(copy), OA_SysStringLenA(copy)));
    OA_SysFreeStringA(copy);
    plain->Release();

    CB_FUNCTIONS2 mapping{};
    mapping.MapMacroName = JoinWithBase;
    IDispatch* mapper = CB_CreateCallBack2(nullptr, &mapping, nullptr);
    ASSERT_NE(nullptr, mapper);
    BSTR mapped = CB_MapMacroNameW(mapper, nullptr, L"report", L"lib");
    ASSERT_NE(nullptr, mapped);
    EXPECT_STREQ(L"lib\\report", mapped);
    SysFreeString(mapped);
    mapper->Release();
}

namespace {

// The first printed line raises the library's Declare error in the macro that printed it.
void __stdcall RaiseOnFirstPrint(IDispatch*, LPCSTR text, void* userData)
{
    auto* record = static_cast<HostRecord*>(userData);
    if (record->printed.empty())
        EXPECT_EQ(0, KZ_CallProcError());
    record->printed.emplace_back(text);
}

} // namespace

TEST_F(FunctionCallBackTest, CallProcErrorRaisesTheDeclareErrorInTheRunningMacro)
{
    HostRecord record;
    record.source = "Sub Main\r\n    On Error Resume Next\r\n    Debug.Print \"first\"\r\n"
                    "    Debug.Print CStr(Err.Number) & \" \" & Err.Description\r\nEnd Sub\r\n";
    CB_FUNCTIONS functions = kRecording;
    functions.DebugPrint = RaiseOnFirstPrint;
    IDispatch* callBack = CB_CreateCallBack(nullptr, &functions, &record);
    ASSERT_NE(nullptr, callBack);
    EXPECT_TRUE(StartAndRun(callBack, L"declares"));
    ASSERT_EQ(2u, record.printed.size());
    EXPECT_EQ("\"10160 Declare is not implemented.\"\r\n", record.printed[1]);
    unit->SetCallBack(nullptr);
    callBack->Release();
}
