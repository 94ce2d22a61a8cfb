// User dialogs shown by macros, worked by a robot on a timer of the thread that runs the macro: the
// item kinds and their values, the exits, the dialog-function protocol, the Dlg functions, placement and
// the owner window, and a stop while the dialog is up.
#include "code/ProgramRunner.h"
#include "dialogs/DialogRobot.h"
#include "support/WindowImage.h"

#include <gtest/gtest.h>

using brannoc::testing::Click;
using brannoc::testing::DialogRobot;
using brannoc::testing::Item;
using brannoc::testing::JoinLines;
using brannoc::testing::RunProgram;

namespace {

std::string Narrow(const std::wstring& text) { return std::string(text.begin(), text.end()); }

// A dialog of all thirteen item kinds; items are numbered 0 to 15 in this order.
const std::vector<std::string> kAllKinds = {
    "    Dim fruits$(2), colours$(1), sizes$(2)",
    "    fruits(0) = \"Apple\": fruits(1) = \"Banana\": fruits(2) = \"Cherry\"",
    "    colours(0) = \"Red\": colours(1) = \"Green\"",
    "    sizes(0) = \"Small\": sizes(1) = \"Medium\": sizes(2) = \"Large\"",
    "    Begin Dialog UserDialog 300, 196, \"All kinds\"",
    "        Text 10, 6, 120, 12, \"&Name:\"",                               // 0
    "        TextBox 10, 20, 120, 14, .Name",                              // 1
    "        GroupBox 140, 4, 150, 60, \"Options\"",                        // 2
    "        CheckBox 150, 18, 120, 12, \"&Bold\", .Bold, 2",               // 3
    "        OptionGroup .Size",                                           // 4
    "        OptionButton 150, 32, 60, 12, \"Small\"",                      // 5
    "        OptionButton 150, 46, 60, 12, \"Large\"",                      // 6
    "        ListBox 10, 40, 120, 40, fruits(), .Fruit",                   // 7
    "        DropListBox 10, 86, 120, 60, colours(), .Colour",             // 8
    "        ComboBox 140, 70, 150, 44, sizes(), .Shirt",                  // 9
    "        PushButton 10, 170, 70, 20, \"&Apply Now\"",                   // 10
    "        OKButton 100, 170, 60, 20",                                   // 11
    "        CancelButton 170, 170, 60, 20",                               // 12
    "        Picture 140, 120, 150, 40, \"nofile.bmp\", 0",                 // 13
    "    End Dialog",
    "    Dim dlg As UserDialog",
};

std::string AllKindsProgram(const std::vector<std::string>& after)
{
    std::vector<std::string> lines = {"Sub Main"};
    lines.insert(lines.end(), kAllKinds.begin(), kAllKinds.end());
    lines.insert(lines.end(), {"    dlg.Name = \"Ann\": dlg.Bold = 2: dlg.Size = 1: dlg.Fruit = 2",
                               "    dlg.Colour = 1: dlg.Shirt = \"Medium\""});
    lines.insert(lines.end(), after.begin(), after.end());
    lines.push_back(
        "    Debug.Print dlg.Name & \"|\" & dlg.Bold & \"|\" & dlg.Size & \"|\" & dlg.Fruit & \"|\" & dlg.Colour & \"|\" & dlg.Shirt");
    lines.push_back("End Sub");
    return JoinLines(lines);
}

TEST(UserDialog, ShowsEveryItemKindWithTheFieldsAndCopiesThemBackOnOK)
{
    std::wstring seen;
    DialogRobot robot({[&](HWND dialog) {
        seen = DialogRobot::Text(dialog) + L"|" + DialogRobot::Text(Item(dialog, 1)) + L"|" +
               std::to_wstring(SendMessageW(Item(dialog, 3), BM_GETCHECK, 0, 0)) + L"|" +
               std::to_wstring(SendMessageW(Item(dialog, 6), BM_GETCHECK, 0, 0)) + L"|" +
               std::to_wstring(SendMessageW(Item(dialog, 7), LB_GETCURSEL, 0, 0)) + L"|" +
               std::to_wstring(SendMessageW(Item(dialog, 8), CB_GETCURSEL, 0, 0)) + L"|" +
               DialogRobot::Text(Item(dialog, 9)) + L"|" + std::to_wstring(SendMessageW(Item(dialog, 7), LB_GETCOUNT, 0, 0));
        wchar_t className[64] = L"";
        GetClassNameW(Item(dialog, 13), className, 64);
        seen += L"|" + std::wstring(className);
        brannoc::test::WindowImage::Capture(dialog, true).WriteScreenshot(L"userdialog_all_kinds");
        SetDlgItemTextW(dialog, 101, L"Bob");
        SendMessageW(Item(dialog, 3), BM_SETCHECK, BST_CHECKED, 0);
        SendMessageW(Item(dialog, 6), BM_SETCHECK, BST_UNCHECKED, 0);
        SendMessageW(Item(dialog, 5), BM_SETCHECK, BST_CHECKED, 0);
        SendMessageW(Item(dialog, 7), LB_SETCURSEL, 0, 0);
        SendMessageW(Item(dialog, 8), CB_SETCURSEL, 0, 0);
        SetWindowTextW(Item(dialog, 9), L"Huge");
        Click(GetDlgItem(dialog, IDOK));
        return true;
    }});
    auto result = RunProgram(AllKindsProgram({"    Debug.Print Dialog(dlg)"}));
    ASSERT_TRUE(result.compileErrors.empty()) << result.compileErrors[0].message;
    EXPECT_TRUE(robot.Finished());
    EXPECT_EQ(seen, L"All kinds|Ann|2|1|2|1|Medium|3|__BrannocBasicPictureWindow");
    EXPECT_EQ(result.output, L"-1%\r\n\"Bob|1|0|0|0|Huge\"\r\n");
    EXPECT_TRUE(result.runErrors.empty()) << result.runErrors[0].number << " " << Narrow(result.runErrors[0].description);
}

TEST(UserDialog, CancelLeavesTheFieldsAndTheStatementRaises10031)
{
    DialogRobot robot({[](HWND dialog) { Click(GetDlgItem(dialog, IDCANCEL)); return true; },
                       [](HWND dialog) {
                           SetDlgItemTextW(dialog, 101, L"Changed");
                           Click(GetDlgItem(dialog, IDCANCEL));
                           return true;
                       }});
    auto result = RunProgram(AllKindsProgram({"    Debug.Print Dialog(dlg)", "    On Error Resume Next",
                                              "    Dialog dlg", "    Debug.Print Err.Number & \" \" & Err.Description"}));
    EXPECT_TRUE(robot.Finished());
    EXPECT_EQ(result.output, L"0%\r\n\"10031 User pressed cancel.\"\r\n\"Ann|2|1|2|1|Medium\"\r\n");
}

TEST(UserDialog, APushButtonGivesItsNumberAndEscWithoutCancelActsAsOK)
{
    DialogRobot robot({[](HWND dialog) { Click(Item(dialog, 2)); return true; },
                       [](HWND dialog) {
                           SetDlgItemTextW(dialog, 100, L"typed");
                           SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
                           return true;
                       }});
    auto result = RunProgram(JoinLines({
        "Sub Main",
        "    Begin Dialog UserDialog 200, 80",
        "        TextBox 10, 10, 100, 12, .Answer",
        "        PushButton 10, 40, 50, 20, \"One\"",
        "        PushButton 70, 40, 50, 20, \"Two\"",
        "        OKButton 130, 40, 50, 20",
        "    End Dialog",
        "    Dim dlg As UserDialog",
        "    Debug.Print Dialog(dlg)",
        "    Debug.Print Dialog(dlg); dlg.Answer",
        "End Sub",
    }));
    ASSERT_TRUE(result.compileErrors.empty()) << result.compileErrors[0].message;
    ASSERT_TRUE(result.runErrors.empty()) << result.runErrors[0].number;
    EXPECT_TRUE(robot.Finished());
    EXPECT_EQ(result.output, L"2%\r\n-1%\"typed\"\r\n");
}

// The dialog function records each call; a test reads them from the output.
// Posts a key press to the dialog's focus with `modifier` held down in the thread's keyboard state; the
// state before is kept in `saved`, for a later step to put back with SetKeyboardState.
void PostKeyHolding(HWND dialog, BYTE (&saved)[256], int modifier, UINT key, LPARAM data)
{
    GetKeyboardState(saved);
    BYTE held[256];
    memcpy(held, saved, sizeof held);
    held[modifier] = 0x80;
    SetKeyboardState(held);
    PostMessageW(GetFocus() ? GetFocus() : dialog, WM_KEYDOWN, key, data);
}

const std::vector<std::string> kRecordingFunction = {
    "Dim idleCalls As Integer",
    "Dim refused As Boolean",
    "Function Handler(item$, action%, value%) As Boolean",
    "    Select Case action%",
    "    Case 1",
    "        Debug.Print \"1 [\" & item$ & \"] \" & (value% <> 0)",
    "    Case 5",
    "        idleCalls = idleCalls + 1",
    "        Handler = idleCalls < 3",
    "    Case Else",
    "        Debug.Print action% & \" \" & item$ & \" \" & value%",
    "        If action% = 2 And item$ = \"OK\" And Not refused Then refused = True: Handler = True",
    "    End Select",
    "End Function",
};

TEST(UserDialog, TheDialogFunctionSeesTheActionsInOrder)
{
    BYTE keys[256] = {};
    DialogRobot robot({
        // Typing into the empty TextBox, then moving the focus: one action 3 (the length), then action 4.
        [](HWND dialog) {
            SetFocus(Item(dialog, 0));
            return true;
        },
        [](HWND dialog) {
            SetDlgItemTextW(dialog, 100, L"abc");
            SetFocus(Item(dialog, 1));
            return true;
        },
        [](HWND dialog) {
            Click(Item(dialog, 1));
            return true;
        },
        [](HWND dialog) {
            SendMessageW(Item(dialog, 3), LB_SETCURSEL, 1, 0);
            SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(103, LBN_SELCHANGE), reinterpret_cast<LPARAM>(Item(dialog, 3)));
            return true;
        },
        // Shift+F2 is action 6 with 258.
        [&keys](HWND dialog) {
            PostKeyHolding(dialog, keys, VK_SHIFT, VK_F2, 0);
            return true;
        },
        [&keys](HWND) {
            SetKeyboardState(keys);
            return true;
        },
        // The first OK is refused (the function returns True), the second ends the dialog.
        [](HWND dialog) {
            Click(GetDlgItem(dialog, IDOK));
            return true;
        },
        [](HWND dialog) {
            Click(GetDlgItem(dialog, IDOK));
            return true;
        },
    });
    std::vector<std::string> lines = kRecordingFunction;
    lines.insert(lines.end(), {
                                  "Sub Main",
                                  "    Dim lines$(2)",
                                  "    lines(0) = \"a\": lines(1) = \"b\": lines(2) = \"c\"",
                                  "    Begin Dialog UserDialog 200, 120, \"Protocol\", .Handler",
                                  "        TextBox 10, 10, 100, 12, .Answer",
                                  "        CheckBox 10, 30, 100, 12, \"Check\", .Check",
                                  "        Text 10, 44, 100, 12, \"Label\"",
                                  "        ListBox 10, 60, 100, 40, lines(), .Pick",
                                  "        OKButton 130, 90, 50, 20",
                                  "    End Dialog",
                                  "    Dim dlg As UserDialog",
                                  "    Debug.Print Dialog(dlg) & \" \" & dlg.Answer & \" \" & dlg.Check & \" \" & dlg.Pick",
                                  "    Debug.Print \"idle \" & idleCalls",
                                  "End Sub",
                              });
    auto result = RunProgram(JoinLines(lines));
    ASSERT_TRUE(result.compileErrors.empty()) << result.compileErrors[0].message;
    EXPECT_TRUE(robot.Finished());
    EXPECT_EQ(Narrow(result.output), "\"1 [] True\"\r\n"
                                     "\"4 Answer -1\"\r\n"
                                     "\"3 Answer 3\"\r\n"
                                     "\"4 Check 0\"\r\n"
                                     "\"2 Check 1\"\r\n"
                                     "\"2 Pick 1\"\r\n"
                                     "\"6 Check 258\"\r\n"
                                     "\"4 OK 1\"\r\n"
                                     "\"2 OK 1\"\r\n"
                                     "\"2 OK 1\"\r\n"
                                     "\"-1 abc 1 1\"\r\n"
                                     "\"idle 3\"\r\n");
}

