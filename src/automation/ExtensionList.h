#pragma once
// The extensions and type-library references of an engine: objects whose members, names and types
// macros use as if they were built in, and registered libraries whose types and constants they use.
// Each belongs to the project (every module sees it) or to one module.
#include "automation/ExtensionPrefix.h"
#include "exec/EventConnection.h"
#include "frontend/ModuleSource.h"
#include "values/ComRef.h"

#include <oaidl.h>

#include <string>
#include <vector>

namespace brannoc::automation {

// What the list needs from its engine.
class ExtensionHost {
public:
    virtual ~ExtensionHost() = default;
    // An API trace line of the given kind (0 entry, 1 exit, 2 detail, 3 result, 4 event).
    virtual void TraceExtension(short kind, const std::wstring& text) = 0;
    // The list of extensions or references changed (notification 14).
    virtual void ExtensionsChanged() = 0;
    // The host's name for a module part.
    virtual std::string MapModuleName(const std::string& name) = 0;
    // True while the named module is loaded.
    virtual bool ModuleExists(const std::string& name) = 0;
    // True when a project of that name has been created.
    virtual bool ProjectExists(const std::string& name) const
    {
        (void)name;
        return false;
    }
    // True while the host reads a form's header (its ParseMacroProperties call).
    virtual bool ParsingModuleProperties() const { return false; }
    // The module whose new instance the host is making an object for (its NewMacroInstance call), or
    // null outside such a call.
    virtual const std::string* InstanceModuleBeingCreated() const { return nullptr; }
    // Routes the events of object to the procedures named prefix + "_" + event: a connected sink whose
    // one hold the caller gets (given up by Close), or null when the object has no source interface.
    virtual EventConnection* ConnectEvents(const std::string& prefix, IDispatch* object)
    {
        (void)prefix;
        (void)object;
        return nullptr;
    }
    // Disconnects every event sink of the engine; answers how many were connected.
    virtual int DisconnectEvents() { return 0; }
};

struct Extension {
    std::string project;           // the owning project; empty for the default project
    std::string module;            // the owning module (its full name); empty for the project
    std::string referencedProject; // a reference to another project: its name
    std::string prefix;            // the prefix proper as given, for removal
    std::string name;              // the object's name, the variable's name, or the library's name
    unsigned flags = 0;
    bool onlyThroughName = false;  // members are reached only as name.member
    bool throughVariable = false;  // "!": name is a module variable whose object has the members
    ComRef<IDispatch> object;
    ComRef<ITypeInfo> type;
    ComRef<ITypeLib> library;
    // "{WithEvents}": the sink that routes the object's events (closed when the extension goes).
    EventConnection* events = nullptr;
};

// One row of the extension types a module sees.
struct ExtensionTypeEntry {
    ComRef<ITypeInfo> type;
    std::wstring name;          // "Library.Type" for a library's type, else the type's own name
    ComRef<IDispatch> object;   // the object the type came with; null for a reference
};

class ExtensionList final {
public:
    explicit ExtensionList(ExtensionHost& host) : m_host(host) {}
    ~ExtensionList();
    ExtensionList(const ExtensionList&) = delete;
    ExtensionList& operator=(const ExtensionList&) = delete;

    // AddExtension and AddExtensionEx: true when the extension or reference was added.
    bool Add(const std::string& prefixText, IDispatch* object);
    // A '#Reference line of a module being compiled; false when its library cannot be loaded.
    bool AddReferenceLine(const std::string& module, const std::string& line);
    // RemoveExtensions: true when something was removed.
    bool Remove(const std::string& prefixText);
    // Removes what belongs to a module: its references only, or everything it owns.
    void RemoveModule(const std::string& module, bool referencesOnly);
    // Removes what a project owns (every named project's for an empty name): it is being destroyed.
    void RemoveProject(const std::string& project);
    // The module's own project, then the projects it reaches through project references (its
    // project's, and for the module itself its own), each once, breadth first.
    std::vector<std::string> ReachableProjects(const std::string& module) const;

    // What a name means to the module's code (named objects, then members, then library constants).
    ExtensionName Find(const std::string& module, const std::string& name) const;
    // The type a type name denotes ("Type" or "Library.Type"), or null.
    ITypeInfo* FindType(const std::string& module, const std::string& name) const;
    // True when a named object or a library already uses the name (project-wide).
    bool IsNameInUse(const std::string& name) const;
    // The "!" extensions of a module: the names of its variables whose members macros call by name.
    std::vector<std::string> MemberVariables(const std::string& module) const;
    // The extension types the module sees (the project's when module is empty), in index order.
    std::vector<ExtensionTypeEntry> Types(const std::string& module) const;

    const std::vector<Extension>& Items() const { return m_items; }

    // True when the type has a member of that name.
    static bool HasMember(ITypeInfo* type, const std::string& name);

private:
    bool Visible(const Extension& item, const std::string& module) const;
    bool AddParsed(const std::string& text, ExtensionPrefix prefix, IDispatch* object, bool fromHost);
    bool AddLibrary(Extension item, const ExtensionPrefix& prefix, IDispatch* object);
    // Adds the library a reference text names, or for "{}" the one that holds object's type (once per
    // owner); false, traced, when there is none. changed tells whether the list grew.
    bool PutLibrary(Extension item, const std::string& reference, IDispatch* object, bool& changed);
    bool AddObject(Extension item, IDispatch* object);
    bool AddProjectReference(Extension item, const ExtensionPrefix& prefix);
    // The full name of a module part: "<P>module" when the prefix has a project part.
    std::string QualifiedModule(const ExtensionPrefix& prefix) const;
    bool AddWithEvents(Extension item, IDispatch* object);
    static void CloseEvents(Extension& item);
    void Trace(short kind, const std::wstring& text) const { m_host.TraceExtension(kind, text); }
    void TraceItem(const wchar_t* verb, const Extension& item) const;
    // Ends an Add: the result and exit lines, and notification 14 when the list changed.
    bool Finish(bool result, bool changed);

    ExtensionHost& m_host;
    std::vector<Extension> m_items;
};

// The name and GUID text of a type, "Name {GUID}".
std::wstring TypeDescription(ITypeInfo* type);
std::wstring TypeName(ITypeInfo* type);
std::wstring LibraryName(ITypeLib* library);
// True for the type information of an enumeration.
bool IsEnumType(ITypeInfo* type);
// The class identifier text of a class that New may create (a coclass marked creatable); empty for any
// other type.
std::wstring CreatableClassId(ITypeInfo* type);

} // namespace brannoc::automation
