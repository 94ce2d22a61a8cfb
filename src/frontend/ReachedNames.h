#pragma once
// The public names of the modules a module reaches through '#Uses: the modules it names, in the order of
// those lines, then the ones they name in turn (breadth first), each once; then the other public modules
// of its project and of the projects it references. Only plain modules have public names reached this
// way; class and object modules are reached by their class names.
#include "frontend/Module.h"

#include <string>
#include <vector>

namespace brannoc {

std::vector<Module*> ReachedModules(Module& module);

// The project of a module's name: P for "<P>name", empty for a module of the default project.
std::string_view ProjectOfModuleName(std::string_view moduleName);

// A public module-level variable of the reached modules: its module and index there, or null.
Module* FindReachedVariable(const std::vector<Module*>& reached, const std::string& upperName, std::size_t& index);
// A public constant or member of a public enumeration of the reached modules.
bool FindReachedConstant(const std::vector<Module*>& reached, const std::string& upperName, ConstantValue& value);
// A public user-defined type of the reached modules, or null.
UserType* FindReachedUserType(const std::vector<Module*>& reached, const std::string& upperName);
// Whether a public enumeration of the reached modules has that name.
bool IsReachedEnumName(const std::vector<Module*>& reached, const std::string& upperName);
// The class or object module of that class name (its own name or its file's stem) that `self` can make
// objects of: itself or one it reaches; else null.
const Module* FindReachedClass(const Module& self, const std::vector<Module*>& reached, std::string_view name);

} // namespace brannoc
