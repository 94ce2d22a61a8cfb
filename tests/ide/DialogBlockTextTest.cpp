// The dialog editor's text side: finding and reading a Begin Dialog UserDialog block, writing it back
// byte for byte, option groups, the grid comment, styles, snapping, sizing limits, pasting and the
// skeleton dialog function.
#include "EditorFrameFixture.h" // RECT comparison and printing
#include "ide/DesignGeometry.h"
#include "ide/DialogBlockText.h"
#include "ide/DialogLineSyntax.h"
#include "ide/DialogSkeleton.h"

#include <gtest/gtest.h>

#include <map>

using namespace brannoc;
using namespace brannoc::ide;

namespace {

std::vector<std::string> Lines(const std::string& text) { return SplitTextLines(text); }

DialogDesign ReadAt(const std::string& text, int caretLine, DialogBlock* where = nullptr)
{
    const std::vector<std::string> lines = Lines(text);
    const DialogBlock block = LocateDialogBlock(lines, caretLine);
    DialogDesign design;
    ReadDialogBlock(lines, block, caretLine, design);
    if (where)
        *where = block;
    return design;
}

// Every kind once, with styles, comments, kept lines, an option group and an expression caption.
const char kFullBlock[] =
    "\tBegin Dialog UserDialog 10,20,400,203,\"Choose \"\"one\"\"\",.DialogFunc ' head %GRID:10,7,1,1\r\n"
    "\t\t' a comment line\r\n"
    "\t\tText 10,7,90,14,\"Text\",.Text1 ' note\r\n"
    "\t\tTextBox 10,21,90,21,.TextBox1\r\n"
    "\t\tTextBox 10,42,90,21,.TextBox2,1\r\n"
    "\t\tTextBox 10,63,90,21,.TextBox3,-1\r\n"
    "\t\tGroupBox 110,7,180,70,\"Group\"\r\n"
    "\t\tCheckBox 120,21,90,14,\"Check\",.CheckBox1\r\n"
    "\t\tCheckBox 120,35,90,14,\"Check 3\",.CheckBox2,1\r\n"
    "\t\tCheckBox 120,49,90,14,\"Check auto\",.CheckBox3,2\r\n"
    "\t\tOptionGroup .Choice\r\n"
    "\t\t\tOptionButton 10,91,90,14,\"One\",.One\r\n"
    "\t\t\tOptionButton 10,105,90,14,\"Two\"\r\n"
    "\t\tComboBox 110,91,90,70,ListArray(),.ComboBox1\r\n"
    "\t\tComboBox 110,161,90,70,Items(),.ComboBox2,3\r\n"
    "\t\tListBox 210,91,90,70,ListArray(),.ListBox1,2\r\n"
    "\t\tDropListBox 310,91,80,21,ListArray(),.DropListBox1,2\r\n"
    "\t\tPushButton 300,140,90,21,\"Push\",.Push1\r\n"
    "\t\tOKButton 300,161,90,21\r\n"
    "\t\tCancelButton 300,182,90,21,.Cancel\r\n"
    "\t\tPicture 10,140,90,50,\"logo.bmp\",0,.Picture1\r\n"
    "\t\tText 200,7,90,14,Caption$\r\n"
    "\t\tRem trailing text\r\n"
    "\tEnd Dialog ' end\r\n";

TEST(DialogBlockText, AFullBlockIsWrittenBackByteForByte)
{
    const std::string text = std::string("Sub Main\r\n") + kFullBlock + "End Sub\r\n";
    DialogBlock block;
    DialogDesign design = ReadAt(text, 5, &block);
    ASSERT_TRUE(block.found);
    EXPECT_EQ(1, block.beginLine);
    EXPECT_EQ(24, block.endLine);
    ASSERT_EQ(19, design.Count());
    EXPECT_EQ(kFullBlock, WriteDialogBlock(design).text);
}

TEST(DialogBlockText, TheBlockIsReadIntoItsParts)
{
    DialogDesign design = ReadAt(kFullBlock, 4);
    EXPECT_FALSE(design.centred);
    EXPECT_EQ(10, design.x);
    EXPECT_EQ(20, design.y);
    EXPECT_EQ(400, design.width);
    EXPECT_EQ(203, design.height);
    EXPECT_EQ("Choose \"one\"", design.caption);
    EXPECT_TRUE(design.quoted);
    EXPECT_EQ("DialogFunc", design.function);
    EXPECT_EQ(" head", design.comment);
    EXPECT_EQ(" end", design.endComment);
    EXPECT_EQ(std::vector<std::string>{"\t\tRem trailing text"}, design.trailingLines);
    EXPECT_EQ(2, design.selected) << "the caret's line (the third item) is selected";
    EXPECT_EQ(ItemKind::TextBox, design.items[2]->Kind());
    EXPECT_EQ(std::vector<std::string>{"\t\t' a comment line"}, design.items[0]->leadingLines);
    EXPECT_EQ(" note", design.items[0]->comment);
    EXPECT_EQ("Choice", design.items[8]->group);
    EXPECT_EQ("Choice", design.items[9]->group);
    const DialogItem& expression = *design.items[18];
    EXPECT_EQ("Caption$", expression.caption);
    EXPECT_FALSE(expression.quoted);
    EXPECT_EQ(2, design.items[0]->sourceLine);
}

TEST(DialogBlockText, ACaretOutsideAnyBlockGivesANew400By200Dialog)
{
    const std::string text = "Sub Main\r\n\tBegin Dialog UserDialog 100,50\r\n\tEnd Dialog\r\n\tx = 1\r\nEnd Sub\r\n";
    DialogBlock block;
    DialogDesign design = ReadAt(text, 3, &block);
    EXPECT_FALSE(block.found) << "End Dialog above the caret line";
    EXPECT_EQ(3, block.insertAt);
    EXPECT_EQ(400, design.width);
    EXPECT_EQ(200, design.height);
    EXPECT_TRUE(design.centred);
    EXPECT_EQ(0, design.Count());
    const std::string written = BlockReplacementText(WriteDialogBlock(design), block);
    EXPECT_EQ("\tBegin Dialog UserDialog 400,200 ' %GRID:10,7,1,1\r\n\tEnd Dialog\r\n"
              "\tDim dlg As UserDialog\r\n\tDialog dlg\r\n",
              written);
}

TEST(DialogBlockText, TheCaretOnTheEndDialogLineIsInsideTheBlock)
{
    const std::string text = "\tBegin Dialog UserDialog 100,50\r\n\t\tOKButton 1,2,3,4\r\n\tEnd Dialog\r\n";
    DialogBlock block;
    ReadAt(text, 2, &block);
    EXPECT_TRUE(block.found);
    EXPECT_TRUE(block.hasEnd);
    EXPECT_EQ(2, block.endLine);
}

TEST(DialogBlockText, ACommentLineBetweenItemsStaysInFrontOfTheSecond)
{
    const std::string text = "\tBegin Dialog UserDialog 200,100 ' %GRID:10,7,1,1\r\n"
                             "\t\tText 10,10,90,14,\"First\"\r\n"
                             "\t\t' between the two\r\n"
                             "\t\tText 10,30,90,14,\"Second\"\r\n"
                             "\tEnd Dialog\r\n";
    DialogDesign design = ReadAt(text, 0);
    ASSERT_EQ(2, design.Count());
    EXPECT_EQ(std::vector<std::string>{"\t\t' between the two"}, design.items[1]->leadingLines);
    EXPECT_EQ(text, WriteDialogBlock(design).text);
    // Moving the first item in front keeps the comment where it was in the text.
    design.selected = 0;
    ASSERT_TRUE(design.MoveSelected(1));
    EXPECT_EQ("\tBegin Dialog UserDialog 200,100 ' %GRID:10,7,1,1\r\n"
              "\t\tText 10,30,90,14,\"Second\"\r\n"
              "\t\t' between the two\r\n"
              "\t\tText 10,10,90,14,\"First\"\r\n"
              "\tEnd Dialog\r\n",
              WriteDialogBlock(design).text);
}

TEST(DialogBlockText, AnOptionButtonWithoutGroupGetsGroup1AndItsLine)
{
    const std::string text = "\tBegin Dialog UserDialog 200,100\r\n"
                             "\t\tOptionButton 10,10,90,14,\"A\"\r\n"
                             "\t\tOptionButton 10,24,90,14,\"B\"\r\n"
                             "\tEnd Dialog\r\n";
    DialogDesign design = ReadAt(text, 1);
    ASSERT_EQ(2, design.Count());
    EXPECT_EQ("Group1", design.items[0]->group);
    EXPECT_EQ("Group1", design.items[1]->group) << "one group for the buttons that follow each other";
    const BlockText written = WriteDialogBlock(design);
    EXPECT_EQ("\tBegin Dialog UserDialog 200,100 ' %GRID:10,7,1,1\r\n"
              "\t\tOptionGroup .Group1\r\n"
              "\t\t\tOptionButton 10,10,90,14,\"A\"\r\n"
              "\t\t\tOptionButton 10,24,90,14,\"B\"\r\n"
              "\tEnd Dialog\r\n",
              written.text);
    EXPECT_EQ((std::vector<int>{2, 3}), written.itemLines);
}

TEST(DialogBlockText, AGroupNameInUseMakesTheNextFreeName)
{
    const std::string text = "\tBegin Dialog UserDialog 200,100\r\n"
                             "\t\tOptionGroup .Group1\r\n"
                             "\t\t\tOptionButton 10,10,90,14,\"A\"\r\n"
                             "\tEnd Dialog\r\n";
    DialogDesign design = ReadAt(text, 1);
    EXPECT_EQ("Group2", design.FreeGroupName());
}

TEST(DialogBlockText, GridSettingsAreWrittenIntoTheBeginLinesComment)
{
    DialogDesign design;
    design.grid = GridSettings{8, 7, true, true};
    EXPECT_EQ("\tBegin Dialog UserDialog 400,200 ' %GRID:8,7,1,1", HeaderLineText(design));
    design.comment = " mine";
    design.grid.show = false;
    EXPECT_EQ("\tBegin Dialog UserDialog 400,200 ' mine %GRID:8,7,0,1", HeaderLineText(design));

    GridSettings grid;
    EXPECT_EQ(" before after", TakeGridFromComment(" before   %grid:4,6,0,1 after", grid));
    EXPECT_EQ(4, grid.horizontal);
    EXPECT_EQ(6, grid.vertical);
    EXPECT_FALSE(grid.show);
    EXPECT_TRUE(grid.snap);
    EXPECT_EQ(" %GRID:x", TakeGridFromComment(" %GRID:x", grid)) << "not four numbers: kept";
}

TEST(DialogBlockText, ThePasswordStyleEndsATextBoxLineWithMinusOne)
{
    std::unique_ptr<DialogItem> item = ReadItemLine("TextBox 10,10,90,21,.Secret");
    ASSERT_NE(nullptr, item);
    auto* styled = dynamic_cast<StyledItem*>(item.get());
    ASSERT_NE(nullptr, styled);
    styled->style = 2;
    EXPECT_EQ("TextBox 10,10,90,21,.Secret,-1", ItemLineText(*item));
    styled->style = 1;
    EXPECT_EQ("TextBox 10,10,90,21,.Secret,1", ItemLineText(*item));
    EXPECT_NE(0u, item->WindowStyle() & ES_MULTILINE);
}

TEST(DialogBlockText, OptionsNumbersGiveTheStylesOfTheirKind)
{
    auto styleOf = [](const char* line) {
        std::unique_ptr<DialogItem> item = ReadItemLine(line);
        auto* styled = dynamic_cast<StyledItem*>(item.get());
        return styled ? styled->style : -99;
    };
    EXPECT_EQ(2, styleOf("TextBox 1,2,3,4,.T,-5"));
    EXPECT_EQ(1, styleOf("TextBox 1,2,3,4,.T,7"));
    EXPECT_EQ(0, styleOf("CheckBox 1,2,3,4,\"c\",.C,5"));
    EXPECT_EQ(2, styleOf("CheckBox 1,2,3,4,\"c\",.C,2"));
    EXPECT_EQ(3, styleOf("ComboBox 1,2,3,4,A(),.C,3"));
    EXPECT_EQ(1, styleOf("DropListBox 1,2,3,4,A(),.D,2"));
    EXPECT_EQ(1, styleOf("DropListBox 1,2,3,4,A(),.D,3"));
    EXPECT_EQ(0, styleOf("DropListBox 1,2,3,4,A(),.D,1"));
    EXPECT_EQ(1, styleOf("ListBox 1,2,3,4,A(),.L,2"));
    EXPECT_EQ(0, styleOf("ListBox 1,2,3,4,A(),.L,1"));
    EXPECT_EQ(nullptr, ReadItemLine("Text 1,2,3,\"too few\""));
    EXPECT_EQ(nullptr, ReadItemLine("Text 1,2,3,4,\"a\",\"b\"")) << "arguments that do not fit stay text";
    EXPECT_EQ(nullptr, ReadItemLine("TextBoxes 1,2,3,4,.T"));
    EXPECT_EQ("G", ReadOptionGroupLine("\t\toptiongroup .G"));

    std::unique_ptr<DialogItem> combo = ReadItemLine("ComboBox 1,2,3,4,A(),.C");
    std::unique_ptr<DialogItem> drop = ReadItemLine("DropListBox 1,2,3,4,A(),.D");
    EXPECT_TRUE(dynamic_cast<ComboItem&>(*combo).HasEditableText());
    EXPECT_FALSE(dynamic_cast<ComboItem&>(*drop).HasEditableText());
}

TEST(DialogBlockText, ContinuedLinesAreJoinedAndKeptLinesStayAsTheyWere)
{
    const std::string text = "\tBegin Dialog UserDialog 200,100, _\r\n"
                             "\t\t\"Title\"\r\n"
                             "\t\tDim kept As _\r\n"
                             "\t\t\tInteger\r\n"
                             "\t\tText 10,10, _\r\n"
                             "\t\t\t90,14,\"Long\"\r\n"
                             "\tEnd Dialog\r\n";
    DialogDesign design = ReadAt(text, 5);
    EXPECT_EQ("Title", design.caption);
    ASSERT_EQ(1, design.Count());
    EXPECT_EQ(0, design.selected) << "the caret on the item's second line";
    EXPECT_EQ(90, design.items[0]->width);
    EXPECT_EQ((std::vector<std::string>{"\t\tDim kept As _", "\t\t\tInteger"}), design.items[0]->leadingLines);
    const BlockText written = WriteDialogBlock(design);
    EXPECT_EQ("\tBegin Dialog UserDialog 200,100,\"Title\" ' %GRID:10,7,1,1\r\n"
              "\t\tDim kept As _\r\n"
              "\t\t\tInteger\r\n"
              "\t\tText 10,10,90,14,\"Long\"\r\n"
              "\tEnd Dialog\r\n",
              written.text);
    EXPECT_EQ(std::vector<int>{3}, written.itemLines);
}

TEST(DialogBlockText, SnappingGoesToTheNearestMultipleAndHalfwayUp)
{
    EXPECT_EQ(12, SnapToStep(10, 4));
    EXPECT_EQ(8, SnapToStep(9, 4));
    EXPECT_EQ(12, SnapToStep(11, 4));
    EXPECT_EQ(7, SnapToStep(7, 7));
    EXPECT_EQ(10, SnapToStep(10, 0));
    // One pixel is one unit with these base units.
    const DialogUnits units{8, 12};
    const GridSettings grid{4, 4, true, true};
    const UnitBox moved = ToUnits(RECT{10, 9, 10 + 9, 9 + 10}, units, grid);
    EXPECT_EQ(12, moved.x);
    EXPECT_EQ(8, moved.y);
    EXPECT_EQ(8, moved.width);
    EXPECT_EQ(12, moved.height);
    const UnitBox free = ToUnits(RECT{10, 9, 19, 19}, units, GridSettings{4, 4, true, false});
    EXPECT_EQ(10, free.x) << "snap off";
    EXPECT_EQ(9, free.width);
}

TEST(DesignGeometry, ADragChangesOnlyWhatItMovedAndSnapsTheRest)
{
    const DialogUnits units{6, 13}; // pixels and units round differently both ways
    const UnitBox start{100, 70, 90, 21};
    const RECT startPixels{units.PixelsX(100), units.PixelsY(70), units.PixelsX(190), units.PixelsY(91)};
    RECT moved = startPixels;
    OffsetRect(&moved, 30, 0);
    const GridSettings free{4, 4, true, false};
    UnitBox box = DraggedBox(start, moved, HTCAPTION, units, free);
    EXPECT_EQ(units.UnitsX(startPixels.left + 30), box.x);
    EXPECT_EQ(70, box.y);
    EXPECT_EQ(90, box.width) << "a move keeps the size";
    EXPECT_EQ(21, box.height);
    const GridSettings snapping{4, 4, true, true};
    box = DraggedBox(UnitBox{9, 8, 41, 21}, RECT{units.PixelsX(10), units.PixelsY(8), units.PixelsX(51), units.PixelsY(29)},
                     HTCAPTION, units, snapping);
    EXPECT_EQ(12, box.x) << "moved to 10, snapped to 12";
    EXPECT_EQ(40, box.width) << "the width snapped the same way";
    EXPECT_EQ(20, box.height);
    RECT sized = startPixels;
    sized.right += 12;
    box = DraggedBox(start, sized, HTRIGHT, units, free);
    EXPECT_EQ(100, box.x) << "the left edge did not move";
    EXPECT_EQ(units.UnitsX(sized.right - sized.left), box.width);
    EXPECT_EQ(70, box.y);
}

TEST(DesignGeometry, SizingFromTheRightEdgeStopsFivePixelsFromTheLeft)
{
    const RECT area{0, 0, 400, 200};
    const RECT start{100, 50, 180, 70};
    RECT sized = SizedRect(start, POINT{-200, 0}, HTRIGHT, area);
    EXPECT_EQ(105, sized.right);
    EXPECT_EQ(100, sized.left);
    sized = SizedRect(start, POINT{500, 500}, HTBOTTOMRIGHT, area);
    EXPECT_EQ(400, sized.right) << "the edge stays inside the area";
    EXPECT_EQ(200, sized.bottom);
    sized = SizedRect(start, POINT{300, 0}, HTLEFT, area);
    EXPECT_EQ(175, sized.left);
    EXPECT_EQ(180, sized.right);
    sized = SizedRect(start, POINT{0, -20}, HTTOP, area);
    EXPECT_EQ(30, sized.top);
    EXPECT_EQ(100, sized.left) << "a top handle leaves the sides alone";
}

TEST(DesignGeometry, MovingKeepsTheWholeRectangleInsideTheArea)
{
    const RECT area{0, 0, 400, 200};
    EXPECT_EQ((RECT{0, 0, 80, 20}), MovedRect(RECT{100, 50, 180, 70}, POINT{-300, -300}, area));
    EXPECT_EQ((RECT{320, 180, 400, 200}), MovedRect(RECT{100, 50, 180, 70}, POINT{300, 300}, area));
    EXPECT_EQ((RECT{110, 55, 190, 75}), MovedRect(RECT{100, 50, 180, 70}, POINT{10, 5}, area));
}

TEST(DesignGeometry, GrabHandlesSitJustOutsideTheRectangle)
{
    const RECT box{100, 50, 181, 71};
    EXPECT_EQ((RECT{95, 45, 100, 50}), HandleRect(box, HTTOPLEFT));
    EXPECT_EQ((RECT{181, 71, 186, 76}), HandleRect(box, HTBOTTOMRIGHT));
    EXPECT_EQ((RECT{95, 58, 100, 63}), HandleRect(box, HTLEFT)) << "(50 + 71 - 5) / 2";
    EXPECT_EQ((RECT{138, 45, 143, 50}), HandleRect(box, HTTOP)) << "(100 + 181 - 5) / 2";
    EXPECT_EQ(HTRIGHT, HandleAt(box, POINT{183, 60}, HandleSet::All));
    EXPECT_EQ(HTNOWHERE, HandleAt(box, POINT{97, 60}, HandleSet::RightAndBottom));
    EXPECT_EQ(HTNOWHERE, HandleAt(box, POINT{140, 60}, HandleSet::All));
}

TEST(DialogBlockText, TheHeaderTakesSizesPositionsCaptionsAndFunction)
{
    DialogDesign design;
    ASSERT_TRUE(ReadHeaderLine("Begin Dialog UserDialog 300,150,Title$ & \"x\",.Func", design));
    EXPECT_TRUE(design.centred);
    EXPECT_EQ(300, design.width);
    EXPECT_EQ("Title$ & \"x\"", design.caption);
    EXPECT_FALSE(design.quoted);
    EXPECT_EQ("Func", design.function);
    EXPECT_EQ("\tBegin Dialog UserDialog 300,150,Title$ & \"x\",.Func ' %GRID:10,7,1,1", HeaderLineText(design));
    ASSERT_TRUE(ReadHeaderLine("begin dialog userdialog -1,-1,30,40,.F", design));
    EXPECT_FALSE(design.centred);
    EXPECT_EQ(-1, design.x);
    EXPECT_EQ(40, design.height);
    EXPECT_EQ("", design.caption);
    EXPECT_FALSE(ReadHeaderLine("Begin Dialog Other 1,2", design));
}

TEST(DialogBlockText, PastingItemLinesInsertsThemInFrontOfTheSelection)
{
    DialogDesign design = ReadAt(kFullBlock, 2);
    ASSERT_EQ(0, design.selected);
    EXPECT_FALSE(PasteDialogText("nothing here\r\nx = 1\r\n", design));
    EXPECT_EQ(19, design.Count());
    EXPECT_TRUE(PasteDialogText("\t\tPushButton 1,2,3,4,\"New\"\r\n\t\tText 5,6,7,8,\"T\"\r\n", design));
    ASSERT_EQ(21, design.Count());
    EXPECT_EQ("PushButton 1,2,3,4,\"New\"", ItemLineText(*design.items[1]));
    EXPECT_EQ("Text 5,6,7,8,\"T\"", ItemLineText(*design.items[2]));
    EXPECT_EQ(2, design.selected);

    EXPECT_TRUE(PasteDialogText("\tBegin Dialog UserDialog 50,60,\"Fresh\" ' %GRID:5,5,0,0\r\n", design));
    EXPECT_EQ(0, design.Count()) << "a pasted Begin line replaces the dialog";
    EXPECT_EQ(50, design.width);
    EXPECT_EQ("Fresh", design.caption);
    EXPECT_EQ(5, design.grid.horizontal);
    EXPECT_FALSE(design.grid.snap);
}

TEST(DialogBlockText, TheItemListNumbersItemsAsTheRunningDialogDoes)
{
    const std::string text = "\tBegin Dialog UserDialog 200,100\r\n"
                             "\t\tText 1,2,3,4,\"T\"\r\n"
                             "\t\tOptionGroup .G\r\n"
                             "\t\t\tOptionButton 1,2,3,4,\"A\"\r\n"
                             "\t\t\tOptionButton 1,2,3,4,\"B\"\r\n"
                             "\tEnd Dialog\r\n";
    const std::vector<std::string> entries = ItemListEntries(ReadAt(text, 0));
    ASSERT_EQ(4u, entries.size());
    EXPECT_EQ("Begin Dialog UserDialog 200,100 ' %GRID:10,7,1,1", entries[0]);
    EXPECT_EQ("0: Text 1,2,3,4,\"T\"", entries[1]);
    EXPECT_EQ("2: [1] OptionButton 1,2,3,4,\"A\"", entries[2]);
    EXPECT_EQ("3: [2] OptionButton 1,2,3,4,\"B\"", entries[3]);
}

TEST(DialogSkeleton, TheSkeletonDeclaresSuppValueAsLong)
{
    const std::string text = SkeletonText("MyFunc");
    EXPECT_EQ("\r\n"
              "Rem See DialogFunc help topic for more information.\r\n"
              "Private Function MyFunc(DlgItem$, Action%, SuppValue&) As Boolean\r\n"
              "\tSelect Case Action%\r\n"
              "\tCase 1 ' Dialog box initialization\r\n"
              "\tCase 2 ' Value changing or button pressed\r\n"
              "\t\tRem MyFunc = True ' Prevent button press from closing the dialog box\r\n"
              "\tCase 3 ' TextBox or ComboBox text changed\r\n"
              "\tCase 4 ' Focus changed\r\n"
              "\tCase 5 ' Idle\r\n"
              "\t\tRem MyFunc = True ' Continue getting idle actions\r\n"
              "\tCase 6 ' Function key\r\n"
              "\tEnd Select\r\n"
              "End Function\r\n",
              text);
    EXPECT_TRUE(HasProcedure(Lines(text), "myfunc"));
    EXPECT_TRUE(HasProcedure({"Public Static Sub Other(x)"}, "Other"));
    EXPECT_FALSE(HasProcedure({"Dim MyFunc", "Call MyFunc"}, "MyFunc"));
}

// A properties page kept in memory.
class MemoryPage final : public PropertyPage {
public:
    void Clear() override
    {
        texts.clear();
        checks.clear();
        enabled.clear();
    }
    void SetText(PageField field, const std::string& text) override { texts[field] = text; }
    std::string Text(PageField field) const override
    {
        auto found = texts.find(field);
        return found == texts.end() ? std::string() : found->second;
    }
    void SetChecked(PageField field, bool checked) override { checks[field] = checked; }
    bool IsChecked(PageField field) const override { return checks.count(field) && checks.at(field); }
    void SetChoices(PageField field, const std::vector<std::string>& list, int chosen) override
    {
        choices[field] = list;
        choice[field] = chosen;
    }
    int Choice(PageField field) const override { return choice.count(field) ? choice.at(field) : -1; }
    void Enable(PageField field, bool on) override { enabled[field] = on; }
    std::string String(unsigned id) const override { return "#" + std::to_string(id); }

