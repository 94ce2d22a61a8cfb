// bbbench: runs a macro file like bbrun and measures it.
//   bbbench FILE [command text]
// Debug.Print output goes to stdout. The last line on stderr is
//   "bbbench: compile SECONDS run SECONDS cpu SECONDS"
// where compile covers reading and compiling the module (Start) and run covers running Main to its end
// (Run), each measured with QueryPerformanceCounter inside this process, so that neither the start of
// the process nor the loading of the engine library is counted; cpu is the processor time the thread
// used for both (the platform's thread times, whose resolution is the scheduler's tick). Errors are reported as bbrun reports
// them, with exit code 1; bad arguments or a missing file exit with 2.
#include "../common/ConsoleCallBack.h"

#include <fcntl.h>
#include <io.h>

#include <cstdio>

namespace {

using namespace console;

double SecondsBetween(const LARGE_INTEGER& from, const LARGE_INTEGER& to)
{
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(to.QuadPart - from.QuadPart) / static_cast<double>(frequency.QuadPart);
}

// Processor time (user and kernel) that this thread has used, in seconds.
double ThreadSeconds()
{
    FILETIME created, exited, kernel, user;
    if (!GetThreadTimes(GetCurrentThread(), &created, &exited, &kernel, &user))
        return 0;
    auto seconds = [](const FILETIME& time) {
        return static_cast<double>((static_cast<ULONGLONG>(time.dwHighDateTime) << 32) | time.dwLowDateTime) / 1e7;
    };
    return seconds(kernel) + seconds(user);
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    if (argc < 2 || argv[1][0] == L'\0' || argv[1][0] == L'-') {
        WriteOut(stderr, "usage: bbbench FILE [command text]\n");
        return 2;
    }
    const std::wstring file = argv[1];
    std::wstring command;
    for (int i = 2; i < argc; ++i)
        command += (i > 2 ? L" " : L"") + std::wstring(argv[i]);
    if (GetFileAttributesW(file.c_str()) == INVALID_FILE_ATTRIBUTES) {
        WriteOut(stderr, "bbbench: cannot open " + Ansi(file) + "\n");
        return 2;
    }

    OleInitialize(nullptr);
    _CodeUnit* engine = CreateEngine();
    if (!engine) {
        WriteOut(stderr, "bbbench: cannot load the engine library brannoc.dll\n");
        return 2;
    }
    ConsoleCallBack callBack;
    engine->SetCallBack(&callBack);
    BSTR requestText = SysAllocString(StartRequest(file, command).c_str());

    LARGE_INTEGER beforeStart, afterStart, afterRun;
    VARIANT_BOOL started = VARIANT_FALSE;
    const double processorAtStart = ThreadSeconds();
    QueryPerformanceCounter(&beforeStart);
    engine->Start(requestText, &started);
    QueryPerformanceCounter(&afterStart);
    afterRun = afterStart;
    if (started != VARIANT_FALSE && !callBack.error.seen) {
        VARIANT_BOOL active = VARIANT_FALSE;
        engine->Run(0, &active);
        QueryPerformanceCounter(&afterRun);
    }
    const double processor = ThreadSeconds() - processorAtStart;
    SysFreeString(requestText);
    EndSession(engine, file);

    const FirstError& error = callBack.error;
    if (error.seen || started == VARIANT_FALSE) {
        WriteErrorReport(error, file);
        return 1;
    }
    char timing[128];
    std::snprintf(timing, sizeof timing, "bbbench: compile %.6f run %.6f cpu %.6f\n",
                  SecondsBetween(beforeStart, afterStart), SecondsBetween(afterStart, afterRun), processor);
    WriteOut(stderr, timing);
    return 0;
}
