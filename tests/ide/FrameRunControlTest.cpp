// The frame's run control: Start, break points, stepping, the Immediate pane, macros the host starts
// by name or from a text, the recorded error and the status and caption that follow the engine.
#include "EditorFrameFixture.h"

#include "ide/CommandTable.h"
#include "support/DialogRobot.h"
#include "support/TestComObject.h"
#include "support/WindowImage.h"

#include "brannoc.h"

#include <algorithm>

using namespace brannoc;
using namespace brannoc::ide;
using brannoc::test::EditorFrameFixture;
using brannoc::test::MessageBoxCapture;
using brannoc::test::WindowImage;

namespace {

class FrameRunControl : public EditorFrameFixture {
protected:
    std::string Pane(int id) const { return WindowText(Child(id)); }
    std::string Immediate() const { return PaneText(ID_FRAME_IMMEDIATE); }
    std::string PaneText(int id) const
    {
        HWND pane = Child(id);
        int length = GetWindowTextLengthA(pane);
        std::string text(static_cast<size_t>(length) + 1, '\0');
        text.resize(static_cast<size_t>(GetWindowTextA(pane, text.data(), length + 1)));
        return text;
    }
    std::string Status() const { return WindowText(Child(ID_FRAME_STATUS_BAR)); }
    void CaretTo(int line) const
    {
        Document()->MoveCaret(TextPosition{line, 0}, false);
    }
    // Types a line into the Immediate pane and presses Enter there.
    void TypeImmediate(const std::string& line) const
    {
        HWND pane = Child(ID_FRAME_IMMEDIATE);
        int end = GetWindowTextLengthA(pane);
        SendMessageA(pane, EM_SETSEL, static_cast<WPARAM>(end), end);
        SendMessageA(pane, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(line.c_str()));
        SendMessageA(pane, WM_CHAR, '\r', 0);
    }
};

const char kCounting[] =
    "Sub Main\r\n"
    "\tDim x As Long\r\n"
    "\tx = 6\r\n"
    "\tDebug.Print \"x is \"; x\r\n"
    "\tx = x * 7\r\n"
    "\tDebug.Print \"now \"; x\r\n"
    "End Sub\r\n";

TEST_F(FrameRunControl, StartRunsTheSheetAndItsOutputGoesToTheImmediatePane)
{
    Create();
    SendText(FM_SETTEXT, kCounting);
    EXPECT_EQ(1, Command(CMD_RUN));
    EXPECT_EQ("\"x is \"6&\r\n\"now \"42&\r\n", Immediate());
    EXPECT_EQ("Idle.", Status());
    EXPECT_EQ("Brannoc Basic - [design] Macro1 * (macro)", Caption());
    EXPECT_EQ(0, Send(FM_ISBUSY));
}

TEST_F(FrameRunControl, ABreakPointStopsTheRunAndTheStepCommandsGoOnFromThere)
{
    Create();
    SendText(FM_SETTEXT, kCounting);
    CaretTo(4);
    Command(CMD_TOGGLE_BREAK);
    EXPECT_TRUE(Document()->BreakPoint(4));
    Command(CMD_RUN);
    EXPECT_EQ("\"x is \"6&\r\n", Immediate());
    EXPECT_EQ("Brannoc Basic - [break] Macro1 * (macro)", Caption());
    EXPECT_EQ("Paused.", Status());
    EXPECT_EQ(4, Document()->CurrentStatement().first);
    EXPECT_EQ(1, Send(FM_ISSTOPPED));
    EXPECT_NE(std::string::npos, PaneText(ID_FRAME_STACK).find("[Macro1|Main#  5]")) << PaneText(ID_FRAME_STACK);

    // The Immediate pane works in the stopped macro: a value, an assignment, a statement.
    TypeImmediate("?x");
    EXPECT_EQ("\"x is \"6&\r\n?x\r\n6&\r\n", Immediate());
    TypeImmediate("x = 10");
    Command(CMD_STEP_INTO);
    EXPECT_EQ(5, Document()->CurrentStatement().first);
    Command(CMD_RUN);
    EXPECT_EQ("\"x is \"6&\r\n?x\r\n6&\r\nx = 10\r\n\"now \"70&\r\n", Immediate());
    EXPECT_EQ("Idle.", Status());
    EXPECT_EQ("Brannoc Basic - [design] Macro1 * (macro)", Caption());
    EXPECT_EQ(-1, Document()->CurrentStatement().first);
}

TEST_F(FrameRunControl, StepIntoStopsAtTheFirstStatementAndEndStopsTheRun)
{
    Create();
    SendText(FM_SETTEXT, kCounting);
    Command(CMD_STEP_INTO);
    EXPECT_EQ("Brannoc Basic - [break] Macro1 * (macro)", Caption());
    EXPECT_EQ(0, Document()->CurrentStatement().first) << "the run stops on the Sub line";
    EXPECT_TRUE(IsWindowVisible(Child(ID_FRAME_IMMEDIATE))) << "the panes show while the macro is loaded";
    EXPECT_TRUE(IsWindowVisible(Child(ID_FRAME_TABBAR)));
    Command(CMD_END);
    EXPECT_EQ("", Immediate());
    EXPECT_EQ("Brannoc Basic - [design] Macro1 * (macro)", Caption());
    EXPECT_FALSE(IsWindowVisible(Child(ID_FRAME_IMMEDIATE)));
}

TEST_F(FrameRunControl, RunThisWrapsASingleLineIntoAMainAndRunsIt)
{
    Create();
    EXPECT_EQ(0, SendText(FM_RUNTHIS, "Debug.Print 6 * 7"));
    EXPECT_EQ("42%\r\n", Immediate());
    EXPECT_EQ(0, SendText(FM_RUNTHIS, "Sub Main\r\nDebug.Print \"two\"\r\nEnd Sub\r\n"));
    EXPECT_EQ("42%\r\n\"two\"\r\n", Immediate());
}

TEST_F(FrameRunControl, ARunTimeErrorIsMarkedInItsSheetWithTheDescriptionInTheStatusBar)
{
    Create();
    SendText(FM_SETTEXT, "Sub Main\r\n\tDim a As Integer, d As Integer\r\n\ta = 1 / d\r\nEnd Sub\r\n");
    Command(CMD_RUN);
    EXPECT_EQ("Divide by zero.", Status());
    EXPECT_EQ(2, Document()->ErrorStatement().first);
    EXPECT_EQ("Divide by zero.", Get(FM_ERRORDESC));
    EXPECT_EQ(3, Send(FM_ERRORLINE));
    EXPECT_EQ("Brannoc Basic - [break] Macro1 * (macro)", Caption()) << "the run stops at the error";
    Command(CMD_END);
    EXPECT_EQ("Brannoc Basic - [design] Macro1 * (macro)", Caption());
    EXPECT_EQ(-1, Document()->ErrorStatement().first) << "the mark goes when the run ends";
}

TEST_F(FrameRunControl, StepToOnACommentLineReportsAnUnreachableLine)
{
    Create();
    SendText(FM_SETTEXT, "Sub Main\r\n\t' nothing here\r\n\tBeep\r\nEnd Sub\r\n");
    CaretTo(1);
    MessageBoxCapture capture;
    Command(CMD_STEP_TO);
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"Unreachable line.", capture.Boxes()[0].text);
    EXPECT_EQ(1, Send(FM_ISSTOPPED)) << "the engine is left stopped";
    Command(CMD_END);
}

