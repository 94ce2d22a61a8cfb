// Loading, starting, running and unloading macros through the engine object, with a callback that
// serves macro texts from memory and records what the engine tells it.
#include "brannoc.h"
#include "exec/ExecFakes.h"
#include "exec/ModuleInstance.h"
#include "host/CodeUnit.h"
#include "host/EntryGuard.h"
#include "host/ModuleManager.h"
#include "host/FakeCallBack.h"
#include "host/HostTestText.h"
#include "support/MessageBoxCapture.h"
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

using namespace brannoc;
using brannoc::testing::FakeCallBack;
using brannoc::testing::TestProcedure;

namespace {

// Gives every Main, Class_Initialize and Class_Terminate a procedure of one statement that prints the
// procedure's and the module's name, as the statement compiler would for a Debug.Print line.
class PrintingBodies final : public ProcedureBodyCompiler {
public:
    bool CompileBody(Module& module, Procedure& procedure, Lexer&) override
    {
        (void)CompileBodyFor(module);
        if (procedure.name != "Main" && procedure.name != "Class_Initialize" && procedure.name != "Class_Terminate")
            return true;
        auto code = std::make_unique<TestProcedure>();
        if (module.Name() == "starter") {
            // Starts "second" while its own statement executes, then prints.
            code->Add([this] {
                startStatus = modules->Start("second", "one two");
                return true;
            });
            code->Add([] {
                Interpreter::Current()->Host().DebugPrint(L"after the start\r\n");
                return true;
            });
            procedure.code = std::move(code);
            return true;
        }
        if (module.Name() == "fails") {
            // Index 0 is the header line; the second line divides by zero.
            code->AddBlank().Add([] { return Interpreter::Current()->SignalError(11); });
            procedure.code = std::move(code);
            return true;
        }
        std::wstring text = std::wstring(procedure.name.begin(), procedure.name.end()) + L" of " +
                            std::wstring(module.Name().begin(), module.Name().end()) + L"\r\n";
        code->Add([text] {
            Interpreter::Current()->Host().DebugPrint(text);
            return true;
        });
        procedure.code = std::move(code);
        return true;
    }
    bool CompileBodyFor(Module& module)
    {
        seen[module.Name()] = &module;
        return true;
    }
    std::map<std::string, Module*> seen;
    ModuleManager* modules = nullptr;
    ModuleStatus startStatus = ModuleStatus::Idle;
};

class TestText final {
public:
    explicit TestText(const wchar_t* text) : m_text(SysAllocString(text)) {}
    ~TestText() { SysFreeString(m_text); }
    operator BSTR() const { return m_text; }

private:
    BSTR m_text;
};

class ModuleManagerTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_NE(nullptr, unit);
        unit->SetCallBack(&callBack);
        unit->Context().Modules().SetBodyCompiler(&bodies);
        bodies.modules = &unit->Context().Modules();
    }
    void TearDown() override
    {
        if (unit) {
            VARIANT_BOOL ignored;
            unit->HaltAll(&ignored);
            unit->SetCallBack(nullptr);
            unit->Release();
        }
    }
    bool Call(HRESULT (__stdcall CodeUnit::*member)(BSTR, VARIANT_BOOL*), const wchar_t* name)
    {
        VARIANT_BOOL result = VARIANT_FALSE;
        EXPECT_EQ(S_OK, (unit->*member)(TestText(name), &result));
        return result == VARIANT_TRUE;
    }
    bool Start(const wchar_t* name) { return Call(&CodeUnit::Start, name); }
    bool Load(const wchar_t* name) { return Call(&CodeUnit::Load, name); }
    bool Unload(const wchar_t* name) { return Call(&CodeUnit::Unload, name); }
    bool IsMacro(const wchar_t* name) { return Call(&CodeUnit::get_IsMacro, name); }
    bool IsMacroActive(const wchar_t* name) { return Call(&CodeUnit::get_IsMacroActive, name); }
    bool Run()
    {
        VARIANT_BOOL result = VARIANT_TRUE;
        EXPECT_EQ(S_OK, unit->Run(0, &result));
        return result == VARIANT_TRUE;
    }
    std::wstring ErrorText(HRESULT (__stdcall CodeUnit::*member)(BSTR*))
    {
        BSTR text = nullptr;
        EXPECT_EQ(S_OK, (unit->*member)(&text));
        std::wstring result = text ? std::wstring(text, SysStringLen(text)) : std::wstring();
        SysFreeString(text);
        return result;
    }
    std::wstring LoadedName(short index)
    {
        BSTR text = nullptr;
        EXPECT_EQ(S_OK, unit->get_LoadedMacroName(index, &text));
        std::wstring result = text ? std::wstring(text, SysStringLen(text)) : std::wstring();
        SysFreeString(text);
        return result;
    }

    CodeUnit* unit = static_cast<CodeUnit*>(static_cast<_CodeUnit*>(KZ_CreateCodeUnit()));
    FakeCallBack callBack;
    PrintingBodies bodies;
};

} // namespace

