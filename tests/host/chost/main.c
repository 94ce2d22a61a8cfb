/* A host written in C against the header and the import library: creates and releases an engine object
 * and checks the library's unload answer around it. Exits 0 when everything matches. */
#include <stdio.h>
#include "brannoc.h"

int main(void)
{
    int failures = 0;
    if (CU_FreeLibraryOkay() != -1) { puts("FAIL: library busy before any object"); ++failures; }
    IUnknown* unit = (IUnknown*)CU_CreateCodeUnit();
    if (!unit) { puts("FAIL: CU_CreateCodeUnit gave null"); return 1; }
    if (CU_FreeLibraryOkay() != 0) { puts("FAIL: library free while an object lives"); ++failures; }
    if (KZ_CodeClassLock(1, 0) == 0) { puts("FAIL: class lock answer"); ++failures; }
    KZ_CodeClassLock(-1, 0);
    unit->lpVtbl->Release(unit);
    if (KZ_FreeLibraryOkay() != -1) { puts("FAIL: library busy after the last release"); ++failures; }
    printf("%d passed, %d failed\n", 4 - failures, failures);
    return failures ? 1 : 0;
}