TEST_F(FrameRunControl, CheckTakesTheMacroInAndLeavesTheEngineAsItWas)
{
    Create();
    SendText(FM_SETTEXT, kCounting);
    EXPECT_EQ(1, Send(FM_CHECK));
    EXPECT_EQ(0, Send(FM_ISBUSY));
    EXPECT_EQ("", Immediate()) << "nothing ran";
    SendText(FM_SETTEXT, "Sub Main\r\n\tx = = 1\r\nEnd Sub\r\n");
    MessageBoxCapture capture;
    EXPECT_EQ(0, Send(FM_CHECK));
    EXPECT_EQ(1, Document()->ErrorStatement().first) << "the syntax error is marked";
}

TEST_F(FrameRunControl, WatchExpressionsAreWorkedOutAgainWhenTheRunStops)
{
    Create();
    SendText(FM_SETTEXT, kCounting);
    SetWindowTextA(Child(ID_FRAME_WATCH), "x\r\n\r\n  x * 2 -> old value\r\nString(150, \"a\")\r\n");
    CaretTo(4);
    Command(CMD_TOGGLE_BREAK);
    Command(CMD_RUN);
    const std::string watch = PaneText(ID_FRAME_WATCH);
    EXPECT_EQ(0u, watch.find("x -> 6&\r\nx * 2 -> 12&\r\nString(150, \"a\") -> \"aaa")) << watch;
    const size_t value = watch.find("-> \"aaa");
    EXPECT_EQ(value + 3 + 100, watch.find("...\r\n", value)) << "a long value is cut to 100 characters";
    EXPECT_EQ(std::string::npos, watch.find("old value"));
    // Add Watch puts the word at the caret into the Watch pane while it is on top.
    Command(CMD_WATCH);
    CaretTo(2);
    Document()->MoveCaret(TextPosition{2, 2}, false);
    Command(CMD_ADD_WATCH);
    EXPECT_NE(std::string::npos, PaneText(ID_FRAME_WATCH).find("\r\nx -> 6&\r\n")) << PaneText(ID_FRAME_WATCH);
    Command(CMD_END);
}

