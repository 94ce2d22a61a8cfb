#pragma once
// A Sub called by name for the host (the engine object's Call0 ... Call5): the arguments are the host's
// VARIANTs, passed by reference, so what the Sub assigns to its ByRef parameters is written back.
#include <oaidl.h>
#include <string>

namespace brannoc {

class EngineContext;

// True when the call was made and completed. Refused (false, nothing done) while a statement executes
// or an error is being reported; an unknown Sub reports "Sub/Function does not exist." (10018) and too
// many arguments "Wrong number of parameters." (10019). A null argument is a missing one.
bool CallSubForHost(EngineContext& context, const std::string& name, VARIANT* const* arguments, int count);

} // namespace brannoc
