// bbfuzz: compiles and runs many mutated macros in one process, with the engine's compiler and interpreter
// loaded once. The macros are mutations of the golden scripts (lines deleted, duplicated and swapped,
// tokens swapped, two scripts spliced, keywords and operators inserted, numbers changed to limits); each
// runs under a statement budget, so none can hang the run. Findings are written to a folder and the run
// goes on:
//   - a crash (an exception the engine let through): the macro is written as crash.bas and the program
//     ends with exit code 3;
//   - a macro still running at the slow limit is asked to end through the engine's own control action
//     (the End a host asks for, taken between statements) and written as slow-N.bas: a note, not a
//     finding; one still running at three times that limit did not end when asked (a hang inside one
//     statement): hang.bas, and the program ends with exit code 4;
//   - an error outside the system's numbers (a compile error outside 10000 to 10902 and 11000, or a
//     run-time error without its message): number-N.bas;
//   - a leak: the process's private memory grows past the leak margin over the run;
//   - a process that dies without a word (no stack left for the crash handler): running.bas, kept in
//     the findings folder while each macro runs and removed when the run ends, holds its macro.
// Usage: bbfuzz [--seed N] [--count N | --hours H] [--corpus DIR] [--findings DIR] [--budget STEPS]
//               [--slow SECONDS] [--replay FILE] [--refuse-end 1] [--skip N]
// --replay runs the one macro FILE without mutations (once, or count times), to reproduce a finding;
// --skip N makes (without running) the seed's first N macros, so that the macros before a crash's
// macro number (written in crash.bas) can be run again;
// --refuse-end makes the host ignore requests to end, which tests that the watchdog reports a hang.
// Exit code 0 when nothing was found, 1 with findings, 2 for bad arguments.
#include "exec/Interpreter.h"
#include "exec/InterpreterHost.h"
#include "exec/ModuleInstance.h"
#include "frontend/BodyCompiler.h"
#include "frontend/Compiler.h"
#include "Journal.h"

#include <windows.h>
#include <psapi.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace brannoc;

struct Options {
    unsigned seed = 1;
    long long count = 2000;
    double hours = 0;
    std::string corpus = "tests/golden";
    std::string findings = "fuzz-findings";
    int budget = 20000;
    double slowSeconds = 10;
    long long leakMargin = 256ll << 20;
    std::string replay;
    long long skip = 0;
    bool refuseEnd = false;
    bool countGiven = false;
};

class MemorySource final : public ModuleSource {
public:
    std::string text;
    std::optional<ModuleText> Read(std::string_view name) override
    {
        if (name != "Fuzz")
            return std::nullopt;
        return ModuleText{text, false};
    }
};

// The statement budget: the interpreter reads its tick source every few statements and yields to the
// host (PumpMessages) when 100 ticks have passed; this source advances one tick a read, so each yield
// comes after a bounded number of statements, also inside loops that the interpreter runs in line. The
// host ends the run through the engine's control action once the macro has used its yields.
DWORD s_ticks = 0;
DWORD WINAPI CountingTick() { return ++s_ticks; }

// The running interpreter, for the watchdog thread: it asks a slow macro to end through the same
// control action that the budget uses. The lock keeps the interpreter alive while it is asked, and keeps
// the two threads from making the request at the same time.
class RunningMacro {
public:
    RunningMacro() { InitializeCriticalSection(&m_lock); }
    void Set(Interpreter* interpreter)
    {
        EnterCriticalSection(&m_lock);
        m_interpreter = interpreter;
        LeaveCriticalSection(&m_lock);
    }
    // Requests the End action of the running macro; false when none runs.
    bool AskToEnd()
    {
        EnterCriticalSection(&m_lock);
        const bool running = m_interpreter != nullptr;
        if (running)
            (void)m_interpreter->RequestAction(InterpreterHost::kActionEnd, 0);
        LeaveCriticalSection(&m_lock);
        return running;
    }

private:
    CRITICAL_SECTION m_lock;
    Interpreter* m_interpreter = nullptr;
};

RunningMacro s_running;
bool s_refuseEnd = false;

