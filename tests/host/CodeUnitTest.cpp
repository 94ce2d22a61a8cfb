// The engine object: creation and lifetime, IUnknown and IDispatch, and the control operation driving
// procedures built by hand.
#include "brannoc.h"
#include "exec/ExecFakes.h"
#include "host/CodeUnit.h"
#include "host/EntryGuard.h"
#include "support/EngineLibrary.h"
#include <gtest/gtest.h>
#include <float.h>
#include <vector>

using namespace brannoc;
using brannoc::test::EngineLibrary;
using brannoc::testing::TestProcedure;

namespace {

// One engine object made through the creation export linked into this test program.
struct Engine {
    CodeUnit* unit = static_cast<CodeUnit*>(static_cast<_CodeUnit*>(KZ_CreateCodeUnit()));
    std::vector<short> notifications;
    Engine()
    {
        if (unit)
            unit->Context().SetNotificationSink([this](short code) { notifications.push_back(code); });
    }
    ~Engine()
    {
        if (unit)
            unit->Release();
    }
    int Count(short code) const { return static_cast<int>(std::count(notifications.begin(), notifications.end(), code)); }
    // Pushes an entry procedure, as a start does, without running a statement.
    void StartEntry(TestProcedure& procedure)
    {
        EntryGuard guard(unit->Context());
        ASSERT_TRUE(unit->Context().Machine().StartEntry(procedure, nullptr));
    }
};

bool IsTrue(VARIANT_BOOL value) { return value == VARIANT_TRUE; }

} // namespace

TEST(CodeUnitLifetime, ObjectsGetIncreasingIdentifiersAndJoinTheProcessList)
{
    Engine first, second, third;
    ASSERT_TRUE(first.unit && second.unit && third.unit);
    EXPECT_LT(first.unit->Identifier(), second.unit->Identifier());
    EXPECT_LT(second.unit->Identifier(), third.unit->Identifier());
    EXPECT_FALSE(IsEqualGUID(first.unit->InstanceGuid(), second.unit->InstanceGuid()));
    std::vector<CodeUnit*> listed;
    for (CodeUnit* unit = CodeUnit::First(); unit; unit = unit->Next())
        listed.push_back(unit);
    EXPECT_EQ((std::vector<CodeUnit*>{first.unit, second.unit, third.unit}), listed);
}

TEST(CodeUnitLifetime, TheDllMayUnloadOnlyAfterTheLastObjectIsReleased)
{
    EngineLibrary library;
    auto create = library.As<_CodeUnit*(__stdcall*)()>("CU_CreateCodeUnit");
    auto freeOkay = library.As<BOOL(__stdcall*)()>("_CU_FreeLibraryOkay@0");
    ASSERT_TRUE(create && freeOkay);
    EXPECT_EQ(-1, freeOkay());
    _CodeUnit* a = create();
    _CodeUnit* b = create();
    ASSERT_TRUE(a && b);
    EXPECT_EQ(0, freeOkay());
    a->AddRef();
    EXPECT_EQ(1u, a->Release()) << "reference count starts at 1";
    a->Release();
    EXPECT_EQ(0, freeOkay()) << "one object is still alive";
    b->Release();
    EXPECT_EQ(-1, freeOkay());
}

TEST(CodeUnitLifetime, CoCreateInstanceFailsWhileTheCreationExportSucceeds)
{
    CoInitialize(nullptr);
    IUnknown* object = nullptr;
    EXPECT_TRUE(FAILED(CoCreateInstance(CLSID_CodeUnit, nullptr, CLSCTX_ALL, IID_IUnknown,
                                        reinterpret_cast<void**>(&object))));
    EngineLibrary library;
    auto create = library.As<_CodeUnit*(__stdcall*)()>("_CU_CreateCodeUnit@0");
    ASSERT_NE(nullptr, create);
    _CodeUnit* unit = create();
    ASSERT_NE(nullptr, unit);
    unit->Release();
    CoUninitialize();
}