TEST_F(FrameRunControl, TheStackPaneShowsTheInnermostHundredCalls)
{
    Create();
    SendText(FM_SETTEXT, "Sub Down(n As Integer)\r\n\tIf n > 0 Then Down n - 1 Else Stop\r\nEnd Sub\r\n"
                         "Sub Main\r\n\tDown 119\r\nEnd Sub\r\n");
    Command(CMD_RUN);
    EXPECT_EQ("Brannoc Basic - [break] Macro1 * (macro)", Caption());
    std::string stack = PaneText(ID_FRAME_STACK);
    size_t lines = static_cast<size_t>(std::count(stack.begin(), stack.end(), '\n'));
    EXPECT_EQ(101u, lines);
    EXPECT_EQ(0u, stack.find("[Macro1|Down#  2]")) << stack.substr(0, 60);
    EXPECT_EQ(stack.size() - 5, stack.rfind("...\r\n"));
    Command(CMD_END);
    EXPECT_EQ("Idle.", PaneText(ID_FRAME_STACK));
}

TEST_F(FrameRunControl, TypingIntoARunningSheetOffersToEndTheRun)
{
    Create();
    SendText(FM_SETTEXT, kCounting);
    Command(CMD_STEP_INTO);
    {
        MessageBoxCapture capture(IDNO);
        SendMessageA(Editor(), WM_CHAR, 'z', 0);
        ASSERT_EQ(1u, capture.Count());
        EXPECT_EQ(L"Would you like to end execution so you can edit?", capture.Boxes()[0].text);
    }
    EXPECT_EQ(std::string::npos, Get(FM_GETTEXT).find('z')) << "No keeps the run and drops the key";
    EXPECT_EQ("Brannoc Basic - [break] Macro1 * (macro)", Caption());
    {
        MessageBoxCapture capture(IDYES);
        SendMessageA(Editor(), WM_CHAR, 'z', 0);
        EXPECT_EQ(1u, capture.Count());
    }
    EXPECT_NE(std::string::npos, Get(FM_GETTEXT).find('z')) << "Yes ends the run and the key goes in";
    EXPECT_EQ("Brannoc Basic - [design] Macro1 * (macro)", Caption());
}

