// Layout of the frame's children: the arithmetic on its own, and the child rectangles of a frame.
#include "EditorFrameFixture.h"

#include "ide/FrameLayout.h"
#include "ide/FrameStatusBar.h"
#include "ide/FrameToolbar.h"
#include "ide/SheetTabs.h"

using namespace brannoc;
using namespace brannoc::ide;
using brannoc::test::EditorFrameFixture;

namespace {

FrameLayoutInput PanesInput(int height, int split)
{
    FrameLayoutInput in;
    in.width = 600;
    in.height = height;
    in.toolbar = true;
    in.toolbarHeight = 26;
    in.statusBar = true;
    in.statusHeight = 20;
    in.panes = true;
    in.tabBarHeight = 18;
    in.splitPosition = split;
    return in;
}

TEST(FrameLayoutArithmetic, PanesTakeAThirdUntilTheUserSetsTheSplit)
{
    // Panes' top: tab bar top 26 + 18 + 3 - 1 = 46; the status bar's top is 400 - 20 + 2 = 382.
    FrameLayoutResult out = ComputeFrameLayout(PanesInput(400, 0));
    EXPECT_EQ(46, out.panes.top);
    EXPECT_EQ((382 - 46) / 3, out.panes.bottom - out.panes.top);
    EXPECT_EQ(-(46 + 112 + 1), out.splitPosition) << "the default split is recorded negative";
    EXPECT_EQ(out.panes.bottom + 2, out.editor.top);
    EXPECT_EQ(382, out.editor.bottom);
    FrameLayoutResult taller = ComputeFrameLayout(PanesInput(700, 0));
    EXPECT_EQ((682 - 46) / 3, taller.panes.bottom - taller.panes.top) << "in proportion to the height";

    // A split that would leave less than 60 pixels below gives way, even below 40 pixels of panes.
    FrameLayoutResult tight = ComputeFrameLayout(PanesInput(150, 140));
    EXPECT_EQ(132 - 46 - 60, tight.panes.bottom - tight.panes.top);
    FrameLayoutResult small = ComputeFrameLayout(PanesInput(400, 60));
    EXPECT_EQ(40, small.panes.bottom - small.panes.top) << "at least 40 pixels otherwise";
    FrameLayoutResult set = ComputeFrameLayout(PanesInput(400, 200));
    EXPECT_EQ(200 - 46 - 1, set.panes.bottom - set.panes.top);
}

TEST(FrameLayoutArithmetic, ListsByMode)
{
    FrameLayoutInput in;
    in.width = 700;
    in.height = 400;
    in.listHeight = 21;
    in.objectLabelWidth = 40;
    in.procLabelWidth = 30;
    in.letterWidth = 7;
    in.listMode = 2;
    FrameLayoutResult both = ComputeFrameLayout(in);
    int listWidth = (700 - 40 - 30) / 2 - 32;
    EXPECT_EQ(60, both.objectList.left);
    EXPECT_EQ(listWidth, both.objectList.right - both.objectList.left);
    EXPECT_EQ(700 - listWidth - 12, both.procList.left);
    EXPECT_EQ(700 - 12, both.procList.right);
    EXPECT_EQ(12, both.objectLabel.x);
    EXPECT_EQ(both.objectList.right + 24, both.procLabel.x);
    EXPECT_EQ(1 + 21 + 2, both.editor.top);
    in.listMode = 1;
    FrameLayoutResult proc = ComputeFrameLayout(in);
    EXPECT_EQ(50, proc.procList.left);
    EXPECT_EQ(30 * 7, proc.procList.right - proc.procList.left) << "at most 30 letters wide";
    in.sheetTabs = true;
    in.sheetStripWidth = 15;
    FrameLayoutResult tabs = ComputeFrameLayout(in);
    EXPECT_EQ(15, tabs.editor.left);
    EXPECT_EQ(tabs.editor.top, tabs.sheetTabs.top);
    EXPECT_EQ(tabs.editor.bottom, tabs.sheetTabs.bottom);
}

class FrameLayout : public EditorFrameFixture {};

TEST_F(FrameLayout, ChildRectanglesFollowTheArithmetic)
{
    Create(FO_TOOLBAR | FO_STATUS_BAR | FO_FILES | FO_SHEETS);
    RECT client;
    GetClientRect(m_frame, &client);
    int toolbarHeight = static_cast<int>(Send(FM_TOOLBARHEIGHT));
    int statusHeight = static_cast<int>(Send(FM_STATUSHEIGHT));
    EXPECT_GT(toolbarHeight, 20);
    RECT toolbar = ChildRect(ID_FRAME_TOOLBAR);
    EXPECT_EQ((RECT{0, 0, client.right, toolbarHeight}), toolbar);
    RECT status = ChildRect(ID_FRAME_STATUS_BAR);
    EXPECT_EQ((RECT{-2, client.bottom - statusHeight + 2, client.right + 2, client.bottom + 2}), status)
        << "2 pixels beyond the left, right and bottom edges";
    int strip = static_cast<int>(SendMessageA(Child(ID_FRAME_SHEET_TABS), STM_WIDTH, 0, 0));
    EXPECT_EQ((RECT{0, toolbarHeight, strip, status.top}), ChildRect(ID_FRAME_SHEET_TABS));
    EXPECT_EQ((RECT{strip, toolbarHeight, client.right, status.top}), ChildRect(ID_FRAME_EDITOR));

    Send(FM_SETLISTMODE, 0, 2);
    RECT object = ChildRect(ID_FRAME_OBJECT_LIST);
    RECT proc = ChildRect(ID_FRAME_PROC_LIST);
    EXPECT_EQ(toolbarHeight, object.top);
    EXPECT_EQ(object.right - object.left, proc.right - proc.left);
    EXPECT_EQ(client.right - 12, proc.right);
    EXPECT_EQ(object.top + (object.bottom - object.top) + 2, ChildRect(ID_FRAME_EDITOR).top)
        << "the text area starts 2 pixels below the lists";

    // Without the toolbar the next child starts at y = 1; the status bar option hides the bar.
    Send(FM_SETOPTIONS, FO_TOOLBAR | FO_STATUS_BAR, 0);
    Send(FM_SETLISTMODE, 0, 0);
    GetClientRect(m_frame, &client);
    EXPECT_EQ((RECT{strip, 1, client.right, client.bottom}), ChildRect(ID_FRAME_EDITOR));
    EXPECT_FALSE(IsWindowVisible(Child(ID_FRAME_TOOLBAR)));
    EXPECT_FALSE(IsWindowVisible(Child(ID_FRAME_STATUS_BAR)));
}

TEST_F(FrameLayout, ToolbarWidthIsClampedToItsRange)
{
    Create();
    HWND toolbar = Child(ID_FRAME_TOOLBAR);
    SendMessageA(toolbar, TBM_SETWIDTH, 20, 0);
    RECT first{}, second{};
    SendMessageA(toolbar, TBM_BUTTONRECT, 299, reinterpret_cast<LPARAM>(&first));
    SendMessageA(toolbar, TBM_BUTTONRECT, 304, reinterpret_cast<LPARAM>(&second));
    EXPECT_EQ(first.top, second.top) << "laid out for 50 pixels: two buttons fit on a row";
    RECT third{};
    SendMessageA(toolbar, TBM_BUTTONRECT, 306, reinterpret_cast<LPARAM>(&third));
    EXPECT_EQ(first.bottom, third.top) << "the third starts the next row";
    SendMessageA(toolbar, TBM_SETWIDTH, 40000, 0);
    EXPECT_GT(SendMessageA(toolbar, TBM_NEEDEDWIDTH, 0, 0), 400);
    EXPECT_LT(SendMessageA(toolbar, TBM_NEEDEDHEIGHT, 0, 0), 30) << "one row";
}

} // namespace
