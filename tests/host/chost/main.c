/* A host written in C against the header and the import library: creates an engine object, installs
 * a callback made of plain functions, starts and runs a macro through the CU_ functions, runs one that
 * fails (asking the engine for its state while the error is reported), and checks the library's unload
 * answer around it. Exits 0 when everything matches. */
#include <stdio.h>
#include <string.h>
#include "brannoc.h"

typedef struct HostState {
    char printed[256];
    long notifications[32];
    int notificationCount;
    int wrongUserData;
    void* unit;                  /* set while the failing macro runs */
    long activeWhileReported;    /* CU_IsActive and CU_HaltAll asked during notification 19 */
    long haltWhileReported;
    int reports;
} HostState;

static const char kSource[] = "Sub Main\r\n    Debug.Print \"done\"\r\nEnd Sub\r\n\x1A trailing bytes";
static const char kFailing[] = "Sub Main\r\n    Dim d As Integer\r\n    Debug.Print 1 \\ d\r\nEnd Sub\r\n";

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
    if (code == 19 && state->unit) {
        ++state->reports;
        state->activeWhileReported = CU_IsActive(state->unit);
        state->haltWhileReported = CU_HaltAll(state->unit);
    }
}

static BSTR __stdcall HostReadMacro(IDispatch* engine, LPCSTR name, void* userData)
{
    (void)engine;
    (void)userData;
    if (strcmp(name, "failing") == 0)
        return OA_SysAllocStringLenA(kFailing, sizeof kFailing - 1);
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

    /* While an untrapped error is reported the engine is busy: it is not active and a halt does nothing;
     * after the report the run has stopped. */
    state.unit = unit;
    state.activeWhileReported = state.haltWhileReported = 7;
    if (CU_Start(unit, "failing") != -1) { puts("FAIL: CU_Start of the failing macro"); ++failures; }
    CU_Run(unit, 0);
    if (state.reports != 1 || state.activeWhileReported != 0 || state.haltWhileReported != 0 ||
        CU_IsStopped(unit) != -1 || CU_ErrorNumber(unit) != 10061) {
        printf("FAIL: during the report active %ld, HaltAll %ld; stopped after it %d, error %ld\n",
               state.activeWhileReported, state.haltWhileReported, CU_IsStopped(unit), CU_ErrorNumber(unit));
        ++failures;
    }
    state.unit = NULL;
    CU_HaltAll(unit);
    CU_SetCallBack(unit, NULL);
    OA_Release((IUnknown*)callBack);

    OA_Release((IUnknown*)unit);
    if (KZ_FreeLibraryOkay() != -1) { puts("FAIL: library busy after the last release"); ++failures; }
    printf("%d passed, %d failed\n", 10 - failures, failures);
    return failures ? 1 : 0;
}
