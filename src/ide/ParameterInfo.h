#pragma once
// Parameter information for the call being typed: where the call's argument list opens on the caret's
// line, the prototype of the procedure or member called (from the sheet's procedure header or the
// library member's description), the prototype as the tip shows it (optional parameters in square
// brackets), and the index of the argument the caret is in.
#include "ide/BrowseCatalog.h"
#include "ide/BrowsePath.h"
#include "ide/CodeDeclarations.h"
#include "ide/TextDocument.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brannoc::ide {

enum class CallOpening {
    Parenthesis, // Name(
    Blank,       // Name followed by a blank: a call written as a statement
    Assignment,  // Name = : the property being assigned
};

struct CallSite {
    std::string name;     // the name with any dotted qualification, a type character left out
    int nameColumn = 0;
    int openColumn = 0;   // the "(", blank or "=" that opens the arguments
    CallOpening opening = CallOpening::Parenthesis;
};

// The calls whose arguments are open at the caret on `line` (its statement after the last ":"),
// innermost first; none inside a string or a comment.
std::vector<CallSite> OpenCallSites(std::string_view line, int caretColumn);

// The number of commas at parenthesis depth 0 between the opening and the caret; -1 when the
// arguments are closed by then (the ")" that closes the opening parenthesis, or a ":").
int ArgumentIndex(std::string_view line, const CallSite& site, int caretColumn);

// True when the prototype holds a "(" that is not directly followed by ")".
bool HasParameters(std::string_view prototype);

// The prototype of a library member: its description with the property marks and the default values
// (" : value") left out; a method's parameters written after a blank are put in parentheses.
std::string MemberPrototype(const MemberLine& member);
// The prototype of a sheet's procedure: its name and the parameter part of its header.
std::string ProcedurePrototype(const ProcedureHeader& header);

// Every parameter that begins "Optional " becomes "[", the rest of it and "]"; then every
// " As Variant]" becomes "]".
std::string BracketOptionals(std::string_view prototype);

// The parameters of the prototype's first parenthesised list, split at the commas of depth 0.
std::vector<std::string> PrototypeParameters(std::string_view prototype);

// The type of the index-th parameter: the text after " As " up to the first ",", ")" or "]", cut before
// a default value; "" when the parameter has no type or there is no such parameter.
std::string ParameterTypeAt(std::string_view prototype, int index);

struct ParameterTip {
    CallSite site;
    int line = 0;
    std::string prototype; // as shown: optional parameters bracketed
    int argument = 0;
};

// The tip for the caret: the innermost open call whose name resolves to a prototype with parameters;
// nothing when there is none.
std::optional<ParameterTip> FindParameterTip(TextDocument& document, const BrowseCatalog& catalog);

// The type name a dotted expression's first name has in the code around `line` (see DeclaredTypeOf),
// as the resolver of dotted paths asks for it.
DeclaredTypeLookup CodeDeclarationsAt(TextDocument& document, int line);

// A dotted expression with a leading "." completed by the object of the enclosing With block; "" when
// the expression needs one and there is none.
std::string WithCompleted(TextDocument& document, int line, std::string expression);

} // namespace brannoc::ide
