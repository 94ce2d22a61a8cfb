#include "ide/FrameKeys.h"

#include "ide/CommandTable.h"

#include <vector>

namespace brannoc::ide {

namespace {

struct KeyBinding {
    int key;
    int command;
};

constexpr KeyBinding kEditingKeys[] = {
    {kAltBit | VK_BACK, CMD_UNDO}, {kCtrlBit | VK_DELETE, CMD_CUT}, {kCtrlBit | VK_INSERT, CMD_COPY},
    {kShiftBit | VK_INSERT, CMD_PASTE}, {kCtrlBit | 'Z', CMD_UNDO}, {kCtrlBit | 'Y', CMD_REDO},
    {kCtrlBit | 'X', CMD_CUT}, {kCtrlBit | 'C', CMD_COPY}, {kCtrlBit | 'V', CMD_PASTE},
    {kCtrlBit | kShiftBit | 'Y', CMD_CUT_LINE}, {kCtrlBit | VK_CANCEL, CMD_COPY},
    {kCtrlBit | VK_SPACE, CMD_COMPLETE_WORD}, {kCtrlBit | 'I', CMD_PARAMETER_INFO},
};

constexpr KeyBinding kFileKeys[] = {
    {kCtrlBit | 'N', CMD_NEW}, {kCtrlBit | 'O', CMD_OPEN}, {kCtrlBit | 'S', CMD_SAVE}, {kCtrlBit | 'P', CMD_PRINT},
};

constexpr KeyBinding kCommandKeys[] = {
    {kCtrlBit | 'F', CMD_FIND}, {kCtrlBit | 'R', CMD_REPLACE}, {VK_F3, CMD_AGAIN}, {kCtrlBit | 'A', CMD_FOCUS_TEXT},
    {kCtrlBit | 'E', CMD_IMMEDIATE}, {kCtrlBit | 'W', CMD_WATCH}, {kCtrlBit | 'T', CMD_STACK},
    {kCtrlBit | 'L', CMD_LOADED}, {VK_F5, CMD_RUN}, {VK_F8, CMD_STEP_INTO}, {kShiftBit | VK_F8, CMD_STEP_OVER},
    {kCtrlBit | VK_F8, CMD_STEP_OUT}, {VK_F7, CMD_STEP_TO}, {VK_F9, CMD_TOGGLE_BREAK},
    {kCtrlBit | kShiftBit | VK_F9, CMD_CLEAR_BREAKS}, {kShiftBit | VK_F9, CMD_QUICK_WATCH},
    {kCtrlBit | VK_F9, CMD_ADD_WATCH},
};

template <size_t N>
int Find(const KeyBinding (&table)[N], int key)
{
    for (const KeyBinding& binding : table)
        if (binding.key == key)
            return binding.command;
    return 0;
}

} // namespace

int TranslateFrameKey(int key, const KeyContext& context)
{
    if (int command = Find(kEditingKeys, key))
        return command;
    if (key == (kShiftBit | VK_F10))
        return kContextMenuKey;
    if (context.keyboardMode == 0 && key != VK_ESCAPE)
        return 0;
    if (context.keyboardMode == 2 && context.fileCommands)
        if (int command = Find(kFileKeys, key))
            return command;
    if (int command = Find(kCommandKeys, key))
        return command;
    if (key >= (kCtrlBit | '1') && key <= (kCtrlBit | '9'))
        return CMD_SHEET_1 + (key - (kCtrlBit | '1'));
    if (key == VK_ESCAPE && context.macroLoaded)
        return CMD_PAUSE;
    return 0;
}

HACCEL CreateFrameAccelerators(bool fileCommands)
{
    std::vector<ACCEL> table;
    const auto add = [&](const KeyBinding& binding) {
        BYTE flags = FVIRTKEY;
        flags |= (binding.key & kShiftBit) ? FSHIFT : 0;
        flags |= (binding.key & kCtrlBit) ? FCONTROL : 0;
        flags |= (binding.key & kAltBit) ? FALT : 0;
        table.push_back(ACCEL{flags, static_cast<WORD>(binding.key & 0xFF), static_cast<WORD>(binding.command)});
    };
    for (const KeyBinding& binding : kEditingKeys)
        add(binding);
    if (fileCommands)
        for (const KeyBinding& binding : kFileKeys)
            add(binding);
    for (const KeyBinding& binding : kCommandKeys)
        add(binding);
    for (int digit = 0; digit < 9; ++digit)
        add(KeyBinding{kCtrlBit | ('1' + digit), CMD_SHEET_1 + digit});
    return CreateAcceleratorTableA(table.data(), static_cast<int>(table.size()));
}

int KeyWithModifiers(int keyCode)
{
    int key = keyCode;
    if (GetKeyState(VK_SHIFT) < 0)
        key |= kShiftBit;
    if (GetKeyState(VK_CONTROL) < 0)
        key |= kCtrlBit;
    if (GetKeyState(VK_MENU) < 0)
        key |= kAltBit;
    return key;
}

} // namespace brannoc::ide
