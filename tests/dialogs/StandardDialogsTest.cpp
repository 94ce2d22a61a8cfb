// MsgBox through the message-box capture, InputBox and GetFilePath worked by a timer of the thread
// that runs the macro, Wait serving messages, and a stop while a box is up.
#include "code/ProgramRunner.h"
#include "support/MessageBoxCapture.h"
#include "support/WindowImage.h"

#include <gtest/gtest.h>

#include <functional>

using brannoc::testing::JoinLines;
using brannoc::testing::RunProgram;
using brannoc::test::CapturedMessageBox;
using brannoc::test::MessageBoxCapture;

namespace {

std::wstring RunLines(const std::vector<std::string>& body)
{
    std::vector<std::string> lines = {"Sub Main"};
    lines.insert(lines.end(), body.begin(), body.end());
    lines.push_back("End Sub");
    auto result = RunProgram(JoinLines(lines));
    EXPECT_TRUE(result.compileErrors.empty());
    EXPECT_TRUE(result.runErrors.empty());
    return result.output;
}

// Calls act with the thread's visible standard dialog ("#32770") once one is up.
class BoxRobot final {
public:
    explicit BoxRobot(std::function<void(HWND)> act) : m_act(std::move(act))
    {
        s_active = this;
        m_timer = SetTimer(nullptr, 0, 40, &Tick);
    }
    ~BoxRobot()
    {
        KillTimer(nullptr, m_timer);
        s_active = nullptr;
    }
    int Acted() const { return m_acted; }

private:
    static BOOL CALLBACK Find(HWND window, LPARAM found)
    {
        wchar_t className[16] = L"";
        GetClassNameW(window, className, 16);
        if (lstrcmpW(className, L"#32770") == 0 && IsWindowVisible(window)) {
            *reinterpret_cast<HWND*>(found) = window;
            return FALSE;
        }
        return TRUE;
    }
    static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD)
    {
        BoxRobot* robot = s_active;
        if (!robot || robot->m_busy)
            return;
        HWND box = nullptr;
        EnumThreadWindows(GetCurrentThreadId(), &Find, reinterpret_cast<LPARAM>(&box));
        if (!box || box == robot->m_last)
            return;
        robot->m_busy = true;
        robot->m_last = box;
        ++robot->m_acted;
        robot->m_act(box);
        robot->m_busy = false;
    }
    static inline BoxRobot* s_active = nullptr;
    std::function<void(HWND)> m_act;
    UINT_PTR m_timer = 0;
    HWND m_last = nullptr;
    int m_acted = 0;
    bool m_busy = false;
};

TEST(MsgBox, FiltersTheStyleAndAnswersWithThePressedButton)
{
    MessageBoxCapture capture(IDNO);
    EXPECT_EQ(RunLines({"Debug.Print MsgBox(\"Save?\", 4 + 32 + 256, \"Question\")",
                        "Debug.Print MsgBox(\"Invalid set\", 6)", "MsgBox \"Stop\", 16 + 1, \"Icons\"",
                        "MsgBox 12.5, 48 + 3 + 8192", "MsgBox \"Info\", 64 + 2"}),
              L"7%\r\n1%\r\n");
    const std::vector<CapturedMessageBox> boxes = capture.Boxes();
    ASSERT_EQ(boxes.size(), 5u);
    EXPECT_EQ(boxes[0].caption, L"Question");
    EXPECT_EQ(boxes[0].text, L"Save?");
    EXPECT_EQ(boxes[0].buttons, static_cast<UINT>(MB_YESNO));
    EXPECT_EQ(boxes[0].icon, static_cast<UINT>(MB_ICONQUESTION));
    EXPECT_EQ(boxes[1].buttons, static_cast<UINT>(MB_OK));
    EXPECT_EQ(boxes[1].icon, 0u);
    EXPECT_EQ(boxes[2].buttons, static_cast<UINT>(MB_OKCANCEL));
    EXPECT_EQ(boxes[2].icon, static_cast<UINT>(MB_ICONSTOP));
    EXPECT_EQ(boxes[3].text, L"12.5");
    EXPECT_EQ(boxes[3].buttons, static_cast<UINT>(MB_YESNOCANCEL));
    EXPECT_EQ(boxes[3].icon, static_cast<UINT>(MB_ICONEXCLAMATION));
    EXPECT_EQ(boxes[4].buttons, static_cast<UINT>(MB_ABORTRETRYIGNORE));
    EXPECT_EQ(boxes[4].icon, static_cast<UINT>(MB_ICONINFORMATION));
}

