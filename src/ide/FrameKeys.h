#pragma once
// The frame's key tables: a key code with modifier bits (0x100 Shift, 0x200 Ctrl, 0x400 Alt) is
// translated into a command id.
#include <windows.h>

namespace brannoc::ide {

inline constexpr int kShiftBit = 0x100;
inline constexpr int kCtrlBit = 0x200;
inline constexpr int kAltBit = 0x400;
inline constexpr int kContextMenuKey = -1; // Shift+F10 answers this in place of a command

struct KeyContext {
    int keyboardMode = 2;        // 0: only Esc reaches the command tables
    bool fileCommands = false;   // option 0x0004
    bool macroLoaded = false;    // the current sheet's macro is loaded in the engine
};

// The command bound to the key (0 when none, kContextMenuKey for Shift+F10).
int TranslateFrameKey(int keyWithModifiers, const KeyContext& context);

// The frame's key bindings as an accelerator table for a host's message loop (the file keys with
// `fileCommands`); the caller destroys it.
HACCEL CreateFrameAccelerators(bool fileCommands);

// The key code with the modifier bits of the keys held down now.
int KeyWithModifiers(int keyCode);

} // namespace brannoc::ide
