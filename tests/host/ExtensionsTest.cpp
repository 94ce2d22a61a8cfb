// Host extensions and type-library references: objects whose members macros call by name, named
// objects, module-specific extensions, removal, notification 14, the extension type lists, the trace
// lines, and the modules' '#Reference lines.
#include "automation/FakeObject.h"
#include "brannoc.h"
#include "host/CodeUnit.h"
#include "support/TestComObject.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

using namespace brannoc;

namespace {

const wchar_t kApplication[] = L"=Application\nTwice&(Value&)\nGreet$(Name$)\nCounter&=NewValue&\nBump\n";
// The standard OLE Automation library as a reference line gives it.
const wchar_t kOleAutomation[] = L"{00020430-0000-0000-C000-000000000046}#2.0#0#stdole2.tlb#OLE Automation";

// The implementation behind a described Application object; slots in description order.
struct Application {
    virtual long __stdcall Twice(long value) { return 2 * value; }
    virtual BSTR __stdcall Greet(BSTR name)
    {
        return SysAllocString((L"Hello " + std::wstring(name, SysStringLen(name))).c_str());
    }
    virtual long __stdcall GetCounter() { return counter; }
    virtual void __stdcall PutCounter(long value) { counter = value; }
    virtual void __stdcall Bump() { ++counter; }

    long counter = 0;
};

// The host callback: macros from a map; printed text, notifications, error numbers and trace lines
// recorded; SetMacroReferences offered when an answer is set.
class ExtensionCallBack final : public brannoc::testing::TestDispatch {
public:
    enum Member : DISPID { kDebugPrint = 1, kNotify, kReadMacro, kDebugTrace, kSetMacroReferences };

    std::map<std::wstring, std::wstring> macros;
    std::wstring printed;
    std::vector<short> notifications;
    std::vector<long> errors;
    std::vector<std::wstring> errorTexts;
    std::vector<std::wstring> traces;
    std::vector<std::wstring> referenceQueries;
    int referencesAnswer = -1;   // -1: no SetMacroReferences member

    HRESULT __stdcall GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override
    {
        if (count != 1)
            return DISP_E_UNKNOWNNAME;
        const std::wstring name = names[0];
        ids[0] = name == L"DebugPrint"   ? static_cast<DISPID>(kDebugPrint)
               : name == L"Notify"       ? kNotify
               : name == L"ReadMacro"    ? kReadMacro
               : name == L"DebugTrace"   ? kDebugTrace
               : name == L"SetMacroReferences" && referencesAnswer >= 0 ? kSetMacroReferences
                                         : DISPID_UNKNOWN;
        return ids[0] == DISPID_UNKNOWN ? DISP_E_UNKNOWNNAME : S_OK;
    }
    HRESULT __stdcall Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO*,
                             UINT*) override
    {
        VARIANT* arguments = parameters->rgvarg;
        switch (member) {
        case kDebugPrint: printed += Text(arguments[0]); return S_OK;
        case kDebugTrace: traces.push_back(Text(arguments[0])); return S_OK;
        case kNotify:
            notifications.push_back(arguments[0].iVal);
            if (arguments[0].iVal == 0) {
                _CodeUnit* engine = nullptr;
                if (SUCCEEDED(arguments[1].pdispVal->QueryInterface(IID__CodeUnit, reinterpret_cast<void**>(&engine)))) {
                    long number = 0;
                    BSTR text = nullptr;
                    engine->get_ErrorNumber(&number);
                    engine->get_ErrorDesc(&text);
                    errors.push_back(number);
                    errorTexts.push_back(text ? text : L"");
                    SysFreeString(text);
                    engine->Release();
                }
            }
            return S_OK;
        case kReadMacro: {
            auto found = macros.find(Text(arguments[0]));
            VariantInit(result);
            result->vt = VT_BSTR;
            result->bstrVal = found == macros.end() ? nullptr : SysAllocString(found->second.c_str());
            return S_OK;
        }
        case kSetMacroReferences:
            referenceQueries.push_back(Text(arguments[0]));
            VariantInit(result);
            result->vt = VT_BOOL;
            result->boolVal = referencesAnswer ? VARIANT_TRUE : VARIANT_FALSE;
            return S_OK;
        default: return DISP_E_MEMBERNOTFOUND;
        }
    }
    int Count(short code) const { return static_cast<int>(std::count(notifications.begin(), notifications.end(), code)); }
    bool Traced(const std::wstring& line) const
    {
        return std::find(traces.begin(), traces.end(), line) != traces.end();
    }
    bool TracedStart(const std::wstring& start) const
    {
        return std::any_of(traces.begin(), traces.end(), [&](const std::wstring& line) { return line.rfind(start, 0) == 0; });
    }

private:
    static std::wstring Text(const VARIANT& value)
    {
        return value.vt == VT_BSTR && value.bstrVal ? std::wstring(value.bstrVal, SysStringLen(value.bstrVal)) : std::wstring();
    }
};

class ExtensionsTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_NE(nullptr, unit);
        ASSERT_NE(nullptr, type);
        unit->SetCallBack(&callBack);
        app = OA_CreateDispatch(type, nullptr, &appImplementation, nullptr);
        other = OA_CreateDispatch(type, nullptr, &otherImplementation, nullptr);
        ASSERT_NE(nullptr, app);
        ASSERT_NE(nullptr, other);
    }
    void TearDown() override
    {
        if (unit) {
            VARIANT_BOOL ignored;
            unit->HaltAll(&ignored);
            unit->SetCallBack(nullptr);
            unit->Release();
        }
        if (app)
            app->Release();
        if (other)
            other->Release();
        if (type)
            type->Release();
    }
    bool Add(const std::wstring& prefix, IDispatch* object)
    {
        BSTR text = SysAllocString(prefix.c_str());
        VARIANT_BOOL added = VARIANT_FALSE;
        EXPECT_EQ(S_OK, unit->AddExtensionEx(text, object, &added));
        SysFreeString(text);
        return added == VARIANT_TRUE;
    }
    bool Remove(const std::wstring& prefix)
    {
        BSTR text = SysAllocString(prefix.c_str());
        VARIANT_BOOL removed = VARIANT_FALSE;
        EXPECT_EQ(S_OK, unit->RemoveExtensions(text, &removed));
        SysFreeString(text);
        return removed == VARIANT_TRUE;
    }
    // Loads the macro; the first error it reported, or 0 when it compiled.
    long Load(const wchar_t* name)
    {
        callBack.errors.clear();
        callBack.errorTexts.clear();
        BSTR text = SysAllocString(name);
        VARIANT_BOOL loaded = VARIANT_FALSE;
        EXPECT_EQ(S_OK, unit->Load(text, &loaded));
        SysFreeString(text);
        return callBack.errors.empty() ? 0 : callBack.errors.front();
    }
    bool Unload(const wchar_t* name)
    {
        BSTR text = SysAllocString(name);
        VARIANT_BOOL unloaded = VARIANT_FALSE;
        EXPECT_EQ(S_OK, unit->Unload(text, &unloaded));
        SysFreeString(text);
        return unloaded == VARIANT_TRUE;
    }
    // Starts the macro and runs it to its end; what it printed.
    std::wstring Run(const wchar_t* name)
    {
        callBack.printed.clear();
        callBack.errors.clear();
        BSTR text = SysAllocString(name);
        VARIANT_BOOL done = VARIANT_FALSE;
        EXPECT_EQ(S_OK, unit->Start(text, &done));
        SysFreeString(text);
        EXPECT_TRUE(done == VARIANT_TRUE) << "start of " << std::string(name, name + wcslen(name));
        if (done == VARIANT_TRUE)
            unit->Run(0, &done);
        return callBack.printed;
    }
    void TraceOn()
    {
        VARIANT_BOOL ignored;
        unit->Run(static_cast<short>(0x8040), &ignored);
        callBack.traces.clear();
    }
    std::wstring TypeName(const wchar_t* macro, short index)
    {
        BSTR name = nullptr;
        BSTR text = SysAllocString(macro);
        EXPECT_EQ(S_OK, unit->get_ExtensionTypeNameEx(text, index, &name));
        SysFreeString(text);
        std::wstring result = name ? std::wstring(name, SysStringLen(name)) : L"(null)";
        SysFreeString(name);
        return result;
    }

    CodeUnit* unit = static_cast<CodeUnit*>(static_cast<_CodeUnit*>(KZ_CreateCodeUnit()));
    ExtensionCallBack callBack;
    ITypeInfo* type = OA_CreateTypeW(kApplication);
    Application appImplementation;
    Application otherImplementation;
    IDispatch* app = nullptr;
    IDispatch* other = nullptr;
};

} // namespace

