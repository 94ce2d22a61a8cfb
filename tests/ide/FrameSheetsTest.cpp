// Sheets of the frame: untitled and displayed names, hidden header and reference lines, the whole
// text through the frame message, the sheet limit, the save prompt and the file errors.
#include "EditorFrameFixture.h"

#include "ide/CommandTable.h"

using namespace brannoc;
using namespace brannoc::ide;
using brannoc::test::EditorFrameFixture;
using brannoc::test::MessageBoxCapture;

namespace {

class FrameSheets : public EditorFrameFixture {};

TEST_F(FrameSheets, NewSheetsGetUntitledNamesDisplayNamesAndHiddenHeaders)
{
    Create();
    struct Row {
        int command;
        const char* name;
        const char* shown;
        int kind;
        int hiddenLines;
        const char* wholeText;
    };
    const Row rows[] = {
        {CMD_NEW_CODE, "?B1", "module1", 1, 1, "Attribute VB_Name = \"Module1\"\r\n"},
        {CMD_NEW_CODE, "?B2", "module2", 1, 1, "Attribute VB_Name = \"Module2\"\r\n"},
        {CMD_NEW_CODE, "?B3", "module3", 1, 1, "Attribute VB_Name = \"Module3\"\r\n"},
        {CMD_NEW_OBJECT, "?C1", "object1", 2, 9,
         "VERSION 1.0 OBJECT\r\nBEGIN\r\n  MultiUse = -1 'True\r\nEND\r\nAttribute VB_PredeclaredId = True\r\n"
         "Attribute VB_Creatable = True\r\nAttribute VB_Exposed = False\r\nAttribute VB_GlobalNameSpace = False\r\n"
         "Attribute VB_Name = \"Object1\"\r\n"},
        {CMD_NEW_CLASS, "?D1", "class1", 3, 9,
         "VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1 'True\r\nEND\r\nAttribute VB_PredeclaredId = False\r\n"
         "Attribute VB_Creatable = True\r\nAttribute VB_Exposed = False\r\nAttribute VB_GlobalNameSpace = False\r\n"
         "Attribute VB_Name = \"Class1\"\r\n"},
        {CMD_NEW, "?A2", "macro2", 0, 0, "Sub Main\r\n\t\r\nEnd Sub\r\n"},
    };
    for (const Row& row : rows) {
        ASSERT_EQ(1, Command(row.command));
        EXPECT_EQ(row.name, Get(FM_GETSHEETNAME)) << row.command;
        EXPECT_EQ(row.kind, Send(FM_SHEETKIND)) << row.name;
        EXPECT_EQ(row.hiddenLines, Send(FM_HIDDENLINES)) << row.name;
        EXPECT_EQ(row.wholeText, Get(FM_GETWHOLETEXT)) << row.name;
        if (row.kind != 0)
            EXPECT_EQ("", Get(FM_GETTEXT)) << "a new module shows an empty code area: " << row.name;
    }
    // Display names: the kind word and counter for untitled names (the caption shows them as given).
    EXPECT_EQ("Brannoc Basic - [design] Module3 (code)", (Send(FM_SHOWSHEET, 0, 4), Caption()));
    char buffer[260] = "C:\\Work\\LEDGER.BAS";
    Send(FM_DISPLAYNAME, sizeof(buffer), reinterpret_cast<LPARAM>(buffer));
    EXPECT_STREQ("ledger.bas", buffer);
    strcpy(buffer, ">");
    Send(FM_DISPLAYNAME, sizeof(buffer), reinterpret_cast<LPARAM>(buffer));
    EXPECT_STREQ("(General)", buffer);
    EXPECT_EQ(7, Send(FM_SHEETCOUNT));
}

// Saving a sheet to a name another sheet has, and files that cannot be read or written.
TEST_F(FrameSheets, FileErrorsShowTheirMessages)
{
    Create();
    MessageBoxCapture capture(IDOK);
    EXPECT_EQ(1, SendText(FM_FILE, TempPath("no such folder\\missing.bas"), 1));
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"Can't open macro/module file.", capture.Boxes()[0].text);
    EXPECT_EQ(L"Brannoc Basic", capture.Boxes()[0].caption);

    std::string first = TempPath("first.bas");
    WriteFileBytes(first, "Sub Main\r\nEnd Sub\r\n");
    ASSERT_EQ(0, SendText(FM_FILE, first, 1));
    Command(CMD_NEW);
    capture.Clear();
    EXPECT_EQ(1, SendText(FM_FILE, first, 0)) << "saving under the name of the other sheet";
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"Macro/module by that name already open.", capture.Boxes()[0].text);

    capture.Clear();
    EXPECT_EQ(1, SendText(FM_FILE, TempPath("no such folder\\x.bas"), 0));
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"Macro/module was not saved.", capture.Boxes()[0].text);
    DeleteFileA(first.c_str());
}

