// The type library embedded in the DLL: identifiers, attributes and the engine object's members.
#include "brannoc.h"
#include "support/EngineLibrary.h"
#include <gtest/gtest.h>
#include <oleauto.h>
#include <string>

using brannoc::test::EngineLibrary;

namespace {

// Holds one reference of a COM interface for the test's duration.
template <typename T>
struct Ref {
    T* p = nullptr;
    ~Ref() { if (p) p->Release(); }
    T** operator&() { return &p; }
    T* operator->() const { return p; }
};

ITypeLib* LoadEngineTypeLibrary()
{
    EngineLibrary library;
    ITypeLib* lib = nullptr;
    if (FAILED(LoadTypeLibEx(library.Path().c_str(), REGKIND_NONE, &lib)))
        return nullptr;
    return lib;
}

struct MemberRow {
    const wchar_t* name;
    MEMBERID id;
    bool get, put, method;
};

// Every member of the engine object's interface with its member id and kinds.
const MemberRow kMembers[] = {
    {L"CallBack", 9, true, false, false}, {L"CallersLine", 10, true, false, false},
    {L"Caption", 0, true, true, false}, {L"CurrentLine", 12, true, false, false},
    {L"DefaultCallBack", 13, true, false, false}, {L"DoEvents", 14, true, true, false},
    {L"ErrorDesc", 15, true, true, false}, {L"ErrorLimit", 16, true, true, false},
    {L"ErrorLine", 17, true, false, false}, {L"ErrorLineNum", 18, true, false, false},
    {L"ErrorMacroName", 19, true, false, false}, {L"ErrorOffset", 20, true, false, false},
    {L"Evaluate", 21, true, true, false}, {L"EvaluateObject", 22, true, false, false},
    {L"Evaluating", 23, true, false, false}, {L"ExtensionType", 24, true, false, false},
    {L"ExtensionTypeName", 25, true, false, false}, {L"Fire", 26, true, false, false},
    {L"HelpFile", 29, true, false, false}, {L"IsActive", 30, true, false, false},
    {L"IsIdle", 31, true, false, false}, {L"IsPaused", 32, true, false, false},
    {L"IsStopped", 33, true, false, false}, {L"Keywords", 34, true, false, false},
    {L"LineNum", 35, true, true, false}, {L"MacroName", 37, true, false, false},
    {L"StackDepth", 40, true, true, false}, {L"Version", 46, true, false, false},
    {L"AddExtension", 1, false, false, true}, {L"Call0", 3, false, false, true},
    {L"Call1", 4, false, false, true}, {L"Call2", 5, false, false, true}, {L"Call3", 6, false, false, true},
    {L"Call4", 7, false, false, true}, {L"Call5", 8, false, false, true}, {L"Continue", 11, false, false, true},
    {L"Halt", 27, false, false, true}, {L"HaltAll", 28, false, false, true}, {L"Load", 36, false, false, true},
    {L"Run", 38, false, false, true}, {L"SetCallBack", 39, false, false, true}, {L"Start", 41, false, false, true},
    {L"Step", 42, false, false, true}, {L"Stop", 43, false, false, true}, {L"ToggleBreak", 44, false, false, true},
    {L"Unload", 45, false, false, true}, {L"BlockedKeywords", 47, true, true, false},
    {L"LoadedMacroName", 48, true, false, false}, {L"CreateHandler", 49, false, false, true},
    {L"IsMacro", 50, true, false, false}, {L"Shutdown", 51, false, false, true},
    {L"RemoveExtensions", 52, false, false, true}, {L"Prototypes", 53, true, false, false},
    {L"Rename", 54, false, false, true}, {L"MacroKeywords", 55, true, false, false},
    {L"CreateHandlers", 56, false, false, true}, {L"IsMacroActive", 57, true, false, false},
    {L"Macro", 58, false, false, true}, {L"BreakLineNum", 59, true, false, false},
    {L"AddExtensionEx", 60, false, false, true}, {L"ExtensionTypeEx", 61, true, false, false},
    {L"ExtensionTypeNameEx", 62, true, false, false}, {L"ExtensionTypes", 63, true, false, false},
    {L"ErrorNumber", 64, true, false, false}, {L"ErrorSource", 65, true, false, false},
    {L"ErrorHelpFile", 66, true, false, false}, {L"ErrorHelpContext", 67, true, false, false},
    {L"ProjectCreate", 100, false, false, true}, {L"ProjectDestroy", 101, false, false, true},
    {L"IsProject", 102, true, false, false},
};

} // namespace

