#pragma once
// Declarations of the library-level exports implemented in host/ (see host/Exports.list).
#include <windows.h>

extern "C" {
HRESULT __stdcall DllCanUnloadNow();
HRESULT __stdcall DllGetClassObject(REFCLSID classId, REFIID interfaceId, void** object);
BOOL __stdcall KZ_CodeClassLock(SHORT count, LONG reserved);
BOOL __stdcall KZ_FreeLibraryOkay();
BOOL __stdcall CU_FreeLibraryOkay();
}
