#pragma once
// Where the object browser opens for an expression that is not evaluated: the expression read as a
// dotted path, each name a library, a data type, an object the engine knows, or a member whose result
// type leads on; the browser stops at the last type found.
#include "ide/BrowseCatalog.h"

#include <functional>
#include <string>
#include <string_view>

namespace brannoc::ide {

// A data type shown by the browser and the expression that leads to it ("" for none).
struct BrowsePlace {
    ComRef<ITypeInfo> type;
    std::string expression;
    std::string title; // the first line of the Data Type list for a type outside the catalog
    int library = -1;  // the catalog's library when the path names a library and nothing after it
    bool whole = false; // every name of the path was found
};

// The type name the code declares for a name (a variable, a parameter, a function's result), "" when
// the code does not declare it. The resolver asks it about the first name of a path.
using DeclaredTypeLookup = std::function<std::string(const std::string& name)>;

// The expression without the blanks and line ends around it.
std::string TrimmedPath(std::string_view expression);

// The place the path leads to; no type when its first name is unknown. The first name is tried as a
// library, then as a name the code declares (when `declared` is given), a data type, an object the
// engine knows, and a global member of the catalog's libraries; each further name is a member of the
// type found so far (or a data type of the library named before it).
BrowsePlace ResolvePath(const BrowseCatalog& catalog, std::string_view expression,
                        const DeclaredTypeLookup& declared = {});

// The data type a type name written in code stands for: "Type" or "Library.Type"; null when the
// catalog has no such type.
const BrowseType* ResolveTypeName(const BrowseCatalog& catalog, std::string_view typeName);

// The first data type of the first library that has one.
BrowsePlace DefaultPlace(const BrowseCatalog& catalog);

} // namespace brannoc::ide