TEST_F(ModuleManagerTest, StartPushesMainWithoutRunningItAndRunRunsItToTheEnd)
{
    callBack.macros[L"hello"] = L"Sub Main\r\n    Debug.Print \"Main of hello\"\r\nEnd Sub\r\n";
    ASSERT_TRUE(Start(L"hello"));
    EXPECT_TRUE(callBack.printed.empty()) << "no statement runs before Run";
    EXPECT_EQ(1, callBack.Count(1));
    EXPECT_EQ(L"hello", ErrorText(&CodeUnit::get_MacroName));
    EXPECT_TRUE(IsMacroActive(L"hello"));
    EXPECT_FALSE(Run()) << "the engine is idle afterwards";
    EXPECT_EQ((std::vector<std::wstring>{L"Main of hello\r\n"}), callBack.printed);
    EXPECT_EQ((std::vector<short>{9, 1, 2}), callBack.notifications) << "compiling, active, idle";
    EXPECT_EQ((std::vector<std::wstring>{L"hello"}), callBack.reads);
    EXPECT_FALSE(IsMacroActive(L"hello"));
    EXPECT_EQ(L"", ErrorText(&CodeUnit::get_MacroName));
    EXPECT_EQ(0, callBack.badCalls);
}

TEST_F(ModuleManagerTest, AMissingMacroReportsItsNumberAndMessage)
{
    EXPECT_FALSE(Start(L"nowhere"));
    EXPECT_EQ((std::vector<long>{10013}), callBack.errorNumbers);
    EXPECT_EQ(L"Macro/module does not exist.", ErrorText(&CodeUnit::get_ErrorDesc));
    EXPECT_EQ(L"nowhere", ErrorText(&CodeUnit::get_ErrorMacroName));
    EXPECT_FALSE(IsMacro(L"nowhere"));
}

TEST_F(ModuleManagerTest, CompileErrorsFillTheErrorRecordThenTheLoadFails)
{
    callBack.macros[L"bad"] = L"Dim x As Foo\r\nSub Main\r\nEnd Sub\r\n";
    EXPECT_FALSE(Load(L"bad"));
    ASSERT_EQ(2u, callBack.errorNumbers.size());
    EXPECT_EQ(10606, callBack.errorNumbers[0]) << "the compile error comes first";
    EXPECT_EQ(10012, callBack.errorNumbers[1]);
    EXPECT_EQ(L"Macro/module has syntax errors.", ErrorText(&CodeUnit::get_ErrorDesc));
    EXPECT_FALSE(IsMacro(L"bad"));
}

TEST_F(ModuleManagerTest, CompileErrorLocationIsKeptForTheHost)
{
    // Read the record at the first notification 0: line, offset, text and module.
    callBack.macros[L"bad"] = L"' comment\r\nDim x As Foo\r\nSub Main\r\nEnd Sub\r\n";
    unit->Context().SetNotificationSink([this](short code) {
        if (code == 0 && callBack.errorNumbers.empty()) {
            ErrorLocation& error = unit->Context().ErrorReport();
            EXPECT_EQ(2, error.lineNumber);
            EXPECT_EQ(9, error.offset);
            EXPECT_EQ(L"Dim x As Foo", error.lineText);
            EXPECT_EQ(L"bad", error.macroName);
        }
    });
    EXPECT_FALSE(Load(L"bad"));
    EXPECT_FALSE(callBack.errorNumbers.empty());
}

TEST_F(ModuleManagerTest, LoadKeepsTheMacroAndLoadingAgainReadsItAgain)
{
    callBack.macros[L"lib"] = L"Sub Main\r\nEnd Sub\r\n";
    EXPECT_TRUE(Load(L"lib"));
    EXPECT_TRUE(IsMacro(L"lib"));
    EXPECT_TRUE(IsMacro(L"LIB")) << "names compare without regard to case";
    EXPECT_TRUE(Load(L"lib"));
    EXPECT_EQ(2u, callBack.reads.size());
    EXPECT_EQ(L"lib", LoadedName(0));
    EXPECT_EQ(L"", LoadedName(1));
    EXPECT_EQ((std::vector<short>{9, 9}), callBack.notifications) << "a load notifies only that it compiles";
}

TEST_F(ModuleManagerTest, UnloadRemovesAnIdleMacroButNotARunningOne)
{
    callBack.macros[L"m"] = L"Sub Main\r\nEnd Sub\r\n";
    ASSERT_TRUE(Start(L"m"));
    EXPECT_FALSE(Unload(L"m")) << "still on the stack";
    EXPECT_TRUE(IsMacro(L"m"));
    EXPECT_FALSE(Run());
    EXPECT_TRUE(Unload(L"m"));
    EXPECT_FALSE(IsMacro(L"m"));
    EXPECT_TRUE(Unload(L"m")) << "a missing macro counts as unloaded";
    EXPECT_EQ(1, callBack.Count(1));
    EXPECT_EQ(1, callBack.Count(2));
    EXPECT_EQ(1, callBack.Count(10)) << "one unload notification, for the macro that was there";
    EXPECT_EQ(10, callBack.notifications.back());
}

