// Command dispatch: enable states, the host's command filter, disabled commands and their beeping
// accelerators, the key tables, menu trimming by option bits and plain editing.
#include "EditorFrameFixture.h"

#include "ide/CommandTable.h"
#include "ide/FrameKeys.h"
#include "ide/FrameToolbar.h"

#include "brannoc.h"

using namespace brannoc;
using namespace brannoc::ide;
using brannoc::test::EditorFrameFixture;

namespace {

std::vector<UINT> s_beeps;
std::vector<int> s_filtered;
int s_refuse = -1;

BOOL CALLBACK Filter(HWND, int number)
{
    s_filtered.push_back(number);
    return number == s_refuse;
}

class FrameCommands : public EditorFrameFixture {
protected:
    void SetUp() override
    {
        s_beeps.clear();
        s_filtered.clear();
        s_refuse = -1;
        SetFrameBeepObserver([](UINT type) { s_beeps.push_back(type); });
    }
    void TearDown() override
    {
        SetFrameBeepObserver(nullptr);
        EditorFrameFixture::TearDown();
    }
    bool HostEnabled(int number) const { return Send(FM_HOSTCOMMAND, static_cast<WPARAM>(number), 0) != 0; }
};

TEST(FrameKeys, EveryKeyOfTheTablesTranslates)
{
    KeyContext full{2, true, true};
    struct Row { int key; int command; };
    const Row rows[] = {
        {kAltBit | VK_BACK, 312}, {kCtrlBit | VK_DELETE, 314}, {kCtrlBit | VK_INSERT, 315}, {kShiftBit | VK_INSERT, 316},
        {kCtrlBit | 'Z', 312}, {kCtrlBit | 'Y', 313}, {kCtrlBit | 'X', 314}, {kCtrlBit | 'C', 315}, {kCtrlBit | 'V', 316},
        {kCtrlBit | kShiftBit | 'Y', 318}, {kCtrlBit | VK_CANCEL, 315}, {kCtrlBit | VK_SPACE, 326}, {kCtrlBit | 'I', 327},
        {kShiftBit | VK_F10, kContextMenuKey},
        {kCtrlBit | 'N', 300}, {kCtrlBit | 'O', 304}, {kCtrlBit | 'S', 306}, {kCtrlBit | 'P', 309},
        {kCtrlBit | 'F', 323}, {kCtrlBit | 'R', 324}, {VK_F3, 325}, {kCtrlBit | 'A', 331}, {kCtrlBit | 'E', 332},
        {kCtrlBit | 'W', 333}, {kCtrlBit | 'T', 334}, {kCtrlBit | 'L', 335}, {VK_F5, 352}, {VK_F8, 356},
        {kShiftBit | VK_F8, 357}, {kCtrlBit | VK_F8, 358}, {VK_F7, 359}, {VK_F9, 360}, {kCtrlBit | kShiftBit | VK_F9, 361},
        {kShiftBit | VK_F9, 362}, {kCtrlBit | VK_F9, 363}, {VK_ESCAPE, 353}, {'A', 0}, {VK_F4, 0},
    };
    for (const Row& row : rows)
        EXPECT_EQ(row.command, TranslateFrameKey(row.key, full)) << "key 0x" << std::hex << row.key;
    for (int digit = 1; digit <= 9; ++digit)
        EXPECT_EQ(368 + digit, TranslateFrameKey(kCtrlBit | ('0' + digit), full));

    // The file table needs keyboard mode 2 and the file option; mode 0 leaves only the editing table and Esc.
    EXPECT_EQ(0, TranslateFrameKey(kCtrlBit | 'N', KeyContext{1, true, false}));
    EXPECT_EQ(0, TranslateFrameKey(kCtrlBit | 'S', KeyContext{2, false, false}));
    EXPECT_EQ(0, TranslateFrameKey(VK_F5, KeyContext{0, true, false}));
    EXPECT_EQ(315, TranslateFrameKey(kCtrlBit | 'C', KeyContext{0, true, false}));
    EXPECT_EQ(353, TranslateFrameKey(VK_ESCAPE, KeyContext{0, true, true}));
    EXPECT_EQ(0, TranslateFrameKey(VK_ESCAPE, KeyContext{2, true, false})) << "Esc pauses only a loaded macro";
}

TEST(CommandTable, HostNumbersMapBothWays)
{
    EXPECT_EQ(300, CommandOfHostNumber(0));
    EXPECT_EQ(352, CommandOfHostNumber(6));
    EXPECT_EQ(384, CommandOfHostNumber(79));
    EXPECT_EQ(0, CommandOfHostNumber(80));
    for (int number = 0; number < 80; ++number)
        EXPECT_EQ(number, HostNumberOfCommand(CommandOfHostNumber(number))) << number;
    for (int command : {311, 318, 349, 350, 351})
        EXPECT_EQ(-1, HostNumberOfCommand(command)) << command;
}

TEST_F(FrameCommands, EnableStatesFollowTheFrameAndAreReportedThroughTheFrameMessage)
{
    Create();
    EXPECT_FALSE(HostEnabled(2)) << "Save: the new sheet has no changes";
    EXPECT_FALSE(HostEnabled(23)) << "Cut: nothing selected";
    EXPECT_TRUE(HostEnabled(24)) << "Copy is always enabled";
    EXPECT_FALSE(HostEnabled(50)) << "Properties: a macro is not a module";
    EXPECT_TRUE(HostEnabled(6)) << "Run: the engine is idle";
    EXPECT_FALSE(HostEnabled(8)) << "End: the engine is idle";
    EXPECT_FALSE(HostEnabled(56 - 0)) << "Watch: nothing loaded";
    EXPECT_FALSE(HostEnabled(77)) << "Project numbers are refused outside project mode";
    SendText(FM_SETTEXT, "Sub Main\r\nEnd Sub\r\n");
    Send(EM_SETSEL, 0, 0);
    SendMessageA(Editor(), EM_SETSEL, 0, 3);
    Send(FM_UPDATE);
    EXPECT_TRUE(HostEnabled(2)) << "Save: the sheet is modified";
    EXPECT_TRUE(HostEnabled(23)) << "Cut: a selection";
    Command(CMD_NEW_CODE);
    EXPECT_TRUE(HostEnabled(50)) << "Properties of a module";
    Send(FM_SETREADONLY, 0, 1);
    EXPECT_FALSE(HostEnabled(0)) << "New while the frame is read-only";
    EXPECT_FALSE(HostEnabled(3)) << "Save As while the frame is read-only";
    // The toolbar's buttons follow the commands.
    EXPECT_EQ(0, SendMessageA(Child(ID_FRAME_TOOLBAR), TBM_ISENABLED, CMD_TOOLBAR_NEW, 0));
    EXPECT_EQ(1, SendMessageA(Child(ID_FRAME_TOOLBAR), TBM_ISENABLED, CMD_COPY, 0));
    EXPECT_EQ(0, SendMessageA(Child(ID_FRAME_TOOLBAR), TBM_ISRELEASED, CMD_DESIGN_MODE, 0)) << "design display on: pressed";
}

TEST_F(FrameCommands, DisabledCommandsDoNothingAndSaveIsAlwaysRouted)
{
    Create();
    Command(CMD_NEW_CODE);
    EXPECT_EQ(0, Command(CMD_WATCH)) << "disabled";
    EXPECT_EQ(0, Command(CMD_PROJECT)) << "a project command outside project mode";
    EXPECT_EQ(0, Command(299 - 1));
    static std::vector<BOOL> s_saves;
    s_saves.clear();
    // The host "chooses" an empty name: the Save As that Save leads to stops without a dialog.
    Send(FM_SETFILENAMECALLBACK, 0, reinterpret_cast<LPARAM>(+[](HWND, BOOL save, char* name) -> BOOL {
        s_saves.push_back(save);
        name[0] = '\0';
        return TRUE;
    }));
    Send(FM_SETCOMMANDFILTER, 0, reinterpret_cast<LPARAM>(Filter));
    Send(FM_UPDATE);
    ASSERT_FALSE(HostEnabled(2));
    EXPECT_EQ(1, Command(CMD_SAVE)) << "Save goes through even when disabled";
    EXPECT_EQ((std::vector<int>{2}), s_filtered);
    EXPECT_EQ((std::vector<BOOL>{TRUE}), s_saves);
}

TEST_F(FrameCommands, HostFilterCanRefuseACommand)
{
    Create();
    Send(FM_SETCOMMANDFILTER, 0, reinterpret_cast<LPARAM>(Filter));
    s_refuse = 47;
    EXPECT_EQ(1, Command(CMD_NEW_CODE));
    EXPECT_EQ(1, Send(FM_SHEETCOUNT)) << "the host took the command over";
    EXPECT_EQ((std::vector<int>{47}), s_filtered);
    s_refuse = -1;
    EXPECT_EQ(1, Command(CMD_NEW_CODE));
    EXPECT_EQ(2, Send(FM_SHEETCOUNT));
    // A host's own request is not offered to its filter.
    s_filtered.clear();
    s_refuse = 0;
    EXPECT_EQ(1, Send(FM_HOSTCOMMAND, 0, 1));
    EXPECT_EQ(3, Send(FM_SHEETCOUNT));
    EXPECT_TRUE(s_filtered.empty());
    // With the filter answering nonzero for number 6, F5 does not start anything.
    s_refuse = 6;
    PressKey(VK_F5);
    EXPECT_EQ((std::vector<int>{6}), s_filtered);
    EXPECT_EQ(0, CU_IsActive(reinterpret_cast<void*>(Send(FM_ENGINE)))) ;
}

TEST_F(FrameCommands, AcceleratorsPostTheirCommandsAndBeepWhenDisabled)
{
    Create();
    static int s_opens = 0;
    s_opens = 0;
    Send(FM_SETFILENAMECALLBACK, 0, reinterpret_cast<LPARAM>(+[](HWND, BOOL save, char* name) -> BOOL {
        s_opens += save ? 0 : 1;
        name[0] = '\0';
        return TRUE;
    }));
    PressKey('O', {VK_CONTROL});
    EXPECT_EQ(1, s_opens) << "Ctrl+O asked for a file to open";
    EXPECT_TRUE(s_beeps.empty());
    PressKey(VK_F9);
    EXPECT_TRUE(Document()->BreakPoint(1)) << "F9 set a break point on the caret line";
    PressKey('1', {VK_CONTROL});
    Command(CMD_NEW);
    EXPECT_EQ(2, Send(FM_CURRENTSHEET));
    PressKey('1', {VK_CONTROL});
    EXPECT_EQ(1, Send(FM_CURRENTSHEET)) << "Ctrl+1 shows the first sheet";
    PressKey('W', {VK_CONTROL});
    EXPECT_EQ((std::vector<UINT>{MB_ICONASTERISK}), s_beeps) << "Ctrl+W: Watch is disabled";
    PressKey(VK_SPACE, {VK_CONTROL});
    EXPECT_EQ(std::string::npos, Get(FM_GETTEXT).find("  ")) << "Ctrl+Space inserts no space";
    EXPECT_EQ(Document()->Line(1), "\t");
    // The frame message translates as keyboard mode 0 does: the editing table only (and Esc).
    EXPECT_EQ(CMD_COPY, Send(FM_TRANSLATEKEY, kCtrlBit | 'C'));
    EXPECT_EQ(0, Send(FM_TRANSLATEKEY, kCtrlBit | 'F'));
}

// Counts the items of a menu and its popups whose id is `command`.
int CountItem(HMENU menu, UINT command)
{
    int found = 0;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        if (HMENU popup = GetSubMenu(menu, i))
            found += CountItem(popup, command);
        else if (GetMenuItemID(menu, i) == command)
            ++found;
    }
    return found;
}

