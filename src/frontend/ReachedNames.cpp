#include "frontend/ReachedNames.h"

#include "frontend/CharClasses.h"

#include <algorithm>

namespace brannoc {

std::vector<Module*> ReachedModules(Module& module)
{
    std::vector<Module*> reached;
    std::vector<Module*> pending(module.UsedModules().begin(), module.UsedModules().end());
    for (std::size_t i = 0; i < pending.size(); ++i) {
        Module* used = pending[i];
        if (used == &module || std::find(reached.begin(), reached.end(), used) != reached.end())
            continue;
        reached.push_back(used);
        pending.insert(pending.end(), used->UsedModules().begin(), used->UsedModules().end());
    }
    for (Module* other : module.ProjectModules()) {
        if (other != &module && std::find(reached.begin(), reached.end(), other) == reached.end())
            reached.push_back(other);
    }
    return reached;
}

std::string_view ProjectOfModuleName(std::string_view moduleName)
{
    if (moduleName.size() < 2 || moduleName.front() != '<')
        return {};
    const std::size_t close = moduleName.find('>');
    return close == std::string_view::npos ? std::string_view() : moduleName.substr(1, close - 1);
}

namespace {

// Constants and variables are public only when declared so; types, enumerations and procedures unless
// declared Private.
bool IsPublicData(Visibility visibility)
{
    return visibility == Visibility::Public || visibility == Visibility::Friend;
}

} // namespace

Module* FindReachedVariable(const std::vector<Module*>& reached, const std::string& upperName, std::size_t& index)
{
    // Variables of class modules belong to their instances and are not reached by name.
    for (Module* used : reached) {
        if (used->Kind() != ModuleKind::Plain)
            continue;
        const auto& variables = used->Variables();
        for (std::size_t i = 0; i < variables.size(); ++i) {
            if (IsPublicData(variables[i]->visibility) && UpperName(variables[i]->name) == upperName) {
                index = i;
                return used;
            }
        }
    }
    return nullptr;
}

bool FindReachedConstant(const std::vector<Module*>& reached, const std::string& upperName, ConstantValue& value)
{
    for (const Module* used : reached) {
        if (used->Kind() != ModuleKind::Plain)
            continue;
        for (const auto& constant : used->Constants()) {
            if (IsPublicData(constant->visibility) && UpperName(constant->name) == upperName) {
                value = constant->value;
                return true;
            }
        }
        for (const auto& enumType : used->Enums()) {
            if (enumType->visibility == Visibility::Private)
                continue;
            for (const Constant& member : enumType->members) {
                if (UpperName(member.name) == upperName) {
                    value = member.value;
                    return true;
                }
            }
        }
    }
    return false;
}

UserType* FindReachedUserType(const std::vector<Module*>& reached, const std::string& upperName)
{
    for (const Module* used : reached) {
        if (used->Kind() != ModuleKind::Plain)
            continue;
        for (const auto& userType : used->UserTypes()) {
            if (userType->visibility != Visibility::Private && UpperName(userType->name) == upperName)
                return userType.get();
        }
    }
    return nullptr;
}

bool IsReachedEnumName(const std::vector<Module*>& reached, const std::string& upperName)
{
    for (const Module* used : reached) {
        if (used->Kind() != ModuleKind::Plain)
            continue;
        for (const auto& enumType : used->Enums()) {
            if (enumType->visibility != Visibility::Private && UpperName(enumType->name) == upperName)
                return true;
        }
    }
    return false;
}

const Module* FindReachedClass(const Module& self, const std::vector<Module*>& reached, std::string_view name)
{
    // A class module may name its own class.
    if (self.Kind() != ModuleKind::Plain && SameName(name, self.RecordName()))
        return &self;
    for (const Module* used : reached) {
        if (used->Kind() == ModuleKind::Plain)
            continue;
        std::string_view own = used->Name();
        const std::size_t slash = own.find_last_of("/\\");
        if (slash != std::string_view::npos)
            own.remove_prefix(slash + 1);
        const std::size_t dot = own.rfind('.');
        if (dot != std::string_view::npos)
            own = own.substr(0, dot);
        if (SameName(name, used->RecordName()) || SameName(name, own))
            return used;
    }
    return nullptr;
}

} // namespace brannoc
