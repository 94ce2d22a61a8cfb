#pragma once
// The per-window state of the editor frame and the operations its message handler, command dispatch
// and sheet handling share.
#include "ide/EditorFrame.h"
#include "ide/EditorStrings.h"
#include "ide/FindReplace.h"
#include "ide/KeywordSets.h"
#include "ide/Printing.h"
#include "ide/Sheet.h"
#include "values/ComRef.h"

#include <windows.h>
#include <unknwn.h>

#include <bitset>
#include <memory>
#include <string>
#include <vector>

namespace brannoc::ide {

struct FrameCallbacks {
    FrameNotifyCallback notify = nullptr;
    FrameAboutCallback about = nullptr;
    FrameDoEventsCallback doEvents = nullptr;
    FrameDebugTraceCallback debugTrace = nullptr;
    FrameWindowCallback window = nullptr;
    FrameModalOwnerCallback modalOwner = nullptr;
    FrameDesignModeCallback designMode = nullptr;
    FrameReadMacroCallback readMacro = nullptr;
    FrameParsePropertiesCallback parseProperties = nullptr;
    FrameNewInstanceCallback newInstance = nullptr;
    FrameSetReferencesCallback setReferences = nullptr;
    FrameHelpCallback help = nullptr;
    FrameStatusCallback status = nullptr;
    FrameQuerySaveCallback querySave = nullptr;
    FrameFileNameCallback fileName = nullptr;
    FrameWriteCallback write = nullptr;
    FrameDisplayNameCallback displayName = nullptr;
    FrameCommandFilter commandFilter = nullptr;
};

// What the frame keeps about runs of its macros.
struct RunState {
    bool loadedForDebugging = false; // modules are taken in with Load instead of started
    std::vector<std::string> loadedNames; // quoted names taken in with Load, held until unloaded
    bool ModulesHeld() const { return !loadedNames.empty(); }
    int startPause = 0;              // -1 while a start is in progress, 1 once a pause came during it
    bool paused = false;             // the engine reported a stop
    bool errorShown = false;         // the recorded error is shown in the status bar
    int evaluationDepth = 0;         // the call level the panes evaluate in; 65535: none
    std::string temporaryMacro;      // the break point Step To set, if any
    int temporaryLine = 0;
    bool trace = false;
    int runThisCounter = 0;
    std::string runThisText;
    std::string hiddenCode;
    std::string expression;          // the host's evaluation expression
    std::string expressionValue;     // its value when the host last asked for the length
    std::string appPrefix = "App.";  // the name the host's application object is added under
    std::string hostString;          // kept for the host
};

// How a run command takes the current sheet's macro in.
enum class StartKind { Run, Step, Check };

// Whether a save prompt may offer Cancel.
enum class PromptKind { CanCancel, YesNo };

class EditorFrame final {
public:
    explicit EditorFrame(HWND window) : m_window(window) {}
    ~EditorFrame();
    EditorFrame(const EditorFrame&) = delete;
    EditorFrame& operator=(const EditorFrame&) = delete;

    bool Create();
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);

    // ---- options and state ----
    DWORD Options() const { return static_cast<DWORD>(GetWindowLongA(m_window, GWL_STYLE)) & kFrameOptionMask; }
    bool Has(DWORD option) const { return (Options() & option) != 0; }
    void ChangeOptions(DWORD mask, DWORD values);
    bool IsTopLevel() const { return (GetWindowLongA(m_window, GWL_STYLE) & WS_CHILD) == 0; }
    bool ProjectMode() const { return Has(FO_PROJECT); }
    bool PlainEditing() const { return Has(FO_PLAIN_EDIT); }

