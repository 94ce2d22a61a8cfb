#pragma once
// What the object browser can show: the libraries of the engine's extensions and of the current sheet's
// "'#Reference " lines, each with its data types (hidden ones and names beginning with "_" left out),
// the objects the engine knows by name (its extensions), and the members of a data type.
#include "ide/MemberLine.h"
#include "values/ComRef.h"

#include <oaidl.h>

#include <string>
#include <string_view>
#include <vector>

namespace brannoc::ide {

class EditorFrame;

struct BrowseType {
    std::string name;
    ComRef<ITypeInfo> type;
};

struct BrowseLibrary {
    std::string name;
    std::vector<BrowseType> types;
};

// An object the engine knows by name (an extension added with a prefix such as "Obj.").
struct NamedObject {
    std::string name;
    ComRef<ITypeInfo> type;
};

struct BrowseCatalog {
    std::vector<BrowseLibrary> libraries;
    std::vector<NamedObject> objects;

    bool Empty() const;
    // The library of that name (ignoring case), or -1.
    int FindLibrary(std::string_view name) const;
    // The data type of that name in library `library` (-1: any library); null when none.
    const BrowseType* FindType(std::string_view name, int library = -1) const;
    const NamedObject* FindObject(std::string_view name) const;
};

// The catalog for the frame: its engine's extension libraries first, then the current sheet's references.
BrowseCatalog CollectBrowseCatalog(const EditorFrame& frame);

// Adds a loaded library's visible data types to the catalog (once per library name).
void AddLibrary(BrowseCatalog& catalog, ITypeLib* library);

// The name of a type information (its documentation name).
std::string TypeNameOf(ITypeInfo* type);

// What a data type is: an enumeration (its values are listed by completion), a class that may be
// created with New, or a type whose members are used without qualification (enumerations, modules and
// application objects).
bool IsEnumeration(ITypeInfo* type);
bool IsCreatable(ITypeInfo* type);
bool IsUsedUnqualified(ITypeInfo* type);

// The member of that name among the types used without qualification (all libraries of the catalog);
// false when none has it.
bool FindGlobalMember(const BrowseCatalog& catalog, std::string_view name, MemberLine& found);

// The members the browser lists for a type (a class is followed to its default interface), read with
// OA_GetTypeDescA: hidden ones left out, property get and put pairs joined, constants with their values.
std::vector<MemberLine> ReadMembers(ITypeInfo* type);

} // namespace brannoc::ide
