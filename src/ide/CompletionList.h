#pragma once
// The completion list for the caret: the prefix being typed, the context before it (a blank after
// "As" or "New", a "." after an expression, a blank, "(" or "," in a call) and the list text the list
// component shows, one "word K\r\n" line per entry. K is the kind: L library, G type, E value, A method,
// B property, C default property.
#include "ide/BrowseCatalog.h"
#include "ide/TextDocument.h"

#include <string>
#include <string_view>

namespace brannoc::ide {

// The list after "As": the language's own types, in this order, before the libraries' types.
inline constexpr char kFixedTypeList[] =
    "Boolean G\r\nByte G\r\nInteger G\r\nLong G\r\nSingle G\r\nDouble G\r\nDate G\r\nCurrency G\r\nDecimal G\r\n"
    "String G\r\nObject G\r\nVariant G\r\nNew G\r\n";
inline constexpr char kBooleanList[] = "False E\r\nTrue E\r\n";

struct CompletionRequest {
    // Command 326 itself (not an automatic trigger): a word character at the caret counts into the
    // prefix, and the list of global names is shown where no other context applies.
    bool command = false;
    // The type of the current argument while the parameter tip is up; null without a tip.
    const std::string* argumentType = nullptr;
};

struct CompletionList {
    std::string text;      // empty: no list
    int line = 0;          // the caret's line
    int prefixStart = 0;   // the prefix's columns on that line
    int prefixEnd = 0;
};

CompletionList BuildCompletionList(TextDocument& document, const BrowseCatalog& catalog, const CompletionRequest& request);

// The pieces of the lists.
char MemberKindLetter(const MemberLine& member);
// Each library's entry followed by its type names (only those that may be created when asked).
std::string LibraryTypesText(const BrowseCatalog& catalog, bool creatableOnly);
// The members of a type, sorted by name.
std::string MemberListText(ITypeInfo* type);
// False and True, then each library's entry with the members of its types used without qualification
// (and the names of the enumerations among them).
std::string GlobalListText(const BrowseCatalog& catalog);
// The values an argument of that type may take: an enumeration's values, False and True for
// "Boolean"; "" for any other type.
std::string ArgumentListText(const BrowseCatalog& catalog, std::string_view type);

} // namespace brannoc::ide
