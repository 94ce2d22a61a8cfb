// Frame messages that hand the host the engine's objects and exchange data with it: the application
// object as an extension, fire and handler objects, module instances, the break points of the current
// sheet as an array, line and character positions, and a few texts.
#include "ide/FrameRunMessages.h"

#include "ide/EditorFrameState.h"
#include "ide/EngineLink.h"
#include "ide/ReferencesDialog.h"
#include "ide/ObjectBrowser.h"

#include "brannoc.h"

#include <algorithm>

namespace brannoc::ide {

namespace {

LRESULT ObjectResult(IDispatch* object) { return reinterpret_cast<LRESULT>(object); }

// The absolute lines of the current sheet's break point marks, as a VT_I4 array.
LRESULT GetBreakPoints(EditorFrame& frame, LPARAM lParam)
{
    auto* out = reinterpret_cast<SAFEARRAY**>(lParam);
    Sheet* sheet = frame.Current();
    if (!out || !sheet || !sheet->document)
        return 1;
    std::vector<LONG> lines;
    for (int line = 0; line < sheet->document->LineCount(); ++line)
        if (sheet->document->BreakPoint(line))
            lines.push_back(AbsoluteLine(*sheet, line));
    SAFEARRAY* array = SafeArrayCreateVector(VT_I4, 0, static_cast<ULONG>(lines.size()));
    if (!array)
        return 1;
    for (LONG i = 0; i < static_cast<LONG>(lines.size()); ++i)
        SafeArrayPutElement(array, &i, &lines[static_cast<size_t>(i)]);
    *out = array;
    return 0;
}

bool ElementLine(SAFEARRAY* array, VARTYPE kind, LONG index, LONG& line)
{
    if (kind == VT_I2) {
        SHORT value = 0;
        if (FAILED(SafeArrayGetElement(array, &index, &value)))
            return false;
        line = value;
        return true;
    }
    if (kind == VT_I4)
        return SUCCEEDED(SafeArrayGetElement(array, &index, &line));
    VARIANT value;
    VariantInit(&value);
    if (FAILED(SafeArrayGetElement(array, &index, &value)))
        return false;
    const bool converted = SUCCEEDED(VariantChangeType(&value, &value, 0, VT_I4));
    line = converted ? value.lVal : 0;
    VariantClear(&value);
    return converted;
}

// Replaces the current sheet's marks with the array's absolute lines (and the engine's, when the sheet's
// macro is taken in).
LRESULT SetBreakPoints(EditorFrame& frame, LPARAM lParam)
{
    auto* array = reinterpret_cast<SAFEARRAY*>(lParam);
    Sheet* sheet = frame.Current();
    VARTYPE kind = VT_EMPTY;
    if (!array || !sheet || !sheet->document || SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetVartype(array, &kind)) ||
        (kind != VT_I2 && kind != VT_I4 && kind != VT_VARIANT))
        return 1;
    LONG low = 0, high = -1;
    SafeArrayGetLBound(array, 1, &low);
    SafeArrayGetUBound(array, 1, &high);
    const bool loaded = frame.IsLoaded(*sheet);
    const std::string macro = EngineName(*sheet);
    TextDocument& document = *sheet->document;
    for (int line = 0; line < document.LineCount(); ++line) {
        if (!document.BreakPoint(line))
            continue;
        document.SetBreakPoint(line, false);
        if (loaded)
            CU_ToggleBreak(frame.m_engine, macro.c_str(), AbsoluteLine(*sheet, line));
    }
    for (LONG index = low; index <= high; ++index) {
        LONG line = 0;
        const int codeLine = ElementLine(array, kind, index, line) ? CodeLine(*sheet, line) : -1;
        if (codeLine < 0 || codeLine >= document.LineCount() || document.BreakPoint(codeLine))
            continue;
        document.SetBreakPoint(codeLine, true);
        if (loaded)
            CU_ToggleBreak(frame.m_engine, macro.c_str(), line);
    }
    InvalidateRect(frame.m_editor, nullptr, FALSE);
    return 0;
}

LRESULT AddApplicationObject(EditorFrame& frame, WPARAM wParam, LPARAM lParam)
{
    auto* object = reinterpret_cast<IDispatch*>(lParam);
    if (!frame.m_engine || !object)
        return 1;
    const std::string name = (wParam == 1 ? "{WithEvents}" : "") + frame.m_run.appPrefix;
    return CU_AddExtension(frame.m_engine, name.c_str(), object) ? 0 : 1;
}

} // namespace

