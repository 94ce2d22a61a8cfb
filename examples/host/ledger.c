/* ledger: a small host program in C that embeds the engine through include/brannoc.h and the import
 * library only. It keeps its own application object (a ledger of amounts, made through the OA_ family),
 * installs a callback made of plain functions with its own user data, starts and runs a macro, and
 * then calls one of the macro's Subs with the ledger as argument. It prints what happened and exits 0
 * when the engine behaved as a host expects. */
#include <stdio.h>
#include <string.h>
#include "brannoc.h"

/* ---- The application object: a C structure whose first field points at its methods ---- */

typedef struct Ledger Ledger;
typedef struct LedgerMethods {
    LONG (__stdcall *Add)(Ledger* self, LONG amount);
    LONG (__stdcall *Total)(Ledger* self);
} LedgerMethods;

struct Ledger {
    const LedgerMethods* methods;
    LONG total;
    int entries;
};

static LONG __stdcall LedgerAdd(Ledger* self, LONG amount)
{
    self->total += amount;
    self->entries += 1;
    return self->total;
}

static LONG __stdcall LedgerTotal(Ledger* self) { return self->total; }

static const LedgerMethods kLedgerMethods = {LedgerAdd, LedgerTotal};

static void __stdcall LedgerDestroy(void* implementation, void* userData)
{
    (void)implementation;
    (void)userData;
}

/* ---- The host's callback: five plain functions and the host's own record as user data ---- */

typedef struct Host {
    char printed[512];
    LONG notifications[32];
    int notificationCount;
    int foreignUserData;
} Host;

/* The macro; the host's file format ends texts with Ctrl-Z (character 26), and what follows is ignored. */
static const char kMacro[] =
    "Sub Main\r\n"
    "    Debug.Print \"ledger macro started\"\r\n"
    "End Sub\r\n"
    "Sub Post(book As Object, amount As Long)\r\n"
    "    book.Add amount\r\n"
    "    book.Add amount * 2\r\n"
    "    Debug.Print \"posted\"; book.Total\r\n"
    "End Sub\r\n"
    "\x1A" "host bookkeeping that is not part of the macro";

static Host* HostOf(void* userData, Host* expected)
{
    if (userData != expected)
        expected->foreignUserData += 1;
    return expected;
}

static Host* s_host;

static void __stdcall HostDebugPrint(IDispatch* engine, LPCSTR text, void* userData)
{
    Host* host = HostOf(userData, s_host);
    (void)engine;
    fputs(text, stdout);
    strncat(host->printed, text, sizeof host->printed - strlen(host->printed) - 1);
}

static void __stdcall HostDoEvents(IDispatch* engine, void* userData) { (void)engine; (void)HostOf(userData, s_host); }

static void __stdcall HostNotify(IDispatch* engine, LONG code, void* userData)
{
    Host* host = HostOf(userData, s_host);
    (void)engine;
    if (host->notificationCount < 32)
        host->notifications[host->notificationCount++] = code;
}

static BSTR __stdcall HostReadMacro(IDispatch* engine, LPCSTR name, void* userData)
{
    (void)engine;
    (void)HostOf(userData, s_host);
    if (lstrcmpiA(name, "ledger") != 0)
        return NULL; /* the engine reports "Macro/module does not exist." */
    return OA_SysAllocStringLenA(kMacro, sizeof kMacro - 1);
}

static LONG __stdcall HostWindow(void* userData) { (void)HostOf(userData, s_host); return 0; }

static int s_failures;

static void Expect(int condition, const char* what)
{
    if (!condition) {
        printf("FAIL: %s\n", what);
        ++s_failures;
    }
}

int main(void)
{
    Host host;
    Ledger ledger = {&kLedgerMethods, 0, 0};
    CB_FUNCTIONS functions = {HostDebugPrint, HostDoEvents, HostNotify, HostReadMacro, HostWindow};
    ITypeInfo* ledgerType;
    IDispatch* application;
    IDispatch* callBack;
    void* unit;
    OA_ARG arguments;
    BOOL running;

    memset(&host, 0, sizeof host);
    s_host = &host;
    OA_Initialize();

    ledgerType = OA_CreateTypeA("=Ledger\nAdd&(Amount&)\nTotal&");
    application = ledgerType ? OA_CreateDispatch(ledgerType, LedgerDestroy, &ledger, NULL) : NULL;
    Expect(application != NULL, "the application object");

    unit = CU_CreateCodeUnit();
    callBack = CB_CreateCallBack(NULL, &functions, &host);
    if (!unit || !callBack || !application) {
        puts("FAIL: the engine, the callback or the application object could not be made");
        return 1;
    }
    CU_SetCallBack(unit, callBack);

    /* Start compiles the macro (notification 9) and pushes Main (active, 1); Run executes it to its end
       and answers false (idle, 2). */
    Expect(CU_Start(unit, "ledger") == -1, "CU_Start answers true");
    running = CU_Run(unit, 0);
    Expect(running == 0, "CU_Run answers false once the run has ended");
    Expect(CU_IsIdle(unit) == -1, "idle after the run");
    Expect(strcmp(host.printed, "\"ledger macro started\"\r\n") == 0, "Debug.Print text with its line end");
    Expect(host.notificationCount == 3 && host.notifications[0] == 9 && host.notifications[1] == 1 &&
               host.notifications[2] == 2,
           "notifications: compiling (9), active (1), then idle (2)");

    /* A Sub of the loaded macro, called with the application object and an amount. */
    OA_ArgStart(3, &arguments);
    OA_ArgAddStringA(&arguments, "Post");
    OA_ArgAddDisp(&arguments, application);
    OA_ArgAddI4(&arguments, 7);
    Expect(CU_Call(unit, &arguments) == -1, "CU_Call of Post");
    Expect(ledger.entries == 2 && ledger.total == 21, "the macro posted 7 and 14 to the ledger");
    Expect(strstr(host.printed, "\"posted\"") != NULL, "the Sub printed the total");

    /* A macro the host does not have. */
    Expect(CU_Start(unit, "missing") == 0, "CU_Start of a missing macro answers false");
    Expect(CU_ErrorNumber(unit) == 10013, "error 10013 for a missing macro");
    Expect(host.foreignUserData == 0, "every callback got the host's user data");

    CU_Shutdown(unit);
    CU_SetCallBack(unit, NULL);
    OA_Release((IUnknown*)callBack);
    OA_Release((IUnknown*)unit);
    OA_Release((IUnknown*)application);
    ledgerType->lpVtbl->Release(ledgerType);
    Expect(CU_FreeLibraryOkay() == -1, "the library may be unloaded after the last engine object");
    OA_Uninitialize();
    printf("ledger total %ld in %d entries; %s\n", (long)ledger.total, ledger.entries,
           s_failures ? "FAILED" : "all as expected");
    return s_failures ? 1 : 0;
}