// F10 comes as a system key without Alt (bit 29 of its data clear): it is F10 alone (10); a system key
// with that bit set carries Alt (Alt+F5 is 1,029); Ctrl adds 512.
TEST(UserDialog, FunctionKeysCountAltOnlyWhenItIsDown)
{
    BYTE keys[256] = {};
    DialogRobot robot({
        [](HWND dialog) {
            HWND focus = GetFocus() ? GetFocus() : dialog;
            PostMessageW(focus, WM_SYSKEYDOWN, VK_F10, 1);
            PostMessageW(focus, WM_SYSKEYUP, VK_F10, 1 | (1u << 30) | (1u << 31));
            PostMessageW(focus, WM_SYSKEYDOWN, VK_F5, 1 | (1 << 29));
            return true;
        },
        [&keys](HWND dialog) {
            PostKeyHolding(dialog, keys, VK_CONTROL, VK_F3, 1);
            return true;
        },
        [&keys](HWND) {
            SetKeyboardState(keys);
            return true;
        },
        [](HWND dialog) {
            Click(GetDlgItem(dialog, IDOK));
            return true;
        },
    });
    auto result = RunProgram(JoinLines({
        "Function Handler(item$, action%, value%) As Boolean",
        "    If action% = 6 Then Debug.Print value%",
        "End Function",
        "Sub Main",
        "    Begin Dialog UserDialog 200, 100, \"Keys\", .Handler",
        "        TextBox 10, 10, 100, 12, .Answer",
        "        OKButton 130, 70, 50, 20",
        "    End Dialog",
        "    Dim dlg As UserDialog",
        "    Debug.Print Dialog(dlg)",
        "End Sub",
    }));
    ASSERT_TRUE(result.compileErrors.empty()) << result.compileErrors[0].message;
    EXPECT_TRUE(robot.Finished());
    EXPECT_EQ(Narrow(result.output), "10%\r\n1029%\r\n515%\r\n-1%\r\n");
}

