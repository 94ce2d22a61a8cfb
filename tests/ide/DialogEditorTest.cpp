// The UserDialog editor driven as a user would: opened from the frame's command 328 on the block
// around the caret, items selected and moved with the mouse, placed with a tool, edited on the
// properties page and the grid dialog, copied and pasted, and the block written back into the sheet
// on Save and Exit or after the closing question.
#include "EditorFrameFixture.h"

#include "ide/CommandTable.h"
#include "ide/DesignGeometry.h"
#include "ide/DialogEditorState.h"
#include "ide/FrameToolbar.h"
#include "support/DialogRobot.h"
#include "support/WindowImage.h"

#include <functional>

using namespace brannoc;
using namespace brannoc::ide;
using brannoc::test::CapturedMessageBox;
using brannoc::test::DialogRobot;
using brannoc::test::EditorFrameFixture;
using brannoc::test::MessageBoxCapture;
using brannoc::test::WindowImage;

namespace {

const char kSheet[] = "Sub Main\r\n"
                      "\tBegin Dialog UserDialog 300,150,\"Pick\" ' %GRID:10,7,1,0\r\n"
                      "\t\tText 10,7,90,14,\"Name:\",.Label\r\n"
                      "\t\tTextBox 10,21,120,21,.Name\r\n"
                      "\t\tPushButton 100,70,90,21,\"Go\",.Go\r\n"
                      "\t\tOKButton 200,119,90,21\r\n"
                      "\tEnd Dialog\r\n"
                      "\tDim dlg As UserDialog\r\n"
                      "\tDialog dlg\r\n"
                      "End Sub\r\n";

std::string TitleOf(HWND window)
{
    char text[256] = {};
    GetWindowTextA(window, text, sizeof(text));
    return text;
}

std::string ClassOf(HWND window)
{
    char name[64] = {};
    GetClassNameA(window, name, sizeof(name));
    return name;
}

void PumpFor(DWORD milliseconds)
{
    const DWORD start = GetTickCount();
    do {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
        Sleep(10);
    } while (GetTickCount() - start < milliseconds);
}

DialogEditor& EditorOf(HWND dialog) { return *reinterpret_cast<DialogEditor*>(GetWindowLongPtrA(dialog, DWLP_USER)); }

// A command as the editor's toolbars send it.
void Press(HWND dialog, int command)
{
    static const UINT message = RegisterWindowMessageA(kToolbarMessageName);
    SendMessageA(dialog, message, static_cast<WPARAM>(command), -1);
}

// The centre of a window in screen coordinates.
POINT CentreOf(HWND window)
{
    RECT r{};
    GetWindowRect(window, &r);
    return POINT{(r.left + r.right) / 2, (r.top + r.bottom) / 2};
}

void SendMouse(POINT screen, DWORD flags)
{
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dx = MulDiv(screen.x, 65535, GetSystemMetrics(SM_CXSCREEN) - 1);
    input.mi.dy = MulDiv(screen.y, 65535, GetSystemMetrics(SM_CYSCREEN) - 1);
    input.mi.dwFlags = MOUSEEVENTF_ABSOLUTE | MOUSEEVENTF_MOVE | flags;
    SendInput(1, &input, sizeof(input));
    PumpFor(120);
}

// Clicks on the view at a point of its client area, by messages.
void ClickView(const DialogEditor& editor, POINT point)
{
    SendMessageA(editor.view, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(point.x, point.y));
    SendMessageA(editor.view, WM_LBUTTONUP, 0, MAKELPARAM(point.x, point.y));
}

class DialogEditorWindow : public EditorFrameFixture {
protected:
    // Opens the editor with the caret on `caretLine`; `action` runs on the editor window once it is up,
    // `nested` on the properties and grid dialogs it opens. Answers what command 328 answered.
    LRESULT RunEditor(int caretLine, const std::function<void(HWND)>& action,
                      const std::function<void(HWND)>& nested = {})
    {
        const LRESULT start = SendMessageA(Editor(), EM_LINEINDEX, static_cast<WPARAM>(caretLine), 0);
        SendMessageA(Editor(), EM_SETSEL, static_cast<WPARAM>(start), start);
        DialogRobot robot([&](HWND dialog) {
            if (TitleOf(dialog) == "UserDialog Editor") {
                m_editorWindow = dialog;
                m_frameEnabledMeanwhile = IsWindowEnabled(m_frame) != FALSE;
                action(dialog);
            } else if (nested) {
                nested(dialog);
            } else {
                DialogRobot::Press(dialog, IDCANCEL);
            }
        });
        return Command(CMD_USER_DIALOG);
    }
    std::string SheetText() const { return WindowText(Editor()); }
    int CaretLine() const { return static_cast<int>(SendMessageA(Editor(), EM_LINEFROMCHAR, static_cast<WPARAM>(-1), 0)); }