TEST(TypeLibrary, LoadsFromTheDllWithItsAttributes)
{
    Ref<ITypeLib> lib;
    lib.p = LoadEngineTypeLibrary();
    ASSERT_NE(nullptr, lib.p);
    TLIBATTR* attributes = nullptr;
    ASSERT_EQ(S_OK, lib->GetLibAttr(&attributes));
    EXPECT_TRUE(IsEqualGUID(LIBID_BrannocBasicCodeUnitLib, attributes->guid));
    EXPECT_EQ(1, attributes->wMajorVerNum);
    EXPECT_EQ(1, attributes->wMinorVerNum);
    EXPECT_EQ(0x409u, attributes->lcid);
    lib->ReleaseTLibAttr(attributes);
    BSTR name = nullptr, help = nullptr;
    ASSERT_EQ(S_OK, lib->GetDocumentation(-1, &name, &help, nullptr, nullptr));
    EXPECT_STREQ(L"BrannocBasicCodeUnitLib", name);
    EXPECT_STREQ(L"Brannoc Basic CodeUnit", help);
    SysFreeString(name);
    SysFreeString(help);
}

TEST(TypeLibrary, CodeUnitClassHasTheDualInterfaceAsDefault)
{
    Ref<ITypeLib> lib;
    lib.p = LoadEngineTypeLibrary();
    ASSERT_NE(nullptr, lib.p);
    Ref<ITypeInfo> coclass;
    ASSERT_EQ(S_OK, lib->GetTypeInfoOfGuid(CLSID_CodeUnit, &coclass));
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(S_OK, coclass->GetTypeAttr(&attributes));
    EXPECT_EQ(TKIND_COCLASS, attributes->typekind);
    coclass->ReleaseTypeAttr(attributes);
    HREFTYPE href = 0;
    ASSERT_EQ(S_OK, coclass->GetRefTypeOfImplType(0, &href));
    Ref<ITypeInfo> implemented;
    ASSERT_EQ(S_OK, coclass->GetRefTypeInfo(href, &implemented));
    ASSERT_EQ(S_OK, implemented->GetTypeAttr(&attributes));
    EXPECT_TRUE(IsEqualGUID(IID__CodeUnit, attributes->guid));
    EXPECT_NE(0, attributes->wTypeFlags & TYPEFLAG_FDUAL);
    implemented->ReleaseTypeAttr(attributes);
}

TEST(TypeLibrary, CodeUnitInterfaceHasEveryMemberWithItsDispatchId)
{
    Ref<ITypeLib> lib;
    lib.p = LoadEngineTypeLibrary();
    ASSERT_NE(nullptr, lib.p);
    Ref<ITypeInfo> info;
    ASSERT_EQ(S_OK, lib->GetTypeInfoOfGuid(IID__CodeUnit, &info));
    for (const MemberRow& row : kMembers) {
        SCOPED_TRACE(std::string(row.name, row.name + wcslen(row.name)));
        MEMBERID id = -1;
        LPOLESTR name = const_cast<LPOLESTR>(row.name);
        ASSERT_EQ(S_OK, info->GetIDsOfNames(&name, 1, &id));
        EXPECT_EQ(row.id, id);
        auto hasKind = [&](INVOKEKIND kind) {
            TYPEATTR* attributes = nullptr;
            info->GetTypeAttr(&attributes);
            bool found = false;
            for (UINT i = 0; i < attributes->cFuncs && !found; ++i) {
                FUNCDESC* desc = nullptr;
                info->GetFuncDesc(i, &desc);
                found = desc->memid == row.id && desc->invkind == kind;
                info->ReleaseFuncDesc(desc);
            }
            info->ReleaseTypeAttr(attributes);
            return found;
        };
        EXPECT_EQ(row.get, hasKind(INVOKE_PROPERTYGET));
        EXPECT_EQ(row.put, hasKind(INVOKE_PROPERTYPUT));
        EXPECT_EQ(row.method, hasKind(INVOKE_FUNC));
    }
}

TEST(TypeLibrary, CodeUnitMembersHaveTheirHelpStringsAndVtableOrder)
{
    Ref<ITypeLib> lib;
    lib.p = LoadEngineTypeLibrary();
    ASSERT_NE(nullptr, lib.p);
    Ref<ITypeInfo> dispatchView;
    ASSERT_EQ(S_OK, lib->GetTypeInfoOfGuid(IID__CodeUnit, &dispatchView));
    // The interface half of the dual interface carries the vtable layout.
    HREFTYPE href = 0;
    ASSERT_EQ(S_OK, dispatchView->GetRefTypeOfImplType(-1, &href));
    Ref<ITypeInfo> vtableView;
    ASSERT_EQ(S_OK, dispatchView->GetRefTypeInfo(href, &vtableView));
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(S_OK, vtableView->GetTypeAttr(&attributes));
    EXPECT_EQ(TKIND_INTERFACE, attributes->typekind);
    const UINT count = attributes->cFuncs;
    vtableView->ReleaseTypeAttr(attributes);
    UINT expected = 0;
    for (const MemberRow& row : kMembers)
        expected += row.get + row.put + row.method;
    EXPECT_EQ(expected, count) << "one function per get, put and method, nothing more";
    const SHORT firstSlot = 7 * sizeof(void*);   // after IUnknown and IDispatch
    for (UINT i = 0; i < count; ++i) {
        FUNCDESC* desc = nullptr;
        ASSERT_EQ(S_OK, vtableView->GetFuncDesc(i, &desc));
        EXPECT_EQ(firstSlot + static_cast<SHORT>(i * sizeof(void*)), desc->oVft) << "function " << i;
        vtableView->ReleaseFuncDesc(desc);
    }
    BSTR help = nullptr;
    ASSERT_EQ(S_OK, vtableView->GetDocumentation(38, nullptr, &help, nullptr, nullptr));
    EXPECT_STREQ(L"Run until stack depth is less than Depth", help);
    SysFreeString(help);
}