bool HostDataMessage(EditorFrame& frame, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result)
{
    IUnknown* engine = frame.m_engine;
    switch (message) {
    case FM_GETAPPPREFIX: result = CopyOutString(frame.m_run.appPrefix, wParam, lParam); return true;
    case FM_SETAPPPREFIX: frame.m_run.appPrefix = StringParameter(lParam); result = 0; return true;
    case FM_GETHOSTSTRING: result = CopyOutString(frame.m_run.hostString, wParam, lParam); return true;
    case FM_SETHOSTSTRING: frame.m_run.hostString = StringParameter(lParam); result = 0; return true;
    case FM_OAVERSION: {
        const char* version = OA_Version();
        result = CopyOutString(version ? version : "", wParam, lParam);
        return true;
    }
    case FM_STRING: {
        // wParam carries the id, so the caller's buffer is taken to be large enough.
        const std::string text = frame.Text(static_cast<unsigned>(wParam));
        result = CopyOutString(text, text.size() + 1, lParam);
        return true;
    }
    case FM_GETBREAKS: result = GetBreakPoints(frame, lParam); return true;
    case FM_SETBREAKS: result = SetBreakPoints(frame, lParam); return true;
    case FM_EDITHANDLER: frame.EditEventCode(StringParameter(lParam)); result = 0; return true;
    case FM_LINESTART: {
        const LRESULT start = SendMessageA(frame.m_editor, EM_LINEINDEX, static_cast<WPARAM>(lParam - 1), 0);
        result = start < 0 ? -1 : start;
        return true;
    }
    case FM_LINEOFCHAR: result = SendMessageA(frame.m_editor, EM_LINEFROMCHAR, static_cast<WPARAM>(lParam), 0) + 1; return true;
    case FM_ADDAPPOBJECT: result = AddApplicationObject(frame, wParam, lParam); return true;
    case FM_REFERENCES: result = ShowMacroReferencesDialog(frame, StringParameter(lParam)) ? 0 : 1; return true;
    case FM_SETREFERENCESCALLBACK:
        frame.m_callbacks.setReferences = reinterpret_cast<FrameSetReferencesCallback>(lParam);
        result = 0;
        return true;
    case FM_ATTACH: result = frame.AttachHostObject(reinterpret_cast<IDispatch*>(lParam)) ? 0 : 1; return true;
    case FM_DETACH: result = frame.DetachHost(lParam == 0) ? 0 : 1; return true;
    case FM_BROWSE: result = ShowObjectBrowser(frame, reinterpret_cast<const char*>(lParam)) ? 0 : 1; return true;
    default: break;
    }
    if (!engine) {
        switch (message) {
        case FM_FIRE: case FM_CREATEHANDLER: case FM_CREATEHANDLERS: case FM_MACROINSTANCE: case FM_RUNSPECIAL:
            result = 0;
            return true;
        default: return false;
        }
    }
    switch (message) {
    case FM_FIRE: result = ObjectResult(CU_Fire(engine, lParam != 0)); return true;
    case FM_CREATEHANDLER: result = ObjectResult(CU_CreateHandler(engine, StringParameter(lParam).c_str())); return true;
    case FM_CREATEHANDLERS:
        result = ObjectResult(CU_CreateHandlers(engine, StringParameter(lParam).c_str(), reinterpret_cast<IDispatch*>(wParam)));
        return true;
    case FM_MACROINSTANCE: result = ObjectResult(CU_Macro(engine, StringParameter(lParam).c_str(), wParam != 0)); return true;
    case FM_RUNSPECIAL: result = CU_Run(engine, 0x8000 + (lParam & 0xFF)); return true;
    default: return false;
    }
}

} // namespace brannoc::ide
