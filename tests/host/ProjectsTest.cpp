// Projects ("<P>name" names modules of project P, read under their own name and never mapped), and the
// objects of class modules that Macro gives: the default instance or a new one.
#include "brannoc.h"
#include "host/CodeUnit.h"
#include "host/EngineTest.h"
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace brannoc;
using brannoc::testing::FakeCallBack;

namespace {

class ProjectsTest : public brannoc::testing::EngineTest {
protected:
    void SetUp() override
    {
        EngineTest::SetUp();
        callBack.macros[L"calc"] = L"Sub Main\r\n    Debug.Print \"calc\"\r\nEnd Sub\r\n";
    }
};

} // namespace

TEST_F(ProjectsTest, ProjectsAreCreatedOnceAndAnsweredByName)
{
    EXPECT_FALSE(Named(&CodeUnit::get_IsProject, L"Ledger"));
    EXPECT_TRUE(Named(&CodeUnit::ProjectCreate, L"Ledger"));
    EXPECT_FALSE(Named(&CodeUnit::ProjectCreate, L"ledger")) << "names are compared without regard to case";
    EXPECT_FALSE(Named(&CodeUnit::ProjectCreate, L""));
    EXPECT_TRUE(Named(&CodeUnit::get_IsProject, L"LEDGER"));
    EXPECT_TRUE(Named(&CodeUnit::get_IsProject, L"<Ledger>"));
    EXPECT_FALSE(Named(&CodeUnit::get_IsProject, L"Other"));
}

TEST_F(ProjectsTest, ANamedProjectRunsItsOwnModulesUnmappedAndIsDestroyedOnlyWhileIdle)
{
    callBack.mapPrefix = L"";
    ASSERT_TRUE(Named(&CodeUnit::ProjectCreate, L"Ledger"));
    EXPECT_FALSE(Named(&CodeUnit::Start, L"<Nowhere>calc")) << "a project that was never created has no modules";
    EXPECT_TRUE(callBack.reads.empty());

    ASSERT_TRUE(Named(&CodeUnit::Start, L"<Ledger>calc"));
    EXPECT_EQ((std::vector<std::wstring>{L"calc"}), callBack.reads) << "read under its own name";
    EXPECT_TRUE(Named(&CodeUnit::get_IsMacro, L"<ledger>calc"));
    EXPECT_FALSE(Named(&CodeUnit::get_IsMacro, L"calc")) << "the default project has no such module";
    EXPECT_TRUE(Named(&CodeUnit::get_IsMacroActive, L"<Ledger>calc"));
    EXPECT_FALSE(Named(&CodeUnit::ProjectDestroy, L"Ledger")) << "refused while a macro is active";
    EXPECT_FALSE(Named(&CodeUnit::ProjectDestroy, L""));
    EXPECT_TRUE(Named(&CodeUnit::get_IsProject, L"Ledger"));
    // The line texts name the module as project, ">" and module.
    EXPECT_EQ(L"[Ledger>calc|Main#  1] Sub Main", Text(&CodeUnit::get_CurrentLine));

    ASSERT_TRUE(RunToEnd());
    EXPECT_EQ(L"\"calc\"\r\n", callBack.AllPrinted());
    EXPECT_TRUE(Named(&CodeUnit::ProjectDestroy, L"Ledger"));
    EXPECT_FALSE(Named(&CodeUnit::get_IsProject, L"Ledger"));
    EXPECT_FALSE(Named(&CodeUnit::get_IsMacro, L"<Ledger>calc")) << "its modules went with it";
    EXPECT_FALSE(Named(&CodeUnit::ProjectDestroy, L"Ledger")) << "no such project any more";
}

