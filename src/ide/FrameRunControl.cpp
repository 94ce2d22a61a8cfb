// The frame's link with its engine object: the run and debug commands, macros the host names, the
// engine's notifications and the error it recorded, and the macro texts it reads from open sheets.
#include "ide/EditorFrameState.h"

#include "ide/CommandTable.h"
#include "ide/EngineKeywords.h"
#include "ide/EngineLink.h"
#include "ide/ProcedureIndex.h"
#include "ide/TextArea.h"
#include "host/HostCallBack.h"
#include "values/ComRef.h"

#include <algorithm>

#include "brannoc.h"

namespace brannoc::ide {

namespace {

enum EditorRunStrings : unsigned {
    IDS_HERE = 554, IDS_RUNNING = 555, IDS_IDLE = 556, IDS_PAUSED = 557,
    IDS_UNREACHABLE_LINE = 578, IDS_BREAK_NOT_SET = 579,
};

constexpr int kNoEvaluationDepth = 65535;
// The frame's own notification codes for the end of held modules (treated like 1 and 2).
constexpr int kHeldActive = -1, kHeldIdle = -2;

bool IsDoubleStar(const Sheet& sheet) { return sheet.name.rfind("**", 0) == 0; }

BSTR AllocText(const std::string& text)
{
    const std::wstring wide = WideText(text);
    return SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

// How a run command found the current sheet's macro.
enum class Prepared { Nothing, Continued, Started };

// The default callback's ReadMacro: the engine's own reading of macro files.
BSTR ReadThroughDefault(IUnknown* engine, IDispatch* unit, const std::wstring& name)
{
    const ComRef<IDispatch> fallback = ComRef<IDispatch>::Adopt(CU_DefaultCallBack(engine));
    std::wstring text;
    if (!fallback || !HostCallBack::ReadMacro(fallback.Get(), unit, name, text))
        return nullptr;
    return SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
}

// Names are compared as the engine compares them, without regard to case.
auto SameNameAs(const std::string& quoted)
{
    return [&quoted](const std::string& name) { return lstrcmpiA(name.c_str(), quoted.c_str()) == 0; };
}

bool IsHeldLoaded(const RunState& run, const std::string& quoted)
{
    return std::any_of(run.loadedNames.begin(), run.loadedNames.end(), SameNameAs(quoted));
}

void AddLoadedName(RunState& run, const std::string& quoted)
{
    if (!IsHeldLoaded(run, quoted))
        run.loadedNames.push_back(quoted);
}

// Takes `quoted` out of the list; answers whether it was there.
bool RemoveLoadedName(RunState& run, const std::string& quoted)
{
    auto found = std::find_if(run.loadedNames.begin(), run.loadedNames.end(), SameNameAs(quoted));
    if (found == run.loadedNames.end())
        return false;
    run.loadedNames.erase(found);
    return true;
}

} // namespace

// The engine keeps a module after its run has ended; for the frame a sheet's macro is taken in while
// it runs or is stopped, or while the frame holds it loaded with Load.
bool EditorFrame::IsLoaded(const Sheet& sheet) const
{
    if (!m_engine)
        return false;
    const std::string name = EngineName(sheet);
    if (!CU_IsMacro(m_engine, name.c_str()))
        return false;
    return CU_IsMacroActive(m_engine, name.c_str()) || IsHeldLoaded(m_run, name);
}

bool EditorFrame::EngineStopped() const { return m_engine && CU_IsStopped(m_engine); }

bool EditorFrame::EngineIdle() const { return !m_engine || (CU_IsIdle(m_engine) && !m_run.ModulesHeld()); }

void EditorFrame::ClearExecutionMarks()
{
    if (m_editor && !PlainEditing())
        SendMessageA(m_editor, TAM_MARKCURRENT, 0, -1);
}

namespace {

void ClearErrorMark(EditorFrame& frame)
{
    if (frame.m_editor && !frame.PlainEditing())
        SendMessageA(frame.m_editor, TAM_MARKERROR, 0, -1);
}

// Sends the break point marks of every sheet the engine has newly taken in; a refused one stops the
// run before anything of it runs.
void SendBreakPoints(EditorFrame& frame)
{
    for (auto& sheet : frame.m_sheets) {
        const bool loaded = frame.IsLoaded(*sheet);
        const bool fresh = loaded && !sheet->loaded;
        sheet->loaded = loaded;
        if (!fresh || !sheet->document)
            continue;
        for (int line = 0; line < sheet->document->LineCount(); ++line) {
            if (!sheet->document->BreakPoint(line))
                continue;
            if (!CU_ToggleBreak(frame.m_engine, EngineName(*sheet).c_str(), AbsoluteLine(*sheet, line))) {
                frame.ShowStatus(frame.Text(IDS_BREAK_NOT_SET));
                frame.m_run.evaluationDepth = kNoEvaluationDepth;
                CU_Stop(frame.m_engine);
            }
        }
    }
}

// Forgets the break point Step To set, and takes it out of the engine when it is still there.
void ClearTemporaryBreak(EditorFrame& frame)
{
    RunState& run = frame.m_run;
    if (run.temporaryMacro.empty())
        return;
    for (int index = 0;; ++index) {
        const int line = CU_BreakLineNum(frame.m_engine, run.temporaryMacro.c_str(), index);
        if (line == 0)
            break;
        if (line == run.temporaryLine) {
            CU_ToggleBreak(frame.m_engine, run.temporaryMacro.c_str(), line);
            break;
        }
    }
    run.temporaryMacro.clear();
    run.temporaryLine = 0;
}

// What every run command does first: nothing without an engine or while it is paused; the current
// sheet's macro continues when it is loaded and stopped, or is taken in (Load or Start) when it is not.
Prepared PrepareRun(EditorFrame& frame, StartKind kind, bool& startPaused)
{
    startPaused = false;
    Sheet* sheet = frame.Current();
    if (!frame.m_engine || !sheet || CU_IsPaused(frame.m_engine))
        return Prepared::Nothing;
    ClearTemporaryBreak(frame);
    ClearErrorMark(frame);
    frame.ShowStatus({});
    frame.m_run.errorShown = false;
    frame.StoreShownText();
    RunState& run = frame.m_run;
    if (frame.IsLoaded(*sheet)) {
        if (frame.EngineStopped())
            CU_Continue(frame.m_engine);
        return Prepared::Continued;
    }
    run.evaluationDepth = 0;
    const std::string name = EngineName(*sheet);
    const bool module = sheet->kind == SheetKind::Object || sheet->kind == SheetKind::Class;
    const bool load = IsDoubleStar(*sheet) || run.loadedForDebugging || (kind == StartKind::Check && module);
    run.startPause = -1;
    bool taken;
    if (load) {
        if (CU_StackDepth(frame.m_engine) == 0)
            kind == StartKind::Step ? CU_Step(frame.m_engine) : CU_Stop(frame.m_engine);
        taken = CU_Load(frame.m_engine, name.c_str());
        if (taken)
            AddLoadedName(run, name);
    } else {
        taken = CU_Start(frame.m_engine, name.c_str());
        sheet->running = taken;
    }
    startPaused = run.startPause == 1;
    run.startPause = 0;
    if (!taken)
        return Prepared::Nothing;
    SendBreakPoints(frame);
    return Prepared::Started;
}

void StepAndStop(IUnknown* engine)
{
    CU_Step(engine);
    CU_Stop(engine);
}

void RunToStop(IUnknown* engine, int depth)
{
    CU_Run(engine, depth);
    CU_Stop(engine);
}

void StepTo(EditorFrame& frame)
{
    bool paused = false;
    if (PrepareRun(frame, StartKind::Step, paused) == Prepared::Nothing)
        return;
    if (paused) {
        StepAndStop(frame.m_engine);
        return;
    }
    Sheet* sheet = frame.Current();
    if (sheet && sheet->document) {
        const int codeLine = sheet->document->Caret().line;
        if (!sheet->document->BreakPoint(codeLine)) {
            const std::string macro = EngineName(*sheet);
            const int line = AbsoluteLine(*sheet, codeLine);
            if (!CU_ToggleBreak(frame.m_engine, macro.c_str(), line)) {
                CU_Stop(frame.m_engine);
                frame.ShowMessage(IDS_UNREACHABLE_LINE, MB_OK | MB_ICONINFORMATION);
                return;
            }
            frame.m_run.temporaryMacro = macro;
            frame.m_run.temporaryLine = line;
        }
    }
    RunToStop(frame.m_engine, 0);
}

void Pause(EditorFrame& frame)
{
    RunState& run = frame.m_run;
    if (run.startPause == -1)
        run.startPause = 1;
    if (frame.m_designDisplay && !run.ModulesHeld()) {
        CU_Stop(frame.m_engine);
    } else if (CU_IsIdle(frame.m_engine)) {
        CU_Step(frame.m_engine);
        frame.NotifyHost(8);
    } else {
        CU_Stop(frame.m_engine);
    }
}

void ToggleBreak(EditorFrame& frame)
{
    Sheet* sheet = frame.Current();
    if (!sheet || !sheet->document)
        return;
    const int codeLine = sheet->document->Caret().line;
    const int line = AbsoluteLine(*sheet, codeLine);
    const std::string macro = EngineName(*sheet);
    if (frame.m_run.temporaryLine == line && lstrcmpiA(frame.m_run.temporaryMacro.c_str(), macro.c_str()) == 0) {
        frame.m_run.temporaryMacro.clear();
        frame.m_run.temporaryLine = 0;
    }
    sheet->document->SetBreakPoint(codeLine, !sheet->document->BreakPoint(codeLine));
    InvalidateRect(frame.m_editor, nullptr, FALSE);
    // A macro that is not taken in gets its marks when it is (SendBreakPoints).
    if (frame.IsLoaded(*sheet) && !CU_ToggleBreak(frame.m_engine, macro.c_str(), line))
        frame.ShowStatus(frame.Text(IDS_BREAK_NOT_SET));
}

void ClearAllBreaks(EditorFrame& frame)
{
    if (frame.m_engine)
        CU_ToggleBreak(frame.m_engine, nullptr, 0);
    frame.m_run.temporaryMacro.clear();
    frame.m_run.temporaryLine = 0;
    for (auto& sheet : frame.m_sheets)
        if (sheet->document)
            for (int line = 0; line < sheet->document->LineCount(); ++line)
                sheet->document->SetBreakPoint(line, false);
    InvalidateRect(frame.m_editor, nullptr, FALSE);
}

void SetNextStatement(EditorFrame& frame)
{
    Sheet* sheet = frame.Current();
    if (!frame.m_engine || !sheet || !sheet->document)
        return;
    CU_LineNumPut(frame.m_engine, AbsoluteLine(*sheet, sheet->document->Caret().line));
    frame.ShowNextStatement();
}

// Runs what a start left waiting: one step, or the whole macro (stopping if the engine was not stopped
// before). Used by the host's start requests.
void RunStarted(EditorFrame& frame, bool step, bool wasActive, bool wasStopped, bool startPaused)
{
    if (wasActive)
        return;
    if (step || startPaused) {
        StepAndStop(frame.m_engine);
        return;
    }
    CU_Run(frame.m_engine, CU_StackDepth(frame.m_engine));
    if (!wasStopped)
        CU_Stop(frame.m_engine);
}

} // namespace

void EditorFrame::RunCommand(int command)
{
    if (!m_engine)
        return;
    bool paused = false;
    switch (command) {
    case CMD_RUN:
        if (PrepareRun(*this, StartKind::Run, paused) == Prepared::Nothing)
            return;
        if (paused)
            StepAndStop(m_engine);
        else
            CU_Run(m_engine, m_run.trace ? -1 : 0);
        return;
    case CMD_STEP_INTO:
        if (PrepareRun(*this, StartKind::Step, paused) != Prepared::Nothing)
            StepAndStop(m_engine);
        return;
    case CMD_STEP_OVER:
        if (PrepareRun(*this, StartKind::Step, paused) == Prepared::Nothing)
            return;
        if (paused)
            StepAndStop(m_engine);
        else
            RunToStop(m_engine, CU_StackDepth(m_engine) + 1);
        return;
    case CMD_STEP_OUT:
        if (PrepareRun(*this, StartKind::Step, paused) != Prepared::Nothing)
            RunToStop(m_engine, CU_StackDepth(m_engine));
        return;
    case CMD_STEP_TO: StepTo(*this); return;
    case CMD_PAUSE: Pause(*this); return;
    case CMD_END: EndExecution(); return;
    case CMD_TOGGLE_BREAK: ToggleBreak(*this); return;
    case CMD_CLEAR_BREAKS: ClearAllBreaks(*this); return;
    case CMD_SET_NEXT: SetNextStatement(*this); return;
    case CMD_SHOW_NEXT: ShowNextStatement(); return;
    default: return;
    }
}

void EditorFrame::EndExecution()
{
    for (auto& sheet : m_sheets)
        sheet->running = false;
    if (!m_engine)
        return;
    CU_HaltAll(m_engine);
    // Notification 13 unloads every held module.
    if (m_run.loadedForDebugging)
        OnEngineNotify(13);
    if (Sheet* sheet = Current(); sheet && IsDoubleStar(*sheet))
        UnloadMacro(EngineName(*sheet));
}

bool EditorFrame::RunMacro(const std::string& name, bool step)
{
    if (!m_engine)
        return false;
    StoreShownText();
    const std::string macro = name.empty() ? (Current() ? EngineName(*Current()) : std::string()) : name;
    if (macro.empty())
        return false;
    const bool wasActive = !CU_IsIdle(m_engine);
    const bool wasStopped = CU_IsStopped(m_engine);
    m_run.startPause = -1;
    const bool started = CU_Start(m_engine, macro.c_str());
    const bool startPaused = m_run.startPause == 1;
    m_run.startPause = 0;
    if (!started)
        return false;
    SendBreakPoints(*this);
    RunStarted(*this, step, wasActive, wasStopped, startPaused);
    return true;
}

bool EditorFrame::RunThis(const std::string& text)
{
    if (!m_engine)
        return false;
    ++m_run.runThisCounter;
    m_run.runThisText = text.find('\r') == std::string::npos ? "Sub Main\r\n" + text + "\r\nEnd Sub" : text;
    return RunMacro("*RunThis" + std::to_string(m_run.runThisCounter) + "*", false);
}

bool EditorFrame::CheckCurrent()
{
    Sheet* sheet = Current();
    if (!m_engine || !sheet || IsLoaded(*sheet))
        return false;
    const int depthBefore = CU_StackDepth(m_engine);
    const size_t namesBefore = m_run.loadedNames.size();
    bool paused = false;
    if (PrepareRun(*this, StartKind::Check, paused) != Prepared::Started)
        return false;
    if (m_run.loadedNames.size() != namesBefore) {
        const std::string name = EngineName(*sheet);
        CU_Unload(m_engine, name.c_str());
        RemoveLoadedName(m_run, name);
    } else {
        CU_StackDepthPut(m_engine, depthBefore);
        sheet->running = false;
    }
    sheet->loaded = IsLoaded(*sheet);
    return true;
}

bool EditorFrame::LoadMacro(const std::string& name)
{
    if (!m_engine || !CU_Load(m_engine, name.c_str()))
        return false;
    AddLoadedName(m_run, name);
    SendBreakPoints(*this);
    UpdateCommandStates();
    return true;
}

bool EditorFrame::UnloadMacro(const std::string& name)
{
    if (!m_engine || !CU_Unload(m_engine, name.c_str()))
        return false;
    if (RemoveLoadedName(m_run, name) && !m_run.ModulesHeld())
        OnEngineNotify(kHeldIdle);
    UpdateCommandStates();
    return true;
}

void EditorFrame::OnEngineNotify(int code)
{
    // While modules are held loaded, the engine's own start and end of runs are not the frame's.
    const bool held = m_run.ModulesHeld();
    if (code == kHeldActive)
        code = 1;
    else if (code == kHeldIdle)
        code = 2;
    else if (held && (code == 1 || code == 2))
        code = -100;
    switch (code) {
    case 0: ShowRecordedError(); break;
    case 1:
        m_run.paused = false;
        m_hostErrorNumber = 0;
        ShowStatus(Text(IDS_RUNNING));
        RefreshKeywords();
        break;
    case 2:
        for (auto& sheet : m_sheets) {
            sheet->running = false;
            sheet->loaded = IsLoaded(*sheet);
        }
        m_run.paused = false;
        RefreshPanes();
        if (m_run.trace) {
            AppendToPane(0, "TRACE OFF\r\n");
            m_run.trace = false;
        }
        ClearErrorMark(*this);
        ClearExecutionMarks();
        if (m_run.evaluationDepth != kNoEvaluationDepth)
            ShowStatus(Text(IDS_IDLE));
        break;
    case 3:
        if (held && CU_IsIdle(m_engine))
            CU_Step(m_engine);
        m_run.paused = true;
        if (m_run.startPause == -1)
            m_run.startPause = 1;
        RefreshWatch();
        RefreshStack();
        // A stop at an error keeps the error's description in the status bar.
        if (m_run.evaluationDepth != kNoEvaluationDepth && !m_run.errorShown)
            ShowStatus(Text(IDS_PAUSED));
        break;
    case 4:
        m_run.paused = false;
        m_run.errorShown = false;
        ShowStatus(Text(IDS_RUNNING));
        ClearExecutionMarks();
        break;
    case 10:
        if (held) {
            std::erase_if(m_run.loadedNames, [&](const std::string& name) { return !CU_IsMacro(m_engine, name.c_str()); });
            if (!m_run.ModulesHeld())
                OnEngineNotify(kHeldIdle);
        }
        for (auto& sheet : m_sheets)
            sheet->loaded = sheet->loaded && IsLoaded(*sheet);
        break;
    case 11:
        SetForegroundWindow(IsTopLevel() ? m_window : GetAncestor(m_window, GA_ROOT));
        break;
    case 13:
        for (const std::string& name : std::exchange(m_run.loadedNames, {}))
            CU_Unload(m_engine, name.c_str());
        if (held)
            OnEngineNotify(kHeldIdle);
        break;
    case 14: RefreshKeywords(); break;
    case 1000: ClearExecutionMarks(); break;
    default: break;
    }
    if (code != 15) {
        UpdateCommandStates();
        UpdateCaption();
        Layout();
    }
    if (code >= 0 && code != 1000)
        NotifyHost(code);
}

void EditorFrame::ShowRecordedError()
{
    if (m_callbacks.commandFilter && m_callbacks.commandFilter(m_window, HOST_SHOW_ERROR))
        return;
    if (!m_engine)
        return;
    const std::string description = TakeEngineText(CU_ErrorDesc(m_engine));
    if (description.empty())
        return;
    const std::string macro = TakeEngineText(CU_ErrorMacroName(m_engine));
    const int line = CU_ErrorLineNum(m_engine);
    const int offset = CU_ErrorOffset(m_engine);
    const int index = FindSheet(Unquoted(macro));
    if (index >= 0 && ShowSheet(index) && Current()->document) {
        Sheet& sheet = *Current();
        const int codeLine = CodeLine(sheet, line);
        if (codeLine >= 0 && codeLine < sheet.document->LineCount()) {
            SendMessageA(m_editor, TAM_MARKERROR, 0, codeLine);
            const int column = offset < 0 ? 0 : offset;
            sheet.document->MoveCaret(TextPosition{codeLine, column}, false);
            SendMessageA(m_editor, TAM_SCROLLCARET, 0, 0);
        }
        ShowStatus(description, true);
        m_run.errorShown = true;
        return;
    }
    Beep(MB_ICONASTERISK);
    std::string errorLine = TakeEngineText(CU_ErrorLine(m_engine));
    const size_t at = offset < 0 ? 0 : std::min(errorLine.size(), static_cast<size_t>(offset));
    errorLine.insert(at, Text(IDS_HERE));
    ShowText(macro + "#" + std::to_string(line) + ": " + errorLine + "\n" + description, MB_OK | MB_ICONEXCLAMATION);
}

void EditorFrame::ShowNextStatement()
{
    if (!m_engine || !CU_IsStopped(m_engine))
        return;
    const std::string macro = Unquoted(TakeEngineText(CU_MacroName(m_engine)));
    const int index = FindSheet(macro);
    if (index < 0 || !ShowSheet(index) || !Current()->document)
        return;
    const int codeLine = CodeLine(*Current(), CU_LineNum(m_engine));
    if (codeLine >= 0 && codeLine < Current()->document->LineCount())
        SendMessageA(m_editor, TAM_MARKCURRENT, 0, codeLine);
}

BSTR EditorFrame::ReadMacro(IDispatch* unit, const std::wstring& wideName)
{
    const std::string name = NarrowText(wideName);
    if (name == "*HiddenCode*")
        return AllocText(m_run.hiddenCode);
    if (name == "*RunThis" + std::to_string(m_run.runThisCounter) + "*")
        return AllocText(m_run.runThisText);
    const int index = FindSheet(Unquoted(name));
    if (index >= 0) {
        StoreShownText();
        const std::string text = WholeTextOf(*m_sheets[index]);
        return AllocText(text.empty() ? std::string(1, '\x1A') : text);
    }
    if (m_callbacks.readMacro && (ProjectMode() || name.rfind('*', 0) == 0)) {
        const int length = m_callbacks.readMacro(m_window, name.c_str(), nullptr, 0);
        if (length > 0) {
            std::string text(static_cast<size_t>(length) + 1, '\0');
            const int read = m_callbacks.readMacro(m_window, name.c_str(), text.data(), length + 1);
            if (read > 0) {
                text.resize(std::min(static_cast<size_t>(read), static_cast<size_t>(length)));
                return AllocText(text);
            }
        }
    }
    return m_engine ? ReadThroughDefault(m_engine, unit, wideName) : nullptr;
}

void EditorFrame::MarkEngineBreakPoints(Sheet& sheet)
{
    if (!m_engine || !sheet.document)
        return;
    const std::string name = EngineName(sheet);
    if (!CU_IsMacro(m_engine, name.c_str()))
        return;
    const bool temporary = lstrcmpiA(m_run.temporaryMacro.c_str(), name.c_str()) == 0;
    for (int index = 0;; ++index) {
        const int line = CU_BreakLineNum(m_engine, name.c_str(), index);
        if (line == 0)
            break;
        const int codeLine = CodeLine(sheet, line);
        if ((temporary && line == m_run.temporaryLine) || codeLine < 0 || codeLine >= sheet.document->LineCount())
            continue;
        sheet.document->SetBreakPoint(codeLine, true);
    }
    sheet.loaded = true;
}

bool EditorFrame::EngineHoldsName(const std::string& name) const
{
    if (!m_engine)
        return false;
    const std::string quoted = "\"" + name + "\"";
    return CU_IsMacroActive(m_engine, quoted.c_str()) || IsHeldLoaded(m_run, quoted);
}

void EditorFrame::RefreshKeywords()
{
    Sheet* sheet = Current();
    if (!m_engine || !sheet || PlainEditing())
        return;
    if (BuildKeywordSetsFromEngine(m_keywords, *reinterpret_cast<_CodeUnit*>(m_engine), EngineName(*sheet),
                                   m_extraKeywords, m_colours))
        SetTextAreaKeywords(m_editor, &m_keywords);
}

bool EditorFrame::MayEditRunningSheet()
{
    Sheet* sheet = Current();
    if (!sheet || !sheet->document || !IsLoaded(*sheet))
        return true;
    if (m_readOnly) {
        ShowStatus(Text(IDS_READ_ONLY));
        return false;
    }
    if (ShowMessage(IDS_END_TO_EDIT, MB_YESNO | MB_ICONQUESTION) != IDYES)
        return false;
    Dispatch(CMD_END, false);
    if (!IsLoaded(*sheet) && !m_designDisplay)
        Dispatch(CMD_DESIGN_MODE, false);
    return !IsLoaded(*sheet);
}

void EditorFrame::EditEventCode(const std::string& request)
{
    const size_t bar = request.find('|');
    const std::string macro = Unquoted(request.substr(0, bar));
    const std::string handler = bar == std::string::npos ? std::string() : request.substr(bar + 1);
    if (!macro.empty()) {
        const int index = FindSheet(macro);
        if (!(index >= 0 ? ShowSheet(index) : OpenFile(macro)))
            return;
    }
    Sheet* sheet = Current();
    if (!sheet || !sheet->document || handler.empty())
        return;
    TextDocument& document = *sheet->document;
    for (const ProcedureEntry& entry : ListProcedures(document)) {
        if (lstrcmpiA(entry.name.c_str(), handler.c_str()) == 0) {
            document.MoveCaret(TextPosition{entry.line, 0}, false);
            SendMessageA(m_editor, TAM_SCROLLCARET, 0, 0);
            return;
        }
    }
    if (m_readOnly) {
        ShowStatus(Text(IDS_PROC_NOT_DEFINED));
        return;
    }
    InsertHandler(document, "Private Sub " + handler + "()");
}

} // namespace brannoc::ide
