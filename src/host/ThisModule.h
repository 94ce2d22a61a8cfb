#pragma once
// The module (DLL or, in unit tests, the test program) that holds the engine's code and resources.
#include <windows.h>
#include <string>

namespace brannoc {

// Handle of the module this code is linked into; never null.
HMODULE ThisModule();

// Full path of that module's file (empty when Windows cannot tell it).
std::wstring ThisModulePath();

// A string-table resource of this module; empty when the id has no string.
std::wstring LoadResourceString(unsigned id);

} // namespace brannoc
