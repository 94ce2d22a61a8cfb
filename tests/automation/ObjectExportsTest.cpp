// Objects of the OA_ family: creation by ProgID, active objects, type inspection texts, enumerators,
// server applications and the per-thread language state.
#include "support/MessageBoxCapture.h"

#include "brannoc.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace {

std::string Take(BSTR ansi)
{
    if (!ansi)
        return "(null)";
    std::string text(reinterpret_cast<const char*>(ansi), OA_SysStringLenA(ansi));
    OA_SysFreeStringA(ansi);
    return text;
}

std::string Hex(DISPID id)
{
    char text[16];
    snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(id));
    return text;
}

struct Thing {
    virtual long __stdcall Add(long a, long b) { return a + b; }
    virtual BSTR __stdcall GetValue() { return SysAllocString(L"v"); }
    virtual void __stdcall PutValue(BSTR) {}
    virtual void __stdcall Run(short) {}
};

const char kThing[] = "=Thing|Add&(A&, B&)|Value$=NewValue$|Run X%";

class OleThread : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(OA_Initialize()); }
    void TearDown() override { OA_Uninitialize(); }
};

} // namespace

TEST_F(OleThread, CreateObjectByProgIdAndCallIt)
{
    IDispatch* dictionary = OA_CreateObjectA("Scripting.Dictionary");
    ASSERT_NE(nullptr, dictionary);
    OA_ARG list;
    OA_ArgStart(2, &list);
    OA_ArgAddStringA(&list, "key");
    OA_ArgAddI4(&list, 5);
    EXPECT_TRUE(OA_Invoke(dictionary, OA_GetDispatchIDA(dictionary, "Add"), &list, nullptr));
    EXPECT_EQ(1, OA_InvokeI4(dictionary, OA_GetDispatchIDW(dictionary, L"Count"), nullptr, nullptr));
    EXPECT_EQ(-1, OA_GetDispatchIDA(dictionary, "NoSuchMember"));
    OA_Release(dictionary);
    EXPECT_EQ(nullptr, OA_CreateObjectA("Brannoc.NoSuchClass.1"));
    EXPECT_EQ(nullptr, OA_CreateObjectW(L"{00000000-1111-2222-3333-444444444444}"));
    EXPECT_EQ(-1, OA_GetDispatchIDA(nullptr, "x"));
    EXPECT_EQ(0u, OA_Release(nullptr));
}

TEST_F(OleThread, ARegisteredActiveObjectIsFoundAgain)
{
    const char classText[] = "{6A1F7C3E-2B9D-4E50-8C71-0D3E5F9A2B14}";
    ITypeInfo* type = OA_CreateTypeA(kThing);
    Thing thing;
    IDispatch* object = OA_CreateDispatch(type, nullptr, &thing, nullptr);
    EXPECT_EQ(nullptr, OA_ActiveObjectA(classText));
    DWORD cookie = 0;
    ASSERT_TRUE(OA_RegisterActiveObjectA(object, classText, &cookie));
    EXPECT_NE(0u, cookie);
    IDispatch* found = OA_ActiveObjectA(classText);
    ASSERT_NE(nullptr, found);
    EXPECT_EQ(&thing, OA_GetDispatchData(found));
    OA_Release(found);
    OA_RevokeActiveObject(cookie);
    EXPECT_EQ(nullptr, OA_ActiveObjectA(classText));
    DWORD refused = 99;
    EXPECT_FALSE(OA_RegisterActiveObjectA(object, "Brannoc.NoSuchClass.1", &refused));
    EXPECT_EQ(0u, refused);
    OA_Release(object);
    OA_Release(type);
}