    // ---- sheets (FrameSheets.cpp) ----
    Sheet* Current() const { return m_current >= 0 && m_current < Count() ? m_sheets[m_current].get() : nullptr; }
    int Count() const { return static_cast<int>(m_sheets.size()); }
    bool NewSheet(SheetKind kind);
    bool OpenFile(const std::string& path);
    bool ShowSheet(int index);
    bool SaveSheet(Sheet& sheet);
    bool SaveSheetAs(Sheet& sheet, std::string name);
    bool SaveAll();
    bool CloseSheet(int index, PromptKind prompt);
    bool CloseAll(PromptKind prompt);
    bool QuerySave(Sheet& sheet, PromptKind prompt);
    std::string DisplayName(const std::string& name) const;
    std::string KindWord(const Sheet& sheet) const;
    int FindSheet(const std::string& name) const;
    void StoreShownText();
    bool Modified(const Sheet& sheet) const;
    void SetModified(Sheet& sheet, bool modified);
    std::string CodeOf(const Sheet& sheet) const;
    std::string WholeTextOf(const Sheet& sheet) const;
    void ReplaceCode(Sheet& sheet, const std::string& code);
    bool ChooseFileName(bool save, std::string& name);
    // After the header was edited: the document's hidden text follows and the sheet counts as modified.
    void ApplyHeader(Sheet& sheet);
    // Module properties: a new instancing for an object or class module.
    bool SetInstancing(Sheet& sheet, int instancing);
    std::string FileFilter() const;

    // ---- caption, status, messages ----
    void UpdateCaption();
    void ShowStatus(const std::string& text, bool alert = false);
    int ShowMessage(unsigned id, UINT style, const std::string& file = {});
    // A message box with a text already composed, captioned with the title.
    int ShowText(const std::string& text, UINT style);
    std::string Text(unsigned id) const { return LoadEditorString(id, m_placeholders); }
    void Beep(UINT type) const;

    // ---- commands (FrameCommands.cpp) ----
    int Dispatch(int command, bool fromUser);
    bool IsEnabled(int command) const { return command >= 300 && command < 428 && m_enabled[command - 300]; }
    // Whether a menu shows the command checked: tab width and tab-as-spaces, toolbar, status bar, edit
    // buttons, split, list mode, design state, the pane on top and the current sheet.
    bool IsChecked(int command) const;
    void UpdateCommandStates();
    LRESULT HostCommand(int number, bool carryOut);
    int TranslateKey(int key) const;
    std::string CommandHelp(int command, bool toolTip) const;

    // ---- object and proc lists (FrameProcLists.cpp) ----
    void FillLists();
    void FillProcList();
    void ChooseProc();
    std::vector<const char*> ObjectEvents(const std::string& object) const;
    void InsertHandler(TextDocument& document, const std::string& prototype);

    // ---- display font (FrameDisplayFont.cpp) ----
    // Gives the font to the text area; an `owned` font is deleted by the frame when replaced or destroyed.
    void SetDisplayFont(HFONT font, bool owned);
    // The font dialog; answers whether a font was chosen.
    bool ChooseDisplayFont();

    // ---- run control (FrameRunControl.cpp) ----
    bool IsLoaded(const Sheet& sheet) const;
    bool EngineStopped() const;
    // Idle: no engine, or an idle engine and no module held loaded.
    bool EngineIdle() const;
    // Start, Pause, End, the Step commands, break points and the next statement.
    void RunCommand(int command);
    // Starts the macro `name` (the current sheet's when empty); `step` stops at its first statement.
    bool RunMacro(const std::string& name, bool step);
    bool RunThis(const std::string& text);
    // Takes the current sheet's macro in as a start would and undoes that again.
    bool CheckCurrent();
    bool LoadMacro(const std::string& name);
    bool UnloadMacro(const std::string& name);
    void EndExecution();
    void OnEngineNotify(int code);
    void ShowRecordedError();
    // The text area's context menu (with the stepping commands while its macro is stopped), at the caret
    // or at the mouse position; a chosen item is dispatched as from the user interface.
    void ShowTextContextMenu(bool atCaret);
    // The drop-down menu of the toolbar's New button, below the button.
    void ShowNewMenu();
    void ShowNextStatement();
    // The text of macro `name` for the engine (null: not found, the engine reports it).
    BSTR ReadMacro(IDispatch* unit, const std::wstring& name);
    void EditEventCode(const std::string& request);
    void ClearExecutionMarks();
    // Whether the engine runs, is stopped in, or holds loaded the module of that (unquoted) name.
    bool EngineHoldsName(const std::string& name) const;
    // The text area's keyword sets from the engine: its keywords, the host's extra lists and the
    // current macro's own names.
    void RefreshKeywords();
    // A host's error object (Number, Description): shown, and its number kept for the error getters.
    void ReportHostError(IDispatch* error);

