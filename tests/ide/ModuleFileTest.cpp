// Module files: each kind opens as its kind with its header hidden, reference lines count in the
// absolute line numbers, and saving writes the file back byte for byte.
#include "EditorFrameFixture.h"

#include "ide/CommandTable.h"
#include "ide/ModuleLayout.h"

using namespace brannoc;
using namespace brannoc::ide;
using brannoc::test::EditorFrameFixture;

namespace {

TEST(ModuleLayout, RecognisesKindsAndObjectTypeWords)
{
    struct Row {
        const char* text;
        SheetKind kind;
        const char* objectType;
        int headerLines;
        int referenceLines;
    };
    const Row rows[] = {
        {"Sub Main\r\nEnd Sub\r\n", SheetKind::Macro, "", 0, 0},
        {"'#Uses \"a.bas\"\r\nSub Main\r\nEnd Sub\r\n", SheetKind::Macro, "", 0, 0},
        {"Attribute VB_Name = \"M\"\r\nSub A\r\nEnd Sub\r\n", SheetKind::Code, "", 1, 0},
        {"'#Uses \"a.bas\"\r\nAttribute VB_Name = \"M\"\r\nSub A\r\nEnd Sub\r\n", SheetKind::Code, "", 2, 0},
        {"VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1 'True\r\nEND\r\nAttribute VB_Name = \"C\"\r\nDim x\r\n",
         SheetKind::Class, "", 5, 0},
        {"VERSION 1.0 SHEET\r\nBEGIN\r\n  MultiUse = -1 'True\r\nEND\r\nAttribute VB_Name = \"S\"\r\n", SheetKind::Object,
         "Sheet", 5, 0},
        {"VERSION 5.00\r\nBegin\r\n  Begin Inner\r\n  End\r\nEnd\r\nObject = \"x\"\r\nAttribute VB_Name = \"F\"\r\nSub A\r\nEnd Sub\r\n",
         SheetKind::Object, "Form", 7, 0},
        {"Attribute VB_Name = \"M\"\r\n'#Reference {1}#1.0#0#x.tlb#X\r\n'#reference {2}#1.0#0#y.tlb#Y\r\nSub A\r\n",
         SheetKind::Code, "", 1, 2},
    };
    for (const Row& row : rows) {
        ModuleLayout layout = ReadModuleLayout(row.text);
        EXPECT_EQ(row.kind, layout.kind) << row.text;
        EXPECT_EQ(row.objectType, layout.objectType) << row.text;
        EXPECT_EQ(row.headerLines, layout.parts.headerLines) << row.text;
        EXPECT_EQ(row.referenceLines, layout.parts.referenceLines) << row.text;
        EXPECT_EQ(row.text, layout.parts.header + layout.parts.references + layout.parts.code) << "nothing is lost";
    }
    ModuleLayout object = ReadModuleLayout(rows[5].text);
    EXPECT_EQ(2, object.multiUseLine);
    EXPECT_EQ(4, object.firstAttributeLine);
    EXPECT_EQ(0, object.versionOffset);
}

TEST(ModuleLayout, NewObjectModuleWritesTheTypeWordInUpperCase)
{
    std::string text = NewModuleText(SheetKind::Object, "Sheet", "Sheet1");
    EXPECT_EQ(0u, text.find("VERSION 1.0 SHEET\r\n"));
    ModuleLayout layout = ReadModuleLayout(text);
    EXPECT_EQ(SheetKind::Object, layout.kind);
    EXPECT_EQ("Sheet", layout.objectType);
}

class ModuleFile : public EditorFrameFixture {};

TEST_F(ModuleFile, EachKindOpensAsItsKindAndSavesByteIdentical)
{
    Create();
    struct Row {
        const char* file;
        const char* text;
        int kind;
        int hidden;
        const char* code;
    };
    const Row rows[] = {
        {"ledger.bas", "'#Uses \"util.bas\"\r\nSub Main\r\n\tMsgBox \"x\"\r\nEnd Sub\r\n", 0, 0,
         "'#Uses \"util.bas\"\r\nSub Main\r\n\tMsgBox \"x\"\r\nEnd Sub\r\n"},
        {"util.bas", "Attribute VB_Name = \"Util\"\r\n'#Reference {00020430-0000-0000-C000-000000000046}#2.0#0#stdole2.tlb#OLE Automation\r\n"
                     "'#Reference {00000000-0000-0000-0000-000000000001}#1.0#0#x.tlb#X\r\nFunction Twice(x)\r\n\tTwice = 2 * x\r\nEnd Function\r\n",
         1, 3, "Function Twice(x)\r\n\tTwice = 2 * x\r\nEnd Function\r\n"},
        {"account.obm", "VERSION 1.0 OBJECT\r\nBEGIN\r\n  MultiUse = -1 'True\r\nEND\r\nAttribute VB_Name = \"Account\"\r\nPublic Balance\r\n",
         2, 5, "Public Balance\r\n"},
        {"queue.cls", "VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = 0 'False\r\nEND\r\nAttribute VB_PredeclaredId = False\r\n"
                      "Attribute VB_Name = \"Queue\"\r\nPrivate Items()\r\n\r\nSub Push(x)\r\nEnd Sub",
         3, 6, "Private Items()\r\n\r\nSub Push(x)\r\nEnd Sub"},
    };
    for (const Row& row : rows) {
        std::string path = TempPath(row.file);
        WriteFileBytes(path, row.text);
        ASSERT_EQ(0, SendText(FM_FILE, path, 1)) << row.file;
        EXPECT_EQ(row.kind, Send(FM_SHEETKIND)) << row.file;
        EXPECT_EQ(row.hidden, Send(FM_HIDDENLINES)) << row.file << ": header and reference lines";
        EXPECT_EQ(row.code, Get(FM_GETTEXT)) << row.file << ": the text area shows the code only";
        EXPECT_EQ(row.text, Get(FM_GETWHOLETEXT)) << row.file;
        DeleteFileA(path.c_str());
        SendText(FM_SETTEXT, row.code); // modified, same text
        ASSERT_EQ(1, Command(CMD_SAVE)) << row.file;
        EXPECT_EQ(row.text, ReadFileBytes(path)) << row.file << ": saved byte for byte";
        DeleteFileA(path.c_str());
    }
    // Absolute line = code line + hidden lines: the util module's first code line is line 4.
    Send(FM_SHOWSHEET, 0, 3);
    EXPECT_EQ(3, Send(FM_HIDDENLINES));
}

TEST_F(ModuleFile, AnEmptySheetIsWrittenAsOneLineEnd)
{
    Create();
    SendText(FM_SETTEXT, "");
    std::string path = TempPath("empty.bas");
    ASSERT_EQ(0, SendText(FM_FILE, path, 0));
    EXPECT_EQ("\r\n", ReadFileBytes(path));
    DeleteFileA(path.c_str());
}

} // namespace
