#pragma once
// The editor frame: the window class "__BrannocBasicEditor" that hosts the toolbar, the object and
// proc lists, the sheet tabs, the text area and the status bar, keeps one sheet per open macro or
// module, and carries out the commands of its command table. Hosts and tests drive it by the window
// messages below; option bits live in the low word of its window style.
#include <windows.h>
#include <oaidl.h>

namespace brannoc::ide {

inline constexpr char kEditorFrameClassName[] = "__BrannocBasicEditor";

enum FrameOption : DWORD {
    FO_TOOLBAR = 0x0001,
    FO_STATUS_BAR = 0x0002,
    FO_FILES = 0x0004,
    FO_EDIT_BUTTONS = 0x0008,
    FO_ALWAYS_SPLIT = 0x0010,
    FO_SHEETS = 0x0020,
    FO_PLAIN_EDIT = 0x0040,
    FO_SAVE_KEEPS_DIRECTORY = 0x0080,
    FO_CAPTION_TEXT = 0x0100,
    FO_OPEN_KEEPS_DIRECTORY = 0x0200,
    FO_POST_QUIT = 0x0400,
    FO_PROJECT = 0x1000,
    FO_NO_DEFAULT_FONT = 0x2000,
    FO_HOST_KEYS = 0x4000,
    FO_NO_ENGINE = 0x8000,
};
inline constexpr DWORD kFrameOptionMask = 0xFFFF;

enum FrameChildId : int {
    ID_FRAME_TOOLBAR = 100, ID_FRAME_TABBAR = 101, ID_FRAME_IMMEDIATE = 102, ID_FRAME_WATCH = 103,
    ID_FRAME_STACK = 104, ID_FRAME_LOADED = 105, ID_FRAME_EDITOR = 106, ID_FRAME_STATUS_BAR = 107,
    ID_FRAME_SHEET_TABS = 108, ID_FRAME_OBJECT_LIST = 109, ID_FRAME_PROC_LIST = 110,
};

// Frame messages (strings in lParam; a getter copies into the buffer lParam of size wParam and answers
// the length, or answers the length alone for a null buffer). "0 on success" messages answer 1 on failure.
enum FrameMessage : UINT {
    FM_GETDESIGNDISPLAY = WM_USER + 240, FM_SETDESIGNDISPLAY = WM_USER + 241,
    FM_GETDESIGNOFFER = WM_USER + 242, FM_SETDESIGNOFFER = WM_USER + 243,
    FM_ADDAPPOBJECT = WM_USER + 256,   // lParam the host's object; wParam 1 with events; 0 on success
    FM_GETWHOLETEXT = WM_USER + 257,
    FM_GETAPPPREFIX = WM_USER + 263, FM_SETAPPPREFIX = WM_USER + 276,
    // The last error: macro name, line number, offset + 1, description (and 345 to 348 below).
    FM_ERRORMACRO = WM_USER + 258, FM_ERRORLINE = WM_USER + 259, FM_ERROROFFSET = WM_USER + 260,
    FM_ERRORDESC = WM_USER + 261,
    FM_GETEXPRESSION = WM_USER + 262, FM_SETEXPRESSION = WM_USER + 275,
    FM_EVALUATE = WM_USER + 269,       // the expression's value (evaluated when asked for the length)
    FM_EVALUATEPUT = WM_USER + 282,    // assigns lParam to the expression
    FM_GETHIDDENCODE = WM_USER + 267, FM_SETHIDDENCODE = WM_USER + 280,
    FM_ISSTOPPED = WM_USER + 268,      // 1 when the engine is stopped (or a start paused)
    FM_ISBUSY = WM_USER + 270,         // 0 when idle and no module is held loaded
    FM_RUNMACRO = WM_USER + 272,       // lParam name (null: the current sheet's); wParam 1 step; 0 on success
    FM_RUNTHIS = WM_USER + 273,        // lParam text; 0 on success
    FM_REPLACECODE = WM_USER + 274,
    FM_GETFILEDESC = WM_USER + 264, FM_GETFILEEXT = WM_USER + 265, FM_GETSHEETNAME = WM_USER + 266,
    FM_SETFILEDESC = WM_USER + 277, FM_SETFILEEXT = WM_USER + 278,
    FM_OPENMACRO = WM_USER + 279,      // 0 on success
    FM_SETOPTIONS = WM_USER + 284,     // wParam mask, lParam values
    FM_FILE = WM_USER + 285,           // wParam 1 open lParam, 0 save as lParam; 0 on success
    FM_GETCAPTION = WM_USER + 288, FM_SETTITLE = WM_USER + 289,
    FM_PAUSE = WM_USER + 281,          // lParam nonzero Pause, zero Continue and Run
    FM_STARTEND = WM_USER + 283,       // lParam nonzero start the current sheet's macro, zero End
    FM_CHECK = WM_USER + 286,          // nonzero when the current sheet's macro can be taken in
    FM_GETCOLOUR = WM_USER + 290, FM_SETCOLOUR = WM_USER + 291, // wParam 0 to 10; lParam the colour
    FM_GETDEBUGLOAD = WM_USER + 292, FM_SETDEBUGLOAD = WM_USER + 293,
    FM_FIRE = WM_USER + 294, FM_CREATEHANDLER = WM_USER + 295, // the engine's objects, reference added
    FM_GETREADONLY = WM_USER + 296, FM_SETREADONLY = WM_USER + 297,
    FM_GETSELLENGTH = WM_USER + 298,   // length of the text area's selection
    FM_SETSELLENGTH = WM_USER + 299,   // keeps the selection's start, moves its end to start + lParam
    FM_GETSELSTART = WM_USER + 300, FM_SETCARET = WM_USER + 301,
    FM_GETSELTEXT = WM_USER + 302,     // the selected text
    FM_REPLACESEL = WM_USER + 303,     // replaces the selection with lParam; 0 on success (1 when read-only)
    FM_SETABOUTCALLBACK = WM_USER + 304, FM_SETDOEVENTSCALLBACK = WM_USER + 306,
    FM_SETHELPCALLBACK = WM_USER + 307,
    FM_SETNOTIFYCALLBACK = WM_USER + 308,
    FM_SETWINDOWCALLBACK = WM_USER + 309, // wParam 0 the window, 1 the modal owner override, 2 design mode
    FM_SETSTATUSCALLBACK = WM_USER + 310,
    FM_SETQUERYSAVECALLBACK = WM_USER + 311, FM_SETFILENAMECALLBACK = WM_USER + 312,
    FM_SETWRITECALLBACK = WM_USER + 314, FM_SETDISPLAYNAMECALLBACK = WM_USER + 315,
    FM_SETCOMMANDFILTER = WM_USER + 316,
    FM_SETREADMACROCALLBACK = WM_USER + 313, FM_SETPARSEPROPERTIESCALLBACK = WM_USER + 317,
    FM_SETNEWINSTANCECALLBACK = WM_USER + 318,
    FM_HOSTCOMMAND = WM_USER + 320,    // wParam host number, lParam 0 ask enabled, else carry out
    FM_LOADMACRO = WM_USER + 321, FM_UNLOADMACRO = WM_USER + 322, // lParam name; 0 on success
    FM_SHEETCOUNT = WM_USER + 323, FM_SELECTSHEET = WM_USER + 324, FM_CURRENTSHEET = WM_USER + 325,
    FM_SHOWSHEET = WM_USER + 326, FM_FINDSHEET = WM_USER + 327,
    FM_ISLOADED = WM_USER + 329,       // 0 when the macro lParam is loaded
    FM_CREATEHANDLERS = WM_USER + 330, // lParam prefix, wParam the event object
    FM_SHOWNAMEDSHEET = WM_USER + 331, // lParam a sheet's name (null: the current sheet); 0 on success
    FM_EDITHANDLER = WM_USER + 332,    // lParam macro name, "|", handler name
    FM_MACROINSTANCE = WM_USER + 333,  // lParam macro name, wParam 1 a new instance
    FM_ISACTIVE = WM_USER + 335,       // 0 when the macro lParam is active
    FM_CLOSEALL = WM_USER + 336,       // 0 when done
    FM_HASNOENGINE = WM_USER + 337,
    FM_COMMANDSTATUS = WM_USER + 339, FM_COMMANDTIP = WM_USER + 340,
    FM_REPORTERROR = WM_USER + 338,    // lParam the host's error object (Number, Description)
    FM_CHECKSTATE = WM_USER + 341,     // 1 when host command number wParam shows checked
    FM_SETDEBUGTRACECALLBACK = WM_USER + 342,
    FM_REFERENCES = WM_USER + 349,     // the references dialog for the macro lParam
    FM_SETREFERENCESCALLBACK = WM_USER + 351,
    FM_RUNSPECIAL = WM_USER + 343,     // the engine's Run with 0x8000 + the low byte of lParam
    FM_VERSION = WM_USER + 344,
    FM_ERRORHELPCONTEXT = WM_USER + 345, FM_ERRORHELPFILE = WM_USER + 346, FM_ERRORNUMBER = WM_USER + 347,
    FM_ERRORSOURCE = WM_USER + 348,
    FM_BROWSE = WM_USER + 350,         // browse the object expression lParam (null: the selection); 0 on Paste
    FM_GETEXTRAKEYWORDS = WM_USER + 352, FM_SETEXTRAKEYWORDS = WM_USER + 353, // "blocked|extra 1|extra 2"
    FM_GETMACRONOUN = WM_USER + 354, FM_SETMACRONOUN = WM_USER + 355,
    FM_GETOBJECTFILETYPE = WM_USER + 356, FM_SETOBJECTFILETYPE = WM_USER + 357,
    FM_GETLISTMODE = WM_USER + 358, FM_SETLISTMODE = WM_USER + 359,
    FM_DISPLAYNAME = WM_USER + 360,
    FM_GETBREAKS = WM_USER + 361,      // lParam SAFEARRAY** filled with the absolute lines
    FM_SETBREAKS = WM_USER + 362,      // lParam SAFEARRAY* of absolute lines (VT_I2, VT_I4, VT_VARIANT)
    FM_CURRENTMACRO = WM_USER + 363,
    FM_GETHOSTSTRING = WM_USER + 364, FM_SETHOSTSTRING = WM_USER + 365,
    FM_GETSPLIT = WM_USER + 366, FM_SETSPLIT = WM_USER + 367,
    FM_GETMARGIN = WM_USER + 368, FM_SETMARGIN = WM_USER + 369,
    FM_TOOLBARHEIGHT = WM_USER + 370, FM_STATUSHEIGHT = WM_USER + 371,
    FM_HIDDENLINES = WM_USER + 372, FM_SHEETKIND = WM_USER + 373,
    FM_GETVBNAME = WM_USER + 374, FM_SETVBNAME = WM_USER + 375,
    FM_GETTABSASSPACES = WM_USER + 378, FM_SETTABSASSPACES = WM_USER + 379,
    FM_GETTABWIDTH = WM_USER + 380, FM_SETTABWIDTH = WM_USER + 381,
    FM_LINESTART = WM_USER + 376,      // character position of the start of line lParam (1-based)
    FM_LINEOFCHAR = WM_USER + 377,     // line (1-based) of character position lParam
    FM_GETTEXT = WM_USER + 382, FM_SETTEXT = WM_USER + 383,
    FM_ATTACH = WM_USER + 384,         // lParam the host's automation object (child frames); 0 on success
    FM_DETACH = WM_USER + 385,         // lParam 0: the user may cancel; 0 when the frame closed
    FM_STATUSHELP = WM_USER + 400, FM_TRANSLATEKEY = WM_USER + 401, FM_SETKEYBOARDMODE = WM_USER + 402,
    FM_OAVERSION = WM_USER + 403, FM_STRING = WM_USER + 404,
    FM_LOADMENU = WM_USER + 405,
    FM_LOADACCELERATORS = WM_USER + 406, // the key bindings as an accelerator table (the caller destroys it)
    FM_UPDATEMENU = WM_USER + 407,     // wParam a host menu: enable and check states of its command items
    FM_PREPAREPOPUP = WM_USER + 408,   // wParam a host popup menu, prepared the same way
    FM_ENGINE = WM_USER + 480,
    FM_SETDISPLAYFONT = WM_USER + 481, // wParam the font, which stays the host's
    FM_UPDATE = WM_USER + 496,
    FM_RETRYCLOSE = WM_USER + 497,     // a close that waited for a running macro is tried again
    FM_SHOWMESSAGE = WM_USER + 500,
    FM_PROPERTIES = WM_USER + 502,
    FM_LAYOUT = WM_USER + 504,
};

// Host callbacks; each may be null.
using FrameNotifyCallback = void(CALLBACK*)(HWND frame, int code);
using FrameAboutCallback = void(CALLBACK*)(HWND frame);
using FrameDoEventsCallback = void(CALLBACK*)(HWND frame);
// The window the engine's dialogs and message boxes belong to (null: the frame's own).
using FrameWindowCallback = HWND(CALLBACK*)(HWND frame);
// May change the owner window of a modal dialog a macro opens.
using FrameModalOwnerCallback = void(CALLBACK*)(HWND frame, HWND* owner);
// Told when the user switches the design-state display with Design Mode (the new state).
using FrameDesignModeCallback = void(CALLBACK*)(HWND frame, BOOL designDisplay);
// A macro's text: asked first with a null buffer for the length, then with a buffer of that size; a
// positive second answer means the text is there.
using FrameReadMacroCallback = int(CALLBACK*)(HWND frame, const char* name, char* buffer, int size);
// Whether the header of an object module is accepted, and the host's object for a new instance of one.
using FrameParsePropertiesCallback = BOOL(CALLBACK*)(HWND frame, const char* name, const char* properties);
using FrameNewInstanceCallback = IDispatch*(CALLBACK*)(HWND frame, const char* name);
// New "'#Reference " lines (each ending in CR LF) for a macro that is not open in a sheet.
using FrameSetReferencesCallback = BOOL(CALLBACK*)(HWND frame, const char* name, const char* referenceLines);
// The engine's trace lines (the API trace and line tracing), with their kind.
using FrameDebugTraceCallback = void(CALLBACK*)(HWND frame, int kind, const char* text);
// Nonzero: the host has shown help on the word (Topic Search) and the engine's help file is not opened.
using FrameHelpCallback = BOOL(CALLBACK*)(HWND frame, const char* word);
using FrameStatusCallback = void(CALLBACK*)(HWND frame, const char* text, BOOL alert);
// Nonzero: `*result` (IDYES, IDNO or IDCANCEL) decides instead of the save prompt.
using FrameQuerySaveCallback = BOOL(CALLBACK*)(HWND frame, const char* sheetName, int* result);
// Nonzero: `name` (260 characters) holds the chosen file and no dialog is shown.
using FrameFileNameCallback = BOOL(CALLBACK*)(HWND frame, BOOL save, char* name);
using FrameWriteCallback = BOOL(CALLBACK*)(HWND frame, const char* name, const char* text);
// May rewrite `name` (260 characters) before the frame forms a display name from it.
using FrameDisplayNameCallback = void(CALLBACK*)(HWND frame, char* name);
// Nonzero: the host has carried out the command of that host number.
using FrameCommandFilter = BOOL(CALLBACK*)(HWND frame, int hostNumber);

// Registers the frame class and its child classes once per process.
bool RegisterEditorFrameClass();

// Observes the frame's beeps (for tests); null restores plain beeping.
void SetFrameBeepObserver(void (*observer)(UINT type));

} // namespace brannoc::ide