TEST(CodeUnitDispatch, QueryInterfaceAnswersItsThreeInterfacesOnly)
{
    Engine engine;
    void* object = nullptr;
    for (const IID* id : {&IID_IUnknown, &IID_IDispatch, &IID__CodeUnit}) {
        ASSERT_EQ(S_OK, engine.unit->QueryInterface(*id, &object));
        EXPECT_EQ(static_cast<_CodeUnit*>(engine.unit), object);
        engine.unit->Release();
    }
    object = reinterpret_cast<void*>(1);
    EXPECT_EQ(E_NOINTERFACE, engine.unit->QueryInterface(IID_IClassFactory, &object));
    EXPECT_EQ(nullptr, object);
}

TEST(CodeUnitDispatch, TypeInformationAndInterfaceIdentifierRules)
{
    Engine engine;
    UINT count = 0;
    EXPECT_EQ(S_OK, engine.unit->GetTypeInfoCount(&count));
    EXPECT_EQ(1u, count);
    ITypeInfo* info = nullptr;
    EXPECT_EQ(DISP_E_BADINDEX, engine.unit->GetTypeInfo(1, 0, &info));
    ASSERT_EQ(S_OK, engine.unit->GetTypeInfo(0, 0, &info));
    TYPEATTR* attributes = nullptr;
    info->GetTypeAttr(&attributes);
    EXPECT_TRUE(IsEqualGUID(IID__CodeUnit, attributes->guid));
    info->ReleaseTypeAttr(attributes);
    info->Release();
    LPOLESTR name = const_cast<LPOLESTR>(L"Caption");
    DISPID id = 0;
    EXPECT_EQ(DISP_E_UNKNOWNINTERFACE, engine.unit->GetIDsOfNames(IID__CodeUnit, &name, 1, 0, &id));
    EXPECT_EQ(DISP_E_UNKNOWNINTERFACE, engine.unit->Invoke(0, IID__CodeUnit, 0, DISPATCH_PROPERTYGET, nullptr,
                                                          nullptr, nullptr, nullptr));
}

// A host that passes no place for a member's result is told so with E_POINTER; the engine does not
// write through the null pointer.
TEST(CodeUnitDispatch, AMissingResultPointerIsInterfaceMisuse)
{
    Engine engine;
    _CodeUnit* unit = engine.unit;
    BSTR name = SysAllocString(L"m");
    struct Row {
        const char* member;
        HRESULT answer;
    };
    const Row rows[] = {
        {"IsActive", unit->get_IsActive(nullptr)},
        {"IsIdle", unit->get_IsIdle(nullptr)},
        {"IsStopped", unit->get_IsStopped(nullptr)},
        {"IsPaused", unit->get_IsPaused(nullptr)},
        {"Evaluating", unit->get_Evaluating(nullptr)},
        {"StackDepth", unit->get_StackDepth(nullptr)},
        {"ErrorLimit", unit->get_ErrorLimit(nullptr)},
        {"CallBack", unit->get_CallBack(nullptr)},
        {"ErrorNumber", unit->get_ErrorNumber(nullptr)},
        {"ErrorHelpContext", unit->get_ErrorHelpContext(nullptr)},
        {"ErrorLineNum", unit->get_ErrorLineNum(nullptr)},
        {"ErrorOffset", unit->get_ErrorOffset(nullptr)},
        {"IsMacro", unit->get_IsMacro(name, nullptr)},
        {"IsMacroActive", unit->get_IsMacroActive(name, nullptr)},
        {"IsProject", unit->get_IsProject(name, nullptr)},
        {"Caption", unit->get_Caption(nullptr)},
        {"ErrorDesc", unit->get_ErrorDesc(nullptr)},
        {"Version", unit->get_Version(nullptr)},
        {"DoEvents", unit->get_DoEvents(nullptr)},
        {"DefaultCallBack", unit->get_DefaultCallBack(nullptr)},
        {"LineNum", unit->get_LineNum(nullptr)},
        {"Macro", unit->Macro(name, VARIANT_FALSE, nullptr)},
    };
    for (const Row& row : rows)
        EXPECT_EQ(E_POINTER, row.answer) << row.member;
    SysFreeString(name);
    VARIANT_BOOL idle = VARIANT_FALSE;
    EXPECT_EQ(S_OK, unit->get_IsIdle(&idle));
    EXPECT_TRUE(IsTrue(idle)) << "the engine goes on as before";
}

