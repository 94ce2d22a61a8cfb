// References between projects: a project (or one module of it) that references another project sees
// the public names of that project's loaded modules, and of the projects that one references in turn.
#include "automation/ExtensionList.h"

#include "frontend/CharClasses.h"
#include "frontend/ReachedNames.h"
#include "host/AnsiText.h"

#include <algorithm>

namespace brannoc::automation {
namespace {

// The project that a reference text names: "P" or "<P>", blanks around it ignored.
std::string NamedProject(std::string_view text)
{
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
        text.remove_suffix(1);
    if (text.size() >= 2 && text.front() == '<' && text.back() == '>')
        text = text.substr(1, text.size() - 2);
    return std::string(text);
}

bool Contains(const std::vector<std::string>& projects, std::string_view name)
{
    return std::any_of(projects.begin(), projects.end(), [&](const std::string& p) { return SameName(p, name); });
}

} // namespace

std::string ExtensionList::QualifiedModule(const ExtensionPrefix& prefix) const
{
    if (prefix.project.empty())
        return m_host.MapModuleName(prefix.module);
    return m_host.MapModuleName("<" + prefix.project + ">" + prefix.module);
}

bool ExtensionList::AddProjectReference(Extension item, const ExtensionPrefix& prefix)
{
    std::string named = NamedProject(prefix.rest);
    if (named.empty() && !prefix.hasModule && !prefix.project.empty()) {
        // "<P>" alone: the default project references P.
        named = prefix.project;
        item.project.clear();
    }
    if (named.empty() || !m_host.ProjectExists(named) || SameName(named, item.project))
        return Finish(false, false);
    const std::string viewer = item.module.empty() ? (item.project.empty() ? std::string() : "<" + item.project + ">")
                                                   : item.module;
    if (Contains(ReachableProjects(viewer), named))
        return Finish(false, false);
    item.flags = prefix.flags;
    item.referencedProject = std::move(named);
    m_items.push_back(std::move(item));
    return Finish(true, true);
}

std::vector<std::string> ExtensionList::ReachableProjects(const std::string& module) const
{
    std::vector<std::string> projects{std::string(ProjectOfModuleName(module))};
    for (std::size_t i = 0; i < projects.size(); ++i) {
        for (const Extension& item : m_items) {
            if (item.referencedProject.empty() || !SameName(item.project, projects[i]) ||
                Contains(projects, item.referencedProject))
                continue;
            // A module's own references count for that module only, not for the projects it reaches.
            if (!item.module.empty() && (i != 0 || !SameName(item.module, module)))
                continue;
            projects.push_back(item.referencedProject);
        }
    }
    return projects;
}

void ExtensionList::RemoveProject(const std::string& project)
{
    bool changed = false;
    for (auto it = m_items.begin(); it != m_items.end();) {
        if (project.empty() ? !it->project.empty() : SameName(it->project, project)) {
            TraceItem(L"Remove", *it);
            it = m_items.erase(it);
            changed = true;
        } else {
            ++it;
        }
    }
    if (changed)
        m_host.ExtensionsChanged();
}

} // namespace brannoc::automation