TEST(MsgBox, TheDefaultButtonIsTheOneTheStyleNames)
{
    // Enter presses the default button: the second one (No) for vbDefaultButton2.
    BoxRobot robot([](HWND box) {
        HWND focused = GetFocus();
        PostMessageW(focused ? focused : box, WM_KEYDOWN, VK_RETURN, 0);
        PostMessageW(focused ? focused : box, WM_KEYUP, VK_RETURN, 0);
    });
    EXPECT_EQ(RunLines({"Debug.Print MsgBox(\"Save?\", 4 + 256)", "Debug.Print MsgBox(\"Save?\", 3 + 512)"}),
              L"7%\r\n2%\r\n");
}

TEST(MsgBox, ScreenshotsOfEachIcon)
{
    int shot = 0;
    BoxRobot robot([&shot](HWND box) {
        const wchar_t* names[] = {L"msgbox_critical", L"msgbox_question", L"msgbox_exclamation", L"msgbox_information"};
        EXPECT_FALSE(brannoc::test::WindowImage::Capture(box, true).WriteScreenshot(names[shot++ % 4]).empty());
        PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
    });
    EXPECT_EQ(RunLines({"Debug.Print MsgBox(\"Critical\", 16, \"Icons\")", "Debug.Print MsgBox(\"Question\", 32)",
                        "Debug.Print MsgBox(\"Exclamation\", 48)", "Debug.Print MsgBox(\"Information\", 64)"}),
              L"1%\r\n1%\r\n1%\r\n1%\r\n");
    EXPECT_EQ(shot, 4);
}

TEST(MsgBox, AStopWhileTheBoxIsUpAbandonsTheStatement)
{
    BoxRobot robot([](HWND) {
        EXPECT_TRUE(brannoc::Interpreter::Current()->RequestAction(brannoc::InterpreterHost::kActionEnd, 0));
    });
    EXPECT_EQ(RunLines({"Debug.Print \"before\"", "Debug.Print MsgBox(\"Waiting\")", "Debug.Print \"after\""}),
              L"\"before\"\r\n");
    EXPECT_EQ(robot.Acted(), 1);
}

TEST(InputBox, OKGivesTheAnswerAndCancelGivesNothingEvenWithADefault)
{
    std::wstring caption;
    std::wstring prompt;
    std::wstring initial;
    int round = 0;
    BoxRobot robot([&](HWND box) {
        if (round++ == 0) {
            wchar_t text[128] = L"";
            GetWindowTextW(box, text, 128);
            caption = text;
            GetDlgItemTextW(box, 0xFFFF, text, 128);
            prompt = text;
            GetDlgItemTextW(box, 100, text, 128);
            initial = text;
            EXPECT_FALSE(brannoc::test::WindowImage::Capture(box, true).WriteScreenshot(L"inputbox").empty());
            SetDlgItemTextW(box, 100, L"Brannoc");
            SendMessageW(GetDlgItem(box, IDOK), BM_CLICK, 0, 0);
        } else {
            SendMessageW(GetDlgItem(box, IDCANCEL), BM_CLICK, 0, 0);
        }
    });
    EXPECT_EQ(RunLines({"Debug.Print InputBox(\"Your &name:\", \"Ask\", \"nobody\")",
                        "Debug.Print \"[\" & InputBox(\"Again\", \"Ask\", \"default\") & \"]\""}),
              L"\"Brannoc\"\r\n\"[]\"\r\n");
    EXPECT_EQ(caption, L"Ask");
    EXPECT_EQ(prompt, L"Your &name:");
    EXPECT_EQ(initial, L"nobody");
}