TEST(CodeUnitDispatch, LateBoundCallsReachTheSameMembersAsEarlyBoundOnes)
{
    Engine engine;
    IDispatch* dispatch = engine.unit;
    auto idOf = [&](const wchar_t* member) {
        LPOLESTR name = const_cast<LPOLESTR>(member);
        DISPID id = DISPID_UNKNOWN;
        EXPECT_EQ(S_OK, dispatch->GetIDsOfNames(IID_NULL, &name, 1, 0x409, &id));
        return id;
    };
    EXPECT_EQ(0, idOf(L"Caption"));
    EXPECT_EQ(16, idOf(L"ErrorLimit"));
    EXPECT_EQ(102, idOf(L"IsProject"));

    // Put the caption late bound, read it early bound.
    VARIANT value;
    value.vt = VT_BSTR;
    value.bstrVal = SysAllocString(L"Macro Host");
    DISPID putId = DISPID_PROPERTYPUT;
    DISPPARAMS put{&value, &putId, 1, 1};
    ASSERT_EQ(S_OK, dispatch->Invoke(0, IID_NULL, 0x409, DISPATCH_PROPERTYPUT, &put, nullptr, nullptr, nullptr));
    VariantClear(&value);
    BSTR caption = nullptr;
    ASSERT_EQ(S_OK, engine.unit->get_Caption(&caption));
    EXPECT_STREQ(L"Macro Host", caption);
    SysFreeString(caption);

    // Put the error limit early bound (below 1 stores 1), read it late bound.
    ASSERT_EQ(S_OK, engine.unit->put_ErrorLimit(0));
    VARIANT result;
    VariantInit(&result);
    DISPPARAMS none{nullptr, nullptr, 0, 0};
    ASSERT_EQ(S_OK, dispatch->Invoke(16, IID_NULL, 0x409, DISPATCH_PROPERTYGET, &none, &result, nullptr, nullptr));
    EXPECT_EQ(VT_I2, result.vt);
    EXPECT_EQ(1, result.iVal);
    ASSERT_EQ(S_OK, engine.unit->put_ErrorLimit(-5));
    ASSERT_EQ(S_OK, dispatch->Invoke(16, IID_NULL, 0x409, DISPATCH_PROPERTYGET, &none, &result, nullptr, nullptr));
    EXPECT_EQ(1, result.iVal);
    ASSERT_EQ(S_OK, engine.unit->put_ErrorLimit(3));
    ASSERT_EQ(S_OK, dispatch->Invoke(16, IID_NULL, 0x409, DISPATCH_PROPERTYGET, &none, &result, nullptr, nullptr));
    EXPECT_EQ(3, result.iVal);

    // A method deep in the table: IsIdle (31) late bound.
    ASSERT_EQ(S_OK, dispatch->Invoke(31, IID_NULL, 0x409, DISPATCH_PROPERTYGET, &none, &result, nullptr, nullptr));
    EXPECT_EQ(VT_BOOL, result.vt);
    EXPECT_EQ(VARIANT_TRUE, result.boolVal);
}

