// Engine objects are made only through the library's creation exports, never by COM activation.
#include "host/LibraryExports.h"

extern "C" HRESULT __stdcall DllGetClassObject(REFCLSID /*classId*/, REFIID /*interfaceId*/, void** object)
{
    if (object)
        *object = nullptr;
    return CLASS_E_CLASSNOTAVAILABLE;   // 0x80040111
}