    HWND m_editorWindow = nullptr;
    bool m_frameEnabledMeanwhile = true;
};

TEST_F(DialogEditorWindow, OutsideAnyBlockANewDialogIsInsertedWithItsDimAndDialogLines)
{
    Create();
    SendText(FM_SETTEXT, "Sub Main\r\nEnd Sub\r\n");
    bool sawNewDialog = false;
    RunEditor(1, [&](HWND dialog) {
        const DialogEditor& editor = EditorOf(dialog);
        sawNewDialog = !editor.block.found && editor.design.width == 400 && editor.design.height == 200 &&
                       editor.design.Count() == 0;
        Press(dialog, DE_SAVE_AND_EXIT);
    });
    EXPECT_TRUE(sawNewDialog);
    EXPECT_FALSE(m_frameEnabledMeanwhile) << "the frame is disabled while the editor runs";
    EXPECT_TRUE(IsWindowEnabled(m_frame));
    EXPECT_EQ("Sub Main\r\n"
              "\tBegin Dialog UserDialog 400,200 ' %GRID:10,7,1,1\r\n"
              "\tEnd Dialog\r\n"
              "\tDim dlg As UserDialog\r\n"
              "\tDialog dlg\r\n"
              "End Sub\r\n",
              SheetText());
    EXPECT_EQ(1, CaretLine()) << "the dialog was selected: its Begin line";
    ASSERT_NE(nullptr, Document());
    Document()->Undo();
    EXPECT_EQ("Sub Main\r\nEnd Sub\r\n", SheetText()) << "one undo step";
}

TEST_F(DialogEditorWindow, TheWindowHasItsToolbarsStatusBarAndDesignSurface)
{
    Create();
    SendText(FM_SETTEXT, kSheet);
    RECT commandBar{}, toolbox{}, status{}, grab{};
    std::string grabClass, viewClass, selectClass, shownTexts;
    bool selectPressed = false, textBoxReleased = false;
    int selected = -2, items = 0;
    RunEditor(4, [&](HWND dialog) {
        DialogEditor& editor = EditorOf(dialog);
        GetWindowRect(GetDlgItem(dialog, ID_DESIGN_COMMANDS), &commandBar);
        GetWindowRect(GetDlgItem(dialog, ID_DESIGN_TOOLBOX), &toolbox);
        GetWindowRect(GetDlgItem(dialog, ID_DESIGN_STATUS), &status);
        GetWindowRect(GetDlgItem(dialog, ID_DESIGN_GRAB), &grab);
        for (RECT* r : {&commandBar, &toolbox, &status, &grab})
            MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(r), 2);
        grabClass = ClassOf(GetDlgItem(dialog, ID_DESIGN_GRAB));
        viewClass = ClassOf(editor.view);
        selectClass = ClassOf(GetDlgItem(dialog, ID_DESIGN_SELECT));
        selectPressed = SendMessageA(editor.toolbox, TBM_ISRELEASED, DE_SELECT, 0) == 0;
        textBoxReleased = SendMessageA(editor.toolbox, TBM_ISRELEASED, 403, 0) != 0;
        selected = editor.design.selected;
        items = editor.design.Count();
        for (const auto& item : editor.design.items)
            shownTexts += TitleOf(item->window) + "|";
        Press(dialog, DE_SAVE_AND_EXIT);
    });
    EXPECT_EQ(kSheet, SheetText()) << "nothing changed, nothing written";
    EXPECT_EQ(4, items);
    EXPECT_EQ(2, selected) << "the caret's item";
    EXPECT_EQ(4, CaretLine());
    EXPECT_EQ("__KZ_MC_Grab", grabClass);
    EXPECT_EQ("__KZ_MC_DialogView", viewClass);
    EXPECT_EQ("__KZ_MC_Select", selectClass);
    EXPECT_TRUE(selectPressed);
    EXPECT_TRUE(textBoxReleased);
    EXPECT_EQ(0, commandBar.top);
    EXPECT_EQ(28, commandBar.bottom);
    EXPECT_EQ(28, status.top);
    EXPECT_EQ(58, toolbox.right - toolbox.left);
    EXPECT_EQ(status.bottom + 1, toolbox.top);
    EXPECT_EQ(58, grab.left);
    EXPECT_EQ("Name:||Go|OK|", shownTexts);
}