TEST(CodeUnitSettings, DefaultsAndVersion)
{
    Engine engine;
    BSTR text = nullptr;
    ASSERT_EQ(S_OK, engine.unit->get_Caption(&text));
    EXPECT_STREQ(L"Brannoc Basic", text);
    SysFreeString(text);
    VARIANT_BOOL on = 0;
    ASSERT_EQ(S_OK, engine.unit->get_DoEvents(&on));
    EXPECT_TRUE(IsTrue(on));
    ASSERT_EQ(S_OK, engine.unit->get_Version(&text));
    std::wstring version(text);
    SysFreeString(text);
    EXPECT_EQ(0u, version.find(L"5.2.16/32 - ")) << std::string(version.begin(), version.end());
    ASSERT_EQ(S_OK, engine.unit->get_HelpFile(&text));
    std::wstring help(text);
    SysFreeString(text);
    EXPECT_EQ(L".HLP", help.substr(help.size() - 4));
    ASSERT_EQ(S_OK, engine.unit->get_ErrorDesc(&text));
    ASSERT_NE(nullptr, text) << "no error gives an empty text, not a null string";
    EXPECT_EQ(0u, SysStringLen(text));
    SysFreeString(text);
}

TEST(CodeUnitControl, RequestsOnAnIdleEngine)
{
    Engine engine;
    VARIANT_BOOL result = VARIANT_TRUE;
    EXPECT_EQ(S_OK, engine.unit->Run(0, &result));
    EXPECT_FALSE(IsTrue(result));
    EXPECT_EQ(S_OK, engine.unit->Stop(&result));
    EXPECT_FALSE(IsTrue(result));
    EXPECT_EQ(S_OK, engine.unit->HaltAll(&result));
    EXPECT_TRUE(IsTrue(result)) << "an idle engine is idle after HaltAll";
    EXPECT_EQ(1, engine.Count(13)) << "a halt requested while idle is told to the host";
    EXPECT_EQ(RunState::Busy, engine.unit->Context().Control(EngineContext::kActionRun, EngineContext::kStepDepth))
        << "a step while idle waits for the next host call";
}

TEST(CodeUnitControl, RunWithTraceDepthsSetsTraceBytesAndAnswersFalse)
{
    Engine engine;
    VARIANT_BOOL result = VARIANT_TRUE;
    ASSERT_EQ(S_OK, engine.unit->Run(static_cast<short>(0x8101), &result));
    EXPECT_FALSE(IsTrue(result));
    EXPECT_EQ(0x01, engine.unit->Context().TraceByte(1));
    ASSERT_EQ(S_OK, engine.unit->Run(static_cast<short>(0x8040), &result));
    EXPECT_EQ(0x40, engine.unit->Context().TraceByte(0));
    EXPECT_EQ(1, engine.unit->Context().TraceByte(2));
}

TEST(CodeUnitControl, RunDrivesNestedActivationsToTheirEnd)
{
    Engine engine;
    int executed = 0;
    TestProcedure inner;
    inner.Add([&] { ++executed; return true; }).Add([&] { ++executed; return true; });
    TestProcedure main;
    main.Add([&] { ++executed; return true; }).AddCall(inner).AddBlank().Add([&] { ++executed; return true; });
    engine.StartEntry(main);
    VARIANT_BOOL active = 0;
    engine.unit->get_IsActive(&active);
    EXPECT_TRUE(IsTrue(active));
    VARIANT_BOOL result = VARIANT_TRUE;
    ASSERT_EQ(S_OK, engine.unit->Run(0, &result));
    EXPECT_FALSE(IsTrue(result)) << "the run ended, so the engine is no longer active";
    EXPECT_EQ(4, executed);
    EXPECT_EQ(1, engine.Count(1));
    EXPECT_EQ(1, engine.Count(2));
    Interpreter& machine = engine.unit->Context().Machine();
    EXPECT_EQ(0u, machine.ExecutionDepth());
    EXPECT_EQ(0u, machine.PendingDepth());
    EXPECT_EQ(0, machine.CallDepth());
    VARIANT_BOOL idle = 0;
    engine.unit->get_IsIdle(&idle);
    EXPECT_TRUE(IsTrue(idle));
}

