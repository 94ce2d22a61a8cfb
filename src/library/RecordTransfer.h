#pragma once
// The binary layouts of Get and Put: every kind of variable as little-endian bytes, strings as ANSI
// bytes with or without their 2-byte count, Variants behind their 2-byte kind tag, dynamic arrays behind
// their dimension header, records field by field.
#include "frontend/TypeCode.h"
#include "library/FileStream.h"

#include <oaidl.h>

namespace brannoc {

// Writes the variable held by storage (declared as type) at the stream's position as one transfer
// (one record of a Random stream). The bytes are made first and written at once, so a failure
// writes nothing. False after raising 10050, 10059, 10080 or 10902.
[[nodiscard]] bool PutVariable(FileStream& stream, const VARIANT& storage, TypeCode type);
// Reads the variable held by storage (declared as type) from the stream's position. False after
// raising 10050, 10053, 10055, 10059 or 10080.
[[nodiscard]] bool GetVariable(FileStream& stream, VARIANT& storage, TypeCode type);

} // namespace brannoc
