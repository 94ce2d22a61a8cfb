// The module properties box: its title and fields for each module kind, the Name field's cleaning
// as the user types, and the attributes written for each instancing choice.
#include "EditorFrameFixture.h"

#include "ide/CommandTable.h"
#include "ide/ModuleAttributes.h"
#include "support/DialogRobot.h"
#include "support/WindowImage.h"

using namespace brannoc;
using namespace brannoc::ide;
using brannoc::test::DialogRobot;
using brannoc::test::EditorFrameFixture;

namespace {

constexpr int kNameField = 180;
constexpr int kInstancingList = 181;
constexpr int kInstancingLabel = 182;

struct SeenBox {
    std::string title;
    std::string name;
    bool instancingShown = false;
    bool labelShown = false;
    std::vector<std::string> choices;
    std::string chosen;
};

SeenBox ReadBox(HWND dialog)
{
    SeenBox seen;
    char title[128] = {};
    GetWindowTextA(dialog, title, sizeof(title));
    seen.title = title;
    seen.name = DialogRobot::Text(dialog, kNameField);
    HWND list = GetDlgItem(dialog, kInstancingList);
    seen.instancingShown = IsWindowVisible(list) != FALSE;
    seen.labelShown = IsWindowVisible(GetDlgItem(dialog, kInstancingLabel)) != FALSE;
    for (int i = 0; i < SendMessageA(list, CB_GETCOUNT, 0, 0); ++i) {
        char text[64] = {};
        SendMessageA(list, CB_GETLBTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
        seen.choices.push_back(text);
    }
    LRESULT current = SendMessageA(list, CB_GETCURSEL, 0, 0);
    if (current >= 0)
        seen.chosen = seen.choices[static_cast<size_t>(current)];
    return seen;
}

class ModulePropertiesBox : public EditorFrameFixture {
protected:
    // Opens the box through the command; `act` runs on it before Close is pressed.
    SeenBox OpenAndClose(const std::function<void(HWND)>& act = {})
    {
        SeenBox seen;
        DialogRobot robot([&](HWND dialog) {
            seen = ReadBox(dialog);
            if (act)
                act(dialog);
            DialogRobot::Press(dialog, IDCANCEL);
        });
        EXPECT_EQ(1, Command(CMD_PROPERTIES));
        EXPECT_EQ(1u, robot.Dialogs().size());
        return seen;
    }
    std::string Header() const
    {
        std::string whole = Get(FM_GETWHOLETEXT);
        return whole.substr(0, whole.size() - Get(FM_GETTEXT).size());
    }
    static void Choose(HWND dialog, int instancing)
    {
        SendDlgItemMessageA(dialog, kInstancingList, CB_SETCURSEL, static_cast<WPARAM>(instancing - 1), 0);
    }
};

TEST_F(ModulePropertiesBox, ClassModuleBoxShowsNameAndInstancing)
{
    Create();
    Command(CMD_NEW_CLASS);
    SeenBox seen = OpenAndClose([](HWND dialog) {
        brannoc::test::WindowImage::Capture(dialog, true).WriteScreenshot(L"editor_module_properties");
    });
    EXPECT_EQ("Edit Class Module Properties", seen.title);
    EXPECT_EQ("Class1", seen.name);
    EXPECT_TRUE(seen.instancingShown);
    EXPECT_TRUE(seen.labelShown);
    EXPECT_EQ((std::vector<std::string>{"1 - Private", "2 - PublicNotCreatable", "3 - SingleUse", "4 - GlobalSingleUse",
                                        "5 - MultiUse", "6 - GlobalMultiUse"}),
              seen.choices);
    EXPECT_EQ("1 - Private", seen.chosen) << "a new class: creatable, not exposed";
    EXPECT_EQ(std::string::npos, Caption().find(" *")) << "closing unchanged leaves the sheet unmodified";
}

TEST_F(ModulePropertiesBox, CodeModuleBoxHidesInstancingAndMacrosHaveNone)
{
    Create();
    Command(CMD_NEW_CODE);
    SeenBox seen = OpenAndClose();
    EXPECT_EQ("Edit Code Module Properties", seen.title);
    EXPECT_EQ("Module1", seen.name);
    EXPECT_FALSE(seen.instancingShown);
    EXPECT_FALSE(seen.labelShown);

    Command(CMD_NEW);
    EXPECT_EQ(0, Send(FM_HOSTCOMMAND, HostNumberOfCommand(CMD_PROPERTIES), 0)) << "a macro has no module properties";
}

TEST_F(ModulePropertiesBox, NameFieldDropsWhatCannotStandInAnIdentifierAndIsWritten)
{
    Create();
    Command(CMD_NEW_CODE);
    std::string afterDigit, afterTyping;
    OpenAndClose([&](HWND dialog) {
        DialogRobot::SetText(dialog, kNameField, "9");
        afterDigit = DialogRobot::Text(dialog, kNameField);
        DialogRobot::SetText(dialog, kNameField, "_Led ger-1");
        afterTyping = DialogRobot::Text(dialog, kNameField);
    });
    EXPECT_EQ("", afterDigit) << "a digit as the first character is removed at once";
    EXPECT_EQ("Ledger1", afterTyping);
    EXPECT_EQ("Attribute VB_Name = \"Ledger1\"\r\n", Header());
    EXPECT_NE(std::string::npos, Caption().find(" *")) << "the sheet is modified";
}

TEST_F(ModulePropertiesBox, EachInstancingWritesItsAttributes)
{
    struct Row {
        int instancing;
        const char* multiUse;
        const char* creatable;
        const char* exposed;
        const char* global;
    };
    const Row rows[] = {
        {2, "-1 'True", "False", "True", "False"}, {3, "0 'False", "True", "True", "False"},
        {4, "0 'False", "True", "True", "True"},   {5, "-1 'True", "True", "True", "False"},
        {6, "-1 'True", "True", "True", "True"},   {1, "-1 'True", "True", "False", "False"},
    };
    Create();
    Command(CMD_NEW_OBJECT);
    for (const Row& row : rows) {
        SeenBox seen = OpenAndClose([&](HWND dialog) { Choose(dialog, row.instancing); });
        std::string header = Header();
        SCOPED_TRACE(header);
        EXPECT_NE(std::string::npos, header.find(std::string("  MultiUse = ") + row.multiUse + "\r\n"));
        EXPECT_NE(std::string::npos, header.find(std::string("Attribute VB_Creatable = ") + row.creatable + "\r\n"));
        EXPECT_NE(std::string::npos, header.find(std::string("Attribute VB_Exposed = ") + row.exposed + "\r\n"));
        EXPECT_NE(std::string::npos, header.find(std::string("Attribute VB_GlobalNameSpace = ") + row.global + "\r\n"));
        EXPECT_EQ(row.instancing, ReadInstancing(header)) << "reads back as chosen";
    }
    SeenBox last = OpenAndClose();
    EXPECT_EQ("1 - Private", last.chosen) << "the box opens with the sheet's instancing";
    EXPECT_EQ("Edit Object Module Properties", last.title);
}

TEST_F(ModulePropertiesBox, MissingAttributesAreAppendedAndTheHiddenLinesGrow)
{
    Create();
    std::string path = TempPath("brannoc-properties.cls");
    WriteFileBytes(path, "VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1 'True\r\nEND\r\nAttribute VB_Name = \"Tally\"\r\nDim n\r\n");
    ASSERT_EQ(0, SendText(FM_FILE, path, 1));
    EXPECT_EQ(5, Send(FM_HIDDENLINES));
    SeenBox seen = OpenAndClose([](HWND dialog) { Choose(dialog, INSTANCING_SINGLE_USE); });
    EXPECT_EQ("Tally", seen.name);
    EXPECT_EQ("1 - Private", seen.chosen) << "a missing VB_Exposed line reads as False";
    EXPECT_EQ(8, Send(FM_HIDDENLINES)) << "three attribute lines appended";
    EXPECT_EQ("VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = 0 'False\r\nEND\r\nAttribute VB_Name = \"Tally\"\r\n"
              "Attribute VB_Creatable = True\r\nAttribute VB_Exposed = True\r\nAttribute VB_GlobalNameSpace = False\r\n",
              Header());
    EXPECT_EQ("Dim n\r\n", Get(FM_GETTEXT));
    DeleteFileA(path.c_str());
}

} // namespace