TEST_F(FrameRunControl, BreakPointsGoInAndOutAsArraysOfAbsoluteLines)
{
    Create();
    SendText(FM_SETTEXT, kCounting);
    const int hidden = static_cast<int>(Send(FM_HIDDENLINES));
    SAFEARRAY* lines = SafeArrayCreateVector(VT_I2, 0, 2);
    SHORT first = static_cast<SHORT>(hidden + 3), second = static_cast<SHORT>(hidden + 6);
    LONG index = 0;
    SafeArrayPutElement(lines, &index, &first);
    index = 1;
    SafeArrayPutElement(lines, &index, &second);
    EXPECT_EQ(0, Send(FM_SETBREAKS, 0, reinterpret_cast<LPARAM>(lines)));
    SafeArrayDestroy(lines);
    EXPECT_TRUE(Document()->BreakPoint(2));
    EXPECT_TRUE(Document()->BreakPoint(5));

    SAFEARRAY* out = nullptr;
    ASSERT_EQ(0, Send(FM_GETBREAKS, 0, reinterpret_cast<LPARAM>(&out)));
    ASSERT_NE(nullptr, out);
    LONG high = -1, value = 0;
    SafeArrayGetUBound(out, 1, &high);
    ASSERT_EQ(1, high);
    index = 1;
    SafeArrayGetElement(out, &index, &value);
    EXPECT_EQ(hidden + 6, value);
    SafeArrayDestroy(out);

    // The marks reach the engine when the macro is taken in.
    Command(CMD_RUN);
    EXPECT_EQ(2, Document()->CurrentStatement().first);
    EXPECT_EQ("", Immediate());
    Command(CMD_RUN);
    EXPECT_EQ(5, Document()->CurrentStatement().first);
    EXPECT_EQ("\"x is \"6&\r\n", Immediate());
    Command(CMD_CLEAR_BREAKS);
    EXPECT_FALSE(Document()->BreakPoint(5));
    Command(CMD_RUN);
    EXPECT_EQ("Idle.", Status());
}

std::vector<int> s_notifications;
void CALLBACK RecordNotification(HWND, int code) { s_notifications.push_back(code); }

TEST_F(FrameRunControl, HostStartsAndLoadsMacrosByMessage)
{
    Create();
    SendText(FM_SETTEXT, kCounting);
    s_notifications.clear();
    Send(FM_SETNOTIFYCALLBACK, 0, reinterpret_cast<LPARAM>(RecordNotification));
    // Started with the step flag, the macro stops before its first statement runs.
    EXPECT_EQ(0, SendText(FM_RUNMACRO, "", 1));
    EXPECT_EQ(1, Send(FM_ISSTOPPED));
    EXPECT_EQ(0, SendText(FM_ISACTIVE, "\"?A1\""));
    EXPECT_EQ("?A1", Get(FM_CURRENTMACRO));
    Send(FM_STARTEND, 0, 0);
    EXPECT_EQ(0, Send(FM_ISBUSY));
    EXPECT_EQ("", Immediate());
    EXPECT_NE(s_notifications.end(), std::find(s_notifications.begin(), s_notifications.end(), 3));
    EXPECT_EQ(2, s_notifications.back());

    // In loaded-for-debugging mode Start loads the module and holds it until End.
    Send(FM_SETDEBUGLOAD, 0, 1);
    Command(CMD_RUN);
    EXPECT_EQ(1, Send(FM_ISBUSY)) << "a module is held loaded";
    EXPECT_EQ(0, SendText(FM_ISLOADED, "\"?A1\""));
    EXPECT_EQ("Brannoc Basic - [run] Macro1 * (macro)", Caption());
    Command(CMD_END);
    EXPECT_EQ(0, Send(FM_ISBUSY));
    EXPECT_NE(s_notifications.end(), std::find(s_notifications.begin(), s_notifications.end(), 13));
    EXPECT_EQ(1, SendText(FM_ISLOADED, "\"?A1\"")) << "End unloads the held modules";
    Send(FM_SETNOTIFYCALLBACK, 0, 0);
}

int CALLBACK ReadExtra(HWND, const char* name, char* buffer, int size)
{
    const std::string text = std::string(name) == "*Extra*" ? "Sub Main\r\nDebug.Print \"extra\"\r\nEnd Sub\r\n" : "";
    if (text.empty())
        return 0;
    if (!buffer)
        return static_cast<int>(text.size());
    lstrcpynA(buffer, text.c_str(), size);
    return static_cast<int>(text.size());
}