TEST(UserDialog, TrueForActionOneCancelsBeforeTheDialogIsShown)
{
    auto result = RunProgram(JoinLines({
        "Function Handler(item$, action%, value&) As Integer",
        "    Handler = action% = 1",
        "End Function",
        "Sub Main",
        "    Begin Dialog UserDialog 200, 80, \"Never\", .Handler",
        "        TextBox 10, 10, 100, 12, .Answer",
        "        OKButton 130, 40, 50, 20",
        "    End Dialog",
        "    Dim dlg As UserDialog",
        "    dlg.Answer = \"kept\"",
        "    Debug.Print Dialog(dlg); dlg.Answer",
        "End Sub",
    }));
    ASSERT_TRUE(result.compileErrors.empty()) << result.compileErrors[0].message;
    EXPECT_EQ(result.output, L"0%\"kept\"\r\n");
}

TEST(UserDialog, DlgFunctionsQueryAndChangeTheDialog)
{
    auto result = RunProgram(JoinLines({
        "Function Handler(item$, action%, value%) As Boolean",
        "    If action% <> 1 Then Exit Function",
        "    Debug.Print DlgCount & \" \" & DlgType(1) & \" \" & DlgType(\"ApplyNow\") & \" \" & DlgName(3) & \" \" & DlgNumber(\"ok\")",
        "    Debug.Print DlgText(\"ok\") & \"|\" & DlgText(\"applynow\") & \"|\" & DlgText(-1) & \"|\" & DlgControlId(\"OK\")",
        "    DlgText \"Answer\", \"set\"",
        "    DlgValue \"Check\", 1",
        "    Debug.Print DlgText(0) & \" \" & DlgValue(\"Check\") & \" \" & DlgEnable(\"Check\") & \" \" & DlgVisible(\"Check\")",
        "    DlgEnable \"Check\"",
        "    DlgVisible \"Check\", False",
        "    Debug.Print DlgEnable(\"Check\") & \" \" & DlgVisible(\"Check\")",
        "    Dim more$(1)",
        "    more(0) = \"x\": more(1) = \"y\"",
        "    Debug.Print DlgListBoxArray(\"Pick\", more) & \" \" & DlgValue(\"Pick\")",
        "    DlgValue \"Pick\", 1",
        "    Debug.Print DlgText(\"Pick\") & \" \" & DlgFocus",
        "    On Error Resume Next",
        "    Debug.Print DlgText(\"nothing\")",
        "    Debug.Print Err.Number & \" \" & Err.Description",
        "    Err.Clear",
        "    Debug.Print DlgValue(9)",
        "    Debug.Print Err.Number",
        "    DlgEnd 7",
        "End Function",
        "Sub Main",
        "    Dim lines$(0)",
        "    Begin Dialog UserDialog 200, 120, \"Dlg\", .Handler",
        "        TextBox 10, 10, 100, 12, .Answer",
        "        CheckBox 10, 30, 100, 12, \"Check\", .Check, 1",
        "        ListBox 10, 50, 100, 30, lines(), .Pick",
        "        PushButton 10, 90, 60, 20, \"&Apply Now\"",
        "        OKButton 130, 90, 50, 20",
        "    End Dialog",
        "    Dim dlg As UserDialog",
        "    Debug.Print Dialog(dlg) & \" \" & dlg.Answer & \" \" & dlg.Check & \" \" & dlg.Pick",
        "End Sub",
    }));
    ASSERT_TRUE(result.compileErrors.empty()) << result.compileErrors[0].message;
    EXPECT_EQ(Narrow(result.output), "\"5 CheckBox PushButton ApplyNow 4\"\r\n"
                                     "\"OK|&Apply Now|Dlg|1\"\r\n"
                                     "\"set 1 True True\"\r\n"
                                     "\"False False\"\r\n"
                                     "\"2 -1\"\r\n"
                                     "\"y \"\r\n"
                                     "\"10032 User dialog item id is out of range.\"\r\n"
                                     "10032&\r\n"
                                     "\"7 set 1 1\"\r\n");
}

