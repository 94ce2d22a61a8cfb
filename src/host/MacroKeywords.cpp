#include "host/MacroKeywords.h"

#include "frontend/Module.h"
#include "frontend/Symbols.h"

#include <algorithm>
#include <cctype>
#include <unordered_set>

namespace brannoc {

namespace {

class NameList final {
public:
    void Add(const std::string& name)
    {
        // Hidden helpers of the compiler begin with "__"; they are no names a macro wrote.
        if (name.empty() || name.rfind("__", 0) == 0)
            return;
        std::string key = name;
        std::transform(key.begin(), key.end(), key.begin(), [](unsigned char c) { return std::toupper(c); });
        if (!m_seen.insert(key).second)
            return;
        m_text += name;
        m_text += ' ';
    }
    std::string Take() { return std::move(m_text); }

private:
    std::unordered_set<std::string> m_seen;
    std::string m_text;
};

// The module's own names; with `publicOnly` only those other modules can reach.
void AddModuleNames(const Module& module, bool publicOnly, NameList& names)
{
    auto visible = [&](Visibility visibility) { return !publicOnly || visibility != Visibility::Private; };
    for (const auto& procedure : module.Procedures()) {
        if (visible(procedure->visibility))
            names.Add(procedure->name);
    }
    for (const auto& variable : module.Variables()) {
        if (visible(variable->visibility))
            names.Add(variable->name);
    }
    for (const auto& constant : module.Constants()) {
        if (visible(constant->visibility))
            names.Add(constant->name);
    }
    for (const auto& type : module.UserTypes()) {
        if (visible(type->visibility))
            names.Add(type->name);
    }
    for (const auto& enumeration : module.Enums()) {
        if (!visible(enumeration->visibility))
            continue;
        names.Add(enumeration->name);
        for (const Constant& member : enumeration->members)
            names.Add(member.name);
    }
}

} // namespace

std::string MacroKeywordList(const Module& macro)
{
    NameList names;
    AddModuleNames(macro, false, names);
    for (const Module* used : macro.UsedModules()) {
        if (used && !used->IsPrivateModule())
            AddModuleNames(*used, true, names);
    }
    return names.Take();
}

} // namespace brannoc
