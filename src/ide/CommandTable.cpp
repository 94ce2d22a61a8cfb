#include "ide/CommandTable.h"

#include <iterator>

namespace brannoc::ide {

namespace {

struct CommandRow {
    int command;
    const char* menuText;
};

constexpr CommandRow kMenuTexts[] = {
    {300, "&New"}, {301, "Code &Module"}, {302, "&Object Module"}, {303, "&Class Module"}, {304, "&Open..."},
    {305, "&Close"}, {306, "&Save"}, {307, "Save &As..."}, {308, "Save Al&l"}, {309, "&Print"},
    {310, "P&rint Setup..."}, {311, "E&xit"}, {312, "&Undo"}, {313, "&Redo"}, {314, "Cu&t"}, {315, "&Copy"},
    {316, "&Paste"}, {317, "De&lete"}, {319, "&Select All"}, {320, "&Indent"}, {321, "&Outdent"},
    {322, "&Tab As Spaces"}, {323, "&Find..."}, {324, "R&eplace..."}, {325, "&Again"}, {326, "Complete &Word"},
    {327, "Para&meter Info"}, {328, "User&Dialog..."}, {329, "Refere&nces..."}, {330, "Pr&operties"},
    {331, "&Macro"}, {332, "&Immediate"}, {333, "&Watch"}, {334, "&Stack"}, {335, "&Loaded"}, {336, "&Toolbar"},
    {337, "Status &Bar"}, {338, "&Edit Buttons"}, {339, "&Always Split"}, {340, "&Font..."}, {341, "&1"},
    {342, "&2"}, {343, "&3"}, {344, "&4"}, {345, "&5"}, {346, "&6"}, {347, "&7"}, {348, "&8"}, {349, "&Neither"},
    {350, "&Proc Only"}, {351, "&Both"}, {352, "&Run"}, {353, "&Pause"}, {354, "&End"}, {355, "&Design Mode"},
    {356, "Step &Into"}, {357, "Step &Over"}, {358, "Step O&ut"}, {359, "Step &to Cursor"},
    {360, "Toggle &Break"}, {361, "&Clear All Breaks"}, {362, "&Quick Watch"}, {363, "&Add Watch"},
    {364, "Br&owse"}, {365, "Set Ne&xt Statement"}, {366, "Sho&w Next Statement"}, {367, "&Open Uses"},
    {368, "Close &All"}, {378, "&Editor Help"}, {379, "&Language Help"}, {380, "&Topic Search"}, {381, "&About"},
    {382, "&Project"}, {383, "P&roperties"}, {384, "&More..."},
};

// Host number n controls kHostCommands[n].
constexpr short kHostCommands[kHostNumberCount] = {
    300, 304, 306, 307, 309, 310, 352, 353, 354, 356, 357, 359, 360, 362, 363, 364, 365, 366, 378, 379,
    380, 381, 312, 314, 315, 316, 323, 324, 325, 340, 317, 319, 328, 305, 308, 358, 367, 368, 369, 370,
    371, 372, 373, 374, 375, 376, 377, 301, 302, 303, 330, 320, 321, 361, 331, 332, 333, 334, 335, 336,
    337, 338, 339, 313, 329, 322, 341, 342, 343, 344, 345, 346, 347, 348, 355, 326, 327, 382, 383, 384,
};

} // namespace

const char* CommandMenuText(int command)
{
    for (const CommandRow& row : kMenuTexts)
        if (row.command == command)
            return row.menuText;
    return nullptr;
}

int HostNumberOfCommand(int command)
{
    for (int number = 0; number < kHostNumberCount; ++number)
        if (kHostCommands[number] == command)
            return number;
    return -1;
}

int CommandOfHostNumber(int number)
{
    return number >= 0 && number < kHostNumberCount ? kHostCommands[number] : 0;
}

} // namespace brannoc::ide
