#pragma once
// The host's view of the extension types a module sees: their names one after another, each ended by
// a NUL character, and a two-column array of the types and the objects they came with.
#include "automation/ExtensionList.h"

#include <oaidl.h>

#include <string>
#include <vector>

namespace brannoc::automation {

// The names, each followed by one NUL character; empty when there are none.
std::wstring JoinedTypeNames(const std::vector<ExtensionTypeEntry>& types);
// Replaces what target holds with an array of Variants of one row per type: column 0 the type
// information, column 1 the object (Empty when none). No types: an array without dimensions. False when
// the array cannot be made (target is then Empty).
[[nodiscard]] bool StoreTypeArray(const std::vector<ExtensionTypeEntry>& types, VARIANT* target);

} // namespace brannoc::automation
