// The KZBE_ functions over a stand-in editor component: which member each one calls (dispatch number,
// kind of call, arguments), what a null handle does, how an exception from the component ends the
// handle, Attach and Detach, and the exported names.
#include "automation/FakeEditor.h"
#include "support/EngineLibrary.h"
#include "support/MessageBoxCapture.h"

#include "brannoc.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

using brannoc::test::EngineLibrary;
using brannoc::test::MessageBoxCapture;
using brannoc::testing::FakeEditor;
using brannoc::testing::TestDispatch;

namespace {

constexpr WORD kGet = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

// A bare object passed as an argument or handed back as a result.
class Token final : public TestDispatch {
public:
    HRESULT __stdcall GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT __stdcall Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override
    {
        return DISP_E_MEMBERNOTFOUND;
    }
};

std::string TakeAnsi(BSTR text)
{
    if (!text)
        return "(null)";
    std::string bytes(reinterpret_cast<const char*>(text), OA_SysStringLenA(text));
    OA_SysFreeStringA(text);
    return bytes;
}

void ExpectText(const FakeEditor::Argument& argument, const wchar_t* text)
{
    EXPECT_EQ(VT_BSTR, argument.type);
    EXPECT_EQ(std::wstring(text), argument.text);
}

void ExpectFlag(const FakeEditor::Argument& argument, VARIANT_BOOL flag)
{
    EXPECT_EQ(VT_BOOL, argument.type);
    EXPECT_EQ(flag, argument.flag);
}

void ExpectObject(const FakeEditor::Argument& argument, IDispatch* object)
{
    EXPECT_EQ(VT_DISPATCH, argument.type);
    EXPECT_EQ(object, argument.object);
}

// One call of the given member and kind, with count arguments; a get asks for a result, the others not.
void ExpectOneCall(const FakeEditor& editor, DISPID member, WORD flags, size_t count)
{
    ASSERT_EQ(1u, editor.calls.size());
    const FakeEditor::Call& call = editor.LastCall();
    EXPECT_EQ(member, call.member);
    EXPECT_EQ(flags, call.flags);
    EXPECT_EQ(count, call.arguments.size());
    EXPECT_EQ(flags == kGet, call.resultWanted);
    if (flags == DISPATCH_PROPERTYPUT)
        EXPECT_EQ(std::vector<DISPID>{DISPID_PROPERTYPUT}, call.named);
    else
        EXPECT_TRUE(call.named.empty());
}

// Every KZBE_ function that takes a handle, called once with the given one.
void CallEveryHandleFunction(IDispatch* editor, Token& token)
{
    KZBE_AddExtension(editor, "App", &token);
    OA_Release(KZBE_CodeUnit(editor));
    KZBE_Continue(editor);
    OA_SysFreeStringA(KZBE_CurrentMacroName(editor));
    KZBE_EditMacro(editor);
    KZBE_Interrupt(editor);
    KZBE_IsActive(editor, TRUE);
    KZBE_IsIdle(editor, TRUE);
    KZBE_IsStopped(editor, TRUE);
    KZBE_LoadMacro(editor, "M");
    KZBE_Maximize(editor);
    KZBE_Minimize(editor);
    KZBE_Restore(editor);
    KZBE_RunMacro(editor, "M");
    KZBE_SetHiddenCode(editor, "Sub X\r\nEnd Sub");
    KZBE_SetIni(editor, "a.ini", "Editor");
    KZBE_Visible(editor);
    KZBE_VisiblePut(editor, TRUE);
    OA_SysFreeStringA(KZBE_FileDesc(editor));
    KZBE_FileDescPut(editor, "Macros");
    OA_SysFreeStringA(KZBE_FileExt(editor));
    KZBE_FileExtPut(editor, "BAS");
    KZBE_EventMode(editor);
    KZBE_EventModePut(editor, TRUE);
    OA_Release(KZBE_Fire(editor, FALSE));
    OA_Release(KZBE_CreateHandler(editor, "Click"));
    KZBE_LoadModule(editor, "Mod");
    KZBE_UnloadModule(editor, "Mod");
    KZBE_Locked(editor);
    KZBE_LockedPut(editor, TRUE);
    KZBE_Enabled(editor);
    KZBE_EnabledPut(editor, TRUE);
    KZBE_MultiSheet(editor);
    KZBE_MultiSheetPut(editor, TRUE);
    KZBE_ReportError(editor, &token);
    KZBE_FileChangeDir(editor);
    KZBE_FileChangeDirPut(editor, TRUE);
    OA_Release(KZBE_CreateHandlers(editor, "Btn", &token));
    OA_Release(KZBE_ModuleInstance(editor, "Mod", TRUE));
}

// Makes the one stand-in component for everyone who asks for it.
class EditorFactory final : public brannoc::testing::TestComObject<IClassFactory> {
public:
    explicit EditorFactory(FakeEditor& editor) : m_editor(editor) {}
    HRESULT __stdcall CreateInstance(IUnknown* outer, REFIID id, void** object) override
    {
        *object = nullptr;
        return outer ? CLASS_E_NOAGGREGATION : m_editor.QueryInterface(id, object);
    }
    HRESULT __stdcall LockServer(BOOL) override { return S_OK; }

private:
    FakeEditor& m_editor;
};

// "Brannoc.BasicEditor2" registered for the life of the holder: the ProgID under HKEY_CLASSES_ROOT and
// a class object in this process, so that creating the component by its ProgID finds the stand-in.
class RegisteredEditor final {
public:
    explicit RegisteredEditor(FakeEditor& editor) : m_factory(editor)
    {
        RegSetValueA(HKEY_CLASSES_ROOT, "Brannoc.BasicEditor2\\Clsid", REG_SZ, kClassId, 0);
        OA_RegisterClassObjectA(&m_factory, kClassId, TRUE, &m_cookie);
    }
    ~RegisteredEditor()
    {
        OA_RevokeClassObject(m_cookie);
        RegDeleteKeyA(HKEY_CLASSES_ROOT, "Brannoc.BasicEditor2\\Clsid");
        RegDeleteKeyA(HKEY_CLASSES_ROOT, "Brannoc.BasicEditor2");
    }
    RegisteredEditor(const RegisteredEditor&) = delete;
    RegisteredEditor& operator=(const RegisteredEditor&) = delete;
    bool Registered() const { return m_cookie != 0; }

private:
    static constexpr char kClassId[] = "{5B0E8D21-7C4A-4F3B-9E62-1A8D3C7F0B45}";
    EditorFactory m_factory;
    DWORD m_cookie = 0;
};

} // namespace

