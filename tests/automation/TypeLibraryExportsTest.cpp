// Types from type libraries: loading the program's own library, following a class to its dispatch
// interface, dispatch objects over such types, binding objects and class objects.
#include "support/MessageBoxCapture.h"

#include "brannoc.h"

#include <gtest/gtest.h>

#include <string>

namespace {

const char kCodeUnitClass[] = "{47E5369F-DBE6-4E83-A27B-8BC4AFA15DDD}";

std::string Take(BSTR ansi)
{
    if (!ansi)
        return "(null)";
    std::string text(reinterpret_cast<const char*>(ansi), OA_SysStringLenA(ansi));
    OA_SysFreeStringA(ansi);
    return text;
}

} // namespace

TEST(TypeLibraryExports, TheProgramsOwnLibraryAndItsClassTypes)
{
    ITypeLib* library = OA_LoadLib(nullptr);
    ASSERT_NE(nullptr, library);
    ITypeInfo* classType = OA_LoadType_A(library, kCodeUnitClass);
    ASSERT_NE(nullptr, classType);
    EXPECT_EQ(nullptr, OA_LoadType_A(library, "{00000000-1111-2222-3333-444444444444}"));
    EXPECT_EQ(nullptr, OA_LoadType_A(library, "not a guid"));
    ITypeInfo* dispatchType = OA_GetDispatchType(classType);
    ASSERT_NE(nullptr, dispatchType);
    EXPECT_EQ("_CodeUnit", Take(OA_GetDispatchNameA(dispatchType, -1)));
    ITypeComp* comp = OA_GetComp(dispatchType);
    ASSERT_NE(nullptr, comp);
    std::string caption = Take(OA_GetCompDescA(comp, "Caption", 1));
    EXPECT_NE(std::string::npos, caption.find(":Caption() As String=>\r\n")) << caption;
    EXPECT_NE(std::string::npos, caption.find("=<")) << caption;
    OA_Release(comp);
    // Type information is its own type.
    ITypeInfo* same = OA_GetType(dispatchType);
    EXPECT_EQ(dispatchType, same);
    OA_Release(same);
    OA_Release(dispatchType);
    OA_Release(classType);
    OA_Release(library);
}

TEST(TypeLibraryExports, ADispatchObjectOverAClassTypeCallsTheImplementationsInterface)
{
    ITypeLib* library = OA_LoadLib(nullptr);
    ITypeInfo* classType = OA_LoadType_A(library, kCodeUnitClass);
    ASSERT_NE(nullptr, classType);
    auto* unit = static_cast<_CodeUnit*>(CU_CreateCodeUnit());
    ASSERT_NE(nullptr, unit);
    IDispatch* object = OA_CreateDispatch(classType, nullptr, unit, nullptr);
    ASSERT_NE(nullptr, object);
    ITypeInfo* objectClass = OA_GetCoclassType(object);
    ASSERT_NE(nullptr, objectClass);
    EXPECT_EQ("CodeUnit", Take(OA_GetDispatchNameA(objectClass, -1)));
    OA_Release(objectClass);
    void* found = nullptr;
    EXPECT_EQ(S_OK, object->QueryInterface(IID__CodeUnit, &found));   // the type's own interface identifier
    OA_Release(static_cast<IUnknown*>(found));
    OA_ARG list;
    OA_ArgStart(1, &list);
    OA_ArgAddStringA(&list, "Through the class type");
    EXPECT_TRUE(OA_InvokePut(object, OA_GetDispatchIDA(object, "Caption"), &list, nullptr));
    BSTR caption = nullptr;
    unit->get_Caption(&caption);
    EXPECT_STREQ(L"Through the class type", caption);
    SysFreeString(caption);
    EXPECT_EQ("Through the class type", Take(OA_InvokeBSTRA(object, OA_GetDispatchIDA(object, "Caption"), nullptr, nullptr)));

    // A binding object answers with another type and forwards calls.
    ITypeInfo* mine = OA_CreateTypeA("=Mine|Nothing");
    ITypeInfo* mineClass = OA_GetCoclassType(mine);
    ASSERT_NE(nullptr, mineClass);
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(S_OK, mineClass->GetTypeAttr(&attributes));
    EXPECT_EQ(TKIND_COCLASS, attributes->typekind);
    mineClass->ReleaseTypeAttr(attributes);
    OA_Release(mineClass);
    IDispatch* bound = OA_BindDispatch(object, mine);
    ASSERT_NE(nullptr, bound);
    EXPECT_NE(object, bound);
    EXPECT_EQ("Mine", Take(OA_GetDispatchNameA(bound, -1)));
    EXPECT_EQ("Through the class type", Take(OA_InvokeBSTRA(bound, OA_GetDispatchIDA(bound, "Caption"), nullptr, nullptr)));
    EXPECT_EQ(object, OA_BindDispatch(object, nullptr));
    OA_Release(bound);
    OA_Release(mine);
    OA_Release(object);
    unit->Release();
    OA_Release(classType);
    OA_Release(library);
}