std::vector<std::string> TopLevelNames(HMENU menu)
{
    std::vector<std::string> names;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        char text[64] = {};
        GetMenuStringA(menu, static_cast<UINT>(i), text, sizeof(text), MF_BYPOSITION);
        names.push_back(text);
    }
    return names;
}

TEST_F(FrameCommands, MenusAreTrimmedByOptionBits)
{
    Create(FO_TOOLBAR | FO_FILES | FO_SHEETS);
    HMENU menu = GetMenu(m_frame);
    ASSERT_NE(nullptr, menu);
    EXPECT_EQ((std::vector<std::string>{"&File", "&Edit", "&View", "&Macro", "&Sheet", "&Help"}), TopLevelNames(menu));
    EXPECT_EQ(1, CountItem(menu, CMD_CLOSE));
    EXPECT_EQ(1, CountItem(menu, CMD_SAVE_ALL));
    EXPECT_EQ(0, CountItem(menu, CMD_NEW_CODE)) << "New Module needs list mode 2";
    EXPECT_EQ(0, CountItem(menu, CMD_PROJECT)) << "outside project mode";
    EXPECT_EQ(1, CountItem(menu, CMD_COMPLETE_WORD)) << "the text area made its completion component";
    EXPECT_EQ(1, CountItem(menu, CMD_PARAMETER_INFO));
    EXPECT_EQ(1, CountItem(menu, CMD_DESIGN_MODE));

    Create(FO_TOOLBAR | FO_FILES);
    menu = GetMenu(m_frame);
    EXPECT_EQ((std::vector<std::string>{"&File", "&Edit", "&View", "&Macro", "&Help"}), TopLevelNames(menu));
    EXPECT_EQ(0, CountItem(menu, CMD_CLOSE));
    EXPECT_EQ(0, CountItem(menu, CMD_SAVE_ALL));
    Send(FM_SETLISTMODE, 0, 2);
    HMENU host = reinterpret_cast<HMENU>(Send(FM_LOADMENU));
    EXPECT_EQ(1, CountItem(host, CMD_NEW_CLASS)) << "list mode 2 offers the new modules";
    EXPECT_EQ(0, CountItem(host, CMD_EXIT)) << "a host's menu has no Exit";
    EXPECT_EQ(0, CountItem(host, CMD_LISTS_BOTH)) << "menu 97 has no Object/Proc";
    Send(FM_SETDESIGNOFFER, 0, 0);
    HMENU noDesign = reinterpret_cast<HMENU>(Send(FM_LOADMENU));
    EXPECT_EQ(0, CountItem(noDesign, CMD_DESIGN_MODE));
    DestroyMenu(host);
    DestroyMenu(noDesign);

    Create(FO_TOOLBAR);
    EXPECT_EQ((std::vector<std::string>{"&Edit", "&View", "&Macro", "&Help"}), TopLevelNames(GetMenu(m_frame)))
        << "without the file option there is no File menu";
}