// Debug.Print output is dropped; errors are counted; End and Stop end the run.
class QuietHost final : public InterpreterHost {
public:
    Interpreter* interpreter = nullptr;
    std::vector<ErrorRecord> errors;
    int yieldsLeft = 0;
    bool budgetUsed = false;
    void Notify(Notification) override {}
    void PerformControlAction(int action, long) override
    {
        if ((action == kActionEnd || action == kActionEndAll) && !s_refuseEnd)
            interpreter->UnwindAll();
        else if (action == kActionStop && interpreter->RunLevel() > 0)
            interpreter->SetRunLevel(-interpreter->RunLevel());
    }
    void PumpMessages() override
    {
        if (--yieldsLeft == 0) {
            budgetUsed = true;
            (void)s_running.AskToEnd();
        }
    }
    void ReportUntrappedError(const ErrorRecord& error) override { errors.push_back(error); }
    void DebugPrint(const std::wstring&) override {}
};

struct Outcome {
    bool compiled = false;
    std::vector<unsigned> compileErrors;
    std::vector<ErrorRecord> runErrors;
};

Outcome RunMacro(const std::string& text, int budget)
{
    Outcome outcome;
    MemorySource source;
    source.text = text;
    Compiler compiler(source);
    BodyCompiler bodies;
    compiler.SetBodyCompiler(&bodies);
    compiler.SetErrorLimit(20);
    const ParseResult parsed = compiler.Parse("Fuzz", 0);
    for (const CompileError& error : compiler.Errors())
        outcome.compileErrors.push_back(error.number);
    if (parsed != ParseResult::Okay)
        return outcome;
    Module* module = compiler.FindModule("Fuzz");
    if (!module || !module->Compiled() || !module->Compiled()->entry || !module->Compiled()->entry->code)
        return outcome;
    outcome.compiled = true;
    QuietHost host;
    Interpreter interpreter(host);
    host.interpreter = &interpreter;
    host.yieldsLeft = budget / 100 + 1;
    interpreter.SetTickSource(&CountingTick);
    interpreter.SetYielding(true);
    InterpreterScope scope(interpreter);
    ModuleInstance instance(*module);
    if (!interpreter.StartEntry(*module->Compiled()->entry->code, &instance))
        return outcome;
    interpreter.PrepareRun(0);
    s_running.Set(&interpreter);
    for (int steps = 0; steps < budget && interpreter.RunStep(false) != 0; ++steps) {
    }
    s_running.Set(nullptr);
    interpreter.UnwindAll();
    outcome.runErrors = host.errors;
    return outcome;
}

// Scripts whose behaviour reaches outside the process (windows that wait, files, other programs, the
// registry) or other modules are left out of the corpus.
bool Usable(const std::string& text)
{
    static const char* const kWords[] = {"msgbox", "inputbox", "shell", "sendkeys", "appactivate", "dde",
                                         "dialog", "#uses", "open ", "kill", "mkdir", "rmdir", "filecopy",
                                         "name ", "savesetting", "deletesetting", "chdir", "chdrive",
                                         "setattr", "createobject", "getobject", "execute", "macrorun",
                                         "wait", "clipboard", "version", "class", "declare"};
    std::string lower(text);
    for (char& c : lower)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    for (const char* word : kWords)
        if (lower.find(word) != std::string::npos)
            return false;
    // Scripts with numbers of seven digits or more (ten million array elements) become macros that
    // allocate tens of megabytes in each statement of a loop once mutated: slow, but no engine fault.
    int digits = 0;
    for (char c : lower) {
        digits = std::isdigit(static_cast<unsigned char>(c)) ? digits + 1 : 0;
        if (digits >= 7)
            return false;
    }
    return true;
}

std::string ReadText(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream buffer;
    buffer << in.rdbuf();
    return buffer.str();
}

std::vector<std::string> SplitLines(const std::string& text)
{
    std::vector<std::string> lines;
    std::string line;
    for (char c : text) {
        if (c == '\r')
            continue;
        if (c == '\n') {
            lines.push_back(line);
            line.clear();
        } else {
            line += c;
        }
    }
    if (!line.empty())
        lines.push_back(line);
    return lines;
}

std::string JoinLines(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    return text;
}

std::vector<std::string> Tokens(const std::string& line)
{
    std::vector<std::string> tokens;
    std::string current;
    for (char c : line) {
        if (c == ' ') {
            if (!current.empty())
                tokens.push_back(current);
            current.clear();
        } else {
            current += c;
        }
    }
    if (!current.empty())
        tokens.push_back(current);
    return tokens;
}

std::string JoinTokens(const std::vector<std::string>& tokens)
{
    std::string line;
    for (const std::string& token : tokens)
        line += (line.empty() ? "" : " ") + token;
    return line;
}

