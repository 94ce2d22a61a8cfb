// Frame messages that read and change the text area's selection, show a sheet by name, set the
// object-module file type and hand out the status and tool-tip texts of host command numbers.
#include "EditorFrameFixture.h"

#include "ide/CommandTable.h"

using namespace brannoc;
using namespace brannoc::ide;
using brannoc::test::EditorFrameFixture;
using brannoc::test::MessageBoxCapture;

namespace {

class FrameTextMessages : public EditorFrameFixture {
protected:
    std::string EditorText() const { return WindowText(Editor()); }
};

TEST_F(FrameTextMessages, SelectionLengthTextAndReplacement)
{
    Create();
    ASSERT_EQ(0, SendText(FM_SETTEXT, "Sub Main\r\n\tx = 1\r\nEnd Sub\r\n"));
    Send(FM_SETCARET, 0, 4);
    EXPECT_EQ(0, Send(FM_GETSELLENGTH));
    EXPECT_EQ("", Get(FM_GETSELTEXT));
    EXPECT_EQ(0, Send(FM_SETSELLENGTH, 0, 4));
    EXPECT_EQ(4, Send(FM_GETSELSTART)) << "the start stays";
    EXPECT_EQ(4, Send(FM_GETSELLENGTH));
    EXPECT_EQ("Main", Get(FM_GETSELTEXT));
    // Across a line end: the text comes with its CR LF.
    Send(FM_SETSELLENGTH, 0, 8);
    EXPECT_EQ("Main\r\n\tx", Get(FM_GETSELTEXT));
    // A short buffer is cut, its terminating zero included.
    char small[5] = "????";
    EXPECT_EQ(3, Send(FM_GETSELTEXT, sizeof(small) - 1, reinterpret_cast<LPARAM>(small)));
    EXPECT_STREQ("Mai", small);
    Send(FM_SETSELLENGTH, 0, 4);
    EXPECT_EQ(0, SendText(FM_REPLACESEL, "Start"));
    EXPECT_EQ("Sub Start\r\n\tx = 1\r\nEnd Sub\r\n", EditorText());
    EXPECT_EQ(0, Send(FM_GETSELLENGTH)) << "the caret follows the inserted text";
    EXPECT_EQ(9, Send(FM_GETSELSTART));
    Send(FM_SETREADONLY, 0, 1);
    Send(FM_SETCARET, 0, 0);
    Send(FM_SETSELLENGTH, 0, 3);
    EXPECT_EQ(1, SendText(FM_REPLACESEL, "Function")) << "refused while the frame is read-only";
    EXPECT_EQ("Sub Start\r\n\tx = 1\r\nEnd Sub\r\n", EditorText());
}

TEST_F(FrameTextMessages, ShowsASheetByItsName)
{
    Create();
    Command(CMD_NEW_CODE);
    ASSERT_EQ(2, Send(FM_SHEETCOUNT));
    const std::string first = [&] {
        Send(FM_SELECTSHEET, 0, 1);
        return Get(FM_GETSHEETNAME);
    }();
    Send(FM_SELECTSHEET, 0, 2);
    const std::string second = Get(FM_GETSHEETNAME);
    EXPECT_EQ(0, SendText(FM_SHOWNAMEDSHEET, first));
    EXPECT_EQ(1, Send(FM_CURRENTSHEET));
    EXPECT_EQ(0, Send(FM_SHEETKIND)) << "the macro sheet is shown";
    EXPECT_EQ(0, SendText(FM_SHOWNAMEDSHEET, second));
    EXPECT_EQ(2, Send(FM_CURRENTSHEET));
    EXPECT_EQ(1, Send(FM_SHEETKIND));
    EXPECT_EQ(1, SendText(FM_SHOWNAMEDSHEET, "no such sheet"));
    EXPECT_EQ(2, Send(FM_CURRENTSHEET));
    EXPECT_EQ(0, Send(FM_SHOWNAMEDSHEET, 0, 0)) << "null: the current sheet";
    EXPECT_EQ(2, Send(FM_CURRENTSHEET));
}

TEST_F(FrameTextMessages, ObjectModuleFileTypeIsSetAndUsedForNewObjectModules)
{
    Create();
    EXPECT_EQ("Object|OBM|Object", Get(FM_GETOBJECTFILETYPE));
    ASSERT_EQ(0, SendText(FM_SETOBJECTFILETYPE, "Sheet|.SHT|Worksheet"));
    EXPECT_EQ("Sheet|SHT|Worksheet", Get(FM_GETOBJECTFILETYPE));
    Command(CMD_NEW_OBJECT);
    EXPECT_EQ(2, Send(FM_SHEETKIND));
    const std::string whole = Get(FM_GETWHOLETEXT);
    EXPECT_EQ(0u, whole.find("VERSION 1.0 WORKSHEET\r\nBEGIN\r\n")) << whole;
    EXPECT_NE(std::string::npos, Caption().find("Sheet")) << Caption();
    // Empty parts go back to the defaults.
    ASSERT_EQ(0, SendText(FM_SETOBJECTFILETYPE, ""));
    EXPECT_EQ("Object|OBM|Object", Get(FM_GETOBJECTFILETYPE));
}

TEST_F(FrameTextMessages, StatusAndToolTipTextsOfHostCommandNumbers)
{
    Create();
    // wParam is the host number (6: Run), so the text is copied whole into the caller's buffer.
    const LRESULT statusLength = Send(FM_COMMANDSTATUS, 6, 0);
    std::string status(static_cast<size_t>(statusLength) + 1, '?');
    EXPECT_EQ(statusLength, Send(FM_COMMANDSTATUS, 6, reinterpret_cast<LPARAM>(status.data())));
    status.resize(static_cast<size_t>(statusLength));
    EXPECT_EQ("Run or resume the macro", status);
    char tip[64] = {};
    EXPECT_EQ(5, Send(FM_COMMANDTIP, 6, reinterpret_cast<LPARAM>(tip)));
    EXPECT_STREQ("Start", tip);
    EXPECT_EQ(0, Send(FM_COMMANDTIP, 200, reinterpret_cast<LPARAM>(tip))) << "no such host number";
    EXPECT_STREQ("", tip);
}

} // namespace