    std::map<PageField, std::string> texts;
    std::map<PageField, bool> checks, enabled;
    std::map<PageField, std::vector<std::string>> choices;
    std::map<PageField, int> choice;
};

TEST(DialogItemKinds, EachKindFillsAndReadsItsPartOfThePage)
{
    MemoryPage page;
    std::unique_ptr<DialogItem> combo = ReadItemLine("ComboBox 1,2,3,4,Names(),.C,2");
    combo->FillPage(page);
    EXPECT_EQ("Names", page.Text(PageField::Array));
    EXPECT_EQ((std::vector<std::string>{"ListBox", "TextBox", "ListBox, #629", "TextBox, #629"}), page.choices[PageField::Style]);
    EXPECT_EQ(2, page.Choice(PageField::Style));
    EXPECT_FALSE(page.enabled[PageField::Caption]) << "a list has no caption";
    page.texts[PageField::Width] = "120";
    page.texts[PageField::Array] = "Other()";
    page.choice[PageField::Style] = 3;
    combo->ReadPage(page);
    EXPECT_EQ("ComboBox 1,2,120,4,Other(),.C,3", ItemLineText(*combo));

    std::unique_ptr<DialogItem> check = ReadItemLine("CheckBox 1,2,3,4,\"c\",.C");
    check->FillPage(page);
    EXPECT_EQ((std::vector<std::string>{"#626", "#627", "#628"}), page.choices[PageField::Style]);
    EXPECT_TRUE(page.IsChecked(PageField::Quoted));
    page.texts[PageField::Caption] = "Expr$";
    page.checks[PageField::Quoted] = false;
    page.texts[PageField::Comment] = "c";
    check->ReadPage(page);
    EXPECT_EQ("CheckBox 1,2,3,4,Expr$,.C 'c", ItemLineText(*check));

    DialogDesign design;
    design.FillPage(page);
    EXPECT_TRUE(page.IsChecked(PageField::Centered));
    EXPECT_FALSE(page.enabled[PageField::Left]) << "a centred dialog has no position";
    page.checks[PageField::Centered] = false;
    page.texts[PageField::Left] = "15";
    page.texts[PageField::Function] = "Handler";
    design.ReadPage(page);
    EXPECT_EQ("\tBegin Dialog UserDialog 15,0,400,200,.Handler ' %GRID:10,7,1,1", HeaderLineText(design));
}

TEST(DialogItemKinds, NewItemsGetFieldNamesAndCaptions)
{
    DialogDesign design;
    design.items.push_back(design.NewItem(ItemKind::TextBox, 10, 20));
    std::unique_ptr<DialogItem> second = design.NewItem(ItemKind::TextBox, 0, 0);
    EXPECT_EQ("TextBox2", second->field);
    std::unique_ptr<DialogItem> text = design.NewItem(ItemKind::Text, 0, 0);
    EXPECT_EQ("Text 0,0,90,14,\"Text\"", ItemLineText(*text));
    std::unique_ptr<DialogItem> option = design.NewItem(ItemKind::OptionButton, 0, 0);
    EXPECT_EQ("Group1", option->group);
    EXPECT_EQ(nullptr, design.NewItem(ItemKind::OptionGroup, 0, 0));
}

} // namespace