TEST(EditorApiCalls, MethodsWithoutAResultCallTheirNumberAsMethods)
{
    const struct {
        void(__stdcall* function)(IDispatch*);
        DISPID member;
    } methods[] = {{KZBE_Continue, 4}, {KZBE_EditMacro, 7}, {KZBE_Interrupt, 8},
                   {KZBE_Maximize, 13}, {KZBE_Minimize, 14}, {KZBE_Restore, 15}};
    for (const auto& method : methods) {
        SCOPED_TRACE(method.member);
        FakeEditor editor;
        method.function(&editor);
        ExpectOneCall(editor, method.member, DISPATCH_METHOD, 0);
    }

    FakeEditor editor;
    KZBE_RunMacro(&editor, "Main");
    ExpectOneCall(editor, 16, DISPATCH_METHOD, 1);
    ExpectText(editor.LastCall().arguments[0], L"Main");

    editor.calls.clear();
    KZBE_SetIni(&editor, "editor.ini", "Brannoc");
    ExpectOneCall(editor, 18, DISPATCH_METHOD, 2);
    ExpectText(editor.LastCall().arguments[0], L"editor.ini");
    ExpectText(editor.LastCall().arguments[1], L"Brannoc");

    editor.calls.clear();
    KZBE_RunMacro(&editor, nullptr);
    ExpectOneCall(editor, 16, DISPATCH_METHOD, 1);
    ExpectText(editor.LastCall().arguments[0], L"");
    EXPECT_EQ(1u, editor.References());
}

