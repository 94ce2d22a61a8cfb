// The references dialog: reference lines read and written, the list merged from the registry and the
// macro's lines, the Language text, and the dialog writing the checked entries back into the sheet.
#include "EditorFrameFixture.h"

#include "ide/CommandTable.h"
#include "ide/ReferenceList.h"
#include "support/DialogRobot.h"
#include "support/WindowImage.h"

#include <algorithm>

using namespace brannoc;
using namespace brannoc::ide;
using brannoc::test::DialogRobot;
using brannoc::test::EditorFrameFixture;
using brannoc::test::WindowImage;

namespace {

constexpr char kStdOle[] = "{00020430-0000-0000-C000-000000000046}";

ReferenceEntry Library(const char* guid, const char* description)
{
    return ReferenceEntry{guid, "1.0", "0", std::string("C:\\libs\\") + description + ".tlb", description};
}

TEST(ReferenceList, LinesNameALibraryByItsKeyOrByPath)
{
    auto entry = ParseReferenceLine("'#Reference {AAAA}#2.1#409#C:\\x\\lib.tlb#A library\r\n");
    ASSERT_TRUE(entry.has_value());
    EXPECT_EQ("{AAAA}", entry->guid);
    EXPECT_EQ("2.1", entry->version);
    EXPECT_EQ("409", entry->locale);
    EXPECT_EQ("C:\\x\\lib.tlb", entry->path);
    EXPECT_EQ("A library", entry->description);
    EXPECT_EQ("'#Reference {AAAA}#2.1#409#C:\\x\\lib.tlb#A library", ReferenceLine(*entry));

    auto byPath = ParseReferenceLine("'#Reference C:\\other.tlb");
    ASSERT_TRUE(byPath.has_value());
    EXPECT_TRUE(byPath->guid.empty());
    EXPECT_EQ("C:\\other.tlb", byPath->path);
    EXPECT_EQ("'#Reference C:\\other.tlb", ReferenceLine(*byPath));

    EXPECT_FALSE(ParseReferenceLine("'#Uses \"x.bas\"").has_value());
    EXPECT_FALSE(ParseReferenceLine("'#Reference ").has_value());
}

TEST(ReferenceList, TheMacrosReferencesComeFirstInTheirOrderAndUnknownOnesAreBad)
{
    std::vector<ReferenceEntry> registered = {Library("{A}", "Alpha"), Library("{B}", "Beta"), Library("{C}", "Gamma")};
    const std::string lines = "'#Reference {C}#1.0#0#C:\\libs\\Gamma.tlb#Gamma\r\n"
                              "'#Reference {D}#3.0#0#C:\\gone.tlb#Delta\r\n";
    std::vector<ReferenceEntry> list = MergeReferences(registered, lines, {Library("{E}", "Engine")});
    ASSERT_EQ(5u, list.size());
    EXPECT_EQ("Engine", list[0].description);
    EXPECT_TRUE(list[0].fixed && list[0].checked);
    EXPECT_EQ("Gamma", list[1].description);
    EXPECT_TRUE(list[1].checked && !list[1].bad);
    EXPECT_EQ("Delta", list[2].description);
    EXPECT_TRUE(list[2].checked && list[2].bad);
    EXPECT_EQ("Bad reference: Delta (3.0)", EntryText(list[2], "Bad reference"));
    EXPECT_FALSE(list[3].checked);
    EXPECT_EQ("Alpha (1.0)", EntryText(list[3], "Bad reference"));

    EXPECT_EQ(lines, ReferencesText(list)) << "written back unchanged, the fixed entry left out";
    list[1].checked = false;
    list[4].checked = true;
    EXPECT_EQ("'#Reference {D}#3.0#0#C:\\gone.tlb#Delta\r\n'#Reference {B}#1.0#0#C:\\libs\\Beta.tlb#Beta\r\n",
              ReferencesText(list));
}

TEST(ReferenceList, LanguageTexts)
{
    EXPECT_EQ("Standard", LanguageText("0", "Standard"));
    EXPECT_EQ("English/United States", LanguageText("409", "Standard"));
    EXPECT_EQ("German/Germany", LanguageText("407", "Standard"));
}

TEST(ReferenceList, TheRegistryListsThePlatformsLibraries)
{
    std::vector<ReferenceEntry> found = ReadRegisteredLibraries();
    auto stdole = std::find_if(found.begin(), found.end(),
                               [](const ReferenceEntry& e) { return lstrcmpiA(e.guid.c_str(), kStdOle) == 0; });
    ASSERT_NE(found.end(), stdole) << found.size() << " libraries";
    EXPECT_FALSE(stdole->path.empty());
    EXPECT_FALSE(stdole->version.empty());
}

class ReferencesDialogBox : public EditorFrameFixture {};

TEST_F(ReferencesDialogBox, UncheckingAReferenceAndPressingOkRemovesItsLine)
{
    std::vector<ReferenceEntry> found = ReadRegisteredLibraries();
    auto stdole = std::find_if(found.begin(), found.end(),
                               [](const ReferenceEntry& e) { return lstrcmpiA(e.guid.c_str(), kStdOle) == 0; });
    ASSERT_NE(found.end(), stdole);
    const std::string line = ReferenceLine(*stdole);
    const std::string path = TempPath("references.bas");
    WriteFileBytes(path, line + "\r\nSub Main\r\nEnd Sub\r\n");
    Create();
    ASSERT_EQ(0, SendText(FM_FILE, path, 1));
    EXPECT_EQ(1, Send(FM_HIDDENLINES));

    std::string title, first, location, language;
    DialogRobot robot([&](HWND dialog) {
        char text[256] = {};
        GetWindowTextA(dialog, text, sizeof(text));
        title = text;
        HWND list = GetDlgItem(dialog, 130);
        int index = -1;
        for (int i = 0; i < SendMessageA(list, LB_GETCOUNT, 0, 0); ++i) {
            char entry[256] = {};
            SendMessageA(list, LB_GETTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(entry));
            if (index < 0 && std::string(entry).find(stdole->description) == 0)
                index = i;
        }
        char entry[256] = {};
        SendMessageA(list, LB_GETTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(entry));
        first = entry;
        SendMessageA(list, LB_SETCURSEL, static_cast<WPARAM>(index), 0);
        SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(130, LBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
        location = DialogRobot::Text(dialog, 135);
        language = DialogRobot::Text(dialog, 136);
        WindowImage::Capture(dialog, true).WriteScreenshot(L"editor_references");
        SendMessageA(list, WM_CHAR, ' ', 0);
        DialogRobot::Press(dialog, IDOK);
    });
    EXPECT_EQ(1, Command(CMD_REFERENCES));
    EXPECT_EQ("References - references.bas", title);
    EXPECT_EQ(stdole->description + " (" + stdole->version + ")", first);
    EXPECT_EQ(stdole->path, location);
    EXPECT_EQ("Standard", language);
    EXPECT_EQ(0, Send(FM_HIDDENLINES)) << "the reference line is gone";
    EXPECT_EQ(std::string::npos, Get(FM_GETWHOLETEXT).find("'#Reference"));
    DeleteFileA(path.c_str());
}

std::string s_setName, s_setLines;
BOOL CALLBACK RecordReferences(HWND, const char* name, const char* lines)
{
    s_setName = name;
    s_setLines = lines;
    return TRUE;
}

TEST_F(ReferencesDialogBox, AMacroThatIsNotOpenGetsItsNewLinesThroughTheHost)
{
    const std::string path = TempPath("closed_references.bas");
    WriteFileBytes(path, "'#Reference {AAAA0000-0000-0000-0000-000000000000}#1.0#0#C:\\gone.tlb#Gone\r\n"
                         "Sub Main\r\nEnd Sub\r\n");
    Create();
    Send(FM_SETREFERENCESCALLBACK, 0, reinterpret_cast<LPARAM>(RecordReferences));
    s_setName = s_setLines = "<none>";
    std::string first;
    DialogRobot robot([&](HWND dialog) {
        HWND list = GetDlgItem(dialog, 130);
        char entry[256] = {};
        int bad = -1;
        for (int i = 0; i < SendMessageA(list, LB_GETCOUNT, 0, 0) && bad < 0; ++i) {
            SendMessageA(list, LB_GETTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(entry));
            if (std::string(entry).find("Bad reference") == 0) {
                bad = i;
                first = entry;
            }
        }
        SendMessageA(list, LB_SETCURSEL, static_cast<WPARAM>(bad), 0);
        SendMessageA(list, WM_CHAR, ' ', 0);
        DialogRobot::Press(dialog, IDOK);
    });
    EXPECT_EQ(0, SendText(FM_REFERENCES, "\"" + path + "\""));
    EXPECT_EQ("Bad reference: Gone (1.0)", first);
    EXPECT_EQ(path, s_setName);
    EXPECT_EQ("", s_setLines) << "the unchecked reference is gone";
    Send(FM_SETREFERENCESCALLBACK, 0, 0);
    DeleteFileA(path.c_str());
}

} // namespace