TEST_F(ExtensionsTest, BareMembersAreCalledAndAssignedByName)
{
    EXPECT_TRUE(Add(L"", app));
    callBack.macros[L"bare"] = L"Sub Main\r\n    Debug.Print Twice(21)\r\n    Bump\r\n    Counter = 10\r\n    Bump\r\n"
                               L"    Debug.Print Counter\r\n    Debug.Print Greet(\"you\")\r\n    Call Bump\r\nEnd Sub\r\n";
    EXPECT_EQ(L"42&\r\n11&\r\n\"Hello you\"\r\n", Run(L"bare"));
    EXPECT_EQ(12, appImplementation.counter);
}

TEST_F(ExtensionsTest, MacroNamesComeBeforeExtensionMembers)
{
    EXPECT_TRUE(Add(L"", app));
    callBack.macros[L"own"] = L"Function Twice(v)\r\n    Twice = v + 1\r\nEnd Function\r\n"
                              L"Sub Main\r\n    Debug.Print Twice(1)\r\nEnd Sub\r\n";
    EXPECT_EQ(L"2%\r\n", Run(L"own"));
}

TEST_F(ExtensionsTest, NamedObjectsAndPrefixesEndedByADot)
{
    EXPECT_TRUE(Add(L"App.", app));       // reached only as App.member
    EXPECT_TRUE(Add(L"Doc", other));      // a name, and its members by name too
    EXPECT_TRUE(Add(L"-Plain", app));     // the name alone
    EXPECT_TRUE(Add(L"Host:Main.", other)); // a name part before ":"
    callBack.macros[L"named"] = L"Sub Main\r\n    App.Counter = 5\r\n    App.Bump\r\n    Debug.Print App.Twice(App.Counter)\r\n"
                                L"    Bump\r\n    Debug.Print Doc.Counter\r\n    Debug.Print Plain.Twice(4)\r\n"
                                L"    Debug.Print Host.Greet(\"x\")\r\nEnd Sub\r\n";
    EXPECT_EQ(L"12&\r\n1&\r\n8&\r\n\"Hello x\"\r\n", Run(L"named"));
    EXPECT_EQ(6, appImplementation.counter);
    EXPECT_EQ(1, otherImplementation.counter);

    // With "App." the members are not names of their own: Twice(1) is an undeclared array.
    EXPECT_TRUE(Remove(L"|Doc"));
    callBack.macros[L"onlyname"] = L"Sub Main\r\n    x = Twice(1)\r\nEnd Sub\r\n";
    EXPECT_EQ(10607, Load(L"onlyname"));
}

TEST_F(ExtensionsTest, ObjectsWithoutTypeInformationAreNamedButGiveNoMembers)
{
    brannoc::testing::TestDispatch* plain = nullptr;
    struct Plain final : brannoc::testing::TestDispatch {
        HRESULT __stdcall GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }
        HRESULT __stdcall Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override
        {
            return DISP_E_MEMBERNOTFOUND;
        }
    } object;
    plain = &object;
    TraceOn();
    EXPECT_FALSE(Add(L"~", plain));
    EXPECT_TRUE(callBack.Traced(L"TypeInfo not available"));
    EXPECT_TRUE(Add(L"Thing", plain));
    EXPECT_TRUE(callBack.Traced(L"Add Extension 'Thing' No TypeInfo"));
    callBack.macros[L"thing"] = L"Sub Main\r\n    Debug.Print TypeName(Thing)\r\nEnd Sub\r\n";
    EXPECT_EQ(0, Load(L"thing"));
    // The compiled macro holds the object: it goes before the object does.
    EXPECT_TRUE(Unload(L"thing"));
    EXPECT_TRUE(Remove(L""));
    EXPECT_EQ(1u, object.References());
}

TEST_F(ExtensionsTest, ModuleVariablesGiveTheirObjectsMembers)
{
    EXPECT_TRUE(Add(L"withvar|+Other.", other));  // the type Application for that module, and the name Other
    EXPECT_TRUE(Add(L"withvar|!target", nullptr));
    otherImplementation.counter = 100;
    callBack.macros[L"withvar"] = L"Dim target As Application\r\nSub Main\r\n    Set target = Other\r\n    Bump\r\n"
                                  L"    Debug.Print Counter\r\nEnd Sub\r\n";
    EXPECT_EQ(L"101&\r\n", Run(L"withvar"));
    EXPECT_EQ(101, otherImplementation.counter);
}