TEST(EditorApiCalls, BooleanGettersAskTheirNumberAndAnswerZeroOrOne)
{
    const struct {
        BOOL(__stdcall* function)(IDispatch*);
        DISPID member;
    } getters[] = {{KZBE_Visible, 19}, {KZBE_EventMode, 22}, {KZBE_Locked, 27},
                   {KZBE_Enabled, 28}, {KZBE_MultiSheet, 29}, {KZBE_FileChangeDir, 31}};
    for (const auto& getter : getters) {
        SCOPED_TRACE(getter.member);
        FakeEditor editor;
        editor.flagAnswers[getter.member] = VARIANT_TRUE;
        EXPECT_EQ(1, getter.function(&editor));
        ExpectOneCall(editor, getter.member, kGet, 0);
        editor.flagAnswers[getter.member] = VARIANT_FALSE;
        EXPECT_EQ(0, getter.function(&editor));
    }

    // The state getters answer the component's value, not the default they are given.
    const struct {
        BOOL(__stdcall* function)(IDispatch*, BOOL);
        DISPID member;
    } states[] = {{KZBE_IsActive, 9}, {KZBE_IsIdle, 10}, {KZBE_IsStopped, 11}};
    for (const auto& state : states) {
        SCOPED_TRACE(state.member);
        FakeEditor editor;
        editor.flagAnswers[state.member] = VARIANT_FALSE;
        EXPECT_EQ(0, state.function(&editor, TRUE));
        ExpectOneCall(editor, state.member, kGet, 0);
        editor.flagAnswers[state.member] = VARIANT_TRUE;
        EXPECT_EQ(1, state.function(&editor, FALSE));
        EXPECT_EQ(1u, editor.References());
    }
}

TEST(EditorApiCalls, BooleanMethodsPassTheirArgumentsAndAnswerZeroOrOne)
{
    Token token;
    FakeEditor editor;
    editor.flagAnswers[1] = VARIANT_TRUE;
    EXPECT_EQ(1, KZBE_AddExtension(&editor, "App", &token));
    ExpectOneCall(editor, 1, kGet, 2);
    ExpectText(editor.LastCall().arguments[0], L"App");
    ExpectObject(editor.LastCall().arguments[1], &token);

    const struct {
        BOOL(__stdcall* function)(IDispatch*, LPCSTR);
        DISPID member;
    } textMethods[] = {{KZBE_LoadMacro, 12}, {KZBE_SetHiddenCode, 17}, {KZBE_LoadModule, 25}, {KZBE_UnloadModule, 26}};
    for (const auto& method : textMethods) {
        SCOPED_TRACE(method.member);
        FakeEditor textEditor;
        textEditor.flagAnswers[method.member] = VARIANT_TRUE;
        EXPECT_EQ(1, method.function(&textEditor, "Sheet 1"));
        ExpectOneCall(textEditor, method.member, kGet, 1);
        ExpectText(textEditor.LastCall().arguments[0], L"Sheet 1");
        textEditor.flagAnswers[method.member] = VARIANT_FALSE;
        EXPECT_EQ(0, method.function(&textEditor, "Sheet 1"));
    }

    editor.calls.clear();
    editor.flagAnswers[30] = VARIANT_TRUE;
    EXPECT_EQ(1, KZBE_ReportError(&editor, &token));
    ExpectOneCall(editor, 30, kGet, 1);
    ExpectObject(editor.LastCall().arguments[0], &token);
    EXPECT_EQ(1u, token.References()) << "the argument's reference is given back";
}

TEST(EditorApiCalls, PutsPassTheValueAsThePropertyPutArgument)
{
    const struct {
        void(__stdcall* function)(IDispatch*, BOOL);
        DISPID member;
    } flagPuts[] = {{KZBE_VisiblePut, 19}, {KZBE_EventModePut, 22}, {KZBE_LockedPut, 27},
                    {KZBE_EnabledPut, 28}, {KZBE_MultiSheetPut, 29}, {KZBE_FileChangeDirPut, 31}};
    for (const auto& put : flagPuts) {
        SCOPED_TRACE(put.member);
        FakeEditor editor;
        put.function(&editor, 5);
        ExpectOneCall(editor, put.member, DISPATCH_PROPERTYPUT, 1);
        ExpectFlag(editor.LastCall().arguments[0], VARIANT_TRUE);
        editor.calls.clear();
        put.function(&editor, FALSE);
        ExpectOneCall(editor, put.member, DISPATCH_PROPERTYPUT, 1);
        ExpectFlag(editor.LastCall().arguments[0], VARIANT_FALSE);
    }

    FakeEditor editor;
    KZBE_FileDescPut(&editor, "Brannoc Basic|Text");
    ExpectOneCall(editor, 20, DISPATCH_PROPERTYPUT, 1);
    ExpectText(editor.LastCall().arguments[0], L"Brannoc Basic|Text");
    editor.calls.clear();
    KZBE_FileExtPut(&editor, "KZB|TXT");
    ExpectOneCall(editor, 21, DISPATCH_PROPERTYPUT, 1);
    ExpectText(editor.LastCall().arguments[0], L"KZB|TXT");
}