namespace {

struct Nothing {
    virtual void __stdcall Run() {}
};
Nothing s_nothing;
int s_creations = 0;

IDispatch* __stdcall CreateNothing(ITypeInfo* type, void* userData)
{
    ++s_creations;
    EXPECT_EQ(&s_nothing, userData);
    return OA_CreateDispatch(type, nullptr, &s_nothing, nullptr);
}

} // namespace

TEST(TypeLibraryExports, ClassObjectsCreateThroughTheCreationFunction)
{
    ITypeInfo* type = OA_CreateTypeA("Run");
    IClassFactory* factory = OA_CreateClass(type, CreateNothing, 0, &s_nothing);
    ASSERT_NE(nullptr, factory);
    s_creations = 0;
    IDispatch* object = OA_CreateInstance(factory);
    ASSERT_NE(nullptr, object);
    EXPECT_EQ(1, s_creations);
    EXPECT_EQ(&s_nothing, OA_GetDispatchData(object));
    OA_Release(object);
    brannoc::test::MessageBoxCapture capture;
    void* refused = reinterpret_cast<void*>(1);
    EXPECT_EQ(CLASS_E_NOAGGREGATION, factory->CreateInstance(reinterpret_cast<IUnknown*>(factory), IID_IUnknown, &refused));
    EXPECT_EQ(nullptr, refused);
    EXPECT_EQ(S_OK, factory->LockServer(TRUE));
    EXPECT_EQ(S_OK, factory->LockServer(FALSE));
    EXPECT_EQ(1, s_creations);
    EXPECT_EQ(nullptr, OA_CreateInstance(nullptr));
    OA_Release(factory);
    OA_Release(type);
}

namespace {

int s_wraps = 0;

// Wraps type libraries only; dispatch objects are refused (and so stay as they are).
HRESULT __stdcall WrapLibrariesOnly(REFIID interfaceId, IUnknown* object, IUnknown** wrapped)
{
    ++s_wraps;
    if (!IsEqualIID(interfaceId, IID_ITypeLib))
        return E_NOINTERFACE;
    object->AddRef();
    *wrapped = object;
    return S_OK;
}

} // namespace

TEST(TypeLibraryExports, BindMfcLoadsItsTypeOnFirstNeed)
{
    s_wraps = 0;
    ITypeLib* library = OA_LoadLib(nullptr);
    ASSERT_NE(nullptr, library);
    IUnknown* wrappedLibrary = OA_WrapMFCLib(library, WrapLibrariesOnly);   // takes over the reference
    EXPECT_EQ(static_cast<IUnknown*>(library), wrappedLibrary);
    EXPECT_EQ(1, s_wraps);
    OA_Release(wrappedLibrary);

    ITypeInfo* type = OA_CreateTypeA("=Plain|Run");
    struct Runner {
        virtual void __stdcall Run() {}
    } runner;
    IDispatch* object = OA_CreateDispatch(type, nullptr, &runner, nullptr);
    EXPECT_EQ(nullptr, OA_BindMFC(nullptr, "{F1E1E939-C4D6-4342-A0AA-F302F6C5FCEB}", nullptr, 0));
    object->AddRef();
    // Without a type GUID the (possibly wrapped) dispatch itself is the answer.
    IDispatch* same = OA_BindMFC(object, nullptr, WrapLibrariesOnly, 0);
    EXPECT_EQ(object, same);
    EXPECT_EQ(2, s_wraps);
    OA_Release(same);
    object->AddRef();
    IDispatch* bound = OA_BindMFC(object, "{F1E1E939-C4D6-4342-A0AA-F302F6C5FCEB}", WrapLibrariesOnly, 1);
    ASSERT_NE(nullptr, bound);
    EXPECT_EQ(2, s_wraps) << "nothing is loaded before it is needed";
    EXPECT_EQ("_CodeUnit", Take(OA_GetDispatchNameA(bound, -1)));
    EXPECT_EQ(3, s_wraps);
    EXPECT_TRUE(OA_Invoke(bound, OA_GetDispatchIDA(bound, "Run"), nullptr, nullptr));
    OA_Release(bound);
    DWORD context = 5;
    BSTR helpFile = OA_GetTypeHelpFileA(type, OA_GetDispatchIDA(object, "Run"), &context);
    ASSERT_NE(nullptr, helpFile);
    EXPECT_EQ(0u, OA_SysStringLenA(helpFile));
    OA_SysFreeStringA(helpFile);
    // Each OA_BindMFC took over the reference it was given: only the creation's reference is left.
    EXPECT_EQ(0u, OA_Release(object));
    OA_Release(type);
}
