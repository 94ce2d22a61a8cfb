// Printing: document names, line breaking and pages; a one-line sheet printed to a test printer in
// the Wine prefix gives a one-page job; without a printer the sheet cannot be printed.
#include "EditorFrameFixture.h"

#include "ide/CommandTable.h"
#include "ide/Printing.h"
#include "support/DialogRobot.h"
#include "support/TestPrinter.h"
#include "support/WindowImage.h"

using namespace brannoc;
using namespace brannoc::ide;
using brannoc::test::DialogRobot;
using brannoc::test::EditorFrameFixture;
using brannoc::test::MessageBoxCapture;
using brannoc::test::TestPrinter;

namespace {

using Lines = std::vector<std::string>;

size_t Occurrences(const std::string& text, const std::string& what)
{
    size_t count = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
        ++count;
    return count;
}

TEST(PrintLayout, DocumentNamesLineBreaksAndPages)
{
    EXPECT_EQ("ledger.bas", PrintDocumentName("ledger.bas"));
    EXPECT_EQ("a-name-of-exactly-twenty-eig...", PrintDocumentName("a-name-of-exactly-twenty-eight-chars.bas"));
    EXPECT_EQ("exactly-twenty-eight-chars.b", PrintDocumentName("exactly-twenty-eight-chars.b")) << "28 stays whole";

    EXPECT_EQ((Lines{"    x = 1"}), PrintedLines("\tx = 1", 4, 80)) << "tabs expanded";
    EXPECT_EQ((Lines{"Total = ", "Amount + ", "Tax"}), PrintedLines("Total = Amount + Tax", 4, 9))
        << "broken after the last non-word character within the limit";
    EXPECT_EQ((Lines{"ABCDE", "FGH"}), PrintedLines("ABCDEFGH", 4, 5)) << "hard break";
    EXPECT_EQ((Lines{""}), PrintedLines("", 4, 5));

    EXPECT_EQ((std::vector<Lines>{{"Sub Main"}}), PaginateCode("Sub Main\r\n", 4, 80, 10))
        << "a last empty line is not printed";
    EXPECT_EQ((std::vector<Lines>{{"a", "b"}, {"c", ""}, {"d"}}), PaginateCode("a\r\nb\r\nc\r\n\r\nd", 4, 80, 2));
    EXPECT_EQ((std::vector<Lines>{{"ab", "cd"}, {"e"}}), PaginateCode("abcde\r\n", 4, 2, 2))
        << "the pieces of a broken line count as printed lines";
    EXPECT_EQ((std::vector<Lines>{{}}), PaginateCode("", 4, 80, 10)) << "an empty sheet prints its header page";
}

class FramePrinting : public EditorFrameFixture {};

TEST_F(FramePrinting, WithoutAPrinterTheSheetCannotBePrinted)
{
    if (TestPrinter::DefaultPrinterExists())
        GTEST_SKIP() << "the prefix has a default printer";
    Create();
    MessageBoxCapture capture(IDOK);
    EXPECT_EQ(1, Command(CMD_PRINT));
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"Cannot print 'Macro1'.", capture.Boxes()[0].text);
    EXPECT_EQ(L"Brannoc Basic", capture.Boxes()[0].caption);
    EXPECT_TRUE(IsWindowEnabled(m_frame));
}

TEST_F(FramePrinting, AOneLineSheetPrintsOnePageOnTheTestPrinter)
{
    TestPrinter printer;
    ASSERT_TRUE(printer.Installed()) << printer.Problem();
    ASSERT_TRUE(TestPrinter::DefaultPrinterExists());
    Create();
    SendText(FM_SETTEXT, "MsgBox \"Ledger\"\r\n");
    MessageBoxCapture capture(IDOK);
    std::string progressFile, progressCaption;
    bool frameDisabled = false;
    DialogRobot robot([&](HWND dialog) {
        progressFile = DialogRobot::Text(dialog, 301);
        char caption[128] = {};
        GetWindowTextA(dialog, caption, sizeof(caption));
        progressCaption = caption;
        frameDisabled = !IsWindowEnabled(m_frame);
        brannoc::test::WindowImage::Capture(dialog, true).WriteScreenshot(L"editor_print_progress");
    });
    EXPECT_EQ(1, Command(CMD_PRINT));
    EXPECT_EQ(0u, capture.Count()) << (capture.Count() ? Narrow(capture.Boxes()[0].text) : "");
    EXPECT_EQ(1u, robot.Dialogs().size()) << "the progress box is shown for at least a second";
    EXPECT_EQ("Macro1", progressFile);
    EXPECT_EQ("Brannoc Basic", progressCaption);
    EXPECT_TRUE(frameDisabled) << "the frame is disabled while printing";
    EXPECT_TRUE(IsWindowEnabled(m_frame));

    Pump(300);
    std::string job = printer.Output();
    ASSERT_FALSE(job.empty()) << "the job reached the port's file";
    EXPECT_EQ(0u, job.rfind("%!PS", 0));
    EXPECT_EQ(1u, Occurrences(job, "%%Page:")) << "one page";
    EXPECT_NE(std::string::npos, job.find("%%Title: Macro1")) << "the document name is the display name";

    // A long sheet goes on over several pages, each with its header.
    std::string longText;
    for (int line = 1; line <= 300; ++line)
        longText += "Debug.Print " + std::to_string(line) + "\r\n";
    SendText(FM_SETTEXT, longText);
    DialogRobot quiet([](HWND) {});
    EXPECT_EQ(1, Command(CMD_PRINT));
    Pump(300);
    EXPECT_GT(Occurrences(printer.Output(), "%%Page:"), 2u);
}

TEST_F(FramePrinting, CancelInTheProgressBoxAbortsTheJob)
{
    TestPrinter printer;
    ASSERT_TRUE(printer.Installed()) << printer.Problem();
    Create();
    {
        DialogRobot cancel([](HWND dialog) { DialogRobot::Press(dialog, IDCANCEL); });
        EXPECT_EQ(1, Command(CMD_PRINT));
        EXPECT_EQ(1u, cancel.Dialogs().size());
    }
    Pump(300);
    EXPECT_EQ("", printer.Output()) << "nothing reached the printer";
    EXPECT_TRUE(IsWindowEnabled(m_frame));
    EXPECT_EQ(1, Command(CMD_PRINT));
    Pump(300);
    EXPECT_EQ(1u, Occurrences(printer.Output(), "%%Page:")) << "the next job is not aborted";
}

TEST_F(FramePrinting, PrintSetupKeepsThePrinterForTheNextJobs)
{
    TestPrinter printer;
    ASSERT_TRUE(printer.Installed()) << printer.Problem();
    Create();
    std::vector<std::string> captions;
    DialogRobot robot([&](HWND dialog) {
        char caption[128] = {};
        GetWindowTextA(dialog, caption, sizeof(caption));
        captions.push_back(caption);
        if (GetDlgItem(dialog, IDOK))
            DialogRobot::Press(dialog, IDOK);
    });
    EXPECT_EQ(1, Command(CMD_PRINT_SETUP));
    ASSERT_EQ(1u, captions.size()) << "the printer setup dialog";
    EXPECT_EQ(1, Command(CMD_PRINT));
    Pump(300);
    EXPECT_EQ(1u, Occurrences(printer.Output(), "%%Page:"));
}

} // namespace