TEST(CodeUnitControl, StepsAdvanceOneStatementAndHaltAllEndsTheRun)
{
    Engine engine;
    int executed = 0;
    TestProcedure main;
    for (int i = 0; i < 5; ++i)
        main.Add([&] { ++executed; return true; });
    engine.StartEntry(main);
    VARIANT_BOOL result = VARIANT_FALSE;
    ASSERT_EQ(S_OK, engine.unit->Step(&result));
    EXPECT_TRUE(IsTrue(result));
    const int afterFirst = executed;
    ASSERT_EQ(S_OK, engine.unit->Step(&result));
    EXPECT_EQ(afterFirst + 1, executed) << "one statement per step";
    ASSERT_EQ(S_OK, engine.unit->HaltAll(&result));
    EXPECT_TRUE(IsTrue(result));
    EXPECT_LT(executed, 5);
    EXPECT_EQ(1, engine.Count(2));
    EXPECT_EQ(0u, engine.unit->Context().Machine().ExecutionDepth());
}

TEST(CodeUnitControl, StopThenContinueResumesTheRun)
{
    Engine engine;
    int executed = 0;
    TestProcedure main;
    for (int i = 0; i < 3; ++i)
        main.Add([&] { ++executed; return true; });
    engine.StartEntry(main);
    VARIANT_BOOL result = VARIANT_FALSE;
    ASSERT_EQ(S_OK, engine.unit->Stop(&result));
    EXPECT_TRUE(IsTrue(result));
    EXPECT_EQ(1, engine.Count(3));
    VARIANT_BOOL stopped = 0;
    engine.unit->get_IsStopped(&stopped);
    EXPECT_TRUE(IsTrue(stopped));
    ASSERT_EQ(S_OK, engine.unit->Continue(&result));
    EXPECT_TRUE(IsTrue(result));
    EXPECT_EQ(1, engine.Count(4));
    ASSERT_EQ(S_OK, engine.unit->Run(0, &result));
    EXPECT_EQ(3, executed);
    EXPECT_EQ(1, engine.Count(2));
}

TEST(CodeUnitControl, ApiTraceWritesEntryResultAndExitLines)
{
    Engine engine;
    std::vector<std::wstring> lines;
    engine.unit->Context().SetTraceSink([&](TraceKind kind, const std::wstring& text) {
        lines.push_back(std::to_wstring(static_cast<int>(kind)) + L":" + text);
    });
    VARIANT_BOOL result;
    engine.unit->Run(static_cast<short>(0x8040), &result);   // API trace on
    lines.clear();
    engine.unit->Stop(&result);
    EXPECT_EQ((std::vector<std::wstring>{L"0:*Stop(\"\")", L"3:Result=False", L"1:"}), lines);
}

TEST(EntryGuard, SetsAndRestoresTheControlWordAndErrorMode)
{
    Engine engine;
    _controlfp(_PC_24 | _RC_CHOP, _MCW_PC | _MCW_RC);
    SetErrorMode(0);
    const unsigned before = _controlfp(0, 0);
    {
        EntryGuard guard(engine.unit->Context());
        EXPECT_EQ(EntryGuard::kControlWord, _controlfp(0, 0) & EntryGuard::kControlMask);
        UINT mode = SetErrorMode(0);
        EXPECT_EQ(EntryGuard::kErrorMode, mode);
        {
            EntryGuard nested(engine.unit->Context());   // same context: takes and restores nothing
        }
        _controlfp(_RC_UP, _MCW_RC);   // engine code changed it
        EXPECT_EQ(&engine.unit->Context(), EntryGuard::Current());
    }
    EXPECT_EQ(before & EntryGuard::kControlMask, _controlfp(0, 0) & EntryGuard::kControlMask);
    EXPECT_EQ(0u, SetErrorMode(0));
    EXPECT_EQ(nullptr, EntryGuard::Current());
    _controlfp(_PC_53 | _RC_NEAR, _MCW_PC | _MCW_RC);
}