namespace {

TEST_F(FrameTextMessages, OpenMacroNamesTheCurrentSheetWithoutTheFileCommands)
{
    Create(FO_TOOLBAR | FO_STATUS_BAR);
    MessageBoxCapture capture(IDOK);
    EXPECT_EQ(0, SendText(FM_OPENMACRO, "Ledger Totals"));
    EXPECT_EQ("Ledger Totals", Get(FM_GETSHEETNAME));
    EXPECT_EQ(1, Send(FM_SHEETCOUNT));
    EXPECT_NE(std::string::npos, Caption().find("ledger totals (macro)")) << Caption();
    EXPECT_EQ(1, SendText(FM_OPENMACRO, "")) << "an empty name";
    EXPECT_EQ("Ledger Totals", Get(FM_GETSHEETNAME));
    EXPECT_EQ(0u, capture.Count()) << "no file is looked for";
}

TEST_F(FrameTextMessages, OpenMacroOpensAFileInASheetWithTheFileCommands)
{
    Create();
    const std::string path = TempPath("open macro.bas");
    WriteFileBytes(path, "Sub Main\r\nEnd Sub\r\n");
    EXPECT_EQ(0, SendText(FM_OPENMACRO, path));
    EXPECT_EQ(2, Send(FM_SHEETCOUNT));
    EXPECT_EQ(path, Get(FM_GETSHEETNAME));
    EXPECT_EQ("Sub Main\r\nEnd Sub\r\n", WindowText(Editor()));
    MessageBoxCapture capture(IDOK);
    EXPECT_EQ(1, SendText(FM_OPENMACRO, TempPath("no such folder\\missing.bas")));
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"Can't open macro/module file.", capture.Boxes()[0].text);
    DeleteFileA(path.c_str());
}

} // namespace
