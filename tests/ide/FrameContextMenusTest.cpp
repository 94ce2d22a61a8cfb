// The frame's popup menus: the text area's context menu (Shift+F10, the right mouse button and the
// special host numbers 32764 and 32767, offered to the host's command filter first) and the drop-down
// menu of the toolbar's New button in list mode 2 (32766).
#include "EditorFrameFixture.h"

#include "ide/CommandTable.h"
#include "support/WindowImage.h"

using namespace brannoc;
using namespace brannoc::ide;
using brannoc::test::EditorFrameFixture;

namespace {

std::vector<int> s_filtered;
BOOL s_filterAnswer = FALSE;

BOOL CALLBACK Filter(HWND, int number)
{
    s_filtered.push_back(number);
    return s_filterAnswer;
}

// What the robot saw of the popup menu that was up, and the keys it then pressed in it.
struct MenuSeen {
    bool shown = false;
    std::vector<UINT> ids; // 0 for a separator
    std::vector<std::string> texts;
};
MenuSeen s_seen;
std::vector<WORD> s_menuKeys; // empty: the menu is closed without a choice
// When set, the robot writes a screenshot of this frame with the menu drawn over it, and keeps the size
// of the menu's own image.
HWND s_screenshotFrame = nullptr;
SIZE s_menuImage{};

// Runs on a timer of the test thread while TrackPopupMenu's loop is up: reads the menu, then chooses
// with the keys or closes it.
void CALLBACK MenuRobot(HWND, UINT, UINT_PTR timer, DWORD)
{
    HWND popup = FindWindowA("#32768", nullptr);
    if (!popup || !IsWindowVisible(popup))
        return;
    KillTimer(nullptr, timer);
    auto menu = reinterpret_cast<HMENU>(SendMessageA(popup, 0x01E1 /* MN_GETHMENU */, 0, 0));
    s_seen.shown = true;
    if (s_screenshotFrame) {
        using brannoc::test::WindowImage;
        WindowImage image = WindowImage::Capture(s_screenshotFrame, true);
        const WindowImage menuImage = WindowImage::Capture(popup, true);
        s_menuImage = SIZE{menuImage.Width(), menuImage.Height()};
        RECT frame{};
        RECT place{};
        GetWindowRect(s_screenshotFrame, &frame);
        GetWindowRect(popup, &place);
        image.Overlay(menuImage, place.left - frame.left, place.top - frame.top);
        image.WriteScreenshot(L"editor_context_menu");
    }
    for (int i = 0; menu && i < GetMenuItemCount(menu); ++i) {
        char text[128] = {};
        GetMenuStringA(menu, static_cast<UINT>(i), text, sizeof(text), MF_BYPOSITION);
        s_seen.ids.push_back(GetMenuItemID(menu, i) == static_cast<UINT>(-1) ? 0 : GetMenuItemID(menu, i));
        s_seen.texts.push_back(text);
    }
    if (s_menuKeys.empty()) {
        EndMenu();
        return;
    }
    for (WORD key : s_menuKeys) {
        PostMessageA(popup, WM_KEYDOWN, key, 0);
        PostMessageA(popup, WM_KEYUP, key, 0);
    }
}

class FrameContextMenus : public EditorFrameFixture {
protected:
    void SetUp() override
    {
        s_filtered.clear();
        s_filterAnswer = FALSE;
        s_seen = MenuSeen{};
        s_menuKeys.clear();
        s_screenshotFrame = nullptr;
        s_menuImage = SIZE{};
    }
    void TearDown() override
    {
        s_screenshotFrame = nullptr;
        KillTimer(nullptr, m_robot);
        EditorFrameFixture::TearDown();
    }
    void ArmRobot()
    {
        KillTimer(nullptr, m_robot);
        m_robot = SetTimer(nullptr, 0, 50, MenuRobot);
    }
    UINT_PTR m_robot = 0;
};

const std::vector<UINT> kTextMenu = {CMD_CUT, CMD_COPY, CMD_PASTE, 0, CMD_TOGGLE_BREAK, CMD_STEP_TO,
                                     0, CMD_QUICK_WATCH, CMD_ADD_WATCH, CMD_BROWSE};

TEST_F(FrameContextMenus, HostNumbersOpenTheTextAreaMenuUnlessTheFilterTakesThem)
{
    Create();
    Send(FM_SETCOMMANDFILTER, 0, reinterpret_cast<LPARAM>(Filter));
    ArmRobot();
    EXPECT_EQ(1, Send(FM_HOSTCOMMAND, HOST_MOUSE_MENU, 1));
    EXPECT_EQ((std::vector<int>{HOST_MOUSE_MENU}), s_filtered);
    ASSERT_TRUE(s_seen.shown) << "the context menu at the mouse position";
    EXPECT_EQ(kTextMenu, s_seen.ids);
    EXPECT_EQ("Cu&t", s_seen.texts[0]);
    s_seen = MenuSeen{};
    ArmRobot();
    EXPECT_EQ(1, Send(FM_HOSTCOMMAND, HOST_CONTEXT_MENU, 1));
    EXPECT_TRUE(s_seen.shown) << "the context menu at the caret";
    EXPECT_EQ(kTextMenu, s_seen.ids);
    // The host takes the number: no menu.
    s_filterAnswer = TRUE;
    s_seen = MenuSeen{};
    ArmRobot();
    EXPECT_EQ(1, Send(FM_HOSTCOMMAND, HOST_CONTEXT_MENU, 1));
    Pump(200);
    EXPECT_FALSE(s_seen.shown);
    // The right mouse button in the text area, and the menu asked for from the keyboard.
    s_filtered.clear();
    SendMessageA(Editor(), WM_RBUTTONUP, 0, MAKELPARAM(20, 10));
    SendMessageA(Editor(), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(Editor()), -1);
    EXPECT_EQ((std::vector<int>{HOST_MOUSE_MENU, HOST_CONTEXT_MENU}), s_filtered);
}

TEST_F(FrameContextMenus, ScreenshotOfTheTextAreaMenuAtTheCaret)
{
    Create();
    ASSERT_EQ(0, SendText(FM_SETTEXT, "Sub Main\r\n\tDebug.Print 1\r\nEnd Sub\r\n"));
    Send(FM_SETCARET, 0, 11);
    s_screenshotFrame = m_frame;
    ArmRobot();
    Send(FM_HOSTCOMMAND, HOST_CONTEXT_MENU, 1);
    ASSERT_TRUE(s_seen.shown);
    EXPECT_EQ(kTextMenu, s_seen.ids) << "no macro stopped: no stepping items";
    // Ten rows of items and separators: the menu is taller than it is wide, and not a sliver.
    EXPECT_GT(s_menuImage.cx, 60);
    EXPECT_GT(s_menuImage.cy, s_menuImage.cx);
}

TEST_F(FrameContextMenus, ShiftF10InTheTextAreaAsksTheHostForTheCaretMenu)
{
    Create();
    s_filterAnswer = TRUE;
    Send(FM_SETCOMMANDFILTER, 0, reinterpret_cast<LPARAM>(Filter));
    PressKey(VK_F10, {VK_SHIFT});
    EXPECT_TRUE(PumpUntil([] { return !s_filtered.empty(); }));
    EXPECT_EQ((std::vector<int>{HOST_CONTEXT_MENU}), s_filtered);
}

TEST_F(FrameContextMenus, ChoosingAnItemDispatchesItsCommand)
{
    Create();
    ASSERT_EQ(0, SendText(FM_SETTEXT, "Sub Main\r\n\tx = 1\r\nEnd Sub\r\n"));
    Send(FM_SETCARET, 0, 11);
    ASSERT_EQ(0, Send(FM_SETSELLENGTH, 0, 1));
    ASSERT_EQ("x", Get(FM_GETSELTEXT));
    // Down selects Cut, the first item; Enter chooses it.
    s_menuKeys = {VK_DOWN, VK_RETURN};
    ArmRobot();
    Send(FM_HOSTCOMMAND, HOST_CONTEXT_MENU, 1);
    ASSERT_TRUE(s_seen.shown);
    EXPECT_EQ("Sub Main\r\n\t = 1\r\nEnd Sub\r\n", WindowText(Editor())) << "Cut removed the selected x";
}

TEST_F(FrameContextMenus, MenuItemsShowTheirHelpInTheStatusBar)
{
    Create();
    HMENU menu = CreatePopupMenu();
    const auto select = [&](UINT item, UINT flags) {
        Send(WM_MENUSELECT, MAKEWPARAM(item, flags), reinterpret_cast<LPARAM>(menu));
        return WindowText(Child(ID_FRAME_STATUS_BAR));
    };
    EXPECT_EQ("Run or resume the macro", select(CMD_RUN, MF_HILITE));
    EXPECT_EQ("", select(0, MF_POPUP | MF_HILITE)) << "a popup clears the text";
    EXPECT_EQ("Cut the selection to the clipboard", select(CMD_CUT, MF_HILITE));
    EXPECT_EQ("", select(0, MF_SEPARATOR)) << "a separator clears the text";
    // The standard edit control's context menu items stand for the frame's commands.
    EXPECT_EQ("Delete the selection", select(771, MF_HILITE));
    EXPECT_EQ("Cut the selection to the clipboard", select(768, MF_HILITE));
    // System-menu items by their id masked with 0xFFF0; the system menu's own popup clears the text.
    EXPECT_EQ("Close the window", select(SC_CLOSE, MF_SYSMENU | MF_HILITE));
    EXPECT_EQ("Change the size of the window", select(SC_SIZE + 2, MF_SYSMENU | MF_HILITE));
    EXPECT_EQ("Restore the window to its normal size", select(SC_RESTORE, MF_SYSMENU | MF_HILITE));
    EXPECT_EQ("", select(0, MF_SYSMENU | MF_POPUP | MF_HILITE));
    EXPECT_EQ("Cut the selection to the clipboard", select(768, MF_HILITE));
    // Closing the menu leaves the text alone.
    Send(WM_MENUSELECT, MAKEWPARAM(0, 0xFFFF), 0);
    EXPECT_EQ("Cut the selection to the clipboard", WindowText(Child(ID_FRAME_STATUS_BAR)));
    DestroyMenu(menu);
}

TEST_F(FrameContextMenus, NewButtonDropsDownTheModuleKindsInListModeTwo)
{
    Create();
    Send(FM_SETCOMMANDFILTER, 0, reinterpret_cast<LPARAM>(Filter));
    ASSERT_EQ(0, Send(FM_SETLISTMODE, 0, 2));
    Send(FM_UPDATE);
    ArmRobot();
    EXPECT_EQ(1, Command(CMD_TOOLBAR_NEW));
    EXPECT_EQ((std::vector<int>{HOST_NEW_MENU}), s_filtered);
    ASSERT_TRUE(s_seen.shown);
    EXPECT_EQ((std::vector<UINT>{CMD_NEW, CMD_NEW_CODE, CMD_NEW_OBJECT, CMD_NEW_CLASS}), s_seen.ids);
    EXPECT_EQ("&New Macro", s_seen.texts[0]);
    EXPECT_EQ(1, Send(FM_SHEETCOUNT)) << "closed without a choice";
    // Loaded-for-debugging mode leaves the macro item out; choosing Class Module makes a class sheet.
    Send(FM_SETDEBUGLOAD, 0, 1);
    s_seen = MenuSeen{};
    s_menuKeys = {VK_UP, VK_RETURN};
    ArmRobot();
    Command(CMD_TOOLBAR_NEW);
    ASSERT_TRUE(s_seen.shown);
    EXPECT_EQ((std::vector<UINT>{CMD_NEW_CODE, CMD_NEW_OBJECT, CMD_NEW_CLASS}), s_seen.ids);
    EXPECT_EQ(2, Send(FM_SHEETCOUNT));
    EXPECT_EQ(3, Send(FM_SHEETKIND));
    // Outside list mode 2 the button is New itself.
    Send(FM_SETLISTMODE, 0, 0);
    Send(FM_SETDEBUGLOAD, 0, 0);
    s_seen = MenuSeen{};
    s_filtered.clear();
    Command(CMD_TOOLBAR_NEW);
    EXPECT_FALSE(s_seen.shown);
    EXPECT_EQ((std::vector<int>{0}), s_filtered) << "host number 0: New";
    EXPECT_EQ(3, Send(FM_SHEETCOUNT));
}

} // namespace