    // ---- the host's callbacks and automation object (FrameHostObject.cpp) ----
    // Child frames only: the object becomes an unnamed extension and receives the requests below.
    bool AttachHostObject(IDispatch* object);
    // Ends execution, closes the sheets (`mayCancel`: the user may cancel) and then the frame.
    bool DetachHost(bool mayCancel);
    void NotifyHost(int code);
    bool HostAboutBox();
    bool HostDoEvents();
    // True when the host showed help on the word itself.
    bool HostHelp(const std::string& word);
    HWND HostWindow();
    // A sheet opened for a module the engine has: the engine's break points become its marks.
    void MarkEngineBreakPoints(Sheet& sheet);
    // Typing into a sheet whose macro runs: the user may end the run first. False: the key is dropped.
    bool MayEditRunningSheet();

    // ---- debug panes (DebugPanes.cpp) ----
    void CreatePanes();
    HWND Pane(int index) const { return m_panes[index]; }
    // The child the edit commands work on: the debug pane that last had the focus, else the editing
    // child (also when the focus was last on the object or proc list).
    HWND CommandTarget() const
    {
        for (HWND pane : m_panes)
            if (pane && m_lastFocus == pane)
                return pane;
        return m_editor;
    }
    bool PanesShown() const;
    void ShowPane(int index);
    void DebugPrint(const std::string& text);
    void AppendToPane(int index, const std::string& text);
    // Runs a line typed into the Immediate pane.
    void RunImmediateLine(const std::string& line);
    std::string ValueText(const std::string& expression, size_t limit);
    // Quick Watch and Add Watch: the selection's or the caret word's value.
    void QuickWatch(bool addToWatch);
    void RefreshWatch();
    void RefreshStack();
    void RefreshLoaded();
    void RefreshPanes();

    // ---- layout and children ----
    void Layout();
    void UpdateDeferred();
    HMENU BuildMenu(bool full) const;

    HWND m_window;
    HWND m_editor = nullptr, m_toolbar = nullptr, m_statusBar = nullptr, m_sheetTabs = nullptr;
    HWND m_objectList = nullptr, m_procList = nullptr;
    IUnknown* m_engine = nullptr; // owned reference; null with FO_NO_ENGINE
    IDispatch* m_callBack = nullptr; // owned reference; installed on the engine
    RunState m_run;
    HWND m_tabBar = nullptr;
    HWND m_panes[4] = {};
    int m_topPane = 0;
    std::vector<std::string> m_stackMacros, m_loadedMacros;
    ComRef<IDispatch> m_hostObject;
    EditorColours m_colours;             // the text area's colour table (WM_USER + 290/291)
    KeywordSets m_keywords;
    std::string m_extraKeywords = "||";   // blocked words | extra list 1 | extra list 2
    LONG m_hostErrorNumber = 0;           // of the last error the host reported; 0 when none
    FrameCallbacks m_callbacks;
    std::bitset<128> m_enabled;
    std::vector<std::unique_ptr<Sheet>> m_sheets;
    int m_current = -1;
    PlaceholderValues m_placeholders;
    std::string m_objectNoun = "Object";
    std::string m_objectTypeWord = "Object";
    std::string m_objectExtension = "OBM";
    std::string m_fileDescriptions;
    std::string m_fileExtensions = "KZB|*";
    int m_untitledCounters[4] = {1, 1, 1, 1};
    bool m_designDisplay = true;
    bool m_designOffer = true;
    bool m_readOnly = false;
    int m_listMode = 0;
    int m_keyboardMode = 2;
    int m_splitPosition = 0;
    int m_margin = 0;
    bool m_tabsAsSpaces = false;
    int m_tabWidth = 4;
    std::string m_caption;
    HFONT m_displayFont = nullptr, m_listFont = nullptr, m_listBoldFont = nullptr;
    bool m_ownsDisplayFont = true;
    HWND m_lastFocus = nullptr;
    int m_busy = 0;
    WNDPROC m_editorProc = nullptr;
    std::string m_lastStatus;
    FindState m_find;
    PrintSettings m_print;
};

EditorFrame* FrameOf(HWND window);

// Copies a string out the way the frame's getters do: into `buffer` of `size` (cut to fit, with its
// terminating zero), answering the length; a null buffer answers the length alone.
LRESULT CopyOutString(const std::string& text, WPARAM size, LPARAM buffer);
// The string a frame message carries in lParam; empty for null.
inline std::string StringParameter(LPARAM lParam) { return lParam ? reinterpret_cast<const char*>(lParam) : ""; }

} // namespace brannoc::ide
