// Reading a Begin Dialog UserDialog block into a design and writing it back. What the editor does not
// understand stays as text in its place: lines that are not items travel with the item that follows
// them (or stay in front of End Dialog), and an item line whose arguments do not fit its kind is such
// a line too.
#include "ide/DialogBlockText.h"

#include "ide/DialogLineSyntax.h"

#include <cctype>
#include <cstdio>

namespace brannoc::ide {

namespace {

bool IsBeginLine(std::string_view line) { return StartsWithWords(line, {"Begin", "Dialog", "UserDialog"}); }
bool IsEndDialogLine(std::string_view line) { return StartsWithWords(line, {"End", "Dialog"}); }

// A continued line ends in "_" standing apart from the word before it.
bool IsContinued(std::string_view line)
{
    line = TrimBlanks(line);
    if (line.empty() || line.back() != '_')
        return false;
    if (line.size() == 1)
        return true;
    const char before = line[line.size() - 2];
    return !(std::isalnum(static_cast<unsigned char>(before)) || before == '_');
}

std::string Printed(const char* format, int a, int b)
{
    char buffer[64];
    std::snprintf(buffer, sizeof(buffer), format, a, b);
    return buffer;
}

std::string GridText(const GridSettings& grid)
{
    return " %GRID:" + std::to_string(grid.horizontal) + "," + std::to_string(grid.vertical) + "," +
           std::to_string(grid.show ? 1 : 0) + "," + std::to_string(grid.snap ? 1 : 0);
}

// Reads "a,b,c,d" from the start of `text`; answers how many characters it took (0 when it does not fit).
size_t ReadFourNumbers(std::string_view text, int (&numbers)[4])
{
    size_t at = 0;
    for (int i = 0; i < 4; ++i) {
        if (i > 0) {
            if (at >= text.size() || text[at] != ',')
                return 0;
            ++at;
        }
        size_t start = at;
        if (at < text.size() && text[at] == '-')
            ++at;
        while (at < text.size() && std::isdigit(static_cast<unsigned char>(text[at])))
            ++at;
        std::optional<int> number = ParseWholeNumber(text.substr(start, at - start));
        if (!number)
            return 0;
        numbers[i] = *number;
    }
    return at;
}

void CopyDialogSettings(const DialogDesign& from, DialogDesign& to)
{
    to.x = from.x;
    to.y = from.y;
    to.width = from.width;
    to.height = from.height;
    to.centred = from.centred;
    to.caption = from.caption;
    to.quoted = from.quoted;
    to.function = from.function;
    to.comment = from.comment;
    to.grid = from.grid;
}

// The item's place among the option buttons of its group, counted from 1; 0 for other items.
int PlaceInGroup(const DialogDesign& design, int index)
{
    const DialogItem& item = *design.items[static_cast<size_t>(index)];
    if (item.Kind() != ItemKind::OptionButton)
        return 0;
    int place = 0;
    for (int i = 0; i <= index; ++i) {
        const DialogItem& other = *design.items[static_cast<size_t>(i)];
        if (other.Kind() == ItemKind::OptionButton && EqualsNoCase(other.group, item.group))
            ++place;
    }
    return place;
}

// Whether an option button starts a new group in the written text (an "OptionGroup ." line before it).
class GroupLines final {
public:
    bool Starts(const DialogItem& item)
    {
        if (item.Kind() != ItemKind::OptionButton)
            return false;
        const bool starts = !m_seen || !EqualsNoCase(item.group, m_previous);
        m_seen = true;
        m_previous = item.group;
        return starts;
    }

private:
    bool m_seen = false;
    std::string m_previous;
};

} // namespace

DialogBlock LocateDialogBlock(const std::vector<std::string>& lines, int caretLine)
{
    DialogBlock block;
    const int count = static_cast<int>(lines.size());
    block.insertAt = caretLine < 0 ? 0 : caretLine > count ? count : caretLine;
    for (int line = caretLine < count ? caretLine : count - 1; line >= 0; --line) {
        const std::string& text = lines[static_cast<size_t>(line)];
        if (IsBeginLine(text)) {
            block.found = true;
            block.beginLine = line;
            break;
        }
        if (line < caretLine && StartsWithWords(text, {"End"}))
            return block;
    }
    if (!block.found)
        return block;
    block.endLine = count - 1;
    for (int line = block.beginLine + 1; line < count; ++line)
        if (IsEndDialogLine(lines[static_cast<size_t>(line)])) {
            block.endLine = line;
            block.hasEnd = true;
            break;
        }
    return block;
}

std::vector<LogicalLine> JoinContinuations(const std::vector<std::string>& lines, int first, int last)
{
    std::vector<LogicalLine> logical;
    for (int line = first; line <= last && line < static_cast<int>(lines.size()); ++line) {
        LogicalLine entry;
        entry.firstLine = line;
        entry.joined = lines[static_cast<size_t>(line)];
        entry.physical.push_back(entry.joined);
        while (IsContinued(entry.joined) && line < last) {
            std::string_view head = TrimBlanks(entry.joined);
            head.remove_suffix(1);
            entry.joined = std::string(head) + std::string(TrimBlanks(lines[static_cast<size_t>(++line)]));
            entry.physical.push_back(lines[static_cast<size_t>(line)]);
        }
        logical.push_back(std::move(entry));
    }
    return logical;
}

std::string TakeGridFromComment(const std::string& comment, GridSettings& grid)
{
    std::string lower = comment;
    for (char& c : lower)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    const size_t at = lower.find("%GRID:");
    if (at == std::string::npos)
        return comment;
    int numbers[4] = {};
    const size_t taken = ReadFourNumbers(std::string_view(comment).substr(at + 6), numbers);
    if (taken == 0)
        return comment;
    grid.horizontal = numbers[0];
    grid.vertical = numbers[1];
    grid.show = numbers[2] != 0;
    grid.snap = numbers[3] != 0;
    size_t start = at;
    while (start > 0 && (comment[start - 1] == ' ' || comment[start - 1] == '\t'))
        --start;
    return comment.substr(0, start) + comment.substr(at + 6 + taken);
}

bool ReadHeaderLine(std::string_view line, DialogDesign& design)
{
    if (!IsBeginLine(line))
        return false;
    const CodeAndComment parts = SplitComment(AfterWords(line, 3));
    const std::vector<std::string> arguments = SplitArguments(parts.code);
    size_t numbers = 0;
    while (numbers < arguments.size() && numbers < 4 && ParseWholeNumber(arguments[numbers]))
        ++numbers;
    if (numbers < 2)
        return false;
    size_t next = 0;
    auto number = [&] { return *ParseWholeNumber(arguments[next++]); };
    design.centred = numbers < 4;
    if (!design.centred) {
        design.x = number();
        design.y = number();
    } else {
        design.x = design.y = 0;
    }
    design.width = number();
    design.height = number();
    design.caption.clear();
    design.quoted = true;
    design.function.clear();
    if (next < arguments.size() && arguments[next].rfind('.', 0) != 0)
        design.TakeCaption(arguments[next++]);
    if (next < arguments.size() && arguments[next].rfind('.', 0) == 0)
        design.function = std::string(TrimBlanks(arguments[next].substr(1)));
    design.comment = parts.hasComment ? TakeGridFromComment(parts.comment, design.grid) : std::string();
    return true;
}

std::string ReadOptionGroupLine(std::string_view line)
{
    if (!StartsWithWords(line, {"OptionGroup"}))
        return {};
    const std::vector<std::string> arguments = SplitArguments(SplitComment(AfterWords(line, 1)).code);
    if (arguments.size() != 1 || arguments[0].size() < 2 || arguments[0][0] != '.')
        return {};
    return std::string(TrimBlanks(arguments[0].substr(1)));
}

std::unique_ptr<DialogItem> ReadItemLine(std::string_view line)
{
    const std::vector<std::string> words = LeadingWords(line, 1);
    ItemKind kind;
    if (words.empty() || !FindItemKind(words[0], kind))
        return nullptr;
    std::unique_ptr<DialogItem> item = MakeDialogItem(kind);
    if (!item)
        return nullptr;
    const CodeAndComment parts = SplitComment(AfterWords(line, 1));
    const std::vector<std::string> arguments = SplitArguments(parts.code);
    if (arguments.size() < 4)
        return nullptr;
    int* numbers[4] = {&item->x, &item->y, &item->width, &item->height};
    for (size_t i = 0; i < 4; ++i) {
        std::optional<int> number = ParseWholeNumber(arguments[i]);
        if (!number)
            return nullptr;
        *numbers[i] = *number;
    }
    ItemArguments rest;
    bool afterField = false;
    for (size_t i = 4; i < arguments.size(); ++i) {
        if (!afterField && arguments[i].rfind('.', 0) == 0) {
            rest.field = std::string(TrimBlanks(arguments[i].substr(1)));
            afterField = true;
        } else {
            (afterField ? rest.after : rest.before).push_back(arguments[i]);
        }
    }
    if (!item->ParseArguments(rest))
        return nullptr;
    item->field = rest.field;
    if (parts.hasComment)
        item->comment = parts.comment;
    return item;
}

void ReadDialogBlock(const std::vector<std::string>& lines, const DialogBlock& block, int caretLine, DialogDesign& design)
{
    design = DialogDesign();
    if (!block.found)
        return;
    const std::vector<LogicalLine> logical = JoinContinuations(lines, block.beginLine, block.endLine);
    if (logical.empty() || !ReadHeaderLine(logical[0].joined, design))
        return;
    std::vector<std::string> kept;
    // An "OptionGroup ." line waits for an option button to take its group; the writer then writes it
    // again. One that no button takes stays as text.
    std::vector<std::string> groupLines;
    for (size_t i = 1; i < logical.size(); ++i) {
        const LogicalLine& entry = logical[i];
        if (block.hasEnd && i + 1 == logical.size()) {
            const CodeAndComment end = SplitComment(entry.joined);
            design.endComment = end.comment;
            design.hasEndComment = end.hasComment;
            break;
        }
        if (std::string group = ReadOptionGroupLine(entry.joined); !group.empty()) {
            kept.insert(kept.end(), groupLines.begin(), groupLines.end());
            groupLines = entry.physical;
            design.currentGroup = group;
            continue;
        }
        std::unique_ptr<DialogItem> item = ReadItemLine(entry.joined);
        if (!item) {
            kept.insert(kept.end(), entry.physical.begin(), entry.physical.end());
            continue;
        }
        if (item->Kind() == ItemKind::OptionButton) {
            groupLines.clear();
            if (design.currentGroup.empty())
                design.currentGroup = design.FreeGroupName();
            item->group = design.currentGroup;
        }
        item->leadingLines = std::move(kept);
        kept.clear();
        item->sourceLine = entry.firstLine - block.beginLine;
        const int lastLine = entry.firstLine + static_cast<int>(entry.physical.size()) - 1;
        if (caretLine >= entry.firstLine && caretLine <= lastLine)
            design.selected = design.Count();
        design.items.push_back(std::move(item));
    }
    kept.insert(kept.end(), groupLines.begin(), groupLines.end());
    design.trailingLines = std::move(kept);
}

std::string HeaderLineText(const DialogDesign& design)
{
    std::string text = "\tBegin Dialog UserDialog ";
    if (!design.centred)
        text += Printed("%d,%d,", design.x, design.y);
    text += Printed("%d,%d", design.width, design.height);
    if (!design.caption.empty())
        text += "," + design.CaptionArgument();
    if (!design.function.empty())
        text += ",." + design.function;
    return text + " '" + design.comment + GridText(design.grid);
}

std::string ItemLineText(const DialogItem& item)
{
    char numbers[96];
    std::snprintf(numbers, sizeof(numbers), "%s %d,%d,%d,%d", item.Keyword(), item.x, item.y, item.width, item.height);
    std::string text = numbers + item.WriteArguments();
    if (!item.field.empty())
        text += ",." + item.field;
    text += item.WriteStyle();
    if (!item.comment.empty())
        text += " '" + item.comment;
    return text;
}

BlockText WriteDialogBlock(const DialogDesign& design)
{
    BlockText block;
    block.text = HeaderLineText(design) + "\r\n";
    int line = 1;
    GroupLines groups;
    for (const auto& item : design.items) {
        for (const std::string& kept : item->leadingLines) {
            block.text += kept + "\r\n";
            ++line;
        }
        const bool option = item->Kind() == ItemKind::OptionButton;
        if (groups.Starts(*item)) {
            block.text += "\t\tOptionGroup ." + item->group + "\r\n";
            ++line;
        }
        block.itemLines.push_back(line++);
        block.text += (option && !item->group.empty() ? "\t\t\t" : "\t\t") + ItemLineText(*item) + "\r\n";
    }
    for (const std::string& kept : design.trailingLines)
        block.text += kept + "\r\n";
    block.text += "\tEnd Dialog";
    if (design.hasEndComment || !design.endComment.empty())
        block.text += " '" + design.endComment;
    block.text += "\r\n";
    return block;
}

std::string BlockReplacementText(const BlockText& block, const DialogBlock& where)
{
    return where.found ? block.text : block.text + kNewBlockFollowers;
}

std::vector<std::string> ItemListEntries(const DialogDesign& design)
{
    std::vector<std::string> entries;
    entries.push_back(HeaderLineText(design).substr(1));
    GroupLines groups;
    int number = 0;
    for (int index = 0; index < design.Count(); ++index) {
        const DialogItem& item = *design.items[static_cast<size_t>(index)];
        // The run-time dialog counts an OptionGroup line as an item.
        if (groups.Starts(item))
            ++number;
        char prefix[32];
        std::snprintf(prefix, sizeof(prefix), "%d: ", number++);
        std::string entry = prefix;
        if (const int place = PlaceInGroup(design, index); place > 0) {
            std::snprintf(prefix, sizeof(prefix), "[%d] ", place);
            entry += prefix;
        }
        entries.push_back(entry + ItemLineText(item));
    }
    return entries;
}

bool PasteDialogText(std::string_view text, DialogDesign& design)
{
    const std::vector<std::string> lines = SplitTextLines(text);
    const std::vector<LogicalLine> logical = JoinContinuations(lines, 0, static_cast<int>(lines.size()) - 1);
    bool took = false;
    std::string group;
    int after = design.selected;
    for (const LogicalLine& entry : logical) {
        DialogDesign settings;
        if (ReadHeaderLine(entry.joined, settings)) {
            CopyDialogSettings(settings, design);
            design.ClearItems();
            after = -1;
            took = true;
            continue;
        }
        if (std::string named = ReadOptionGroupLine(entry.joined); !named.empty()) {
            group = named;
            continue;
        }
        std::unique_ptr<DialogItem> item = ReadItemLine(entry.joined);
        if (!item)
            continue;
        if (item->Kind() == ItemKind::OptionButton) {
            if (group.empty())
                group = design.FreeGroupName();
            item->group = group;
        }
        after = design.InsertItem(std::move(item), after);
        design.selected = after;
        took = true;
    }
    return took;
}

} // namespace brannoc::ide