TEST(TypeInspection, MemberDescriptionsNamesAndIds)
{
    ITypeInfo* type = OA_CreateTypeA(kThing);
    ASSERT_NE(nullptr, type);
    Thing thing;
    IDispatch* object = OA_CreateDispatch(type, nullptr, &thing, nullptr);
    const DISPID add = OA_GetDispatchIDA(object, "add");
    const DISPID run = OA_GetDispatchIDA(object, "Run");
    EXPECT_EQ(Hex(add) + ":Add&(A&, B&)", Take(OA_GetTypeDescA(object, 0, 0)));
    EXPECT_EQ(Hex(add) + ":Add(A As Long, B As Long) As Long", Take(OA_GetTypeDescA(type, 0, 1)));
    EXPECT_EQ("0x00000000:Value$()=>", Take(OA_GetTypeDescA(type, 1, 0)));
    // The platform gives no name for a property put's value: it is written as "Param" and its position.
    EXPECT_EQ("0x00000000:Value Param01$=<", Take(OA_GetTypeDescA(type, 2, 0)));
    EXPECT_EQ(Hex(run) + ":Run X%", Take(OA_GetTypeDescA(type, 3, 0)));
    EXPECT_EQ("(null)", Take(OA_GetTypeDescA(type, 4, 0)));
    EXPECT_EQ("p.Add p.Value p.Value p.Run ", Take(OA_GetDispatchNamesA(object, "p.")));
    EXPECT_EQ("Run", Take(OA_GetDispatchNameA(type, run)));
    EXPECT_EQ("Thing", Take(OA_GetDispatchNameA(object, -1)));
    // A member whose id is -1 is listed under its own name, not the type's.
    ITypeInfo* minusOne = OA_CreateTypeA("=Iface\n0xFFFFFFFF:Foo\nBar\n");
    ASSERT_NE(nullptr, minusOne);
    EXPECT_EQ(".Foo .Bar ", Take(OA_GetDispatchNamesA(minusOne, ".")));
    OA_Release(minusOne);
    EXPECT_EQ(1, OA_GetDispatchID2A(object, "Add", "B"));

    ITypeComp* comp = OA_GetComp(object);
    ASSERT_NE(nullptr, comp);
    EXPECT_EQ(Hex(add) + ":Add&(A&, B&)", Take(OA_GetCompDescA(comp, "Add", 0)));
    EXPECT_EQ("0x00000000:Value$()=>\r\n0x00000000:Value Param01$=<", Take(OA_GetCompDescA(comp, "Value", 0)));
    EXPECT_EQ("(null)", Take(OA_GetCompDescA(comp, "Missing", 0)));
    OA_Release(comp);

    METHODDATA* put = OA_GetMethodData(type, DISPID_VALUE, DISPATCH_PROPERTYPUT);
    ASSERT_NE(nullptr, put);
    EXPECT_EQ(2u, put->iMeth);
    EXPECT_EQ(nullptr, OA_GetMethodData(type, 12345, DISPATCH_METHOD));
    OA_Release(object);
    OA_Release(type);
}

namespace {

BOOL __stdcall Squares(IUnknown*, LONG index, VARIANT* element)
{
    if (index >= 4)
        return FALSE;
    element->vt = VT_I4;
    element->lVal = index * index;
    return TRUE;
}

} // namespace

TEST(Enumerator, NextSkipResetAndClone)
{
    IEnumVARIANT* items = OA_CreateEnum(nullptr, Squares);
    ASSERT_NE(nullptr, items);
    VARIANT values[3];
    ULONG fetched = 0;
    EXPECT_EQ(S_OK, items->Next(2, values, &fetched));
    EXPECT_EQ(2u, fetched);
    EXPECT_EQ(0, values[0].lVal);
    EXPECT_EQ(1, values[1].lVal);
    EXPECT_EQ(S_OK, items->Skip(1));
    IEnumVARIANT* copy = nullptr;
    ASSERT_EQ(S_OK, items->Clone(&copy));
    EXPECT_EQ(S_FALSE, items->Next(3, values, &fetched));
    EXPECT_EQ(1u, fetched);
    EXPECT_EQ(9, values[0].lVal);
    // Exhausted: Skip does nothing, Next fetches nothing until Reset.
    EXPECT_EQ(S_FALSE, items->Skip(1));
    EXPECT_EQ(S_FALSE, items->Next(1, values, &fetched));
    EXPECT_EQ(0u, fetched);
    EXPECT_EQ(S_OK, items->Reset());
    EXPECT_EQ(S_OK, items->Next(1, values, &fetched));
    EXPECT_EQ(0, values[0].lVal);
    EXPECT_EQ(S_OK, copy->Next(1, values, &fetched));
    EXPECT_EQ(9, values[0].lVal);
    copy->Release();
    items->Release();
}

namespace {

struct AppRecord {
    int created = 0;
    int destroyed = 0;
    Thing thing;
};
AppRecord s_app;

void* __stdcall CreateApp(OA_APPLICATION*)
{
    ++s_app.created;
    return &s_app.thing;
}

void __stdcall DestroyApp(void* implementation, void*)
{
    if (implementation == &s_app.thing)
        ++s_app.destroyed;
}

} // namespace

TEST(Application, SizeGuardAndEmptyDescriptor)
{
    std::thread([] {
        OA_APPLICATION descriptor{};
        descriptor.size = 40;
        descriptor.application = reinterpret_cast<IDispatch*>(1);
        EXPECT_FALSE(OA_InitializeApplication(&descriptor, ""));
        EXPECT_EQ(reinterpret_cast<IDispatch*>(1), descriptor.application);
        // OLE was not initialised on this thread: a multithreaded apartment can still be entered.
        EXPECT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_MULTITHREADED));
        CoUninitialize();
        descriptor.size = 36;
        EXPECT_TRUE(OA_InitializeApplication(&descriptor, ""));
        EXPECT_EQ(nullptr, descriptor.application);
        OA_UninitializeApplication(&descriptor);
    }).join();
}