class Mutator {
public:
    Mutator(const std::vector<std::string>& corpus, unsigned seed) : m_corpus(corpus), m_random(seed) {}

    std::string Next()
    {
        std::vector<std::string> lines = SplitLines(m_corpus[Pick(m_corpus.size())]);
        const int mutations = 1 + static_cast<int>(Pick(4));
        for (int i = 0; i < mutations && !lines.empty(); ++i)
            Mutate(lines);
        return JoinLines(lines);
    }

private:
    std::size_t Pick(std::size_t count) { return count == 0 ? 0 : std::uniform_int_distribution<std::size_t>(0, count - 1)(m_random); }

    void Mutate(std::vector<std::string>& lines)
    {
        static const char* const kInserted[] = {
            "(", ")", "+", "-", "*", "/", "\\", "^", "&", "=", "<>", "<", ">=", ",", ":", ";", ".", "Not", "And",
            "Or", "Mod", "Is", "Like", "If", "Then", "Else", "End", "For", "Next", "To", "Step", "Do", "Loop",
            "While", "Wend", "Select", "Case", "With", "GoTo", "Exit", "Sub", "Function", "Dim", "ReDim",
            "Preserve", "As", "Integer", "Long", "String", "Variant", "Object", "New", "Set", "Let", "Const",
            "Call", "On Error Resume Next", "On Error GoTo 0", "Resume", "Err.Raise 10061", "Nothing", "Null",
            "Empty", "Array(1, 2)", "\"text\"", "#1/2/2000#", "&HFFFF", "Rem", "'", "Me", "Erase", "LSet",
            "Mid$(", "Len(", "Abs(", "Val(", "Str$(", "Format$(", "UBound(", "IsMissing("};
        static const char* const kLimits[] = {"0", "-1", "32767", "32768", "-32768", "2147483647", "-2147483648",
                                              "1E308", "65535", "255", "256", "1E-300", "0.5", "99999999999"};
        const std::size_t at = Pick(lines.size());
        switch (Pick(8)) {
        case 0: lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(at)); break;
        case 1: lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(at), lines[at]); break;
        case 2: std::swap(lines[at], lines[Pick(lines.size())]); break;
        case 3: {
            std::vector<std::string> tokens = Tokens(lines[at]);
            if (tokens.size() >= 2)
                std::swap(tokens[Pick(tokens.size())], tokens[Pick(tokens.size())]);
            lines[at] = JoinTokens(tokens);
            break;
        }
        case 4: {
            // Splice: this script up to the line, another one from a line on.
            std::vector<std::string> other = SplitLines(m_corpus[Pick(m_corpus.size())]);
            lines.resize(at);
            const std::size_t from = Pick(other.size());
            lines.insert(lines.end(), other.begin() + static_cast<std::ptrdiff_t>(from), other.end());
            break;
        }
        case 5:
        case 6: {
            std::vector<std::string> tokens = Tokens(lines[at]);
            tokens.insert(tokens.begin() + static_cast<std::ptrdiff_t>(Pick(tokens.size() + 1)),
                          kInserted[Pick(std::size(kInserted))]);
            lines[at] = JoinTokens(tokens);
            break;
        }
        default: {
            std::vector<std::string> tokens = Tokens(lines[at]);
            for (std::string& token : tokens)
                if (!token.empty() && std::isdigit(static_cast<unsigned char>(token[0])) && Pick(2) == 0)
                    token = kLimits[Pick(std::size(kLimits))];
            lines[at] = JoinTokens(tokens);
            break;
        }
        }
    }

    const std::vector<std::string>& m_corpus;
    std::mt19937 m_random;
};

// The macro being run and when it started, for the crash handler and the hang watch.
std::string s_current;
// The number of the macro being run (counted from 0 for the seed), and the macro run before it: a crash
// that the macro alone does not repeat is looked for with the macros before it.
volatile long long s_currentNumber = 0;
std::string s_previous;
std::string s_findings;
volatile ULONGLONG s_macroStart = 0;
double s_slowSeconds = 10;
double s_hangSeconds = 30;

void WriteFinding(const std::string& name, const std::string& text, const std::string& note)
{
    std::filesystem::create_directories(s_findings);
    std::ofstream out(std::filesystem::path(s_findings) / name, std::ios::binary);
    out << "' bbfuzz finding: " << note << "\r\n" << text;
}