TEST_F(DialogEditorWindow, AnItemIsSelectedAndMovedWithTheMouse)
{
    Create();
    SendText(FM_SETTEXT, kSheet);
    int selectedAfterPress = -2, expectedX = 0, expectedY = 0, movedX = 0, movedY = 0;
    RunEditor(1, [&](HWND dialog) {
        DialogEditor& editor = EditorOf(dialog);
        DialogItem& button = *editor.design.items[2];
        const POINT start = CentreOf(button.window);
        SendMouse(start, 0);
        SendMouse(start, MOUSEEVENTF_LEFTDOWN);
        selectedAfterPress = editor.design.selected;
        SendMouse(POINT{start.x + 20, start.y + 12}, 0);
        SendMouse(POINT{start.x + 40, start.y + 24}, 0);
        SendMouse(POINT{start.x + 40, start.y + 24}, MOUSEEVENTF_LEFTUP);
        expectedX = editor.units.UnitsX(editor.units.PixelsX(100) + 40);
        expectedY = editor.units.UnitsY(editor.units.PixelsY(70) + 24);
        movedX = button.x;
        movedY = button.y;
        Press(dialog, DE_SAVE_AND_EXIT);
    });
    EXPECT_EQ(2, selectedAfterPress);
    EXPECT_EQ(expectedX, movedX);
    EXPECT_EQ(expectedY, movedY);
    EXPECT_NE(std::string::npos, SheetText().find("\t\tPushButton " + std::to_string(expectedX) + "," +
                                                  std::to_string(expectedY) + ",90,21,\"Go\",.Go\r\n"))
        << SheetText();
    EXPECT_EQ(4, CaretLine()) << "the moved item's line";
}

TEST_F(DialogEditorWindow, AToolPlacesAnItemAtTheNextClickAndTheCloseQuestionSavesIt)
{
    Create();
    SendText(FM_SETTEXT, kSheet);
    bool toolPressed = false, selectBackPressed = false;
    int count = 0;
    std::string placed;
    MessageBoxCapture boxes(IDYES);
    RunEditor(1, [&](HWND dialog) {
        DialogEditor& editor = EditorOf(dialog);
        editor.design.grid.snap = true;
        Press(dialog, 405);
        toolPressed = SendMessageA(editor.toolbox, TBM_ISRELEASED, 405, 0) == 0 &&
                      SendMessageA(editor.toolbox, TBM_ISRELEASED, DE_SELECT, 0) != 0;
        ClickView(editor, POINT{editor.units.PixelsX(151), editor.units.PixelsY(96)});
        selectBackPressed = SendMessageA(editor.toolbox, TBM_ISRELEASED, DE_SELECT, 0) == 0;
        count = editor.design.Count();
        placed = ItemLineText(*editor.design.items.back());
        PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
    });
    EXPECT_TRUE(toolPressed);
    EXPECT_TRUE(selectBackPressed) << "one item, then select mode again";
    EXPECT_EQ(5, count);
    EXPECT_EQ("CheckBox 150,98,90,14,\"CheckBox\",.CheckBox1", placed) << "x snapped to 10, y to 7";
    ASSERT_EQ(1u, boxes.Count());
    const CapturedMessageBox box = boxes.Boxes()[0];
    EXPECT_EQ(L"Save UserDialog changes?", box.text);
    EXPECT_EQ(static_cast<UINT>(MB_YESNOCANCEL), box.buttons);
    EXPECT_EQ(static_cast<UINT>(MB_ICONQUESTION), box.icon);
    EXPECT_NE(std::string::npos, SheetText().find("\t\tOKButton 200,119,90,21\r\n"
                                                  "\t\tCheckBox 150,98,90,14,\"CheckBox\",.CheckBox1\r\n\tEnd Dialog"));
    EXPECT_EQ(6, CaretLine()) << "the new item was selected last";
}

TEST_F(DialogEditorWindow, AnsweringNoDiscardsAndCancelReturnsToTheEditor)
{
    Create();
    SendText(FM_SETTEXT, kSheet);
    bool stillOpen = false;
    int asked = 0;
    RunEditor(3, [&](HWND dialog) {
        Press(dialog, DE_DELETE);
        {
            MessageBoxCapture cancel(IDCANCEL);
            SendMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
            asked = static_cast<int>(cancel.Count());
        }
        stillOpen = IsWindowVisible(dialog) != FALSE;
        MessageBoxCapture no(IDNO);
        SendMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
    });
    EXPECT_EQ(1, asked);
    EXPECT_TRUE(stillOpen);
    EXPECT_EQ(kSheet, SheetText()) << "No discards the deletion";
}

