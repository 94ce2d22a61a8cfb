// The frame messages by which a host drives runs and reads the engine's state: starting macros by name
// or from a text, loading and unloading, pausing and ending, the evaluation expression, the hidden code
// and the last error.
#include "ide/FrameRunMessages.h"

#include "ide/CommandTable.h"
#include "ide/EditorFrameState.h"
#include "ide/EngineLink.h"
#include "ide/TextArea.h"

#include "brannoc.h"

#include <algorithm>
#include <cstdio>

namespace brannoc::ide {

namespace {

// "v", the engine's version up to its "/", " [", the language id plus 0x1000 in hexadecimal without its
// first digit, "]".
std::string VersionText(const EditorFrame& frame)
{
    std::string version = frame.m_engine ? TakeEngineText(CU_Version(frame.m_engine)) : "?.?.??";
    version = version.substr(0, version.find('/'));
    char language[16];
    std::snprintf(language, sizeof(language), "%X", static_cast<unsigned>(OA_NlsGetLangID()) + 0x1000u);
    return "v" + version + " [" + (language + 1) + "]";
}

// The messages that need the engine, answered without one: 1 for those that answer 0 on success.
bool FailsWithoutEngine(UINT message, LRESULT& result)
{
    switch (message) {
    case FM_RUNMACRO: case FM_RUNTHIS: case FM_LOADMACRO: case FM_UNLOADMACRO: case FM_ISLOADED: case FM_ISACTIVE:
    case FM_SETHIDDENCODE:
        result = 1;
        return true;
    case FM_ERRORMACRO: case FM_ERRORLINE: case FM_ERROROFFSET: case FM_ERRORDESC: case FM_EVALUATE:
    case FM_EVALUATEPUT: case FM_ISSTOPPED: case FM_PAUSE: case FM_STARTEND: case FM_CHECK: case FM_ERRORHELPCONTEXT:
    case FM_ERRORHELPFILE: case FM_ERRORNUMBER: case FM_ERRORSOURCE: case FM_CURRENTMACRO:
        result = 0;
        return true;
    default: return false;
    }
}

LRESULT ReplaceRunningCode(EditorFrame& frame, LPARAM lParam)
{
    Sheet* sheet = frame.Current();
    if (!sheet || sheet->running || (frame.IsLoaded(*sheet) && !frame.EngineIdle()))
        return 1;
    if (!frame.QuerySave(*sheet, PromptKind::CanCancel))
        return 1;
    frame.ReplaceCode(*sheet, StringParameter(lParam));
    frame.UpdateCaption();
    return 0;
}

LRESULT SetHiddenCode(EditorFrame& frame, WPARAM wParam, LPARAM lParam)
{
    if (!(wParam & 2))
        frame.m_run.hiddenCode = StringParameter(lParam);
    if (!(wParam & 1) && frame.m_engine && !CU_Load(frame.m_engine, "\"*HiddenCode*\""))
        return 1;
    return 0;
}

} // namespace

bool RunControlMessage(EditorFrame& frame, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result)
{
    IUnknown* engine = frame.m_engine;
    RunState& run = frame.m_run;
    switch (message) {
    case FM_GETEXPRESSION: result = CopyOutString(run.expression, wParam, lParam); return true;
    case FM_SETEXPRESSION: run.expression = StringParameter(lParam); result = 0; return true;
    case FM_GETHIDDENCODE: result = CopyOutString(run.hiddenCode, wParam, lParam); return true;
    case FM_ISBUSY: result = frame.EngineIdle() ? 0 : 1; return true;
    case FM_GETDEBUGLOAD: result = run.loadedForDebugging; return true;
    case FM_SETDEBUGLOAD: run.loadedForDebugging = lParam != 0; frame.UpdateCommandStates(); result = 0; return true;
    case FM_SETDOEVENTSCALLBACK:
        frame.m_callbacks.doEvents = reinterpret_cast<FrameDoEventsCallback>(lParam);
        result = 0;
        return true;
    case FM_SETDEBUGTRACECALLBACK:
        frame.m_callbacks.debugTrace = reinterpret_cast<FrameDebugTraceCallback>(lParam);
        result = 0;
        return true;
    case FM_SETWINDOWCALLBACK:
        if (wParam == 0)
            frame.m_callbacks.window = reinterpret_cast<FrameWindowCallback>(lParam);
        else if (wParam == 1)
            frame.m_callbacks.modalOwner = reinterpret_cast<FrameModalOwnerCallback>(lParam);
        else if (wParam == 2)
            frame.m_callbacks.designMode = reinterpret_cast<FrameDesignModeCallback>(lParam);
        result = 0;
        return true;
    case FM_SETREADMACROCALLBACK:
        frame.m_callbacks.readMacro = reinterpret_cast<FrameReadMacroCallback>(lParam);
        result = 0;
        return true;
    case FM_SETPARSEPROPERTIESCALLBACK:
        frame.m_callbacks.parseProperties = reinterpret_cast<FrameParsePropertiesCallback>(lParam);
        result = 0;
        return true;
    case FM_SETNEWINSTANCECALLBACK:
        frame.m_callbacks.newInstance = reinterpret_cast<FrameNewInstanceCallback>(lParam);
        result = 0;
        return true;
    case FM_VERSION: result = CopyOutString(VersionText(frame), wParam, lParam); return true;
    case FM_REPLACECODE: result = ReplaceRunningCode(frame, lParam); return true;
    case FM_GETCOLOUR:
        result = wParam < EditorColours::kCount ? static_cast<LRESULT>(frame.m_colours.Entry(static_cast<EditorColour>(wParam))) : 0;
        return true;
    case FM_SETCOLOUR:
        if (wParam >= EditorColours::kCount) {
            result = 1;
            return true;
        }
        frame.m_colours.SetEntry(static_cast<EditorColour>(wParam), static_cast<DWORD>(lParam));
        if (!frame.PlainEditing())
            SetTextAreaColours(frame.m_editor, frame.m_colours);
        // Keyword classes switched on or off change the sets.
        frame.RefreshKeywords();
        InvalidateRect(frame.m_editor, nullptr, TRUE);
        result = 0;
        return true;
    case FM_REPORTERROR: frame.ReportHostError(reinterpret_cast<IDispatch*>(lParam)); result = 0; return true;
    case FM_GETEXTRAKEYWORDS: result = CopyOutString(frame.m_extraKeywords, wParam, lParam); return true;
    case FM_SETEXTRAKEYWORDS:
        frame.m_extraKeywords = StringParameter(lParam);
        if (std::count(frame.m_extraKeywords.begin(), frame.m_extraKeywords.end(), '|') < 2)
            frame.m_extraKeywords += frame.m_extraKeywords.find('|') == std::string::npos ? "||" : "|";
        frame.RefreshKeywords();
        result = 0;
        return true;
    default: break;
    }
    if (!engine)
        return FailsWithoutEngine(message, result);
    switch (message) {
    case FM_ERRORMACRO: result = CopyOutString(TakeEngineText(CU_ErrorMacroName(engine)), wParam, lParam); return true;
    case FM_ERRORLINE: result = CU_ErrorLineNum(engine); return true;
    case FM_ERROROFFSET: result = CU_ErrorOffset(engine) + 1; return true;
    case FM_ERRORDESC: result = CopyOutString(TakeEngineText(CU_ErrorDesc(engine)), wParam, lParam); return true;
    case FM_ERRORHELPCONTEXT: result = CU_ErrorHelpContext(engine); return true;
    case FM_ERRORHELPFILE: result = CopyOutString(TakeEngineText(CU_ErrorHelpFile(engine)), wParam, lParam); return true;
    case FM_ERRORNUMBER: result = frame.m_hostErrorNumber ? frame.m_hostErrorNumber : CU_ErrorNumber(engine); return true;
    case FM_ERRORSOURCE: result = CopyOutString(TakeEngineText(CU_ErrorSource(engine)), wParam, lParam); return true;
    case FM_CURRENTMACRO: result = CopyOutString(TakeEngineText(CU_MacroName(engine)), wParam, lParam); return true;
    case FM_EVALUATE: {
        // The value is worked out when the length is asked for, and copied out from there.
        if (!lParam)
            run.expressionValue = TakeEngineText(CU_Evaluate(engine, run.expression.c_str(), run.evaluationDepth));
        result = CopyOutString(run.expressionValue, wParam, lParam);
        return true;
    }
    case FM_EVALUATEPUT:
        CU_EvaluatePut(engine, run.expression.c_str(), run.evaluationDepth, StringParameter(lParam).c_str());
        result = 0;
        return true;
    case FM_SETHIDDENCODE: result = SetHiddenCode(frame, wParam, lParam); return true;
    case FM_ISSTOPPED: result = frame.EngineStopped() || run.startPause == 1 ? 1 : 0; return true;
    case FM_RUNMACRO: result = frame.RunMacro(StringParameter(lParam), wParam == 1) ? 0 : 1; return true;
    case FM_RUNTHIS: result = frame.RunThis(StringParameter(lParam)) ? 0 : 1; return true;
    case FM_PAUSE:
        if (lParam) {
            frame.RunCommand(CMD_PAUSE);
        } else {
            CU_Continue(engine);
            CU_Run(engine, 0);
        }
        result = 0;
        return true;
    case FM_STARTEND:
        frame.RunCommand(lParam ? CMD_RUN : CMD_END);
        result = 0;
        return true;
    case FM_CHECK: result = frame.CheckCurrent() ? 1 : 0; return true;
    case FM_LOADMACRO: result = frame.LoadMacro(StringParameter(lParam)) ? 0 : 1; return true;
    case FM_UNLOADMACRO: result = frame.UnloadMacro(StringParameter(lParam)) ? 0 : 1; return true;
    case FM_ISLOADED: result = CU_IsMacro(engine, StringParameter(lParam).c_str()) ? 0 : 1; return true;
    case FM_ISACTIVE: result = CU_IsMacroActive(engine, StringParameter(lParam).c_str()) ? 0 : 1; return true;
    default: return false;
    }
}

} // namespace brannoc::ide
