// The Open and Save As dialogs of the frame: the filter built from the file descriptions and
// extensions, a file chosen through the common dialog by a robot, and the chosen name saved to.
#include "EditorFrameFixture.h"

#include "ide/CommandTable.h"
#include "support/DialogRobot.h"

using namespace brannoc;
using namespace brannoc::ide;
using brannoc::test::DialogRobot;
using brannoc::test::EditorFrameFixture;

namespace {

constexpr int kFileTypeList = 0x470; // cmb1
constexpr int kFileNameCombo = 0x47C; // cmb13
constexpr int kFileNameEdit = 0x480;  // edt1

std::vector<std::string> FileTypes(HWND dialog)
{
    std::vector<std::string> items;
    HWND list = GetDlgItem(dialog, kFileTypeList);
    for (int i = 0; i < SendMessageA(list, CB_GETCOUNT, 0, 0); ++i) {
        char text[256] = {};
        SendMessageA(list, CB_GETLBTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
        items.push_back(text);
    }
    return items;
}

void ChooseFile(HWND dialog, const std::string& path)
{
    int field = GetDlgItem(dialog, kFileNameCombo) ? kFileNameCombo : kFileNameEdit;
    DialogRobot::SetText(dialog, field, path.c_str());
    DialogRobot::Press(dialog, IDOK);
}

class FrameFileDialog : public EditorFrameFixture {};

TEST_F(FrameFileDialog, OpenShowsTheFilterAndOpensTheChosenFile)
{
    Create();
    std::string path = TempPath("robot.cls");
    WriteFileBytes(path, "VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1 'True\r\nEND\r\nDim x\r\n");
    std::vector<std::string> types;
    DialogRobot robot([&](HWND dialog) {
        types = FileTypes(dialog);
        ChooseFile(dialog, path);
    });
    EXPECT_EQ(1, Command(CMD_OPEN));
    ASSERT_EQ(1u, robot.Dialogs().size());
    EXPECT_EQ((std::vector<std::string>{"Brannoc Basic (*.KZB)", "All Files (*.*)"}), types);
    EXPECT_EQ(path, Get(FM_GETSHEETNAME));
    EXPECT_EQ(3, Send(FM_SHEETKIND));
    EXPECT_EQ("Dim x\r\n", Get(FM_GETTEXT));
    DeleteFileA(path.c_str());
}

TEST_F(FrameFileDialog, FilterPatternsFollowTheListsAndTheListMode)
{
    Create();
    SendText(FM_SETFILEDESC, "Ledger macros|Text|All Files");
    SendText(FM_SETFILEEXT, "LDG;MAC|TXT|*");
    Send(FM_SETLISTMODE, 0, 2);
    std::string saved = TempPath("robot saved.ldg");
    DeleteFileA(saved.c_str());
    std::vector<std::string> types;
    DialogRobot robot([&](HWND dialog) {
        types = FileTypes(dialog);
        ChooseFile(dialog, saved);
    });
    EXPECT_EQ(1, Command(CMD_SAVE_AS));
    ASSERT_EQ(1u, robot.Dialogs().size());
    EXPECT_EQ((std::vector<std::string>{"Ledger macros (*.LDG;*.MAC;*.BAS;*.OBM;*.CLS)", "Text (*.TXT)", "All Files (*.*)"}),
              types);
    EXPECT_EQ("Sub Main\r\n\t\r\nEnd Sub\r\n", ReadFileBytes(saved));
    EXPECT_EQ(saved, Get(FM_GETSHEETNAME));
    DeleteFileA(saved.c_str());
}

} // namespace