TEST_F(DialogEditorWindow, ThePropertiesPageChangesTheSelectedItem)
{
    Create();
    SendText(FM_SETTEXT, kSheet);
    std::string title, firstEntry, kindEntry, shown;
    RunEditor(4,
              [&](HWND dialog) {
                  DialogEditor& editor = EditorOf(dialog);
                  Press(dialog, DE_PROPERTIES);
                  shown = TitleOf(editor.design.items[2]->window);
                  Press(dialog, DE_SAVE_AND_EXIT);
              },
              [&](HWND properties) {
                  title = TitleOf(properties);
                  char entry[256] = {};
                  SendDlgItemMessageA(properties, 141, CB_GETLBTEXT, 0, reinterpret_cast<LPARAM>(entry));
                  firstEntry = entry;
                  SendDlgItemMessageA(properties, 141, CB_GETLBTEXT, 3, reinterpret_cast<LPARAM>(entry));
                  kindEntry = entry;
                  DialogRobot::SetText(properties, 134, "Start");
                  DialogRobot::SetText(properties, 132, "100");
                  PumpFor(150);
                  WindowImage::Capture(properties, true).WriteScreenshot(L"userdialog_properties");
                  DialogRobot::Press(properties, IDOK);
              });
    EXPECT_EQ("Edit PushButton Properties", title);
    EXPECT_EQ("Begin Dialog UserDialog 300,150,\"Pick\" ' %GRID:10,7,1,0", firstEntry);
    EXPECT_EQ("2: PushButton 100,70,90,21,\"Go\",.Go", kindEntry);
    EXPECT_EQ("Start", shown) << "the item's window shows the new caption";
    EXPECT_NE(std::string::npos, SheetText().find("\t\tPushButton 100,70,100,21,\"Start\",.Go\r\n"));
}

TEST_F(DialogEditorWindow, GridSettingsAreKeptInTheBeginLine)
{
    Create();
    SendText(FM_SETTEXT, kSheet);
    RunEditor(1, [&](HWND dialog) {
                  Press(dialog, DE_GRID);
                  Press(dialog, DE_SAVE_AND_EXIT);
              },
              [&](HWND grid) {
                  DialogRobot::SetText(grid, 130, "8");
                  DialogRobot::SetText(grid, 131, "7");
                  CheckDlgButton(grid, 132, BST_CHECKED);
                  CheckDlgButton(grid, 133, BST_CHECKED);
                  PumpFor(150);
                  WindowImage::Capture(grid, true).WriteScreenshot(L"userdialog_grid");
                  DialogRobot::Press(grid, IDOK);
              });
    EXPECT_NE(std::string::npos, SheetText().find("\tBegin Dialog UserDialog 300,150,\"Pick\" ' %GRID:8,7,1,1\r\n"));
}

TEST_F(DialogEditorWindow, CopyAndPasteGoThroughTheClipboardAsText)
{
    Create();
    SendText(FM_SETTEXT, kSheet);
    std::string clipboard;
    int count = 0, selected = -2;
    RunEditor(4, [&](HWND dialog) {
        DialogEditor& editor = EditorOf(dialog);
        Press(dialog, DE_COPY);
        if (OpenClipboard(dialog)) {
            if (HANDLE data = GetClipboardData(CF_TEXT)) {
                clipboard = static_cast<const char*>(GlobalLock(data));
                GlobalUnlock(data);
            }
            CloseClipboard();
        }
        Press(dialog, DE_PASTE);
        count = editor.design.Count();
        selected = editor.design.selected;
        Press(dialog, DE_SAVE_AND_EXIT);
    });
    EXPECT_EQ("\t\tPushButton 100,70,90,21,\"Go\",.Go\r\n", clipboard);
    EXPECT_EQ(5, count);
    EXPECT_EQ(3, selected) << "pasted in front of the copied item";
    EXPECT_NE(std::string::npos, SheetText().find("\t\tPushButton 100,70,90,21,\"Go\",.Go\r\n"
                                                  "\t\tPushButton 100,70,90,21,\"Go\",.Go\r\n"
                                                  "\t\tOKButton"));
}