TEST(Application, RegistersTheServerAndMakesTheApplicationObject)
{
    std::thread([] {
        OA_APPLICATION descriptor{};
        descriptor.size = 36;
        descriptor.type = kThing;
        descriptor.progId = "Brannoc.TestApplication";
        descriptor.create = CreateApp;
        descriptor.destroy = DestroyApp;
        ASSERT_TRUE(OA_InitializeApplication(&descriptor, "-Embedding"));
        ASSERT_NE(nullptr, descriptor.application);
        EXPECT_EQ(&s_app.thing, OA_GetDispatchData(descriptor.application));
        EXPECT_EQ(1, s_app.created);
        char value[64] = {};
        LONG size = sizeof value;
        EXPECT_EQ(ERROR_SUCCESS, RegQueryValueA(HKEY_CLASSES_ROOT, "Brannoc.TestApplication", value, &size));
        EXPECT_STREQ("IDispatch", value);
        // Asked again, the same object.
        IDispatch* again = OA_AppCreateDispatch(nullptr, &descriptor);
        EXPECT_EQ(descriptor.application, again);
        OA_Release(again);
        OA_UninitializeApplication(&descriptor);
        EXPECT_EQ(nullptr, descriptor.application);
        EXPECT_EQ(1, s_app.destroyed);

        // Started for automation: a class object registered under the ProgID (registered above) makes
        // the application object, which then becomes the ProgID's active object.
        ASSERT_TRUE(OA_InitializeApplication(&descriptor, "/automation"));
        ASSERT_NE(nullptr, descriptor.classObject);
        EXPECT_NE(0u, descriptor.classCookie);
        EXPECT_EQ(nullptr, descriptor.application);
        IDispatch* created = OA_CreateInstance(descriptor.classObject);
        ASSERT_NE(nullptr, created);
        EXPECT_EQ(2, s_app.created);
        EXPECT_EQ(descriptor.application, created);
        EXPECT_NE(0u, descriptor.activeCookie);
        IDispatch* active = OA_ActiveObjectA("Brannoc.TestApplication");
        EXPECT_EQ(&s_app.thing, OA_GetDispatchData(active));
        OA_Release(active);
        OA_Release(created);
        OA_UninitializeApplication(&descriptor);
        EXPECT_EQ(nullptr, descriptor.classObject);
        EXPECT_EQ(2, s_app.destroyed);
    }).join();
}

TEST(Language, LockKeepsTheLanguage)
{
    std::thread([] {
        EXPECT_TRUE(OA_NlsSetLangID(0x407));
        EXPECT_EQ(0x407, OA_NlsGetLangID());
        EXPECT_EQ(MAKELCID(0x407, SORT_DEFAULT), OA_NlsGetOleLCID());
        OA_NlsLock(TRUE);
        EXPECT_FALSE(OA_NlsSetLangID(0x409));
        EXPECT_EQ(0x407, OA_NlsGetLangID());
        OA_NlsLock(FALSE);
        EXPECT_TRUE(OA_NlsSetLangID(0x409));
        EXPECT_EQ(0x409, OA_NlsGetLangID());
        EXPECT_TRUE(OA_NlsSetLangID(1024));
        EXPECT_EQ(GetUserDefaultLangID(), OA_NlsGetLangID());
        EXPECT_NE(nullptr, OA_NlsGetInstance());
        EXPECT_STREQ("5.0.01", OA_Version());
    }).join();
}

TEST(Language, AdjustPathNameFindsTheLanguageVariant)
{
    std::thread([] {
        char directory[MAX_PATH];
        GetTempPathA(MAX_PATH, directory);
        std::string base = std::string(directory) + "brannoc_nls_test\\";
        CreateDirectoryA(base.c_str(), nullptr);
        std::string variant = base + "abcd_000.txt";
        HANDLE file = CreateFileA(variant.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        ASSERT_NE(INVALID_HANDLE_VALUE, file);
        CloseHandle(file);
        OA_NlsSetLangID(0x409);
        char path[MAX_PATH];
        strcpy(path, (base + "abcdefgh.txt").c_str());
        EXPECT_TRUE(OA_NlsAdjustPathName(path, FALSE));
        EXPECT_EQ(variant, path);
        strcpy(path, (base + "abcdefgh.txt").c_str());
        EXPECT_FALSE(OA_NlsAdjustPathName(path, TRUE));   // satellites use "@"
        std::string english = base + "abcd_ENU.txt";
        file = CreateFileA(english.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        CloseHandle(file);
        strcpy(path, (base + "abcdefgh.txt").c_str());
        EXPECT_TRUE(OA_NlsAdjustPathName(path, FALSE));
        EXPECT_EQ(english, path);
        DeleteFileA(english.c_str());
        DeleteFileA(variant.c_str());
        RemoveDirectoryA(base.c_str());
    }).join();
}
