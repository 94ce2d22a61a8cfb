// The module manager's answers to the compiler about names and types that the host's extensions and
// the modules' '#Reference lines give.
#include "host/AnsiText.h"
#include "host/CodeUnit.h"
#include "host/EngineContext.h"
#include "host/HostCallBack.h"
#include "host/ModuleManager.h"
#include "frontend/CharClasses.h"

namespace brannoc {

// Each line of the block is added as a reference of the module, after the module's references of its
// previous compile are gone. The host's SetMacroReferences may take the lines over.
bool ModuleManager::AddReferences(std::string_view module, std::string_view lines, std::size_t& failedLine)
{
    automation::ExtensionList& extensions = m_context.Extensions();
    const std::string name(module);
    extensions.RemoveModule(name, true);
    if (IDispatch* callBack = m_context.CallBack();
        callBack && !HostCallBack::SetMacroReferences(callBack, m_context.Owner().AsDispatch(), WideFromAnsi(name)))
        return true;
    std::size_t start = 0;
    while (start < lines.size()) {
        std::size_t end = lines.find_first_of("\r\n", start);
        if (end == std::string_view::npos)
            end = lines.size();
        std::string_view line = lines.substr(start, end - start);
        while (!line.empty() && (line.front() == ' ' || line.front() == '\t'))
            line.remove_prefix(1);
        while (!line.empty() && (line.back() == ' ' || line.back() == '\t'))
            line.remove_suffix(1);
        if (!line.empty() && !extensions.AddReferenceLine(name, std::string(line))) {
            failedLine = start;
            return false;
        }
        start = end + 1;
    }
    return true;
}

bool ModuleManager::IsGlobalNameInUse(std::string_view name)
{
    return m_context.Extensions().IsNameInUse(std::string(name));
}

bool ModuleManager::IsExternalTypeName(std::string_view module, std::string_view name)
{
    return m_context.Extensions().FindType(std::string(module), std::string(name)) != nullptr;
}

bool ModuleManager::IsLoadedClassName(std::string_view name)
{
    return m_compiler && m_compiler->HasClassModule(name);
}

bool ModuleManager::IsExternalEnumName(std::string_view module, std::string_view name)
{
    return automation::IsEnumType(m_context.Extensions().FindType(std::string(module), std::string(name)));
}

std::string ModuleManager::CreatableClassId(std::string_view module, std::string_view name)
{
    return AnsiFromWide(automation::CreatableClassId(m_context.Extensions().FindType(std::string(module), std::string(name))));
}

std::vector<std::string> ModuleManager::ReachableProjects(std::string_view module)
{
    return m_context.Extensions().ReachableProjects(std::string(module));
}

ExtensionName ModuleManager::FindExtensionName(std::string_view module, std::string_view name)
{
    automation::ExtensionList& extensions = m_context.Extensions();
    const std::string moduleName(module);
    const std::string wanted(name);
    ExtensionName found = extensions.Find(moduleName, wanted);
    if (found.kind != ExtensionName::Kind::None)
        return found;
    // "!" extensions: a member of the declared type of a module variable is called through the
    // object that the variable holds when the call runs.
    const std::vector<std::string> variables = extensions.MemberVariables(moduleName);
    const Module* compiled = variables.empty() ? nullptr : m_compiler->FindModule(moduleName);
    if (!compiled)
        return found;
    for (const std::string& variableName : variables) {
        for (const auto& variable : compiled->Variables()) {
            if (!SameName(variable->name, variableName) || variable->type.className.empty())
                continue;
            ITypeInfo* type = extensions.FindType(moduleName, variable->type.className);
            if (automation::ExtensionList::HasMember(type, wanted)) {
                found.kind = ExtensionName::Kind::VariableMember;
                found.variable = variable->name;
                return found;
            }
        }
    }
    return found;
}

} // namespace brannoc