TEST_F(ExtensionsTest, ModuleSpecificExtensionsAreSeenByTheirModuleOnlyAndRefusedOnceItExists)
{
    TraceOn();
    EXPECT_TRUE(Add(L"mine|", app));
    callBack.macros[L"mine"] = L"Sub Main\r\n    Debug.Print Twice(3)\r\nEnd Sub\r\n";
    callBack.macros[L"theirs"] = L"Sub Main\r\n    Debug.Print Twice(3)\r\nEnd Sub\r\n";
    EXPECT_EQ(L"6&\r\n", Run(L"mine"));
    EXPECT_EQ(10607, Load(L"theirs"));

    callBack.traces.clear();
    const int changes = callBack.Count(14);
    EXPECT_FALSE(Add(L"mine|Doc", other));
    EXPECT_TRUE(callBack.Traced(L"Module specific extension not allowed for a module that already exists."));
    EXPECT_FALSE(Remove(L"mine"));
    EXPECT_TRUE(callBack.Traced(L"Module specific extensions can't be removed for a module that still exists."));
    EXPECT_EQ(changes, callBack.Count(14));

    // Unloading the module ends its extensions: loaded again, it no longer sees them.
    EXPECT_TRUE(Unload(L"mine"));
    EXPECT_EQ(changes + 1, callBack.Count(14));
    EXPECT_EQ(10607, Load(L"mine"));

    // A module that is not loaded: its extensions can be removed.
    EXPECT_TRUE(Add(L"later|Doc", other));
    EXPECT_TRUE(Remove(L"later"));
    EXPECT_FALSE(Remove(L"later"));
}

TEST_F(ExtensionsTest, RemovalByPrefixAndNotificationFourteenAtEachChange)
{
    EXPECT_TRUE(Add(L"App.", app));
    EXPECT_EQ(1, callBack.Count(14));
    EXPECT_TRUE(Add(L"Doc", other));
    EXPECT_EQ(2, callBack.Count(14));
    EXPECT_FALSE(Add(L"ProjectName", nullptr));   // no object, no reference text: a project, not reachable here
    EXPECT_EQ(2, callBack.Count(14));

    EXPECT_TRUE(Remove(L"|App."));
    EXPECT_EQ(3, callBack.Count(14));
    EXPECT_FALSE(Remove(L"|App."));
    EXPECT_EQ(3, callBack.Count(14));
    callBack.macros[L"uses"] = L"Sub Main\r\n    Debug.Print Doc.Twice(2)\r\n    Debug.Print App.Twice(2)\r\nEnd Sub\r\n";
    callBack.printed.clear();
    Run(L"uses");
    EXPECT_EQ(L"4&\r\n", callBack.printed);
    EXPECT_FALSE(callBack.errors.empty());   // App is an empty variable now

    EXPECT_TRUE(Remove(L""));
    EXPECT_EQ(4, callBack.Count(14));
    BSTR name = nullptr;
    EXPECT_EQ(S_OK, unit->get_ExtensionTypeName(0, &name));
    EXPECT_EQ(nullptr, name);
}

TEST_F(ExtensionsTest, TraceLinesOfAnAdd)
{
    TraceOn();
    EXPECT_TRUE(Add(L"App", app));
    ASSERT_FALSE(callBack.traces.empty());
    EXPECT_EQ(L"*AddExtension(\"App\")", callBack.traces.front());
    EXPECT_TRUE(callBack.TracedStart(L"ExtObj="));
    EXPECT_TRUE(callBack.TracedStart(L"TypeInfo.UUID={"));
    EXPECT_TRUE(callBack.Traced(L"TypeInfo.Name=Application"));
    EXPECT_TRUE(callBack.TracedStart(L"Add Extension 'App' TypeInfo=Application {"));
    EXPECT_TRUE(callBack.TracedStart(L"Add DataType 'Application' TypeInfo=Application {"));
    EXPECT_TRUE(callBack.Traced(L"Result=True"));

    callBack.traces.clear();
    EXPECT_TRUE(Remove(L""));
    EXPECT_TRUE(callBack.Traced(L"*RemoveExtensionsAndReferences(\"\",\"\")"));
    EXPECT_TRUE(callBack.TracedStart(L"Remove Extension 'App' TypeInfo=Application"));
}