TEST_F(FrameRunControl, TheHostServesMacrosWhoseNamesBeginWithAStar)
{
    Create();
    Send(FM_SETREADMACROCALLBACK, 0, reinterpret_cast<LPARAM>(ReadExtra));
    EXPECT_EQ(0, SendText(FM_RUNMACRO, "\"*Extra*\""));
    EXPECT_EQ("\"extra\"\r\n", Immediate());
    MessageBoxCapture capture;
    EXPECT_EQ(1, SendText(FM_RUNMACRO, "\"*Missing*\"")) << "not served: the start fails";
}

TEST_F(FrameRunControl, HostObjectsLinesAndTexts)
{
    Create();
    SendText(FM_SETTEXT, kCounting);
    EXPECT_EQ(10, Send(FM_LINESTART, 0, 2)) << "after \"Sub Main\" and CR LF";
    EXPECT_EQ(2, Send(FM_LINEOFCHAR, 0, 12));
    auto* fire = reinterpret_cast<IDispatch*>(Send(FM_FIRE, 0, 0));
    ASSERT_NE(nullptr, fire);
    fire->Release();
    std::string version = Get(FM_VERSION);
    EXPECT_EQ('v', version[0]);
    EXPECT_NE(std::string::npos, version.find(" [")) << version;
    EXPECT_FALSE(Get(FM_OAVERSION).empty());
    char text[64] = {};
    EXPECT_EQ(7, Send(FM_STRING, 557, reinterpret_cast<LPARAM>(text)));
    EXPECT_STREQ("Paused.", text);
    SendText(FM_SETHOSTSTRING, "kept");
    EXPECT_EQ("kept", Get(FM_GETHOSTSTRING));
    EXPECT_EQ("App.", Get(FM_GETAPPPREFIX));
    SendText(FM_SETEXPRESSION, "6 * 7");
    EXPECT_EQ("42%", Get(FM_EVALUATE)) << "evaluated when the length is asked for";
}

TEST_F(FrameRunControl, PauseAndCloseReachTheFrameWhileAMacroLoops)
{
    Create();
    SendText(FM_SETTEXT, "Sub Main\r\n\tDim n As Long\r\n\tDo\r\n\t\tn = n + 1\r\n\tLoop\r\nEnd Sub\r\n");
    static const UINT toolbar = RegisterWindowMessageA(kToolbarMessageName);
    PostMessageA(m_frame, toolbar, CMD_PAUSE, -1);
    Command(CMD_RUN);
    EXPECT_EQ("Brannoc Basic - [break] Macro1 * (macro)", Caption()) << "Pause stopped the loop";
    EXPECT_EQ("Paused.", Status());

    // Closing while the loop runs ends the run first and closes once the run has returned.
    PostMessageA(m_frame, WM_CLOSE, 0, 0);
    MessageBoxCapture capture(IDNO);
    Command(CMD_RUN);
    Pump(300);
    EXPECT_FALSE(IsWindow(m_frame));
    m_frame = nullptr;
}

TEST_F(FrameRunControl, ASheetOpenedForALoadedModuleShowsTheEnginesBreakPoints)
{
    Create();
    const std::string path = TempPath("frame_breaks.bas");
    WriteFileBytes(path, "Sub Main\r\n\tBeep\r\n\tBeep\r\nEnd Sub\r\n");
    const std::string quoted = "\"" + path + "\"";
    EXPECT_EQ(0, SendText(FM_LOADMACRO, quoted));
    auto* engine = reinterpret_cast<IUnknown*>(Send(FM_ENGINE));
    ASSERT_NE(nullptr, engine);
    EXPECT_TRUE(CU_ToggleBreak(engine, quoted.c_str(), 3));
    engine->Release();
    ASSERT_EQ(0, SendText(FM_FILE, path, 1));
    EXPECT_FALSE(Document()->BreakPoint(1));
    EXPECT_TRUE(Document()->BreakPoint(2));
    EXPECT_EQ(0, SendText(FM_UNLOADMACRO, quoted));
    DeleteFileA(path.c_str());
}

// A host's error object: Number and Description, read by name.
struct HostError {
    virtual long __stdcall Number() { return number; }
    virtual BSTR __stdcall Description() { return SysAllocString(description); }
    long number = 0;
    const wchar_t* description = L"";
};

void __stdcall KeepHostError(void*, void*) {}