TEST_F(FrameCommands, PlainEditingUsesAnEditControlAndDisablesItsCommands)
{
    Create(FO_TOOLBAR | FO_FILES | FO_PLAIN_EDIT);
    char className[32];
    GetClassNameA(Editor(), className, sizeof(className));
    EXPECT_STREQ("Edit", className);
    EXPECT_EQ("Sub Main\r\n\t\r\nEnd Sub\r\n", Get(FM_GETTEXT));
    for (int number : {65, 66, 73, 12, 53})
        EXPECT_FALSE(HostEnabled(number)) << "host number " << number;
    EXPECT_EQ(0, SendMessageA(Child(ID_FRAME_TOOLBAR), TBM_ISVISIBLE, CMD_TOGGLE_BREAK, 0));
    EXPECT_EQ(1, SendMessageA(Child(ID_FRAME_TOOLBAR), TBM_ISVISIBLE, CMD_RUN, 0));
    EXPECT_EQ(0, CountItem(GetMenu(m_frame), CMD_COMPLETE_WORD)) << "an EDIT control has no completion";
    SendMessageA(Editor(), WM_SETTEXT, 0, reinterpret_cast<LPARAM>("Sub Main\r\nEnd Sub\r\n"));
    SendMessageA(Editor(), EM_SETMODIFY, TRUE, 0);
    brannoc::test::MessageBoxCapture capture(IDNO);
    Command(CMD_NEW_CODE);
    EXPECT_EQ(1u, capture.Count()) << "the changed sheet is offered for saving first";
    EXPECT_EQ(1, Send(FM_SHEETCOUNT)) << "one sheet without the several-sheets option";
    EXPECT_EQ(1, Send(FM_SHEETKIND));
    EXPECT_EQ("Attribute VB_Name = \"Module1\"\r\n", Get(FM_GETWHOLETEXT));
}

} // namespace

