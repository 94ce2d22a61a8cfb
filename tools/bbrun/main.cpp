// bbrun: runs a macro file from the command line.
//   bbrun FILE [command text]
// Debug.Print output goes to stdout (also that of terminators of class instances that module-level
// variables hold when the macro is unloaded after its run); a compile error or untrapped run-time error
// is written to stderr as
// "FILE:LINE:COL: error NUMBER: DESCRIPTION" followed by the offending line, and the exit code is 1.
// Bad arguments or a missing file exit with 2.
// bbrun is itself a host of the embedding interface: it drives the engine through the exported CU_
// functions and gives it a callback made of plain functions (CB_CreateCallBack2) with its session as
// the user data.
#include "../common/ConsoleCallBack.h"

#include <fcntl.h>
#include <io.h>

namespace {

using namespace console;

// What the callback functions share: the engine, the texts served so far and the first error.
struct Session {
    void* unit = nullptr;
    FirstError error;
    struct MacroText {
        std::string name;
        std::wstring text;
    };
    std::vector<MacroText> texts;

    const std::wstring* TextOf(const std::string& name) const
    {
        for (const MacroText& macro : texts)
            if (lstrcmpiA(macro.name.c_str(), name.c_str()) == 0)
                return &macro.text;
        return texts.size() == 1 ? &texts.front().text : nullptr;
    }
};

Session& SessionOf(void* userData) { return *static_cast<Session*>(userData); }

// An ANSI result of the CU_ family as text; the string is freed.
std::string TakeAnsi(BSTR text)
{
    std::string result = text ? std::string(reinterpret_cast<const char*>(text), OA_SysStringLenA(text)) : std::string();
    OA_SysFreeStringA(text);
    return result;
}

BSTR AnswerAnsi(const std::string& text) { return OA_SysAllocStringLenA(text.data(), static_cast<UINT>(text.size())); }

// The text as it comes, each CR LF written as LF. The text is the engine's byte-length string, so a
// character 0 that a macro prints is written too.
void __stdcall PrintToStdout(IDispatch*, LPCSTR text, void*)
{
    if (!text)
        return;
    const UINT length = OA_SysStringLenA(reinterpret_cast<BSTR>(const_cast<char*>(text)));
    std::string converted;
    converted.reserve(length);
    for (UINT i = 0; i < length; ++i) {
        if (!(text[i] == '\r' && i + 1 < length && text[i + 1] == '\n'))
            converted.push_back(text[i]);
    }
    WriteOut(stdout, converted);
}

void __stdcall NoEvents(IDispatch*, void*) {}

LONG __stdcall NoWindow(void*) { return 0; }

// Names in '#Uses are relative to the folder of the using file.
BSTR __stdcall MapRelativeToUser(IDispatch*, LPCSTR macroName, LPCSTR baseName, void*)
{
    std::wstring name = Wide(macroName ? macroName : "");
    const std::wstring base = Wide(baseName ? baseName : "");
    const std::size_t slash = base.find_last_of(L"/\\");
    if (!IsAbsolute(name) && slash != std::wstring::npos)
        name = base.substr(0, slash + 1) + name;
    return AnswerAnsi(Ansi(name));
}

BSTR __stdcall ReadFromDisk(IDispatch*, LPCSTR macroName, void* userData)
{
    const std::string name = macroName ? macroName : "";
    std::string bytes;
    if (!ReadFileBytes(Wide(name), bytes))
        return nullptr; // no text: the engine reports a missing macro
    // An empty file is a macro of one empty line, so that the engine says what it lacks (its Main)
    // instead of reporting a missing macro.
    const std::string source = bytes.empty() ? std::string("\r\n") : WithCarriageReturns(bytes);
    SessionOf(userData).texts.push_back({name, Wide(source)});
    return AnswerAnsi(source);
}

// The first error shown (notification 0) is kept for the final report.
void __stdcall RecordError(IDispatch*, LONG code, void* userData)
{
    Session& session = SessionOf(userData);
    FirstError& error = session.error;
    if (code != 0 || error.seen)
        return;
    error.seen = true;
    error.number = CU_ErrorNumber(session.unit);
    error.description = Wide(TakeAnsi(CU_ErrorDesc(session.unit)));
    const std::string macroName = TakeAnsi(CU_ErrorMacroName(session.unit));
    error.macroName = Wide(macroName);
    error.lineText = Wide(TakeAnsi(CU_ErrorLine(session.unit)));
    const std::wstring* moduleText = session.TextOf(macroName);
    error.line = TrueLineNumber(moduleText ? *moduleText : std::wstring(), CU_ErrorLineNum(session.unit), error.lineText);
    error.offset = CU_ErrorOffset(session.unit);
}

int Usage()
{
    WriteOut(stderr, "usage: bbrun FILE [command text]\n");
    return 2;
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    if (argc < 2 || argv[1][0] == L'\0' || argv[1][0] == L'-')
        return Usage();
    const std::wstring file = argv[1];
    std::wstring command;
    for (int i = 2; i < argc; ++i)
        command += (i > 2 ? L" " : L"") + std::wstring(argv[i]);
    if (GetFileAttributesW(file.c_str()) == INVALID_FILE_ATTRIBUTES) {
        WriteOut(stderr, "bbrun: cannot open " + Ansi(file) + "\n");
        return Usage();
    }

    OleInitialize(nullptr);
    Session session;
    session.unit = CU_CreateCodeUnit();
    CB_FUNCTIONS2 functions{PrintToStdout, NoEvents, MapRelativeToUser, RecordError, ReadFromDisk, NoWindow};
    IDispatch* callBack = session.unit ? CB_CreateCallBack2(nullptr, &functions, &session) : nullptr;
    if (!callBack) {
        WriteOut(stderr, "bbrun: cannot create an engine object of brannoc.dll\n");
        return 2;
    }
    CU_SetCallBack(session.unit, callBack);
    const BOOL started = CU_Start(session.unit, Ansi(StartRequest(file, command)).c_str());
    if (started && !session.error.seen)
        CU_Run(session.unit, 0);

    // Stop what still runs, unload the macro while the callback is still set (so that the terminators
    // of class instances that its module-level variables hold still print), then let go of the engine.
    CU_HaltAll(session.unit);
    CU_Unload(session.unit, Ansi(file).c_str());
    CU_SetCallBack(session.unit, nullptr);
    OA_Release(reinterpret_cast<IUnknown*>(callBack));
    OA_Release(static_cast<IUnknown*>(session.unit));

    if (!session.error.seen && started)
        return 0;
    WriteErrorReport(session.error, file);
    return 1;
}