TEST(TypeLibrary, CarriesTheOtherEngineTypesAndTheConstantEnumerations)
{
    Ref<ITypeLib> lib;
    lib.p = LoadEngineTypeLibrary();
    ASSERT_NE(nullptr, lib.p);
    for (const GUID* id : {&IID__CallBack, &DIID_CallBack, &IID__Handlers, &CLSID_Handlers, &IID_ErrObject,
                           &IID__BasicObject, &CLSID_KZB}) {
        Ref<ITypeInfo> info;
        EXPECT_EQ(S_OK, lib->GetTypeInfoOfGuid(*id, &info));
    }
    Ref<ITypeInfo> callBack;
    ASSERT_EQ(S_OK, lib->GetTypeInfoOfGuid(DIID_CallBack, &callBack));
    MEMBERID id = 0;
    LPOLESTR name = const_cast<LPOLESTR>(L"ReadMacro");
    ASSERT_EQ(S_OK, callBack->GetIDsOfNames(&name, 1, &id));
    EXPECT_EQ(0x60000003, id);

    for (const wchar_t* enumName : {L"VbVarType", L"VbMsgBoxStyle", L"VbMsgBoxResult", L"VbAppWinStyle",
                                    L"VbFileAttribute", L"VbDayOfWeek", L"VbFirstWeekOfYear", L"VbStrConv",
                                    L"VbCallType", L"VbConstants"}) {
        ITypeInfo* found[1] = {};
        MEMBERID ids[1] = {};
        USHORT wanted = 1;
        EXPECT_EQ(S_OK, lib->FindName(const_cast<LPOLESTR>(enumName), 0, found, ids, &wanted));
        EXPECT_EQ(1, wanted) << "missing";
        if (wanted && found[0])
            found[0]->Release();
    }
}

TEST(TypeLibrary, TheLanguageObjectDescribesTheAboutBoxOnceWithItsDefaultTimeout)
{
    Ref<ITypeLib> lib;
    lib.p = LoadEngineTypeLibrary();
    ASSERT_NE(nullptr, lib.p);
    Ref<ITypeInfo> basic;
    ASSERT_EQ(S_OK, lib->GetTypeInfoOfGuid(IID__BasicObject, &basic));
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(S_OK, basic->GetTypeAttr(&attributes));
    int aboutCount = 0;
    int msgBoxCount = 0;
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        ASSERT_EQ(S_OK, basic->GetFuncDesc(i, &function));
        BSTR name = nullptr;
        basic->GetDocumentation(function->memid, &name, nullptr, nullptr, nullptr);
        const std::wstring text = name ? name : L"";
        SysFreeString(name);
        if (text == L"MsgBox")
            ++msgBoxCount;
        if (text == L"AboutBrannocBasic") {
            ++aboutCount;
            EXPECT_EQ(1, function->memid);
            ASSERT_GE(function->cParams, 1);
            const PARAMDESC& timeout = function->lprgelemdescParam[0].paramdesc;
            EXPECT_TRUE(timeout.wParamFlags & PARAMFLAG_FOPT);
            ASSERT_TRUE(timeout.wParamFlags & PARAMFLAG_FHASDEFAULT);
            ASSERT_NE(nullptr, timeout.pparamdescex);
            VARIANT five;
            VariantInit(&five);
            ASSERT_EQ(S_OK, VariantChangeType(&five, &timeout.pparamdescex->varDefaultValue, 0, VT_I4));
            EXPECT_EQ(5, V_I4(&five));
        }
        basic->ReleaseFuncDesc(function);
    }
    basic->ReleaseTypeAttr(attributes);
    EXPECT_EQ(1, aboutCount) << "the built-in and the description give one member";
    EXPECT_EQ(1, msgBoxCount) << "the built-ins are described too";
}
