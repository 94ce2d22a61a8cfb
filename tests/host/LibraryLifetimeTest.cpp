// COM activation is refused; the unload answers follow the class lock and the object count.
#include "brannoc.h"
#include "support/EngineLibrary.h"
#include <gtest/gtest.h>

using brannoc::test::EngineLibrary;

TEST(ClassFactory, DllGetClassObjectAnswersClassNotAvailableForEveryClass)
{
    EngineLibrary library;
    auto getClassObject = library.As<HRESULT(__stdcall*)(REFCLSID, REFIID, void**)>("DllGetClassObject");
    ASSERT_NE(nullptr, getClassObject);
    for (const GUID* classId : {&CLSID_CodeUnit, &CLSID_KZB, &IID_IUnknown}) {
        void* object = reinterpret_cast<void*>(1);
        EXPECT_EQ(static_cast<HRESULT>(0x80040111), getClassObject(*classId, IID_IClassFactory, &object));
        EXPECT_EQ(nullptr, object);
    }
}

TEST(ClassFactory, CoCreateInstanceOfTheClassFails)
{
    CoInitialize(nullptr);
    IUnknown* object = nullptr;
    HRESULT hr = CoCreateInstance(CLSID_CodeUnit, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                  reinterpret_cast<void**>(&object));
    EXPECT_TRUE(FAILED(hr));
    EXPECT_EQ(nullptr, object);
    CoUninitialize();
}

TEST(LibraryLifetime, ClassLockDecidesWhetherTheLibraryMayUnload)
{
    EngineLibrary library;
    auto classLock = library.As<BOOL(__stdcall*)(LONG, LONG)>("_KZ_CodeClassLock@8");
    auto canUnload = library.As<HRESULT(__stdcall*)()>("DllCanUnloadNow");
    auto freeOkay = library.As<BOOL(__stdcall*)()>("_CU_FreeLibraryOkay@0");
    auto kzFreeOkay = library.As<BOOL(__stdcall*)()>("_KZ_FreeLibraryOkay@0");
    ASSERT_TRUE(classLock && canUnload && freeOkay && kzFreeOkay);

    EXPECT_EQ(S_OK, canUnload());
    EXPECT_EQ(-1, freeOkay());
    EXPECT_EQ(FALSE, classLock(0, 0)) << "0 leaves the count and answers whether any count is held";

    EXPECT_NE(FALSE, classLock(1, 0));
    EXPECT_NE(FALSE, classLock(5, 0)) << "any positive count adds one lock";
    EXPECT_EQ(S_FALSE, canUnload());
    EXPECT_EQ(0, freeOkay());
    EXPECT_EQ(0, kzFreeOkay());

    EXPECT_NE(FALSE, classLock(-3, 0)) << "any negative count removes one lock";
    EXPECT_EQ(FALSE, classLock(-1, 0));
    EXPECT_EQ(S_OK, canUnload());
    EXPECT_EQ(-1, kzFreeOkay());
}