namespace {

std::vector<BOOL> s_designStates;

TEST_F(FrameCommands, DesignModeTellsTheHostsDesignModeCallback)
{
    Create();
    s_designStates.clear();
    Send(FM_SETWINDOWCALLBACK, 2, reinterpret_cast<LPARAM>(+[](HWND, BOOL designDisplay) {
        s_designStates.push_back(designDisplay);
    }));
    ASSERT_EQ(1, Send(FM_GETDESIGNDISPLAY));
    EXPECT_EQ(1, Command(CMD_DESIGN_MODE));
    EXPECT_EQ(0, Send(FM_GETDESIGNDISPLAY));
    EXPECT_EQ(1, Command(-CMD_DESIGN_MODE)) << "the toolbar's two-state button";
    EXPECT_EQ(1, Send(FM_GETDESIGNDISPLAY));
    EXPECT_EQ((std::vector<BOOL>{FALSE, TRUE}), s_designStates);
    // The window callback (wParam 0) is a different slot: setting it leaves this one alone.
    Send(FM_SETWINDOWCALLBACK, 0, 0);
    Command(CMD_DESIGN_MODE);
    EXPECT_EQ((std::vector<BOOL>{FALSE, TRUE, FALSE}), s_designStates);
}

} // namespace

namespace {

TEST_F(FrameCommands, TheDebugPaneThatLastHadTheFocusIsTheTargetOfTheEditCommands)
{
    Create(EditorFrameFixture::kDefaultOptions | FO_ALWAYS_SPLIT);
    ASSERT_EQ(0, SendText(FM_SETTEXT, "Sub Main\r\nEnd Sub\r\n"));
    HWND immediate = Child(ID_FRAME_IMMEDIATE);
    ASSERT_TRUE(IsWindowVisible(immediate)) << "the panes show with the always-split option";
    SetWindowTextA(immediate, "?1 + 2\r\n");
    SetFocus(immediate);
    SendMessageA(immediate, EM_SETSEL, 0, 1);
    Send(FM_UPDATE);
    EXPECT_TRUE(HostEnabled(20)) << "Topic Search from the Immediate pane";
    EXPECT_TRUE(HostEnabled(15)) << "Browse from the Immediate pane";
    EXPECT_FALSE(HostEnabled(32)) << "UserDialog needs the editing child";
    EXPECT_FALSE(HostEnabled(26)) << "Find needs the editing child";
    EXPECT_TRUE(HostEnabled(23)) << "Cut: the pane has a selection";
    EXPECT_EQ(1, Send(FM_HOSTCOMMAND, 23, 1));
    EXPECT_EQ("1 + 2\r\n", WindowText(immediate)) << "Cut took the pane's selection";
    EXPECT_EQ("Sub Main\r\nEnd Sub\r\n", WindowText(Editor())) << "the text area is left alone";
    // The Stack pane is read-only for the commands.
    HWND stack = Child(ID_FRAME_STACK);
    SetWindowTextA(stack, "Main\r\n");
    SetFocus(stack);
    SendMessageA(stack, EM_SETSEL, 0, 2);
    Send(FM_UPDATE);
    EXPECT_FALSE(HostEnabled(23)) << "Cut in the Stack pane";
    EXPECT_TRUE(HostEnabled(24)) << "Copy is always enabled";
    EXPECT_FALSE(HostEnabled(20)) << "Topic Search is not offered from the Stack pane";
    // Back in the text area the commands follow it again.
    SetFocus(Editor());
    SendMessageA(Editor(), EM_SETSEL, 0, 0);
    Send(FM_UPDATE);
    EXPECT_FALSE(HostEnabled(23)) << "Cut: no selection in the text area";
    EXPECT_TRUE(HostEnabled(26)) << "Find";
}

} // namespace