TEST(UserDialog, IsCentredWithOnlyASizeAndDisablesItsOwnerWhileUp)
{
    HWND owner = CreateWindowW(L"STATIC", L"Host window", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 200, 100, nullptr,
                               nullptr, nullptr, nullptr);
    SetActiveWindow(owner);
    SetForegroundWindow(owner);
    RECT placed{};
    BOOL ownerEnabled = TRUE;
    HWND ownerOfDialog = nullptr;
    DialogRobot robot({[&](HWND dialog) {
        GetWindowRect(dialog, &placed);
        ownerEnabled = IsWindowEnabled(owner);
        ownerOfDialog = GetWindow(dialog, GW_OWNER);
        Click(GetDlgItem(dialog, IDOK));
        return true;
    }});
    auto result = RunProgram(JoinLines({
        "Sub Main",
        "    Begin Dialog UserDialog 160, 80, \"Centred\"",
        "        OKButton 50, 50, 60, 20",
        "    End Dialog",
        "    Dim dlg As UserDialog",
        "    Debug.Print Dialog(dlg)",
        "End Sub",
    }));
    EXPECT_TRUE(robot.Finished());
    EXPECT_EQ(result.output, L"-1%\r\n");
    const int screenWidth = GetSystemMetrics(SM_CXSCREEN);
    const int screenHeight = GetSystemMetrics(SM_CYSCREEN);
    EXPECT_LE(std::abs((placed.left + placed.right) / 2 - screenWidth / 2), 2);
    EXPECT_LE(std::abs((placed.top + placed.bottom) / 2 - screenHeight / 2), 2);
    EXPECT_FALSE(ownerEnabled);
    EXPECT_EQ(ownerOfDialog, owner);
    EXPECT_TRUE(IsWindowEnabled(owner));
    DestroyWindow(owner);
}