TEST(EditorApiCalls, TextGettersGiveAnsiTextTheCallerFrees)
{
    const struct {
        BSTR(__stdcall* function)(IDispatch*);
        DISPID member;
    } getters[] = {{KZBE_CurrentMacroName, 5}, {KZBE_FileDesc, 20}, {KZBE_FileExt, 21}};
    for (const auto& getter : getters) {
        SCOPED_TRACE(getter.member);
        FakeEditor editor;
        editor.textAnswers[getter.member] = L"Macro One";
        BSTR text = getter.function(&editor);
        ExpectOneCall(editor, getter.member, kGet, 0);
        ASSERT_NE(nullptr, text);
        EXPECT_EQ(9u, OA_SysStringLenA(text)) << "one byte a character";
        EXPECT_EQ("Macro One", TakeAnsi(text));
    }
}

TEST(EditorApiCalls, ObjectResultsAreHeldForTheCaller)
{
    Token result;
    Token argument;
    FakeEditor editor;
    for (DISPID member : {3, 23, 24, 32, 33})
        editor.objectAnswers[member] = &result;

    IDispatch* engine = KZBE_CodeUnit(&editor);
    ExpectOneCall(editor, 3, kGet, 0);
    EXPECT_EQ(&result, engine);
    EXPECT_EQ(2u, result.References());
    OA_Release(engine);

    editor.calls.clear();
    IDispatch* fire = KZBE_Fire(&editor, TRUE);
    ExpectOneCall(editor, 23, kGet, 1);
    ExpectFlag(editor.LastCall().arguments[0], VARIANT_TRUE);
    EXPECT_EQ(&result, fire);
    OA_Release(fire);

    editor.calls.clear();
    IDispatch* handler = KZBE_CreateHandler(&editor, "Sub Click()");
    ExpectOneCall(editor, 24, kGet, 1);
    ExpectText(editor.LastCall().arguments[0], L"Sub Click()");
    EXPECT_EQ(&result, handler);
    OA_Release(handler);

    editor.calls.clear();
    IDispatch* handlers = KZBE_CreateHandlers(&editor, "Button_", &argument);
    ExpectOneCall(editor, 32, kGet, 2);
    ExpectText(editor.LastCall().arguments[0], L"Button_");
    ExpectObject(editor.LastCall().arguments[1], &argument);
    EXPECT_EQ(&result, handlers);
    OA_Release(handlers);

    editor.calls.clear();
    IDispatch* instance = KZBE_ModuleInstance(&editor, "Ledger", FALSE);
    ExpectOneCall(editor, 33, kGet, 2);
    ExpectText(editor.LastCall().arguments[0], L"Ledger");
    ExpectFlag(editor.LastCall().arguments[1], VARIANT_FALSE);
    EXPECT_EQ(&result, instance);
    OA_Release(instance);

    EXPECT_EQ(1u, result.References());
    EXPECT_EQ(1u, argument.References());
    EXPECT_EQ(1u, editor.References());
}

TEST(EditorApiCalls, EveryFunctionReachesItsOwnMemberOnce)
{
    Token token;
    FakeEditor editor;
    CallEveryHandleFunction(&editor, token);
    ASSERT_EQ(39u, editor.calls.size());
    std::set<DISPID> members;
    for (const FakeEditor::Call& call : editor.calls)
        members.insert(call.member);
    std::set<DISPID> expected;
    for (DISPID member = 1; member <= 33; ++member) {
        if (member != 2 && member != 6)
            expected.insert(member);
    }
    EXPECT_EQ(expected, members);
    EXPECT_EQ(1u, editor.References());
    EXPECT_EQ(1u, token.References());
}

