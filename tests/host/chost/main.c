/* A host written in C against the header and the import library: creates an engine object, installs
 * a callback made of plain functions, starts and runs a macro through the CU_ functions, and checks
 * the library's unload answer around it. Exits 0 when everything matches. */
#include <stdio.h>
#include <string.h>
#include "brannoc.h"

typedef struct HostState {
    char printed[256];
    long notifications[32];
    int notificationCount;
    int wrongUserData;
} HostState;

static const char kSource[] = "Sub Main\r\n    Debug.Print \"done\"\r\nEnd Sub\r\n\x1A trailing bytes";

static void __stdcall HostDebugPrint(IDispatch* engine, LPCSTR text, void* userData)
{
    HostState* state = (HostState*)userData;
    (void)engine;
    strncat(state->printed, text, sizeof state->printed - strlen(state->printed) - 1);
}

static void __stdcall HostDoEvents(IDispatch* engine, void* userData) { (void)engine; (void)userData; }

static void __stdcall HostNotify(IDispatch* engine, LONG code, void* userData)
{
    HostState* state = (HostState*)userData;
    (void)engine;
    if (state->notificationCount < 32)
        state->notifications[state->notificationCount++] = code;
}

static BSTR __stdcall HostReadMacro(IDispatch* engine, LPCSTR name, void* userData)
{
    (void)engine;
    (void)userData;
    return strcmp(name, "answer") == 0 ? OA_SysAllocStringLenA(kSource, sizeof kSource - 1) : NULL;
}

static LONG __stdcall HostWindow(void* userData) { (void)userData; return 0; }

int main(void)
{
    int failures = 0;
    HostState state;
    CB_FUNCTIONS functions = {HostDebugPrint, HostDoEvents, HostNotify, HostReadMacro, HostWindow};
    memset(&state, 0, sizeof state);
    if (CU_FreeLibraryOkay() != -1) { puts("FAIL: library busy before any object"); ++failures; }
    void* unit = CU_CreateCodeUnit();
    if (!unit) { puts("FAIL: CU_CreateCodeUnit gave null"); return 1; }
    if (CU_FreeLibraryOkay() != 0) { puts("FAIL: library free while an object lives"); ++failures; }
    if (KZ_CodeClassLock(1, 0) == 0) { puts("FAIL: class lock answer"); ++failures; }
    KZ_CodeClassLock(-1, 0);

    IDispatch* callBack = CB_CreateCallBack(NULL, &functions, &state);
    if (!callBack) { puts("FAIL: CB_CreateCallBack gave null"); return 1; }
    CU_SetCallBack(unit, callBack);
    if (CU_Start(unit, "answer") != -1) { puts("FAIL: CU_Start"); ++failures; }
    CU_Run(unit, 0);
    if (strcmp(state.printed, "\"done\"\r\n") != 0) { printf("FAIL: printed '%s'\n", state.printed); ++failures; }
    if (state.notificationCount < 3 || state.notifications[0] != 9 || state.notifications[1] != 1 ||
        state.notifications[state.notificationCount - 1] != 2) {
        puts("FAIL: notifications are not compiling, active ... idle");
        ++failures;
    }
    if (CU_IsIdle(unit) != -1) { puts("FAIL: not idle after the run"); ++failures; }
    CU_SetCallBack(unit, NULL);
    OA_Release((IUnknown*)callBack);

    OA_Release((IUnknown*)unit);
    if (KZ_FreeLibraryOkay() != -1) { puts("FAIL: library busy after the last release"); ++failures; }
    printf("%d passed, %d failed\n", 8 - failures, failures);
    return failures ? 1 : 0;
}
