// The text area's automatic triggers: after the characters that open a completion or call context it
// posts command 326 or 327 to its parent through the toolbar message (lParam -1), so that the frame's
// filter and enable set apply; elsewhere it posts nothing.
#include "TextAreaFixture.h"

using brannoc::test::TextAreaFixture;

namespace {

class TextAreaTriggers : public TextAreaFixture {
protected:
    // Types `typed` at the end of line `line` of `text` and answers the commands posted meanwhile.
    std::vector<WPARAM> CommandsAfter(const std::string& text, int line, const std::string& typed)
    {
        SetText(text);
        GoTo(line, static_cast<int>(LineText(line).size()));
        Pump();
        const size_t before = PostedCommands().size();
        TypeText(typed);
        Pump();
        std::vector<WPARAM> commands = PostedCommands();
        return std::vector<WPARAM>(commands.begin() + static_cast<long>(before), commands.end());
    }
};

constexpr char kReportSheet[] = "Sub Report(Text As String, Optional Count As Long)\r\nEnd Sub\r\nSub Main\r\n    \r\nEnd Sub\r\n";

TEST_F(TextAreaTriggers, ABlankAfterAsAsksForTheList)
{
    EXPECT_EQ((std::vector<WPARAM>{326}), CommandsAfter(kReportSheet, 3, "Dim x As "));
    EXPECT_EQ((std::vector<WPARAM>{}), CommandsAfter(kReportSheet, 3, "Dim x ")) << "a blank after another word";
}

TEST_F(TextAreaTriggers, ACallAsksForTheTip)
{
    EXPECT_EQ((std::vector<WPARAM>{327}), CommandsAfter(kReportSheet, 3, "Report("));
    EXPECT_EQ((std::vector<WPARAM>{327}), CommandsAfter(kReportSheet, 3, "Report "));
    EXPECT_EQ((std::vector<WPARAM>{}), CommandsAfter(kReportSheet, 3, "Main(")) << "Main has no parameters";
}

TEST_F(TextAreaTriggers, ADotWithoutAKnownTypeAsksForNothing)
{
    EXPECT_EQ((std::vector<WPARAM>{}), CommandsAfter(kReportSheet, 3, "x."));
    EXPECT_EQ(1, Send(brannoc::ide::TAM_HASPOPUP, 0)) << "the component is there all the same";
}

TEST_F(TextAreaTriggers, TheCommandsShowTheListAndTheTip)
{
    SetText(kReportSheet);
    GoTo(3, 4);
    TypeText("Report \"a\", ");
    EXPECT_EQ(1, Send(brannoc::ide::TAM_SHOWPOPUP, 1)) << "Parameter Info";
    brannoc::ide::TextAreaPopupView shown = brannoc::ide::TextAreaPopupsShown(m_textArea);
    EXPECT_EQ("Report(Text As String, [Count As Long])", shown.prototype);
    EXPECT_EQ(1, shown.argument);
    TypeText(":");
    EXPECT_FALSE(brannoc::ide::TextAreaPopupsShown(m_textArea).tipShown) << "a \":\" ends the call";
    GoTo(3, 4);
    EXPECT_EQ(0, Send(brannoc::ide::TAM_SHOWPOPUP, 0)) << "no word before the blank: no list";
}

} // namespace
