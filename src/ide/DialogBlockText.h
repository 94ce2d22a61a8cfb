#pragma once
// The text side of the dialog editor: finding the Begin Dialog UserDialog block around a line, reading
// it into a design (lines it does not understand are kept as they are), and writing the design back as
// the block's new text.
#include "ide/DialogDesign.h"

#include <string>
#include <string_view>
#include <vector>

namespace brannoc::ide {

// Where a block is: its Begin and End lines (0-based), or not found (a new block goes in at `insertAt`).
struct DialogBlock {
    bool found = false;
    int beginLine = -1;
    int endLine = -1;   // the End Dialog line; the last line of the text when it has none
    bool hasEnd = false;
    int insertAt = 0;
};

// Looks upwards from the caret line for a "Begin Dialog UserDialog" line; a line starting with "End" above
// the caret line first means the caret is outside any block.
DialogBlock LocateDialogBlock(const std::vector<std::string>& lines, int caretLine);

// Reads the block's lines into `design` (an unfound block leaves a new 400 by 200 dialog). The item whose
// line holds the caret is selected.
void ReadDialogBlock(const std::vector<std::string>& lines, const DialogBlock& block, int caretLine, DialogDesign& design);

// Reads a "Begin Dialog UserDialog" line (continuations joined) into the dialog's own settings; false when
// the line is not one.
bool ReadHeaderLine(std::string_view line, DialogDesign& design);
// Reads one logical item line into a new item; null when the line is not an item the editor knows or its
// arguments do not fit.
std::unique_ptr<DialogItem> ReadItemLine(std::string_view line);
// The group an "OptionGroup ." line names; empty when the line is not one.
std::string ReadOptionGroupLine(std::string_view line);

// Takes "%GRID:h,v,s,n" out of a Begin line's comment (with the blanks before it) into the grid settings.
std::string TakeGridFromComment(const std::string& comment, GridSettings& grid);

// The written block and the line of each item in it (0 is the Begin line).
struct BlockText {
    std::string text;
    std::vector<int> itemLines;
};
std::string HeaderLineText(const DialogDesign& design);
// The item's line without indentation or line end.
std::string ItemLineText(const DialogItem& item);
BlockText WriteDialogBlock(const DialogDesign& design);

// The two lines that follow a new block: they declare the dialog variable and show it.
inline constexpr char kNewBlockFollowers[] = "\tDim dlg As UserDialog\r\n\tDialog dlg\r\n";

// What replaces the block's lines in the sheet: the block, and for a new block the two lines after it.
std::string BlockReplacementText(const BlockText& block, const DialogBlock& where);

// Physical lines joined into logical lines where a line ends in "_"; each logical line remembers the
// physical lines it came from.
struct LogicalLine {
    std::string joined;
    std::vector<std::string> physical;
    int firstLine = 0;
};
std::vector<LogicalLine> JoinContinuations(const std::vector<std::string>& lines, int first, int last);

// The entries of the properties page's item list: the dialog's line first, then "%d: " with the item's
// number as the run-time dialog counts it, "[%d] " with its place in its option group, and its line.
std::vector<std::string> ItemListEntries(const DialogDesign& design);

// Text pasted into the design: a Begin line replaces the dialog's settings and removes all items; item
// lines go in front of the selected entry. Answers whether anything was taken.
bool PasteDialogText(std::string_view text, DialogDesign& design);

} // namespace brannoc::ide