TEST_F(DialogEditorWindow, ANamedDialogFunctionCanGetItsSkeleton)
{
    Create();
    SendText(FM_SETTEXT, "Sub Main\r\n\tBegin Dialog UserDialog 200,100,.Handler\r\n\tEnd Dialog\r\nEnd Sub\r\n");
    MessageBoxCapture boxes(IDYES);
    RunEditor(1, [&](HWND dialog) {
        Press(dialog, DE_SELECT_IN_FRONT);
        Press(dialog, 410);
        ClickView(EditorOf(dialog), POINT{5, 5});
        Press(dialog, DE_SAVE_AND_EXIT);
    });
    ASSERT_EQ(1u, boxes.Count());
    EXPECT_EQ(L"Create the skelton dialog function?", boxes.Boxes()[0].text);
    EXPECT_EQ(static_cast<UINT>(MB_YESNO), boxes.Boxes()[0].buttons);
    const std::string text = SheetText();
    EXPECT_NE(std::string::npos, text.find("End Sub\r\n\r\nRem See DialogFunc help topic for more information.\r\n"
                                           "Private Function Handler(DlgItem$, Action%, SuppValue&) As Boolean\r\n"));
    EXPECT_NE(std::string::npos, text.find("\t\tRem Handler = True ' Continue getting idle actions\r\n"));
}

TEST_F(DialogEditorWindow, Screenshot)
{
    Create();
    SendText(FM_SETTEXT, std::string("Sub Main\r\n"
                                     "\tBegin Dialog UserDialog 320,189,\"Order\" ' %GRID:10,7,1,1\r\n"
                                     "\t\tText 10,7,90,14,\"Customer:\",.Label\r\n"
                                     "\t\tTextBox 100,7,130,21,.Customer\r\n"
                                     "\t\tGroupBox 10,35,150,63,\"Delivery\",.GroupBox1\r\n"
                                     "\t\tOptionGroup .Delivery\r\n"
                                     "\t\t\tOptionButton 20,49,120,14,\"Standard\",.Standard\r\n"
                                     "\t\t\tOptionButton 20,70,120,14,\"Express\",.Express\r\n"
                                     "\t\tCheckBox 170,42,130,14,\"Gift wrap\",.Gift\r\n"
                                     "\t\tListBox 170,63,140,70,Items(),.Items\r\n"
                                     "\t\tDropListBox 10,112,150,21,Sizes(),.Size\r\n"
                                     "\t\tOKButton 110,154,90,21\r\n"
                                     "\t\tCancelButton 210,154,90,21\r\n"
                                     "\tEnd Dialog\r\n"
                                     "End Sub\r\n"));
    int handleBlack = 0;
    RunEditor(3, [&](HWND dialog) {
        DialogEditor& editor = EditorOf(dialog);
        PumpFor(200);
        const WindowImage image = WindowImage::Capture(dialog, true);
        image.WriteScreenshot(L"userdialog_editor");
        // The selected TextBox's top-left handle, in the captured client area.
        RECT box = EntryPixels(editor, 1);
        MapWindowPoints(editor.view, dialog, reinterpret_cast<POINT*>(&box), 2);
        RECT handle = HandleRect(box, HTTOPLEFT);
        POINT origin{0, 0};
        ClientToScreen(dialog, &origin);
        RECT window{};
        GetWindowRect(dialog, &window);
        OffsetRect(&handle, origin.x - window.left, origin.y - window.top);
        handleBlack = image.Count(handle, RGB(0, 0, 0));
        Press(dialog, DE_SAVE_AND_EXIT);
    });
    EXPECT_EQ(25, handleBlack) << "a black 5 by 5 handle";
}

TEST_F(DialogEditorWindow, SizingByTheRightHandleStopsFivePixelsFromTheLeftEdge)
{
    Create();
    SendText(FM_SETTEXT, kSheet);
    int width = 0, x = 0, expectedWidth = 0, windowWidth = 0;
    MessageBoxCapture boxes(IDNO);
    RunEditor(4, [&](HWND dialog) {
        DialogEditor& editor = EditorOf(dialog);
        const RECT handle = HandleRect(EntryPixels(editor, 2), HTRIGHT);
        const POINT grip{handle.left + 2, handle.top + 2};
        SendMessageA(editor.view, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(grip.x, grip.y));
        SendMessageA(editor.view, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(grip.x - 100, grip.y));
        SendMessageA(editor.view, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(grip.x - 400, grip.y));
        SendMessageA(editor.view, WM_LBUTTONUP, 0, MAKELPARAM(grip.x - 400, grip.y));
        const DialogItem& button = *editor.design.items[2];
        width = button.width;
        x = button.x;
        expectedWidth = editor.units.UnitsX(kMinimumSize);
        RECT shown{};
        GetWindowRect(button.window, &shown);
        windowWidth = shown.right - shown.left;
        PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
    });
    EXPECT_EQ(100, x) << "the left edge stays";
    EXPECT_EQ(expectedWidth, width);
    EXPECT_GE(windowWidth, 4);
    EXPECT_LE(windowWidth, 6);
}