TEST_F(ExtensionsTest, TheStandardLibraryAsAReferenceAndItsTypeNames)
{
    TraceOn();
    EXPECT_TRUE(Add(L"*", app));
    EXPECT_TRUE(Add(std::wstring(L"'#Reference ") + kOleAutomation, nullptr));
    EXPECT_TRUE(callBack.Traced(L"*AddReference(\"'#Reference " + std::wstring(kOleAutomation) + L"\")"));
    EXPECT_TRUE(callBack.Traced(L"TypeLib.Name=stdole"));
    EXPECT_TRUE(callBack.Traced(L"TypeLib.UUID={00020430-0000-0000-C000-000000000046}"));
    EXPECT_TRUE(callBack.TracedStart(L"Add Library 'stdole' TypeLib=stdole {00020430-0000-0000-C000-000000000046}"));

    EXPECT_EQ(L"Application", TypeName(L"", 0));
    const std::wstring second = TypeName(L"", 1);
    EXPECT_EQ(L"stdole.", second.substr(0, 7));

    BSTR names = nullptr;
    VARIANT types;
    VariantInit(&types);
    EXPECT_EQ(S_OK, unit->get_ExtensionTypes(nullptr, &types, &names));
    ASSERT_NE(nullptr, names);
    const std::wstring joined(names, SysStringLen(names));
    SysFreeString(names);
    EXPECT_EQ(0u, joined.find(std::wstring(L"Application") + L'\0' + second + L'\0'));
    const long count = static_cast<long>(std::count(joined.begin(), joined.end(), L'\0'));
    ASSERT_EQ(VT_ARRAY | VT_VARIANT, types.vt);
    ASSERT_EQ(2u, SafeArrayGetDim(types.parray));
    LONG upper = 0;
    SafeArrayGetUBound(types.parray, 1, &upper);
    EXPECT_EQ(count - 1, upper);
    SafeArrayGetUBound(types.parray, 2, &upper);
    EXPECT_EQ(1, upper);
    VARIANT cell;
    VariantInit(&cell);
    LONG index[2] = {0, 1};
    ASSERT_EQ(S_OK, SafeArrayGetElement(types.parray, index, &cell));
    EXPECT_EQ(VT_DISPATCH, cell.vt);
    EXPECT_EQ(app, cell.pdispVal);
    VariantClear(&cell);
    index[0] = 0;
    index[1] = 1;
    LONG typeIndex[2] = {0, 0};
    ASSERT_EQ(S_OK, SafeArrayGetElement(types.parray, typeIndex, &cell));
    EXPECT_EQ(VT_UNKNOWN, cell.vt);
    IUnknown* first = nullptr;
    EXPECT_EQ(S_OK, unit->get_ExtensionType(0, &first));
    EXPECT_EQ(first, cell.punkVal);
    if (first)
        first->Release();
    VariantClear(&cell);
    LONG libraryRow[2] = {1, 1};
    ASSERT_EQ(S_OK, SafeArrayGetElement(types.parray, libraryRow, &cell));
    EXPECT_EQ(VT_EMPTY, cell.vt);
    VariantClear(&types);

    // No types: no text, and an array without dimensions.
    EXPECT_TRUE(Remove(L""));
    EXPECT_EQ(S_OK, unit->get_ExtensionTypes(nullptr, &types, &names));
    EXPECT_EQ(nullptr, names);
    EXPECT_EQ(VT_ARRAY | VT_VARIANT, types.vt);
    EXPECT_EQ(nullptr, types.parray);
}

TEST_F(ExtensionsTest, ReferenceTextsThatGiveNoLibrary)
{
    TraceOn();
    EXPECT_FALSE(Add(L"'#Reference {00020430-0000-0000-C000-000000000046}#2.0#0 stdole2.tlb", nullptr));
    EXPECT_TRUE(callBack.Traced(L"TypeLib not available"));
    EXPECT_FALSE(Add(L"{0BAD0BAD-0000-0000-C000-000000000046}#1.0#0#none.tlb#Nothing", nullptr));
    EXPECT_FALSE(Add(L"{not a guid}#1.0#0", nullptr));
    EXPECT_EQ(0, callBack.Count(14));
}

TEST_F(ExtensionsTest, ModuleTypesAreListedForTheirModule)
{
    EXPECT_TRUE(Add(L"typed|+Other.", other));
    EXPECT_EQ(L"(null)", TypeName(L"", 0));
    EXPECT_EQ(L"Application", TypeName(L"typed", 0));
}