TEST_F(ModuleManagerTest, LoadingARunningMacroReportsItAndStopsTheRun)
{
    callBack.macros[L"m"] = L"Sub Main\r\nEnd Sub\r\n";
    ASSERT_TRUE(Start(L"m"));
    EXPECT_FALSE(Load(L"m"));
    EXPECT_FALSE(Start(L"m"));
    EXPECT_EQ((std::vector<long>{10010, 10010}), callBack.errorNumbers);
    EXPECT_EQ(L"Macro is already running.", ErrorText(&CodeUnit::get_ErrorDesc));
    EXPECT_TRUE(IsMacroActive(L"m")) << "stopped in the macro";
    EXPECT_EQ(1u, callBack.reads.size());
}

TEST_F(ModuleManagerTest, RenameKeepsTheModuleUnderItsNewName)
{
    callBack.macros[L"a"] = L"Sub Main\r\nEnd Sub\r\nSub Twice\r\nEnd Sub\r\n";
    callBack.macros[L"b"] = L"Sub Main\r\nEnd Sub\r\n";
    ASSERT_TRUE(Load(L"a"));
    ASSERT_TRUE(Load(L"b"));
    VARIANT_BOOL result = VARIANT_TRUE;
    EXPECT_EQ(S_OK, unit->Rename(TestText(L"a"), TestText(L"b"), &result));
    EXPECT_EQ(VARIANT_FALSE, result) << "the new name is taken";
    EXPECT_EQ(S_OK, unit->Rename(TestText(L"zz"), TestText(L"c"), &result));
    EXPECT_EQ(VARIANT_FALSE, result) << "the old name does not exist";
    EXPECT_EQ(S_OK, unit->Rename(TestText(L"a"), TestText(L"c"), &result));
    EXPECT_EQ(VARIANT_TRUE, result);
    EXPECT_FALSE(IsMacro(L"a"));
    EXPECT_TRUE(IsMacro(L"c"));
    // Whatever asks for a loaded module by name finds it under the new name only.
    BSTR names = nullptr;
    EXPECT_EQ(S_OK, unit->get_MacroKeywords(TestText(L"c"), &names));
    EXPECT_EQ(L"Main Twice ", testing_text::TakeText(names));
    EXPECT_EQ(S_OK, unit->get_MacroKeywords(TestText(L"a"), &names));
    EXPECT_EQ(L"", testing_text::TakeText(names));
}

TEST_F(ModuleManagerTest, UsedModulesGetDefaultInstancesAndRunTheirMainBeforeMainRuns)
{
    callBack.macros[L"main"] = L"'#Uses \"util\"\r\nSub Main\r\nEnd Sub\r\n";
    callBack.macros[L"util"] =
        L"Public Total As Integer\r\nPublic Count As Long\r\nPrivate Sub Main\r\nEnd Sub\r\nPublic Sub Bump()\r\nEnd Sub\r\n";
    ASSERT_TRUE(Start(L"main"));
    EXPECT_EQ((std::vector<std::wstring>{L"main", L"util"}), callBack.reads);
    ASSERT_EQ(1u, bodies.seen.count("main"));
    ASSERT_EQ(1u, bodies.seen.count("util"));
    ModuleManager& modules = unit->Context().Modules();
    ModuleInstance* mainInstance = modules.DefaultInstance(*bodies.seen["main"]);
    ModuleInstance* utilInstance = modules.DefaultInstance(*bodies.seen["util"]);
    ASSERT_NE(nullptr, mainInstance);
    ASSERT_NE(nullptr, utilInstance);
    EXPECT_EQ(2u, utilInstance->VariableCount());
    EXPECT_EQ(VT_I2, utilInstance->Slot(0).vt);
    EXPECT_EQ((std::vector<std::wstring>{L"Main of util\r\n"}), callBack.printed)
        << "the used module's initializer has run, Main has not";
    EXPECT_FALSE(Run());
    EXPECT_EQ((std::vector<std::wstring>{L"Main of util\r\n", L"Main of main\r\n"}), callBack.printed);
    EXPECT_EQ(L"main", LoadedName(0));
    EXPECT_EQ(L"", LoadedName(1)) << "used modules are not listed";
    EXPECT_TRUE(Unload(L"main"));
}

TEST_F(ModuleManagerTest, AnUntrappedErrorIsReportedWithItsMacroLineAndText)
{
    callBack.macros[L"fails"] = L"Sub Main\r\n    x = 1 / 0\r\nEnd Sub\r\n";
    ASSERT_TRUE(Start(L"fails"));
    EXPECT_FALSE(Run()) << "the run stops at the error";
    VARIANT_BOOL stopped = VARIANT_FALSE;
    EXPECT_EQ(S_OK, unit->get_IsStopped(&stopped));
    EXPECT_EQ(VARIANT_TRUE, stopped);
    ASSERT_EQ(1u, callBack.errorNumbers.size());
    EXPECT_EQ(11, callBack.errorNumbers[0]);
    EXPECT_EQ(L"fails", ErrorText(&CodeUnit::get_ErrorMacroName));
    EXPECT_EQ(L"    x = 1 / 0", ErrorText(&CodeUnit::get_ErrorLine));
    short line = 0;
    short offset = 0;
    EXPECT_EQ(S_OK, unit->get_ErrorLineNum(&line));
    EXPECT_EQ(S_OK, unit->get_ErrorOffset(&offset));
    EXPECT_EQ(2, line);
    EXPECT_EQ(-1, offset);
    EXPECT_EQ(1, callBack.Count(19));
}

