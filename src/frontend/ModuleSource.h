#pragma once
// Where the compile driver gets module texts and asks the host about names. The engine puts the host
// callback behind it; tests give texts directly.
#include <oaidl.h>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brannoc {

// What a name means through the host's extensions and type-library references.
struct ExtensionName {
    enum class Kind { None, Object, Member, VariableMember, Constant, Library };
    Kind kind = Kind::None;
    // Object: the named object; Member: the object whose member the name is. Borrowed: the
    // extension list holds it while the extension exists, compiled code takes its own reference.
    IDispatch* object = nullptr;
    // VariableMember: the module variable whose object has the member.
    std::string variable;
    // Constant: an enumeration member's value. Library: the name is a referenced library's, whose
    // constants are named "Library.Constant" or "Library.Enumeration.Constant".
    long constant = 0;
};

struct ModuleText {
    std::string text;
    // The host marks object-module files (class, object and form modules), which begin with a header.
    bool objectModuleFile = false;
};

class ModuleSource {
public:
    virtual ~ModuleSource() = default;
    // The text of the named module, or none when the host has no such module.
    virtual std::optional<ModuleText> Read(std::string_view name) = 0;
    // The name under which a '#Uses name of `usingModule` is loaded.
    virtual std::string ResolveName(std::string_view usingModule, std::string_view name)
    {
        (void)usingModule;
        return std::string(name);
    }
    // Hands a form's header text (from the start of the module to the end of the header) to the host,
    // which builds the form; false when it refuses it. name is the module's full name.
    virtual bool BuildForm(std::string_view name, std::string_view headerText)
    {
        (void)name;
        (void)headerText;
        return false;
    }
    // Hands the module's '#Reference lines to the reference manager; false when one cannot be added,
    // with failedLine the offset in lines of the line that failed.
    virtual bool AddReferences(std::string_view module, std::string_view lines, std::size_t& failedLine)
    {
        (void)module;
        (void)lines;
        (void)failedLine;
        return true;
    }
    // True when a global object, type-library reference or extension already uses the name.
    virtual bool IsGlobalNameInUse(std::string_view name)
    {
        (void)name;
        return false;
    }
    // A trace line of the compile driver (written only while the host's compiler trace is on).
    virtual void TraceCompile(std::string_view line) { (void)line; }
    // A module-level variable declared WithEvents, of the type named className, was read (for the
    // trace of its declaration and of the source interface its events come from).
    virtual void DeclaredWithEvents(std::string_view module, std::string_view variable, std::string_view className)
    {
        (void)module;
        (void)variable;
        (void)className;
    }
    // True when the name is a type that a type-library reference or extension visible to the module
    // provides.
    virtual bool IsExternalTypeName(std::string_view module, std::string_view name)
    {
        (void)module;
        (void)name;
        return false;
    }
    // True when the name is that of a loaded class or object module (as the module-level declarations
    // take it).
    virtual bool IsLoadedClassName(std::string_view name)
    {
        (void)name;
        return false;
    }
    // What the name means through the extensions and references visible to the module.
    virtual ExtensionName FindExtensionName(std::string_view module, std::string_view name)
    {
        (void)module;
        (void)name;
        return {};
    }
    // True when the name is an enumeration of a type-library reference visible to the module.
    virtual bool IsExternalEnumName(std::string_view module, std::string_view name)
    {
        (void)module;
        (void)name;
        return false;
    }
    // The class identifier ("{...}") of a creatable class of a type-library reference visible to the
    // module ("Class" or "Library.Class"); empty when the name is no such class.
    virtual std::string CreatableClassId(std::string_view module, std::string_view name)
    {
        (void)module;
        (void)name;
        return {};
    }
    // The projects whose loaded modules give the module their public names: its own project first,
    // then the projects that its project (or the module itself) references, directly or through
    // others. Empty when the source keeps no projects.
    virtual std::vector<std::string> ReachableProjects(std::string_view module)
    {
        (void)module;
        return {};
    }
};

} // namespace brannoc