TEST_F(ProjectsTest, OnlyNamesOfTheDefaultProjectAreOfferedForMapping)
{
    callBack.mapPrefix = L"mapped_";
    callBack.macros[L"mapped_calc"] = callBack.macros[L"calc"];
    ASSERT_TRUE(Named(&CodeUnit::ProjectCreate, L"Ledger"));
    ASSERT_TRUE(Named(&CodeUnit::Load, L"<Ledger>calc"));
    EXPECT_TRUE(callBack.mapped.empty());
    ASSERT_TRUE(Named(&CodeUnit::Load, L"calc"));
    ASSERT_EQ(1u, callBack.mapped.size());
    EXPECT_EQ(L"calc", callBack.mapped[0].first);
    EXPECT_EQ((std::vector<std::wstring>{L"calc", L"mapped_calc"}), callBack.reads);
    EXPECT_TRUE(Named(&CodeUnit::ProjectDestroy, L""));
    EXPECT_FALSE(Named(&CodeUnit::get_IsProject, L"Ledger"));
    EXPECT_TRUE(Named(&CodeUnit::get_IsMacro, L"calc")) << "the default project's modules stay";

    // A quoted name is offered unquoted; a handler prototype offers its module part.
    callBack.mapped.clear();
    EXPECT_TRUE(Named(&CodeUnit::get_IsMacro, L"\"calc\""));
    ASSERT_EQ(1u, callBack.mapped.size());
    EXPECT_EQ(L"calc", callBack.mapped[0].first);
    BSTR prototype = SysAllocString(L"other|Sub Opened(a)");
    IDispatch* handler = nullptr;
    EXPECT_EQ(S_OK, unit->CreateHandler(prototype, &handler));
    SysFreeString(prototype);
    if (handler)
        handler->Release();
    ASSERT_EQ(2u, callBack.mapped.size());
    EXPECT_EQ(L"other", callBack.mapped[1].first);
}

namespace {

long ReadCount(IDispatch* object)
{
    DISPID id = 0;
    LPOLESTR name = const_cast<LPOLESTR>(L"Count");
    EXPECT_EQ(S_OK, object->GetIDsOfNames(IID_NULL, &name, 1, 0x409, &id));
    DISPPARAMS none{nullptr, nullptr, 0, 0};
    VARIANT value;
    VariantInit(&value);
    EXPECT_EQ(S_OK, object->Invoke(id, IID_NULL, 0x409, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr));
    VariantChangeType(&value, &value, 0, VT_I4);
    return value.lVal;
}

void WriteCount(IDispatch* object, long count)
{
    DISPID id = 0;
    LPOLESTR name = const_cast<LPOLESTR>(L"Count");
    EXPECT_EQ(S_OK, object->GetIDsOfNames(IID_NULL, &name, 1, 0x409, &id));
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_I4;
    value.lVal = count;
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS one{&value, &put, 1, 1};
    EXPECT_EQ(S_OK, object->Invoke(id, IID_NULL, 0x409, DISPATCH_PROPERTYPUT, &one, nullptr, nullptr, nullptr));
}

} // namespace

TEST_F(ProjectsTest, MacroGivesTheDefaultInstanceOrANewOne)
{
    callBack.macros[L"counter"] = L"VERSION 1.0 CLASS\r\n"
                                  L"Attribute VB_Name = \"Counter\"\r\n"
                                  L"Public Count As Long\r\n"
                                  L"Private Sub Class_Initialize()\r\n"
                                  L"    Count = 5\r\n"
                                  L"End Sub\r\n";
    BSTR name = SysAllocString(L"counter");
    IDispatch* first = nullptr;
    IDispatch* again = nullptr;
    IDispatch* fresh = nullptr;
    EXPECT_EQ(S_OK, unit->Macro(name, VARIANT_FALSE, &first));
    EXPECT_EQ(S_OK, unit->Macro(name, VARIANT_FALSE, &again));
    EXPECT_EQ(S_OK, unit->Macro(name, VARIANT_TRUE, &fresh));
    SysFreeString(name);
    ASSERT_TRUE(first && again && fresh);
    EXPECT_EQ(first, again) << "one default instance";
    EXPECT_NE(first, fresh);
    EXPECT_EQ(5, ReadCount(first));
    WriteCount(first, 9);
    EXPECT_EQ(9, ReadCount(again));
    EXPECT_EQ(5, ReadCount(fresh)) << "a new instance has its own storage";
    first->Release();
    again->Release();
    fresh->Release();

    // A plain macro has no object; a missing module reports that it does not exist.
    BSTR plain = SysAllocString(L"calc");
    IDispatch* none = reinterpret_cast<IDispatch*>(1);
    EXPECT_EQ(S_OK, unit->Macro(plain, VARIANT_TRUE, &none));
    SysFreeString(plain);
    EXPECT_EQ(nullptr, none);
    BSTR missing = SysAllocString(L"missing");
    none = reinterpret_cast<IDispatch*>(1);
    EXPECT_EQ(S_OK, unit->Macro(missing, VARIANT_FALSE, &none));
    SysFreeString(missing);
    EXPECT_EQ(nullptr, none);
    EXPECT_EQ((std::vector<long>{10013}), callBack.errorNumbers);
}
