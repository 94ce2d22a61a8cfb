// The DLL's export table: every function under its decorated name, the plain name where the rule asks
// for it, and nothing else.
#include "support/EngineLibrary.h"
#include <gtest/gtest.h>
#include <set>
#include <string>

using brannoc::test::EngineLibrary;

namespace {

struct ExportRow {
    const char* name;
    int argumentBytes;
    bool plainToo;
};

const ExportRow kExports[] = {
    {"DllGetClassObject", 12, true},
    {"DllCanUnloadNow", 0, true},
    {"CU_FreeLibraryOkay", 0, false},
    {"KZ_FreeLibraryOkay", 0, false},
    {"KZ_CodeClassLock", 8, false},
    {"CU_CreateCodeUnit", 0, true},
    {"KZ_CreateCodeUnit", 0, false},
    {"KZ_CodeCreate", 8, false},
};

std::string Decorated(const ExportRow& row) { return "_" + std::string(row.name) + "@" + std::to_string(row.argumentBytes); }

} // namespace

TEST(Exports, EachFunctionHasItsDecoratedNameAndThePlainNameWhereDue)
{
    EngineLibrary library;
    ASSERT_TRUE(library.Loaded());
    for (const ExportRow& row : kExports) {
        SCOPED_TRACE(row.name);
        FARPROC decorated = library.Proc(Decorated(row).c_str());
        EXPECT_NE(nullptr, decorated) << Decorated(row);
        FARPROC plain = library.Proc(row.name);
        if (row.plainToo)
            EXPECT_EQ(decorated, plain) << "plain name must reach the same function";
        else
            EXPECT_EQ(nullptr, plain) << "only the decorated name is exported";
    }
}

TEST(Exports, NothingElseIsExported)
{
    EngineLibrary library;
    ASSERT_TRUE(library.Loaded());
    std::set<std::string> expected;
    for (const ExportRow& row : kExports) {
        expected.insert(Decorated(row));
        if (row.plainToo)
            expected.insert(row.name);
    }
    std::set<std::string> actual;
    for (const std::string& name : library.ExportNames())
        actual.insert(name);
    EXPECT_EQ(expected, actual);
    for (const std::string& name : actual) {
        // A decorated name must carry its underscore: a bare "Name@N" would be a leak of the linker's.
        if (name.find('@') != std::string::npos)
            EXPECT_EQ('_', name[0]) << name;
    }
}

TEST(Exports, ImportsOnlyWindowsSystemLibraries)
{
    EngineLibrary library;
    ASSERT_TRUE(library.Loaded());
    const std::set<std::string> allowed = {"KERNEL32.DLL", "USER32.DLL", "GDI32.DLL", "OLE32.DLL", "OLEAUT32.DLL",
                                           "ADVAPI32.DLL", "COMDLG32.DLL", "SHELL32.DLL", "MSVCRT.DLL"};
    for (const std::string& name : library.ImportedLibraries())
        EXPECT_TRUE(allowed.count(name)) << name;
}
