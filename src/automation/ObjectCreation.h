#pragma once
// Objects that macros reach outside the engine: created from a class name (CreateObject), found
// running or bound from a file name (GetObject), and walked with For Each through their enumerator.
// Every failure is raised as one of the language's run-time errors (10090 to 10096, 10001).
#include "values/ComRef.h"
#include "values/Variant.h"

#include <oaidl.h>
#include <string>

namespace brannoc::automation {

// A new object of the class named by a ProgID or by a class identifier in braces, started with OleRun.
// False after raising 10095 (no such class), 10092 (the server failed) or 10090 (no IDispatch).
[[nodiscard]] bool CreateNamedObject(const std::wstring& className, ComRef<IDispatch>& object);

// GetObject(File, Class): each argument may be absent. False after raising.
[[nodiscard]] bool FindObject(const std::wstring* file, const std::wstring* className, ComRef<IDispatch>& object);

// The enumerator of an object for For Each (its member DISPID_NEWENUM). False after raising 10094 for
// a null object, 10090 when the object offers no enumerator.
[[nodiscard]] bool StartEnumeration(IDispatch* object, ComRef<IEnumVARIANT>& enumerator);

// The next element into element (cleared first); false at the end of the enumeration.
bool NextElement(IEnumVARIANT* enumerator, Variant& element);

} // namespace brannoc::automation
