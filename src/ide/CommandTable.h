#pragma once
// The editor frame's commands: ids, menu texts and the numbers under which a host filters, enables
// and triggers them.
namespace brannoc::ide {

enum Command : int {
    CMD_TOOLBAR_NEW = 299, CMD_NEW = 300, CMD_NEW_CODE = 301, CMD_NEW_OBJECT = 302, CMD_NEW_CLASS = 303,
    CMD_OPEN = 304, CMD_CLOSE = 305, CMD_SAVE = 306, CMD_SAVE_AS = 307, CMD_SAVE_ALL = 308, CMD_PRINT = 309,
    CMD_PRINT_SETUP = 310, CMD_EXIT = 311, CMD_UNDO = 312, CMD_REDO = 313, CMD_CUT = 314, CMD_COPY = 315,
    CMD_PASTE = 316, CMD_DELETE = 317, CMD_CUT_LINE = 318, CMD_SELECT_ALL = 319, CMD_INDENT = 320,
    CMD_OUTDENT = 321, CMD_TAB_AS_SPACES = 322, CMD_FIND = 323, CMD_REPLACE = 324, CMD_AGAIN = 325,
    CMD_COMPLETE_WORD = 326, CMD_PARAMETER_INFO = 327, CMD_USER_DIALOG = 328, CMD_REFERENCES = 329,
    CMD_PROPERTIES = 330, CMD_FOCUS_TEXT = 331, CMD_IMMEDIATE = 332, CMD_WATCH = 333, CMD_STACK = 334,
    CMD_LOADED = 335, CMD_VIEW_TOOLBAR = 336, CMD_VIEW_STATUS_BAR = 337, CMD_VIEW_EDIT_BUTTONS = 338,
    CMD_ALWAYS_SPLIT = 339, CMD_FONT = 340, CMD_TAB_WIDTH_1 = 341, CMD_TAB_WIDTH_8 = 348, CMD_LISTS_NEITHER = 349,
    CMD_LISTS_PROC = 350, CMD_LISTS_BOTH = 351, CMD_RUN = 352, CMD_PAUSE = 353, CMD_END = 354,
    CMD_DESIGN_MODE = 355, CMD_STEP_INTO = 356, CMD_STEP_OVER = 357, CMD_STEP_OUT = 358, CMD_STEP_TO = 359,
    CMD_TOGGLE_BREAK = 360, CMD_CLEAR_BREAKS = 361, CMD_QUICK_WATCH = 362, CMD_ADD_WATCH = 363, CMD_BROWSE = 364,
    CMD_SET_NEXT = 365, CMD_SHOW_NEXT = 366, CMD_OPEN_USES = 367, CMD_CLOSE_ALL = 368, CMD_SHEET_1 = 369,
    CMD_SHEET_9 = 377, CMD_EDITOR_HELP = 378, CMD_LANGUAGE_HELP = 379, CMD_TOPIC_SEARCH = 380, CMD_ABOUT = 381,
    CMD_PROJECT = 382, CMD_PROJECT_PROPERTIES = 383, CMD_MORE = 384,
};

inline constexpr int kFirstCommand = 300;
inline constexpr int kCommandEnd = 385;       // first id after the table
inline constexpr int kProjectCommandsFrom = 382;
inline constexpr int kHostNumberCount = 80;

// Special numbers a host's command filter sees for actions that are not commands.
enum SpecialHostNumber : int {
    HOST_TO_TOP = 32763, HOST_CONTEXT_MENU = 32764, HOST_SHOW_ERROR = 32765, HOST_NEW_MENU = 32766,
    HOST_MOUSE_MENU = 32767,
};

// The menu text of a command ("&New"), or null for commands without one.
const char* CommandMenuText(int command);
// The host number of a command, or -1 when it has none.
int HostNumberOfCommand(int command);
// The command of a host number 0 to 79, or 0.
int CommandOfHostNumber(int number);

} // namespace brannoc::ide