TEST(EditorApiNullHandle, MethodsDoNothingAndGettersAnswerZeroOrTheirDefault)
{
    MessageBoxCapture boxes;
    Token token;
    CallEveryHandleFunction(nullptr, token);
    EXPECT_EQ(0u, boxes.Count()) << "a null handle is not reported";
    EXPECT_EQ(1u, token.References());

    EXPECT_EQ(0, KZBE_AddExtension(nullptr, "App", &token));
    EXPECT_EQ(nullptr, KZBE_CodeUnit(nullptr));
    EXPECT_EQ(nullptr, KZBE_CurrentMacroName(nullptr));
    EXPECT_EQ(nullptr, KZBE_FileDesc(nullptr));
    EXPECT_EQ(nullptr, KZBE_FileExt(nullptr));
    EXPECT_EQ(0, KZBE_Visible(nullptr));
    EXPECT_EQ(0, KZBE_LoadMacro(nullptr, "M"));
    EXPECT_EQ(nullptr, KZBE_Fire(nullptr, TRUE));
    EXPECT_EQ(nullptr, KZBE_ModuleInstance(nullptr, "Mod", TRUE));
    for (BOOL fallback : {FALSE, TRUE}) {
        EXPECT_EQ(fallback, KZBE_IsActive(nullptr, fallback));
        EXPECT_EQ(fallback, KZBE_IsIdle(nullptr, fallback));
        EXPECT_EQ(fallback, KZBE_IsStopped(nullptr, fallback));
    }
}

TEST(EditorApiExceptions, ABooleanOrValueLessCallThatRaisesAnswersTheDefaultAndReleasesTheHandle)
{
    MessageBoxCapture boxes;
    for (bool withTexts : {true, false}) {
        SCOPED_TRACE(withTexts ? "exception with texts" : "exception with a status only");
        FakeEditor idle;
        idle.raising[10] = {withTexts};
        EXPECT_EQ(1, KZBE_IsIdle(&idle, TRUE));
        EXPECT_EQ(0u, idle.References());

        FakeEditor loading;
        loading.raising[12] = {withTexts};
        EXPECT_EQ(0, KZBE_LoadMacro(&loading, "M"));
        EXPECT_EQ(0u, loading.References());

        FakeEditor continuing;
        continuing.raising[4] = {withTexts};
        KZBE_Continue(&continuing);
        EXPECT_EQ(0u, continuing.References());

        FakeEditor showing;
        showing.raising[19] = {withTexts};
        KZBE_VisiblePut(&showing, TRUE);
        EXPECT_EQ(0u, showing.References());
    }
    EXPECT_EQ(0u, boxes.Count());
}

TEST(EditorApiExceptions, OtherFailuresAndTextOrObjectCallsKeepTheHandle)
{
    MessageBoxCapture boxes;
    FakeEditor editor;
    editor.failing = {4, 10, 12, 19};
    editor.raising[5] = {};
    editor.raising[3] = {};
    KZBE_Continue(&editor);
    EXPECT_EQ(0, KZBE_IsIdle(&editor, TRUE)) << "only an exception gives the default";
    EXPECT_EQ(0, KZBE_LoadMacro(&editor, "M"));
    KZBE_VisiblePut(&editor, TRUE);
    EXPECT_EQ(nullptr, KZBE_CurrentMacroName(&editor));
    EXPECT_EQ(nullptr, KZBE_CodeUnit(&editor));
    EXPECT_EQ(6u, editor.calls.size());
    EXPECT_EQ(1u, editor.References());
    EXPECT_EQ(0u, boxes.Count()) << "the KZBE_ functions show nothing";
}

TEST(EditorApiDetach, DetachCallsItsMethodThenReleasesAndZeroesTheHandle)
{
    const struct {
        BOOL(__stdcall* function)(IDispatch**);
        DISPID member;
    } detaches[] = {{KZBE_Detach, 6}, {KZBE_DetachNoCancel, 34}};
    for (const auto& detach : detaches) {
        SCOPED_TRACE(detach.member);
        FakeEditor editor;
        editor.AddRef();   // the component's own reference besides the caller's
        IDispatch* handle = &editor;
        EXPECT_EQ(1, detach.function(&handle));
        EXPECT_EQ(nullptr, handle);
        ExpectOneCall(editor, detach.member, DISPATCH_METHOD, 0);
        EXPECT_EQ(1u, editor.References());

        FakeEditor raising;
        raising.raising[detach.member] = {};
        handle = &raising;
        EXPECT_EQ(1, detach.function(&handle));
        EXPECT_EQ(nullptr, handle);
        EXPECT_EQ(0u, raising.References()) << "released once";

        IDispatch* none = nullptr;
        EXPECT_EQ(1, detach.function(&none));
        EXPECT_EQ(1, detach.function(nullptr));
    }
}

