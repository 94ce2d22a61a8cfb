#pragma once
#include "TypeLibraryWriter.h"

namespace mktypelib {

// One method of the language object per record of the engine's built-in table, with the record's
// parameter names, kinds and optional parameters; the member id is the built-in's token number.
std::vector<Member> BuiltinMembers();

} // namespace mktypelib