TEST_F(ModuleManagerTest, ClassInstancesRunTheirInitializerAtCreationAndTheirTerminatorAtDestruction)
{
    callBack.macros[L"main"] = L"'#Uses \"counter\"\r\nSub Main\r\nEnd Sub\r\n";
    callBack.macros[L"counter"] = L"VERSION 1.0 CLASS\r\nAttribute VB_Name = \"Counter\"\r\nPublic Value As Long\r\n"
                                  L"Private Sub Class_Initialize()\r\nEnd Sub\r\n"
                                  L"Private Sub Class_Terminate()\r\nEnd Sub\r\n";
    ASSERT_TRUE(Start(L"main"));
    ASSERT_EQ(1u, bodies.seen.count("counter"));
    Module& counter = *bodies.seen["counter"];
    ModuleManager& modules = unit->Context().Modules();
    EXPECT_EQ(nullptr, modules.DefaultInstance(counter)) << "class modules get no default instance at a start";
    EXPECT_TRUE(callBack.printed.empty());
    {
        EntryGuard guard(unit->Context());
        std::unique_ptr<ModuleInstance> first = modules.CreateInstance(counter);
        std::unique_ptr<ModuleInstance> second = modules.CreateInstance(counter);
        ASSERT_NE(nullptr, first);
        ASSERT_NE(nullptr, second);
        EXPECT_EQ(1u, first->VariableCount());
        EXPECT_EQ((std::vector<std::wstring>{L"Class_Initialize of counter\r\n", L"Class_Initialize of counter\r\n"}),
                  callBack.printed);
        modules.DestroyInstance(std::move(first));
        EXPECT_EQ(L"Class_Terminate of counter\r\n", callBack.printed.back());
        modules.DestroyInstance(std::move(second));
        EXPECT_EQ(4u, callBack.printed.size());
    }
    EXPECT_FALSE(Run());
    EXPECT_EQ(L"Main of main\r\n", callBack.printed.back());
}

TEST_F(ModuleManagerTest, AStartWhileAStatementExecutesIsQueuedAndRunsBeforeTheNextStatement)
{
    callBack.macros[L"starter"] = L"Sub Main\r\n    Start \"second\"\r\n    Debug.Print \"after the start\"\r\nEnd Sub\r\n";
    callBack.macros[L"second"] = L"Sub Main\r\nEnd Sub\r\n";
    ASSERT_TRUE(Start(L"starter"));
    EXPECT_FALSE(Run());
    EXPECT_EQ(ModuleStatus::Queued, bodies.startStatus);
    EXPECT_EQ((std::vector<std::wstring>{L"starter", L"second"}), callBack.reads);
    EXPECT_EQ((std::vector<std::wstring>{L"Main of second\r\n", L"after the start\r\n"}), callBack.printed);
    EXPECT_TRUE(callBack.errorNumbers.empty());
    EXPECT_EQ(1, callBack.Count(2)) << "one run";
}

TEST_F(ModuleManagerTest, ATextGivenForANameIsUsedOnceInsteadOfReadMacro)
{
    callBack.macros[L"direct"] = L"Sub Main\r\n' from the host\r\nEnd Sub\r\n";
    unit->Context().Modules().GiveText("direct", "Sub Main\r\nEnd Sub\r\n");
    EXPECT_TRUE(Load(L"direct"));
    EXPECT_TRUE(callBack.reads.empty());
    EXPECT_TRUE(Load(L"direct"));
    EXPECT_EQ((std::vector<std::wstring>{L"direct"}), callBack.reads) << "the second load asks the host";
}

TEST_F(ModuleManagerTest, TheSourceEndsAtTheFirstEndOfFileCharacter)
{
    callBack.macros[L"cut"] = std::wstring(L"Sub Main\r\nEnd Sub\r\n") + L'\x1A' + L"this is not Basic";
    EXPECT_TRUE(Load(L"cut"));
    callBack.macros[L"empty"] = std::wstring(1, L'\x1A') + L"Sub Main\r\nEnd Sub\r\n";
    EXPECT_FALSE(Load(L"empty"));
    EXPECT_EQ(10013, callBack.errorNumbers.back()) << "an empty text means the macro does not exist";
}

TEST_F(ModuleManagerTest, TheCommandTextIsKeptWhileTheMacroRuns)
{
    callBack.macros[L"my macro"] = L"Sub Main\r\nEnd Sub\r\n";
    ASSERT_TRUE(Start(L"\"my macro\"   -v  file.txt"));
    EXPECT_EQ("-v  file.txt", unit->Context().Modules().CommandText());
    EXPECT_EQ(L"my macro", ErrorText(&CodeUnit::get_MacroName));
    EXPECT_FALSE(Run());
    EXPECT_EQ("", unit->Context().Modules().CommandText());
}