TEST(EditorApiAttach, WithoutTheRegisteredComponentAttachAnswersNull)
{
    ASSERT_TRUE(OA_Initialize());
    {
        MessageBoxCapture boxes;
        Token host;
        EXPECT_EQ(nullptr, KZBE_Attach("Ledger", &host));
        EXPECT_EQ(nullptr, KZBE_Attach(nullptr, nullptr));
        EXPECT_EQ(1u, host.References());
        EXPECT_EQ(0u, boxes.Count());
    }
    OA_Uninitialize();
}

TEST(EditorApiAttach, AttachCreatesTheComponentAndTellsItTheHost)
{
    ASSERT_TRUE(OA_Initialize());
    {
        MessageBoxCapture boxes;
        Token host;
        FakeEditor editor;
        RegisteredEditor registration(editor);
        ASSERT_TRUE(registration.Registered());
        IDispatch* handle = KZBE_Attach("Ledger", &host);
        ASSERT_NE(nullptr, handle);
        ExpectOneCall(editor, 2, DISPATCH_METHOD, 2);
        ExpectText(editor.LastCall().arguments[0], L"Ledger");
        ExpectObject(editor.LastCall().arguments[1], &host);
        EXPECT_EQ(1, KZBE_Detach(&handle));
        EXPECT_EQ(1u, editor.References()) << "the handle's reference is given back";

        // The component refusing the host: its reference is released and there is no handle.
        editor.calls.clear();
        editor.failing.insert(2);
        EXPECT_EQ(nullptr, KZBE_Attach("Ledger", &host));
        ExpectOneCall(editor, 2, DISPATCH_METHOD, 2);
        EXPECT_EQ(1u, editor.References());
        EXPECT_EQ(1u, host.References());
        EXPECT_EQ(0u, boxes.Count());
    }
    OA_Uninitialize();
}

TEST(EditorApiExports, PlainAndDecoratedNamesReachTheSameFunctions)
{
    EngineLibrary library;
    ASSERT_TRUE(library.Loaded());
    const struct {
        const char* plain;
        const char* decorated;
    } names[] = {{"KZBE_Attach", "_KZBE_Attach@8"}, {"KZBE_Detach", "_KZBE_Detach@4"},
                 {"KZBE_IsIdle", "_KZBE_IsIdle@8"}, {"KZBE_SetIni", "_KZBE_SetIni@12"},
                 {"KZBE_ModuleInstance", "_KZBE_ModuleInstance@12"}, {"KZBE_DetachNoCancel", "_KZBE_DetachNoCancel@4"}};
    for (const auto& name : names) {
        SCOPED_TRACE(name.plain);
        FARPROC decorated = library.Proc(name.decorated);
        EXPECT_NE(nullptr, decorated);
        EXPECT_EQ(decorated, library.Proc(name.plain));
    }

    // Called through the DLL's decorated names: the same calls reach the component.
    using StateFunction = BOOL(__stdcall*)(IDispatch*, BOOL);
    using IniFunction = void(__stdcall*)(IDispatch*, LPCSTR, LPCSTR);
    auto isIdle = library.As<StateFunction>("_KZBE_IsIdle@8");
    auto setIni = library.As<IniFunction>("_KZBE_SetIni@12");
    ASSERT_NE(nullptr, isIdle);
    ASSERT_NE(nullptr, setIni);
    FakeEditor editor;
    editor.flagAnswers[10] = VARIANT_TRUE;
    EXPECT_EQ(1, isIdle(&editor, FALSE));
    EXPECT_EQ(TRUE, isIdle(nullptr, TRUE));
    setIni(&editor, "a.ini", "S");
    ASSERT_EQ(2u, editor.calls.size());
    EXPECT_EQ(10, editor.calls[0].member);
    EXPECT_EQ(18, editor.calls[1].member);
    ExpectText(editor.calls[1].arguments[1], L"S");
}
