// Names across modules and projects: a macro sees the public names of the code modules its project has
// loaded, and through project references ("P", "<P>", '#Reference lines) those of other projects; the
// extensions a project owns are its own.
#include "brannoc.h"
#include "host/CodeUnit.h"
#include "host/EngineTest.h"
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace brannoc;

namespace {

// A code module reached through '#Uses, a macro that uses it, and a macro that names its members
// without '#Uses.
const wchar_t kLibrary[] = L"Public Total As Long\r\n"
                           L"Public Function Twice(ByVal n As Long) As Long\r\n"
                           L"    Twice = 2 * n\r\n"
                           L"End Function\r\n";
const wchar_t kFirst[] = L"'#Uses \"lib\"\r\nSub Main\r\n    Total = 5\r\nEnd Sub\r\n";
const wchar_t kSecond[] = L"Sub Main\r\n    Debug.Print Twice(21); Total\r\nEnd Sub\r\n";

// The object a project's extension gives: one method, Twice, found through its type information.
struct Tally {
    virtual long __stdcall Twice(long value) { return 2 * value; }
};

class ProjectReferencesTest : public brannoc::testing::EngineTest {
protected:
    void SetUp() override
    {
        EngineTest::SetUp();
        callBack.macros[L"lib"] = kLibrary;
        callBack.macros[L"first"] = kFirst;
        callBack.macros[L"second"] = kSecond;
    }
    bool Add(const wchar_t* prefix, IDispatch* object = nullptr)
    {
        BSTR text = SysAllocString(prefix);
        VARIANT_BOOL added = VARIANT_FALSE;
        EXPECT_EQ(S_OK, unit->AddExtensionEx(text, object, &added));
        SysFreeString(text);
        return added == VARIANT_TRUE;
    }
    bool Remove(const wchar_t* prefix)
    {
        BSTR text = SysAllocString(prefix);
        VARIANT_BOOL removed = VARIANT_FALSE;
        EXPECT_EQ(S_OK, unit->RemoveExtensions(text, &removed));
        SysFreeString(text);
        return removed == VARIANT_TRUE;
    }
    // Starts the macro and runs it to its end: what it printed, or "start failed" and the error.
    std::wstring Run(const wchar_t* name)
    {
        callBack.printed.clear();
        callBack.errorNumbers.clear();
        if (!Start(name))
            return L"start failed " + std::to_wstring(callBack.errorNumbers.empty() ? 0 : callBack.errorNumbers.front());
        EXPECT_TRUE(RunToEnd());
        return callBack.AllPrinted();
    }
    bool CreateProject(const wchar_t* name) { return Named(&CodeUnit::ProjectCreate, name); }
};

} // namespace

TEST_F(ProjectReferencesTest, AMacroSeesThePublicNamesOfTheCodeModulesItsProjectLoaded)
{
    EXPECT_EQ(L"start failed 10607", Run(L"second")) << "nothing has loaded lib yet: Twice(21) is no array";
    ASSERT_TRUE(Start(L"first"));
    ASSERT_TRUE(RunToEnd());
    EXPECT_EQ(L"42&5&\r\n", Run(L"second")) << "lib's function and its variable, with the value first gave it";

    callBack.macros[L"private"] = L"Option Private Module\r\nPublic Function Thrice(ByVal n As Long) As Long\r\n"
                                  L"    Thrice = 3 * n\r\nEnd Function\r\n";
    callBack.macros[L"user"] = L"'#Uses \"private\"\r\nSub Main\r\n    Debug.Print Thrice(2)\r\nEnd Sub\r\n";
    callBack.macros[L"other"] = L"Sub Main\r\n    Debug.Print Thrice(2)\r\nEnd Sub\r\n";
    EXPECT_EQ(L"6&\r\n", Run(L"user")) << "a private module is seen by the module that names it in '#Uses";
    EXPECT_EQ(L"start failed 10607", Run(L"other")) << "and by no other";
}

TEST_F(ProjectReferencesTest, AProjectReferenceGivesTheOtherProjectsNamesUntilItIsRemoved)
{
    ASSERT_TRUE(CreateProject(L"Ledger"));
    ASSERT_TRUE(Load(L"<Ledger>first"));
    EXPECT_EQ(L"start failed 10607", Run(L"second")) << "Ledger's lib is not the default project's";

    callBack.notifications.clear();
    EXPECT_FALSE(Add(L"Nowhere")) << "no such project";
    EXPECT_FALSE(Add(L"")) << "no project named";
    EXPECT_FALSE(Add(L"<Ledger>Ledger")) << "a project does not reference itself";
    EXPECT_EQ(0, callBack.Count(14));
    EXPECT_TRUE(Add(L"Ledger"));
    EXPECT_EQ(1, callBack.Count(14)) << "the list changed";
    EXPECT_FALSE(Add(L"<Ledger>")) << "already reachable";
    EXPECT_FALSE(Add(L"ledger"));
    EXPECT_EQ(1, callBack.Count(14));
    EXPECT_EQ(L"42&0&\r\n", Run(L"second"));
    EXPECT_EQ(L"42&0&\r\n", Run(L"<Ledger>second")) << "Ledger's own module sees lib as well";

    // The reference goes one way: Ledger does not see the default project's modules.
    callBack.macros[L"dlib"] = L"Public Function Thrice(ByVal n As Long) As Long\r\n    Thrice = 3 * n\r\nEnd Function\r\n";
    callBack.macros[L"duser"] = L"'#Uses \"dlib\"\r\nSub Main\r\nEnd Sub\r\n";
    callBack.macros[L"probe"] = L"Sub Main\r\n    Debug.Print Thrice(2)\r\nEnd Sub\r\n";
    ASSERT_TRUE(Load(L"duser"));
    EXPECT_EQ(L"6&\r\n", Run(L"probe"));
    EXPECT_EQ(L"start failed 10607", Run(L"<Ledger>probe"));

    EXPECT_TRUE(Remove(L""));
    EXPECT_EQ(2, callBack.Count(14));
    EXPECT_EQ(L"start failed 10607", Run(L"second")) << "compiled again without the reference";
}

