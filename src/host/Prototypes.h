#pragma once
// The prototypes a module defines: the declaration line of each of its procedures as written (lines
// continued with " _" joined, the header's comment left out), one per line ended by CR LF.
#include <string>

namespace brannoc {

class Module;

std::string PrototypeList(const Module& module);

} // namespace brannoc