TEST_F(DialogEditorWindow, TheDialogIsSizedByItsOwnHandles)
{
    Create();
    SendText(FM_SETTEXT, kSheet);
    int width = 0, height = 0, expectedWidth = 0, expectedHeight = 0;
    MessageBoxCapture boxes(IDYES);
    RunEditor(1, [&](HWND dialog) {
        DialogEditor& editor = EditorOf(dialog);
        RECT box = EntryPixels(editor, -1);
        OffsetRect(&box, kSurfaceMargin, kSurfaceMargin);
        const RECT handle = HandleRect(box, HTBOTTOMRIGHT);
        const POINT grip{handle.left + 2, handle.top + 2};
        SendMessageA(editor.grab, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(grip.x, grip.y));
        SendMessageA(editor.grab, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(grip.x + 30, grip.y + 13));
        SendMessageA(editor.grab, WM_LBUTTONUP, 0, MAKELPARAM(grip.x + 30, grip.y + 13));
        width = editor.design.width;
        height = editor.design.height;
        expectedWidth = editor.units.UnitsX(editor.units.PixelsX(300) + 30);
        expectedHeight = editor.units.UnitsY(editor.units.PixelsY(150) + 13);
        PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
    });
    EXPECT_EQ(expectedWidth, width);
    EXPECT_EQ(expectedHeight, height);
    EXPECT_EQ(1u, boxes.Count());
    EXPECT_NE(std::string::npos, SheetText().find("\tBegin Dialog UserDialog " + std::to_string(expectedWidth) + "," +
                                                  std::to_string(expectedHeight) + ",\"Pick\""));
}

TEST_F(DialogEditorWindow, ADoubleClickOpensThePropertiesOfTheItem)
{
    Create();
    SendText(FM_SETTEXT, kSheet);
    std::string title;
    RunEditor(1,
              [&](HWND dialog) {
                  DialogEditor& editor = EditorOf(dialog);
                  const RECT item = EntryPixels(editor, 1);
                  ClickView(editor, POINT{item.left + 3, item.top + 3});
                  ClickView(editor, POINT{item.left + 3, item.top + 3});
                  PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
              },
              [&](HWND properties) {
                  title = TitleOf(properties);
                  DialogRobot::Press(properties, IDCANCEL);
              });
    EXPECT_EQ("Edit TextBox Properties", title);
    EXPECT_EQ(kSheet, SheetText());
}

TEST_F(DialogEditorWindow, ToolTipsAndReorderingCommands)
{
    Create();
    SendText(FM_SETTEXT, kSheet);
    std::string tip, help;
    RunEditor(4, [&](HWND dialog) {
        static const UINT message = RegisterWindowMessageA(kToolbarMessageName);
        SendMessageA(dialog, message, DE_DELETE, 2);
        tip = reinterpret_cast<const char*>(GetWindowLongPtrA(dialog, DWLP_MSGRESULT));
        SendMessageA(dialog, message, DE_DELETE, 0);
        help = TitleOf(GetDlgItem(dialog, ID_DESIGN_STATUS));
        Press(dialog, DE_MOVE_BEHIND);
        Press(dialog, DE_SELECT_IN_FRONT);
        Press(dialog, DE_SELECT_IN_FRONT);
        Press(dialog, DE_MOVE_BEHIND);
        Press(dialog, DE_SAVE_AND_EXIT);
    });
    EXPECT_EQ("Delete", tip);
    EXPECT_EQ("Delete the selected item", help);
    EXPECT_NE(std::string::npos, SheetText().find("\t\tText 10,7,90,14,\"Name:\",.Label\r\n"
                                                  "\t\tPushButton 100,70,90,21,\"Go\",.Go\r\n"
                                                  "\t\tOKButton 200,119,90,21\r\n"
                                                  "\t\tTextBox 10,21,120,21,.Name\r\n"))
        << SheetText();
    EXPECT_EQ(4, CaretLine()) << "the OKButton was selected last";
}

} // namespace