TEST_F(FrameRunControl, AHostErrorIsShownWithItsDescriptionOrItsCode)
{
    Create();
    ITypeInfo* type = OA_CreateTypeW(L"=HostError\nNumber&=\nDescription$=\n");
    ASSERT_NE(nullptr, type);
    struct Row { long number; const wchar_t* description; const wchar_t* shown; };
    const Row rows[] = {
        {7, L"The ledger is closed.", L"The ledger is closed."},
        {5, L"", L"Error code = 5"},
        {static_cast<long>(0x80004005), L"", L"ActiveX error code = 0x80004005"},
        {0, L"", L"Error condition reported, but no error information provided."},
    };
    for (const Row& row : rows) {
        HostError error;
        error.number = row.number;
        error.description = row.description;
        IDispatch* object = OA_CreateDispatch(type, KeepHostError, &error, nullptr);
        ASSERT_NE(nullptr, object);
        MessageBoxCapture capture;
        Send(FM_REPORTERROR, 0, reinterpret_cast<LPARAM>(object));
        ASSERT_EQ(1u, capture.Count());
        EXPECT_EQ(row.shown, capture.Boxes()[0].text);
        EXPECT_EQ(row.number, static_cast<long>(Send(FM_ERRORNUMBER)));
        object->Release();
    }
    type->Release();
}

TEST_F(FrameRunControl, SavingUnderTheNameOfAModuleTheEngineHoldsIsRefused)
{
    Create();
    const std::string path = TempPath("held_module.bas");
    WriteFileBytes(path, "Sub Main\r\nEnd Sub\r\n");
    EXPECT_EQ(0, SendText(FM_LOADMACRO, "\"" + path + "\""));
    MessageBoxCapture capture;
    EXPECT_EQ(1, SendText(FM_FILE, path, 0));
    ASSERT_EQ(1u, capture.Count());
    EXPECT_EQ(L"Macro/module by that name is loaded (busy).", capture.Boxes()[0].text);
    EXPECT_EQ("Sub Main\r\nEnd Sub\r\n", ReadFileBytes(path)) << "the file is left alone";
    EXPECT_EQ(0, SendText(FM_UNLOADMACRO, "\"" + path + "\""));
    DeleteFileA(path.c_str());
}

TEST_F(FrameRunControl, ExtraKeywordListsAreKeptInThreeParts)
{
    Create();
    EXPECT_EQ("||", Get(FM_GETEXTRAKEYWORDS));
    SendText(FM_SETEXTRAKEYWORDS, "|Ledger Post");
    EXPECT_EQ("|Ledger Post|", Get(FM_GETEXTRAKEYWORDS));
    // The host's words take their own spelling when a line is committed, as the language's do.
    Document()->MoveCaret(TextPosition{1, 1}, false);
    for (char c : std::string("ledger"))
        SendMessageA(Editor(), WM_CHAR, static_cast<WPARAM>(c), 0);
    CaretTo(2);
    EXPECT_EQ("Sub Main\r\n\tLedger\r\nEnd Sub\r\n", Get(FM_GETTEXT));
}

// A host's automation object: the frame's requests reach its "_" and "CallBack" members.
struct HostObject {
    virtual void __stdcall Notify(long code) { codes.push_back(code); }
    virtual void __stdcall AboutBox() { ++abouts; }
    std::vector<long> codes;
    int abouts = 0;
};