TEST_F(ExtensionsTest, ReferenceLinesMakeLibraryTypesAndConstantsUsable)
{
    callBack.macros[L"refs"] = std::wstring(L"'#Reference ") + kOleAutomation +
                               L"\r\nSub Main\r\n    Dim f As stdole.IFontDisp\r\n    Dim g As IFontDisp\r\n"
                               L"    Debug.Print TypeName(f)\r\n    Debug.Print Checked + Gray\r\nEnd Sub\r\n";
    EXPECT_EQ(L"\"Nothing\"\r\n3&\r\n", Run(L"refs"));
    EXPECT_EQ(L"stdole.", TypeName(L"refs", 0).substr(0, 7));
    EXPECT_EQ(L"(null)", TypeName(L"", 0));
}

TEST_F(ExtensionsTest, AnUnregisteredLibraryStopsTheReferenceLines)
{
    callBack.macros[L"badref"] = std::wstring(L"'#Reference {0BAD0BAD-0000-0000-C000-000000000046}#1.0#0#none.tlb#Nothing\r\n") +
                                 L"'#Reference " + kOleAutomation + L"\r\nSub Main\r\nEnd Sub\r\n";
    EXPECT_EQ(10642, Load(L"badref"));
    ASSERT_FALSE(callBack.errorTexts.empty());
    EXPECT_EQ(L"The reference could not be added. '{0BAD0BAD-0000-0000-C000-000000000046}#1.0#0#none.tlb#Nothing'",
              callBack.errorTexts.front());
    // The line after the failing one was not applied.
    EXPECT_EQ(L"(null)", TypeName(L"badref", 0));
}

TEST_F(ExtensionsTest, TheHostCanTakeTheReferenceLinesOver)
{
    callBack.referencesAnswer = 0;
    callBack.macros[L"vetoed"] = std::wstring(L"'#Reference {0BAD0BAD-0000-0000-C000-000000000046}#1.0#0#none.tlb#Nothing\r\n") +
                                 L"'#Reference " + kOleAutomation + L"\r\nSub Main\r\nEnd Sub\r\n";
    EXPECT_EQ(0, Load(L"vetoed"));
    ASSERT_EQ(1u, callBack.referenceQueries.size());
    EXPECT_EQ(L"vetoed", callBack.referenceQueries.front());
    EXPECT_EQ(L"(null)", TypeName(L"vetoed", 0));

    callBack.referencesAnswer = 1;
    EXPECT_EQ(10642, Load(L"vetoed"));
}

TEST_F(ExtensionsTest, TheExportedFunctionsReachTheSameMembers)
{
    EXPECT_EQ(TRUE, CU_AddExtension(unit, "*", app) != 0);
    BSTR name = CU_ExtensionTypeName(unit, 0);
    ASSERT_NE(nullptr, name);
    EXPECT_EQ("Application", std::string(reinterpret_cast<const char*>(name), SysStringByteLen(name)));
    SysFreeString(name);
    name = CU_ExtensionTypeNameEx(unit, "", 0);
    ASSERT_NE(nullptr, name);
    SysFreeString(name);
    IUnknown* first = CU_ExtensionType(unit, 0);
    EXPECT_NE(nullptr, first);
    if (first)
        first->Release();
    VARIANT types;
    VariantInit(&types);
    BSTR names = CU_ExtensionTypes(unit, "", &types);
    ASSERT_NE(nullptr, names);
    EXPECT_EQ(std::string("Application") + '\0', std::string(reinterpret_cast<const char*>(names), SysStringByteLen(names)));
    SysFreeString(names);
    VariantClear(&types);
    EXPECT_NE(0, CU_RemoveExtensions(unit, ""));
    EXPECT_EQ(nullptr, CU_ExtensionTypeEx(unit, "", 0));
}

TEST_F(ExtensionsTest, ErrorsOfAServerReachErr)
{
    brannoc::testing::FakeObject server;
    EXPECT_TRUE(Add(L"-Server", &server));
    callBack.macros[L"errs"] = L"Sub Main\r\n    On Error Resume Next\r\n    Server.Picky 1, 2, 3\r\n"
                               L"    Debug.Print Err.Number\r\n    Debug.Print Err.Description\r\n    Err.Clear\r\n"
                               L"    Server.Fail\r\n    Debug.Print Hex(Err.Number)\r\n    Debug.Print Err.Description\r\nEnd Sub\r\n";
    EXPECT_EQ(L"10083&\r\n\"Type mismatch for parameter #3.\"\r\n\"80040123\"\r\n\"server failed\"\r\n", Run(L"errs"));
    EXPECT_TRUE(Unload(L"errs"));
    EXPECT_TRUE(Remove(L""));
    EXPECT_EQ(1u, server.References());
}
