#pragma once
// The printed forms of a value: Print # (WritePrint), Write # (WriteWrite), the debugging display
// (WriteDebug) and a string as a source-language literal (WriteQuoted). Each appends to out.
#include "values/Variant.h"

#include <string>

namespace brannoc {

[[nodiscard]] bool WritePrint(std::wstring& out, const Variant& value);
[[nodiscard]] bool WriteWrite(std::wstring& out, const Variant& value);
[[nodiscard]] bool WriteDebug(std::wstring& out, const Variant& value);
void WriteQuoted(std::wstring& out, std::wstring_view text);

// The name TypeName gives an object reference: "Nothing" for the null reference, the name the installed
// namer gives the engine's own objects, else the name of the type its type information describes with
// one leading "_" removed, or "Object" when it has none.
std::wstring ObjectTypeName(IUnknown* object);
// Names the engine's own objects (module instances); false for other objects. Returns the previous one.
using ObjectNamer = bool (*)(IUnknown* object, std::wstring& name);
ObjectNamer SetObjectNamer(ObjectNamer namer);

// The language's name of a value kind ("Integer", "Variant", ...), as array displays show it.
std::wstring_view KindName(VARTYPE tag);
// The name of a record type that has no record description (as an array of records that is not
// dimensioned: without a descriptor it has none).
inline constexpr std::wstring_view kUndescribedRecordName = L"_UserDefinedType";

} // namespace brannoc