TEST(UserDialog, AStopWhileTheDialogIsUpAbandonsTheStatement)
{
    DialogRobot robot({[](HWND) {
        EXPECT_TRUE(brannoc::Interpreter::Current()->RequestAction(brannoc::InterpreterHost::kActionEnd, 0));
        return true;
    }});
    auto result = RunProgram(JoinLines({
        "Sub Main",
        "    Begin Dialog UserDialog 160, 80, \"Stopped\"",
        "        OKButton 50, 50, 60, 20",
        "    End Dialog",
        "    Dim dlg As UserDialog",
        "    Debug.Print \"before\"",
        "    Dialog dlg",
        "    Debug.Print \"after\"",
        "End Sub",
    }));
    EXPECT_TRUE(robot.Finished());
    EXPECT_EQ(result.output, L"\"before\"\r\n");
    EXPECT_TRUE(result.runErrors.empty());
    EXPECT_EQ(DialogRobot::FindDialog(), nullptr);
}

TEST(UserDialog, DefaultButtonTwoIsPressedByADoubleClickInAList)
{
    DialogRobot robot({[](HWND dialog) {
        HWND list = Item(dialog, 0);
        SendMessageW(list, LB_SETCURSEL, 1, 0);
        SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(100, LBN_DBLCLK), reinterpret_cast<LPARAM>(list));
        return true;
    }});
    auto result = RunProgram(JoinLines({
        "Sub Main",
        "    Dim names$(2)",
        "    names(0) = \"a\": names(1) = \"b\": names(2) = \"c\"",
        "    Begin Dialog UserDialog 240, 100",
        "        ListBox 10, 10, 100, 60, names(), .Pick",
        "        OKButton 130, 10, 50, 20",
        "        PushButton 130, 34, 50, 20, \"First\"",
        "        PushButton 130, 58, 50, 20, \"Second\"",
        "        PushButton 130, 82, 50, 20, \"Third\"",
        "    End Dialog",
        "    Dim dlg As UserDialog",
        "    Debug.Print Dialog(dlg, 2); dlg.Pick",
        "End Sub",
    }));
    ASSERT_TRUE(result.compileErrors.empty()) << result.compileErrors[0].message;
    EXPECT_TRUE(robot.Finished());
    EXPECT_EQ(result.output, L"2%1%\r\n");
}