TEST_F(ModuleManagerTest, NamesFromTheHostAndUsesNamesAreMappedByTheHost)
{
    callBack.mapPrefix = L"dir/";
    callBack.macros[L"dir/main"] = L"'#Uses \"util\"\r\nSub Main\r\nEnd Sub\r\n";
    callBack.macros[L"dir/util"] = L"Public Total As Integer\r\n";
    EXPECT_TRUE(Load(L"main"));
    EXPECT_EQ((std::vector<std::wstring>{L"dir/main", L"dir/util"}), callBack.reads);
    ASSERT_EQ(2u, callBack.mapped.size());
    EXPECT_EQ(std::make_pair(std::wstring(L"main"), std::wstring()), callBack.mapped[0]) << "no base for host names";
    EXPECT_EQ(std::make_pair(std::wstring(L"util"), std::wstring(L"dir/main")), callBack.mapped[1]);
    EXPECT_EQ((std::vector<bool>{true, false}), callBack.mappedWithoutBase) << "a host's name comes with a null base";
    EXPECT_TRUE(IsMacro(L"main"));
    EXPECT_EQ(L"dir/main", LoadedName(0));
    EXPECT_EQ(0, callBack.badCalls);
}

TEST_F(ModuleManagerTest, AStoppedMacroIsPausedAndCannotBeReloaded)
{
    callBack.macros[L"m"] = L"Sub Main\r\n    Debug.Print \"Main of m\"\r\nEnd Sub\r\n";
    callBack.macros[L"other"] = L"Sub Main\r\nEnd Sub\r\n";
    ASSERT_TRUE(Start(L"m"));
    EXPECT_TRUE(Load(L"other")) << "another module loads while m runs";
    EXPECT_EQ(ModuleStatus::Idle, unit->Context().Modules().Status("other"));
    EXPECT_EQ(ModuleStatus::Running, unit->Context().Modules().Status("m"));
    VARIANT_BOOL stopped = VARIANT_FALSE;
    EXPECT_EQ(S_OK, unit->Stop(&stopped));
    EXPECT_EQ(VARIANT_TRUE, stopped);
    EXPECT_EQ(ModuleStatus::Paused, unit->Context().Modules().Status("m"));
    EXPECT_TRUE(IsMacroActive(L"m"));
    EXPECT_FALSE(IsMacroActive(L"other"));
    EXPECT_FALSE(Load(L"m"));
    EXPECT_EQ(10010, callBack.errorNumbers.back());
    VARIANT_BOOL idle = VARIANT_FALSE;
    EXPECT_EQ(S_OK, unit->HaltAll(&idle));
    EXPECT_EQ(ModuleStatus::Idle, unit->Context().Modules().Status("m"));
}

TEST(DefaultCallBack, DebugPrintShowsATaskModalBoxAndReadMacroReadsAFile)
{
    CodeUnit* unit = static_cast<CodeUnit*>(static_cast<_CodeUnit*>(KZ_CreateCodeUnit()));
    ASSERT_NE(nullptr, unit);
    {
        brannoc::test::MessageBoxCapture capture;
        unit->Context().DebugPrint(L"printed\r\n");
        std::vector<brannoc::test::CapturedMessageBox> boxes = capture.Boxes();
        ASSERT_EQ(1u, boxes.size());
        EXPECT_EQ(L"Debug.Print", boxes[0].caption);
        EXPECT_EQ(L"printed\r\n", boxes[0].text);
        EXPECT_EQ(static_cast<UINT>(MB_OK), boxes[0].buttons);
    }
    // Without a callback the macro name is a file name; the text ends at an end-of-file character.
    wchar_t folder[MAX_PATH];
    wchar_t path[MAX_PATH];
    ASSERT_NE(0u, GetTempPathW(MAX_PATH, folder));
    ASSERT_NE(0u, GetTempFileNameW(folder, L"bbm", 0, path));
    const char text[] = "Sub Main\r\nEnd Sub\r\n\x1Anot Basic at all";
    HANDLE file = CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, file);
    DWORD written = 0;
    WriteFile(file, text, sizeof text - 1, &written, nullptr);
    CloseHandle(file);
    BSTR name = SysAllocString(path);
    VARIANT_BOOL loaded = VARIANT_FALSE;
    EXPECT_EQ(S_OK, unit->Load(name, &loaded));
    EXPECT_EQ(VARIANT_TRUE, loaded);
    SysFreeString(name);
    DeleteFileW(path);
    unit->Release();
}

TEST(StartText, SplitsNameAndCommand)
{
    struct Row {
        const char* text;
        const char* name;
        const char* command;
    } rows[] = {
        {"macro", "macro", ""},
        {"macro   one two", "macro", "one two"},
        {"\"my macro.bas\" -x", "my macro.bas", "-x"},
        {"\"my macro.bas\"", "my macro.bas", ""},
        {"\"open", "open", ""},
        {"", "", ""},
    };
    for (const Row& row : rows) {
        std::string name, command;
        ModuleManager::SplitStartText(row.text, name, command);
        EXPECT_EQ(row.name, name) << row.text;
        EXPECT_EQ(row.command, command) << row.text;
    }
}

TEST(ObjectModuleText, FirstLineThatIsNotACommentDecides)
{
    EXPECT_TRUE(ModuleManager::IsObjectModuleText("VERSION 1.0 CLASS\r\n"));
    EXPECT_TRUE(ModuleManager::IsObjectModuleText("' heading\r\n\r\n  VERSION 1.0 CLASS\r\n"));
    EXPECT_FALSE(ModuleManager::IsObjectModuleText("Sub Main\r\nVERSION\r\n"));
    EXPECT_FALSE(ModuleManager::IsObjectModuleText("' only a comment\r\n"));
    EXPECT_FALSE(ModuleManager::IsObjectModuleText(""));
}