LONG WINAPI OnCrash(EXCEPTION_POINTERS* exception)
{
    // Where it happened, as module and offset, so that a crash seen once can be looked up in the map.
    void* address = exception->ExceptionRecord->ExceptionAddress;
    HMODULE module = nullptr;
    char moduleName[MAX_PATH] = "?";
    if (GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           static_cast<LPCSTR>(address), &module))
        GetModuleFileNameA(module, moduleName, sizeof moduleName);
    char note[MAX_PATH + 128];
    std::snprintf(note, sizeof note, "exception 0x%08lx at %s+0x%lx, macro number %lld",
                  exception->ExceptionRecord->ExceptionCode, moduleName,
                  static_cast<unsigned long>(reinterpret_cast<char*>(address) - reinterpret_cast<char*>(module)),
                  static_cast<long long>(s_currentNumber));
    WriteFinding("crash-previous.bas", s_previous, "the macro run before the crash");
    WriteFinding("crash.bas", s_current, note);
    std::fprintf(stderr, "bbfuzz: crash (%s); the macro is in %s\n", note, s_findings.c_str());
    std::fflush(stderr);
    ExitProcess(3);
}

// A macro still running at the slow limit (statements that each take long: the budget counts statements)
// is asked to end, once. One still running at the hang limit did not end when asked, or hangs inside one
// statement: it is written as hang.bas and the program ends with exit code 4.
DWORD WINAPI WatchForHangs(void*)
{
    ULONGLONG asked = 0;
    for (;;) {
        Sleep(250);
        const ULONGLONG started = s_macroStart;
        const ULONGLONG elapsed = started != 0 ? GetTickCount64() - started : 0;
        if (started != 0 && started != asked && elapsed > static_cast<ULONGLONG>(s_slowSeconds * 1000) &&
            s_running.AskToEnd())
            asked = started;
        if (started != 0 && elapsed > static_cast<ULONGLONG>(s_hangSeconds * 1000)) {
            WriteFinding("hang.bas", s_current, "still running after the hang limit");
            std::fprintf(stderr, "bbfuzz: hang; the macro is in %s\n", s_findings.c_str());
            std::fflush(stderr);
            ExitProcess(4);
        }
    }
}

long long PrivateBytes()
{
    PROCESS_MEMORY_COUNTERS_EX counters{};
    counters.cb = sizeof counters;
    GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof counters);
    return static_cast<long long>(counters.PrivateUsage);
}

bool SystemCompileNumber(unsigned number)
{
    return (number >= 10000 && number <= 10902) || number == 11000;
}