TEST_F(FrameSheets, TheTenthSheetReusesAnUnchangedOneOrIsRefused)
{
    Create();
    MessageBoxCapture capture(IDOK);
    for (int i = 0; i < 8; ++i)
        ASSERT_EQ(1, Command(CMD_NEW));
    ASSERT_EQ(9, Send(FM_SHEETCOUNT));
    Command(CMD_NEW);
    EXPECT_EQ(9, Send(FM_SHEETCOUNT)) << "an unchanged sheet was reused";
    EXPECT_EQ(0u, capture.Count());
    for (int i = 1; i <= 9; ++i) {
        Send(FM_SHOWSHEET, 0, i);
        SendText(FM_SETTEXT, "Sub Main\r\nEnd Sub\r\n");
    }
    Command(CMD_NEW);
    EXPECT_EQ(9, Send(FM_SHEETCOUNT));
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"Can't open another sheet.", capture.Boxes()[0].text);

    Create(FO_FILES);
    Command(CMD_NEW);
    EXPECT_EQ(1, Send(FM_SHEETCOUNT)) << "without the several-sheets option there is one sheet";
}

TEST_F(FrameSheets, SavePromptYesNoCancelAndTheHostsQuerySave)
{
    Create();
    std::string path = TempPath("prompted.bas");
    WriteFileBytes(path, "Sub Main\r\nEnd Sub\r\n");
    ASSERT_EQ(0, SendText(FM_FILE, path, 1));
    SendText(FM_SETTEXT, "Sub Main\r\n\tBeep\r\nEnd Sub\r\n");
    {
        MessageBoxCapture capture(IDCANCEL);
        EXPECT_EQ(1, Send(FM_CLOSEALL)) << "Cancel stops Close All";
        ASSERT_EQ(1u, capture.Count());
        EXPECT_EQ(L"Would you like to save the changes made in 'prompted.bas'?", capture.Boxes()[0].text);
        EXPECT_EQ(static_cast<UINT>(MB_YESNOCANCEL), capture.Boxes()[0].buttons);
        EXPECT_EQ(static_cast<UINT>(MB_ICONQUESTION), capture.Boxes()[0].icon);
        EXPECT_EQ(2, Send(FM_SHEETCOUNT));
    }
    {
        MessageBoxCapture capture(IDYES);
        EXPECT_EQ(1, Command(CMD_CLOSE));
        EXPECT_EQ(1u, capture.Count());
        EXPECT_EQ("Sub Main\r\n\tBeep\r\nEnd Sub\r\n", ReadFileBytes(path)) << "Yes saved the sheet";
        EXPECT_EQ(1, Send(FM_SHEETCOUNT));
    }
    ASSERT_EQ(0, SendText(FM_FILE, path, 1));
    SendText(FM_SETTEXT, "Sub Main\r\n\tStop\r\nEnd Sub\r\n");
    {
        MessageBoxCapture capture(IDNO);
        EXPECT_EQ(0, Send(FM_CLOSEALL));
        EXPECT_EQ(1u, capture.Count());
        EXPECT_EQ("Sub Main\r\n\tBeep\r\nEnd Sub\r\n", ReadFileBytes(path)) << "No left the file alone";
    }
    // The host's query-save callback decides in place of the prompt.
    static std::vector<std::string> s_asked;
    s_asked.clear();
    Send(FM_SETQUERYSAVECALLBACK, 0, reinterpret_cast<LPARAM>(+[](HWND, const char* name, int* result) -> BOOL {
        s_asked.push_back(name);
        *result = IDCANCEL;
        return TRUE;
    }));
    ASSERT_EQ(0, SendText(FM_FILE, path, 1));
    SendText(FM_SETTEXT, "Sub Main\r\nEnd Sub\r\n");
    MessageBoxCapture capture(IDYES);
    EXPECT_EQ(1, Send(FM_CLOSEALL));
    EXPECT_EQ(0u, capture.Count());
    // The host is asked for the first sheet (the untitled one left by Close All) and its Cancel stops.
    EXPECT_EQ((std::vector<std::string>{"?A2"}), s_asked);
    EXPECT_EQ(2, Send(FM_SHEETCOUNT));
    Send(FM_SETQUERYSAVECALLBACK, 0, 0);
    DeleteFileA(path.c_str());
}

TEST_F(FrameSheets, HostFileNameCallbackBypassesTheDialogsAndTheFilterIsBuiltFromTheLists)
{
    Create();
    static std::string s_name;
    static std::vector<BOOL> s_calls;
    s_calls.clear();
    s_name = TempPath("chosen.bas");
    WriteFileBytes(s_name, "Attribute VB_Name = \"Chosen\"\r\nSub A\r\nEnd Sub\r\n");
    Send(FM_SETFILENAMECALLBACK, 0, reinterpret_cast<LPARAM>(+[](HWND, BOOL save, char* name) -> BOOL {
        s_calls.push_back(save);
        lstrcpynA(name, s_name.c_str(), 260);
        return TRUE;
    }));
    EXPECT_EQ(1, Command(CMD_OPEN));
    EXPECT_EQ(s_name, Get(FM_GETSHEETNAME));
    EXPECT_EQ(1, Send(FM_SHEETKIND));
    Command(CMD_NEW);
    s_name = TempPath("saved as.bas");
    DeleteFileA(s_name.c_str());
    EXPECT_EQ(1, Command(CMD_SAVE_AS));
    EXPECT_EQ("Sub Main\r\n\t\r\nEnd Sub\r\n", ReadFileBytes(s_name));
    EXPECT_EQ((std::vector<BOOL>{FALSE, TRUE}), s_calls);
    EXPECT_EQ("Brannoc Basic - [design] saved as.bas (macro)", Caption());
    Send(FM_SETFILENAMECALLBACK, 0, 0);
    DeleteFileA(s_name.c_str());
    DeleteFileA(TempPath("chosen.bas").c_str());
}

} // namespace