// Passes every call on to the host's object and keeps the locale of each Invoke.
class LocaleRecorder final : public brannoc::testing::TestComObject<IDispatch> {
public:
    explicit LocaleRecorder(IDispatch* inner) : m_inner(inner) {}
    std::vector<LCID> invokeLocales;
    HRESULT __stdcall GetTypeInfoCount(UINT* count) override { return m_inner->GetTypeInfoCount(count); }
    HRESULT __stdcall GetTypeInfo(UINT index, LCID locale, ITypeInfo** type) override
    {
        return m_inner->GetTypeInfo(index, locale, type);
    }
    HRESULT __stdcall GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override
    {
        return m_inner->GetIDsOfNames(id, names, count, locale, ids);
    }
    HRESULT __stdcall Invoke(DISPID member, REFIID id, LCID locale, WORD flags, DISPPARAMS* parameters,
                             VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override
    {
        invokeLocales.push_back(locale);
        return m_inner->Invoke(member, id, locale, flags, parameters, result, exception, argumentError);
    }

private:
    IDispatch* m_inner;
};

TEST_F(FrameRunControl, AnAttachedHostObjectReceivesTheFramesRequests)
{
    ITypeInfo* type = OA_CreateTypeW(L"=Host\n_Notify Code&\nCallBackAboutBox\n");
    ASSERT_NE(nullptr, type);
    HostObject host;
    IDispatch* inner = OA_CreateDispatch(type, KeepHostError, &host, nullptr);
    ASSERT_NE(nullptr, inner);
    LocaleRecorder recorder(inner);
    IDispatch* object = &recorder;
    Create(kDefaultOptions);
    EXPECT_EQ(1, Send(FM_ATTACH, 0, reinterpret_cast<LPARAM>(object))) << "top-level frames take no host object";
    Create(kDefaultOptions, true);
    EXPECT_EQ(0, Send(FM_ATTACH, 0, reinterpret_cast<LPARAM>(object)));
    EXPECT_EQ(0, SendText(FM_RUNTHIS, "Debug.Print 1"));
    EXPECT_NE(host.codes.end(), std::find(host.codes.begin(), host.codes.end(), 1));
    ASSERT_FALSE(host.codes.empty());
    EXPECT_EQ(2, host.codes.back());
    Command(CMD_ABOUT);
    EXPECT_EQ(1, host.abouts);
    // The object is an unnamed extension: macros reach its members by their names alone.
    EXPECT_EQ(0, SendText(FM_RUNTHIS, "CallBackAboutBox"));
    EXPECT_EQ(2, host.abouts);
    ASSERT_FALSE(recorder.invokeLocales.empty());
    for (const LCID locale : recorder.invokeLocales)
        EXPECT_EQ(0x409u, locale) << "every call on the host's object passes the US English locale";
    {
        MessageBoxCapture capture(IDNO);
        EXPECT_EQ(0, Send(FM_DETACH, 0, 1));
    }
    EXPECT_FALSE(IsWindow(m_frame));
    m_frame = nullptr;
    inner->Release();
    type->Release();
}

TEST_F(FrameRunControl, CheckMarksFollowTheFramesState)
{
    Create();
    const auto checked = [&](int command) { return Send(FM_CHECKSTATE, static_cast<WPARAM>(HostNumberOfCommand(command))); };
    EXPECT_EQ(1, checked(CMD_VIEW_TOOLBAR));
    EXPECT_EQ(1, checked(CMD_DESIGN_MODE));
    EXPECT_EQ(0, checked(CMD_TAB_AS_SPACES));
    EXPECT_EQ(1, checked(CMD_TAB_WIDTH_1 + 3)) << "tab width 4";
    Command(CMD_TAB_AS_SPACES);
    EXPECT_EQ(1, checked(CMD_TAB_AS_SPACES));
    EXPECT_EQ(0, checked(CMD_IMMEDIATE)) << "no pane shows while nothing runs";
    SendText(FM_SETTEXT, kCounting);
    Command(CMD_STEP_INTO);
    EXPECT_EQ(1, checked(CMD_IMMEDIATE));
    Command(CMD_STACK);
    EXPECT_EQ(0, checked(CMD_IMMEDIATE));
    EXPECT_EQ(1, checked(CMD_STACK));
    Command(CMD_END);
}

TEST_F(FrameRunControl, TheColourTableReachesTheTextArea)
{
    Create();
    SendText(FM_SETTEXT, "Sub Main\r\n\tBeep\r\nEnd Sub\r\n");
    EXPECT_EQ(1, Send(FM_SETCOLOUR, 11, 0)) << "entries 0 to 10 only";
    EXPECT_EQ(0, Send(FM_SETCOLOUR, 8, RGB(0, 0, 96)));
    EXPECT_EQ(static_cast<LRESULT>(RGB(0, 0, 96)), Send(FM_GETCOLOUR, 8));
    Send(FM_UPDATE);
    Pump(100);
    RECT area = ChildRect(ID_FRAME_EDITOR);
    RECT sample{area.right - 60, area.bottom - 60, area.right - 50, area.bottom - 50};
    EXPECT_TRUE(WindowImage::Capture(m_frame).Contains(sample, RGB(0, 0, 96))) << "the background takes the colour";
}

TEST_F(FrameRunControl, HostMenusAndAcceleratorsFollowTheFrame)
{
    Create();
    HACCEL keys = reinterpret_cast<HACCEL>(Send(FM_LOADACCELERATORS));
    ASSERT_NE(nullptr, keys);
    ACCEL table[64];
    const int count = CopyAcceleratorTableA(keys, table, 64);
    DestroyAcceleratorTable(keys);
    EXPECT_NE(table + count, std::find_if(table, table + count, [](const ACCEL& a) {
        return a.key == VK_F5 && a.cmd == CMD_RUN && a.fVirt == FVIRTKEY;
    }));
    EXPECT_NE(table + count, std::find_if(table, table + count, [](const ACCEL& a) {
        return a.key == VK_F8 && a.cmd == CMD_STEP_OVER && a.fVirt == (FVIRTKEY | FSHIFT);
    }));

    HMENU menu = CreateMenu();
    HMENU popup = CreatePopupMenu();
    AppendMenuA(popup, MF_STRING, CMD_RUN, "Run");
    AppendMenuA(popup, MF_STRING, CMD_END, "End");
    AppendMenuA(popup, MF_STRING, CMD_VIEW_TOOLBAR, "Toolbar");
    AppendMenuA(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(popup), "Macro");
    Send(FM_UPDATEMENU, reinterpret_cast<WPARAM>(menu));
    EXPECT_EQ(0u, GetMenuState(popup, CMD_RUN, MF_BYCOMMAND) & MF_GRAYED);
    EXPECT_NE(0u, GetMenuState(popup, CMD_END, MF_BYCOMMAND) & MF_GRAYED) << "nothing runs";
    EXPECT_NE(0u, GetMenuState(popup, CMD_VIEW_TOOLBAR, MF_BYCOMMAND) & MF_CHECKED);
    DestroyMenu(menu);
}

TEST_F(FrameRunControl, EscPausesARunningSheetsMacro)
{
    Create();
    SendText(FM_SETTEXT, kCounting);
    Command(CMD_STEP_INTO);
    EXPECT_EQ(CMD_PAUSE, Send(FM_TRANSLATEKEY, VK_ESCAPE)) << "keyboard mode 0 lets Esc through while the macro runs";
    Command(CMD_END);
    EXPECT_EQ(0, Send(FM_TRANSLATEKEY, VK_ESCAPE));
}

TEST_F(FrameRunControl, BrowsingInAStoppedMacroEvaluatesTheExpression)
{
    Create();
    SendText(FM_SETTEXT, "Sub Main\r\n\tDim o As Object\r\n\tStop\r\nEnd Sub\r\n");
    Command(CMD_RUN);
    ASSERT_EQ(1, Send(FM_ISSTOPPED));
    std::string first;
    brannoc::test::DialogRobot robot([&](HWND dialog) {
        char text[128] = {};
        SendDlgItemMessageA(dialog, 110, CB_GETLBTEXT, 0, reinterpret_cast<LPARAM>(text));
        first = text;
        brannoc::test::DialogRobot::Press(dialog, IDCANCEL);
    });
    SendText(FM_BROWSE, "o");
    EXPECT_EQ("(Nothing)", first) << "o holds Nothing";
    Command(CMD_END);
}

TEST_F(FrameRunControl, Screenshot)
{
    Create();
    SendText(FM_SETTEXT, kCounting);
    CaretTo(4);
    Command(CMD_TOGGLE_BREAK);
    Command(CMD_RUN);
    Send(FM_UPDATE);
    Pump(200);
    WindowImage image = WindowImage::Capture(m_frame, true);
    EXPECT_FALSE(image.WriteScreenshot(L"editor_frame_at_break").empty());
    Command(CMD_END);
}

} // namespace