bool ParseOptions(int argc, char** argv, Options& options)
{
    for (int i = 1; i < argc; ++i) {
        const std::string name = argv[i];
        if (i + 1 >= argc)
            return false;
        const char* value = argv[++i];
        if (name == "--seed")
            options.seed = static_cast<unsigned>(std::strtoul(value, nullptr, 10));
        else if (name == "--count") {
            options.count = std::strtoll(value, nullptr, 10);
            options.countGiven = true;
        } else if (name == "--hours")
            options.hours = std::strtod(value, nullptr);
        else if (name == "--corpus")
            options.corpus = value;
        else if (name == "--findings")
            options.findings = value;
        else if (name == "--budget")
            options.budget = std::atoi(value);
        else if (name == "--slow")
            options.slowSeconds = std::strtod(value, nullptr);
        else if (name == "--skip")
            options.skip = std::strtoll(value, nullptr, 10);
        else if (name == "--replay")
            options.replay = value;
        else if (name == "--refuse-end")
            options.refuseEnd = std::atoi(value) != 0;
        else
            return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    if (!ParseOptions(argc, argv, options)) {
        std::fprintf(stderr, "usage: bbfuzz [--seed N] [--count N | --hours H] [--corpus DIR] [--findings DIR] "
                             "[--budget STEPS] [--slow SECONDS] [--replay FILE] [--refuse-end 1] [--skip N]\n");
        return 2;
    }
    s_findings = options.findings;
    s_refuseEnd = options.refuseEnd;
    std::vector<std::string> corpus;
    if (!options.replay.empty()) {
        std::string text = ReadText(options.replay);
        if (text.empty()) {
            std::fprintf(stderr, "bbfuzz: cannot read %s\n", options.replay.c_str());
            return 2;
        }
        // Line ends become CR LF, as the mutations write them.
        corpus.push_back(JoinLines(SplitLines(text)));
        if (!options.countGiven)
            options.count = 1;
    } else {
        std::error_code error;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(options.corpus, error)) {
            if (entry.path().extension() != ".bas")
                continue;
            std::string text = ReadText(entry.path());
            if (Usable(text))
                corpus.push_back(std::move(text));
        }
    }
    if (corpus.empty()) {
        std::fprintf(stderr, "bbfuzz: no usable scripts under %s\n", options.corpus.c_str());
        return 2;
    }
    SetUnhandledExceptionFilter(&OnCrash);
    s_slowSeconds = options.slowSeconds;
    s_hangSeconds = options.slowSeconds * 3;
    CloseHandle(CreateThread(nullptr, 0, &WatchForHangs, nullptr, 0, nullptr));
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);

    // The macro that is running, in a file that outlives a process that dies without a word.
    std::filesystem::create_directories(options.findings);
    Journal journal;
    if (!journal.Open((std::filesystem::path(options.findings) / "running.bas").string()))
        std::fprintf(stderr, "bbfuzz: no journal of the running macro in %s\n", options.findings.c_str());
    Mutator mutator(corpus, options.seed);
    for (long long skipped = 0; skipped < options.skip; ++skipped)
        (void)mutator.Next();
    const ULONGLONG start = GetTickCount64();
    const ULONGLONG end = options.hours > 0 ? start + static_cast<ULONGLONG>(options.hours * 3600000.0) : 0;
    long long macros = 0, compiled = 0, runErrors = 0, findings = 0, slow = 0;
    long long baseline = 0;
    for (; options.hours > 0 ? GetTickCount64() < end : macros < options.count; ++macros) {
        std::string next = options.replay.empty() ? mutator.Next() : corpus.front();
        s_macroStart = 0;
        s_previous.swap(s_current);
        s_current.swap(next);
        s_currentNumber = options.skip + macros;
        journal.Record(s_currentNumber, s_current);
        const ULONGLONG before = GetTickCount64();
        s_macroStart = before;
        const Outcome outcome = RunMacro(s_current, options.budget);
        s_macroStart = 0;
        const double seconds = static_cast<double>(GetTickCount64() - before) / 1000.0;
        compiled += outcome.compiled ? 1 : 0;
        runErrors += static_cast<long long>(outcome.runErrors.size());
        // A slow macro ended when asked: a note for the one who looks into speed, not a fault.
        if (seconds > options.slowSeconds)
            WriteFinding("slow-" + std::to_string(++slow) + ".bas", s_current,
                         "took " + std::to_string(seconds) + " s; asked to end at the slow limit");
        for (unsigned number : outcome.compileErrors)
            if (!SystemCompileNumber(number))
                WriteFinding("number-" + std::to_string(++findings) + ".bas", s_current,
                             "compile error " + std::to_string(number));
        for (const ErrorRecord& run : outcome.runErrors)
            if (run.number == 0 || run.description.empty())
                WriteFinding("number-" + std::to_string(++findings) + ".bas", s_current,
                             "run-time error " + std::to_string(run.number) + " without a message");
        // The memory level once the first macros have warmed the caches.
        if (macros == 200)
            baseline = PrivateBytes();
        // A long run reports as it goes, so a run cut short still says how far it got.
        if ((macros + 1) % 50000 == 0) {
            std::fprintf(stderr, "bbfuzz: %lld macros, %lld findings, %lld slow, %.0f s, memory growth %lld bytes\n",
                         macros + 1, findings, slow, static_cast<double>(GetTickCount64() - start) / 1000.0,
                         baseline > 0 ? PrivateBytes() - baseline : 0);
            std::fflush(stderr);
        }
    }
    const long long grown = baseline > 0 ? PrivateBytes() - baseline : 0;
    if (grown > options.leakMargin) {
        ++findings;
        std::fprintf(stderr, "bbfuzz: private memory grew by %lld bytes after the first 200 macros\n", grown);
    }
    std::printf("bbfuzz: seed %u, %lld macros (%lld compiled and run, %lld run-time errors), %lld findings, "
                "%lld slow, %.1f s, memory growth %lld bytes\n",
                options.seed, macros, compiled, runErrors, findings, slow,
                static_cast<double>(GetTickCount64() - start) / 1000.0, grown);
    std::fflush(stdout);
    journal.Close(true);
    return findings == 0 ? 0 : 1;
}