TEST(StatusMessages, EachFailureHasItsNumberAndText)
{
    struct Row {
        ModuleStatus status;
        long number;
        const wchar_t* text;
    } rows[] = {
        {ModuleStatus::Idle, 0, L""},
        {ModuleStatus::Queued, 0, L""},
        {ModuleStatus::Running, 10010, L"Macro is already running."},
        {ModuleStatus::Paused, 10010, L"Macro is already running."},
        {ModuleStatus::Busy, 10509, L"Already evaluating an expression."},
        {ModuleStatus::AllocFailed, 10011, L"Can't allocate memory to macro/module."},
        {ModuleStatus::SyntaxErrors, 10012, L"Macro/module has syntax errors."},
        {ModuleStatus::NotFound, 10013, L"Macro/module does not exist."},
    };
    for (const Row& row : rows) {
        StatusMessage message = MessageForStatus(row.status);
        EXPECT_EQ(row.number, message.number) << static_cast<int>(row.status);
        EXPECT_EQ(std::wstring(row.text), message.text) << static_cast<int>(row.status);
    }
}

TEST_F(ModuleManagerTest, AClassObjectLeadsToItsInstanceAndItsLastReleaseRunsTheTerminator)
{
    callBack.macros[L"main"] = L"'#Uses \"counter\"\r\nSub Main\r\nEnd Sub\r\n";
    callBack.macros[L"counter"] = L"VERSION 1.0 CLASS\r\nAttribute VB_Name = \"Counter\"\r\nPublic Value As Long\r\n"
                                  L"Private Sub Class_Initialize()\r\nEnd Sub\r\n"
                                  L"Private Sub Class_Terminate()\r\nEnd Sub\r\n";
    ASSERT_TRUE(Start(L"main"));
    Module& counter = *bodies.seen["counter"];
    EngineContext& context = unit->Context();
    {
        EntryGuard guard(context);
        Variant object;
        ASSERT_TRUE(context.NewInstance(counter, object));
        ASSERT_EQ(VT_DISPATCH, object.Tag());
        EXPECT_EQ(L"Class_Initialize of counter\r\n", callBack.printed.back());
        ModuleInstance* instance = context.InstanceOf(object.Raw().punkVal);
        ASSERT_NE(nullptr, instance);
        EXPECT_EQ(&counter, &instance->OwnModule());
        EXPECT_EQ(nullptr, context.InstanceOf(unit->AsDispatch())) << "other objects have no instance";
        EXPECT_EQ(nullptr, context.InstanceOf(nullptr));

        Variant copy = object;
        object = Variant();
        EXPECT_EQ(1u, callBack.printed.size()) << "a copy still holds the instance";
        copy = Variant();
        ASSERT_EQ(2u, callBack.printed.size());
        EXPECT_EQ(L"Class_Terminate of counter\r\n", callBack.printed.back());
    }
    EXPECT_FALSE(Run());
}

// With the statement compiler: releasing the engine while a module-level variable of a loaded macro
// still holds a class instance runs its terminator through the callback, before the engine is gone.
TEST(EngineRelease, InstancesHeldByModuleVariablesEndBeforeTheEngine)
{
    FakeCallBack callBack;
    callBack.macros[L"main"] = L"'#Uses \"counter\"\r\nDim held As Counter\r\nSub Main\r\n"
                               L"    Set held = New Counter\r\n    Debug.Print \"set\"\r\nEnd Sub\r\n";
    callBack.macros[L"counter"] = L"VERSION 1.0 CLASS\r\nAttribute VB_Name = \"Counter\"\r\n"
                                  L"Private Sub Class_Terminate()\r\n    Debug.Print \"terminated\"\r\nEnd Sub\r\n";
    auto* unit = static_cast<CodeUnit*>(static_cast<_CodeUnit*>(KZ_CreateCodeUnit()));
    ASSERT_NE(nullptr, unit);
    unit->SetCallBack(&callBack);
    VARIANT_BOOL result = VARIANT_FALSE;
    ASSERT_EQ(S_OK, unit->Start(TestText(L"main"), &result));
    ASSERT_EQ(VARIANT_TRUE, result);
    ASSERT_EQ(S_OK, unit->Run(0, &result));
    ASSERT_EQ((std::vector<std::wstring>{L"\"set\"\r\n"}), callBack.printed);
    unit->Release();
    EXPECT_EQ((std::vector<std::wstring>{L"\"set\"\r\n", L"\"terminated\"\r\n"}), callBack.printed);
    EXPECT_EQ(0, callBack.badCalls);
}

