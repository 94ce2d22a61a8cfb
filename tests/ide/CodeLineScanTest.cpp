// Keyword sets, line classes, keyword case correction and tab expansion on single lines.
#include "ide/CodeLineScan.h"

#include <gtest/gtest.h>

namespace brannoc::ide {
namespace {

KeywordSets LanguageSets()
{
    KeywordSets sets;
    sets.Build(LanguageKeywordSections(), "blocked|HostWord|OtherHostWord", EditorColours{});
    return sets;
}

TEST(KeywordSetTest, TableSizeAndCanonicalForms)
{
    struct Row {
        const char* words;
        int count;
        int tableSize;
    };
    // n words (repeated ones counted): b = smallest b with 2^b >= n; table bits b + 1, plus 1 when b < 10.
    const Row rows[] = {{"", 0, 0}, {"One", 1, 4}, {"One Two", 2, 8}, {"a b c", 3, 16}, {"a b c d e", 5, 32},
                        {"Same same SAME", 1, 16}};
    for (const Row& row : rows) {
        KeywordSet set;
        set.Build(row.words);
        EXPECT_EQ(set.Count(), row.count) << row.words;
        EXPECT_EQ(set.TableSize(), row.tableSize) << row.words;
    }
    std::string many;
    for (int i = 0; i < 1100; ++i)
        many += "w" + std::to_string(i) + " ";
    KeywordSet large;
    large.Build(many);
    EXPECT_EQ(large.TableSize(), 4096) << "b = 11: no extra bit";
    EXPECT_EQ(large.Find("W1099"), "w1099");

    KeywordSet set;
    set.Build("Dim MsgBox\r\n.Print");
    EXPECT_EQ(set.Find("dim"), "Dim");
    EXPECT_EQ(set.Find("MSGBOX"), "MsgBox");
    EXPECT_EQ(set.Find(".print"), ".Print");
    EXPECT_EQ(set.Find("Dimension"), "");
    EXPECT_EQ(KeywordSet::Hash("AB"), (('A' & 31u)) + (('B' & 31u) << 4));
}

TEST(KeywordSetsTest, ExtraListsAndSwitchedOffColours)
{
    KeywordSets sets = LanguageSets();
    EXPECT_EQ(sets.Find("dim").set, 0);
    EXPECT_EQ(sets.Find("hostword").canonical, "HostWord");
    EXPECT_EQ(sets.Find("hostword").set, 1);
    EXPECT_EQ(sets.Find("otherhostword").set, 3);
    EXPECT_EQ(sets.Find("blocked").set, -1) << "the blocked part is the engine's";
    sets.SetMacroKeywords("MyHelper", EditorColours{});
    EXPECT_EQ(sets.Find("myhelper").set, 2);

    EditorColours off;
    off.SetEntry(EditorColour::Keyword0, kColourOff);
    off.SetEntry(EditorColour::Keyword1, kColourOff);
    KeywordSets partial;
    partial.Build(LanguageKeywordSections(), "|HostWord|", off);
    partial.SetMacroKeywords("MyHelper", off);
    EXPECT_EQ(partial.Find("dim").set, -1);
    EXPECT_EQ(partial.Find("hostword").set, -1);
    EXPECT_EQ(partial.Find("myhelper").set, -1) << "colour 1 also governs the macro's own words";
}

TEST(LineClassTest, ClassFlags)
{
    struct Row {
        const char* line;
        uint8_t flags;
    };
    const Row rows[] = {
        {"", LineClass::Other},
        {"x = 1", LineClass::Other},
        {"'#Uses \"a.bas\"", LineClass::Uses},
        {"  '#  uses \"a.bas\"", LineClass::Uses},
        {"Sub Main", LineClass::ProcedureHeader},
        {"\tprivate function F(a As Long) As Long", LineClass::ProcedureHeader | LineClass::HoldsAs},
        {"Public Property Get P", LineClass::ProcedureHeader},
        {"End Sub", LineClass::ProcedureEnd},
        {"end   function", LineClass::ProcedureEnd},
        {"With obj", LineClass::With},
        {"End With", LineClass::EndWith},
        {"Dim a As Long", LineClass::Other | LineClass::HoldsAs},
        {"Dim a AS Long", LineClass::Other},
        {"Subtotal = 1", LineClass::Other},
        {"End", LineClass::Other},
    };
    for (const Row& row : rows)
        EXPECT_EQ(ClassifyLine(row.line), row.flags) << row.line;
}

TEST(KeywordCaseTest, KeywordsTakeTheirCanonicalFormOutsideQuotesBracketsAndComments)
{
    KeywordSets sets = LanguageSets();
    struct Row {
        const char* before;
        const char* after;
    };
    const Row rows[] = {
        {"dim s as string", "Dim s As String"},
        {"if s = \"dim\" then msgbox [for next] ' dim", "If s = \"dim\" Then MsgBox [for next] ' dim"},
        {"debug.print 1", "Debug.Print 1"},
        {"rem DIM this", "Rem DIM this"},
        {"x = 1: REM dim", "x = 1: Rem dim"},
        {"obj.next = 1", "obj.next = 1"},
        {"dimension = sub1", "dimension = sub1"},
        {"hostword", "HostWord"},
        {"s = \"unterminated dim", "s = \"unterminated dim"},
    };
    for (const Row& row : rows) {
        std::string line = row.before;
        CorrectKeywordCase(line, sets);
        EXPECT_EQ(line, row.after) << row.before;
    }
}

TEST(TabExpansionTest, TabsBecomeBlanksUpToTheNextStop)
{
    struct Row {
        const char* before;
        int width;
        const char* after;
    };
    const Row rows[] = {{"a\tb", 4, "a   b"}, {"\tx", 4, "    x"}, {"abcd\te", 4, "abcd    e"},
                        {"a\tb", 1, "a b"}, {"a\t\tb", 8, "a               b"}, {"none", 4, "none"}};
    for (const Row& row : rows) {
        std::string line = row.before;
        ExpandTabs(line, row.width);
        EXPECT_EQ(line, row.after) << row.before << " width " << row.width;
    }
    EXPECT_EQ(DisplayColumn("a\tb", 2, 4), 4);
    EXPECT_EQ(DisplayColumn("a\tb", 3, 4), 5);
}

} // namespace
} // namespace brannoc::ide
