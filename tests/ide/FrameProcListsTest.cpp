// The object and proc lists: "(General)" with "(declarations)" and the procedures (property kinds
// marked), the module's own object with its events, and a handler inserted for an event without one.
#include "EditorFrameFixture.h"

#include "ide/CommandTable.h"
#include "support/WindowImage.h"

using namespace brannoc;
using namespace brannoc::ide;
using brannoc::test::EditorFrameFixture;

namespace {

class FrameProcLists : public EditorFrameFixture {
protected:
    std::vector<std::string> Items(int id) const
    {
        std::vector<std::string> items;
        HWND list = Child(id);
        for (int i = 0; i < SendMessageA(list, CB_GETCOUNT, 0, 0); ++i) {
            char text[256] = {};
            SendMessageA(list, CB_GETLBTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
            items.push_back(text);
        }
        return items;
    }
    // Chooses an entry as the user does: selection, then the end-of-selection notification.
    void Choose(int id, const std::string& text) const
    {
        HWND list = Child(id);
        LRESULT index = SendMessageA(list, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text.c_str()));
        ASSERT_GE(index, 0) << text;
        SendMessageA(list, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
        Send(WM_COMMAND, MAKEWPARAM(id, CBN_SELENDOK), reinterpret_cast<LPARAM>(list));
    }
    // The entry shown in a list's field.
    std::string Selected(int id) const
    {
        HWND list = Child(id);
        LRESULT index = SendMessageA(list, CB_GETCURSEL, 0, 0);
        char text[256] = {};
        if (index >= 0)
            SendMessageA(list, CB_GETLBTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(text));
        return text;
    }
    LPARAM ItemData(int id, const std::string& text) const
    {
        HWND list = Child(id);
        LRESULT index = SendMessageA(list, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text.c_str()));
        return SendMessageA(list, CB_GETITEMDATA, static_cast<WPARAM>(index), 0);
    }
};

TEST_F(FrameProcLists, GeneralListsDeclarationsProceduresAndPropertyKinds)
{
    Create();
    Send(FM_SETLISTMODE, 0, 2);
    Command(CMD_NEW_CODE);
    SendText(FM_SETTEXT, "Dim WithEvents Book As Object\r\nPrivate Declare Sub Nap Lib \"k\" ()\r\nPublic Total\r\n\r\n"
                         "Sub Add(x)\r\nEnd Sub\r\nPrivate Function Twice(x)\r\nEnd Function\r\n"
                         "Property Get Size()\r\nEnd Property\r\nProperty Let Size(v)\r\nEnd Property\r\n"
                         "Property Set Owner(o)\r\nEnd Property\r\n");
    Send(FM_UPDATE);
    EXPECT_EQ((std::vector<std::string>{"(General)", "Book"}), Items(ID_FRAME_OBJECT_LIST));
    EXPECT_EQ((std::vector<std::string>{"(declarations)", "Add", "Owner [PropertySet]", "Size [PropertyGet]",
                                        "Size [PropertyLet]", "Twice"}),
              Items(ID_FRAME_PROC_LIST));
    EXPECT_EQ("(declarations)", Selected(ID_FRAME_PROC_LIST)) << "the caret is above the first procedure";
    Choose(ID_FRAME_PROC_LIST, "Twice");
    EXPECT_EQ(6, Document()->Caret().line) << "choosing a procedure moves the caret to it";
    EXPECT_EQ("Twice", Selected(ID_FRAME_PROC_LIST));
    Document()->MoveCaret(TextPosition{9, 0}, false);
    Send(FM_UPDATE);
    EXPECT_EQ("Size [PropertyGet]", Selected(ID_FRAME_PROC_LIST)) << "the list follows the caret";
}

TEST_F(FrameProcLists, AnEventWithoutAHandlerGetsOneWithTheCaretInside)
{
    Create();
    Send(FM_SETLISTMODE, 0, 2);
    Command(CMD_NEW_CLASS);
    SendText(FM_SETTEXT, "Dim Count\r\n");
    Send(FM_UPDATE);
    EXPECT_EQ((std::vector<std::string>{"(General)", "Class"}), Items(ID_FRAME_OBJECT_LIST));
    Choose(ID_FRAME_OBJECT_LIST, "Class");
    EXPECT_EQ((std::vector<std::string>{"Initialize", "Terminate"}), Items(ID_FRAME_PROC_LIST));
    EXPECT_EQ(0, ItemData(ID_FRAME_PROC_LIST, "Initialize")) << "no handler yet: normal font";
    Choose(ID_FRAME_PROC_LIST, "Initialize");
    EXPECT_EQ("Dim Count\r\n\r\nPrivate Sub Class_Initialize()\r\n\r\nEnd Sub\r\n", Get(FM_GETTEXT));
    EXPECT_EQ(3, Document()->Caret().line) << "on the empty line inside";
    Send(FM_UPDATE);
    EXPECT_EQ("Class", Selected(ID_FRAME_OBJECT_LIST));
    EXPECT_EQ((std::vector<std::string>{"Initialize", "Terminate"}), Items(ID_FRAME_PROC_LIST));
    EXPECT_EQ("Initialize", Selected(ID_FRAME_PROC_LIST)) << "the new handler is the shown entry";
    EXPECT_NE("Procedure is not defined.", WindowText(Child(ID_FRAME_STATUS_BAR)));
    brannoc::test::WindowImage::Capture(m_frame, true).WriteScreenshot(L"editor_frame_lists");
    Choose(ID_FRAME_OBJECT_LIST, "Class");
    EXPECT_EQ(1, ItemData(ID_FRAME_PROC_LIST, "Initialize")) << "with a handler: bold";
    EXPECT_EQ(0, ItemData(ID_FRAME_PROC_LIST, "Terminate"));

    // Read-only: the status bar says the procedure is not defined instead.
    Send(FM_SETREADONLY, 0, 1);
    Choose(ID_FRAME_OBJECT_LIST, "Class");
    Choose(ID_FRAME_PROC_LIST, "Terminate");
    EXPECT_EQ("Procedure is not defined.", WindowText(Child(ID_FRAME_STATUS_BAR)));
    EXPECT_EQ(std::string::npos, Get(FM_GETTEXT).find("Terminate"));
    Send(FM_SETREADONLY, 0, 0);
    Choose(ID_FRAME_OBJECT_LIST, "Class");
    Choose(ID_FRAME_PROC_LIST, "Terminate");
    EXPECT_NE(std::string::npos, Get(FM_GETTEXT).find("Private Sub Class_Terminate()"));
    EXPECT_NE("Procedure is not defined.", WindowText(Child(ID_FRAME_STATUS_BAR))) << "the earlier message is gone";
    EXPECT_EQ("Terminate", Selected(ID_FRAME_PROC_LIST));
    EXPECT_EQ(7, Document()->Caret().line);
    SendMessageA(Child(ID_FRAME_PROC_LIST), CB_SHOWDROPDOWN, TRUE, 0);
    Pump(200);
    // The open list is a pop-up of its own: the screen shows it over the frame.
    brannoc::test::WindowImage::Capture(GetDesktopWindow(), true).WriteScreenshot(L"editor_frame_lists_open");
    SendMessageA(Child(ID_FRAME_PROC_LIST), CB_SHOWDROPDOWN, FALSE, 0);
}

} // namespace