// A 2 by 2 red bitmap file with 24 bits per pixel.
void WriteRedBitmap(const wchar_t* path)
{
    const unsigned char pixels[16] = {0, 0, 255, 0, 0, 255, 0, 0, 0, 0, 255, 0, 0, 255, 0, 0};
    BITMAPFILEHEADER file{};
    BITMAPINFOHEADER info{};
    info.biSize = sizeof info;
    info.biWidth = 2;
    info.biHeight = 2;
    info.biPlanes = 1;
    info.biBitCount = 24;
    file.bfType = 0x4D42;
    file.bfOffBits = sizeof file + sizeof info;
    file.bfSize = file.bfOffBits + sizeof pixels;
    FILE* out = _wfopen(path, L"wb");
    ASSERT_NE(out, nullptr);
    fwrite(&file, sizeof file, 1, out);
    fwrite(&info, sizeof info, 1, out);
    fwrite(pixels, sizeof pixels, 1, out);
    fclose(out);
}

TEST(UserDialog, PicturesShowTheBitmapOrTheMissingText)
{
    WriteRedBitmap(L"dialog_red.bmp");
    COLORREF before = 0;
    COLORREF after = 0;
    DialogRobot robot({
        [&](HWND dialog) {
            HWND picture = Item(dialog, 0);
            UpdateWindow(picture);
            HDC dc = GetDC(picture);
            RECT client;
            GetClientRect(picture, &client);
            before = GetPixel(dc, client.right / 2, client.bottom / 2);
            ReleaseDC(picture, dc);
            Click(Item(dialog, 1));
            return true;
        },
        [&](HWND dialog) {
            HWND picture = Item(dialog, 0);
            UpdateWindow(picture);
            HDC dc = GetDC(picture);
            RECT client;
            GetClientRect(picture, &client);
            after = GetPixel(dc, client.right / 2, client.bottom / 2);
            ReleaseDC(picture, dc);
            Click(GetDlgItem(dialog, IDOK));
            return true;
        },
    });
    auto result = RunProgram(JoinLines({
        "Function Handler(item$, action%, value%) As Boolean",
        "    If action% <> 2 Or item$ <> \"Load\" Then Exit Function",
        "    DlgSetPicture \"nofilebmp\", \"dialog_red.bmp\", 0",
        "    On Error Resume Next",
        "    DlgSetPicture 0, \"still-missing.bmp\", 16",
        "    Debug.Print Err.Number",
        "    DlgSetPicture 0, \"dialog_red.bmp\", 5",
        "    Debug.Print Err.Number",
        "    DlgSetPicture 0, \"dialog_red.bmp\", 0",
        "    Handler = True",
        "End Function",
        "Sub Main",
        "    Begin Dialog UserDialog 200, 100, \"Pictures\", .Handler",
        "        Picture 10, 10, 80, 40, \"nofile.bmp\", 0",
        "        PushButton 100, 10, 50, 20, \"Load\"",
        "        OKButton 100, 40, 50, 20",
        "    End Dialog",
        "    Dim dlg As UserDialog",
        "    Debug.Print Dialog(dlg)",
        "End Sub",
    }));
    ASSERT_TRUE(result.compileErrors.empty()) << result.compileErrors[0].message;
    EXPECT_TRUE(robot.Finished());
    EXPECT_EQ(result.output, L"10620&\r\n10620&\r\n-1%\r\n");
    EXPECT_NE(before, RGB(255, 0, 0));
    EXPECT_EQ(after, RGB(255, 0, 0));
    DeleteFileW(L"dialog_red.bmp");
}

} // namespace