TEST_F(ProjectReferencesTest, ProjectsReachedThroughAnotherProjectAreReachedAlready)
{
    ASSERT_TRUE(CreateProject(L"Ledger"));
    ASSERT_TRUE(CreateProject(L"Archive"));
    ASSERT_TRUE(Add(L"<Ledger>Archive"));
    ASSERT_TRUE(Add(L"<Ledger>"));
    EXPECT_FALSE(Add(L"Archive")) << "the default project reaches Archive through Ledger";
    EXPECT_TRUE(Add(L"<Archive>Ledger")) << "Archive does not reach Ledger yet";
    ASSERT_TRUE(Load(L"<Archive>first"));
    EXPECT_EQ(L"42&0&\r\n", Run(L"second"));
    EXPECT_EQ(L"42&0&\r\n", Run(L"<Ledger>second"));

    // Removing the project's references by its project part leaves the other projects' references.
    EXPECT_TRUE(Remove(L"<Ledger>"));
    EXPECT_EQ(L"start failed 10607", Run(L"<Ledger>second"));
    EXPECT_EQ(L"start failed 10607", Run(L"second")) << "Ledger no longer leads to Archive";
}

TEST_F(ProjectReferencesTest, ReferenceLinesNameProjectsForTheirModuleOnly)
{
    ASSERT_TRUE(CreateProject(L"Ledger"));
    ASSERT_TRUE(Load(L"<Ledger>first"));
    callBack.macros[L"third"] = L"'#Reference <Ledger>\r\nSub Main\r\n    Debug.Print Twice(4)\r\nEnd Sub\r\n";
    callBack.macros[L"fourth"] = L"'#Reference Ledger\r\nSub Main\r\n    Debug.Print Twice(5)\r\nEnd Sub\r\n";
    callBack.macros[L"fifth"] = L"'#Reference Nowhere\r\nSub Main\r\nEnd Sub\r\n";
    EXPECT_EQ(L"8&\r\n", Run(L"third"));
    EXPECT_EQ(L"10&\r\n", Run(L"fourth"));
    EXPECT_EQ(L"start failed 10607", Run(L"second")) << "the lines gave the default project nothing";
    EXPECT_EQ(L"8&\r\n", Run(L"third")) << "compiled again, its reference is made again";
    EXPECT_EQ(L"start failed 10642", Run(L"fifth")) << "no project of that name";
    EXPECT_EQ((std::vector<long>{10642, 10012}), callBack.errorNumbers) << "then the failed start";
}

TEST_F(ProjectReferencesTest, ExtensionsBelongToTheProjectThatAddedThem)
{
    ITypeInfo* type = OA_CreateTypeW(L"=Tally\nTwice&(Value&)\n");
    ASSERT_NE(nullptr, type);
    Tally tally;
    IDispatch* object = OA_CreateDispatch(type, nullptr, &tally, nullptr);
    ASSERT_NE(nullptr, object);
    callBack.macros[L"calls"] = L"Sub Main\r\n    Debug.Print Twice(7)\r\nEnd Sub\r\n";

    ASSERT_TRUE(CreateProject(L"Ledger"));
    EXPECT_TRUE(Add(L"<Ledger>~", object));
    EXPECT_EQ(L"14&\r\n", Run(L"<Ledger>calls"));
    EXPECT_EQ(L"start failed 10607", Run(L"calls")) << "the default project has no such extension";
    EXPECT_FALSE(Remove(L"")) << "the default project has nothing to remove";

    // Destroying the project takes its extensions with it.
    EXPECT_TRUE(Named(&CodeUnit::ProjectDestroy, L"Ledger"));
    ASSERT_TRUE(CreateProject(L"Ledger"));
    EXPECT_EQ(L"start failed 10607", Run(L"<Ledger>calls"));
    EXPECT_TRUE(Add(L"~", object));
    EXPECT_EQ(L"14&\r\n", Run(L"calls"));
    object->Release();
    type->Release();
}
