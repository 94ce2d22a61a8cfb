#pragma once
// The names a loaded macro defines, as the editor colours them: its procedures, module-level
// variables and constants, user-defined types, enumerations and their members, followed by the public
// names of the code modules it uses. Each name once (compared without regard to case), in the case
// of its declaration, followed by one blank.
#include <string>

namespace brannoc {

class Module;

std::string MacroKeywordList(const Module& macro);

} // namespace brannoc
