// bbrun: runs a macro file from the command line.
//   bbrun FILE [command text]
// Debug.Print output goes to stdout (also that of terminators of class instances that module-level
// variables hold when the macro is unloaded after its run); a compile error or untrapped run-time error
// is written to stderr as
// "FILE:LINE:COL: error NUMBER: DESCRIPTION" followed by the offending line, and the exit code is 1.
// Bad arguments or a missing file exit with 2.
#include "../common/ConsoleCallBack.h"

#include <fcntl.h>
#include <io.h>

namespace {

using namespace console;

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
    _CodeUnit* engine = CreateEngine();
    if (!engine) {
        WriteOut(stderr, "bbrun: cannot load the engine library brannoc.dll\n");
        return 2;
    }

    ConsoleCallBack callBack;
    engine->SetCallBack(&callBack);
    BSTR requestText = SysAllocString(StartRequest(file, command).c_str());
    VARIANT_BOOL started = VARIANT_FALSE;
    engine->Start(requestText, &started);
    SysFreeString(requestText);
    if (started != VARIANT_FALSE && !callBack.error.seen) {
        VARIANT_BOOL active = VARIANT_FALSE;
        engine->Run(0, &active);
    }
    EndSession(engine, file);

    const FirstError& error = callBack.error;
    if (!error.seen && started != VARIANT_FALSE)
        return 0;
    WriteErrorReport(error, file);
    return 1;
}