TEST(InputBox, AGivenCoordinatePlacesTheBoxAndALeftOutOneCentresIt)
{
    std::vector<RECT> places;
    BoxRobot robot([&](HWND box) {
        RECT place{};
        GetWindowRect(box, &place);
        places.push_back(place);
        SendMessageW(GetDlgItem(box, IDCANCEL), BM_CLICK, 0, 0);
    });
    RunLines({"x = InputBox(\"Where\", \"Ask\", \"\", 0, 0)", "x = InputBox(\"Where\", \"Ask\", \"\", 0)",
              "x = InputBox(\"Where\", \"Ask\", \"\", , 0)", "x = InputBox(\"Where\", \"Ask\")"});
    ASSERT_EQ(places.size(), 4u);
    const int centredLeft = places[3].left;
    const int centredTop = places[3].top;
    EXPECT_GT(centredLeft, 0);
    EXPECT_GT(centredTop, 0);
    EXPECT_EQ(0, places[0].left);
    EXPECT_EQ(0, places[0].top);
    EXPECT_EQ(0, places[1].left) << "X given";
    EXPECT_EQ(centredTop, places[1].top) << "Y left out: centred vertically";
    EXPECT_EQ(centredLeft, places[2].left) << "X left out: centred horizontally";
    EXPECT_EQ(0, places[2].top) << "Y given";
}

TEST(GetFilePath, RefusesAnUnknownOptionAndGivesNothingWhenCancelled)
{
    BoxRobot robot([](HWND box) { PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0); });
    EXPECT_EQ(RunLines({"On Error Resume Next", "Debug.Print GetFilePath(, \"txt|doc\", , \"Pick\", 8)",
                        "Debug.Print Err.Number", "Err.Clear", "Debug.Print \"[\" & GetFilePath(\"*.txt\", \"txt\") & \"]\"",
                        "Debug.Print Err.Number"}),
              L"10620&\r\n\"[]\"\r\n0&\r\n");
    EXPECT_EQ(robot.Acted(), 1);
}

TEST(GetFilePath, TheTypeListComesFromDefExtAndTheFirstExtensionIsAddedToATypedName)
{
    std::wstring caption;
    std::vector<std::wstring> types;
    BoxRobot robot([&](HWND box) {
        wchar_t text[256] = L"";
        GetWindowTextW(box, text, 256);
        caption = text;
        // The file-type list (cmb1) and the file name field (an edit, or the edit of combo cmb13).
        HWND typeList = GetDlgItem(box, 0x470);
        const int count = typeList ? static_cast<int>(SendMessageW(typeList, CB_GETCOUNT, 0, 0)) : 0;
        for (int i = 0; i < count; ++i) {
            SendMessageW(typeList, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(text));
            types.push_back(text);
        }
        HWND nameField = GetDlgItem(box, 0x47c) ? GetDlgItem(box, 0x47c) : GetDlgItem(box, 0x480);
        SetWindowTextW(nameField, L"report");
        PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
    });
    EXPECT_EQ(RunLines({"Debug.Print GetFilePath(\"\", \"txt|doc\", \"C:\\\", \"Pick\", 2)"}),
              L"\"C:\\report.txt\"\r\n");
    EXPECT_EQ(robot.Acted(), 1);
    EXPECT_EQ(caption, L"Pick");
    EXPECT_EQ(types, (std::vector<std::wstring>{L"Get File Path(*.txt;*.doc)"}));
}

TEST(GetFilePath, WithoutDefExtAllFilesAreListedUnderTheDefaultCaption)
{
    std::wstring caption;
    std::wstring type;
    BoxRobot robot([&](HWND box) {
        wchar_t text[256] = L"";
        GetWindowTextW(box, text, 256);
        caption = text;
        if (HWND typeList = GetDlgItem(box, 0x470))
            SendMessageW(typeList, CB_GETLBTEXT, 0, reinterpret_cast<LPARAM>(text));
        type = text;
        PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
    });
    EXPECT_EQ(RunLines({"On Error Resume Next", "Debug.Print \"[\" & GetFilePath() & \"]\"",
                        "Debug.Print GetFilePath(, , , , -1)", "Debug.Print Err.Number"}),
              L"\"[]\"\r\n10620&\r\n");
    EXPECT_EQ(caption, L"Get File Path");
    EXPECT_EQ(type, L"Get File Path(*.*)");
}

int g_ticks = 0;

void CALLBACK CountTick(HWND, UINT, UINT_PTR, DWORD) { ++g_ticks; }

TEST(Wait, ServesMessagesUntilTheDelayHasPassed)
{
    g_ticks = 0;
    const UINT_PTR timer = SetTimer(nullptr, 0, 20, &CountTick);
    EXPECT_EQ(RunLines({"Wait 0", "Wait -3", "Wait 0.4", "Debug.Print \"done\""}), L"\"done\"\r\n");
    KillTimer(nullptr, timer);
    EXPECT_GT(g_ticks, 2);
}

} // namespace
