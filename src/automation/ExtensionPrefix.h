#pragma once
// The text a host gives with an extension or reference: an optional "{WithEvents}", a project part
// "<name>", a module part "name|", then the prefix proper whose first character selects what the
// object gives the macros (its members, its name, its type, a type library).
#include <windows.h>

#include <string>
#include <string_view>

namespace brannoc::automation {

// Kind flags of an extension.
enum ExtensionFlag : unsigned {
    kExtensionMembers = 0x08,
    kExtensionNamed = 0x10,
    kExtensionDataType = 0x20,
    kExtensionLibrary = 0x40,
    kExtensionSystem = 0x80,
    kExtensionFromReferenceLine = 0x100,
    kExtensionDefault = 0x3D,
};

struct ExtensionPrefix {
    bool withEvents = false;
    std::string project;       // without "<" and ">"; empty when none was given
    std::string module;        // the module part without "|"; empty when none was given
    bool hasModule = false;
    bool referenceLine = false; // began with "'#Reference "
    bool variable = false;      // "!": the rest names a variable of the module
    unsigned flags = 0;
    // What follows the kind character: the object's name, a reference text, or a variable name.
    std::string rest;
};

// Splits the project and module parts off and strips the "$" and "'#Reference " marks; the kind
// character is not read yet (ReadKind does that).
ExtensionPrefix SplitPrefix(std::string_view text);
// Reads the kind character of prefix.rest into the flags and drops it.
void ReadKind(ExtensionPrefix& prefix);

// The object's name and how it is reached, from the rest of a prefix with the named-object flag: a
// name part ended by ":" gives the name, else the rest does; a final "." means the members are reached
// only through the name.
struct ObjectName {
    std::string name;
    bool onlyThroughName = false;
};
ObjectName ReadObjectName(std::string_view rest);

// A type-library reference text: "{" GUID "}#" major "." minor "#" locale, then the end or "#" and
// anything. False when the text is not of that form.
struct LibraryReference {
    GUID guid{};
    WORD major = 0;
    WORD minor = 0;
    LCID locale = 0;
};
[[nodiscard]] bool ParseLibraryReference(std::string_view text, LibraryReference& reference);

} // namespace brannoc::automation
