#pragma once
// Where the object browser opens for an expression that is not evaluated: the expression read as a
// dotted path, each name a library, a data type, an object the engine knows, or a member whose result
// type leads on; the browser stops at the last type found.
#include "ide/BrowseCatalog.h"

#include <string>
#include <string_view>

namespace brannoc::ide {

// A data type shown by the browser and the expression that leads to it ("" for none).
struct BrowsePlace {
    ComRef<ITypeInfo> type;
    std::string expression;
    std::string title; // the first line of the Data Type list for a type outside the catalog
};

// The expression without the blanks and line ends around it.
std::string TrimmedPath(std::string_view expression);

// The place the path leads to; no type when its first name is unknown.
BrowsePlace ResolvePath(const BrowseCatalog& catalog, std::string_view expression);

// The first data type of the first library that has one.
BrowsePlace DefaultPlace(const BrowseCatalog& catalog);

} // namespace brannoc::ide