// Hosts (and other clients) call the public members of a class instance by name through IDispatch.
TEST(ClassObjectDispatch, PublicMembersAreCalledByName)
{
    FakeCallBack callBack;
    callBack.macros[L"main"] = L"'#Uses \"counter\"\r\nSub Main\r\nEnd Sub\r\n";
    callBack.macros[L"counter"] =
        L"VERSION 1.0 CLASS\r\nAttribute VB_Name = \"Counter\"\r\nPublic Total As Long\r\n"
        L"Public Function Add(ByVal a As Long, Optional ByVal b As Long = 1) As Long\r\n"
        L"    Total = Total + a * b\r\n    Add = Total\r\nEnd Function\r\n"
        L"Public Property Get Value() As Long\r\nAttribute Value.VB_UserMemId = 0\r\n    Value = Total\r\nEnd Property\r\n"
        L"Private Sub Hidden()\r\nEnd Sub\r\n";
    auto* unit = static_cast<CodeUnit*>(static_cast<_CodeUnit*>(KZ_CreateCodeUnit()));
    ASSERT_NE(nullptr, unit);
    unit->SetCallBack(&callBack);
    ASSERT_TRUE(unit->Context().Modules().Load("main") == ModuleStatus::Idle);
    Module* counter = unit->Context().Modules().FindLoadedModule("counter");
    ASSERT_NE(nullptr, counter);
    Variant object;
    {
        EntryGuard guard(unit->Context());
        ASSERT_TRUE(unit->Context().NewInstance(*counter, object));
    }
    IDispatch* dispatch = object.Object();

    auto idOf = [&](std::vector<const wchar_t*> names, std::vector<DISPID>& ids) {
        ids.assign(names.size(), 0);
        return dispatch->GetIDsOfNames(IID_NULL, const_cast<LPOLESTR*>(names.data()), static_cast<UINT>(names.size()),
                                       0x409, ids.data());
    };
    std::vector<DISPID> ids;
    ASSERT_EQ(S_OK, idOf({L"add", L"b"}, ids));
    const DISPID add = ids[0];
    EXPECT_EQ(1, ids[1]) << "b is Add's second parameter";
    EXPECT_EQ(DISP_E_UNKNOWNNAME, idOf({L"Hidden"}, ids)) << "private members are not offered";

    auto invoke = [&](DISPID id, WORD flags, std::vector<VARIANT> arguments, std::vector<DISPID> named, Variant& result) {
        DISPPARAMS parameters{arguments.empty() ? nullptr : arguments.data(), named.empty() ? nullptr : named.data(),
                              static_cast<UINT>(arguments.size()), static_cast<UINT>(named.size())};
        return dispatch->Invoke(id, IID_NULL, 0x409, flags, &parameters, &result.Raw(), nullptr, nullptr);
    };
    auto longValue = [](long number) {
        VARIANT value;
        VariantInit(&value);
        value.vt = VT_I4;
        value.lVal = number;
        return value;
    };
    Variant result;
    ASSERT_EQ(S_OK, invoke(add, DISPATCH_METHOD, {longValue(2)}, {}, result));
    EXPECT_EQ(2, result.Long());
    // Add a:=5, b:=3 with the named arguments first in IDispatch order.
    ASSERT_EQ(S_OK, invoke(add, DISPATCH_METHOD, {longValue(3), longValue(5)}, {1, 0}, result));
    EXPECT_EQ(17, result.Long());
    EXPECT_EQ(DISP_E_PARAMNOTOPTIONAL, invoke(add, DISPATCH_METHOD, {}, {}, result));

    ASSERT_EQ(S_OK, idOf({L"Total"}, ids));
    ASSERT_EQ(S_OK, invoke(ids[0], DISPATCH_PROPERTYGET, {}, {}, result));
    EXPECT_EQ(17, result.Long());
    ASSERT_EQ(S_OK, invoke(ids[0], DISPATCH_PROPERTYPUT, {longValue(100)}, {DISPID_PROPERTYPUT}, result));
    ASSERT_EQ(S_OK, invoke(DISPID_VALUE, DISPATCH_PROPERTYGET, {}, {}, result));
    EXPECT_EQ(100, result.Long()) << "the default member";
    object = Variant();
    unit->Release();
    EXPECT_EQ(0, callBack.badCalls);
}

namespace {

// An engine with the statement compiler and the recording callback; released at the end of the test.
struct RealEngine {
    FakeCallBack callBack;
    CodeUnit* unit = static_cast<CodeUnit*>(static_cast<_CodeUnit*>(KZ_CreateCodeUnit()));

    RealEngine() { unit->SetCallBack(&callBack); }
    ~RealEngine()
    {
        VARIANT_BOOL ignored;
        unit->HaltAll(&ignored);
        unit->SetCallBack(nullptr);
        unit->Release();
    }
    ModuleManager& Modules() { return unit->Context().Modules(); }
    bool StartAndRun(const wchar_t* name)
    {
        VARIANT_BOOL started = VARIANT_FALSE;
        VARIANT_BOOL active = VARIANT_TRUE;
        return unit->Start(TestText(name), &started) == S_OK && started == VARIANT_TRUE &&
               unit->Run(0, &active) == S_OK && active == VARIANT_FALSE;
    }
};

} // namespace

// Two macros that name the same code module in '#Uses share it: it is read and compiled once, its
// module-level variables and initializer belong to one default instance, and it goes when nothing
// loaded uses it any more.
TEST(ModuleSharing, MacrosThatUseTheSameModuleShareIt)
{
    RealEngine engine;
    auto& macros = engine.callBack.macros;
    macros[L"first"] = L"'#Uses \"shared\"\r\nSub Main\r\n    Store 5\r\nEnd Sub\r\n";
    macros[L"second"] = L"'#Uses \"shared\"\r\nSub Main\r\n    Debug.Print Stored()\r\nEnd Sub\r\n";
    macros[L"shared"] = L"Dim kept As Long\r\nPrivate Sub Main\r\n    Debug.Print \"shared init\"\r\nEnd Sub\r\n"
                        L"Public Sub Store(ByVal value As Long)\r\n    kept = value\r\nEnd Sub\r\n"
                        L"Public Function Stored() As Long\r\n    Stored = kept\r\nEnd Function\r\n";
    ASSERT_TRUE(engine.StartAndRun(L"first"));
    Module* shared = engine.Modules().FindLoadedModule("shared");
    ASSERT_NE(nullptr, shared);
    ASSERT_TRUE(engine.StartAndRun(L"second"));
    EXPECT_EQ(shared, engine.Modules().FindLoadedModule("shared")) << "the loaded module is reused";
    EXPECT_EQ((std::vector<std::wstring>{L"\"shared init\"\r\n", L"5&\r\n"}), engine.callBack.printed);
    EXPECT_EQ(1, std::count(engine.callBack.reads.begin(), engine.callBack.reads.end(), L"shared"));
    EXPECT_EQ(2, shared->UseCount());

    VARIANT_BOOL result = VARIANT_FALSE;
    ASSERT_EQ(S_OK, engine.unit->Unload(TestText(L"first"), &result));
    EXPECT_NE(nullptr, engine.Modules().FindLoadedModule("shared")) << "second still uses it";
    ASSERT_EQ(S_OK, engine.unit->Unload(TestText(L"second"), &result));
    EXPECT_EQ(nullptr, engine.Modules().FindLoadedModule("shared"));
}

// A code module loaded with mode 2 gets its default instance and runs its initializer at once.
TEST(ModuleSharing, ModeTwoInitializesTheModuleAtLoad)
{
    RealEngine engine;
    engine.callBack.macros[L"util"] =
        L"Dim count As Long\r\nPrivate Sub Main\r\n    count = 7\r\n    Debug.Print \"util init\"\r\nEnd Sub\r\n";
    EntryGuard guard(engine.unit->Context());
    ASSERT_EQ(ModuleStatus::Idle, engine.Modules().Load("util", 2));
    Module* util = engine.Modules().FindLoadedModule("util");
    ASSERT_NE(nullptr, util);
    EXPECT_TRUE(util->IsCodeModule());
    EXPECT_NE(0u, util->Flags() & Module::kInitialized);
    ModuleInstance* instance = engine.Modules().DefaultInstance(*util);
    ASSERT_NE(nullptr, instance);
    EXPECT_EQ(VT_I4, instance->Slot(0).vt);
    EXPECT_EQ(7, instance->Slot(0).lVal);
    EXPECT_EQ(std::vector<std::wstring>{L"\"util init\"\r\n"}, engine.callBack.printed);

    ASSERT_EQ(ModuleStatus::Idle, engine.Modules().Load("util", 3));
    util = engine.Modules().FindLoadedModule("util");
    EXPECT_EQ(nullptr, engine.Modules().DefaultInstance(*util)) << "mode 3 makes no instance";
    EXPECT_EQ(1u, engine.callBack.printed.size());
}

// With the compiler trace on, each phase writes its entry and result lines.
TEST(ModuleSharing, TheCompilerTraceNamesEachPhase)
{
    auto* unit = static_cast<CodeUnit*>(static_cast<_CodeUnit*>(KZ_CreateCodeUnit()));
    ASSERT_NE(nullptr, unit);
    std::vector<std::wstring> lines;
    unit->Context().SetTraceSink([&](TraceKind, const std::wstring& text) {
        if (!text.empty() && (text[0] == L'*' || text.rfind(L"Result=", 0) == 0))
            lines.push_back(text);
    });
    unit->Context().Modules().GiveText("m", "'#Uses \"u\"\r\nSub Main\r\nEnd Sub\r\n");
    unit->Context().Modules().GiveText("u", "Sub Helper\r\nEnd Sub\r\n");
    VARIANT_BOOL ignored;
    unit->Run(static_cast<long>(0xFFFF8040), &ignored);
    lines.clear();
    ASSERT_EQ(ModuleStatus::Idle, unit->Context().Modules().Load("m"));
    const std::vector<std::wstring> expected{
        L"*Parse(\"m\")",          L"*ParseDeclarations1(\"m\")", L"Result=Okay",
        L"*Uses=u(\"m\")",         L"*Create(\"u\")",             L"Result=Okay",
        L"*ParseDeclarations1(\"u\")", L"Result=Okay",            L"*ParseDeclarations2(\"u\")",
        L"Result=Okay",            L"*ParseDeclarations2(\"m\")", L"Result=Okay",
        L"*ParseDefinitions(\"m\")", L"Result=Okay",              L"*ParseDefinitions(\"u\")",
        L"Result=Okay",            L"Result=Okay"};
    EXPECT_EQ(expected, lines);
    unit->Release();
}
